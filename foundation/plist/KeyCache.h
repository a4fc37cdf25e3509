// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PLIST_KEYCACHE_H
#define ZQFOUNDATION_PLIST_KEYCACHE_H

#include <cstdint>
#include <cstring>

#include "foundation/objects/NSString.h"

namespace ZQFoundation::detail {

/// Strings of a text, made from its units. Keys tend to repeat: the cache lets recent ones share one string.
/// A key that was evicted is simply made again.
template <class Unit>
class KeyCache {
public:
    /// `isAscii`: the whole text is known to hold nothing above U+007F.
    explicit KeyCache(bool isAscii) noexcept : isAscii_(isAscii) {}

    NSString makeString(const Unit* text, std::size_t count) const { return NSString(view(text, count)); }

    NSString makeKey(const Unit* text, std::size_t count) {
        if constexpr (sizeof(Unit) > 1) {
            return makeString(text, count);
        } else {
            if (count == 0 || count > maxKeptLength) {
                return makeString(text, count);
            }
            NSString& slot = slots_[slotIndex(text, count)];
            const StringView kept(slot);
            // Only ASCII strings are held as bytes, so equal bytes mean equal texts.
            if (kept.form() != StringView::Form::ascii || kept.size() != count ||
                std::memcmp(kept.bytes(), text, count) != 0) {
                slot = makeString(text, count);
            }
            return slot;
        }
    }

private:
    static constexpr std::size_t maxKeptLength = 64;
    static constexpr unsigned slotBits = 8;

    StringView view(const Unit* text, std::size_t count) const noexcept {
        if constexpr (sizeof(Unit) == 1) {
            if (isAscii_) {
                return StringView::ascii(text, count);
            }
        }
        return StringView(text, count);
    }

    /// Both ends and the length distinguish most keys.
    static std::size_t slotIndex(const char* text, std::size_t count) noexcept {
        std::uint64_t head = 0;
        std::uint64_t tail = 0;
        const std::size_t taken = count < sizeof head ? count : sizeof head;
        std::memcpy(&head, text, taken);
        std::memcpy(&tail, text + count - taken, taken);
        const std::uint64_t mixed = (head ^ (tail << 7 | tail >> 57) ^ count) * 0x9E3779B97F4A7C15U;
        return static_cast<std::size_t>(mixed >> (64 - slotBits));
    }

    bool isAscii_;
    NSString slots_[sizeof(Unit) == 1 ? std::size_t{1} << slotBits : 1];
};

} // namespace ZQFoundation::detail

#endif
