// SPDX-License-Identifier: MIT
// Appends text that is neither ASCII nor well-formed UTF-8 to builders of UTF-8.
#include <cstring>

#include "foundation/objects/StringBodies.h"
#include "foundation/objects/TextBuilder.h"
#include "foundation/text/Surrogates.h"
#include "foundation/text/Utf.h"

// An unpaired surrogate is kept in the text as the three bytes that it would have if it were a character: ED,
// then A0 to AF for the first half of a pair, B0 to BF for the second one. No other UTF-8 has this form.

namespace ZQFoundation::detail {

namespace {

constexpr std::size_t surrogateBytes = 3;

bool isSurrogateAt(const char* bytes) noexcept {
    return bytes[0] == '\xED' && static_cast<unsigned char>(bytes[1]) >= 0xA0;
}

char16_t surrogateAt(const char* bytes) noexcept {
    return static_cast<char16_t>(0xD000 | (bytes[1] & 0x3F) << 6 | (bytes[2] & 0x3F));
}

/// The first unpaired surrogate, or `end`.
const char* nextSurrogate(const char* at, const char* end) noexcept {
    while (end - at >= static_cast<std::ptrdiff_t>(surrogateBytes)) {
        at = static_cast<const char*>(std::memchr(at, 0xED, static_cast<std::size_t>(end - at)));
        if (at == nullptr) {
            return end;
        }
        if (isSurrogateAt(at)) {
            return at;
        }
        ++at;
    }
    return end;
}

/// The number of units in the text; also writes them, unless `out` is null.
/// Called twice, for the length and then for the units.
std::size_t decode(const char* at, const char* end, char16_t* out) noexcept {
    std::size_t units = 0;
    while (at != end) {
        const char* const surrogate = nextSurrogate(at, end);
        const auto plain = static_cast<std::size_t>(surrogate - at);
        if (out != nullptr) {
            utf8ToUtf16(at, plain, out + units, IllFormed::replace);
        }
        units += utf16Length(at, plain, IllFormed::replace);
        at = surrogate;
        if (at != end) {
            if (out != nullptr) {
                out[units] = surrogateAt(at);
            }
            ++units;
            at += surrogateBytes;
        }
    }
    return units;
}

} // namespace

void TextBuilder::appendUnitsAsUtf8(const char16_t* units, std::size_t count) {
    if (!isWellFormedUtf16(units, count)) {
        return appendWithSurrogates(units, count);
    }
    const std::size_t more = utf8Length(units, count, IllFormed::replace);
    makeRoom(more);
    utf16ToUtf8(units, count, bytes() + length_, IllFormed::replace);
    length_ += more;
}

void TextBuilder::appendWithSurrogates(const char16_t* units, std::size_t count) {
    while (count != 0) {
        const std::size_t paired = pairedPrefix(units, count);
        appendUnits(units, paired);
        if (paired == count) {
            return;
        }
        appendSurrogate(units[paired]);
        units += paired + 1;
        count -= paired + 1;
    }
}

// Two appends may bring the halves of a pair together: then they become the character they mean.
void TextBuilder::appendSurrogate(char16_t surrogate) {
    // The last three bytes, if they are a surrogate at all; thanks to the flag, most texts skip this look.
    const char* const last = length_ >= surrogateBytes ? bytes() + length_ - surrogateBytes : nullptr;
    if (hasUnpaired_ && last != nullptr && isSurrogateAt(last) && isHighSurrogate(surrogateAt(last)) &&
        isLowSurrogate(surrogate)) {
        const char16_t pair[] = {surrogateAt(last), surrogate};
        length_ -= surrogateBytes;
        return appendUnitsAsUtf8(pair, 2);
    }
    const char encoded[surrogateBytes] = {'\xED', static_cast<char>(0x80 | (surrogate >> 6 & 0x3F)),
                                          static_cast<char>(0x80 | (surrogate & 0x3F))};
    appendAscii(encoded, surrogateBytes);
    hasUnpaired_ = true;
}

/// Converts piece by piece through units, which replaces what is ill-formed. No piece ends within a sequence:
/// at most three bytes of one follow its first, and a byte after more of them is one by itself.
void TextBuilder::appendIllFormed(const char* bytes, std::size_t count) {
    constexpr std::size_t maxPiece = 128;
    constexpr std::size_t maxSequenceBytes = 4;
    char16_t units[maxPiece];
    while (count != 0) {
        std::size_t piece = count < maxPiece ? count : maxPiece;
        for (std::size_t back = 1; piece < count && back < maxSequenceBytes && (bytes[piece] & 0xC0) == 0x80;
             ++back) {
            --piece;
        }
        const char16_t* const end = utf8ToUtf16(bytes, piece, units, IllFormed::replace);
        appendUnits(units, static_cast<std::size_t>(end - units));
        bytes += piece;
        count -= piece;
    }
}

// Both forms have three bytes, so this needs no memory and moves nothing.
void TextBuilder::replaceUnpairedSurrogates() noexcept {
    if (!hasUnpaired_) {
        return;
    }
    char* const end = bytes() + length_;
    for (char* at = bytes();; at += surrogateBytes) {
        at += nextSurrogate(at, end) - at;
        if (at == end) {
            return;
        }
        std::memcpy(at, "\xEF\xBF\xBD", surrogateBytes);
    }
}

NSString TextBuilder::signalSafeString(std::size_t start) const {
    const char* const text = static_cast<const char*>(data_) + start;
    const std::size_t count = length_ - start;
    const bool isAscii = asciiPrefixLength(text, count) == count;
    const std::size_t length = isAscii ? count : decode(text, text + count, nullptr);
    StringBody* const body = allocateSignalSafeString(length, isAscii);
    if (isAscii) {
        std::memcpy(body->ascii(), text, count);
    } else {
        decode(text, text + count, body->units());
    }
    return Access::adoptString(body);
}

} // namespace ZQFoundation::detail
