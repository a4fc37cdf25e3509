// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_FILES_FILESYSTEMANNOUNCEMENT_H
#define ZQFOUNDATION_FILES_FILESYSTEMANNOUNCEMENT_H

#include "foundation/objects/ClassesByName.h"

namespace ZQFoundation::detail {

/// Notifies the desktop that the contents of a folder have changed: asks the workspace class for its
/// "sharedWorkspace" and sends it "noteFileSystemChanged:". Does nothing for a nil class or one that has no
/// such method.
void announceFileSystemChange(const Class& workspaceClass, const NSString& folder);

} // namespace ZQFoundation::detail

#endif
