// SPDX-License-Identifier: MIT
#include "version/ZQVersionComparator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "tests/objects/TestValues.h"

using namespace ZQFoundation;
using namespace TestValues;
using namespace std::string_literals;
using namespace std::string_view_literals;

namespace {

using Tokens = std::vector<std::u16string>;

NSString units(std::u16string_view text) {
    return NSString::stringWithCharacters_length(text.data(), text.size());
}

int compared(StringView left, StringView right) {
    return ZQVersionComparator::compareVersion_toVersion(left, right);
}

int comparedWithPlus(StringView left, StringView right) {
    return ZQVersionComparator::compareVersionWithPlus_toVersionWithPlus(left, right);
}

int comparedMajor(StringView left, StringView right) {
    return ZQVersionComparator::compareMajorVersion_toMajorVersion(left, right);
}

Tokens split(StringView version) {
    Tokens tokens;
    const NSMutableArray array = ZQVersionComparator::splitVersionString(version);
    for (const NSObject& token : array) {
        tokens.push_back(NSString(token).utf16());
    }
    return tokens;
}

// MARK: A slow model, written down step by step

enum : int { digit = 0, other = 1, period = 2 };

bool isDigit(char16_t unit) {
    constexpr char16_t zeros[] = {u'0', 0x0660, 0x0966, 0xFF10};
    return std::any_of(std::begin(zeros), std::end(zeros),
                       [unit](char16_t zero) { return unit >= zero && unit < zero + 10; });
}

int typeOf(const std::u16string& token) {
    if (token == u".") {
        return period;
    }
    return isDigit(token.at(0)) ? digit : other;
}

Tokens modelSplit(const std::u16string& version) {
    Tokens tokens;
    if (version.empty()) {
        return tokens;
    }
    std::u16string current(1, version[0]);
    int previous = typeOf(current);
    for (std::size_t i = 1; i < version.size(); ++i) {
        const std::u16string unit(1, version[i]);
        const int type = typeOf(unit);
        if (previous == period || type != previous) {
            tokens.push_back(current);
            current = unit;
        } else {
            current += unit;
        }
        previous = type;
    }
    tokens.push_back(current);
    return tokens;
}

std::int64_t numberOf(const std::u16string& token) {
    std::int64_t value = 0;
    for (const char16_t unit : token) {
        if (unit < u'0' || unit > u'9') {
            break;
        }
        value = std::min<std::int64_t>(value * 10 + (unit - u'0'), INT32_MAX);
    }
    return value;
}

/// 0 when the tokens do not decide.
int comparedTokens(const std::u16string& a, const std::u16string& b) {
    const int typeA = typeOf(a);
    const int typeB = typeOf(b);
    if (typeA != typeB) {
        if (typeB == other) {
            return 1;
        }
        if (typeA == other) {
            return -1;
        }
        return typeA == period ? -1 : 1;
    }
    if (typeA == other) {
        return a < b ? -1 : a > b ? 1 : 0;
    }
    if (typeA == digit) {
        const std::int64_t left = numberOf(a);
        const std::int64_t right = numberOf(b);
        return left < right ? -1 : left > right ? 1 : 0;
    }
    return 0;
}

int modelCompared(const std::u16string& left, const std::u16string& right) {
    const Tokens a = modelSplit(left);
    const Tokens b = modelSplit(right);
    const std::size_t shared = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < shared; ++i) {
        const int order = comparedTokens(a[i], b[i]);
        if (order != 0) {
            return order;
        }
    }
    if (a.size() == b.size()) {
        return 0;
    }
    if (a.size() > b.size()) {
        return typeOf(a[shared]) == other ? -1 : 1;
    }
    return typeOf(b[shared]) == other ? 1 : -1;
}

std::u16string withoutPlus(std::u16string version) {
    if (version.back() == u'+') {
        version.pop_back();
        version += u".0";
    }
    return version;
}

int modelWithPlus(const std::u16string& left, const std::u16string& right) {
    return modelCompared(withoutPlus(left), withoutPlus(right));
}

void cutAtLastPeriod(std::u16string& version) {
    const std::size_t last = version.rfind(u'.');
    if (last != std::u16string::npos) {
        version.resize(last);
    }
}

int modelMajor(std::u16string left, std::u16string right) {
    const auto inLeft = std::count(left.begin(), left.end(), u'.');
    const auto inRight = std::count(right.begin(), right.end(), u'.');
    for (auto i = inRight; i < inLeft; ++i) {
        cutAtLastPeriod(left);
    }
    for (auto i = inLeft; i < inRight; ++i) {
        cutAtLastPeriod(right);
    }
    if (inLeft == inRight) {
        cutAtLastPeriod(left);
        cutAtLastPeriod(right);
    }
    return modelCompared(left, right);
}

constexpr std::u16string_view versionsAsTheyOccur[] = {u"1.0",
                                                       u"1.0.0",
                                                       u"1.0.1",
                                                       u"1.0b",
                                                       u"1.0b1",
                                                       u"1.0b2",
                                                       u"1.0b10",
                                                       u"1.0a",
                                                       u"1.0A",
                                                       u"1.0beta",
                                                       u"1.0alpha",
                                                       u"1.0rc1",
                                                       u"1.0.b",
                                                       u"1.0.",
                                                       u"1.2",
                                                       u"1.2.3",
                                                       u"1..2",
                                                       u"1...2",
                                                       u"1.9",
                                                       u"1.10",
                                                       u"10.13",
                                                       u"10.13.6",
                                                       u"10.14",
                                                       u"10.14.1",
                                                       u"11",
                                                       u"11.0",
                                                       u"10.13.6.1",
                                                       u"2.1b12",
                                                       u"2.1b3",
                                                       u"3.0+",
                                                       u"3.0++",
                                                       u"3.0.0",
                                                       u"3.0.0+",
                                                       u"3+.0",
                                                       u"3.0+.0",
                                                       u"-1",
                                                       u"-2",
                                                       u"1-2",
                                                       u" 1",
                                                       u"1 ",
                                                       u"1. 0",
                                                       u"v1.0",
                                                       u"0",
                                                       u"00",
                                                       u"0.0",
                                                       u".0",
                                                       u".",
                                                       u"..",
                                                       u"...",
                                                       u"2147483647",
                                                       u"2147483648",
                                                       u"4294967296",
                                                       u"99999999999999999999",
                                                       u"2147483646",
                                                       u"1.2147483648",
                                                       u"1.99999999999",
                                                       u"\u0663",
                                                       u"1\u0663",
                                                       u"1.\u0663",
                                                       u"\u06631",
                                                       u"\uFF11.\uFF12",
                                                       u"1.\u00b2",
                                                       u"1.\u20ac",
                                                       u"1.\xD83D\xDE00",
                                                       u"1.\uFF21",
                                                       u"1.\xD835\xDFCE",
                                                       u"1.\xD83D",
                                                       u"1\0"sv,
                                                       u"1\0.2"sv,
                                                       u"1.0-rc.1",
                                                       u"1.0-rc.2",
                                                       u"1.0_1",
                                                       u"1.0 (2)",
                                                       u"1e5",
                                                       u"0x10"};

/// All versions of up to three of these parts, and versions as they occur.
Tokens versions() {
    const Tokens parts{u"1", u"10", u"01", u".", u"b", u"+"};
    Tokens all{u""};
    for (std::size_t i = 0; i < 1 + 6 + 36; ++i) {
        for (const std::u16string& part : parts) {
            all.push_back(all[i] + part);
        }
    }
    all.insert(all.end(), std::begin(versionsAsTheyOccur), std::end(versionsAsTheyOccur));
    return all;
}

// MARK: Classes and tokens

TEST(VersionOrder, theFirstUnitDecidesTheClass) {
    const struct {
        StringView text;
        int type;
    } rows[] = {
        {".", period},      {"0", digit},          {"9", digit},          {"5x", digit},
        {"5.", digit},      {"a", other},          {"Z", other},          {"+", other},
        {"-", other},       {" ", other},          {"..", other},         {".5", other},
        {". ", other},      {"x5", other},         {"-5", other},         {"\u0663", digit},
        {"\u0966", digit},  {"\uFF11", digit},     {"\u00b2", other},     {"\u00bd", other},
        {"\u2160", other},  {"\u2460", other},     {"\u00e9", other},     {"\uFF0E", other},
        {"\u3002", other},  {"\U0001D7CE", other}, {"\U0001F600", other}, {"\0"sv, other},
        {"0\0"sv, digit},   {".\0"sv, other},      {u".", period},        {u"7", digit},
        {u"\u0663", digit}, {u"\xD83D"sv, other},  {u"/", other},         {":", other},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(ZQVersionComparator::typeOfCharacter(row.text), row.type) << NSString(row.text).utf8();
    }
}

TEST(VersionOrder, runsOfOneClassAndSinglePeriodsAreTokens) {
    const struct {
        const char* name;
        StringView version;
        Tokens tokens;
    } rows[] = {
        {"nil", nullptr, {}},
        {"empty", "", {}},
        {"a digit", "1", {u"1"}},
        {"digits", "123", {u"123"}},
        {"a release", "10.13.6", {u"10", u".", u"13", u".", u"6"}},
        {"a beta", "2.1b12", {u"2", u".", u"1", u"b", u"12"}},
        {"two periods", "1..2", {u"1", u".", u".", u"2"}},
        {"periods alone", "...", {u".", u".", u"."}},
        {"at both ends", ".1.", {u".", u"1", u"."}},
        {"a plus", "3.0+", {u"3", u".", u"0", u"+"}},
        {"other characters are one run", "1 -+beta2", {u"1", u" -+beta", u"2"}},
        {"words and periods", "a.b", {u"a", u".", u"b"}},
        {"a sign is no digit", "-1", {u"-", u"1"}},
        {"digits of all scripts", "1\u06632b", {u"1\u06632", u"b"}},
        {"a composed character is cut by unit", "1e\u03012", {u"1", u"e\u0301", u"2"}},
        {"a pair stays in its run", "1\U0001F6002", {u"1", u"\xD83D\xDE00", u"2"}},
        {"a digit of two units is other", "1.\U0001D7CE", {u"1", u".", u"\xD835\xDFCE"}},
        {"U+0000 is other", "1\0.2"sv, {u"1", u"\0"s, u".", u"2"}},
        {"only the full stop is a period", "1\uFF0E2", {u"1", u"\uFF0E", u"2"}},
        {"in units", u"2.1b12", {u"2", u".", u"1", u"b", u"12"}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(split(row.version), row.tokens) << row.name;
    }
}

TEST(VersionOrder, theTokensMakeANewArrayThatCanGrow) {
    NSMutableArray tokens = ZQVersionComparator::splitVersionString("1.2");
    tokens.addObject("x");
    EXPECT_EQ(tokens.count(), 4U);
    EXPECT_EQ(ZQVersionComparator::splitVersionString("1.2").count(), 3U);
    NSMutableArray none = ZQVersionComparator::splitVersionString(nullptr);
    none.addObject("x");
    EXPECT_EQ(none.count(), 1U);
}

TEST(VersionOrder, splittingFollowsTheSteps) {
    for (const std::u16string& version : versions()) {
        const Tokens tokens = split(units(version));
        EXPECT_EQ(tokens, modelSplit(version)) << units(version).utf8();
        std::u16string joined;
        for (const std::u16string& token : tokens) {
            EXPECT_FALSE(token.empty());
            joined += token;
        }
        EXPECT_EQ(joined, version);
    }
}

// MARK: Comparing

const struct {
    StringView left;
    StringView right;
    int order;
} plainRows[] = {
    {"1.2.3", "1.2.3", 0},
    {"1.2", "1.2.3", -1},
    {"1.0b1", "1.0", -1},
    {"1.0b", "1.0", -1},
    {"1.0a", "1.0b", -1},
    {"1.0", "1.0.0", -1},
    {"1", "1.0", -1},
    {"1.0", "1.0.1", -1},
    {"1.9", "1.10", -1},
    {"01", "1", 0},
    {"010", "10", 0},
    {"1.00", "1.0", 0},
    {"1..2", "1.2", -1},
    {"1.0a", "1.0.1", -1},
    {"1.0alpha", "1.0beta", -1},
    {"1.0b", "1.0beta", -1},
    {"1.0B", "1.0b", -1}, // case-sensitive
    {"1.0Z", "1.0a", -1},
    {"1.0b2", "1.0b10", -1},
    {"1.0b", "1.0b1", -1}, // a number behind the same letters is more
    {"b", "1", -1},
    {"b", ".", -1},
    {".", "1", -1},
    {"1.b", "1.", -1},
    {"1.", "1.0", -1},
    {"1b", "1", -1},
    {"1b", "1.0", -1},
    {"1b", "1.", -1},
    {"1+", "1", -1},
    {"-1", "1", -1},
    {"-1", "-2", -1},
    {" 1", "1", -1},
    {"10.13.6", "10.14", -1},
    {"9", "10", -1},
    {"2147483646", "2147483647", -1},
    {"2147483647", "2147483648", 0}, // both at the limit
    {"2147483648", "99999999999999999999", 0},
    {"2147483648.1", "2147483647.2", -1},
    {"1.4294967297", "1.1", 1}, // does not wrap
    {"\u0663", "1", -1},        // digits of other scripts count as no number
    {"\u0663", "0", 0},
    {"1\u0663", "1", 0},
    {"\uFF15", "\uFF11", 0},
    {"1.\u00b2", "1.1", -1},
    {"1.\U0001D7CE", "1.0", -1},
    {"1.\U0001F600", "1.\uFF21", -1}, // by units, not by code points
    {"1.x\0"sv, "1.x", 1},
    {"1.\u00e9", "1.e\u0301", 0}, // canonically equivalent
    {"1.a", "1.\u00e9", -1},
    {"", "", 0},
};

TEST(VersionOrder, ofPlainVersions) {
    for (const auto& row : plainRows) {
        const std::string name = NSString(row.left).utf8() + " and " + NSString(row.right).utf8();
        EXPECT_EQ(compared(row.left, row.right), row.order) << name;
        EXPECT_EQ(compared(row.right, row.left), -row.order) << name << ", exchanged";
    }
}

TEST(VersionOrder, nilHasNoTokens) {
    const struct {
        StringView version;
        int order;
    } rows[] = {
        {nullptr, 0}, {"", 0},  {"1", -1}, {"1.0", -1}, {".", -1},      {".b", -1},    {"0", -1},   {"b", 1},
        {"b1", 1},    {"+", 1}, {" ", 1},  {"-1", 1},   {"\u0663", -1}, {"\u00e9", 1}, {"\0"sv, 1},
    };
    for (const auto& row : rows) {
        for (const StringView none : {StringView(nullptr), StringView("")}) {
            EXPECT_EQ(compared(none, row.version), row.order) << NSString(row.version).utf8();
            EXPECT_EQ(compared(row.version, none), -row.order) << NSString(row.version).utf8();
        }
    }
}

TEST(VersionOrder, ofAllPairsFollowsTheSteps) {
    const Tokens all = versions();
    ASSERT_GT(all.size(), 300U);
    for (const std::u16string& left : all) {
        for (const std::u16string& right : all) {
            const int order = compared(left, right);
            ASSERT_EQ(order, modelCompared(left, right))
                << units(left).utf8() << " and " << units(right).utf8();
            ASSERT_EQ(order, -compared(right, left)) << units(left).utf8() << " and " << units(right).utf8();
        }
        ASSERT_EQ(compared(left, left), 0);
    }
}

TEST(VersionOrder, theFormOfTheTextDoesNotMatter) {
    const char* const plain[] = {"1.0", "1.0b1", "10.13.6", "1.10", "2.0+", "b", "1..2"};
    for (const char* left : plain) {
        for (const char* right : plain) {
            const NSString leftText(left);
            const std::u16string leftUnits = leftText.utf16();
            const std::u16string rightUnits = NSString(right).utf16();
            EXPECT_EQ(compared(leftUnits, rightUnits), compared(left, right));
            EXPECT_EQ(compared(leftText, rightUnits), compared(left, right));
            EXPECT_EQ(comparedWithPlus(leftUnits, right), comparedWithPlus(left, right));
            EXPECT_EQ(comparedMajor(leftText, rightUnits), comparedMajor(left, right));
        }
    }
}

TEST(VersionOrder, ofVeryLongVersions) {
    std::string periods;
    for (int i = 0; i < 500000; ++i) {
        periods += "1.";
    }
    EXPECT_EQ(compared(periods + "1", periods + "1"), 0);
    EXPECT_EQ(compared(periods + "1", periods + "2"), -1);
    EXPECT_EQ(compared(periods, periods + "b"), 1);
    EXPECT_EQ(comparedWithPlus(periods + "1+", periods + "1.0"), 0);
    const std::string digits(1000000, '0');
    EXPECT_EQ(compared(digits + "1", "1"), 0);
    EXPECT_EQ(compared(digits + "2", "1"), 1);
    EXPECT_EQ(compared("1" + digits, "2147483647"), 0);
    const std::string letters(1000000, 'x');
    EXPECT_EQ(compared(letters + "a", letters + "b"), -1);
    EXPECT_EQ(split(periods).size(), 1000000U);
}

// MARK: With plus

TEST(VersionOrder, onePlusAtTheEndReadsAsAnotherZero) {
    const struct {
        StringView left;
        StringView right;
        int order;
    } rows[] = {
        {"2.0+", "2.0.0", 0},
        {"2.0+", "2.0", 1},
        {"2.0+", "2.0.1", -1},
        {"3.0+", "3.0.0", 0},
        {"3.0+", "3.0", 1},
        {"3.0+", "3.0.1", -1},
        {"2+", "2.0", 0},
        {"2+", "2", 1},
        {"2.0+", "2.0+", 0},
        {"2.0+", "2.1+", -1},
        {"2.0+", "2+", 1},
        {"2.0++", "2.0+.0", 0}, // only the last one
        {"2.0++", "2.0", -1},
        {"+2.0", "2.0", -1},
        {"2+.0", "2.0", -1},
        {"2.+", "2..0", 0},
        {"+", ".0", 0},
        {"+", "0", -1},
        {"+", "b", 1},
        {"++", "+.0", 0},
        {"2.0b+", "2.0b.0", 0},
        {"2.0", "2.0", 0},
        {"2.0", "2.0.0", -1},
        {"1.9", "1.10", -1},
        {"%@+", "%@.0", 0},
        {"2\uFF0B", "2", -1}, // not the full-width sign
        {"\u00e9+", "\u00e9.0", 0},
        {"2\0+"sv, "2\0.0"sv, 0},
        {"2+\0"sv, "2", -1},
    };
    for (const auto& row : rows) {
        const std::string name = NSString(row.left).utf8() + " and " + NSString(row.right).utf8();
        EXPECT_EQ(comparedWithPlus(row.left, row.right), row.order) << name;
        EXPECT_EQ(comparedWithPlus(row.right, row.left), -row.order) << name << ", exchanged";
    }
}

TEST(VersionOrder, withPlusANilVersionIsPassedOnAndAnEmptyOneRaises) {
    EXPECT_EQ(comparedWithPlus(nullptr, nullptr), 0);
    EXPECT_EQ(comparedWithPlus(nullptr, "1+"), -1);
    EXPECT_EQ(comparedWithPlus("1+", nullptr), 1);
    EXPECT_EQ(comparedWithPlus(nullptr, "+"), -1);
    EXPECT_EQ(comparedWithPlus(nullptr, "b+"), 1);
    for (const StringView other :
         {StringView("1.0"), StringView("1+"), StringView(""), StringView(nullptr)}) {
        EXPECT_EQ(raised([other] { comparedWithPlus("", other); }), "NSRangeException");
        EXPECT_EQ(raised([other] { comparedWithPlus(other, ""); }), "NSRangeException");
        EXPECT_EQ(raised([other] { comparedWithPlus(u"", other); }), "NSRangeException");
    }
}

TEST(VersionOrder, withPlusOfAllPairsFollowsTheSteps) {
    Tokens all = versions();
    all.erase(all.begin()); // the empty one
    for (const std::u16string& left : all) {
        for (const std::u16string& right : all) {
            const int order = comparedWithPlus(left, right);
            ASSERT_EQ(order, modelWithPlus(left, right))
                << units(left).utf8() << " and " << units(right).utf8();
            ASSERT_EQ(order, -comparedWithPlus(right, left))
                << units(left).utf8() << " and " << units(right).utf8();
        }
    }
}

// MARK: Major versions

const struct {
    StringView left;
    StringView right;
    int order;
} majorRows[] = {
    {"10.13.6", "10.14", -1}, // 10.13 and 10.14
    {"10.13", "10.14", 0},    // 10 and 10
    {"10", "11", -1},
    {"10", "10", 0},
    {"5", "5.1", 0},
    {"5", "6.1", -1},
    {"5", "4.9", 1},
    {"10.13.6", "10.13.7", 0},
    {"10.13.6", "10.14.1", -1},
    {"10.13.6", "11", -1},
    {"10.13.6", "10", 0},
    {"10.13.6.1", "10.13", 0},
    {"10.13.6.1", "10.14", -1},
    {"1.2", "1.2.3", 0},
    {"1.3", "1.2.9", 1},
    {"1.0b1", "1.0", 0},
    {"1.0b1", "1.0.5", -1}, // 1.0b1 and 1.0
    {"1b.0", "1.0", -1},
    {"1..2", "1.2", -1},   // "1." and "1.2"
    {"1..2", "1.2.3", -1}, // "1." and "1.2"
    {".", ".", 0},
    {".", "", 0},
    {".1", "1", -1}, // "" and "1"
    {".1", "b", 1},
    {"1.", "1", 0},
    {"...", "1", -1},
    {"", "", 0},
    {"", "1", -1},
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
};

TEST(VersionOrder, ofMajorVersionsCutsTheLastComponentOnlyWhenThePeriodsAreAsMany) {
    for (const auto& row : majorRows) {
        const std::string name = NSString(row.left).utf8() + " and " + NSString(row.right).utf8();
        EXPECT_EQ(comparedMajor(row.left, row.right), row.order) << name;
        EXPECT_EQ(comparedMajor(row.right, row.left), -row.order) << name << ", exchanged";
    }
}

TEST(VersionOrder, ofMajorVersionsOfAllPairsFollowsTheSteps) {
    const Tokens all = versions();
    for (const std::u16string& left : all) {
        for (const std::u16string& right : all) {
            const int order = comparedMajor(left, right);
            ASSERT_EQ(order, modelMajor(left, right)) << units(left).utf8() << " and " << units(right).utf8();
            ASSERT_EQ(order, -comparedMajor(right, left))
                << units(left).utf8() << " and " << units(right).utf8();
        }
    }
}

TEST(VersionOrder, ofMajorVersionsWithVeryManyPeriods) {
    std::string periods = "1";
    for (int i = 0; i < 500000; ++i) {
        periods += ".1";
    }
    EXPECT_EQ(comparedMajor(periods, "1"), 0);
    EXPECT_EQ(comparedMajor("1.1", periods), 0);
    EXPECT_EQ(comparedMajor("2", periods), 1);
    EXPECT_EQ(comparedMajor(periods, periods + "7"), 0);
    EXPECT_EQ(comparedMajor(std::string(1000000, '.'), "1"), -1);
}

} // namespace
