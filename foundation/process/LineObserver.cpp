// SPDX-License-Identifier: MIT
// Calls the observer of lines, and waits for the last call of a replaced one.
// Readers take no lock. Two places for an observer and a counter of changes let them read a consistent pair
// of function and context; a list of calls in progress lets a change wait for those that began before it.
#include "foundation/process/LineObserver.h"

#include <new>

#include "foundation/system/CallerState.h"
#include "foundation/system/Lock.h"
#include "foundation/system/SignalSafeMemory.h"
#include "foundation/system/System.h"

namespace ZQFoundation::detail {

constinit std::uint64_t lineObserverSetting = 0;

namespace {

/// The current observer and the next one. The bits of the setting above the lowest two count the changes, so
/// that a reader who finds the same setting before and after has read one consistent observer.
struct Observer {
    ZQLogLineObserver function;
    void* context;
};
constinit Observer observers[2] = {};
/// Bit 0: there is an observer. Bit 1: which place. From bit 2 on: the counter.
constexpr std::uint64_t isSet = 1;
constexpr std::uint64_t isSecond = 2;
constexpr std::uint64_t oneChange = 4;

/// Held while the next observer is written; never while waiting.
constinit Lock setting;

/// A call in progress. A thread-local variable would do, but the loader may have to allocate it, in a signal
/// handler too.
struct Call {
    std::uint64_t holder;     ///< a word of `Holder`, or 0
    std::uint32_t departures; ///< the number of calls that have ended here
};

/// Blocks are added when more threads than before are in a call, and never removed.
/// Removing a block would need to know that nobody looks at it.
struct CallBlock {
    Call calls[15];
    CallBlock* next;
};
constinit CallBlock firstCalls = {};

CallBlock* nextOf(const CallBlock& block) noexcept { return __atomic_load_n(&block.next, __ATOMIC_ACQUIRE); }

/// Whether this thread is in a call of the observer.
/// The observer may log; without this check its line would call it again, and so on.
bool isInCall(std::uint64_t mine) noexcept {
    for (const CallBlock* block = &firstCalls; block != nullptr; block = nextOf(*block)) {
        for (const Call& call : block->calls) {
            if (Holder::isHeldBy(__atomic_load_n(&call.holder, __ATOMIC_RELAXED), mine)) {
                return true;
            }
        }
    }
    return false;
}

/// Takes a free call of the block. Null when all are taken.
Call* takeCallIn(CallBlock& block, std::uint64_t mine) noexcept {
    for (Call& call : block.calls) {
        std::uint64_t seen = __atomic_load_n(&call.holder, __ATOMIC_RELAXED);
        // Sequentially consistent, before the setting is read: a thread that changes the setting and then
        // finds no call here knows that any later call finds the new observer.
        // A word of an older generation was left by a thread that only the parent has.
        if ((seen == 0 || !Holder::isHeldIn(seen, mine)) &&
            __atomic_compare_exchange_n(&call.holder, &seen, mine, false, __ATOMIC_SEQ_CST,
                                        __ATOMIC_RELAXED)) {
            return &call;
        }
    }
    return nullptr;
}

/// The block after the last one, which another thread may have added meanwhile; null without memory.
CallBlock* addBlockAfter(CallBlock& last) noexcept {
    try {
        void* const memory = takeSignalSafeMemory(sizeof(CallBlock));
        auto* const fresh = new (memory) CallBlock{};
        CallBlock* present = nullptr;
        if (__atomic_compare_exchange_n(&last.next, &present, fresh, false, __ATOMIC_ACQ_REL,
                                        __ATOMIC_ACQUIRE)) {
            return fresh;
        }
        giveBackSignalSafeMemory(memory);
        return present;
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

// Without memory for a new block, the line is not observed: it was written, which matters more.
Call* takeCall(std::uint64_t mine) noexcept {
    for (CallBlock* block = &firstCalls; block != nullptr;) {
        if (Call* const call = takeCallIn(*block, mine)) {
            return call;
        }
        CallBlock* const next = nextOf(*block);
        block = next != nullptr ? next : addBlockAfter(*block);
    }
    return nullptr;
}

// In this order: a waiter that sees the holder unchanged must see the departure, if there was one.
void leaveCall(Call& call) noexcept {
    __atomic_store_n(&call.departures, call.departures + 1, __ATOMIC_RELEASE);
    __atomic_store_n(&call.holder, 0, __ATOMIC_RELEASE);
}

/// Without a function when there is no observer.
Observer presentObserver() noexcept {
    std::uint64_t present = __atomic_load_n(&lineObserverSetting, __ATOMIC_SEQ_CST);
    for (;;) {
        if ((present & isSet) == 0) {
            return {};
        }
        const Observer& place = observers[(present & isSecond) != 0 ? 1 : 0];
        const Observer observer{__atomic_load_n(&place.function, __ATOMIC_ACQUIRE),
                                __atomic_load_n(&place.context, __ATOMIC_ACQUIRE)};
        // If the setting has changed meanwhile, both places may have been rewritten, and what was read does
        // not count.
        const std::uint64_t after = __atomic_load_n(&lineObserverSetting, __ATOMIC_ACQUIRE);
        if (after == present) {
            return observer;
        }
        present = after;
    }
}

/// A forked child finds the old observer or the new one: one store makes it the current one.
void publish(const Observer& fresh) noexcept {
    const Guard guard(setting);
    const std::uint64_t before = __atomic_load_n(&lineObserverSetting, __ATOMIC_RELAXED);
    // The place that is not in use: readers of the current one are not disturbed.
    Observer& place = observers[(before & isSecond) != 0 ? 0 : 1];
    __atomic_store_n(&place.function, fresh.function, __ATOMIC_RELEASE);
    __atomic_store_n(&place.context, fresh.context, __ATOMIC_RELEASE);
    const std::uint64_t changed = (before & ~isSet) + oneChange;
    __atomic_store_n(&lineObserverSetting, (changed ^ isSecond) | (fresh.function != nullptr ? isSet : 0),
                     __ATOMIC_SEQ_CST);
}

/// Waits for the end of the call in progress now, not for that of the next one.
void waitForCallIn(const Call& call, std::uint64_t mine) noexcept {
    const std::uint32_t departures = __atomic_load_n(&call.departures, __ATOMIC_ACQUIRE);
    const std::uint64_t holder = __atomic_load_n(&call.holder, __ATOMIC_SEQ_CST);
    // Nobody is in it, or only a thread that a fork left in the parent.
    if (holder == 0 || !Holder::isHeldIn(holder, mine)) {
        return;
    }
    // A new call by the same thread has another number of departures, so that this wait ends.
    while (__atomic_load_n(&call.holder, __ATOMIC_ACQUIRE) == holder &&
           __atomic_load_n(&call.departures, __ATOMIC_ACQUIRE) == departures) {
        system::waitBriefly(&call.departures, departures);
    }
}

} // namespace

void observeLine(const ZQLogLine& line) noexcept {
    const CallerState callerState;
    const std::uint64_t mine = Holder::wordOfThisThread();
    if (isInCall(mine)) {
        return;
    }
    Call* const call = takeCall(mine);
    if (call == nullptr) {
        return;
    }
    const Observer observer = presentObserver();
    if (observer.function != nullptr) {
        observer.function(line, observer.context);
    }
    leaveCall(*call);
}

void setLineObserver(ZQLogLineObserver observer, void* context) noexcept {
    publish({observer, context});
    const std::uint64_t mine = Holder::wordOfThisThread();
    if (isInCall(mine)) { // two observers that wait for each other would wait forever
        return;
    }
    // Blocks that are added now belong to calls that find the new observer.
    for (const CallBlock* block = &firstCalls; block != nullptr; block = nextOf(*block)) {
        for (const Call& call : block->calls) {
            waitForCallIn(call, mine);
        }
    }
}

} // namespace ZQFoundation::detail
