// SPDX-License-Identifier: MIT
// The algorithm, against its description step by step.
#include "extensions/MD5.h"

#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>

using ZQFoundation::detail::md5;

namespace {

std::string inHexadecimal(const std::array<std::uint8_t, 16>& digest) {
    std::string text;
    for (const std::uint8_t byte : digest) {
        constexpr char digits[] = "0123456789abcdef";
        text.push_back(digits[byte >> 4U]);
        text.push_back(digits[byte & 15U]);
    }
    return text;
}

std::uint32_t turned(std::uint32_t word, unsigned count) { return word << count | word >> (32 - count); }

/// One step after the other as the algorithm is described, its constants computed.
std::array<std::uint8_t, 16> slowDigest(std::vector<std::uint8_t> bytes) {
    const std::uint64_t bits = bytes.size() * 8;
    bytes.push_back(0x80);
    while (bytes.size() % 64 != 56) {
        bytes.push_back(0);
    }
    for (unsigned i = 0; i < 8; ++i) {
        bytes.push_back(static_cast<std::uint8_t>(bits >> 8 * i));
    }
    std::uint32_t state[4] = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476};
    constexpr unsigned turns[4][4] = {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};
    for (std::size_t block = 0; block < bytes.size(); block += 64) {
        std::uint32_t a = state[0];
        std::uint32_t b = state[1];
        std::uint32_t c = state[2];
        std::uint32_t d = state[3];
        for (unsigned step = 0; step < 64; ++step) {
            const unsigned round = step / 16;
            const std::uint32_t mixed[4] = {(b & c) | (~b & d), (b & d) | (c & ~d), b ^ c ^ d, c ^ (b | ~d)};
            const unsigned indexes[4] = {step, 5 * step + 1, 3 * step + 5, 7 * step};
            std::uint32_t word = 0;
            for (unsigned i = 0; i < 4; ++i) {
                word |= static_cast<std::uint32_t>(bytes[block + indexes[round] % 16 * 4 + i]) << 8 * i;
            }
            const auto sine =
                static_cast<std::uint32_t>(std::floor(std::fabs(std::sin(step + 1.0)) * 4294967296.0));
            const std::uint32_t sum = a + mixed[round] + word + sine;
            a = d;
            d = c;
            c = b;
            b += turned(sum, turns[round][step % 4]);
        }
        state[0] += a;
        state[1] += b;
        state[2] += c;
        state[3] += d;
    }
    std::array<std::uint8_t, 16> digest{};
    for (unsigned i = 0; i < 16; ++i) {
        digest[i] = static_cast<std::uint8_t>(state[i / 4] >> i % 4 * 8);
    }
    return digest;
}

} // namespace

TEST(MD5, digestsAllLengthsAcrossBlocksAtAnyAlignment) {
    std::vector<std::uint8_t> bytes(700);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<std::uint8_t>(i * 131 + (i >> 8U) * 7);
    }
    for (std::size_t count = 0; count <= 300; ++count) {
        const std::size_t start = count % 67;
        const std::vector<std::uint8_t> piece(bytes.begin() + static_cast<std::ptrdiff_t>(start),
                                              bytes.begin() + static_cast<std::ptrdiff_t>(start + count));
        ASSERT_EQ(inHexadecimal(md5(bytes.data() + start, count)), inHexadecimal(slowDigest(piece))) << count;
    }
}
