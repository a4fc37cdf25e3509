// SPDX-License-Identifier: MIT
// Bytes to text and text to bytes in every encoding there is, against the C library or, for the encodings
// that the library converts itself, plain loops.
//
// Input: a byte that chooses the encoding, one that chooses the direction, then the bytes or the text (see
// InputReader for its units).
#include <iconv.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "foundation/objects/NSData.h"
#include "foundation/objects/NSString.h"
#include "foundation/text/TextEncodings.h"
#include "fuzz/Fuzzing.h"
#include "fuzz/InputReader.h"
#include "tests/kit/Texts.h"
#include "tests/kit/Values.h"
#include "tests/models/Utf.h"

using namespace ZQFoundation;
using detail::EncodingForm;
using detail::EncodingOrder;
using detail::TextEncoding;
using fuzzing::require;
using kit::stringOf;

namespace {

using Units = std::optional<std::u16string>;
using Bytes = std::optional<std::string>;

NSString decodedBy(std::uint32_t number, std::string_view bytes) {
    return NSString::initWithData_encoding(kit::dataOf(bytes), static_cast<NSStringEncoding>(number));
}

/// A conversion of the C library, opened once.
class Conversion {
public:
    explicit Conversion(const char* name) : descriptor_(iconv_open("UTF-16LE", name)) {}

    bool isOpen() const { return descriptor_ != reinterpret_cast<iconv_t>(-1); }

    Units units(std::string_view bytes) const {
        std::vector<char> input(bytes.begin(), bytes.end());
        std::vector<char> output(bytes.size() * 8 + 16);
        char* from = input.data();
        char* to = output.data();
        std::size_t left = input.size();
        std::size_t room = output.size();
        iconv(descriptor_, nullptr, nullptr, nullptr, nullptr);
        if (iconv(descriptor_, &from, &left, &to, &room) == static_cast<std::size_t>(-1) || left != 0 ||
            iconv(descriptor_, nullptr, nullptr, &to, &room) == static_cast<std::size_t>(-1)) {
            return std::nullopt;
        }
        std::u16string text((output.size() - room) / 2, u'\0');
        std::copy(output.data(), to, reinterpret_cast<char*>(text.data()));
        return text;
    }

private:
    iconv_t descriptor_;
};

/// An encoding with what it takes to check it.
struct Subject {
    const TextEncoding* encoding;
    std::optional<Conversion> conversion; ///< the C library's
    std::vector<Units> unitsOfBytes;      ///< of each byte alone, in single-byte encodings

    explicit Subject(const TextEncoding& one) : encoding(&one) {
        if (one.name != nullptr) {
            conversion.emplace(one.name);
        }
        const bool byLibrary = one.form == EncodingForm::nextStep || one.form == EncodingForm::symbol;
        const bool byConversion = one.form == EncodingForm::bytes || one.form == EncodingForm::macRoman;
        for (int byte = 0; (byLibrary || byConversion) && byte < 256; ++byte) {
            const char character = static_cast<char>(byte);
            if (byConversion) {
                unitsOfBytes.push_back(conversion->isOpen() ? conversion->units({&character, 1})
                                                            : std::nullopt);
            } else {
                const NSString text = decodedBy(one.number, {&character, 1});
                unitsOfBytes.push_back(text ? Units(text.utf16()) : std::nullopt);
            }
        }
        if (one.form == EncodingForm::macRoman && conversion->isOpen()) {
            unitsOfBytes[0xC6] = u"\u2206";
            unitsOfBytes[0xDB] = u"\u20AC";
            unitsOfBytes[0xF0] = u"\uF8FF";
        }
    }
};

const std::vector<Subject>& subjects() {
    // Kept until the process ends, so that leak checkers still see it in use.
    static const std::vector<Subject>& all = *[] {
        auto& found = *new std::vector<Subject>;
        const auto add = [&](std::uint32_t first, std::uint32_t last) {
            for (std::uint32_t number = first; number <= last; ++number) {
                if (const TextEncoding* const encoding = detail::findTextEncoding(number)) {
                    found.emplace_back(*encoding);
                }
            }
        };
        add(0, 64);
        add(0x80000000, 0x80000C00);
        for (const std::uint32_t number :
             {0x88000100U, 0x8C000100U, 0x90000100U, 0x94000100U, 0x98000100U, 0x9C000100U}) {
            add(number, number);
        }
        // Where the C library lacks its converters, nothing would be compared.
        const auto open = std::count_if(found.begin(), found.end(), [](const Subject& subject) {
            return subject.conversion && subject.conversion->isOpen();
        });
        require(open >= 50, "the C library converts most encodings");
        return &found;
    }();
    return all;
}

/// After a mark or without one.
Units plainWide(std::string_view bytes, std::size_t width, EncodingOrder order) {
    const std::string_view little("\xFF\xFE\0\0", width);
    const std::string_view big = std::string_view("\0\0\xFE\xFF", 4).substr(4 - width);
    const bool hasLittleMark = order != EncodingOrder::big && bytes.starts_with(little);
    const bool hasBigMark = order != EncodingOrder::little && bytes.starts_with(big);
    bytes.remove_prefix(hasLittleMark || hasBigMark ? width : 0);
    return models::unitsOfWide(bytes, width, hasLittleMark || order == EncodingOrder::little);
}

Units plainBytes(const Subject& subject, std::string_view bytes) {
    std::u16string units;
    for (const char byte : bytes) {
        const Units& one = subject.unitsOfBytes[static_cast<unsigned char>(byte)];
        if (!one) {
            return std::nullopt;
        }
        units += *one;
    }
    return units;
}

Units plainSequences(const Subject& subject, std::string_view bytes) {
    Units units = subject.conversion->isOpen() ? subject.conversion->units(bytes) : std::nullopt;
    if (units && subject.encoding->form == EncodingForm::shiftJis) {
        std::replace(units->begin(), units->end(), u'\u00A5', u'\\');
        std::replace(units->begin(), units->end(), u'\u203E', u'~');
    }
    return units;
}

/// False when the result cannot be predicted.
bool getPlainText(const Subject& subject, std::string_view bytes, Units& units) {
    switch (subject.encoding->form) {
    case EncodingForm::ascii:
    case EncodingForm::latin1:
        units.emplace();
        std::transform(bytes.begin(), bytes.end(), std::back_inserter(*units),
                       [](char byte) { return static_cast<char16_t>(static_cast<unsigned char>(byte)); });
        return true;
    case EncodingForm::utf8:
        units = models::wellFormedUtf16(bytes.starts_with("\xEF\xBB\xBF") ? bytes.substr(3) : bytes);
        return true;
    case EncodingForm::utf16:
        units = plainWide(bytes, 2, subject.encoding->order);
        return true;
    case EncodingForm::utf32:
        units = plainWide(bytes, 4, subject.encoding->order);
        return true;
    case EncodingForm::escapedAscii:
        return false;
    case EncodingForm::sequences:
    case EncodingForm::shiftJis:
        units = plainSequences(subject, bytes);
        return true;
    default:
        units = plainBytes(subject, bytes);
        return true;
    }
}

bool startsWithMark(const Subject& subject, const std::u16string& units) {
    const EncodingForm form = subject.encoding->form;
    return (form == EncodingForm::utf8 || form == EncodingForm::utf16 || form == EncodingForm::utf32) &&
           units.starts_with(u'\uFEFF');
}

/// Whether all units can be encoded; nothing when that cannot be predicted.
std::optional<bool> isPlainlyEncodable(const Subject& subject, const std::u16string& units) {
    const auto allBelow = [&](char16_t limit) {
        return std::all_of(units.begin(), units.end(), [limit](char16_t unit) { return unit < limit; });
    };
    switch (subject.encoding->form) {
    case EncodingForm::ascii:
        return allBelow(0x80);
    case EncodingForm::latin1:
        return allBelow(0x100);
    case EncodingForm::utf8:
    case EncodingForm::utf32:
        return models::wellFormedUtf8(units).has_value();
    case EncodingForm::utf16:
    case EncodingForm::escapedAscii:
        return true;
    case EncodingForm::sequences:
    case EncodingForm::shiftJis:
        return std::nullopt;
    default:
        return std::all_of(units.begin(), units.end(), [&](char16_t unit) {
            return std::find(subject.unitsOfBytes.begin(), subject.unitsOfBytes.end(),
                             std::u16string(1, unit)) != subject.unitsOfBytes.end();
        });
    }
}

std::string plainEscapes(const std::u16string& units) {
    std::string text;
    for (const char16_t unit : units) {
        char written[8];
        std::snprintf(written, sizeof written, unit < 0x100 ? "\\%03o" : "\\u%04x",
                      static_cast<unsigned>(unit));
        text += unit == u'\\' ? "\\\\" : unit < 0x80 ? std::string(1, static_cast<char>(unit)) : written;
    }
    return text;
}

void checkEncoding(const Subject& subject, const std::u16string& units) {
    const auto number = static_cast<NSStringEncoding>(subject.encoding->number);
    const NSString text = stringOf(units);
    const NSData data = text.dataUsingEncoding(number);
    if (const std::optional<bool> expected = isPlainlyEncodable(subject, units)) {
        require(static_cast<bool>(data) == *expected, "whether a text has a place in an encoding");
    }
    const std::size_t length = text.lengthOfBytesUsingEncoding(number);
    if (!data) {
        require(length == 0, "length of what cannot be converted");
        return;
    }
    const bool isMarked = subject.encoding->order == EncodingOrder::marked;
    const std::size_t mark = isMarked && subject.encoding->form == EncodingForm::utf16   ? 2
                             : isMarked && subject.encoding->form == EncodingForm::utf32 ? 4
                                                                                         : 0;
    require(length + mark == data.length(), "length in an encoding");
    if (subject.encoding->form == EncodingForm::escapedAscii) {
        require(kit::bytesOf(data) == plainEscapes(units), "escaped text");
    }
    const NSString again = NSString::initWithData_encoding(data, number);
    const bool losesMark = mark == 0 && startsWithMark(subject, units);
    require(static_cast<bool>(again), "what was written is not read");
    require(again.utf16() == (losesMark ? units.substr(1) : units), "what was written reads as another text");
}

void checkDecoding(const Subject& subject, std::string_view bytes) {
    const NSString text = decodedBy(subject.encoding->number, bytes);
    Units expected;
    if (getPlainText(subject, bytes, expected)) {
        require(static_cast<bool>(text) == expected.has_value(), "whether bytes are a text");
        require(!expected || text.utf16() == *expected, "text of bytes");
    }
    if (text) {
        checkEncoding(subject, text.utf16());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzzing::InputReader input(data, size);
    const Subject& subject = subjects()[input.byte() % subjects().size()];
    if ((input.byte() & 1U) == 0) {
        checkDecoding(subject, input.rest());
    } else {
        checkEncoding(subject, fuzzing::unitsFromBytes(input.rest()));
    }
    return 0;
}
