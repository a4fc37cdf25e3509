// SPDX-License-Identifier: MIT
// Searching, splitting and trimming by sets of characters, compared with slow models.
#include <gtest/gtest.h>

#include "foundation/objects/Bodies.h"
#include "foundation/objects/NSCharacterSet.h"
#include "foundation/objects/NSString.h"
#include "tests/kit/Texts.h"
#include "tests/kit/Values.h"

using namespace ZQFoundation;
using kit::nowhere;
using kit::shownUnits;
using kit::stringOf;
using namespace std::string_view_literals;

namespace {

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
    EXPECT_EQ(text.rangeOfCharacterFromSet_options_range(digits, NSAnchoredSearch, {2, 3}), (NSRange{2, 1}));
    EXPECT_EQ(text.rangeOfCharacterFromSet_options_range(digits, NSAnchoredSearch, {1, 4}), nowhere);
    const unsigned atTheEnd = NSAnchoredSearch | NSBackwardsSearch;
    EXPECT_EQ(text.rangeOfCharacterFromSet_options_range(digits, atTheEnd, {0, 3}), (NSRange{2, 1}));
    EXPECT_EQ(text.rangeOfCharacterFromSet_options_range(digits, atTheEnd, {0, 4}), nowhere);
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
    const NSString same = "x y";
    EXPECT_EQ(detail::Access::string(same.stringByTrimmingCharactersInSet(blanks)),
              detail::Access::string(same));
}

} // namespace
