// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_LOG_LOGCOMPOSITION_H
#define ZQFOUNDATION_LOG_LOGCOMPOSITION_H

#include "log/LogCaller.h"

namespace ZQFoundation::detail {

/// The caller that a log operation was given, not yet described.
struct CallerReference {
    enum class Kind : unsigned char { none, method, function };

    static CallerReference none() noexcept { return {}; }
    static CallerReference ofMethod(const LogCaller& self, StringView method) noexcept {
        return {Kind::method, &self, method, nullptr};
    }
    static CallerReference ofFunction(const char* name) noexcept {
        return {Kind::function, nullptr, {}, name};
    }

    Kind kind = Kind::none;
    const LogCaller* self = nullptr;
    StringView method;
    const char* functionName = nullptr;
};

/// What a line says of the condition that let it through.
struct TraceLabel {
    static TraceLabel none() noexcept { return {}; }
    static TraceLabel key(StringView key) noexcept { return {key, {}, 0}; }
    static TraceLabel value(StringView key, std::int64_t value) noexcept { return {key, "=", value}; }
    static TraceLabel threshold(StringView key, std::int64_t threshold) noexcept {
        return {key, ">=", threshold};
    }
    static TraceLabel anyKey() noexcept { return {"Trace", {}, 0}; }

    StringView text;     ///< nil: no label
    StringView relation; ///< nil: no number behind it
    std::int64_t number = 0;
};

/// "caller text", or the text alone.
NSString composedText(const CallerReference& caller, StringView text);

/// What every format operation produces once its gates have passed and its condition holds: "label: caller
/// message" without what there is none of. The format must not be nil.
NSString composedMessage(const CallerReference& caller, const TraceLabel& label, StringView format,
                         ArgumentList arguments);

} // namespace ZQFoundation::detail

#endif
