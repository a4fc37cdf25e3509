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
/// nil. Gates, their order, labels, threads and lists of arguments are those of the operations without a
/// caller (ZQLogPlainCalls); an absent part of the caller appears in the line and stops nothing:
///
///     this, "reload:"              -[(Store *)0x7f01 reload:]   class and address of the whole object
///     classOf<Store>(), "reload:"  +[Store reload:]
///     a void pointer, "reload:"    ?[0x7f01 reload:]            as an object without a class name
///     nullptr, "reload:"           [<<no instance>> reload:]
///     this, nullptr                -[(Store *)0x7f01 <<no method>>]
///
/// The caller's class name is queried only when a line or text is made, on the calling thread and with no
/// lock held. It must live until the call returns.
class ZQFOUNDATION_EXPORT ZQLogMethodCalls {
public:
    /// Writes the line "caller text", the text unchanged and not used as a format. A flag of NO or a nil text
    /// writes nothing.
    ///
    ///     ZQLog::logSelf_method_logAlways_log(classOf<Store>(), "reload:", true, "50% done");
    ///     // +[Store reload:] 50% done
    static void logSelf_method_logAlways_log(const LogCaller& self, StringView method, detail::Flag logAlways,
                                             StringView text);

    /// Returns the line "caller text"; nil for a flag of NO and for a nil text. Writes nothing.
    static NSString logSelf_method_logAlways_logString(const LogCaller& self, StringView method,
                                                       detail::Flag logAlways, StringView text);

    /// Writes the line "caller message".
    ///
    ///     ZQLog::logSelf_method_logAlways_logWithFormat(this, "reload:", true, "%d items", count);
    ///     // -[(Store *)0x7f01 reload:] 3 items
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
    ///
    ///     NSString text = ZQLog::logSelf_method_logAlways_logStringWithFormat(
    ///         this, "reload:", true, "%d items", count);
    ///     // "-[(Store *)0x7f01 reload:] 3 items", or nil if the flag is NO
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
    ///
    ///     ZQLog::logSelf_method_logAlways_logForTraceKey_usingFormat(
    ///         this, "reload:", true, "TraceNetwork", "%d items", count);
    ///     // TraceNetwork: -[(Store *)0x7f01 reload:] 3 items
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
    ///
    ///     NSString text = ZQLog::logSelf_method_logAlways_logStringForTraceKey_usingFormat(
    ///         this, "reload:", true, "TraceNetwork", "%d items", count);
    ///     // "TraceNetwork: -[(Store *)0x7f01 reload:] 3 items", or nil while the key is off
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
    ///
    ///     ZQLog::logSelf_method_logAlways_logForTraceKey_value_usingFormat(
    ///         this, "reload:", true, "TraceLevel", 3, "%d items", count);
    ///     // TraceLevel=3: -[(Store *)0x7f01 reload:] 3 items
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
    ///
    ///     NSString text = ZQLog::logSelf_method_logAlways_logStringForTraceKey_value_usingFormat(
    ///         this, "reload:", true, "TraceLevel", 3, "%d items", count);
    ///     // "TraceLevel=3: -[(Store *)0x7f01 reload:] 3 items", or nil at any other level
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
    ///
    ///     ZQLog::logSelf_method_logAlways_logForTraceKey_threshold_usingFormat(
    ///         this, "reload:", true, "TraceLevel", 2, "%d items", count);
    ///     // TraceLevel>=2: -[(Store *)0x7f01 reload:] 3 items
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
    ///
    ///     NSString text = ZQLog::logSelf_method_logAlways_logStringForTraceKey_threshold_usingFormat(
    ///         this, "reload:", true, "TraceLevel", 2, "%d items", count);
    ///     // "TraceLevel>=2: -[(Store *)0x7f01 reload:] 3 items", or nil at a lower level
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
    ///
    ///     ZQLog::logSelf_method_logAlways_logForAnyTraceKeyOf_usingFormat(
    ///         this, "reload:", true, NSArray{"TraceFiles", "TraceNetwork"}, "%d items", count);
    ///     // TraceNetwork: -[(Store *)0x7f01 reload:] 3 items
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
    ///
    ///     NSString text = ZQLog::logSelf_method_logAlways_logStringForAnyTraceKeyOf_usingFormat(
    ///         this, "reload:", true, NSArray{"TraceFiles", "TraceNetwork"}, "%d items", count);
    ///     // "TraceNetwork: -[(Store *)0x7f01 reload:] 3 items", or nil while both keys are off
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
    ///
    ///     ZQLog::logSelf_method_logAlways_logForAllTraceKeysOf_usingFormat(
    ///         this, "reload:", true, NSArray{"TraceFiles", "TraceNetwork"}, "%d items", count);
    ///     // TraceFiles+TraceNetwork: -[(Store *)0x7f01 reload:] 3 items
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
    ///
    ///     NSString text = ZQLog::logSelf_method_logAlways_logStringForAllTraceKeysOf_usingFormat(
    ///         this, "reload:", true, NSArray{"TraceFiles", "TraceNetwork"}, "%d items", count);
    ///     // "TraceFiles+TraceNetwork: -[(Store *)0x7f01 reload:] 3 items"
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
    ///
    ///     ZQLog::logSelf_method_logAlways_logForAnyTraceKeyUsingFormat(
    ///         this, "reload:", true, "%d items", count);
    ///     // Trace: -[(Store *)0x7f01 reload:] 3 items
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
    ///
    ///     NSString text = ZQLog::logSelf_method_logAlways_logStringForAnyTraceKeyUsingFormat(
    ///         this, "reload:", true, "%d items", count);
    ///     // "Trace: -[(Store *)0x7f01 reload:] 3 items", or nil while no trace key is on
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
