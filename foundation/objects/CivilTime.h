// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_OBJECTS_CIVILTIME_H
#define ZQFOUNDATION_OBJECTS_CIVILTIME_H

#include <cstdint>

/// Dates of the Gregorian calendar, extended without limit in both directions, as day numbers: day 0 is
/// 1970-01-01. Years are counted astronomically (0 is the year before 1). Every function is defined for every
/// argument, takes a few nanoseconds, and may be called from any thread.
namespace ZQFoundation::detail {

inline constexpr std::int64_t secondsPerDay = 86400;
inline constexpr std::int64_t daysPerCycle = 146097; ///< 400 years, after which dates and weekdays repeat

struct CivilDate {
    std::int64_t year;
    int month; ///< 1 to 12
    int day;   ///< 1 to 31

    friend bool operator==(const CivilDate&, const CivilDate&) = default;
};

/// A week that begins on Monday; the first one of a year contains the year's first Thursday.
struct WeekOfYear {
    std::int64_t year;
    int week; ///< 1 to 53

    friend bool operator==(const WeekOfYear&, const WeekOfYear&) = default;
};

/// Rounded down, so that the remainder is never negative. The divisor is positive.
constexpr std::int64_t floorDivide(std::int64_t value, std::int64_t divisor) noexcept {
    return value / divisor - (value % divisor < 0 ? 1 : 0);
}
constexpr std::int64_t floorModulo(std::int64_t value, std::int64_t divisor) noexcept {
    const std::int64_t rest = value % divisor;
    return rest < 0 ? rest + divisor : rest;
}

/// The sum, or the nearest limit if it does not fit in 64 bits.
constexpr std::int64_t saturatingAdd(std::int64_t left, std::int64_t right) noexcept {
    std::int64_t sum = 0;
    if (!__builtin_add_overflow(left, right, &sum)) {
        return sum;
    }
    return right < 0 ? INT64_MIN : INT64_MAX;
}

CivilDate civilFromDays(std::int64_t days) noexcept;

/// The day number of a date whose month and day may be out of their range and then carry over: month 13 is
/// January of the next year, day 0 the last day of the month before. False, with `days` unchanged, if an
/// intermediate sum does not fit in 64 bits; for every date within the years +-25,000,000,000,000,000 it
/// does.
///
///     2024, 3, 5      19787
///     2021, 2, 29     18687    (2021-03-01)
///     2020, 13, 1     18628    (2021-01-01)
[[nodiscard]] bool daysFromCivil(std::int64_t year, std::int64_t month, std::int64_t day,
                                 std::int64_t& days) noexcept;

bool isLeapYear(std::int64_t year) noexcept;

/// 1 Monday to 7 Sunday.
int weekdayFromDays(std::int64_t days) noexcept;

/// 1 to 366.
int dayOfYear(const CivilDate& date) noexcept;

WeekOfYear weekFromDays(std::int64_t days) noexcept;

} // namespace ZQFoundation::detail

#endif
