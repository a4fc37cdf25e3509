// SPDX-License-Identifier: MIT
#include "log/ZQLogPlainCalls.h"

#include "log/LogComposition.h"
#include "log/TraceKeys.h"
#include "log/ZQLog.h"

namespace ZQFoundation {

// The writing operations call the returning ones as they stand, but are compiled into one piece with them: a
// host passes most of its trace points with the condition off, and then the way through both layers is what
// it pays.

using detail::CallerReference;
using detail::TraceLabel;

NSString ZQLogPlainCalls::logAlways_logStringWithFormatv_arguments(bool logAlways, StringView format,
                                                                   ArgumentList arguments) {
    if (!logAlways || !format) {
        return {};
    }
    return detail::composedMessage(CallerReference::none(), TraceLabel::none(), format, arguments);
}

[[gnu::flatten]] void ZQLogPlainCalls::logAlways_logWithFormatv_arguments(bool logAlways, StringView format,
                                                                          ArgumentList arguments) {
    if (logAlways && format) {
        ZQLog::logAlways_log(logAlways,
                             logAlways_logStringWithFormatv_arguments(logAlways, format, arguments));
    }
}

NSString ZQLogPlainCalls::logAlways_logStringForTraceKey_usingFormatv_arguments(bool logAlways,
                                                                                StringView key,
                                                                                StringView format,
                                                                                ArgumentList arguments) {
    if (!logAlways || !format || !key || !detail::traceKeyHolds(key)) {
        return {};
    }
    return detail::composedMessage(CallerReference::none(), TraceLabel::key(key), format, arguments);
}

[[gnu::flatten]] void
ZQLogPlainCalls::logAlways_logForTraceKey_usingFormatv_arguments(bool logAlways, StringView key,
                                                                 StringView format, ArgumentList arguments) {
    if (logAlways && format && key) {
        ZQLog::logAlways_log(logAlways, logAlways_logStringForTraceKey_usingFormatv_arguments(
                                            logAlways, key, format, arguments));
    }
}

NSString ZQLogPlainCalls::logAlways_logStringForTraceKey_value_usingFormatv_arguments(
    bool logAlways, StringView key, std::int64_t value, StringView format, ArgumentList arguments) {
    if (!logAlways || !format || !key || !detail::traceLevelEquals(key, value)) {
        return {};
    }
    return detail::composedMessage(CallerReference::none(), TraceLabel::value(key, value), format, arguments);
}

[[gnu::flatten]] void ZQLogPlainCalls::logAlways_logForTraceKey_value_usingFormatv_arguments(
    bool logAlways, StringView key, std::int64_t value, StringView format, ArgumentList arguments) {
    if (logAlways && format && key) {
        ZQLog::logAlways_log(logAlways, logAlways_logStringForTraceKey_value_usingFormatv_arguments(
                                            logAlways, key, value, format, arguments));
    }
}

NSString ZQLogPlainCalls::logAlways_logStringForTraceKey_threshold_usingFormatv_arguments(
    bool logAlways, StringView key, std::int64_t threshold, StringView format, ArgumentList arguments) {
    if (!logAlways || !format || !key || !detail::traceLevelReaches(key, threshold)) {
        return {};
    }
    return detail::composedMessage(CallerReference::none(), TraceLabel::threshold(key, threshold), format,
                                   arguments);
}

[[gnu::flatten]] void ZQLogPlainCalls::logAlways_logForTraceKey_threshold_usingFormatv_arguments(
    bool logAlways, StringView key, std::int64_t threshold, StringView format, ArgumentList arguments) {
    if (logAlways && format && key) {
        ZQLog::logAlways_log(logAlways, logAlways_logStringForTraceKey_threshold_usingFormatv_arguments(
                                            logAlways, key, threshold, format, arguments));
    }
}

NSString ZQLogPlainCalls::logAlways_logStringForAnyTraceKeyOf_usingFormatv_arguments(bool logAlways,
                                                                                     const NSArray& keys,
                                                                                     StringView format,
                                                                                     ArgumentList arguments) {
    if (!logAlways || !format || !keys) {
        return {};
    }
    const NSString label = detail::labelOfAnyTraceKey(keys);
    if (!label) {
        return {};
    }
    return detail::composedMessage(CallerReference::none(), TraceLabel::key(label), format, arguments);
}

[[gnu::flatten]] void ZQLogPlainCalls::logAlways_logForAnyTraceKeyOf_usingFormatv_arguments(
    bool logAlways, const NSArray& keys, StringView format, ArgumentList arguments) {
    if (logAlways && format && keys) {
        ZQLog::logAlways_log(logAlways, logAlways_logStringForAnyTraceKeyOf_usingFormatv_arguments(
                                            logAlways, keys, format, arguments));
    }
}

NSString ZQLogPlainCalls::logAlways_logStringForAllTraceKeysOf_usingFormatv_arguments(
    bool logAlways, const NSArray& keys, StringView format, ArgumentList arguments) {
    if (!logAlways || !format || !keys) {
        return {};
    }
    const NSString label = detail::labelOfAllTraceKeys(keys);
    if (!label) {
        return {};
    }
    return detail::composedMessage(CallerReference::none(), TraceLabel::key(label), format, arguments);
}

[[gnu::flatten]] void ZQLogPlainCalls::logAlways_logForAllTraceKeysOf_usingFormatv_arguments(
    bool logAlways, const NSArray& keys, StringView format, ArgumentList arguments) {
    if (logAlways && format && keys) {
        ZQLog::logAlways_log(logAlways, logAlways_logStringForAllTraceKeysOf_usingFormatv_arguments(
                                            logAlways, keys, format, arguments));
    }
}

NSString ZQLogPlainCalls::logAlways_logStringForAnyTraceKeyUsingFormatv_arguments(bool logAlways,
                                                                                  StringView format,
                                                                                  ArgumentList arguments) {
    if (!logAlways || !format || !detail::anyTraceKeyHolds()) {
        return {};
    }
    return detail::composedMessage(CallerReference::none(), TraceLabel::anyKey(), format, arguments);
}

[[gnu::flatten]] void
ZQLogPlainCalls::logAlways_logForAnyTraceKeyUsingFormatv_arguments(bool logAlways, StringView format,
                                                                   ArgumentList arguments) {
    if (logAlways && format) {
        ZQLog::logAlways_log(
            logAlways, logAlways_logStringForAnyTraceKeyUsingFormatv_arguments(logAlways, format, arguments));
    }
}

} // namespace ZQFoundation
