// SPDX-License-Identifier: MIT
// The general categories of characters, compared with the database.
#include "foundation/text/CharacterCategories.h"

#include <iterator>
#include <vector>

#include <gtest/gtest.h>

namespace {

using namespace ZQFoundation::detail;

struct CategoryRow {
    char32_t codePoint;
    GeneralCategory category;
};

constexpr CategoryRow categoryRows[] = {
    {0x0000, GeneralCategory::control},
    {0x0020, GeneralCategory::spaceSeparator},
    {'$', GeneralCategory::currencySymbol},
    {'(', GeneralCategory::openPunctuation},
    {'+', GeneralCategory::mathSymbol},
    {'-', GeneralCategory::dashPunctuation},
    {'0', GeneralCategory::decimalNumber},
    {'A', GeneralCategory::uppercaseLetter},
    {'^', GeneralCategory::modifierSymbol},
    {'_', GeneralCategory::connectorPunctuation},
    {'z', GeneralCategory::lowercaseLetter},
    {0x007F, GeneralCategory::control},
    {0x009F, GeneralCategory::control},
    {0x00A9, GeneralCategory::otherSymbol},
    {0x00AB, GeneralCategory::initialPunctuation},
    {0x00AD, GeneralCategory::format},
    {0x00B2, GeneralCategory::otherNumber},
    {0x00BB, GeneralCategory::finalPunctuation},
    {')', GeneralCategory::closePunctuation},
    {'!', GeneralCategory::otherPunctuation},
    {0x01C5, GeneralCategory::titlecaseLetter},
    {0x02B0, GeneralCategory::modifierLetter},
    {0x0301, GeneralCategory::nonspacingMark},
    {0x0378, GeneralCategory::unassigned},
    {0x0488, GeneralCategory::enclosingMark},
    {0x05D0, GeneralCategory::otherLetter},
    {0x0903, GeneralCategory::spacingMark},
    {0x2028, GeneralCategory::lineSeparator},
    {0x2029, GeneralCategory::paragraphSeparator},
    {0x2160, GeneralCategory::letterNumber},
    {0x3400, GeneralCategory::otherLetter}, // the first and the last of a stretch
    {0x4DBF, GeneralCategory::otherLetter},
    {0x4DC0, GeneralCategory::otherSymbol},
    {0xD7A3, GeneralCategory::otherLetter},
    {0xD7A4, GeneralCategory::unassigned},
    {0xD800, GeneralCategory::surrogate},
    {0xDFFF, GeneralCategory::surrogate},
    {0xE000, GeneralCategory::privateUse},
    {0xF8FF, GeneralCategory::privateUse},
    {0xFFFF, GeneralCategory::unassigned},
    {0x10000, GeneralCategory::otherLetter},
    {0x2A6DF, GeneralCategory::otherLetter},
    {0x323AF, GeneralCategory::otherLetter},
    {0x323B0, GeneralCategory::unassigned},
    {0xE0001, GeneralCategory::format},
    {0xE01EF, GeneralCategory::nonspacingMark},
    {0xE01F0, GeneralCategory::unassigned},
    {0xF0000, GeneralCategory::privateUse},
    {0xFFFFD, GeneralCategory::privateUse},
    {0x10FFFD, GeneralCategory::privateUse},
    {0x110000, GeneralCategory::unassigned},
    {0xFFFFFFFF, GeneralCategory::unassigned},
};

TEST(CharacterCategories, areThoseOfTheDatabase) {
    for (const CategoryRow& row : categoryRows) {
        EXPECT_EQ(static_cast<int>(generalCategory(row.codePoint)), static_cast<int>(row.category))
            << std::hex << static_cast<unsigned>(row.codePoint);
    }
}

/// How many code points version 15.0 has in each category, in the order of the enumeration.
constexpr unsigned counts[] = {
    825345, 1831, 2233, 31,  397, 131612, 1985, 452,  13, 680, 236, 915, 10,  26,   79,
    77,     12,   10,   628, 948, 63,     125,  6634, 17, 1,   1,   65,  170, 2048, 137468,
};

TEST(CharacterCategories, occurAsOftenAsInTheDatabase) {
    unsigned counted[std::size(counts)] = {};
    for (char32_t codePoint = 0; codePoint < 0x110000; ++codePoint) {
        ++counted[static_cast<unsigned>(generalCategory(codePoint))];
    }
    for (std::size_t i = 0; i < std::size(counts); ++i) {
        EXPECT_EQ(counted[i], counts[i]) << i;
    }
}

TEST(CharacterCategories, makeMasksOfOneAndOfSeveral) {
    EXPECT_EQ(maskOf(GeneralCategory::unassigned), 1U);
    EXPECT_EQ(maskOf(GeneralCategory::privateUse), 1U << 29);
    EXPECT_EQ(maskOf(GeneralCategory::uppercaseLetter, GeneralCategory::titlecaseLetter), 0b1110U);
    EXPECT_EQ(maskOf(GeneralCategory::control, GeneralCategory::control), maskOf(GeneralCategory::control));
}

TEST(CharacterCategories, markWholePagesAsTheySayOfEachCodePoint) {
    constexpr CategoryMask mask = maskOf(GeneralCategory::decimalNumber, GeneralCategory::otherNumber) |
                                  maskOf(GeneralCategory::unassigned);
    std::vector<std::array<std::uint64_t, 4>> bits(categoryPageNumbers());
    markCategories(mask, bits.data());
    for (char32_t page = 0; page < 0x110000; page += 0x100) {
        ASSERT_LT(categoryPageNumber(page), categoryPageNumbers());
        for (char32_t i = 0; i < 0x100; ++i) {
            const bool expected = (mask & maskOf(generalCategory(page + i))) != 0;
            ASSERT_EQ((bits[categoryPageNumber(page)][i / 64] >> (i % 64) & 1) != 0, expected)
                << std::hex << static_cast<unsigned>(page + i);
        }
    }
}

} // namespace
