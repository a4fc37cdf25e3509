// SPDX-License-Identifier: MIT
// One-line uses that the compiler refuses on purpose, for each would lose something or mean two things.
#include <ZQFoundation/Std.h>

#include <string>

using namespace ZQFoundation;

void right(const NSString& text, const NSDictionary& settings, const NSArray& names, const NSNumber& number) {
    const std::string bytes(text);
    NSMutableDictionary changed(settings);
    changed.setObject_forKey(5, "limit");
    ZQLog::logWithFormat("%s %d %ld", text, number.intValue(), number.longLongValue());
    ZQLog::logWithFormat("%lu", names.count());

#ifdef REFUSE_A_STRING_THAT_BECOMES_BYTES_BY_ITSELF
    // expected: conversion
    const std::string refused = text;
#endif
#ifdef REFUSE_SETTING_WHAT_WAS_LOOKED_UP
    // expected: discards qualifiers | no viable overloaded '='
    settings["limit"] = 5;
#endif
#ifdef REFUSE_ADDING_A_NUMBER
    // expected: no match for | invalid operands
    (void)(text + 5);
#endif
#ifdef REFUSE_ADDING_A_CHARACTER
    // expected: no match for | invalid operands
    (void)(text + 'c');
#endif
#ifdef REFUSE_AN_ORDER_OF_A_STRING_AND_A_NUMBER
    // expected: no match for | invalid operands
    (void)(text < number);
#endif
#ifdef REFUSE_AN_ORDER_OF_ARRAYS
    // expected: no match for | invalid operands
    (void)(names < names);
#endif
#ifdef REFUSE_A_NUMBER_THAT_BECOMES_AN_INTEGER_BY_ITSELF
    // expected: convert | conversion
    const int refused = number;
#endif
#ifdef REFUSE_A_VALUE_AS_AN_INTEGER_ARGUMENT
    // expected: format_conversion_requires_an_integer
    ZQLog::logWithFormat("%d", number);
#endif
#ifdef REFUSE_A_COUNT_FOR_32_BITS
    // expected: write_instead<'l', 'd'>
    ZQLog::logWithFormat("%d", names.count());
#endif
#ifdef REFUSE_AS_OF_ANY_OTHER_TYPE
    // expected: whose specialisation of ZQFoundation::ObjectConversion has
    (void)number.as<int>();
#endif
}
