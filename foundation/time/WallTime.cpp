// SPDX-License-Identifier: MIT
// Converts wall times to instants, also where clocks skip or repeat.
// The zone's periods are walked in the order of time, so that the first instant that shows a wall time is
// found first.
#include "foundation/time/WallTime.h"

#include <algorithm>
#include <cmath>

#include "foundation/time/ZoneAccess.h"

namespace ZQFoundation::detail {

namespace {

constexpr std::int64_t yearsPerCycle = 400;
constexpr double nanosecondsPerSecond = 1e9;
constexpr auto referenceSeconds = static_cast<std::int64_t>(NSDate::timeIntervalBetween1970AndReferenceDate);

/// So that days may be added to the last date, and offsets to the last instant, without overflow.
static_assert(maxCalendarSeconds <= INT64_MAX - 2 * 366 * secondsPerDay - 2 * maxZoneOffset);

} // namespace

WideInteger wallSecondsFromFields(const WallFields& fields) noexcept {
    // Whole cycles of years are set aside, so the calendar itself only gets small years. Two sums of years
    // below 400: the calendar gets at most 798.
    const std::int64_t years = floorDivide(fields.month, 12);
    const std::int64_t cycles = floorDivide(fields.year, yearsPerCycle) + floorDivide(years, yearsPerCycle);
    const std::int64_t yearOfCycles =
        floorModulo(fields.year, yearsPerCycle) + floorModulo(years, yearsPerCycle);
    std::int64_t dayOfCycles = 0;
    static_cast<void>(daysFromCivil(yearOfCycles, floorModulo(fields.month, 12), 1, dayOfCycles));
    // In 128 bits, since fields may be anything.
    const WideInteger days = static_cast<WideInteger>(cycles) * daysPerCycle + dayOfCycles + fields.day - 1;
    return days * secondsPerDay + static_cast<WideInteger>(fields.hour) * 3600 +
           static_cast<WideInteger>(fields.minute) * 60 + fields.second;
}

std::int64_t instantOfWallTime(std::int64_t wallSeconds, const NSTimeZone& zone) noexcept {
    // No offset is greater, so the instant lies within these limits whatever the clocks do.
    const std::int64_t earliest = wallSeconds - maxZoneOffset;
    const std::int64_t latest = wallSeconds + maxZoneOffset;
    ZonePeriod period = ZoneAccess::periodAt(zone, earliest);
    std::int64_t from = earliest;
    // What the clocks would show if they ran on as they do.
    std::int64_t shown = wallSeconds - period.offset;
    std::int64_t missed = shown;
    bool isMissed = false;
    while (shown < from || shown >= period.until) {
        // Beyond the last change nothing comes later than `latest`, so it was missed before.
        if (period.until > latest) {
            return missed;
        }
        from = period.until;
        period = ZoneAccess::periodAt(zone, from);
        const std::int64_t unchanged = shown;
        shown = wallSeconds - period.offset;
        // Clocks that are put back again soon may still show what they have skipped.
        if (shown < from && !isMissed) {
            missed = unchanged;
            isMissed = true;
        }
    }
    return shown;
}

// Each change moves what is shown; a day that begins in the gap begins with the change.
std::int64_t firstInstantFromWallTime(std::int64_t wallSeconds, const NSTimeZone& zone) noexcept {
    ZonePeriod period = ZoneAccess::periodAt(zone, wallSeconds - maxZoneOffset);
    std::int64_t shown = wallSeconds - period.offset;
    while (shown >= period.until) {
        const std::int64_t change = period.until;
        period = ZoneAccess::periodAt(zone, change);
        shown = std::max(change, wallSeconds - period.offset);
    }
    return shown;
}

bool instantOfDate(const NSDate& date, Instant& instant) noexcept {
    const double seconds = date.timeIntervalSinceReferenceDate();
    // Not-a-number is within no limits. These are wide enough for dates counted from another year than 1970.
    constexpr auto limit = static_cast<double>(maxCalendarSeconds + referenceSeconds);
    if (!date || !(seconds >= -limit && seconds <= limit)) {
        return false;
    }
    const double whole = std::floor(seconds);
    const std::int64_t since1970 = static_cast<std::int64_t>(whole) + referenceSeconds;
    // The conversion may have moved it over the limit.
    if (!isWithinCalendar(since1970)) {
        return false;
    }
    // A fraction next to 1 may come out as 1.
    const double nanoseconds = std::min((seconds - whole) * nanosecondsPerSecond, 999999999.0);
    instant = {since1970, static_cast<std::int32_t>(nanoseconds)};
    return true;
}

NSDate dateOfInstant(Instant instant) noexcept {
    // Subtracted as integers, so that the sum is rounded once.
    return NSDate::dateWithTimeIntervalSinceReferenceDate(
        static_cast<double>(instant.seconds - referenceSeconds) +
        static_cast<double>(instant.nanoseconds) / nanosecondsPerSecond);
}

} // namespace ZQFoundation::detail
