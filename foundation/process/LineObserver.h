// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PROCESS_LINEOBSERVER_H
#define ZQFOUNDATION_PROCESS_LINEOBSERVER_H

#include <cstdint>

#include "foundation/process/ZQLogLine.h"

namespace ZQFoundation::detail {

/// The lowest bit is set if there is an observer; `setLineObserver` changes the word.
extern std::uint64_t lineObserverSetting;

/// Whether finished lines are to be passed to `observeLine`.
inline bool isLineObserved() noexcept {
    return (__atomic_load_n(&lineObserverSetting, __ATOMIC_RELAXED) & 1) != 0;
}

/// Calls the observer, on this thread, unless this thread is already in a call of it. Takes no lock,
/// preserves `errno`, and defers cancellation of the thread meanwhile. May be called from signal handlers.
void observeLine(const ZQLogLine& line) noexcept;

/// Sets the function that is called from now on, with the context; null for none. Returns when no other
/// thread is still in a call of an earlier observer, and at once when the observer itself calls it. Any
/// thread, but not from signal handlers.
void setLineObserver(ZQLogLineObserver observer, void* context) noexcept;

} // namespace ZQFoundation::detail

#endif
