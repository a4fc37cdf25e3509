// SPDX-License-Identifier: MIT
// Base64 by AVX-512.
// These instructions look up 64 entries at once, so the alphabet is a table here, and masks let loads and
// stores end anywhere, so that not even the last groups need plain code.
#include "foundation/text/Base64Codec.h"

#if defined(__x86_64__)

#include <immintrin.h>

#if !defined(__clang__)
// The compiler's own header passes registers whose contents do not matter.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"
#endif

#define ZQ_AVX512 __attribute__((target("avx512f,avx512bw,avx512vbmi,avx512vbmi2,popcnt")))

namespace ZQFoundation::detail::base64 {

namespace {

/// A line's 48 bytes, and every block's.
/// 64 characters come from 48 bytes, so a register of bytes is filled to three quarters.
constexpr __mmask64 blockBytes = 0x0000FFFFFFFFFFFF;

struct alignas(64) Table {
    std::uint8_t bytes[64];
};

/// Each group of three bytes as the four bytes 1 0 2 1.
constexpr Table groupsOfFour = [] {
    Table table{};
    for (unsigned i = 0; i < 64; ++i) {
        constexpr unsigned order[4] = {1, 0, 2, 1};
        table.bytes[i] = static_cast<std::uint8_t>(i / 4 * 3 + order[i % 4]);
    }
    return table;
}();

/// The three bytes of each group of four, first byte first.
/// The packed number has its lowest byte first, so the order within a group is reversed.
constexpr Table groupsOfThree = [] {
    Table table{};
    for (unsigned i = 0; i < 48; ++i) {
        table.bytes[i] = static_cast<std::uint8_t>(i / 3 * 4 + 2 - i % 3);
    }
    return table;
}();

constexpr Table characters = [] {
    Table table{};
    for (unsigned i = 0; i < 64; ++i) {
        table.bytes[i] = static_cast<std::uint8_t>(alphabet[i]);
    }
    return table;
}();

/// Half of the decoding table; the uppermost bit marks foreign bytes.
/// A lookup in two tables covers 128 bytes; bytes from 0x80 up are found by their own uppermost bit.
constexpr Table valuesFrom(unsigned first) {
    Table table{};
    for (unsigned i = 0; i < 64; ++i) {
        const std::uint8_t value = valueOfByte[first + i];
        table.bytes[i] = value == foreign ? 0x80 : value;
    }
    return table;
}
constexpr Table lowerValues = valuesFrom(0);
constexpr Table upperValues = valuesFrom(64);

ZQ_AVX512 inline __m512i loaded(const Table& table) noexcept { return _mm512_load_si512(table.bytes); }

/// Less than all 64.
constexpr __mmask64 firstBytes(unsigned count) noexcept { return (std::uint64_t{1} << count) - 1; }

/// Four bytes of six bits each, made one group of three.
ZQ_AVX512 inline __m512i packed(__m512i values, __m512i order) noexcept {
    const __m512i pairs = _mm512_maddubs_epi16(values, _mm512_set1_epi32(0x01400140));
    const __m512i groups = _mm512_madd_epi16(pairs, _mm512_set1_epi32(0x00011000));
    return _mm512_permutexvar_epi8(order, groups);
}

ZQ_AVX512 void encodeGroups(Encoding& state, const std::uint8_t* limit) noexcept {
    const __m512i order = loaded(groupsOfFour);
    const __m512i text = loaded(characters);
    // From where in its 64 bits each byte of a result takes its six bits.
    // The group is the bytes 1 0 2 1, whose bits the four shifts 10, 4, 22 and 16 pick out, once in each
    // half.
    const __m512i shifts = _mm512_set1_epi64(0x3036242A1016040A);
    Encoding now =
        state; // bytes that are stored could be those of `state` itself, for all the compiler knows
    for (; limit - now.input >= 48; now.input += 48, now.output += 64) {
        const __m512i bytes = _mm512_maskz_loadu_epi8(blockBytes, now.input);
        const __m512i groups = _mm512_permutexvar_epi8(order, bytes);
        // The lookup takes the lower six bits of each byte and does not mind the upper two.
        const __m512i values = _mm512_multishift_epi64_epi8(shifts, groups);
        _mm512_storeu_si512(now.output, _mm512_permutexvar_epi8(values, text));
    }
    // The same step once more with masks: nothing is read or written beyond the ends.
    if (const auto groups = static_cast<unsigned>(limit - now.input) / 3; groups != 0) {
        const __m512i bytes = _mm512_maskz_loadu_epi8(firstBytes(3 * groups), now.input);
        const __m512i values = _mm512_multishift_epi64_epi8(shifts, _mm512_permutexvar_epi8(order, bytes));
        _mm512_mask_storeu_epi8(now.output, firstBytes(4 * groups), _mm512_permutexvar_epi8(values, text));
        now.input += 3 * groups;
        now.output += 4 * groups;
    }
    state = now;
}

ZQ_AVX512 void encodeLines(Encoding& state) noexcept {
    const __m512i order = loaded(groupsOfFour);
    const __m512i text = loaded(characters);
    const __m512i shifts = _mm512_set1_epi64(0x3036242A1016040A);
    Encoding now = state;
    // 64, because the load is not masked.
    for (; now.inputEnd - now.input >= 64; now.input += 48, now.output += 66) {
        const __m512i groups = _mm512_permutexvar_epi8(order, _mm512_loadu_si512(now.input));
        const __m512i values = _mm512_multishift_epi64_epi8(shifts, groups);
        _mm512_storeu_si512(now.output, _mm512_permutexvar_epi8(values, text));
        now.output[64] = '\r';
        now.output[65] = '\n';
    }
    state = now;
}

/// Goes over a stretch with foreign bytes in it: first all values of the stretch, moved together, then the
/// groups that they make. A cut in the middle of a group leaves its values pending.
/// Rare, so it is kept out of the fast loop.
ZQ_AVX512 __attribute__((noinline)) void decodeBroken(Decoding& now) noexcept {
    const __m512i lower = loaded(lowerValues);
    const __m512i upper = loaded(upperValues);
    const __m512i order = loaded(groupsOfThree);
    constexpr std::size_t blocks = 32;
    // Each block stores 64 bytes, however few values it has, so the last one may reach one block further.
    alignas(64) std::uint8_t values[(blocks + 1) * 64];
    std::size_t count = 0;
    // More than 64, so that at least one byte is left: whether only foreign bytes follow is decided by the
    // plain pass.
    for (std::size_t i = 0; i < blocks && now.inputEnd - now.input > 64; ++i, now.input += 64) {
        const __m512i text = _mm512_loadu_si512(now.input);
        const __m512i found = _mm512_permutex2var_epi8(lower, text, upper);
        const __mmask64 good = ~_mm512_movepi8_mask(_mm512_or_si512(found, text));
        _mm512_storeu_si512(values + count, _mm512_maskz_compress_epi8(good, found));
        count += static_cast<unsigned>(std::popcount(static_cast<std::uint64_t>(good)));
    }
    std::size_t at = 0;
    // Three quarters of a register, in two stores, since a buffer may end right there.
    for (; count - at >= 64; at += 64, now.output += 48) {
        const __m512i bytes = packed(_mm512_load_si512(values + at), order);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(now.output), _mm512_castsi512_si256(bytes));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(now.output + 32), _mm512_extracti32x4_epi32(bytes, 2));
    }
    const auto groups = static_cast<unsigned>(count - at) / 4;
    _mm512_mask_storeu_epi8(now.output, firstBytes(3 * groups),
                            packed(_mm512_load_si512(values + at), order));
    now.output += 3 * groups;
    at += 4 * groups;
    // At most three. The caller's pass completes their group with what follows.
    while (at < count) {
        now.pending[now.pendingCount++] = values[at++];
    }
}

/// Less than a block: whole groups up to the first foreign byte, or all that is left.
ZQ_AVX512 inline void decodeEnd(Decoding& state, __m512i lower, __m512i upper, __m512i order) noexcept {
    const auto left = static_cast<unsigned>(state.inputEnd - state.input);
    const __mmask64 present = firstBytes(left);
    const __m512i text = _mm512_maskz_loadu_epi8(present, state.input);
    const __m512i values = _mm512_permutex2var_epi8(lower, text, upper);
    const std::uint64_t others = _mm512_movepi8_mask(_mm512_or_si512(values, text)) | ~present;
    const auto count = static_cast<unsigned>(std::countr_zero(others));
    // Whole groups; a group cut by a foreign byte is left to the plain pass.
    unsigned bytes = count / 4 * 3;
    unsigned taken = count & ~3U;
    // Nothing but foreign bytes follows a group begun: that is all.
    if (count % 4 != 0 && others >> count == ~std::uint64_t{0} >> count) {
        // Values without a partner give one byte less than their number: two give one byte, three give two,
        // one gives none.
        bytes += count % 4 - 1;
        taken = left;
    }
    _mm512_mask_storeu_epi8(state.output, firstBytes(bytes),
                            packed(_mm512_maskz_mov_epi8(firstBytes(count), values), order));
    state.input += taken;
    state.output += bytes;
}

ZQ_AVX512 void decodeGroups(Decoding& state) noexcept {
    const __m512i lower = loaded(lowerValues);
    const __m512i upper = loaded(upperValues);
    const __m512i order = loaded(groupsOfThree);
    const std::uint8_t* input = state.input;
    const std::uint8_t* const end = state.inputEnd;
    std::uint8_t* output = state.output;
    while (end - input >= 64) {
        const __m512i text = _mm512_loadu_si512(input);
        const __m512i values = _mm512_permutex2var_epi8(lower, text, upper);
        const std::uint64_t foreignBytes = _mm512_movepi8_mask(_mm512_or_si512(values, text));
        if (foreignBytes != 0) {
            // A line break in front, answered by a constant: the processor guesses where the next block
            // starts and need not wait for the look at this one.
            if ((foreignBytes & 7U) == 3U) {
                input += 2;
                continue;
            }
            if ((foreignBytes & 3U) == 1U) {
                input += 1;
                continue;
            }
            // With 64 bytes left, all of the rest is in this block, and its last bytes may be foreign: for
            // the plain pass.
            if (end - input == 64) {
                break;
            }
            state.input = input;
            state.output = output;
            decodeBroken(state);
            // A group is begun, which only the plain pass continues.
            if (state.pendingCount != 0) {
                return;
            }
            input = state.input;
            output = state.output;
            continue;
        }
        _mm512_mask_storeu_epi8(output, blockBytes, packed(values, order));
        input += 64;
        output += 48;
    }
    state.input = input;
    state.output = output;
    if (end - input < 64) {
        decodeEnd(state, lower, upper, order);
    }
}

} // namespace

constexpr Codec avx512Codec{"AVX-512", encodeGroups, encodeLines, decodeGroups};

} // namespace ZQFoundation::detail::base64

#endif
