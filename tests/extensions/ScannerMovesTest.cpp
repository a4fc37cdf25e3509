// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
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

struct Row {
    const char* name;
    NSString text;
    std::size_t location;
    NSString target;
    bool isFound;
    std::size_t locationAfter;
};

TEST(ScannerMoves, upToAStringSucceedsOrStays) {
    const Row rows[] = {
        {"further on", "key: value", 0, ":", true, 3},
        {"right there", "key: value", 3, ":", true, 3},
        {"absent", "key: value", 0, "#", false, 0},
        {"absent from the rest", "key: value", 4, ":", false, 4},
        {"behind blanks", "  : x", 0, ":", true, 0},
        {"behind blanks and text", "  a: x", 0, ":", true, 3},
        {"at the end of the string", "ab:", 0, ":", true, 2},
        {"the whole string", "ab", 0, "ab", true, 0},
        {"longer than the rest", "ab", 0, "abc", false, 0},
        {"in an empty string", "", 0, "a", false, 0},
        {"at the end", "abc", 3, "a", false, 3},
        {"in blanks alone", "   ", 1, "a", false, 1},
        {"behind trailing blanks", "abc   ", 0, "z", false, 0},
        {"empty", "abc", 0, "", false, 0},
        {"empty, at the end", "abc", 3, "", false, 3},
        {"empty, in an empty string", "", 0, "", false, 0},
        {"other case", "key: VALUE", 0, "value", true, 5},
        {"a blank that is not skipped", "a b", 0, " ", true, 1},
        {"a blank that was skipped", " ab", 0, " ", false, 0},
        {"a blank and a letter", "a b", 0, " b", true, 1},
        {"a final blank: then only characters to skip remain", "abc ", 0, " ", false, 0},
        {"a final newline: then only characters to skip remain", "abc\n \t", 0, "\n", false, 0},
        {"a newline before text", "abc\nd", 0, "\n", true, 3},
        {"the first of two", "a:b:c", 0, ":", true, 1},
        {"the second of two", "a:b:c", 2, ":", true, 3},
        {"a wide text", "\u20ac\u00e9: x", 0, ":", true, 2},
        {"a wide target", "ab\u20ac", 0, "\u20ac", true, 2},
        {"a pair counts as two", "\U0001F600: x", 0, ":", true, 2},
        {"behind U+0000", "a\0b:"sv, 0, ":", true, 3},
        {"U+0000", "ab\0c"sv, 0, "\0"sv, true, 2},
    };
    for (const Row& row : rows) {
        NSScanner scanner = scannerAt(row.text, row.location);
        EXPECT_EQ(scanner.scanUpToString(row.target), row.isFound) << row.name;
        EXPECT_EQ(scanner.scanLocation(), row.locationAfter) << row.name;
    }
}

TEST(ScannerMoves, pastAStringSucceedsOrStays) {
    const Row rows[] = {
        {"further on", "key: value", 0, ":", true, 4},
        {"right there", "key: value", 3, ":", true, 4},
        {"absent", "key: value", 0, "#", false, 0},
        {"absent from the rest", "key: value", 4, ":", false, 4},
        {"behind blanks", "  : x", 0, ":", true, 3},
        {"at the end of the string", "ab:", 0, ":", true, 3},
        {"the whole string", "ab", 0, "ab", true, 2},
        {"in an empty string", "", 0, "a", false, 0},
        {"at the end", "abc", 3, "a", false, 3},
        {"in blanks alone", "   ", 1, "a", false, 1},
        {"empty", "abc", 0, "", false, 0},
        {"empty, in an empty string", "", 0, "", false, 0},
        {"other case", "key: VALUE!", 0, "value", true, 10},
        {"a blank is skipped before it can be taken", "a b", 0, " ", false, 0},
        {"a blank and a letter likewise", "a b", 0, " b", false, 0},
        {"a final newline", "abc\n", 0, "\n", false, 0},
        {"a blank at the target's end", "a: b", 0, ": ", true, 3},
        {"several units", "a<--b", 0, "<--", true, 4},
        {"a wide text", "\u20ac\u00e9: x", 0, ":", true, 3},
        {"a pair", "a\U0001F600b", 0, "\U0001F600", true, 3},
        {"U+0000", "ab\0c"sv, 0, "\0"sv, true, 3},
    };
    for (const Row& row : rows) {
        NSScanner scanner = scannerAt(row.text, row.location);
        EXPECT_EQ(scanner.scanPastString(row.target), row.isFound) << row.name;
        EXPECT_EQ(scanner.scanLocation(), row.locationAfter) << row.name;
    }
}

TEST(ScannerMoves, walkThroughAText) {
    NSScanner scanner("key: value; other: 2");
    EXPECT_TRUE(scanner.scanPastString(":"));
    EXPECT_EQ(scanner.string().substringFromIndex(scanner.scanLocation()), " value; other: 2");
    EXPECT_FALSE(scanner.scanPastString("#"));
    EXPECT_EQ(scanner.scanLocation(), 4U);
    EXPECT_TRUE(scanner.scanUpToString(";"));
    EXPECT_TRUE(scanner.scanUpToString(";"));
    EXPECT_EQ(scanner.scanLocation(), 10U);
    EXPECT_TRUE(scanner.scanPastString(";"));
    EXPECT_TRUE(scanner.scanPastString(":"));
    EXPECT_FALSE(scanner.scanPastString(":"));
    int value = 0;
    EXPECT_TRUE(scanner.scanInt(&value));
    EXPECT_EQ(value, 2);
    EXPECT_TRUE(scanner.isAtEnd());
    EXPECT_FALSE(scanner.scanUpToString("2"));
}

TEST(ScannerMoves, followTheCaseFlag) {
    NSScanner scanner("key: VALUE");
    scanner.setCaseSensitive(true);
    EXPECT_FALSE(scanner.scanUpToString("value"));
    EXPECT_FALSE(scanner.scanPastString("value"));
    EXPECT_EQ(scanner.scanLocation(), 0U);
    EXPECT_TRUE(scanner.scanPastString("VALUE"));
    EXPECT_EQ(scanner.scanLocation(), 10U);
}

TEST(ScannerMoves, skipNothingWithTheEmptySet) {
    NSScanner scanner("a b ");
    scanner.setCharactersToBeSkipped(NSCharacterSet::emptyCharacterSet());
    EXPECT_TRUE(scanner.scanPastString(" "));
    EXPECT_EQ(scanner.scanLocation(), 2U);
    EXPECT_TRUE(scanner.scanPastString(" "));
    EXPECT_EQ(scanner.scanLocation(), 4U);
    EXPECT_FALSE(scanner.scanPastString(" "));
    EXPECT_EQ(scanner.scanLocation(), 4U);
}

TEST(ScannerMoves, skipTheCharactersOfTheSet) {
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

TEST(ScannerMoves, overANilStringFindNothing) {
    NSScanner scanner{NSString()};
    EXPECT_FALSE(scanner.scanUpToString("a"));
    EXPECT_FALSE(scanner.scanPastString("a"));
    EXPECT_EQ(scanner.scanLocation(), 0U);
    NSScanner another("abc");
    EXPECT_FALSE(another.scanPastString(nullptr));
    EXPECT_EQ(another.scanLocation(), 0U);
}

TEST(ScannerMoves, overALongText) {
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

// MARK: Against a slow model

/// The scanner's own two operations and the two moves over blanks to be skipped, step by step.
struct Model {
    std::string_view text;
    std::size_t location;

    std::size_t skipped() const { return std::min(text.find_first_not_of(' ', location), text.size()); }

    bool isAtEnd() const { return skipped() == text.size(); }

    bool take(std::string_view target) {
        const std::size_t start = skipped();
        if (target.empty() || text.substr(start, target.size()) != target) {
            return false;
        }
        location = start + target.size();
        return true;
    }

    void scanUpTo(std::string_view target) {
        const std::size_t start = skipped();
        const std::size_t found = target.empty() ? std::string_view::npos : text.find(target, start);
        const std::size_t end = std::min(found, text.size());
        if (end > start) {
            location = end;
        }
    }

    bool moveUpTo(std::string_view target) {
        const std::size_t remembered = location;
        scanUpTo(target);
        if (!isAtEnd()) {
            return true;
        }
        location = remembered;
        return false;
    }

    bool movePast(std::string_view target) {
        const std::size_t remembered = location;
        if (moveUpTo(target) && take(target)) {
            return true;
        }
        location = remembered;
        return false;
    }
};

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

TEST(ScannerMoves, inAllShortTextsFollowTheSteps) {
    const std::vector<std::string> targets = allTexts("ab ", 3);
    for (const std::string& text : allTexts("ab ", 6)) {
        const NSString string(text);
        for (const std::string& target : targets) {
            for (std::size_t start = 0; start <= text.size(); ++start) {
                Model model{text, start};
                NSScanner scanner = scannerAt(string, start);
                ASSERT_EQ(scanner.scanUpToString(target), model.moveUpTo(target))
                    << "'" << text << "' from " << start << " up to '" << target << "'";
                ASSERT_EQ(scanner.scanLocation(), model.location)
                    << "'" << text << "' from " << start << " up to '" << target << "'";
                model.location = start;
                scanner.setScanLocation(start);
                ASSERT_EQ(scanner.scanPastString(target), model.movePast(target))
                    << "'" << text << "' from " << start << " past '" << target << "'";
                ASSERT_EQ(scanner.scanLocation(), model.location)
                    << "'" << text << "' from " << start << " past '" << target << "'";
            }
        }
    }
}

} // namespace
