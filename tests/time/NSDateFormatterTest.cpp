// SPDX-License-Identifier: MIT
// The zone of a formatter, invalid dates, and threads.
#include "foundation/time/NSDateFormatter.h"

#include <atomic>
#include <limits>

#include <gtest/gtest.h>

#include "tests/kit/Threads.h"
#include "tests/kit/Zones.h"
#include "tests/time/FormatterTesting.h"

namespace ZQFoundation {
namespace {

TEST(NSDateFormatter, usesTheProcessesZoneOfTheMomentUnlessOneIsSet) {
    const kit::TimeZone scope("UTC0");
    NSDateFormatter formatter;
    formatter.setDateFormat("HH z");
    EXPECT_EQ(formatter.stringFromDate(at(teatime)), "13 UTC");
    scope.change(berlin);
    EXPECT_EQ(formatter.stringFromDate(at(teatime)), "14 CET");
    EXPECT_EQ(formatter.timeZone(), NSTimeZone::systemTimeZone());
    formatter.setTimeZone(NSTimeZone::timeZoneForSecondsFromGMT(-12600));
    EXPECT_EQ(formatter.stringFromDate(at(teatime)), "09 GMT-3:30");
    formatter.setTimeZone(nullptr);
    EXPECT_EQ(formatter.stringFromDate(at(teatime)), "14 CET");
}

TEST(NSDateFormatter, answersNilWhereThereIsNoDate) {
    NSDateFormatter formatter;
    EXPECT_FALSE(formatter.dateFormat());
    EXPECT_EQ(formatter.stringFromDate(at(0)), "") << "no pattern";
    formatter.setDateFormat("yyyy");
    EXPECT_EQ(formatter.dateFormat(), "yyyy");
    EXPECT_FALSE(formatter.stringFromDate(nullptr));
    EXPECT_EQ(formatted("y", std::numeric_limits<double>::quiet_NaN()), "nil");
    EXPECT_EQ(formatted("y", std::numeric_limits<double>::infinity()), "nil");
    EXPECT_EQ(formatted("y", -std::numeric_limits<double>::infinity()), "nil");
    EXPECT_EQ(formatted("y", 0x1p63), "nil");
    EXPECT_NE(formatted("y", -0x1p63), "nil");
}

TEST(NSDateFormatter, servesManyConcurrentThreads) {
    const kit::TimeZone scope(berlin);
    NSDateFormatter formatter;
    formatter.setDateFormat("yyyy'-'MM'-'dd' 'HH':'mm':'ss'.'SSS");
    std::atomic<int> wrong{0};
    kit::inThreads(4, [&](std::size_t number) {
        for (std::size_t i = 0; i < 2000; ++i) {
            const bool summer = (i + number) % 2 == 0;
            const NSString text = formatter.stringFromDate(at(summer ? 1720000000 : teatime));
            wrong += !(text == (summer ? "2024-07-03 11:46:40.000" : "2024-03-05 14:07:09.042"));
        }
    });
    EXPECT_EQ(wrong, 0);
}

} // namespace
} // namespace ZQFoundation
