// SPDX-License-Identifier: MIT
// Where units of the calendar begin and how long they last, especially where the clocks change.
#include <gtest/gtest.h>

#include "tests/time/CalendarTesting.h"

namespace ZQFoundation {
namespace {

using namespace calendartesting;

struct Range {
    NSDate start;
    NSTimeInterval length = -1;
};

Range rangeOf(const NSCalendar& calendar, NSCalendarUnit unit, const NSDate& date) {
    Range range;
    EXPECT_TRUE(calendar.rangeOfUnit_startDate_interval_forDate(unit, &range.start, &range.length, date));
    return range;
}

TEST(CalendarRange, knowsWhereUnitsBeginAndHowLongTheyLast) {
    const NewYork in;
    const NSDate date = dateOf(in.calendar, 2024, 3, 10, 14, 7, 9);
    const struct {
        NSCalendarUnit unit;
        const char* start;
        double length;
    } rows[] = {
        {NSCalendarUnitYear, "2024-01-01 05:00:00 +0000", 366 * 86400.0},
        {NSCalendarUnitQuarter, "2024-01-01 05:00:00 +0000", 91 * 86400.0 - 3600},
        {NSCalendarUnitMonth, "2024-03-01 05:00:00 +0000", 31 * 86400.0 - 3600},
        {NSCalendarUnitWeekOfYear, "2024-03-10 05:00:00 +0000", 7 * 86400.0 - 3600},
        {NSCalendarUnitDay, "2024-03-10 05:00:00 +0000", 23 * 3600.0},
        {NSCalendarUnitHour, "2024-03-10 18:00:00 +0000", 3600},
        {NSCalendarUnitMinute, "2024-03-10 18:07:00 +0000", 60},
        {NSCalendarUnitSecond, "2024-03-10 18:07:09 +0000", 1},
    };
    for (const auto& row : rows) {
        const Range range = rangeOf(in.calendar, row.unit, since1970(date.timeIntervalSince1970() + 0.75));
        EXPECT_EQ(shown(range.start), row.start) << row.unit;
        EXPECT_EQ(range.length, row.length) << row.unit;
    }
    const Range week = rangeOf(iso(), NSCalendarUnitWeekOfYear, date);
    EXPECT_EQ(shown(week.start), "2024-03-04 05:00:00 +0000");
    EXPECT_EQ(week.length, 7 * 86400.0 - 3600);
    EXPECT_EQ(rangeOf(in.calendar, NSCalendarUnitDay, dateOf(in.calendar, 2024, 11, 3, 12)).length,
              25 * 3600.0);
    const NSDate beforeMidnight = since1970(dateOf(in.calendar, 1950, 7, 2).timeIntervalSince1970() - 0.25);
    EXPECT_EQ(shown(in.calendar.startOfDayForDate(beforeMidnight)), "1950-07-01 04:00:00 +0000");
    // Exactly, at the date from which seconds are counted.
    const Universal utc;
    EXPECT_EQ(utc.calendar.startOfDayForDate(NSDate::dateWithTimeIntervalSinceReferenceDate(1))
                  .timeIntervalSinceReferenceDate(),
              0);
}

TEST(CalendarRange, hasNoRangeForOtherUnitsAndWritesNothingThen) {
    const NewYork in;
    const NSDate date = since1970(0);
    NSDate start = since1970(77);
    NSTimeInterval length = 77;
    for (const NSCalendarUnit unit : {NSCalendarUnitEra, NSCalendarUnitWeekday,
                                      NSCalendarUnitYearForWeekOfYear, NSCalendarUnitNanosecond}) {
        EXPECT_FALSE(in.calendar.rangeOfUnit_startDate_interval_forDate(unit, &start, &length, date)) << unit;
    }
    EXPECT_FALSE(
        in.calendar.rangeOfUnit_startDate_interval_forDate(NSCalendarUnitDay, &start, &length, nullptr));
    EXPECT_EQ(start.timeIntervalSince1970(), 77);
    EXPECT_EQ(length, 77);
    EXPECT_TRUE(
        in.calendar.rangeOfUnit_startDate_interval_forDate(NSCalendarUnitDay, nullptr, nullptr, date));
    EXPECT_TRUE(
        in.calendar.rangeOfUnit_startDate_interval_forDate(NSCalendarUnitDay, &start, nullptr, start));
    EXPECT_EQ(shown(start), "1969-12-31 05:00:00 +0000");
}

TEST(CalendarRange, beginsADayWithItsFirstInstant) {
    const struct {
        const char* zone;
        const char* about;
        NSInteger year, month, day, hour;
        const char* start;
        double hours;
    } rows[] = {
        {"America/Sao_Paulo", "no midnight", 2018, 11, 4, 12, "2018-11-04 03:00:00 +0000", 23},
        {"America/Sao_Paulo", "an hour of it twice", 2018, 2, 17, 12, "2018-02-17 02:00:00 +0000", 25},
        {"America/Toronto", "begins at 00:30", 1919, 3, 31, 12, "1919-03-31 04:30:00 +0000", 23.5},
        {"America/Toronto", "ends at 23:30", 1919, 3, 30, 12, "1919-03-30 05:00:00 +0000", 23.5},
        {"America/St_Johns", "has two midnights", 2010, 11, 7, 12, "2010-11-07 02:30:00 +0000", 25},
        {"Pacific/Apia", "the next one is left out", 2011, 12, 29, 12, "2011-12-29 10:00:00 +0000", 24},
        {"Pacific/Apia", "the one before was left out", 2011, 12, 31, 12, "2011-12-30 10:00:00 +0000", 24},
        {"Asia/Kathmandu", "begins at 00:15", 1986, 1, 1, 12, "1985-12-31 18:30:00 +0000", 23.75},
        {"America/Havana", "midnight came twice", 2023, 11, 5, 12, "2023-11-05 04:00:00 +0000", 25},
        {"Australia/Lord_Howe", "half an hour less", 2024, 10, 6, 12, "2024-10-05 13:30:00 +0000", 23.5},
        {"America/New_York", "far on", 12024, 7, 1, 12, "12024-07-01 04:00:00 +0000", 24},
    };
    int compared = 0;
    for (const auto& row : rows) {
        NSCalendar calendar = gregorian();
        if (useZone(calendar, row.zone)) {
            ++compared;
            const NSDate noon = dateOf(calendar, row.year, row.month, row.day, row.hour);
            EXPECT_EQ(shown(calendar.startOfDayForDate(noon)), row.start) << row.zone << " " << row.about;
            EXPECT_EQ(rangeOf(calendar, NSCalendarUnitDay, noon).length, row.hours * 3600) << row.about;
        }
    }
    if (compared == 0) {
        GTEST_SKIP() << "there are no zone files on this machine";
    }
}

TEST(CalendarRange, endsAnHourWhereTheClocksLeaveIt) {
    // Half an hour back at 02:00 on the first Sunday of April, forward at 02:00 on the first one of October.
    const kit::TimeZone variable("STD-10:30DST-11,M10.1.0,M4.1.0");
    const NSCalendar calendar = gregorian();
    const NSDate first = dateOf(calendar, 2024, 4, 7, 1, 45);
    const NSDate second = since1970(first.timeIntervalSince1970() + 1800);
    EXPECT_EQ(calendar.component_fromDate(NSCalendarUnitMinute, second), 45);
    const Range whole = rangeOf(calendar, NSCalendarUnitHour, first);
    EXPECT_EQ(first.timeIntervalSinceDate(whole.start), 2700);
    EXPECT_EQ(whole.length, 3600);
    const Range half = rangeOf(calendar, NSCalendarUnitHour, second);
    EXPECT_EQ(second.timeIntervalSinceDate(half.start), 900) << "begins with the change";
    EXPECT_EQ(half.length, 1800);
    const Range late = rangeOf(calendar, NSCalendarUnitHour, dateOf(calendar, 2024, 10, 6, 2, 45));
    EXPECT_EQ(calendar.component_fromDate(NSCalendarUnitMinute, late.start), 30);
    EXPECT_EQ(late.length, 1800);
    EXPECT_EQ(rangeOf(calendar, NSCalendarUnitHour, dateOf(calendar, 2024, 10, 6, 1, 45)).length, 3600);
}

TEST(CalendarRange, endsAnHourThatTheClocksLeaveAfterAMinute) {
    const kit::TimeZone variable(minuteAfterMidnight);
    const NSCalendar calendar = gregorian();
    const NSDate midnight = dateOf(calendar, 2010, 11, 7);
    const Range minute = rangeOf(calendar, NSCalendarUnitHour, midnight);
    EXPECT_EQ(shown(minute.start), shown(midnight));
    EXPECT_EQ(minute.length, 60);
    // Then 59 minutes of the evening before come again.
    const Range evening =
        rangeOf(calendar, NSCalendarUnitHour, since1970(midnight.timeIntervalSince1970() + 60));
    EXPECT_EQ(evening.start.timeIntervalSinceDate(midnight), 60);
    EXPECT_EQ(evening.length, 59 * 60);
    EXPECT_EQ(calendar.component_fromDate(NSCalendarUnitDay, evening.start), 6);
    EXPECT_EQ(calendar.startOfDayForDate(evening.start).timeIntervalSinceDate(midnight), -86400);
    // Skipped minutes: 00:01 to 01:01.
    const NSDate spring = dateOf(calendar, 2010, 3, 14);
    EXPECT_EQ(rangeOf(calendar, NSCalendarUnitHour, spring).length, 60);
    const Range late = rangeOf(calendar, NSCalendarUnitHour, since1970(spring.timeIntervalSince1970() + 90));
    EXPECT_EQ(late.start.timeIntervalSinceDate(spring), 60);
    EXPECT_EQ(late.length, 59 * 60);
}

TEST(CalendarRange, takesAChangeOfNamesForNoChangeOfTheClocks) {
    kit::ZoneData data;
    data.changes = {5000, 5400};
    data.indexes = {1, 0};
    data.clocks = {{0, false, 0}, {0, true, 4}};
    data.names = std::string("ONE\0TWO\0", 8);
    const kit::ScratchFolder folder;
    const kit::TimeZone variable(folder.write("names", data.bytes()).c_str());
    for (const double seconds : {4000.0, 5200.0, 6000.0}) {
        const Range range = rangeOf(gregorian(), NSCalendarUnitHour, since1970(seconds));
        EXPECT_EQ(range.start.timeIntervalSince1970(), 3600) << seconds;
        EXPECT_EQ(range.length, 3600) << seconds;
    }
}

TEST(CalendarRange, rangesFollowEachOtherWithoutGaps) {
    const NSCalendarUnit units[] = {NSCalendarUnitYear,       NSCalendarUnitQuarter, NSCalendarUnitMonth,
                                    NSCalendarUnitWeekOfYear, NSCalendarUnitDay,     NSCalendarUnitHour,
                                    NSCalendarUnitMinute};
    for (const char* zone :
         {"EST5EDT,M3.2.0,M11.1.0", "STD-10:30DST-11,M10.1.0,M4.1.0", "STD3DST,M10.3.0/0,M2.3.0/0"}) {
        const kit::TimeZone variable(zone);
        for (const NSCalendarUnit unit : units) {
            NSDate at = since1970(1700000000);
            for (int i = 0; i < 500; ++i) {
                const Range range = rangeOf(iso(), unit, at);
                ASSERT_GT(range.length, 0);
                ASSERT_LE(range.start.timeIntervalSinceDate(at), 0) << zone << unit;
                const NSDate next = since1970(range.start.timeIntervalSince1970() + range.length);
                ASSERT_GT(next.timeIntervalSinceDate(at), 0) << zone << unit;
                ASSERT_EQ(shown(rangeOf(iso(), unit, next).start), shown(next)) << zone << unit;
                at = next;
            }
        }
    }
}

} // namespace
} // namespace ZQFoundation
