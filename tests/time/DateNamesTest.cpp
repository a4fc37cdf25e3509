// SPDX-License-Identifier: MIT
// Names of months, weekdays, halves of the day and zones.
#include "foundation/time/DateNames.h"

#include <gtest/gtest.h>

#include "tests/kit/Zones.h"

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

TEST(DateNames, distinguishesZonesOfOneAbbreviationByTheirOffset) {
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

TEST(DateNames, namesTheClocksOfTheMachinesZones) {
    const struct {
        const char* zone;
        const char* january;
        const char* july;
    } rows[] = {
        {"Europe/London", "Greenwich Mean Time", "British Summer Time"},
        {"Europe/Dublin", "Greenwich Mean Time", "Irish Standard Time"},
        {"Europe/Lisbon", "Western European Standard Time", "Western European Summer Time"},
        {"Europe/Berlin", "Central European Standard Time", "Central European Summer Time"},
        {"Europe/Athens", "Eastern European Standard Time", "Eastern European Summer Time"},
        {"Europe/Moscow", "Moscow Standard Time", "Moscow Standard Time"},
        {"America/St_Johns", "Newfoundland Standard Time", "Newfoundland Daylight Time"},
        {"America/Halifax", "Atlantic Standard Time", "Atlantic Daylight Time"},
        {"America/New_York", "Eastern Standard Time", "Eastern Daylight Time"},
        {"America/Chicago", "Central Standard Time", "Central Daylight Time"},
        {"America/Havana", "Cuba Standard Time", "Cuba Daylight Time"},
        {"America/Denver", "Mountain Standard Time", "Mountain Daylight Time"},
        {"America/Los_Angeles", "Pacific Standard Time", "Pacific Daylight Time"},
        {"America/Anchorage", "Alaska Standard Time", "Alaska Daylight Time"},
        {"America/Adak", "Hawaii-Aleutian Standard Time", "Hawaii-Aleutian Daylight Time"},
        {"Africa/Lagos", "West Africa Standard Time", "West Africa Standard Time"},
        {"Africa/Maputo", "Central Africa Time", "Central Africa Time"},
        {"Africa/Johannesburg", "South Africa Standard Time", "South Africa Standard Time"},
        {"Africa/Nairobi", "East Africa Time", "East Africa Time"},
        {"Asia/Jerusalem", "Israel Standard Time", "Israel Daylight Time"},
        {"Asia/Karachi", "Pakistan Standard Time", "Pakistan Standard Time"},
        {"Asia/Kolkata", "India Standard Time", "India Standard Time"},
        {"Asia/Jakarta", "Western Indonesia Time", "Western Indonesia Time"},
        {"Asia/Makassar", "Central Indonesia Time", "Central Indonesia Time"},
        {"Asia/Jayapura", "Eastern Indonesia Time", "Eastern Indonesia Time"},
        {"Asia/Shanghai", "China Standard Time", "China Standard Time"},
        {"Asia/Hong_Kong", "Hong Kong Standard Time", "Hong Kong Standard Time"},
        {"Asia/Manila", "Philippine Standard Time", "Philippine Standard Time"},
        {"Asia/Tokyo", "Japan Standard Time", "Japan Standard Time"},
        {"Asia/Seoul", "Korean Standard Time", "Korean Standard Time"},
        {"Australia/Perth", "Australian Western Standard Time", "Australian Western Standard Time"},
        {"Australia/Adelaide", "Australian Central Daylight Time", "Australian Central Standard Time"},
        {"Australia/Sydney", "Australian Eastern Daylight Time", "Australian Eastern Standard Time"},
        {"Pacific/Guam", "Chamorro Standard Time", "Chamorro Standard Time"},
        {"Pacific/Auckland", "New Zealand Daylight Time", "New Zealand Standard Time"},
        {"Pacific/Pago_Pago", "Samoa Standard Time", "Samoa Standard Time"},
    };
    if (!kit::hasZoneFile(rows[0].zone)) {
        GTEST_SKIP() << "there are no zone files on this machine";
    }
    for (const auto& row : rows) {
        const NSTimeZone zone = NSTimeZone::timeZoneWithName(row.zone);
        EXPECT_EQ(longZoneName(ZoneAccess::periodAt(zone, 1705320000)), row.january) << row.zone;
        EXPECT_EQ(longZoneName(ZoneAccess::periodAt(zone, 1721044800)), row.july) << row.zone;
    }
}

} // namespace
} // namespace ZQFoundation::detail
