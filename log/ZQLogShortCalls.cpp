// SPDX-License-Identifier: MIT
// The log operations without caller and flag, for started argument lists.
// Each calls the operation with the flag, so that the two forms of a call cannot differ. The cost is one more
// call, after the gates that the header has checked.
#include "log/ZQLogShortCalls.h"

#include "log/ZQLog.h"

namespace ZQFoundation {

void ZQLogShortCalls::log(StringView text) { ZQLog::logAlways_log(true, text); }

NSString ZQLogShortCalls::logString(const NSString& text) { return ZQLog::logAlways_logString(true, text); }

NSString ZQLogShortCalls::logStringWithFormatv_arguments(StringView format, ArgumentList arguments) {
    return ZQLog::logAlways_logStringWithFormatv_arguments(true, format, arguments);
}

void ZQLogShortCalls::logWithFormatv_arguments(StringView format, ArgumentList arguments) {
    ZQLog::logAlways_logWithFormatv_arguments(true, format, arguments);
}

NSString ZQLogShortCalls::logStringForTraceKey_usingFormatv_arguments(StringView key, StringView format,
                                                                      ArgumentList arguments) {
    return ZQLog::logAlways_logStringForTraceKey_usingFormatv_arguments(true, key, format, arguments);
}

void ZQLogShortCalls::logForTraceKey_usingFormatv_arguments(StringView key, StringView format,
                                                            ArgumentList arguments) {
    ZQLog::logAlways_logForTraceKey_usingFormatv_arguments(true, key, format, arguments);
}

NSString ZQLogShortCalls::logStringForTraceKey_value_usingFormatv_arguments(StringView key,
                                                                            std::int64_t value,
                                                                            StringView format,
                                                                            ArgumentList arguments) {
    return ZQLog::logAlways_logStringForTraceKey_value_usingFormatv_arguments(true, key, value, format,
                                                                              arguments);
}

void ZQLogShortCalls::logForTraceKey_value_usingFormatv_arguments(StringView key, std::int64_t value,
                                                                  StringView format, ArgumentList arguments) {
    ZQLog::logAlways_logForTraceKey_value_usingFormatv_arguments(true, key, value, format, arguments);
}

NSString ZQLogShortCalls::logStringForTraceKey_threshold_usingFormatv_arguments(StringView key,
                                                                                std::int64_t threshold,
                                                                                StringView format,
                                                                                ArgumentList arguments) {
    return ZQLog::logAlways_logStringForTraceKey_threshold_usingFormatv_arguments(true, key, threshold,
                                                                                  format, arguments);
}

void ZQLogShortCalls::logForTraceKey_threshold_usingFormatv_arguments(StringView key, std::int64_t threshold,
                                                                      StringView format,
                                                                      ArgumentList arguments) {
    ZQLog::logAlways_logForTraceKey_threshold_usingFormatv_arguments(true, key, threshold, format, arguments);
}

NSString ZQLogShortCalls::logStringForAnyTraceKeyOf_usingFormatv_arguments(const NSArray& keys,
                                                                           StringView format,
                                                                           ArgumentList arguments) {
    return ZQLog::logAlways_logStringForAnyTraceKeyOf_usingFormatv_arguments(true, keys, format, arguments);
}

void ZQLogShortCalls::logForAnyTraceKeyOf_usingFormatv_arguments(const NSArray& keys, StringView format,
                                                                 ArgumentList arguments) {
    ZQLog::logAlways_logForAnyTraceKeyOf_usingFormatv_arguments(true, keys, format, arguments);
}

NSString ZQLogShortCalls::logStringForAllTraceKeysOf_usingFormatv_arguments(const NSArray& keys,
                                                                            StringView format,
                                                                            ArgumentList arguments) {
    return ZQLog::logAlways_logStringForAllTraceKeysOf_usingFormatv_arguments(true, keys, format, arguments);
}

void ZQLogShortCalls::logForAllTraceKeysOf_usingFormatv_arguments(const NSArray& keys, StringView format,
                                                                  ArgumentList arguments) {
    ZQLog::logAlways_logForAllTraceKeysOf_usingFormatv_arguments(true, keys, format, arguments);
}

NSString ZQLogShortCalls::logStringForAnyTraceKeyUsingFormatv_arguments(StringView format,
                                                                        ArgumentList arguments) {
    return ZQLog::logAlways_logStringForAnyTraceKeyUsingFormatv_arguments(true, format, arguments);
}

void ZQLogShortCalls::logForAnyTraceKeyUsingFormatv_arguments(StringView format, ArgumentList arguments) {
    ZQLog::logAlways_logForAnyTraceKeyUsingFormatv_arguments(true, format, arguments);
}

} // namespace ZQFoundation
