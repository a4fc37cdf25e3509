// SPDX-License-Identifier: MIT
// Writes the platform's texts for values, collections indented.
// Hosts and their users read and compare these texts, so every detail of a form matters.
#include <algorithm>
#include <cmath>

#include "foundation/objects/AsciiOrUtf16.h"
#include "foundation/objects/CharacterSetPages.h"
#include "foundation/objects/CivilTime.h"
#include "foundation/objects/CollectionLayout.h"
#include "foundation/objects/DecimalText.h"
#include "foundation/objects/Description.h"
#include "foundation/objects/Numbers.h"
#include "foundation/objects/TextBuilder.h"
#include "foundation/text/Digits.h"

namespace ZQFoundation {

using detail::Access;
using detail::AsciiOrUtf16;
using detail::Kind;
using detail::TextBuilder;

namespace {

/// The form of old-style property lists, with brackets of its own for sets, which those lack.
constexpr detail::CollectionLayout layout{
    .array = {"(", "\n", ",\n", "\n", "\n", ")"},
    .dictionary = {"{", "\n", ";\n", ";\n", "\n", "}"},
    .set = {"{(", "\n", ",\n", "\n", "\n", ")}"},
    .assignment = " = ",
    .indentation = 4,
};

bool isCollection(const NSObject& object) noexcept {
    const Kind kind = Access::kind(object);
    return kind == Kind::array || kind == Kind::dictionary || kind == Kind::set;
}

void appendHex(TextBuilder& out, std::uint64_t value, std::size_t digits) {
    char text[4];
    detail::writeHexDigits(value, digits, text);
    out.appendAscii(text, digits);
}

/// All of up to 24 bytes; of longer data the first 16 and the last 8, in groups of four, so that megabytes do
/// not fill a log.
void appendData(TextBuilder& out, const NSData& data) {
    const unsigned char* const bytes = data.bytes();
    const std::size_t count = data.length();
    out.appendLiteral("{length = ");
    detail::appendDecimal(out, static_cast<std::int64_t>(count));
    out.appendLiteral(", bytes = 0x");
    constexpr std::size_t maxWhole = 24;
    for (std::size_t i = 0; i < (count <= maxWhole ? count : 16); ++i) {
        appendHex(out, bytes[i], 2);
        if (count > maxWhole && i % 4 == 3) {
            out.appendAscii(' ');
        }
    }
    if (count > maxWhole) {
        out.appendLiteral("... ");
        for (std::size_t i = count - 8; i < count; ++i) {
            appendHex(out, bytes[i], 2);
            if ((i - (count - 8)) % 4 == 3) {
                out.appendAscii(' ');
            }
        }
    }
    out.appendAscii('}');
}

/// In UTC, so that the same date has the same text for every user; the fraction is not shown. A date that is
/// NaN seconds is shown as 1970, since a description never fails.
void appendDate(TextBuilder& out, const NSDate& date) {
    constexpr double farthest = 4e17; // keeps every year within 64 bits
    const double since1970 = date.timeIntervalSince1970();
    const double clamped = std::isnan(since1970) ? 0 : std::clamp(std::floor(since1970), -farthest, farthest);
    const auto seconds = static_cast<std::int64_t>(clamped);
    const detail::CivilDate day = detail::civilFromDays(detail::floorDivide(seconds, 86400));
    const std::int64_t second = seconds - detail::floorDivide(seconds, 86400) * 86400;
    detail::appendDecimal(out, day.year, 4);
    out.appendAscii('-');
    detail::appendDecimal(out, day.month, 2);
    out.appendAscii('-');
    detail::appendDecimal(out, day.day, 2);
    out.appendAscii(' ');
    detail::appendDecimal(out, second / 3600, 2);
    out.appendAscii(':');
    detail::appendDecimal(out, second / 60 % 60, 2);
    out.appendAscii(':');
    detail::appendDecimal(out, second % 60, 2);
    out.appendLiteral(" +0000");
}

void appendUrl(TextBuilder& out, NSURL url) {
    out.append(url.relativeString());
    // Bases are visited one by one: chains may be long.
    for (url = url.baseURL(); url; url = url.baseURL()) {
        out.appendLiteral(" -- ");
        out.append(url.relativeString());
    }
}

/// The description of everything but collections.
void appendLeaf(TextBuilder& out, const NSObject& object) {
    char number[detail::numberTextCapacity];
    switch (Access::kind(object)) {
    // Inside a collection nil does not occur; outside, it has no description.
    case Kind::absent:
        break;
    case Kind::null:
        out.appendLiteral("<null>");
        break;
    case Kind::string:
        out.append(object.as<NSString>());
        break;
    case Kind::date:
        appendDate(out, object.as<NSDate>());
        break;
    case Kind::data:
        appendData(out, object.as<NSData>());
        break;
    case Kind::url:
        appendUrl(out, object.as<NSURL>());
        break;
    case Kind::characterSet:
        detail::appendCharacterSet(out, *Access::characterSet(object));
        break;
    case Kind::classObject:
        out.append(object.className());
        break;
    case Kind::hostObject:
        out.appendObjectText(object.hostObject()->description());
        break;
    default:
        out.appendAscii(number, detail::writeNumber(object, number));
        break;
    }
}

// Letters and digits of ASCII only; the empty text is not bare, since nothing would be visible.
bool isBare(const AsciiOrUtf16& text) noexcept {
    for (std::size_t i = 0; i < text.length(); ++i) {
        const char16_t unit = text[i];
        const bool isLetter = static_cast<char16_t>((unit | 0x20) - 'a') < 26 && unit < 0x80;
        if (!isLetter && static_cast<char16_t>(unit - '0') > 9) {
            return false;
        }
    }
    return text.length() != 0;
}

/// Units from U+0080 on are escaped one by one, a pair of surrogates as two. So the text is ASCII and reads
/// back in any encoding.
void appendQuotedUnit(TextBuilder& out, char16_t unit) {
    switch (unit) {
    case '"':
        out.appendLiteral("\\\"");
        break;
    case '\\':
        out.appendLiteral("\\\\");
        break;
    case '\n':
        out.appendLiteral("\\n");
        break;
    case '\t':
        out.appendLiteral("\\t");
        break;
    // Other control characters are written as they are.
    default:
        if (unit < 0x80) {
            out.appendAscii(static_cast<char>(unit));
        } else {
            out.appendLiteral("\\U");
            appendHex(out, unit, 4);
        }
    }
}

/// A leaf inside a collection: bare or in quotes; data is unquoted.
/// Built separately, because only the whole text tells whether it needs quotes.
void appendMember(TextBuilder& out, const NSObject& object) {
    TextBuilder own;
    appendLeaf(own, object);
    const NSString description = own.string();
    const AsciiOrUtf16 text(description);
    if (Access::kind(object) == Kind::data || isBare(text)) {
        out.append(description);
        return;
    }
    out.appendAscii('"');
    for (std::size_t i = 0; i < text.length(); ++i) {
        appendQuotedUnit(out, text[i]);
    }
    out.appendAscii('"');
}

/// The walk sorts keys as `compare` does, if all of them are strings: descriptions of equal dictionaries are
/// then equal, in whatever order the keys were inserted.
void appendCollection(TextBuilder& out, const NSObject& collection) {
    using Walk = detail::CollectionWalk;
    for (Walk walk(collection, &NSString::compare); walk.next();) {
        const detail::CollectionLayout::Lead lead = layout.leadOf(walk);
        out.appendAscii(lead.text.data(), lead.text.size());
        // A bracket is indented wherever its line begins, on top of what the line has already.
        const std::size_t more = walk.event() == Walk::Event::open ? walk.depth() * layout.indentation : 0;
        out.appendRepeated(' ', lead.spaces + more);
        if (walk.event() == Walk::Event::leaf) {
            appendMember(out, walk.value());
        } else {
            const std::string_view bracket = layout.bracketOf(walk);
            out.appendAscii(bracket.data(), bracket.size());
        }
    }
}

} // namespace

void detail::appendDescription(TextBuilder& out, const NSObject& object) {
    if (isCollection(object)) {
        appendCollection(out, object);
    } else {
        appendLeaf(out, object);
    }
}

// A string is its own description, without a copy; a host object is asked for its own.
NSString NSObject::description() const {
    if (kind_ == Kind::absent) {
        return {};
    }
    if (kind_ == Kind::string) {
        return as<NSString>();
    }
    if (kind_ == Kind::hostObject) {
        return hostObject()->description();
    }
    TextBuilder out;
    detail::appendDescription(out, *this);
    return out.string();
}

} // namespace ZQFoundation
