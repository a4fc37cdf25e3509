// SPDX-License-Identifier: MIT
// Instants: creating, comparing and describing them.
#include "foundation/objects/NSDate.h"

#include <gtest/gtest.h>

#include <ctime>
#include <limits>
#include <string>

#include "foundation/objects/NSDictionary.h"
#include "tests/kit/Values.h"

using namespace ZQFoundation;
using namespace kit;

namespace {

constexpr double day = 86400;
// Days between 1 January of a year and 1 January 2001 by the rules of the Gregorian calendar.
constexpr double daysToYear0 = -730851;
constexpr double daysToYear1 = -730485;
constexpr double daysToYear1900 = -36890;
constexpr double daysToYear10000 = 2921574;

NSDate at(double seconds) { return NSDate::dateWithTimeIntervalSinceReferenceDate(seconds); }

TEST(NSDate, describesItselfInUniversalTimeCutToSeconds) {
    const struct {
        double seconds;
        const char* text;
    } rows[] = {
        {0, "2001-01-01 00:00:00 +0000"},
        {59.9999, "2001-01-01 00:00:59 +0000"},
        {-0.001, "2000-12-31 23:59:59 +0000"},
        {-1.5, "2000-12-31 23:59:58 +0000"},
        {-978307200, "1970-01-01 00:00:00 +0000"},
        {731340429.042, "2024-03-05 14:07:09 +0000"},
        {730943999, "2024-02-29 23:59:59 +0000"},
        {daysToYear1900 * day, "1900-01-01 00:00:00 +0000"},
        {daysToYear1 * day, "0001-01-01 00:00:00 +0000"},
        {daysToYear1 * day - 1, "0000-12-31 23:59:59 +0000"},
        {daysToYear0 * day, "0000-01-01 00:00:00 +0000"},
        {(daysToYear0 + 59) * day, "0000-02-29 00:00:00 +0000"},
        {daysToYear10000 * day - 1, "9999-12-31 23:59:59 +0000"},
        {daysToYear10000 * day, "10000-01-01 00:00:00 +0000"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(shown(at(row.seconds)), row.text) << row.seconds;
    }
}

TEST(NSDate, describesInstantsBeyondAnyCalendarWithoutHarm) {
    const double limit = std::numeric_limits<double>::max();
    const double infinity = std::numeric_limits<double>::infinity();
    const double seconds[] = {limit, -limit, infinity, -infinity, std::numeric_limits<double>::quiet_NaN(),
                              1e18,  -1e18,  9.3e18,   -9.3e18};
    for (const double value : seconds) {
        const std::string text = shown(at(value));
        EXPECT_NE(text, "(nil)") << value;
        EXPECT_NE(text, "") << value;
        EXPECT_LT(text.size(), 100U) << value;
    }
}

TEST(NSDate, countsFromItsReferenceInstant) {
    const NSDate date = NSDate::dateWithTimeIntervalSince1970(978307201.5);
    EXPECT_EQ(date.timeIntervalSinceReferenceDate(), 1.5);
    EXPECT_EQ(date.timeIntervalSince1970(), 978307201.5);
    EXPECT_EQ(date.timeIntervalSinceDate(at(1)), 0.5);
    EXPECT_EQ(at(1).timeIntervalSinceDate(date), -0.5);
    EXPECT_EQ(NSDate().timeIntervalSinceDate(date), 0);
    EXPECT_EQ(date.timeIntervalSinceDate(nullptr), 1.5);
}

TEST(NSDate, nowIsTheClockOfTheMachine) {
    const double before = static_cast<double>(std::time(nullptr));
    const double now = NSDate::date().timeIntervalSince1970();
    const double after = static_cast<double>(std::time(nullptr));
    EXPECT_GE(now, before - 1);
    EXPECT_LE(now, after + 2);
    EXPECT_LE(NSDate::date().timeIntervalSince1970() - now, 60);
}

TEST(NSDate, comparesByValue) {
    EXPECT_EQ(at(1).compare(at(2)), NSOrderedAscending);
    EXPECT_EQ(at(2).compare(at(1)), NSOrderedDescending);
    EXPECT_EQ(at(1).compare(at(1)), NSOrderedSame);
    EXPECT_EQ(at(0.25).compare(at(0.5)), NSOrderedAscending);
    EXPECT_EQ(at(-0.0).compare(at(0.0)), NSOrderedSame);
}

TEST(NSDate, isEqualByValueAndHashesAlike) {
    EXPECT_TRUE(at(1.5).isEqualToDate(at(1.5)));
    EXPECT_FALSE(at(1.5).isEqualToDate(at(1.25)));
    EXPECT_FALSE(at(1.5).isEqualToDate(nullptr));
    EXPECT_TRUE(at(1.5).isEqual(at(1.5)));
    EXPECT_FALSE(at(1).isEqual(1)) << "a number of the same value";
    EXPECT_EQ(at(1.5).hash(), at(1.5).hash());
    EXPECT_TRUE(at(-0.0).isEqual(at(0.0)));
    EXPECT_EQ(at(-0.0).hash(), at(0.0).hash());
    EXPECT_EQ((NSDictionary{{at(1), "x"}}).objectForKey(at(1)), "x");
}

TEST(NSDate, aMessageToANilDateGivesNothing) {
    const NSDate none;
    EXPECT_FALSE(none);
    EXPECT_EQ(none.timeIntervalSinceReferenceDate(), 0);
    EXPECT_EQ(none.timeIntervalSince1970(), 0);
    EXPECT_EQ(none.compare(at(1)), NSOrderedSame);
    EXPECT_FALSE(none.isEqualToDate(at(0)));
    EXPECT_FALSE(none.isEqualToDate(none));
    EXPECT_FALSE(none.description());
}

TEST(NSDate, isNilWhenTheValueIsNoDate) {
    EXPECT_FALSE(NSDate(NSObject(1.0)));
    EXPECT_FALSE(NSDate(NSObject("2001-01-01")));
    EXPECT_EQ(NSDate(NSObject(at(2))).timeIntervalSinceReferenceDate(), 2);
}

} // namespace
