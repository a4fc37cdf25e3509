// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_SYSTEM_LOCK_H
#define ZQFOUNDATION_SYSTEM_LOCK_H

#include <cstdint>

#include "foundation/system/System.h"

namespace ZQFoundation::detail {

/// Words that identify which thread of which process holds something: one store takes it and names its
/// holder.
///
/// Threads are identified by an address, of 48 bits and divisible by 8; below it are the low bits of the fork
/// generation. A word of another generation was written by a thread that this process does not have, or by
/// the one that forked.
struct Holder {
    static constexpr int generationBits = 64 - (48 - 3);
    static constexpr std::uint64_t generationMask = (std::uint64_t{1} << generationBits) - 1;

    /// The thread's number, which no other live thread has.
    static std::uint64_t currentThread() noexcept {
#if defined(__linux__) && defined(__has_builtin) && __has_builtin(__builtin_thread_pointer)
        return reinterpret_cast<std::uint64_t>(__builtin_thread_pointer());
#else
        return system::threadNumber();
#endif
    }

    static std::uint64_t wordOf(std::uint64_t thread) noexcept { return thread >> 3 << generationBits; }
    static std::uint64_t wordOfThisThread() noexcept {
        return wordOf(currentThread()) | (system::forkGeneration() & generationMask);
    }
    static bool isSameThread(std::uint64_t word, std::uint64_t other) noexcept {
        return (word ^ other) >> generationBits == 0;
    }

    /// Whether the word belongs to a thread of this process, of which `mine` is one; not for 0.
    static bool isHeldIn(std::uint64_t word, std::uint64_t mine) noexcept {
        return (word & generationMask) == (mine & generationMask) ||
               isSameThread(word, wordOf(system::forkingThread()));
    }
    /// Whether the word belongs to the thread whose word is `mine`; false for 0.
    static bool isHeldBy(std::uint64_t word, std::uint64_t mine) noexcept {
        return word != 0 && isSameThread(word, mine) && isHeldIn(word, mine);
    }
};

/// A lock that a forked child finds free, whoever held it in the parent. What it guards must therefore be
/// replaced by one store, never changed piecemeal. Recursive, also for a signal handler that interrupts the
/// holder at any instruction; constant-initialized and never destroyed, so it works before `main` and after
/// it. Usable with `Guard`.
class Lock {
public:
    constexpr Lock() noexcept = default;
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

    void lock() noexcept {
        const std::uint64_t mine = Holder::wordOfThisThread();
        std::uint64_t expected = 0;
        if (!__atomic_compare_exchange_n(&word_, &expected, mine, false, __ATOMIC_ACQUIRE, __ATOMIC_RELAXED))
            [[unlikely]] {
            lockSlowly(mine);
        }
    }

    void unlock() noexcept {
        if (furtherLevels_ != 0) [[unlikely]] {
            --furtherLevels_;
            return;
        }
        __atomic_store_n(&word_, 0, __ATOMIC_RELEASE);
        if (__atomic_load_n(&someoneSleeps_, __ATOMIC_RELAXED)) [[unlikely]] {
            wakeSleeper();
        }
    }

    /// Only for the thread's own information: about any other thread the result may be out of date.
    bool isHeldByThisThread() const noexcept;

    /// Only for the holder: whether it has locked it more than once.
    bool isHeldAgain() const noexcept { return furtherLevels_ != 0; }

private:
    void lockSlowly(std::uint64_t mine) noexcept;
    bool relockByHolder(std::uint64_t mine) noexcept;
    void sleepWhile(std::uint64_t seen) noexcept;
    void wakeSleeper() noexcept;

    std::uint64_t word_ = 0; ///< of its holder, or 0
    /// How many more times the holder has locked it: 0 whenever it is free, and written only by the holder.
    std::uint32_t furtherLevels_ = 0;
    bool someoneSleeps_ = false;
};

/// Holds a lock for a scope, also when it is left by an exception.
template <class LockType>
class [[nodiscard]] Guard {
public:
    explicit Guard(LockType& lock) noexcept : lock_(lock) { lock_.lock(); }
    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;
    ~Guard() { lock_.unlock(); }

private:
    LockType& lock_;
};

} // namespace ZQFoundation::detail

#endif
