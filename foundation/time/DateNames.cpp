// SPDX-License-Identifier: MIT
// English names of months, weekdays and zones.
// The rows of zones follow the abbreviations of the zone files. An abbreviation may occur several times with
// other offsets; both together are the key.
#include "foundation/time/DateNames.h"

namespace ZQFoundation::detail {

namespace {

constexpr std::string_view months[] = {"January", "February", "March",     "April",   "May",      "June",
                                       "July",    "August",   "September", "October", "November", "December"};
constexpr std::string_view weekdays[] = {"Monday", "Tuesday",  "Wednesday", "Thursday",
                                         "Friday", "Saturday", "Sunday"};

struct ZoneNameRow {
    std::string_view abbreviation;
    std::int32_t minutes; ///< east of Greenwich
    std::string_view name;
};

constexpr ZoneNameRow zoneNames[] = {
    {"UTC", 0, "Coordinated Universal Time"},
    {"GMT", 0, "Greenwich Mean Time"},
    // Europe
    {"BST", 60, "British Summer Time"},
    {"IST", 60, "Irish Standard Time"},
    {"WET", 0, "Western European Standard Time"},
    {"WEST", 60, "Western European Summer Time"},
    {"CET", 60, "Central European Standard Time"},
    {"CEST", 120, "Central European Summer Time"},
    {"EET", 120, "Eastern European Standard Time"},
    {"EEST", 180, "Eastern European Summer Time"},
    {"MSK", 180, "Moscow Standard Time"},
    // America
    {"NST", -210, "Newfoundland Standard Time"},
    {"NDT", -150, "Newfoundland Daylight Time"},
    {"AST", -240, "Atlantic Standard Time"},
    {"ADT", -180, "Atlantic Daylight Time"},
    {"EST", -300, "Eastern Standard Time"},
    {"EDT", -240, "Eastern Daylight Time"},
    {"CST", -360, "Central Standard Time"},
    {"CDT", -300, "Central Daylight Time"},
    {"CST", -300, "Cuba Standard Time"},
    {"CDT", -240, "Cuba Daylight Time"},
    {"MST", -420, "Mountain Standard Time"},
    {"MDT", -360, "Mountain Daylight Time"},
    {"PST", -480, "Pacific Standard Time"},
    {"PDT", -420, "Pacific Daylight Time"},
    {"AKST", -540, "Alaska Standard Time"},
    {"AKDT", -480, "Alaska Daylight Time"},
    {"HST", -600, "Hawaii-Aleutian Standard Time"},
    {"HDT", -540, "Hawaii-Aleutian Daylight Time"},
    // Africa
    {"WAT", 60, "West Africa Standard Time"},
    {"CAT", 120, "Central Africa Time"},
    {"SAST", 120, "South Africa Standard Time"},
    {"EAT", 180, "East Africa Time"},
    // Asia
    {"IST", 120, "Israel Standard Time"},
    {"IDT", 180, "Israel Daylight Time"},
    {"PKT", 300, "Pakistan Standard Time"},
    {"IST", 330, "India Standard Time"},
    {"WIB", 420, "Western Indonesia Time"},
    {"WITA", 480, "Central Indonesia Time"},
    {"WIT", 540, "Eastern Indonesia Time"},
    {"CST", 480, "China Standard Time"},
    {"HKT", 480, "Hong Kong Standard Time"},
    {"PST", 480, "Philippine Standard Time"},
    {"JST", 540, "Japan Standard Time"},
    {"KST", 540, "Korean Standard Time"},
    // Australia and the Pacific
    {"AWST", 480, "Australian Western Standard Time"},
    {"ACST", 570, "Australian Central Standard Time"},
    {"ACDT", 630, "Australian Central Daylight Time"},
    {"AEST", 600, "Australian Eastern Standard Time"},
    {"AEDT", 660, "Australian Eastern Daylight Time"},
    {"ChST", 600, "Chamorro Standard Time"},
    {"NZST", 720, "New Zealand Standard Time"},
    {"NZDT", 780, "New Zealand Daylight Time"},
    {"SST", -660, "Samoa Standard Time"},
};

} // namespace

std::string_view monthName(int month) noexcept { return months[month - 1]; }
std::string_view shortMonthName(int month) noexcept { return months[month - 1].substr(0, 3); }

std::string_view weekdayName(int weekday) noexcept { return weekdays[weekday - 1]; }
std::string_view shortWeekdayName(int weekday) noexcept { return weekdays[weekday - 1].substr(0, 3); }

std::string_view dayHalfName(int hour) noexcept { return hour < 12 ? "AM" : "PM"; }

std::string_view longZoneName(const ZonePeriod& period) noexcept {
    if (period.abbreviation == nullptr) {
        return {};
    }
    // A linear search, because the long name of a zone is rarely needed.
    for (const ZoneNameRow& row : zoneNames) {
        if (row.minutes * 60 == period.offset && row.abbreviation == period.abbreviation) {
            return row.name;
        }
    }
    return {};
}

} // namespace ZQFoundation::detail
