// SPDX-License-Identifier: MIT
// Handles failed assertions: the line, then the exception.
#include "log/NSAssertionHandler.h"

#include "log/ZQLog.h"

namespace ZQFoundation {

extern "C" constexpr const char* const ZQMustOverrideMethodException = "ZQMustOverrideMethodException";

namespace {

/// The class name that an object reports; nil for nothing and for an object of unknown class.
NSString classNameOf(const LogCaller& object) {
    switch (object.form()) {
    case LogCaller::Form::absent:
    case LogCaller::Form::unknown:
        return nullptr;
    case LogCaller::Form::instance:
        return object.instanceClassName();
    case LogCaller::Form::host:
        return object.host().className();
    case LogCaller::Form::value:
        return object.value().className();
    }
    return nullptr;
}

/// Whether the object is its own class: true for a class, and for nothing. The sign of log lines answers
/// another question, whether the caller is an instance: an object of unknown class is "-" here and "?" there.
bool isItsOwnClass(const LogCaller& object) {
    switch (object.form()) {
    case LogCaller::Form::absent:
        return true;
    case LogCaller::Form::value:
        return !object.value() || Class(object.value());
    case LogCaller::Form::unknown:
    case LogCaller::Form::instance:
    case LogCaller::Form::host:
        return false;
    }
    return false;
}

/// Writes first: the line must be written even if nobody catches the exception. The reason is formatted once
/// and then passed through "%@", so that a "%" in it is not taken for a conversion.
[[noreturn]] void logAndRaise(const NSString& line, const NSString& exceptionName, StringView format,
                              ArgumentList arguments) {
    ZQLog::logAlways_log(true, line);
    const NSString description = NSString::stringWithFormat_arguments(format, arguments);
    NSException::raise_format(exceptionName, "%@", description);
}

} // namespace

// A constant without a destructor: assertions may fail before `main` and in static destructors.
NSAssertionHandler& NSAssertionHandler::currentHandler() noexcept {
    static constinit NSAssertionHandler handler;
    return handler;
}

void NSAssertionHandler::handleFailureInFunction_file_lineNumber_exceptionName_description_arguments(
    StringView function, StringView file, std::int64_t lineNumber, const NSString& exceptionName,
    StringView format, ArgumentList arguments) const {
    const NSString line = NSString::stringWithFormat("*** Assertion failure in %@(), %@:%ld", function,
                                                     NSString(file).lastPathComponent(), lineNumber);
    logAndRaise(line, exceptionName, format, arguments);
}

void NSAssertionHandler::handleFailureInMethod_object_file_lineNumber_exceptionName_description_arguments(
    StringView method, const LogCaller& object, StringView file, std::int64_t lineNumber,
    const NSString& exceptionName, StringView format, ArgumentList arguments) const {
    const NSString line = NSString::stringWithFormat("*** Assertion failure in %@[%@ %@], %@:%ld",
                                                     isItsOwnClass(object) ? "+" : "-", classNameOf(object),
                                                     method, NSString(file).lastPathComponent(), lineNumber);
    logAndRaise(line, exceptionName, format, arguments);
}

} // namespace ZQFoundation
