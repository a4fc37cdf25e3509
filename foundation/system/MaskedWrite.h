// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_SYSTEM_MASKEDWRITE_H
#define ZQFOUNDATION_SYSTEM_MASKEDWRITE_H

#include <cstddef>

namespace ZQFoundation::detail::system {

/// Writes with the signals of a lost reader and of the file-size limit blocked, and discards a signal that
/// the write itself raised. Works everywhere, at the cost of two more system calls.
std::ptrdiff_t maskedWrite(int descriptor, const char* bytes, std::size_t count) noexcept;

/// Discards a blocked signal that is pending for this thread.
void discardPendingSignal(int signal) noexcept;

} // namespace ZQFoundation::detail::system

#endif
