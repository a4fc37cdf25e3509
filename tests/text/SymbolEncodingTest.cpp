// SPDX-License-Identifier: MIT
// The encoding of the Symbol font.
#include "foundation/text/SymbolEncoding.h"

#include <gtest/gtest.h>

#include <set>

using namespace ZQFoundation::detail;

namespace {

TEST(SymbolEncoding, hasGreekLettersAtTheLatinOnes) {
    const struct {
        char byte;
        char16_t unit;
    } rows[] = {
        {'A', 0x0391}, {'B', 0x0392}, {'C', 0x03A7}, {'D', 0x0394}, {'F', 0x03A6}, {'G', 0x0393},
        {'H', 0x0397}, {'J', 0x03D1}, {'Q', 0x0398}, {'V', 0x03C2}, {'W', 0x03A9}, {'X', 0x039E},
        {'Y', 0x03A8}, {'Z', 0x0396}, {'a', 0x03B1}, {'j', 0x03D5}, {'p', 0x03C0}, {'v', 0x03D6},
        {'w', 0x03C9}, {'z', 0x03B6}, {'0', u'0'},   {'+', u'+'},   {'-', 0x2212}, {'"', 0x2200},
        {'$', 0x2203}, {'@', 0x2245},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(symbolToUnit(static_cast<unsigned char>(row.byte)), row.unit) << row.byte;
    }
}

TEST(SymbolEncoding, hasSignsOfMathematicsAbove) {
    const struct {
        unsigned char byte;
        char16_t unit;
    } rows[] = {
        {0xA0, 0x20AC}, {0xA3, 0x2264}, {0xA5, 0x221E}, {0xAB, 0x2194}, {0xB1, 0x00B1},
        {0xB3, 0x2265}, {0xB9, 0x2260}, {0xC6, 0x2205}, {0xCE, 0x2208}, {0xD1, 0x2207},
        {0xD6, 0x221A}, {0xDE, 0x21D2}, {0xE5, 0x2211}, {0xF2, 0x222B},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(symbolToUnit(row.byte), row.unit) << int{row.byte};
    }
}

TEST(SymbolEncoding, hasNoCharacterTwice) {
    std::set<char16_t> seen;
    int gaps = 0;
    for (int byte = 0; byte < 256; ++byte) {
        const char16_t unit = symbolToUnit(static_cast<unsigned char>(byte));
        if (unit == symbolUndefined) {
            ++gaps;
        } else {
            EXPECT_TRUE(seen.insert(unit).second) << byte;
        }
    }
    EXPECT_EQ(gaps, 38);
}

} // namespace
