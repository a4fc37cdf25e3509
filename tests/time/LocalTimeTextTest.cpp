// SPDX-License-Identifier: MIT
// Local time as text, to the millisecond.
#include "foundation/time/LocalTimeText.h"

#include <random>
#include <string>

#include <gtest/gtest.h>

#include "foundation/objects/CivilTime.h"
#include "foundation/time/NSDateFormatter.h"
#include "tests/kit/Zones.h"

namespace ZQFoundation::detail {
namespace {

std::string written(Instant instant) {
    char out[localTimeTextCapacity];
    return std::string(out, writeLocalTime(instant, out));
}

TEST(LocalTimeText, showsLocalTimeToTheMillisecond) {
    const kit::TimeZone scope("CET-1CEST,M3.5.0,M10.5.0/3");
    const struct {
        Instant instant;
        const char* expected;
    } rows[] = {
        {{1709644029, 42000000}, "2024-03-05 14:07:09.042"},
        {{1709644029, 42499999}, "2024-03-05 14:07:09.042"},
        {{1709644029, 42500000}, "2024-03-05 14:07:09.043"},
        {{1709644029, 999499999}, "2024-03-05 14:07:09.999"},
        {{1709644029, 999500000}, "2024-03-05 14:07:10.000"},
        {{1711846799, 999000000}, "2024-03-31 01:59:59.999"},
        {{1711846799, 999999999}, "2024-03-31 03:00:00.000"},
        {{1729990799, 0}, "2024-10-27 02:59:59.000"},
        {{1729990800, 0}, "2024-10-27 02:00:00.000"},
        {{0, 0}, "1970-01-01 01:00:00.000"},
        {{-3601, 999000000}, "1969-12-31 23:59:59.999"},
        {{-3601, 999500000}, "1970-01-01 00:00:00.000"},
        {{-62135600400, 0}, "0001-01-01 00:00:00.000"},
        {{-62135600401, 0}, "0001-12-31 23:59:59.000"}, // of the era before
        {{253402297199, 0}, "9999-12-31 23:59:59.000"},
        {{253402297200, 0}, "10000-01-01 00:00:00.000"},
        {{INT64_MAX, 999999999}, "292277026596-12-04 15:30:07.000"},
        {{INT64_MIN, 0}, "292277022658-01-27 09:29:52.000"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(written(row.instant), row.expected);
    }
}

TEST(LocalTimeText, noticesAChangeOfZone) {
    const kit::TimeZone scope("UTC0");
    EXPECT_EQ(written({1709644029, 42000000}), "2024-03-05 13:07:09.042");
    scope.change("<-0330>3:30");
    EXPECT_EQ(written({1709644029, 42000000}), "2024-03-05 09:37:09.042");
    scope.change("UTC0");
    EXPECT_EQ(written({1709644029, 42000000}), "2024-03-05 13:07:09.042");
}

TEST(LocalTimeText, equalsWhatADateFormatterWrites) {
    const kit::TimeZone scope("UTC0");
    NSDateFormatter formatter;
    formatter.setDateFormat("yyyy'-'MM'-'dd' 'HH':'mm':'ss'.'SSS");
    std::mt19937_64 random(4);
    std::uniform_int_distribution<std::int64_t> seconds(-60000000000, 60000000000);
    std::uniform_int_distribution<std::int64_t> farSeconds(-300000000000, 300000000000);
    std::uniform_int_distribution<int> milliseconds(0, 999);
    // Microseconds: a date cannot hold an exact half.
    std::uniform_int_distribution<int> remainders(-480, 480);
    std::vector<const char*> zones = {"UTC0", "CET-1CEST,M3.5.0,M10.5.0/3",
                                      "<-0330>3:30<-0230>,M3.2.0,M11.1.0"};
    for (const char* name : kit::remarkableZones) {
        if (kit::hasZoneFile(name)) {
            zones.push_back(name);
        }
    }
    for (const char* zone : zones) {
        scope.change(zone);
        for (int i = 0; i < 1000; ++i) {
            Instant instant{farSeconds(random), milliseconds(random) * 1000000};
            if (i % 2 == 0) {
                const std::int64_t nanoseconds =
                    instant.nanoseconds + std::int64_t{remainders(random)} * 1000;
                instant = {seconds(random) + floorDivide(nanoseconds, 1000000000),
                           static_cast<std::int32_t>(floorModulo(nanoseconds, 1000000000))};
            }
            const double time = static_cast<double>(instant.seconds) + instant.nanoseconds * 1e-9;
            const NSDate date = NSDate::dateWithTimeIntervalSince1970(time);
            ASSERT_EQ(written(instant), formatter.stringFromDate(date).utf8()) << zone;
        }
    }
}

} // namespace
} // namespace ZQFoundation::detail
