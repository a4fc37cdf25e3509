// SPDX-License-Identifier: MIT
// Scanning texts and numbers, step by step.
#include "foundation/format/NSScanner.h"

#include <cmath>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "tests/kit/Texts.h"
#include "tests/kit/Values.h"

namespace {

using namespace ZQFoundation;
using kit::raised;
using kit::utf8Of;
using namespace std::string_view_literals;

constexpr const char* untouched = "untouched";

struct TextRow {
    StringView string;
    std::size_t location;
    StringView text;
    bool isCaseSensitive;
    bool result;
    StringView output; ///< "untouched": nothing was put out
    std::size_t after;
};

using TextScan = bool (NSScanner::*)(StringView, NSString*);

template <std::size_t size>
void expectRows(TextScan scan, const TextRow (&rows)[size]) {
    for (std::size_t i = 0; i < size; ++i) {
        const TextRow& row = rows[i];
        NSScanner scanner(row.string);
        scanner.setScanLocation(row.location);
        scanner.setCaseSensitive(row.isCaseSensitive);
        NSString output = untouched;
        EXPECT_EQ((scanner.*scan)(row.text, &output), row.result) << i;
        EXPECT_EQ(utf8Of(output), utf8Of(row.output)) << i;
        EXPECT_EQ(scanner.scanLocation(), row.after) << i;
        scanner.setScanLocation(row.location);
        EXPECT_EQ((scanner.*scan)(row.text, nullptr), row.result) << i;
        EXPECT_EQ(scanner.scanLocation(), row.after) << i;
    }
}

TEST(NSScanner, scansUpToAText) {
    const TextRow rows[] = {
        {"key: value", 0, ":", false, true, "key", 3}, {"key: value", 3, ":", false, false, untouched, 3},
        {"  : x", 0, ":", false, false, untouched, 0}, {"abc", 0, "B", false, true, "a", 1},
        {"abc", 0, "B", true, true, "abc", 3},         {"abc", 0, "b", true, true, "a", 1},
        {"abc   ", 0, "z", false, true, "abc   ", 6},  {"a b", 0, " b", false, true, "a", 1},
        {"   ", 0, "a", false, false, untouched, 0},   {"", 0, "a", false, false, untouched, 0},
        {"abc", 3, "a", false, false, untouched, 3},   {" \t\r\nab:", 0, ":", false, true, "ab", 6},
        {"ab:cd:", 3, ":", false, true, "cd", 5},      {"aab", 0, "ab", false, true, "a", 1},
        {"größe: 3", 0, ":", false, true, "größe", 5}, {"日本。x", 0, "。", false, true, "日本", 2},
        {"abc", 0, "", false, true, "abc", 3},         {" abc ", 0, "", false, true, "abc ", 5},
        {"abc", 0, nullptr, false, true, "abc", 3},    {"  ", 0, "", false, false, untouched, 0},
        {"abc  ", 3, "a", false, false, untouched, 3}, {"abc ", 3, "", false, false, untouched, 3},
        {"a:b", 2, ":", false, true, "b", 3},          {" ab", 0, " a", false, true, "ab", 3},
        {"aBc:", 0, ":", false, true, "aBc", 3},       {"\r\n a\nb:c", 0, ":", false, true, "a\nb", 6},
        {"😀:x", 0, ":", false, true, "😀", 2},          {"a\0b:"sv, 0, ":", false, true, "a\0b"sv, 3},
        {"ab\0c"sv, 0, "\0"sv, false, true, "ab", 2},
    };
    expectRows(&NSScanner::scanUpToString_intoString, rows);
}

TEST(NSScanner, scansAText) {
    const TextRow rows[] = {
        {"  : x", 0, ":", false, true, ":", 3},
        {"Key: value", 0, "kEY", false, true, "Key", 3},
        {"Key: value", 0, "key", true, false, untouched, 0},
        {"Key: value", 0, "Key", true, true, "Key", 3},
        {"  x", 0, " x", false, false, untouched, 0},
        {"abkey", 0, "key", false, false, untouched, 0},
        {"abc", 0, "", false, false, untouched, 0},
        {"abc", 0, nullptr, false, false, untouched, 0},
        {"[x]{x}", 0, "{X", false, false, untouched, 0}, // a fold of letters alone
        {"É!", 0, "é", false, true, "É", 1},
        {"É!", 0, "é", true, false, untouched, 0},
        {"xyé", 0, "xyz", false, false, untouched, 0},
        {"e\u0301", 0, "e", false, false, untouched, 0}, // the mark belongs to the letter
        {"e\u0301!", 0, "\u00E9", false, true, "e\u0301", 2},
        {"straße", 0, "STRASSE", false, true, "straße", 6},
        {"\u212Ax", 0, "kx", false, true, "\u212Ax", 2},
        {"\r\n\u2028 : x", 0, ":", false, true, ":", 5},
        {"abc", 1, "bcd", false, false, untouched, 1},
        {"a b", 0, "a ", false, true, "a ", 2},
        {"😀x", 0, "😀", false, true, "😀", 2},
        {"\0a"sv, 0, "\0"sv, false, true, "\0"sv, 1},
        {"\0a"sv, 0, "a", false, false, untouched, 0},
    };
    expectRows(&NSScanner::scanString_intoString, rows);
}

TEST(NSScanner, scansATextWhereTheScanUpToItFailed) {
    NSScanner scanner("  : x");
    EXPECT_FALSE(scanner.scanUpToString_intoString(":", nullptr));
    EXPECT_TRUE(scanner.scanString_intoString(":", nullptr));
    EXPECT_EQ(scanner.scanLocation(), 3U);
}

TEST(NSScanner, isAtEndWhenOnlyCharactersToBeSkippedRemain) {
    struct Row {
        StringView string;
        std::size_t location;
        bool isAtEnd;
    };
    const Row rows[] = {{"", 0, true},
                        {"a", 0, false},
                        {"a", 1, true},
                        {"a \t\r\n", 1, true},
                        {"a  b", 1, false},
                        {"   ", 0, true},
                        {"\u00A0\u2028", 0, true},
                        {"\u200B", 0, false},
                        {"a\u001C", 1, false},
                        {"\0"sv, 0, false},
                        {"😀", 1, false},
                        {nullptr, 0, true}};
    for (const Row& row : rows) {
        NSScanner scanner(row.string);
        scanner.setScanLocation(row.location);
        EXPECT_EQ(scanner.isAtEnd(), row.isAtEnd) << utf8Of(row.string);
        EXPECT_EQ(scanner.scanLocation(), row.location);
    }
}

TEST(NSScanner, skipsTheCharactersToBeSkipped) {
    NSScanner scanner("--a -b");
    scanner.setCharactersToBeSkipped(NSCharacterSet::characterSetWithCharactersInString("-"));
    EXPECT_TRUE(scanner.scanString_intoString("a", nullptr));
    EXPECT_FALSE(scanner.scanString_intoString("b", nullptr));
    EXPECT_TRUE(scanner.scanString_intoString(" ", nullptr));
    EXPECT_TRUE(scanner.scanString_intoString("b", nullptr));
    EXPECT_TRUE(scanner.isAtEnd());
}

TEST(NSScanner, skipsNothingForANilOrEmptySet) {
    for (const NSCharacterSet& none : {NSCharacterSet(), NSCharacterSet::emptyCharacterSet()}) {
        NSScanner scanner(" a ");
        scanner.setCharactersToBeSkipped(none);
        EXPECT_EQ(scanner.charactersToBeSkipped(), none);
        EXPECT_FALSE(scanner.scanString_intoString("a", nullptr));
        EXPECT_TRUE(scanner.scanString_intoString(" a", nullptr));
        EXPECT_FALSE(scanner.isAtEnd());
        EXPECT_EQ(scanner.scanLocation(), 2U);
        NSString rest;
        EXPECT_TRUE(scanner.scanUpToString_intoString("z", &rest));
        EXPECT_EQ(rest, " ");
        EXPECT_TRUE(scanner.isAtEnd());
    }
}

TEST(NSScanner, startsAtTheFrontIgnoringCaseAndSkippingWhiteSpace) {
    const NSScanner scanner = NSScanner::scannerWithString("abc");
    EXPECT_EQ(scanner.string(), "abc");
    EXPECT_EQ(scanner.scanLocation(), 0U);
    EXPECT_FALSE(scanner.caseSensitive());
    EXPECT_EQ(scanner.charactersToBeSkipped(), NSCharacterSet::whitespaceAndNewlineCharacterSet());
}

TEST(NSScanner, readsANilStringAsTheEmptyOne) {
    NSScanner scanner(nullptr);
    EXPECT_EQ(scanner.string(), "");
    EXPECT_TRUE(scanner.isAtEnd());
    EXPECT_FALSE(scanner.scanUpToString_intoString("a", nullptr));
    EXPECT_FALSE(scanner.scanString_intoString("a", nullptr));
    EXPECT_FALSE(scanner.scanInt(nullptr));
    scanner.setScanLocation(0);
    EXPECT_EQ(raised([&] { scanner.setScanLocation(1); }), "NSRangeException");
}

TEST(NSScanner, refusesALocationBeyondTheEnd) {
    NSScanner scanner("a😀"); // three units
    scanner.setScanLocation(3);
    EXPECT_EQ(raised([&] { scanner.setScanLocation(4); }), "NSRangeException");
    EXPECT_EQ(raised([&] { scanner.setScanLocation(SIZE_MAX); }), "NSRangeException");
    EXPECT_EQ(scanner.scanLocation(), 3U);
}

TEST(NSScanner, isLeftAloneByItsCopies) {
    NSScanner scanner("a b c");
    EXPECT_TRUE(scanner.scanString_intoString("a", nullptr));
    NSScanner copy = scanner;
    EXPECT_TRUE(copy.scanString_intoString("b", nullptr));
    EXPECT_EQ(scanner.scanLocation(), 1U);
    EXPECT_EQ(copy.scanLocation(), 3U);
}

TEST(NSScanner, takesTheLongestStretchOfMembers) {
    NSScanner scanner("  1٣ab 34");
    const NSCharacterSet digits = NSCharacterSet::decimalDigitCharacterSet();
    NSString taken = untouched;
    EXPECT_TRUE(scanner.scanCharactersFromSet_intoString(digits, &taken));
    EXPECT_EQ(taken, "1٣");
    EXPECT_EQ(scanner.scanLocation(), 4U);
    taken = untouched;
    EXPECT_FALSE(scanner.scanCharactersFromSet_intoString(digits, &taken));
    EXPECT_EQ(taken, untouched);
    EXPECT_EQ(scanner.scanLocation(), 4U);
    EXPECT_TRUE(scanner.scanUpToCharactersFromSet_intoString(digits, &taken));
    EXPECT_EQ(taken, "ab ");
    EXPECT_FALSE(scanner.scanUpToCharactersFromSet_intoString(digits, nullptr));
    EXPECT_TRUE(scanner.scanCharactersFromSet_intoString(digits, nullptr));
    EXPECT_TRUE(scanner.isAtEnd());
    EXPECT_FALSE(scanner.scanCharactersFromSet_intoString(digits, nullptr));
    EXPECT_FALSE(scanner.scanUpToCharactersFromSet_intoString(digits, nullptr));
}

TEST(NSScanner, findsNoMembersOfANilSet) {
    NSScanner scanner(" abc");
    EXPECT_FALSE(scanner.scanCharactersFromSet_intoString(nullptr, nullptr));
    NSString taken;
    EXPECT_TRUE(scanner.scanUpToCharactersFromSet_intoString(nullptr, &taken));
    EXPECT_EQ(taken, "abc");
}

TEST(NSScanner, doesNotSkipMembersThatAreToBeSkipped) {
    NSScanner scanner("   ");
    EXPECT_FALSE(scanner.scanCharactersFromSet_intoString(NSCharacterSet::whitespaceCharacterSet(), nullptr));
    scanner.setCharactersToBeSkipped(nullptr);
    EXPECT_TRUE(scanner.scanCharactersFromSet_intoString(NSCharacterSet::whitespaceCharacterSet(), nullptr));
    EXPECT_EQ(scanner.scanLocation(), 3U);
}

template <class Wide, class Narrow>
struct NumberRow {
    StringView string;
    bool result;
    Wide wide;
    Narrow narrow;
    std::size_t after;
};

/// One scan of the row's string; "77" remains where nothing is found.
template <class Row, class Number>
void expectNumber(const Row& row, bool (NSScanner::*scan)(Number*), Number expected) {
    NSScanner scanner(row.string);
    Number value = 77;
    EXPECT_EQ((scanner.*scan)(&value), row.result) << utf8Of(row.string);
    EXPECT_EQ(value, row.result ? expected : Number(77)) << utf8Of(row.string);
    EXPECT_EQ(scanner.scanLocation(), row.after) << utf8Of(row.string);
    scanner.setScanLocation(0);
    EXPECT_EQ((scanner.*scan)(nullptr), row.result) << utf8Of(row.string);
    EXPECT_EQ(scanner.scanLocation(), row.after) << utf8Of(row.string);
}

const NumberRow<std::int64_t, int> integerRows[] = {
    {"12", true, 12, 12, 2},
    {"  12abc", true, 12, 12, 4},
    {"\n-7 ", true, -7, -7, 3},
    {"+012", true, 12, 12, 4},
    {"12.9", true, 12, 12, 2},
    {"1٣", true, 1, 1, 1},
    {"７", false, 0, 0, 0},
    {"", false, 0, 0, 0},
    {"-", false, 0, 0, 0},
    {".5", false, 0, 0, 0},
    {"9223372036854775807", true, INT64_MAX, 2147483647, 19},
    {"2147483648", true, 2147483648, 2147483647, 10},
    {"-2147483649", true, -2147483649, INT32_MIN, 11},
    {"9223372036854775808!", true, INT64_MAX, 2147483647, 19},
    {"-99999999999999999999!", true, INT64_MIN, INT32_MIN, 21},
};

TEST(NSScanner, readsIntegers) {
    for (const auto& row : integerRows) {
        expectNumber(row, &NSScanner::scanInteger, row.wide);
        expectNumber(row, &NSScanner::scanLongLong, row.wide);
        expectNumber(row, &NSScanner::scanInt, row.narrow);
    }
}

struct RealRow {
    StringView string;
    bool result;
    double value;
    std::size_t after;
};

const RealRow realRows[] = {
    {" 1.5x", true, 1.5, 4}, {"-.5", true, -0.5, 3}, {"5.", true, 5, 2},   {"1e", true, 1, 1},
    {".", false, 0, 0},      {"", false, 0, 0},      {"inf", false, 0, 0}, {"1e400 ", true, HUGE_VAL, 5},
    {"ä", false, 0, 0},      {"2.5ä", true, 2.5, 3},
};

TEST(NSScanner, readsReals) {
    for (const RealRow& row : realRows) {
        expectNumber(row, &NSScanner::scanDouble, row.value);
        expectNumber(row, &NSScanner::scanFloat, static_cast<float>(row.value));
    }
}

const NumberRow<std::uint64_t, unsigned> hexRows[] = {
    {"ff", true, 0xFF, 0xFF, 2},
    {"  0xFFg", true, 0xFF, 0xFF, 6},
    {"0Xab", true, 0xAB, 0xAB, 4},
    {"DeadBeef", true, 0xDEADBEEF, 0xDEADBEEF, 8},
    {"0", true, 0, 0, 1},
    {"0x", true, 0, 0, 1},
    {"x1", false, 0, 0, 0},
    {"", false, 0, 0, 0},
    {"-1", false, 0, 0, 0},
    {"１", false, 0, 0, 0},
    {"0xFFFFFFFFFFFFFFFF", true, UINT64_MAX, UINT32_MAX, 18},
    {"100000000", true, 0x100000000, UINT32_MAX, 9},
    {"0000000000000000001", true, 1, 1, 19},
    {"10000000000000000!", true, UINT64_MAX, UINT32_MAX, 17},
    {"0x1ä", true, 1, 1, 3},
};

TEST(NSScanner, readsHexadecimalNumbers) {
    for (const auto& row : hexRows) {
        expectNumber(row, &NSScanner::scanHexLongLong, row.wide);
        expectNumber(row, &NSScanner::scanHexInt, row.narrow);
    }
}

TEST(NSScanner, skipsItsOwnCharactersAndThenWhiteSpaceBeforeANumber) {
    NSScanner scanner("##  12");
    scanner.setCharactersToBeSkipped(NSCharacterSet::characterSetWithCharactersInString("#"));
    int value = 0;
    EXPECT_TRUE(scanner.scanInt(&value));
    EXPECT_EQ(value, 12);
    scanner.setScanLocation(0);
    double real = 0;
    EXPECT_TRUE(scanner.scanDouble(&real));
    EXPECT_EQ(real, 12);
}

TEST(NSScanner, readsNumbersOneAfterTheOther) {
    NSScanner scanner(" 1 -2.5\n0x1F end");
    int first = 0;
    double second = 0;
    unsigned third = 0;
    EXPECT_TRUE(scanner.scanInt(&first));
    EXPECT_TRUE(scanner.scanDouble(&second));
    EXPECT_TRUE(scanner.scanHexInt(&third));
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, -2.5);
    EXPECT_EQ(third, 0x1FU);
    EXPECT_TRUE(scanner.scanString_intoString("END", nullptr));
    NSScanner zeros(std::string(1000000, '0') + "7 8");
    EXPECT_TRUE(zeros.scanInt(&first));
    EXPECT_EQ(first, 7);
    EXPECT_EQ(zeros.scanLocation(), 1000001U);
}

TEST(NSScanner, putsOutIntoTheTextThatItLooksFor) {
    NSScanner scanner("KEY=x");
    NSString text = "key";
    EXPECT_TRUE(scanner.scanString_intoString(text, &text));
    EXPECT_EQ(text, "KEY");
    text = "x";
    EXPECT_TRUE(scanner.scanUpToString_intoString(text, &text));
    EXPECT_EQ(text, "=");
}

TEST(NSScanner, readsALongTextPieceByPiece) {
    constexpr int lines = 20000;
    std::string text;
    for (int i = 0; i < lines; ++i) {
        text += "key" + std::to_string(i) + " = " + std::to_string(i * 3) + ";\n";
    }
    for (const char* const tail : {"", "é"}) { // stored as bytes, and as units
        NSScanner scanner(text + tail);
        for (int i = 0; i < lines; ++i) {
            NSString key;
            int value = -1;
            ASSERT_TRUE(scanner.scanUpToString_intoString(" =", &key));
            scanner.setCharactersToBeSkipped(nullptr);
            ASSERT_TRUE(scanner.scanString_intoString(" = ", nullptr));
            scanner.setCharactersToBeSkipped(NSCharacterSet::whitespaceAndNewlineCharacterSet());
            ASSERT_TRUE(scanner.scanInt(&value));
            ASSERT_TRUE(scanner.scanString_intoString(";", nullptr));
            ASSERT_EQ(utf8Of(key), "key" + std::to_string(i));
            ASSERT_EQ(value, i * 3);
        }
        EXPECT_EQ(scanner.isAtEnd(), *tail == '\0');
    }
}

} // namespace
