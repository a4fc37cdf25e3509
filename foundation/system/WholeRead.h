// SPDX-License-Identifier: MIT
// Internal: not installed. The loop by which everything but a copy reads.
#ifndef ZQFOUNDATION_SYSTEM_WHOLEREAD_H
#define ZQFOUNDATION_SYSTEM_WHOLEREAD_H

#include <cerrno>
#include <cstddef>

#include <unistd.h>

namespace ZQFoundation::detail {

/// Reads until `count` bytes are read or the file ends, however short the individual reads are, and restarts
/// after signals. Returns the number of bytes, or -1 with `errno`. Less than `count` always means the end.
inline std::ptrdiff_t readWhole(int descriptor, void* bytes, std::size_t count) noexcept {
    std::size_t filled = 0;
    while (filled < count) {
        const ssize_t taken = ::read(descriptor, static_cast<char*>(bytes) + filled, count - filled);
        if (taken == 0) {
            break;
        }
        if (taken > 0) {
            filled += static_cast<std::size_t>(taken);
        } else if (errno != EINTR) {
            return -1;
        }
    }
    return static_cast<std::ptrdiff_t>(filled);
}

} // namespace ZQFoundation::detail

#endif
