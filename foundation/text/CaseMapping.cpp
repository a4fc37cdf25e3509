// SPDX-License-Identifier: MIT
// Maps case and decomposes canonically, by Unicode's tables.
// The tables are generated, in two levels: most blocks of code points are alike and are stored once.
#include "foundation/text/CaseMapping.h"

#include <cstddef>
#include <cstdint>

#include "foundation/text/Surrogates.h"

namespace ZQFoundation::detail {

namespace {

/// The mappings that a group of code points shares. Each is a distance to add to the code point or, from
/// casePoolMarker up, a place in casePool (from bit 2) and a length (the low two bits).
struct CaseRecord {
    std::int32_t upper;
    std::int32_t lower;
    std::int32_t fold;
};

#include "foundation/text/UnicodeCaseTables.inc"

// Hangul syllables are composed by a rule, from a leading consonant, a vowel and perhaps a trailing
// consonant.
constexpr char32_t firstSyllable = 0xAC00;
constexpr char32_t syllableCount = 11172;
constexpr char32_t firstLeading = 0x1100;
constexpr char32_t firstVowel = 0x1161;
constexpr char32_t beforeFirstTrailing = 0x11A7;
constexpr char32_t vowelCount = 21;
constexpr char32_t trailingCount = 28; // with "none" as the first

// The one lookup for all tables. From the limit up, no code point has an entry.
template <class Block, class Value>
inline Value lookUp(char32_t codePoint, char32_t limit, unsigned shift, const Block* blocks,
                    const Value* values) {
    if (codePoint >= limit) {
        return 0;
    }
    const std::size_t block = blocks[codePoint >> shift];
    const std::size_t within = codePoint & ((1u << shift) - 1);
    return values[(block << shift) + within];
}

inline const CaseRecord& recordOf(char32_t codePoint) {
    return caseRecords[lookUp(codePoint, caseRecordLimit, caseRecordShift, caseRecordBlocks,
                              caseRecordValues)];
}

// Nearly all mappings are a distance shared by a whole alphabet, so few records suffice; the others are
// spelled out in the pool. No mapping is longer than three, which two bits hold.
unsigned applyMapping(char32_t codePoint, std::int32_t mapping, char32_t* out) {
    if (mapping < casePoolMarker) {
        out[0] = codePoint + static_cast<char32_t>(mapping);
        return 1;
    }
    const std::int32_t entry = mapping - casePoolMarker;
    const char16_t* const from = casePool + (entry >> 2);
    const unsigned length = static_cast<unsigned>(entry & 3);
    for (unsigned i = 0; i < length; ++i) {
        out[i] = from[i];
    }
    return length;
}

// By the arithmetic of the Unicode standard: syllables are numbered by their three parts.
unsigned decomposeSyllable(char32_t index, char32_t* out) {
    const char32_t trailing = index % trailingCount;
    const char32_t pair = index / trailingCount;
    out[0] = firstLeading + pair / vowelCount;
    out[1] = firstVowel + pair % vowelCount;
    if (trailing == 0) {
        return 2;
    }
    out[2] = beforeFirstTrailing + trailing;
    return 3;
}

} // namespace

unsigned upperCase(char32_t codePoint, char32_t out[3]) noexcept {
    return applyMapping(codePoint, recordOf(codePoint).upper, out);
}

unsigned lowerCase(char32_t codePoint, char32_t out[3]) noexcept {
    return applyMapping(codePoint, recordOf(codePoint).lower, out);
}

unsigned foldCase(char32_t codePoint, char32_t out[3]) noexcept {
    return applyMapping(codePoint, recordOf(codePoint).fold, out);
}

unsigned canonicalDecomposition(char32_t codePoint, char32_t out[4]) noexcept {
    // Unsigned: below the first syllable the difference is huge.
    if (codePoint - firstSyllable < syllableCount) {
        return decomposeSyllable(codePoint - firstSyllable, out);
    }
    const std::size_t place =
        lookUp(codePoint, decompositionLimit, decompositionShift, decompositionBlocks, decompositionValues);
    if (place == 0) {
        return 0;
    }
    const char16_t* from = decompositionPool + place;
    // The pool holds UTF-16, with the length in code points before each entry.
    const unsigned length = *from++;
    for (unsigned i = 0; i < length; ++i) {
        const char32_t unit = *from++;
        const bool pair = isHighSurrogate(unit);
        out[i] = pair ? 0x10000 + ((unit & 0x3FF) << 10 | (*from++ & 0x3FFu)) : unit;
    }
    return length;
}

unsigned char canonicalCombiningClass(char32_t codePoint) noexcept {
    return lookUp(codePoint, combiningClassLimit, combiningClassShift, combiningClassBlocks,
                  combiningClassValues);
}

} // namespace ZQFoundation::detail
