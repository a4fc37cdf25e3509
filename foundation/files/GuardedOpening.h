// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_FILES_GUARDEDOPENING_H
#define ZQFOUNDATION_FILES_GUARDEDOPENING_H

#include <string>

namespace ZQFoundation::detail {

/// Opens a file for reading and appending, making it with 0666 less the umask when it is absent, and with
/// 0600 in a folder as below. Returns a close-on-exec descriptor, or -1 with `errno`. Never waits, not even
/// for the other end of a pipe, and takes no terminal over.
///
/// In a sticky folder that others may write to (/tmp), on the way or at the end of it, EACCES meets a link
/// that belongs to neither the effective user nor the folder's owner, and at the end any item of another
/// owner or with a second name. What is judged is what is opened, whatever others do meanwhile. More than 32
/// links: ELOOP.
int openForAppendingGuarded(const std::string& path) noexcept;

/// Whether something stands at the path, through links, that `openForAppendingGuarded` would not refuse by
/// that rule. Opens nothing, and tests no other permission.
bool mayAppendGuarded(const std::string& path) noexcept;

} // namespace ZQFoundation::detail

#endif
