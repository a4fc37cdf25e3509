// SPDX-License-Identifier: MIT
// Reads values from words of the command line: with a flag strictly as its type, without one as text or a
// property list.
#include "tools/defaults/Values.h"

#include <charconv>
#include <cmath>
#include <string>
#include <string_view>

#include "foundation/objects/Bodies.h"
#include "foundation/plist/PropertyList.h"
#include "foundation/plist/PropertyListError.h"
#include "foundation/text/Digits.h"
#include "foundation/text/NumberText.h"
#include "tools/defaults/Dates.h"

namespace ZQFoundation::tools::defaults {

namespace {

/// What a flag asks for; those from `array` on take all words that follow.
enum class Type {
    none,
    string,
    data,
    integer,
    real,
    boolean,
    date,
    array,
    addToArray,
    dictionary,
    addToDictionary,
};

/// Some types have two flags; both mean the same.
struct TypeFlag {
    const char* name;
    Type type;
};

constexpr TypeFlag flags[] = {
    {"-string", Type::string},        {"-data", Type::data},
    {"-int", Type::integer},          {"-integer", Type::integer},
    {"-float", Type::real},           {"-bool", Type::boolean},
    {"-boolean", Type::boolean},      {"-date", Type::date},
    {"-array", Type::array},          {"-dict", Type::dictionary},
    {"-array-add", Type::addToArray}, {"-dict-add", Type::addToDictionary},
};

/// `none` for any other word, even one with a hyphen: it may be a value, such as -5.
Type typeOfFlag(const std::string& word) noexcept {
    for (const TypeFlag& flag : flags) {
        if (word == flag.name) {
            return flag.type;
        }
    }
    return Type::none;
}

/// Whether the flag takes all words that are left; the order of the enumerators says so.
bool isCollection(Type type) noexcept { return type >= Type::array; }

/// The standard function: it does not depend on the locale, and reports how far it has read.
template <class Number>
std::from_chars_result scanNumber(const char* first, const char* last, Number& number) {
    return std::from_chars(first, last, number);
}

#ifndef __cpp_lib_to_chars // a C++ library that reads whole numbers only

/// A double, where the standard function is missing. Like that function, it takes no "+", knows infinity and
/// NaN, and reports numbers that are too large or too small.
std::from_chars_result scanNumber(const char* first, const char* last, double& number) {
    const NSString word = NSString(std::string(first, last)).lowercaseString();
    for (const char* const other : {"inf", "infinity", "nan"}) {
        if (word == other || word == std::string("-").append(other)) {
            const double magnitude = *other == 'i' ? HUGE_VAL : NAN;
            number = *first == '-' ? -magnitude : magnitude;
            return {last, std::errc()};
        }
    }
    const detail::DoubleReading reading = detail::scanDouble(first, static_cast<std::size_t>(last - first));
    if (reading.length == 0 || *first == '+') {
        return {first, std::errc::invalid_argument};
    }
    const char* const stop = first + reading.length;
    const std::string_view text = std::string_view(first, reading.length);
    const bool isTooSmall = reading.value == 0 &&
                            text.substr(0, text.find_first_of("eE")).find_first_of("123456789") != text.npos;
    if (std::isinf(reading.value) || isTooSmall) {
        return {stop, std::errc::result_out_of_range};
    }
    number = reading.value;
    return {stop, std::errc()};
}

#endif

/// A number that takes the whole word. A leading "+" is allowed, although the scanner does not accept it;
/// "+-5" is not.
template <class Number>
Number numberFromWord(const std::string& word, const char* what) {
    const char* const start = word.c_str() + (word[0] == '+' && word[1] != '-' ? 1 : 0);
    const char* const end = word.c_str() + word.size();
    Number number{};
    const auto [stop, error] = scanNumber(start, end, number);
    if (error == std::errc::result_out_of_range) {
        fail("\"%@\" is too large for %@", word, what);
    }
    if (error != std::errc() || stop != end) {
        fail("\"%@\" is not %@", word, what);
    }
    return number;
}

/// A fixed list: any other word is more likely a mistake than a NO.
bool booleanFromWord(const std::string& word) {
    const NSString lowered = NSString(word).lowercaseString();
    for (const char* const yes : {"yes", "true", "1"}) {
        if (lowered == yes) {
            return true;
        }
    }
    for (const char* const no : {"no", "false", "0"}) {
        if (lowered == no) {
            return false;
        }
    }
    fail("\"%@\" is not a boolean: YES, NO, true, false, 1 or 0", word);
}

/// Spaces may separate bytes but not the two digits of one.
NSObject dataFromWord(const std::string& word) {
    std::string bytes;
    int half = -1;
    for (const char character : word) {
        const int digit = detail::hexDigitValue(character);
        if (character == ' ' && half < 0) {
            continue;
        }
        if (digit < 0) {
            fail("\"%@\" is not data: hexadecimal digits", word);
        }
        if (half >= 0) {
            bytes += static_cast<char>(half << 4 | digit);
        }
        half = half >= 0 ? -1 : digit;
    }
    if (half >= 0) {
        fail("\"%@\" is not data: a digit is missing", word);
    }
    return NSData::dataWithBytes_length(bytes.data(), bytes.size());
}

/// A word as a value of the requested type; without a type it is text, whatever it looks like.
NSObject scalarFromWord(Type type, const std::string& word) {
    switch (type) {
    case Type::data:
        return dataFromWord(word);
    case Type::integer:
        return numberFromWord<std::int64_t>(word, "a 64-bit integer");
    case Type::real:
        return numberFromWord<double>(word, "a number");
    case Type::boolean:
        return booleanFromWord(word);
    case Type::date:
        return dateFromText(word);
    default:
        return NSString(word);
    }
}

/// Takes one element, with its type flag if it has one, and moves the index past it.
NSObject elementFromWords(const Words& words, std::size_t& index) {
    const Type type = typeOfFlag(words[index]);
    if (type == Type::none) {
        return valueFromWord(words[index++]);
    }
    if (isCollection(type)) {
        misuse("%@ is not possible inside a collection; write it as \"( a, b )\" or \"{ k = v; }\"",
               words[index]);
    }
    if (index + 1 == words.size()) {
        misuse("%@ needs a value", words[index]);
    }
    const std::string& word = words[index + 1];
    index += 2;
    return scalarFromWord(type, word);
}

/// Every word is an element, or two words if the first is a flag.
NSArray arrayFromWords(const Words& words, std::size_t index) {
    NSMutableArray elements;
    while (index < words.size()) {
        elements.addObject(elementFromWords(words, index));
    }
    return elements.array();
}

/// Keys and values alternate. If a key is given twice, the last value counts.
NSDictionary dictionaryFromWords(const Words& words, std::size_t index) {
    NSMutableDictionary entries;
    while (index < words.size()) {
        const NSString key(words[index++]);
        if (index == words.size()) {
            misuse("the key %@ has no value", key);
        }
        entries.setObject_forKey(elementFromWords(words, index), key);
    }
    return entries.dictionary();
}

/// Only the first character decides, so that a mistake inside a list is reported and not stored as text.
bool beginsLikePropertyList(const std::string& word) noexcept {
    const std::size_t start = word.find_first_not_of(" \t\n\r");
    return start != std::string::npos && std::string("{(<\"").find(word[start]) != std::string::npos;
}

} // namespace

// A mistake is reported, not stored as text: a list with a missing parenthesis would be a string for the
// application. The message names the flag for those who mean text.
NSObject valueFromWord(const std::string& word) {
    if (!beginsLikePropertyList(word)) {
        return NSString(word);
    }
    detail::PropertyListError error;
    NSObject value = detail::parsePropertyListText(word, &error);
    if (!value) {
        fail("\"%@\" begins like a property list but is not one: %@ (use -string for text)", word,
             detail::describePropertyListError(error));
    }
    return value;
}

// The four flags of collections take all words that are left; any other value must be the only one.
WrittenValue valueFromWords(const Words& words, std::size_t first) {
    using Manner = WrittenValue::Manner;
    switch (typeOfFlag(words[first])) {
    case Type::array:
        return {Manner::replace, arrayFromWords(words, first + 1)};
    case Type::addToArray:
        return {Manner::addToArray, arrayFromWords(words, first + 1)};
    case Type::dictionary:
        return {Manner::replace, dictionaryFromWords(words, first + 1)};
    case Type::addToDictionary:
        return {Manner::addToDictionary, dictionaryFromWords(words, first + 1)};
    default:
        break;
    }
    std::size_t index = first;
    NSObject value = elementFromWords(words, index);
    if (index != words.size()) {
        misuse("unexpected value: %@", words[index]);
    }
    return {Manner::replace, value};
}

// Numbers are named by what they hold, not by their common class.
const char* nameOfType(const NSObject& value) {
    switch (detail::Access::kind(value)) {
    case detail::Kind::boolean:
        return "boolean";
    case detail::Kind::signedInteger:
    case detail::Kind::unsignedInteger:
        return "integer";
    case detail::Kind::real:
    case detail::Kind::singleReal:
        return "float";
    case detail::Kind::date:
        return "date";
    case detail::Kind::data:
        return "data";
    case detail::Kind::array:
        return "array";
    case detail::Kind::dictionary:
        return "dictionary";
    default:
        return "string";
    }
}

} // namespace ZQFoundation::tools::defaults
