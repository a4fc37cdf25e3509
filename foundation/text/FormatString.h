// SPDX-License-Identifier: MIT
// Declares the format parameters that are checked at compile time.
#ifndef ZQFOUNDATION_TEXT_FORMATSTRING_H
#define ZQFOUNDATION_TEXT_FORMATSTRING_H

#include "ArgumentList.h"
#include "FormatRefusal.h"
#include "FormatSyntax.h"

namespace ZQFoundation::detail {

/// What the conversions ask for; an argument may serve several. A sum of the numbers below.
using FormatNeeds = unsigned char;
inline constexpr FormatNeeds formatInteger = 1;  ///< d i u o x X c C, and a star
inline constexpr FormatNeeds formatReal = 2;     ///< e E f F g G a A
inline constexpr FormatNeeds formatBytes = 4;    ///< s
inline constexpr FormatNeeds formatUnits = 8;    ///< S
inline constexpr FormatNeeds formatObject = 16;  ///< @
inline constexpr FormatNeeds formatPointer = 32; ///< p

/// Texts that are not literals, and as formats would be unchecked without saying so.
template <class T>
concept UncheckedText = PlainText<T> && !std::is_array_v<T> && !std::is_same_v<T, StringView>;

/// What an argument of type T serves; nothing for a type that no conversion takes. The order of the tests
/// matters: a host's own conversion comes first, and an enumeration with one is still an integer too.
template <class T>
constexpr FormatNeeds formatNeedsServedBy() noexcept {
    using Decayed = std::decay_t<T>;
    if constexpr (ConvertedText<T> || ConvertedObject<T>) {
        return formatObject | (std::is_enum_v<T> ? formatInteger : 0);
    } else if constexpr (std::is_integral_v<T> || std::is_enum_v<T>) {
        return formatInteger;
    } else if constexpr (std::is_floating_point_v<T>) {
        return formatReal;
    } else if constexpr (std::is_null_pointer_v<T>) {
        return formatBytes | formatUnits | formatObject | formatPointer;
    } else if constexpr (std::is_same_v<T, NSString> || std::is_same_v<T, StringView>) {
        return formatBytes | formatUnits | formatObject;
    } else if constexpr (TextPointer<Decayed>) {
        constexpr bool hasUnits = std::is_same_v<std::decay_t<decltype(*Decayed{})>, char16_t>;
        return (hasUnits ? formatUnits : formatBytes) | formatObject | formatPointer;
    } else if constexpr (std::is_convertible_v<Decayed, const NSObjectProtocol*>) {
        return formatObject | formatPointer;
    } else if constexpr (std::is_pointer_v<Decayed>) {
        return formatPointer;
    } else if constexpr (std::is_base_of_v<NSObject, T> || std::is_base_of_v<NSObjectProtocol, T>) {
        return formatObject;
    } else if constexpr (TextObject<T>) {
        return (TextRange<T, char16_t> ? formatUnits : formatBytes) | formatObject;
    } else {
        return 0;
    }
}

/// What an argument serves, and how many bytes its number has; 0 for what is not a number, which is never
/// truncated.
struct FormatService {
    FormatNeeds needs = 0;
    unsigned char bytes = 0;
};

/// Both for a type.
template <class T>
constexpr FormatService formatServiceOf() noexcept {
    if constexpr (std::is_integral_v<T> || std::is_enum_v<T> || std::is_floating_point_v<T>) {
        return {formatNeedsServedBy<T>(), sizeof(T)};
    } else {
        return {formatNeedsServedBy<T>(), 0};
    }
}

/// How many bytes of a number the conversion keeps at most. C passes characters as `int`, so an `int` is not
/// considered truncated there.
constexpr std::size_t formatBytesKeptBy(const FormatConversion& conversion, FormatClass wanted) noexcept {
    switch (wanted) {
    case FormatClass::character:
        return sizeof(int);
    case FormatClass::real:
    case FormatClass::hexadecimalReal:
        return conversion.length == FormatLength::longDouble ? sizeof(long double) : sizeof(double);
    case FormatClass::integer:
        switch (conversion.length) {
        case FormatLength::bits8:
            return 1;
        case FormatLength::bits16:
            return 2;
        case FormatLength::bits32:
            return 4;
        default:
            return 8;
        }
    default:
        return SIZE_MAX;
    }
}

/// The check of one literal format against what its arguments serve. It uses the parser that formats at run
/// time, so the two agree on what a conversion is. `used` has an element for each argument, all false at
/// first.
class FormatCheck {
public:
    constexpr FormatCheck(const FormatService* served, bool* used, std::size_t count)
        : served_(served), used_(used), count_(count) {}

    /// The first thing that is wrong. An unused argument is looked for last, because a wrong conversion often
    /// causes one.
    template <class Unit>
    constexpr FormatFault run(const Unit* at, const Unit* end) {
        while (at != end && fault_.kind == FormatFault::Kind::none) {
            if (*at++ == Unit{'%'}) {
                FormatConversion found;
                at = readFormatConversion(at, end, found);
                take(found);
            }
        }
        if (fault_.kind == FormatFault::Kind::none) {
            findUnused();
        }
        return fault_;
    }

private:
    using Kind = FormatFault::Kind;

    /// What a class of conversions asks of its argument.
    static constexpr FormatNeeds needOf(FormatClass wanted) {
        switch (wanted) {
        case FormatClass::object:
            return formatObject;
        case FormatClass::integer:
        case FormatClass::character:
            return formatInteger;
        case FormatClass::real:
        case FormatClass::hexadecimalReal:
            return formatReal;
        case FormatClass::bytes:
            return formatBytes;
        case FormatClass::units:
            return formatUnits;
        case FormatClass::address:
            return formatPointer;
        default:
            return 0;
        }
    }

    /// Keeps the first fault: later ones are usually consequences of it.
    constexpr void note(Kind kind, std::size_t argument = 0) {
        if (fault_.kind == Kind::none) {
            fault_ = {kind, letter_, conversions_, argument};
        }
    }

    /// Takes the arguments of one conversion, in the order in which they are consumed: width, precision,
    /// value. "%%" is not a conversion and does not count.
    constexpr void take(const FormatConversion& found) {
        const FormatClass wanted = formatClassOf(found.letter);
        if (wanted == FormatClass::percentSign) {
            return;
        }
        ++conversions_;
        letter_ = found.letter;
        if (found.isCutOff) {
            note(Kind::cutOff);
        } else if (wanted == FormatClass::nothing) {
            note(Kind::letterN);
        } else if (wanted == FormatClass::unknown) {
            note(Kind::unknownLetter);
        } else {
            takeField(found.width);
            takeField(found.precision);
            take(found.position, needOf(wanted), Kind::wrongArgument, formatBytesKeptBy(found, wanted));
        }
    }

    /// A width or precision takes an argument only if it is a star.
    constexpr void takeField(const FormatField& field) {
        if (field.source != FormatField::Source::absent && field.source != FormatField::Source::digits) {
            take(field.value, formatInteger, Kind::wrongStar);
        }
    }

    /// The argument in `position`, or the next one, of which that many bytes count.
    constexpr void take(int position, FormatNeeds need, Kind misfit, std::size_t bytesKept = SIZE_MAX) {
        const Numbering numbering = position == 0 ? Numbering::none : Numbering::all;
        if (numbering_ != Numbering::open && numbering_ != numbering) {
            note(Kind::mixedNumbering);
        }
        numbering_ = numbering;
        const std::size_t index = position == 0 ? next_++ : static_cast<std::size_t>(position) - 1;
        if (index >= count_) {
            note(misfit == Kind::wrongStar ? Kind::missingStar : Kind::missingArgument);
            return;
        }
        used_[index] = true;
        if ((served_[index].needs & need) == 0) {
            note(misfit, index + 1);
        } else if (served_[index].bytes > bytesKept) {
            note(Kind::cutArgument, index + 1);
        }
    }

    constexpr void findUnused() {
        for (std::size_t i = 0; i < count_; ++i) {
            if (!used_[i]) {
                fault_ = {Kind::unusedArgument, 0, 0, i + 1};
                return;
            }
        }
    }

    /// Whether the conversions so far have positions; `open` before the first one.
    enum class Numbering : unsigned char { open, none, all };

    const FormatService* served_;
    bool* used_;
    std::size_t count_;
    std::size_t next_ = 0;
    std::size_t conversions_ = 0;
    char16_t letter_ = 0;
    Numbering numbering_ = Numbering::open;
    FormatFault fault_;
};

} // namespace ZQFoundation::detail

namespace ZQFoundation {

/// The format argument of every variable-argument operation.
///
/// A literal is checked against the arguments when the program is compiled:
///
///     NSString::stringWithFormat("%d of %@", 3, name);    // fine
///     NSString::stringWithFormat("%d of %@", name, 3);    // does not compile: argument 1 is not an integer
///     NSString::stringWithFormat("%d of %@", 3);          // does not compile: no argument for %@
///     NSString::stringWithFormat("100%");                 // does not compile: write "100%%"
///     NSString::stringWithFormat("%d", name.length());    // does not compile: 64 bits, write "%lu"
///
/// `d i u o x X c C` and `*` take any integer, character, `bool` or enumeration; `e f g a` any real; `s` a
/// text of `char`, `S` one of `char16_t`, both an NSString; `@` any handle, any text, any object of a class
/// that implements NSObjectProtocol and any type with an `ObjectConversion`; `p` any pointer. A null pointer
/// constant serves the last four.
///
/// No conversion truncates its argument: `%d` takes at most 32 bits, `%ld` 64, `%hd` 16, `%hhd` 8, and a
/// `long double` is for `%Lf`. `%c` and `%C` take characters and, as in C, an `int` that holds one.
///
/// A format that is known only at run time is an NSString (or a StringView); nothing is checked before it is
/// used, and every mismatch has a defined result: a conversion then uses as much of its argument as fits. A
/// nil format is nullptr or a nil string.
///
///     const NSString format = table.localizedStringForKey_value_table("%d items", "", nullptr);
///     NSString::stringWithFormat(format, 3);              // checked by nobody, and harmless whatever it is
///
/// Owns nothing: the literal or string must live until the call returns. A function of a host's own that
/// takes a format declares it as the library does, with `std::type_identity_t`, so that the arguments alone
/// decide the types:
///
///     template <class... Arguments>
///     void say(FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
///         ZQLog::logWithFormat(format, arguments...);
///     }
template <class... Arguments>
class FormatString {
public:
    /// A literal of UTF-8, up to its first NUL, checked against the arguments when the program is compiled.
    template <std::size_t size>
    consteval FormatString(const char (&literal)[size]) : text_(viewOf(literal, lengthOf(literal))) {
        checked(literal, lengthOf(literal));
    }

    /// A UTF-16 literal, checked against the arguments when the program is compiled.
    template <std::size_t size>
    consteval FormatString(const char16_t (&literal)[size]) : text_(literal, lengthOf(literal)) {
        checked(literal, lengthOf(literal));
    }
    /// A nil format: a log call writes nothing, `stringWithFormat` raises.
    constexpr FormatString(std::nullptr_t) noexcept {}

    /// A format known only at run time, which nothing checks before it is used.
    template <class T>
        requires std::is_same_v<T, NSString> || std::is_same_v<T, StringView>
    constexpr FormatString(const T& text) noexcept : text_(text) {}
    template <detail::UncheckedText T>
    FormatString(const T&) = delete; // write "%@" and pass the text as its argument, or make it an NSString

    /// The format itself; nil for a nil one.
    constexpr StringView text() const noexcept { return text_; }

private:
    /// Up to the first NUL, as for any C string: an array may be longer than its text.
    template <class Unit, std::size_t size>
    static consteval std::size_t lengthOf(const Unit (&literal)[size]) {
        std::size_t length = 0;
        while (length < size && literal[length] != Unit{}) {
            ++length;
        }
        return length;
    }

    /// A literal known to be ASCII is appended without a check at run time.
    static consteval StringView viewOf(const char* literal, std::size_t size) {
        for (std::size_t i = 0; i < size; ++i) {
            if (static_cast<unsigned char>(literal[i]) > 0x7F) {
                return StringView(literal, size);
            }
        }
        return StringView::ascii(literal, size);
    }

    /// Ends the compilation for a wrong format. It is called from constructors that are `consteval`, so no
    /// check is left at run time.
    template <class Unit>
    static constexpr void checked(const Unit* literal, std::size_t size) {
        // Not consteval: clang 14 would evaluate calls between such functions too early. One more than there
        // are arguments, because an array cannot be empty.
        const detail::FormatService served[sizeof...(Arguments) + 1] = {
            detail::formatServiceOf<Arguments>()...};
        bool used[sizeof...(Arguments) + 1] = {};
        detail::FormatFault fault =
            detail::FormatCheck(served, used, sizeof...(Arguments)).run(literal, literal + size);
        if (fault.kind != detail::FormatFault::Kind::none) {
            fault.bytes = fault.argument == 0 ? 0 : served[fault.argument - 1].bytes;
            using Numbers = typename detail::FormatNumbersUpTo<sizeof...(Arguments)>::List;
            detail::refuseFormat(fault.conversion, detail::formatRefusalOf<Arguments...>(fault, Numbers()));
        }
    }

    StringView text_;
};

} // namespace ZQFoundation

#endif
