// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_FILES_FILETIMES_H
#define ZQFOUNDATION_FILES_FILETIMES_H

#include <ctime>

namespace ZQFoundation::detail {

// The members of a `struct stat` are spelled in one of two ways, by the age of the system's headers.

template <class Information>
timespec modificationTime(const Information& information) noexcept {
    if constexpr (requires { information.st_mtim; }) {
        return information.st_mtim;
    } else {
        return information.st_mtimespec;
    }
}

template <class Information>
timespec accessTime(const Information& information) noexcept {
    if constexpr (requires { information.st_atim; }) {
        return information.st_atim;
    } else {
        return information.st_atimespec;
    }
}

template <class Information>
timespec changeTime(const Information& information) noexcept {
    if constexpr (requires { information.st_ctim; }) {
        return information.st_ctim;
    } else {
        return information.st_ctimespec;
    }
}

} // namespace ZQFoundation::detail

#endif
