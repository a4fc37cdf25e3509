// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_LOG_TRACETABLE_H
#define ZQFOUNDATION_LOG_TRACETABLE_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "foundation/objects/NSDictionary.h"

namespace ZQFoundation::detail {

/// What one reading says of a trace key. A key that is missing is off and has level 0.
struct TraceAnswer {
    bool isOn = false;
    std::int64_t level = 0;
};

/// The trace keys of one reading, for readers without a lock. Such a reader may still be at work when the
/// next reading but one is written over what it reads. It then gets some answer or other, which it throws
/// away, and nothing worse: tables are never destroyed, all that a lookup goes by are words that are read and
/// written whole, and every lookup ends.
///
/// Not every key is entered: a very long one is not, nor one that holds U+FFFD, as which ill-formed text
/// reads. A table that lacks one is incomplete, and its misses say nothing.
class TraceTable {
public:
    /// With room for so many keys, or for the greatest number that there is.
    static TraceTable* make(std::size_t keys);
    bool hasRoomFor(std::size_t keys) const noexcept;

    /// Writes the keys of a reading over those of an earlier one.
    void fill(const NSDictionary& values, bool anyKeyIsActive);

    bool anyKeyIsActive() const noexcept {
        return (__atomic_load_n(&state_, __ATOMIC_ACQUIRE) & anyIsActive) != 0;
    }

    /// False when the table cannot tell.
    [[nodiscard]] bool find(StringView key, TraceAnswer& answer) const noexcept {
        const std::uint64_t state = __atomic_load_n(&state_, __ATOMIC_ACQUIRE);
        if ((state & holdsKeys) == 0) {
            return true;
        }
        const bool isFound = key.form() == StringView::Form::utf16
                                 ? findUnits(key.units(), key.size(), answer)
                                 : findBytes(key.bytes(), key.size(), answer);
        return isFound || (state & isIncomplete) == 0;
    }

private:
    static constexpr std::size_t textWords = 7;
    static constexpr std::size_t longestKey = textWords * 8;
    static constexpr std::size_t shortestKey = sizeof("Trace") - 1;

    /// A cache line. The first word is 0 when the slot is free.
    struct alignas(64) Slot {
        std::uint64_t lengthAndAnswer;
        std::uint64_t text[textWords]; ///< UTF-8, and zeros up to a whole word
    };

    // Bits of `state_`.
    static constexpr std::uint64_t holdsKeys = 1;
    static constexpr std::uint64_t isIncomplete = 2;
    static constexpr std::uint64_t anyIsActive = 4;

    // Of `lengthAndAnswer`: the length, a bit, and in the upper half the level.
    static constexpr std::uint64_t lengthMask = 0xFF;
    static constexpr std::uint64_t onBit = 0x100;

    explicit TraceTable(std::size_t slots) noexcept : slotMask_(slots - 1) {}

    Slot* slots() noexcept { return reinterpret_cast<Slot*>(this + 1); }
    const Slot* slots() const noexcept { return reinterpret_cast<const Slot*>(this + 1); }

    bool findUnits(const char16_t* units, std::size_t count, TraceAnswer& answer) const noexcept;
    bool enter(const NSString& key, const TraceAnswer& answer);

    static std::size_t wordsIn(std::size_t length) noexcept { return (length + 7) / 8; }

    template <class Word>
    static Word load(const char* bytes) noexcept {
        Word word;
        std::memcpy(&word, bytes, sizeof word);
        return word;
    }

    /// From `shortestKey` to `longestKey` bytes as words, without a look beyond them.
    static void readWords(const char* bytes, std::size_t count, std::uint64_t* words) noexcept {
        const std::size_t last = wordsIn(count) - 1;
        if constexpr (std::endian::native != std::endian::little) {
            words[last] = 0;
            std::memcpy(words, bytes, count);
        } else if (count < 8) {
            words[0] = load<std::uint32_t>(bytes) | std::uint64_t{load<std::uint32_t>(bytes + count - 4)}
                                                        << 8 * (count - 4);
        } else {
            for (std::size_t i = 0; i < last; ++i) {
                words[i] = load<std::uint64_t>(bytes + 8 * i);
            }
            words[last] = load<std::uint64_t>(bytes + count - 8) >> 8 * (8 * (last + 1) - count);
        }
    }

    static std::uint64_t hashOf(const std::uint64_t* words, std::size_t length) noexcept {
        std::uint64_t hash = length;
        for (std::size_t i = 0; i < wordsIn(length); ++i) {
            hash = (hash ^ words[i]) * 0x9E3779B97F4A7C15U;
            hash ^= hash >> 32;
        }
        return hash;
    }

    static bool hasText(const Slot& slot, const std::uint64_t* words, std::size_t length) noexcept {
        for (std::size_t i = 0; i < wordsIn(length); ++i) {
            if (__atomic_load_n(&slot.text[i], __ATOMIC_ACQUIRE) != words[i]) {
                return false;
            }
        }
        return true;
    }

    bool findBytes(const char* bytes, std::size_t length, TraceAnswer& answer) const noexcept {
        if (length < shortestKey || length > longestKey) {
            return false;
        }
        std::uint64_t words[textWords];
        readWords(bytes, length, words);
        std::size_t place = hashOf(words, length);
        for (std::size_t probes = 0; probes <= slotMask_; ++probes, ++place) {
            const Slot& slot = slots()[place & slotMask_];
            const std::uint64_t found = __atomic_load_n(&slot.lengthAndAnswer, __ATOMIC_ACQUIRE);
            if (found == 0) {
                return false;
            }
            if ((found & lengthMask) == length && hasText(slot, words, length)) {
                answer = {(found & onBit) != 0, static_cast<std::int32_t>(found >> 32)};
                return true;
            }
        }
        return false;
    }

    alignas(64) const std::size_t slotMask_;
    std::uint64_t state_ = 0;
};

} // namespace ZQFoundation::detail

#endif
