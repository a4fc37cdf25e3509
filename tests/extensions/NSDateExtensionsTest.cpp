// SPDX-License-Identifier: MIT
// Dates from fields, moved within their day, compared, rounded, and placed in the calendar.
#include <cerrno>
#include <cmath>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "foundation/objects/NSDate.h"
#include "foundation/time/NSCalendar.h"
#include "tests/kit/Dates.h"
#include "tests/kit/Values.h"
#include "tests/kit/Zones.h"

namespace ZQFoundation {
namespace {

using kit::infinity;
using kit::notANumber;

constexpr char newYork[] = "EST5EDT,M3.2.0,M11.1.0";

NSDate at(double seconds) { return NSDate::dateWithTimeIntervalSinceReferenceDate(seconds); }

NSTimeZone universal() { return NSTimeZone::timeZoneForSecondsFromGMT(0); }

NSDate dateOf(std::int64_t year, std::int64_t month, std::int64_t day, std::int64_t hour = 0,
              std::int64_t minute = 0, std::int64_t second = 0, const NSTimeZone& zone = nullptr) {
    return NSDate::dateWithYear_month_day_hour_minute_second_timeZone(year, month, day, hour, minute, second,
                                                                      zone);
}

NSDate moved(const NSDate& date, std::int64_t hour, std::int64_t minute, std::int64_t second) {
    return NSDate::dateWithDate_andModifiedHour_minute_second(date, hour, minute, second);
}

std::string shown(const NSDate& date) { return date ? date.description().utf8() : "nil"; }

TEST(NSDateExtensions, buildADateInTheGivenZoneOrTheProcesss) {
    const kit::TimeZone zone(newYork);
    EXPECT_EQ(shown(dateOf(2024, 3, 5, 14, 7, 9, universal())), "2024-03-05 14:07:09 +0000");
    EXPECT_EQ(shown(dateOf(2024, 3, 5, 14, 7, 9, NSTimeZone::timeZoneForSecondsFromGMT(20700))),
              "2024-03-05 08:22:09 +0000");
    EXPECT_EQ(shown(dateOf(2024, 3, 5, 14, 7, 9)), "2024-03-05 19:07:09 +0000");
    EXPECT_EQ(shown(dateOf(2024, 7, 5, 14, 7, 9)), "2024-07-05 18:07:09 +0000");
    const kit::TimeZone other("AAA-1");
    EXPECT_EQ(shown(dateOf(2024, 7, 5, 14, 7, 9)), "2024-07-05 13:07:09 +0000") << "the zone of this moment";
}

TEST(NSDateExtensions, carryFieldsOverWhenADateIsBuilt) {
    const NSTimeZone utc = universal();
    EXPECT_EQ(shown(dateOf(2021, 2, 29, 0, 0, 0, utc)), "2021-03-01 00:00:00 +0000");
    EXPECT_EQ(shown(dateOf(2020, 13, 1, 0, 0, 0, utc)), "2021-01-01 00:00:00 +0000");
    EXPECT_EQ(shown(dateOf(2024, 3, 0, 0, 0, 0, utc)), "2024-02-29 00:00:00 +0000");
    EXPECT_EQ(shown(dateOf(2024, 1, 1, 0, -1, 90061, utc)), "2024-01-02 01:00:01 +0000");
    EXPECT_EQ(shown(dateOf(0, 1, 1, 0, 0, 0, utc)), "0000-01-01 00:00:00 +0000");
    EXPECT_EQ(shown(dateOf(-1, 1, 1, 0, 0, 0, utc)), "-0001-01-01 00:00:00 +0000");
    EXPECT_EQ(shown(dateOf(200'000'000'000, -2'400'000'000'000, 1, 0, 0, 0, utc)),
              "-0001-12-01 00:00:00 +0000");
    for (const std::int64_t value : {INT64_MIN, INT64_MAX - 1, std::int64_t{-293'000'000'000}}) {
        EXPECT_FALSE(dateOf(value, 1, 1, 0, 0, 0, utc)) << value;
    }
    EXPECT_FALSE(dateOf(2024, 1, 1, INT64_MIN, 0, 0, utc));
}

TEST(NSDateExtensions, leaveOutAFieldThatIsUndefined) {
    constexpr std::int64_t undefined = NSDateComponentUndefined;
    const NSTimeZone utc = universal();
    EXPECT_EQ(shown(dateOf(undefined, 5, 6, 7, 8, 9, utc)), "0001-05-06 07:08:09 +0000");
    EXPECT_EQ(shown(dateOf(2024, undefined, undefined, undefined, undefined, undefined, utc)),
              "2024-01-01 00:00:00 +0000");
}

TEST(NSDateExtensions, moveADateToATimeOfItsDay) {
    const kit::TimeZone zone(newYork);
    // 03:00 UTC is still the day before in New York.
    const NSDate date = NSDate::dateWithTimeIntervalSince1970(
        dateOf(2024, 7, 5, 3, 0, 0, universal()).timeIntervalSince1970() + 0.75);
    EXPECT_EQ(shown(moved(date, 12, 34, 56)), "2024-07-04 16:34:56 +0000");
    EXPECT_EQ(moved(date, 0, 0, 0).timeIntervalSinceReferenceDate(),
              dateOf(2024, 7, 4).timeIntervalSinceReferenceDate())
        << "no fraction is left";
    EXPECT_EQ(shown(moved(date, 25, -1, 61)), "2024-07-05 05:00:01 +0000") << "carries";
    EXPECT_EQ(shown(moved(dateOf(2024, 3, 10, 12), 2, 30, 0)), "2024-03-10 07:30:00 +0000") << "skipped";
    EXPECT_EQ(shown(moved(dateOf(2024, 11, 3, 12), 1, 30, 0)), "2024-11-03 05:30:00 +0000") << "repeated";
    EXPECT_EQ(shown(moved(date, NSDateComponentUndefined, 5, 0)), "2024-07-04 04:05:00 +0000") << "left out";
}

TEST(NSDateExtensions, doNotCarryTheEraWhenADateIsMoved) {
    const kit::TimeZone zone("UTC0");
    EXPECT_EQ(shown(moved(dateOf(1, 6, 15), 1, 2, 3)), "0001-06-15 01:02:03 +0000");
    EXPECT_EQ(shown(moved(dateOf(0, 6, 15), 1, 2, 3)), "0001-06-15 01:02:03 +0000");
    EXPECT_EQ(shown(moved(dateOf(-43, 3, 15), 1, 2, 3)), "0044-03-15 01:02:03 +0000");
    // 29 February of a leap year of one era may not be there in the other.
    EXPECT_EQ(shown(moved(dateOf(0, 2, 29), 0, 0, 0)), "0001-03-01 00:00:00 +0000");
}

TEST(NSDateExtensions, moveNoDateThatTheCalendarDoesNotHave) {
    for (const NSDate& date :
         {NSDate(), at(1e300), at(-1e300), at(infinity), at(-infinity), at(notANumber)}) {
        EXPECT_FALSE(moved(date, 1, 2, 3));
    }
    EXPECT_FALSE(moved(at(0), INT64_MIN, 0, 0));
    EXPECT_FALSE(moved(at(0), 0, 0, INT64_MAX - 1));
}

TEST(NSDateExtensions, compareWithAndWithoutTolerance) {
    const struct {
        double receiver;
        double argument;
        bool isEarlier, isLater, isWithin, isAtLeastEarlier, isAtLeastLater;
    } rows[] = {
        {10, 10, false, false, true, true, false},
        {11, 10, false, true, true, true, true},
        {11.5, 10, false, true, false, false, true},
        {10, 10.5, true, false, true, true, false},
        {10, 11, true, false, true, true, false},
        {10, 11.5, true, false, false, true, false},
        {0.0, -0.0, false, false, true, true, false},
        {-infinity, infinity, true, false, false, true, false},
        {infinity, infinity, false, false, false, false, false}, // they are no time apart
        {1 + 0x1p-52, 0, false, true, false, false, true},       // to the finest fraction
        {1 - 0x1p-53, 0, false, true, true, true, false},
        {-1 - 0x1p-52, 0, true, false, false, true, false},
        {-0x1p-52, 0, true, false, true, true, false},
    };
    for (const auto& row : rows) {
        const NSDate receiver = at(row.receiver);
        const NSDate argument = at(row.argument);
        SCOPED_TRACE(std::to_string(row.receiver) + " and " + std::to_string(row.argument));
        EXPECT_EQ(receiver.isEarlierThan(argument), row.isEarlier);
        EXPECT_EQ(receiver.isLaterThan(argument), row.isLater);
        EXPECT_EQ(receiver.isWithinOneSecondFrom(argument), row.isWithin);
        EXPECT_EQ(receiver.isAtLeastOneSecondEarlierThan(argument), row.isAtLeastEarlier);
        EXPECT_EQ(receiver.isAtLeastOneSecondLaterThan(argument), row.isAtLeastLater);
    }
}

TEST(NSDateExtensions, areFalseWhereOneOfTheDatesIsNil) {
    const NSDate pairs[][2] = {{NSDate(), at(0)}, {at(0), NSDate()}, {NSDate(), NSDate()}};
    for (const auto& [receiver, argument] : pairs) {
        EXPECT_FALSE(receiver.isEarlierThan(argument));
        EXPECT_FALSE(receiver.isLaterThan(argument));
        EXPECT_FALSE(receiver.isWithinOneSecondFrom(argument));
        EXPECT_FALSE(receiver.isAtLeastOneSecondEarlierThan(argument));
        EXPECT_FALSE(receiver.isAtLeastOneSecondLaterThan(argument));
    }
    EXPECT_FALSE(at(notANumber).isWithinOneSecondFrom(at(0)));
    EXPECT_FALSE(at(notANumber).isAtLeastOneSecondEarlierThan(at(0)));
    EXPECT_FALSE(at(0).isAtLeastOneSecondLaterThan(at(notANumber)));
}

TEST(NSDateExtensions, countCalendarDaysInTheProcesssZone) {
    const kit::TimeZone zone(newYork);
    const NSDate evening = dateOf(2024, 7, 4, 23, 59);
    const NSDate morning = dateOf(2024, 7, 5, 0, 1);
    EXPECT_EQ(NSDate::calendarDaysBetween_and(evening, morning), 1);
    EXPECT_EQ(NSDate::calendarDaysBetween_and(morning, evening), -1);
    EXPECT_EQ(NSDate::calendarDaysBetween_and(morning, dateOf(2024, 7, 5, 23, 59, 59)), 0);
    EXPECT_EQ(NSDate::calendarDaysBetween_and(dateOf(2024, 3, 9, 23), dateOf(2024, 3, 11)), 2);
    EXPECT_EQ(NSDate::calendarDaysBetween_and(dateOf(2024, 11, 3), dateOf(2024, 11, 4)), 1);
    EXPECT_EQ(NSDate::calendarDaysBetween_and(dateOf(2023, 7, 4), dateOf(2024, 7, 4)), 366);
    const kit::TimeZone far("AAA-14");
    EXPECT_EQ(NSDate::calendarDaysBetween_and(evening, morning), 0) << "the same two instants elsewhere";
    for (const NSDate& date : {NSDate(), at(1e300), at(infinity), at(notANumber)}) {
        EXPECT_EQ(NSDate::calendarDaysBetween_and(date, evening), 0);
        EXPECT_EQ(NSDate::calendarDaysBetween_and(evening, date), 0);
    }
}

TEST(NSDateExtensions, roundToTheNearestSecond) {
    const double largest = 0x1p53;
    // The sum of a half and the largest number below it is rounded to 1 before it is rounded down.
    const struct {
        double seconds;
        double expected;
    } rows[] = {
        {0.5, 1},
        {-0.5, 0},
        {-0.51, -1},
        {-2.5, -2},
        {0.49999999999999994, 1},
        {largest, largest},
        {1e300, 1e300},
        {infinity, infinity},
        {-infinity, -infinity},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(at(row.seconds).roundedDate().timeIntervalSinceReferenceDate(), row.expected)
            << row.seconds;
    }
    EXPECT_TRUE(std::isnan(at(notANumber).roundedDate().timeIntervalSinceReferenceDate()));
    EXPECT_FALSE(NSDate().roundedDate());
}

TEST(NSDateExtensions, placeADateInTheCalendar) {
    const kit::TimeZone zone(newYork);
    const struct {
        std::int64_t year, month, day;
        std::int64_t week, weekYear, quarter;
    } rows[] = {
        {2014, 12, 29, 1, 2015, 4}, {2014, 12, 28, 52, 2014, 4}, {2016, 1, 3, 53, 2015, 1},
        {2016, 1, 4, 1, 2016, 1},   {2021, 1, 1, 53, 2020, 1},   {2024, 12, 31, 1, 2025, 4},
        {2024, 3, 31, 13, 2024, 1}, {2024, 4, 1, 14, 2024, 2},   {2024, 6, 30, 26, 2024, 2},
        {2024, 7, 1, 27, 2024, 3},  {2024, 9, 30, 40, 2024, 3},  {2024, 10, 1, 40, 2024, 4},
        {2005, 1, 1, 53, 2004, 1},  {1, 1, 1, 1, 1, 1},
    };
    const NSDate other = at(1e9);
    for (const auto& row : rows) {
        for (const NSDate& date :
             {dateOf(row.year, row.month, row.day), dateOf(row.year, row.month, row.day, 23, 59, 59)}) {
            EXPECT_EQ(date.calendarWeek(), row.week) << shown(date);
            EXPECT_EQ(date.yearForCalendarWeek(), row.weekYear) << shown(date);
            EXPECT_EQ(date.calendarMonth(), row.month) << shown(date);
            EXPECT_EQ(date.calendarQuarter(), row.quarter) << shown(date);
            EXPECT_EQ(date.calendarYear(), row.year) << shown(date);
            EXPECT_EQ(other.calendarWeekOf(date), row.week) << shown(date);
            EXPECT_EQ(other.yearForCalendarWeekOf(date), row.weekYear) << shown(date);
            EXPECT_EQ(other.calendarMonthOf(date), row.month) << shown(date);
            EXPECT_EQ(other.calendarYearOf(date), row.year) << shown(date);
        }
    }
}

TEST(NSDateExtensions, returnTheQuarterOfTheReceiverAndNotOfTheArgument) {
    const kit::TimeZone zone(newYork);
    const NSDate may = dateOf(2024, 5, 1);
    const NSDate november = dateOf(2024, 11, 1);
    EXPECT_EQ(may.calendarQuarterOf(november), 2);
    EXPECT_EQ(november.calendarQuarterOf(may), 4);
    EXPECT_EQ(may.calendarQuarterOf(nullptr), 2);
    for (int month = 1; month <= 12; ++month) {
        EXPECT_EQ(dateOf(2024, month, 17).calendarQuarter(), (month + 2) / 3) << month;
    }
    EXPECT_EQ(NSDate().calendarQuarterOf(may), 0);
}

TEST(NSDateExtensions, placeADateInTheProcesssZone) {
    const NSDate newYear = dateOf(2024, 1, 1, 2, 0, 0, universal());
    {
        const kit::TimeZone zone("UTC0");
        EXPECT_EQ(newYear.calendarYear(), 2024);
        EXPECT_EQ(newYear.calendarWeek(), 1);
    }
    const kit::TimeZone zone(newYork);
    EXPECT_EQ(newYear.calendarYear(), 2023);
    EXPECT_EQ(newYear.calendarMonth(), 12);
    EXPECT_EQ(newYear.calendarWeek(), 52);
    EXPECT_EQ(newYear.calendarQuarter(), 4);
}

TEST(NSDateExtensions, countYearsWithinTheirEraAndWeeksThroughZero) {
    const kit::TimeZone zone("UTC0");
    EXPECT_EQ(dateOf(0, 6, 1).calendarYear(), 1);
    EXPECT_EQ(dateOf(-43, 3, 15).calendarYear(), 44);
    EXPECT_EQ(dateOf(0, 6, 1).yearForCalendarWeek(), 0);
    EXPECT_EQ(dateOf(-43, 3, 15).yearForCalendarWeek(), -43);
}

TEST(NSDateExtensions, repeatTheirWeeksEvery400Years) {
    const kit::TimeZone zone("UTC0");
    constexpr double secondsOf400Years = 146097.0 * 86400;
    for (const std::int64_t cycles : {-700'000'000, -30, -5, 20, 700'000'000}) {
        const NSDate date = at(static_cast<double>(cycles) * secondsOf400Years); // 1 January, as in 2001
        const std::int64_t year = 2001 + 400 * cycles;
        EXPECT_EQ(date.calendarWeek(), 1) << cycles;
        EXPECT_EQ(date.yearForCalendarWeek(), year) << cycles;
        EXPECT_EQ(date.calendarMonth(), 1) << cycles;
        EXPECT_EQ(date.calendarYear(), year > 0 ? year : 1 - year) << cycles;
    }
}

TEST(NSDateExtensions, are0ForNilAndForADateBeyondTheCalendar) {
    const NSDate good = at(0);
    for (const NSDate& date :
         {NSDate(), at(1e300), at(-1e300), at(infinity), at(-infinity), at(notANumber)}) {
        EXPECT_EQ(date.calendarWeek(), 0);
        EXPECT_EQ(date.yearForCalendarWeek(), 0);
        EXPECT_EQ(date.calendarMonth(), 0);
        EXPECT_EQ(date.calendarQuarter(), 0);
        EXPECT_EQ(date.calendarYear(), 0);
        EXPECT_EQ(good.calendarWeekOf(date), 0);
        EXPECT_EQ(good.yearForCalendarWeekOf(date), 0);
        EXPECT_EQ(good.calendarMonthOf(date), 0);
        EXPECT_EQ(good.calendarYearOf(date), 0);
    }
    EXPECT_EQ(NSDate().calendarWeekOf(good), 0);
    EXPECT_EQ(NSDate().calendarYearOf(good), 0);
}

TEST(NSDateExtensions, leaveErrnoAsItWas) {
    const kit::TimeZone zone("No/Such/Zone");
    errno = 4711;
    const std::int64_t week = at(0).calendarWeek();
    const NSDate date = dateOf(2024, 1, 1);
    EXPECT_EQ(errno, 4711);
    EXPECT_EQ(week, 1);
    EXPECT_EQ(shown(date), "2024-01-01 00:00:00 +0000") << "an unknown zone is UTC";
}

} // namespace
} // namespace ZQFoundation
