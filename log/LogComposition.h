// SPDX-License-Identifier: MIT
// Internal: not installed.
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
    static CallerReference ofFunction(const char* name) noexcept { return {Kind::function, nullptr, {}, name}; }

    Kind kind = Kind::none;
    const LogCaller* self = nullptr;
    StringView method;
    const char* functionName = nullptr;
};

/// "caller text", or the text alone.
NSString composedText(const CallerReference& caller, StringView text);

/// What every format operation produces once its gates have passed: "label: caller message" without what there is
/// none of, or nil when the condition does not hold. The format must not be nil.
NSString composedMessage(const CallerReference& caller, const TraceCondition& condition, StringView format,
                         ArgumentList arguments);

} // namespace ZQFoundation::detail

#endif
