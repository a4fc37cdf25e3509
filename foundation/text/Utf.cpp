// SPDX-License-Identifier: MIT
// Converts UTF-8 and UTF-16, in blocks where all is ASCII.
// Text from files, the system and hosts passes through here, and nearly all of it is ASCII: that path
// decides the speed.
#include "foundation/text/Utf.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "foundation/text/Surrogates.h"

namespace ZQFoundation::detail {

namespace {

constexpr char16_t replacementUnit = 0xFFFD;
/// Low surrogates from U+DC80 up represent the bytes of a file name that are not UTF-8.
constexpr char32_t escapeBase = 0xDC00;

// ASCII goes by blocks that are tested with a few word operations and then copied by a loop of fixed length,
// which compilers turn into vector instructions at every level of optimization.
constexpr std::size_t blockLength = 32;
constexpr std::uint64_t nonAsciiBytes = 0x8080808080808080;
constexpr std::uint64_t nonAsciiUnits = 0xFF80FF80FF80FF80;

template <class Unit>
constexpr std::uint64_t nonAsciiMask = sizeof(Unit) == 1 ? nonAsciiBytes : nonAsciiUnits;

template <class Unit>
constexpr bool isAscii(Unit unit) {
    return (unit & ~0x7F) == 0;
}

// The bytes may have any address, which a plain access may not.
template <class Unit>
inline std::uint64_t loadWord(const Unit* from) {
    std::uint64_t word;
    std::memcpy(&word, from, sizeof word);
    return word;
}

template <class Unit>
inline bool isAsciiBlock(const Unit* block) {
    constexpr std::size_t perWord = sizeof(std::uint64_t) / sizeof(Unit);
    std::uint64_t gathered = 0;
    // Gathered without a branch: one test for a block.
    for (std::size_t i = 0; i < blockLength; i += perWord) {
        gathered |= loadWord(block + i);
    }
    return (gathered & nonAsciiMask<Unit>) == 0;
}

template <std::size_t length, class From, class To>
inline void copyPiece(const From* __restrict from, To* __restrict to) {
    for (std::size_t i = 0; i < length; ++i) {
        to[i] = static_cast<To>(from[i]);
    }
}

// Compilers unroll and vectorize pieces of fixed lengths; a loop to `count` they vectorize only at the
// highest level of optimization.
template <class From, class To>
void copyAscii(const From* from, std::size_t count, To* to) {
    constexpr std::size_t perWord = 8;
    std::size_t at = 0;
    for (; count - at >= blockLength; at += blockLength) {
        copyPiece<blockLength>(from + at, to + at);
    }
    for (; count - at >= perWord; at += perWord) {
        copyPiece<perWord>(from + at, to + at);
    }
    for (; at < count; ++at) {
        to[at] = static_cast<To>(from[at]);
    }
}

// Blocks, then words, then units: texts are often short, so the steps in between matter.
template <class Unit>
std::size_t asciiPrefix(const Unit* text, std::size_t count) {
    constexpr std::size_t perWord = sizeof(std::uint64_t) / sizeof(Unit);
    std::size_t at = 0;
    while (count - at >= blockLength && isAsciiBlock(text + at)) {
        at += blockLength;
    }
    while (count - at >= perWord && (loadWord(text + at) & nonAsciiMask<Unit>) == 0) {
        at += perWord;
    }
    while (at < count && isAscii(text[at])) {
        ++at;
    }
    return at;
}

/// Whether enough ASCII follows that processing it in blocks pays off; between words of other scripts there
/// is a space at a time.
template <class Unit>
inline bool isAsciiStretch(const Unit* text, std::size_t count) {
    constexpr std::size_t shortest = 8;
    constexpr std::size_t perWord = sizeof(std::uint64_t) / sizeof(Unit);
    if (count < shortest) {
        return false;
    }
    std::uint64_t gathered = 0;
    for (std::size_t i = 0; i < shortest; i += perWord) {
        gathered |= loadWord(text + i);
    }
    return (gathered & nonAsciiMask<Unit>) == 0;
}

// Testing and copying in two loops keeps both simple enough for every compiler; the piece between them stays
// in the nearest cache.
constexpr std::size_t maxPieceBytes = 4096;

// ---- UTF-8, one sequence at a time

inline bool isContinuation(unsigned char byte) { return (byte & 0xC0) == 0x80; }

inline char32_t payload(unsigned char continuation) { return continuation & 0x3Fu; }

/// Whether `second` can follow `lead` in a well-formed sequence of three or four bytes. The ranges exclude
/// overlong forms, surrogates and what lies above U+10FFFF.
bool isSecondOf(unsigned char lead, unsigned char second) {
    switch (lead) {
    case 0xE0:
        return second >= 0xA0 && second <= 0xBF;
    case 0xED:
        return second >= 0x80 && second <= 0x9F;
    case 0xF0:
        return second >= 0x90 && second <= 0xBF;
    case 0xF4:
        return second >= 0x80 && second <= 0x8F;
    default:
        return lead >= 0xE1 && lead <= 0xF3 && isContinuation(second);
    }
}

/// Reads the sequence at a byte that is not ASCII. Returns its length, or 0 for an ill-formed one.
inline unsigned readSequence(const unsigned char* at, std::size_t left, char32_t& codePoint) {
    const unsigned char lead = at[0];
    // C0 and C1 would be overlong, so the range begins at C2.
    if (lead >= 0xC2 && lead <= 0xDF && left >= 2 && isContinuation(at[1])) {
        codePoint = (lead & 0x1Fu) << 6 | payload(at[1]);
        return 2;
    }
    if ((lead & 0xF0) == 0xE0 && left >= 3 && isSecondOf(lead, at[1]) && isContinuation(at[2])) {
        codePoint = (lead & 0x0Fu) << 12 | payload(at[1]) << 6 | payload(at[2]);
        return 3;
    }
    // Lead bytes above F4 are excluded by `isSecondOf`.
    if (lead >= 0xF0 && left >= 4 && isSecondOf(lead, at[1]) && isContinuation(at[2]) &&
        isContinuation(at[3])) {
        const char32_t high = (lead & 0x07u) << 18 | payload(at[1]) << 12;
        codePoint = high | payload(at[2]) << 6 | payload(at[3]);
        return 4;
    }
    return 0;
}

/// Length of the maximal subpart where readSequence() found nothing.
unsigned illFormedLength(const unsigned char* at, std::size_t left) {
    // A sequence of two bytes that fails has an ill-formed second byte, so its lead alone is the subpart.
    if (left < 2 || !isSecondOf(at[0], at[1])) {
        return 1;
    }
    const bool ofFour = at[0] >= 0xF0;
    return ofFour && left > 2 && isContinuation(at[2]) ? 3 : 2;
}

/// Walks over UTF-8 and hands it to `sink`: ascii() takes ASCII as far as it wants and says how much,
/// character() a code point, illFormed() the bytes of a maximal subpart. Counting and writing share this
/// walk, so that lengths and contents cannot disagree.
template <class Sink>
void decode(const char* utf8, std::size_t count, Sink& sink) {
    const char* at = utf8;
    const char* const end = utf8 + count;
    while (at != end) {
        const auto* bytes = reinterpret_cast<const unsigned char*>(at);
        const auto left = static_cast<std::size_t>(end - at);
        if (isAscii(*at)) {
            if (isAsciiStretch(at, left)) {
                at += sink.ascii(at, left);
            } else {
                sink.character(*bytes);
                ++at;
            }
            continue;
        }
        char32_t codePoint = 0;
        unsigned length = readSequence(bytes, left, codePoint);
        if (length != 0) {
            sink.character(codePoint);
        } else {
            length = illFormedLength(bytes, left);
            sink.illFormed(bytes, length);
        }
        at += length;
    }
}

struct UnitCounter {
    IllFormed policy;
    std::size_t units = 0;
    bool isWellFormed = true;

    std::size_t ascii(const char* bytes, std::size_t count) {
        const std::size_t length = asciiPrefix(bytes, count);
        units += length;
        return length;
    }
    void character(char32_t codePoint) { units += codePoint > 0xFFFF ? 2 : 1; }
    void illFormed(const unsigned char*, unsigned length) {
        isWellFormed = false;
        units += policy == IllFormed::replace ? 1 : length;
    }
};

struct UnitWriter {
    IllFormed policy;
    char16_t* out;

    std::size_t ascii(const char* bytes, std::size_t count) {
        // Limited, so that the tested piece is still in the cache when it is copied.
        const std::size_t length = asciiPrefix(bytes, std::min(count, maxPieceBytes));
        widenAscii(bytes, length, out);
        out += length;
        return length;
    }
    void character(char32_t codePoint) {
        // 0xD7C0 is 0xD800 less 0x10000 >> 10.
        if (codePoint > 0xFFFF) {
            *out++ = static_cast<char16_t>(0xD7C0 + (codePoint >> 10));
            *out++ = static_cast<char16_t>(0xDC00 | (codePoint & 0x3FF));
        } else {
            *out++ = static_cast<char16_t>(codePoint);
        }
    }
    void illFormed(const unsigned char* bytes, unsigned length) {
        if (policy == IllFormed::replace) {
            *out++ = replacementUnit;
            return;
        }
        // Each byte by itself: this way any bytes come back.
        for (unsigned i = 0; i < length; ++i) {
            *out++ = static_cast<char16_t>(escapeBase + bytes[i]);
        }
    }
};

// ---- UTF-16, one character at a time

inline bool hasSurrogate(const char16_t* block) {
    unsigned found = 0;
    for (std::size_t i = 0; i < blockLength; ++i) {
        found |= isSurrogate(block[i]) ? 1u : 0u;
    }
    return found != 0;
}

inline bool isEscapedByte(char16_t unit) { return unit >= escapeBase + 0x80 && unit <= escapeBase + 0xFF; }

/// Whether the unpaired surrogate at `at` may be written as the byte that it represents. It may not where the
/// bytes of it and its followers would read back as a character: only then would the text change silently.
/// Looking forward from every unit is enough, since the neighbors of a run of such units begin with a lead
/// byte or ASCII and are complete, so nothing outside the run joins bytes of the run.
bool representsByte(const char16_t* at, std::size_t left) {
    constexpr std::size_t maxSequenceBytes = 4;
    unsigned char bytes[maxSequenceBytes];
    std::size_t length = 0;
    while (length < maxSequenceBytes && length < left && isEscapedByte(at[length])) {
        bytes[length] = static_cast<unsigned char>(at[length] - escapeBase);
        ++length;
    }
    char32_t codePoint = 0;
    return length > 0 && readSequence(bytes, length, codePoint) == 0;
}

/// The counterpart of decode(): ascii() and character() as there, byte() an escaped byte.
template <class Sink>
void encode(const char16_t* units, std::size_t count, IllFormed policy, Sink& sink) {
    std::size_t at = 0;
    while (at < count) {
        if (isAscii(units[at]) && isAsciiStretch(units + at, count - at)) {
            at += sink.ascii(units + at, count - at);
            continue;
        }
        if (!isSurrogate(units[at])) {
            sink.character(units[at]);
        } else if (isSurrogatePair(units + at, count - at)) {
            sink.character(codePointOfPair(units + at));
            ++at;
        } else if (policy == IllFormed::fileName && representsByte(units + at, count - at)) {
            sink.byte(static_cast<char>(units[at] - escapeBase));
        } else {
            sink.character(replacementUnit);
        }
        ++at;
    }
}

struct ByteCounter {
    std::size_t bytes = 0;

    std::size_t ascii(const char16_t* units, std::size_t count) {
        const std::size_t length = asciiPrefix(units, count);
        bytes += length;
        return length;
    }
    void character(char32_t codePoint) {
        bytes += codePoint < 0x80 ? 1 : codePoint < 0x800 ? 2 : codePoint < 0x10000 ? 3 : 4;
    }
    void byte(char) { ++bytes; }
};

struct ByteWriter {
    char* out;

    std::size_t ascii(const char16_t* units, std::size_t count) {
        const std::size_t length = asciiPrefix(units, std::min(count, maxPieceBytes));
        narrowAscii(units, length, out);
        out += length;
        return length;
    }
    void character(char32_t codePoint) {
        if (codePoint < 0x80) {
            return byte(static_cast<char>(codePoint));
        }
        if (codePoint < 0x800) {
            byte(static_cast<char>(0xC0 | codePoint >> 6));
        } else if (codePoint < 0x10000) {
            byte(static_cast<char>(0xE0 | codePoint >> 12));
            continuation(codePoint >> 6);
        } else {
            byte(static_cast<char>(0xF0 | codePoint >> 18));
            continuation(codePoint >> 12);
            continuation(codePoint >> 6);
        }
        continuation(codePoint);
    }
    void continuation(char32_t bits) { byte(static_cast<char>(0x80 | (bits & 0x3F))); }
    void byte(char value) { *out++ = value; }
};

} // namespace

std::size_t asciiPrefixLength(const char* bytes, std::size_t count) noexcept {
    return asciiPrefix(bytes, count);
}

std::size_t asciiPrefixLength(const char16_t* units, std::size_t count) noexcept {
    return asciiPrefix(units, count);
}

std::size_t utf16Length(const char* utf8, std::size_t count, IllFormed policy) noexcept {
    UnitCounter counter{policy};
    decode(utf8, count, counter);
    return counter.units;
}

bool getUtf16Length(const char* utf8, std::size_t count, std::size_t& length) noexcept {
    UnitCounter counter{IllFormed::replace};
    decode(utf8, count, counter);
    length = counter.units;
    return counter.isWellFormed;
}

char16_t* utf8ToUtf16(const char* utf8, std::size_t count, char16_t* out, IllFormed policy) noexcept {
    UnitWriter writer{policy, out};
    decode(utf8, count, writer);
    return writer.out;
}

bool isWellFormedUtf8(const char* utf8, std::size_t count) noexcept {
    return wellFormedUtf8Prefix(utf8, count) == count;
}

// Not by `decode`, since this stops at the first error.
std::size_t wellFormedUtf8Prefix(const char* utf8, std::size_t count) noexcept {
    std::size_t at = 0;
    while (at < count) {
        at += asciiPrefix(utf8 + at, count - at);
        while (at < count && !isAscii(utf8[at])) {
            const auto* bytes = reinterpret_cast<const unsigned char*>(utf8 + at);
            char32_t codePoint = 0;
            const unsigned length = readSequence(bytes, count - at, codePoint);
            if (length == 0) {
                return at;
            }
            at += length;
        }
    }
    return count;
}

std::size_t utf8Length(const char16_t* units, std::size_t count, IllFormed policy) noexcept {
    ByteCounter counter;
    encode(units, count, policy, counter);
    return counter.bytes;
}

char* utf16ToUtf8(const char16_t* units, std::size_t count, char* out, IllFormed policy) noexcept {
    ByteWriter writer{out};
    encode(units, count, policy, writer);
    return writer.out;
}

bool isWellFormedUtf16(const char16_t* units, std::size_t count) noexcept {
    std::size_t at = 0;
    while (at < count) {
        // Blocks without surrogates are skipped whole. After a pair, the next block begins where the pair
        // ends.
        if (count - at >= blockLength && !hasSurrogate(units + at)) {
            at += blockLength;
        } else if (!isSurrogate(units[at])) {
            ++at;
        } else if (isSurrogatePair(units + at, count - at)) {
            at += 2;
        } else {
            return false;
        }
    }
    return true;
}

bool hasFileNameForm(const char16_t* units, std::size_t count) noexcept {
    for (std::size_t at = 0; at < count; ++at) {
        // The system ends a path at U+0000, so the name would be another one.
        if (units[at] == 0) {
            return false;
        }
        if (isSurrogate(units[at])) {
            if (isSurrogatePair(units + at, count - at)) {
                ++at;
            } else if (!representsByte(units + at, count - at)) {
                return false;
            }
        }
    }
    return true;
}

void widenAscii(const char* ascii, std::size_t count, char16_t* out) noexcept {
    // As unsigned bytes, so that those from 0x80 up become the units of the same number.
    copyAscii(reinterpret_cast<const unsigned char*>(ascii), count, out);
}

void narrowAscii(const char16_t* units, std::size_t count, char* out) noexcept {
    copyAscii(units, count, out);
}

} // namespace ZQFoundation::detail
