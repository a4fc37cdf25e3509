// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_TIME_CALENDARFIELDS_H
#define ZQFOUNDATION_TIME_CALENDARFIELDS_H

#include "foundation/objects/CivilTime.h"

/// Small questions about fields of dates. Days are day numbers, 0 being 1970-01-01, and years astronomical
/// ones, unless said otherwise; no year is so far away that its days do not fit in 64 bits.
namespace ZQFoundation::detail {

/// Years of an era are counted from 1 away from its beginning: year 0 is year 1 of the era before.
constexpr std::int64_t yearOfEra(std::int64_t year) noexcept { return year > 0 ? year : 1 - year; }

constexpr int quarterOfMonth(int month) noexcept { return (month + 2) / 3; }

/// The month may be out of its range and then carries.
inline std::int64_t firstDayOfMonth(std::int64_t year, int month) noexcept {
    std::int64_t days = 0;
    static_cast<void>(daysFromCivil(year, month, 1, days));
    return days;
}

/// How the weeks of a year are numbered: by ISO 8601, from Monday, a week belonging to the year of its
/// Thursday; or plainly, from Sunday, week 1 being the one that contains 1 January.
enum class WeekRule : unsigned char { iso8601, plain };

inline std::int64_t firstDayOfWeek(std::int64_t days, WeekRule rule) noexcept {
    const int weekday = weekdayFromDays(days);
    return days - (rule == WeekRule::iso8601 ? weekday - 1 : weekday % 7);
}

inline WeekOfYear weekOfDay(std::int64_t days, WeekRule rule) noexcept {
    if (rule == WeekRule::iso8601) {
        return weekFromDays(days);
    }
    // The week of 1 January is the one whose Saturday is among the first seven days of the year.
    const CivilDate saturday = civilFromDays(firstDayOfWeek(days, rule) + 6);
    return {saturday.year, (dayOfYear(saturday) - 1) / 7 + 1};
}

} // namespace ZQFoundation::detail

#endif
