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
    if ((seen & held) == 0 || __atomic_load_n(&owner_, __ATOMIC_RELAXED) != self) {
        return false;
    }
    if ((seen & ~held) != generation) {
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
    bool hasSlept = false;
    int pause = 1;
    for (int rounds = 0;; ++rounds) {
        std::uint32_t seen = __atomic_load_n(&word_, __ATOMIC_RELAXED);
        if ((seen & held) == 0 || !isHeldIn(seen, generation)) {
            if (__atomic_compare_exchange_n(&word_, &seen, generation | held, false, __ATOMIC_ACQUIRE,
                                            __ATOMIC_RELAXED)) {
                break;
            }
        } else if (rounds < roundsBeforeSleep) {
            pauseBriefly(pause);
            pause = pause < longestPause ? pause * 2 : longestPause;
        } else {
            __atomic_store_n(&someoneSleeps_, true, __ATOMIC_RELAXED);
            system::waitBriefly(&word_, seen);
            hasSlept = true;
        }
    }
    if (hasSlept) { // perhaps not alone: the next unlock wakes another
        __atomic_store_n(&someoneSleeps_, true, __ATOMIC_RELAXED);
    }
    return false;
}

bool Lock::isHeldIn(std::uint32_t word, std::uint32_t generation) const noexcept {
    return (word & ~held) == generation ||
           system::isForkingThread(__atomic_load_n(&owner_, __ATOMIC_RELAXED));
}

// An unlock that reads the flag a moment before a thread sets it wakes nobody. Sleeps are brief for that
// reason, and unlocking needs no second locked instruction.
void Lock::wakeSleeper() noexcept {
    __atomic_store_n(&someoneSleeps_, false, __ATOMIC_RELAXED);
    system::wakeOne(&word_);
}

} // namespace ZQFoundation::detail
