// SPDX-License-Identifier: MIT
// Reads bytes of any encoding as strings.
// Each function takes bytes that may be anything, and returns nil for what its encoding does not know.
#include <string>
#include <string_view>

#include "foundation/objects/StringBodies.h"
#include "foundation/objects/TextConversion.h"
#include "foundation/text/ByteTable.h"
#include "foundation/text/CharacterConversion.h"
#include "foundation/text/UnicodeForms.h"
#include "foundation/text/Utf.h"

namespace ZQFoundation::detail {

namespace {

using namespace std::string_view_literals;

NSString stringOf(const std::u16string& units) { return makeString(units.data(), units.size()); }

// Marks are views with a length, because they may contain NUL.
bool dropMark(std::string_view& bytes, std::string_view mark) noexcept {
    if (bytes.substr(0, mark.size()) != mark) {
        return false;
    }
    bytes.remove_prefix(mark.size());
    return true;
}

/// Removes the byte-order mark. It determines the order if none is stated; without a mark the high bytes come
/// first.
ByteOrder takeOrder(const TextEncoding& encoding, std::string_view& bytes, std::string_view bigMark,
                    std::string_view littleMark) noexcept {
    // The mark of the stated order is dropped; one of the other order would be U+FFFE, and stays.
    if (encoding.order != EncodingOrder::big && dropMark(bytes, littleMark)) {
        return ByteOrder::little;
    }
    if (encoding.order == EncodingOrder::little) {
        return ByteOrder::little;
    }
    dropMark(bytes, bigMark);
    return ByteOrder::big;
}

NSString fromUtf8(std::string_view bytes) {
    // A mark in UTF-8 says nothing about order.
    dropMark(bytes, "\xEF\xBB\xBF"sv);
    return NSString::stringWithUTF8Bytes(bytes.data(), bytes.size());
}

NSString fromUtf16(const TextEncoding& encoding, std::string_view bytes) {
    const ByteOrder order = takeOrder(encoding, bytes, "\xFE\xFF"sv, "\xFF\xFE"sv);
    std::u16string units;
    return readUtf16(bytes, order, units) ? stringOf(units) : NSString();
}

NSString fromUtf32(const TextEncoding& encoding, std::string_view bytes) {
    const ByteOrder order = takeOrder(encoding, bytes, "\0\0\xFE\xFF"sv, "\xFF\xFE\0\0"sv);
    std::u16string units;
    return readUtf32(bytes, order, units) ? stringOf(units) : NSString();
}

/// Converts each byte to the unit of the same number.
NSString fromLatin1(std::string_view bytes) {
    if (asciiPrefixLength(bytes.data(), bytes.size()) == bytes.size()) {
        return makeAsciiString(bytes.data(), bytes.size());
    }
    StringBody* const body = allocateString(bytes.size(), false);
    widenAscii(bytes.data(), bytes.size(), body->units());
    return Access::adoptString(body);
}

NSString fromEscapedAscii(std::string_view bytes) {
    std::u16string units;
    return readEscapedAscii(bytes, units) ? stringOf(units) : NSString();
}

NSString fromBytes(const ByteTable* table, std::string_view bytes) {
    if (table == nullptr) {
        return {};
    }
    if (table->isAsciiCompatible() && asciiPrefixLength(bytes.data(), bytes.size()) == bytes.size()) {
        return makeAsciiString(bytes.data(), bytes.size());
    }
    std::u16string units(bytes.size(), u'\0');
    const auto* const numbers = reinterpret_cast<const unsigned char*>(bytes.data());
    return table->read(numbers, bytes.size(), units.data()) ? stringOf(units) : NSString();
}

NSString fromSequences(const TextEncoding& encoding, std::string_view bytes) {
    std::u16string units;
    if (!bytesToUnits(encoding.name, bytes, units)) {
        return {};
    }
    // The C library reads these two bytes as yen sign and overline.
    if (encoding.form == EncodingForm::shiftJis) {
        for (char16_t& unit : units) {
            unit = unit == u'\u00A5' ? u'\\' : unit == u'\u203E' ? u'~' : unit;
        }
    }
    return stringOf(units);
}

} // namespace

NSString decodedText(const TextEncoding& encoding, const NSData& data) {
    const std::string_view bytes(reinterpret_cast<const char*>(data.bytes()), data.length());
    switch (encoding.form) {
    case EncodingForm::ascii: // lenient: what is not ASCII is read as if it were Latin-1
    case EncodingForm::latin1:
        return fromLatin1(bytes);
    case EncodingForm::utf8:
        return fromUtf8(bytes);
    case EncodingForm::utf16:
        return fromUtf16(encoding, bytes);
    case EncodingForm::utf32:
        return fromUtf32(encoding, bytes);
    case EncodingForm::escapedAscii:
        return fromEscapedAscii(bytes);
    case EncodingForm::sequences:
    case EncodingForm::shiftJis:
        return fromSequences(encoding, bytes);
    default:
        return fromBytes(byteTableOf(encoding), bytes);
    }
}

} // namespace ZQFoundation::detail
