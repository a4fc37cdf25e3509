// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSCharacterSet.h"
#include "foundation/objects/NSString.h"
#include "tests/objects/RandomTexts.h"

using namespace ZQFoundation;
using RandomTexts::shownUnits;
using RandomTexts::stringOf;
using RandomTexts::textsOf;

namespace {

using Texts = std::vector<std::u16string>;

Texts modelOf(const std::u16string& text, const NSCharacterSet& separators) {
    Texts pieces;
    if (text.empty()) {
        return pieces;
    }
    pieces.emplace_back();
    bool isInRun = false;
    for (const char16_t unit : text) {
        const bool isSeparator = separators.characterIsMember(unit);
        if (isSeparator && !isInRun) {
            pieces.emplace_back();
        } else if (!isSeparator) {
            pieces.back() += unit;
        }
        isInRun = isSeparator;
    }
    return pieces;
}

void expectSplit(const std::u16string& text, const NSCharacterSet& set) {
    const NSString string = stringOf(text);
    ASSERT_EQ(textsOf(string.componentsSeparatedByCharacterSet(set)), modelOf(text, set)) << shownUnits(text);
    const Texts words = modelOf(text, NSCharacterSet::whitespaceCharacterSet());
    ASSERT_EQ(textsOf(string.componentsSeparatedByWhitespace()), words) << shownUnits(text);
    ASSERT_EQ(textsOf(string.componentsSeparatedByWhitespaces()), words) << shownUnits(text);
}

TEST(NSStringSplitting, followsASlowModel) {
    RandomTexts::Numbers numbers(19);
    const NSCharacterSet set = NSCharacterSet::characterSetWithCharactersInString(u",; \u20ac");
    for (int round = 0; round < 3000; ++round) {
        const std::size_t length = numbers.below(200);
        expectSplit(numbers.text(u"abc,; \t\n", length), set);
        expectSplit(numbers.text(u"abcdefghijklmnop ", length), set);
        expectSplit(numbers.text(u"abc,\u00e9 \u20ac\u3000\xD83D\xDE00", length), set);
        expectSplit(numbers.text(u" \t", length), set);
    }
}

TEST(NSStringSplitting, knowsTheSameWhiteSpaceInBothForms) {
    const NSCharacterSet blanks = NSCharacterSet::whitespaceCharacterSet();
    for (unsigned value = 0; value <= 0xFFFF; ++value) {
        const auto unit = static_cast<char16_t>(value);
        const std::size_t expected = blanks.characterIsMember(unit) ? 2 : 1;
        const std::u16string text = std::u16string(u"a") + unit + u"b";
        ASSERT_EQ(stringOf(text).componentsSeparatedByWhitespace().count(), expected) << value;
        ASSERT_EQ(stringOf(text + u"\u20ac").componentsSeparatedByWhitespace().count(), expected) << value;
    }
}

TEST(NSStringSplitting, makesPiecesOfAsciiEqualToOthers) {
    const NSArray pieces = NSString(u"ab \u20ac cd").componentsSeparatedByWhitespace();
    EXPECT_TRUE(pieces.isEqual(NSArray{"ab", u"\u20ac", "cd"}));
    EXPECT_TRUE(NSString(u"ab\n\u20ac").componentsSeparatedByLineBreak().isEqual(NSArray{"ab", u"\u20ac"}));
}

TEST(NSStringSplitting, splitsLongTexts) {
    constexpr std::size_t million = 1000000;
    const NSString newlines = stringOf(std::u16string(million, u'\n'));
    EXPECT_EQ(newlines.componentsSeparatedByLineBreak().count(), million + 1);
    EXPECT_EQ(newlines.componentsSeparatedByWhitespace().count(), 1U);
    const NSString blanks = stringOf(std::u16string(million, u' '));
    EXPECT_EQ(textsOf(blanks.componentsSeparatedByWhitespace()), (Texts{u"", u""}));
    EXPECT_EQ(blanks.componentsSeparatedByLineBreak().count(), 1U);
}

TEST(NSStringSplitting, withANilSetLeavesOnePiece) {
    EXPECT_EQ(textsOf(NSString("a b").componentsSeparatedByCharacterSet(nullptr)), Texts{u"a b"});
    EXPECT_EQ(NSString("").componentsSeparatedByCharacterSet(nullptr).count(), 0U);
    EXPECT_TRUE(NSString("").componentsSeparatedByLineBreak());
    EXPECT_FALSE(NSString().componentsSeparatedByLineBreak());
    EXPECT_FALSE(NSString().componentsSeparatedByWhitespace());
}

} // namespace
