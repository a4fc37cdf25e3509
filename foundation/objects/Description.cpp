// SPDX-License-Identifier: MIT
// Writes the platform's texts for values, collections indented.
// Hosts and their users read and compare these texts, so each form is exact.
#include <algorithm>
#include <cmath>
#include <vector>

#include "foundation/objects/AsciiOrUtf16.h"
#include "foundation/objects/CharacterSetPages.h"
#include "foundation/objects/CivilTime.h"
#include "foundation/objects/Description.h"
#include "foundation/objects/EntryOrder.h"
#include "foundation/objects/KeyTable.h"
#include "foundation/objects/Numbers.h"
#include "foundation/objects/TextBuilder.h"
#include "foundation/text/NumberText.h"

namespace ZQFoundation {

using detail::Access;
using detail::AsciiOrUtf16;
using detail::EntryPointer;
using detail::Kind;
using detail::TextBuilder;

namespace {

constexpr std::size_t indentation = 4;

bool isCollection(const NSObject& object) noexcept {
    const Kind kind = Access::kind(object);
    return kind == Kind::array || kind == Kind::dictionary || kind == Kind::set;
}

void appendHex(TextBuilder& out, std::uint64_t value, unsigned digits) {
    for (unsigned shift = digits * 4; shift > 0; shift -= 4) {
        out.appendAscii("0123456789abcdef"[value >> (shift - 4) & 15]);
    }
}

void appendData(TextBuilder& out, const NSData& data) {
    const unsigned char* const bytes = data.bytes();
    const std::size_t count = data.length();
    char number[detail::numberTextCapacity];
    out.appendLiteral("{length = ");
    out.appendAscii(number, static_cast<std::size_t>(detail::writeUInt64(count, number) - number));
    out.appendLiteral(", bytes = 0x");
    // Longer data show their first 16 and last 8 bytes.
    constexpr std::size_t longest = 24;
    for (std::size_t i = 0; i < (count <= longest ? count : 16); ++i) {
        appendHex(out, bytes[i], 2);
        if (count > longest && i % 4 == 3) {
            out.appendAscii(' ');
        }
    }
    if (count > longest) {
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

// The magnitude is taken in unsigned arithmetic, because the lowest value has no positive counterpart.
void appendPadded(TextBuilder& out, std::int64_t value, std::size_t digits) {
    char number[detail::numberTextCapacity];
    const std::uint64_t magnitude =
        value < 0 ? ~static_cast<std::uint64_t>(value) + 1 : static_cast<std::uint64_t>(value);
    const auto length = static_cast<std::size_t>(detail::writeUInt64(magnitude, number) - number);
    if (value < 0) {
        out.appendAscii('-');
    }
    out.appendRepeated('0', length < digits ? digits - length : 0);
    out.appendAscii(number, length);
}

void appendDate(TextBuilder& out, const NSDate& date) {
    constexpr double farthest = 4e17; // keeps every year within 64 bits
    const double since1970 = date.timeIntervalSince1970();
    const double clamped = std::isnan(since1970) ? 0 : std::clamp(std::floor(since1970), -farthest, farthest);
    const auto seconds = static_cast<std::int64_t>(clamped);
    const detail::CivilDate day = detail::civilFromDays(detail::floorDivide(seconds, 86400));
    const std::int64_t second = seconds - detail::floorDivide(seconds, 86400) * 86400;
    appendPadded(out, day.year, 4);
    out.appendAscii('-');
    appendPadded(out, day.month, 2);
    out.appendAscii('-');
    appendPadded(out, day.day, 2);
    out.appendAscii(' ');
    appendPadded(out, second / 3600, 2);
    out.appendAscii(':');
    appendPadded(out, second / 60 % 60, 2);
    out.appendAscii(':');
    appendPadded(out, second % 60, 2);
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

/// Writes nested collections of any depth with an explicit stack.
class IndentedWriter {
public:
    explicit IndentedWriter(TextBuilder& out) noexcept : out_(out) {}

    void write(const NSObject& collection) {
        open(collection);
        while (!frames_.empty()) {
            step();
        }
    }

private:
    struct Frame {
        Kind kind;
        std::size_t next;
        std::size_t count;
        bool inValue; ///< of a dictionary: the key has been written
        const NSObject* elements;
        std::vector<EntryPointer> entries;
    };

    void indent(std::size_t level) { out_.appendRepeated(' ', level * indentation); }

    void open(const NSObject& collection) {
        const Kind kind = Access::kind(collection);
        // A nested collection indents itself, after the indentation of its element, so an inner bracket is
        // indented twice.
        indent(frames_.size());
        if (kind == Kind::array) {
            out_.appendLiteral("(\n");
            detail::ArrayBody& body = *Access::array(collection);
            frames_.push_back({kind, 0, body.count, false, body.elements(), {}});
            return;
        }
        detail::TableBody& table = *detail::tableOf(collection);
        if (kind == Kind::dictionary) {
            out_.appendLiteral("{\n");
            // By the strings' own order, so that the text of a dictionary does not depend on how it was
            // built.
            frames_.push_back(
                {kind, 0, table.count, false, nullptr,
                 detail::entriesInOrder(collection, [](const NSString& left, const NSString& right) {
                     return left.compare(right) == NSOrderedAscending;
                 })});
        } else {
            out_.appendLiteral("{(\n");
            std::vector<EntryPointer> members(table.count);
            for (std::size_t i = 0; i < table.count; ++i) {
                members[i] = table.entries() + i;
            }
            frames_.push_back({kind, 0, table.count, false, nullptr, std::move(members)});
        }
    }

    void close() {
        const Frame& frame = frames_.back();
        // After the last element there is no separator; a dictionary has written its line end with the last
        // entry.
        if (frame.count != 0 && frame.kind != Kind::dictionary) {
            out_.appendAscii('\n');
        }
        const Kind kind = frame.kind;
        frames_.pop_back();
        indent(frames_.size());
        if (kind == Kind::array) {
            out_.appendAscii(')');
        } else if (kind == Kind::dictionary) {
            out_.appendAscii('}');
        } else {
            out_.appendLiteral(")}");
        }
    }

    void member(const NSObject& object) {
        if (isCollection(object)) {
            open(object);
        } else {
            appendMember(out_, object);
        }
    }

    void step() {
        Frame& frame = frames_.back();
        if (frame.kind == Kind::dictionary) {
            stepEntry(frame);
        } else if (frame.next == frame.count) {
            close();
        } else {
            if (frame.next != 0) {
                out_.appendLiteral(",\n");
            }
            indent(frames_.size());
            // Before `member`, which may add a frame and so move this one.
            const std::size_t index = frame.next++;
            member(frame.elements != nullptr ? frame.elements[index] : frame.entries[index]->key);
        }
    }

    void stepEntry(Frame& frame) {
        if (frame.inValue) {
            frame.inValue = false;
            out_.appendLiteral(" = ");
            member(frame.entries[frame.next++]->value);
            return;
        }
        if (frame.next != 0) {
            out_.appendLiteral(";\n");
        }
        if (frame.next == frame.count) {
            close();
            return;
        }
        indent(frames_.size());
        frame.inValue = true;
        // The position advances only when the value is written.
        member(frame.entries[frame.next]->key);
    }

    TextBuilder& out_;
    std::vector<Frame> frames_;
};

} // namespace

void detail::appendDescription(TextBuilder& out, const NSObject& object) {
    if (isCollection(object)) {
        IndentedWriter(out).write(object);
    } else {
        appendLeaf(out, object);
    }
}

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
