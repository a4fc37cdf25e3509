// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_FILES_REMOVALCHECK_H
#define ZQFOUNDATION_FILES_REMOVALCHECK_H

#include "foundation/files/CopyRecord.h"
#include "foundation/system/Descriptor.h"

namespace ZQFoundation::detail {

/// Whether this user could remove everything in an open folder: no folder without write permission, no sticky
/// one with items of others, nothing immutable or append-only, no mount point.
///
/// With a record, also whether the tree is, as a whole and item by item, what was copied, and none of its
/// files is open for writing. False with `errno`; nothing is changed.
bool isTreeRemovable(const Descriptor& folder, const CopyRecord* record);

} // namespace ZQFoundation::detail

#endif
