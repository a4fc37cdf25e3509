// SPDX-License-Identifier: MIT
#include "log/ZQLogMethodCalls.h"

#include "log/LogComposition.h"
#include "log/ZQLog.h"

namespace ZQFoundation {

using detail::CallerReference;
using detail::TraceCondition;

void ZQLogMethodCalls::logSelf_method_logAlways_log(const LogCaller& self, StringView method, bool logAlways,
                                                    StringView text) {
    if (logAlways && text) {
        ZQLog::logAlways_log(logAlways, logSelf_method_logAlways_logString(self, method, logAlways, text));
    }
}

NSString ZQLogMethodCalls::logSelf_method_logAlways_logString(const LogCaller& self, StringView method,
                                                              bool logAlways, StringView text) {
    return logAlways && text ? detail::composedText(CallerReference::ofMethod(self, method), text)
                             : NSString();
}

NSString ZQLogMethodCalls::logSelf_method_logAlways_logStringWithFormatv_arguments(
    const LogCaller& self, StringView method, bool logAlways, StringView format, ArgumentList arguments) {
    if (!logAlways || !format) {
        return {};
    }
    return detail::composedMessage(CallerReference::ofMethod(self, method), TraceCondition::always(), format,
                                   arguments);
}

void ZQLogMethodCalls::logSelf_method_logAlways_logWithFormatv_arguments(const LogCaller& self,
                                                                         StringView method, bool logAlways,
                                                                         StringView format,
                                                                         ArgumentList arguments) {
    if (logAlways && format) {
        ZQLog::logAlways_log(logAlways, logSelf_method_logAlways_logStringWithFormatv_arguments(
                                            self, method, logAlways, format, arguments));
    }
}

NSString ZQLogMethodCalls::logSelf_method_logAlways_logStringForTraceKey_usingFormatv_arguments(
    const LogCaller& self, StringView method, bool logAlways, StringView key, StringView format,
    ArgumentList arguments) {
    if (!logAlways || !format || !key) {
        return {};
    }
    return detail::composedMessage(CallerReference::ofMethod(self, method), TraceCondition::key(key), format,
                                   arguments);
}

void ZQLogMethodCalls::logSelf_method_logAlways_logForTraceKey_usingFormatv_arguments(
    const LogCaller& self, StringView method, bool logAlways, StringView key, StringView format,
    ArgumentList arguments) {
    if (logAlways && format && key) {
        ZQLog::logAlways_log(logAlways, logSelf_method_logAlways_logStringForTraceKey_usingFormatv_arguments(
                                            self, method, logAlways, key, format, arguments));
    }
}

NSString ZQLogMethodCalls::logSelf_method_logAlways_logStringForTraceKey_value_usingFormatv_arguments(
    const LogCaller& self, StringView method, bool logAlways, StringView key, std::int64_t value,
    StringView format, ArgumentList arguments) {
    if (!logAlways || !format || !key) {
        return {};
    }
    return detail::composedMessage(CallerReference::ofMethod(self, method),
                                   TraceCondition::keyWithValue(key, value), format, arguments);
}

void ZQLogMethodCalls::logSelf_method_logAlways_logForTraceKey_value_usingFormatv_arguments(
    const LogCaller& self, StringView method, bool logAlways, StringView key, std::int64_t value,
    StringView format, ArgumentList arguments) {
    if (logAlways && format && key) {
        ZQLog::logAlways_log(logAlways,
                             logSelf_method_logAlways_logStringForTraceKey_value_usingFormatv_arguments(
                                 self, method, logAlways, key, value, format, arguments));
    }
}

NSString ZQLogMethodCalls::logSelf_method_logAlways_logStringForTraceKey_threshold_usingFormatv_arguments(
    const LogCaller& self, StringView method, bool logAlways, StringView key, std::int64_t threshold,
    StringView format, ArgumentList arguments) {
    if (!logAlways || !format || !key) {
        return {};
    }
    return detail::composedMessage(CallerReference::ofMethod(self, method),
                                   TraceCondition::keyWithThreshold(key, threshold), format, arguments);
}

void ZQLogMethodCalls::logSelf_method_logAlways_logForTraceKey_threshold_usingFormatv_arguments(
    const LogCaller& self, StringView method, bool logAlways, StringView key, std::int64_t threshold,
    StringView format, ArgumentList arguments) {
    if (logAlways && format && key) {
        ZQLog::logAlways_log(logAlways,
                             logSelf_method_logAlways_logStringForTraceKey_threshold_usingFormatv_arguments(
                                 self, method, logAlways, key, threshold, format, arguments));
    }
}

NSString ZQLogMethodCalls::logSelf_method_logAlways_logStringForAnyTraceKeyOf_usingFormatv_arguments(
    const LogCaller& self, StringView method, bool logAlways, const NSArray& keys, StringView format,
    ArgumentList arguments) {
    if (!logAlways || !format || !keys) {
        return {};
    }
    return detail::composedMessage(CallerReference::ofMethod(self, method), TraceCondition::anyKeyOf(keys),
                                   format, arguments);
}

void ZQLogMethodCalls::logSelf_method_logAlways_logForAnyTraceKeyOf_usingFormatv_arguments(
    const LogCaller& self, StringView method, bool logAlways, const NSArray& keys, StringView format,
    ArgumentList arguments) {
    if (logAlways && format && keys) {
        ZQLog::logAlways_log(logAlways,
                             logSelf_method_logAlways_logStringForAnyTraceKeyOf_usingFormatv_arguments(
                                 self, method, logAlways, keys, format, arguments));
    }
}

NSString ZQLogMethodCalls::logSelf_method_logAlways_logStringForAllTraceKeysOf_usingFormatv_arguments(
    const LogCaller& self, StringView method, bool logAlways, const NSArray& keys, StringView format,
    ArgumentList arguments) {
    if (!logAlways || !format || !keys) {
        return {};
    }
    return detail::composedMessage(CallerReference::ofMethod(self, method), TraceCondition::allKeysOf(keys),
                                   format, arguments);
}

void ZQLogMethodCalls::logSelf_method_logAlways_logForAllTraceKeysOf_usingFormatv_arguments(
    const LogCaller& self, StringView method, bool logAlways, const NSArray& keys, StringView format,
    ArgumentList arguments) {
    if (logAlways && format && keys) {
        ZQLog::logAlways_log(logAlways,
                             logSelf_method_logAlways_logStringForAllTraceKeysOf_usingFormatv_arguments(
                                 self, method, logAlways, keys, format, arguments));
    }
}

NSString ZQLogMethodCalls::logSelf_method_logAlways_logStringForAnyTraceKeyUsingFormatv_arguments(
    const LogCaller& self, StringView method, bool logAlways, StringView format, ArgumentList arguments) {
    if (!logAlways || !format) {
        return {};
    }
    return detail::composedMessage(CallerReference::ofMethod(self, method), TraceCondition::anyKey(), format,
                                   arguments);
}

void ZQLogMethodCalls::logSelf_method_logAlways_logForAnyTraceKeyUsingFormatv_arguments(
    const LogCaller& self, StringView method, bool logAlways, StringView format, ArgumentList arguments) {
    if (logAlways && format) {
        ZQLog::logAlways_log(logAlways,
                             logSelf_method_logAlways_logStringForAnyTraceKeyUsingFormatv_arguments(
                                 self, method, logAlways, format, arguments));
    }
}

} // namespace ZQFoundation
