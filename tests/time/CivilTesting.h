// SPDX-License-Identifier: MIT
// Dates of the Gregorian calendar by the C library and by plain counting, for tests that compare with them.
#ifndef ZQFOUNDATION_TESTS_TIME_CIVILTESTING_H
#define ZQFOUNDATION_TESTS_TIME_CIVILTESTING_H

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>

#include <time.h>

#include "foundation/objects/NSDate.h"

namespace civiltest {

/// Wide enough for any sum of 64-bit fields in seconds.
__extension__ using Wide = __int128;

/// Fields as an operation takes them, in their range or not.
struct Fields {
    std::int64_t year = 1;
    std::int64_t month = 1;
    std::int64_t day = 1;
    std::int64_t hour = 0;
    std::int64_t minute = 0;
    std::int64_t second = 0;
};

inline std::string shown(const Fields& fields) {
    char text[160];
    std::snprintf(text, sizeof text, "%lld-%lld-%lld %lld:%lld:%lld", static_cast<long long>(fields.year),
                  static_cast<long long>(fields.month), static_cast<long long>(fields.day),
                  static_cast<long long>(fields.hour), static_cast<long long>(fields.minute),
                  static_cast<long long>(fields.second));
    return text;
}

/// Seconds since 1970 in UTC, by the C library. For fields in their range; the year 0 is the one before 1.
inline std::int64_t unixSeconds(int year, int month, int day, int hour = 0, int minute = 0, int second = 0) {
    struct tm fields = {};
    fields.tm_year = year - 1900;
    fields.tm_mon = month - 1;
    fields.tm_mday = day;
    fields.tm_hour = hour;
    fields.tm_min = minute;
    fields.tm_sec = second;
    return timegm(&fields);
}

inline ZQFoundation::NSDate dateAt(std::int64_t unixTime) {
    return ZQFoundation::NSDate::dateWithTimeIntervalSinceReferenceDate(
        static_cast<double>(unixTime - 978307200));
}

inline ZQFoundation::NSDate utc(int year, int month, int day, int hour = 0, int minute = 0, int second = 0) {
    return dateAt(unixSeconds(year, month, day, hour, minute, second));
}

inline ZQFoundation::NSDate later(const ZQFoundation::NSDate& date, double seconds) {
    return ZQFoundation::NSDate::dateWithTimeIntervalSinceReferenceDate(
        date.timeIntervalSinceReferenceDate() + seconds);
}

/// "2024-03-10 07:30:00" in UTC by the C library, with a fraction behind it when there is one; "(nil)".
inline std::string shown(const ZQFoundation::NSDate& date) {
    if (!date) {
        return "(nil)";
    }
    const double seconds = date.timeIntervalSinceReferenceDate();
    const double whole = std::floor(seconds);
    char text[160];
    struct tm fields = {};
    const bool fits = std::fabs(whole) < 6e16;
    const time_t time = fits ? static_cast<time_t>(whole) + 978307200 : 0;
    if (!fits || gmtime_r(&time, &fields) == nullptr) {
        std::snprintf(text, sizeof text, "%.17g s", seconds);
        return text;
    }
    const int length =
        std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", fields.tm_year + 1900,
                      fields.tm_mon + 1, fields.tm_mday, fields.tm_hour, fields.tm_min, fields.tm_sec);
    if (seconds != whole) {
        std::snprintf(text + length, sizeof text - static_cast<std::size_t>(length), " + %.9g",
                      seconds - whole);
    }
    return text;
}

constexpr Wide floorDivided(Wide value, Wide divisor) {
    return value / divisor - (value % divisor < 0 ? 1 : 0);
}

constexpr bool isLeap(Wide year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

/// The days from 1970-01-01 to 1 January of the year: 365 each and one more for each leap year before it.
constexpr Wide daysBeforeYear(Wide year) {
    const Wide last = year - 1;
    const Wide leapDays = floorDivided(last, 4) - floorDivided(last, 100) + floorDivided(last, 400);
    constexpr Wide leapDaysBefore1970 = 492 - 19 + 4;
    return (year - 1970) * 365 + leapDays - leapDaysBefore1970;
}

/// The wall time that the fields name, as seconds from 1970-01-01 00:00: months carry into years first, then
/// all the rest is added up.
constexpr Wide wallSeconds(const Fields& fields) {
    constexpr int monthDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const Wide months = Wide{fields.year} * 12 + fields.month - 1;
    const Wide year = floorDivided(months, 12);
    Wide days = daysBeforeYear(year);
    const int month = static_cast<int>(months - year * 12);
    for (int i = 0; i < month; ++i) {
        days += monthDays[i] + (i == 1 && isLeap(year) ? 1 : 0);
    }
    days += Wide{fields.day} - 1;
    return days * 86400 + Wide{fields.hour} * 3600 + Wide{fields.minute} * 60 + fields.second;
}

static_assert(wallSeconds({1970, 1, 1, 0, 0, 0}) == 0);
static_assert(wallSeconds({2001, 1, 1, 0, 0, 0}) == 978307200);

/// How far the calendar reaches to both sides of 1970: 292,000,000,000 years of 365.2425 days.
inline constexpr Wide calendarReach = Wide{292'000'000'000} * 31'556'952;

} // namespace civiltest

#endif
