// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_FILES_ITEMIDENTITY_H
#define ZQFOUNDATION_FILES_ITEMIDENTITY_H

#include "foundation/objects/NSString.h"

/// Whether two paths refer to the same place, however they are spelled: by device and inode, through links,
/// bind mounts and doubled slashes. Nothing is changed; errors count as "no".
namespace ZQFoundation::detail {

/// Whether removing the item at `destination` (a link itself, not its target) would also remove the item at
/// `source`, its target, a link on the way there, or a folder that contains it.
bool removalWouldHarm(const NSString& destination, const NSString& source);

/// Whether the item at the path is one of the folders, or links to folders, that the path itself names, as in
/// "e/../e": after its removal the path is no longer reachable.
bool leadsThroughItself(const NSString& path);

/// Whether something made at `destination` would be inside the folder at `source`, even if folders on the way
/// there are missing.
bool isInside(const NSString& destination, const NSString& source);

} // namespace ZQFoundation::detail

#endif
