// SPDX-License-Identifier: MIT
// The encoding of octal escapes in old-style property lists.
#include "foundation/text/NextStepEncoding.h"

#include <set>

#include <gtest/gtest.h>

namespace {

using namespace ZQFoundation::detail;

struct Row {
    unsigned char byte;
    char16_t unit;
};

constexpr Row rows[] = {
    {0x80, 0x00A0}, {0x81, 0x00C0}, {0x86, 0x00C5}, {0x87, 0x00C7}, {0x8F, 0x00CF}, {0x90, 0x00D0},
    {0x97, 0x00D9}, {0x9D, 0x00B5}, {0x9F, 0x00F7}, {0xA4, 0x2044}, {0xA6, 0x0192}, {0xA9, 0x2019},
    {0xAE, 0xFB01}, {0xAF, 0xFB02}, {0xB7, 0x2022}, {0xBC, 0x2026}, {0xC1, 0x02CB}, {0xCF, 0x02C7},
    {0xD0, 0x2014}, {0xE1, 0x00C6}, {0xE3, 0x00AA}, {0xE8, 0x0141}, {0xEA, 0x0152}, {0xF0, 0x00F6},
    {0xF1, 0x00E6}, {0xF5, 0x0131}, {0xFA, 0x0153}, {0xFB, 0x00DF}, {0xFD, 0x00FF},
};

TEST(NextStepEncoding, keepsAscii) {
    for (unsigned byte = 0; byte < 0x80; ++byte) {
        EXPECT_EQ(nextStepToUnit(static_cast<unsigned char>(byte)), byte);
    }
}

TEST(NextStepEncoding, hasItsOwnUpperHalf) {
    for (const Row& row : rows) {
        EXPECT_EQ(nextStepToUnit(row.byte), row.unit) << "byte " << unsigned{row.byte};
    }
}

TEST(NextStepEncoding, leavesTwoBytesOpen) {
    EXPECT_EQ(nextStepToUnit(0xFE), nextStepUndefined);
    EXPECT_EQ(nextStepToUnit(0xFF), nextStepUndefined);
}

TEST(NextStepEncoding, givesEveryByteItsOwnCharacter) {
    std::set<char16_t> units;
    for (unsigned byte = 0; byte < 0xFE; ++byte) {
        const char16_t unit = nextStepToUnit(static_cast<unsigned char>(byte));
        EXPECT_NE(unit, nextStepUndefined);
        EXPECT_TRUE(units.insert(unit).second) << "byte " << byte;
    }
}

} // namespace
