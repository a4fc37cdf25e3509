// SPDX-License-Identifier: MIT
// Declares ObjectConversion, which converts types of the host to and from values.
#ifndef ZQFOUNDATION_TEXT_OBJECTCONVERSION_H
#define ZQFOUNDATION_TEXT_OBJECTCONVERSION_H

#include <concepts>
#include <type_traits>

#include "Export.h"

/// Converts types outside the library to values, and values to such types.
namespace ZQFoundation {

class NSObject;
class StringView;

/// Specialize it for a type of your own, and the type is an argument of `%@`, converts to values, and back
/// from them by `as`. No inheritance is needed, and the type itself is unchanged.
///
///     template <>
///     struct ZQFoundation::ObjectConversion<Money> {
///         static NSString object(const Money& money) {
///             return NSString::stringWithFormat("%ld", money.cents);
///         }
///     };
///
///     ZQLog::logWithFormat("paid %@", money);    // converted only when the line is written
///     NSArray{money, "paid"};                    // any handle that `object` returns is made from it
///
/// A specialization has one of the first two members, and the third if values are to be converted back:
///
/// - `static Handle object(const T&)` returns the value, of whatever handle.
/// - `static StringView text(const T&)` returns a view of the text that the object itself holds; then the
///   type is a text argument everywhere, and nothing is copied for it.
/// - `static T fromObject(const NSObject&)` is what `value.as<T>()` returns; nil and values of another kind
///   give what the type has for nothing.
///
/// The functions are called on the thread that uses the value, with no lock of the library held.
///
/// Specialize it where the type is declared, so that every source of a program sees it.
template <class T>
struct ObjectConversion;

} // namespace ZQFoundation

namespace ZQFoundation::detail {

/// Types for which it is specialized: an unspecialized template has no size.
template <class T>
concept Converted = requires {
    sizeof(ObjectConversion<T>);
};

/// Types whose conversion returns a view of their text.
template <class T>
concept ConvertedText = Converted<T> && requires(const T& object) {
    { ObjectConversion<T>::text(object) } -> std::same_as<StringView>;
};

/// Types that values are converted back to by `as`.
template <class T>
concept ConvertedBack = Converted<T> && requires(const NSObject& object) {
    { ObjectConversion<T>::fromObject(object) } -> std::same_as<T>;
};

/// Also true for a specialization that has none of the members: using it is an error.
template <class T>
concept ConvertedObject =
    Converted<T> && !ConvertedText<T> &&
    (requires(const T& object) { ObjectConversion<T>::object(object); } || !ConvertedBack<T>);

/// What is converted to one handle and no other.
template <class T, class Handle>
concept ConvertedTo = ConvertedObject<T> && requires(const T& object) {
    { ObjectConversion<T>::object(object) } -> std::same_as<Handle>;
};

/// What the conversion makes of the object. This is the only place where `object` is called, so a
/// specialization without it gives the same error message wherever it is used.
template <ConvertedObject T>
auto convertedObject(const T& object) {
    constexpr bool isRight = requires {
        { ObjectConversion<T>::object(object) } -> std::derived_from<NSObject>;
    };
    static_assert(isRight, "a specialization of ZQFoundation::ObjectConversion has the static member "
                           "\"object\", which takes the type by const reference and returns a value, or the "
                           "static member \"text\", which returns a StringView");
    return ObjectConversion<T>::object(object);
}

} // namespace ZQFoundation::detail

#endif
