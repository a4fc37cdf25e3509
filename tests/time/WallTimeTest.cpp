// SPDX-License-Identifier: MIT
// Instants of wall times: around every change of the machine's clocks, and at the ends of the calendar.
#include "foundation/time/WallTime.h"

#include <cmath>
#include <limits>
#include <random>
#include <unordered_map>

#include <gtest/gtest.h>

#include "tests/kit/Dates.h"
#include "tests/kit/Zones.h"

namespace ZQFoundation::detail {
namespace {

std::int64_t wall(std::int64_t year, std::int64_t month, std::int64_t day, std::int64_t hour = 0,
                  std::int64_t minute = 0, std::int64_t second = 0) {
    return static_cast<std::int64_t>(wallSecondsFromFields({year, month, day, hour, minute, second}));
}

TEST(WallTime, addsUpFieldsThatAreOutOfTheirRange) {
    EXPECT_EQ(wall(2024, 13, 1), 1735689600);
    EXPECT_EQ(wall(2021, 2, 29, 26, -1), 1614650340);
    EXPECT_EQ(wall(0, 1, 1), -62167219200);
    EXPECT_EQ(wall(292000000000, 1, 1), 9214629921832780800);
    std::mt19937_64 random(1);
    const auto between = [&random](int least, int greatest) {
        return std::uniform_int_distribution<int>(least, greatest)(random);
    };
    for (int i = 0; i < 50000; ++i) {
        struct tm fields = {};
        fields.tm_year = between(-3000, 3000);
        fields.tm_mon = between(-500, 500);
        fields.tm_mday = between(-100000, 100000);
        fields.tm_hour = between(-1000000, 1000000);
        fields.tm_min = between(-1000000, 1000000);
        fields.tm_sec = between(-1000000, 1000000);
        const models::Fields given{fields.tm_year + 1900, fields.tm_mon + 1, fields.tm_mday,
                                   fields.tm_hour,        fields.tm_min,     fields.tm_sec};
        const std::int64_t expected = timegm(&fields); // which puts the fields into their ranges
        ASSERT_EQ(wall(given.year, given.month, given.day, given.hour, given.minute, given.second), expected)
            << i;
        ASSERT_TRUE(models::wallSeconds(given) == expected) << "the model";
    }
}

TEST(WallTime, hasRoomForAllFieldsThatThereAre) {
    std::mt19937_64 random(2);
    for (int i = 0; i < 20000; ++i) {
        std::int64_t values[6];
        for (std::int64_t& value : values) {
            const std::int64_t extremes[] = {INT64_MIN, INT64_MAX, 0, static_cast<std::int64_t>(random())};
            value = extremes[random() % 4];
        }
        const auto [year, month, day, hour, minute, second] = values;
        ASSERT_TRUE(wallSecondsFromFields({year, month, day, hour, minute, second}) ==
                    models::wallSeconds({year, month, day, hour, minute, second}))
            << kit::shown(models::Fields{year, month, day, hour, minute, second});
    }
}

/// One change of the clocks, far enough from the next ones.
void compareAroundChange(const NSTimeZone& zone, std::int64_t change, const std::string& name) {
    const std::int64_t before = kit::offsetAt(change - 1);
    const std::int64_t after = kit::offsetAt(change);
    const std::int64_t shownBefore = change + before;
    const std::int64_t shownAfter = change + after;
    for (const std::int64_t edge : {shownBefore, shownAfter, (shownBefore + shownAfter) / 2}) {
        for (const std::int64_t step : {-86400, -3600, -1, 0, 1, 3600, 86400}) {
            const std::int64_t shown = edge + step;
            const bool isBefore = shown < std::max(shownBefore, shownAfter);
            ASSERT_EQ(instantOfWallTime(shown, zone), shown - (isBefore ? before : after))
                << name << " " << change << " " << shown;
            const std::int64_t first = shown < shownBefore ? shown - before : std::max(change, shown - after);
            ASSERT_EQ(firstInstantFromWallTime(shown, zone), first) << name << " " << change << " " << shown;
        }
    }
}

/// What the clocks showed, second by second, for a day and a half to both sides of an instant.
struct Seconds {
    explicit Seconds(std::int64_t middle) : from(middle - 130000), until(middle + 130000) {
        for (std::int64_t at = from; at < until; ++at) {
            shown.push_back(at + kit::offsetAt(at));
            first.emplace(shown.back(), at);
        }
    }

    std::int64_t from;
    std::int64_t until;
    std::vector<std::int64_t> shown;
    std::unordered_map<std::int64_t, std::int64_t> first;

    /// The first second that shows a later time than its predecessor, with `wallTime` between both.
    std::int64_t instantOf(std::int64_t wallTime) const {
        if (const auto found = first.find(wallTime); found != first.end()) {
            return found->second;
        }
        const std::int64_t next = firstFrom(wallTime);
        return next - 1 + (wallTime - shown[static_cast<std::size_t>(next - 1 - from)]);
    }

    std::int64_t firstFrom(std::int64_t wallTime) const {
        std::size_t i = 0;
        while (shown[i] < wallTime) {
            ++i;
        }
        return from + static_cast<std::int64_t>(i);
    }
};

/// For changes that come close after each other.
void compareSecondBySecond(const NSTimeZone& zone, std::int64_t change, const std::string& name) {
    const Seconds model(change);
    const std::int64_t shown = change + kit::offsetAt(change);
    for (std::int64_t step = -30000; step <= 30000; step += 599) {
        ASSERT_EQ(instantOfWallTime(shown + step, zone), model.instantOf(shown + step))
            << name << " " << change << " " << step;
        ASSERT_EQ(firstInstantFromWallTime(shown + step, zone), model.firstFrom(shown + step))
            << name << " " << change << " " << step;
    }
}

TEST(WallTime, isRightAroundEveryChangeOfTheMachinesZones) {
    const std::vector<std::string> names = kit::allZoneNames();
    if (names.empty()) {
        GTEST_SKIP() << "there are no zone files on this machine";
    }
    constexpr std::int64_t apart = 4 * secondsPerDay;
    int alone = 0;
    for (const std::string& name : names) {
        const kit::TimeZone current(name.c_str());
        const NSTimeZone zone = NSTimeZone::timeZoneWithName(name);
        ASSERT_TRUE(zone) << name;
        const std::vector<std::int64_t> all = kit::zoneChanges(zone, wall(1900, 1, 1), wall(2060, 1, 1));
        for (std::size_t i = 0; i < all.size(); ++i) {
            const bool isAlone = (i == 0 || all[i] - all[i - 1] > apart) &&
                                 (i + 1 == all.size() || all[i + 1] - all[i] > apart);
            if (isAlone) {
                compareAroundChange(zone, all[i], name);
                ++alone;
            } else {
                compareSecondBySecond(zone, all[i], name);
            }
        }
    }
    EXPECT_GT(alone, 1000);
}

TEST(WallTime, showsAgainWhatItSkippedWhenClocksArePutBackSoonAfter) {
    // 00:00 to 01:00 at 10000, and back at 11800: 00:15 is skipped and then comes after all.
    kit::ZoneData data;
    data.changes = {10000, 11800};
    data.indexes = {1, 0};
    data.clocks = {{0, false, 0}, {3600, true, 0}};
    data.names = std::string("ODD", 4);
    const kit::ScratchFolder folder;
    const kit::TimeZone current(folder.write("odd", data.bytes()).c_str());
    const NSTimeZone zone = NSTimeZone::systemTimeZone();
    ASSERT_EQ(zone.secondsFromGMTForDate(NSDate::dateWithTimeIntervalSince1970(11000)), 3600);
    EXPECT_EQ(instantOfWallTime(9999, zone), 9999);
    EXPECT_EQ(instantOfWallTime(10000, zone), 10000) << "skipped for good";
    EXPECT_EQ(instantOfWallTime(11799, zone), 11799);
    EXPECT_EQ(instantOfWallTime(11800, zone), 11800) << "shown after the second change";
    EXPECT_EQ(instantOfWallTime(13600, zone), 10000);
    EXPECT_EQ(instantOfWallTime(15399, zone), 11799);
    EXPECT_EQ(instantOfWallTime(15400, zone), 15400);
    EXPECT_EQ(firstInstantFromWallTime(10500, zone), 10000);
    EXPECT_EQ(firstInstantFromWallTime(12000, zone), 10000);
    compareSecondBySecond(zone, 10000, "odd");
}

TEST(WallTime, survivesZonesWhoseClocksJumpAsFarAsTheyMay) {
    kit::ZoneData data;
    for (int i = 0; i < 200; ++i) {
        data.changes.push_back(i * 700);
        data.indexes.push_back(static_cast<unsigned char>(i % 2));
    }
    data.clocks = {{-maxZoneOffset, false, 0}, {maxZoneOffset, true, 0}};
    data.names = std::string("ODD", 4);
    const kit::ScratchFolder folder;
    const kit::TimeZone current(folder.write("wild", data.bytes()).c_str());
    const NSTimeZone zone = NSTimeZone::systemTimeZone();
    for (std::int64_t shown = -300000; shown < 300000; shown += 7) {
        const std::int64_t instant = instantOfWallTime(shown, zone);
        // Only clocks put forward skip a time, so the offset from before is the lower one.
        std::int64_t expected = shown + maxZoneOffset;
        for (const std::int64_t offset : {-maxZoneOffset, maxZoneOffset}) {
            expected = kit::offsetAt(shown - offset) == offset ? shown - offset : expected;
        }
        ASSERT_EQ(instant, expected) << shown;
        const std::int64_t first = firstInstantFromWallTime(shown, zone);
        ASSERT_GE(first + kit::offsetAt(first), shown);
        ASSERT_LT(first - 1 + kit::offsetAt(first - 1), shown);
    }
}

TEST(WallTime, isTheSameAtBothEndsOfTheCalendar) {
    for (const char* name : {"EST5EDT,M3.2.0,M11.1.0", "UTC0", "AAA-24:59:59BBB,0/0,J365/25"}) {
        const kit::TimeZone variable(name);
        const NSTimeZone zone = NSTimeZone::systemTimeZone();
        for (const std::int64_t shown : {-maxCalendarSeconds, maxCalendarSeconds}) {
            for (const std::int64_t step : {-86400 * 400, -1, 0, 1, 86400 * 400}) {
                const std::int64_t instant = instantOfWallTime(shown + step, zone);
                EXPECT_EQ(instant + ZoneAccess::offsetAt(zone, instant), shown + step) << name;
                EXPECT_EQ(firstInstantFromWallTime(shown + step, zone), instant) << name;
            }
        }
    }
}

TEST(WallTime, takesADateApartAndPutsItTogetherAgain) {
    const struct {
        double sinceReference;
        Instant instant;
    } rows[] = {
        {0, {978307200, 0}},
        {0.5, {978307200, 500000000}},
        {-0.25, {978307199, 750000000}},
        {-1e-20, {978307199, 999999999}},
        {0.3, {978307200, 300000000}},
        {-978307200.5, {-1, 500000000}},
        {1e15, {1000000978307200, 0}},
    };
    for (const auto& row : rows) {
        Instant instant = {};
        ASSERT_TRUE(
            instantOfDate(NSDate::dateWithTimeIntervalSinceReferenceDate(row.sinceReference), instant));
        EXPECT_EQ(instant, row.instant) << row.sinceReference;
        EXPECT_NEAR(dateOfInstant(instant).timeIntervalSinceReferenceDate(), row.sinceReference, 1.1e-9);
    }
    std::mt19937_64 random(3);
    std::uniform_real_distribution<double> between(-3e9, 3e9);
    for (int i = 0; i < 10000; ++i) {
        const double seconds = between(random);
        Instant instant = {};
        ASSERT_TRUE(instantOfDate(NSDate::dateWithTimeIntervalSinceReferenceDate(seconds), instant));
        // Dates of our time are whole multiples of at least ten nanoseconds.
        const double again = dateOfInstant(instant).timeIntervalSinceReferenceDate();
        ASSERT_TRUE(again == seconds || std::fabs(seconds) < 1e8) << seconds;
    }
}

TEST(WallTime, knowsNoInstantBeyondTheCalendar) {
    constexpr double limit = static_cast<double>(maxCalendarSeconds);
    constexpr double infinity = std::numeric_limits<double>::infinity();
    Instant instant{7, 7};
    for (const double seconds : {limit * 1.000001, -limit * 1.000001, 1e300, -1e300, infinity, -infinity,
                                 std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_FALSE(instantOfDate(NSDate::dateWithTimeIntervalSinceReferenceDate(seconds), instant))
            << seconds;
    }
    EXPECT_FALSE(instantOfDate(nullptr, instant));
    EXPECT_EQ(instant, (Instant{7, 7}));
    for (const double seconds : {limit - 2048, 2048 - limit}) {
        EXPECT_TRUE(instantOfDate(NSDate::dateWithTimeIntervalSince1970(seconds), instant)) << seconds;
        EXPECT_EQ(static_cast<double>(instant.seconds), seconds);
    }
}

} // namespace
} // namespace ZQFoundation::detail
