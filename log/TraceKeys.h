// SPDX-License-Identifier: MIT
// Internal: not installed.
// Declares trace conditions: what they ask of the trace keys, and their labels.
#ifndef ZQFOUNDATION_LOG_TRACEKEYS_H
#define ZQFOUNDATION_LOG_TRACEKEYS_H

#include <cstdint>
#include <memory>

#include "foundation/objects/NSArray.h"
#include "foundation/objects/TextBuilder.h"
#include "log/ZQTraceKey.h"

namespace ZQFoundation::detail {

/// A bit of the generation of `traceReadings`. While it is set, readers use the monitor.
inline constexpr std::uint64_t closedBit = 1;

/// Which keys of an array are on.
class TraceKeySet {
public:
    void reset(std::size_t count);
    void add(std::size_t index) noexcept { words()[index / 64] |= std::uint64_t{1} << index % 64; }
    bool holds(std::size_t index) const noexcept { return (words()[index / 64] >> index % 64 & 1) != 0; }

private:
    static constexpr std::size_t inlineWords = 4;

    std::uint64_t* words() noexcept { return more_ != nullptr ? more_.get() : inline_; }
    const std::uint64_t* words() const noexcept { return more_ != nullptr ? more_.get() : inline_; }

    std::uint64_t inline_[inlineWords] = {};
    std::unique_ptr<std::uint64_t[]> more_;
};

/// The keys of a condition on several: an array, or consecutive texts.
class TraceKeyList {
public:
    TraceKeyList() noexcept = default;
    explicit TraceKeyList(const NSArray& keys) noexcept
        : values_(keys.begin()), count_(keys.count()), isThere_(static_cast<bool>(keys)) {}
    TraceKeyList(const StringView* keys, std::size_t count) noexcept
        : texts_(keys), count_(count), isThere_(true) {}

    TraceKeyList byFields() const noexcept { return TraceKeyList(values_, texts_, count_, isThere_); }

    std::size_t count() const noexcept { return count_; }

    /// Nil for anything but a string.
    StringView operator[](std::size_t index) const noexcept {
        return texts_ != nullptr ? texts_[index] : textOf(values_[index]);
    }

    /// False for a nil array.
    explicit operator bool() const noexcept { return isThere_; }

private:
    TraceKeyList(const NSObject* values, const StringView* texts, std::size_t count, bool isThere) noexcept
        : values_(values), texts_(texts), count_(count), isThere_(isThere) {}

    static StringView textOf(const NSObject& value) noexcept;

    const NSObject* values_ = nullptr;
    const StringView* texts_ = nullptr;
    std::size_t count_ = 0;
    bool isThere_ = false;
};

/// The condition under which a line appears, as given by its caller.
struct TraceCondition {
    using Kind = TraceConditionKind;

    static TraceCondition none() noexcept { return {Kind::none, {}, 0, {}}; }
    static TraceCondition key(StringView key) noexcept { return {Kind::key, key, 0, {}}; }
    static TraceCondition value(StringView key, std::int64_t value) noexcept {
        return {Kind::value, key, value, {}};
    }
    static TraceCondition threshold(StringView key, std::int64_t threshold) noexcept {
        return {Kind::threshold, key, threshold, {}};
    }
    static TraceCondition anyOf(const TraceKeyList& keys) noexcept { return {Kind::anyOf, {}, 0, keys}; }
    static TraceCondition allOf(const TraceKeyList& keys) noexcept { return {Kind::allOf, {}, 0, keys}; }
    static TraceCondition anyKey() noexcept { return {Kind::anyKey, {}, 0, {}}; }

    /// A copy that keeps the compiler from storing the original in memory.
    TraceCondition byFields() const noexcept { return {kind, keyText, level, keys.byFields()}; }

    Kind kind;
    StringView keyText; ///< key, value, threshold
    std::int64_t level; ///< value, threshold
    TraceKeyList keys;  ///< anyOf, allOf
};

// The queries below take no lock while nobody holds the monitor of ZQLog; while another thread holds it they
// wait. The first query reads the trace keys.

/// Whether the key is on.
bool traceKeyHolds(StringView key);

/// Whether the key's level equals the value. A missing key has level 0, which is an ordinary level.
bool traceLevelEquals(StringView key, std::int64_t value);
/// Whether the key's level is at least the threshold, by the same rule.
bool traceLevelReaches(StringView key, std::int64_t threshold);

/// Whether any trace key at all is active.
bool anyTraceKeyHolds();

/// For the conditions `anyOf` and `allOf`, whether they hold, and which keys of `anyOf` are on, all at the
/// same moment; an empty list never holds, deliberately. True for any other condition.
bool severalKeysHold(const TraceCondition& condition, TraceKeySet& on);

/// Appends the label of a condition that holds: "key", "key=3", "A/C", ...; nothing for no condition. The set
/// contains the keys of `anyOf` that are on.
void appendTraceLabel(TextBuilder& out, const TraceCondition& condition, const TraceKeySet& on);

} // namespace ZQFoundation::detail

#endif
