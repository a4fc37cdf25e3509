// SPDX-License-Identifier: MIT
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "foundation/objects/NSNumber.h"
#include "foundation/objects/NSString.h"

using namespace ZQFoundation;

namespace {

std::string utf8Of(const NSString& text) { return text ? text.utf8() : "(nil)"; }

std::string inFields(const NSNumber& seconds, std::int64_t count, bool suppresses) {
    return utf8Of(seconds.durationDescriptionWithFieldCount_suppressZeroes(count, suppresses));
}

std::string withHours(const NSNumber& seconds) { return utf8Of(seconds.durationDescriptionWithHours()); }
std::string withMinutes(const NSNumber& seconds) { return utf8Of(seconds.durationDescriptionWithMinutes()); }

int formOf(unsigned seconds, std::int64_t count, bool suppresses) {
    if (!suppresses) {
        return count >= 3 ? 3 : count == 2 ? 2 : 1;
    }
    if (count >= 3 && seconds >= 3600) {
        return 3;
    }
    return count >= 2 && seconds % 3600 >= 60 ? 2 : 1;
}

/// The duration as the rules say it; `viewed` is the count of seconds in 32 bits.
std::string expectedOf(std::int32_t viewed, std::int64_t count, bool suppresses) {
    if (viewed < 0) {
        return "";
    }
    const unsigned all = static_cast<unsigned>(viewed);
    const unsigned hours = all / 3600;
    const unsigned minutes = all % 3600 / 60;
    const unsigned seconds = all % 3600 % 60;
    char text[32];
    switch (formOf(all, count, suppresses)) {
    case 3:
        std::snprintf(text, sizeof text, "%u:%02u:%02u", hours, minutes, seconds);
        break;
    case 2:
        std::snprintf(text, sizeof text, "%u:%02u", minutes, seconds);
        break;
    default:
        std::snprintf(text, sizeof text, "%02u", seconds);
    }
    return text;
}

struct Row {
    int seconds;
    const char* hours;
    const char* minutes;
    const char* three;
    const char* two;
};

} // namespace

TEST(DurationsFromFacts, areShownRowByRow) {
    const Row rows[] = {
        {0, "00", "00", "0:00:00", "0:00"},
        {5, "05", "05", "0:00:05", "0:05"},
        {60, "1:00", "1:00", "0:01:00", "1:00"},
        {125, "2:05", "2:05", "0:02:05", "2:05"},
        {3600, "1:00:00", "00", "1:00:00", "0:00"},
        {3725, "1:02:05", "2:05", "1:02:05", "2:05"},
        {90061, "25:01:01", "1:01", "25:01:01", "1:01"},
        {-1, "", "", "", ""},
        {59, "59", "59", "0:00:59", "0:59"},
        {600, "10:00", "10:00", "0:10:00", "10:00"},
        {3599, "59:59", "59:59", "0:59:59", "59:59"},
        {3659, "1:00:59", "59", "1:00:59", "0:59"},
        {3660, "1:01:00", "1:00", "1:01:00", "1:00"},
        {36000, "10:00:00", "00", "10:00:00", "0:00"},
        {INT_MAX, "596523:14:07", "14:07", "596523:14:07", "14:07"},
        {INT_MIN, "", "", "", ""},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(withHours(row.seconds), row.hours) << row.seconds;
        EXPECT_EQ(withMinutes(row.seconds), row.minutes) << row.seconds;
        EXPECT_EQ(inFields(row.seconds, 3, false), row.three) << row.seconds;
        EXPECT_EQ(inFields(row.seconds, 2, false), row.two) << row.seconds;
    }
}

TEST(DurationsFromFacts, followTheRulesForEveryCountOfSecondsAndFields) {
    int failures = 0;
    for (int seconds = -10; seconds <= 100000 && failures < 10; ++seconds) {
        for (int count = -2; count <= 8; ++count) {
            for (const bool suppresses : {false, true}) {
                const std::string expected = expectedOf(seconds, count, suppresses);
                const std::string found = inFields(seconds, count, suppresses);
                if (found != expected) {
                    ++failures;
                    ADD_FAILURE() << seconds << " s in " << count << " fields, suppressing " << suppresses
                                  << ": \"" << found << "\" instead of \"" << expected << "\"";
                }
            }
        }
    }
}

TEST(DurationsFromFacts, inMinutesAndHoursAreThoseOfTwoAndThreeFields) {
    int failures = 0;
    for (int seconds = -10; seconds <= 100000 && failures < 10; ++seconds) {
        const std::string minutes = expectedOf(seconds, 2, true);
        const std::string hours = expectedOf(seconds, 3, true);
        failures += withMinutes(seconds) == minutes && withHours(seconds) == hours ? 0 : 1;
        EXPECT_EQ(withMinutes(seconds), minutes) << seconds;
        EXPECT_EQ(withHours(seconds), hours) << seconds;
    }
}

TEST(DurationsFromFacts, dropTheFieldsThatAreNotShown) {
    // Carried into the first field they would be "62:05" and "3725".
    EXPECT_EQ(inFields(3725, 2, false), "2:05");
    EXPECT_EQ(inFields(3725, 2, true), "2:05");
    EXPECT_EQ(inFields(3725, 1, false), "05");
    EXPECT_EQ(inFields(3725, 1, true), "05");
    EXPECT_EQ(inFields(125, 1, false), "05");
    EXPECT_EQ(inFields(86399, 2, false), "59:59");
}

TEST(DurationsFromFacts, lookForMinutesWithinTheHourOnly) {
    // There are 60 minutes in it, but none beside the hour.
    EXPECT_EQ(withMinutes(3605), "05");
    EXPECT_EQ(withMinutes(7259), "59");
    EXPECT_EQ(withMinutes(7260), "1:00");
    EXPECT_EQ(inFields(3605, 2, false), "0:05");
    EXPECT_EQ(withHours(3605), "1:00:05");
}

TEST(DurationsFromFacts, keepZeroMinutesBehindHours) {
    EXPECT_EQ(withHours(3600), "1:00:00");
    EXPECT_EQ(withHours(7205), "2:00:05");
}

TEST(DurationsFromFacts, inSevenFieldsAreThoseInThree) {
    for (const int seconds : {0, 5, 60, 125, 3600, 3725, 90061}) {
        for (const bool suppresses : {false, true}) {
            EXPECT_EQ(inFields(seconds, 7, suppresses), expectedOf(seconds, 3, suppresses)) << seconds;
        }
    }
    EXPECT_EQ(inFields(90061, 7, false), "25:01:01");
}

TEST(DurationsFromFacts, inNoFieldAreThoseInOne) {
    for (const int seconds : {0, 5, 60, 125, 3600, 3725, 90061}) {
        for (const bool suppresses : {false, true}) {
            EXPECT_EQ(inFields(seconds, 0, suppresses), expectedOf(seconds, 1, suppresses)) << seconds;
        }
    }
    EXPECT_EQ(inFields(125, 0, false), "05");
    EXPECT_EQ(inFields(125, 0, true), "05");
}

TEST(DurationsFromFacts, takeFieldCountsOfAnySize) {
    constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();
    constexpr std::int64_t greatest = std::numeric_limits<std::int64_t>::max();
    // The last two of each are 1, 3, 0 and 2 in their low 32 bits.
    const std::int64_t small[] = {smallest, INT_MIN, -1, -4294967295, -4294967293};
    for (const std::int64_t count : small) {
        EXPECT_EQ(inFields(3725, count, false), "05") << count;
        EXPECT_EQ(inFields(3725, count, true), "05") << count;
    }
    const std::int64_t great[] = {greatest, INT_MAX, 4294967296, 4294967298};
    for (const std::int64_t count : great) {
        EXPECT_EQ(inFields(3725, count, false), "1:02:05") << count;
        EXPECT_EQ(inFields(3725, count, true), "1:02:05") << count;
    }
}

TEST(DurationsFromFacts, ofMinusHalfASecondAreZero) {
    EXPECT_EQ(withHours(-0.5), "00");
    EXPECT_EQ(withMinutes(-0.5), "00");
    EXPECT_EQ(inFields(-0.5, 3, false), "0:00:00");
    EXPECT_EQ(withHours(-0.999), "00");
    EXPECT_EQ(withHours(-1.5), "");
}

TEST(DurationsFromFacts, dropFractions) {
    EXPECT_EQ(withHours(59.9), "59");
    EXPECT_EQ(withHours(3599.999), "59:59");
    EXPECT_EQ(withHours(60.5F), "1:00");
    EXPECT_EQ(withHours(true), "01");
}

TEST(DurationsFromFacts, ofNumbersBeyond32BitsAreThoseOfTheirLowBits) {
    struct WideRow {
        NSNumber seconds;
        std::int32_t viewed;
    };
    const WideRow rows[] = {
        {5000000000LL, 705032704},
        {4294967296LL, 0},
        {4294967295LL, -1},
        {2147483648LL, INT_MIN},
        {-4294967291LL, 5},
        {std::numeric_limits<std::int64_t>::min(), 0},
        {std::numeric_limits<std::uint64_t>::max(), -1},
        {3e9, -1294967296},
        {5e9, 705032704},
        {4294967301.75, 5},
        {std::numeric_limits<double>::infinity(), -1},
        {-std::numeric_limits<double>::infinity(), 0},
        {std::nan(""), 0},
    };
    for (const WideRow& row : rows) {
        for (int count = 0; count <= 4; ++count) {
            for (const bool suppresses : {false, true}) {
                EXPECT_EQ(inFields(row.seconds, count, suppresses), expectedOf(row.viewed, count, suppresses))
                    << utf8Of(row.seconds.description()) << " in " << count;
            }
        }
    }
}

TEST(DurationsFromFacts, ofNegativeNumbersAreEmptyAndNotNil) {
    for (int count = -1; count <= 4; ++count) {
        for (const bool suppresses : {false, true}) {
            const NSString text =
                NSNumber(-5).durationDescriptionWithFieldCount_suppressZeroes(count, suppresses);
            ASSERT_TRUE(text) << count;
            EXPECT_EQ(text.length(), 0U) << count;
        }
    }
    EXPECT_FALSE(NSNumber().durationDescriptionWithHours());
    EXPECT_FALSE(NSNumber().durationDescriptionWithMinutes());
    EXPECT_FALSE(NSNumber().durationDescriptionWithFieldCount_suppressZeroes(3, false));
}
