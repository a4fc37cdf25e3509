// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/format/NSScanner.h"
#include "foundation/objects/NSCharacterSet.h"
#include "foundation/objects/NSString.h"
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

// MARK: State

TEST(ScannerRules, aNewScannerStandsAtTheStartAndIgnoresCase) {
    const NSScanner scanner("abc");
    EXPECT_EQ(scanner.string(), "abc");
    EXPECT_EQ(scanner.scanLocation(), 0U);
    EXPECT_FALSE(scanner.caseSensitive());
    EXPECT_TRUE(scanner.charactersToBeSkipped().isEqual(NSCharacterSet::whitespaceAndNewlineCharacterSet()));
    EXPECT_EQ(NSScanner::scannerWithString("abc").string(), "abc");
    EXPECT_FALSE(NSScanner::scannerWithString("abc").isAtEnd());
}

TEST(ScannerRules, aLocationBeyondTheLengthRaises) {
    NSScanner scanner("a\U0001F600");
    scanner.setScanLocation(3);
    EXPECT_EQ(scanner.scanLocation(), 3U);
    scanner.setScanLocation(1);
    EXPECT_EQ(raised([&scanner] { scanner.setScanLocation(4); }), "NSRangeException");
    EXPECT_EQ(raised([&scanner] { scanner.setScanLocation(SIZE_MAX); }), "NSRangeException");
    EXPECT_EQ(scanner.scanLocation(), 1U);
    NSScanner empty("");
    empty.setScanLocation(0);
    EXPECT_EQ(raised([&empty] { empty.setScanLocation(1); }), "NSRangeException");
}

TEST(ScannerRules, isAtEndWhenOnlyCharactersToBeSkippedRemain) {
    const struct {
        const char* name;
        NSString text;
        std::size_t location;
        bool isAtEnd;
    } rows[] = {
        {"empty", "", 0, true},
        {"blanks", "   ", 0, true},
        {"blanks, in between", "   ", 1, true},
        {"newlines", "\r\n\u2028\u0085", 0, true},
        {"text", "abc", 0, false},
        {"behind the text", "abc", 3, true},
        {"blanks behind the text", "abc  ", 3, true},
        {"in the text", "abc  ", 2, false},
        {"text behind blanks", "   x", 0, false},
        {"a control character", "\x1C", 0, false},
        {"zero width space", "\u200B", 0, false},
        {"U+0000", "\0"sv, 0, false},
        {"half a pair", NSString("\U0001F600"), 1, false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(scannerAt(row.text, row.location).isAtEnd(), row.isAtEnd) << row.name;
    }
    NSScanner scanner("  ");
    scanner.setCharactersToBeSkipped(nullptr);
    EXPECT_FALSE(scanner.isAtEnd());
    EXPECT_FALSE(scanner.charactersToBeSkipped());
    scanner.setScanLocation(2);
    EXPECT_TRUE(scanner.isAtEnd());
}

TEST(ScannerRules, aNilStringReadsAsTheEmptyOne) {
    NSScanner scanner{NSString()};
    NSString output("untouched");
    int value = 77;
    EXPECT_TRUE(scanner.isAtEnd());
    EXPECT_FALSE(scanner.scanString_intoString("a", &output));
    EXPECT_FALSE(scanner.scanUpToString_intoString("a", &output));
    EXPECT_FALSE(scanner.scanInt(&value));
    EXPECT_EQ(output, "untouched");
    EXPECT_EQ(value, 77);
    EXPECT_EQ(raised([&scanner] { scanner.setScanLocation(1); }), "NSRangeException");
}

TEST(ScannerRules, copiesGoTheirOwnWay) {
    NSScanner scanner("a b c");
    EXPECT_TRUE(scanner.scanString_intoString("a", nullptr));
    NSScanner copy = scanner;
    EXPECT_TRUE(copy.scanString_intoString("b", nullptr));
    EXPECT_EQ(scanner.scanLocation(), 1U);
    EXPECT_EQ(copy.scanLocation(), 3U);
}

// MARK: Texts

struct Row {
    const char* name;
    NSString text;
    std::size_t location;
    NSString target;
    bool isFound;
    NSString output;
    std::size_t locationAfter;
};

TEST(ScannerRules, scanUpToStringTakesWhatStandsBeforeIt) {
    const Row rows[] = {
        {"further on", "key: value", 0, ":", true, "key", 3},
        {"behind blanks", "  : x", 0, ":", false, nullptr, 0},
        {"other case", "abc", 0, "B", true, "a", 1},
        {"not there, with blanks at the end", "abc   ", 0, "z", true, "abc   ", 6},
        {"a blank in front of the target", "a b", 0, " b", true, "a", 1},
        {"only blanks", "   ", 0, "a", false, nullptr, 0},
        {"without the skipped front", "  key : x", 0, ":", true, "key ", 6},
        {"right there", ": x", 0, ":", false, nullptr, 0},
        {"nothing left", "abc", 3, "a", false, nullptr, 3},
        {"only blanks left", "abc  ", 3, "a", false, nullptr, 3},
        {"empty string", "", 0, "a", false, nullptr, 0},
        {"empty target", " abc ", 0, "", true, "abc ", 5},
        {"empty target, nothing left", "abc ", 3, "", false, nullptr, 3},
        {"not before the location", "a:b", 2, ":", true, "b", 3},
        {"a blank that was skipped", " ab", 0, " a", true, "ab", 3},
        {"a blank", "a b", 0, " ", true, "a", 1},
        {"as it stands in the string", "aBc:", 0, ":", true, "aBc", 3},
        {"over newlines", "\r\n a\nb:c", 0, ":", true, "a\nb", 6},
        {"Latin-1", "caf\u00e9:x", 0, ":", true, "caf\u00e9", 4},
        {"wide", "\u20ac:x", 0, ":", true, "\u20ac", 1},
        {"a pair", "\U0001F600:x", 0, ":", true, "\U0001F600", 2},
        {"U+0000", "a\0b:"sv, 0, ":", true, "a\0b"sv, 3},
        {"up to U+0000", "ab\0c"sv, 0, "\0"sv, true, "ab", 2},
        {"a false start", "aab", 0, "ab", true, "a", 1},
    };
    for (const Row& row : rows) {
        NSScanner scanner = scannerAt(row.text, row.location);
        NSString output("untouched");
        EXPECT_EQ(scanner.scanUpToString_intoString(row.target, &output), row.isFound) << row.name;
        EXPECT_EQ(output.utf16(), row.isFound ? row.output.utf16() : u"untouched") << row.name;
        EXPECT_EQ(scanner.scanLocation(), row.locationAfter) << row.name;
        scanner.setScanLocation(row.location);
        EXPECT_EQ(scanner.scanUpToString_intoString(row.target, nullptr), row.isFound) << row.name;
        EXPECT_EQ(scanner.scanLocation(), row.locationAfter) << row.name;
    }
}

TEST(ScannerRules, scanStringTakesTheTextRightThere) {
    const Row rows[] = {
        {"right there", "abc", 0, "ab", true, "ab", 2},
        {"behind blanks", "  : x", 0, ":", true, ":", 3},
        {"behind newlines", "\r\n\u2028 : x", 0, ":", true, ":", 5},
        {"further on", "abc", 0, "b", false, nullptr, 0},
        {"further on behind blanks", "  abc", 0, "b", false, nullptr, 0},
        {"other case, as it stands in the string", "KeY", 0, "kEy", true, "KeY", 3},
        {"empty", "abc", 0, "", false, nullptr, 0},
        {"empty in empty", "", 0, "", false, nullptr, 0},
        {"in an empty string", "", 0, "a", false, nullptr, 0},
        {"nothing left", "abc", 3, "c", false, nullptr, 3},
        {"longer than the rest", "abc", 1, "bcd", false, nullptr, 1},
        {"the whole", "abc", 0, "abc", true, "abc", 3},
        {"a target that begins with a skipped blank", "  x", 0, " x", false, nullptr, 0},
        {"a blank alone", "  ", 0, " ", false, nullptr, 0},
        {"a target that ends with a blank", "a b", 0, "a ", true, "a ", 2},
        {"Latin-1", " \u00e9t\u00e9", 0, "\u00e9", true, "\u00e9", 2},
        {"Latin-1 in other case", "\u00c9", 0, "\u00e9", true, "\u00c9", 1},
        {"wide", "\u20acx", 0, "\u20ac", true, "\u20ac", 1},
        {"a pair", "\U0001F600x", 0, "\U0001F600", true, "\U0001F600", 2},
        {"U+0000", "\0a"sv, 0, "\0"sv, true, "\0"sv, 1},
        {"behind U+0000", "\0a"sv, 0, "a", false, nullptr, 0},
    };
    for (const Row& row : rows) {
        NSScanner scanner = scannerAt(row.text, row.location);
        NSString output("untouched");
        EXPECT_EQ(scanner.scanString_intoString(row.target, &output), row.isFound) << row.name;
        EXPECT_EQ(output.utf16(), row.isFound ? row.output.utf16() : u"untouched") << row.name;
        EXPECT_EQ(scanner.scanLocation(), row.locationAfter) << row.name;
        scanner.setScanLocation(row.location);
        EXPECT_EQ(scanner.scanString_intoString(row.target, nullptr), row.isFound) << row.name;
        EXPECT_EQ(scanner.scanLocation(), row.locationAfter) << row.name;
    }
}

TEST(ScannerRules, caseCountsWhenAskedFor) {
    NSScanner scanner("abc");
    scanner.setCaseSensitive(true);
    EXPECT_TRUE(scanner.caseSensitive());
    NSString output;
    EXPECT_FALSE(scanner.scanString_intoString("A", &output));
    EXPECT_TRUE(scanner.scanUpToString_intoString("B", &output));
    EXPECT_EQ(output, "abc");
    EXPECT_EQ(scanner.scanLocation(), 3U);
    scanner.setScanLocation(0);
    EXPECT_TRUE(scanner.scanUpToString_intoString("b", &output));
    EXPECT_EQ(output, "a");
    scanner.setCaseSensitive(false);
    EXPECT_TRUE(scanner.scanString_intoString("B", &output));
    EXPECT_EQ(output, "b");
}

TEST(ScannerRules, onlyTheCharactersOfTheSetAreSkipped) {
    NSScanner scanner("-- a");
    scanner.setCharactersToBeSkipped(NSCharacterSet::characterSetWithCharactersInString("-"));
    EXPECT_FALSE(scanner.scanString_intoString("a", nullptr));
    NSString output;
    EXPECT_TRUE(scanner.scanUpToString_intoString("a", &output));
    EXPECT_EQ(output, " ");
    for (const bool isNil : {true, false}) {
        NSScanner plain("  a");
        plain.setCharactersToBeSkipped(isNil ? NSCharacterSet() : NSCharacterSet::emptyCharacterSet());
        EXPECT_FALSE(plain.scanString_intoString("a", nullptr));
        EXPECT_TRUE(plain.scanUpToString_intoString("a", &output));
        EXPECT_EQ(output, "  ");
        plain.setScanLocation(0);
        EXPECT_TRUE(plain.scanString_intoString(" ", &output));
        EXPECT_EQ(plain.scanLocation(), 1U);
        EXPECT_TRUE(plain.scanUpToString_intoString("zzz", &output));
        EXPECT_EQ(output, " a");
    }
}

TEST(ScannerRules, charactersOfASetAreTakenAfterSkipping) {
    const NSCharacterSet digits = NSCharacterSet::decimalDigitCharacterSet();
    NSScanner scanner("  12\u0663ab 7");
    NSString output("untouched");
    EXPECT_FALSE(scanner.scanUpToCharactersFromSet_intoString(digits, &output));
    EXPECT_EQ(output, "untouched");
    EXPECT_EQ(scanner.scanLocation(), 0U);
    EXPECT_TRUE(scanner.scanCharactersFromSet_intoString(digits, &output));
    EXPECT_EQ(output, "12\u0663");
    EXPECT_EQ(scanner.scanLocation(), 5U);
    output = "untouched";
    EXPECT_FALSE(scanner.scanCharactersFromSet_intoString(digits, &output));
    EXPECT_EQ(output, "untouched");
    EXPECT_TRUE(scanner.scanUpToCharactersFromSet_intoString(digits, &output));
    EXPECT_EQ(output, "ab ");
    EXPECT_EQ(scanner.scanLocation(), 8U);
    EXPECT_TRUE(scanner.scanCharactersFromSet_intoString(digits, nullptr));
    EXPECT_TRUE(scanner.isAtEnd());
    EXPECT_FALSE(scanner.scanCharactersFromSet_intoString(digits, &output));
    EXPECT_FALSE(scanner.scanUpToCharactersFromSet_intoString(digits, &output));
    NSScanner blanks("  a");
    EXPECT_FALSE(blanks.scanCharactersFromSet_intoString(NSCharacterSet::whitespaceCharacterSet(), &output));
    EXPECT_EQ(blanks.scanLocation(), 0U);
}

// MARK: Numbers

TEST(ScannerRules, integersAreReadUpToTheFirstOtherUnit) {
    const struct {
        const char* text;
        bool isFound;
        int value;
        std::int64_t wide;
        std::size_t locationAfter;
    } rows[] = {
        {"12", true, 12, 12, 2},
        {" 12", true, 12, 12, 3},
        {"\n12", true, 12, 12, 3},
        {"+12", true, 12, 12, 3},
        {"-12", true, -12, -12, 3},
        {"012", true, 12, 12, 3},
        {"12abc", true, 12, 12, 2},
        {"12.9", true, 12, 12, 2},
        {"0x10", true, 0, 0, 1},
        {"1e3", true, 1, 1, 1},
        {"1,234", true, 1, 1, 1},
        {"1 2", true, 1, 1, 1},
        {"1\u0663", true, 1, 1, 1},
        {"2147483647", true, INT32_MAX, 2147483647, 10},
        {"2147483648", true, INT32_MAX, 2147483648, 10},
        {"-2147483648", true, INT32_MIN, -2147483648LL, 11},
        {"-2147483649", true, INT32_MIN, -2147483649LL, 11},
        {"9223372036854775807", true, INT32_MAX, INT64_MAX, 19},
        {"9223372036854775808", true, INT32_MAX, INT64_MAX, 19},
        {"99999999999999999999x", true, INT32_MAX, INT64_MAX, 20},
        {"-99999999999999999999x", true, INT32_MIN, INT64_MIN, 21},
        {"", false, 0, 0, 0},
        {"   ", false, 0, 0, 0},
        {"abc", false, 0, 0, 0},
        {"-", false, 0, 0, 0},
        {" +", false, 0, 0, 0},
        {"--5", false, 0, 0, 0},
        {"+-5", false, 0, 0, 0},
        {".5", false, 0, 0, 0},
        {"- 5", false, 0, 0, 0},
        {"\u0663", false, 0, 0, 0},
        {"\uFF11", false, 0, 0, 0},
    };
    for (const auto& row : rows) {
        NSScanner scanner(row.text);
        int value = 77;
        EXPECT_EQ(scanner.scanInt(&value), row.isFound) << row.text;
        EXPECT_EQ(value, row.isFound ? row.value : 77) << row.text;
        EXPECT_EQ(scanner.scanLocation(), row.locationAfter) << row.text;
        scanner.setScanLocation(0);
        std::int64_t wide = 77;
        EXPECT_EQ(scanner.scanInteger(&wide), row.isFound) << row.text;
        EXPECT_EQ(wide, row.isFound ? row.wide : 77) << row.text;
        EXPECT_EQ(scanner.scanLocation(), row.locationAfter) << row.text;
        scanner.setScanLocation(0);
        EXPECT_EQ(scanner.scanLongLong(nullptr), row.isFound) << row.text;
        EXPECT_EQ(scanner.scanLocation(), row.locationAfter) << row.text;
    }
}

TEST(ScannerRules, realNumbersAreReadWithAPointAndAnExponent) {
    const struct {
        const char* text;
        bool isFound;
        double value;
        std::size_t locationAfter;
    } rows[] = {
        {"12", true, 12, 2},          {" 12.5kg", true, 12.5, 5},
        {"-.5", true, -0.5, 3},       {".5", true, 0.5, 2},
        {"+2.25", true, 2.25, 5},     {"1e3x", true, 1000, 3},
        {"1E-3", true, 0.001, 4},     {"1e", true, 1, 1},
        {"1e+", true, 1, 1},          {"1,234", true, 1, 1},
        {"1.5.5", true, 1.5, 3},      {"0x10", true, 0, 1},
        {"1e400", true, HUGE_VAL, 5}, {"-1e400", true, -HUGE_VAL, 6},
        {"1e-400", true, 0, 6},       {"", false, 0, 0},
        {"  ", false, 0, 0},          {".", false, 0, 0},
        {"-", false, 0, 0},           {"-.", false, 0, 0},
        {".e5", false, 0, 0},         {"e5", false, 0, 0},
        {"inf", false, 0, 0},         {"nan", false, 0, 0},
        {"--5", false, 0, 0},         {"\u0663", false, 0, 0},
    };
    for (const auto& row : rows) {
        NSScanner scanner(row.text);
        double value = 77;
        EXPECT_EQ(scanner.scanDouble(&value), row.isFound) << row.text;
        EXPECT_EQ(value, row.isFound ? row.value : 77) << row.text;
        EXPECT_EQ(scanner.scanLocation(), row.locationAfter) << row.text;
        scanner.setScanLocation(0);
        float single = 77;
        EXPECT_EQ(scanner.scanFloat(&single), row.isFound) << row.text;
        EXPECT_EQ(single, row.isFound ? static_cast<float>(row.value) : 77.0F) << row.text;
        EXPECT_EQ(scanner.scanLocation(), row.locationAfter) << row.text;
        scanner.setScanLocation(0);
        EXPECT_EQ(scanner.scanDouble(nullptr), row.isFound) << row.text;
        EXPECT_EQ(scanner.scanLocation(), row.locationAfter) << row.text;
    }
}

TEST(ScannerRules, hexadecimalNumbersHaveAPrefixOrNone) {
    const struct {
        const char* text;
        bool isFound;
        unsigned value;
        std::uint64_t wide;
        std::size_t locationAfter;
    } rows[] = {
        {"1F", true, 0x1F, 0x1F, 2},
        {"0x1f", true, 0x1F, 0x1F, 4},
        {"0X1Fz", true, 0x1F, 0x1F, 4},
        {" ff ", true, 0xFF, 0xFF, 3},
        {"FFFFFFFF", true, 0xFFFFFFFFU, 0xFFFFFFFF, 8},
        {"100000000", true, 0xFFFFFFFFU, 0x100000000, 9},
        {"0xFFFFFFFFFFFFFFFF", true, 0xFFFFFFFFU, UINT64_MAX, 18},
        {"10000000000000000", true, 0xFFFFFFFFU, UINT64_MAX, 17},
        {"0", true, 0, 0, 1},
        {"", false, 0, 0, 0},
        {"g", false, 0, 0, 0},
        {" x1", false, 0, 0, 0},
        {"\uFF11", false, 0, 0, 0},
    };
    for (const auto& row : rows) {
        NSScanner scanner(row.text);
        unsigned value = 77;
        EXPECT_EQ(scanner.scanHexInt(&value), row.isFound) << row.text;
        EXPECT_EQ(value, row.isFound ? row.value : 77U) << row.text;
        EXPECT_EQ(scanner.scanLocation(), row.locationAfter) << row.text;
        scanner.setScanLocation(0);
        std::uint64_t wide = 77;
        EXPECT_EQ(scanner.scanHexLongLong(&wide), row.isFound) << row.text;
        EXPECT_EQ(wide, row.isFound ? row.wide : 77U) << row.text;
        EXPECT_EQ(scanner.scanLocation(), row.locationAfter) << row.text;
    }
}

TEST(ScannerRules, numbersFollowOneAnother) {
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
    EXPECT_TRUE(scanner.isAtEnd());
    const std::string zeros(1000000, '0');
    NSScanner longScanner{NSString(zeros + "7 8")};
    EXPECT_TRUE(longScanner.scanInt(&first));
    EXPECT_EQ(first, 7);
    EXPECT_EQ(longScanner.scanLocation(), 1000001U);
}

// MARK: Against a slow model

std::vector<std::string> allTexts(std::string_view alphabet, std::size_t longest) {
    std::vector<std::string> texts{""};
    std::size_t first = 0;
    for (std::size_t length = 1; length <= longest; ++length) {
        const std::size_t last = texts.size();
        for (std::size_t i = first; i < last; ++i) {
            for (const char character : alphabet) {
                texts.push_back(texts[i] + character);
            }
        }
        first = last;
    }
    return texts;
}

/// What a scan gives: its answer, the output and the location.
struct Outcome {
    bool isFound;
    std::string output;
    std::size_t location;

    bool operator==(const Outcome&) const = default;
};

std::size_t skipped(std::string_view text, std::size_t location) {
    return std::min(text.find_first_not_of(' ', location), text.size());
}

Outcome taken(const std::string& text, std::size_t location, const std::string& target) {
    const std::size_t start = skipped(text, location);
    if (target.empty() || text.compare(start, target.size(), target) != 0) {
        return {false, "untouched", location};
    }
    return {true, target, start + target.size()};
}

Outcome takenUpTo(const std::string& text, std::size_t location, const std::string& target) {
    const std::size_t start = skipped(text, location);
    std::size_t end = target.empty() ? text.size() : std::min(text.find(target, start), text.size());
    if (end == start) {
        return {false, "untouched", location};
    }
    return {true, text.substr(start, end - start), end};
}

TEST(ScannerRules, inAllShortTextsFollowTheSteps) {
    const std::vector<std::string> targets = allTexts("ab ", 3);
    for (const std::string& text : allTexts("ab ", 6)) {
        const NSString string(text);
        for (const std::string& target : targets) {
            for (std::size_t start = 0; start <= text.size(); ++start) {
                NSScanner scanner = scannerAt(string, start);
                NSString output("untouched");
                bool isFound = scanner.scanString_intoString(target, &output);
                ASSERT_EQ((Outcome{isFound, output.utf8(), scanner.scanLocation()}),
                          taken(text, start, target))
                    << "'" << text << "' from " << start << ": '" << target << "'";
                scanner.setScanLocation(start);
                output = "untouched";
                isFound = scanner.scanUpToString_intoString(target, &output);
                ASSERT_EQ((Outcome{isFound, output.utf8(), scanner.scanLocation()}),
                          takenUpTo(text, start, target))
                    << "'" << text << "' from " << start << " up to '" << target << "'";
                ASSERT_EQ(scannerAt(string, start).isAtEnd(), skipped(text, start) == text.size());
            }
        }
    }
}

} // namespace
