// SPDX-License-Identifier: MIT
// Locking when the lock is already held: by this thread, by another one, or by one that a fork left in the
// parent.
// The fast paths, one compare-exchange to lock and two plain accesses to unlock, are in the header. Neither
// memory nor a thread-local variable is needed anywhere, so all of this also works in a signal handler.
#include "foundation/system/Lock.h"

#include <bit>

namespace ZQFoundation::detail {

namespace {

// A holder needs some tens of nanoseconds; sleeping and waking take microseconds.
constexpr int roundsBeforeSleep = 60;
constexpr int maxPause = 32;

/// Tells the processor that this is a spin loop, which leaves its other half to the holder. The caller
/// doubles the number of times, so that many waiters do not keep the cache line from the holder.
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

bool Lock::isHeldByThisThread() const noexcept {
    return Holder::isHeldBy(__atomic_load_n(&word_, __ATOMIC_RELAXED), Holder::wordOfThisThread());
}

/// Whether this thread held the lock already and is now one level deeper.
bool Lock::relockByHolder(std::uint64_t mine) noexcept {
    if (!isHeldByThisThread()) {
        return false;
    }
    // Atomic only for threads that look at the word to see whether it is theirs; nobody else writes it now.
    __atomic_store_n(&word_, mine,
                     __ATOMIC_RELAXED); // of the new generation, if it held the lock while it forked
    ++furtherLevels_;
    return true;
}

/// Three cases end here: the thread holds the lock already, another thread holds it, or the word belongs to
/// a thread that a fork left in the parent. The third is taken over as if the lock were free: what it guards
/// is replaced by one store, so that it is whole whenever the fork happened.
void Lock::lockSlowly(std::uint64_t mine) noexcept {
    if (relockByHolder(mine)) {
        return;
    }
    bool hasSlept = false;
    std::uint64_t seen = 0;
    for (int rounds = 0, pause = 1;; ++rounds) {
        seen = __atomic_load_n(&word_, __ATOMIC_RELAXED);
        // A word of a thread that this process does not have is as free as 0. The exchange still expects
        // that very word, so that of two threads of a child only one takes over.
        if (seen == 0 || !Holder::isHeldIn(seen, mine)) {
            if (__atomic_compare_exchange_n(&word_, &seen, mine, false, __ATOMIC_ACQUIRE, __ATOMIC_RELAXED)) {
                break;
            }
        } else if (rounds < roundsBeforeSleep) {
            pauseBriefly(pause);
            pause = pause < maxPause ? pause * 2 : maxPause;
        } else {
            sleepWhile(seen);
            hasSlept = true;
        }
    }
    if (seen != 0) { // held at a fork, perhaps on several levels
        furtherLevels_ = 0;
    }
    if (hasSlept) { // there may be other sleepers: the next unlock wakes another
        __atomic_store_n(&someoneSleeps_, true, __ATOMIC_RELAXED);
    }
}

namespace {

/// The half of the word that contains the generation. For a held lock it is 0 only once in very many forks,
/// and then sleeps end at once.
const std::uint32_t* lowHalf(const std::uint64_t* word) noexcept {
    return reinterpret_cast<const std::uint32_t*>(word) + (std::endian::native == std::endian::big ? 1 : 0);
}

} // namespace

void Lock::sleepWhile(std::uint64_t seen) noexcept {
    __atomic_store_n(&someoneSleeps_, true, __ATOMIC_RELAXED);
    system::waitBriefly(lowHalf(&word_), static_cast<std::uint32_t>(seen));
}

// An unlock that reads the flag just before a thread sets it wakes nobody. That is why sleeps are brief, and
// unlocking needs no second locked instruction.
// The flag is cleared first: a sleeper that wakes sets it again for those that are left (`lockSlowly`).
void Lock::wakeSleeper() noexcept {
    __atomic_store_n(&someoneSleeps_, false, __ATOMIC_RELAXED);
    system::wakeOne(lowHalf(&word_));
}

} // namespace ZQFoundation::detail
