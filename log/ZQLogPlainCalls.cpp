// SPDX-License-Identifier: MIT
// The log operations without a caller, for started argument lists.
// Each names its condition and calls one of two verbs, which are inlined from LogOperation.h. The two verbs
// of each condition follow each other, in the order of the header.
#include "log/ZQLogPlainCalls.h"

#include "log/LogOperation.h"

namespace ZQFoundation {

using detail::CallerReference;
using detail::TraceCondition;
using detail::TraceKeyList;

NSString ZQLogPlainCalls::logAlways_logStringWithFormatv_arguments(detail::Flag logAlways, StringView format,
                                                                   ArgumentList arguments) {
    return detail::logMessageString(CallerReference::none(), logAlways, TraceCondition::none(), format,
                                    arguments);
}

void ZQLogPlainCalls::logAlways_logWithFormatv_arguments(detail::Flag logAlways, StringView format,
                                                         ArgumentList arguments) {
    detail::logMessage(CallerReference::none(), logAlways, TraceCondition::none(), format, arguments);
}

NSString ZQLogPlainCalls::logAlways_logStringForTraceKey_usingFormatv_arguments(detail::Flag logAlways,
                                                                                StringView key,
                                                                                StringView format,
                                                                                ArgumentList arguments) {
    return detail::logMessageString(CallerReference::none(), logAlways, TraceCondition::key(key), format,
                                    arguments);
}

void ZQLogPlainCalls::logAlways_logForTraceKey_usingFormatv_arguments(detail::Flag logAlways, StringView key,
                                                                      StringView format,
                                                                      ArgumentList arguments) {
    detail::logMessage(CallerReference::none(), logAlways, TraceCondition::key(key), format, arguments);
}

NSString ZQLogPlainCalls::logAlways_logStringForTraceKey_value_usingFormatv_arguments(
    detail::Flag logAlways, StringView key, std::int64_t value, StringView format, ArgumentList arguments) {
    return detail::logMessageString(CallerReference::none(), logAlways, TraceCondition::value(key, value),
                                    format, arguments);
}

void ZQLogPlainCalls::logAlways_logForTraceKey_value_usingFormatv_arguments(
    detail::Flag logAlways, StringView key, std::int64_t value, StringView format, ArgumentList arguments) {
    detail::logMessage(CallerReference::none(), logAlways, TraceCondition::value(key, value), format,
                       arguments);
}

NSString ZQLogPlainCalls::logAlways_logStringForTraceKey_threshold_usingFormatv_arguments(
    detail::Flag logAlways, StringView key, std::int64_t threshold, StringView format,
    ArgumentList arguments) {
    return detail::logMessageString(CallerReference::none(), logAlways,
                                    TraceCondition::threshold(key, threshold), format, arguments);
}

void ZQLogPlainCalls::logAlways_logForTraceKey_threshold_usingFormatv_arguments(detail::Flag logAlways,
                                                                                StringView key,
                                                                                std::int64_t threshold,
                                                                                StringView format,
                                                                                ArgumentList arguments) {
    detail::logMessage(CallerReference::none(), logAlways, TraceCondition::threshold(key, threshold), format,
                       arguments);
}

NSString ZQLogPlainCalls::logAlways_logStringForAnyTraceKeyOf_usingFormatv_arguments(detail::Flag logAlways,
                                                                                     const NSArray& keys,
                                                                                     StringView format,
                                                                                     ArgumentList arguments) {
    return detail::logMessageString(CallerReference::none(), logAlways,
                                    TraceCondition::anyOf(TraceKeyList(keys)), format, arguments);
}

void ZQLogPlainCalls::logAlways_logForAnyTraceKeyOf_usingFormatv_arguments(detail::Flag logAlways,
                                                                           const NSArray& keys,
                                                                           StringView format,
                                                                           ArgumentList arguments) {
    detail::logMessage(CallerReference::none(), logAlways, TraceCondition::anyOf(TraceKeyList(keys)), format,
                       arguments);
}

NSString ZQLogPlainCalls::logAlways_logStringForAllTraceKeysOf_usingFormatv_arguments(
    detail::Flag logAlways, const NSArray& keys, StringView format, ArgumentList arguments) {
    return detail::logMessageString(CallerReference::none(), logAlways,
                                    TraceCondition::allOf(TraceKeyList(keys)), format, arguments);
}

void ZQLogPlainCalls::logAlways_logForAllTraceKeysOf_usingFormatv_arguments(detail::Flag logAlways,
                                                                            const NSArray& keys,
                                                                            StringView format,
                                                                            ArgumentList arguments) {
    detail::logMessage(CallerReference::none(), logAlways, TraceCondition::allOf(TraceKeyList(keys)), format,
                       arguments);
}

NSString ZQLogPlainCalls::logAlways_logStringForAnyTraceKeyUsingFormatv_arguments(detail::Flag logAlways,
                                                                                  StringView format,
                                                                                  ArgumentList arguments) {
    return detail::logMessageString(CallerReference::none(), logAlways, TraceCondition::anyKey(), format,
                                    arguments);
}

void ZQLogPlainCalls::logAlways_logForAnyTraceKeyUsingFormatv_arguments(detail::Flag logAlways,
                                                                        StringView format,
                                                                        ArgumentList arguments) {
    detail::logMessage(CallerReference::none(), logAlways, TraceCondition::anyKey(), format, arguments);
}

} // namespace ZQFoundation
