// SPDX-License-Identifier: MIT
// Writes dictionaries as XML property lists that every reader accepts.
// Settings must survive other readers, some of which refuse a whole file for one character that XML does not
// allow.
#include "foundation/plist/XmlText.h"

#include <algorithm>
#include <cstdint>

#include "foundation/objects/AsciiOrUtf16.h"
#include "foundation/objects/NSData.h"
#include "foundation/plist/NSPropertyListSerialization.h"
#include "foundation/plist/PropertyListError.h"
#include "foundation/plist/ValueWalk.h"
#include "foundation/text/Surrogates.h"

namespace ZQFoundation::detail {

namespace {

/// The keys and indexes on the way to where the walk is, or the first of them: "Windows[2].Title".
std::string placeOf(const ValueWalk& walk, std::size_t levels = SIZE_MAX) {
    std::string text;
    for (std::size_t level = 0; level < std::min(walk.depth(), levels); ++level) {
        if (const NSObject* const key = walk.keyAt(level); key != nullptr) {
            text.append(text.empty() ? "" : ".").append(NSString(*key).utf8());
        } else {
            text.append("[").append(std::to_string(walk.indexAt(level))).append("]");
        }
    }
    return text;
}

bool isXmlCharacter(char16_t unit) noexcept {
    return unit >= 0x20 ? unit < 0xFFFE : unit == '\t' || unit == '\n' || unit == '\r';
}

/// The first unit of the text that XML cannot contain; false if there is none.
bool findUnfit(const NSString& string, char16_t& unit) {
    const AsciiOrUtf16 text(string);
    for (std::size_t i = 0; i < text.length(); ++i) {
        unit = text[i];
        if (isSurrogate(unit) && isSurrogatePair(text.units() + i, text.length() - i)) {
            ++i;
        } else if (!isXmlCharacter(unit) || isSurrogate(unit)) {
            return true;
        }
    }
    return false;
}

bool areTextsFit(const NSDictionary& dictionary, NSString* error) {
    ValueWalk walk(dictionary);
    char16_t unit = 0;
    while (walk.next()) {
        if (walk.event() == ValueWalk::Event::leaf && findUnfit(NSString(walk.value()), unit)) {
            if (error != nullptr) {
                *error = NSString::stringWithFormat(
                    "%@ holds the character U+%04X, which cannot be written to a property list",
                    placeOf(walk), static_cast<unsigned>(unit));
            }
            return false;
        }
    }
    return true;
}

/// The place of the first value that no property list holds. For one that is nested too deep, its key in the
/// dictionary.
std::string placeOfRefusal(const NSDictionary& dictionary) {
    ValueWalk walk(dictionary);
    while (walk.next()) {
        if (walk.event() == ValueWalk::Event::leaf &&
            !NSPropertyListSerialization::dataWithPropertyList_format(walk.value(),
                                                                      NSPropertyListXMLFormat_v1_0)) {
            return placeOf(walk);
        }
    }
    return placeOf(walk, walk.depth() < maxPropertyListDepth ? SIZE_MAX : 1);
}

} // namespace

bool getXmlText(const NSDictionary& dictionary, std::string& bytes, NSString* error) {
    if (!areTextsFit(dictionary, error)) {
        return false;
    }
    NSString reason;
    const NSData data = NSPropertyListSerialization::dataWithPropertyList_format(
        dictionary, NSPropertyListXMLFormat_v1_0, &reason);
    if (!data) {
        if (error != nullptr) {
            *error =
                NSString::stringWithFormat("%@ cannot be written: %@", placeOfRefusal(dictionary), reason);
        }
        return false;
    }
    bytes.assign(reinterpret_cast<const char*>(data.bytes()), data.length());
    return true;
}

} // namespace ZQFoundation::detail
