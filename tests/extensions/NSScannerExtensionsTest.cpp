// SPDX-License-Identifier: MIT
// Moves of a scanner up to and past a text.
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "foundation/format/NSScanner.h"
#include "foundation/objects/NSCharacterSet.h"
#include "tests/kit/Values.h"

using namespace ZQFoundation;
using namespace kit;
using namespace std::string_view_literals;

namespace {

NSScanner scannerAt(const NSString& text, std::size_t location) {
    NSScanner scanner(text);
    scanner.setScanLocation(location);
    return scanner;
}

struct TargetRow {
    NSString text;
    std::size_t location;
    StringView target;
    bool isUpTo; ///< what `scanUpToString` answers
    std::size_t upTo;
    bool isPast; ///< what `scanPastString` answers
    std::size_t past;
};

const TargetRow targetRows[] = {
    {"key: value", 0, ":", true, 3, true, 4},
    {"key: value", 3, ":", true, 3, true, 4}, // already at the target
    {"  : x", 0, ":", true, 0, true, 3},      // likewise, before what is skipped
    {"key: value", 0, "#", false, 0, false, 0},
    {"key: value", 4, ":", false, 4, false, 4}, // absent from the rest
    {"ab", 0, "ab", true, 0, true, 2},
    {"   ", 1, "a", false, 1, false, 1},
    {"abc   ", 0, "z", false, 0, false, 0},
    {"abc", 0, "", false, 0, false, 0},
    {"abc", 0, nullptr, false, 0, false, 0},
    {"key: VALUE!", 0, "value", true, 5, true, 10},
    {"a b", 0, " ", true, 1, false, 0}, // up to the blank, which taking the target then skips
    {" ab", 0, " ", false, 0, false, 0},
    {"ab  ", 0, "  ", false, 0, false, 0}, // only spaces from the target on count as the end
    {"abc\n \t", 0, "\n", false, 0, false, 0},
    {"abc\nd", 0, "\n", true, 3, false, 0},
    {"a: b", 0, ": ", true, 1, true, 3},
    {u"\u20AC\u00E9: x", 0, ":", true, 2, true, 3},
    {"ab\u20AC", 0, "\u20AC", true, 2, true, 3},
    {"gr\u00F6\u00DFe=1", 0, "E=", true, 4, true, 6},
    {"\U0001F600: x", 0, ":", true, 2, true, 3}, // a pair counts as two
    {"a\0b:"sv, 0, ":", true, 3, true, 4},
    {"ab\0c"sv, 0, "\0"sv, true, 2, true, 3},
};

TEST(NSScannerExtensions, moveToATargetOrStay) {
    for (const TargetRow& row : targetRows) {
        SCOPED_TRACE(utf8Of(row.text) + " to " + utf8Of(NSString(row.target)));
        NSScanner scanner = scannerAt(row.text, row.location);
        EXPECT_EQ(scanner.scanUpToString(row.target), row.isUpTo);
        EXPECT_EQ(scanner.scanLocation(), row.upTo);
        scanner.setScanLocation(row.location);
        EXPECT_EQ(scanner.scanPastString(row.target), row.isPast);
        EXPECT_EQ(scanner.scanLocation(), row.past);
    }
}

TEST(NSScannerExtensions, followTheCaseFlag) {
    NSScanner scanner("a B b");
    scanner.setCaseSensitive(true);
    EXPECT_FALSE(scanner.scanUpToString("A"));
    EXPECT_FALSE(scanner.scanPastString("A"));
    EXPECT_EQ(scanner.scanLocation(), 0U);
    EXPECT_TRUE(scanner.scanPastString("b"));
    EXPECT_EQ(scanner.scanLocation(), 5U);
}

TEST(NSScannerExtensions, skipNothingWithTheEmptySet) {
    NSScanner scanner("a b ");
    scanner.setCharactersToBeSkipped(NSCharacterSet::emptyCharacterSet());
    EXPECT_TRUE(scanner.scanPastString(" "));
    EXPECT_EQ(scanner.scanLocation(), 2U);
    EXPECT_TRUE(scanner.scanPastString(" "));
    EXPECT_EQ(scanner.scanLocation(), 4U);
    EXPECT_FALSE(scanner.scanPastString(" "));
    EXPECT_EQ(scanner.scanLocation(), 4U);
}

TEST(NSScannerExtensions, skipTheCharactersOfTheSet) {
    NSScanner scanner("--a--b--");
    scanner.setCharactersToBeSkipped(NSCharacterSet::characterSetWithCharactersInString("-"));
    EXPECT_FALSE(scanner.scanPastString("-"));
    EXPECT_TRUE(scanner.scanPastString("a"));
    EXPECT_EQ(scanner.scanLocation(), 3U);
    EXPECT_TRUE(scanner.scanUpToString("b"));
    EXPECT_EQ(scanner.scanLocation(), 3U);
    EXPECT_TRUE(scanner.scanPastString("b"));
    EXPECT_EQ(scanner.scanLocation(), 6U);
    EXPECT_FALSE(scanner.scanUpToString("-"));
    EXPECT_TRUE(scanner.isAtEnd());
}

TEST(NSScannerExtensions, overANilStringFindNothing) {
    NSScanner scanner{NSString()};
    EXPECT_FALSE(scanner.scanUpToString("a"));
    EXPECT_FALSE(scanner.scanPastString("a"));
    EXPECT_EQ(scanner.scanLocation(), 0U);
    NSScanner another("abc");
    EXPECT_FALSE(another.scanPastString(nullptr));
    EXPECT_EQ(another.scanLocation(), 0U);
}

TEST(NSScannerExtensions, overALongText) {
    const std::string text = std::string(1000000, 'a').append(":").append(1000000, 'b');
    NSScanner scanner{NSString(text)};
    EXPECT_TRUE(scanner.scanUpToString(":"));
    EXPECT_EQ(scanner.scanLocation(), 1000000U);
    EXPECT_TRUE(scanner.scanPastString(":"));
    EXPECT_FALSE(scanner.scanPastString(":"));
    EXPECT_EQ(scanner.scanLocation(), 1000001U);
    NSScanner steps{NSString(std::string(200000, ':'))};
    std::size_t count = 0;
    while (steps.scanPastString(":")) {
        ++count;
    }
    EXPECT_EQ(count, 200000U);
}

} // namespace
