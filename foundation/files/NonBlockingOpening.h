// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_FILES_NONBLOCKINGOPENING_H
#define ZQFOUNDATION_FILES_NONBLOCKINGOPENING_H

#include "foundation/files/PathHandle.h"

namespace ZQFoundation::detail {

/// Opens the item at the path without waiting for the other end of a pipe and without acquiring a controlling
/// terminal; the descriptor is close-on-exec, and later calls on it may block. Not open, with `errno`, on
/// failure and for a folder.
inline Descriptor openNonBlocking(const PathHandle& path, int flags, mode_t mode = 0) noexcept {
    constexpr int always = O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
    Descriptor file(openAt(path.folder(), path.name(), flags | always, mode));
    struct stat information;
    if (!file || ::fstat(file.number(), &information) != 0) {
        return Descriptor();
    }
    if (S_ISDIR(information.st_mode)) {
        errno = EISDIR;
        return Descriptor();
    }
    const int status = ::fcntl(file.number(), F_GETFL);
    if (status >= 0) {
        ::fcntl(file.number(), F_SETFL, status & ~O_NONBLOCK);
    }
    return file;
}

} // namespace ZQFoundation::detail

#endif
