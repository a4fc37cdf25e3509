// SPDX-License-Identifier: MIT
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/objects/NSDate.h"
#include "foundation/time/NSCalendar.h"
#include "foundation/time/NSTimeZone.h"
#include "tests/time/CivilTesting.h"
#include "tests/time/ZoneChanges.h"

using namespace ZQFoundation;
using civiltest::Fields;
using civiltest::later;
using civiltest::shown;
using civiltest::utc;
using ZQFoundation::testing::ScopedTimeZone;

namespace {

constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t greatest = std::numeric_limits<std::int64_t>::max();

NSTimeZone zoneNamed(const char* name) {
    const NSTimeZone zone = NSTimeZone::timeZoneWithName(name);
    EXPECT_TRUE(zone) << name;
    return zone;
}

NSDate built(const Fields& fields, const NSTimeZone& zone) {
    return NSDate::dateWithYear_month_day_hour_minute_second_timeZone(
        fields.year, fields.month, fields.day, fields.hour, fields.minute, fields.second, zone);
}

NSDate moved(const NSDate& date, std::int64_t hour, std::int64_t minute, std::int64_t second) {
    return NSDate::dateWithDate_andModifiedHour_minute_second(date, hour, minute, second);
}

NSDate fromReference(double seconds) { return NSDate::dateWithTimeIntervalSinceReferenceDate(seconds); }

struct BuildingRow {
    Fields fields;
    const char* zone; ///< null: none is given
    const char* expected;
};

void expectBuilt(const std::vector<BuildingRow>& rows) {
    for (const BuildingRow& row : rows) {
        const NSTimeZone zone = row.zone != nullptr ? zoneNamed(row.zone) : NSTimeZone();
        EXPECT_EQ(shown(built(row.fields, zone)), row.expected)
            << shown(row.fields) << " in " << (row.zone != nullptr ? row.zone : "no zone");
    }
}

/// What plain counting says of fields in UTC: the date must be there exactly when the calendar reaches it,
/// and be right to the last bit as far as doubles count seconds.
void expectAsCounted(const Fields& fields) {
    const civiltest::Wide wall = civiltest::wallSeconds(fields);
    const NSDate date = built(fields, zoneNamed("UTC"));
    if (wall > civiltest::calendarReach || wall < -civiltest::calendarReach) {
        EXPECT_FALSE(date) << shown(fields) << " became " << shown(date);
        return;
    }
    ASSERT_TRUE(date) << shown(fields);
    const double expected = static_cast<double>(wall - 978307200);
    const double off = std::fabs(date.timeIntervalSinceReferenceDate() - expected);
    EXPECT_LE(off, std::fabs(expected) < 9e15 ? 0.0 : std::fabs(expected) * 4e-16) << shown(fields);
}

struct Comparisons {
    bool earlier;
    bool later;
    bool within;
    bool atLeastEarlier;
    bool atLeastLater;
};

void expectComparisons(const NSDate& receiver, const NSDate& argument, const Comparisons& expected) {
    const std::string what = shown(receiver) + " against " + shown(argument);
    EXPECT_EQ(receiver.isEarlierThan(argument), expected.earlier) << what;
    EXPECT_EQ(receiver.isLaterThan(argument), expected.later) << what;
    EXPECT_EQ(receiver.isWithinOneSecondFrom(argument), expected.within) << what;
    EXPECT_EQ(receiver.isAtLeastOneSecondEarlierThan(argument), expected.atLeastEarlier) << what;
    EXPECT_EQ(receiver.isAtLeastOneSecondLaterThan(argument), expected.atLeastLater) << what;
}

/// Dates of all ages to compare from.
const NSDate standpoints[] = {fromReference(0), fromReference(700000000.25),
                              utc(1970, 1, 1),  utc(1969, 12, 31),
                              utc(1583, 1, 1),  utc(0, 2, 29),
                              utc(-44, 3, 15),  utc(9999, 12, 31)};

std::int64_t daysBetween(const NSDate& first, const NSDate& second) {
    return NSDate::calendarDaysBetween_and(first, second);
}

struct DaysRow {
    NSDate first;
    NSDate second;
    std::int64_t expected;
};

void expectDays(const std::vector<DaysRow>& rows) {
    for (const DaysRow& row : rows) {
        EXPECT_EQ(daysBetween(row.first, row.second), row.expected)
            << shown(row.first) << " to " << shown(row.second);
        EXPECT_EQ(daysBetween(row.second, row.first), -row.expected)
            << shown(row.second) << " to " << shown(row.first);
    }
}

} // namespace

TEST(DatesFromFacts, areBuiltFromFields) {
    expectBuilt({
        {{2001, 1, 1, 0, 0, 0}, "UTC", "2001-01-01 00:00:00"},
        {{2024, 3, 5, 14, 7, 9}, "UTC", "2024-03-05 14:07:09"},
        {{2024, 3, 5, 14, 7, 9}, "Europe/Berlin", "2024-03-05 13:07:09"},
        {{2024, 7, 5, 14, 7, 9}, "Europe/Berlin", "2024-07-05 12:07:09"},
        {{2024, 7, 5, 14, 7, 9}, "America/New_York", "2024-07-05 18:07:09"},
        {{2024, 3, 5, 14, 7, 9}, "Asia/Kathmandu", "2024-03-05 08:22:09"},
        {{1969, 12, 31, 23, 59, 59}, "UTC", "1969-12-31 23:59:59"},
        {{1900, 2, 28, 12, 0, 0}, "UTC", "1900-02-28 12:00:00"},
    });
}

TEST(DatesFromFacts, ofThe29thOfFebruary2021AreTheFirstOfMarch) {
    EXPECT_EQ(shown(built({2021, 2, 29, 0, 0, 0}, zoneNamed("UTC"))), "2021-03-01 00:00:00");
}

TEST(DatesFromFacts, carryMonths) {
    expectBuilt({
        {{2020, 13, 1, 0, 0, 0}, "UTC", "2021-01-01 00:00:00"},
        {{2020, 0, 1, 0, 0, 0}, "UTC", "2019-12-01 00:00:00"},
        {{2020, -11, 1, 0, 0, 0}, "UTC", "2019-01-01 00:00:00"},
        {{2020, -12, 1, 0, 0, 0}, "UTC", "2018-12-01 00:00:00"},
        {{2020, 24, 31, 0, 0, 0}, "UTC", "2021-12-31 00:00:00"},
        {{2020, 25, 31, 0, 0, 0}, "UTC", "2022-01-31 00:00:00"},
    });
}

TEST(DatesFromFacts, carryDays) {
    expectBuilt({
        {{2020, 3, 0, 0, 0, 0}, "UTC", "2020-02-29 00:00:00"},
        {{2021, 3, 0, 0, 0, 0}, "UTC", "2021-02-28 00:00:00"},
        {{2021, 1, 0, 0, 0, 0}, "UTC", "2020-12-31 00:00:00"},
        {{2021, 1, -30, 0, 0, 0}, "UTC", "2020-12-01 00:00:00"},
        {{2021, 4, 31, 0, 0, 0}, "UTC", "2021-05-01 00:00:00"},
        {{2021, 1, 366, 0, 0, 0}, "UTC", "2022-01-01 00:00:00"},
        {{1900, 2, 29, 0, 0, 0}, "UTC", "1900-03-01 00:00:00"},
        {{2000, 2, 29, 0, 0, 0}, "UTC", "2000-02-29 00:00:00"},
    });
}

TEST(DatesFromFacts, carryTimesOfTheDay) {
    expectBuilt({
        {{2020, 12, 31, 24, 0, 0}, "UTC", "2021-01-01 00:00:00"},
        {{2021, 1, 1, -1, 0, 0}, "UTC", "2020-12-31 23:00:00"},
        {{2021, 1, 1, 0, 90, 0}, "UTC", "2021-01-01 01:30:00"},
        {{2021, 1, 1, 0, 0, -1}, "UTC", "2020-12-31 23:59:59"},
        {{2021, 1, 1, 0, 0, 86400 * 365}, "UTC", "2022-01-01 00:00:00"},
        {{2021, 1, 1, 48, -2880, 3}, "UTC", "2021-01-01 00:00:03"},
    });
}

TEST(DatesFromFacts, carryTheMonthBeforeTheDay) {
    // The other way round the 31st of January would have moved the month first.
    expectBuilt({
        {{2021, 14, 31, 0, 0, 0}, "UTC", "2022-03-03 00:00:00"},
        {{2022, 0, 31, 0, 0, 0}, "UTC", "2021-12-31 00:00:00"},
        {{2023, 14, 30, 0, 0, 0}, "UTC", "2024-03-01 00:00:00"},
        {{2024, -9, 30, 0, 0, 0}, "UTC", "2023-03-30 00:00:00"},
        {{2025, -10, 29, 24, 0, 0}, "UTC", "2024-03-01 00:00:00"},
    });
}

TEST(DatesFromFacts, withoutAZoneAreInTheProcesss) {
    const Fields noon{2024, 7, 5, 12, 0, 0};
    const ScopedTimeZone zone("Europe/Berlin");
    EXPECT_EQ(shown(built(noon, nullptr)), "2024-07-05 10:00:00");
    EXPECT_EQ(shown(built(noon, zoneNamed("Asia/Tokyo"))), "2024-07-05 03:00:00");
    zone.change("America/New_York");
    EXPECT_EQ(shown(built(noon, nullptr)), "2024-07-05 16:00:00") << "the zone was kept from the call before";
    zone.change("Asia/Kathmandu");
    EXPECT_EQ(shown(built(noon, nullptr)), "2024-07-05 06:15:00");
    zone.change("CET-1CEST,M3.5.0,M10.5.0/3");
    EXPECT_EQ(shown(built(noon, nullptr)), "2024-07-05 10:00:00");
    zone.change("UTC");
    EXPECT_EQ(shown(built(noon, nullptr)), "2024-07-05 12:00:00");
}

TEST(DatesFromFacts, ofFixedOffsetsAreShiftedByThem) {
    EXPECT_EQ(shown(built({2024, 7, 5, 12, 0, 0}, NSTimeZone::timeZoneForSecondsFromGMT(-34200))),
              "2024-07-05 21:30:00");
    EXPECT_EQ(shown(built({2024, 7, 5, 12, 0, 0}, NSTimeZone::timeZoneForSecondsFromGMT(1))),
              "2024-07-05 11:59:59");
}

TEST(DatesFromFacts, followGregorianRulesBeforeTheyWereIntroduced) {
    expectBuilt({
        {{1582, 10, 10, 0, 0, 0}, "UTC", "1582-10-10 00:00:00"},
        {{1582, 10, 4, 24, 0, 0}, "UTC", "1582-10-05 00:00:00"},
        {{1500, 2, 29, 0, 0, 0}, "UTC", "1500-03-01 00:00:00"},
        {{1200, 2, 29, 0, 0, 0}, "UTC", "1200-02-29 00:00:00"},
        {{1, 1, 1, 0, 0, 0}, "UTC", "0001-01-01 00:00:00"},
        {{100, 2, 29, 0, 0, 0}, "UTC", "0100-03-01 00:00:00"},
    });
}

TEST(DatesFromFacts, reachYearsBeforeTheFirst) {
    EXPECT_EQ(built({1, 1, 0, 0, 0, 0}, zoneNamed("UTC")), utc(0, 12, 31));
    EXPECT_EQ(built({0, 2, 29, 0, 0, 0}, zoneNamed("UTC")), utc(0, 2, 29));
    EXPECT_EQ(built({-1, 2, 29, 0, 0, 0}, zoneNamed("UTC")), utc(-1, 3, 1));
    EXPECT_EQ(built({-43, 3, 15, 0, 0, 0}, zoneNamed("UTC")), utc(-43, 3, 15));
    EXPECT_EQ(built({1, -11, 1, 0, 0, 0}, zoneNamed("UTC")), utc(0, 1, 1));
    EXPECT_EQ(built({-9999, 1, 1, 0, 0, 0}, zoneNamed("UTC")), utc(-9999, 1, 1));
}

TEST(DatesFromFacts, goOnAfterTheYear9999) {
    expectBuilt({
        {{9999, 12, 31, 23, 59, 59}, "UTC", "9999-12-31 23:59:59"},
        {{9999, 12, 31, 23, 59, 60}, "UTC", "10000-01-01 00:00:00"},
        {{12345, 6, 7, 8, 9, 10}, "UTC", "12345-06-07 08:09:10"},
        {{9999, 7, 1, 12, 0, 0}, "America/New_York", "9999-07-01 16:00:00"},
        {{1000000, 2, 29, 0, 0, 0}, "UTC", "1000000-02-29 00:00:00"},
    });
}

TEST(DatesFromFacts, carryFieldsFarOutOfRange) {
    for (const std::int64_t months : {1'000'000, -1'000'000, 12'000'001}) {
        expectAsCounted({2024, months, 31, 1, 2, 3});
    }
    for (const std::int64_t days : {1'000'000'000, -1'000'000'000, 146'097, -146'097}) {
        expectAsCounted({2024, 2, days, 1, 2, 3});
    }
    expectAsCounted({2024, 1, 1, 1'000'000'000'000, 0, 0});
    expectAsCounted({2024, 1, 1, 0, -60'000'000'000'000, 0});
    expectAsCounted({2024, 1, 1, 0, 0, 3'000'000'000'000'000});
    expectAsCounted({-250'000, 3'000'000, 1, 0, 0, 0});
}

TEST(DatesFromFacts, ofFieldsAtTheLimitsAreThereOrNil) {
    const std::int64_t values[] = {smallest,         smallest + 1,    greatest - 1,    smallest / 2,
                                   greatest / 2,     smallest / 12,   greatest / 12,   292'000'000'000,
                                   -292'000'000'000, 293'000'000'000, -293'000'000'000};
    for (const std::int64_t value : values) {
        expectAsCounted({value, 1, 1, 0, 0, 0});
        expectAsCounted({2024, value, 1, 0, 0, 0});
        expectAsCounted({2024, 1, value, 0, 0, 0});
        expectAsCounted({2024, 1, 1, value, 0, 0});
        expectAsCounted({2024, 1, 1, 0, value, 0});
        expectAsCounted({2024, 1, 1, 0, 0, value});
        expectAsCounted({value, value, value, value, value, value});
    }
}

TEST(DatesFromFacts, ofOpposingHugeFieldsAreTheirSum) {
    expectAsCounted({200'000'000'000, -2'400'000'000'000, 1, 0, 0, 0});
    expectAsCounted({1970, 1, 100'000'000'000'000, -2'400'000'000'000'000, 0, 0});
    expectAsCounted({1970, 1, 1, 2'500'000'000'000'000, 0, -9'000'000'000'000'000'000});
    expectAsCounted({1970, 1, 1, 0, 150'000'000'000'000'000, -9'000'000'000'000'000'000});
}

TEST(DatesFromFacts, ofFieldsAtTheLimitsDoNotCrashInAnyZone) {
    const ScopedTimeZone process("America/New_York");
    const std::int64_t values[] = {smallest, smallest + 1, -1'000'000'000'000, 1'000'000'000'000,
                                   greatest - 1};
    for (const char* name : {"America/New_York", "Asia/Kathmandu", "Pacific/Apia", "Europe/Berlin"}) {
        const NSTimeZone zone = zoneNamed(name);
        for (const std::int64_t value : values) {
            for (int field = 0; field < 6; ++field) {
                std::int64_t fields[] = {2024, 3, 10, 2, 30, 0};
                fields[field] = value;
                const Fields asked{fields[0], fields[1], fields[2], fields[3], fields[4], fields[5]};
                const civiltest::Wide wall = civiltest::wallSeconds(asked);
                const bool isReached = wall < civiltest::calendarReach && wall > -civiltest::calendarReach;
                EXPECT_EQ(static_cast<bool>(built(asked, zone)), isReached) << shown(asked) << " " << name;
            }
        }
    }
}

TEST(DatesFromFacts, leaveOutFieldsThatAreNotSet) {
    const NSTimeZone zone = zoneNamed("UTC");
    constexpr std::int64_t none = NSDateComponentUndefined;
    EXPECT_EQ(shown(built({2024, none, none, none, none, none}, zone)), "2024-01-01 00:00:00");
    EXPECT_EQ(shown(built({none, none, none, none, none, 5}, zone)), "0001-01-01 00:00:05");
}

TEST(DatesFromFacts, agreeWithPlainCounting) {
    std::mt19937_64 random(20240305);
    const auto upTo = [&](std::int64_t limit) {
        return std::uniform_int_distribution<std::int64_t>(-limit, limit)(random);
    };
    for (int i = 0; i < 20000; ++i) {
        const int wide = i % 3;
        expectAsCounted({upTo(wide == 0 ? 3000 : 200'000), upTo(wide == 1 ? 100'000 : 30), upTo(40'000),
                         upTo(wide == 2 ? 1'000'000 : 50), upTo(10'000), upTo(1'000'000)});
    }
}

TEST(DatesFromFacts, ofWallTimesThatTheClocksSkipUseTheOffsetFromBefore) {
    expectBuilt({
        {{2024, 3, 10, 1, 59, 59}, "America/New_York", "2024-03-10 06:59:59"},
        {{2024, 3, 10, 2, 0, 0}, "America/New_York", "2024-03-10 07:00:00"},
        {{2024, 3, 10, 2, 30, 0}, "America/New_York", "2024-03-10 07:30:00"},
        {{2024, 3, 10, 3, 0, 0}, "America/New_York", "2024-03-10 07:00:00"},
        {{2018, 11, 4, 0, 0, 0}, "America/Sao_Paulo", "2018-11-04 03:00:00"},
        {{2018, 11, 4, 1, 0, 0}, "America/Sao_Paulo", "2018-11-04 03:00:00"},
    });
}

TEST(DatesFromFacts, ofWallTimesThatOccurTwiceAreTheFirst) {
    expectBuilt({
        {{2024, 11, 3, 1, 30, 0}, "America/New_York", "2024-11-03 05:30:00"},
        {{2024, 11, 3, 0, 59, 59}, "America/New_York", "2024-11-03 04:59:59"},
        {{2024, 11, 3, 2, 0, 0}, "America/New_York", "2024-11-03 07:00:00"},
        {{2024, 10, 27, 2, 30, 0}, "Europe/Berlin", "2024-10-27 00:30:00"},
    });
}

TEST(DatesFromFacts, turnTheWholeSumIntoAnInstantOnce) {
    expectBuilt({
        {{2024, 3, 9, 26, 30, 0}, "America/New_York", "2024-03-10 07:30:00"},
        {{2024, 3, 9, 27, 30, 0}, "America/New_York", "2024-03-10 07:30:00"},
        {{2024, 3, 10, 0, 150, 0}, "America/New_York", "2024-03-10 07:30:00"},
        {{2024, 11, 2, 25, 30, 0}, "America/New_York", "2024-11-03 05:30:00"},
        // Going through the skipped hour step by step would lose it.
        {{2024, 3, 10, 2, 60, 0}, "America/New_York", "2024-03-10 07:00:00"},
        {{2024, 3, 10, 2, 90, 0}, "America/New_York", "2024-03-10 07:30:00"},
        {{2024, 3, 10, 2, -31, 0}, "America/New_York", "2024-03-10 06:29:00"},
    });
}

TEST(DatesFromFacts, areMovedToATimeOfTheSameDay) {
    const ScopedTimeZone zone("Europe/Berlin");
    EXPECT_EQ(shown(moved(utc(2024, 7, 5, 10, 0, 0), 8, 30, 15)), "2024-07-05 06:30:15");
    EXPECT_EQ(shown(moved(utc(2024, 1, 5, 10, 0, 0), 8, 30, 15)), "2024-01-05 07:30:15");
    // 23:30 UTC is the next day there.
    EXPECT_EQ(shown(moved(utc(2024, 7, 5, 23, 30, 0), 12, 0, 0)), "2024-07-06 10:00:00");
    zone.change("America/New_York");
    EXPECT_EQ(shown(moved(utc(2024, 7, 5, 3, 30, 0), 12, 0, 0)), "2024-07-04 16:00:00");
    zone.change("Asia/Kathmandu");
    EXPECT_EQ(shown(moved(utc(2024, 7, 5, 18, 14, 59), 0, 0, 0)), "2024-07-04 18:15:00");
    EXPECT_EQ(shown(moved(utc(2024, 7, 5, 18, 15, 0), 0, 0, 0)), "2024-07-05 18:15:00");
}

TEST(DatesFromFacts, loseTheirFractionWhenMoved) {
    const ScopedTimeZone zone("UTC");
    EXPECT_EQ(shown(moved(later(utc(2024, 7, 5, 10, 0, 0), 0.75), 10, 0, 0)), "2024-07-05 10:00:00");
    EXPECT_EQ(shown(moved(later(utc(1950, 7, 5, 23, 59, 59), 0.75), 10, 0, 7)), "1950-07-05 10:00:07");
    EXPECT_EQ(shown(moved(later(utc(1950, 7, 6), -0.25), 10, 0, 7)), "1950-07-05 10:00:07");
}

TEST(DatesFromFacts, carryTimesOutOfRangeWhenMoved) {
    const ScopedTimeZone zone("UTC");
    const NSDate date = utc(2024, 2, 28, 10, 0, 0);
    EXPECT_EQ(shown(moved(date, 24, 0, 0)), "2024-02-29 00:00:00");
    EXPECT_EQ(shown(moved(date, 48, 0, 0)), "2024-03-01 00:00:00");
    EXPECT_EQ(shown(moved(date, -1, 0, 0)), "2024-02-27 23:00:00");
    EXPECT_EQ(shown(moved(date, 0, 1440, -1)), "2024-02-28 23:59:59");
    EXPECT_EQ(shown(moved(date, 0, 0, 86400LL * 366)), "2025-02-28 00:00:00");
}

TEST(DatesFromFacts, loseTheirEraWhenMoved) {
    const ScopedTimeZone zone("UTC");
    // 15 March of the year 44 before the first: the era is left behind and only the 44 stays.
    EXPECT_EQ(shown(moved(utc(-43, 3, 15, 10, 0, 0), 12, 0, 0)), "0044-03-15 12:00:00");
    EXPECT_EQ(shown(moved(utc(0, 12, 31), 12, 0, 0)), "0001-12-31 12:00:00");
    EXPECT_EQ(shown(moved(utc(-9998, 7, 1), 0, 0, 0)), "9999-07-01 00:00:00");
    // The year before the first is a leap year, the first is none.
    EXPECT_EQ(shown(moved(utc(0, 2, 29), 12, 0, 0)), "0001-03-01 12:00:00");
    EXPECT_EQ(shown(moved(utc(1, 1, 1), 12, 0, 0)), "0001-01-01 12:00:00");
}

TEST(DatesFromFacts, areMovedOntoSkippedAndDoubledTimes) {
    const ScopedTimeZone zone("America/New_York");
    EXPECT_EQ(shown(moved(utc(2024, 3, 10, 17, 0, 0), 2, 30, 0)), "2024-03-10 07:30:00");
    // From the second 01:30 of that day to its first.
    EXPECT_EQ(shown(moved(utc(2024, 11, 3, 6, 30, 0), 1, 30, 0)), "2024-11-03 05:30:00");
    zone.change("America/Sao_Paulo");
    EXPECT_EQ(shown(moved(utc(2018, 11, 4, 15, 0, 0), 0, 0, 0)), "2018-11-04 03:00:00");
}

TEST(DatesFromFacts, movedBeyondTheCalendarAreNil) {
    const ScopedTimeZone zone("America/New_York");
    for (const std::int64_t value : {smallest, smallest + 1, greatest - 1}) {
        EXPECT_FALSE(moved(utc(2024, 7, 5), value, 0, 0)) << value;
        EXPECT_FALSE(moved(utc(2024, 7, 5), 0, value, 0)) << value;
        EXPECT_FALSE(moved(utc(2024, 7, 5), 0, 0, value)) << value;
        EXPECT_FALSE(moved(utc(2024, 7, 5), value, value, value)) << value;
    }
    for (const double seconds : {1e19, -1e19, 1e300, -1e300, HUGE_VAL, -HUGE_VAL, std::nan("")}) {
        EXPECT_FALSE(moved(fromReference(seconds), 12, 0, 0)) << seconds;
    }
    EXPECT_FALSE(moved(NSDate(), 12, 0, 0));
}

TEST(DatesFromFacts, thatAreEqualAreNeitherEarlierNorLaterAndCloseTogether) {
    for (const NSDate& date : standpoints) {
        expectComparisons(date, date, {false, false, true, true, false});
    }
}

TEST(DatesFromFacts, oneSecondLaterAreWithinASecondAndASecondLaterAndPassTheTestForEarlier) {
    for (const NSDate& date : standpoints) {
        expectComparisons(later(date, 1), date, {false, true, true, true, true});
    }
}

TEST(DatesFromFacts, oneAndAHalfSecondsLaterFailTheTestForEarlier) {
    for (const NSDate& date : standpoints) {
        expectComparisons(later(date, 1.5), date, {false, true, false, false, true});
    }
}

TEST(DatesFromFacts, fiveSecondsEarlierPassTheTestForEarlierOnly) {
    for (const NSDate& date : standpoints) {
        expectComparisons(later(date, -5), date, {true, false, false, true, false});
    }
}

TEST(DatesFromFacts, halfASecondEarlierAlreadyPassTheTestForEarlier) {
    // A test for a difference of at most -1 would say no to all but the last.
    for (const NSDate& date : standpoints) {
        expectComparisons(later(date, 0.5), date, {false, true, true, true, false});
        expectComparisons(later(date, -0.5), date, {true, false, true, true, false});
        expectComparisons(later(date, -1), date, {true, false, true, true, false});
    }
}

TEST(DatesFromFacts, areComparedToTheFinestFraction) {
    constexpr double finest = 0x1p-52;
    const NSDate zero = fromReference(0);
    expectComparisons(fromReference(1 + finest), zero, {false, true, false, false, true});
    expectComparisons(fromReference(1 - finest), zero, {false, true, true, true, false});
    expectComparisons(fromReference(-1 - finest), zero, {true, false, false, true, false});
    expectComparisons(fromReference(-1 + finest), zero, {true, false, true, true, false});
    expectComparisons(fromReference(finest), zero, {false, true, true, true, false});
    expectComparisons(fromReference(-finest), zero, {true, false, true, true, false});
    expectComparisons(fromReference(-0.0), zero, {false, false, true, true, false});
}

TEST(DatesFromFacts, areComparedByTheExactTestOfTheirDifference) {
    for (int quarter = -20; quarter <= 20; ++quarter) {
        const double difference = quarter / 4.0;
        for (const NSDate& date : standpoints) {
            expectComparisons(later(date, difference), date,
                              {difference<0, difference> 0, difference >= -1 && difference <= 1,
                               difference <= 1, difference >= 1});
        }
    }
}

TEST(DatesFromFacts, areNothingNextToNil) {
    const NSDate date = fromReference(0);
    expectComparisons(NSDate(), date, {});
    expectComparisons(date, NSDate(), {});
    expectComparisons(NSDate(), NSDate(), {});
}

TEST(DatesFromFacts, aMinuteBeforeAndAfterMidnightAreADayApart) {
    const ScopedTimeZone zone("Europe/Berlin");
    const NSDate first = utc(2024, 7, 4, 21, 59, 0);
    const NSDate second = utc(2024, 7, 4, 22, 1, 0);
    EXPECT_EQ(daysBetween(first, second), 1);
    EXPECT_EQ(daysBetween(second, first), -1);
    zone.change("UTC");
    EXPECT_EQ(daysBetween(first, second), 0);
}

TEST(DatesFromFacts, areCountedInCalendarDaysOfTheProcesssZone) {
    const ScopedTimeZone zone("UTC");
    expectDays({
        {utc(2024, 7, 4), utc(2024, 7, 4, 23, 59, 59), 0},
        {utc(2024, 7, 4, 23, 59, 59), utc(2024, 7, 5), 1},
        {utc(2024, 7, 4), utc(2024, 7, 5, 23, 59, 59), 1},
        {later(utc(2024, 7, 5), -0.001), utc(2024, 7, 5), 1},
        {utc(2024, 2, 28), utc(2024, 3, 1), 2},
        {utc(2023, 2, 28), utc(2023, 3, 1), 1},
        {utc(2024, 1, 1), utc(2025, 1, 1), 366},
        {utc(1969, 12, 31, 12, 0, 0), utc(1970, 1, 1, 0, 0, 0), 1},
        {utc(1900, 1, 1), utc(2100, 1, 1), 73049},
        {utc(0, 12, 31), utc(1, 1, 1), 1},
        {utc(-1, 1, 1), utc(0, 1, 1), 365},
        {utc(0, 1, 1), utc(1, 1, 1), 366},
        {utc(1582, 10, 4), utc(1582, 10, 15), 11},
        {utc(9999, 12, 31), utc(10000, 1, 1), 1},
        {utc(1, 1, 1), utc(400001, 1, 1), 146'097'000},
    });
    zone.change("Asia/Kathmandu");
    expectDays({{utc(2024, 7, 4, 18, 14, 59), utc(2024, 7, 4, 18, 15, 0), 1},
                {utc(2024, 7, 4, 18, 15, 0), utc(2024, 7, 5, 18, 14, 59), 0}});
}

TEST(DatesFromFacts, acrossAChangeOfTheClocksAreWholeDaysApart) {
    const ScopedTimeZone zone("America/New_York");
    expectDays({
        // 23 hours and 25 hours between the midnights.
        {utc(2024, 3, 10, 5, 0, 0), utc(2024, 3, 11, 4, 0, 0), 1},
        {utc(2024, 11, 3, 4, 0, 0), utc(2024, 11, 4, 5, 0, 0), 1},
        {utc(2024, 11, 3, 4, 0, 0), utc(2024, 11, 4, 4, 59, 59), 0},
        {utc(2024, 3, 10, 5, 0, 0), utc(2024, 11, 4, 5, 0, 0), 239},
        {utc(2024, 1, 1, 12, 0, 0), utc(2024, 7, 1, 12, 0, 0), 182},
    });
}

TEST(DatesFromFacts, onADayWithoutMidnightAreCountedLikeOthers) {
    const ScopedTimeZone zone("America/Sao_Paulo");
    expectDays({
        {utc(2018, 11, 4, 2, 59, 59), utc(2018, 11, 4, 3, 0, 0), 1},
        {utc(2018, 11, 4, 3, 0, 0), utc(2018, 11, 5, 2, 0, 0), 1},
        {utc(2018, 11, 4, 15, 0, 0), utc(2018, 11, 5, 1, 59, 59), 0},
        {utc(2018, 11, 3, 15, 0, 0), utc(2018, 11, 5, 15, 0, 0), 2},
        {utc(2018, 11, 4, 15, 0, 0), utc(2018, 11, 8, 2, 0, 0), 4},
    });
}

TEST(DatesFromFacts, countADateThatTheZoneLeftOut) {
    const ScopedTimeZone zone("Pacific/Apia");
    expectDays({
        // Thursday the 29th at 23:59:59 is followed by Saturday the 31st.
        {utc(2011, 12, 30, 9, 59, 59), utc(2011, 12, 30, 10, 0, 0), 2},
        {utc(2011, 12, 29, 10, 0, 0), utc(2011, 12, 30, 10, 0, 0), 2},
        {utc(2011, 12, 28, 12, 0, 0), utc(2012, 1, 1, 12, 0, 0), 5},
    });
}

TEST(DatesFromFacts, areAsManyDaysApartAsTheClocksOfTheirPlaceSay) {
    std::mt19937_64 random(20111230);
    for (const char* name : {"Europe/Berlin", "America/New_York", "America/Sao_Paulo", "Asia/Kathmandu",
                             "Australia/Lord_Howe", "America/Havana", "Pacific/Apia", "Africa/Cairo"}) {
        ASSERT_TRUE(ZQFoundation::testing::hasZoneFile(name)) << name;
        const zones::Current zone(name);
        std::uniform_int_distribution<std::int64_t> instants(civiltest::unixSeconds(1930, 1, 1),
                                                             civiltest::unixSeconds(2037, 1, 1));
        const auto localDay = [](std::int64_t unixTime) {
            return civiltest::floorDivided(unixTime + zones::offsetAt(unixTime), 86400);
        };
        for (int i = 0; i < 1000; ++i) {
            const std::int64_t first = instants(random);
            const std::int64_t second = i % 2 == 0 ? instants(random) : first + (instants(random) % 200'000);
            EXPECT_EQ(daysBetween(civiltest::dateAt(first), civiltest::dateAt(second)),
                      static_cast<std::int64_t>(localDay(second) - localDay(first)))
                << name << " " << first << " " << second;
        }
    }
}

TEST(DatesFromFacts, areNoDaysFromNil) {
    EXPECT_EQ(daysBetween(NSDate(), utc(2024, 7, 5)), 0);
    EXPECT_EQ(daysBetween(utc(2024, 7, 5), NSDate()), 0);
}

TEST(DatesFromFacts, roundHalfSecondsUp) {
    struct Row {
        double seconds;
        double expected;
    };
    const Row rows[] = {
        {10.5, 11},
        {10.49, 10},
        {10, 10},
        {10.999, 11},
        {0, 0},
        {0.5, 1},
        {0.25, 0},
        // Half a second goes to the later one on this side too, not away from zero.
        {-0.5, 0},
        {-1.5, -1},
        {-2.5, -2},
        {-1.51, -2},
        {-1.49, -1},
        {-0.25, 0},
        {-0.75, -1},
        // To even would give 2 and 12.
        {1.5, 2},
        {2.5, 3},
        {12.5, 13},
        {-978307200.5, -978307200},
        {-978307200.75, -978307201},
        {-1e11 - 0.5, -1e11},
        {1e11 + 0.5, 1e11 + 1},
        {1e15 + 0.5, 1e15 + 1},
        {-1e15 + 0.375, -1e15},
    };
    for (const Row& row : rows) {
        const NSDate rounded = fromReference(row.seconds).roundedDate();
        ASSERT_TRUE(rounded);
        EXPECT_EQ(rounded.timeIntervalSinceReferenceDate(), row.expected) << row.seconds;
    }
}

TEST(DatesFromFacts, roundTheSameInEveryZone) {
    const ScopedTimeZone zone("Europe/Berlin");
    // 28.4 seconds beside the minute, as the clocks there were before 1893.
    EXPECT_EQ(fromReference(-4e9 - 0.5).roundedDate(), fromReference(-4e9));
    zone.change("Asia/Kathmandu");
    EXPECT_EQ(fromReference(-4e9 - 0.5).roundedDate(), fromReference(-4e9));
}

TEST(DatesFromFacts, stayAsTheyAreWhenRounded) {
    const NSDate date = fromReference(10.5);
    EXPECT_EQ(date.roundedDate(), fromReference(11));
    EXPECT_EQ(date, fromReference(10.5));
    EXPECT_FALSE(NSDate().roundedDate());
}
