// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSCharacterSet.h"
#include "foundation/objects/NSString.h"
#include "tests/objects/RandomTexts.h"
#include "tests/objects/TestValues.h"

using namespace ZQFoundation;
using RandomTexts::shownUnits;
using RandomTexts::stringOf;
using RandomTexts::textsOf;
using TestValues::raised;

namespace {

TEST(NSStringReplacing, replacesWhatASlowModelReplaces) {
    RandomTexts::Numbers numbers(23);
    const NSCharacterSet set = NSCharacterSet::characterSetWithCharactersInString(u"12\u20ac");
    for (int round = 0; round < 5000; ++round) {
        const bool isAscii = numbers.below(2) == 0;
        const std::u16string text =
            numbers.text(isAscii ? u"abc12" : u"ab1\u20ac\u00e9\xD83D\xDE00", numbers.below(700));
        for (const std::u16string replacement : {u"", u"#", u"<->", u"\u00e9"}) {
            std::u16string expected;
            for (const char16_t unit : text) {
                expected += set.characterIsMember(unit) ? replacement : std::u16string(1, unit);
            }
            const NSString found =
                stringOf(text).stringByReplacingEveryOccurrenceOfCharactersFromSet_withString(
                    set, stringOf(replacement));
            ASSERT_EQ(found.utf16(), expected) << shownUnits(text);
            ASSERT_TRUE(found.isEqual(stringOf(expected))) << shownUnits(text);
        }
    }
}

TEST(NSStringReplacing, indentsTheLinesThatTheSplitGives) {
    RandomTexts::Numbers numbers(37);
    for (int round = 0; round < 3000; ++round) {
        const bool isAscii = numbers.below(2) == 0;
        const std::u16string text =
            numbers.text(isAscii ? u"abc\r\n" : u"ab\u20ac\r\n\u2028", numbers.below(60));
        for (const std::u16string indent : {u"", u"> ", u"\u3000"}) {
            std::u16string expected = indent;
            const std::vector<std::u16string> lines =
                textsOf(stringOf(text).componentsSeparatedByLineBreak());
            for (std::size_t i = 0; i < lines.size(); ++i) {
                expected += i == 0 ? lines[i] : u"\n" + indent + lines[i];
            }
            ASSERT_EQ(stringOf(text).stringByIndentingLinesWithString(stringOf(indent)).utf16(), expected)
                << shownUnits(text);
        }
    }
}

TEST(NSStringReplacing, addsANewlineOnlyWhereNoneStands) {
    const NSCharacterSet newlines = NSCharacterSet::newlineCharacterSet();
    EXPECT_EQ(NSString("").addMissingNewline(), "");
    for (unsigned value = 0; value <= 0xFFFF; ++value) {
        const auto unit = static_cast<char16_t>(value);
        const std::u16string text = std::u16string(u"a") + unit;
        const std::u16string expected = newlines.characterIsMember(unit) ? text : text + u'\n';
        ASSERT_EQ(stringOf(text).addMissingNewline().utf16(), expected) << value;
    }
}

TEST(NSStringReplacing, repeatsPiecesOfBothForms) {
    for (const std::u16string piece : {u"a", u"ab", u"abc", u"\u20ac", u"a\u20acb", u"\xD83D"}) {
        std::u16string expected;
        for (std::int64_t count = 0; count < 70; ++count, expected += piece) {
            const NSString found = NSString::stringByRepeating_count(piece, count);
            ASSERT_EQ(found.utf16(), expected) << count;
            ASSERT_TRUE(found.isEqual(stringOf(expected))) << count;
        }
    }
    EXPECT_EQ(NSString::stringByRepeating_count("ab", 1000000).length(), 2000000U);
    EXPECT_FALSE(NSString::stringByRepeating_count("ab", -1));
    EXPECT_FALSE(NSString::stringByRepeating_count(nullptr, 3));
    EXPECT_EQ(NSString::stringByRepeating_count("", std::numeric_limits<std::int64_t>::max()), "");
}

TEST(NSStringReplacing, refusesToRepeatBeyondTheMemory) {
    for (const StringView piece : {StringView("ab"), StringView(u"\u20ac")}) {
        for (const std::int64_t count :
             {std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::max() / 2,
              std::int64_t{1} << 61}) {
            EXPECT_EQ(raised([&] { NSString::stringByRepeating_count(piece, count); }), "NSMallocException")
                << count;
        }
    }
}

} // namespace
