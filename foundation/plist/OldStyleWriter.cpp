// SPDX-License-Identifier: MIT
// Writes old-style property lists.
// Only what must be quoted is quoted, and the result is ASCII, so that any reader takes it.
#include "foundation/plist/OldStyleWriter.h"

#include <string_view>

#include "foundation/objects/CollectionLayout.h"
#include "foundation/plist/PropertyListError.h"
#include "foundation/plist/TextUnits.h"
#include "foundation/plist/ValueWalk.h"
#include "foundation/text/Digits.h"

namespace ZQFoundation::detail {

namespace {

constexpr CollectionLayout layout{
    .array = {"(", "\n", ",\n", "\n", "\n", ")"},
    .dictionary = {"{", "\n", ";\n", ";\n", "\n", "}"},
    .set = {}, // refused
    .assignment = " = ",
    .indentation = 4,
};

class OldStyleWriter {
public:
    explicit OldStyleWriter(std::string& out) : out_(out) {}

    /// Returns null, or why the value cannot be written; the text is then incomplete and must not be used.
    const char* write(const NSObject& value) {
        const std::size_t start = out_.size();
        ValueWalk walk(value);
        while (walk.next()) {
            writeEvent(walk);
            // Checked while writing, because shared parts can make a small value enormous.
            if (out_.size() - start > maxPropertyListBytes) {
                return "The value is too large for a property list";
            }
        }
        out_ += '\n';
        return walk.refusal();
    }

private:
    void writeEvent(const ValueWalk& walk) {
        const CollectionLayout::Lead lead = layout.leadOf(walk);
        out_.append(lead.text).append(lead.spaces, ' ');
        if (walk.event() == ValueWalk::Event::leaf) {
            writeScalar(walk.value());
        } else {
            out_ += layout.bracketOf(walk);
        }
    }

    void writeScalar(const NSObject& value) {
        if (const NSData data(value); data) {
            writeData(data);
        } else {
            // Numbers, booleans and dates have no notation in this form.
            writeString(value.description());
        }
    }

    void writeData(const NSData& data) {
        out_ += '<';
        for (std::size_t index = 0; index < data.length(); ++index) {
            // In groups of four bytes, as descriptions of data show them.
            if (index > 0 && index % 4 == 0) {
                out_ += ' ';
            }
            writeHex(data.bytes()[index], 2);
        }
        out_ += '>';
    }

    /// A string that is not ASCII always needs quotes, because its other units are escaped.
    void writeString(const NSString& string) {
        const StringView text(string);
        if (text.form() != StringView::Form::ascii) {
            writeQuoted(text.units(), text.size());
        } else if (needsQuotes(std::string_view(text.bytes(), text.size()))) {
            writeQuoted(text.bytes(), text.size());
        } else {
            out_.append(text.bytes(), text.size());
        }
    }

    static bool needsQuotes(std::string_view text) noexcept {
        // "//" at the start would be a comment.
        // A single slash is an ordinary character.
        return text.empty() || text.starts_with("//") ||
               text.find_first_not_of(
                   "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_$/:.-") != text.npos;
    }

    template <class Unit>
    void writeQuoted(const Unit* text, std::size_t count) {
        out_ += '"';
        for (std::size_t index = 0; index < count; ++index) {
            const unsigned unit = unitNumber(text[index]);
            if (unit == '"' || unit == '\\') {
                out_ += '\\';
                out_ += static_cast<char>(unit);
            } else if (unit >= 0x20 && unit < 0x7F) {
                out_ += static_cast<char>(unit);
            } else {
                writeEscape(unit);
            }
        }
        out_ += '"';
    }

    /// Units are escaped one by one, so a pair of surrogates becomes two escapes, as readers of this form
    /// expect.
    void writeEscape(unsigned unit) {
        static constexpr std::string_view controls = "\a\b\f\n\r\t\v";
        static constexpr char letters[] = "abfnrtv";
        const std::size_t index = unit < 0x80 ? controls.find(static_cast<char>(unit)) : controls.npos;
        out_ += '\\';
        if (index != controls.npos) {
            out_ += letters[index];
            return;
        }
        out_ += 'U';
        writeHex(unit, 4);
    }

    void writeHex(unsigned number, std::size_t digits) {
        char text[4];
        out_.append(text, writeHexDigits(number, digits, text));
    }

    std::string& out_;
};

} // namespace

const char* writeOldStyle(const NSObject& value, std::string& out) {
    return OldStyleWriter(out).write(value);
}

} // namespace ZQFoundation::detail
