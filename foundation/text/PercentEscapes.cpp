// SPDX-License-Identifier: MIT
#include "foundation/text/PercentEscapes.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "foundation/objects/StringBodies.h"
#include "foundation/objects/TextBuilder.h"
#include "foundation/text/CharacterSetPages.h"
#include "foundation/text/Utf.h"

namespace ZQFoundation {

namespace detail {

namespace {

constexpr std::size_t escapeLength = 3;
constexpr char hexDigits[] = "0123456789ABCDEF";

std::size_t countOfOthers(const char* bytes, std::size_t count, const AsciiSet& kept) noexcept {
    std::size_t others = 0;
    for (std::size_t i = 0; i < count; ++i) {
        others += kept.contains(static_cast<unsigned char>(bytes[i])) ? 0 : 1;
    }
    return others;
}

/// Writes escapes and members alike as three bytes, of which the next ones overwrite what is too much: a
/// branch for each byte would be guessed wrongly at every blank of a text. `end` is where the room ends.
char* writeEscaped(const char* bytes, std::size_t count, const AsciiSet& kept, char* out,
                   const char* end) noexcept {
    std::size_t i = 0;
    for (; i < count && static_cast<std::size_t>(end - out) >= escapeLength; ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        const bool stays = kept.contains(byte);
        out[0] = stays ? bytes[i] : '%';
        out[1] = hexDigits[byte >> 4];
        out[2] = hexDigits[byte & 15];
        out += stays ? 1 : escapeLength;
    }
    for (; i < count; ++i) { // no room for an escape, so there is none any more
        *out++ = bytes[i];
    }
    return out;
}

/// Hands the UTF-8 form of well-formed units over piece by piece.
template <class Take>
void forEachPiece(const char16_t* units, std::size_t count, const Take& take) {
    constexpr std::size_t mostUnits = 1024;
    char bytes[3 * mostUnits];
    while (count != 0) {
        std::size_t piece = std::min(count, mostUnits);
        const bool cutsPair = piece < count && (units[piece - 1] & 0xFC00) == 0xD800;
        piece -= cutsPair ? 1 : 0;
        const char* const end = utf16ToUtf8(units, piece, bytes, IllFormed::replace);
        take(bytes, static_cast<std::size_t>(end - bytes));
        units += piece;
        count -= piece;
    }
}

NSString escapedAscii(const NSString& text, StringView view, const AsciiSet& kept) {
    const std::size_t others = countOfOthers(view.bytes(), view.size(), kept);
    if (others == 0) {
        return text;
    }
    const std::size_t length = view.size() + (escapeLength - 1) * others;
    StringBody* const body = allocateString(length, true);
    writeEscaped(view.bytes(), view.size(), kept, body->ascii(), body->ascii() + length);
    return Access::adoptString(body);
}

NSString escapedUnits(StringView view, const AsciiSet& kept) {
    if (!isWellFormedUtf16(view.units(), view.size())) {
        return {};
    }
    std::size_t length = 0;
    forEachPiece(view.units(), view.size(), [&](const char* bytes, std::size_t count) {
        length += count + (escapeLength - 1) * countOfOthers(bytes, count, kept);
    });
    StringBody* const body = allocateString(length, true);
    char* out = body->ascii();
    const char* const end = out + length;
    forEachPiece(view.units(), view.size(), [&](const char* bytes, std::size_t count) {
        out = writeEscaped(bytes, count, kept, out, end);
    });
    return Access::adoptString(body);
}

struct HexValues {
    static constexpr unsigned char none = 0xFF;
    unsigned char values[256];

    constexpr HexValues() : values() {
        for (unsigned char& value : values) {
            value = none;
        }
        for (unsigned char value = 0; value < 16; ++value) {
            values[static_cast<unsigned char>(hexDigits[value])] = value;
            values[static_cast<unsigned char>("0123456789abcdef"[value])] = value;
        }
    }

    template <class Unit>
    constexpr unsigned of(Unit unit) const noexcept {
        const auto code = static_cast<std::make_unsigned_t<Unit>>(unit);
        return code < 256 ? values[code] : none;
    }
};

constexpr HexValues hexValues;

/// Reads the two digits behind a "%". False when they are none, or not both there.
template <class Unit>
bool readEscape(const Unit* at, const Unit* end, char& byte) noexcept {
    if (end - at < static_cast<std::ptrdiff_t>(escapeLength)) {
        return false;
    }
    const unsigned high = hexValues.of(at[1]);
    const unsigned low = hexValues.of(at[2]);
    byte = static_cast<char>(high << 4 | low);
    return (high | low) != HexValues::none && high != HexValues::none && low != HexValues::none;
}

NSString unescapedAscii(const NSString& text, StringView view) {
    const char* at = view.bytes();
    const char* const end = at + view.size();
    const auto escapes = static_cast<std::size_t>(std::count(at, end, '%'));
    if (escapes == 0) {
        return text;
    }
    if (escapes > view.size() / escapeLength) {
        return {};
    }
    const std::size_t size = view.size() - (escapeLength - 1) * escapes;
    StringBody* const body = allocateString(size, true);
    const NSString owner = Access::adoptString(body); // seen by nobody else until it is known to be ASCII
    char* out = body->ascii();
    for (std::size_t escape = 0; escape < escapes; ++escape) {
        const auto* const mark =
            *at == '%' ? at
                       : static_cast<const char*>(std::memchr(at, '%', static_cast<std::size_t>(end - at)));
        std::memcpy(out, at, static_cast<std::size_t>(mark - at));
        out += mark - at;
        if (!readEscape(mark, end, *out)) {
            return {};
        }
        ++out;
        at = mark + escapeLength;
    }
    std::memcpy(out, at, static_cast<std::size_t>(end - at));
    return asciiPrefixLength(body->ascii(), size) == size
               ? owner
               : NSString::stringWithUTF8Bytes(body->ascii(), size);
}

/// What stands beside a run of escapes is whole characters, so the bytes of a run must be so too.
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

NSString addPercentEscapes(const NSString& text, const AsciiSet& kept) {
    const StringView view(text);
    switch (view.form()) {
    case StringView::Form::ascii:
        return escapedAscii(text, view, kept);
    case StringView::Form::utf16:
        return escapedUnits(view, kept);
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

} // namespace detail

NSString NSString::stringByAddingPercentEncodingWithAllowedCharacters(const NSCharacterSet& allowed) const {
    const detail::CharacterSetBody& body = detail::bodyOrEmpty(allowed);
    const std::uint64_t* const words = body.pages()[body.numbers[0]].words;
    return detail::addPercentEscapes(*this, detail::AsciiSet(words[0], words[1]));
}

} // namespace ZQFoundation
