// SPDX-License-Identifier: MIT
// Writes strings as bytes of any encoding.
// Sizes are computed before anything is written, so that the data are allocated once.
#include <new>
#include <string>

#include "foundation/objects/Bodies.h"
#include "foundation/objects/TextConversion.h"
#include "foundation/text/ByteTable.h"
#include "foundation/text/CharacterConversion.h"
#include "foundation/text/UnicodeForms.h"
#include "foundation/text/Utf.h"

namespace ZQFoundation::detail {

namespace {

/// In the C library's Shift-JIS these two take the places of backslash and tilde.
/// Therefore exchanged before and after conversion; as themselves they have no bytes in this form.
constexpr char16_t yenSign = 0x00A5;
constexpr char16_t overline = 0x203E;

/// The caller writes every byte.
DataBody* allocateData(std::size_t size) {
    if (size > SIZE_MAX - sizeof(DataBody)) {
        throw std::bad_alloc();
    }
    auto* const body = static_cast<DataBody*>(::operator new(sizeof(DataBody) + size));
    body->references = 1;
    body->length = size;
    return body;
}

// One test at the end: any high bit shows in the union.
bool isLatin1(const StringBody& body) noexcept {
    char16_t all = 0;
    for (std::size_t i = 0; i < body.length; ++i) {
        all |= body.units()[i];
    }
    return all <= 0xFF;
}

// Encodings with a stated order have no mark.
std::size_t markSize(const TextEncoding& encoding) noexcept {
    if (encoding.order != EncodingOrder::marked) {
        return 0;
    }
    return encoding.form == EncodingForm::utf16 ? 2 : encoding.form == EncodingForm::utf32 ? 4 : 0;
}

/// With a mark, text is written in the machine's own order, which needs no exchange of bytes.
ByteOrder orderOf(const TextEncoding& encoding) noexcept {
    switch (encoding.order) {
    case EncodingOrder::big:
        return ByteOrder::big;
    case EncodingOrder::little:
        return ByteOrder::little;
    default:
        return machineOrder;
    }
}

/// Whether the text has no unpaired surrogate, for which UTF-8 and UTF-32 have no bytes.
bool isWellFormed(const StringBody& body) noexcept {
    return body.isAscii || isWellFormedUtf16(body.units(), body.length);
}

bool holds(const ByteTable* table, const StringBody& body) noexcept {
    return table != nullptr &&
           (body.isAscii ? table->holds(body.ascii(), body.length) : table->holds(body.units(), body.length));
}

/// For the encodings whose size follows from the text without writing it.
bool getPlainSize(const TextEncoding& encoding, const StringBody& body, std::size_t& size) {
    size = body.length;
    switch (encoding.form) {
    case EncodingForm::ascii:
        return body.isAscii;
    case EncodingForm::latin1:
        return body.isAscii || isLatin1(body);
    case EncodingForm::utf8:
        size = body.isAscii ? size : utf8Length(body.units(), body.length, IllFormed::replace);
        return isWellFormed(body);
    case EncodingForm::utf16:
        // Unpaired surrogates pass, so every text has this form.
        size *= 2;
        return true;
    case EncodingForm::utf32:
        size = 4 * (body.isAscii ? size : countOfCharacters(body.units(), body.length));
        return isWellFormed(body);
    case EncodingForm::escapedAscii:
        size = body.isAscii ? escapedAsciiLength(body.ascii(), body.length)
                            : escapedAsciiLength(body.units(), body.length);
        return true;
    default:
        return holds(byteTableOf(encoding), body);
    }
}

/// Writing cannot fail: everything was checked when the size was computed. There is a function for each form
/// of a string, so that ASCII is not widened first.
void write(const TextEncoding& encoding, const char* ascii, std::size_t count, char* out) {
    switch (encoding.form) {
    case EncodingForm::utf16:
        writeUtf16(ascii, count, orderOf(encoding), out);
        break;
    case EncodingForm::utf32:
        writeUtf32(ascii, count, orderOf(encoding), out);
        break;
    case EncodingForm::escapedAscii:
        writeEscapedAscii(ascii, count, out);
        break;
    case EncodingForm::ascii:
    case EncodingForm::latin1:
    case EncodingForm::utf8:
        std::char_traits<char>::copy(out, ascii, count);
        break;
    default:
        byteTableOf(encoding)->write(ascii, count, out);
    }
}

void write(const TextEncoding& encoding, const char16_t* units, std::size_t count, char* out) {
    switch (encoding.form) {
    case EncodingForm::utf16:
        writeUtf16(units, count, orderOf(encoding), out);
        break;
    case EncodingForm::utf32:
        writeUtf32(units, count, orderOf(encoding), out);
        break;
    case EncodingForm::escapedAscii:
        writeEscapedAscii(units, count, out);
        break;
    case EncodingForm::utf8:
        utf16ToUtf8(units, count, out, IllFormed::replace);
        break;
    case EncodingForm::ascii:
    case EncodingForm::latin1:
        for (std::size_t i = 0; i < count; ++i) {
            out[i] = static_cast<char>(units[i]);
        }
        break;
    default:
        byteTableOf(encoding)->write(units, count, out);
    }
}

/// Encodings with several bytes for a character, or with changes of state, which the C library converts.
bool isBySequences(const TextEncoding& encoding) noexcept {
    return encoding.form == EncodingForm::sequences || encoding.form == EncodingForm::shiftJis;
}

// The size of sequences is only known once they are written.
bool writeSequences(const TextEncoding& encoding, const NSString& text, std::string& bytes) {
    std::u16string units = text.utf16();
    if (encoding.form == EncodingForm::shiftJis) {
        for (char16_t& unit : units) {
            if (unit == yenSign || unit == overline) {
                return false;
            }
            unit = unit == u'\\' ? yenSign : unit == u'~' ? overline : unit;
        }
    }
    return unitsToBytes(encoding.name, units, bytes);
}

} // namespace

/// The size without a mark. False if the encoding lacks a character of the text.
bool getEncodedSize(const TextEncoding& encoding, const NSString& text, std::size_t& size) {
    if (!isBySequences(encoding)) {
        return getPlainSize(encoding, *Access::string(text), size);
    }
    std::string bytes;
    const bool fits = writeSequences(encoding, text, bytes);
    size = bytes.size();
    return fits;
}

/// Nil if the encoding lacks a character of the text: nothing is replaced. Written directly into the data,
/// except sequences, whose size is unknown until then.
NSData encodedText(const TextEncoding& encoding, const NSString& text) {
    if (isBySequences(encoding)) {
        std::string bytes;
        return writeSequences(encoding, text, bytes)
                   ? NSData::dataWithBytes_length(bytes.data(), bytes.size())
                   : NSData();
    }
    const StringBody& body = *Access::string(text);
    std::size_t size = 0;
    if (!getPlainSize(encoding, body, size)) {
        return {};
    }
    const std::size_t mark = markSize(encoding);
    DataBody* const data = allocateData(mark + size);
    char* const out = reinterpret_cast<char*>(data->bytes());
    constexpr char16_t byteOrderMark = 0xFEFF;
    write(encoding, &byteOrderMark, mark != 0 ? 1 : 0, out);
    if (body.isAscii) {
        write(encoding, body.ascii(), body.length, out + mark);
    } else {
        write(encoding, body.units(), body.length, out + mark);
    }
    return Access::adoptData(data);
}

} // namespace ZQFoundation::detail
