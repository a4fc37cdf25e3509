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
/// The function's name is NUL-ended UTF-8, such as `__func__`, or null; it appears as `parse_header()`.
/// Gates, their order, labels, threads and lists of arguments are those of the operations without a caller
/// (ZQLogPlainCalls); an absent name appears in the line and stops nothing:
///
///     "parse_header"     parse_header()
///     "-[Store reload:]" -[Store reload:]      with a colon, the name is taken as it is,
///     "src/store.c:42"   store.c:42            from its last "/" on
///     nullptr, ""        <<no function name>>()
///
/// The name is read only when a line or text is made, and not kept.
class ZQFOUNDATION_EXPORT ZQLogFunctionCalls {
public:
    /// Writes the line "caller text", the text unchanged and not used as a format. A flag of NO or a nil text
    /// writes nothing.
    ///
    ///     ZQLog::logFunctionName_logAlways_log(__func__, true, "50% done");  // reload() 50% done
    static void logFunctionName_logAlways_log(const char* functionName, detail::Flag logAlways,
                                              StringView text);

    /// Returns the line "caller text"; nil for a flag of NO and for a nil text. Writes nothing.
    static NSString logFunctionName_logAlways_logString(const char* functionName, detail::Flag logAlways,
                                                        StringView text);

    /// Writes the line "caller message".
    ///
    ///     ZQLog::logFunctionName_logAlways_logWithFormat(__func__, true, "%d items", count);
    ///     // reload() 3 items
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
    ///
    ///     NSString text = ZQLog::logFunctionName_logAlways_logStringWithFormat(
    ///         __func__, true, "%d items", count);
    ///     // "reload() 3 items", or nil if the flag is NO
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
    ///
    ///     ZQLog::logFunctionName_logAlways_logForTraceKey_usingFormat(
    ///         __func__, true, "TraceNetwork", "%d items", count);
    ///     // TraceNetwork: reload() 3 items
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
    ///
    ///     NSString text = ZQLog::logFunctionName_logAlways_logStringForTraceKey_usingFormat(
    ///         __func__, true, "TraceNetwork", "%d items", count);
    ///     // "TraceNetwork: reload() 3 items", or nil while the key is off
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
    ///
    ///     ZQLog::logFunctionName_logAlways_logForTraceKey_value_usingFormat(
    ///         __func__, true, "TraceLevel", 3, "%d items", count);
    ///     // TraceLevel=3: reload() 3 items
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
    ///
    ///     NSString text = ZQLog::logFunctionName_logAlways_logStringForTraceKey_value_usingFormat(
    ///         __func__, true, "TraceLevel", 3, "%d items", count);
    ///     // "TraceLevel=3: reload() 3 items", or nil at any other level
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
    ///
    ///     ZQLog::logFunctionName_logAlways_logForTraceKey_threshold_usingFormat(
    ///         __func__, true, "TraceLevel", 2, "%d items", count);
    ///     // TraceLevel>=2: reload() 3 items
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
    ///
    ///     NSString text = ZQLog::logFunctionName_logAlways_logStringForTraceKey_threshold_usingFormat(
    ///         __func__, true, "TraceLevel", 2, "%d items", count);
    ///     // "TraceLevel>=2: reload() 3 items", or nil at a lower level
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
    ///
    ///     ZQLog::logFunctionName_logAlways_logForAnyTraceKeyOf_usingFormat(
    ///         __func__, true, NSArray{"TraceFiles", "TraceNetwork"}, "%d items", count);
    ///     // TraceNetwork: reload() 3 items
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
    ///
    ///     NSString text = ZQLog::logFunctionName_logAlways_logStringForAnyTraceKeyOf_usingFormat(
    ///         __func__, true, NSArray{"TraceFiles", "TraceNetwork"}, "%d items", count);
    ///     // "TraceNetwork: reload() 3 items", or nil while both keys are off
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
    ///
    ///     ZQLog::logFunctionName_logAlways_logForAllTraceKeysOf_usingFormat(
    ///         __func__, true, NSArray{"TraceFiles", "TraceNetwork"}, "%d items", count);
    ///     // TraceFiles+TraceNetwork: reload() 3 items
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
    ///
    ///     NSString text = ZQLog::logFunctionName_logAlways_logStringForAllTraceKeysOf_usingFormat(
    ///         __func__, true, NSArray{"TraceFiles", "TraceNetwork"}, "%d items", count);
    ///     // "TraceFiles+TraceNetwork: reload() 3 items", or nil while one of the keys is off
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
    ///
    ///     ZQLog::logFunctionName_logAlways_logForAnyTraceKeyUsingFormat(__func__, true, "%d items", count);
    ///     // Trace: reload() 3 items
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
    ///
    ///     NSString text = ZQLog::logFunctionName_logAlways_logStringForAnyTraceKeyUsingFormat(
    ///         __func__, true, "%d items", count);
    ///     // "Trace: reload() 3 items", or nil while no trace key is on
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
