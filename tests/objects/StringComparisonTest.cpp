// SPDX-License-Identifier: MIT
// The order of texts, by units and in any case.
#include <string_view>

#include <gtest/gtest.h>

#include "foundation/objects/NSString.h"

using namespace ZQFoundation;
using namespace std::string_view_literals;

namespace {

struct OrderRow {
    const char* name;
    NSString left;
    NSString right;
    int order;
};

template <std::size_t size>
void expectOrders(NSComparisonResult (NSString::*compare)(StringView) const, const OrderRow (&rows)[size]) {
    for (const OrderRow& row : rows) {
        EXPECT_EQ((row.left.*compare)(row.right), row.order) << row.name;
        EXPECT_EQ((row.right.*compare)(row.left), -row.order) << row.name;
    }
}

TEST(StringComparison, ordersByUnitsAndTakesCanonicalEquivalentsAsTheSame) {
    const OrderRow rows[] = {
        {"same", "abc", "abc", 0},
        {"both empty", "", "", 0},
        {"empty first", "", "a", -1},
        {"a prefix first", "ab", "abc", -1},
        {"upper case first", "B", "a", -1},
        {"digits by units", "a10", "a2", -1},
        {"beyond ascii", "z", "\u00e9", -1},
        {"ascii in both forms", "abc", NSString("abc\u00e9").substringToIndex(3), 0},
        {"U+0000 counts", "a\0b"sv, "a\0c"sv, -1},
        {"surrogate units below U+FF5E", "\U0001F600", "\uFF5E", -1},
        {"composed and decomposed", "\u00e9", "e\u0301", 0},
        {"inside a word", "caf\u00e9s", "cafe\u0301s", 0},
        {"difference after it", "caf\u00e9a", "cafe\u0301b", -1},
        {"letter and sign of the same shape", "\u212B", "\u00C5", 0},
        {"sign and sequence", "\u212B", "A\u030A", 0},
        {"marks in either order", "a\u0323\u0307", "a\u0307\u0323", 0},
        {"marks of one class keep their order", "a\u0301\u0300", "a\u0300\u0301", 1},
        {"a Hangul syllable and its parts", "\uD55C", "\u1112\u1161\u11AB", 0},
        {"two composed marks", "\u1E69", "s\u0323\u0307", 0},
        {"compatible is not canonical", "\uFB01", "fi", 1},
        {"another letter", "e", "\u00e9", -1},
    };
    expectOrders(&NSString::compare, rows);
    EXPECT_EQ(NSString("a").compare(nullptr), NSOrderedDescending);
    EXPECT_EQ(NSString("").compare(nullptr), NSOrderedSame);
}

TEST(StringComparison, foldsToLowerCaseAndOrdersByCodePointInAnyCase) {
    const OrderRow rows[] = {
        {"equal but for case", "TraceLevel", "tRACElEVEL", 0},
        {"both empty", "", "", 0},
        {"empty first", "", "a", -1},
        {"a prefix first", "AB", "abc", -1},
        {"letters in any case", "a", "B", -1},
        {"underscore before a small letter", "_", "a", -1},
        {"underscore before a capital", "_", "A", -1},
        {"digits by code point", "a2", "A10", 1},
        {"sharp s", "stra\u00dfe", "STRASSE", 0},
        {"ligature", "\uFB01", "FI", 0},
        {"final sigma", "\u03BF\u03B4\u03BF\u03C2", "\u039F\u0394\u039F\u03A3", 0},
        {"beyond the first plane", "\U00010400", "\U00010428", 0},
        {"dotted capital I is no i", "\u0130", "i", 1},
        {"dotless i is no I", "I", "\u0131", -1},
        {"code points, not units", "\uFF5E", "\U0001F600", -1},
        {"mixed forms", "ABC\u00c9", "abc\u00e9", 0},
    };
    expectOrders(&NSString::caseInsensitiveCompare, rows);
}

} // namespace
