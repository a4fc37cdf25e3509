// SPDX-License-Identifier: MIT
// The log operations that name a function, for started argument lists.
// Each names its caller and its condition and calls one of two verbs, which are inlined from LogOperation.h:
// so all gates of all operations are written once, and a call that a gate stops runs through one function.
// The two verbs of each condition follow each other, in the order of the header. Exported functions and not
// templates: the code of a call that is not stopped is in the library, once, and not in each host.
#include "log/ZQLogFunctionCalls.h"

#include "log/LogOperation.h"

namespace ZQFoundation {

using detail::CallerReference;
using detail::TraceCondition;
using detail::TraceKeyList;

void ZQLogFunctionCalls::logFunctionName_logAlways_log(const char* functionName, detail::Flag logAlways,
                                                       StringView text) {
    detail::logText(CallerReference::ofFunction(functionName), logAlways, text);
}

NSString ZQLogFunctionCalls::logFunctionName_logAlways_logString(const char* functionName,
                                                                 detail::Flag logAlways, StringView text) {
    return detail::logTextString(CallerReference::ofFunction(functionName), logAlways, text);
}

NSString ZQLogFunctionCalls::logFunctionName_logAlways_logStringWithFormatv_arguments(
    const char* functionName, detail::Flag logAlways, StringView format, ArgumentList arguments) {
    return detail::logMessageString(CallerReference::ofFunction(functionName), logAlways,
                                    TraceCondition::none(), format, arguments);
}

void ZQLogFunctionCalls::logFunctionName_logAlways_logWithFormatv_arguments(const char* functionName,
                                                                            detail::Flag logAlways,
                                                                            StringView format,
                                                                            ArgumentList arguments) {
    detail::logMessage(CallerReference::ofFunction(functionName), logAlways, TraceCondition::none(), format,
                       arguments);
}

NSString ZQLogFunctionCalls::logFunctionName_logAlways_logStringForTraceKey_usingFormatv_arguments(
    const char* functionName, detail::Flag logAlways, StringView key, StringView format,
    ArgumentList arguments) {
    return detail::logMessageString(CallerReference::ofFunction(functionName), logAlways,
                                    TraceCondition::key(key), format, arguments);
}

void ZQLogFunctionCalls::logFunctionName_logAlways_logForTraceKey_usingFormatv_arguments(
    const char* functionName, detail::Flag logAlways, StringView key, StringView format,
    ArgumentList arguments) {
    detail::logMessage(CallerReference::ofFunction(functionName), logAlways, TraceCondition::key(key), format,
                       arguments);
}

NSString ZQLogFunctionCalls::logFunctionName_logAlways_logStringForTraceKey_value_usingFormatv_arguments(
    const char* functionName, detail::Flag logAlways, StringView key, std::int64_t value, StringView format,
    ArgumentList arguments) {
    return detail::logMessageString(CallerReference::ofFunction(functionName), logAlways,
                                    TraceCondition::value(key, value), format, arguments);
}

void ZQLogFunctionCalls::logFunctionName_logAlways_logForTraceKey_value_usingFormatv_arguments(
    const char* functionName, detail::Flag logAlways, StringView key, std::int64_t value, StringView format,
    ArgumentList arguments) {
    detail::logMessage(CallerReference::ofFunction(functionName), logAlways,
                       TraceCondition::value(key, value), format, arguments);
}

NSString ZQLogFunctionCalls::logFunctionName_logAlways_logStringForTraceKey_threshold_usingFormatv_arguments(
    const char* functionName, detail::Flag logAlways, StringView key, std::int64_t threshold,
    StringView format, ArgumentList arguments) {
    return detail::logMessageString(CallerReference::ofFunction(functionName), logAlways,
                                    TraceCondition::threshold(key, threshold), format, arguments);
}

void ZQLogFunctionCalls::logFunctionName_logAlways_logForTraceKey_threshold_usingFormatv_arguments(
    const char* functionName, detail::Flag logAlways, StringView key, std::int64_t threshold,
    StringView format, ArgumentList arguments) {
    detail::logMessage(CallerReference::ofFunction(functionName), logAlways,
                       TraceCondition::threshold(key, threshold), format, arguments);
}

NSString ZQLogFunctionCalls::logFunctionName_logAlways_logStringForAnyTraceKeyOf_usingFormatv_arguments(
    const char* functionName, detail::Flag logAlways, const NSArray& keys, StringView format,
    ArgumentList arguments) {
    return detail::logMessageString(CallerReference::ofFunction(functionName), logAlways,
                                    TraceCondition::anyOf(TraceKeyList(keys)), format, arguments);
}

void ZQLogFunctionCalls::logFunctionName_logAlways_logForAnyTraceKeyOf_usingFormatv_arguments(
    const char* functionName, detail::Flag logAlways, const NSArray& keys, StringView format,
    ArgumentList arguments) {
    detail::logMessage(CallerReference::ofFunction(functionName), logAlways,
                       TraceCondition::anyOf(TraceKeyList(keys)), format, arguments);
}

NSString ZQLogFunctionCalls::logFunctionName_logAlways_logStringForAllTraceKeysOf_usingFormatv_arguments(
    const char* functionName, detail::Flag logAlways, const NSArray& keys, StringView format,
    ArgumentList arguments) {
    return detail::logMessageString(CallerReference::ofFunction(functionName), logAlways,
                                    TraceCondition::allOf(TraceKeyList(keys)), format, arguments);
}

void ZQLogFunctionCalls::logFunctionName_logAlways_logForAllTraceKeysOf_usingFormatv_arguments(
    const char* functionName, detail::Flag logAlways, const NSArray& keys, StringView format,
    ArgumentList arguments) {
    detail::logMessage(CallerReference::ofFunction(functionName), logAlways,
                       TraceCondition::allOf(TraceKeyList(keys)), format, arguments);
}

NSString ZQLogFunctionCalls::logFunctionName_logAlways_logStringForAnyTraceKeyUsingFormatv_arguments(
    const char* functionName, detail::Flag logAlways, StringView format, ArgumentList arguments) {
    return detail::logMessageString(CallerReference::ofFunction(functionName), logAlways,
                                    TraceCondition::anyKey(), format, arguments);
}

void ZQLogFunctionCalls::logFunctionName_logAlways_logForAnyTraceKeyUsingFormatv_arguments(
    const char* functionName, detail::Flag logAlways, StringView format, ArgumentList arguments) {
    detail::logMessage(CallerReference::ofFunction(functionName), logAlways, TraceCondition::anyKey(), format,
                       arguments);
}

} // namespace ZQFoundation
