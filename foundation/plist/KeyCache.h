// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PLIST_KEYCACHE_H
#define ZQFOUNDATION_PLIST_KEYCACHE_H

#include <cstdint>
#include <cstring>

#include "foundation/objects/ShortStrings.h"
#include "foundation/text/Utf.h"

namespace ZQFoundation::detail {

/// Strings of a text, made from its units. Keys tend to repeat: the cache lets recent ones share one string.
/// A key that was evicted is simply made again.
template <class Unit>
class KeyCache {
public:
    /// For stretches of this text.
    KeyCache(const Unit* text, std::size_t count) noexcept
        : end_(text + count), isAscii_(sizeof(Unit) == 1 && asciiPrefixLength(text, count) == count) {}

    NSString makeString(const Unit* text, std::size_t count) {
        constexpr std::size_t usualDistance = 32; // from one string to the next
        if constexpr (sizeof(Unit) == 1) {
            if (!isAscii_ && asciiPrefixLength(text, count) != count) {
                return NSString(StringView(text, count));
            }
        }
        const auto rest = static_cast<std::size_t>(end_ - text);
        return shortStrings_.make(text, count, rest, rest / usualDistance + 1);
    }

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

    /// Both ends and the length distinguish most keys.
    static std::size_t slotIndex(const char* text, std::size_t count) noexcept {
        std::uint64_t head = 0;
        std::uint64_t tail = 0;
        if (count < sizeof head) {
            std::memcpy(&head, text, count);
        } else {
            std::memcpy(&head, text, sizeof head);
            std::memcpy(&tail, text + count - sizeof tail, sizeof tail);
        }
        const std::uint64_t mixed = (head ^ (tail << 7 | tail >> 57) ^ count) * 0x9E3779B97F4A7C15U;
        return static_cast<std::size_t>(mixed >> (64 - slotBits));
    }

    const Unit* end_;
    bool isAscii_; ///< all of the text
    ShortStrings shortStrings_;
    NSString slots_[sizeof(Unit) == 1 ? std::size_t{1} << slotBits : 1];
};

} // namespace ZQFoundation::detail

#endif
