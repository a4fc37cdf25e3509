// SPDX-License-Identifier: MIT
// Reports at compile time what is wrong with a literal format.
#ifndef ZQFOUNDATION_TEXT_FORMATREFUSAL_H
#define ZQFOUNDATION_TEXT_FORMATREFUSAL_H

#include <cstddef>

// How the compiler reports what is wrong with a literal format. A wrong one calls a function that is not
// a constant expression, so the compiler shows the name of that function and its template arguments: the
// conversion's letter and the argument's number and type. The call on the way there names the conversion's
// number. Both matter: with stars and positions the two numbers differ.
//
// For `NSString::stringWithFormat("%d of %@", name, 3)` the message contains, in the compiler's own
// layout,
//
//     conversion_number<1>::is_wrong
//     format_conversion_requires_an_integer, conversion<'d'>, argument<1, NSString>
//
// A `static_assert` cannot do this: its text is fixed, and inside the function the format is not a constant.
// Names are lower case with underscores because they are sentences of a message.
namespace ZQFoundation::detail {

/// The conversion with that letter. Never defined, as the other names of a message: only its spelling is
/// shown.
template <char letter>
struct conversion;

/// The conversion to write instead, without its "%": `write_instead<'l', 'd'>` is "%ld".
template <char... letters>
struct write_instead;

/// The argument with that number, counted from 1, and its type.
template <std::size_t number, class Type>
struct argument;

// None of these functions exists, not even for a type of an unnamed namespace, which clang would warn of.
#ifdef __clang__
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wundefined-internal"
#endif
/// "%d", "%x", "%c" and the like, for anything but an integer, a character, a `bool` or an enumerator.
template <class Conversion, class Argument>
void format_conversion_requires_an_integer();
/// "%f", "%e", "%g" and "%a", for anything but a floating-point number: an integer is not converted.
template <class Conversion, class Argument>
void format_conversion_requires_a_real_number();
/// "%s", for anything but a text of bytes or an NSString.
template <class Conversion, class Argument>
void format_conversion_requires_a_text_of_char();
/// "%S", for anything but a text of UTF-16 units or an NSString.
template <class Conversion, class Argument>
void format_conversion_requires_a_text_of_char16_t();
/// "%@", for a type that is not a value, a text or a host object, and has no conversion to one.
template <class Conversion, class Argument>
void format_conversion_requires_an_object_or_text_or_an_ObjectConversion_as_in_Std_h_Qt_h_Glib_h();
/// "%p", for anything but a pointer.
template <class Conversion, class Argument>
void format_conversion_requires_a_pointer();
/// The number has more bits than the conversion keeps: "%d" for a `std::size_t`.
template <class Conversion, class Argument, class Write>
void format_conversion_would_cut_the_argument();
/// A width or precision "*" takes an argument that is not an integer.
template <class Argument>
void format_star_requires_an_integer();
/// There are more arguments than the conversions take.
template <class Argument>
void format_does_not_use_the_argument();
/// There are fewer arguments than the conversions take.
template <class Conversion>
void format_has_no_argument_for_the_conversion();
/// There is no argument for a "*".
void format_has_no_argument_for_the_star();
/// A letter that is not a conversion, as in "%y"; a percent sign is written "%%".
void format_has_an_unknown_conversion();
/// "%n" would store through a pointer; it is refused even with one.
void format_conversion_n_is_not_supported();
/// The format ends after "%" and perhaps some modifiers: "100%".
void format_ends_inside_a_conversion();
/// "%1$@ %@": either all conversions and stars have positions, or none.
void format_mixes_numbered_and_unnumbered_arguments();
#ifdef __clang__
#pragma clang diagnostic pop
#endif

/// One of these. A pointer, so that the one that fits can be chosen by ordinary code before the call that
/// fails.
using FormatRefusal = void (*)();

/// The first thing that is wrong with a format; the kinds from `wrongArgument` on concern an argument.
struct FormatFault {
    enum class Kind : unsigned char {
        none,            ///< the format suits the arguments
        cutOff,          ///< it ends inside a conversion
        unknownLetter,   ///< no conversion has this letter
        letterN,         ///< "%n"
        mixedNumbering,  ///< "%1$@ %@"
        missingArgument, ///< too few arguments
        missingStar,     ///< too few, and a "*" lacks one
        wrongArgument,   ///< the conversion does not take its type
        cutArgument,     ///< the conversion would truncate it
        wrongStar,       ///< a "*" takes it, and it is not an integer
        unusedArgument,  ///< too many arguments
    };

    Kind kind = Kind::none;
    char16_t letter = 0;        ///< of the conversion
    std::size_t conversion = 0; ///< which of the conversions, counted from 1
    std::size_t argument = 0;   ///< which of the arguments, counted from 1
    std::size_t bytes = 0;      ///< of the argument, when it is a number
};

/// Why the letter does not take the argument. A letter is a template argument of the message, so each needs
/// its own line: a number known only to the check cannot become one otherwise.
template <class Argument>
constexpr FormatRefusal formatRefusalOfArgument(char16_t letter) {
    switch (letter) {
    case u'd':
        return format_conversion_requires_an_integer<conversion<'d'>, Argument>;
    case u'i':
        return format_conversion_requires_an_integer<conversion<'i'>, Argument>;
    case u'u':
        return format_conversion_requires_an_integer<conversion<'u'>, Argument>;
    case u'o':
        return format_conversion_requires_an_integer<conversion<'o'>, Argument>;
    case u'x':
        return format_conversion_requires_an_integer<conversion<'x'>, Argument>;
    case u'X':
        return format_conversion_requires_an_integer<conversion<'X'>, Argument>;
    case u'c':
        return format_conversion_requires_an_integer<conversion<'c'>, Argument>;
    case u'C':
        return format_conversion_requires_an_integer<conversion<'C'>, Argument>;
    case u'e':
        return format_conversion_requires_a_real_number<conversion<'e'>, Argument>;
    case u'E':
        return format_conversion_requires_a_real_number<conversion<'E'>, Argument>;
    case u'f':
        return format_conversion_requires_a_real_number<conversion<'f'>, Argument>;
    case u'F':
        return format_conversion_requires_a_real_number<conversion<'F'>, Argument>;
    case u'g':
        return format_conversion_requires_a_real_number<conversion<'g'>, Argument>;
    case u'G':
        return format_conversion_requires_a_real_number<conversion<'G'>, Argument>;
    case u'a':
        return format_conversion_requires_a_real_number<conversion<'a'>, Argument>;
    case u'A':
        return format_conversion_requires_a_real_number<conversion<'A'>, Argument>;
    case u's':
        return format_conversion_requires_a_text_of_char<conversion<'s'>, Argument>;
    case u'S':
        return format_conversion_requires_a_text_of_char16_t<conversion<'S'>, Argument>;
    case u'@':
        return format_conversion_requires_an_object_or_text_or_an_ObjectConversion_as_in_Std_h_Qt_h_Glib_h<
            conversion<'@'>, Argument>;
    default:
        return format_conversion_requires_a_pointer<conversion<'p'>, Argument>;
    }
}

/// A number of that many bytes would be cut, and the message says which conversion keeps it whole: "%hd" for
/// 2 bytes, "%d" for 4, "%ld" for 8, "%Lf" for more. Where no character holds it, its number can be written.
template <class Argument, char letter>
constexpr FormatRefusal formatRefusalOfCut(std::size_t bytes) {
    using Found = conversion<letter>;
    constexpr bool isCharacter = letter == 'c' || letter == 'C';
    constexpr char asNumber = isCharacter ? 'd' : letter;
    switch (bytes) {
    case 2:
        return format_conversion_would_cut_the_argument<Found, Argument, write_instead<'h', letter>>;
    case 4:
        return format_conversion_would_cut_the_argument<Found, Argument, write_instead<asNumber>>;
    case 8:
        return format_conversion_would_cut_the_argument<Found, Argument, write_instead<'l', asNumber>>;
    default:
        return format_conversion_would_cut_the_argument<Found, Argument, write_instead<'L', letter>>;
    }
}

/// The same for a letter that only the check knows: it is compared with all that can cut.
template <class Argument, char... letters>
constexpr FormatRefusal formatRefusalOfCut(const FormatFault& fault) {
    FormatRefusal refusal = nullptr;
    (void)((fault.letter == static_cast<char16_t>(letters) &&
            (refusal = formatRefusalOfCut<Argument, letters>(fault.bytes)) != nullptr) ||
           ...);
    return refusal;
}

/// What is wrong with an argument, by the kind of the fault.
template <class Argument>
constexpr FormatRefusal formatRefusalOfArgument(const FormatFault& fault) {
    switch (fault.kind) {
    case FormatFault::Kind::cutArgument:
        return formatRefusalOfCut<Argument, 'd', 'i', 'u', 'o', 'x', 'X', 'c', 'C', 'e', 'E', 'f', 'F', 'g',
                                  'G', 'a', 'A'>(fault);
    case FormatFault::Kind::wrongStar:
        return format_star_requires_an_integer<Argument>;
    case FormatFault::Kind::unusedArgument:
        return format_does_not_use_the_argument<Argument>;
    default:
        return formatRefusalOfArgument<Argument>(fault.letter);
    }
}

/// There is no argument for the letter.
constexpr FormatRefusal formatRefusalOfLetter(char16_t letter) {
    switch (letter) {
    case u'd':
        return format_has_no_argument_for_the_conversion<conversion<'d'>>;
    case u'i':
        return format_has_no_argument_for_the_conversion<conversion<'i'>>;
    case u'u':
        return format_has_no_argument_for_the_conversion<conversion<'u'>>;
    case u'o':
        return format_has_no_argument_for_the_conversion<conversion<'o'>>;
    case u'x':
        return format_has_no_argument_for_the_conversion<conversion<'x'>>;
    case u'X':
        return format_has_no_argument_for_the_conversion<conversion<'X'>>;
    case u'c':
        return format_has_no_argument_for_the_conversion<conversion<'c'>>;
    case u'C':
        return format_has_no_argument_for_the_conversion<conversion<'C'>>;
    case u'e':
        return format_has_no_argument_for_the_conversion<conversion<'e'>>;
    case u'E':
        return format_has_no_argument_for_the_conversion<conversion<'E'>>;
    case u'f':
        return format_has_no_argument_for_the_conversion<conversion<'f'>>;
    case u'F':
        return format_has_no_argument_for_the_conversion<conversion<'F'>>;
    case u'g':
        return format_has_no_argument_for_the_conversion<conversion<'g'>>;
    case u'G':
        return format_has_no_argument_for_the_conversion<conversion<'G'>>;
    case u'a':
        return format_has_no_argument_for_the_conversion<conversion<'a'>>;
    case u'A':
        return format_has_no_argument_for_the_conversion<conversion<'A'>>;
    case u's':
        return format_has_no_argument_for_the_conversion<conversion<'s'>>;
    case u'S':
        return format_has_no_argument_for_the_conversion<conversion<'S'>>;
    case u'@':
        return format_has_no_argument_for_the_conversion<conversion<'@'>>;
    default:
        return format_has_no_argument_for_the_conversion<conversion<'p'>>;
    }
}

/// What is wrong with the format itself, whatever the arguments are.
constexpr FormatRefusal formatRefusalOfFormat(const FormatFault& fault) {
    switch (fault.kind) {
    case FormatFault::Kind::cutOff:
        return format_ends_inside_a_conversion;
    case FormatFault::Kind::letterN:
        return format_conversion_n_is_not_supported;
    case FormatFault::Kind::mixedNumbering:
        return format_mixes_numbered_and_unnumbered_arguments;
    case FormatFault::Kind::missingStar:
        return format_has_no_argument_for_the_star;
    case FormatFault::Kind::missingArgument:
        return formatRefusalOfLetter(fault.letter);
    default:
        return format_has_an_unknown_conversion;
    }
}

/// @cond It inherits from itself, which Doxygen cannot follow.
template <std::size_t... numbers>
struct FormatNumbers {};

/// The numbers from 1 to the count, without a further header of the standard library.
template <std::size_t count, std::size_t... numbers>
struct FormatNumbersUpTo : FormatNumbersUpTo<count - 1, count, numbers...> {};
template <std::size_t... numbers>
struct FormatNumbersUpTo<0, numbers...> {
    using List = FormatNumbers<numbers...>;
};
/// @endcond

/// The function that names the fault. The fault has the argument's number; its type is found by comparing
/// that with all numbers, because a parameter pack cannot be indexed by a run-time number.
template <class... Arguments, std::size_t... numbers>
constexpr FormatRefusal formatRefusalOf(const FormatFault& fault, FormatNumbers<numbers...>) {
    FormatRefusal refusal = nullptr;
    if (fault.kind >= FormatFault::Kind::wrongArgument) {
        (void)((numbers == fault.argument &&
                (refusal = formatRefusalOfArgument<argument<numbers, Arguments>>(fault)) != nullptr) ||
               ...);
    }
    return refusal == nullptr ? formatRefusalOfFormat(fault) : refusal;
}

/// The way to the message, which names the conversion's number: the compiler lists the calls that led to the
/// one that fails.
template <std::size_t number>
struct conversion_number {
    static constexpr void is_wrong(FormatRefusal refusal) { refusal(); }
};

/// Calls the function, which ends the compilation. From the tenth conversion on the message does not say
/// which one it is; 0 means that the fault is in no conversion.
constexpr void refuseFormat(std::size_t conversion, FormatRefusal refusal) {
    switch (conversion) {
    case 1:
        return conversion_number<1>::is_wrong(refusal);
    case 2:
        return conversion_number<2>::is_wrong(refusal);
    case 3:
        return conversion_number<3>::is_wrong(refusal);
    case 4:
        return conversion_number<4>::is_wrong(refusal);
    case 5:
        return conversion_number<5>::is_wrong(refusal);
    case 6:
        return conversion_number<6>::is_wrong(refusal);
    case 7:
        return conversion_number<7>::is_wrong(refusal);
    case 8:
        return conversion_number<8>::is_wrong(refusal);
    case 9:
        return conversion_number<9>::is_wrong(refusal);
    default:
        return refusal();
    }
}

} // namespace ZQFoundation::detail

#endif
