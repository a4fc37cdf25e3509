// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_SYSTEM_WHOLEWRITE_H
#define ZQFOUNDATION_SYSTEM_WHOLEWRITE_H

#include <cerrno>
#include <cstddef>

#include <poll.h>

#include "foundation/system/System.h"

namespace ZQFoundation::detail {

/// Writes all bytes in one call, and continues where a signal, a full pipe or a full disk cut it short.
/// Raises no signal. False with `errno` if bytes are left.
inline bool writeWhole(int descriptor, const char* bytes, std::size_t count) noexcept {
    while (count != 0) {
        const std::ptrdiff_t written = system::writeWithoutSignals(descriptor, bytes, count);
        if (written > 0) {
            bytes += written;
            count -= static_cast<std::size_t>(written);
        } else if (written < 0 && errno == EAGAIN) {
            // A full pipe in non-blocking mode, which any process that shares it may have set.
            pollfd room{descriptor, POLLOUT, 0};
            if (::poll(&room, 1, -1) < 0 && errno != EINTR) {
                return false;
            }
        } else if (written == 0 || errno != EINTR) {
            // Without progress and without an error another attempt could last forever.
            return false;
        }
    }
    return true;
}

} // namespace ZQFoundation::detail

#endif
