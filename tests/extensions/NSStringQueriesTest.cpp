// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>

#include "foundation/objects/NSCharacterSet.h"
#include "foundation/objects/NSString.h"
#include "tests/objects/RandomTexts.h"

using namespace ZQFoundation;
using RandomTexts::shownUnits;
using RandomTexts::stringOf;

namespace {

void expectCounts(const std::u16string& text) {
    const NSString string = stringOf(text);
    for (const char16_t unit : {u'a', u'b', u'\0', u'\u00e1', u'\u20ac', u'\uFFFF', u'\u0161'}) {
        ASSERT_EQ(string.occurrenceCountOfCharacter(unit),
                  static_cast<std::size_t>(std::count(text.begin(), text.end(), unit)))
            << shownUnits(text) << " of " << unsigned{unit};
    }
}

TEST(NSStringQueries, countUnitsOfEveryLength) {
    RandomTexts::Numbers numbers(1);
    for (std::size_t length = 0; length <= 200; ++length) {
        expectCounts(numbers.text(u"ab", length));
        expectCounts(numbers.text(u"ab\u00e1\u20ac\uFFFF", length));
    }
    // Units whose low byte alone is the same.
    EXPECT_EQ(stringOf(std::u16string(50, u'\u0161')).occurrenceCountOfCharacter(u'a'), 0U);
    EXPECT_EQ(stringOf(std::u16string(50, u'a')).occurrenceCountOfCharacter(u'\u0161'), 0U);
    EXPECT_EQ(stringOf(std::u16string(100000, u'a')).occurrenceCountOfCharacter(u'a'), 100000U);
}

TEST(NSStringQueries, findWhatTheStandardStringFinds) {
    RandomTexts::Numbers numbers(2);
    for (int round = 0; round < 10000; ++round) {
        const bool isAscii = numbers.below(2) == 0;
        const std::u16string alphabet = isAscii ? u"ab" : u"ab\u0301";
        const std::u16string text = numbers.text(alphabet, numbers.below(40));
        const std::u16string wanted = numbers.text(alphabet, numbers.below(5));
        const std::size_t found = wanted.empty() ? text.npos : text.find(wanted);
        const NSString string = stringOf(text);
        ASSERT_EQ(string.containsString(stringOf(wanted)), found != text.npos);
        const NSString rest = string.substringFromEndOfString(stringOf(wanted));
        ASSERT_EQ(static_cast<bool>(rest), found != text.npos) << shownUnits(wanted);
        if (rest) {
            ASSERT_EQ(rest.utf16(), text.substr(found + wanted.size())) << shownUnits(text);
        }
        std::u16string upper = wanted;
        std::replace(upper.begin(), upper.end(), u'a', u'A');
        ASSERT_EQ(string.containsString_caseInsensitiveSearch(stringOf(upper), true), found != text.npos);
    }
}

TEST(NSStringQueries, knowTheDigitsOfEachForm) {
    const NSCharacterSet digits = NSCharacterSet::decimalDigitCharacterSet();
    for (unsigned value = 0; value <= 0xFFFF; ++value) {
        const auto unit = static_cast<char16_t>(value);
        ASSERT_EQ(stringOf(std::u16string(3, unit)).containsDecimalDigit(), digits.characterIsMember(unit));
    }
}

TEST(NSStringQueries, putLongerTextsFirstWhateverTheirForm) {
    const struct {
        NSString text;
        StringView other;
        NSComparisonResult order;
    } rows[] = {
        {"abc", "ab", NSOrderedAscending},
        {"ab", "abc", NSOrderedDescending},
        {"ab", "cd", NSOrderedSame},
        {u"\u20ac\u20ac", "ab", NSOrderedSame},
        {"ab", "\u20ac\u20ac", NSOrderedSame},
        {"ab", u"\u20ac", NSOrderedAscending},
        {u"\U0001F600", "ab", NSOrderedSame},
        {"ab", "\U0001F600", NSOrderedSame},
        {"a", "\xFF\xFE", NSOrderedDescending},
        {"a", nullptr, NSOrderedAscending},
        {"", nullptr, NSOrderedSame},
        {"", "", NSOrderedSame},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.text.compareLength(row.other), row.order) << shownUnits(row.text.utf16());
    }
}

} // namespace
