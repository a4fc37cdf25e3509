// SPDX-License-Identifier: MIT
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/time/NSCalendar.h"
#include "foundation/time/NSTimeZone.h"
#include "tests/time/CivilTesting.h"
#include "tests/time/ZoneChanges.h"

using namespace ZQFoundation;
using civiltest::dateAt;
using civiltest::Fields;
using civiltest::later;
using civiltest::shown;
using civiltest::unixSeconds;
using civiltest::utc;
using ZQFoundation::testing::ScopedTimeZone;

namespace {

constexpr NSInteger none = NSDateComponentUndefined;

NSCalendar calendarIn(const char* zone) {
    NSCalendar calendar = NSCalendar::calendarWithIdentifier(NSCalendarIdentifierGregorian);
    const NSTimeZone named = NSTimeZone::timeZoneWithName(zone);
    EXPECT_TRUE(named) << zone;
    calendar.setTimeZone(named);
    return calendar;
}

NSDateComponents componentsOf(const Fields& fields) {
    NSDateComponents components;
    components.year = fields.year;
    components.month = fields.month;
    components.day = fields.day;
    components.hour = fields.hour;
    components.minute = fields.minute;
    components.second = fields.second;
    return components;
}

NSDate instantOf(const Fields& wall, const char* zone) {
    return calendarIn(zone).dateFromComponents(componentsOf(wall));
}

/// The wall time in a zone, with the era when it is the one before the first year.
std::string wallOf(const NSDate& date, const char* zone) {
    constexpr unsigned units = NSCalendarUnitEra | NSCalendarUnitYear | NSCalendarUnitMonth |
                               NSCalendarUnitDay | NSCalendarUnitHour | NSCalendarUnitMinute |
                               NSCalendarUnitSecond;
    const NSDateComponents found = calendarIn(zone).components_fromDate(units, date);
    return shown(Fields{found.year, found.month, found.day, found.hour, found.minute, found.second}) +
           (found.era == 1 ? "" : " before");
}

struct Row {
    Fields wall;
    const char* zone;
    const char* expected; ///< the instant in UTC
    const char* back;     ///< the wall time of that instant; null when it is the one asked for
};

void expectInstants(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        const NSDate date = instantOf(row.wall, row.zone);
        EXPECT_EQ(shown(date), row.expected) << shown(row.wall) << " " << row.zone;
        EXPECT_EQ(wallOf(date, row.zone), row.back != nullptr ? row.back : shown(row.wall))
            << shown(row.wall) << " " << row.zone;
    }
}

struct Change {
    std::int64_t at;
    std::int64_t before; ///< seconds ahead of UTC
    std::int64_t after;
};

/// By the C library, in the current zone: the changes of the offset, but none that has another within two
/// days.
std::vector<Change> lonelyChanges(std::int64_t first, std::int64_t last) {
    constexpr std::int64_t step = 6 * 3600;
    std::vector<Change> all;
    for (std::int64_t at = first; at < last; at += step) {
        const std::int64_t before = zones::offsetAt(at);
        if (before == zones::offsetAt(at + step)) {
            continue;
        }
        std::int64_t low = at;
        std::int64_t high = at + step;
        while (high - low > 1) {
            const std::int64_t middle = low + (high - low) / 2;
            (zones::offsetAt(middle) == before ? low : high) = middle;
        }
        all.push_back({high, before, zones::offsetAt(high)});
    }
    std::vector<Change> lonely;
    for (std::size_t i = 0; i < all.size(); ++i) {
        const bool isNearLast = i > 0 && all[i].at - all[i - 1].at < 2 * 86400;
        const bool isNearNext = i + 1 < all.size() && all[i + 1].at - all[i].at < 2 * 86400;
        if (!isNearLast && !isNearNext) {
            lonely.push_back(all[i]);
        }
    }
    return lonely;
}

Fields fieldsOf(std::int64_t wallSeconds) {
    const time_t time = wallSeconds;
    struct tm broken = {};
    gmtime_r(&time, &broken);
    return {broken.tm_year + 1900, broken.tm_mon + 1, broken.tm_mday,
            broken.tm_hour,        broken.tm_min,     broken.tm_sec};
}

/// The wall times around a change of the clocks, and the instants that they name.
void expectWallTimesAround(const NSCalendar& calendar, const Change& change, const std::string& zone) {
    const std::int64_t wallBefore = change.at + change.before;
    const std::int64_t wallAfter = change.at + change.after;
    const std::int64_t low = std::min(wallBefore, wallAfter);
    const std::int64_t high = std::max(wallBefore, wallAfter);
    // Skipped ones take the offset from before, doubled ones are the first: the same from `low` to `high`.
    for (const std::int64_t wall : {low - 1, low, low + 1, low + (high - low) / 2, high - 1}) {
        EXPECT_EQ(shown(calendar.dateFromComponents(componentsOf(fieldsOf(wall)))),
                  shown(dateAt(wall - change.before)))
            << zone << " " << shown(fieldsOf(wall));
    }
    for (const std::int64_t wall : {high, high + 1}) {
        EXPECT_EQ(shown(calendar.dateFromComponents(componentsOf(fieldsOf(wall)))),
                  shown(dateAt(wall - change.after)))
            << zone << " " << shown(fieldsOf(wall));
    }
}

struct DayRow {
    NSDate date;
    const char* zone;
    const char* start; ///< in UTC
    double hours;
};

void expectDayStarts(const std::vector<DayRow>& rows) {
    for (const DayRow& row : rows) {
        const NSCalendar calendar = calendarIn(row.zone);
        NSDate start;
        NSTimeInterval interval = 0;
        EXPECT_TRUE(
            calendar.rangeOfUnit_startDate_interval_forDate(NSCalendarUnitDay, &start, &interval, row.date));
        EXPECT_EQ(shown(start), row.start) << shown(row.date) << " " << row.zone;
        EXPECT_EQ(interval, row.hours * 3600) << shown(row.date) << " " << row.zone;
        EXPECT_EQ(calendar.startOfDayForDate(row.date), start) << shown(row.date) << " " << row.zone;
    }
}

NSInteger wholeDays(const char* zone, const NSDate& from, const NSDate& to) {
    return calendarIn(zone).components_fromDate_toDate(NSCalendarUnitDay, from, to).day;
}

} // namespace

TEST(WallTimesFromFacts, thatDoNotExistUseTheOffsetFromBeforeTheChange) {
    expectInstants({
        {{2024, 3, 10, 2, 30, 0}, "America/New_York", "2024-03-10 07:30:00", "2024-3-10 3:30:0"},
        {{2024, 3, 10, 2, 0, 0}, "America/New_York", "2024-03-10 07:00:00", "2024-3-10 3:0:0"},
        {{2024, 3, 10, 2, 59, 59}, "America/New_York", "2024-03-10 07:59:59", "2024-3-10 3:59:59"},
        {{2018, 11, 4, 0, 0, 0}, "America/Sao_Paulo", "2018-11-04 03:00:00", "2018-11-4 1:0:0"},
        {{2018, 11, 4, 0, 59, 59}, "America/Sao_Paulo", "2018-11-04 03:59:59", "2018-11-4 1:59:59"},
        {{2024, 3, 31, 2, 30, 0}, "Europe/Berlin", "2024-03-31 01:30:00", "2024-3-31 3:30:0"},
        // Half an hour is skipped there.
        {{2024, 10, 6, 2, 15, 0}, "Australia/Lord_Howe", "2024-10-05 15:45:00", "2024-10-6 2:45:0"},
    });
}

TEST(WallTimesFromFacts, thatOccurTwiceAreTheFirst) {
    expectInstants({
        {{2024, 11, 3, 1, 30, 0}, "America/New_York", "2024-11-03 05:30:00", nullptr},
        {{2024, 11, 3, 1, 0, 0}, "America/New_York", "2024-11-03 05:00:00", nullptr},
        {{2024, 11, 3, 1, 59, 59}, "America/New_York", "2024-11-03 05:59:59", nullptr},
        {{2024, 11, 3, 2, 0, 0}, "America/New_York", "2024-11-03 07:00:00", nullptr},
        {{2018, 2, 17, 23, 30, 0}, "America/Sao_Paulo", "2018-02-18 01:30:00", nullptr},
        {{2024, 10, 27, 2, 30, 0}, "Europe/Berlin", "2024-10-27 00:30:00", nullptr},
        {{2024, 4, 7, 1, 45, 0}, "Australia/Lord_Howe", "2024-04-06 14:45:00", nullptr},
    });
}

TEST(WallTimesFromFacts, areTheSameAfterCarrying) {
    expectInstants({
        {{2024, 3, 9, 26, 30, 0}, "America/New_York", "2024-03-10 07:30:00", "2024-3-10 3:30:0"},
        {{2024, 2, 39, 2, 30, 0}, "America/New_York", "2024-03-10 07:30:00", "2024-3-10 3:30:0"},
        {{2023, 15, 10, 0, 150, 0}, "America/New_York", "2024-03-10 07:30:00", "2024-3-10 3:30:0"},
        {{2024, 3, 11, -21, -30, 0}, "America/New_York", "2024-03-10 07:30:00", "2024-3-10 3:30:0"},
        {{2024, 11, 2, 25, 30, 0}, "America/New_York", "2024-11-03 05:30:00", "2024-11-3 1:30:0"},
        {{2024, 11, 4, 0, 0, -81000}, "America/New_York", "2024-11-03 05:30:00", "2024-11-3 1:30:0"},
        {{2018, 11, 3, 24, 0, 0}, "America/Sao_Paulo", "2018-11-04 03:00:00", "2018-11-4 1:0:0"},
        // Across the change the hours are those of the clock, not those that pass.
        {{2024, 3, 9, 36, 0, 0}, "America/New_York", "2024-03-10 16:00:00", "2024-3-10 12:0:0"},
    });
}

TEST(WallTimesFromFacts, areAheadByOddOffsets) {
    expectInstants({
        {{2024, 3, 5, 0, 0, 0}, "Asia/Kathmandu", "2024-03-04 18:15:00", nullptr},
        {{1985, 6, 1, 0, 0, 0}, "Asia/Kathmandu", "1985-05-31 18:30:00", nullptr},
        // The quarter of an hour that was skipped on New Year's Day 1986.
        {{1986, 1, 1, 0, 5, 0}, "Asia/Kathmandu", "1985-12-31 18:35:00", "1986-1-1 0:20:0"},
        {{1986, 1, 1, 0, 15, 0}, "Asia/Kathmandu", "1985-12-31 18:30:00", nullptr},
        {{1985, 12, 31, 23, 59, 59}, "Asia/Kathmandu", "1985-12-31 18:29:59", nullptr},
        {{2024, 3, 5, 0, 0, 0}, "Pacific/Chatham", "2024-03-04 10:15:00", nullptr},
    });
}

TEST(WallTimesFromFacts, ofLocalMeanTimeCountItsSeconds) {
    expectInstants({
        {{1900, 1, 1, 0, 0, 0}, "Asia/Kathmandu", "1899-12-31 18:18:44", nullptr},
        {{1880, 1, 1, 12, 0, 0}, "Europe/Berlin", "1880-01-01 11:06:32", nullptr},
        {{1880, 1, 1, 12, 0, 0}, "America/New_York", "1880-01-01 16:56:02", nullptr},
        // Clocks went forward by 6 minutes and 32 seconds at that midnight.
        {{1893, 3, 31, 23, 59, 59}, "Europe/Berlin", "1893-03-31 23:06:31", nullptr},
        {{1893, 4, 1, 0, 3, 0}, "Europe/Berlin", "1893-03-31 23:09:32", "1893-4-1 0:9:32"},
        {{1893, 4, 1, 0, 6, 32}, "Europe/Berlin", "1893-03-31 23:06:32", nullptr},
    });
}

TEST(WallTimesFromFacts, beforeTheFirstChangeUseTheFirstOffset) {
    expectInstants({
        {{1583, 1, 1, 0, 0, 0}, "Europe/Berlin", "1582-12-31 23:06:32", nullptr},
        {{1, 1, 1, 1, 0, 0}, "Europe/Berlin", "0001-01-01 00:06:32", nullptr},
        {{-9999, 7, 1, 0, 0, 0}, "America/New_York", "-9999-07-01 04:56:02", "10000-7-1 0:0:0 before"},
    });
}

TEST(WallTimesFromFacts, afterTheLastChangeFollowTheRuleWithoutEnd) {
    expectInstants({
        {{2050, 7, 1, 12, 0, 0}, "America/New_York", "2050-07-01 16:00:00", nullptr},
        {{2050, 1, 1, 12, 0, 0}, "America/New_York", "2050-01-01 17:00:00", nullptr},
        // The second Sunday of March and the first of November.
        {{2050, 3, 13, 2, 30, 0}, "America/New_York", "2050-03-13 07:30:00", "2050-3-13 3:30:0"},
        {{2050, 11, 6, 1, 30, 0}, "America/New_York", "2050-11-06 05:30:00", nullptr},
        {{2500, 7, 1, 12, 0, 0}, "Europe/Berlin", "2500-07-01 10:00:00", nullptr},
        {{9999, 7, 1, 12, 0, 0}, "Europe/Berlin", "9999-07-01 10:00:00", nullptr},
        {{9999, 12, 31, 23, 59, 59}, "America/New_York", "10000-01-01 04:59:59", nullptr},
        {{402024, 7, 1, 12, 0, 0}, "America/New_York", "402024-07-01 16:00:00", nullptr},
        {{402024, 3, 10, 2, 30, 0}, "America/New_York", "402024-03-10 07:30:00", "402024-3-10 3:30:0"},
    });
}

TEST(WallTimesFromFacts, onADayThatTheZoneSkippedUseTheOffsetFromBefore) {
    expectInstants({
        {{2011, 12, 29, 23, 59, 59}, "Pacific/Apia", "2011-12-30 09:59:59", nullptr},
        {{2011, 12, 30, 0, 0, 0}, "Pacific/Apia", "2011-12-30 10:00:00", "2011-12-31 0:0:0"},
        {{2011, 12, 30, 12, 0, 0}, "Pacific/Apia", "2011-12-30 22:00:00", "2011-12-31 12:0:0"},
        {{2011, 12, 30, 23, 59, 59}, "Pacific/Apia", "2011-12-31 09:59:59", "2011-12-31 23:59:59"},
        {{2011, 12, 31, 0, 0, 0}, "Pacific/Apia", "2011-12-30 10:00:00", nullptr},
        {{2011, 12, 29, 36, 0, 0}, "Pacific/Apia", "2011-12-30 22:00:00", "2011-12-31 12:0:0"},
    });
}

TEST(WallTimesFromFacts, aroundAllChangesOfAPlaceNameTheRightInstants) {
    std::size_t count = 0;
    for (const char* name : {"America/New_York", "Europe/Berlin", "America/Sao_Paulo", "Asia/Kathmandu",
                             "Australia/Lord_Howe", "Pacific/Apia", "Africa/Monrovia", "Europe/Dublin",
                             "Asia/Gaza", "Africa/Casablanca", "America/Caracas", "Antarctica/Troll"}) {
        const zones::Current zone(name);
        const NSCalendar calendar = calendarIn(name);
        for (const Change& change : lonelyChanges(unixSeconds(1850, 1, 1), unixSeconds(2060, 1, 1))) {
            expectWallTimesAround(calendar, change, name);
            ++count;
        }
    }
    EXPECT_GT(count, 1000U) << "the C library knows too few changes to compare with";
}

TEST(WallTimesFromFacts, leadBackToAnInstantThatShowsTheSame) {
    std::mt19937_64 random(19860101);
    std::uniform_int_distribution<std::int64_t> instants(unixSeconds(1700, 1, 1), unixSeconds(2300, 1, 1));
    for (const char* name : {"America/New_York", "Asia/Kathmandu", "Pacific/Apia", "Europe/London"}) {
        const zones::Current zone(name);
        const NSCalendar calendar = calendarIn(name);
        for (int i = 0; i < 3000; ++i) {
            const std::int64_t instant = instants(random);
            const std::int64_t wall = instant + zones::offsetAt(instant);
            const Fields fields = fieldsOf(wall);
            EXPECT_EQ(wallOf(dateAt(instant), name), shown(fields)) << name << " " << instant;
            const NSDate back = calendar.dateFromComponents(componentsOf(fields));
            const double seconds = back.timeIntervalSince1970();
            EXPECT_LE(seconds, static_cast<double>(instant)) << name;
            EXPECT_EQ(seconds + static_cast<double>(zones::offsetAt(static_cast<std::int64_t>(seconds))),
                      static_cast<double>(wall))
                << name << " " << instant;
        }
    }
}

TEST(WallTimesFromFacts, lackingFieldsTakeTheirFirstValues) {
    const NSCalendar calendar = calendarIn("UTC");
    NSDateComponents components;
    EXPECT_EQ(shown(calendar.dateFromComponents(components)), "0001-01-01 00:00:00");
    components.day = 17;
    EXPECT_EQ(shown(calendar.dateFromComponents(components)), "0001-01-17 00:00:00");
    components.year = 2024;
    EXPECT_EQ(shown(calendar.dateFromComponents(components)), "2024-01-17 00:00:00");
    components.minute = 5;
    EXPECT_EQ(shown(calendar.dateFromComponents(components)), "2024-01-17 00:05:00");
    components.day = none;
    components.month = 13;
    EXPECT_EQ(shown(calendar.dateFromComponents(components)), "2025-01-01 00:05:00");
}

TEST(WallTimesFromFacts, takeTheirOwnZoneBeforeTheCalendars) {
    NSDateComponents components = componentsOf({2024, 7, 1, 12, 0, 0});
    components.timeZone = NSTimeZone::timeZoneWithName("Asia/Kathmandu");
    EXPECT_EQ(shown(calendarIn("America/New_York").dateFromComponents(components)), "2024-07-01 06:15:00");
    const ScopedTimeZone process("Europe/Berlin");
    const NSCalendar calendar = NSCalendar::currentCalendar();
    EXPECT_EQ(shown(calendar.dateFromComponents(components)), "2024-07-01 06:15:00");
    components.timeZone = nullptr;
    EXPECT_EQ(shown(calendar.dateFromComponents(components)), "2024-07-01 10:00:00");
}

TEST(WallTimesFromFacts, countYearsBeforeTheFirstWithinTheirEra) {
    EXPECT_EQ(wallOf(utc(0, 12, 31), "UTC"), "1-12-31 0:0:0 before");
    EXPECT_EQ(wallOf(utc(-43, 3, 15, 1, 2, 3), "UTC"), "44-3-15 1:2:3 before");
    EXPECT_EQ(wallOf(utc(1, 1, 1), "UTC"), "1-1-1 0:0:0");
    NSDateComponents components = componentsOf({44, 3, 15, 1, 2, 3});
    components.era = 0;
    EXPECT_EQ(calendarIn("UTC").dateFromComponents(components), utc(-43, 3, 15, 1, 2, 3));
    components.era = 1;
    EXPECT_EQ(calendarIn("UTC").dateFromComponents(components), utc(44, 3, 15, 1, 2, 3));
    components.era = none;
    EXPECT_EQ(calendarIn("UTC").dateFromComponents(components), utc(44, 3, 15, 1, 2, 3));
}

TEST(WallTimesFromFacts, followGregorianRulesInOctober1582) {
    const NSDate fourth = utc(1582, 10, 4);
    EXPECT_EQ(wallOf(later(fourth, 86400), "UTC"), "1582-10-5 0:0:0");
    EXPECT_EQ(wholeDays("UTC", fourth, utc(1582, 10, 15)), 11);
    EXPECT_EQ(shown(instantOf({1500, 2, 29, 0, 0, 0}, "UTC")), "1500-03-01 00:00:00");
}

TEST(WallTimesFromFacts, ofInstantsBetweenSecondsAreThoseOfTheSecondBefore) {
    EXPECT_EQ(wallOf(later(utc(2024, 7, 1), -0.001), "UTC"), "2024-6-30 23:59:59");
    EXPECT_EQ(wallOf(later(utc(1950, 7, 1), -0.5), "UTC"), "1950-6-30 23:59:59");
    EXPECT_EQ(wallOf(later(utc(1950, 7, 1), 0.5), "UTC"), "1950-7-1 0:0:0");
}

TEST(WallTimesFromFacts, beginADayAtItsFirstInstant) {
    expectDayStarts({
        {utc(2024, 7, 1, 12, 0, 0), "UTC", "2024-07-01 00:00:00", 24},
        {utc(2024, 7, 1, 0, 0, 0), "UTC", "2024-07-01 00:00:00", 24},
        {later(utc(2024, 7, 2), -0.25), "UTC", "2024-07-01 00:00:00", 24},
        {later(utc(1950, 7, 2), -0.25), "UTC", "1950-07-01 00:00:00", 24},
        {utc(2024, 7, 1, 12, 0, 0), "Asia/Kathmandu", "2024-06-30 18:15:00", 24},
        {utc(2024, 3, 10, 12, 0, 0), "America/New_York", "2024-03-10 05:00:00", 23},
        {utc(2024, 11, 3, 12, 0, 0), "America/New_York", "2024-11-03 04:00:00", 25},
        {utc(2024, 11, 3, 6, 30, 0), "America/New_York", "2024-11-03 04:00:00", 25},
        {utc(2024, 10, 6, 0, 0, 0), "Australia/Lord_Howe", "2024-10-05 13:30:00", 23.5},
        // It begins at 01:00.
        {utc(2018, 11, 4, 12, 0, 0), "America/Sao_Paulo", "2018-11-04 03:00:00", 23},
        {utc(2018, 11, 4, 3, 0, 0), "America/Sao_Paulo", "2018-11-04 03:00:00", 23},
        {utc(2018, 11, 4, 2, 59, 59), "America/Sao_Paulo", "2018-11-03 03:00:00", 24},
        // 23:00 came twice.
        {utc(2018, 2, 18, 2, 30, 0), "America/Sao_Paulo", "2018-02-17 02:00:00", 25},
        // Midnight came twice there.
        {utc(2023, 11, 5, 5, 30, 0), "America/Havana", "2023-11-05 04:00:00", 25},
        {utc(2011, 12, 30, 9, 0, 0), "Pacific/Apia", "2011-12-29 10:00:00", 24},
        {utc(2011, 12, 30, 10, 0, 0), "Pacific/Apia", "2011-12-30 10:00:00", 24},
        {utc(-43, 3, 15, 12, 0, 0), "UTC", "-043-03-15 00:00:00", 24},
        {utc(12024, 7, 1, 12, 0, 0), "America/New_York", "12024-07-01 04:00:00", 24},
    });
}

TEST(WallTimesFromFacts, countTheDaysThatCanBeAddedWithoutPassing) {
    struct DaysRow {
        const char* zone;
        NSDate from;
        NSDate to;
        NSInteger expected;
    };
    const char* const newYork = "America/New_York";
    const DaysRow rows[] = {
        {"UTC", utc(2024, 7, 1, 23, 59, 0), utc(2024, 7, 2, 0, 1, 0), 0},
        {"UTC", utc(2024, 7, 1, 12, 0, 0), utc(2024, 7, 2, 12, 0, 0), 1},
        {"UTC", utc(2024, 7, 1, 12, 0, 0), utc(2024, 7, 2, 11, 59, 59), 0},
        {"UTC", utc(2024, 7, 2, 12, 0, 0), utc(2024, 7, 1, 12, 0, 0), -1},
        {"UTC", utc(2024, 7, 2, 12, 0, 0), utc(2024, 7, 1, 12, 0, 1), 0},
        {"UTC", utc(1969, 12, 31), utc(1970, 1, 2), 2},
        {"UTC", utc(0, 1, 1), utc(1, 1, 1), 366},
        // From noon to noon in 23 and in 25 hours.
        {newYork, utc(2024, 3, 9, 17, 0, 0), utc(2024, 3, 10, 16, 0, 0), 1},
        {newYork, utc(2024, 3, 9, 17, 0, 0), utc(2024, 3, 10, 15, 59, 59), 0},
        {newYork, utc(2024, 11, 2, 16, 0, 0), utc(2024, 11, 3, 16, 59, 59), 0},
        {newYork, utc(2024, 11, 2, 16, 0, 0), utc(2024, 11, 3, 17, 0, 0), 1},
        // 02:30 of the next day is 03:30.
        {newYork, utc(2024, 3, 9, 7, 30, 0), utc(2024, 3, 10, 7, 30, 0), 1},
        {newYork, utc(2024, 3, 9, 7, 30, 0), utc(2024, 3, 10, 7, 29, 59), 0},
        // A first day without midnight, which must not cost a day.
        {"America/Sao_Paulo", utc(2018, 11, 4, 3, 0, 0), utc(2018, 11, 5, 2, 0, 0), 1},
        {"America/Sao_Paulo", utc(2018, 11, 4, 3, 0, 0), utc(2018, 11, 8, 2, 0, 0), 4},
        {"America/Sao_Paulo", utc(2018, 11, 5, 2, 0, 0), utc(2018, 11, 4, 3, 0, 0), -1},
        {"America/Sao_Paulo", utc(2018, 11, 3, 3, 0, 0), utc(2018, 11, 4, 3, 0, 0), 1},
        {"Pacific/Apia", utc(2011, 12, 29, 10, 0, 0), utc(2011, 12, 30, 10, 0, 0), 2},
    };
    for (const DaysRow& row : rows) {
        EXPECT_EQ(wholeDays(row.zone, row.from, row.to), row.expected)
            << row.zone << " " << shown(row.from) << " to " << shown(row.to);
    }
}

TEST(WallTimesFromFacts, betweenStartsOfDaysCountCalendarDates) {
    std::mt19937_64 random(20181104);
    for (const char* name : {"America/Sao_Paulo", "America/New_York", "Asia/Kathmandu", "Pacific/Apia"}) {
        const zones::Current zone(name);
        const NSCalendar calendar = calendarIn(name);
        std::uniform_int_distribution<std::int64_t> instants(unixSeconds(1930, 1, 1),
                                                             unixSeconds(2037, 1, 1));
        for (int i = 0; i < 500; ++i) {
            const std::int64_t first = instants(random);
            const std::int64_t second = instants(random);
            const civiltest::Wide expected =
                civiltest::floorDivided(second + zones::offsetAt(second), 86400) -
                civiltest::floorDivided(first + zones::offsetAt(first), 86400);
            EXPECT_EQ(wholeDays(name, calendar.startOfDayForDate(dateAt(first)),
                                calendar.startOfDayForDate(dateAt(second))),
                      static_cast<NSInteger>(expected))
                << name << " " << first << " " << second;
        }
    }
}

TEST(WallTimesFromFacts, placeWeeksByTheirThursday) {
    NSCalendar calendar = NSCalendar::calendarWithIdentifier(NSCalendarIdentifierISO8601);
    calendar.setTimeZone(NSTimeZone::timeZoneWithName("UTC"));
    struct WeekRow {
        NSDate date;
        NSInteger week;
        NSInteger year;
    };
    const WeekRow rows[] = {{utc(2014, 12, 29), 1, 2015},
                            {utc(2016, 1, 3), 53, 2015},
                            {utc(2021, 1, 1), 53, 2020},
                            {utc(2024, 12, 31), 1, 2025}};
    for (const WeekRow& row : rows) {
        EXPECT_EQ(calendar.component_fromDate(NSCalendarUnitWeekOfYear, row.date), row.week)
            << shown(row.date);
        EXPECT_EQ(calendar.component_fromDate(NSCalendarUnitYearForWeekOfYear, row.date), row.year)
            << shown(row.date);
    }
}

TEST(WallTimesFromFacts, farOutOfRangeCarryInAZone) {
    const auto expected = [](const Fields& fields, std::int64_t offset) {
        return shown(dateAt(static_cast<std::int64_t>(civiltest::wallSeconds(fields)) - offset));
    };
    // Before the zone's first change.
    for (const Fields& fields :
         {Fields{2024, -1'000'000, 10, 2, 30, 0}, Fields{2024, 3, -1'000'000'000, 2, 30, 0},
          Fields{2024, 3, 10, -30'000'000'000, 30, 0}}) {
        EXPECT_EQ(shown(instantOf(fields, "Asia/Kathmandu")), expected(fields, 20476)) << shown(fields);
    }
    // After its last one.
    for (const Fields& fields :
         {Fields{2024, 1'000'000, 10, 2, 30, 0}, Fields{2024, 3, 1'000'000'000, 2, 30, 0},
          Fields{2024, 3, 10, 2, 30'000'000'000, 0}}) {
        EXPECT_EQ(shown(instantOf(fields, "Asia/Kathmandu")), expected(fields, 20700)) << shown(fields);
    }
}

TEST(WallTimesFromFacts, atTheLimitsOfTheFieldsAreNil) {
    constexpr NSInteger smallest = std::numeric_limits<NSInteger>::min();
    for (const char* name : {"UTC", "America/New_York", "Asia/Kathmandu"}) {
        for (const NSInteger value : {smallest, smallest + 1, none - 1}) {
            EXPECT_FALSE(instantOf({value, 1, 1, 0, 0, 0}, name)) << value;
            EXPECT_FALSE(instantOf({2024, value, 1, 0, 0, 0}, name)) << value;
            EXPECT_FALSE(instantOf({2024, 1, value, 0, 0, 0}, name)) << value;
            EXPECT_FALSE(instantOf({2024, 1, 1, value, 0, 0}, name)) << value;
            EXPECT_FALSE(instantOf({2024, 1, 1, 0, value, 0}, name)) << value;
            EXPECT_FALSE(instantOf({2024, 1, 1, 0, 0, value}, name)) << value;
            EXPECT_FALSE(instantOf({value, value, value, value, value, value}, name)) << value;
        }
    }
}

TEST(WallTimesFromFacts, beyondTheCalendarHaveNoFieldsAndNoDay) {
    for (const char* name : {"UTC", "America/New_York"}) {
        const NSCalendar calendar = calendarIn(name);
        for (const double seconds : {9.3e18, -9.3e18, 1e300, -1e300, HUGE_VAL, -HUGE_VAL, std::nan("")}) {
            const NSDate date = NSDate::dateWithTimeIntervalSinceReferenceDate(seconds);
            EXPECT_EQ(calendar.component_fromDate(NSCalendarUnitYear, date), none) << seconds;
            EXPECT_EQ(calendar.component_fromDate(NSCalendarUnitWeekOfYear, date), none) << seconds;
            EXPECT_FALSE(calendar.startOfDayForDate(date)) << seconds;
            NSDate start = utc(2024, 1, 1);
            NSTimeInterval interval = 7;
            EXPECT_FALSE(
                calendar.rangeOfUnit_startDate_interval_forDate(NSCalendarUnitDay, &start, &interval, date))
                << seconds;
            EXPECT_EQ(start, utc(2024, 1, 1));
            EXPECT_EQ(interval, 7);
        }
    }
}
