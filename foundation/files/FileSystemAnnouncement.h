// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_FILES_FILESYSTEMANNOUNCEMENT_H
#define ZQFOUNDATION_FILES_FILESYSTEMANNOUNCEMENT_H

#include "foundation/objects/ClassesByName.h"

namespace ZQFoundation::detail {

/// Tells the desktop that what a folder holds has changed: asks the workspace class for its "sharedWorkspace"
/// and sends that "noteFileSystemChanged:". Nothing for a nil class and for one that offers no such thing.
void announceFileSystemChange(const Class& workspaceClass, const NSString& folder);

} // namespace ZQFoundation::detail

#endif
