// SPDX-License-Identifier: MIT
#include "log/ZQLogFunctionCalls.h"

#include "log/LogComposition.h"
#include "log/TraceKeys.h"
#include "log/ZQLog.h"

namespace ZQFoundation {

// The writing operations call the returning ones as they stand, but are compiled into one piece with them: a
// host passes most of its trace points with the condition off, and then the way through both layers is what
// it pays.

using detail::CallerReference;
using detail::TraceLabel;

void ZQLogFunctionCalls::logFunctionName_logAlways_log(const char* functionName, bool logAlways,
                                                       StringView text) {
    if (logAlways && text) {
        ZQLog::logAlways_log(logAlways, logFunctionName_logAlways_logString(functionName, logAlways, text));
    }
}

NSString ZQLogFunctionCalls::logFunctionName_logAlways_logString(const char* functionName, bool logAlways,
                                                                 StringView text) {
    return logAlways && text ? detail::composedText(CallerReference::ofFunction(functionName), text)
                             : NSString();
}

NSString ZQLogFunctionCalls::logFunctionName_logAlways_logStringWithFormatv_arguments(
    const char* functionName, bool logAlways, StringView format, ArgumentList arguments) {
    if (!logAlways || !format) {
        return {};
    }
    return detail::composedMessage(CallerReference::ofFunction(functionName), TraceLabel::none(), format,
                                   arguments);
}

[[gnu::flatten]] void ZQLogFunctionCalls::logFunctionName_logAlways_logWithFormatv_arguments(
    const char* functionName, bool logAlways, StringView format, ArgumentList arguments) {
    if (logAlways && format) {
        ZQLog::logAlways_log(logAlways, logFunctionName_logAlways_logStringWithFormatv_arguments(
                                            functionName, logAlways, format, arguments));
    }
}

NSString ZQLogFunctionCalls::logFunctionName_logAlways_logStringForTraceKey_usingFormatv_arguments(
    const char* functionName, bool logAlways, StringView key, StringView format, ArgumentList arguments) {
    if (!logAlways || !format || !key || !detail::traceKeyHolds(key)) {
        return {};
    }
    return detail::composedMessage(CallerReference::ofFunction(functionName), TraceLabel::key(key), format,
                                   arguments);
}

[[gnu::flatten]] void ZQLogFunctionCalls::logFunctionName_logAlways_logForTraceKey_usingFormatv_arguments(
    const char* functionName, bool logAlways, StringView key, StringView format, ArgumentList arguments) {
    if (logAlways && format && key) {
        ZQLog::logAlways_log(logAlways, logFunctionName_logAlways_logStringForTraceKey_usingFormatv_arguments(
                                            functionName, logAlways, key, format, arguments));
    }
}

NSString ZQLogFunctionCalls::logFunctionName_logAlways_logStringForTraceKey_value_usingFormatv_arguments(
    const char* functionName, bool logAlways, StringView key, std::int64_t value, StringView format,
    ArgumentList arguments) {
    if (!logAlways || !format || !key || !detail::traceLevelEquals(key, value)) {
        return {};
    }
    return detail::composedMessage(CallerReference::ofFunction(functionName), TraceLabel::value(key, value),
                                   format, arguments);
}

[[gnu::flatten]] void
ZQLogFunctionCalls::logFunctionName_logAlways_logForTraceKey_value_usingFormatv_arguments(
    const char* functionName, bool logAlways, StringView key, std::int64_t value, StringView format,
    ArgumentList arguments) {
    if (logAlways && format && key) {
        ZQLog::logAlways_log(logAlways,
                             logFunctionName_logAlways_logStringForTraceKey_value_usingFormatv_arguments(
                                 functionName, logAlways, key, value, format, arguments));
    }
}

NSString ZQLogFunctionCalls::logFunctionName_logAlways_logStringForTraceKey_threshold_usingFormatv_arguments(
    const char* functionName, bool logAlways, StringView key, std::int64_t threshold, StringView format,
    ArgumentList arguments) {
    if (!logAlways || !format || !key || !detail::traceLevelReaches(key, threshold)) {
        return {};
    }
    return detail::composedMessage(CallerReference::ofFunction(functionName),
                                   TraceLabel::threshold(key, threshold), format, arguments);
}

[[gnu::flatten]] void
ZQLogFunctionCalls::logFunctionName_logAlways_logForTraceKey_threshold_usingFormatv_arguments(
    const char* functionName, bool logAlways, StringView key, std::int64_t threshold, StringView format,
    ArgumentList arguments) {
    if (logAlways && format && key) {
        ZQLog::logAlways_log(logAlways,
                             logFunctionName_logAlways_logStringForTraceKey_threshold_usingFormatv_arguments(
                                 functionName, logAlways, key, threshold, format, arguments));
    }
}

NSString ZQLogFunctionCalls::logFunctionName_logAlways_logStringForAnyTraceKeyOf_usingFormatv_arguments(
    const char* functionName, bool logAlways, const NSArray& keys, StringView format,
    ArgumentList arguments) {
    if (!logAlways || !format || !keys) {
        return {};
    }
    const NSString label = detail::labelOfAnyTraceKey(keys);
    if (!label) {
        return {};
    }
    return detail::composedMessage(CallerReference::ofFunction(functionName), TraceLabel::key(label), format,
                                   arguments);
}

[[gnu::flatten]] void
ZQLogFunctionCalls::logFunctionName_logAlways_logForAnyTraceKeyOf_usingFormatv_arguments(
    const char* functionName, bool logAlways, const NSArray& keys, StringView format,
    ArgumentList arguments) {
    if (logAlways && format && keys) {
        ZQLog::logAlways_log(logAlways,
                             logFunctionName_logAlways_logStringForAnyTraceKeyOf_usingFormatv_arguments(
                                 functionName, logAlways, keys, format, arguments));
    }
}

NSString ZQLogFunctionCalls::logFunctionName_logAlways_logStringForAllTraceKeysOf_usingFormatv_arguments(
    const char* functionName, bool logAlways, const NSArray& keys, StringView format,
    ArgumentList arguments) {
    if (!logAlways || !format || !keys) {
        return {};
    }
    const NSString label = detail::labelOfAllTraceKeys(keys);
    if (!label) {
        return {};
    }
    return detail::composedMessage(CallerReference::ofFunction(functionName), TraceLabel::key(label), format,
                                   arguments);
}

[[gnu::flatten]] void
ZQLogFunctionCalls::logFunctionName_logAlways_logForAllTraceKeysOf_usingFormatv_arguments(
    const char* functionName, bool logAlways, const NSArray& keys, StringView format,
    ArgumentList arguments) {
    if (logAlways && format && keys) {
        ZQLog::logAlways_log(logAlways,
                             logFunctionName_logAlways_logStringForAllTraceKeysOf_usingFormatv_arguments(
                                 functionName, logAlways, keys, format, arguments));
    }
}

NSString ZQLogFunctionCalls::logFunctionName_logAlways_logStringForAnyTraceKeyUsingFormatv_arguments(
    const char* functionName, bool logAlways, StringView format, ArgumentList arguments) {
    if (!logAlways || !format || !detail::anyTraceKeyHolds()) {
        return {};
    }
    return detail::composedMessage(CallerReference::ofFunction(functionName), TraceLabel::anyKey(), format,
                                   arguments);
}

[[gnu::flatten]] void ZQLogFunctionCalls::logFunctionName_logAlways_logForAnyTraceKeyUsingFormatv_arguments(
    const char* functionName, bool logAlways, StringView format, ArgumentList arguments) {
    if (logAlways && format) {
        ZQLog::logAlways_log(logAlways,
                             logFunctionName_logAlways_logStringForAnyTraceKeyUsingFormatv_arguments(
                                 functionName, logAlways, format, arguments));
    }
}

} // namespace ZQFoundation
