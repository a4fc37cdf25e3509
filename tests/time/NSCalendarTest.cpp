// SPDX-License-Identifier: MIT
#include "foundation/time/NSCalendar.h"

#include <cmath>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "foundation/objects/NSString.h"
#include "tests/time/ZoneChanges.h"

namespace ZQFoundation {
namespace {

constexpr NSInteger unset = NSDateComponentUndefined;
constexpr unsigned allUnits =
    NSCalendarUnitEra | NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay | NSCalendarUnitHour |
    NSCalendarUnitMinute | NSCalendarUnitSecond | NSCalendarUnitNanosecond | NSCalendarUnitWeekday |
    NSCalendarUnitQuarter | NSCalendarUnitWeekOfYear | NSCalendarUnitYearForWeekOfYear;
constexpr unsigned plainUnits = NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay |
                                NSCalendarUnitHour | NSCalendarUnitMinute | NSCalendarUnitSecond;

NSCalendar gregorian() { return NSCalendar::calendarWithIdentifier("gregorian"); }
NSCalendar iso() { return NSCalendar::calendarWithIdentifier(NSCalendarIdentifierISO8601); }

NSDate since1970(double seconds) { return NSDate::dateWithTimeIntervalSince1970(seconds); }

NSDate dateOf(const NSCalendar& calendar, NSInteger year, NSInteger month, NSInteger day, NSInteger hour = 0,
              NSInteger minute = 0, NSInteger second = 0) {
    NSDateComponents fields;
    fields.year = year;
    fields.month = month;
    fields.day = day;
    fields.hour = hour;
    fields.minute = minute;
    fields.second = second;
    return calendar.dateFromComponents(fields);
}

std::string shown(const NSDate& date) { return date ? date.description().utf8() : "nil"; }

std::string number(NSInteger value) { return value == unset ? "-" : std::to_string(value); }

/// "2024-3-5 14:7:9", with "-" for what is not set.
std::string shown(const NSDateComponents& fields) {
    return number(fields.year) + "-" + number(fields.month) + "-" + number(fields.day) + " " +
           number(fields.hour) + ":" + number(fields.minute) + ":" + number(fields.second);
}

/// A calendar in a zone that a rule describes, so that it is the same on every machine.
struct NewYork {
    scene::Variable variable{"TZ", "EST5EDT,M3.2.0,M11.1.0"};
    NSCalendar calendar = gregorian();
};
struct Universal {
    scene::Variable variable{"TZ", "UTC0"};
    NSCalendar calendar = gregorian();
};

bool useZone(NSCalendar& calendar, const char* name) {
    const NSTimeZone zone = NSTimeZone::timeZoneWithName(name);
    calendar.setTimeZone(zone);
    return static_cast<bool>(zone);
}

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
        const scene::Variable variable("TZ", "AAA-3");
        EXPECT_EQ(calendar.timeZone().name(), "AAA-3");
        EXPECT_EQ(shown(dateOf(calendar, 2024, 1, 1)), "2023-12-31 21:00:00 +0000");
    }
    const scene::Variable variable("TZ", "BBB3");
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
        {2020, 13, 1, 0, 0, 0, "2021-01-01 00:00:00 +0000"},
        {2020, 0, 1, 0, 0, 0, "2019-12-01 00:00:00 +0000"},
        {2020, -11, 1, 0, 0, 0, "2019-01-01 00:00:00 +0000"},
        {2020, 25, 31, 0, 0, 0, "2022-01-31 00:00:00 +0000"},
        {2024, 3, 0, 0, 0, 0, "2024-02-29 00:00:00 +0000"},
        {2021, 2, 29, 0, 0, 0, "2021-03-01 00:00:00 +0000"},
        {2021, 14, 29, 0, 0, 0, "2022-03-01 00:00:00 +0000"},
        {2024, 1, 366, 24, 60, 60, "2025-01-01 01:01:00 +0000"},
        {2024, 1, 1, 0, 0, -1, "2023-12-31 23:59:59 +0000"},
        {2024, 1, 1, -1, -1, -1, "2023-12-31 22:58:59 +0000"},
        {1900, 2, 29, 0, 0, 0, "1900-03-01 00:00:00 +0000"},
        {2000, 2, 29, 0, 0, 0, "2000-02-29 00:00:00 +0000"},
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
        {2024, 3, 10, 1, 59, "2024-03-10 06:59:00 +0000"},
        {2024, 3, 10, 2, 0, "2024-03-10 07:00:00 +0000"},
        {2024, 3, 10, 2, 30, "2024-03-10 07:30:00 +0000"},
        {2024, 3, 10, 3, 0, "2024-03-10 07:00:00 +0000"},
        {2024, 3, 9, 26, 30, "2024-03-10 07:30:00 +0000"},
        {2024, 11, 3, 0, 59, "2024-11-03 04:59:00 +0000"},
        {2024, 11, 3, 1, 30, "2024-11-03 05:30:00 +0000"},
        {2024, 11, 2, 25, 30, "2024-11-03 05:30:00 +0000"},
        {2024, 11, 3, 2, 0, "2024-11-03 07:00:00 +0000"},
        {2050, 7, 1, 12, 0, "2050-07-01 16:00:00 +0000"},
        {9999, 12, 31, 12, 0, "9999-12-31 17:00:00 +0000"},
        {200000, 7, 1, 12, 0, "200000-07-01 16:00:00 +0000"},
        {-5000, 7, 1, 12, 0, "-5000-07-01 16:00:00 +0000"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(shown(dateOf(in.calendar, row.year, row.month, row.day, row.hour, row.minute)),
                  row.expected);
    }
}

TEST(NSCalendar, knowsWhatZonesHaveDone) {
    const struct {
        const char* zone;
        NSInteger year, month, day, hour, minute;
        const char* expected;
    } rows[] = {
        {"America/Sao_Paulo", 2018, 11, 4, 0, 0, "2018-11-04 03:00:00 +0000"},
        {"Pacific/Apia", 2011, 12, 30, 10, 0, "2011-12-30 20:00:00 +0000"}, // shown as 31 December, 10:00
        {"Pacific/Apia", 2011, 12, 31, 10, 0, "2011-12-30 20:00:00 +0000"},
        {"Pacific/Apia", 2011, 12, 29, 10, 0, "2011-12-29 20:00:00 +0000"},
        {"Australia/Lord_Howe", 2024, 10, 6, 2, 15, "2024-10-05 15:45:00 +0000"},
        {"Australia/Lord_Howe", 2024, 4, 7, 1, 45, "2024-04-06 14:45:00 +0000"},
        {"Europe/Dublin", 2024, 3, 31, 1, 30, "2024-03-31 01:30:00 +0000"},
        {"Europe/Dublin", 2024, 10, 27, 1, 30, "2024-10-27 00:30:00 +0000"},
        {"Asia/Kathmandu", 1986, 1, 1, 0, 7, "1985-12-31 18:37:00 +0000"},
        {"Asia/Kathmandu", 2024, 1, 1, 0, 0, "2023-12-31 18:15:00 +0000"},
        {"Europe/Berlin", 1800, 1, 1, 0, 0, "1799-12-31 23:06:32 +0000"},
        {"Europe/Berlin", 2050, 7, 1, 0, 0, "2050-06-30 22:00:00 +0000"},
        {"Africa/Casablanca", 2024, 3, 10, 2, 30, "2024-03-10 01:30:00 +0000"},
    };
    int compared = 0;
    for (const auto& row : rows) {
        NSCalendar calendar = gregorian();
        if (useZone(calendar, row.zone)) {
            ++compared;
            EXPECT_EQ(shown(dateOf(calendar, row.year, row.month, row.day, row.hour, row.minute)),
                      row.expected)
                << row.zone;
        }
    }
    if (compared == 0) {
        GTEST_SKIP() << "there are no zone files on this machine";
    }
}

TEST(NSCalendar, agreesWithTheCLibrary) {
    std::mt19937_64 random(5);
    std::uniform_int_distribution<std::int64_t> between(0, 2145916800);
    int compared = 0;
    for (const char* name : testing::remarkableZones) {
        if (!testing::hasZoneFile(name)) {
            continue;
        }
        const zones::Current current(name);
        const NSCalendar calendar = gregorian();
        for (int i = 0; i < 1000; ++i) {
            const std::int64_t seconds = between(random);
            struct tm local = zones::localTime(seconds);
            const NSDateComponents fields =
                calendar.components_fromDate(allUnits, since1970(static_cast<double>(seconds)));
            ASSERT_EQ(fields.year, local.tm_year + 1900) << name << seconds;
            ASSERT_EQ(fields.month, local.tm_mon + 1) << name << seconds;
            ASSERT_EQ(fields.day, local.tm_mday) << name << seconds;
            ASSERT_EQ(fields.hour, local.tm_hour) << name << seconds;
            ASSERT_EQ(fields.minute, local.tm_min) << name << seconds;
            ASSERT_EQ(fields.second, local.tm_sec) << name << seconds;
            ASSERT_EQ(fields.weekday, local.tm_wday + 1) << name << seconds;
            const double back = calendar.dateFromComponents(fields).timeIntervalSince1970();
            // The C library is told which of two it was; here it is the first.
            const bool again = zones::offsetAt(static_cast<std::int64_t>(back)) != local.tm_gmtoff;
            ASSERT_TRUE(again ? back < static_cast<double>(seconds)
                              : back == static_cast<double>(mktime(&local)))
                << name << seconds;
            compared += again ? 0 : 1;
        }
    }
    if (compared == 0) {
        GTEST_SKIP() << "there are no zone files on this machine";
    }
    EXPECT_GT(compared, 900);
}

TEST(NSCalendar, agreesWithTheCLibraryWhereAnOffsetIsTheOnlyOne) {
    // Fields at random, wall times that are skipped or repeated left out.
    std::mt19937_64 random(6);
    std::uniform_int_distribution<int> fieldOf(0, 1 << 20);
    const zones::Current current("EST5EDT,M3.2.0,M11.1.0");
    const NSCalendar calendar = gregorian();
    int compared = 0;
    for (int i = 0; i < 20000; ++i) {
        struct tm fields = {};
        // Before 1970 the C library does not apply such a rule.
        fields.tm_year = 73 + fieldOf(random) % 65;
        fields.tm_mon = fieldOf(random) % 40 - 14;
        fields.tm_mday = fieldOf(random) % 400 - 100;
        fields.tm_hour = fieldOf(random) % 100 - 40;
        fields.tm_min = fieldOf(random) % 200 - 60;
        fields.tm_isdst = -1;
        struct tm given = fields;
        const std::int64_t expected = mktime(&fields);
        if (zones::offsetAt(expected - 7200) != zones::offsetAt(expected + 7200)) {
            continue;
        }
        const NSDate date = dateOf(calendar, given.tm_year + 1900, given.tm_mon + 1, given.tm_mday,
                                   given.tm_hour, given.tm_min);
        ASSERT_EQ(date.timeIntervalSince1970(), static_cast<double>(expected)) << i;
        ++compared;
    }
    EXPECT_GT(compared, 19000);
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

/// Walks from day to day, counting dates and weeks as people do.
struct SlowCalendar {
    std::int64_t days = 11323; ///< 2001-01-01, a Monday
    std::int64_t year = 2001;
    int month = 1;
    int day = 1;
    int weekday = 0; ///< from Monday

    static int lengthOf(int month, std::int64_t year) {
        constexpr int lengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
        const bool leap = year % 400 == 0 || (year % 4 == 0 && year % 100 != 0);
        return lengths[month - 1] + (leap && month == 2 ? 1 : 0);
    }

    void forward() {
        ++days;
        weekday = (weekday + 1) % 7;
        if (++day > lengthOf(month, year)) {
            day = 1;
            if (++month > 12) {
                month = 1;
                ++year;
            }
        }
    }

    void back() {
        --days;
        weekday = (weekday + 6) % 7;
        if (--day == 0) {
            if (--month == 0) {
                month = 12;
                --year;
            }
            day = lengthOf(month, year);
        }
    }

    int dayOfYear() const {
        int sum = day;
        for (int m = 1; m < month; ++m) {
            sum += lengthOf(m, year);
        }
        return sum;
    }
};

/// The week's first days of the year decide: those of a week that begins `weekday` days ago.
void expectWeek(const NSCalendar& calendar, SlowCalendar day, int daysBack, int decisiveDay) {
    const NSDate date = since1970(static_cast<double>(day.days) * 86400 + 5);
    for (int i = daysBack; i > decisiveDay; --i) {
        day.back();
    }
    for (int i = daysBack; i < decisiveDay; ++i) {
        day.forward();
    }
    ASSERT_EQ(calendar.component_fromDate(NSCalendarUnitYearForWeekOfYear, date), day.year) << day.days;
    ASSERT_EQ(calendar.component_fromDate(NSCalendarUnitWeekOfYear, date), (day.dayOfYear() + 6) / 7)
        << day.days;
}

TEST(NSCalendar, agreesWithAWalkFromDayToDay) {
    const Universal in;
    for (const bool isForward : {true, false}) {
        SlowCalendar day;
        for (int i = 0; i < 160000; ++i) {
            const NSDateComponents fields = iso().components_fromDate(
                NSCalendarUnitMonth | NSCalendarUnitDay | NSCalendarUnitWeekday | NSCalendarUnitQuarter,
                since1970(static_cast<double>(day.days) * 86400 + 86399));
            ASSERT_EQ(fields.month, day.month) << day.days;
            ASSERT_EQ(fields.day, day.day) << day.days;
            ASSERT_EQ(fields.weekday, (day.weekday + 1) % 7 + 1) << day.days;
            ASSERT_EQ(fields.quarter, (day.month - 1) / 3 + 1) << day.days;
            expectWeek(iso(), day, day.weekday, 3);
            expectWeek(in.calendar, day, (day.weekday + 1) % 7, 6);
            isForward ? day.forward() : day.back();
        }
    }
}

TEST(NSCalendar, numbersWeeksBeforeTheYear1ThroughZero) {
    const Universal in;
    // Saturday, 1 January 0000, and Monday, 3 January 0000.
    EXPECT_EQ(iso().component_fromDate(NSCalendarUnitYearForWeekOfYear, dateOf(in.calendar, 0, 1, 1)), -1);
    EXPECT_EQ(iso().component_fromDate(NSCalendarUnitWeekOfYear, dateOf(in.calendar, 0, 1, 1)), 52);
    EXPECT_EQ(iso().component_fromDate(NSCalendarUnitYearForWeekOfYear, dateOf(in.calendar, 0, 1, 3)), 0);
    EXPECT_EQ(iso().component_fromDate(NSCalendarUnitWeekOfYear, dateOf(in.calendar, 0, 1, 3)), 1);
}

struct Range {
    NSDate start;
    NSTimeInterval length = -1;
};

Range rangeOf(const NSCalendar& calendar, NSCalendarUnit unit, const NSDate& date) {
    Range range;
    EXPECT_TRUE(calendar.rangeOfUnit_startDate_interval_forDate(unit, &range.start, &range.length, date));
    return range;
}

TEST(NSCalendar, tellsWhereUnitsBeginAndHowLongTheyLast) {
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
}

TEST(NSCalendar, hasNoRangeForOtherUnitsAndWritesNothingThen) {
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

TEST(NSCalendar, beginsADayWithItsFirstInstant) {
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

TEST(NSCalendar, endsAnHourWhereTheClocksLeaveIt) {
    // Half an hour back at 02:00 on the first Sunday of April, forward at 02:00 on the first one of October.
    const scene::Variable variable("TZ", "STD-10:30DST-11,M10.1.0,M4.1.0");
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

/// Clocks that are changed a minute after midnight.
constexpr char minuteAfterMidnight[] = "STD3:30DST,M3.2.0/0:01,M11.1.0/0:01";

TEST(NSCalendar, endsAnHourThatTheClocksLeaveAfterAMinute) {
    const scene::Variable variable("TZ", minuteAfterMidnight);
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

TEST(NSCalendar, takesNoStepBackwardsWhenTheDateGoesBackAndTimeDoesNot) {
    const scene::Variable variable("TZ", minuteAfterMidnight);
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

TEST(NSCalendar, takesAChangeOfNamesForNoChangeOfTheClocks) {
    testing::ZoneData data;
    data.changes = {5000, 5400};
    data.indexes = {1, 0};
    data.clocks = {{0, false, 0}, {0, true, 4}};
    data.names = std::string("ONE\0TWO\0", 8);
    const scene::Folder folder;
    const scene::Variable variable("TZ", folder.write("names", data.bytes()).c_str());
    for (const double seconds : {4000.0, 5200.0, 6000.0}) {
        const Range range = rangeOf(gregorian(), NSCalendarUnitHour, since1970(seconds));
        EXPECT_EQ(range.start.timeIntervalSince1970(), 3600) << seconds;
        EXPECT_EQ(range.length, 3600) << seconds;
    }
}

TEST(NSCalendar, rangesFollowEachOtherWithoutGaps) {
    const NSCalendarUnit units[] = {NSCalendarUnitYear,       NSCalendarUnitQuarter, NSCalendarUnitMonth,
                                    NSCalendarUnitWeekOfYear, NSCalendarUnitDay,     NSCalendarUnitHour,
                                    NSCalendarUnitMinute};
    for (const char* zone :
         {"EST5EDT,M3.2.0,M11.1.0", "STD-10:30DST-11,M10.1.0,M4.1.0", "STD3DST,M10.3.0/0,M2.3.0/0"}) {
        const scene::Variable variable("TZ", zone);
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

NSDateComponents between(const NSCalendar& calendar, unsigned units, const NSDate& from, const NSDate& to) {
    return calendar.components_fromDate_toDate(units, from, to);
}

TEST(NSCalendar, countsUnitsFromOneDateToAnother) {
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

TEST(NSCalendar, addsMonthsByTheLastDayOfShorterOnes) {
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

TEST(NSCalendar, countsDaysAsTheCalendarDoesFromTheirStarts) {
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

TEST(NSCalendar, countsHoursAsTheyPass) {
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

TEST(NSCalendar, sumsUpWhatItCounts) {
    // Taking the counted units from the first date leads to the second: days on the calendar, then hours.
    std::mt19937_64 random(8);
    std::uniform_int_distribution<std::int64_t> instant(-4000000000, 4000000000);
    for (const char* zone : {"EST5EDT,M3.2.0,M11.1.0", "STD3DST,M10.3.0/0,M2.3.0/0", "UTC0"}) {
        const scene::Variable variable("TZ", zone);
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

TEST(NSCalendar, survivesTheEndsOfItself) {
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
