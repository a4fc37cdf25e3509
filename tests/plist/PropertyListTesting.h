// SPDX-License-Identifier: MIT
// Values as texts, reading in both forms and deep values, for the tests of property lists.
#ifndef ZQFOUNDATION_TESTS_PLIST_PROPERTYLISTTESTING_H
#define ZQFOUNDATION_TESTS_PLIST_PROPERTYLISTTESTING_H

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSData.h"
#include "foundation/objects/NSDate.h"
#include "foundation/objects/NSDictionary.h"
#include "foundation/objects/NSNumber.h"
#include "foundation/objects/NSString.h"
#include "foundation/plist/PropertyList.h"
#include "foundation/plist/PropertyListError.h"
#include "foundation/text/RealText.h"
#include "tests/kit/Sanitizers.h"
#include "tests/kit/Texts.h"

namespace ZQFoundation::testing {

using kit::Exact;
using kit::isSanitized;
using kit::repeated;

/// The pieces of a text between bars.
inline std::vector<std::string> piecesOf(std::string_view text) {
    std::vector<std::string> pieces;
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t end = std::min(text.find('|', start), text.size());
        pieces.emplace_back(text.substr(start, end - start));
        start = end + 1;
    }
    return pieces;
}

inline std::string showUnits(const NSString& string) {
    std::string text = "'";
    for (std::size_t index = 0; index < string.length(); ++index) {
        const char16_t unit = string.characterAtIndex(index);
        char escape[8];
        if (unit >= 0x20 && unit < 0x7F) {
            text += static_cast<char>(unit);
        } else {
            std::snprintf(escape, sizeof escape, "%%%04X", static_cast<unsigned>(unit));
            text += escape;
        }
    }
    return text + "'";
}

inline std::string showNumber(const NSNumber& number) {
    char text[64];
    if (number.isBoolean()) {
        return number.boolValue() ? "true" : "false";
    }
    if (number.isReal()) {
        return "r" + std::string(
                         text, detail::writeShortestRealText(text, text + sizeof text, number.doubleValue()));
    }
    const bool isNegative = number.compare(NSNumber(0)) == NSOrderedAscending;
    return isNegative ? std::to_string(number.integerValue())
                      : std::to_string(number.unsignedLongLongValue());
}

/// A value with its kinds on one line, and "nil" for nil: {'a': ['1', 2, true, r0.5, d0, <0fbd>]}.
inline std::string show(const NSObject& value) {
    if (const NSString string(value); string) {
        return showUnits(string);
    }
    if (const NSNumber number(value); number) {
        return showNumber(number);
    }
    if (const NSDate date(value); date) {
        return "d" + showNumber(date.timeIntervalSinceReferenceDate()).substr(1);
    }
    std::string text;
    if (const NSData data(value); data) {
        for (std::size_t index = 0; index < data.length(); ++index) {
            text += "0123456789abcdef"[data.bytes()[index] >> 4];
            text += "0123456789abcdef"[data.bytes()[index] & 15];
        }
        return "<" + text + ">";
    }
    if (const NSArray array(value); array) {
        for (const NSObject& element : array) {
            text += (text.empty() ? "" : ", ") + show(element);
        }
        return "[" + text + "]";
    }
    if (const NSDictionary dictionary(value); dictionary) {
        for (const NSDictionaryEntry& entry : dictionary) {
            text += (text.empty() ? "" : ", ") + show(entry.key) + ": " + show(entry.value);
        }
        return "{" + text + "}";
    }
    return NSNull(value) ? "null" : "nil";
}

inline const unsigned char* asBytes(const char* bytes) {
    return reinterpret_cast<const unsigned char*>(bytes);
}

inline NSObject parseBytes(std::string_view bytes, detail::PropertyListError* error = nullptr) {
    const Exact<char> exact(bytes);
    return detail::parsePropertyListBytes(asBytes(exact.data()), exact.size(), error);
}

inline std::string describe(const detail::PropertyListError& error) {
    return error.message == nullptr ? "no error" : detail::describePropertyListError(error).utf8();
}

/// Reads a text as bytes and as units, which must agree in value and failure; "nil" shows a failure, and
/// `errorText` gets its description.
template <class Reader>
std::string readWithBoth(Reader reader, std::string_view utf8, std::string* errorText) {
    const Exact<char> bytes(utf8);
    const std::u16string wide = NSString(utf8).utf16();
    const Exact<char16_t> units{std::u16string_view(wide)};
    detail::PropertyListError byteError;
    detail::PropertyListError unitError;
    const std::string fromBytes = show(reader(bytes.data(), bytes.size(), byteError));
    const std::string fromUnits = show(reader(units.data(), units.size(), unitError));
    if (fromBytes != fromUnits) {
        return "bytes: " + fromBytes + ", units: " + fromUnits;
    }
    if (describe(byteError) != describe(unitError)) {
        return "bytes: " + describe(byteError) + ", units: " + describe(unitError);
    }
    if (errorText != nullptr) {
        *errorText = describe(byteError);
    }
    return fromBytes;
}

/// What a reader makes of a text; "nil" is a failure.
struct ReadingRow {
    std::string_view text;
    std::string_view value;
};

using Reader = std::string (*)(std::string_view text, std::string* errorText);

inline void expectReadings(Reader read, std::initializer_list<ReadingRow> rows) {
    for (const ReadingRow& row : rows) {
        EXPECT_EQ(read(row.text, nullptr), row.value) << row.text;
    }
}

/// The value of each row describes the failure.
inline void expectFailures(Reader read, std::initializer_list<ReadingRow> rows) {
    for (const ReadingRow& row : rows) {
        std::string errorText;
        EXPECT_EQ(read(row.text, &errorText), "nil") << row.text;
        EXPECT_EQ(errorText, row.value) << row.text;
    }
}

/// Arrays, each in the next one, the innermost empty.
inline NSArray nestedArrays(std::size_t depth) {
    NSArray array = NSArray::array();
    for (std::size_t level = 1; level < depth; ++level) {
        array = NSArray::arrayWithObject(array);
    }
    return array;
}

/// A text between many opening and as many closing ones.
inline std::string nestedText(std::size_t depth, std::string_view open, std::string_view inner,
                              std::string_view close) {
    return repeated(open, depth).append(inner) + repeated(close, depth);
}

} // namespace ZQFoundation::testing

#endif
