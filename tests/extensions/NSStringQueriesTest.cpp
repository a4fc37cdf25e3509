// SPDX-License-Identifier: MIT
// Defaults, emptiness, containment, counts and lengths of strings.
#include <algorithm>
#include <string>

#include <gtest/gtest.h>

#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSCharacterSet.h"
#include "tests/kit/Texts.h"
#include "tests/kit/Values.h"

using namespace ZQFoundation;
using namespace kit;
using namespace std::string_literals;
using namespace std::string_view_literals;

namespace {

TEST(NSStringQueries, takeTheReceiverAsTheDefaultForAMissingArgument) {
    EXPECT_EQ(NSString("x").asDefaultOr(nullptr), "x");
    EXPECT_EQ(NSString("x").asDefaultOr("y"), "y");
    EXPECT_EQ(NSString("x").asDefaultOr(""), "");
    EXPECT_EQ(NSString("").asDefaultOr(nullptr), "");
    EXPECT_FALSE(NSString().asDefaultOr("y"));
    EXPECT_FALSE(NSString().asDefaultOr(nullptr));
}

TEST(NSStringQueries, answerNothingForNil) {
    const NSString none;
    EXPECT_FALSE(none.isEmpty());
    for (const StringView text : {StringView("a"), StringView(""), StringView(nullptr)}) {
        EXPECT_FALSE(none.containsString(text));
        EXPECT_FALSE(none.containsString_caseInsensitiveSearch(text, true));
        EXPECT_FALSE(none.substringFromEndOfString(text));
    }
    EXPECT_FALSE(none.containsDecimalDigit());
    EXPECT_EQ(none.occurrenceCountOfCharacter(u'a'), 0U);
    EXPECT_EQ(none.compareLength(nullptr), NSOrderedSame);
    EXPECT_EQ(none.compareLength(""), NSOrderedSame);
}

TEST(NSStringQueries, callOnlyTheStringWithoutUnitsEmpty) {
    EXPECT_TRUE(NSString("").isEmpty());
    EXPECT_TRUE(NSString("x").substringFromIndex(1).isEmpty());
    for (const NSString& text : {NSString(" "), NSString("\0"sv), NSString("\u200B"), stringOf(u"\xD83D")}) {
        EXPECT_FALSE(text.isEmpty());
    }
}

struct ContainmentRow {
    const char* name;
    NSString text;
    NSString other;
    bool isContained;
};

TEST(NSStringQueries, compareUnitsForContainment) {
    const ContainmentRow rows[] = {
        {"the whole", "hello", "hello", true},
        {"other case", "hello", "HE", false},
        {"the empty string", "hello", "", false},
        {"the empty string in the empty one", "", "", false},
        {"nil", "hello", nullptr, false},
        {"in the empty string", "", "a", false},
        {"U+0000 inside", "a\0b"sv, "\0b"sv, true},
        {"a base without its mark", "e\u0301x", "e", true},
        {"a mark without its base", "e\u0301x", u"\u0301", true},
        {"decomposed in composed", "\u00E9", "e\u0301", false},
        {"composed in decomposed", "e\u0301", "\u00E9", false},
        {"half a pair", "a\U0001F600b", stringOf(u"\xD83D"), true},
        {"another pair with the same first half", "\U0001F600", "\U0001F601", false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.text.containsString(row.other), row.isContained) << row.name;
        EXPECT_EQ(row.text.containsString_caseInsensitiveSearch(row.other, false), row.isContained)
            << row.name;
    }
}

TEST(NSStringQueries, foldCaseForContainmentWhenAsked) {
    const ContainmentRow rows[] = {
        {"mixed", "HeLLo", "hEllO", true},
        {"absent", "hello", "HEY", false},
        {"nil", "hello", nullptr, false},
        {"empty", "hello", "", false},
        {"in empty", "", "A", false},
        {"sharp s", "stra\u00DFe", "STRASSE", true},
        {"signs stay apart", "a[b", "A{B", false},
        {"U+0000 inside", "A\0B"sv, "\0b"sv, true},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.text.containsString_caseInsensitiveSearch(row.other, true), row.isContained)
            << row.name;
    }
}

TEST(NSStringQueries, startTheRestAfterTheFirstMarker) {
    const struct {
        const char* name;
        NSString text;
        NSString marker;
        NSString rest;
    } rows[] = {
        {"the first of two", "key=value=x", "=", "value=x"},
        {"at the end", "key=value=x", "x", ""},
        {"absent", "key=value=x", "?", nullptr},
        {"nil", "key=value=x", nullptr, nullptr},
        {"empty", "key=value=x", "", nullptr},
        {"longer than the string", "abc", "abcd", nullptr},
        {"overlapping", "aaa", "aa", "a"},
        {"other case", "aXb", "x", nullptr},
        {"U+0000", "a\0b\0c"sv, "\0"sv, "b\0c"sv},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(utf8Of(row.text.substringFromEndOfString(row.marker)), utf8Of(row.rest)) << row.name;
    }
    const NSString longText = stringOf(std::u16string(1000000, u'a') + u"b" + std::u16string(1000000, u'a'));
    EXPECT_EQ(longText.substringFromEndOfString("b").length(), 1000000U);
}

TEST(NSStringQueries, findTheDecimalDigitsOfAllScripts) {
    const NSCharacterSet digits = NSCharacterSet::decimalDigitCharacterSet();
    for (unsigned value = 0; value <= 0xFFFF; ++value) {
        const auto unit = static_cast<char16_t>(value);
        ASSERT_EQ(stringOf(std::u16string{u'x', unit}).containsDecimalDigit(), digits.characterIsMember(unit))
            << value;
    }
    for (const NSString& text :
         {NSString("\u0663"), NSString("\0"s + "5"), NSString(std::string(5000, 'x') + '7')}) {
        EXPECT_TRUE(text.containsDecimalDigit());
    }
    for (const char* const text : {"", "\u00B2", "\u00BD", "\u2160", "\u2460", "F", "/:", "\U0001D7CE"}) {
        EXPECT_FALSE(NSString(text).containsDecimalDigit()) << text;
    }
}

TEST(NSStringQueries, countUnitsOfEveryLength) {
    Numbers numbers(1);
    for (std::size_t length = 0; length <= 300; ++length) {
        for (const std::u16string_view alphabet : {u"ab"sv, u"ab\u00E1\u20AC\uFFFF\0"sv}) {
            const std::u16string text = numbers.text(alphabet, length);
            for (const char16_t unit : {u'a', u'b', u'\0', u'\u00E1', u'\u20AC', u'\uFFFF', u'\u0161'}) {
                ASSERT_EQ(stringOf(text).occurrenceCountOfCharacter(unit),
                          static_cast<std::size_t>(std::count(text.begin(), text.end(), unit)))
                    << shownUnits(text) << " of " << unsigned{unit};
            }
        }
    }
    // Units whose low byte alone is the same.
    EXPECT_EQ(stringOf(std::u16string(50, u'\u0161')).occurrenceCountOfCharacter(u'a'), 0U);
    EXPECT_EQ(stringOf(std::u16string(50, u'a')).occurrenceCountOfCharacter(u'\u0161'), 0U);
    EXPECT_EQ(NSString("\U0001F600\U0001F601").occurrenceCountOfCharacter(0xD83D), 2U);
    EXPECT_EQ(stringOf(repeated(u"a,", 500000)).occurrenceCountOfCharacter(u','), 500000U);
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
        {"", "", NSOrderedSame},
        {"a", nullptr, NSOrderedAscending},
        {"", nullptr, NSOrderedSame},
        {u"\u20AC\u20AC", "ab", NSOrderedSame}, // units, not bytes
        {"ab", "\u20AC\u20AC", NSOrderedSame},
        {"ab", u"\u20AC", NSOrderedAscending},
        {"ab", "\u20AC", NSOrderedAscending},
        {u"\U0001F600", "ab", NSOrderedSame}, // units, not characters
        {"ab", "\U0001F600", NSOrderedSame},
        {"e\u0301", "\u00E9", NSOrderedAscending},
        {"a", "\xFF\xFE", NSOrderedDescending},
        {"\0\0"sv, "a", NSOrderedAscending},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.text.compareLength(row.other), row.order) << shownUnits(row.text.utf16());
    }
    const NSArray sorted = NSArray{"a", "ccc", "", "bb", "x"}.sortedArrayUsingComparator(
        [](const NSObject& left, const NSObject& right) {
            return NSString(left).compareLength(NSString(right));
        });
    EXPECT_EQ(shown(sorted), shown(NSArray{"ccc", "bb", "a", "x", ""}));
}

} // namespace
