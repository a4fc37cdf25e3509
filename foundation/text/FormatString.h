// SPDX-License-Identifier: MIT
#ifndef ZQFOUNDATION_TEXT_FORMATSTRING_H
#define ZQFOUNDATION_TEXT_FORMATSTRING_H

#include "ArgumentList.h"
#include "FormatSyntax.h"

namespace ZQFoundation {

namespace detail {

// What is wrong with a literal format. None of these functions exists; a wrong format calls one while the
// program is compiled, and the compiler names it, on the way through argument<n> and conversion<letter>.
void format_ends_inside_a_conversion();
void format_has_an_unknown_conversion();
void format_conversion_n_is_not_supported();
void format_mixes_numbered_and_unnumbered_arguments();
void format_has_no_argument_for_the_conversion();
void format_does_not_use_the_argument();
void format_argument_for_the_star_is_not_an_integer();
void format_argument_is_not_an_integer_as_the_conversion_requires();
void format_argument_is_not_a_real_number_as_the_conversion_requires();
void format_argument_is_not_a_text_of_char_as_the_conversion_requires();
void format_argument_is_not_a_text_of_char16_t_as_the_conversion_requires();
void format_argument_is_not_an_object_or_text_as_the_conversion_requires();
void format_argument_is_not_a_pointer_as_the_conversion_requires();

/// What the conversions ask for; an argument may serve several.
using FormatNeeds = unsigned char;
inline constexpr FormatNeeds formatInteger = 1;
inline constexpr FormatNeeds formatReal = 2;
inline constexpr FormatNeeds formatBytes = 4;
inline constexpr FormatNeeds formatUnits = 8;
inline constexpr FormatNeeds formatObject = 16;
inline constexpr FormatNeeds formatPointer = 32;

// Two faults beside an argument that does not serve.
inline constexpr FormatNeeds formatStar = 64;
inline constexpr FormatNeeds formatMissing = 128;

/// What an argument of type T serves; nothing for a type that no conversion takes.
template <class T>
constexpr FormatNeeds formatNeedsServedBy() noexcept {
    using Decayed = std::decay_t<T>;
    if constexpr (std::is_integral_v<T> || std::is_enum_v<T>) {
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
    } else if constexpr (TextRange<T, char>) {
        return formatBytes | formatObject;
    } else if constexpr (TextRange<T, char16_t>) {
        return formatUnits | formatObject;
    } else {
        return 0;
    }
}

/// The way to the message: the compiler shows each call with its template argument.
template <char letter>
struct conversion {
    static consteval void fails(FormatNeeds need) {
        switch (need) {
        case formatInteger:
            return format_argument_is_not_an_integer_as_the_conversion_requires();
        case formatReal:
            return format_argument_is_not_a_real_number_as_the_conversion_requires();
        case formatBytes:
            return format_argument_is_not_a_text_of_char_as_the_conversion_requires();
        case formatUnits:
            return format_argument_is_not_a_text_of_char16_t_as_the_conversion_requires();
        case formatObject:
            return format_argument_is_not_an_object_or_text_as_the_conversion_requires();
        case formatPointer:
            return format_argument_is_not_a_pointer_as_the_conversion_requires();
        case formatStar:
            return format_argument_for_the_star_is_not_an_integer();
        default:
            return format_has_no_argument_for_the_conversion();
        }
    }
};

consteval void failConversion(char16_t letter, FormatNeeds need) {
    switch (letter) {
    case u'd':
        return conversion<'d'>::fails(need);
    case u'i':
        return conversion<'i'>::fails(need);
    case u'u':
        return conversion<'u'>::fails(need);
    case u'o':
        return conversion<'o'>::fails(need);
    case u'x':
        return conversion<'x'>::fails(need);
    case u'X':
        return conversion<'X'>::fails(need);
    case u'c':
        return conversion<'c'>::fails(need);
    case u'C':
        return conversion<'C'>::fails(need);
    case u'e':
        return conversion<'e'>::fails(need);
    case u'E':
        return conversion<'E'>::fails(need);
    case u'f':
        return conversion<'f'>::fails(need);
    case u'F':
        return conversion<'F'>::fails(need);
    case u'g':
        return conversion<'g'>::fails(need);
    case u'G':
        return conversion<'G'>::fails(need);
    case u'a':
        return conversion<'a'>::fails(need);
    case u'A':
        return conversion<'A'>::fails(need);
    case u's':
        return conversion<'s'>::fails(need);
    case u'S':
        return conversion<'S'>::fails(need);
    case u'@':
        return conversion<'@'>::fails(need);
    default:
        return conversion<'p'>::fails(need);
    }
}

template <std::size_t number>
struct argument {
    static consteval void fails(char16_t letter, FormatNeeds need) {
        return letter == 0 ? format_does_not_use_the_argument() : failConversion(letter, need);
    }
};

/// `number` counts from 1; the letter is 0 for an argument that no conversion uses.
consteval void failArgument(std::size_t number, char16_t letter, FormatNeeds need) {
    switch (number) {
    case 1:
        return argument<1>::fails(letter, need);
    case 2:
        return argument<2>::fails(letter, need);
    case 3:
        return argument<3>::fails(letter, need);
    case 4:
        return argument<4>::fails(letter, need);
    case 5:
        return argument<5>::fails(letter, need);
    case 6:
        return argument<6>::fails(letter, need);
    case 7:
        return argument<7>::fails(letter, need);
    case 8:
        return argument<8>::fails(letter, need);
    case 9:
        return argument<9>::fails(letter, need);
    default:
        return letter == 0 ? format_does_not_use_the_argument() : failConversion(letter, need);
    }
}

/// The check of one literal format against what its arguments serve.
class FormatCheck {
public:
    consteval FormatCheck(const FormatNeeds* served, bool* used, std::size_t count)
        : served_(served), used_(used), count_(count) {}

    template <class Unit>
    consteval void run(const Unit* at, const Unit* end) {
        while (at != end) {
            if (*at++ != Unit{'%'}) {
                continue;
            }
            FormatConversion conversion;
            at = readFormatConversion(at, end, conversion);
            if (conversion.isCutOff) {
                format_ends_inside_a_conversion();
            }
            take(conversion);
        }
        for (std::size_t i = 0; i < count_; ++i) {
            if (!used_[i]) {
                failArgument(i + 1, 0, 0);
            }
        }
    }

private:
    static consteval FormatNeeds needOf(FormatClass wanted) {
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

    consteval void take(const FormatConversion& found) {
        const FormatClass wanted = formatClassOf(found.letter);
        if (wanted == FormatClass::percentSign) {
            return;
        }
        if (wanted == FormatClass::nothing) {
            format_conversion_n_is_not_supported();
        }
        if (wanted == FormatClass::unknown) {
            format_has_an_unknown_conversion();
        }
        takeField(found.width, found.letter);
        takeField(found.precision, found.letter);
        const FormatNeeds need = needOf(wanted);
        const std::size_t index = take(found.position, found.letter);
        if ((served_[index] & need) == 0) {
            failArgument(index + 1, found.letter, need);
        }
    }

    consteval void takeField(const FormatField& field, char16_t letter) {
        if (field.source == FormatField::Source::absent || field.source == FormatField::Source::digits) {
            return;
        }
        const std::size_t index = take(field.value, letter);
        if ((served_[index] & formatInteger) == 0) {
            failArgument(index + 1, letter, formatStar);
        }
    }

    /// The index of the argument in `position`, or of the next one.
    consteval std::size_t take(int position, char16_t letter) {
        const Numbering numbering = position == 0 ? Numbering::none : Numbering::all;
        if (numbering_ != Numbering::open && numbering_ != numbering) {
            format_mixes_numbered_and_unnumbered_arguments();
        }
        numbering_ = numbering;
        const std::size_t index = position == 0 ? next_++ : static_cast<std::size_t>(position) - 1;
        if (index >= count_) {
            failArgument(index + 1, letter, formatMissing);
        }
        used_[index] = true;
        return index;
    }

    enum class Numbering : unsigned char { open, none, all };

    const FormatNeeds* served_;
    bool* used_;
    std::size_t count_;
    std::size_t next_ = 0;
    Numbering numbering_ = Numbering::open;
};

} // namespace detail

/// The format argument of every variable-argument operation.
///
/// A literal is checked against the arguments when the program is compiled:
///
///     NSString::stringWithFormat("%d of %@", 3, name);    // fine
///     NSString::stringWithFormat("%d of %@", name, 3);    // does not compile: argument 1 is not an integer
///     NSString::stringWithFormat("%d of %@", 3);          // does not compile: no argument for %@
///     NSString::stringWithFormat("100%");                 // does not compile: write "100%%"
///
/// `d i u o x X c C` and `*` take any integer, character, `bool` or enumeration, whatever the length modifier
/// says; `e f g a` any real; `s` a text of `char`, `S` one of `char16_t`, both an NSString; `@` any handle,
/// any text and any object of a class that implements NSObjectProtocol; `p` any pointer. A null pointer
/// constant serves the last four.
///
/// A format that is known only at run time is an NSString (or a StringView); nothing is checked before it is
/// used, and every misfit has a defined result. A nil format is nullptr or a nil string.
template <class... Arguments>
class FormatString {
public:
    /// A literal, checked against the arguments when the program is compiled.
    template <std::size_t size>
    consteval FormatString(const char (&literal)[size]) : text_(viewOf(literal, lengthOf(literal))) {
        checked(literal, lengthOf(literal));
    }
    template <std::size_t size>
    consteval FormatString(const char16_t (&literal)[size]) : text_(literal, lengthOf(literal)) {
        checked(literal, lengthOf(literal));
    }
    constexpr FormatString(std::nullptr_t) noexcept {}

    /// A format known only at run time, which nothing checks before it is used.
    template <class T>
        requires std::is_same_v<T, NSString> || std::is_same_v<T, StringView>
    constexpr FormatString(const T& text) noexcept : text_(text) {}
    template <class T>
        requires(detail::PlainText<T> && !std::is_array_v<T> && !std::is_same_v<T, StringView>)
    FormatString(const T& text)
    = delete; // a format known only at run time must be an NSString

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

    static consteval StringView viewOf(const char* literal, std::size_t size) {
        for (std::size_t i = 0; i < size; ++i) {
            if (static_cast<unsigned char>(literal[i]) > 0x7F) {
                return StringView(literal, size);
            }
        }
        return StringView::ascii(literal, size);
    }

    template <class Unit>
    static consteval void checked(const Unit* literal, std::size_t size) {
        // One more than there are arguments, because an array cannot be empty.
        const detail::FormatNeeds served[sizeof...(Arguments) + 1] = {
            detail::formatNeedsServedBy<Arguments>()...};
        bool used[sizeof...(Arguments) + 1] = {};
        detail::FormatCheck(served, used, sizeof...(Arguments)).run(literal, literal + size);
    }

    StringView text_;
};

} // namespace ZQFoundation

#endif
