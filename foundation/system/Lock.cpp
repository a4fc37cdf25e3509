// SPDX-License-Identifier: MIT
#include "foundation/system/Lock.h"

namespace ZQFoundation::detail {

namespace {

// A holder needs some tens of nanoseconds; sleeping and waking take microseconds.
constexpr int roundsBeforeSleep = 60;
constexpr int longestPause = 32;

void pauseBriefly(int times) noexcept {
    for (int i = 0; i < times; ++i) {
#if defined(__x86_64__) || defined(__i386__)
        __builtin_ia32_pause();
#elif defined(__aarch64__)
        asm volatile("yield");
#endif
    }
}

} // namespace

bool Lock::relockByOwner(std::uint64_t self, std::uint32_t generation) noexcept {
    const std::uint32_t seen = __atomic_load_n(&word_, __ATOMIC_RELAXED);
    if ((seen & stateMask) == 0 || __atomic_load_n(&owner_, __ATOMIC_RELAXED) != self) {
        return false;
    }
    if ((seen & ~stateMask) != generation) {
        if (!system::isForkingThread(self)) {
            return false;
        }
        // It held the lock while it forked, and still does.
        __atomic_store_n(&word_, generation | held, __ATOMIC_RELAXED);
    }
    ++depth_;
    return true;
}

bool Lock::lockSlowly(std::uint64_t self, std::uint32_t generation) noexcept {
    if (relockByOwner(self, generation)) {
        return true;
    }
    std::uint32_t wanted = generation | held;
    int pause = 1;
    for (int rounds = 0;; ++rounds) {
        std::uint32_t seen = __atomic_load_n(&word_, __ATOMIC_RELAXED);
        const bool isFree = (seen & stateMask) == 0 || !isHeldIn(seen, generation);
        if (isFree) {
            if (__atomic_compare_exchange_n(&word_, &seen, wanted, false, __ATOMIC_ACQUIRE,
                                            __ATOMIC_RELAXED)) {
                return false;
            }
        } else if (rounds < roundsBeforeSleep) {
            pauseBriefly(pause);
            pause = pause < longestPause ? pause * 2 : longestPause;
        } else if (seen == (generation | heldWithWaiters) ||
                   __atomic_compare_exchange_n(&word_, &seen, generation | heldWithWaiters, false,
                                               __ATOMIC_RELAXED, __ATOMIC_RELAXED)) {
            system::waitWhileEqual(&word_, generation | heldWithWaiters);
            wanted = generation | heldWithWaiters; // others may sleep too
        }
    }
}

bool Lock::isHeldIn(std::uint32_t word, std::uint32_t generation) const noexcept {
    return (word & ~stateMask) == generation ||
           system::isForkingThread(__atomic_load_n(&owner_, __ATOMIC_RELAXED));
}

} // namespace ZQFoundation::detail
