// SPDX-License-Identifier: MIT
#include "version/ZQVersionComparator.h"

#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "tests/objects/CountingAllocator.h"
#include "tests/objects/TestValues.h"

using namespace ZQFoundation;

namespace {

using Comparator = ZQVersionComparator;
using Order = NSComparisonResult (*)(StringView, StringView);

struct Row {
    StringView left;
    StringView right;
    int order;
};

/// Each row also the other way round.
void expectOrders(Order order, std::initializer_list<Row> rows) {
    for (const Row& row : rows) {
        const NSString left(row.left);
        const NSString right(row.right);
        EXPECT_EQ(order(row.left, row.right), row.order) << left.utf8() << " with " << right.utf8();
        EXPECT_EQ(order(row.right, row.left), -row.order) << right.utf8() << " with " << left.utf8();
        // The form in which a text comes is of no importance.
        const std::u16string leftUnits = left.utf16();
        const std::u16string rightUnits = right.utf16();
        if (left && right) {
            EXPECT_EQ(order(leftUnits, rightUnits), row.order) << left.utf8();
            EXPECT_EQ(order(left, rightUnits), row.order) << left.utf8();
            EXPECT_EQ(order(leftUnits, right), row.order) << left.utf8();
        }
    }
}

std::vector<std::u16string> tokensOf(StringView version) {
    std::vector<std::u16string> tokens;
    for (const NSObject& token : Comparator::splitVersionString(version)) {
        tokens.push_back(token.as<NSString>().utf16());
    }
    return tokens;
}

std::string joined(StringView version) {
    return Comparator::splitVersionString(version).array().componentsJoinedByString("|").utf8();
}

/// The order as the tokens define it, without any shortcut.
int modelOrder(StringView leftVersion, StringView rightVersion) {
    const NSArray left = Comparator::splitVersionString(leftVersion).array();
    const NSArray right = Comparator::splitVersionString(rightVersion).array();
    const auto classOf = [](const NSArray& tokens, std::size_t index) {
        return Comparator::typeOfCharacter(tokens[index].as<NSString>());
    };
    const std::size_t shared = left.count() < right.count() ? left.count() : right.count();
    for (std::size_t i = 0; i < shared; ++i) {
        const int leftClass = classOf(left, i);
        const int rightClass = classOf(right, i);
        if (leftClass != rightClass) {
            return rightClass == 1 ? 1 : leftClass == 1 ? -1 : leftClass == 2 ? -1 : 1;
        }
        const NSString leftToken(left[i]);
        const NSString rightToken(right[i]);
        const int order = leftClass == 1 ? leftToken.compare(rightToken)
                          : leftToken.intValue() == rightToken.intValue()
                              ? 0
                              : (leftToken.intValue() < rightToken.intValue() ? -1 : 1);
        if (order != 0) {
            return order;
        }
    }
    if (left.count() == right.count()) {
        return 0;
    }
    return left.count() > right.count() ? (classOf(left, shared) == 1 ? -1 : 1)
                                        : (classOf(right, shared) == 1 ? 1 : -1);
}

/// Small and the same everywhere.
class Numbers {
public:
    explicit Numbers(std::uint64_t seed) : state_(seed) {}
    std::size_t below(std::size_t limit) {
        state_ = state_ * 6364136223846793005U + 1442695040888963407U;
        return static_cast<std::size_t>(state_ >> 33) % limit;
    }

private:
    std::uint64_t state_;
};

std::u16string randomVersion(Numbers& numbers, const std::vector<std::u16string>& pieces) {
    std::u16string version;
    for (std::size_t count = numbers.below(7); count > 0; --count) {
        version += pieces[numbers.below(pieces.size())];
    }
    return version;
}

} // namespace

TEST(ZQVersionComparator, tellsTheClassOfACharacter) {
    struct ClassRow {
        StringView text;
        int type;
    };
    for (const ClassRow& row :
         {ClassRow{"0", 0}, ClassRow{"9", 0}, ClassRow{".", 2}, ClassRow{"a", 1}, ClassRow{"+", 1},
          ClassRow{"-", 1}, ClassRow{" ", 1}, ClassRow{"/", 1}, ClassRow{":", 1}, ClassRow{u"\u0663", 0},
          ClassRow{u"\uFF15", 0}, ClassRow{u"\u00B2", 1}, ClassRow{u"\u2160", 1}, ClassRow{u"\u00E9", 1},
          ClassRow{"1a", 0}, ClassRow{"a1", 1}}) {
        EXPECT_EQ(Comparator::typeOfCharacter(row.text), row.type) << NSString(row.text).utf8();
    }
}

TEST(ZQVersionComparator, takesOnlyTheLonePeriodForAPeriod) {
    EXPECT_EQ(Comparator::typeOfCharacter("."), 2);
    EXPECT_EQ(Comparator::typeOfCharacter(".."), 1);
    EXPECT_EQ(Comparator::typeOfCharacter(".1"), 1);
}

TEST(ZQVersionComparator, looksAtUnitsSoThatDigitsBeyond16BitsAreNone) {
    EXPECT_EQ(Comparator::typeOfCharacter(u"\U0001D7CF"), 1); // mathematical bold 1
    EXPECT_EQ(tokensOf(u"1\U0001D7CF"), (std::vector<std::u16string>{u"1", u"\U0001D7CF"}));
}

TEST(ZQVersionComparator, hasNoClassForTheEmptyString) {
    EXPECT_EQ(TestValues::raised([] { Comparator::typeOfCharacter(""); }), NSRangeException);
    EXPECT_EQ(Comparator::typeOfCharacter(nullptr), 1);
}

TEST(ZQVersionComparator, splitsIntoTokensOfOneClass) {
    EXPECT_EQ(joined("2.1b12"), "2|.|1|b|12");
    EXPECT_EQ(joined("1..2"), "1|.|.|2");
    EXPECT_EQ(joined("..."), ".|.|.");
    EXPECT_EQ(joined("3.0+"), "3|.|0|+");
    EXPECT_EQ(joined("1.0 beta-2"), "1|.|0| beta-|2");
    EXPECT_EQ(joined("007"), "007");
    EXPECT_EQ(joined("v1"), "v|1");
    EXPECT_EQ(Comparator::splitVersionString("").count(), 0U);
    EXPECT_EQ(Comparator::splitVersionString(nullptr).count(), 0U);
}

TEST(ZQVersionComparator, splitsDigitsOfAllScriptsAsOneRun) {
    EXPECT_EQ(tokensOf(u"1\u0663.\u00E9x"), (std::vector<std::u16string>{u"1\u0663", u".", u"\u00E9x"}));
}

TEST(ZQVersionComparator, splitsBetweenUnitsAndKeepsThem) {
    const char16_t pair[] = {u'1', 0xD800, u'2'};
    EXPECT_EQ(tokensOf(StringView(pair, 3)),
              (std::vector<std::u16string>{u"1", std::u16string(1, char16_t{0xD800}), u"2"}));
    EXPECT_EQ(tokensOf(u".\u0301"), (std::vector<std::u16string>{u".", u"\u0301"}));
}

TEST(ZQVersionComparator, comparesNumbersByValue) {
    expectOrders(Comparator::compareVersion_toVersion, {{"1.2.3", "1.2.3", 0},
                                                        {"1.9", "1.10", -1},
                                                        {"10.13.6", "10.14.1", -1},
                                                        {"01", "1", 0},
                                                        {"010", "10", 0},
                                                        {"2147483647", "2147483648", 0},
                                                        {"99999999999999999999999", "2147483647", 0},
                                                        {"18446744073709551617", "2147483647", 0},
                                                        {"2147483646", "99999999999", -1},
                                                        {"0000000000000000000000001", "1", 0},
                                                        {"1.4294967296", "1.0", 1}});
}

TEST(ZQVersionComparator, readsOnlyAsciiDigitsInFront) {
    expectOrders(
        Comparator::compareVersion_toVersion,
        {{u"\u0663", "0", 0}, {u"\u0663", u"\u0669", 0}, {u"1\u0663", "1", 0}, {u"\u06635", "1", -1}});
}

TEST(ZQVersionComparator, ordersOthersBeforePeriodsBeforeNumbers) {
    expectOrders(Comparator::compareVersion_toVersion, {{"a", ".", -1},
                                                        {"a", "1", -1},
                                                        {".", "1", -1},
                                                        {"1..2", "1.2", -1},
                                                        {"1.0a", "1.0.1", -1},
                                                        {u"\u00E9", ".", -1},
                                                        {u"\u00E9", u"\u0663", -1},
                                                        {".", u"\u0663", -1}});
}

TEST(ZQVersionComparator, judgesASurplusByItsFirstToken) {
    expectOrders(Comparator::compareVersion_toVersion, {{"1.2", "1.2.3", -1},
                                                        {"1.0b1", "1.0", -1},
                                                        {"1.0b", "1.0", -1},
                                                        {"1.0", "1.0.0", -1},
                                                        {"1", "1.0", -1},
                                                        {"b", "b2", -1},
                                                        {u"1\u00E9", "1", -1},
                                                        {u"1.\u0663", "1.", 1}});
}

TEST(ZQVersionComparator, comparesOtherTokensByTheirUnits) {
    expectOrders(Comparator::compareVersion_toVersion, {{"1.0a", "1.0b", -1},
                                                        {"B", "b", -1},
                                                        {"1.0alpha", "1.0beta", -1},
                                                        {"1.0b", "1.0beta", -1},
                                                        {"1b2", "1beta1", -1},
                                                        {u"1\u03B1", u"1\u03B2", -1},
                                                        {"1z", u"1\u00E9", -1}});
}

TEST(ZQVersionComparator, takesCanonicalEquivalentsForTheSame) {
    expectOrders(Comparator::compareVersion_toVersion, {{u"1\u00E9", u"1e\u0301", 0},
                                                        {u"1\u00E92", u"1e\u03011", 1},
                                                        {"1e", u"1e\u0301", -1},
                                                        {u"1e\u0301.1", "1f.0", -1}});
}

TEST(ZQVersionComparator, readsIllFormedBytesAsReplacementCharacters) {
    expectOrders(Comparator::compareVersion_toVersion,
                 {{"1\xFF", u"1\uFFFD", 0}, {"1.\xC3", "1.", -1}, {"\xC3.1", u"\uFFFD.1", 0}});
}

TEST(ZQVersionComparator, takesNilForAVersionWithoutTokens) {
    expectOrders(Comparator::compareVersion_toVersion, {{nullptr, nullptr, 0},
                                                        {nullptr, "", 0},
                                                        {"", "", 0},
                                                        {nullptr, "b1", 1},
                                                        {nullptr, "1", -1},
                                                        {nullptr, ".", -1},
                                                        {"", u"\u00E9", 1}});
}

TEST(ZQVersionComparator, agreesWithTheTokensOnRandomVersions) {
    const std::vector<std::u16string> ascii{u"0",          u"1",    u"2", u"10", u"007", u"2147483647",
                                            u"2147483648", u".",    u".", u".",  u"a",   u"b",
                                            u"B",          u"beta", u"+", u"-",  u" "};
    std::vector<std::u16string> all = ascii;
    all.insert(all.end(), {u"\u0663", u"\u0669", u"\uFF11", u"\u00E9", u"e\u0301", u"e", u"\u0301", u"\u03B1",
                           u"\U0001D7CF", std::u16string(1, char16_t{0xD800}), u"\uFFFD", u"\u212A", u"K"});
    Numbers numbers(20240305);
    for (int round = 0; round < 40000; ++round) {
        const std::vector<std::u16string>& pieces = round % 2 == 0 ? ascii : all;
        const std::u16string left = randomVersion(numbers, pieces);
        const std::u16string right = randomVersion(numbers, pieces);
        const int expected = modelOrder(left, right);
        const std::string leftBytes = NSString(left).utf8();
        const std::string rightBytes = NSString(right).utf8();
        ASSERT_EQ(Comparator::compareVersion_toVersion(left, right), expected)
            << leftBytes << " " << rightBytes;
        ASSERT_EQ(Comparator::compareVersion_toVersion(leftBytes, rightBytes),
                  modelOrder(leftBytes, rightBytes))
            << leftBytes << " " << rightBytes;
    }
}

TEST(ZQVersionComparator, allocatesNothingForVersionsOfOrdinaryLength) {
    const NSString left("10.13.6b2");
    const NSString right("10.13.6b12");
    const std::u16string letters = u"1.\u03B1.\u0663";
    std::size_t before = AllocationCount::now();
    const int inAscii = Comparator::compareVersion_toVersion(left, right);
    const int withPlus = Comparator::compareVersionWithPlus_toVersionWithPlus("10.13+", left);
    const int ofMajor = Comparator::compareMajorVersion_toMajorVersion(left, "10.14");
    const int ofUnits = Comparator::compareVersion_toVersion(u"10.13", right);
    EXPECT_EQ(AllocationCount::now(), before);
    EXPECT_EQ((std::vector<int>{inAscii, withPlus, ofMajor, ofUnits}), (std::vector<int>{-1, -1, -1, -1}));
    Comparator::compareVersion_toVersion(letters, letters); // makes the set of digits
    before = AllocationCount::now();
    const int ofLetters = Comparator::compareVersion_toVersion(letters, u"1.\u03B1.\u0669+");
    const int ofBytes = Comparator::compareVersion_toVersion("1.\xCE\xB1", "1.\xCE\xB1");
    EXPECT_EQ(AllocationCount::now(), before);
    EXPECT_EQ((std::vector<int>{ofLetters, ofBytes}), (std::vector<int>{1, 0}));
}

TEST(ZQVersionComparator, takesLongVersionsInLinearTime) {
    std::string many(200000, '1');
    std::string periods(200000, '.');
    EXPECT_EQ(Comparator::compareVersion_toVersion(many, many + "0"), 0);
    EXPECT_EQ(Comparator::compareVersion_toVersion(periods, periods + "1"), -1);
    EXPECT_EQ(Comparator::compareMajorVersion_toMajorVersion(periods + "2", "1"), -1);
    EXPECT_EQ(Comparator::compareVersion_toVersion(many + "\xC3\xA9", many + "e\xCC\x81"), 0);
}

TEST(ZQVersionComparator, readsATrailingPlusAsPointZero) {
    expectOrders(Comparator::compareVersionWithPlus_toVersionWithPlus, {{"2.0+", "2.0.0", 0},
                                                                        {"2.0+", "2.0", 1},
                                                                        {"2.0+", "2.0.1", -1},
                                                                        {"3.0+", "3.0+", 0},
                                                                        {"2+", "2.0", 0},
                                                                        {"+", ".0", 0},
                                                                        {u"1\u00E9+", u"1\u00E9.0", 0},
                                                                        {u"\u0663+", "0.0", 0}});
}

TEST(ZQVersionComparator, rewritesOnePlusAtTheEndOnly) {
    expectOrders(Comparator::compareVersionWithPlus_toVersionWithPlus,
                 {{"2++", "2+.0", 0}, {"2+1", "2.0", -1}, {"+2", "2", -1}});
}

TEST(ZQVersionComparator, raisesForAnEmptyVersionWithPlus) {
    EXPECT_EQ(TestValues::raised([] { Comparator::compareVersionWithPlus_toVersionWithPlus("", "1"); }),
              NSRangeException);
    EXPECT_EQ(TestValues::raised([] { Comparator::compareVersionWithPlus_toVersionWithPlus("1", u""); }),
              NSRangeException);
    EXPECT_EQ(Comparator::compareVersionWithPlus_toVersionWithPlus(nullptr, "1"), -1);
    EXPECT_EQ(Comparator::compareVersionWithPlus_toVersionWithPlus("1+", nullptr), 1);
    EXPECT_EQ(Comparator::compareVersionWithPlus_toVersionWithPlus(nullptr, nullptr), 0);
}

TEST(ZQVersionComparator, doesNotReadAPlusInAPlainComparison) {
    EXPECT_EQ(Comparator::compareVersion_toVersion("2.0+", "2.0.0"), -1);
    EXPECT_EQ(Comparator::compareVersion_toVersion("2.0+", "2.0"), -1);
}

TEST(ZQVersionComparator, leavesOutTheLastComponentOfVersionsOfOneLengthOnly) {
    expectOrders(Comparator::compareMajorVersion_toMajorVersion, {{"10.13", "10.14", 0},
                                                                  {"10.13.6", "10.14", -1},
                                                                  {"10.13.6", "10.14.1", -1},
                                                                  {"10.13.6", "10.13.7", 0},
                                                                  {"5", "5.1", 0},
                                                                  {"10", "11", -1},
                                                                  {"10.1.2.3", "10", 0},
                                                                  {"1.2.3.4", "1.3", -1},
                                                                  {"1.", "1.5", 0},
                                                                  {".", "1.", -1},
                                                                  {u"1\u00E9.2", u"1e\u0301.3", 0}});
}

TEST(ZQVersionComparator, takesNilForAMajorVersionWithoutPeriods) {
    expectOrders(Comparator::compareMajorVersion_toMajorVersion,
                 {{nullptr, nullptr, 0}, {nullptr, "1.2", -1}, {nullptr, "b.2", 1}, {"", "", 0}});
}

TEST(ZQVersionComparator, answersAlikeOnConcurrentThreads) {
    std::vector<std::thread> threads;
    std::vector<int> wrong(4, 0);
    for (int& count : wrong) {
        threads.emplace_back([&count] {
            for (int i = 0; i < 2000; ++i) {
                count += Comparator::compareVersion_toVersion(u"1.\u0663b", "1.0c") == -1 ? 0 : 1;
                count += Comparator::compareVersion_toVersion("1.9", "1.10") == -1 ? 0 : 1;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, std::vector<int>(4, 0));
}
