// SPDX-License-Identifier: MIT
// Internal: not installed.
// Defines the gates and the verbs that all named log operations share.
#ifndef ZQFOUNDATION_LOG_LOGOPERATION_H
#define ZQFOUNDATION_LOG_LOGOPERATION_H

#include "log/LogComposition.h"
#include "log/LogGates.h"

/// What the named log operations share: each of them names a caller and a condition and calls one of these.
/// They are inlined there, so that a call that a gate stops goes through one function with the condition
/// known.
namespace ZQFoundation::detail {

/// All gates, the trace condition last, except a condition on several keys, which is evaluated later, where
/// the keys that are on are kept for the line. Nothing here needs memory, so a call that is stopped costs a
/// lookup of the key and little else.
[[gnu::always_inline]] inline bool passes(bool logAlways, const TraceCondition& condition,
                                          StringView format) {
    const StringView key = condition.keyText;
    switch (condition.kind) {
    case TraceCondition::Kind::none:
        return passesGates(logAlways, format);
    case TraceCondition::Kind::key:
        return passesGates(logAlways, format, key) && traceKeyHolds(key);
    case TraceCondition::Kind::value:
        return passesGates(logAlways, format, key) && traceLevelEquals(key, condition.level);
    case TraceCondition::Kind::threshold:
        return passesGates(logAlways, format, key) && traceLevelReaches(key, condition.level);
    case TraceCondition::Kind::anyOf:
    case TraceCondition::Kind::allOf:
        return passesGates(logAlways, format, condition.keys);
    case TraceCondition::Kind::anyKey:
        return passesGates(logAlways, format) && anyTraceKeyHolds();
    }
    return false;
}

/// Writes the line.
[[gnu::always_inline]] inline void logMessage(const CallerReference& caller, bool logAlways,
                                              const TraceCondition& condition, StringView format,
                                              ArgumentList arguments) {
    if (passes(logAlways, condition, format)) {
        writeUnlessKeysFail(caller.byFields(), condition.byFields(), format, arguments);
    }
}

/// Returns the same text, or nil.
[[gnu::always_inline]] inline NSString logMessageString(const CallerReference& caller, bool logAlways,
                                                        const TraceCondition& condition, StringView format,
                                                        ArgumentList arguments) {
    return passes(logAlways, condition, format)
               ? textUnlessKeysFail(caller.byFields(), condition.byFields(), format, arguments)
               : NSString();
}

/// Writes a finished text after its caller.
inline void logText(const CallerReference& caller, bool logAlways, StringView text) {
    if (passesGates(logAlways, text)) {
        writeText(caller, text);
    }
}

/// Returns the same text, or nil.
inline NSString logTextString(const CallerReference& caller, bool logAlways, StringView text) {
    return passesGates(logAlways, text) ? textOfText(caller, text) : NSString();
}

} // namespace ZQFoundation::detail

#endif
