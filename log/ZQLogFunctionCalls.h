// SPDX-License-Identifier: MIT
#ifndef ZQFOUNDATION_LOG_ZQLOGFUNCTIONCALLS_H
#define ZQFOUNDATION_LOG_ZQLOGFUNCTIONCALLS_H

#include "LogCaller.h"

#include "../foundation/objects/NSArray.h"

namespace ZQFoundation {

/// The log operations of ZQLog for functions: call them as `ZQLog::...`.
///
/// The function's name is NUL-ended UTF-8, such as `__func__`, or null; it shows as `parse_header()`. Gates
/// and order as for the operations without a caller; an absent name shows in the line and stops nothing.
class ZQFOUNDATION_EXPORT ZQLogFunctionCalls {
public:
    /// Writes the line "caller text". A flag of NO or a nil text writes nothing.
    static void logFunctionName_logAlways_log(const char* functionName, bool logAlways, StringView text);

    /// The text that the operation above would write, or nil.
    static NSString logFunctionName_logAlways_logString(const char* functionName, bool logAlways,
                                                        StringView text);

    // Text: caller message.

    /// Writes the line.
    template <class... Arguments>
    static void
    logFunctionName_logAlways_logWithFormat(const char* functionName, bool logAlways,
                                            FormatString<std::type_identity_t<Arguments>...> format,
                                            const Arguments&... arguments) {
        if (logAlways && format.text()) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            logFunctionName_logAlways_logWithFormatv_arguments(functionName, logAlways, format.text(),
                                                               packed.list());
        }
    }
    /// The same for a started argument list.
    static void logFunctionName_logAlways_logWithFormatv_arguments(const char* functionName, bool logAlways,
                                                                   StringView format, ArgumentList arguments);

    /// Returns the text, or nil.
    template <class... Arguments>
    static NSString
    logFunctionName_logAlways_logStringWithFormat(const char* functionName, bool logAlways,
                                                  FormatString<std::type_identity_t<Arguments>...> format,
                                                  const Arguments&... arguments) {
        if (logAlways && format.text()) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            return logFunctionName_logAlways_logStringWithFormatv_arguments(functionName, logAlways,
                                                                            format.text(), packed.list());
        }
        return {};
    }
    /// The same for a started argument list.
    static NSString logFunctionName_logAlways_logStringWithFormatv_arguments(const char* functionName,
                                                                             bool logAlways,
                                                                             StringView format,
                                                                             ArgumentList arguments);

    // Text: key: caller message.

    /// Writes the line while the trace key is on.
    template <class... Arguments>
    static void logFunctionName_logAlways_logForTraceKey_usingFormat(
        const char* functionName, bool logAlways, StringView key,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (logAlways && format.text() && key) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            logFunctionName_logAlways_logForTraceKey_usingFormatv_arguments(functionName, logAlways, key,
                                                                            format.text(), packed.list());
        }
    }
    /// The same for a started argument list.
    static void logFunctionName_logAlways_logForTraceKey_usingFormatv_arguments(
        const char* functionName, bool logAlways, StringView key, StringView format, ArgumentList arguments);

    /// Returns the text, or nil, while the trace key is on.
    template <class... Arguments>
    static NSString logFunctionName_logAlways_logStringForTraceKey_usingFormat(
        const char* functionName, bool logAlways, StringView key,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (logAlways && format.text() && key) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            return logFunctionName_logAlways_logStringForTraceKey_usingFormatv_arguments(
                functionName, logAlways, key, format.text(), packed.list());
        }
        return {};
    }
    /// The same for a started argument list.
    static NSString logFunctionName_logAlways_logStringForTraceKey_usingFormatv_arguments(
        const char* functionName, bool logAlways, StringView key, StringView format, ArgumentList arguments);

    // Text: key=value: caller message.

    /// Writes the line while the key's level equals the value (a missing key has level 0).
    template <class... Arguments>
    static void logFunctionName_logAlways_logForTraceKey_value_usingFormat(
        const char* functionName, bool logAlways, StringView key, std::int64_t value,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (logAlways && format.text() && key) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            logFunctionName_logAlways_logForTraceKey_value_usingFormatv_arguments(
                functionName, logAlways, key, value, format.text(), packed.list());
        }
    }
    /// The same for a started argument list.
    static void logFunctionName_logAlways_logForTraceKey_value_usingFormatv_arguments(
        const char* functionName, bool logAlways, StringView key, std::int64_t value, StringView format,
        ArgumentList arguments);

    /// Returns the text, or nil, while the key's level equals the value (a missing key has level 0).
    template <class... Arguments>
    static NSString logFunctionName_logAlways_logStringForTraceKey_value_usingFormat(
        const char* functionName, bool logAlways, StringView key, std::int64_t value,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (logAlways && format.text() && key) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            return logFunctionName_logAlways_logStringForTraceKey_value_usingFormatv_arguments(
                functionName, logAlways, key, value, format.text(), packed.list());
        }
        return {};
    }
    /// The same for a started argument list.
    static NSString logFunctionName_logAlways_logStringForTraceKey_value_usingFormatv_arguments(
        const char* functionName, bool logAlways, StringView key, std::int64_t value, StringView format,
        ArgumentList arguments);

    // Text: key>=threshold: caller message.

    /// Writes the line while the key's level is at least the threshold (a missing key has level 0).
    template <class... Arguments>
    static void logFunctionName_logAlways_logForTraceKey_threshold_usingFormat(
        const char* functionName, bool logAlways, StringView key, std::int64_t threshold,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (logAlways && format.text() && key) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            logFunctionName_logAlways_logForTraceKey_threshold_usingFormatv_arguments(
                functionName, logAlways, key, threshold, format.text(), packed.list());
        }
    }
    /// The same for a started argument list.
    static void logFunctionName_logAlways_logForTraceKey_threshold_usingFormatv_arguments(
        const char* functionName, bool logAlways, StringView key, std::int64_t threshold, StringView format,
        ArgumentList arguments);

    /// Returns the text, or nil, while the key's level is at least the threshold (a missing key has level 0).
    template <class... Arguments>
    static NSString logFunctionName_logAlways_logStringForTraceKey_threshold_usingFormat(
        const char* functionName, bool logAlways, StringView key, std::int64_t threshold,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (logAlways && format.text() && key) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            return logFunctionName_logAlways_logStringForTraceKey_threshold_usingFormatv_arguments(
                functionName, logAlways, key, threshold, format.text(), packed.list());
        }
        return {};
    }
    /// The same for a started argument list.
    static NSString logFunctionName_logAlways_logStringForTraceKey_threshold_usingFormatv_arguments(
        const char* functionName, bool logAlways, StringView key, std::int64_t threshold, StringView format,
        ArgumentList arguments);

    // Text: the keys that are on, joined with "/": caller message.

    /// Writes the line while one of the keys is on.
    template <class... Arguments>
    static void logFunctionName_logAlways_logForAnyTraceKeyOf_usingFormat(
        const char* functionName, bool logAlways, const NSArray& keys,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (logAlways && format.text() && keys) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            logFunctionName_logAlways_logForAnyTraceKeyOf_usingFormatv_arguments(
                functionName, logAlways, keys, format.text(), packed.list());
        }
    }
    /// The same for a started argument list.
    static void logFunctionName_logAlways_logForAnyTraceKeyOf_usingFormatv_arguments(const char* functionName,
                                                                                     bool logAlways,
                                                                                     const NSArray& keys,
                                                                                     StringView format,
                                                                                     ArgumentList arguments);

    /// Returns the text, or nil, while one of the keys is on.
    template <class... Arguments>
    static NSString logFunctionName_logAlways_logStringForAnyTraceKeyOf_usingFormat(
        const char* functionName, bool logAlways, const NSArray& keys,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (logAlways && format.text() && keys) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            return logFunctionName_logAlways_logStringForAnyTraceKeyOf_usingFormatv_arguments(
                functionName, logAlways, keys, format.text(), packed.list());
        }
        return {};
    }
    /// The same for a started argument list.
    static NSString logFunctionName_logAlways_logStringForAnyTraceKeyOf_usingFormatv_arguments(
        const char* functionName, bool logAlways, const NSArray& keys, StringView format,
        ArgumentList arguments);

    // Text: the keys joined with "+": caller message.

    /// Writes the line while all of the keys are on, of which there must be one.
    template <class... Arguments>
    static void logFunctionName_logAlways_logForAllTraceKeysOf_usingFormat(
        const char* functionName, bool logAlways, const NSArray& keys,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (logAlways && format.text() && keys) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            logFunctionName_logAlways_logForAllTraceKeysOf_usingFormatv_arguments(
                functionName, logAlways, keys, format.text(), packed.list());
        }
    }
    /// The same for a started argument list.
    static void logFunctionName_logAlways_logForAllTraceKeysOf_usingFormatv_arguments(
        const char* functionName, bool logAlways, const NSArray& keys, StringView format,
        ArgumentList arguments);

    /// Returns the text, or nil, while all of the keys are on, of which there must be one.
    template <class... Arguments>
    static NSString logFunctionName_logAlways_logStringForAllTraceKeysOf_usingFormat(
        const char* functionName, bool logAlways, const NSArray& keys,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (logAlways && format.text() && keys) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            return logFunctionName_logAlways_logStringForAllTraceKeysOf_usingFormatv_arguments(
                functionName, logAlways, keys, format.text(), packed.list());
        }
        return {};
    }
    /// The same for a started argument list.
    static NSString logFunctionName_logAlways_logStringForAllTraceKeysOf_usingFormatv_arguments(
        const char* functionName, bool logAlways, const NSArray& keys, StringView format,
        ArgumentList arguments);

    // Text: Trace: caller message.

    /// Writes the line while any trace key at all is on.
    template <class... Arguments>
    static void logFunctionName_logAlways_logForAnyTraceKeyUsingFormat(
        const char* functionName, bool logAlways, FormatString<std::type_identity_t<Arguments>...> format,
        const Arguments&... arguments) {
        if (logAlways && format.text()) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            logFunctionName_logAlways_logForAnyTraceKeyUsingFormatv_arguments(functionName, logAlways,
                                                                              format.text(), packed.list());
        }
    }
    /// The same for a started argument list.
    static void logFunctionName_logAlways_logForAnyTraceKeyUsingFormatv_arguments(const char* functionName,
                                                                                  bool logAlways,
                                                                                  StringView format,
                                                                                  ArgumentList arguments);

    /// Returns the text, or nil, while any trace key at all is on.
    template <class... Arguments>
    static NSString logFunctionName_logAlways_logStringForAnyTraceKeyUsingFormat(
        const char* functionName, bool logAlways, FormatString<std::type_identity_t<Arguments>...> format,
        const Arguments&... arguments) {
        if (logAlways && format.text()) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            return logFunctionName_logAlways_logStringForAnyTraceKeyUsingFormatv_arguments(
                functionName, logAlways, format.text(), packed.list());
        }
        return {};
    }
    /// The same for a started argument list.
    static NSString logFunctionName_logAlways_logStringForAnyTraceKeyUsingFormatv_arguments(
        const char* functionName, bool logAlways, StringView format, ArgumentList arguments);
};

} // namespace ZQFoundation

#endif
