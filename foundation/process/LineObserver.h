// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PROCESS_LINEOBSERVER_H
#define ZQFOUNDATION_PROCESS_LINEOBSERVER_H

#include <cstdint>

#include "foundation/process/ZQLogLine.h"

namespace ZQFoundation::detail {

/// The lowest bit says whether there is an observer; `setLineObserver` changes the word.
extern std::uint64_t lineObserverSetting;

/// Whether finished lines are to be handed to `observeLine`.
inline bool isLineObserved() noexcept {
    return (__atomic_load_n(&lineObserverSetting, __ATOMIC_RELAXED) & 1) != 0;
}

/// Calls the observer, on this thread, unless this thread is in a call of it already. Takes no lock; keeps
/// `errno`, and holds a cancellation of the thread off meanwhile. Signal handlers too.
void observeLine(const ZQLogLine& line) noexcept;

/// From now on the function is called with the context; null: nothing is. Returns when no other thread is in
/// a call of an earlier observer any more, and at once when the observer itself calls it. Any thread, but no
/// signal handler.
void setLineObserver(ZQLogLineObserver observer, void* context) noexcept;

} // namespace ZQFoundation::detail

#endif
