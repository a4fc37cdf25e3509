// SPDX-License-Identifier: MIT
#ifndef ZQFOUNDATION_FUZZ_PLAINCALENDAR_H
#define ZQFOUNDATION_FUZZ_PLAINCALENDAR_H

#include <cstdint>

/// The Gregorian calendar at all times, by counting: years have 365 days and leap days come on top, months
/// are taken off one by one. Days count from 1970-01-01, years astronomically, weekdays from Sunday, which is
/// 0.
namespace ZQFoundation::fuzzing {

struct PlainDate {
    std::int64_t year;
    int month;
    int day;
    int dayOfYear;
    int weekday;
};

inline std::int64_t roundedDown(std::int64_t value, std::int64_t divisor) {
    const std::int64_t quotient = value / divisor;
    return quotient * divisor > value ? quotient - 1 : quotient;
}

inline bool isPlainLeapYear(std::int64_t year) {
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

inline int plainMonthLength(std::int64_t year, int month) {
    return month == 2                                              ? (isPlainLeapYear(year) ? 29 : 28)
           : month == 4 || month == 6 || month == 9 || month == 11 ? 30
                                                                   : 31;
}

/// The day with which the year begins.
inline std::int64_t plainNewYear(std::int64_t year) {
    const auto before = [](std::int64_t y) { // from the beginning of year 1
        return (y - 1) * 365 + roundedDown(y - 1, 4) - roundedDown(y - 1, 100) + roundedDown(y - 1, 400);
    };
    return before(year) - before(1970);
}

/// The month may be out of its range, as the day may.
inline std::int64_t plainDays(std::int64_t year, std::int64_t month, std::int64_t day) {
    year += roundedDown(month - 1, 12);
    month -= roundedDown(month - 1, 12) * 12;
    std::int64_t days = plainNewYear(year);
    for (int m = 1; m < month; ++m) {
        days += plainMonthLength(year, m);
    }
    return days + day - 1;
}

inline PlainDate plainDate(std::int64_t days) {
    PlainDate date{};
    // Within a few years of the right one.
    date.year = 1970 + roundedDown(days, 146097) * 400 + (days - roundedDown(days, 146097) * 146097) / 366;
    while (plainNewYear(date.year + 1) <= days) {
        ++date.year;
    }
    int rest = static_cast<int>(days - plainNewYear(date.year));
    date.dayOfYear = rest + 1;
    date.month = 1;
    while (rest >= plainMonthLength(date.year, date.month)) {
        rest -= plainMonthLength(date.year, date.month);
        ++date.month;
    }
    date.day = rest + 1;
    date.weekday = static_cast<int>(days + 4 - roundedDown(days + 4, 7) * 7);
    return date;
}

} // namespace ZQFoundation::fuzzing

#endif
