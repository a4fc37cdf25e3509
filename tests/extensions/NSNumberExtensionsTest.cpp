// SPDX-License-Identifier: MIT
// Even and odd, comparisons, steps in 32 bits, and durations.
#include <climits>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "foundation/objects/NSNumber.h"
#include "foundation/objects/NSString.h"
#include "tests/kit/Values.h"

namespace ZQFoundation {
namespace {

using kit::infinity;
using kit::notANumber;

std::string duration(const NSNumber& number, std::int64_t fields, bool suppressZeroes) {
    const NSString text = number.durationDescriptionWithFieldCount_suppressZeroes(fields, suppressZeroes);
    return text ? text.utf8() : "nil";
}

/// Numbers of every kind, and what 32 bits show of them.
const struct {
    NSNumber number;
    std::int32_t seen;
} views[] = {
    {7, 7},
    {-1, -1},
    {INT_MAX, INT_MAX},
    {INT_MIN, INT_MIN},
    {2147483648LL, INT_MIN},
    {-2147483649LL, INT_MAX},
    {4294967296LL, 0},
    {INT64_MAX, -1},
    {UINT64_MAX, -1},
    {(std::uint64_t{1} << 63) + 1, 1},
    {true, 1},
    {2.9, 2},
    {-3.9, -3},
    {4294967297.5, 1},
    {1e300, -1},
    {-1e300, 0},
    {infinity, -1},
};

TEST(NSNumberExtensions, areEvenOrOddByTheirLowestBit) {
    for (const auto& [number, seen] : views) {
        EXPECT_EQ(number.isOdd(), seen % 2 != 0) << number.description().utf8();
        EXPECT_EQ(number.isEven(), seen % 2 == 0) << number.description().utf8();
    }
    EXPECT_FALSE(NSNumber().isOdd());
    EXPECT_FALSE(NSNumber().isEven());
}

TEST(NSNumberExtensions, stepUpAndDownIn32Bits) {
    for (const auto& [number, seen] : views) {
        const NSNumber up = number.numberByIncrementing();
        const NSNumber down = number.numberByDecrementing();
        EXPECT_EQ(up.description(), std::to_string(seen == INT_MAX ? INT_MIN : seen + 1));
        EXPECT_EQ(down.description(), std::to_string(seen == INT_MIN ? INT_MAX : seen - 1));
        EXPECT_FALSE(up.isReal() || up.isBoolean() || down.isReal() || down.isBoolean());
    }
    EXPECT_FALSE(NSNumber().numberByIncrementing());
    EXPECT_FALSE(NSNumber().numberByDecrementing());
}

TEST(NSNumberExtensions, compareByValueAcrossAllKinds) {
    const struct {
        NSNumber left;
        NSNumber right;
        int order;
    } rows[] = {
        {3, 3.0, 0},
        {3, 2.5, 1},
        {-1, UINT64_MAX, -1},
        {INT64_MAX, 9223372036854775808.0, -1},
        {notANumber, notANumber, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.left.description().utf8()) + " and " + row.right.description().utf8());
        EXPECT_EQ(row.left.isLargerThan(row.right), row.order > 0);
        EXPECT_EQ(row.left.isLargerOrEqualThan(row.right), row.order >= 0);
        EXPECT_EQ(row.left.isSmallerOrEqualThan(row.right), row.order <= 0);
        EXPECT_EQ(row.left.isSmallerThan(row.right), row.order < 0);
    }
}

TEST(NSNumberExtensions, areFalseWhereOneOfTheNumbersIsNil) {
    const NSNumber pairs[][2] = {{NSNumber(), 1}, {1, NSNumber()}, {NSNumber(), NSNumber()}};
    for (const auto& [receiver, argument] : pairs) {
        EXPECT_FALSE(receiver.isLargerThan(argument));
        EXPECT_FALSE(receiver.isLargerOrEqualThan(argument));
        EXPECT_FALSE(receiver.isSmallerOrEqualThan(argument));
        EXPECT_FALSE(receiver.isSmallerThan(argument));
    }
}

TEST(NSNumberExtensions, showSecondsAsAClockDoes) {
    const struct {
        NSNumber seconds;
        const char* hours;
        const char* minutes;
        const char* three;
        const char* two;
        const char* one;
    } rows[] = {
        {0, "00", "00", "0:00:00", "0:00", "00"},
        {59, "59", "59", "0:00:59", "0:59", "59"},
        {60, "1:00", "1:00", "0:01:00", "1:00", "00"},
        {125, "2:05", "2:05", "0:02:05", "2:05", "05"},
        {3599, "59:59", "59:59", "0:59:59", "59:59", "59"},
        {3600, "1:00:00", "00", "1:00:00", "0:00", "00"},
        {3605, "1:00:05", "05", "1:00:05", "0:05", "05"},
        {90061, "25:01:01", "1:01", "25:01:01", "1:01", "01"},
        {INT_MAX, "596523:14:07", "14:07", "596523:14:07", "14:07", "07"},
        {-0.5, "00", "00", "0:00:00", "0:00", "00"},
        {-1, "", "", "", "", ""},
        {INT_MIN, "", "", "", "", ""},
        {4294967296 + 65, "1:05", "1:05", "0:01:05", "1:05", "05"},
        {-4294967296 + 65, "1:05", "1:05", "0:01:05", "1:05", "05"},
        {notANumber, "00", "00", "0:00:00", "0:00", "00"},
        {infinity, "", "", "", "", ""},
        {NSNumber(), "nil", "nil", "nil", "nil", "nil"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.seconds ? row.seconds.description().utf8() : std::string("nil"));
        EXPECT_EQ(duration(row.seconds, 3, true), row.hours);
        EXPECT_EQ(duration(row.seconds, 2, true), row.minutes);
        EXPECT_EQ(duration(row.seconds, 3, false), row.three);
        EXPECT_EQ(duration(row.seconds, 2, false), row.two);
        EXPECT_EQ(duration(row.seconds, 1, false), row.one);
        EXPECT_EQ(duration(row.seconds, 1, true), row.one);
        const NSString hours = row.seconds.durationDescriptionWithHours();
        const NSString minutes = row.seconds.durationDescriptionWithMinutes();
        EXPECT_EQ(hours ? hours.utf8() : "nil", row.hours);
        EXPECT_EQ(minutes ? minutes.utf8() : "nil", row.minutes);
    }
}

TEST(NSNumberExtensions, takeAnyNumberOfFields) {
    // Some are 1, 3, 0 and 2 in their low 32 bits.
    for (const bool suppressZeroes : {false, true}) {
        for (const std::int64_t fields : {INT64_MIN, std::int64_t{-4294967295}, std::int64_t{-4294967293}}) {
            EXPECT_EQ(duration(3725, fields, suppressZeroes), "05") << fields;
        }
        for (const std::int64_t fields :
             {std::int64_t{7}, std::int64_t{4294967296}, std::int64_t{4294967298}, INT64_MAX}) {
            EXPECT_EQ(duration(3725, fields, suppressZeroes), "1:02:05") << fields;
        }
    }
}

} // namespace
} // namespace ZQFoundation
