// SPDX-License-Identifier: MIT
// Dates from fields and fields of dates, in every zone, era and calendar.
#include <cmath>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "tests/models/Calendar.h"
#include "tests/time/CalendarTesting.h"

namespace ZQFoundation {
namespace {

using namespace calendartesting;

TEST(NSCalendar, isFoundByItsIdentifier) {
    EXPECT_EQ(gregorian().calendarIdentifier(), "gregorian");
    EXPECT_EQ(iso().calendarIdentifier(), "iso8601");
    EXPECT_EQ(NSCalendar::calendarWithIdentifier(u"iso8601").calendarIdentifier(), "iso8601");
    EXPECT_EQ(NSCalendar::calendarWithIdentifier(NSString("gregorian")).calendarIdentifier(), "gregorian");
    EXPECT_EQ(NSCalendar::currentCalendar().calendarIdentifier(), "gregorian");
    for (const char* other : {"", "Gregorian", "gregorian ", "hebrew", "iso860\xc3\xa4"}) {
        EXPECT_FALSE(NSCalendar::calendarWithIdentifier(other)) << other;
    }
    EXPECT_FALSE(NSCalendar::calendarWithIdentifier(nullptr));
}

TEST(NSCalendar, isNilByDefaultAndAnswersNothing) {
    NSCalendar none;
    EXPECT_FALSE(none);
    EXPECT_FALSE(none.calendarIdentifier());
    EXPECT_FALSE(none.timeZone());
    none.setTimeZone(NSTimeZone::timeZoneForSecondsFromGMT(3600));
    EXPECT_FALSE(none.timeZone());
    EXPECT_FALSE(dateOf(none, 2024, 1, 1));
    EXPECT_EQ(shown(none.components_fromDate(allUnits, since1970(0))), "----- -:-:-");
    EXPECT_EQ(none.component_fromDate(NSCalendarUnitYear, since1970(0)), 0);
    EXPECT_EQ(none.components_fromDate_toDate(NSCalendarUnitDay, since1970(0), since1970(1e9)).day, unset);
    EXPECT_FALSE(none.startOfDayForDate(since1970(0)));
    EXPECT_FALSE(
        none.rangeOfUnit_startDate_interval_forDate(NSCalendarUnitDay, nullptr, nullptr, since1970(0)));
}

TEST(NSCalendar, takesTheProcesssZoneAtEachCallUnlessItHasItsOwn) {
    NSCalendar calendar = gregorian();
    {
        const kit::TimeZone variable("AAA-3");
        EXPECT_EQ(calendar.timeZone().name(), "AAA-3");
        EXPECT_EQ(shown(dateOf(calendar, 2024, 1, 1)), "2023-12-31 21:00:00 +0000");
    }
    const kit::TimeZone variable("BBB3");
    EXPECT_EQ(shown(dateOf(calendar, 2024, 1, 1)), "2024-01-01 03:00:00 +0000");
    calendar.setTimeZone(NSTimeZone::timeZoneForSecondsFromGMT(7200));
    EXPECT_EQ(shown(dateOf(calendar, 2024, 1, 1)), "2023-12-31 22:00:00 +0000");
    NSDateComponents fields = calendar.components_fromDate(plainUnits, since1970(0));
    EXPECT_EQ(shown(fields), "1970-1-1 2:0:0");
    EXPECT_EQ(fields.timeZone, calendar.timeZone());
    fields.timeZone = NSTimeZone::timeZoneForSecondsFromGMT(-3600);
    EXPECT_EQ(shown(calendar.dateFromComponents(fields)), "1970-01-01 03:00:00 +0000")
        << "the fields' own zone";
    calendar.setTimeZone(nullptr);
    EXPECT_EQ(calendar.timeZone().name(), "BBB3");
}

TEST(NSCalendar, fillsInWhatIsNotSet) {
    const Universal in;
    EXPECT_EQ(shown(in.calendar.dateFromComponents({})), "0001-01-01 00:00:00 +0000");
    NSDateComponents fields;
    fields.year = 2024;
    EXPECT_EQ(shown(in.calendar.dateFromComponents(fields)), "2024-01-01 00:00:00 +0000");
    fields.second = 61;
    EXPECT_EQ(shown(in.calendar.dateFromComponents(fields)), "2024-01-01 00:01:01 +0000");
    fields.weekday = 3;
    fields.quarter = 4;
    fields.weekOfYear = 20;
    fields.yearForWeekOfYear = 1999;
    EXPECT_EQ(shown(in.calendar.dateFromComponents(fields)), "2024-01-01 00:01:01 +0000") << "not looked at";
    fields.nanosecond = 250000000;
    EXPECT_EQ(in.calendar.dateFromComponents(fields).timeIntervalSince1970(), 1704067261.25);
    fields.nanosecond = -1750000000;
    EXPECT_EQ(in.calendar.dateFromComponents(fields).timeIntervalSince1970(), 1704067259.25);
}

TEST(NSCalendar, carriesFieldsThatAreOutOfTheirRange) {
    const Universal in;
    const struct {
        NSInteger year, month, day, hour, minute, second;
        const char* expected;
    } rows[] = {
        {2020, 25, 31, 0, 0, 0, "2022-01-31 00:00:00 +0000"},
        {2021, 14, 29, 0, 0, 0, "2022-03-01 00:00:00 +0000"},
        {2024, 1, 366, 24, 60, 60, "2025-01-01 01:01:00 +0000"},
        {2024, 1, 1, 0, 0, -1, "2023-12-31 23:59:59 +0000"},
        {2024, 1, 1, -1, -1, -1, "2023-12-31 22:58:59 +0000"},
        {1900, 2, 29, 0, 0, 0, "1900-03-01 00:00:00 +0000"},
        {1582, 10, 10, 0, 0, 0, "1582-10-10 00:00:00 +0000"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(shown(dateOf(in.calendar, row.year, row.month, row.day, row.hour, row.minute, row.second)),
                  row.expected);
    }
}

TEST(NSCalendar, turnsSkippedAndRepeatedWallTimesIntoInstants) {
    const NewYork in;
    const struct {
        NSInteger year, month, day, hour, minute;
        const char* expected;
    } rows[] = {
        {2024, 3, 10, 2, 30, "2024-03-10 07:30:00 +0000"},
        {2024, 3, 9, 26, 30, "2024-03-10 07:30:00 +0000"},
        {2024, 11, 3, 1, 30, "2024-11-03 05:30:00 +0000"},
        {2024, 11, 2, 25, 30, "2024-11-03 05:30:00 +0000"},
        {200000, 7, 1, 12, 0, "200000-07-01 16:00:00 +0000"},
        {-5000, 7, 1, 12, 0, "-5000-07-01 16:00:00 +0000"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(shown(dateOf(in.calendar, row.year, row.month, row.day, row.hour, row.minute)),
                  row.expected);
    }
}

TEST(NSCalendar, countsYearsWithinTheirEra) {
    const Universal in;
    const struct {
        NSInteger astronomical, era, year;
    } rows[] = {{2, 1, 2}, {1, 1, 1}, {0, 0, 1}, {-1, 0, 2}, {-4712, 0, 4713}};
    for (const auto& row : rows) {
        const NSDate date = dateOf(in.calendar, row.astronomical, 6, 15);
        NSDateComponents fields = in.calendar.components_fromDate(allUnits, date);
        EXPECT_EQ(fields.era, row.era);
        EXPECT_EQ(fields.year, row.year);
        EXPECT_EQ(fields.month, 6);
        EXPECT_EQ(in.calendar.component_fromDate(NSCalendarUnitYear, date), row.year);
        EXPECT_TRUE(in.calendar.dateFromComponents(fields).isEqualToDate(date)) << "with its era";
        fields.era = unset;
        EXPECT_EQ(shown(in.calendar.dateFromComponents(fields)), shown(dateOf(in.calendar, row.year, 6, 15)));
    }
    NSDateComponents fields;
    fields.era = 0;
    EXPECT_EQ(shown(in.calendar.dateFromComponents(fields)), "0000-01-01 00:00:00 +0000");
    fields.year = 0;
    EXPECT_EQ(shown(in.calendar.dateFromComponents(fields)), "0001-01-01 00:00:00 +0000");
    for (const NSInteger era : {NSInteger{-1}, NSInteger{2}, INT64_MIN, INT64_MAX - 1}) {
        fields.era = era;
        EXPECT_FALSE(in.calendar.dateFromComponents(fields)) << era;
    }
}

TEST(NSCalendar, survivesFieldsOfAnySize) {
    const NewYork in;
    constexpr NSInteger values[] = {INT64_MIN, INT64_MIN + 1, -292000000001, -1,       0,
                                    1,         292000000001,  INT64_MAX - 1, INT64_MAX};
    constexpr NSInteger NSDateComponents::*members[] = {
        &NSDateComponents::year,       &NSDateComponents::month,  &NSDateComponents::day,
        &NSDateComponents::hour,       &NSDateComponents::minute, &NSDateComponents::second,
        &NSDateComponents::nanosecond, &NSDateComponents::era};
    for (const auto one : members) {
        for (const auto other : members) {
            for (const NSInteger value : values) {
                for (const NSInteger otherValue : values) {
                    NSDateComponents fields;
                    fields.*one = value;
                    fields.*other = otherValue;
                    const NSDate date = in.calendar.dateFromComponents(fields);
                    if (date) {
                        ASSERT_LE(std::fabs(date.timeIntervalSince1970()), 9.2146299840e18);
                    }
                }
            }
        }
    }
    EXPECT_FALSE(dateOf(in.calendar, 292000002000, 1, 1));
    EXPECT_FALSE(dateOf(in.calendar, -292000000000, 1, 1));
    EXPECT_FALSE(dateOf(in.calendar, INT64_MIN, 1, 1));
    EXPECT_FALSE(dateOf(in.calendar, 2024, INT64_MIN, 1));
    EXPECT_FALSE(dateOf(in.calendar, 2024, 1, INT64_MIN));
    EXPECT_FALSE(dateOf(in.calendar, 2024, 1, 1, INT64_MIN));
    EXPECT_TRUE(dateOf(in.calendar, 291999990000, 1, 1));
    for (const NSInteger year : {INT64_MIN, INT64_MIN + 1, INT64_MAX - 1}) {
        NSDateComponents fields;
        fields.era = 0;
        fields.year = year;
        EXPECT_FALSE(in.calendar.dateFromComponents(fields)) << year;
    }
    // What is too much alone may come back within reach together.
    EXPECT_EQ(shown(dateOf(in.calendar, 2024, 1, 1, 24 * 365, -60 * 24 * 365)), "2024-01-01 05:00:00 +0000");
    EXPECT_EQ(shown(dateOf(in.calendar, 768614336404566620, INT64_MIN, 1)), "1969-04-01 04:00:00 +0000");
}

TEST(NSCalendar, givesTheFieldsThatAreAskedForAndNoOthers) {
    const NewYork in;
    const NSDate date = since1970(1709647629.042); // 2024-03-05 14:07:09.042 UTC
    const NSDateComponents fields =
        in.calendar.components_fromDate(NSCalendarUnitMonth | NSCalendarUnitSecond, date);
    EXPECT_EQ(shown(fields), "--3-- -:-:9");
    EXPECT_EQ(fields.era, unset);
    EXPECT_EQ(fields.weekOfYear, unset);
    EXPECT_EQ(fields.timeZone, in.calendar.timeZone());
    const NSDateComponents all = in.calendar.components_fromDate(allUnits, date);
    EXPECT_EQ(shown(all), "2024-3-5 9:7:9");
    EXPECT_EQ(all.era, 1);
    EXPECT_EQ(all.weekday, 3);
    EXPECT_EQ(all.quarter, 1);
    EXPECT_NEAR(static_cast<double>(all.nanosecond), 42e6, 1000);
    const struct {
        NSCalendarUnit unit;
        NSInteger expected;
    } rows[] = {
        {NSCalendarUnitEra, 1},
        {NSCalendarUnitYear, 2024},
        {NSCalendarUnitMonth, 3},
        {NSCalendarUnitDay, 5},
        {NSCalendarUnitHour, 9},
        {NSCalendarUnitMinute, 7},
        {NSCalendarUnitSecond, 9},
        {NSCalendarUnitWeekday, 3},
        {NSCalendarUnitQuarter, 1},
        {NSCalendarUnitWeekOfYear, 10},
        {NSCalendarUnitYearForWeekOfYear, 2024},
        {NSCalendarUnitNanosecond, all.nanosecond},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(in.calendar.component_fromDate(row.unit, date), row.expected) << row.unit;
    }
    EXPECT_EQ(in.calendar.component_fromDate(static_cast<NSCalendarUnit>(1U << 10), date), unset);
}

TEST(NSCalendar, hasNoFieldsForWhatIsNoDateOfItsOwn) {
    const NewYork in;
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const NSDate dates[] = {NSDate(),
                            since1970(1e300),
                            since1970(-1e300),
                            since1970(infinity),
                            since1970(-infinity),
                            since1970(std::numeric_limits<double>::quiet_NaN())};
    for (const NSDate& date : dates) {
        const NSDateComponents fields = in.calendar.components_fromDate(allUnits, date);
        EXPECT_EQ(shown(fields), "----- -:-:-");
        EXPECT_FALSE(fields.timeZone);
        EXPECT_EQ(in.calendar.component_fromDate(NSCalendarUnitYear, date), unset);
        EXPECT_FALSE(in.calendar.startOfDayForDate(date));
        EXPECT_EQ(in.calendar.components_fromDate_toDate(NSCalendarUnitDay, date, since1970(0)).day, unset);
        EXPECT_EQ(in.calendar.components_fromDate_toDate(NSCalendarUnitDay, since1970(0), date).day, unset);
    }
}

void expectWeek(const NSCalendar& calendar, std::int64_t day, bool isIso) {
    const NSDate date = since1970(static_cast<double>(day) * 86400 + 5);
    const models::CivilDate decisive = models::decisiveDay(day, isIso);
    ASSERT_EQ(calendar.component_fromDate(NSCalendarUnitYearForWeekOfYear, date), decisive.year) << day;
    ASSERT_EQ(calendar.component_fromDate(NSCalendarUnitWeekOfYear, date), (decisive.dayOfYear + 6) / 7)
        << day;
}

TEST(NSCalendar, agreesWithTheModelForEveryDayOfNineCenturies) {
    const Universal in;
    for (std::int64_t day = -150000; day < 170000; ++day) {
        const models::CivilDate expected = models::civilDate(day);
        const NSDateComponents fields = iso().components_fromDate(
            NSCalendarUnitMonth | NSCalendarUnitDay | NSCalendarUnitWeekday | NSCalendarUnitQuarter,
            since1970(static_cast<double>(day) * 86400 + 86399));
        ASSERT_EQ(fields.month, expected.month) << day;
        ASSERT_EQ(fields.day, expected.day) << day;
        ASSERT_EQ(fields.weekday, expected.weekday + 1) << day;
        ASSERT_EQ(fields.quarter, (expected.month - 1) / 3 + 1) << day;
        expectWeek(iso(), day, true);
        expectWeek(in.calendar, day, false);
    }
}

TEST(NSCalendar, addsNothingToWholeSeconds) {
    const Universal in;
    EXPECT_EQ(dateOf(in.calendar, 2001, 1, 1).timeIntervalSinceReferenceDate(), 0);
}

TEST(NSCalendar, numbersWeeksBeforeTheYear1ThroughZero) {
    const Universal in;
    // Saturday, 1 January 0000, and Monday, 3 January 0000.
    EXPECT_EQ(iso().component_fromDate(NSCalendarUnitYearForWeekOfYear, dateOf(in.calendar, 0, 1, 1)), -1);
    EXPECT_EQ(iso().component_fromDate(NSCalendarUnitWeekOfYear, dateOf(in.calendar, 0, 1, 1)), 52);
    EXPECT_EQ(iso().component_fromDate(NSCalendarUnitYearForWeekOfYear, dateOf(in.calendar, 0, 1, 3)), 0);
    EXPECT_EQ(iso().component_fromDate(NSCalendarUnitWeekOfYear, dateOf(in.calendar, 0, 1, 3)), 1);
}

} // namespace
} // namespace ZQFoundation
