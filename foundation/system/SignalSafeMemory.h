// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_SYSTEM_SIGNALSAFEMEMORY_H
#define ZQFOUNDATION_SYSTEM_SIGNALSAFEMEMORY_H

#include <cstddef>

/// Memory that a signal handler may take and give back, whatever it has interrupted: the C library's
/// allocator may be in the middle of its work then. For the log alone: what was once taken stays with the
/// process, to be taken again.
///
/// Nothing here takes a lock, so neither a handler nor a forked child meets one that somebody holds. Any
/// thread may give back what another one has taken.
namespace ZQFoundation::detail {

/// At least so many bytes, at a multiple of 16. Throws `std::bad_alloc`.
[[nodiscard]] void* takeSignalSafeMemory(std::size_t bytes);

/// Null is ignored. Keeps `errno`.
void giveBackSignalSafeMemory(void* block) noexcept;

} // namespace ZQFoundation::detail

#endif
