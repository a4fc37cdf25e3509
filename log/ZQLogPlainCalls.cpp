// SPDX-License-Identifier: MIT
#include "log/ZQLogPlainCalls.h"

#include "log/LogComposition.h"
#include "log/ZQLog.h"

namespace ZQFoundation {

using detail::CallerReference;
using detail::TraceCondition;

NSString ZQLogPlainCalls::logAlways_logStringWithFormatv_arguments(bool logAlways, StringView format,
                                                                   ArgumentList arguments) {
    if (!logAlways || !format) {
        return {};
    }
    return detail::composedMessage(CallerReference::none(), TraceCondition::always(), format, arguments);
}

void ZQLogPlainCalls::logAlways_logWithFormatv_arguments(bool logAlways, StringView format,
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
    if (!logAlways || !format || !key) {
        return {};
    }
    return detail::composedMessage(CallerReference::none(), TraceCondition::key(key), format, arguments);
}

void ZQLogPlainCalls::logAlways_logForTraceKey_usingFormatv_arguments(bool logAlways, StringView key,
                                                                      StringView format,
                                                                      ArgumentList arguments) {
    if (logAlways && format && key) {
        ZQLog::logAlways_log(logAlways, logAlways_logStringForTraceKey_usingFormatv_arguments(
                                            logAlways, key, format, arguments));
    }
}

NSString ZQLogPlainCalls::logAlways_logStringForTraceKey_value_usingFormatv_arguments(
    bool logAlways, StringView key, std::int64_t value, StringView format, ArgumentList arguments) {
    if (!logAlways || !format || !key) {
        return {};
    }
    return detail::composedMessage(CallerReference::none(), TraceCondition::keyWithValue(key, value), format,
                                   arguments);
}

void ZQLogPlainCalls::logAlways_logForTraceKey_value_usingFormatv_arguments(bool logAlways, StringView key,
                                                                            std::int64_t value,
                                                                            StringView format,
                                                                            ArgumentList arguments) {
    if (logAlways && format && key) {
        ZQLog::logAlways_log(logAlways, logAlways_logStringForTraceKey_value_usingFormatv_arguments(
                                            logAlways, key, value, format, arguments));
    }
}

NSString ZQLogPlainCalls::logAlways_logStringForTraceKey_threshold_usingFormatv_arguments(
    bool logAlways, StringView key, std::int64_t threshold, StringView format, ArgumentList arguments) {
    if (!logAlways || !format || !key) {
        return {};
    }
    return detail::composedMessage(CallerReference::none(), TraceCondition::keyWithThreshold(key, threshold),
                                   format, arguments);
}

void ZQLogPlainCalls::logAlways_logForTraceKey_threshold_usingFormatv_arguments(
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
    return detail::composedMessage(CallerReference::none(), TraceCondition::anyKeyOf(keys), format,
                                   arguments);
}

void ZQLogPlainCalls::logAlways_logForAnyTraceKeyOf_usingFormatv_arguments(bool logAlways,
                                                                           const NSArray& keys,
                                                                           StringView format,
                                                                           ArgumentList arguments) {
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
    return detail::composedMessage(CallerReference::none(), TraceCondition::allKeysOf(keys), format,
                                   arguments);
}

void ZQLogPlainCalls::logAlways_logForAllTraceKeysOf_usingFormatv_arguments(bool logAlways,
                                                                            const NSArray& keys,
                                                                            StringView format,
                                                                            ArgumentList arguments) {
    if (logAlways && format && keys) {
        ZQLog::logAlways_log(logAlways, logAlways_logStringForAllTraceKeysOf_usingFormatv_arguments(
                                            logAlways, keys, format, arguments));
    }
}

NSString ZQLogPlainCalls::logAlways_logStringForAnyTraceKeyUsingFormatv_arguments(bool logAlways,
                                                                                  StringView format,
                                                                                  ArgumentList arguments) {
    if (!logAlways || !format) {
        return {};
    }
    return detail::composedMessage(CallerReference::none(), TraceCondition::anyKey(), format, arguments);
}

void ZQLogPlainCalls::logAlways_logForAnyTraceKeyUsingFormatv_arguments(bool logAlways, StringView format,
                                                                        ArgumentList arguments) {
    if (logAlways && format) {
        ZQLog::logAlways_log(
            logAlways, logAlways_logStringForAnyTraceKeyUsingFormatv_arguments(logAlways, format, arguments));
    }
}

} // namespace ZQFoundation
