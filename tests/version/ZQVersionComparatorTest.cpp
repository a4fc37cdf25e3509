// SPDX-License-Identifier: MIT
// The tokens of versions and their three orders: rows, and all pairs of many versions against a model.
#include "version/ZQVersionComparator.h"

#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "tests/kit/AllocationCount.h"
#include "tests/kit/Texts.h"
#include "tests/kit/Threads.h"
#include "tests/kit/Values.h"
#include "tests/models/Versions.h"

using namespace ZQFoundation;
using namespace kit;
using namespace std::string_literals;
using namespace std::string_view_literals;

namespace {

using Comparator = ZQVersionComparator;
using Tokens = models::VersionTokens;
using Order = NSComparisonResult (*)(StringView, StringView);

constexpr Order compared = Comparator::compareVersion_toVersion;
constexpr Order comparedWithPlus = Comparator::compareVersionWithPlus_toVersionWithPlus;
constexpr Order comparedMajor = Comparator::compareMajorVersion_toMajorVersion;

struct Row {
    StringView left;
    StringView right;
    int order;
};

/// Each row also the other way round, and in every form in which a text may come.
template <std::size_t count>
void expectOrders(Order order, const Row (&rows)[count]) {
    for (const Row& row : rows) {
        const NSString left(row.left);
        const NSString right(row.right);
        SCOPED_TRACE(utf8Of(left) + " and " + utf8Of(right));
        EXPECT_EQ(order(row.left, row.right), row.order);
        EXPECT_EQ(order(row.right, row.left), -row.order);
        if (left && right) {
            const std::u16string leftUnits = left.utf16();
            const std::u16string rightUnits = right.utf16();
            EXPECT_EQ(order(leftUnits, rightUnits), row.order);
            EXPECT_EQ(order(left, rightUnits), row.order);
            EXPECT_EQ(order(leftUnits, right.utf8()), order(left, NSString(right.utf8())));
        }
    }
}

/// With bars between them.
constexpr std::u16string_view versionsAsTheyOccur =
    u"1.0|1.0.0|1.0.1|1.0b|1.0b1|1.0b2|1.0b10|1.0a|1.0A|1.0beta|1.0alpha|1.0rc1|1.0.b|1.0.|1.2|1.2.3|1..2|1.."
    u".2|"
    u"1.9|1.10|10.13|10.13.6|10.14|10.14.1|11|11.0|10.13.6.1|2.1b12|2.1b3|3.0+|3.0++|3.0.0|3.0.0+|3+.0|3.0+."
    u"0|"
    u"-1|-2|1-2| 1|1 |1. 0|v1.0|0|00|0.0|.0|.|..|...|2147483647|2147483648|4294967296|99999999999999999999|"
    u"2147483646|1.2147483648|1.\u0663|\u0663|1\u0663|\u06631|\uFF11.\uFF12|1.\u00B2|1.\u20AC|1.\xD83D\xDE00|"
    u"1.\uFF21|1.\xD835\xDFCE|1.\xD83D|1\0|1\0.2|1.0-rc.1|1.0-rc.2|1.0_1|1.0 (2)|1e5|0x10|1\u00E9|1e\u0301|"
    u"1\u00E92|1e\u03011|1\u212A|1K|\u0301|1\uFFFD|1\u03B1"sv;

/// All versions of up to three of these parts, and versions as they occur. The first one is empty.
Tokens versions() {
    const Tokens parts{u"1", u"10", u"01", u".", u"b", u"+"};
    Tokens all{u""};
    for (std::size_t i = 0; i < 1 + 6 + 36; ++i) {
        for (const std::u16string& part : parts) {
            all.push_back(all[i] + part);
        }
    }
    for (std::size_t start = 0, end = 0; end != std::u16string_view::npos; start = end + 1) {
        end = versionsAsTheyOccur.find(u'|', start);
        all.emplace_back(versionsAsTheyOccur.substr(start, end - start));
    }
    return all;
}

// MARK: Classes and tokens

TEST(ZQVersionComparator, tellsTheClassByTheFirstUnit) {
    const struct {
        StringView text;
        int type;
    } rows[] = {
        {".", 2},          {"0", 0},          {"9", 0},      {"5x", 0},        {"5.", 0},
        {"a", 1},          {"Z", 1},          {"+", 1},      {"-", 1},         {" ", 1},
        {"..", 1},         {".5", 1},         {". ", 1},     {"x5", 1},        {"-5", 1},
        {"\u0663", 0},     {"\u0966", 0},     {"\uFF11", 0}, {"\u00B2", 1},    {"\u00BD", 1},
        {"\u2160", 1},     {"\u2460", 1},     {"\u00E9", 1}, {"\uFF0E", 1},    {"\u3002", 1},
        {"\0"sv, 1},       {"\U0001F600", 1}, {"0\0"sv, 0},  {".\0"sv, 1},     {u".", 2},
        {u"7", 0},         {u"\u0663", 0},    {u"/", 1},     {u"\xD83D"sv, 1}, {":", 1},
        {"\U0001D7CE", 1}, // a digit, but of two units
        {nullptr, 1},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Comparator::typeOfCharacter(row.text), row.type) << utf8Of(NSString(row.text));
    }
    EXPECT_EQ(raised([] { Comparator::typeOfCharacter(""); }), "NSRangeException");
}

TEST(ZQVersionComparator, splitsIntoRunsOfOneClassAndSinglePeriods) {
    const struct {
        const char* name;
        StringView version;
        Tokens tokens;
    } rows[] = {
        {"nil", nullptr, {}},
        {"empty", "", {}},
        {"digits", "007", {u"007"}},
        {"a release", "10.13.6", {u"10", u".", u"13", u".", u"6"}},
        {"a beta", "2.1b12", {u"2", u".", u"1", u"b", u"12"}},
        {"two periods", "1..2", {u"1", u".", u".", u"2"}},
        {"periods alone", "...", {u".", u".", u"."}},
        {"at both ends", ".1.", {u".", u"1", u"."}},
        {"a plus", "3.0+", {u"3", u".", u"0", u"+"}},
        {"other characters are one run", "1 -+beta2", {u"1", u" -+beta", u"2"}},
        {"a sign is no digit", "-1", {u"-", u"1"}},
        {"digits of all scripts", "1\u06632b", {u"1\u06632", u"b"}},
        {"a composed character is cut by unit", "1e\u03012", {u"1", u"e\u0301", u"2"}},
        {"a mark after a period", u".\u0301", {u".", u"\u0301"}},
        {"a pair stays in its run", "1\U0001F6002", {u"1", u"\xD83D\xDE00", u"2"}},
        {"half a pair",
         u"1\xD800"
         u"2",
         {u"1", u"\xD800", u"2"}},
        {"a digit of two units is other", "1.\U0001D7CE", {u"1", u".", u"\xD835\xDFCE"}},
        {"U+0000 is other", "1\0.2"sv, {u"1", u"\0"s, u".", u"2"}},
        {"only the full stop is a period", "1\uFF0E2", {u"1", u"\uFF0E", u"2"}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(textsOf(Comparator::splitVersionString(row.version).array()), row.tokens) << row.name;
    }
    for (const std::u16string& version : versions()) {
        EXPECT_EQ(textsOf(Comparator::splitVersionString(version).array()), models::versionTokens(version))
            << shownUnits(version);
    }
}

TEST(ZQVersionComparator, splitsIntoANewArrayThatCanGrow) {
    for (const StringView version : {StringView("1.2"), StringView(nullptr)}) {
        NSMutableArray tokens = Comparator::splitVersionString(version);
        const std::size_t before = tokens.count();
        tokens.addObject("x");
        EXPECT_EQ(tokens.count(), before + 1);
        EXPECT_EQ(Comparator::splitVersionString(version).count(), before);
    }
}

// MARK: Comparing

constexpr Row plainRows[] = {
    {"1.2.3", "1.2.3", 0},
    {"1.2", "1.2.3", -1},
    {"1.0b1", "1.0", -1},
    {"1.0a", "1.0b", -1},
    {"1.0", "1.0.0", -1}, // a trailing ".0" counts
    {"1", "1.0", -1},
    {"1.9", "1.10", -1},
    {"01", "1", 0},
    {"1.00", "1.0", 0},
    {"1..2", "1.2", -1},
    {"1.0a", "1.0.1", -1},
    {"1.0alpha", "1.0beta", -1},
    {"1.0b", "1.0beta", -1},
    {"1.0B", "1.0b", -1}, // case-sensitive
    {"1.0b2", "1.0b10", -1},
    {"1b2", "1beta1", -1},
    {"1.0b", "1.0b1", -1}, // a number after the same letters is more
    {"b", "1", -1},
    {"b", ".", -1},
    {".", "1", -1},
    {"1.b", "1.", -1},
    {"1.", "1.0", -1},
    {"1b", "1.", -1},
    {"1+", "1", -1},
    {"2.0+", "2.0.0", -1}, // the sign has no meaning here
    {"-1", "1", -1},
    {"-1", "-2", -1},
    {" 1", "1", -1},
    {"10.13.6", "10.14", -1},
    {"2147483646", "99999999999", -1},
    {"2147483647", "2147483648", 0}, // both at the limit
    {"18446744073709551617", "99999999999999999999", 0},
    {"2147483648.1", "2147483647.2", -1},
    {"1.4294967297", "1.1", 1}, // does not wrap
    {"0000000000000000000000001", "1", 0},
    {"\u0663", "1", -1}, // digits of other scripts count as no number
    {"\u0663", "0", 0},
    {"\u0663", "\u0669", 0},
    {"1\u0663", "1", 0},
    {".", "\u0663", -1},
    {"\u00E9", "\u0663", -1},
    {"1.\u0663", "1.", 1},
    {"1.\u00B2", "1.1", -1},
    {"1.\U0001D7CE", "1.0", -1},
    {"1.\U0001F600", "1.\uFF21", -1}, // by units, not by code points
    {"1\u03B1", "1\u03B2", -1},
    {"1.x\0"sv, "1.x", 1},
    {"1.\u00E9", "1.e\u0301", 0}, // canonically equivalent
    {"1\u00E92", "1e\u03011", 1},
    {"1e\u0301.1", "1f.0", -1},
    {"1z", "1\u00E9", -1},
    {"1\xFF", "1\uFFFD", 0}, // ill-formed bytes read as replacement characters
    {"\xC3.1", "\uFFFD.1", 0},
    {"1.\xC3", "1.", -1},
    {"", "", 0},
};

TEST(ZQVersionComparator, comparesTokenByToken) { expectOrders(compared, plainRows); }

TEST(ZQVersionComparator, takesNilForAVersionWithoutTokens) {
    const struct {
        StringView version;
        int order;
    } rows[] = {{nullptr, 0}, {"", 0},  {"1", -1}, {".", -1},      {".b", -1},    {"0", -1},
                {"b1", 1},    {" ", 1}, {"-1", 1}, {"\u0663", -1}, {"\u00E9", 1}, {"\0"sv, 1}};
    for (const auto& row : rows) {
        for (const StringView none : {StringView(nullptr), StringView("")}) {
            EXPECT_EQ(compared(none, row.version), row.order) << utf8Of(NSString(row.version));
            EXPECT_EQ(compared(row.version, none), -row.order) << utf8Of(NSString(row.version));
        }
    }
}

TEST(ZQVersionComparator, followsTheModelForAllPairs) {
    const Tokens all = versions();
    ASSERT_GT(all.size(), 300U);
    for (const std::u16string& left : all) {
        for (const std::u16string& right : all) {
            const auto pair = [&] {
                return shownUnits(left) + " and " + shownUnits(right);
            };
            ASSERT_EQ(compared(left, right), models::orderOfVersions(left, right)) << pair();
            ASSERT_EQ(comparedMajor(left, right), models::orderOfMajorVersions(left, right)) << pair();
            if (!left.empty() && !right.empty()) {
                ASSERT_EQ(comparedWithPlus(left, right), models::orderOfVersionsWithPlus(left, right))
                    << pair();
            }
        }
    }
}

/// Texts as bytes take ways of their own through ASCII.
TEST(ZQVersionComparator, followsTheModelForBytes) {
    Tokens all = versions();
    for (const std::u16string& left : all) {
        const std::string leftBytes = NSString(left).utf8();
        const std::u16string leftUnits = NSString(leftBytes).utf16(); // without unpaired surrogates
        for (const std::u16string& right : all) {
            const std::string rightBytes = NSString(right).utf8();
            ASSERT_EQ(compared(leftBytes, rightBytes),
                      models::orderOfVersions(leftUnits, NSString(rightBytes).utf16()))
                << leftBytes << " and " << rightBytes;
        }
    }
}

TEST(ZQVersionComparator, takesVeryLongVersions) {
    std::string periods;
    for (int i = 0; i < 500000; ++i) {
        periods += "1.";
    }
    EXPECT_EQ(compared(periods + "1", periods + "1"), 0);
    EXPECT_EQ(compared(periods + "1", periods + "2"), -1);
    EXPECT_EQ(compared(periods, periods + "b"), 1);
    EXPECT_EQ(comparedWithPlus(periods + "1+", periods + "1.0"), 0);
    EXPECT_EQ(comparedMajor(periods, "1"), 0);
    EXPECT_EQ(comparedMajor("2", periods), 1);
    EXPECT_EQ(comparedMajor(periods, periods + "7"), 0);
    EXPECT_EQ(comparedMajor(std::string(1000000, '.'), "1"), -1);
    const std::string digits(1000000, '0');
    EXPECT_EQ(compared(digits + "1", "1"), 0);
    EXPECT_EQ(compared(digits + "2", "1"), 1);
    EXPECT_EQ(compared("1" + digits, "2147483647"), 0);
    const std::string letters(1000000, 'x');
    EXPECT_EQ(compared(letters + "a", letters + "b"), -1);
    EXPECT_EQ(compared(letters + "\u00E9", letters + "e\u0301"), 0);
    EXPECT_EQ(Comparator::splitVersionString(periods).count(), 1000000U);
}

TEST(ZQVersionComparator, allocatesNothingForVersionsOfOrdinaryLength) {
    const NSString left("10.13.6b2");
    const NSString right("10.13.6b12");
    const std::u16string letters = u"1.\u03B1.\u0663";
    compared(letters, letters); // makes the set of digits
    const std::size_t before = AllocationCount::now();
    const int orders[] = {compared(left, right),
                          comparedWithPlus("10.13+", left),
                          comparedMajor(left, "10.14"),
                          compared(u"10.13", right),
                          compared(u"1.\u03B1.\u0669+", letters),
                          compared("1.\xCE\xB1", "1.\xCE\xB1.")};
    EXPECT_EQ(AllocationCount::now(), before);
    EXPECT_EQ(std::vector<int>(std::begin(orders), std::end(orders)), std::vector<int>(6, -1));
}

// MARK: With plus

constexpr Row plusRows[] = {
    {"2.0+", "2.0.0", 0},
    {"2.0+", "2.0", 1},
    {"2.0+", "2.0.1", -1},
    {"2+", "2.0", 0},
    {"2.0+", "2.0+", 0},
    {"2.0+", "2.1+", -1},
    {"2.0+", "2+", 1},
    {"2.0++", "2.0+.0", 0}, // only the last one
    {"2.0++", "2.0", -1},
    {"+2.0", "2.0", -1},
    {"2+.0", "2.0", -1},
    {"2+1", "2.0", -1},
    {"2.+", "2..0", 0},
    {"+", ".0", 0},
    {"+", "0", -1},
    {"+", "b", 1},
    {"++", "+.0", 0},
    {"2.0b+", "2.0b.0", 0},
    {"2.0", "2.0.0", -1},
    {"%@+", "%@.0", 0},
    {"2\uFF0B", "2", -1}, // not the full-width sign
    {"\u00E9+", "\u00E9.0", 0},
    {"\u0663+", "0.0", 0},
    {"2\0+"sv, "2\0.0"sv, 0},
    {"2+\0"sv, "2", -1},
    {nullptr, nullptr, 0},
    {nullptr, "1+", -1},
    {nullptr, "+", -1},
    {nullptr, "b+", 1},
};

TEST(ZQVersionComparator, readsOnePlusAtTheEndAsAnotherZero) { expectOrders(comparedWithPlus, plusRows); }

TEST(ZQVersionComparator, raisesForAnEmptyVersionWithPlus) {
    for (const StringView other :
         {StringView("1.0"), StringView("1+"), StringView(""), StringView(nullptr)}) {
        EXPECT_EQ(raised([other] { comparedWithPlus("", other); }), "NSRangeException");
        EXPECT_EQ(raised([other] { comparedWithPlus(other, ""); }), "NSRangeException");
        EXPECT_EQ(raised([other] { comparedWithPlus(u"", other); }), "NSRangeException");
    }
}

// MARK: Major versions

constexpr Row majorRows[] = {
    {"10.13.6", "10.14", -1}, // 10.13 and 10.14
    {"10.13", "10.14", 0},    // 10 and 10
    {"10", "11", -1},
    {"5", "5.1", 0},
    {"5", "6.1", -1},
    {"5", "4.9", 1},
    {"10.13.6", "10.13.7", 0},
    {"10.13.6", "10.14.1", -1},
    {"10.13.6", "11", -1},
    {"10.13.6.1", "10.13", 0},
    {"10.13.6.1", "10.14", -1},
    {"1.3", "1.2.9", 1},
    {"1.0b1", "1.0", 0},
    {"1.0b1", "1.0.5", -1}, // 1.0b1 and 1.0
    {"1b.0", "1.0", -1},
    {"1..2", "1.2", -1},   // "1." and "1.2"
    {"1..2", "1.2.3", -1}, // "1." and "1.2"
    {".", ".", 0},
    {".", "", 0},
    {".", "1.", -1},
    {".1", "1", -1}, // "" and "1"
    {".1", "b", 1},
    {"1.", "1.5", 0},
    {"...", "1", -1},
    {"", "b", 1},
    {nullptr, nullptr, 0},
    {nullptr, "", 0},
    {nullptr, "1.2", -1},
    {nullptr, "b.2", 1},
    {nullptr, ".2", 0},
    {"2.0+", "2.0", 0},
    {"2+", "2", -1}, // the sign has no meaning here
    {"010.1", "10.2", 0},
    {"1\uFF0E5", "1", -1}, // only the full stop counts
    {"\U0001F600.1", "\U0001F600.2", 0},
    {"1\u00E9.2", "1e\u0301.3", 0},
};

TEST(ZQVersionComparator, cutsTheLastComponentOfMajorVersionsOnlyWhenThePeriodsAreAsMany) {
    expectOrders(comparedMajor, majorRows);
}

// MARK: Threads

TEST(ZQVersionComparator, answersAlikeOnConcurrentThreads) {
    std::atomic<int> wrong = 0;
    kit::inThreads(4, [&wrong](std::size_t) {
        for (int i = 0; i < 2000; ++i) {
            wrong += compared(u"1.\u0663b", "1.0c") == -1 ? 0 : 1;
            wrong += compared("1.9", "1.10") == -1 ? 0 : 1;
        }
    });
    EXPECT_EQ(wrong, 0);
}

} // namespace
