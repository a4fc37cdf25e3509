// SPDX-License-Identifier: MIT
#include "foundation/time/DateNames.h"

#include <gtest/gtest.h>

namespace ZQFoundation::detail {
namespace {

TEST(DateNames, countsMonthsAndWeekdaysFromOne) {
    EXPECT_EQ(monthName(1), "January");
    EXPECT_EQ(monthName(12), "December");
    EXPECT_EQ(shortMonthName(9), "Sep");
    EXPECT_EQ(weekdayName(1), "Monday");
    EXPECT_EQ(weekdayName(7), "Sunday");
    EXPECT_EQ(shortWeekdayName(3), "Wed");
}

TEST(DateNames, startsTheSecondHalfOfTheDayAtNoon) {
    EXPECT_EQ(dayHalfName(0), "AM");
    EXPECT_EQ(dayHalfName(11), "AM");
    EXPECT_EQ(dayHalfName(12), "PM");
    EXPECT_EQ(dayHalfName(23), "PM");
}

TEST(DateNames, tellsZonesOfOneAbbreviationApartByTheirOffset) {
    const struct {
        const char* abbreviation;
        int minutes;
        const char* name;
    } rows[] = {
        {"CET", 60, "Central European Standard Time"},
        {"IST", 60, "Irish Standard Time"},
        {"IST", 120, "Israel Standard Time"},
        {"IST", 330, "India Standard Time"},
        {"CST", -360, "Central Standard Time"},
        {"CST", 480, "China Standard Time"},
        {"CDT", -240, "Cuba Daylight Time"},
        {"UTC", 0, "Coordinated Universal Time"},
        {"CET", 120, ""},
        {"XYZ", 60, ""},
        {nullptr, 60, ""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(longZoneName({0, 1, row.minutes * 60, false, row.abbreviation}), row.name);
    }
}

} // namespace
} // namespace ZQFoundation::detail
