// SPDX-License-Identifier: MIT
// Base64 by AVX2.
// A step takes 24 bytes to 32 characters or back. Loads and stores are whole registers, so each loop ends
// where one of them would cross the end of a buffer, and leaves the rest to the plain codec.
#include "foundation/text/Base64Codec.h"

#if defined(__x86_64__)

#include <immintrin.h>

// Only what is marked so is compiled for these processors: the file's other code runs everywhere.
#define ZQ_AVX2 __attribute__((target("avx2")))

namespace ZQFoundation::detail::base64 {

namespace {

/// The same sixteen bytes in both halves.
ZQ_AVX2 inline __m256i twice(char a, char b, char c, char d, char e, char f, char g, char h, char i, char j,
                             char k, char l, char m, char n, char o, char p) noexcept {
    return _mm256_setr_epi8(a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, a, b, c, d, e, f, g, h, i, j, k,
                            l, m, n, o, p);
}

/// 24 bytes as 32 characters. Reads 28 bytes.
/// The second half is loaded from byte 12, because shuffles move bytes only within a half.
ZQ_AVX2 inline __m256i encoded(const std::uint8_t* bytes) noexcept {
    const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
    const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + 12));
    const __m256i both = _mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1);
    // Each group of three bytes becomes the four bytes 1 0 2 1, in which two multiplications bring the four
    // pieces of six bits into their places. A multiplication by a power of two is a shift by a distance of
    // its own for each piece, which no shift instruction of this set offers.
    const __m256i groups =
        _mm256_shuffle_epi8(both, twice(1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10));
    const __m256i firstAndThird = _mm256_mulhi_epu16(_mm256_and_si256(groups, _mm256_set1_epi32(0x0FC0FC00)),
                                                     _mm256_set1_epi32(0x04000040));
    const __m256i secondAndFourth = _mm256_mullo_epi16(
        _mm256_and_si256(groups, _mm256_set1_epi32(0x003F03F0)), _mm256_set1_epi32(0x01000010));
    const __m256i values = _mm256_or_si256(firstAndThird, secondAndFourth);
    // What is to be added to a value depends on its range only: 0 for a-z, 1 to 10 for the digits, 11 and
    // 12 for '+' and '/', 13 for A-Z.
    const __m256i isCapital = _mm256_cmpgt_epi8(_mm256_set1_epi8(26), values);
    // The saturating subtraction gives 0 for a-z and A-Z alike; the comparison tells those two apart.
    const __m256i range = _mm256_or_si256(_mm256_subs_epu8(values, _mm256_set1_epi8(51)),
                                          _mm256_and_si256(isCapital, _mm256_set1_epi8(13)));
    constexpr char toDigit = '0' - 52;
    const __m256i distances = twice('a' - 26, toDigit, toDigit, toDigit, toDigit, toDigit, toDigit, toDigit,
                                    toDigit, toDigit, toDigit, '+' - 62, '/' - 63, 'A', 0, 0);
    return _mm256_add_epi8(values, _mm256_shuffle_epi8(distances, range));
}

ZQ_AVX2 void encodeGroups(Encoding& state, const std::uint8_t* limit) noexcept {
    Encoding now =
        state; // bytes that are stored could be those of `state` itself, for all the compiler knows
    // 28 and not 24, because the second load of `encoded` reads that far.
    for (; limit - now.input >= 24 && now.inputEnd - now.input >= 28; now.input += 24, now.output += 32) {
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(now.output), encoded(now.input));
    }
    state = now;
}

ZQ_AVX2 void encodeLines(Encoding& state) noexcept {
    Encoding now = state;
    // 24 + 28: what the second call reads. A line is whole, so its break follows for certain.
    for (; now.inputEnd - now.input >= 52; now.input += 48, now.output += 66) {
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(now.output), encoded(now.input));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(now.output + 32), encoded(now.input + 24));
        now.output[64] = '\r';
        now.output[65] = '\n';
    }
    state = now;
}

/// The values of 32 characters; `foreignBytes` gets a bit for each that is outside the alphabet.
ZQ_AVX2 inline __m256i valuesOf(__m256i text, std::uint32_t& foreignBytes) noexcept {
    const __m256i nibble = _mm256_set1_epi8(15);
    const __m256i high = _mm256_and_si256(_mm256_srli_epi32(text, 4), nibble);
    const __m256i low = _mm256_and_si256(text, nibble);
    // For each half of a byte, bits for the sets of characters that it rules out; a byte is foreign when its
    // halves agree on one.
    const __m256i lowRulesOut =
        twice(0x15, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x13, 0x1A, 0x1B, 0x1B, 0x1B, 0x1A);
    const __m256i highRulesOut =
        twice(0x10, 0x10, 0x01, 0x02, 0x04, 0x08, 0x04, 0x08, 0x10, 0x10, 0x10, 0x10, 0x10, 0x10, 0x10, 0x10);
    const __m256i agreed =
        _mm256_and_si256(_mm256_shuffle_epi8(lowRulesOut, low), _mm256_shuffle_epi8(highRulesOut, high));
    foreignBytes =
        ~static_cast<std::uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(agreed, _mm256_setzero_si256())));
    // The distance from character to value goes by the upper half, but for the slash, which shares its with
    // the plus sign.
    const __m256i isSlash = _mm256_cmpeq_epi8(text, _mm256_set1_epi8('/'));
    const __m256i distances =
        twice(0, 63 - '/', 62 - '+', 52 - '0', -'A', -'A', 26 - 'a', 26 - 'a', 0, 0, 0, 0, 0, 0, 0, 0);
    return _mm256_add_epi8(text, _mm256_shuffle_epi8(distances, _mm256_add_epi8(isSlash, high)));
}

/// 32 values as 24 bytes; eight more that mean nothing follow.
ZQ_AVX2 inline __m256i packed(__m256i values) noexcept {
    // Four values of six bits become one number of 24 bits: pairs by 64 and 1, then groups by 4096 and 1.
    const __m256i pairs = _mm256_maddubs_epi16(values, _mm256_set1_epi32(0x01400140));
    const __m256i groups = _mm256_madd_epi16(pairs, _mm256_set1_epi32(0x00011000));
    // The numbers have their lowest byte first, the text its highest.
    const __m256i ordered =
        _mm256_shuffle_epi8(groups, twice(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1));
    return _mm256_permutevar8x32_epi32(ordered, _mm256_setr_epi32(0, 1, 2, 4, 5, 6, -1, -1));
}

ZQ_AVX2 void decodeGroups(Decoding& state) noexcept {
    Decoding now = state;
    // A whole register of 32 bytes is stored for 24, so that much room is needed. The next step overwrites
    // the excess.
    while (now.inputEnd - now.input >= 32 && now.outputEnd - now.output >= 32) {
        const __m256i text = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(now.input));
        std::uint32_t foreignBytes = 0;
        const __m256i values = valuesOf(text, foreignBytes);
        const Step step = stepOver<32>(foreignBytes);
        if (step.characters == 0) {
            break;
        }
        // A step over foreign bytes writes nothing.
        if (step.groups != 0) {
            _mm256_storeu_si256(reinterpret_cast<__m256i*>(now.output), packed(values));
        }
        now.input += step.characters;
        now.output += 3 * step.groups;
    }
    state = now;
}

} // namespace

constexpr Codec avx2Codec{"AVX2", encodeGroups, encodeLines, decodeGroups};

} // namespace ZQFoundation::detail::base64

#endif
