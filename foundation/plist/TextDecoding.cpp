// SPDX-License-Identifier: MIT
// Decodes a property list's text by its byte-order mark, its declaration or its bytes.
// Nothing is converted when the bytes are UTF-8, as nearly all are; the readers work on them in place.
#include "foundation/plist/TextDecoding.h"

#include <cstdint>
#include <cstring>
#include <string_view>

#include "foundation/plist/TextUnits.h"
#include "foundation/text/Surrogates.h"
#include "foundation/text/Utf.h"

namespace ZQFoundation::detail {

namespace {

enum class Encoding { unknown, utf8, utf16Big, utf16Little, utf32Big, utf32Little, latin1, windows1252 };

struct NamedEncoding {
    std::string_view name; ///< lower case
    Encoding encoding;
};

// Names without an order mean big-endian when there is no mark.
constexpr NamedEncoding namedEncodings[] = {
    {"utf-8", Encoding::utf8},           {"utf8", Encoding::utf8},
    {"utf-16", Encoding::utf16Big},      {"utf-16be", Encoding::utf16Big},
    {"utf-16le", Encoding::utf16Little}, {"utf-32", Encoding::utf32Big},
    {"utf-32be", Encoding::utf32Big},    {"utf-32le", Encoding::utf32Little},
    {"iso-8859-1", Encoding::latin1},    {"iso_8859-1", Encoding::latin1},
    {"latin1", Encoding::latin1},        {"us-ascii", Encoding::latin1},
    {"ascii", Encoding::latin1},         {"windows-1252", Encoding::windows1252},
    {"cp1252", Encoding::windows1252},
};

struct ByteOrderMark {
    std::string_view bytes;
    Encoding encoding;
};

using namespace std::string_view_literals;

/// The long ones first: the mark of UTF-32 begins with that of UTF-16.
constexpr ByteOrderMark byteOrderMarks[] = {
    {"\xFF\xFE\0\0"sv, Encoding::utf32Little}, {"\0\0\xFE\xFF"sv, Encoding::utf32Big},
    {"\xEF\xBB\xBF"sv, Encoding::utf8},        {"\xFF\xFE"sv, Encoding::utf16Little},
    {"\xFE\xFF"sv, Encoding::utf16Big},
};

/// Bytes 80 to 9F; those that the encoding leaves undefined are the control of the same number.
constexpr char16_t windows1252High[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

char lowerCase(char character) noexcept {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character + ('a' - 'A')) : character;
}

Encoding encodingNamed(std::string_view name) noexcept {
    for (const NamedEncoding& known : namedEncodings) {
        bool isSame = known.name.size() == name.size();
        for (std::size_t index = 0; isSame && index < name.size(); ++index) {
            isSame = lowerCase(name[index]) == known.name[index];
        }
        if (isSame) {
            return known.encoding;
        }
    }
    return Encoding::unknown;
}

/// The encoding that the XML declaration at the start of the bytes names; UTF-8 when there is none.
Encoding declaredEncoding(std::string_view bytes) noexcept {
    constexpr std::string_view blanks = " \t\r\n";
    // Only at the very start, where the declaration must be.
    if (!bytes.starts_with("<?xml")) {
        return Encoding::utf8;
    }
    const std::string_view declaration = bytes.substr(0, bytes.find("?>"));
    const std::size_t attribute = declaration.find("encoding");
    if (attribute == declaration.npos) {
        return Encoding::utf8;
    }
    const std::size_t equals = declaration.find_first_not_of(blanks, attribute + 8);
    if (equals == declaration.npos || declaration[equals] != '=') {
        return Encoding::utf8;
    }
    const std::size_t quote = declaration.find_first_not_of(blanks, equals + 1);
    if (quote == declaration.npos || (declaration[quote] != '"' && declaration[quote] != '\'')) {
        return Encoding::utf8;
    }
    const std::size_t closing = declaration.find(declaration[quote], quote + 1);
    if (closing == declaration.npos) {
        return Encoding::utf8;
    }
    return encodingNamed(declaration.substr(quote + 1, closing - quote - 1));
}

bool fail(PropertyListError& error, const char* message, std::size_t byte) noexcept {
    error = {message, 0, byte};
    return false;
}

bool useUtf8(std::string_view bytes, DecodedText& text, PropertyListError& error) {
    // The offset of the first bad byte becomes the place of the error.
    const std::size_t good = wellFormedUtf8Prefix(bytes.data(), bytes.size());
    if (good != bytes.size()) {
        error.message = "The text is not well-formed UTF-8";
        locate(bytes.data(), bytes.data() + good, error);
        return false;
    }
    text.utf8 = bytes.data();
    text.count = bytes.size();
    return true;
}

bool decodeUtf16(std::string_view bytes, bool isLittle, DecodedText& text, PropertyListError& error) {
    if (bytes.size() % 2 != 0) {
        return fail(error, "The text ends inside a UTF-16 unit", bytes.size());
    }
    text.count = bytes.size() / 2;
    text.units.reset(new char16_t[text.count]);
    // The index of the high byte; the low one is the other.
    const unsigned high = isLittle ? 1 : 0;
    for (std::size_t index = 0; index < text.count; ++index) {
        const unsigned first = unitNumber(bytes[2 * index + high]);
        const unsigned second = unitNumber(bytes[2 * index + 1 - high]);
        text.units[index] = static_cast<char16_t>(first << 8 | second);
    }
    const char16_t* units = text.units.get();
    if (isWellFormedUtf16(units, text.count)) {
        return true;
    }
    error.message = "The text is not well-formed UTF-16";
    locate(units, units + pairedPrefix(units, text.count), error);
    return false;
}

bool decodeUtf32(std::string_view bytes, bool isLittle, DecodedText& text, PropertyListError& error) {
    if (bytes.size() % 4 != 0) {
        return fail(error, "The text ends inside a UTF-32 unit", bytes.size());
    }
    // UTF-32 is converted completely, since the readers have no form for it.
    text.units.reset(new char16_t[bytes.size() / 2]); // at most two for each four bytes
    for (std::size_t start = 0; start < bytes.size(); start += 4) {
        std::uint32_t character = 0;
        for (std::size_t index = 0; index < 4; ++index) {
            character = character << 8 | unitNumber(bytes[start + (isLittle ? 3 - index : index)]);
        }
        if (character > 0x10FFFF || isSurrogate(character)) {
            return fail(error, "The text is not well-formed UTF-32", start);
        }
        if (character >= 0x10000) {
            // 0xD7C0 is 0xD800 less 0x10000 >> 10.
            text.units[text.count++] = static_cast<char16_t>(0xD7C0 + (character >> 10));
            character = 0xDC00 | (character & 0x3FF);
        }
        text.units[text.count++] = static_cast<char16_t>(character);
    }
    return true;
}

bool decodeSingleBytes(std::string_view bytes, bool isWindows, DecodedText& text) {
    // ASCII is UTF-8 already, so nothing is copied.
    if (asciiPrefixLength(bytes.data(), bytes.size()) == bytes.size()) {
        text.utf8 = bytes.data();
        text.count = bytes.size();
        return true;
    }
    text.count = bytes.size();
    text.units.reset(new char16_t[bytes.size()]);
    widenAscii(bytes.data(), bytes.size(), text.units.get());
    for (std::size_t index = 0; isWindows && index < text.count; ++index) {
        const char16_t unit = text.units[index];
        if (unit >= 0x80 && unit < 0xA0) {
            text.units[index] = windows1252High[unit - 0x80];
        }
    }
    return true;
}

/// UTF-8 is used where it is; text in any other encoding is converted to units.
bool decode(std::string_view bytes, Encoding encoding, DecodedText& text, PropertyListError& error) {
    switch (encoding) {
    case Encoding::utf8:
        return useUtf8(bytes, text, error);
    case Encoding::utf16Big:
        return decodeUtf16(bytes, false, text, error);
    case Encoding::utf16Little:
        return decodeUtf16(bytes, true, text, error);
    case Encoding::utf32Big:
        return decodeUtf32(bytes, false, text, error);
    case Encoding::utf32Little:
        return decodeUtf32(bytes, true, text, error);
    case Encoding::latin1:
        return decodeSingleBytes(bytes, false, text);
    case Encoding::windows1252:
        return decodeSingleBytes(bytes, true, text);
    case Encoding::unknown:
        break;
    }
    return fail(error, "The declared text encoding is not known", 0);
}

/// The encoding of the mark at the start, which is dropped; unknown without one.
Encoding takeByteOrderMark(std::string_view& bytes) noexcept {
    for (const ByteOrderMark& mark : byteOrderMarks) {
        if (bytes.starts_with(mark.bytes)) {
            bytes.remove_prefix(mark.bytes.size());
            return mark.encoding;
        }
    }
    return Encoding::unknown;
}

std::string_view viewOf(const unsigned char* bytes, std::size_t count) noexcept {
    return count == 0 ? std::string_view("") : std::string_view(reinterpret_cast<const char*>(bytes), count);
}

} // namespace

bool decodeText(const unsigned char* bytes, std::size_t count, DecodedText& text, PropertyListError& error) {
    std::string_view rest = viewOf(bytes, count);
    const Encoding marked = takeByteOrderMark(rest);
    // A mark is evidence, a declaration only a claim.
    return decode(rest, marked != Encoding::unknown ? marked : declaredEncoding(rest), text, error);
}

bool decodeStringsText(const unsigned char* bytes, std::size_t count, DecodedText& text,
                       PropertyListError& error) {
    const std::string_view whole = viewOf(bytes, count);
    std::string_view rest = whole;
    const bool isMarked = takeByteOrderMark(rest) != Encoding::unknown;
    // Text in UTF-8 has no zeros; a file without any, or with a declaration, is taken as text in bytes.
    const bool isPlain = whole.find('\0') == whole.npos &&
                         (whole.starts_with("<?xml") || isWellFormedUtf8(whole.data(), whole.size()));
    if (isMarked || isPlain || whole.size() % 2 != 0 || whole.empty()) {
        return decodeText(bytes, count, text, error);
    }
    // Most characters of such tables are ASCII, so the place of the zero shows the order.
    return decodeUtf16(whole, whole[1] == '\0', text, error);
}

} // namespace ZQFoundation::detail
