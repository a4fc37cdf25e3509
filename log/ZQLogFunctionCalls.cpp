// SPDX-License-Identifier: MIT
// The log operations that name a function, for started argument lists.
#include "log/ZQLogFunctionCalls.h"

#include "log/LogOperation.h"

namespace ZQFoundation {

using detail::CallerReference;
using detail::TraceCondition;
using detail::TraceKeyList;

void ZQLogFunctionCalls::logFunctionName_logAlways_log(const char* functionName, bool logAlways,
                                                       StringView text) {
    detail::logText(CallerReference::ofFunction(functionName), logAlways, text);
}

NSString ZQLogFunctionCalls::logFunctionName_logAlways_logString(const char* functionName, bool logAlways,
                                                                 StringView text) {
    return detail::logTextString(CallerReference::ofFunction(functionName), logAlways, text);
}

NSString ZQLogFunctionCalls::logFunctionName_logAlways_logStringWithFormatv_arguments(
    const char* functionName, bool logAlways, StringView format, ArgumentList arguments) {
    return detail::logMessageString(CallerReference::ofFunction(functionName), logAlways,
                                    TraceCondition::none(), format, arguments);
}

void ZQLogFunctionCalls::logFunctionName_logAlways_logWithFormatv_arguments(const char* functionName,
                                                                            bool logAlways, StringView format,
                                                                            ArgumentList arguments) {
    detail::logMessage(CallerReference::ofFunction(functionName), logAlways, TraceCondition::none(), format,
                       arguments);
}

NSString ZQLogFunctionCalls::logFunctionName_logAlways_logStringForTraceKey_usingFormatv_arguments(
    const char* functionName, bool logAlways, StringView key, StringView format, ArgumentList arguments) {
    return detail::logMessageString(CallerReference::ofFunction(functionName), logAlways,
                                    TraceCondition::key(key), format, arguments);
}

void ZQLogFunctionCalls::logFunctionName_logAlways_logForTraceKey_usingFormatv_arguments(
    const char* functionName, bool logAlways, StringView key, StringView format, ArgumentList arguments) {
    detail::logMessage(CallerReference::ofFunction(functionName), logAlways, TraceCondition::key(key), format,
                       arguments);
}

NSString ZQLogFunctionCalls::logFunctionName_logAlways_logStringForTraceKey_value_usingFormatv_arguments(
    const char* functionName, bool logAlways, StringView key, std::int64_t value, StringView format,
    ArgumentList arguments) {
    return detail::logMessageString(CallerReference::ofFunction(functionName), logAlways,
                                    TraceCondition::value(key, value), format, arguments);
}

void ZQLogFunctionCalls::logFunctionName_logAlways_logForTraceKey_value_usingFormatv_arguments(
    const char* functionName, bool logAlways, StringView key, std::int64_t value, StringView format,
    ArgumentList arguments) {
    detail::logMessage(CallerReference::ofFunction(functionName), logAlways,
                       TraceCondition::value(key, value), format, arguments);
}

NSString ZQLogFunctionCalls::logFunctionName_logAlways_logStringForTraceKey_threshold_usingFormatv_arguments(
    const char* functionName, bool logAlways, StringView key, std::int64_t threshold, StringView format,
    ArgumentList arguments) {
    return detail::logMessageString(CallerReference::ofFunction(functionName), logAlways,
                                    TraceCondition::threshold(key, threshold), format, arguments);
}

void ZQLogFunctionCalls::logFunctionName_logAlways_logForTraceKey_threshold_usingFormatv_arguments(
    const char* functionName, bool logAlways, StringView key, std::int64_t threshold, StringView format,
    ArgumentList arguments) {
    detail::logMessage(CallerReference::ofFunction(functionName), logAlways,
                       TraceCondition::threshold(key, threshold), format, arguments);
}

NSString ZQLogFunctionCalls::logFunctionName_logAlways_logStringForAnyTraceKeyOf_usingFormatv_arguments(
    const char* functionName, bool logAlways, const NSArray& keys, StringView format,
    ArgumentList arguments) {
    return detail::logMessageString(CallerReference::ofFunction(functionName), logAlways,
                                    TraceCondition::anyOf(TraceKeyList(keys)), format, arguments);
}

void ZQLogFunctionCalls::logFunctionName_logAlways_logForAnyTraceKeyOf_usingFormatv_arguments(
    const char* functionName, bool logAlways, const NSArray& keys, StringView format,
    ArgumentList arguments) {
    detail::logMessage(CallerReference::ofFunction(functionName), logAlways,
                       TraceCondition::anyOf(TraceKeyList(keys)), format, arguments);
}

NSString ZQLogFunctionCalls::logFunctionName_logAlways_logStringForAllTraceKeysOf_usingFormatv_arguments(
    const char* functionName, bool logAlways, const NSArray& keys, StringView format,
    ArgumentList arguments) {
    return detail::logMessageString(CallerReference::ofFunction(functionName), logAlways,
                                    TraceCondition::allOf(TraceKeyList(keys)), format, arguments);
}

void ZQLogFunctionCalls::logFunctionName_logAlways_logForAllTraceKeysOf_usingFormatv_arguments(
    const char* functionName, bool logAlways, const NSArray& keys, StringView format,
    ArgumentList arguments) {
    detail::logMessage(CallerReference::ofFunction(functionName), logAlways,
                       TraceCondition::allOf(TraceKeyList(keys)), format, arguments);
}

NSString ZQLogFunctionCalls::logFunctionName_logAlways_logStringForAnyTraceKeyUsingFormatv_arguments(
    const char* functionName, bool logAlways, StringView format, ArgumentList arguments) {
    return detail::logMessageString(CallerReference::ofFunction(functionName), logAlways,
                                    TraceCondition::anyKey(), format, arguments);
}

void ZQLogFunctionCalls::logFunctionName_logAlways_logForAnyTraceKeyUsingFormatv_arguments(
    const char* functionName, bool logAlways, StringView format, ArgumentList arguments) {
    detail::logMessage(CallerReference::ofFunction(functionName), logAlways, TraceCondition::anyKey(), format,
                       arguments);
}

} // namespace ZQFoundation
