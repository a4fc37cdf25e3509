// SPDX-License-Identifier: MIT
#include "log/ZQLogFunctionCalls.h"

#include "log/LogComposition.h"
#include "log/ZQLog.h"

namespace ZQFoundation {

using detail::CallerReference;
using detail::TraceCondition;

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
    return detail::composedMessage(CallerReference::ofFunction(functionName), TraceCondition::always(),
                                   format, arguments);
}

void ZQLogFunctionCalls::logFunctionName_logAlways_logWithFormatv_arguments(const char* functionName,
                                                                            bool logAlways, StringView format,
                                                                            ArgumentList arguments) {
    if (logAlways && format) {
        ZQLog::logAlways_log(logAlways, logFunctionName_logAlways_logStringWithFormatv_arguments(
                                            functionName, logAlways, format, arguments));
    }
}

NSString ZQLogFunctionCalls::logFunctionName_logAlways_logStringForTraceKey_usingFormatv_arguments(
    const char* functionName, bool logAlways, StringView key, StringView format, ArgumentList arguments) {
    if (!logAlways || !format || !key) {
        return {};
    }
    return detail::composedMessage(CallerReference::ofFunction(functionName), TraceCondition::key(key),
                                   format, arguments);
}

void ZQLogFunctionCalls::logFunctionName_logAlways_logForTraceKey_usingFormatv_arguments(
    const char* functionName, bool logAlways, StringView key, StringView format, ArgumentList arguments) {
    if (logAlways && format && key) {
        ZQLog::logAlways_log(logAlways, logFunctionName_logAlways_logStringForTraceKey_usingFormatv_arguments(
                                            functionName, logAlways, key, format, arguments));
    }
}

NSString ZQLogFunctionCalls::logFunctionName_logAlways_logStringForTraceKey_value_usingFormatv_arguments(
    const char* functionName, bool logAlways, StringView key, std::int64_t value, StringView format,
    ArgumentList arguments) {
    if (!logAlways || !format || !key) {
        return {};
    }
    return detail::composedMessage(CallerReference::ofFunction(functionName),
                                   TraceCondition::keyWithValue(key, value), format, arguments);
}

void ZQLogFunctionCalls::logFunctionName_logAlways_logForTraceKey_value_usingFormatv_arguments(
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
    if (!logAlways || !format || !key) {
        return {};
    }
    return detail::composedMessage(CallerReference::ofFunction(functionName),
                                   TraceCondition::keyWithThreshold(key, threshold), format, arguments);
}

void ZQLogFunctionCalls::logFunctionName_logAlways_logForTraceKey_threshold_usingFormatv_arguments(
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
    return detail::composedMessage(CallerReference::ofFunction(functionName), TraceCondition::anyKeyOf(keys),
                                   format, arguments);
}

void ZQLogFunctionCalls::logFunctionName_logAlways_logForAnyTraceKeyOf_usingFormatv_arguments(
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
    return detail::composedMessage(CallerReference::ofFunction(functionName), TraceCondition::allKeysOf(keys),
                                   format, arguments);
}

void ZQLogFunctionCalls::logFunctionName_logAlways_logForAllTraceKeysOf_usingFormatv_arguments(
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
    if (!logAlways || !format) {
        return {};
    }
    return detail::composedMessage(CallerReference::ofFunction(functionName), TraceCondition::anyKey(),
                                   format, arguments);
}

void ZQLogFunctionCalls::logFunctionName_logAlways_logForAnyTraceKeyUsingFormatv_arguments(
    const char* functionName, bool logAlways, StringView format, ArgumentList arguments) {
    if (logAlways && format) {
        ZQLog::logAlways_log(logAlways,
                             logFunctionName_logAlways_logStringForAnyTraceKeyUsingFormatv_arguments(
                                 functionName, logAlways, format, arguments));
    }
}

} // namespace ZQFoundation
