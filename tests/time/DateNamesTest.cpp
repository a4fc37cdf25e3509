// SPDX-License-Identifier: MIT
// Names of months, weekdays, halves of the day and zones.
#include "foundation/time/DateNames.h"

#include <gtest/gtest.h>

namespace ZQFoundation::detail {
namespace {

TEST(DateNames, countsMonthsAndWeekdaysFromOne) {
    const char* const months[] = {"January", "February", "March",     "April",   "May",      "June",
                                  "July",    "August",   "September", "October", "November", "December"};
    for (int month = 1; month <= 12; ++month) {
        EXPECT_EQ(monthName(month), months[month - 1]);
        EXPECT_EQ(shortMonthName(month), std::string(months[month - 1]).substr(0, 3));
    }
    const char* const weekdays[] = {"Monday", "Tuesday",  "Wednesday", "Thursday",
                                    "Friday", "Saturday", "Sunday"};
    for (int weekday = 1; weekday <= 7; ++weekday) {
        EXPECT_EQ(weekdayName(weekday), weekdays[weekday - 1]);
        EXPECT_EQ(shortWeekdayName(weekday), std::string(weekdays[weekday - 1]).substr(0, 3));
    }
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
