// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_TIME_WALLTIME_H
#define ZQFOUNDATION_TIME_WALLTIME_H

#include <cstdint>

#include "foundation/objects/CivilTime.h"
#include "foundation/time/Clock.h"
#include "foundation/time/NSTimeZone.h"

/// What calendars and wall clocks show, and the instants at which they show it. A wall time is counted in
/// seconds, each day having 86400, from the midnight with which 1970 began on the same wall.
namespace ZQFoundation::detail {

/// Calendars know the instants that are at most this many seconds from 1970, 292,000,000,000 years. What
/// remains of 64 bits is enough to go on to the end of any year, and to any zone's offset.
inline constexpr std::int64_t maxCalendarSeconds = 292000000000 * 31556952;

/// Wide enough for every sum of seven 64-bit fields.
__extension__ typedef __int128 WideInteger;

constexpr bool isWithinCalendar(WideInteger seconds) noexcept {
    return seconds >= -maxCalendarSeconds && seconds <= maxCalendarSeconds;
}

/// Fields as they were given, out of their ranges or not. The year counts astronomically.
struct WallFields {
    std::int64_t year;
    std::int64_t month;
    std::int64_t day;
    std::int64_t hour;
    std::int64_t minute;
    std::int64_t second;
};

/// The seconds that the fields come to: first the month carries into the year, then days, hours, minutes and
/// seconds are added. Defined for all fields.
///
///     2024, 13, 1, 0, 0, 0      2025-01-01 00:00:00
///     2021, 2, 29, 26, -1, 0    2021-03-02 01:59:00
WideInteger wallSecondsFromFields(const WallFields& fields) noexcept;

/// The instant at which the zone's clocks show a wall time, the first one when they show it twice. When they
/// skip it, the one at which they would have shown it, had they not been changed.
///
///     New York, 2024-11-03 01:30    05:30 UTC, in daylight-saving time
///     New York, 2024-03-10 02:30    07:30 UTC, which is 03:30
///
/// A wall time within `maxCalendarSeconds`, or somewhat beyond.
std::int64_t instantOfWallTime(std::int64_t wallSeconds, const NSTimeZone& zone) noexcept;

/// The first instant at which the zone's clocks show a wall time or, having skipped it, a later one.
std::int64_t firstInstantFromWallTime(std::int64_t wallSeconds, const NSTimeZone& zone) noexcept;

/// Days begin at their midnight or, where that is skipped, with the change that skips it.
inline std::int64_t startOfDay(std::int64_t days, const NSTimeZone& zone) noexcept {
    return firstInstantFromWallTime(days * secondsPerDay, zone);
}

/// An instant of the calendar for a date, the fraction cut to nanoseconds. False, with nothing written, for
/// nil, not-a-number, and what is beyond the calendar.
[[nodiscard]] bool instantOfDate(const NSDate& date, Instant& instant) noexcept;

/// The nearest date.
NSDate dateOfInstant(Instant instant) noexcept;

} // namespace ZQFoundation::detail

#endif
