// SPDX-License-Identifier: MIT
#include <climits>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/objects/NSNumber.h"

using namespace ZQFoundation;

namespace {

std::string utf8Of(const NSString& text) { return text ? text.utf8() : "(nil)"; }

constexpr double infinite = std::numeric_limits<double>::infinity();

struct ViewRow {
    const char* what;
    NSNumber number;
    std::int32_t seen; ///< the number as 32 bits show it
};

/// Every kind of number, and what remains of it in 32 bits.
std::vector<ViewRow> viewRows() {
    return {
        {"0", 0, 0},
        {"1", 1, 1},
        {"-1", -1, -1},
        {"-2", -2, -2},
        {"-3", -3, -3},
        {"-4", -4, -4},
        {"7", 7, 7},
        {"2147483647", INT_MAX, INT_MAX},
        {"-2147483648", INT_MIN, INT_MIN},
        {"2147483648", 2147483648LL, INT_MIN},
        {"2147483649", 2147483649LL, INT_MIN + 1},
        {"-2147483649", -2147483649LL, INT_MAX},
        {"4294967295", 4294967295LL, -1},
        {"4294967296", 4294967296LL, 0},
        {"5000000000", 5000000000LL, 705032704},
        {"5000000001", 5000000001LL, 705032705},
        {"the greatest", std::numeric_limits<std::int64_t>::max(), -1},
        {"the smallest", std::numeric_limits<std::int64_t>::min(), 0},
        {"the greatest unsigned", std::numeric_limits<std::uint64_t>::max(), -1},
        {"2^63", std::uint64_t{1} << 63, 0},
        {"2^63 + 1", (std::uint64_t{1} << 63) + 1, 1},
        {"true", true, 1},
        {"false", false, 0},
        {"2.9", 2.9, 2},
        {"2.7", 2.7, 2},
        {"-2.7", -2.7, -2},
        {"-3.9", -3.9, -3},
        {"0.5", 0.5, 0},
        {"-0.5", -0.5, 0},
        {"1.999999", 1.999999, 1},
        {"3.5f", 3.5F, 3},
        {"-3.5f", -3.5F, -3},
        {"2147483648.0", 2147483648.0, INT_MIN},
        {"4294967297.5", 4294967297.5, 1},
        {"5e9", 5e9, 705032704},
        {"1e300", 1e300, -1},
        {"-1e300", -1e300, 0},
        {"infinity", infinite, -1},
        {"-infinity", -infinite, 0},
        {"not a number", std::nan(""), 0},
    };
}

/// What a comparison by four questions says: the receiver's place by the argument's.
struct Answers {
    bool larger;
    bool largerOrEqual;
    bool smallerOrEqual;
    bool smaller;

    friend bool operator==(const Answers&, const Answers&) = default;

    friend void PrintTo(const Answers& answers, std::ostream* stream) {
        *stream << (answers.larger ? "> " : "") << (answers.largerOrEqual ? ">= " : "")
                << (answers.smallerOrEqual ? "<= " : "") << (answers.smaller ? "< " : "");
    }
};

constexpr Answers larger{true, true, false, false};
constexpr Answers same{false, true, true, false};
constexpr Answers smaller{false, false, true, true};

Answers answers(const NSNumber& left, const NSNumber& right) {
    return {left.isLargerThan(right), left.isLargerOrEqualThan(right), left.isSmallerOrEqualThan(right),
            left.isSmallerThan(right)};
}

/// A new number of 32 bits: an integer, neither real nor a truth value.
void expectWhole(const NSNumber& number, std::int64_t expected, const std::string& what) {
    ASSERT_TRUE(number) << what;
    EXPECT_EQ(number.longLongValue(), expected) << what;
    EXPECT_EQ(number.unsignedIntValue(), static_cast<std::uint32_t>(expected)) << what;
    EXPECT_FALSE(number.isReal()) << what;
    EXPECT_FALSE(number.isBoolean()) << what;
    EXPECT_EQ(utf8Of(number.description()), std::to_string(expected)) << what;
}

} // namespace

TEST(NumbersFromFacts, areEvenAt0AndMinus2) {
    EXPECT_TRUE(NSNumber(0).isEven());
    EXPECT_TRUE(NSNumber(-2).isEven());
    EXPECT_FALSE(NSNumber(0).isOdd());
    EXPECT_FALSE(NSNumber(-2).isOdd());
}

TEST(NumbersFromFacts, areOddAtMinus1) {
    EXPECT_TRUE(NSNumber(-1).isOdd());
    EXPECT_FALSE(NSNumber(-1).isEven());
}

TEST(NumbersFromFacts, areEvenAt2Point9) {
    EXPECT_TRUE(NSNumber(2.9).isEven());
    EXPECT_FALSE(NSNumber(2.9).isOdd());
    EXPECT_TRUE(NSNumber(-3.9).isOdd());
    EXPECT_TRUE(NSNumber(0.5).isEven());
}

TEST(NumbersFromFacts, areEvenOrOddByTheLowestOf32Bits) {
    for (const ViewRow& row : viewRows()) {
        const bool isOdd = row.seen % 2 != 0;
        EXPECT_EQ(row.number.isOdd(), isOdd) << row.what;
        EXPECT_EQ(row.number.isEven(), !isOdd) << row.what;
    }
}

TEST(NumbersFromFacts, areEitherEvenOrOdd) {
    for (int number = -1000; number <= 1000; ++number) {
        const bool isOdd = number % 2 == 1 || number % 2 == -1;
        EXPECT_EQ(NSNumber(number).isOdd(), isOdd) << number;
        EXPECT_EQ(NSNumber(number).isEven(), !isOdd) << number;
    }
}

TEST(NumbersFromFacts, areEqualAcrossKinds) {
    EXPECT_TRUE(NSNumber(3).isLargerOrEqualThan(3.0));
    EXPECT_FALSE(NSNumber(3).isLargerThan(3.0));
    EXPECT_EQ(answers(3, 3.0), same);
    EXPECT_EQ(answers(3.0F, 3), same);
    EXPECT_EQ(answers(true, 1.0), same);
    EXPECT_EQ(answers(0, -0.0), same);
}

TEST(NumbersFromFacts, areOrderedAcrossKinds) {
    EXPECT_TRUE(NSNumber(2.5).isSmallerThan(3));
    EXPECT_EQ(answers(2.5, 3), smaller);
    EXPECT_EQ(answers(3, 2.5), larger);
    EXPECT_EQ(answers(-2.5, -2), smaller);
    EXPECT_EQ(answers(true, 2), smaller);
    EXPECT_EQ(answers(false, -1), larger);
}

TEST(NumbersFromFacts, areComparedByTheirWholeValue) {
    // In ascending order; the numbers of one row are equal. 32 bits or a double would confuse neighbours.
    const std::vector<std::vector<NSNumber>> ordered = {
        {-infinite},
        {-1e300},
        {std::numeric_limits<std::int64_t>::min(), -0x1p63},
        {std::numeric_limits<std::int64_t>::min() + 1},
        {-9007199254740993LL},
        {-9007199254740992LL, -9007199254740992.0},
        {-4294967297LL},
        {-2147483649LL, -2147483649.0},
        {INT_MIN, -2147483648.0, -2147483648.0F},
        {-2.5, -2.5F},
        {-1, -1.0},
        {-0x1p-1074},
        {0, 0.0, -0.0, false, 0U},
        {0x1p-1074},
        {0.1},
        {0.1F},
        {1, true, 1.0, 1.0F},
        {2.5},
        {3, 3.0},
        {INT_MAX, 2147483647.0},
        {2147483648LL, 2147483648.0F},
        {4294967296LL, 4294967296.0},
        {5000000000LL, 5e9},
        {9007199254740992LL, 9007199254740992.0},
        {9007199254740993LL},
        {std::numeric_limits<std::int64_t>::max() - 1},
        {std::numeric_limits<std::int64_t>::max()},
        {std::uint64_t{1} << 63, 0x1p63},
        {(std::uint64_t{1} << 63) + 1},
        {std::numeric_limits<std::uint64_t>::max()},
        {0x1p64},
        {1e300},
        {infinite, std::numeric_limits<float>::infinity()},
    };
    for (std::size_t i = 0; i < ordered.size(); ++i) {
        for (std::size_t j = 0; j < ordered.size(); ++j) {
            const Answers expected = i < j ? smaller : i > j ? larger : same;
            for (const NSNumber& left : ordered[i]) {
                for (const NSNumber& right : ordered[j]) {
                    EXPECT_EQ(answers(left, right), expected)
                        << utf8Of(left.description()) << " and " << utf8Of(right.description());
                }
            }
        }
    }
}

TEST(NumbersFromFacts, thatAreNoneCompareAsTheSameAndBelowThoseThatAreNotNegative) {
    const NSNumber none = std::nan("");
    EXPECT_EQ(answers(none, none), same);
    EXPECT_EQ(answers(none, std::nanf("")), same);
    for (const NSNumber& number : std::vector<NSNumber>{0, 0.0, 0.5, 7, true, false, infinite}) {
        EXPECT_EQ(answers(none, number), smaller) << utf8Of(number.description());
        EXPECT_EQ(answers(number, none), larger) << utf8Of(number.description());
    }
}

TEST(NumbersFromFacts, areIncrementedIn32Bits) {
    for (const ViewRow& row : viewRows()) {
        const std::int64_t next = row.seen == INT_MAX ? INT_MIN : std::int64_t{row.seen} + 1;
        expectWhole(row.number.numberByIncrementing(), next, row.what);
    }
}

TEST(NumbersFromFacts, areDecrementedIn32Bits) {
    for (const ViewRow& row : viewRows()) {
        const std::int64_t before = row.seen == INT_MIN ? INT_MAX : std::int64_t{row.seen} - 1;
        expectWhole(row.number.numberByDecrementing(), before, row.what);
    }
}

TEST(NumbersFromFacts, wrapWhenTheGreatestIsIncremented) {
    expectWhole(NSNumber(2147483647).numberByIncrementing(), -2147483648LL, "up");
    expectWhole(NSNumber(-2147483647 - 1).numberByDecrementing(), 2147483647, "down");
    // Not 2147483648 either, though the number has room for it.
    expectWhole(NSNumber(2147483647LL).numberByIncrementing(), -2147483648LL, "up");
}

TEST(NumbersFromFacts, loseTheirFractionBeforeTheStep) {
    expectWhole(NSNumber(0.5).numberByDecrementing(), -1, "0.5 down");
    expectWhole(NSNumber(2.7).numberByIncrementing(), 3, "2.7 up");
    expectWhole(NSNumber(-2.7).numberByIncrementing(), -1, "-2.7 up");
    expectWhole(NSNumber(-2.7).numberByDecrementing(), -3, "-2.7 down");
    expectWhole(NSNumber(-0.5).numberByIncrementing(), 1, "-0.5 up");
}

TEST(NumbersFromFacts, narrowBeforeTheStep) {
    expectWhole(NSNumber(5000000000LL).numberByIncrementing(), 705032705, "5000000000 up");
    expectWhole(NSNumber(4294967295LL).numberByIncrementing(), 0, "4294967295 up");
    expectWhole(NSNumber(2147483648LL).numberByDecrementing(), 2147483647, "2147483648 down");
}

TEST(NumbersFromFacts, stayAsTheyAreAfterAStep) {
    const NSNumber number = 2.7;
    EXPECT_EQ(number.numberByIncrementing().intValue(), 3);
    EXPECT_EQ(number.numberByDecrementing().intValue(), 1);
    EXPECT_EQ(number.doubleValue(), 2.7);
}

TEST(NumbersFromFacts, ofNilAnswerNothing) {
    const NSNumber none;
    EXPECT_FALSE(none.isEven());
    EXPECT_FALSE(none.isOdd());
    EXPECT_FALSE(none.numberByIncrementing());
    EXPECT_FALSE(none.numberByDecrementing());
    EXPECT_EQ(answers(none, 1), Answers{});
    EXPECT_EQ(answers(1, none), Answers{});
    EXPECT_EQ(answers(none, none), Answers{});
}
