// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "foundation/format/NSScanner.h"
#include "tests/kit/Values.h"

namespace {

using namespace ZQFoundation;
using kit::utf8Of;

struct MoveRow {
    StringView string;
    std::size_t location;
    StringView target;
    bool isUpTo; ///< what `scanUpToString` answers
    std::size_t upTo;
    bool isPast; ///< what `scanPastString` answers
    std::size_t past;
};

const MoveRow rows[] = {
    {"key: value", 0, ":", true, 3, true, 4},
    {"key: value", 0, "#", false, 0, false, 0},
    {"key: value", 2, "key", false, 2, false, 2},
    {"key: value", 0, "VALUE", true, 5, true, 10},
    {"key: value", 3, ":", true, 3, true, 4}, // stands there already
    {"  : x", 0, ":", true, 0, true, 3},      // likewise, before what is skipped
    {"  ", 0, "x", false, 0, false, 0},
    {"", 0, "x", false, 0, false, 0},
    {"x", 1, "x", false, 1, false, 1},
    {"abc", 0, "", false, 0, false, 0},
    {"abc", 0, nullptr, false, 0, false, 0},
    {"ab  ", 0, "  ", false, 0, false, 0}, // nothing but blanks from the target on is the end
    {"ab \n", 0, "\n", false, 0, false, 0},
    {"ab c", 0, " c", true, 2, false, 0}, // up to the blank, which taking the target then skips
    {"ab:", 0, ":", true, 2, true, 3},
    {"größe=1", 0, "=", true, 5, true, 6},
    {"größe=1", 0, "E=", true, 4, true, 6},
};

TEST(NSScannerExtensions, moveUpToATargetOrStay) {
    for (const MoveRow& row : rows) {
        NSScanner scanner(row.string);
        scanner.setScanLocation(row.location);
        EXPECT_EQ(scanner.scanUpToString(row.target), row.isUpTo) << utf8Of(row.string);
        EXPECT_EQ(scanner.scanLocation(), row.upTo) << utf8Of(row.string);
    }
}

TEST(NSScannerExtensions, movePastATargetOrStay) {
    for (const MoveRow& row : rows) {
        NSScanner scanner(row.string);
        scanner.setScanLocation(row.location);
        EXPECT_EQ(scanner.scanPastString(row.target), row.isPast) << utf8Of(row.string);
        EXPECT_EQ(scanner.scanLocation(), row.past) << utf8Of(row.string);
    }
}

TEST(NSScannerExtensions, mindCaseWhenTheScannerDoes) {
    NSScanner scanner("a B b");
    scanner.setCaseSensitive(true);
    EXPECT_TRUE(scanner.scanPastString("b"));
    EXPECT_EQ(scanner.scanLocation(), 5U);
    scanner.setScanLocation(0);
    EXPECT_FALSE(scanner.scanPastString("A"));
    EXPECT_EQ(scanner.scanLocation(), 0U);
}

TEST(NSScannerExtensions, findATargetOfBlanksWhenNothingIsSkipped) {
    NSScanner scanner("ab c");
    scanner.setCharactersToBeSkipped(nullptr);
    EXPECT_TRUE(scanner.scanPastString(" c"));
    EXPECT_EQ(scanner.scanLocation(), 4U);
    scanner.setScanLocation(0);
    EXPECT_TRUE(scanner.scanUpToString(" "));
    EXPECT_EQ(scanner.scanLocation(), 2U);
}

} // namespace
