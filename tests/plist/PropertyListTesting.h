// SPDX-License-Identifier: MIT
// Values as texts, reading in both forms and random values, for the tests of property lists.
#ifndef ZQFOUNDATION_TESTS_PLIST_PROPERTYLISTTESTING_H
#define ZQFOUNDATION_TESTS_PLIST_PROPERTYLISTTESTING_H

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <string_view>
#include <vector>

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

/// Reads a text with a reader's two forms, which must agree in value and failure; "nil" shows a failure, and
/// `errorText` gets its description.
template <class ByteReader, class UnitReader>
std::string readWithBoth(ByteReader readBytes, UnitReader readUnits, std::string_view utf8,
                         std::string* errorText) {
    const Exact<char> bytes(utf8);
    const std::u16string wide = NSString(utf8).utf16();
    const Exact<char16_t> units{std::u16string_view(wide)};
    detail::PropertyListError byteError;
    detail::PropertyListError unitError;
    const std::string fromBytes = show(readBytes(bytes.data(), bytes.size(), byteError));
    const std::string fromUnits = show(readUnits(units.data(), units.size(), unitError));
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

/// The same values in every run, of all kinds that the XML form keeps.
class ValueMaker {
public:
    explicit ValueMaker(unsigned seed) : random_(seed) {}

    unsigned pick(unsigned bound) { return static_cast<unsigned>(random_() % bound); }

    NSString string() {
        static constexpr char16_t special[] = {
            0,    1,    9,    10,   13,     '"',    '\'',   '\\',   '<',    '>',    '&',    0x7F,
            0x80, 0x85, 0xA0, 0xE9, 0x2028, 0xD800, 0xDBFF, 0xDC00, 0xDFFF, 0xFEFF, 0xFFFE, 0xFFFF};
        std::u16string units;
        const unsigned count = pick(12);
        const bool isPlain = pick(2) == 0;
        for (unsigned index = 0; index < count; ++index) {
            units += isPlain || pick(2) == 0 ? static_cast<char16_t>(' ' + pick(95)) : special[pick(24)];
        }
        return NSString(units);
    }

    NSData data() {
        std::string bytes;
        for (unsigned count = pick(80); count > 0; --count) {
            bytes += static_cast<char>(pick(256));
        }
        return NSData::dataWithBytes_length(bytes.data(), bytes.size());
    }

    /// A string, data, or a container of such.
    NSObject oldStyleValue(unsigned depth) { return container(depth, false); }

    /// Any value, dates in whole seconds.
    NSObject value(unsigned depth) { return container(depth, true); }

private:
    NSObject container(unsigned depth, bool hasScalars) {
        const unsigned kind = depth == 0 ? 2 : pick(4);
        if (kind == 0) {
            NSMutableArray array;
            for (unsigned count = pick(5); count > 0; --count) {
                array.addObject(container(depth - 1, hasScalars));
            }
            return array.array();
        }
        if (kind == 1) {
            NSMutableDictionary dictionary;
            for (unsigned count = pick(5); count > 0; --count) {
                dictionary.setObject_forKey(container(depth - 1, hasScalars), string());
            }
            return dictionary.dictionary();
        }
        return hasScalars ? scalar() : (pick(3) == 0 ? NSObject(data()) : NSObject(string()));
    }

    NSObject scalar() {
        switch (pick(6)) {
        case 0:
            return data();
        case 1:
            return pick(2) == 0;
        case 2:
            return random_();
        case 3:
            return static_cast<std::int64_t>(random_());
        case 4: {
            const double real = std::bit_cast<double>(random_());
            return real == real ? real : 0.5;
        }
        default: {
            constexpr std::int64_t range = 200'000'000'000; // years -4000 to 8000
            return NSDate::dateWithTimeIntervalSinceReferenceDate(
                static_cast<double>(static_cast<std::int64_t>(random_() % (2 * range)) - range));
        }
        }
    }

    std::mt19937_64 random_;
};

} // namespace ZQFoundation::testing

#endif
