// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_FILES_ITEMIDENTITY_H
#define ZQFOUNDATION_FILES_ITEMIDENTITY_H

#include "foundation/objects/NSString.h"

/// Whether two paths lead to the same place, however they are spelled: by device and inode, through links,
/// bind mounts and doubled slashes. Nothing is changed, errors count as "no".
namespace ZQFoundation::detail {

/// Whether removing the item at `destination` (a link itself, not its target) would take away the item at
/// `source`, what that one leads to, a link on the way there, or a folder that it stands in.
bool removalWouldHarm(const NSString& destination, const NSString& source);

/// Whether the item at the path is one of the folders, or links to folders, that the path itself is spelled
/// with, as in "e/../e": it cannot be reached any more when it is removed.
bool leadsThroughItself(const NSString& path);

/// Whether something made at `destination` would stand inside the folder at `source`, whatever is missing on
/// the way there.
bool standsInside(const NSString& destination, const NSString& source);

} // namespace ZQFoundation::detail

#endif
