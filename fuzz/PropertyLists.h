// SPDX-License-Identifier: MIT
// Checks that the harnesses of property lists share.
#ifndef ZQFOUNDATION_FUZZ_PROPERTYLISTS_H
#define ZQFOUNDATION_FUZZ_PROPERTYLISTS_H

#include <optional>
#include <string>

#include "foundation/plist/BinaryReader.h"
#include "foundation/plist/OldStyleReader.h"
#include "foundation/plist/OldStyleWriter.h"
#include "foundation/plist/PropertyList.h"
#include "foundation/plist/XmlReader.h"
#include "foundation/plist/XmlWriter.h"
#include "foundation/process/PropertyListValue.h"
#include "fuzz/Fuzzing.h"
#include "fuzz/PlainBinaryWriter.h"
#include "fuzz/SameValue.h"
#include "tests/kit/Texts.h"
#include "tests/models/Utf.h"

namespace ZQFoundation::fuzzing {

using ZQFoundation::detail::PropertyListError;

/// What the checks need to know about a value.
struct Survey {
    std::size_t parts = 0;   ///< values and keys; counting stops above the limit
    bool hasNull = false;    ///< the null object, which only the binary form has
    bool hasFarDate = false; ///< beyond the years -9999 to 9999, the limits of the XML form
    static constexpr std::size_t limit = 3000;
};

inline void survey(const NSObject& value, Survey& seen) {
    if (++seen.parts > Survey::limit) {
        return;
    }
    if (const NSArray array(value); array) {
        for (std::size_t index = 0; index < array.count() && seen.parts <= Survey::limit; ++index) {
            survey(array.objectAtIndex(index), seen);
        }
    } else if (const NSDictionary dictionary(value); dictionary) {
        seen.parts += dictionary.count();
        for (const NSDictionaryEntry& entry : dictionary) {
            survey(entry.value, seen);
        }
    } else if (const NSDate date(value); date) {
        constexpr double firstSecond = -377705116800.0;  // -9999-01-01 00:00:00
        constexpr double beyondTheLast = 253402300800.0; // 10000-01-01 00:00:00
        const double seconds = date.timeIntervalSince1970();
        seen.hasFarDate |= !(seconds >= firstSecond && seconds < beyondTheLast);
    } else {
        seen.hasNull |= static_cast<bool>(NSNull(value));
    }
}

/// Whether every strict XML reader takes the characters as they are; references are not looked at.
inline bool isFitForXml(std::string_view text) {
    const std::optional<std::u16string> units = models::wellFormedUtf16(text);
    bool isFit = units.has_value();
    for (const char16_t unit : units.value_or(u"")) {
        isFit = isFit && (unit >= 0x20 || unit == u'\n' || unit == u'\t') && unit < 0xFFFE;
    }
    return isFit;
}

inline void checkXmlWriter(const NSObject& value, bool isWritable) {
    std::string text;
    const bool isWritten = ZQFoundation::detail::writeXml(value, text) == nullptr;
    require(isWritten == isWritable, "the XML writer takes what the form has, and nothing else");
    if (isWritten) {
        require(isFitForXml(text), "what is written as XML holds no character that XML has no place for");
        PropertyListError error;
        const NSObject again = ZQFoundation::detail::readXml(text.data(), text.size(), error);
        require(isSame(again, value, Kept::xml), "what is written as XML reads back the same");
    }
}

inline void checkOldStyleWriter(const NSObject& value, bool isWritable) {
    std::string text;
    const bool isWritten = ZQFoundation::detail::writeOldStyle(value, text) == nullptr;
    require(isWritten == isWritable, "the old-style writer takes what the form has, and nothing else");
    if (isWritten) {
        PropertyListError error;
        const NSObject again = ZQFoundation::detail::readOldStyle(text.data(), text.size(), error);
        require(isSame(again, value, Kept::texts), "what is written in the old style reads back the same");
    }
}

inline void checkBinary(const NSObject& value, std::size_t parts) {
    const std::string file = PlainBinaryWriter().write(value, parts);
    PropertyListError error;
    const auto* bytes = reinterpret_cast<const unsigned char*>(file.data());
    const NSObject again = ZQFoundation::detail::readBinary(bytes, file.size(), error);
    require(isSame(again, value, Kept::everything), "a plain binary file of the value reads back the same");
}

/// Writes a value that a reader returned in all three forms and reads each again. Skips values that grow
/// beyond reason when they are written, because their parts are shared.
inline void checkWriters(const NSObject& value) {
    Survey seen;
    survey(value, seen);
    if (seen.parts > Survey::limit) {
        return;
    }
    require(ZQFoundation::detail::isPropertyListValue(value) == !seen.hasNull,
            "all but the null object belongs into a property list");
    checkXmlWriter(value, !seen.hasNull && !seen.hasFarDate);
    checkOldStyleWriter(value, !seen.hasNull);
    checkBinary(value, seen.parts);
}

/// Whether both are the same, as far as that can be determined in reasonable time: values whose parts are
/// shared too often are only compared in how they begin.
inline void requireSameShared(const NSObject& found, const NSObject& expected, const char* what) {
    Survey seen;
    survey(found, seen);
    require(static_cast<bool>(found) == static_cast<bool>(expected), what);
    if (found && seen.parts <= Survey::limit) {
        require(isSame(found, expected, Kept::everything), what);
    }
}

/// A text in both of the forms that the readers take.
struct BothForms {
    std::string utf8;
    std::u16string units;
};

/// Reads the text with a reader's two forms, which must agree in value and failure. Null for a text that is
/// not valid.
template <class ByteReader, class UnitReader>
NSObject readBothForms(ByteReader readBytes, UnitReader readUnits, const BothForms& text) {
    const kit::Exact<char> bytes{std::string_view(text.utf8)};
    const kit::Exact<char16_t> units{std::u16string_view(text.units)};
    PropertyListError byteError;
    PropertyListError unitError;
    NSObject fromBytes = readBytes(bytes.data(), bytes.size(), byteError);
    const NSObject fromUnits = readUnits(units.data(), units.size(), unitError);
    require(isSame(fromBytes, fromUnits, Kept::everything), "UTF-8 and UTF-16 spell the same value");
    require(static_cast<bool>(fromBytes) == (byteError.message == nullptr), "failure has a reason");
    require(byteError.message == unitError.message, "UTF-8 and UTF-16 fail for the same reason");
    require(byteError.line == unitError.line && byteError.column == unitError.column,
            "UTF-8 and UTF-16 fail at the same place");
    return fromBytes;
}

} // namespace ZQFoundation::fuzzing

#endif
