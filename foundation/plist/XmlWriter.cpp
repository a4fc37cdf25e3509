// SPDX-License-Identifier: MIT
// Writes XML property lists.
// Whatever this library's reader accepts is written so that it reads back equal. The lines are readable,
// since people edit these files.
#include "foundation/plist/XmlWriter.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "foundation/objects/CivilTime.h"
#include "foundation/objects/NSData.h"
#include "foundation/objects/NSDate.h"
#include "foundation/objects/NSNumber.h"
#include "foundation/plist/PropertyListError.h"
#include "foundation/plist/TextUnits.h"
#include "foundation/plist/ValueWalk.h"
#include "foundation/text/Base64Codec.h"
#include "foundation/text/Digits.h"
#include "foundation/text/NumberText.h"
#include "foundation/text/RealText.h"
#include "foundation/text/Surrogates.h"

namespace ZQFoundation::detail {

namespace {

constexpr std::size_t dataBytesPerLine = 57; // 76 characters of Base64

class XmlWriter {
public:
    explicit XmlWriter(std::string& out) : out_(out) {}

    /// Returns null, or why the value cannot be written; the text is then incomplete and must not be used.
    const char* write(const NSObject& value) {
        const std::size_t start = out_.size();
        // No document type: readers ignore it, and some would fetch it.
        out_ += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n";
        ValueWalk walk(value);
        while (refusal_ == nullptr && walk.next()) {
            writeEvent(walk);
            if (out_.size() - start > maxPropertyListBytes) {
                refusal_ = "The value is too large for a property list";
            }
        }
        out_ += "</plist>\n";
        return refusal_ != nullptr ? refusal_ : walk.refusal();
    }

private:
    /// Each event but the end of an empty collection has a line.
    void writeEvent(const ValueWalk& walk) {
        const bool isOpening = walk.event() == ValueWalk::Event::open;
        if (walk.event() == ValueWalk::Event::leaf) {
            indent(walk.depth());
            writeLeaf(walk);
        } else if (isOpening || !walk.isEmpty()) {
            indent(walk.depth());
            out_ += isOpening ? "<" : "</";
            out_ += walk.isArray() ? "array" : "dict";
            out_ += walk.isEmpty() ? "/>\n" : ">\n";
        }
    }

    /// Tabs, one for each level: the outermost dictionary is not indented.
    void indent(std::size_t levels) { out_.append(levels, '\t'); }

    /// The walk has refused what a property list cannot contain, so data are all that is left at the end.
    void writeLeaf(const ValueWalk& walk) {
        const NSObject& value = walk.value();
        if (walk.isKey()) {
            writeText("<key>", NSString(value), "</key>\n");
        } else if (const NSString string(value); string) {
            writeText("<string>", string, "</string>\n");
        } else if (const NSNumber number(value); number) {
            writeNumber(number);
        } else if (const NSDate date(value); date) {
            writeDate(date);
        } else {
            writeData(NSData(value), walk.depth());
        }
    }

    /// A boolean stays a boolean and a real stays a real, even if it is whole, so that kinds are read back.
    void writeNumber(const NSNumber& number) {
        char digits[numberTextCapacity];
        if (number.isBoolean()) {
            out_ += number.boolValue() ? "<true/>\n" : "<false/>\n";
            return;
        }
        if (number.isReal()) {
            out_ += "<real>";
            // The fewest digits that give the same number again.
            const char* const end =
                writeShortestRealText(digits, digits + sizeof digits, canonical(number.doubleValue()));
            out_.append(digits, static_cast<std::size_t>(end - digits));
            out_ += "</real>\n";
            return;
        }
        const std::uint64_t bits = number.unsignedLongLongValue();
        // By comparison, because a large unsigned number has the bits of a negative one.
        const bool isNegative = number.compare(NSNumber(0)) == NSOrderedAscending;
        const char* end = isNegative ? writeInt64(number.integerValue(), digits) : writeUInt64(bits, digits);
        out_ += "<integer>";
        out_.append(digits, static_cast<std::size_t>(end - digits));
        out_ += "</integer>\n";
    }

    /// A not-a-number has neither sign nor bits that matter.
    static double canonical(double value) noexcept { return std::isnan(value) ? std::fabs(value) : value; }

    void writeDate(const NSDate& date) {
        // Rounded down, so that a fraction never moves a date into the next second.
        const double since1970 = std::floor(date.timeIntervalSince1970());
        // Far outside of what is accepted below, and small enough for 64 bits.
        const bool isNear = std::fabs(since1970) < 1e15;
        const std::int64_t seconds = isNear ? static_cast<std::int64_t>(since1970) : 0;
        const CivilDate day = civilFromDays(floorDivide(seconds, secondsPerDay));
        if (!isNear || day.year < -9999 || day.year > 9999) {
            refusal_ = "The date is too far away for a property list";
            return;
        }
        const auto rest = static_cast<unsigned>(floorModulo(seconds, secondsPerDay));
        out_ += day.year < 0 ? "<date>-" : "<date>";
        writeField<4>(static_cast<unsigned>(day.year < 0 ? -day.year : day.year), '-');
        writeField<2>(static_cast<unsigned>(day.month), '-');
        writeField<2>(static_cast<unsigned>(day.day), 'T');
        writeField<2>(rest / 3600, ':');
        writeField<2>(rest / 60 % 60, ':');
        writeField<2>(rest % 60, 'Z');
        out_ += "</date>\n";
    }

    template <std::size_t digits>
    void writeField(unsigned value, char separator) {
        char text[digits];
        out_.append(text, writeDigits<digits>(value, text));
        out_ += separator;
    }

    void writeData(const NSData& data, std::size_t depth) {
        out_ += "<data>\n";
        char line[dataBytesPerLine / 3 * 4];
        for (std::size_t start = 0; start < data.length(); start += dataBytesPerLine) {
            // Data are indented like the element, so that the lines do not look like text of another level.
            indent(depth);
            const std::size_t count = std::min(dataBytesPerLine, data.length() - start);
            out_.append(line, base64::encode(base64::codec(), data.bytes() + start, count, false, line));
            out_ += '\n';
        }
        indent(depth);
        out_ += "</data>\n";
    }

    void writeText(const char* before, const NSString& string, const char* after) {
        out_ += before;
        const StringView text(string);
        if (text.form() == StringView::Form::ascii) {
            writeAscii(text.bytes(), text.bytes() + text.size());
        } else {
            writeUnits(text.units(), text.units() + text.size());
        }
        out_ += after;
    }

    /// Characters that stand for themselves, the others by a reference.
    /// A carriage return would be read as a line feed by readers that follow XML, so it is written as a
    /// reference.
    static bool isPlain(unsigned unit) noexcept {
        return (unit >= 0x20 && unit < 0x7F && unit != '<' && unit != '>' && unit != '&') || unit == '\n' ||
               unit == '\t';
    }

    void writeAscii(const char* text, const char* end) {
        while (text != end) {
            const char* start = text;
            while (text != end && isPlain(unitNumber(*text))) {
                ++text;
            }
            out_.append(start, static_cast<std::size_t>(text - start));
            if (text != end) {
                writeReference(unitNumber(*text++));
            }
        }
    }

    void writeUnits(const char16_t* text, const char16_t* end) {
        while (text != end) {
            const char16_t* start = text;
            while (text != end && (isPlain(*text) || isPlainBeyondAscii(*text))) {
                ++text;
            }
            writeUtf8(start, text);
            if (text == end) {
                break;
            }
            if (isSurrogatePair(text, static_cast<std::size_t>(end - text))) {
                writeUtf8(text, text + 2);
                text += 2;
            } else {
                writeReference(*text++);
            }
        }
    }

    static bool isPlainBeyondAscii(char16_t unit) noexcept {
        return unit >= 0xA0 && !isSurrogate(unit) && unit < 0xFFFE;
    }

    void writeUtf8(const char16_t* start, const char16_t* end) {
        const auto count = static_cast<std::size_t>(end - start);
        const std::size_t before = out_.size();
        out_.resize(before + utf8Length(start, count, IllFormed::replace));
        utf16ToUtf8(start, count, out_.data() + before, IllFormed::replace);
    }

    /// The three characters that XML reserves have names; control characters, which XML cannot contain, are
    /// written by number, and this library reads them back.
    void writeReference(unsigned unit) {
        switch (unit) {
        case '<':
            out_ += "&lt;";
            return;
        case '>':
            out_ += "&gt;";
            return;
        case '&':
            out_ += "&amp;";
            return;
        default:
            break;
        }
        char digits[numberTextCapacity];
        const std::to_chars_result written = std::to_chars(digits, digits + sizeof digits, unit, 16);
        out_ += "&#x";
        out_.append(digits, static_cast<std::size_t>(written.ptr - digits));
        out_ += ';';
    }

    std::string& out_;
    const char* refusal_ = nullptr;
};

} // namespace

const char* writeXml(const NSObject& value, std::string& out) { return XmlWriter(out).write(value); }

} // namespace ZQFoundation::detail
