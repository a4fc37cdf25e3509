// SPDX-License-Identifier: MIT
// Sets of characters page by page: shared pages, and as many as there can be.
#include "foundation/objects/CharacterSetPages.h"

#include <gtest/gtest.h>

using namespace ZQFoundation;

namespace {

using detail::codeSpace;

NSCharacterSet setOfRange(std::size_t location, std::size_t length) {
    return NSCharacterSet::characterSetWithRange(NSMakeRange(location, length));
}

TEST(CharacterSetPages, unitesAndIntersects) {
    const NSCharacterSet letters = NSCharacterSet::letterCharacterSet();
    const NSCharacterSet someRange = setOfRange(0x40, 0x20100);
    NSMutableCharacterSet unionBuilder(letters);
    unionBuilder.formUnionWithCharacterSet(someRange);
    NSMutableCharacterSet sharedBuilder(letters);
    sharedBuilder.formIntersectionWithCharacterSet(someRange);
    const NSCharacterSet united = unionBuilder.characterSet();
    const NSCharacterSet shared = sharedBuilder.characterSet();
    for (char32_t codePoint = 0; codePoint < codeSpace; ++codePoint) {
        const bool left = letters.longCharacterIsMember(codePoint);
        const bool right = someRange.longCharacterIsMember(codePoint);
        ASSERT_EQ(united.longCharacterIsMember(codePoint), left || right) << std::hex << +codePoint;
        ASSERT_EQ(shared.longCharacterIsMember(codePoint), left && right) << std::hex << +codePoint;
    }
}

TEST(CharacterSetPages, keepsPagesApartThatTheOriginalShares) {
    NSMutableCharacterSet first; // the same page in two planes
    first.addCharactersInRange(NSMakeRange(0x41, 1));
    first.addCharactersInRange(NSMakeRange(0x10041, 1));
    NSMutableCharacterSet second(first.characterSet());
    second.removeCharactersInString("A");
    EXPECT_FALSE(second.longCharacterIsMember(0x41));
    EXPECT_TRUE(second.longCharacterIsMember(0x10041));
}

TEST(CharacterSetPages, storesAllDifferentPages) {
    NSMutableCharacterSet set;
    for (std::size_t page = 0; page < 0x1100; ++page) { // the page's number in bits, and a mark
        for (std::size_t bit = 0; bit < 13; ++bit) {
            if ((page >> bit & 1) != 0) {
                set.addCharactersInRange(NSMakeRange(page << 8 | bit, 1));
            }
        }
        set.addCharactersInRange(NSMakeRange(page << 8 | 0xFF, 1));
    }
    const NSCharacterSet built = set.characterSet();
    for (char32_t codePoint = 0; codePoint < codeSpace; ++codePoint) {
        const char32_t low = codePoint & 0xFF;
        const bool expected = low == 0xFF || (low < 13 && (codePoint >> 8 >> low & 1) != 0);
        ASSERT_EQ(built.longCharacterIsMember(codePoint), expected) << std::hex << +codePoint;
    }
    EXPECT_EQ(built.invertedSet().invertedSet(), built);
}

TEST(CharacterSetPages, setsRangesAcrossPagesAndPlanes) {
    const struct {
        char32_t first;
        char32_t end;
    } rows[] = {{0, 1},           {0xFF, 0x101},        {0x100, 0x200}, {0xFFFF, 0x10001},
                {0x20, 0x110000}, {0x10FFFF, 0x110000}, {0x500, 0x500}, {0, 0x110000}};
    for (const auto& row : rows) {
        for (const bool isMember : {true, false}) {
            detail::CharacterSetPages pages;
            if (!isMember) {
                pages.invert();
            }
            pages.setRange(row.first, row.end, isMember);
            const NSCharacterSet set = pages.characterSet();
            for (const char32_t edge : {row.first, row.end}) {
                for (char32_t point = edge < 2 ? 0 : edge - 2; point < edge + 2 && point < codeSpace;
                     ++point) {
                    const bool isInside = point >= row.first && point < row.end;
                    EXPECT_EQ(pages.contains(point), isInside == isMember) << std::hex << +point;
                    EXPECT_EQ(set.longCharacterIsMember(point), isInside == isMember) << std::hex << +point;
                }
            }
        }
    }
}

} // namespace
