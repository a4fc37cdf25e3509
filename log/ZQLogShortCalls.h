// SPDX-License-Identifier: MIT
// Declares the short forms of the log operations.
#ifndef ZQFOUNDATION_LOG_ZQLOGSHORTCALLS_H
#define ZQFOUNDATION_LOG_ZQLOGSHORTCALLS_H

#include "ZQLogPlainCalls.h"

namespace ZQFoundation {

/// The short log operations of ZQLog, without caller and flag: each is the operation with `logAlways_` before
/// its name and the flag YES. Call them as `ZQLog::...`. Conditions, labels, threads and lists of arguments
/// are described at ZQLogPlainCalls.
class ZQFOUNDATION_EXPORT ZQLogShortCalls {
public:
    /// Writes the text as one line, not used as a format: "50%" stays "50%". Nil writes nothing.
    static void log(StringView text);

    /// Returns the text passed in, without a copy; nil for nil. Writes nothing.
    static NSString logString(const NSString& text);

    /// Returns a new string of the text passed in; nil for a null pointer. Writes nothing.
    template <detail::PlainText T>
    static NSString logString(const T& text) {
        return detail::returnedText(text);
    }

    /// Writes the line "message".
    ///
    ///     ZQLog::logWithFormat("%d items", count);  // 3 items
    template <class... Arguments>
    static void logWithFormat(FormatString<std::type_identity_t<Arguments>...> format,
                              const Arguments&... arguments) {
        ZQLogPlainCalls::logAlways_logWithFormat<Arguments...>(true, format, arguments...);
    }
    /// With a started argument list: writes the line "message".
    static void logWithFormatv_arguments(StringView format, ArgumentList arguments);

    /// Returns the line "message", else nil; writes nothing.
    ///
    ///     NSString text = ZQLog::logStringWithFormat("%d items", count);
    ///     // "3 items"
    template <class... Arguments>
    static NSString logStringWithFormat(FormatString<std::type_identity_t<Arguments>...> format,
                                        const Arguments&... arguments) {
        return ZQLogPlainCalls::logAlways_logStringWithFormat<Arguments...>(true, format, arguments...);
    }
    /// With a started argument list: returns the line "message", else nil; writes nothing.
    static NSString logStringWithFormatv_arguments(StringView format, ArgumentList arguments);

    /// Writes the line "key: message" while the trace key is on.
    ///
    ///     ZQLog::logForTraceKey_usingFormat("TraceNetwork", "%d items", count);
    ///     // TraceNetwork: 3 items
    template <class... Arguments>
    static void logForTraceKey_usingFormat(StringView key,
                                           FormatString<std::type_identity_t<Arguments>...> format,
                                           const Arguments&... arguments) {
        ZQLogPlainCalls::logAlways_logForTraceKey_usingFormat<Arguments...>(true, key, format, arguments...);
    }
    /// With a started argument list: writes the line "key: message" while the trace key is on.
    static void logForTraceKey_usingFormatv_arguments(StringView key, StringView format,
                                                      ArgumentList arguments);

    /// Returns the line "key: message" while the trace key is on, else nil; writes nothing.
    ///
    ///     NSString text = ZQLog::logStringForTraceKey_usingFormat("TraceNetwork", "%d items", count);
    ///     // "TraceNetwork: 3 items", or nil while the key is off
    template <class... Arguments>
    static NSString logStringForTraceKey_usingFormat(StringView key,
                                                     FormatString<std::type_identity_t<Arguments>...> format,
                                                     const Arguments&... arguments) {
        return ZQLogPlainCalls::logAlways_logStringForTraceKey_usingFormat<Arguments...>(true, key, format,
                                                                                         arguments...);
    }
    /// With a started argument list: returns the line "key: message" while the trace key is on, else nil;
    /// writes nothing.
    static NSString logStringForTraceKey_usingFormatv_arguments(StringView key, StringView format,
                                                                ArgumentList arguments);

    /// Writes the line "key=value: message" while the key's level equals the value (a missing key has level
    /// 0).
    ///
    ///     ZQLog::logForTraceKey_value_usingFormat("TraceLevel", 3, "%d items", count);
    ///     // TraceLevel=3: 3 items
    template <class... Arguments>
    static void logForTraceKey_value_usingFormat(StringView key, std::int64_t value,
                                                 FormatString<std::type_identity_t<Arguments>...> format,
                                                 const Arguments&... arguments) {
        ZQLogPlainCalls::logAlways_logForTraceKey_value_usingFormat<Arguments...>(true, key, value, format,
                                                                                  arguments...);
    }
    /// With a started argument list: writes the line "key=value: message" while the key's level equals the
    /// value (a missing key has level 0).
    static void logForTraceKey_value_usingFormatv_arguments(StringView key, std::int64_t value,
                                                            StringView format, ArgumentList arguments);

    /// Returns the line "key=value: message" while the key's level equals the value (a missing key has level
    /// 0), else nil; writes nothing.
    ///
    ///     NSString text = ZQLog::logStringForTraceKey_value_usingFormat("TraceLevel", 3, "%d items", count);
    ///     // "TraceLevel=3: 3 items", or nil at any other level
    template <class... Arguments>
    static NSString
    logStringForTraceKey_value_usingFormat(StringView key, std::int64_t value,
                                           FormatString<std::type_identity_t<Arguments>...> format,
                                           const Arguments&... arguments) {
        return ZQLogPlainCalls::logAlways_logStringForTraceKey_value_usingFormat<Arguments...>(
            true, key, value, format, arguments...);
    }
    /// With a started argument list: returns the line "key=value: message" while the key's level equals the
    /// value (a missing key has level 0), else nil; writes nothing.
    static NSString logStringForTraceKey_value_usingFormatv_arguments(StringView key, std::int64_t value,
                                                                      StringView format,
                                                                      ArgumentList arguments);

    /// Writes the line "key>=threshold: message" while the key's level is at least the threshold (a missing
    /// key has level 0).
    ///
    ///     ZQLog::logForTraceKey_threshold_usingFormat("TraceLevel", 2, "%d items", count);
    ///     // TraceLevel>=2: 3 items
    template <class... Arguments>
    static void logForTraceKey_threshold_usingFormat(StringView key, std::int64_t threshold,
                                                     FormatString<std::type_identity_t<Arguments>...> format,
                                                     const Arguments&... arguments) {
        ZQLogPlainCalls::logAlways_logForTraceKey_threshold_usingFormat<Arguments...>(true, key, threshold,
                                                                                      format, arguments...);
    }
    /// With a started argument list: writes the line "key>=threshold: message" while the key's level is at
    /// least the threshold (a missing key has level 0).
    static void logForTraceKey_threshold_usingFormatv_arguments(StringView key, std::int64_t threshold,
                                                                StringView format, ArgumentList arguments);

    /// Returns the line "key>=threshold: message" while the key's level is at least the threshold (a missing
    /// key has level 0), else nil; writes nothing.
    ///
    ///     NSString text = ZQLog::logStringForTraceKey_threshold_usingFormat(
    ///         "TraceLevel", 2, "%d items", count);
    ///     // "TraceLevel>=2: 3 items", or nil at a lower level
    template <class... Arguments>
    static NSString
    logStringForTraceKey_threshold_usingFormat(StringView key, std::int64_t threshold,
                                               FormatString<std::type_identity_t<Arguments>...> format,
                                               const Arguments&... arguments) {
        return ZQLogPlainCalls::logAlways_logStringForTraceKey_threshold_usingFormat<Arguments...>(
            true, key, threshold, format, arguments...);
    }
    /// With a started argument list: returns the line "key>=threshold: message" while the key's level is at
    /// least the threshold (a missing key has level 0), else nil; writes nothing.
    static NSString logStringForTraceKey_threshold_usingFormatv_arguments(StringView key,
                                                                          std::int64_t threshold,
                                                                          StringView format,
                                                                          ArgumentList arguments);

    /// Writes the line "A/B: message" while one of the keys is on (A and B are those that are).
    ///
    ///     ZQLog::logForAnyTraceKeyOf_usingFormat(NSArray{"TraceFiles", "TraceNetwork"}, "%d items", count);
    ///     // TraceNetwork: 3 items
    template <class... Arguments>
    static void logForAnyTraceKeyOf_usingFormat(const NSArray& keys,
                                                FormatString<std::type_identity_t<Arguments>...> format,
                                                const Arguments&... arguments) {
        ZQLogPlainCalls::logAlways_logForAnyTraceKeyOf_usingFormat<Arguments...>(true, keys, format,
                                                                                 arguments...);
    }
    /// With a started argument list: writes the line "A/B: message" while one of the keys is on (A and B are
    /// those that are).
    static void logForAnyTraceKeyOf_usingFormatv_arguments(const NSArray& keys, StringView format,
                                                           ArgumentList arguments);

    /// Returns the line "A/B: message" while one of the keys is on (A and B are those that are), else nil;
    /// writes nothing.
    ///
    ///     NSString text = ZQLog::logStringForAnyTraceKeyOf_usingFormat(
    ///         NSArray{"TraceFiles", "TraceNetwork"}, "%d items", count);
    ///     // "TraceNetwork: 3 items", or nil while both keys are off
    template <class... Arguments>
    static NSString
    logStringForAnyTraceKeyOf_usingFormat(const NSArray& keys,
                                          FormatString<std::type_identity_t<Arguments>...> format,
                                          const Arguments&... arguments) {
        return ZQLogPlainCalls::logAlways_logStringForAnyTraceKeyOf_usingFormat<Arguments...>(
            true, keys, format, arguments...);
    }
    /// With a started argument list: returns the line "A/B: message" while one of the keys is on (A and B are
    /// those that are), else nil; writes nothing.
    static NSString logStringForAnyTraceKeyOf_usingFormatv_arguments(const NSArray& keys, StringView format,
                                                                     ArgumentList arguments);

    /// Writes the line "A+B: message" while all of the keys are on, of which there must be one.
    ///
    ///     ZQLog::logForAllTraceKeysOf_usingFormat(NSArray{"TraceFiles", "TraceNetwork"}, "%d items", count);
    ///     // TraceFiles+TraceNetwork: 3 items
    template <class... Arguments>
    static void logForAllTraceKeysOf_usingFormat(const NSArray& keys,
                                                 FormatString<std::type_identity_t<Arguments>...> format,
                                                 const Arguments&... arguments) {
        ZQLogPlainCalls::logAlways_logForAllTraceKeysOf_usingFormat<Arguments...>(true, keys, format,
                                                                                  arguments...);
    }
    /// With a started argument list: writes the line "A+B: message" while all of the keys are on, of which
    /// there must be one.
    static void logForAllTraceKeysOf_usingFormatv_arguments(const NSArray& keys, StringView format,
                                                            ArgumentList arguments);

    /// Returns the line "A+B: message" while all of the keys are on, of which there must be one, else nil;
    /// writes nothing.
    ///
    ///     NSString text = ZQLog::logStringForAllTraceKeysOf_usingFormat(
    ///         NSArray{"TraceFiles", "TraceNetwork"}, "%d items", count);
    ///     // "TraceFiles+TraceNetwork: 3 items", or nil while one of the keys is off
    template <class... Arguments>
    static NSString
    logStringForAllTraceKeysOf_usingFormat(const NSArray& keys,
                                           FormatString<std::type_identity_t<Arguments>...> format,
                                           const Arguments&... arguments) {
        return ZQLogPlainCalls::logAlways_logStringForAllTraceKeysOf_usingFormat<Arguments...>(
            true, keys, format, arguments...);
    }
    /// With a started argument list: returns the line "A+B: message" while all of the keys are on, of which
    /// there must be one, else nil; writes nothing.
    static NSString logStringForAllTraceKeysOf_usingFormatv_arguments(const NSArray& keys, StringView format,
                                                                      ArgumentList arguments);

    /// Writes the line "Trace: message" while any trace key is on.
    ///
    ///     ZQLog::logForAnyTraceKeyUsingFormat("%d items", count);  // Trace: 3 items
    template <class... Arguments>
    static void logForAnyTraceKeyUsingFormat(FormatString<std::type_identity_t<Arguments>...> format,
                                             const Arguments&... arguments) {
        ZQLogPlainCalls::logAlways_logForAnyTraceKeyUsingFormat<Arguments...>(true, format, arguments...);
    }
    /// With a started argument list: writes the line "Trace: message" while any trace key is on.
    static void logForAnyTraceKeyUsingFormatv_arguments(StringView format, ArgumentList arguments);

    /// Returns the line "Trace: message" while any trace key is on, else nil; writes nothing.
    ///
    ///     NSString text = ZQLog::logStringForAnyTraceKeyUsingFormat("%d items", count);
    ///     // "Trace: 3 items", or nil while no trace key is on
    template <class... Arguments>
    static NSString
    logStringForAnyTraceKeyUsingFormat(FormatString<std::type_identity_t<Arguments>...> format,
                                       const Arguments&... arguments) {
        return ZQLogPlainCalls::logAlways_logStringForAnyTraceKeyUsingFormat<Arguments...>(true, format,
                                                                                           arguments...);
    }
    /// With a started argument list: returns the line "Trace: message" while any trace key is on, else nil;
    /// writes nothing.
    static NSString logStringForAnyTraceKeyUsingFormatv_arguments(StringView format, ArgumentList arguments);
};

} // namespace ZQFoundation

#endif
