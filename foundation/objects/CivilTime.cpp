// SPDX-License-Identifier: MIT
// Days, months, years and weeks of the Gregorian calendar, without time zones.
// The arithmetic is exact for every 64-bit day number; where a sum could overflow, it is checked or arranged
// differently.
#include "foundation/objects/CivilTime.h"

namespace ZQFoundation::detail {

namespace {

// Years are counted from March here: then the leap day is a year's last, and the months' lengths follow a
// pattern (153 days in five months) from which the days before a month are computed without a table.
constexpr std::int64_t daysFromMarchOfYear0 = 719468; ///< to 1970-01-01
constexpr std::int64_t cyclesBefore1970 = daysFromMarchOfYear0 / daysPerCycle;
constexpr int daysIntoCycle1970 = static_cast<int>(daysFromMarchOfYear0 % daysPerCycle);

constexpr unsigned quartersPerCentury = 146097;
constexpr unsigned quartersPerYear = 1461;

// 0, 31, 61, 92, 122, 153, ...: months of 31 and 30 days alternate, starting again after five.
constexpr int daysBeforeMonthFromMarch(int month) noexcept { return (153 * month + 2) / 5; }

/// Whether a year with this weekday on 1 January has 53 weeks: it must contain 53 Thursdays.
constexpr bool hasLongWeekCount(int firstWeekday, bool leap) noexcept {
    return firstWeekday == 4 || (leap && firstWeekday == 3);
}

} // namespace

CivilDate civilFromDays(std::int64_t days) noexcept {
    // Whole cycles are removed before anything is added, so no day number is too large.
    std::int64_t cycle = floorDivide(days, daysPerCycle) + cyclesBefore1970;
    int dayOfCycle = static_cast<int>(floorModulo(days, daysPerCycle)) + daysIntoCycle1970;
    if (dayOfCycle >= daysPerCycle) {
        dayOfCycle -= static_cast<int>(daysPerCycle);
        ++cycle;
    }
    // In quarters of a day centuries and years are of equal length: the longer ones come last in their group.
    const unsigned quarterOfCycle = 4 * static_cast<unsigned>(dayOfCycle) + 3;
    const unsigned century = quarterOfCycle / quartersPerCentury;
    const unsigned quarterOfCentury = (quarterOfCycle % quartersPerCentury) | 3;
    const int yearOfCycle = static_cast<int>(100 * century + quarterOfCentury / quartersPerYear);
    const int dayFromMarch = static_cast<int>((quarterOfCentury % quartersPerYear) / 4);
    // The inverse of `daysBeforeMonthFromMarch`.
    const int monthFromMarch = (5 * dayFromMarch + 2) / 153;
    const int month = monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9;
    return {cycle * 400 + yearOfCycle + (month <= 2 ? 1 : 0), month,
            dayFromMarch - daysBeforeMonthFromMarch(monthFromMarch) + 1};
}

bool daysFromCivil(std::int64_t year, std::int64_t month, std::int64_t day, std::int64_t& days) noexcept {
    // Months from March: January and February belong to the year before.
    std::int64_t months = 0;
    std::int64_t yearFromMarch = 0;
    if (__builtin_sub_overflow(month, 3, &months) ||
        __builtin_add_overflow(year, floorDivide(months, 12), &yearFromMarch)) {
        return false;
    }
    const int monthFromMarch = static_cast<int>(floorModulo(months, 12));
    const int yearOfCycle = static_cast<int>(floorModulo(yearFromMarch, 400));
    const int dayOfCycle =
        yearOfCycle * 365 + yearOfCycle / 4 - yearOfCycle / 100 + daysBeforeMonthFromMarch(monthFromMarch);
    std::int64_t sum = 0;
    if (__builtin_mul_overflow(floorDivide(yearFromMarch, 400) - cyclesBefore1970, daysPerCycle, &sum) ||
        __builtin_add_overflow(sum, dayOfCycle - daysIntoCycle1970 - 1, &sum) ||
        __builtin_add_overflow(sum, day, &sum)) {
        return false;
    }
    days = sum;
    return true;
}

bool isLeapYear(std::int64_t year) noexcept { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

int weekdayFromDays(std::int64_t days) noexcept {
    // Day 0 was a Thursday.
    return static_cast<int>((floorModulo(days, 7) + 3) % 7) + 1;
}

int dayOfYear(const CivilDate& date) noexcept {
    if (date.month <= 2) {
        return (date.month - 1) * 31 + date.day;
    }
    return 59 + (isLeapYear(date.year) ? 1 : 0) + daysBeforeMonthFromMarch(date.month - 3) + date.day;
}

WeekOfYear weekFromDays(std::int64_t days) noexcept {
    const CivilDate date = civilFromDays(days);
    const int ordinal = dayOfYear(date);
    const int weekday = weekdayFromDays(days);
    // The weekday of 1 January, which decides about the year's weeks.
    const int firstWeekday = static_cast<int>(floorModulo(weekday - ordinal, 7)) + 1;
    // The number of the week's Thursday within the year, in weeks.
    const int week = (ordinal - weekday + 10) / 7;
    if (week < 1) {
        const bool leap = isLeapYear(date.year - 1);
        // A common year moves the weekday by one, a leap year by two.
        const int firstWeekdayBefore =
            static_cast<int>(floorModulo(firstWeekday - 1 - (leap ? 2 : 1), 7)) + 1;
        return {date.year - 1, hasLongWeekCount(firstWeekdayBefore, leap) ? 53 : 52};
    }
    if (week == 53 && !hasLongWeekCount(firstWeekday, isLeapYear(date.year))) {
        return {date.year + 1, 1};
    }
    return {date.year, week};
}

} // namespace ZQFoundation::detail
