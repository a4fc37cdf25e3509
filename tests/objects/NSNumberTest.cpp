// SPDX-License-Identifier: MIT
// Numbers as values: conversions, comparison, hashes and descriptions.
#include "foundation/objects/NSNumber.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

#include "foundation/objects/NSDictionary.h"
#include "tests/kit/Values.h"

using namespace ZQFoundation;
using namespace kit;

namespace {

const double nan = std::numeric_limits<double>::quiet_NaN();
constexpr std::uint64_t twoTo63 = UINT64_C(1) << 63;

// MARK: Text

TEST(NSNumber, describesItselfInDecimal) {
    const struct {
        NSNumber number;
        const char* text;
    } rows[] = {
        {-7, "-7"},
        {true, "1"},
        {false, "0"},
        {INT64_MIN, "-9223372036854775808"},
        {INT64_MAX, "9223372036854775807"},
        {UINT64_MAX, "18446744073709551615"},
        {1.0, "1"},
        {0.1 + 0.2, "0.3"},
        {1.0 / 3, "0.3333333333333333"},
        {1e16, "1e+16"},
        {-0.0, "-0"},
        {-2.5, "-2.5"},
        {std::numeric_limits<double>::max(), "1.797693134862316e+308"},
        {nan, "nan"},
        {-nan, "nan"},
        {infinity, "inf"},
        {1.1F, "1.1"},
        {static_cast<double>(1.1F), "1.100000023841858"},
        {1.0F / 3, "0.3333333"},
        {1e9F, "1e+09"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(utf8Of(row.number.description()), row.text);
        EXPECT_EQ(utf8Of(row.number.stringValue()), row.text) << "the string form is the description";
        EXPECT_EQ(utf8Of(row.number.condensedDescription()), row.text);
    }
}

// MARK: Numeric views

TEST(NSNumber, narrowsToTheLow32Bits) {
    const struct {
        NSNumber number;
        int integer;
        unsigned unsignedInteger;
    } rows[] = {
        {-1, -1, 4294967295U},
        {5000000000, 705032704, 705032704U},
        {INT64_C(2147483648), std::numeric_limits<int>::lowest(), 2147483648U},
        {INT64_C(-2147483649), 2147483647, 2147483647U},
        {INT64_MAX, -1, 4294967295U},
        {INT64_MIN, 0, 0},
        {UINT64_MAX, -1, 4294967295U},
        {twoTo63 + 5, 5, 5},
        {2.9, 2, 2},
        {-2.9, -2, 4294967294U},
        {-0.5, 0, 0},
        {3e9, -1294967296, 3000000000U},
        {1e20, -1, 4294967295U},
        {-1e20, 0, 0},
        {nan, 0, 0},
        {infinity, -1, 4294967295U},
        {-infinity, 0, 0},
        {3e9F, -1294967296, 3000000000U},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.number.intValue(), row.integer) << shown(row.number);
        EXPECT_EQ(row.number.unsignedIntValue(), row.unsignedInteger) << shown(row.number);
    }
}

TEST(NSNumber, keepsSixtyFourBits) {
    EXPECT_EQ(NSNumber(5000000000).integerValue(), 5000000000);
    EXPECT_EQ(NSNumber(INT64_MIN).longLongValue(), INT64_MIN);
    EXPECT_EQ(NSNumber(UINT64_MAX).unsignedLongLongValue(), UINT64_MAX);
    EXPECT_EQ(NSNumber(twoTo63).unsignedLongLongValue(), twoTo63);
    EXPECT_EQ(NSNumber(7U).unsignedLongLongValue(), 7U);
    EXPECT_EQ(NSNumber(true).integerValue(), 1);
    EXPECT_EQ(NSNumber(2.9).integerValue(), 2);
    EXPECT_EQ(NSNumber(-2.9).integerValue(), -2);
    EXPECT_EQ(NSNumber(1e20).integerValue(), INT64_MAX);
    EXPECT_EQ(NSNumber(-1e20).integerValue(), INT64_MIN);
    EXPECT_EQ(NSNumber(9223372036854775808.0).integerValue(), INT64_MAX);
    EXPECT_EQ(NSNumber(-9223372036854775808.0).integerValue(), INT64_MIN);
    EXPECT_EQ(NSNumber(nan).integerValue(), 0);
    EXPECT_EQ(NSNumber(nan).unsignedLongLongValue(), 0U);
}

TEST(NSNumber, convertsToReal) {
    EXPECT_EQ(NSNumber(7).doubleValue(), 7.0);
    EXPECT_EQ(NSNumber(7).floatValue(), 7.0F);
    EXPECT_EQ(NSNumber(true).doubleValue(), 1.0);
    EXPECT_EQ(NSNumber(UINT64_MAX).doubleValue(), 18446744073709551616.0);
    EXPECT_EQ(NSNumber(UINT64_MAX).floatValue(), 18446744073709551616.0F);
    EXPECT_EQ(NSNumber(0.1).floatValue(), 0.1F);
    EXPECT_EQ(NSNumber(0.1F).doubleValue(), static_cast<double>(0.1F));
    EXPECT_EQ(NSNumber(1e300).floatValue(), std::numeric_limits<float>::infinity());
    EXPECT_EQ(NSNumber(-1e300).floatValue(), -std::numeric_limits<float>::infinity());
    EXPECT_TRUE(std::isnan(NSNumber(nan).floatValue()));
    EXPECT_TRUE(std::signbit(NSNumber(-0.0).doubleValue()));
}

TEST(NSNumber, isTrueWhenItIsNotZero) {
    EXPECT_TRUE(NSNumber(0.5).boolValue()) << "the number's own truth, not the one of its text";
    EXPECT_TRUE(NSObject(0.5).boolValue()) << "whatever the handle's type";
    EXPECT_TRUE(NSNumber(-1).boolValue());
    EXPECT_TRUE(NSNumber(256).boolValue());
    EXPECT_TRUE(NSNumber(INT64_C(4294967296)).boolValue());
    EXPECT_TRUE(NSNumber(UINT64_MAX).boolValue());
    EXPECT_TRUE(NSNumber(1e-300).boolValue());
    EXPECT_TRUE(NSNumber(1e-40F).boolValue());
    EXPECT_TRUE(NSNumber(nan).boolValue());
    EXPECT_TRUE(NSNumber(true).boolValue());
    EXPECT_FALSE(NSNumber(false).boolValue());
    EXPECT_FALSE(NSNumber(0).boolValue());
    EXPECT_FALSE(NSNumber(0.0).boolValue());
    EXPECT_FALSE(NSNumber(-0.0).boolValue());
    EXPECT_FALSE(NSNumber(-0.0F).boolValue());
}

TEST(NSNumber, knowsWhatItWasMadeFrom) {
    EXPECT_TRUE(NSNumber(true).isBoolean());
    EXPECT_FALSE(NSNumber(1).isBoolean());
    EXPECT_FALSE(NSNumber(1.0).isBoolean());
    EXPECT_TRUE(NSNumber(1.0).isReal());
    EXPECT_TRUE(NSNumber(1.0F).isReal());
    EXPECT_FALSE(NSNumber(1).isReal());
    EXPECT_FALSE(NSNumber(true).isReal());
    EXPECT_FALSE(NSNumber().isBoolean());
    EXPECT_FALSE(NSNumber().isReal());
}

TEST(NSNumber, aMessageToANilNumberGivesNothing) {
    const NSNumber none;
    EXPECT_FALSE(none);
    EXPECT_EQ(none.intValue(), 0);
    EXPECT_EQ(none.unsignedIntValue(), 0U);
    EXPECT_EQ(none.integerValue(), 0);
    EXPECT_EQ(none.unsignedLongLongValue(), 0U);
    EXPECT_EQ(none.floatValue(), 0.0F);
    EXPECT_EQ(none.doubleValue(), 0.0);
    EXPECT_FALSE(none.boolValue());
    EXPECT_FALSE(none.stringValue());
    EXPECT_FALSE(none.description());
    EXPECT_EQ(none.compare(1), NSOrderedSame);
    EXPECT_FALSE(none.isEqualToNumber(0));
    EXPECT_FALSE(NSNumber(0).isEqualToNumber(none));
}

TEST(NSNumber, isNilWhenTheValueIsNoNumber) {
    EXPECT_FALSE(NSNumber(NSObject("1")));
    EXPECT_FALSE(NSNumber(NSObject()));
    EXPECT_FALSE(NSNumber(NSObject(NSNull::null())));
    EXPECT_EQ(NSNumber(NSObject(true)).intValue(), 1);
    EXPECT_EQ(NSNumber(NSObject(UINT64_MAX)).unsignedLongLongValue(), UINT64_MAX);
}

// MARK: Order, equality, hash

// Each row names two numbers and their order by value.
const struct {
    const char* name;
    NSNumber left;
    NSNumber right;
    int order;
} pairs[] = {
    {"1 and 1.0", 1, 1.0, 0},
    {"1 and true", 1, true, 0},
    {"1.0 and true", 1.0, true, 0},
    {"1 and 1.0f", 1, 1.0F, 0},
    {"0 and false", 0, false, 0},
    {"zeros of both signs", -0.0, 0.0, 0},
    {"minus zero and integer zero", -0.0, 0, 0},
    {"0.1 in both widths", 0.1, 0.1F, -1},
    {"1 and 1.5", 1, 1.5, -1},
    {"-1 and the greatest unsigned", -1, UINT64_MAX, -1},
    {"greatest signed and 2^63", INT64_MAX, twoTo63, -1},
    {"2^53 and 2^53.0", INT64_C(9007199254740992), 9007199254740992.0, 0},
    {"2^53 - 1 and 2^53.0", INT64_C(9007199254740991), 9007199254740992.0, -1},
    {"2^53.0 and 2^53 + 1", 9007199254740992.0, INT64_C(9007199254740993), -1},
    {"2^53 + 1 and the next double", INT64_C(9007199254740993), 9007199254740994.0, -1},
    {"-2^53.0 and -(2^53 + 1)", INT64_C(-9007199254740993), -9007199254740992.0, -1},
    {"greatest signed and 2^63.0", INT64_MAX, 9223372036854775808.0, -1},
    {"2^63 and 2^63.0", twoTo63, 9223372036854775808.0, 0},
    {"2^63.0 and 2^63 + 1", 9223372036854775808.0, twoTo63 + 1, -1},
    {"least signed and -2^63.0", INT64_MIN, -9223372036854775808.0, 0},
    {"2^64 - 1 and 2^64.0", UINT64_MAX, 18446744073709551616.0, -1},
    {"a double below 2^64 - 1", 18446744073709549568.0, UINT64_MAX, -1},
    {"2^64 - 1 and infinity", UINT64_MAX, infinity, -1},
    {"minus infinity and least signed", -infinity, INT64_MIN, -1},
    {"infinities", infinity, std::numeric_limits<float>::infinity(), 0},
    {"NaN and NaN", nan, nan, 0},
    {"NaN and single NaN", nan, std::numeric_limits<float>::quiet_NaN(), 0},
    {"NaN and 0", nan, 0, -1},
    {"NaN and false", nan, false, -1},
    {"NaN and infinity", nan, infinity, -1},
    {"fraction above an integer", INT64_C(-3), -2.5, -1},
    {"fraction below an integer", -2.5, INT64_C(-2), -1},
};

TEST(NSNumber, comparesByValueAcrossItsKinds) {
    for (const auto& row : pairs) {
        EXPECT_EQ(static_cast<int>(row.left.compare(row.right)), row.order) << row.name;
        EXPECT_EQ(static_cast<int>(row.right.compare(row.left)), -row.order) << row.name;
    }
}

TEST(NSNumber, equalByValueMeansEqualAndHashesAlike) {
    for (const auto& row : pairs) {
        const bool same = row.order == 0;
        EXPECT_EQ(row.left.isEqualToNumber(row.right), same) << row.name;
        EXPECT_EQ(row.right.isEqualToNumber(row.left), same) << row.name;
        EXPECT_EQ(row.left.isEqual(row.right), same) << row.name;
        EXPECT_EQ(row.left == row.right, same) << row.name;
        if (same) {
            EXPECT_EQ(row.left.hash(), row.right.hash()) << row.name;
        }
        EXPECT_EQ((NSDictionary{{row.left, "x"}}).objectForKey(row.right).isEqual("x"), same) << row.name;
    }
}

// A bad mix of bits shows when numbers that lie evenly apart fall together.
TEST(NSNumber, hashesOfNumbersThatLieApartDiffer) {
    std::size_t same = 0;
    for (std::int64_t i = 0; i < 2000; ++i) {
        same += NSNumber(i << 40).hash() == NSNumber((i + 1) << 40).hash() ? 1 : 0;
        same += NSNumber(i).hash() == NSNumber(i + 1).hash() ? 1 : 0;
        const double real = static_cast<double>(i) + 0.5;
        same += NSNumber(real).hash() == NSNumber(real + 1).hash() ? 1 : 0;
    }
    EXPECT_LT(same, 10U);
}

} // namespace
