// SPDX-License-Identifier: MIT
// The log operations that name an object and its method, for started argument lists.
// Each names its caller and its condition and calls one of two verbs, which are inlined from LogOperation.h.
// The caller is passed by reference and described only after the last gate. The two verbs of each condition
// follow each other, in the order of the header.
#include "log/ZQLogMethodCalls.h"

#include "log/LogOperation.h"

namespace ZQFoundation {

using detail::CallerReference;
using detail::TraceCondition;
using detail::TraceKeyList;

void ZQLogMethodCalls::logSelf_method_logAlways_log(const LogCaller& self, StringView method,
                                                    detail::Flag logAlways, StringView text) {
    detail::logText(CallerReference::ofMethod(self, method), logAlways, text);
}

NSString ZQLogMethodCalls::logSelf_method_logAlways_logString(const LogCaller& self, StringView method,
                                                              detail::Flag logAlways, StringView text) {
    return detail::logTextString(CallerReference::ofMethod(self, method), logAlways, text);
}

NSString ZQLogMethodCalls::logSelf_method_logAlways_logStringWithFormatv_arguments(const LogCaller& self,
                                                                                   StringView method,
                                                                                   detail::Flag logAlways,
                                                                                   StringView format,
                                                                                   ArgumentList arguments) {
    return detail::logMessageString(CallerReference::ofMethod(self, method), logAlways,
                                    TraceCondition::none(), format, arguments);
}

void ZQLogMethodCalls::logSelf_method_logAlways_logWithFormatv_arguments(const LogCaller& self,
                                                                         StringView method,
                                                                         detail::Flag logAlways,
                                                                         StringView format,
                                                                         ArgumentList arguments) {
    detail::logMessage(CallerReference::ofMethod(self, method), logAlways, TraceCondition::none(), format,
                       arguments);
}

NSString ZQLogMethodCalls::logSelf_method_logAlways_logStringForTraceKey_usingFormatv_arguments(
    const LogCaller& self, StringView method, detail::Flag logAlways, StringView key, StringView format,
    ArgumentList arguments) {
    return detail::logMessageString(CallerReference::ofMethod(self, method), logAlways,
                                    TraceCondition::key(key), format, arguments);
}

void ZQLogMethodCalls::logSelf_method_logAlways_logForTraceKey_usingFormatv_arguments(
    const LogCaller& self, StringView method, detail::Flag logAlways, StringView key, StringView format,
    ArgumentList arguments) {
    detail::logMessage(CallerReference::ofMethod(self, method), logAlways, TraceCondition::key(key), format,
                       arguments);
}

NSString ZQLogMethodCalls::logSelf_method_logAlways_logStringForTraceKey_value_usingFormatv_arguments(
    const LogCaller& self, StringView method, detail::Flag logAlways, StringView key, std::int64_t value,
    StringView format, ArgumentList arguments) {
    return detail::logMessageString(CallerReference::ofMethod(self, method), logAlways,
                                    TraceCondition::value(key, value), format, arguments);
}

void ZQLogMethodCalls::logSelf_method_logAlways_logForTraceKey_value_usingFormatv_arguments(
    const LogCaller& self, StringView method, detail::Flag logAlways, StringView key, std::int64_t value,
    StringView format, ArgumentList arguments) {
    detail::logMessage(CallerReference::ofMethod(self, method), logAlways, TraceCondition::value(key, value),
                       format, arguments);
}

NSString ZQLogMethodCalls::logSelf_method_logAlways_logStringForTraceKey_threshold_usingFormatv_arguments(
    const LogCaller& self, StringView method, detail::Flag logAlways, StringView key, std::int64_t threshold,
    StringView format, ArgumentList arguments) {
    return detail::logMessageString(CallerReference::ofMethod(self, method), logAlways,
                                    TraceCondition::threshold(key, threshold), format, arguments);
}

void ZQLogMethodCalls::logSelf_method_logAlways_logForTraceKey_threshold_usingFormatv_arguments(
    const LogCaller& self, StringView method, detail::Flag logAlways, StringView key, std::int64_t threshold,
    StringView format, ArgumentList arguments) {
    detail::logMessage(CallerReference::ofMethod(self, method), logAlways,
                       TraceCondition::threshold(key, threshold), format, arguments);
}

NSString ZQLogMethodCalls::logSelf_method_logAlways_logStringForAnyTraceKeyOf_usingFormatv_arguments(
    const LogCaller& self, StringView method, detail::Flag logAlways, const NSArray& keys, StringView format,
    ArgumentList arguments) {
    return detail::logMessageString(CallerReference::ofMethod(self, method), logAlways,
                                    TraceCondition::anyOf(TraceKeyList(keys)), format, arguments);
}

void ZQLogMethodCalls::logSelf_method_logAlways_logForAnyTraceKeyOf_usingFormatv_arguments(
    const LogCaller& self, StringView method, detail::Flag logAlways, const NSArray& keys, StringView format,
    ArgumentList arguments) {
    detail::logMessage(CallerReference::ofMethod(self, method), logAlways,
                       TraceCondition::anyOf(TraceKeyList(keys)), format, arguments);
}

NSString ZQLogMethodCalls::logSelf_method_logAlways_logStringForAllTraceKeysOf_usingFormatv_arguments(
    const LogCaller& self, StringView method, detail::Flag logAlways, const NSArray& keys, StringView format,
    ArgumentList arguments) {
    return detail::logMessageString(CallerReference::ofMethod(self, method), logAlways,
                                    TraceCondition::allOf(TraceKeyList(keys)), format, arguments);
}

void ZQLogMethodCalls::logSelf_method_logAlways_logForAllTraceKeysOf_usingFormatv_arguments(
    const LogCaller& self, StringView method, detail::Flag logAlways, const NSArray& keys, StringView format,
    ArgumentList arguments) {
    detail::logMessage(CallerReference::ofMethod(self, method), logAlways,
                       TraceCondition::allOf(TraceKeyList(keys)), format, arguments);
}

NSString ZQLogMethodCalls::logSelf_method_logAlways_logStringForAnyTraceKeyUsingFormatv_arguments(
    const LogCaller& self, StringView method, detail::Flag logAlways, StringView format,
    ArgumentList arguments) {
    return detail::logMessageString(CallerReference::ofMethod(self, method), logAlways,
                                    TraceCondition::anyKey(), format, arguments);
}

void ZQLogMethodCalls::logSelf_method_logAlways_logForAnyTraceKeyUsingFormatv_arguments(
    const LogCaller& self, StringView method, detail::Flag logAlways, StringView format,
    ArgumentList arguments) {
    detail::logMessage(CallerReference::ofMethod(self, method), logAlways, TraceCondition::anyKey(), format,
                       arguments);
}

} // namespace ZQFoundation
