// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "foundation/objects/NSCharacterSet.h"
#include "foundation/objects/NSString.h"
#include "tests/objects/RandomTexts.h"

using namespace ZQFoundation;
using RandomTexts::shownUnits;
using RandomTexts::stringOf;

namespace {

std::u16string leftTrimmed(const std::u16string& text, const NSCharacterSet& set) {
    std::size_t start = 0;
    while (2 * start < text.size() && set.characterIsMember(text[start])) {
        ++start;
    }
    return text.substr(start);
}

std::u16string rightTrimmed(std::u16string text, const NSCharacterSet& set) {
    while (!text.empty() && set.characterIsMember(text.back())) {
        text.pop_back();
    }
    return text;
}

TEST(NSStringTrimming, followsASlowModel) {
    RandomTexts::Numbers numbers(13);
    const NSCharacterSet sets[] = {NSCharacterSet::whitespaceAndControlCharacterSet(),
                                   NSCharacterSet::whitespaceCharacterSet(),
                                   NSCharacterSet::characterSetWithCharactersInString(u" x\u20ac")};
    for (int round = 0; round < 5000; ++round) {
        const bool isAscii = numbers.below(2) == 0;
        const std::u16string text =
            numbers.text(isAscii ? u"   \t\nx\x7F\x01" : u"   \u3000\u20acx\u200B\x01", numbers.below(12));
        const NSString string = stringOf(text);
        for (const NSCharacterSet& set : sets) {
            const std::u16string left = leftTrimmed(text, set);
            ASSERT_EQ(string.trimLeftCharactersOfCharacterSet(set).utf16(), left) << shownUnits(text);
            ASSERT_EQ(string.trimRightCharactersOfCharacterSet(set).utf16(), rightTrimmed(text, set))
                << shownUnits(text);
            ASSERT_EQ(string.trimCharactersOfCharacterSet(set).utf16(), rightTrimmed(left, set))
                << shownUnits(text);
        }
        ASSERT_EQ(string.trim().utf16(), rightTrimmed(leftTrimmed(text, sets[0]), sets[0]))
            << shownUnits(text);
    }
}

TEST(NSStringTrimming, takesTheSameAsTheSetFromBothForms) {
    const NSCharacterSet set = NSCharacterSet::whitespaceAndControlCharacterSet();
    for (unsigned value = 0; value <= 0xFFFF; ++value) {
        const auto unit = static_cast<char16_t>(value);
        const std::size_t expected = set.characterIsMember(unit) ? 2 : 4;
        ASSERT_EQ(stringOf(std::u16string(1, unit) + u"ab" + unit).trim().length(), expected) << value;
        ASSERT_EQ(stringOf(std::u16string(1, unit) + u"a\u20ac" + unit).trim().length(), expected) << value;
    }
}

TEST(NSStringTrimming, keepsWideTextsEqualToNarrowOnesWhenOnlyAsciiIsLeft) {
    EXPECT_EQ(NSString(u"\u3000ab").trim(), "ab");
    EXPECT_TRUE(NSString(u"\u3000ab\u3000").trim().isEqual(NSString("ab")));
    EXPECT_EQ(NSString(u"\u3000").trim(), "");
}

TEST(NSStringTrimming, withANilSetChangesNothing) {
    EXPECT_EQ(NSString(" a ").trimLeftCharactersOfCharacterSet(nullptr), " a ");
    EXPECT_EQ(NSString(" a ").trimRightCharactersOfCharacterSet(nullptr), " a ");
    EXPECT_EQ(NSString(u" \u20ac ").trimCharactersOfCharacterSet(nullptr), u" \u20ac ");
}

} // namespace
