// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_SYSTEM_SIGNALSAFEMEMORY_H
#define ZQFOUNDATION_SYSTEM_SIGNALSAFEMEMORY_H

#include <cstddef>

/// Memory that a signal handler may allocate and free, whatever it has interrupted, even the C library's
/// allocator. Only for the log: freed memory stays with the process, for reuse here.
///
/// Nothing here takes a lock, so neither a handler nor a forked child finds one held. Any thread may free
/// what another one has allocated.
namespace ZQFoundation::detail {

/// Returns at least `bytes` bytes, at a multiple of 16. Throws `std::bad_alloc`.
[[nodiscard]] void* takeSignalSafeMemory(std::size_t bytes);

/// Frees the block; null is ignored. Preserves `errno`.
void giveBackSignalSafeMemory(void* block) noexcept;

} // namespace ZQFoundation::detail

#endif
