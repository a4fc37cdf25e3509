// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_LOG_TRACEKEYS_H
#define ZQFOUNDATION_LOG_TRACEKEYS_H

#include "foundation/objects/NSArray.h"
#include "foundation/objects/TextBuilder.h"

namespace ZQFoundation::detail {

/// When a line is to appear.
struct TraceCondition {
    enum class Kind : unsigned char { always, key, value, threshold, anyOf, allOf, anyKey };

    static TraceCondition always() noexcept { return {Kind::always, {}, nullptr, 0}; }
    static TraceCondition key(StringView name) noexcept { return {Kind::key, name, nullptr, 0}; }
    static TraceCondition keyWithValue(StringView name, std::int64_t value) noexcept {
        return {Kind::value, name, nullptr, value};
    }
    static TraceCondition keyWithThreshold(StringView name, std::int64_t threshold) noexcept {
        return {Kind::threshold, name, nullptr, threshold};
    }
    static TraceCondition anyKeyOf(const NSArray& names) noexcept { return {Kind::anyOf, {}, &names, 0}; }
    static TraceCondition allKeysOf(const NSArray& names) noexcept { return {Kind::allOf, {}, &names, 0}; }
    static TraceCondition anyKey() noexcept { return {Kind::anyKey, {}, nullptr, 0}; }

    Kind kind;
    StringView name;
    const NSArray* names;
    std::int64_t number; ///< the value or the threshold
};

/// Judges the condition under the monitor of ZQLog, reading the trace keys first if need be. Those of several keys
/// write their label on the way, so that it names what was true at that moment; what they leave in `label` when
/// they do not hold means nothing.
bool traceConditionHolds(const TraceCondition& condition, TextBuilder& label);

} // namespace ZQFoundation::detail

#endif
