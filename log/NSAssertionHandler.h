// SPDX-License-Identifier: MIT
// Declares the assertions and their handler.
#ifndef ZQFOUNDATION_LOG_NSASSERTIONHANDLER_H
#define ZQFOUNDATION_LOG_NSASSERTIONHANDLER_H

#include "../foundation/objects/NSException.h"
#include "LogCaller.h"

namespace ZQFoundation {

/// The name of the exception that a host raises when a subclass does not override an operation that it must:
/// "ZQMustOverrideMethodException". The library never raises it.
///
///     NSException::raise_format(ZQMustOverrideMethodException, "%s", __func__);
extern "C" ZQFOUNDATION_EXPORT const char* const ZQMustOverrideMethodException;

/// Writes a failed assertion into the log and raises an exception.
///
///     ZQAssert(count < limit, NSRangeException, "%d of %d", count, limit);
///     // writes: *** Assertion failure in reload(), Store.cpp:42
///     // raises: NSRangeException with the reason "7 of 5"
///
/// The line is written before the exception is raised, so it is in the log even if nobody catches that. Names
/// may be nil; of the file only the last path component is written. Any thread.
class ZQFOUNDATION_EXPORT NSAssertionHandler {
public:
    /// The shared object, the same on all threads, never destroyed; it has no state.
    static NSAssertionHandler& currentHandler() noexcept;

    NSAssertionHandler(const NSAssertionHandler&) = delete;
    NSAssertionHandler& operator=(const NSAssertionHandler&) = delete;

    /// @name The platform's own
    /// @{

    /// Writes "*** Assertion failure in parse(), parse.c:42" and raises NSInternalInconsistencyException, its
    /// reason formatted as `NSString::stringWithFormat` does.
    ///
    ///     handler.handleFailureInFunction_file_lineNumber_description("parse", "parse.c", 42, "%d bad", 7);
    ///     // raises: NSInternalInconsistencyException with the reason "7 bad"
    template <class... Arguments>
    [[noreturn]] void handleFailureInFunction_file_lineNumber_description(
        StringView function, StringView file, std::int64_t lineNumber,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) const {
        handleFailureInFunction_file_lineNumber_exceptionName_description(
            function, file, lineNumber, NSInternalInconsistencyException, format, arguments...);
    }

    /// Writes "*** Assertion failure in -[Store reload:], Store.m:10", with "+" if the object is a class, and
    /// raises NSInternalInconsistencyException, its reason formatted as `NSString::stringWithFormat` does.
    template <class... Arguments>
    [[noreturn]] void handleFailureInMethod_object_file_lineNumber_description(
        StringView method, const LogCaller& object, StringView file, std::int64_t lineNumber,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) const {
        handleFailureInMethod_object_file_lineNumber_exceptionName_description(
            method, object, file, lineNumber, NSInternalInconsistencyException, format, arguments...);
    }

    /// @}

    /// @name NSAssertionHandler(ZQFoundation)
    /// @{

    /// Writes "*** Assertion failure in parse(), parse.c:42" and raises an exception of the given name, which
    /// may be nil, its reason formatted as `NSString::stringWithFormat` does. The arguments are formatted
    /// after the line is written; a nil format raises NSInvalidArgumentException then, instead.
    template <class... Arguments>
    [[noreturn]] void handleFailureInFunction_file_lineNumber_exceptionName_description(
        StringView function, StringView file, std::int64_t lineNumber, const NSString& exceptionName,
        FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) const {
        const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
        handleFailureInFunction_file_lineNumber_exceptionName_description_arguments(
            function, file, lineNumber, exceptionName, format.text(), packed.list());
    }

    /// `handleFailureInFunction_file_lineNumber_exceptionName_description` for a started argument list, for
    /// the wrappers of a host.
    [[noreturn]] void handleFailureInFunction_file_lineNumber_exceptionName_description_arguments(
        StringView function, StringView file, std::int64_t lineNumber, const NSString& exceptionName,
        StringView format, ArgumentList arguments) const;

    /// Writes "*** Assertion failure in -[Store reload:], Store.m:10", with "+" if the object is a class or
    /// nothing, and raises an exception of the given name, which may be nil, its reason formatted as
    /// `NSString::stringWithFormat` does. Unlike the lines of log calls, this one has no address of the
    /// instance.
    template <class... Arguments>
    [[noreturn]] void handleFailureInMethod_object_file_lineNumber_exceptionName_description(
        StringView method, const LogCaller& object, StringView file, std::int64_t lineNumber,
        const NSString& exceptionName, FormatString<std::type_identity_t<Arguments>...> format,
        const Arguments&... arguments) const {
        const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
        handleFailureInMethod_object_file_lineNumber_exceptionName_description_arguments(
            method, object, file, lineNumber, exceptionName, format.text(), packed.list());
    }

    /// `handleFailureInMethod_object_file_lineNumber_exceptionName_description` for a started argument list,
    /// for the wrappers of a host.
    [[noreturn]] void handleFailureInMethod_object_file_lineNumber_exceptionName_description_arguments(
        StringView method, const LogCaller& object, StringView file, std::int64_t lineNumber,
        const NSString& exceptionName, StringView format, ArgumentList arguments) const;

    /// @}

private:
    constexpr NSAssertionHandler() noexcept = default;
};

} // namespace ZQFoundation

/// Fails unless the condition holds: writes the line with the enclosing function, file and line and raises an
/// exception of that name. The rest is a format and its arguments. Never compiled out; nothing but the
/// condition is evaluated while it holds.
///
///     ZQAssert(parsed, "BadInput", "%d bad", count);
#define ZQAssert(condition, exceptionName, ...)                                                              \
    ((condition) ? static_cast<void>(0)                                                                      \
                 : ::ZQFoundation::NSAssertionHandler::currentHandler()                                      \
                       .handleFailureInFunction_file_lineNumber_exceptionName_description(                   \
                           __func__, __FILE__, __LINE__, exceptionName, __VA_ARGS__))

/// Fails unless the condition holds, as `ZQAssert`, in a member function: for the object given (`this`) or
/// the class (`classOf<Store>()`).
///
///     ZQAssertInMethod(count >= 0, this, NSRangeException, "%d", count);
///     // writes: *** Assertion failure in -[Store reload], Store.cpp:42
#define ZQAssertInMethod(condition, object, exceptionName, ...)                                              \
    ((condition) ? static_cast<void>(0)                                                                      \
                 : ::ZQFoundation::NSAssertionHandler::currentHandler()                                      \
                       .handleFailureInMethod_object_file_lineNumber_exceptionName_description(              \
                           __func__, object, __FILE__, __LINE__, exceptionName, __VA_ARGS__))

#endif
