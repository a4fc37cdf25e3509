// SPDX-License-Identifier: MIT
#include "log/ZQLogMethodCalls.h"

#include "log/LogComposition.h"
#include "log/TraceKeys.h"
#include "log/ZQLog.h"

namespace ZQFoundation {

// The writing operations call the returning ones as they stand, but are compiled into one piece with them: a
// host passes most of its trace points with the condition off, and then the way through both layers is what
// it pays.

using detail::CallerReference;
using detail::TraceLabel;

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
    return detail::composedMessage(CallerReference::ofMethod(self, method), TraceLabel::none(), format,
                                   arguments);
}

[[gnu::flatten]] void ZQLogMethodCalls::logSelf_method_logAlways_logWithFormatv_arguments(
    const LogCaller& self, StringView method, bool logAlways, StringView format, ArgumentList arguments) {
    if (logAlways && format) {
        ZQLog::logAlways_log(logAlways, logSelf_method_logAlways_logStringWithFormatv_arguments(
                                            self, method, logAlways, format, arguments));
    }
}

NSString ZQLogMethodCalls::logSelf_method_logAlways_logStringForTraceKey_usingFormatv_arguments(
    const LogCaller& self, StringView method, bool logAlways, StringView key, StringView format,
    ArgumentList arguments) {
    if (!logAlways || !format || !key || !detail::traceKeyHolds(key)) {
        return {};
    }
    return detail::composedMessage(CallerReference::ofMethod(self, method), TraceLabel::key(key), format,
                                   arguments);
}

[[gnu::flatten]] void ZQLogMethodCalls::logSelf_method_logAlways_logForTraceKey_usingFormatv_arguments(
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
    if (!logAlways || !format || !key || !detail::traceLevelEquals(key, value)) {
        return {};
    }
    return detail::composedMessage(CallerReference::ofMethod(self, method), TraceLabel::value(key, value),
                                   format, arguments);
}

[[gnu::flatten]] void ZQLogMethodCalls::logSelf_method_logAlways_logForTraceKey_value_usingFormatv_arguments(
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
    if (!logAlways || !format || !key || !detail::traceLevelReaches(key, threshold)) {
        return {};
    }
    return detail::composedMessage(CallerReference::ofMethod(self, method),
                                   TraceLabel::threshold(key, threshold), format, arguments);
}

[[gnu::flatten]] void
ZQLogMethodCalls::logSelf_method_logAlways_logForTraceKey_threshold_usingFormatv_arguments(
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
    const NSString label = detail::labelOfAnyTraceKey(keys);
    if (!label) {
        return {};
    }
    return detail::composedMessage(CallerReference::ofMethod(self, method), TraceLabel::key(label), format,
                                   arguments);
}

[[gnu::flatten]] void ZQLogMethodCalls::logSelf_method_logAlways_logForAnyTraceKeyOf_usingFormatv_arguments(
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
    const NSString label = detail::labelOfAllTraceKeys(keys);
    if (!label) {
        return {};
    }
    return detail::composedMessage(CallerReference::ofMethod(self, method), TraceLabel::key(label), format,
                                   arguments);
}

[[gnu::flatten]] void ZQLogMethodCalls::logSelf_method_logAlways_logForAllTraceKeysOf_usingFormatv_arguments(
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
    if (!logAlways || !format || !detail::anyTraceKeyHolds()) {
        return {};
    }
    return detail::composedMessage(CallerReference::ofMethod(self, method), TraceLabel::anyKey(), format,
                                   arguments);
}

[[gnu::flatten]] void ZQLogMethodCalls::logSelf_method_logAlways_logForAnyTraceKeyUsingFormatv_arguments(
    const LogCaller& self, StringView method, bool logAlways, StringView format, ArgumentList arguments) {
    if (logAlways && format) {
        ZQLog::logAlways_log(logAlways,
                             logSelf_method_logAlways_logStringForAnyTraceKeyUsingFormatv_arguments(
                                 self, method, logAlways, format, arguments));
    }
}

} // namespace ZQFoundation
