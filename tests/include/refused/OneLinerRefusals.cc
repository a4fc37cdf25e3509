// SPDX-License-Identifier: MIT
// One-line uses that the compiler refuses on purpose, for each would lose something or mean two things.
#include <string>
#include <type_traits>
#include <vector>

#include <ZQFoundation/Std.h>

using namespace ZQFoundation;

void right(const NSString& text, const NSDictionary& settings, const NSArray& names, const NSNumber& number) {
#ifndef REFUSING
    const std::string bytes(text);
    NSMutableDictionary changed(settings);
    changed.setObject_forKey(5, "limit");
    ZQLog::logWithFormat("%s %d %ld", text, number.intValue(), number.longLongValue());
    ZQLog::logWithFormat("%lu", names.count());

    const std::vector<bool> flags{true};
    ZQLog::logAlways_log(flags[0], text);
    ZQLog::logAlways_log(1, text);
    ZQLog::logAlways_log(std::true_type(), text);
#endif

#ifdef REFUSE_A_TEXT_AS_A_FORMAT
    // expected: and pass the text as its argument
    ZQTraceKey("TraceTexts").log(std::string("text"));
#endif
#ifdef REFUSE_A_TEXT_AS_A_FLAG
    // expected: no matching function | could not convert | cannot convert | no viable conversion
    ZQLog::logAlways_log("text", text);
#endif
#ifdef REFUSE_AN_ADDRESS_AS_A_FLAG
    // expected: no matching function | could not convert | cannot convert | no viable conversion
    (void)ZQLog::setLogFilePath_createFolder(text, &text);
#endif
#ifdef REFUSE_NIL_AS_A_FLAG
    // expected: no matching function | could not convert | cannot convert | no viable conversion
    (void)text.containsString_caseInsensitiveSearch("x", nullptr);
#endif
#ifdef REFUSE_A_VALUE_AS_A_FLAG
    // expected: no matching function | could not convert | cannot convert | no viable conversion
    (void)text.containsString_caseInsensitiveSearch("x", number);
#endif
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
    // expected: for a number, write as<NSNumber>
    (void)number.as<int>();
#endif
}
