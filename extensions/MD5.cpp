// SPDX-License-Identifier: MIT
// Computes MD5 digests.
#include "extensions/MD5.h"

#include <bit>
#include <cstring>
#include <utility>

namespace ZQFoundation::detail {

namespace {

constexpr std::size_t blockSize = 64;

/// The state: four words that every block changes.
struct State {
    std::uint32_t a = 0x67452301;
    std::uint32_t b = 0xEFCDAB89;
    std::uint32_t c = 0x98BADCFE;
    std::uint32_t d = 0x10325476;
};

/// Words are little-endian, in blocks and in the digest.
std::uint32_t littleEndian(std::uint32_t word) noexcept {
    return std::endian::native == std::endian::big ? __builtin_bswap32(word) : word;
}

std::uint32_t wordAt(const std::uint8_t* block, unsigned index) noexcept {
    std::uint32_t word = 0;
    std::memcpy(&word, block + index * sizeof word, sizeof word);
    return littleEndian(word);
}

void storeWord(std::uint32_t word, std::uint8_t* bytes) noexcept {
    word = littleEndian(word);
    std::memcpy(bytes, &word, sizeof word);
}

/// The integer parts of 2^32 times the absolute sine of 1 to 64.
constexpr std::uint32_t sines[64] = {
    0xD76AA478, 0xE8C7B756, 0x242070DB, 0xC1BDCEEE, 0xF57C0FAF, 0x4787C62A, 0xA8304613, 0xFD469501,
    0x698098D8, 0x8B44F7AF, 0xFFFF5BB1, 0x895CD7BE, 0x6B901122, 0xFD987193, 0xA679438E, 0x49B40821,
    0xF61E2562, 0xC040B340, 0x265E5A51, 0xE9B6C7AA, 0xD62F105D, 0x02441453, 0xD8A1E681, 0xE7D3FBC8,
    0x21E1CDE6, 0xC33707D6, 0xF4D50D87, 0x455A14ED, 0xA9E3E905, 0xFCEFA3F8, 0x676F02D9, 0x8D2A4C8A,
    0xFFFA3942, 0x8771F681, 0x6D9D6122, 0xFDE5380C, 0xA4BEEA44, 0x4BDECFA9, 0xF6BB4B60, 0xBEBFBC70,
    0x289B7EC6, 0xEAA127FA, 0xD4EF3085, 0x04881D05, 0xD9D4D039, 0xE6DB99E5, 0x1FA27CF8, 0xC4AC5665,
    0xF4292244, 0x432AFF97, 0xAB9423A7, 0xFC93A039, 0x655B59C3, 0x8F0CCC92, 0xFFEFF47D, 0x85845DD1,
    0x6FA87E4F, 0xFE2CE6E0, 0xA3014314, 0x4E0811A1, 0xF7537E82, 0xBD3AF235, 0x2AD7D2BB, 0xEB86D391};

// Each step depends on the one before it, so speed depends on the number of operations between the newest
// word, `x`, and the result. The second function adds its halves, which never share a bit, so that the half
// without `x` can be added early.

template <unsigned round>
inline std::uint32_t mixed(std::uint32_t sum, std::uint32_t x, std::uint32_t y, std::uint32_t z) noexcept {
    if constexpr (round == 0) {
        return sum + (((y ^ z) & x) ^ z);
    } else if constexpr (round == 1) {
        return sum + (y & ~z) + (x & z);
    } else if constexpr (round == 2) {
        return sum + (x ^ (y ^ z));
    } else {
        return sum + (y ^ (x | ~z));
    }
}

/// One of the 64 steps. Factors and offsets say which word of the block it adds, turns by how many bits it
/// rotates; they are the algorithm's. That the words change places costs nothing once all steps are inlined.
template <unsigned step>
inline void change(State& state, const std::uint8_t* block) noexcept {
    constexpr unsigned round = step / 16;
    constexpr unsigned factors[4] = {1, 5, 3, 7};
    constexpr unsigned offsets[4] = {0, 1, 5, 0};
    constexpr int turns[4][4] = {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};
    constexpr unsigned index = (step * factors[round] + offsets[round]) % 16;
    const std::uint32_t sum = state.a + wordAt(block, index) + sines[step];
    const std::uint32_t turned =
        std::rotl(mixed<round>(sum, state.b, state.c, state.d), turns[round][step % 4]);
    state = {state.d, state.b + turned, state.b, state.c};
}

/// All steps, unrolled: the number of each is then a constant.
template <unsigned... steps>
inline void changeAll(State& state, const std::uint8_t* block,
                      std::integer_sequence<unsigned, steps...>) noexcept {
    (change<steps>(state, block), ...);
}

void digestBlock(State& state, const std::uint8_t* block) noexcept {
    State next = state;
    changeAll(next, block, std::make_integer_sequence<unsigned, 64>{});
    state.a += next.a;
    state.b += next.b;
    state.c += next.c;
    state.d += next.d;
}

} // namespace

std::array<std::uint8_t, 16> md5(const void* bytes, std::size_t count) noexcept {
    State state;
    const auto* at = static_cast<const std::uint8_t*>(bytes);
    std::size_t left = count;
    for (; left >= blockSize; left -= blockSize, at += blockSize) {
        digestBlock(state, at);
    }
    // The padding: the rest, a bit, zeros, and the length in bits take one or two more blocks.
    std::uint8_t last[2 * blockSize] = {};
    if (left != 0) {
        std::memcpy(last, at, left);
    }
    last[left] = 0x80;
    const std::size_t size = left + 9 <= blockSize ? blockSize : 2 * blockSize;
    const std::uint64_t bits = static_cast<std::uint64_t>(count) << 3U;
    storeWord(static_cast<std::uint32_t>(bits), last + size - 8);
    storeWord(static_cast<std::uint32_t>(bits >> 32U), last + size - 4);
    for (std::size_t start = 0; start < size; start += blockSize) {
        digestBlock(state, last + start);
    }
    std::array<std::uint8_t, 16> digest{};
    const std::uint32_t words[4] = {state.a, state.b, state.c, state.d};
    for (std::size_t i = 0; i < 4; ++i) {
        storeWord(words[i], digest.data() + 4 * i);
    }
    return digest;
}

} // namespace ZQFoundation::detail
