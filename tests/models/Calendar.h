// SPDX-License-Identifier: MIT
// The Gregorian calendar at all times, by counting: years have 365 days, leap days are added, months are
// subtracted one by one. Days count from 1970-01-01, years astronomically, weekdays from Sunday, which is 0.
#ifndef ZQFOUNDATION_TESTS_MODELS_CALENDAR_H
#define ZQFOUNDATION_TESTS_MODELS_CALENDAR_H

#include <cstdint>

namespace ZQFoundation::models {

/// Wide enough for any sum of 64-bit fields in seconds.
__extension__ using Wide = __int128;

constexpr Wide floorDivided(Wide value, Wide divisor) {
    return value / divisor - (value % divisor < 0 ? 1 : 0);
}

constexpr bool isLeapYear(Wide year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

constexpr int monthLength(Wide year, int month) {
    return month == 2                                              ? (isLeapYear(year) ? 29 : 28)
           : month == 4 || month == 6 || month == 9 || month == 11 ? 30
                                                                   : 31;
}

/// The day with which the year begins.
constexpr Wide newYear(Wide year) {
    const auto sinceYear1 = [](Wide y) {
        return (y - 1) * 365 + floorDivided(y - 1, 4) - floorDivided(y - 1, 100) + floorDivided(y - 1, 400);
    };
    return sinceYear1(year) - sinceYear1(1970);
}

/// Month and day may be out of their range; months carry into years first.
constexpr Wide dayNumber(Wide year, Wide month, Wide day) {
    year += floorDivided(month - 1, 12);
    const int inYear = static_cast<int>(month - floorDivided(month - 1, 12) * 12);
    Wide days = newYear(year);
    for (int m = 1; m < inYear; ++m) {
        days += monthLength(year, m);
    }
    return days + day - 1;
}

struct CivilDate {
    std::int64_t year;
    int month;
    int day;
    int dayOfYear;
    int weekday;
};

constexpr CivilDate civilDate(Wide days) {
    CivilDate date{};
    // Within a few years of the right one.
    Wide year = 1970 + floorDivided(days, 146097) * 400 + (days - floorDivided(days, 146097) * 146097) / 366;
    while (newYear(year + 1) <= days) {
        ++year;
    }
    date.year = static_cast<std::int64_t>(year);
    date.day = static_cast<int>(days - newYear(year)) + 1;
    date.dayOfYear = date.day;
    for (date.month = 1; date.day > monthLength(year, date.month); ++date.month) {
        date.day -= monthLength(year, date.month);
    }
    date.weekday = static_cast<int>(days + 4 - floorDivided(days + 4, 7) * 7);
    return date;
}

/// The day that decides in which year the week of a day is, and which week of it: of weeks from Monday the
/// Thursday, of those from Sunday, the first of which has 1 January, the Saturday.
constexpr CivilDate decisiveDay(Wide days, bool isIso) {
    const int weekday = civilDate(days).weekday;
    return civilDate(days + (isIso ? 3 - (weekday + 6) % 7 : 6 - weekday));
}

/// Fields as an operation takes them, in their range or not.
struct Fields {
    std::int64_t year = 1;
    std::int64_t month = 1;
    std::int64_t day = 1;
    std::int64_t hour = 0;
    std::int64_t minute = 0;
    std::int64_t second = 0;
};

/// The wall time that the fields name, as seconds from 1970-01-01 00:00.
constexpr Wide wallSeconds(const Fields& fields) {
    return dayNumber(fields.year, fields.month, fields.day) * 86400 + Wide{fields.hour} * 3600 +
           Wide{fields.minute} * 60 + fields.second;
}

static_assert(wallSeconds({1970, 1, 1, 0, 0, 0}) == 0);
static_assert(wallSeconds({2001, 1, 1, 0, 0, 0}) == 978307200);

} // namespace ZQFoundation::models

#endif
