// SPDX-License-Identifier: MIT
// Declares NSException and the names of exceptions.
#ifndef ZQFOUNDATION_OBJECTS_NSEXCEPTION_H
#define ZQFOUNDATION_OBJECTS_NSEXCEPTION_H

#include <exception>

#include "NSData.h"
#include "NSDictionary.h"

namespace ZQFoundation {

/// What the platform's operations raise: a name, a reason and an optional dictionary. Any of them may be nil.
/// It is thrown by value and caught by reference, also as a `std::exception`:
///
///     try {
///         array.objectAtIndex(5);
///     } catch (const NSException& exception) {
///         if (exception.name() == NSRangeException) ...
///     }
///
/// Copies share their parts, so copying never fails, and a copy may be kept.
class ZQFOUNDATION_EXPORT NSException : public std::exception {
public:
    /// An exception of these parts, to be thrown by value. Raises nothing itself; `raise_format` does both in
    /// one call.
    NSException(NSString name, NSString reason, NSDictionary userInfo = nullptr);
    NSException(const NSException&) noexcept = default;
    NSException& operator=(const NSException&) noexcept = default;
    ~NSException() override;

    /// What kind of exception it is, for programs: "NSRangeException".
    const NSString& name() const noexcept { return name_; }

    /// What went wrong, for people.
    const NSString& reason() const noexcept { return reason_; }

    /// Further facts, as agreed between the code that raises and the code that catches.
    const NSDictionary& userInfo() const noexcept { return userInfo_; }

    /// "Name: reason" in UTF-8; valid as long as the exception or a copy of it. Never null, and made in the
    /// constructor, so a call needs no memory.
    const char* what() const noexcept override;

    /// Raises an exception whose reason is formatted as `NSString::stringWithFormat` does.
    ///
    ///     NSException::raise_format(NSRangeException, "%d of %d", 7, 5);  // "NSRangeException: 7 of 5"
    template <class... Arguments>
    [[noreturn]] static void raise_format(const NSString& name,
                                          FormatString<std::type_identity_t<Arguments>...> format,
                                          const Arguments&... arguments) {
        const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
        raise_format_arguments(name, format.text(), packed.list());
    }

    /// Raises an exception whose reason is formatted from a started argument list.
    [[noreturn]] static void raise_format_arguments(const NSString& name, StringView format,
                                                    ArgumentList arguments);

private:
    NSString name_;
    NSString reason_;
    NSDictionary userInfo_;
    NSData what_; // NUL-ended; counted, so that copying an exception cannot throw
};

/// An argument that an operation does not accept: nil in a collection, a nil format.
inline constexpr const char* NSInvalidArgumentException = "NSInvalidArgumentException";

/// An index or a range beyond the end.
inline constexpr const char* NSRangeException = "NSRangeException";

/// A text that is not a property list.
inline constexpr const char* NSParseErrorException = "NSParseErrorException";

/// A failure without a name of its own; the library does not raise it.
inline constexpr const char* NSGenericException = "NSGenericException";

/// A result that does not fit into memory.
inline constexpr const char* NSMallocException = "NSMallocException";

/// A failed assertion.
inline constexpr const char* NSInternalInconsistencyException = "NSInternalInconsistencyException";

} // namespace ZQFoundation

#endif
