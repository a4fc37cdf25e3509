// SPDX-License-Identifier: MIT
// Writes and reads percent escapes.
// Escaping computes the exact length first and then writes without checks; unescaping checks everything.
#include "foundation/objects/PercentEscapes.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "foundation/objects/CharacterSetPages.h"
#include "foundation/objects/StringBodies.h"
#include "foundation/objects/TextBuilder.h"
#include "foundation/text/Surrogates.h"
#include "foundation/text/Utf.h"

namespace ZQFoundation::detail {

namespace {

constexpr std::size_t escapeLength = 3;

/// The initial table: a copy is made faster than a new one.
constexpr EscapeTable everyEscape;

static_assert(sizeof(EscapeTable::Form) == escapeLength + 1);

/// Writes a whole form; the next one overwrites any excess. There is no branch on the length: it would be
/// mispredicted at every space of a text.
inline char* writeByte(std::size_t byte, const EscapeTable& table, char* out) noexcept {
    std::memcpy(out, &table[byte], sizeof(EscapeTable::Form));
    return out + table[byte].length;
}

/// The same for a byte from 0x80 on.
inline char* writeEscape(std::size_t byte, const EscapeTable& table, char* out) noexcept {
    std::memcpy(out, &table[byte], sizeof(EscapeTable::Form));
    return out + escapeLength;
}

inline const char* writeCharacter(const char* ascii, const EscapeTable& table, char*& out) noexcept {
    out = writeByte(static_cast<unsigned char>(*ascii), table, out);
    return ascii + 1;
}

/// The units are well-formed; writes at most as many escapes as a character has bytes.
inline const char16_t* writeCharacter(const char16_t* units, const EscapeTable& table, char*& out) noexcept {
    char32_t code = *units++;
    if (code < 0x80) {
        out = writeByte(code, table, out);
        return units;
    }
    if (code < 0x800) {
        out = writeEscape(0xC0 | code >> 6, table, out);
    } else {
        if (isHighSurrogate(code)) {
            code = 0x10000 + ((code - 0xD800) << 10) + (*units++ - 0xDC00U);
            out = writeEscape(0xF0 | code >> 18, table, out);
            out = writeEscape(0x80 | (code >> 12 & 0x3F), table, out);
        } else {
            out = writeEscape(0xE0 | code >> 12, table, out);
        }
        out = writeEscape(0x80 | (code >> 6 & 0x3F), table, out);
    }
    out = writeEscape(0x80 | (code & 0x3F), table, out);
    return units;
}

/// Writes exactly the escaped text. The last few characters go through a separate buffer, since the room for
/// a piece may end with them.
template <class Unit>
void writeEscaped(const Unit* text, std::size_t count, const EscapeTable& table, char* out) noexcept {
    // A form writes four bytes, of which up to three are excess, so the last characters must not be written
    // in place.
    constexpr std::size_t maxDistance = sizeof(EscapeTable::Form) + 1; // one more if a pair is last
    const Unit* const end = text + count;
    while (static_cast<std::size_t>(end - text) > maxDistance) {
        text = writeCharacter(text, table, out);
    }
    char apart[maxDistance * 3 * escapeLength + sizeof(EscapeTable::Form)];
    // The same function writes them here, where excess does no harm.
    char* apartEnd = apart;
    while (text != end) {
        text = writeCharacter(text, table, apartEnd);
    }
    std::memcpy(out, apart, static_cast<std::size_t>(apartEnd - apart));
}

std::size_t escapedLength(const char* ascii, std::size_t count, const EscapeTable& table) noexcept {
    std::size_t length = 0;
    for (std::size_t i = 0; i < count; ++i) {
        length += table[static_cast<unsigned char>(ascii[i])].length;
    }
    return length;
}

/// The units are well-formed: each half of a pair makes two bytes.
std::size_t escapedLength(const char16_t* units, std::size_t count, const EscapeTable& table) noexcept {
    std::size_t length = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const char16_t unit = units[i];
        const bool makesThree = unit >= 0x800 && !isSurrogate(unit);
        length += unit < 0x80 ? table[unit].length : escapeLength * (makesThree ? 3 : 2);
    }
    return length;
}

template <class Unit>
NSString escaped(const Unit* text, std::size_t count, std::size_t length, const EscapeTable& table) {
    StringBody* const body = allocateString(length, true);
    writeEscaped(text, count, table, body->ascii());
    return Access::adoptString(body);
}

// A text without escapes to make is shared.
NSString escapedAscii(const NSString& text, StringView view, const EscapeTable& table) {
    const std::size_t length = escapedLength(view.bytes(), view.size(), table);
    return length == view.size() ? text : escaped(view.bytes(), view.size(), length, table);
}

NSString escapedUnits(StringView view, const EscapeTable& table) {
    // An unpaired surrogate has no UTF-8.
    if (!isWellFormedUtf16(view.units(), view.size())) {
        return {};
    }
    return escaped(view.units(), view.size(), escapedLength(view.units(), view.size(), table), table);
}

struct HexValues {
    static constexpr unsigned char none = 0xFF;
    unsigned char values[256];

    constexpr HexValues() : values() {
        for (unsigned char& value : values) {
            value = none;
        }
        for (unsigned char value = 0; value < 16; ++value) {
            values[static_cast<unsigned char>(upperHexDigits[value])] = value;
            values[static_cast<unsigned char>(lowerHexDigits[value])] = value;
        }
    }

    template <class Unit>
    constexpr unsigned of(Unit unit) const noexcept {
        const auto code = static_cast<std::make_unsigned_t<Unit>>(unit);
        return code < 256 ? values[code] : none;
    }
};

constexpr HexValues hexValues;

/// Reads the two digits after a "%". False if they are not digits, or are not both present.
template <class Unit>
bool readEscape(const Unit* at, const Unit* end, char& byte) noexcept {
    if (end - at < static_cast<std::ptrdiff_t>(escapeLength)) {
        return false;
    }
    const unsigned high = hexValues.of(at[1]);
    const unsigned low = hexValues.of(at[2]);
    byte = static_cast<char>(high << 4 | low);
    return high != HexValues::none && low != HexValues::none;
}

NSString unescapedAscii(const NSString& text, StringView view) {
    const char* at = view.bytes();
    const char* const end = at + view.size();
    if (std::memchr(at, '%', view.size()) == nullptr) {
        return text;
    }
    StringBody* const body = allocateString(view.size(), true);
    const NSString owner = Access::adoptString(body); // not shared until it is known to be ASCII
    char* out = body->ascii();
    while (at != end) {
        if (*at != '%') {
            *out++ = *at++;
        } else if (readEscape(at, end, *out)) {
            ++out;
            at += escapeLength;
        } else {
            return {};
        }
    }
    const auto size = static_cast<std::size_t>(out - body->ascii());
    if (asciiPrefixLength(body->ascii(), size) != size) {
        return NSString::stringWithUTF8Bytes(body->ascii(), size);
    }
    if (view.size() - size > size / 2 + 64) {
        return makeAsciiString(body->ascii(), size); // which takes much less memory
    }
    body->setForm(size, true, false);
    return owner;
}

/// The text around a run of escapes consists of whole characters, so the bytes of a run must, too.
NSString unescapedUnits(const NSString& text, StringView view) {
    const char16_t* at = view.units();
    const char16_t* const end = at + view.size();
    const char16_t* mark = std::find(at, end, u'%');
    if (mark == end) {
        return text;
    }
    TextBuilder out;
    std::string run;
    while (mark != end) {
        out.appendUnits(at, static_cast<std::size_t>(mark - at));
        run.clear();
        for (at = mark; at != end && *at == u'%'; at += escapeLength) {
            char byte = 0;
            if (!readEscape(at, end, byte)) {
                return {};
            }
            run.push_back(byte);
        }
        if (!isWellFormedUtf8(run.data(), run.size())) {
            return {};
        }
        out.appendUtf8(run.data(), run.size());
        mark = std::find(at, end, u'%');
    }
    out.appendUnits(at, static_cast<std::size_t>(end - at));
    return out.string();
}

} // namespace

NSString addPercentEscapes(const NSString& text, const EscapeTable& table) {
    const StringView view(text);
    switch (view.form()) {
    case StringView::Form::ascii:
        return escapedAscii(text, view, table);
    case StringView::Form::utf16:
        return escapedUnits(view, table);
    default:
        return {};
    }
}

NSString removePercentEscapes(const NSString& text) {
    const StringView view(text);
    switch (view.form()) {
    case StringView::Form::ascii:
        return unescapedAscii(text, view);
    case StringView::Form::utf16:
        return unescapedUnits(text, view);
    default:
        return {};
    }
}

} // namespace ZQFoundation::detail

namespace ZQFoundation {

NSString NSString::stringByAddingPercentEncodingWithAllowedCharacters(const NSCharacterSet& allowed) const {
    const detail::CharacterMembership members(allowed);
    // Starts from the table in which everything is escaped; only ASCII members are kept.
    detail::EscapeTable table = detail::everyEscape;
    for (unsigned char code = 0; code < 0x80; ++code) {
        if (members.contains(static_cast<char>(code))) {
            table.keep(code);
        }
    }
    return detail::addPercentEscapes(*this, table);
}

} // namespace ZQFoundation
