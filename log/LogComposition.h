// SPDX-License-Identifier: MIT
// Internal: not installed.
// Declares what composes a line or a text: its label, its caller and its message.
#ifndef ZQFOUNDATION_LOG_LOGCOMPOSITION_H
#define ZQFOUNDATION_LOG_LOGCOMPOSITION_H

#include "log/LogCaller.h"
#include "log/TraceKeys.h"

namespace ZQFoundation::detail {

/// The caller that a log operation was given, not yet described.
struct CallerReference {
    enum class Kind : unsigned char { none, method, function };

    static CallerReference none() noexcept { return {}; }
    static CallerReference ofMethod(const LogCaller& self, StringView method) noexcept {
        return {Kind::method, &self, method, nullptr};
    }
    /// A length excludes what a compiler appends to the name; without one, the name is NUL-ended.
    static CallerReference ofFunction(const char* name, std::size_t length = SIZE_MAX) noexcept {
        return {Kind::function, nullptr, {}, name, length};
    }

    /// A copy that keeps the compiler from storing the original in memory.
    CallerReference byFields() const noexcept { return {kind, self, method, functionName, functionLength}; }

    Kind kind = Kind::none;
    const LogCaller* self = nullptr;
    StringView method;
    const char* functionName = nullptr;
    std::size_t functionLength = SIZE_MAX; ///< that: up to the NUL
};

/// What a line contains after its gates have passed.
struct LogMessage {
    const CallerReference& caller;
    const TraceCondition& condition;
    const TraceKeySet& keysThatAreOn; ///< of the condition `anyOf`
    StringView format;                ///< not nil
    ArgumentList arguments;
};

// "label: caller message" without the parts that are absent; or "caller text".

void writeMessage(const LogMessage& message);
NSString textOfMessage(const LogMessage& message);

/// The same, with a condition on several keys still to be evaluated. By value, so that nothing is stored in
/// memory before the gates have passed.
void writeUnlessKeysFail(CallerReference caller, TraceCondition condition, StringView format,
                         ArgumentList arguments);
NSString textUnlessKeysFail(CallerReference caller, TraceCondition condition, StringView format,
                            ArgumentList arguments);

void writeText(const CallerReference& caller, StringView text);
NSString textOfText(const CallerReference& caller, StringView text);

} // namespace ZQFoundation::detail

#endif
