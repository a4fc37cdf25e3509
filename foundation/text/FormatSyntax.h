// SPDX-License-Identifier: MIT
// Parses formats, at compile time and at run time.
#ifndef ZQFOUNDATION_TEXT_FORMATSYNTAX_H
#define ZQFOUNDATION_TEXT_FORMATSYNTAX_H

#include <climits>

// How one conversion of a format is written:
//
//     % [n$] flags* [width] [.[precision]] [length] letter
//
//     flags       -  +  space  0  #
//     width       digits, * (the next argument) or *n$ (argument n)
//     precision   the same; nothing after the '.' means 0
//     length      hh  h  l  ll  q  z  t  j  L
//
// One reader serves both sides: the check of a literal when the program is compiled and the formatting
// itself. So it is a header, works on bytes and on units alike, and allocates nothing. Every text is a
// format: a unit that is not a letter of a conversion comes out as its letter, and the caller decides.
namespace ZQFoundation::detail {

/// How many bits a conversion keeps of its argument. Several modifiers mean the same here, where `long` has
/// 64 bits: "l", "ll", "q", "z", "t" and "j" are all `bits64`; none is `bits32`.
enum class FormatLength : unsigned char { bits32, bits8, bits16, bits64, longDouble };

/// A width or a precision.
struct FormatField {
    enum class Source : unsigned char {
        absent,           ///< not written: no minimum width, the usual precision
        digits,           ///< `value` itself, digits beyond the range of int read as INT_MAX
        nextArgument,     ///< the next argument in the list
        numberedArgument, ///< argument number `value`
    };
    Source source = Source::absent; ///< where the number comes from
    int value = 0;                  ///< the number, or that of the argument that has it
};

/// The flags of a conversion, a sum of these; each may be repeated.
using FormatFlags = unsigned char;
inline constexpr FormatFlags formatLeftJustified = 1; ///< "-"
inline constexpr FormatFlags formatPlus = 2;          ///< "+"
inline constexpr FormatFlags formatBlank = 4;         ///< " "
inline constexpr FormatFlags formatZero = 8;          ///< "0"
inline constexpr FormatFlags formatAlternate = 16;    ///< "#"

/// One conversion as it is written, not yet carried out: "%-*2$.3ld" and the like.
struct FormatConversion {
    FormatFlags flags = 0;                      ///< 0 for none
    bool isCutOff = false;                      ///< the text ended before the letter
    FormatLength length = FormatLength::bits32; ///< as the modifiers say
    char16_t letter = 0;                        ///< what follows the modifiers; 0 if the text ended
    int position = 0;                           ///< n of n$, 0 for the next argument
    FormatField width;                          ///< a negative argument means left-justified
    FormatField precision;                      ///< a negative argument means none
};

/// What a conversion's letter asks for; letters of one class differ in how they write the same argument.
enum class FormatClass : unsigned char {
    unknown,         ///< no conversion: the letter is text
    object,          ///< @
    integer,         ///< d i u o x X
    character,       ///< c C
    real,            ///< e E f F g G
    hexadecimalReal, ///< a A
    bytes,           ///< s
    units,           ///< S
    address,         ///< p
    percentSign,     ///< %%, which takes no argument
    nothing,         ///< n, which takes an argument and stores nothing
};

/// The class of a letter. Case matters: "%D" and "%U" are not conversions.
constexpr FormatClass formatClassOf(char16_t letter) noexcept {
    switch (letter) {
    case u'@':
        return FormatClass::object;
    case u'd':
    case u'i':
    case u'u':
    case u'o':
    case u'x':
    case u'X':
        return FormatClass::integer;
    case u'c':
    case u'C':
        return FormatClass::character;
    case u'e':
    case u'E':
    case u'f':
    case u'F':
    case u'g':
    case u'G':
        return FormatClass::real;
    case u'a':
    case u'A':
        return FormatClass::hexadecimalReal;
    case u's':
        return FormatClass::bytes;
    case u'S':
        return FormatClass::units;
    case u'p':
        return FormatClass::address;
    case u'%':
        return FormatClass::percentSign;
    case u'n':
        return FormatClass::nothing;
    default:
        return FormatClass::unknown;
    }
}

/// ASCII digits alone, whatever the locale.
template <class Unit>
constexpr bool isFormatDigit(Unit unit) noexcept {
    return unit >= Unit{'0'} && unit <= Unit{'9'};
}

/// Reads the digits at `at`, none giving 0, and moves past them. Numbers beyond the range of int are INT_MAX,
/// so no number of digits overflows.
template <class Unit>
constexpr int readFormatDigits(const Unit*& at, const Unit* end) noexcept {
    long long value = 0;
    for (; at != end && isFormatDigit(*at); ++at) {
        value = value * 10 + (*at - Unit{'0'});
        value = value > INT_MAX ? INT_MAX : value;
    }
    return static_cast<int>(value);
}

/// Reads digits that "$" follows and moves past both; 0, and `at` as it was, for anything else: "%5d" begins
/// with a width. "0$" is not a position.
///
///     "2$@"  // 2, and `at` is at "@"
///     "12d"  // 0, and `at` is where it was
template <class Unit>
constexpr int readFormatPosition(const Unit*& at, const Unit* end) noexcept {
    const Unit* next = at;
    const int position = readFormatDigits(next, end);
    if (position == 0 || next == end || *next != Unit{'$'}) {
        return 0;
    }
    at = next + 1;
    return position;
}

/// Reads a width or a precision: "*", "*2$" or digits, of which there may be none.
template <class Unit>
constexpr FormatField readFormatField(const Unit*& at, const Unit* end) noexcept {
    if (at == end || *at != Unit{'*'}) {
        return {FormatField::Source::digits, readFormatDigits(at, end)};
    }
    ++at;
    const int position = readFormatPosition(at, end);
    return {position == 0 ? FormatField::Source::nextArgument : FormatField::Source::numberedArgument,
            position};
}

/// 0 for a unit that is not a flag.
template <class Unit>
constexpr FormatFlags formatFlagOf(Unit unit) noexcept {
    switch (unit) {
    case Unit{'-'}:
        return formatLeftJustified;
    case Unit{'+'}:
        return formatPlus;
    case Unit{' '}:
        return formatBlank;
    case Unit{'0'}:
        return formatZero;
    case Unit{'#'}:
        return formatAlternate;
    default:
        return 0;
    }
}

/// Reads the length modifier, if there is one, and moves past it; `at` must not be the end.
///
///     "hhd"  // bits8, and `at` is at "d"
///     "d"    // bits32, and `at` is where it was
template <class Unit>
constexpr FormatLength readFormatLength(const Unit*& at, const Unit* end) noexcept {
    const Unit unit = *at;
    switch (unit) {
    case Unit{'h'}:
    case Unit{'l'}: {
        ++at;
        const bool isDoubled = at != end && *at == unit;
        at += isDoubled ? 1 : 0;
        if (unit == Unit{'l'}) {
            return FormatLength::bits64;
        }
        return isDoubled ? FormatLength::bits8 : FormatLength::bits16;
    }
    case Unit{'q'}:
    case Unit{'z'}:
    case Unit{'t'}:
    case Unit{'j'}:
        ++at;
        return FormatLength::bits64;
    case Unit{'L'}:
        ++at;
        return FormatLength::longDouble;
    default:
        return FormatLength::bits32;
    }
}

/// Reads what is between the '%' and the length, at least one unit. A position is looked for first: it begins
/// with digits, as a width does, and ends with "$".
template <class Unit>
constexpr void readFormatModifiers(const Unit*& at, const Unit* end, FormatConversion& conversion) noexcept {
    if (isFormatDigit(*at)) {
        conversion.position = readFormatPosition(at, end);
    }
    for (FormatFlags flag = 1; at != end && (flag = formatFlagOf(*at)) != 0; ++at) {
        conversion.flags |= flag;
    }
    if (at != end && (*at == Unit{'*'} || isFormatDigit(*at))) {
        conversion.width = readFormatField(at, end);
    }
    if (at != end && *at == Unit{'.'}) {
        ++at;
        conversion.precision = readFormatField(at, end);
    }
}

/// Reads a conversion whose '%' is before `at`; returns the place after its letter, or `end` when it is
/// cut off. Any unit may come out as the letter.
///
///     "-*2$.3ld of"  // flag "-", width from argument 2, precision 3, 64 bits, letter "d"; returns " of"
template <class Unit>
constexpr const Unit* readFormatConversion(const Unit* at, const Unit* end,
                                           FormatConversion& conversion) noexcept {
    // All modifiers are below '@' and all letters from there on, so one comparison is enough for most
    // conversions.
    if (at != end && *at < Unit{'@'}) {
        readFormatModifiers(at, end, conversion);
    }
    if (at != end) {
        conversion.length = readFormatLength(at, end);
    }
    if (at == end) {
        conversion.isCutOff = true;
        return end;
    }
    conversion.letter = static_cast<char16_t>(*at);
    return at + 1;
}

} // namespace ZQFoundation::detail

#endif
