// SPDX-License-Identifier: MIT
// Digests of all lengths, as another implementation has them.
#include "extensions/MD5.h"

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

} // namespace

TEST(MD5, digestsAllLengthsAcrossBlocksAtAnyAlignment) {
    std::vector<std::uint8_t> bytes(700);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<std::uint8_t>(i * 131 + (i >> 8U) * 7);
    }
    std::string digests;
    for (std::size_t count = 0; count <= 300; ++count) {
        digests += inHexadecimal(md5(bytes.data() + count % 67, count));
    }
    // The same by the system's own program.
    const auto* const all = reinterpret_cast<const std::uint8_t*>(digests.data());
    EXPECT_EQ(inHexadecimal(md5(all, digests.size())), "f5e3fd927bce6ebe99a3751533013c15");
}
