// SPDX-License-Identifier: MIT
// The range of surrogates and its halves.
#include "foundation/text/Surrogates.h"

#include <cstdint>

#include <gtest/gtest.h>

namespace {

using namespace ZQFoundation::detail;

template <class Unit>
void expectTheRangeAlone(std::uint32_t end) {
    for (std::uint32_t code = 0; code < end; ++code) {
        const Unit unit = static_cast<Unit>(code);
        ASSERT_EQ(isSurrogate(unit), code >= 0xD800 && code <= 0xDFFF) << code;
        ASSERT_EQ(isHighSurrogate(unit), code >= 0xD800 && code <= 0xDBFF) << code;
        ASSERT_EQ(isLowSurrogate(unit), code >= 0xDC00 && code <= 0xDFFF) << code;
    }
}

TEST(Surrogates, areTheRangeAlone) {
    expectTheRangeAlone<char16_t>(0x10000);
    expectTheRangeAlone<char32_t>(0x110000);
    expectTheRangeAlone<std::uint32_t>(0x110000);
}

TEST(Surrogates, areAPairWhenAHighOneIsBeforeALowOne) {
    const char16_t units[] = {0xDBFF, 0xDC00, 0xDFFF, 0xD800, u'a'};
    EXPECT_TRUE(isSurrogatePair(units, 5));
    EXPECT_TRUE(isSurrogatePair(units, 2));
    EXPECT_FALSE(isSurrogatePair(units, 1));
    EXPECT_FALSE(isSurrogatePair(units + 1, 4));
    EXPECT_FALSE(isSurrogatePair(units + 2, 3));
    EXPECT_FALSE(isSurrogatePair(units + 3, 2));
}

TEST(Surrogates, pairsMakeTheCodePointsAboveTheFirstPlane) {
    EXPECT_EQ(codePointOfPair(u"\U00010000"), 0x10000u);
    EXPECT_EQ(codePointOfPair(u"\U0001F600"), 0x1F600u);
    EXPECT_EQ(codePointOfPair(u"\U0010FFFF"), 0x10FFFFu);
}

TEST(Surrogates, withoutPartnerEndThePairedPrefix) {
    const char16_t units[] = {u'a', 0xD83D, 0xDE00, u'b', 0xDE00, u'c'};
    EXPECT_EQ(pairedPrefix(units, 0), 0u);
    EXPECT_EQ(pairedPrefix(units, 1), 1u);
    EXPECT_EQ(pairedPrefix(units, 2), 1u);
    EXPECT_EQ(pairedPrefix(units, 3), 3u);
    EXPECT_EQ(pairedPrefix(units, 6), 4u);
    EXPECT_EQ(pairedPrefix(units + 2, 4), 0u);
}

} // namespace
