// SPDX-License-Identifier: MIT
// Declares the typed arguments of a format.
#ifndef ZQFOUNDATION_TEXT_ARGUMENTLIST_H
#define ZQFOUNDATION_TEXT_ARGUMENTLIST_H

#include "Flag.h"
#include "StringView.h"

namespace ZQFoundation {

class NSObjectProtocol;

} // namespace ZQFoundation

namespace ZQFoundation::detail {

/// What an argument is, which decides how a conversion reads it. A conversion asks for this first, so no
/// format, however wrong, makes the library read memory that is not there.
enum class ArgumentType : unsigned char {
    signedInteger,   ///< in 64 bits, as all integers
    unsignedInteger, ///< in 64 bits
    real,            ///< a float or a double, as a double
    longReal,        ///< by reference: it would not fit into the argument
    text,            ///< any text, a C string among them
    object,          ///< a handle
    host,            ///< an object of a host's class, null allowed
    converted,       ///< an object whose `ObjectConversion` makes a value of it
    pointer,         ///< any other; printed, never followed
};

class TextBuilder;

/// What an `ObjectConversion` makes of an object, asked only when the argument is used. One table for each
/// type, in read-only memory.
struct ArgumentConversion {
    NSObject (*object)(const void*);
    std::int64_t (*integer)(const void*); ///< null unless it is an enumerator
};

/// The value of the object. Defined with the handles, which this header does without.
template <class T>
NSObject convertedArgument(const void* object);

/// The number of an enumerator, for the conversions of integers.
template <class T>
constexpr std::int64_t convertedEnumerator(const void* object) {
    return static_cast<std::int64_t>(*static_cast<const T*>(object));
}

/// `convertedEnumerator` for an enumeration, else a null pointer.
template <class T>
constexpr auto enumeratorReader() {
    if constexpr (std::is_enum_v<T>) {
        return convertedEnumerator<T>;
    } else {
        return nullptr;
    }
}

/// The table of a type.
template <class T>
inline constexpr ArgumentConversion argumentConversion{convertedArgument<T>, enumeratorReader<T>()};

} // namespace ZQFoundation::detail

namespace ZQFoundation {

/// One argument of a format call: its value or, for objects and texts, its address. Owns nothing: what it
/// refers to must live until the call returns, as a temporary in the same expression does.
///
///     const Argument arguments[] = {3, "items"};
///     NSString::stringWithFormat_arguments("%d %s", {arguments, 2});  // "3 items"
class Argument {
public:
    /// An integer, character, truth value or enumerator, widened to 64 bits by its own sign: the conversion
    /// narrows it again to the width that its length modifier says, as in C.
    template <class T>
        requires((std::is_integral_v<T> && sizeof(T) <= sizeof(std::int64_t)) ||
                 (std::is_enum_v<T> && !detail::Converted<T>))
    constexpr Argument(const T& value) noexcept {
        if constexpr (std::is_enum_v<T>) {
            *this = Argument(static_cast<std::underlying_type_t<T>>(value));
        } else if constexpr (std::is_signed_v<T>) {
            value_.integer = value;
            type_ = detail::ArgumentType::signedInteger;
        } else {
            value_.unsignedInteger = value;
            type_ = detail::ArgumentType::unsignedInteger;
        }
    }

    /// A floating-point number.
    constexpr Argument(const double& value) noexcept : type_(detail::ArgumentType::real) {
        value_.real = value;
    }

    /// A floating-point number, as a double.
    constexpr Argument(const float& value) noexcept : Argument(static_cast<double>(value)) {}

    /// A floating-point number in full precision, by reference. Only "%Lf" and the like use the precision;
    /// other conversions take the nearest double.
    constexpr Argument(const long double& value) noexcept : type_(detail::ArgumentType::longReal) {
        value_.longReal = &value;
    }

    /// A null pointer: "%p" gives "0x0", "%@" and "%s" give "(null)".
    constexpr Argument(std::nullptr_t) noexcept : type_(detail::ArgumentType::pointer) {
        value_.address = nullptr;
    }

    /// A handle, by reference, also a nil one.
    template <class T>
        requires std::is_base_of_v<NSObject, T>
    constexpr Argument(const T& handle) noexcept : type_(detail::ArgumentType::object) {
        value_.object = &handle;
    }

    /// A text, by reference. The end of a C string is searched for only when the text is used, so that "%.4s"
    /// takes a buffer without NUL.
    template <class T>
        requires detail::PlainText<T>
    constexpr Argument(const T& text) noexcept : type_(detail::ArgumentType::text) {
        using Decayed = std::decay_t<T>;
        if constexpr (std::is_same_v<Decayed, char*> || std::is_same_v<Decayed, const char*>) {
            value_.bytes = text;
            ending_ = Ending::nulByte;
        } else if constexpr (std::is_same_v<Decayed, char16_t*> || std::is_same_v<Decayed, const char16_t*>) {
            value_.units = text;
            ending_ = Ending::nulUnit;
        } else if constexpr (detail::TextPointer<Decayed>) {
            value_.bytes = reinterpret_cast<const char*>(static_cast<const char8_t*>(text));
            ending_ = Ending::nulByte;
        } else {
            value_.text = StringView(text);
        }
    }

    /// An object of a host's class, by reference. Its address is kept as the caller sees it, next to that of
    /// its base class: they differ where the class has several bases.
    template <class T>
        requires(std::is_base_of_v<NSObjectProtocol, T> && !std::is_base_of_v<NSObject, T> &&
                 !detail::Converted<T>)
    constexpr Argument(const T& object) noexcept : type_(detail::ArgumentType::host) {
        value_.host = {&object, __builtin_addressof(object)};
    }

    /// An object that its type's `ObjectConversion` makes a value of, by reference.
    template <class T>
        requires(detail::ConvertedObject<T> && !std::is_base_of_v<NSObject, T>)
    constexpr Argument(const T& object) noexcept : type_(detail::ArgumentType::converted) {
        value_.converted = {__builtin_addressof(object), &detail::argumentConversion<T>};
    }

    /// A pointer: to an object of a host's class, or any other. Pointers to classes that are only declared
    /// are plain ones.
    template <class T>
        requires(!detail::PlainText<T*>)
    constexpr Argument(T* pointer) noexcept {
        if constexpr (std::is_convertible_v<T*, const NSObjectProtocol*>) {
            value_.host = {pointer, pointer};
            type_ = detail::ArgumentType::host;
        } else if constexpr (std::is_function_v<T>) {
            value_.address = reinterpret_cast<const void*>(pointer);
            type_ = detail::ArgumentType::pointer;
        } else {
            value_.address = const_cast<const void*>(static_cast<const volatile void*>(pointer));
            type_ = detail::ArgumentType::pointer;
        }
    }

    /// What the argument is; it decides which of the operations below may be called.
    constexpr detail::ArgumentType type() const noexcept { return type_; }

    /// The value of an integer argument, widened by its own sign. For one of the type `unsignedInteger` the
    /// same bits are an unsigned number.
    constexpr std::int64_t integer() const noexcept { return value_.integer; }

    /// The value of a `real` argument.
    constexpr double real() const noexcept { return value_.real; }

    /// The value of a `longReal` argument, read where the caller holds it.
    constexpr long double longReal() const noexcept { return *value_.longReal; }

    /// The handle of an `object` argument.
    const NSObject& object() const noexcept { return *value_.object; }

    /// The object of a `host` argument; may be null.
    const NSObjectProtocol* host() const noexcept { return value_.host.object; }

    /// Only for `converted`: the value that the object's `ObjectConversion` makes, again at each call.
    NSObject converted() const; // defined with the handles

    /// Only for `converted`: the number of an enumerator, 0 for any other object.
    std::int64_t convertedInteger() const {
        const detail::ArgumentConversion& conversion = *value_.converted.conversion;
        return conversion.integer == nullptr ? 0 : conversion.integer(value_.converted.object);
    }

    /// Only for `text`: the whole text; of a C string, all up to its NUL, which is searched for at each call.
    /// Nil for a null pointer.
    constexpr StringView text() const noexcept {
        switch (ending_) {
        case Ending::nulByte:
            return StringView(value_.bytes);
        case Ending::nulUnit:
            return StringView(value_.units);
        case Ending::known:
            break;
        }
        return value_.text;
    }

    /// Whether a text argument is made of UTF-16 units, not bytes.
    constexpr bool isUnits() const noexcept {
        return ending_ == Ending::nulUnit ||
               (ending_ == Ending::known && value_.text.form() == StringView::Form::utf16);
    }

    /// Only for `text`: the text as far as a conversion with a precision needs it. Of a C string, at most
    /// `limit` bytes (units) are read, so "%.4s" is safe for a buffer of four characters without NUL.
    /// SIZE_MAX: the whole text.
    StringView textUpTo(std::size_t limit) const noexcept {
        if (limit == SIZE_MAX) {
            return text();
        }
        if (ending_ == Ending::nulByte && value_.bytes != nullptr) {
            return StringView(value_.bytes, lengthUpTo(value_.bytes, limit));
        }
        if (ending_ == Ending::nulUnit && value_.units != nullptr) {
            return StringView(value_.units, lengthUpTo(value_.units, limit));
        }
        return text();
    }

    /// For pointers, objects of host classes and converted ones: the address as the caller gave it.
    constexpr const void* address() const noexcept {
        return type_ == detail::ArgumentType::host        ? value_.host.address
               : type_ == detail::ArgumentType::converted ? value_.converted.object
                                                          : value_.address;
    }

private:
    /// Where the text ends: its length is known, or it ends at a zero byte or unit that has not been searched
    /// for yet.
    enum class Ending : unsigned char { known, nulByte, nulUnit };

    /// Of an object of a host's class.
    struct HostPlace {
        const NSObjectProtocol* object;
        const void* address;
    };

    /// Of an object with an `ObjectConversion`: itself, and what reads it.
    struct ConvertedPlace {
        const void* object;
        const detail::ArgumentConversion* conversion;
    };

    /// `type_` says which member is valid; of a text, `ending_` does. Trivial, so that arguments are packed
    /// without a call.
    union Value {
        std::int64_t integer;
        std::uint64_t unsignedInteger;
        double real;
        const long double* longReal;
        const void* address;
        const NSObject* object;
        const char* bytes;
        const char16_t* units;
        HostPlace host;
        ConvertedPlace converted;
        StringView text;
        constexpr Value() noexcept : integer(0) {}
    };

    /// Never reads beyond `limit` units, unlike a search for the end.
    template <class Unit>
    static std::size_t lengthUpTo(const Unit* text, std::size_t limit) noexcept {
        std::size_t length = 0;
        while (length < limit && text[length] != Unit{}) {
            ++length;
        }
        return length;
    }

    Value value_;
    detail::ArgumentType type_{};
    Ending ending_ = Ending::known;
};

/// The started argument list: typed, non-owning, a view of arguments on the caller's stack. Two words; pass
/// it by value, and do not keep it after the call that it was made for.
class ArgumentList {
public:
    /// No arguments.
    constexpr ArgumentList() noexcept = default;

    /// The `count` arguments from there on, which the caller keeps alive.
    constexpr ArgumentList(const Argument* arguments, std::size_t count) noexcept
        : arguments_(arguments), count_(count) {}

    /// The number of arguments.
    constexpr std::size_t count() const noexcept { return count_; }

    /// The argument at the index, which must be below the count.
    constexpr const Argument& operator[](std::size_t index) const noexcept { return arguments_[index]; }

private:
    const Argument* arguments_ = nullptr;
    std::size_t count_ = 0;
};

} // namespace ZQFoundation

namespace ZQFoundation::detail {

/// The arguments of one variable-argument call, started. Lives on the caller's stack, in its full expression,
/// so the arguments outlive it. Packing copies numbers, addresses and views of texts; nothing is described
/// and nothing allocated.
template <std::size_t count>
class PackedArguments {
public:
    template <class... Arguments>
    constexpr explicit PackedArguments(const Arguments&... arguments) noexcept
        : arguments_{Argument(arguments)...} {
        static_assert((std::is_constructible_v<Argument, const Arguments&> && ...),
                      "an argument of a format is a number, a text, a value, an object or a pointer; for any "
                      "other type specialize ZQFoundation::ObjectConversion");
    }
    /// Valid as long as this object and the arguments themselves.
    constexpr ArgumentList list() const noexcept { return {arguments_, count}; }

private:
    Argument arguments_[count];
};

/// Without arguments there is no array: an array without elements is not allowed.
template <>
class PackedArguments<0> {
public:
    constexpr ArgumentList list() const noexcept { return {}; }
};

} // namespace ZQFoundation::detail

#endif
