// SPDX-License-Identifier: MIT
#ifndef ZQFOUNDATION_LOG_ZQLOGMETHODCALLS_H
#define ZQFOUNDATION_LOG_ZQLOGMETHODCALLS_H

#include "LogCaller.h"

#include "../foundation/objects/NSArray.h"

namespace ZQFoundation {

/// The log operations of ZQLog for methods: call them as `ZQLog::...`.
///
/// The caller is `this`, a value, `classOf<Store>()` or `nullptr`; the method a text such as "reload:", or
/// nil. They show as `-[(Store *)0x7f01 reload:]`. Gates and order as for the operations without a caller;
/// what is absent of the caller shows in the line and stops nothing.
class ZQFOUNDATION_EXPORT ZQLogMethodCalls {
public:
    /// Writes the line "caller text". A flag of NO or a nil text writes nothing.
    static void logSelf_method_logAlways_log(const LogCaller& self, StringView method, bool logAlways,
                                             StringView text);

    /// The text that the operation above would write, or nil.
    static NSString logSelf_method_logAlways_logString(const LogCaller& self, StringView method,
                                                       bool logAlways, StringView text);

    // Text: caller message.

    /// Writes the line.
    template <class... Arguments>
    static void
    logSelf_method_logAlways_logWithFormat(const LogCaller& self, StringView method, bool logAlways,
                                           FormatString<std::type_identity_t<Arguments>...> format,
                                           const Arguments&... arguments) {
        if (logAlways && format.text()) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            logSelf_method_logAlways_logWithFormatv_arguments(self, method, logAlways, format.text(),
                                                              packed.list());
        }
    }
    /// The same for a started argument list.
    static void logSelf_method_logAlways_logWithFormatv_arguments(const LogCaller& self, StringView method,
                                                                  bool logAlways, StringView format,
                                                                  ArgumentList arguments);

    /// Returns the text, or nil.
    template <class... Arguments>
    static NSString
    logSelf_method_logAlways_logStringWithFormat(const LogCaller& self, StringView method, bool logAlways,
                                                 FormatString<std::type_identity_t<Arguments>...> format,
                                                 const Arguments&... arguments) {
        if (logAlways && format.text()) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            return logSelf_method_logAlways_logStringWithFormatv_arguments(self, method, logAlways,
                                                                           format.text(), packed.list());
        }
        return {};
    }
    /// The same for a started argument list.
    static NSString logSelf_method_logAlways_logStringWithFormatv_arguments(const LogCaller& self,
                                                                            StringView method, bool logAlways,
                                                                            StringView format,
                                                                            ArgumentList arguments);

    // Text: key: caller message.

    /// Writes the line while the trace key is on.
    template <class... Arguments>
    static void logSelf_method_logAlways_logForTraceKey_usingFormat(
        const LogCaller& self, StringView method, bool logAlways, StringView key,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (logAlways && format.text() && key) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            logSelf_method_logAlways_logForTraceKey_usingFormatv_arguments(self, method, logAlways, key,
                                                                           format.text(), packed.list());
        }
    }
    /// The same for a started argument list.
    static void logSelf_method_logAlways_logForTraceKey_usingFormatv_arguments(const LogCaller& self,
                                                                               StringView method,
                                                                               bool logAlways, StringView key,
                                                                               StringView format,
                                                                               ArgumentList arguments);

    /// Returns the text, or nil, while the trace key is on.
    template <class... Arguments>
    static NSString logSelf_method_logAlways_logStringForTraceKey_usingFormat(
        const LogCaller& self, StringView method, bool logAlways, StringView key,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (logAlways && format.text() && key) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            return logSelf_method_logAlways_logStringForTraceKey_usingFormatv_arguments(
                self, method, logAlways, key, format.text(), packed.list());
        }
        return {};
    }
    /// The same for a started argument list.
    static NSString logSelf_method_logAlways_logStringForTraceKey_usingFormatv_arguments(
        const LogCaller& self, StringView method, bool logAlways, StringView key, StringView format,
        ArgumentList arguments);

    // Text: key=value: caller message.

    /// Writes the line while the key's level equals the value (a missing key has level 0).
    template <class... Arguments>
    static void logSelf_method_logAlways_logForTraceKey_value_usingFormat(
        const LogCaller& self, StringView method, bool logAlways, StringView key, std::int64_t value,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (logAlways && format.text() && key) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            logSelf_method_logAlways_logForTraceKey_value_usingFormatv_arguments(
                self, method, logAlways, key, value, format.text(), packed.list());
        }
    }
    /// The same for a started argument list.
    static void logSelf_method_logAlways_logForTraceKey_value_usingFormatv_arguments(
        const LogCaller& self, StringView method, bool logAlways, StringView key, std::int64_t value,
        StringView format, ArgumentList arguments);

    /// Returns the text, or nil, while the key's level equals the value (a missing key has level 0).
    template <class... Arguments>
    static NSString logSelf_method_logAlways_logStringForTraceKey_value_usingFormat(
        const LogCaller& self, StringView method, bool logAlways, StringView key, std::int64_t value,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (logAlways && format.text() && key) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            return logSelf_method_logAlways_logStringForTraceKey_value_usingFormatv_arguments(
                self, method, logAlways, key, value, format.text(), packed.list());
        }
        return {};
    }
    /// The same for a started argument list.
    static NSString logSelf_method_logAlways_logStringForTraceKey_value_usingFormatv_arguments(
        const LogCaller& self, StringView method, bool logAlways, StringView key, std::int64_t value,
        StringView format, ArgumentList arguments);

    // Text: key>=threshold: caller message.

    /// Writes the line while the key's level is at least the threshold (a missing key has level 0).
    template <class... Arguments>
    static void logSelf_method_logAlways_logForTraceKey_threshold_usingFormat(
        const LogCaller& self, StringView method, bool logAlways, StringView key, std::int64_t threshold,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (logAlways && format.text() && key) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            logSelf_method_logAlways_logForTraceKey_threshold_usingFormatv_arguments(
                self, method, logAlways, key, threshold, format.text(), packed.list());
        }
    }
    /// The same for a started argument list.
    static void logSelf_method_logAlways_logForTraceKey_threshold_usingFormatv_arguments(
        const LogCaller& self, StringView method, bool logAlways, StringView key, std::int64_t threshold,
        StringView format, ArgumentList arguments);

    /// Returns the text, or nil, while the key's level is at least the threshold (a missing key has level 0).
    template <class... Arguments>
    static NSString logSelf_method_logAlways_logStringForTraceKey_threshold_usingFormat(
        const LogCaller& self, StringView method, bool logAlways, StringView key, std::int64_t threshold,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (logAlways && format.text() && key) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            return logSelf_method_logAlways_logStringForTraceKey_threshold_usingFormatv_arguments(
                self, method, logAlways, key, threshold, format.text(), packed.list());
        }
        return {};
    }
    /// The same for a started argument list.
    static NSString logSelf_method_logAlways_logStringForTraceKey_threshold_usingFormatv_arguments(
        const LogCaller& self, StringView method, bool logAlways, StringView key, std::int64_t threshold,
        StringView format, ArgumentList arguments);

    // Text: the keys that are on, joined with "/": caller message.

    /// Writes the line while one of the keys is on.
    template <class... Arguments>
    static void logSelf_method_logAlways_logForAnyTraceKeyOf_usingFormat(
        const LogCaller& self, StringView method, bool logAlways, const NSArray& keys,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (logAlways && format.text() && keys) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            logSelf_method_logAlways_logForAnyTraceKeyOf_usingFormatv_arguments(self, method, logAlways, keys,
                                                                                format.text(), packed.list());
        }
    }
    /// The same for a started argument list.
    static void logSelf_method_logAlways_logForAnyTraceKeyOf_usingFormatv_arguments(
        const LogCaller& self, StringView method, bool logAlways, const NSArray& keys, StringView format,
        ArgumentList arguments);

    /// Returns the text, or nil, while one of the keys is on.
    template <class... Arguments>
    static NSString logSelf_method_logAlways_logStringForAnyTraceKeyOf_usingFormat(
        const LogCaller& self, StringView method, bool logAlways, const NSArray& keys,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (logAlways && format.text() && keys) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            return logSelf_method_logAlways_logStringForAnyTraceKeyOf_usingFormatv_arguments(
                self, method, logAlways, keys, format.text(), packed.list());
        }
        return {};
    }
    /// The same for a started argument list.
    static NSString logSelf_method_logAlways_logStringForAnyTraceKeyOf_usingFormatv_arguments(
        const LogCaller& self, StringView method, bool logAlways, const NSArray& keys, StringView format,
        ArgumentList arguments);

    // Text: the keys joined with "+": caller message.

    /// Writes the line while all of the keys are on, of which there must be one.
    template <class... Arguments>
    static void logSelf_method_logAlways_logForAllTraceKeysOf_usingFormat(
        const LogCaller& self, StringView method, bool logAlways, const NSArray& keys,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (logAlways && format.text() && keys) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            logSelf_method_logAlways_logForAllTraceKeysOf_usingFormatv_arguments(
                self, method, logAlways, keys, format.text(), packed.list());
        }
    }
    /// The same for a started argument list.
    static void logSelf_method_logAlways_logForAllTraceKeysOf_usingFormatv_arguments(
        const LogCaller& self, StringView method, bool logAlways, const NSArray& keys, StringView format,
        ArgumentList arguments);

    /// Returns the text, or nil, while all of the keys are on, of which there must be one.
    template <class... Arguments>
    static NSString logSelf_method_logAlways_logStringForAllTraceKeysOf_usingFormat(
        const LogCaller& self, StringView method, bool logAlways, const NSArray& keys,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (logAlways && format.text() && keys) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            return logSelf_method_logAlways_logStringForAllTraceKeysOf_usingFormatv_arguments(
                self, method, logAlways, keys, format.text(), packed.list());
        }
        return {};
    }
    /// The same for a started argument list.
    static NSString logSelf_method_logAlways_logStringForAllTraceKeysOf_usingFormatv_arguments(
        const LogCaller& self, StringView method, bool logAlways, const NSArray& keys, StringView format,
        ArgumentList arguments);

    // Text: Trace: caller message.

    /// Writes the line while any trace key at all is on.
    template <class... Arguments>
    static void logSelf_method_logAlways_logForAnyTraceKeyUsingFormat(
        const LogCaller& self, StringView method, bool logAlways,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (logAlways && format.text()) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            logSelf_method_logAlways_logForAnyTraceKeyUsingFormatv_arguments(self, method, logAlways,
                                                                             format.text(), packed.list());
        }
    }
    /// The same for a started argument list.
    static void logSelf_method_logAlways_logForAnyTraceKeyUsingFormatv_arguments(
        const LogCaller& self, StringView method, bool logAlways, StringView format, ArgumentList arguments);

    /// Returns the text, or nil, while any trace key at all is on.
    template <class... Arguments>
    static NSString logSelf_method_logAlways_logStringForAnyTraceKeyUsingFormat(
        const LogCaller& self, StringView method, bool logAlways,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (logAlways && format.text()) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            return logSelf_method_logAlways_logStringForAnyTraceKeyUsingFormatv_arguments(
                self, method, logAlways, format.text(), packed.list());
        }
        return {};
    }
    /// The same for a started argument list.
    static NSString logSelf_method_logAlways_logStringForAnyTraceKeyUsingFormatv_arguments(
        const LogCaller& self, StringView method, bool logAlways, StringView format, ArgumentList arguments);
};

} // namespace ZQFoundation

#endif
