// SPDX-License-Identifier: MIT
// Writes old-style property lists.
// Only what must be quoted is quoted, and the result is ASCII, so that any reader takes it.
#include "foundation/plist/OldStyleWriter.h"

#include <string_view>

#include "foundation/objects/NSData.h"
#include "foundation/plist/PropertyListError.h"
#include "foundation/plist/TextUnits.h"
#include "foundation/plist/ValueWalk.h"

namespace ZQFoundation::detail {

namespace {

constexpr char hexDigits[] = "0123456789abcdef";

class OldStyleWriter {
public:
    explicit OldStyleWriter(std::string& out) : out_(out) {}

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
        switch (walk.event()) {
        case ValueWalk::Event::scalar:
            startValue(walk.depth(), walk.isInDictionary());
            writeScalar(walk.value());
            endValue(walk);
            break;
        case ValueWalk::Event::key:
            indent(walk.depth());
            writeString(NSString(walk.value()));
            out_ += " = ";
            break;
        case ValueWalk::Event::open:
            // The walk is already inside: what matters is whether a key precedes.
            startValue(walk.depth() - 1, isAfterKey_);
            out_ += walk.isArray() ? "(\n" : "{\n";
            break;
        case ValueWalk::Event::close:
            if (walk.isArray()) {
                dropLastComma();
            }
            indent(walk.depth());
            out_ += walk.isArray() ? ')' : '}';
            endValue(walk);
            break;
        }
        // An opening bracket after a key stays on its line.
        isAfterKey_ = walk.event() == ValueWalk::Event::key;
    }

    void indent(std::size_t levels) { out_.append(levels * 4, ' '); }

    void startValue(std::size_t depth, bool isAfterKey) {
        if (!isAfterKey) {
            indent(depth);
        }
    }

    void endValue(const ValueWalk& walk) {
        if (walk.depth() > 0) {
            out_ += walk.isInDictionary() ? ";\n" : ",\n";
        }
    }

    /// The last element of an array has a comma only until the array is closed.
    void dropLastComma() {
        if (out_.ends_with(",\n")) {
            out_.erase(out_.size() - 2, 1);
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
            out_ += hexDigits[data.bytes()[index] >> 4];
            out_ += hexDigits[data.bytes()[index] & 0xF];
        }
        out_ += '>';
    }

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
        for (int shift = 12; shift >= 0; shift -= 4) {
            out_ += hexDigits[unit >> shift & 0xF];
        }
    }

    std::string& out_;
    bool isAfterKey_ = false;
};

} // namespace

const char* writeOldStyle(const NSObject& value, std::string& out) {
    return OldStyleWriter(out).write(value);
}

} // namespace ZQFoundation::detail
