// SPDX-License-Identifier: MIT
// Searching a text in another one, in linear time.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "foundation/text/UnitSearch.h"
#include "tests/kit/Texts.h"

using namespace ZQFoundation;
using namespace ZQFoundation::detail;

namespace {

template <class Text>
std::size_t first(const Text& text, const Text& wanted) {
    return findUnits(text.data(), text.size(), wanted.data(), wanted.size());
}

template <class Text>
std::size_t firstByFallbacks(const Text& text, const Text& wanted) {
    return findByFailureTable(text.data(), text.size(), wanted.data(), wanted.size());
}

template <class Text>
std::size_t last(const Text& text, const Text& wanted) {
    return findLastUnits(text.data(), text.size(), wanted.data(), wanted.size());
}

TEST(UnitSearch, findsTheFirstAndTheLastOccurrence) {
    const struct {
        std::string text;
        std::string wanted;
        std::size_t first;
        std::size_t last;
    } rows[] = {
        {"abcabc", "abc", 0, 3},
        {"abcabc", "bc", 1, 4},
        {"aaaa", "aa", 0, 2},
        {"a", "a", 0, 0},
        {"", "a", std::string::npos, std::string::npos},
        {"ab", "abc", std::string::npos, std::string::npos},
        {"aab", "ab", 1, 1},
        {"ababac", "abac", 2, 2},
        {"xyz", "z", 2, 2},
        {"xyz", "x", 0, 0},
        {"xyz", "y?", std::string::npos, std::string::npos},
        {"aabaaab", "aaab", 3, 3},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(first(row.text, row.wanted), row.first) << row.wanted << " in " << row.text;
        EXPECT_EQ(firstByFallbacks(row.text, row.wanted), row.first) << row.wanted << " in " << row.text;
        EXPECT_EQ(last(row.text, row.wanted), row.last) << row.wanted << " in " << row.text;
    }
    static_assert(unitNotFound == std::string::npos);
}

TEST(UnitSearch, fallsBackToTheLongestShorterMatch) {
    using Lengths = std::vector<std::size_t>;
    EXPECT_EQ(failureTable("aaaa", 4), (Lengths{0, 0, 1, 2, 3}));
    EXPECT_EQ(failureTable("abab", 4), (Lengths{0, 0, 0, 1, 2}));
    EXPECT_EQ(failureTable("aabaaab", 7), (Lengths{0, 0, 1, 0, 1, 2, 2, 3}));
    EXPECT_EQ(failureTable("a", 1), (Lengths{0, 0}));
}

TEST(UnitSearch, findsWhatTheStandardStringsFind) {
    kit::Numbers numbers(11);
    for (int round = 0; round < 20000; ++round) {
        const std::u16string wide = numbers.text(u"ab", numbers.below(200));
        const std::u16string wanted = numbers.text(u"ab", 1 + numbers.below(12));
        const std::string text(wide.begin(), wide.end());
        const std::string narrow(wanted.begin(), wanted.end());
        ASSERT_EQ(first(text, narrow), text.find(narrow)) << narrow << " in " << text;
        ASSERT_EQ(firstByFallbacks(text, narrow), text.find(narrow)) << narrow << " in " << text;
        ASSERT_EQ(last(text, narrow), text.rfind(narrow)) << narrow << " in " << text;
        ASSERT_EQ(first(wide, wanted), text.find(narrow)) << narrow << " in " << text;
        ASSERT_EQ(last(wide, wanted), text.rfind(narrow)) << narrow << " in " << text;
    }
}

std::size_t firstInAnyCase(const std::string& text, const std::string& wanted) {
    return findUnits(text.data(), text.size(), wanted.data(), wanted.size(), AsciiInAnyCase());
}

TEST(UnitSearch, findsAsciiInAnyCaseWhereItIsInLowerCase) {
    kit::Numbers numbers(47);
    for (int round = 0; round < 20000; ++round) {
        const std::u16string wide = numbers.text(u"aAbB@[`{", numbers.below(200));
        const std::string text(wide.begin(), wide.end());
        const std::u16string wideWanted = numbers.text(u"aab@`", 1 + numbers.below(6));
        const std::string wanted(wideWanted.begin(), wideWanted.end());
        std::string lowered = text;
        std::replace(lowered.begin(), lowered.end(), 'A', 'a');
        std::replace(lowered.begin(), lowered.end(), 'B', 'b');
        ASSERT_EQ(firstInAnyCase(text, wanted), lowered.find(wanted)) << wanted << " in " << text;
        ASSERT_EQ(
            findByFailureTable(text.data(), text.size(), wanted.data(), wanted.size(), AsciiInAnyCase()),
            lowered.find(wanted))
            << wanted << " in " << text;
    }
}

TEST(UnitSearch, takesOnlyLettersForTheSameInAnotherCase) {
    for (char wanted = 0; wanted != 0x7F; ++wanted) {
        if (wanted >= 'A' && wanted <= 'Z') {
            continue; // it is wanted in lower case
        }
        for (char unit = 0; unit != 0x7F; ++unit) {
            const bool isLetter = wanted >= 'a' && wanted <= 'z';
            const bool isSame = unit == wanted || (isLetter && unit == wanted - 0x20);
            const std::size_t expected = isSame ? 0 : unitNotFound;
            ASSERT_EQ(firstInAnyCase(std::string(1, unit), std::string(1, wanted)), expected);
            ASSERT_EQ(firstInAnyCase(std::string(40, unit), std::string(1, wanted)), expected);
            ASSERT_EQ(firstInAnyCase({'x', unit}, {'x', wanted}), expected);
        }
    }
}

TEST(UnitSearch, findsWhatFollowsManyFalseStarts) {
    // Long enough for the search to change its way in the middle of the text.
    for (std::size_t length = 1000; length < 1100; ++length) {
        const std::string text = std::string(length, 'a').append("b").append(length, 'a');
        std::string wanted(300, 'a');
        wanted += 'b';
        ASSERT_EQ(first(text, wanted), length - 300);
        ASSERT_EQ(last(text, wanted), length - 300);
        ASSERT_EQ(firstInAnyCase(std::string(length, 'A').append("B").append(length, 'a'), wanted),
                  length - 300);
    }
}

TEST(UnitSearch, takesLinearTimeWhateverTheTexts) {
    // Comparing at every place would take 250,000,000,000 steps.
    constexpr std::size_t half = 500000;
    const std::string text(2 * half, 'a');
    const std::string endsOtherwise = std::string(half, 'a').append("b");
    const std::string beginsOtherwise = std::string("b").append(half, 'a');
    EXPECT_EQ(first(text, endsOtherwise), unitNotFound);
    EXPECT_EQ(first(text, beginsOtherwise), unitNotFound);
    EXPECT_EQ(firstInAnyCase(std::string(2 * half, 'A'), endsOtherwise), unitNotFound);
    EXPECT_EQ(last(text, endsOtherwise), unitNotFound);
    EXPECT_EQ(last(text, beginsOtherwise), unitNotFound);
    const std::string hidden = std::string(text).append("b");
    EXPECT_EQ(first(hidden, endsOtherwise), half);
    EXPECT_EQ(last(hidden, endsOtherwise), half);
}

} // namespace
