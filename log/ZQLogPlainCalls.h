// SPDX-License-Identifier: MIT
// Declares the log operations that take no caller.
#ifndef ZQFOUNDATION_LOG_ZQLOGPLAINCALLS_H
#define ZQFOUNDATION_LOG_ZQLOGPLAINCALLS_H

#include "LogCaller.h"
#include "LogGates.h"

#include "../foundation/objects/NSArray.h"

namespace ZQFoundation {

/// The log operations of ZQLog without a caller: call them as `ZQLog::...`.
///
/// All check, in this order, the flag, the format, the key or keys (a nil one stops the call) and the trace
/// condition; only then is anything described or formatted. A call that is stopped writes nothing, returns
/// nil and costs no allocation. Any thread may call them at any time; so may signal handlers, if the process
/// has logged a line and queried a trace key before (docs/hazards.md).
///
/// A name ends with its condition. While that holds, its label is before the message:
///
///     ...WithFormat             no condition, no label
///     ...ForTraceKey            TraceNetwork             the key
///     ...ForTraceKey_value      TraceLevel=3             the value in the call
///     ...ForTraceKey_threshold  TraceLevel>=2            the threshold, not the level that is set
///     ...ForAnyTraceKeyOf       TraceFiles/TraceNetwork  those keys of the array that are on, in its order
///     ...ForAllTraceKeysOf      TraceFiles+TraceNetwork  all keys of the array
///     ...ForAnyTraceKey         Trace                    the word itself
///
/// A key is on if the text of its value is "YES" in any letter case or begins with an integer other than 0:
/// YES, 1 and "2 times" switch it on, 0.5 and "true" do not. Its level is its value as a 32-bit integer, and
/// 0 if there is none. So value 0 and a threshold of 0 or less hold for a key that nobody has set. An array
/// without elements never holds, not even as "all of"; an element that is not a string is a key that is off.
///
/// The operations with `Formatv_arguments` in their names take the arguments as a list. Wrappers of a host
/// call them, with the list that the wrapper itself was given. Format, list and arguments are read before the
/// call returns and not kept. They accept formats that are not checked: a conversion whose argument is
/// missing or of another type has a defined result.
class ZQFOUNDATION_EXPORT ZQLogPlainCalls {
public:
    /// Writes the line "message".
    ///
    ///     ZQLog::logAlways_logWithFormat(true, "%d items", count);  // 3 items
    template <class... Arguments>
    static void logAlways_logWithFormat(detail::Flag logAlways,
                                        FormatString<std::type_identity_t<Arguments>...> format,
                                        const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text())) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            logAlways_logWithFormatv_arguments(logAlways, format.text(), packed.list());
        }
    }
    /// With a started argument list: writes the line "message".
    static void logAlways_logWithFormatv_arguments(detail::Flag logAlways, StringView format,
                                                   ArgumentList arguments);

    /// Returns the line "message", else nil; writes nothing.
    ///
    ///     NSString text = ZQLog::logAlways_logStringWithFormat(true, "%d items", count);
    ///     // "3 items", or nil if the flag is NO
    template <class... Arguments>
    static NSString logAlways_logStringWithFormat(detail::Flag logAlways,
                                                  FormatString<std::type_identity_t<Arguments>...> format,
                                                  const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text())) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            return logAlways_logStringWithFormatv_arguments(logAlways, format.text(), packed.list());
        }
        return {};
    }
    /// With a started argument list: returns the line "message", else nil; writes nothing.
    static NSString logAlways_logStringWithFormatv_arguments(detail::Flag logAlways, StringView format,
                                                             ArgumentList arguments);

    /// Writes the line "key: message" while the trace key is on.
    ///
    ///     ZQLog::logAlways_logForTraceKey_usingFormat(true, "TraceNetwork", "%d items", count);
    ///     // TraceNetwork: 3 items
    template <class... Arguments>
    static void logAlways_logForTraceKey_usingFormat(detail::Flag logAlways, StringView key,
                                                     FormatString<std::type_identity_t<Arguments>...> format,
                                                     const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text(), key)) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            logAlways_logForTraceKey_usingFormatv_arguments(logAlways, key, format.text(), packed.list());
        }
    }
    /// With a started argument list: writes the line "key: message" while the trace key is on.
    static void logAlways_logForTraceKey_usingFormatv_arguments(detail::Flag logAlways, StringView key,
                                                                StringView format, ArgumentList arguments);

    /// Returns the line "key: message" while the trace key is on, else nil; writes nothing.
    ///
    ///     NSString text = ZQLog::logAlways_logStringForTraceKey_usingFormat(
    ///         true, "TraceNetwork", "%d items", count);
    ///     // "TraceNetwork: 3 items", or nil while the key is off
    template <class... Arguments>
    static NSString
    logAlways_logStringForTraceKey_usingFormat(detail::Flag logAlways, StringView key,
                                               FormatString<std::type_identity_t<Arguments>...> format,
                                               const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text(), key)) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            return logAlways_logStringForTraceKey_usingFormatv_arguments(logAlways, key, format.text(),
                                                                         packed.list());
        }
        return {};
    }
    /// With a started argument list: returns the line "key: message" while the trace key is on, else nil;
    /// writes nothing.
    static NSString logAlways_logStringForTraceKey_usingFormatv_arguments(detail::Flag logAlways,
                                                                          StringView key, StringView format,
                                                                          ArgumentList arguments);

    /// Writes the line "key=value: message" while the key's level equals the value (a missing key has level
    /// 0).
    ///
    ///     ZQLog::logAlways_logForTraceKey_value_usingFormat(true, "TraceLevel", 3, "%d items", count);
    ///     // TraceLevel=3: 3 items
    template <class... Arguments>
    static void
    logAlways_logForTraceKey_value_usingFormat(detail::Flag logAlways, StringView key, std::int64_t value,
                                               FormatString<std::type_identity_t<Arguments>...> format,
                                               const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text(), key)) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            logAlways_logForTraceKey_value_usingFormatv_arguments(logAlways, key, value, format.text(),
                                                                  packed.list());
        }
    }
    /// With a started argument list: writes the line "key=value: message" while the key's level equals the
    /// value (a missing key has level 0).
    static void logAlways_logForTraceKey_value_usingFormatv_arguments(detail::Flag logAlways, StringView key,
                                                                      std::int64_t value, StringView format,
                                                                      ArgumentList arguments);

    /// Returns the line "key=value: message" while the key's level equals the value (a missing key has level
    /// 0), else nil; writes nothing.
    ///
    ///     NSString text = ZQLog::logAlways_logStringForTraceKey_value_usingFormat(
    ///         true, "TraceLevel", 3, "%d items", count);
    ///     // "TraceLevel=3: 3 items", or nil at any other level
    template <class... Arguments>
    static NSString logAlways_logStringForTraceKey_value_usingFormat(
        detail::Flag logAlways, StringView key, std::int64_t value,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text(), key)) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            return logAlways_logStringForTraceKey_value_usingFormatv_arguments(logAlways, key, value,
                                                                               format.text(), packed.list());
        }
        return {};
    }
    /// With a started argument list: returns the line "key=value: message" while the key's level equals the
    /// value (a missing key has level 0), else nil; writes nothing.
    static NSString logAlways_logStringForTraceKey_value_usingFormatv_arguments(detail::Flag logAlways,
                                                                                StringView key,
                                                                                std::int64_t value,
                                                                                StringView format,
                                                                                ArgumentList arguments);

    /// Writes the line "key>=threshold: message" while the key's level is at least the threshold (a missing
    /// key has level 0).
    ///
    ///     ZQLog::logAlways_logForTraceKey_threshold_usingFormat(true, "TraceLevel", 2, "%d items", count);
    ///     // TraceLevel>=2: 3 items
    template <class... Arguments>
    static void logAlways_logForTraceKey_threshold_usingFormat(
        detail::Flag logAlways, StringView key, std::int64_t threshold,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text(), key)) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            logAlways_logForTraceKey_threshold_usingFormatv_arguments(logAlways, key, threshold,
                                                                      format.text(), packed.list());
        }
    }
    /// With a started argument list: writes the line "key>=threshold: message" while the key's level is at
    /// least the threshold (a missing key has level 0).
    static void logAlways_logForTraceKey_threshold_usingFormatv_arguments(detail::Flag logAlways,
                                                                          StringView key,
                                                                          std::int64_t threshold,
                                                                          StringView format,
                                                                          ArgumentList arguments);

    /// Returns the line "key>=threshold: message" while the key's level is at least the threshold (a missing
    /// key has level 0), else nil; writes nothing.
    ///
    ///     NSString text = ZQLog::logAlways_logStringForTraceKey_threshold_usingFormat(
    ///         true, "TraceLevel", 2, "%d items", count);
    ///     // "TraceLevel>=2: 3 items", or nil at a lower level
    template <class... Arguments>
    static NSString logAlways_logStringForTraceKey_threshold_usingFormat(
        detail::Flag logAlways, StringView key, std::int64_t threshold,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text(), key)) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            return logAlways_logStringForTraceKey_threshold_usingFormatv_arguments(
                logAlways, key, threshold, format.text(), packed.list());
        }
        return {};
    }
    /// With a started argument list: returns the line "key>=threshold: message" while the key's level is at
    /// least the threshold (a missing key has level 0), else nil; writes nothing.
    static NSString logAlways_logStringForTraceKey_threshold_usingFormatv_arguments(detail::Flag logAlways,
                                                                                    StringView key,
                                                                                    std::int64_t threshold,
                                                                                    StringView format,
                                                                                    ArgumentList arguments);

    /// Writes the line "A/B: message" while one of the keys is on (A and B are those that are).
    ///
    ///     ZQLog::logAlways_logForAnyTraceKeyOf_usingFormat(
    ///         true, NSArray{"TraceFiles", "TraceNetwork"}, "%d items", count);
    ///     // TraceNetwork: 3 items
    template <class... Arguments>
    static void
    logAlways_logForAnyTraceKeyOf_usingFormat(detail::Flag logAlways, const NSArray& keys,
                                              FormatString<std::type_identity_t<Arguments>...> format,
                                              const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text(), keys)) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            logAlways_logForAnyTraceKeyOf_usingFormatv_arguments(logAlways, keys, format.text(),
                                                                 packed.list());
        }
    }
    /// With a started argument list: writes the line "A/B: message" while one of the keys is on (A and B are
    /// those that are).
    static void logAlways_logForAnyTraceKeyOf_usingFormatv_arguments(detail::Flag logAlways,
                                                                     const NSArray& keys, StringView format,
                                                                     ArgumentList arguments);

    /// Returns the line "A/B: message" while one of the keys is on (A and B are those that are), else nil;
    /// writes nothing.
    ///
    ///     NSString text = ZQLog::logAlways_logStringForAnyTraceKeyOf_usingFormat(
    ///         true, NSArray{"TraceFiles", "TraceNetwork"}, "%d items", count);
    ///     // "TraceNetwork: 3 items", or nil while both keys are off
    template <class... Arguments>
    static NSString
    logAlways_logStringForAnyTraceKeyOf_usingFormat(detail::Flag logAlways, const NSArray& keys,
                                                    FormatString<std::type_identity_t<Arguments>...> format,
                                                    const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text(), keys)) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            return logAlways_logStringForAnyTraceKeyOf_usingFormatv_arguments(logAlways, keys, format.text(),
                                                                              packed.list());
        }
        return {};
    }
    /// With a started argument list: returns the line "A/B: message" while one of the keys is on (A and B are
    /// those that are), else nil; writes nothing.
    static NSString logAlways_logStringForAnyTraceKeyOf_usingFormatv_arguments(detail::Flag logAlways,
                                                                               const NSArray& keys,
                                                                               StringView format,
                                                                               ArgumentList arguments);

    /// Writes the line "A+B: message" while all of the keys are on, of which there must be one.
    ///
    ///     ZQLog::logAlways_logForAllTraceKeysOf_usingFormat(
    ///         true, NSArray{"TraceFiles", "TraceNetwork"}, "%d items", count);
    ///     // TraceFiles+TraceNetwork: 3 items
    template <class... Arguments>
    static void
    logAlways_logForAllTraceKeysOf_usingFormat(detail::Flag logAlways, const NSArray& keys,
                                               FormatString<std::type_identity_t<Arguments>...> format,
                                               const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text(), keys)) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            logAlways_logForAllTraceKeysOf_usingFormatv_arguments(logAlways, keys, format.text(),
                                                                  packed.list());
        }
    }
    /// With a started argument list: writes the line "A+B: message" while all of the keys are on, of which
    /// there must be one.
    static void logAlways_logForAllTraceKeysOf_usingFormatv_arguments(detail::Flag logAlways,
                                                                      const NSArray& keys, StringView format,
                                                                      ArgumentList arguments);

    /// Returns the line "A+B: message" while all of the keys are on, of which there must be one, else nil;
    /// writes nothing.
    ///
    ///     NSString text = ZQLog::logAlways_logStringForAllTraceKeysOf_usingFormat(
    ///         true, NSArray{"TraceFiles", "TraceNetwork"}, "%d items", count);
    ///     // "TraceFiles+TraceNetwork: 3 items", or nil while one of the keys is off
    template <class... Arguments>
    static NSString
    logAlways_logStringForAllTraceKeysOf_usingFormat(detail::Flag logAlways, const NSArray& keys,
                                                     FormatString<std::type_identity_t<Arguments>...> format,
                                                     const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text(), keys)) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            return logAlways_logStringForAllTraceKeysOf_usingFormatv_arguments(logAlways, keys, format.text(),
                                                                               packed.list());
        }
        return {};
    }
    /// With a started argument list: returns the line "A+B: message" while all of the keys are on, of which
    /// there must be one, else nil; writes nothing.
    static NSString logAlways_logStringForAllTraceKeysOf_usingFormatv_arguments(detail::Flag logAlways,
                                                                                const NSArray& keys,
                                                                                StringView format,
                                                                                ArgumentList arguments);

    /// Writes the line "Trace: message" while any trace key is on.
    ///
    ///     ZQLog::logAlways_logForAnyTraceKeyUsingFormat(true, "%d items", count);
    ///     // Trace: 3 items
    template <class... Arguments>
    static void
    logAlways_logForAnyTraceKeyUsingFormat(detail::Flag logAlways,
                                           FormatString<std::type_identity_t<Arguments>...> format,
                                           const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text())) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            logAlways_logForAnyTraceKeyUsingFormatv_arguments(logAlways, format.text(), packed.list());
        }
    }
    /// With a started argument list: writes the line "Trace: message" while any trace key is on.
    static void logAlways_logForAnyTraceKeyUsingFormatv_arguments(detail::Flag logAlways, StringView format,
                                                                  ArgumentList arguments);

    /// Returns the line "Trace: message" while any trace key is on, else nil; writes nothing.
    ///
    ///     NSString text = ZQLog::logAlways_logStringForAnyTraceKeyUsingFormat(true, "%d items", count);
    ///     // "Trace: 3 items", or nil while no trace key is on
    template <class... Arguments>
    static NSString
    logAlways_logStringForAnyTraceKeyUsingFormat(detail::Flag logAlways,
                                                 FormatString<std::type_identity_t<Arguments>...> format,
                                                 const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text())) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            return logAlways_logStringForAnyTraceKeyUsingFormatv_arguments(logAlways, format.text(),
                                                                           packed.list());
        }
        return {};
    }
    /// With a started argument list: returns the line "Trace: message" while any trace key is on, else nil;
    /// writes nothing.
    static NSString logAlways_logStringForAnyTraceKeyUsingFormatv_arguments(detail::Flag logAlways,
                                                                            StringView format,
                                                                            ArgumentList arguments);
};

} // namespace ZQFoundation

#endif
