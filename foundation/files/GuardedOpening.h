// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_FILES_GUARDEDOPENING_H
#define ZQFOUNDATION_FILES_GUARDEDOPENING_H

#include <string>

#include "foundation/system/Descriptor.h"

namespace ZQFoundation::detail {

/// Where a path ends.
struct GuardedPlace {
    Descriptor folder;         ///< open for search only
    std::string name;          ///< of the item in it, which need not exist
    bool isObjectLink = false; ///< the item is a link that represents an open object, as in /dev/fd
};

/// Follows the path, links at its end too, to the folder that contains its item. In a sticky folder that
/// others may write to (/tmp), a link that belongs to neither the effective user nor the folder's owner fails
/// with EACCES. The item itself is not checked; `mayWriteItem` of StickyFolder.h does that. False with
/// `errno`; ELOOP for more than 32 links.
bool reachGuarded(const std::string& path, GuardedPlace& place);

/// Opens a file for reading and appending, creating it if absent, with mode 0666 less the umask, or 0600 in a
/// sticky folder as above. Returns a close-on-exec descriptor, or -1 with `errno`. Never waits, not even for
/// the other end of a pipe, and acquires no controlling terminal.
///
/// Links are followed as by `reachGuarded`; in such a folder, any item of another owner or with a second name
/// fails with EACCES, too. The item checked is the item opened, whatever others do meanwhile.
int openForAppendingGuarded(const std::string& path) noexcept;

/// Whether something exists at the path, through links, that `openForAppendingGuarded` would not refuse by
/// these rules. Opens nothing, and checks no other permission.
bool mayAppendGuarded(const std::string& path) noexcept;

} // namespace ZQFoundation::detail

#endif
