// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_FILES_GUARDEDOPENING_H
#define ZQFOUNDATION_FILES_GUARDEDOPENING_H

#include <string>

#include "foundation/system/Descriptor.h"

namespace ZQFoundation::detail {

/// Where a path leads.
struct GuardedPlace {
    Descriptor folder;         ///< open for search only
    std::string name;          ///< of the item in it, which need not exist
    bool isObjectLink = false; ///< the item is a link that stands for an open object, as in /dev/fd
};

/// Follows the path, links at its end too, to the folder in which its item stands. In a sticky folder that
/// others may write to (/tmp), EACCES meets a link that belongs to neither the effective user nor the
/// folder's owner. The item itself is not judged; `mayWriteItem` of StickyFolder.h does. False with `errno`;
/// more than 32 links: ELOOP.
bool reachGuarded(const std::string& path, GuardedPlace& place);

/// Opens a file for reading and appending, making it with 0666 less the umask when it is absent, and with
/// 0600 in a folder as below. Returns a close-on-exec descriptor, or -1 with `errno`. Never waits, not even
/// for the other end of a pipe, and takes no terminal over.
///
/// Links are followed as by `reachGuarded`, and in such a folder EACCES meets any item of another owner or
/// with a second name, too. What is judged is what is opened, whatever others do meanwhile.
int openForAppendingGuarded(const std::string& path) noexcept;

/// Whether something stands at the path, through links, that `openForAppendingGuarded` would not refuse by
/// these rules. Opens nothing, and tests no other permission.
bool mayAppendGuarded(const std::string& path) noexcept;

} // namespace ZQFoundation::detail

#endif
