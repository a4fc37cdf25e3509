// SPDX-License-Identifier: MIT
// Searching, splitting and trimming by sets of characters, compared with slow models.
#include <gtest/gtest.h>

#include "foundation/objects/Bodies.h"
#include "foundation/objects/NSCharacterSet.h"
#include "foundation/objects/NSString.h"
#include "tests/kit/Texts.h"

using namespace ZQFoundation;
using kit::shownUnits;
using kit::stringOf;
using namespace std::string_view_literals;

namespace {

constexpr NSRange nowhere{NSNotFound, 0};

NSRange modelFound(const std::u16string& text, std::u16string_view members, unsigned options, NSRange range) {
    NSRange found = nowhere;
    for (std::size_t at = range.location; at < range.location + range.length; ++at) {
        const bool isBackwards = (options & NSBackwardsSearch) != 0;
        const std::size_t anchor = isBackwards ? range.location + range.length - 1 : range.location;
        if (members.find(text[at]) == members.npos || ((options & NSAnchoredSearch) != 0 && at != anchor)) {
            continue;
        }
        found = {at, 1};
        if (!isBackwards) {
            break;
        }
    }
    return found;
}

TEST(StringCharacterSearch, findsWhatASlowSearchFinds) {
    kit::Numbers numbers(3);
    const std::u16string members = u"xy\u20ac\xD83D";
    const NSCharacterSet set = NSCharacterSet::characterSetWithCharactersInString(members);
    for (int round = 0; round < 20000; ++round) {
        const bool isAscii = numbers.below(2) == 0;
        const std::u16string text =
            numbers.text(isAscii ? u"abcdx" : u"abc\u00e9x\u20ac\xD83D\xDE00", numbers.below(40));
        const NSString string = stringOf(text);
        const std::size_t start = numbers.below(text.size() + 1);
        const NSRange range{start, numbers.below(text.size() - start + 1)};
        for (unsigned options = 0; options < 16; ++options) {
            ASSERT_EQ(string.rangeOfCharacterFromSet_options_range(set, options, range),
                      modelFound(text, members, options, range))
                << shownUnits(text) << " by " << options << " from " << range.location;
        }
        const NSRange whole{0, text.size()};
        ASSERT_EQ(string.rangeOfCharacterFromSet(set), modelFound(text, members, 0, whole));
    }
}

TEST(StringCharacterSearch, findsTheFirstAndTheLastMember) {
    const NSCharacterSet digits = NSCharacterSet::decimalDigitCharacterSet();
    const struct {
        const char* name;
        NSString text;
        NSRange first;
        NSRange last;
    } rows[] = {
        {"one", "ab7cd", {2, 1}, {2, 1}},
        {"two", "1ab2", {0, 1}, {3, 1}},
        {"none", "abc", nowhere, nowhere},
        {"empty", "", nowhere, nowhere},
        {"a run is not one", "a123b", {1, 1}, {3, 1}},
        {"wide", "\u20ac\u0663\u20ac", {1, 1}, {1, 1}},
        {"two units are no member", "\U0001D7CE", nowhere, nowhere},
        {"after U+0000",
         "\0"
         "7"sv,
         {1, 1},
         {1, 1}},
        {"with a mark after it", "1\u0301", {0, 1}, {0, 1}},
    };
    for (const auto& row : rows) {
        const NSRange whole = NSMakeRange(0, row.text.length());
        EXPECT_EQ((row.text.rangeOfCharacterFromSet(digits)), row.first) << row.name;
        EXPECT_EQ((row.text.rangeOfCharacterFromSet_options(digits, 0)), row.first) << row.name;
        EXPECT_EQ((row.text.rangeOfCharacterFromSet_options(digits, NSBackwardsSearch)), row.last)
            << row.name;
        EXPECT_EQ((row.text.rangeOfCharacterFromSet_options_range(digits, 0, whole)), row.first) << row.name;
    }
    const NSString text = "1a2b3";
    EXPECT_EQ(text.rangeOfCharacterFromSet_options_range(digits, 0, {1, 4}), (NSRange{2, 1}));
    EXPECT_EQ(text.rangeOfCharacterFromSet_options_range(digits, NSBackwardsSearch, {0, 4}), (NSRange{2, 1}));
    EXPECT_EQ(text.rangeOfCharacterFromSet_options_range(digits, 0, {1, 1}), nowhere);
    EXPECT_EQ(text.rangeOfCharacterFromSet_options_range(digits, 0, {5, 0}), nowhere);
    EXPECT_EQ(text.rangeOfCharacterFromSet(NSCharacterSet::emptyCharacterSet()), nowhere);
}

TEST(StringCharacterSearch, ofANilSetFindsNothing) {
    EXPECT_EQ(NSString("abc").rangeOfCharacterFromSet(nullptr), nowhere);
    EXPECT_EQ(NSString("abc").rangeOfCharacterFromSet_options(nullptr, NSBackwardsSearch), nowhere);
    EXPECT_EQ(NSString("abc").stringByTrimmingCharactersInSet(nullptr), "abc");
}

TEST(StringCharacterSearch, trimsBothEndsWithoutABound) {
    const NSCharacterSet blanks = NSCharacterSet::whitespaceCharacterSet();
    const struct {
        NSString text;
        NSString trimmed;
    } rows[] = {
        {"", ""},           {" ", ""},        {"    ", ""},    {"x", "x"},
        {"     x ", "x"},   {" x y ", "x y"}, {"\nx ", "\nx"}, {u"\u3000\u00e9\u00a0", u"\u00e9"},
        {u"\u3000a ", "a"}, {u"\u3000 ", ""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.text.stringByTrimmingCharactersInSet(blanks), row.trimmed)
            << shownUnits(row.text.utf16());
    }
}

TEST(StringCharacterSearch, trimsWhatASlowTrimDoes) {
    kit::Numbers numbers(59);
    const std::u16string members = u"xy\u20ac\xD83D";
    const NSCharacterSet set = NSCharacterSet::characterSetWithCharactersInString(members);
    for (int round = 0; round < 20000; ++round) {
        const bool isAscii = numbers.below(2) == 0;
        const std::u16string text =
            numbers.text(isAscii ? u"axy" : u"a\u00e9xy\u20ac\xD83D\xDE00", numbers.below(12));
        const std::size_t first = text.find_first_not_of(members);
        const std::u16string expected =
            first == text.npos ? u"" : text.substr(first, text.find_last_not_of(members) + 1 - first);
        const NSString string = stringOf(text);
        const NSString trimmed = string.stringByTrimmingCharactersInSet(set);
        ASSERT_TRUE(trimmed.isEqual(stringOf(expected))) << shownUnits(text);
        const bool isItself = detail::Access::string(trimmed) == detail::Access::string(string);
        ASSERT_TRUE(isItself || expected.size() < text.size()) << shownUnits(text);
    }
}

} // namespace
