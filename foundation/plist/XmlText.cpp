// SPDX-License-Identifier: MIT
// Writes dictionaries as XML property lists that every reader accepts.
// Settings must survive other readers, some of which refuse a whole file for one character that XML does not
// allow.
#include "foundation/plist/XmlText.h"

#include <vector>

#include "foundation/objects/AsciiOrUtf16.h"
#include "foundation/objects/NSData.h"
#include "foundation/plist/NSPropertyListSerialization.h"
#include "foundation/plist/ValueWalk.h"

namespace ZQFoundation::detail {

namespace {

using Event = ValueWalk::Event;

/// The place of a walk: the keys and indexes on the way there.
/// Only for the reason: the user must find the text that cannot be written.
class Place {
public:
    void follow(const ValueWalk& walk) {
        if (walk.event() == Event::close) {
            levels_.pop_back();
            return;
        }
        if (walk.event() == Event::key) {
            // The key stays until the next one of the same dictionary.
            levels_.back().key = NSString(walk.value());
            return;
        }
        if (!levels_.empty() && levels_.back().isArray) {
            ++levels_.back().count;
        }
        if (walk.event() == Event::open) {
            levels_.push_back({walk.isArray(), 0, NSString()});
        }
    }

    std::string text() const {
        std::string text;
        for (const Level& level : levels_) {
            if (level.isArray) {
                text.append("[").append(std::to_string(level.count - 1)).append("]");
            } else {
                text.append(text.empty() ? "" : ".").append(level.key.utf8());
            }
        }
        return text;
    }

private:
    struct Level {
        bool isArray;
        std::size_t count; ///< elements so far
        NSString key;
    };
    std::vector<Level> levels_;
};

// The characters of XML 1.0 among units; surrogates are judged by the caller.
bool mayStandInXml(char16_t unit) noexcept {
    return unit >= 0x20 ? unit < 0xFFFE : unit == '\t' || unit == '\n' || unit == '\r';
}

bool isPairAt(const AsciiOrUtf16& text, std::size_t index) noexcept {
    return index + 1 < text.length() && (text[index] & 0xFC00) == 0xD800 &&
           (text[index + 1] & 0xFC00) == 0xDC00;
}

/// The first unit of the text that XML cannot contain; false if there is none.
bool findUnfit(const NSString& string, char16_t& unit) {
    const AsciiOrUtf16 text(string);
    for (std::size_t i = 0; i < text.length(); ++i) {
        unit = text[i];
        // Characters above U+FFFF are allowed.
        if (isPairAt(text, i)) {
            ++i;
        } else if (!mayStandInXml(unit) || (unit & 0xF800) == 0xD800) {
            return true;
        }
    }
    return false;
}

bool areTextsFit(const NSDictionary& dictionary, NSString* error) {
    ValueWalk walk(dictionary);
    Place place;
    char16_t unit = 0;
    while (walk.next()) {
        place.follow(walk);
        const bool isText = walk.event() == Event::scalar || walk.event() == Event::key;
        // A number or a date becomes nil by the conversion, and nil has no units.
        if (isText && findUnfit(NSString(walk.value()), unit)) {
            if (error != nullptr) {
                *error = NSString::stringWithFormat(
                    "%@ holds the character U+%04X, which cannot be written to a property list", place.text(),
                    static_cast<unsigned>(unit));
            }
            return false;
        }
    }
    return true;
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
            *error = NSString::stringWithFormat("this cannot be written: %@", reason);
        }
        return false;
    }
    bytes.assign(reinterpret_cast<const char*>(data.bytes()), data.length());
    return true;
}

} // namespace ZQFoundation::detail
