// SPDX-License-Identifier: MIT
// Formats that do not suit their arguments, each of which the compiler must refuse, and beside each what is right.
#include <string>

#include "foundation/objects/Class.h"
#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSNumber.h"
#include "foundation/objects/NSObjectProtocol.h"
#include "foundation/objects/NSString.h"

using namespace ZQFoundation;

namespace {

struct Declared;
struct Other {};
struct Converted {};
struct Wrong {};
class Host : public NSObjectProtocol {};
enum class Color { red };

} // namespace

template <>
struct ZQFoundation::ObjectConversion<Converted> {
    static NSNumber object(const Converted&) { return 5; }
};
template <>
struct ZQFoundation::ObjectConversion<Wrong> {
    static int description(const Wrong&);
};

void right(const char* variable, const std::string& text, const NSString& name, const NSObject& object,
           const Host& host, Declared* declared, char16_t* units, int number) {
#ifndef REFUSING
    NSString::stringWithFormat("%d %ld %hhu %c %C %x", number, number, true, 'c', u'x', Color::red);
    NSString::stringWithFormat("%ld %zu %hd %hhx %C %c %C", 5L, sizeof number, short(5), 'x', 'x', 65, 0x20AC);
    NSString::stringWithFormat("%f %Lg %La %e", 1.0f, 1.0, 1.0L, 0.5);
    NSString::stringWithFormat(name, 5L);
    NSString::stringWithFormat("%@ %@", Converted(), std::u8string(u8"text"));
    NSString::stringWithFormat("%@ %@ %@ %@ %@ %@", name, object, host, &host, text, variable);
    NSString::stringWithFormat("%@ %@ %@", nullptr, classOf<Host>(), NSNumber(5));
    NSString::stringWithFormat("%s %s %s %s", variable, text, name, nullptr);
    NSString::stringWithFormat("%S %S %S", units, u"x", name);
    NSString::stringWithFormat("%p %p %p %p", variable, declared, &host, nullptr);
    NSString::stringWithFormat("%*d %.*f", 5, number, 3, 0.5);
    NSString::stringWithFormat("%2$@ %1$d %2$@ %3$*1$d", number, name, 7);
    NSString::stringWithFormat("100%% %%");
    NSString::stringWithFormat(u"\u20ac %d", number);
    NSString::stringWithFormat(name, number);
    NSString::stringWithFormat(StringView(variable), number);
    NSString::stringWithFormat(NSString(text), number);
#endif

#ifdef REFUSE_64_BITS_FOR_32
    // expected: format_conversion_would_cut_the_argument && conversion<'d'> && write_instead<'l', 'd'>
    NSString::stringWithFormat("%d", sizeof number);
#endif
#ifdef REFUSE_64_BITS_FOR_HEXADECIMAL_32
    // expected: format_conversion_would_cut_the_argument && conversion<'x'> && write_instead<'l', 'x'>
    NSString::stringWithFormat("%08x", 5L);
#endif
#ifdef REFUSE_32_BITS_FOR_16
    // expected: format_conversion_would_cut_the_argument && conversion<'u'> && write_instead<'u'>
    NSString::stringWithFormat("%hu", number);
#endif
#ifdef REFUSE_32_BITS_FOR_8
    // expected: format_conversion_would_cut_the_argument && conversion<'d'> && write_instead<'d'>
    NSString::stringWithFormat("%hhd", number);
#endif
#ifdef REFUSE_16_BITS_FOR_8
    // expected: format_conversion_would_cut_the_argument && conversion<'d'> && write_instead<'h', 'd'>
    NSString::stringWithFormat("%hhd", short(5));
#endif
#ifdef REFUSE_64_BITS_FOR_A_CHARACTER
    // expected: format_conversion_would_cut_the_argument && conversion<'c'> && write_instead<'l', 'd'>
    NSString::stringWithFormat("%c", 5L);
#endif
#ifdef REFUSE_64_BITS_FOR_A_UNIT
    // expected: format_conversion_would_cut_the_argument && conversion<'C'> && write_instead<'l', 'd'>
    NSString::stringWithFormat("%C", 5L);
#endif
#ifdef REFUSE_A_LONG_DOUBLE_FOR_A_DOUBLE
    // expected: format_conversion_would_cut_the_argument && conversion<'f'> && write_instead<'L', 'f'>
    NSString::stringWithFormat("%.3f", 1.0L);
#endif
#ifdef REFUSE_A_NUMBERED_ARGUMENT_THAT_IS_CUT
    // expected: format_conversion_would_cut_the_argument && conversion_number<2>
    // expected: argument<1, long int> | argument<1, long>
    NSString::stringWithFormat("%2$ld %1$d", 5L, 5L);
#endif
#ifdef REFUSE_A_CONVERSION_WITHOUT_MEMBERS
    // expected: a specialization of ZQFoundation::ObjectConversion has the static member
    NSArray{Wrong()};
#endif
#ifdef REFUSE_TEXT_FOR_A_CHARACTER
    // expected: format_conversion_requires_an_integer && conversion<'c'> && conversion_number<1>
    // expected: argument<1, char [2]> | argument<1, char[2]>
    NSString::stringWithFormat("%c", "c");
#endif
#ifdef REFUSE_REALS_FOR_INTEGERS
    // expected: format_conversion_requires_an_integer && conversion_number<1> && argument<1, double>
    // expected: conversion<'d'> && conversion<'i'> && conversion<'u'> && conversion<'o'>
    // expected: conversion<'x'> && conversion<'X'> && conversion<'c'> && conversion<'C'>
    NSString::stringWithFormat("%d", 1.5);
    NSString::stringWithFormat("%i", 1.5);
    NSString::stringWithFormat("%u", 1.5);
    NSString::stringWithFormat("%o", 1.5);
    NSString::stringWithFormat("%x", 1.5);
    NSString::stringWithFormat("%X", 1.5);
    NSString::stringWithFormat("%c", 1.5);
    NSString::stringWithFormat("%C", 1.5);
#endif
#ifdef REFUSE_INTEGERS_FOR_REALS
    // expected: format_conversion_requires_a_real_number && conversion_number<1> && argument<1, int>
    // expected: conversion<'e'> && conversion<'E'> && conversion<'f'> && conversion<'F'>
    // expected: conversion<'g'> && conversion<'G'> && conversion<'a'> && conversion<'A'>
    NSString::stringWithFormat("%e", 1);
    NSString::stringWithFormat("%E", 1);
    NSString::stringWithFormat("%f", 1);
    NSString::stringWithFormat("%F", 1);
    NSString::stringWithFormat("%g", 1);
    NSString::stringWithFormat("%G", 1);
    NSString::stringWithFormat("%a", 1);
    NSString::stringWithFormat("%A", 1);
#endif
#ifdef REFUSE_OTHERS_FOR_AN_INTEGER
    // expected: format_conversion_requires_an_integer && conversion<'u'> && conversion_number<1>
    // expected: argument<1, char [5]> | argument<1, char[5]>
    // expected: argument<1, ZQFoundation::NSNumber>
    // expected: argument<1, {anonymous}::Declared*> | argument<1, (anonymous namespace)::Declared *>
    NSString::stringWithFormat("%u", "text");
    NSString::stringWithFormat("%lu", NSNumber(5));
    NSString::stringWithFormat("%u", declared);
#endif
#ifdef REFUSE_OTHERS_FOR_A_C_STRING
    // expected: format_conversion_requires_a_text_of_char() | format_conversion_requires_a_text_of_char<
    // expected: conversion<'s'> && conversion_number<1> && argument<1, int>
    // expected: argument<1, char16_t*> | argument<1, char16_t *>
    // expected: argument<1, ZQFoundation::NSObject>
    NSString::stringWithFormat("%s", 5);
    NSString::stringWithFormat("%s", units);
    NSString::stringWithFormat("%s", object);
#endif
#ifdef REFUSE_CHARS_FOR_UNITS
    // expected: format_conversion_requires_a_text_of_char16_t && conversion<'S'> && conversion_number<1>
    // expected: argument<1, char [5]> | argument<1, char[5]>
    NSString::stringWithFormat("%S", "text");
#endif
#ifdef REFUSE_OTHERS_FOR_AN_OBJECT
    // expected: format_conversion_requires_an_object_or_text && conversion<'@'> && conversion_number<1>
    // expected: argument<1, int> && argument<1, double>
    // expected: argument<1, {anonymous}::Declared*> | argument<1, (anonymous namespace)::Declared *>
    // expected: argument<1, {anonymous}::Other> | argument<1, (anonymous namespace)::Other>
    NSString::stringWithFormat("%@", 5);
    NSString::stringWithFormat("%@", 0.5);
    NSString::stringWithFormat("%@", declared);
    NSString::stringWithFormat("%@", Other());
#endif
#ifdef REFUSE_INTEGER_FOR_A_POINTER
    // expected: format_conversion_requires_a_pointer && conversion<'p'> && conversion_number<1>
    // expected: argument<1, int>
    NSString::stringWithFormat("%p", 5);
#endif
#ifdef REFUSE_MISSING_ARGUMENT
    // expected: format_has_no_argument_for_the_conversion && conversion<'d'> && conversion_number<2>
    NSString::stringWithFormat("%d %d", 1);
#endif
#ifdef REFUSE_MISSING_NUMBERED_ARGUMENT
    // expected: format_has_no_argument_for_the_conversion && conversion<'d'> && conversion_number<2>
    NSString::stringWithFormat("%1$d %3$d", 1, 2);
#endif
#ifdef REFUSE_SURPLUS_ARGUMENT
    // expected: format_does_not_use_the_argument && argument<2, int>
    NSString::stringWithFormat("%d", 1, 2);
#endif
#ifdef REFUSE_SKIPPED_POSITION
    // expected: format_does_not_use_the_argument && argument<2, int>
    NSString::stringWithFormat("%1$d %3$d", 1, 2, 3);
#endif
#ifdef REFUSE_MIXED_NUMBERING
    // expected: format_mixes_numbered_and_unnumbered_arguments && conversion_number<2>
    NSString::stringWithFormat("%1$d %d", 1, 2);
#endif
#ifdef REFUSE_MIXED_NUMBERING_OF_A_STAR
    // expected: format_mixes_numbered_and_unnumbered_arguments && conversion_number<1>
    NSString::stringWithFormat("%1$*d", 1, 2);
#endif
#ifdef REFUSE_REAL_FOR_A_STAR
    // expected: format_star_requires_an_integer && conversion_number<1> && argument<1, double>
    NSString::stringWithFormat("%*d", 1.5, 2);
#endif
#ifdef REFUSE_N
    // expected: format_conversion_n_is_not_supported && conversion_number<1>
    NSString::stringWithFormat("%n", &number);
#endif
#ifdef REFUSE_UNKNOWN_CONVERSION
    // expected: format_has_an_unknown_conversion && conversion_number<1>
    NSString::stringWithFormat("%y");
#endif
#ifdef REFUSE_CUT_OFF_CONVERSION
    // expected: format_ends_inside_a_conversion && conversion_number<1>
    NSString::stringWithFormat("100%");
#endif
#ifdef REFUSE_WRONG_FORMAT_OF_UNITS
    // expected: format_conversion_requires_an_integer && conversion<'d'> && conversion_number<1>
    // expected: argument<1, double>
    NSString::stringWithFormat(u"%d", 1.5);
#endif
#ifdef REFUSE_WRONG_FORMAT_FOR_APPENDING
    // expected: format_has_no_argument_for_the_conversion && conversion<'d'> && conversion_number<1>
    NSMutableString().appendFormat("%d");
#endif
#ifdef REFUSE_THE_THIRD_OF_THREE
    // expected: format_conversion_requires_an_integer && conversion<'x'> && conversion_number<3>
    // expected: argument<3, char [2]> | argument<3, char[2]>
    NSString::stringWithFormat("%d %s %x", 1, "a", "b");
#endif
#ifdef REFUSE_C_STRING_FOR_THE_SECOND_INTEGER
    // expected: format_conversion_requires_an_integer && conversion<'d'> && conversion_number<2>
    // expected: argument<2, const char*> | argument<2, const char *>
    NSString::stringWithFormat("%d%% of %d", number, variable);
#endif
#ifdef REFUSE_REAL_AFTER_A_STAR
    // expected: format_conversion_requires_an_integer && conversion<'i'> && conversion_number<1>
    // expected: argument<2, double>
    NSString::stringWithFormat("%*i", 5, 1.5);
#endif
#ifdef REFUSE_REAL_IN_A_POSITION
    // expected: format_conversion_requires_an_integer && conversion<'o'> && conversion_number<3>
    // expected: argument<1, float>
    NSString::stringWithFormat("%2$d %1$f %1$o", 1.5f, 2);
#endif
#ifdef REFUSE_REAL_FOR_THE_STAR_OF_A_PRECISION
    // expected: format_star_requires_an_integer && conversion_number<2> && argument<2, float>
    NSString::stringWithFormat("%d %.*f", 1, 1.5f, 2.5);
#endif
#ifdef REFUSE_MISSING_ARGUMENT_OF_A_STAR
    // expected: format_has_no_argument_for_the_star && conversion_number<1>
    NSString::stringWithFormat("%*d");
#endif
#ifdef REFUSE_INTEGER_FOR_THE_TENTH
    // expected: format_conversion_requires_a_real_number && conversion<'a'> && argument<10, int>
    NSString::stringWithFormat("%d%d%d%d%d%d%d%d%d%a", 1, 2, 3, 4, 5, 6, 7, 8, 9, 10);
#endif
#ifdef REFUSE_MISSING_OBJECT
    // expected: format_has_no_argument_for_the_conversion && conversion<'@'> && conversion_number<3>
    NSString::stringWithFormat("%d of %d: %@", 1, 2);
#endif
#ifdef REFUSE_POINTER_VARIABLE_AS_FORMAT
    // expected: and pass the text as its argument
    NSString::stringWithFormat(variable, 1);
#endif
#ifdef REFUSE_STRING_VARIABLE_AS_FORMAT
    // expected: and pass the text as its argument
    NSString::stringWithFormat(text, 1);
#endif
#ifdef REFUSE_ARRAY_VARIABLE_AS_FORMAT
    // expected: buffer
    char buffer[] = "%d";
    NSString::stringWithFormat(buffer, 1);
#endif
}
