// SPDX-License-Identifier: MIT
// Units counted from one date to another.
#include <cmath>
#include <random>

#include <gtest/gtest.h>

#include "tests/time/CalendarTesting.h"

namespace ZQFoundation {
namespace {

using namespace calendartesting;

NSDateComponents between(const NSCalendar& calendar, unsigned units, const NSDate& from, const NSDate& to) {
    return calendar.components_fromDate_toDate(units, from, to);
}

TEST(CalendarDifference, countsUnitsFromOneDateToAnother) {
    const NewYork in;
    const NSDate from = dateOf(in.calendar, 2023, 1, 31, 10, 30, 15);
    const NSDate to = dateOf(in.calendar, 2024, 3, 15, 9, 29, 10);
    EXPECT_EQ(shown(between(in.calendar, plainUnits, from, to)), "1-1-14 22:58:55");
    EXPECT_EQ(shown(between(in.calendar, plainUnits, to, from)), "-1--1--14 -22:-58:-55");
    EXPECT_EQ(shown(between(in.calendar, NSCalendarUnitDay, from, to)), "----408 -:-:-");
    EXPECT_EQ(shown(between(in.calendar, NSCalendarUnitMonth, from, to)), "--13-- -:-:-");
    EXPECT_EQ(shown(between(in.calendar, NSCalendarUnitHour | NSCalendarUnitSecond, from, to)),
              "----- 9813:-:3535");
    const NSDateComponents weeks =
        between(in.calendar, NSCalendarUnitWeekOfYear | NSCalendarUnitDay, from, to);
    EXPECT_EQ(weeks.weekOfYear, 58);
    EXPECT_EQ(weeks.day, 2);
    const NSDateComponents fine = between(in.calendar, NSCalendarUnitMinute | NSCalendarUnitNanosecond,
                                          since1970(0.25), since1970(-59.5));
    EXPECT_EQ(fine.minute, 0);
    EXPECT_EQ(fine.nanosecond, -59750000000);
    const NSDateComponents others = between(in.calendar, allUnits, from, to);
    EXPECT_EQ(others.era, unset);
    EXPECT_EQ(others.weekday, unset);
    EXPECT_EQ(others.quarter, unset);
    EXPECT_EQ(others.yearForWeekOfYear, unset);
    EXPECT_FALSE(others.timeZone);
}

TEST(CalendarDifference, addsMonthsByTheLastDayOfShorterOnes) {
    const Universal in;
    const auto months = [&in](NSInteger month, NSInteger day, NSInteger toMonth, NSInteger toDay) {
        return between(in.calendar, NSCalendarUnitMonth | NSCalendarUnitDay,
                       dateOf(in.calendar, 2023, month, day), dateOf(in.calendar, 2023, toMonth, toDay));
    };
    EXPECT_EQ(shown(months(1, 31, 2, 27)), "--0-27 -:-:-");
    EXPECT_EQ(shown(months(1, 31, 2, 28)), "--1-0 -:-:-");
    EXPECT_EQ(shown(months(1, 31, 3, 1)), "--1-1 -:-:-");
    EXPECT_EQ(shown(months(3, 31, 2, 28)), "---1-0 -:-:-");
    EXPECT_EQ(shown(months(3, 31, 2, 27)), "---1--1 -:-:-");
}

TEST(CalendarDifference, countsDaysAsTheCalendarDoesFromTheirStarts) {
    const struct {
        const char* zone;
        NSInteger year, month, day, days;
    } rows[] = {
        {"America/Sao_Paulo", 2018, 11, 3, 3}, {"America/Sao_Paulo", 2018, 11, 4, 1},
        {"America/Toronto", 1919, 3, 31, 1},   {"Pacific/Apia", 2011, 12, 29, 2},
        {"Pacific/Apia", 2011, 12, 31, 1},     {"America/St_Johns", 2010, 11, 6, 2},
        {"Asia/Kathmandu", 1985, 12, 30, 5},
    };
    int compared = 0;
    for (const auto& row : rows) {
        NSCalendar calendar = gregorian();
        if (!useZone(calendar, row.zone)) {
            continue;
        }
        ++compared;
        const NSDate first = calendar.startOfDayForDate(dateOf(calendar, row.year, row.month, row.day, 12));
        const NSDate last =
            calendar.startOfDayForDate(dateOf(calendar, row.year, row.month, row.day + row.days, 12));
        EXPECT_EQ(between(calendar, NSCalendarUnitDay, first, last).day, row.days) << row.zone;
        EXPECT_EQ(between(calendar, NSCalendarUnitDay, last, first).day, -row.days) << row.zone;
        const NSDate justBefore = since1970(last.timeIntervalSince1970() - 1);
        EXPECT_LT(between(calendar, NSCalendarUnitDay, first, justBefore).day, row.days) << row.zone;
    }
    if (compared == 0) {
        GTEST_SKIP() << "there are no zone files on this machine";
    }
}

TEST(CalendarDifference, countsHoursAsTheyPass) {
    const NewYork in;
    const NSDate from = dateOf(in.calendar, 2024, 3, 9, 12);
    const NSDate to = dateOf(in.calendar, 2024, 3, 10, 12);
    EXPECT_EQ(between(in.calendar, NSCalendarUnitHour, from, to).hour, 23);
    const NSDateComponents both = between(in.calendar, NSCalendarUnitDay | NSCalendarUnitHour, from, to);
    EXPECT_EQ(both.day, 1);
    EXPECT_EQ(both.hour, 0);
    // From the second 01:30 of the day on which they are put back, nothing has passed to itself.
    const NSDate second = since1970(dateOf(in.calendar, 2024, 11, 3, 1, 30).timeIntervalSince1970() + 3600);
    EXPECT_EQ(shown(between(in.calendar, plainUnits, second, second)), "0-0-0 0:0:0");
    EXPECT_EQ(shown(between(in.calendar, plainUnits, second, dateOf(in.calendar, 2024, 11, 3, 1, 45))),
              "0-0-0 0:-45:0");
}

TEST(CalendarDifference, sumsUpWhatItCounts) {
    // Taking the counted units from the first date results in the second: days on the calendar, then hours.
    std::mt19937_64 random(8);
    std::uniform_int_distribution<std::int64_t> instant(-4000000000, 4000000000);
    for (const char* zone : {"EST5EDT,M3.2.0,M11.1.0", "STD3DST,M10.3.0/0,M2.3.0/0", "UTC0"}) {
        const kit::TimeZone variable(zone);
        const NSCalendar calendar = gregorian();
        for (int i = 0; i < 3000; ++i) {
            const NSDate from = since1970(static_cast<double>(instant(random)));
            const NSDate to = since1970(static_cast<double>(instant(random)));
            const NSDateComponents counts =
                between(calendar, NSCalendarUnitDay | NSCalendarUnitSecond, from, to);
            NSDateComponents fields = calendar.components_fromDate(plainUnits | NSCalendarUnitEra, from);
            fields.day += counts.day;
            const NSDate reached = calendar.dateFromComponents(fields);
            ASSERT_EQ(to.timeIntervalSinceDate(reached), static_cast<double>(counts.second)) << zone << i;
            ASSERT_LT(std::abs(counts.second), 90000) << "a day more would have fit";
            const double direction = to.timeIntervalSinceDate(from);
            ASSERT_GE(static_cast<double>(counts.day) * direction, 0);
            ASSERT_GE(static_cast<double>(counts.second) * direction, 0);
        }
    }
}

TEST(CalendarDifference, takesNoStepBackwardsWhenTheDateGoesBackAndTimeDoesNot) {
    const kit::TimeZone variable(minuteAfterMidnight);
    const NSCalendar calendar = gregorian();
    const NSDate midnight = dateOf(calendar, 2010, 11, 7);
    const NSDate evening = since1970(midnight.timeIntervalSince1970() + 600);
    ASSERT_EQ(calendar.component_fromDate(NSCalendarUnitDay, evening), 6);
    const NSDateComponents counts =
        calendar.components_fromDate_toDate(NSCalendarUnitDay | NSCalendarUnitSecond, midnight, evening);
    EXPECT_EQ(counts.day, 0);
    EXPECT_EQ(counts.second, 600);
    const NSDateComponents back =
        calendar.components_fromDate_toDate(NSCalendarUnitDay | NSCalendarUnitSecond, evening, midnight);
    EXPECT_EQ(back.day, 0);
    EXPECT_EQ(back.second, -600);
}

TEST(CalendarDifference, survivesTheEndsOfItself) {
    const NewYork in;
    const NSDate first = dateOf(in.calendar, -291999990000, 5, 1, 12);
    const NSDate last = dateOf(in.calendar, 291999990000, 6, 1, 12);
    ASSERT_TRUE(first);
    ASSERT_TRUE(last);
    EXPECT_EQ(between(in.calendar, NSCalendarUnitYear, first, last).year, 583999980000);
    EXPECT_EQ(between(in.calendar, NSCalendarUnitYear, last, first).year, -583999980000);
    const NSDateComponents split =
        between(in.calendar, NSCalendarUnitYear | NSCalendarUnitMonth, first, last);
    EXPECT_EQ(split.year, 583999980000);
    EXPECT_GE(split.month, 0);
    EXPECT_LE(split.month, 1);
    EXPECT_EQ(between(in.calendar, NSCalendarUnitSecond, first, last).second, unset) << "has no room";
    EXPECT_EQ(between(in.calendar, NSCalendarUnitNanosecond, last, first).nanosecond, unset);
    EXPECT_GT(between(in.calendar, NSCalendarUnitMinute, first, last).minute, 300000000000000000);
    for (const NSDate& date :
         {first, last, since1970(9.214629984e18 - 2048), since1970(2048 - 9.214629984e18)}) {
        for (unsigned bit = 0; bit < 17; ++bit) {
            const auto unit = static_cast<NSCalendarUnit>(1U << bit);
            NSDate start;
            if (in.calendar.rangeOfUnit_startDate_interval_forDate(unit, &start, nullptr, date)) {
                EXPECT_TRUE(std::isfinite(start.timeIntervalSince1970()));
            }
            EXPECT_EQ(between(in.calendar, unit, date, date).year, unit == NSCalendarUnitYear ? 0 : unset);
        }
    }
}

} // namespace
} // namespace ZQFoundation
