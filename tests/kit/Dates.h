// SPDX-License-Identifier: MIT
// Dates by the C library, for tests that compare with it.
#ifndef ZQFOUNDATION_TESTS_KIT_DATES_H
#define ZQFOUNDATION_TESTS_KIT_DATES_H

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>

#include <time.h>

#include "foundation/objects/NSDate.h"
#include "tests/models/Calendar.h"

namespace ZQFoundation::kit {

inline std::string shown(const models::Fields& fields) {
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

inline NSDate dateAt(std::int64_t unixTime) {
    return NSDate::dateWithTimeIntervalSinceReferenceDate(static_cast<double>(unixTime - 978307200));
}

inline NSDate utc(int year, int month, int day, int hour = 0, int minute = 0, int second = 0) {
    return dateAt(unixSeconds(year, month, day, hour, minute, second));
}

inline NSDate later(const NSDate& date, double seconds) {
    return NSDate::dateWithTimeIntervalSinceReferenceDate(date.timeIntervalSinceReferenceDate() + seconds);
}

/// "2024-03-10 07:30:00" in UTC by the C library, followed by a fraction when there is one; "(nil)" for nil.
inline std::string shown(const NSDate& date) {
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

} // namespace ZQFoundation::kit

#endif
