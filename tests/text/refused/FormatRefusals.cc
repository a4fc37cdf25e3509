// SPDX-License-Identifier: MIT
// Formats that do not suit their arguments, each of which the compiler must refuse, and beside each what is right.
#include <string>

#include "foundation/objects/Class.h"
#include "foundation/objects/NSNumber.h"
#include "foundation/objects/NSObjectProtocol.h"
#include "foundation/objects/NSString.h"

using namespace ZQFoundation;

namespace {

struct Declared;
struct Other {};
class Host : public NSObjectProtocol {};
enum class Colour { red };

} // namespace

void right(const char* variable, const std::string& text, const NSString& name, const NSObject& object,
           const Host& host, Declared* declared, char16_t* units, int number) {
    NSString::stringWithFormat("%d %ld %hhu %c %C %x", number, number, 5L, 'c', u'x', Colour::red);
    NSString::stringWithFormat("%f %Lg %a %e", 1.0f, 1.0, 1.0L, 0.5);
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

#ifdef REFUSE_TEXT_FOR_AN_INTEGER
    // expected: format_argument_is_not_an_integer_as_the_conversion_requires
    NSString::stringWithFormat("%d", "text");
#endif
#ifdef REFUSE_REAL_FOR_AN_INTEGER
    // expected: format_argument_is_not_an_integer_as_the_conversion_requires
    NSString::stringWithFormat("%d", 1.5);
#endif
#ifdef REFUSE_HANDLE_FOR_AN_INTEGER
    // expected: format_argument_is_not_an_integer_as_the_conversion_requires
    NSString::stringWithFormat("%lu", NSNumber(5));
#endif
#ifdef REFUSE_POINTER_FOR_AN_INTEGER
    // expected: format_argument_is_not_an_integer_as_the_conversion_requires
    NSString::stringWithFormat("%x", declared);
#endif
#ifdef REFUSE_TEXT_FOR_A_CHARACTER
    // expected: format_argument_is_not_an_integer_as_the_conversion_requires
    NSString::stringWithFormat("%c", "c");
#endif
#ifdef REFUSE_INTEGER_FOR_A_REAL
    // expected: format_argument_is_not_a_real_number_as_the_conversion_requires
    NSString::stringWithFormat("%f", 5);
#endif
#ifdef REFUSE_INTEGER_FOR_A_C_STRING
    // expected: format_argument_is_not_a_text_of_char_as_the_conversion_requires
    NSString::stringWithFormat("%s", 5);
#endif
#ifdef REFUSE_UNITS_FOR_A_C_STRING
    // expected: format_argument_is_not_a_text_of_char_as_the_conversion_requires
    NSString::stringWithFormat("%s", units);
#endif
#ifdef REFUSE_ANY_HANDLE_FOR_A_C_STRING
    // expected: format_argument_is_not_a_text_of_char_as_the_conversion_requires
    NSString::stringWithFormat("%s", object);
#endif
#ifdef REFUSE_CHARS_FOR_UNITS
    // expected: format_argument_is_not_a_text_of_char16_t_as_the_conversion_requires
    NSString::stringWithFormat("%S", "text");
#endif
#ifdef REFUSE_INTEGER_FOR_AN_OBJECT
    // expected: format_argument_is_not_an_object_or_text_as_the_conversion_requires
    NSString::stringWithFormat("%@", 5);
#endif
#ifdef REFUSE_REAL_FOR_AN_OBJECT
    // expected: format_argument_is_not_an_object_or_text_as_the_conversion_requires
    NSString::stringWithFormat("%@", 0.5);
#endif
#ifdef REFUSE_ANY_POINTER_FOR_AN_OBJECT
    // expected: format_argument_is_not_an_object_or_text_as_the_conversion_requires
    NSString::stringWithFormat("%@", declared);
#endif
#ifdef REFUSE_FOREIGN_OBJECT_FOR_AN_OBJECT
    // expected: format_argument_is_not_an_object_or_text_as_the_conversion_requires
    NSString::stringWithFormat("%@", Other());
#endif
#ifdef REFUSE_INTEGER_FOR_A_POINTER
    // expected: format_argument_is_not_a_pointer_as_the_conversion_requires
    NSString::stringWithFormat("%p", 5);
#endif
#ifdef REFUSE_MISSING_ARGUMENT
    // expected: format_has_no_argument_for_the_conversion
    NSString::stringWithFormat("%d %d", 1);
#endif
#ifdef REFUSE_MISSING_NUMBERED_ARGUMENT
    // expected: format_has_no_argument_for_the_conversion
    NSString::stringWithFormat("%1$d %3$d", 1, 2);
#endif
#ifdef REFUSE_SURPLUS_ARGUMENT
    // expected: format_does_not_use_the_argument
    NSString::stringWithFormat("%d", 1, 2);
#endif
#ifdef REFUSE_SKIPPED_POSITION
    // expected: format_does_not_use_the_argument
    NSString::stringWithFormat("%1$d %3$d", 1, 2, 3);
#endif
#ifdef REFUSE_MIXED_NUMBERING
    // expected: format_mixes_numbered_and_unnumbered_arguments
    NSString::stringWithFormat("%1$d %d", 1, 2);
#endif
#ifdef REFUSE_MIXED_NUMBERING_OF_A_STAR
    // expected: format_mixes_numbered_and_unnumbered_arguments
    NSString::stringWithFormat("%1$*d", 1, 2);
#endif
#ifdef REFUSE_REAL_FOR_A_STAR
    // expected: format_argument_for_the_star_is_not_an_integer
    NSString::stringWithFormat("%*d", 1.5, 2);
#endif
#ifdef REFUSE_N
    // expected: format_conversion_n_is_not_supported
    NSString::stringWithFormat("%n", &number);
#endif
#ifdef REFUSE_UNKNOWN_CONVERSION
    // expected: format_has_an_unknown_conversion
    NSString::stringWithFormat("%y");
#endif
#ifdef REFUSE_CUT_OFF_CONVERSION
    // expected: format_ends_inside_a_conversion
    NSString::stringWithFormat("100%");
#endif
#ifdef REFUSE_WRONG_FORMAT_OF_UNITS
    // expected: format_argument_is_not_an_integer_as_the_conversion_requires
    NSString::stringWithFormat(u"%d", 1.5);
#endif
#ifdef REFUSE_WRONG_FORMAT_FOR_APPENDING
    // expected: format_has_no_argument_for_the_conversion
    NSMutableString().appendFormat("%d");
#endif
#ifdef REFUSE_NAMES_THE_CONVERSION
    // expected: conversion<'x'>
    NSString::stringWithFormat("%d %s %x", 1, "a", "b");
#endif
#ifdef REFUSE_NAMES_THE_ARGUMENT
    // expected: argument<3>
    NSString::stringWithFormat("%d %s %x", 1, "a", "b");
#endif
#ifdef REFUSE_POINTER_VARIABLE_AS_FORMAT
    // expected: delete
    NSString::stringWithFormat(variable, 1);
#endif
#ifdef REFUSE_STRING_VARIABLE_AS_FORMAT
    // expected: delete
    NSString::stringWithFormat(text, 1);
#endif
#ifdef REFUSE_ARRAY_VARIABLE_AS_FORMAT
    // expected: buffer
    char buffer[] = "%d";
    NSString::stringWithFormat(buffer, 1);
#endif
}
