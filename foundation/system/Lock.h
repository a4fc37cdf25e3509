// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_SYSTEM_LOCK_H
#define ZQFOUNDATION_SYSTEM_LOCK_H

#include <cstdint>

#include "foundation/system/System.h"

namespace ZQFoundation::detail {

/// A lock that a forked child finds free, whoever held it in the parent. What it guards must therefore be
/// replaced by one store, never changed piecemeal. Recursive; constant-initialised and never destroyed, so it
/// works before `main` and after it. Usable with `Guard`.
class Lock {
public:
    constexpr Lock() noexcept = default;
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

    void lock() noexcept {
        const std::uint64_t self = currentThread();
        const std::uint32_t generation = system::forkGeneration() << 1;
        std::uint32_t expected = generation;
        if (!__atomic_compare_exchange_n(&word_, &expected, generation | held, false, __ATOMIC_ACQUIRE,
                                         __ATOMIC_RELAXED)) [[unlikely]] {
            if (lockSlowly(self, generation)) {
                return;
            }
        }
        __atomic_store_n(&owner_, self, __ATOMIC_RELAXED);
        depth_ = 1;
    }

    void unlock() noexcept {
        if (--depth_ != 0) {
            return;
        }
        __atomic_store_n(&owner_, 0, __ATOMIC_RELAXED);
        __atomic_store_n(&word_, system::forkGeneration() << 1, __ATOMIC_RELEASE);
        if (__atomic_load_n(&someoneSleeps_, __ATOMIC_RELAXED)) [[unlikely]] {
            wakeSleeper();
        }
    }

    /// Unlike any other living thread's number.
    static std::uint64_t currentThread() noexcept {
#if defined(__linux__) && defined(__has_builtin) && __has_builtin(__builtin_thread_pointer)
        return reinterpret_cast<std::uint64_t>(__builtin_thread_pointer());
#else
        return system::threadNumber();
#endif
    }

private:
    // The word holds the fork generation above this bit. A word of an older generation was locked by a thread
    // that the child does not have (or by the one that forked), so it counts as free.
    static constexpr std::uint32_t held = 1;

    /// True when this thread held the lock already and is now one level deeper.
    bool lockSlowly(std::uint64_t self, std::uint32_t generation) noexcept;
    /// Of a word whose state is not free: an older generation counts only when its holder is the thread that
    /// forked.
    bool isHeldIn(std::uint32_t word, std::uint32_t generation) const noexcept;
    bool relockByOwner(std::uint64_t self, std::uint32_t generation) noexcept;

    void wakeSleeper() noexcept;

    std::uint32_t word_ = 0;
    bool someoneSleeps_ = false;
    std::uint32_t depth_ = 0;
    std::uint64_t owner_ = 0;
};

/// Holds a lock for a scope, also when an exception leaves it.
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
