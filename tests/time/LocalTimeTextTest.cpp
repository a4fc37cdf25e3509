// SPDX-License-Identifier: MIT
// Local time as text, to the millisecond.
#include "foundation/time/LocalTimeText.h"

#include <string>

#include <gtest/gtest.h>

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
        {{1709644029, 42500000}, "2024-03-05 14:07:09.043"},
        {{1709644029, 999500000}, "2024-03-05 14:07:10.000"},
        {{1711846799, 999999999}, "2024-03-31 03:00:00.000"},
        {{1729990799, 0}, "2024-10-27 02:59:59.000"},
        {{1729990800, 0}, "2024-10-27 02:00:00.000"},
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

} // namespace
} // namespace ZQFoundation::detail
