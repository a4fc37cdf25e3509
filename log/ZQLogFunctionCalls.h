// SPDX-License-Identifier: MIT
// Declares the log operations that are called from functions.
#ifndef ZQFOUNDATION_LOG_ZQLOGFUNCTIONCALLS_H
#define ZQFOUNDATION_LOG_ZQLOGFUNCTIONCALLS_H

#include "LogCaller.h"
#include "LogGates.h"

#include "../foundation/objects/NSArray.h"

namespace ZQFoundation {

/// The log operations of ZQLog for functions: call them as `ZQLog::...`.
///
/// The function's name is NUL-ended UTF-8, such as `__func__`, or null; it appears as `parse_header()`. Gates
/// and order are those of the operations without a caller; an absent name appears in the line and stops
/// nothing.
class ZQFOUNDATION_EXPORT ZQLogFunctionCalls {
public:
    /// Writes the line "caller text". A flag of NO or a nil text writes nothing.
    static void logFunctionName_logAlways_log(const char* functionName, detail::Flag logAlways,
                                              StringView text);

    /// Returns the line "caller text"; nil for a flag of NO and for a nil text. Writes nothing.
    static NSString logFunctionName_logAlways_logString(const char* functionName, detail::Flag logAlways,
                                                        StringView text);

    /// Writes the line "caller message".
    template <class... Arguments>
    static void
    logFunctionName_logAlways_logWithFormat(const char* functionName, detail::Flag logAlways,
                                            FormatString<std::type_identity_t<Arguments>...> format,
                                            const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text())) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            logFunctionName_logAlways_logWithFormatv_arguments(functionName, logAlways, format.text(),
                                                               packed.list());
        }
    }
    /// With a started argument list: writes the line "caller message".
    static void logFunctionName_logAlways_logWithFormatv_arguments(const char* functionName,
                                                                   detail::Flag logAlways, StringView format,
                                                                   ArgumentList arguments);

    /// Returns the line "caller message", else nil; writes nothing.
    template <class... Arguments>
    static NSString
    logFunctionName_logAlways_logStringWithFormat(const char* functionName, detail::Flag logAlways,
                                                  FormatString<std::type_identity_t<Arguments>...> format,
                                                  const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text())) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            return logFunctionName_logAlways_logStringWithFormatv_arguments(functionName, logAlways,
                                                                            format.text(), packed.list());
        }
        return {};
    }
    /// With a started argument list: returns the line "caller message", else nil; writes nothing.
    static NSString logFunctionName_logAlways_logStringWithFormatv_arguments(const char* functionName,
                                                                             detail::Flag logAlways,
                                                                             StringView format,
                                                                             ArgumentList arguments);

    /// Writes the line "key: caller message" while the trace key is on.
    template <class... Arguments>
    static void logFunctionName_logAlways_logForTraceKey_usingFormat(
        const char* functionName, detail::Flag logAlways, StringView key,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text(), key)) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            logFunctionName_logAlways_logForTraceKey_usingFormatv_arguments(functionName, logAlways, key,
                                                                            format.text(), packed.list());
        }
    }
    /// With a started argument list: writes the line "key: caller message" while the trace key is on.
    static void logFunctionName_logAlways_logForTraceKey_usingFormatv_arguments(const char* functionName,
                                                                                detail::Flag logAlways,
                                                                                StringView key,
                                                                                StringView format,
                                                                                ArgumentList arguments);

    /// Returns the line "key: caller message" while the trace key is on, else nil; writes nothing.
    template <class... Arguments>
    static NSString logFunctionName_logAlways_logStringForTraceKey_usingFormat(
        const char* functionName, detail::Flag logAlways, StringView key,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text(), key)) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            return logFunctionName_logAlways_logStringForTraceKey_usingFormatv_arguments(
                functionName, logAlways, key, format.text(), packed.list());
        }
        return {};
    }
    /// With a started argument list: returns the line "key: caller message" while the trace key is on, else
    /// nil; writes nothing.
    static NSString logFunctionName_logAlways_logStringForTraceKey_usingFormatv_arguments(
        const char* functionName, detail::Flag logAlways, StringView key, StringView format,
        ArgumentList arguments);

    /// Writes the line "key=value: caller message" while the key's level equals the value (a missing key has
    /// level 0).
    template <class... Arguments>
    static void logFunctionName_logAlways_logForTraceKey_value_usingFormat(
        const char* functionName, detail::Flag logAlways, StringView key, std::int64_t value,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text(), key)) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            logFunctionName_logAlways_logForTraceKey_value_usingFormatv_arguments(
                functionName, logAlways, key, value, format.text(), packed.list());
        }
    }
    /// With a started argument list: writes the line "key=value: caller message" while the key's level equals
    /// the value (a missing key has level 0).
    static void logFunctionName_logAlways_logForTraceKey_value_usingFormatv_arguments(
        const char* functionName, detail::Flag logAlways, StringView key, std::int64_t value,
        StringView format, ArgumentList arguments);

    /// Returns the line "key=value: caller message" while the key's level equals the value (a missing key has
    /// level 0), else nil; writes nothing.
    template <class... Arguments>
    static NSString logFunctionName_logAlways_logStringForTraceKey_value_usingFormat(
        const char* functionName, detail::Flag logAlways, StringView key, std::int64_t value,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text(), key)) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            return logFunctionName_logAlways_logStringForTraceKey_value_usingFormatv_arguments(
                functionName, logAlways, key, value, format.text(), packed.list());
        }
        return {};
    }
    /// With a started argument list: returns the line "key=value: caller message" while the key's level
    /// equals the value (a missing key has level 0), else nil; writes nothing.
    static NSString logFunctionName_logAlways_logStringForTraceKey_value_usingFormatv_arguments(
        const char* functionName, detail::Flag logAlways, StringView key, std::int64_t value,
        StringView format, ArgumentList arguments);

    /// Writes the line "key>=threshold: caller message" while the key's level is at least the threshold (a
    /// missing key has level 0).
    template <class... Arguments>
    static void logFunctionName_logAlways_logForTraceKey_threshold_usingFormat(
        const char* functionName, detail::Flag logAlways, StringView key, std::int64_t threshold,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text(), key)) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            logFunctionName_logAlways_logForTraceKey_threshold_usingFormatv_arguments(
                functionName, logAlways, key, threshold, format.text(), packed.list());
        }
    }
    /// With a started argument list: writes the line "key>=threshold: caller message" while the key's level
    /// is at least the threshold (a missing key has level 0).
    static void logFunctionName_logAlways_logForTraceKey_threshold_usingFormatv_arguments(
        const char* functionName, detail::Flag logAlways, StringView key, std::int64_t threshold,
        StringView format, ArgumentList arguments);

    /// Returns the line "key>=threshold: caller message" while the key's level is at least the threshold (a
    /// missing key has level 0), else nil; writes nothing.
    template <class... Arguments>
    static NSString logFunctionName_logAlways_logStringForTraceKey_threshold_usingFormat(
        const char* functionName, detail::Flag logAlways, StringView key, std::int64_t threshold,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text(), key)) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            return logFunctionName_logAlways_logStringForTraceKey_threshold_usingFormatv_arguments(
                functionName, logAlways, key, threshold, format.text(), packed.list());
        }
        return {};
    }
    /// With a started argument list: returns the line "key>=threshold: caller message" while the key's level
    /// is at least the threshold (a missing key has level 0), else nil; writes nothing.
    static NSString logFunctionName_logAlways_logStringForTraceKey_threshold_usingFormatv_arguments(
        const char* functionName, detail::Flag logAlways, StringView key, std::int64_t threshold,
        StringView format, ArgumentList arguments);

    /// Writes the line "A/B: caller message" while one of the keys is on (A and B are those that are).
    template <class... Arguments>
    static void logFunctionName_logAlways_logForAnyTraceKeyOf_usingFormat(
        const char* functionName, detail::Flag logAlways, const NSArray& keys,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text(), keys)) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            logFunctionName_logAlways_logForAnyTraceKeyOf_usingFormatv_arguments(
                functionName, logAlways, keys, format.text(), packed.list());
        }
    }
    /// With a started argument list: writes the line "A/B: caller message" while one of the keys is on (A and
    /// B are those that are).
    static void logFunctionName_logAlways_logForAnyTraceKeyOf_usingFormatv_arguments(const char* functionName,
                                                                                     detail::Flag logAlways,
                                                                                     const NSArray& keys,
                                                                                     StringView format,
                                                                                     ArgumentList arguments);

    /// Returns the line "A/B: caller message" while one of the keys is on (A and B are those that are), else
    /// nil; writes nothing.
    template <class... Arguments>
    static NSString logFunctionName_logAlways_logStringForAnyTraceKeyOf_usingFormat(
        const char* functionName, detail::Flag logAlways, const NSArray& keys,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text(), keys)) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            return logFunctionName_logAlways_logStringForAnyTraceKeyOf_usingFormatv_arguments(
                functionName, logAlways, keys, format.text(), packed.list());
        }
        return {};
    }
    /// With a started argument list: returns the line "A/B: caller message" while one of the keys is on (A
    /// and B are those that are), else nil; writes nothing.
    static NSString logFunctionName_logAlways_logStringForAnyTraceKeyOf_usingFormatv_arguments(
        const char* functionName, detail::Flag logAlways, const NSArray& keys, StringView format,
        ArgumentList arguments);

    /// Writes the line "A+B: caller message" while all of the keys are on, of which there must be one.
    template <class... Arguments>
    static void logFunctionName_logAlways_logForAllTraceKeysOf_usingFormat(
        const char* functionName, detail::Flag logAlways, const NSArray& keys,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text(), keys)) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            logFunctionName_logAlways_logForAllTraceKeysOf_usingFormatv_arguments(
                functionName, logAlways, keys, format.text(), packed.list());
        }
    }
    /// With a started argument list: writes the line "A+B: caller message" while all of the keys are on, of
    /// which there must be one.
    static void logFunctionName_logAlways_logForAllTraceKeysOf_usingFormatv_arguments(
        const char* functionName, detail::Flag logAlways, const NSArray& keys, StringView format,
        ArgumentList arguments);

    /// Returns the line "A+B: caller message" while all of the keys are on, of which there must be one, else
    /// nil; writes nothing.
    template <class... Arguments>
    static NSString logFunctionName_logAlways_logStringForAllTraceKeysOf_usingFormat(
        const char* functionName, detail::Flag logAlways, const NSArray& keys,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text(), keys)) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            return logFunctionName_logAlways_logStringForAllTraceKeysOf_usingFormatv_arguments(
                functionName, logAlways, keys, format.text(), packed.list());
        }
        return {};
    }
    /// With a started argument list: returns the line "A+B: caller message" while all of the keys are on, of
    /// which there must be one, else nil; writes nothing.
    static NSString logFunctionName_logAlways_logStringForAllTraceKeysOf_usingFormatv_arguments(
        const char* functionName, detail::Flag logAlways, const NSArray& keys, StringView format,
        ArgumentList arguments);

    /// Writes the line "Trace: caller message" while any trace key is on.
    template <class... Arguments>
    static void logFunctionName_logAlways_logForAnyTraceKeyUsingFormat(
        const char* functionName, detail::Flag logAlways,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text())) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            logFunctionName_logAlways_logForAnyTraceKeyUsingFormatv_arguments(functionName, logAlways,
                                                                              format.text(), packed.list());
        }
    }
    /// With a started argument list: writes the line "Trace: caller message" while any trace key is on.
    static void logFunctionName_logAlways_logForAnyTraceKeyUsingFormatv_arguments(const char* functionName,
                                                                                  detail::Flag logAlways,
                                                                                  StringView format,
                                                                                  ArgumentList arguments);

    /// Returns the line "Trace: caller message" while any trace key is on, else nil; writes nothing.
    template <class... Arguments>
    static NSString logFunctionName_logAlways_logStringForAnyTraceKeyUsingFormat(
        const char* functionName, detail::Flag logAlways,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text())) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            return logFunctionName_logAlways_logStringForAnyTraceKeyUsingFormatv_arguments(
                functionName, logAlways, format.text(), packed.list());
        }
        return {};
    }
    /// With a started argument list: returns the line "Trace: caller message" while any trace key is on, else
    /// nil; writes nothing.
    static NSString logFunctionName_logAlways_logStringForAnyTraceKeyUsingFormatv_arguments(
        const char* functionName, detail::Flag logAlways, StringView format, ArgumentList arguments);
};

} // namespace ZQFoundation

#endif
