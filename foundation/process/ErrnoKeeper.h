// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PROCESS_ERRNOKEEPER_H
#define ZQFOUNDATION_PROCESS_ERRNOKEEPER_H

#include <cerrno>

namespace ZQFoundation::detail {

/// Gives the caller back the `errno` it had, however the scope is left.
class [[nodiscard]] ErrnoKeeper {
public:
    ErrnoKeeper() noexcept : saved_(errno) {}
    ErrnoKeeper(const ErrnoKeeper&) = delete;
    ErrnoKeeper& operator=(const ErrnoKeeper&) = delete;
    ~ErrnoKeeper() { errno = saved_; }

private:
    int saved_;
};

} // namespace ZQFoundation::detail

#endif
