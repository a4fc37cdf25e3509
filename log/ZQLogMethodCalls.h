// SPDX-License-Identifier: MIT
// Declares the log operations that are called from methods.
#ifndef ZQFOUNDATION_LOG_ZQLOGMETHODCALLS_H
#define ZQFOUNDATION_LOG_ZQLOGMETHODCALLS_H

#include "LogCaller.h"
#include "LogGates.h"

#include "../foundation/objects/NSArray.h"

namespace ZQFoundation {

/// The log operations of ZQLog for methods: call them as `ZQLog::...`.
///
/// The caller is `this`, a value, `classOf<Store>()` or `nullptr`; the method a text such as "reload:", or
/// nil. They appear as `-[(Store *)0x7f01 reload:]`. Gates and order are those of the operations without a
/// caller; an absent part of the caller appears in the line and stops nothing.
class ZQFOUNDATION_EXPORT ZQLogMethodCalls {
public:
    /// Writes the line "caller text". A flag of NO or a nil text writes nothing.
    static void logSelf_method_logAlways_log(const LogCaller& self, StringView method, detail::Flag logAlways,
                                             StringView text);

    /// Returns the line "caller text"; nil for a flag of NO and for a nil text. Writes nothing.
    static NSString logSelf_method_logAlways_logString(const LogCaller& self, StringView method,
                                                       detail::Flag logAlways, StringView text);

    /// Writes the line "caller message".
    template <class... Arguments>
    static void
    logSelf_method_logAlways_logWithFormat(const LogCaller& self, StringView method, detail::Flag logAlways,
                                           FormatString<std::type_identity_t<Arguments>...> format,
                                           const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text())) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            logSelf_method_logAlways_logWithFormatv_arguments(self, method, logAlways, format.text(),
                                                              packed.list());
        }
    }
    /// With a started argument list: writes the line "caller message".
    static void logSelf_method_logAlways_logWithFormatv_arguments(const LogCaller& self, StringView method,
                                                                  detail::Flag logAlways, StringView format,
                                                                  ArgumentList arguments);

    /// Returns the line "caller message", else nil; writes nothing.
    template <class... Arguments>
    static NSString logSelf_method_logAlways_logStringWithFormat(
        const LogCaller& self, StringView method, detail::Flag logAlways,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text())) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            return logSelf_method_logAlways_logStringWithFormatv_arguments(self, method, logAlways,
                                                                           format.text(), packed.list());
        }
        return {};
    }
    /// With a started argument list: returns the line "caller message", else nil; writes nothing.
    static NSString logSelf_method_logAlways_logStringWithFormatv_arguments(const LogCaller& self,
                                                                            StringView method,
                                                                            detail::Flag logAlways,
                                                                            StringView format,
                                                                            ArgumentList arguments);

    /// Writes the line "key: caller message" while the trace key is on.
    template <class... Arguments>
    static void logSelf_method_logAlways_logForTraceKey_usingFormat(
        const LogCaller& self, StringView method, detail::Flag logAlways, StringView key,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text(), key)) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            logSelf_method_logAlways_logForTraceKey_usingFormatv_arguments(self, method, logAlways, key,
                                                                           format.text(), packed.list());
        }
    }
    /// With a started argument list: writes the line "key: caller message" while the trace key is on.
    static void
    logSelf_method_logAlways_logForTraceKey_usingFormatv_arguments(const LogCaller& self, StringView method,
                                                                   detail::Flag logAlways, StringView key,
                                                                   StringView format, ArgumentList arguments);

    /// Returns the line "key: caller message" while the trace key is on, else nil; writes nothing.
    template <class... Arguments>
    static NSString logSelf_method_logAlways_logStringForTraceKey_usingFormat(
        const LogCaller& self, StringView method, detail::Flag logAlways, StringView key,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text(), key)) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            return logSelf_method_logAlways_logStringForTraceKey_usingFormatv_arguments(
                self, method, logAlways, key, format.text(), packed.list());
        }
        return {};
    }
    /// With a started argument list: returns the line "key: caller message" while the trace key is on, else
    /// nil; writes nothing.
    static NSString logSelf_method_logAlways_logStringForTraceKey_usingFormatv_arguments(
        const LogCaller& self, StringView method, detail::Flag logAlways, StringView key, StringView format,
        ArgumentList arguments);

    /// Writes the line "key=value: caller message" while the key's level equals the value (a missing key has
    /// level 0).
    template <class... Arguments>
    static void logSelf_method_logAlways_logForTraceKey_value_usingFormat(
        const LogCaller& self, StringView method, detail::Flag logAlways, StringView key, std::int64_t value,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text(), key)) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            logSelf_method_logAlways_logForTraceKey_value_usingFormatv_arguments(
                self, method, logAlways, key, value, format.text(), packed.list());
        }
    }
    /// With a started argument list: writes the line "key=value: caller message" while the key's level equals
    /// the value (a missing key has level 0).
    static void logSelf_method_logAlways_logForTraceKey_value_usingFormatv_arguments(
        const LogCaller& self, StringView method, detail::Flag logAlways, StringView key, std::int64_t value,
        StringView format, ArgumentList arguments);

    /// Returns the line "key=value: caller message" while the key's level equals the value (a missing key has
    /// level 0), else nil; writes nothing.
    template <class... Arguments>
    static NSString logSelf_method_logAlways_logStringForTraceKey_value_usingFormat(
        const LogCaller& self, StringView method, detail::Flag logAlways, StringView key, std::int64_t value,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text(), key)) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            return logSelf_method_logAlways_logStringForTraceKey_value_usingFormatv_arguments(
                self, method, logAlways, key, value, format.text(), packed.list());
        }
        return {};
    }
    /// With a started argument list: returns the line "key=value: caller message" while the key's level
    /// equals the value (a missing key has level 0), else nil; writes nothing.
    static NSString logSelf_method_logAlways_logStringForTraceKey_value_usingFormatv_arguments(
        const LogCaller& self, StringView method, detail::Flag logAlways, StringView key, std::int64_t value,
        StringView format, ArgumentList arguments);

    /// Writes the line "key>=threshold: caller message" while the key's level is at least the threshold (a
    /// missing key has level 0).
    template <class... Arguments>
    static void logSelf_method_logAlways_logForTraceKey_threshold_usingFormat(
        const LogCaller& self, StringView method, detail::Flag logAlways, StringView key,
        std::int64_t threshold, FormatString<std::type_identity_t<Arguments>...> format,
        const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text(), key)) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            logSelf_method_logAlways_logForTraceKey_threshold_usingFormatv_arguments(
                self, method, logAlways, key, threshold, format.text(), packed.list());
        }
    }
    /// With a started argument list: writes the line "key>=threshold: caller message" while the key's level
    /// is at least the threshold (a missing key has level 0).
    static void logSelf_method_logAlways_logForTraceKey_threshold_usingFormatv_arguments(
        const LogCaller& self, StringView method, detail::Flag logAlways, StringView key,
        std::int64_t threshold, StringView format, ArgumentList arguments);

    /// Returns the line "key>=threshold: caller message" while the key's level is at least the threshold (a
    /// missing key has level 0), else nil; writes nothing.
    template <class... Arguments>
    static NSString logSelf_method_logAlways_logStringForTraceKey_threshold_usingFormat(
        const LogCaller& self, StringView method, detail::Flag logAlways, StringView key,
        std::int64_t threshold, FormatString<std::type_identity_t<Arguments>...> format,
        const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text(), key)) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            return logSelf_method_logAlways_logStringForTraceKey_threshold_usingFormatv_arguments(
                self, method, logAlways, key, threshold, format.text(), packed.list());
        }
        return {};
    }
    /// With a started argument list: returns the line "key>=threshold: caller message" while the key's level
    /// is at least the threshold (a missing key has level 0), else nil; writes nothing.
    static NSString logSelf_method_logAlways_logStringForTraceKey_threshold_usingFormatv_arguments(
        const LogCaller& self, StringView method, detail::Flag logAlways, StringView key,
        std::int64_t threshold, StringView format, ArgumentList arguments);

    /// Writes the line "A/B: caller message" while one of the keys is on (A and B are those that are).
    template <class... Arguments>
    static void logSelf_method_logAlways_logForAnyTraceKeyOf_usingFormat(
        const LogCaller& self, StringView method, detail::Flag logAlways, const NSArray& keys,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text(), keys)) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            logSelf_method_logAlways_logForAnyTraceKeyOf_usingFormatv_arguments(self, method, logAlways, keys,
                                                                                format.text(), packed.list());
        }
    }
    /// With a started argument list: writes the line "A/B: caller message" while one of the keys is on (A and
    /// B are those that are).
    static void logSelf_method_logAlways_logForAnyTraceKeyOf_usingFormatv_arguments(
        const LogCaller& self, StringView method, detail::Flag logAlways, const NSArray& keys,
        StringView format, ArgumentList arguments);

    /// Returns the line "A/B: caller message" while one of the keys is on (A and B are those that are), else
    /// nil; writes nothing.
    template <class... Arguments>
    static NSString logSelf_method_logAlways_logStringForAnyTraceKeyOf_usingFormat(
        const LogCaller& self, StringView method, detail::Flag logAlways, const NSArray& keys,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text(), keys)) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            return logSelf_method_logAlways_logStringForAnyTraceKeyOf_usingFormatv_arguments(
                self, method, logAlways, keys, format.text(), packed.list());
        }
        return {};
    }
    /// With a started argument list: returns the line "A/B: caller message" while one of the keys is on (A
    /// and B are those that are), else nil; writes nothing.
    static NSString logSelf_method_logAlways_logStringForAnyTraceKeyOf_usingFormatv_arguments(
        const LogCaller& self, StringView method, detail::Flag logAlways, const NSArray& keys,
        StringView format, ArgumentList arguments);

    /// Writes the line "A+B: caller message" while all of the keys are on, of which there must be one.
    template <class... Arguments>
    static void logSelf_method_logAlways_logForAllTraceKeysOf_usingFormat(
        const LogCaller& self, StringView method, detail::Flag logAlways, const NSArray& keys,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text(), keys)) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            logSelf_method_logAlways_logForAllTraceKeysOf_usingFormatv_arguments(
                self, method, logAlways, keys, format.text(), packed.list());
        }
    }
    /// With a started argument list: writes the line "A+B: caller message" while all of the keys are on, of
    /// which there must be one.
    static void logSelf_method_logAlways_logForAllTraceKeysOf_usingFormatv_arguments(
        const LogCaller& self, StringView method, detail::Flag logAlways, const NSArray& keys,
        StringView format, ArgumentList arguments);

    /// Returns the line "A+B: caller message" while all of the keys are on, of which there must be one, else
    /// nil; writes nothing.
    template <class... Arguments>
    static NSString logSelf_method_logAlways_logStringForAllTraceKeysOf_usingFormat(
        const LogCaller& self, StringView method, detail::Flag logAlways, const NSArray& keys,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text(), keys)) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            return logSelf_method_logAlways_logStringForAllTraceKeysOf_usingFormatv_arguments(
                self, method, logAlways, keys, format.text(), packed.list());
        }
        return {};
    }
    /// With a started argument list: returns the line "A+B: caller message" while all of the keys are on, of
    /// which there must be one, else nil; writes nothing.
    static NSString logSelf_method_logAlways_logStringForAllTraceKeysOf_usingFormatv_arguments(
        const LogCaller& self, StringView method, detail::Flag logAlways, const NSArray& keys,
        StringView format, ArgumentList arguments);

    /// Writes the line "Trace: caller message" while any trace key is on.
    template <class... Arguments>
    static void logSelf_method_logAlways_logForAnyTraceKeyUsingFormat(
        const LogCaller& self, StringView method, detail::Flag logAlways,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text())) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            logSelf_method_logAlways_logForAnyTraceKeyUsingFormatv_arguments(self, method, logAlways,
                                                                             format.text(), packed.list());
        }
    }
    /// With a started argument list: writes the line "Trace: caller message" while any trace key is on.
    static void logSelf_method_logAlways_logForAnyTraceKeyUsingFormatv_arguments(const LogCaller& self,
                                                                                 StringView method,
                                                                                 detail::Flag logAlways,
                                                                                 StringView format,
                                                                                 ArgumentList arguments);

    /// Returns the line "Trace: caller message" while any trace key is on, else nil; writes nothing.
    template <class... Arguments>
    static NSString logSelf_method_logAlways_logStringForAnyTraceKeyUsingFormat(
        const LogCaller& self, StringView method, detail::Flag logAlways,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        if (detail::passesGates(logAlways, format.text())) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            return logSelf_method_logAlways_logStringForAnyTraceKeyUsingFormatv_arguments(
                self, method, logAlways, format.text(), packed.list());
        }
        return {};
    }
    /// With a started argument list: returns the line "Trace: caller message" while any trace key is on, else
    /// nil; writes nothing.
    static NSString logSelf_method_logAlways_logStringForAnyTraceKeyUsingFormatv_arguments(
        const LogCaller& self, StringView method, detail::Flag logAlways, StringView format,
        ArgumentList arguments);
};

} // namespace ZQFoundation

#endif
