// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_SYSTEM_PUBLISHED_H
#define ZQFOUNDATION_SYSTEM_PUBLISHED_H

#include <atomic>

#include "foundation/system/Lock.h"

namespace ZQFoundation::detail {

/// An immutable value that threads read while others replace it as a whole. The lock is held only for one
/// look or one pointer store, so a forked child always finds either the old value or the new one.
/// Constant-initialized and never destroyed.
template <class Value>
class Published {
public:
    constexpr Published() noexcept = default;
    Published(const Published&) = delete;
    Published& operator=(const Published&) = delete;

    /// The result of `look` for the current value, which is null before the first one. `look` copies what it
    /// needs: the value may be destroyed once it returns.
    template <class Look>
    auto read(const Look& look) const {
        const Guard<Lock> guard(lock_);
        return look(static_cast<const Value*>(current_.load(std::memory_order_relaxed)));
    }

    /// Takes ownership of a value made with `new`.
    void replace(const Value* fresh) {
        const Value* old = nullptr;
        {
            const Guard<Lock> guard(lock_);
            old = current_.exchange(fresh, std::memory_order_relaxed);
        }
        // Readers look only under the lock, so nobody sees the old value any longer.
        delete old;
    }

private:
    mutable Lock lock_;
    std::atomic<const Value*> current_{nullptr};
};

/// Fills an empty slot with a value made with `new`, unless another thread was first; returns the slot's
/// value from then on. Values published this way are never destroyed.
template <class Value>
const Value& publishOnce(std::atomic<const Value*>& slot, const Value* fresh) {
    const Value* present = nullptr;
    if (slot.compare_exchange_strong(present, fresh, std::memory_order_acq_rel, std::memory_order_acquire)) {
        return *fresh;
    }
    delete fresh;
    return *present;
}

} // namespace ZQFoundation::detail

#endif
