// SPDX-License-Identifier: MIT
// Internal: not installed.
// Declares the table of the trace keys of one reading, which is searched without a lock.
#ifndef ZQFOUNDATION_LOG_TRACETABLE_H
#define ZQFOUNDATION_LOG_TRACETABLE_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "foundation/objects/NSDictionary.h"

namespace ZQFoundation::detail {

/// The state of a trace key in a reading, in one word: a bit says whether the key is on, the upper half is
/// its level. 0 for a key that is missing, which is off and has level 0.
class TraceAnswer {
public:
    constexpr TraceAnswer() noexcept = default;
    constexpr explicit TraceAnswer(std::uint64_t word) noexcept : word_(word) {}
    constexpr TraceAnswer(bool isOn, std::int64_t level) noexcept
        : word_(std::uint64_t{static_cast<std::uint32_t>(level)} << 32 | (isOn ? onBit : 0)) {}

    /// The answer of a table that does not know.
    static constexpr TraceAnswer unsure() noexcept { return TraceAnswer(unsureWord); }

    constexpr bool isSure() const noexcept { return word_ != unsureWord; }
    constexpr bool isOn() const noexcept { return (word_ & onBit) != 0; }
    constexpr std::int64_t level() const noexcept { return static_cast<std::int32_t>(word_ >> 32); }
    constexpr std::uint64_t word() const noexcept { return word_; }

private:
    static constexpr std::uint64_t onBit = 0x100;
    static constexpr std::uint64_t unsureWord = 1; // not the length of any key

    std::uint64_t word_ = 0;
};

/// The trace keys of one reading, for readers without a lock. Such a reader may still be running when the
/// next reading but one overwrites the table that it reads. It then gets an arbitrary answer, which it
/// discards, and nothing worse happens: tables are never destroyed, a lookup uses only words that are read
/// and written whole, and every lookup ends.
///
/// Not every key is entered: a very long one is not, nor one that contains U+FFFD, which ill-formed text
/// becomes. A table that lacks one is incomplete, and its misses mean nothing.
class TraceTable {
public:
    /// Makes a table with room for `keys` keys, or for the max number if that is lower. The smaller table
    /// that it replaces, if any, stays with it: readers may be in that one forever.
    static TraceTable* make(std::size_t keys, const TraceTable* replaced);
    /// Whether the keys fit without a new table: at most half of the slots are taken.
    bool hasRoomFor(std::size_t keys) const noexcept;

    /// Writes the keys of a reading over those of an earlier one.
    void fill(const NSDictionary& values, bool anyKeyIsActive);

    bool anyKeyIsActive() const noexcept {
        return (__atomic_load_n(&state_, __ATOMIC_ACQUIRE) & anyIsActive) != 0;
    }

    TraceAnswer find(StringView key) const noexcept {
        const std::uint64_t state = __atomic_load_n(&state_, __ATOMIC_ACQUIRE);
        if ((state & holdsKeys) == 0) {
            return TraceAnswer();
        }
        const TraceAnswer found = key.form() == StringView::Form::utf16 ? findUnits(key.units(), key.size())
                                                                        : findBytes(key.bytes(), key.size());
        return found.word() != 0 || (state & isIncomplete) == 0 ? found : TraceAnswer::unsure();
    }

    /// Whether a first check shows that the key is missing, as it does for most missing keys; otherwise use
    /// `find`.
    [[gnu::always_inline]] inline bool surelyLacks(StringView key) const noexcept {
        const std::uint64_t state = __atomic_load_n(&state_, __ATOMIC_ACQUIRE);
        if ((state & (holdsKeys | isIncomplete)) != holdsKeys) {
            return state == 0;
        }
        if (key.form() == StringView::Form::utf16 || !isEntered(key.size())) {
            return false;
        }
        const Slot& slot = slots()[hashOf(key.bytes(), key.size()) & slotMask_];
        return __atomic_load_n(&slot.word, __ATOMIC_ACQUIRE) == 0;
    }

private:
    static constexpr std::size_t textWords = 7;
    static constexpr std::size_t maxKeyBytes = textWords * 8;
    static constexpr std::size_t minKeyBytes = sizeof("Trace") - 1;

    /// A cache line. The first word is 0 when the slot is free; else it contains the answer and, in its lower
    /// half, a part of the hash and the length.
    struct alignas(64) Slot {
        std::uint64_t word;
        std::uint64_t text[textWords]; ///< UTF-8, and zeros up to a whole word
    };

    // Bits of `state_`.
    static constexpr std::uint64_t holdsKeys = 1;
    static constexpr std::uint64_t isIncomplete = 2;
    static constexpr std::uint64_t anyIsActive = 4;

    // The part of a slot's word that identifies the key.
    static constexpr std::uint64_t lengthMask = 0xFF;
    static constexpr std::uint64_t hashMask = 0xFFFFFE00;
    static std::uint64_t nameOf(std::uint64_t hash, std::size_t length) noexcept {
        return (hash >> 32 & hashMask) | length;
    }

    TraceTable(std::size_t slots, const TraceTable* replaced) noexcept
        : slotMask_(slots - 1), replaced_(replaced) {}

    Slot* slots() noexcept { return reinterpret_cast<Slot*>(this + 1); }
    const Slot* slots() const noexcept { return reinterpret_cast<const Slot*>(this + 1); }

    TraceAnswer findUnits(const char16_t* units, std::size_t count) const noexcept;
    bool enter(const NSString& key, TraceAnswer answer);

    static std::size_t wordsIn(std::size_t length) noexcept { return (length + 7) / 8; }

    template <class Word>
    static Word load(const char* bytes) noexcept {
        Word word;
        std::memcpy(&word, bytes, sizeof word);
        return word;
    }

    /// The word of that index of a text of `minKeyBytes` to `maxKeyBytes` bytes, without reading beyond it.
    static std::uint64_t wordOf(const char* bytes, std::size_t count, std::size_t index) noexcept {
        if (count >= 8 * index + 8) {
            return load<std::uint64_t>(bytes + 8 * index);
        }
        if constexpr (std::endian::native != std::endian::little) {
            std::uint64_t word = 0;
            std::memcpy(&word, bytes + 8 * index, count - 8 * index);
            return word;
        } else if (count < 8) {
            return load<std::uint32_t>(bytes) | std::uint64_t{load<std::uint32_t>(bytes + count - 4)}
                                                    << 8 * (count - 4);
        } else {
            return load<std::uint64_t>(bytes + count - 8) >> 8 * (8 * index + 8 - count);
        }
    }

    /// Word by word, as `enter` stores them: the table may be overwritten meanwhile, and then no word is
    /// torn.
    static bool hasText(const Slot& slot, const char* bytes, std::size_t length) noexcept {
        std::size_t i = 0;
        while (i < wordsIn(length) &&
               __atomic_load_n(&slot.text[i], __ATOMIC_ACQUIRE) == wordOf(bytes, length, i)) {
            ++i;
        }
        return i == wordsIn(length);
    }

    /// Of at least `minKeyBytes` bytes. The two ends are mixed in parallel; few keys are longer than both.
    static std::uint64_t hashOf(const char* bytes, std::size_t length) noexcept {
        constexpr std::uint64_t oddNumbers[] = {0x9E3779B97F4A7C15U, 0xC2B2AE3D27D4EB4FU};
        std::uint64_t start;
        std::uint64_t end;
        if (length >= 8) [[likely]] {
            start = load<std::uint64_t>(bytes);
            end = load<std::uint64_t>(bytes + length - 8);
            for (std::size_t i = 8; i + 8 < length; i += 8) {
                start = (start ^ start >> 32) * oddNumbers[1] + load<std::uint64_t>(bytes + i);
            }
        } else {
            start = load<std::uint32_t>(bytes);
            end = load<std::uint32_t>(bytes + length - 4);
        }
        const std::uint64_t hash = (start + length) * oddNumbers[0] ^ std::rotl(end * oddNumbers[1], 29);
        return hash ^ hash >> 32;
    }

    static bool isEntered(std::size_t length) noexcept {
        return length - minKeyBytes <= maxKeyBytes - minKeyBytes;
    }

    TraceAnswer findBytes(const char* bytes, std::size_t length) const noexcept {
        if (!isEntered(length)) {
            return TraceAnswer();
        }
        const std::uint64_t hash = hashOf(bytes, length);
        const std::uint64_t name = nameOf(hash, length);
        for (std::size_t place = hash, last = hash + slotMask_;; ++place) {
            const Slot& slot = slots()[place & slotMask_];
            const std::uint64_t word = __atomic_load_n(&slot.word, __ATOMIC_ACQUIRE);
            if (word == 0) [[likely]] {
                return TraceAnswer();
            }
            if ((word & (hashMask | lengthMask)) == name && hasText(slot, bytes, length)) {
                return TraceAnswer(word);
            }
            if (place == last) [[unlikely]] { // only while the table is being written
                return TraceAnswer();
            }
        }
    }

    alignas(64) const std::size_t slotMask_;
    std::uint64_t state_ = 0;
    [[maybe_unused]] const TraceTable* const replaced_;
};

} // namespace ZQFoundation::detail

#endif
