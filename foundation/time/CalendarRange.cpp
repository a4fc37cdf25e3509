// SPDX-License-Identifier: MIT
// NSCalendar: the units of a calendar as stretches of time.
// Days, weeks, months and years begin with the first instant of their first day; hours and less follow the
// clock.
#include "foundation/time/CalendarFields.h"
#include "foundation/time/DatePattern.h"
#include "foundation/time/NSCalendar.h"
#include "foundation/time/WallTime.h"
#include "foundation/time/ZoneAccess.h"

namespace ZQFoundation {

using detail::LocalDate;

namespace {

/// Whole seconds since 1970, the end excluded.
struct Span {
    std::int64_t start;
    std::int64_t end;
};

struct DaySpan {
    std::int64_t first;
    std::int64_t next; ///< the day after the last one
};

// The month after the last may be the thirteenth, which carries.
DaySpan monthSpan(std::int64_t year, int firstMonth, int count) noexcept {
    return {detail::firstDayOfMonth(year, firstMonth), detail::firstDayOfMonth(year, firstMonth + count)};
}

/// False for a unit that is not made of days.
bool daysOfUnit(NSCalendarUnit unit, const LocalDate& local, detail::WeekRule weeks, DaySpan& days) noexcept {
    const detail::CivilDate& date = local.date;
    switch (unit) {
    case NSCalendarUnitYear:
        days = monthSpan(date.year, 1, 12);
        return true;
    case NSCalendarUnitQuarter:
        days = monthSpan(date.year, 3 * detail::quarterOfMonth(date.month) - 2, 3);
        return true;
    case NSCalendarUnitMonth:
        days = monthSpan(date.year, date.month, 1);
        return true;
    case NSCalendarUnitWeekOfYear:
        days.first = detail::firstDayOfWeek(local.days, weeks);
        days.next = days.first + 7;
        return true;
    case NSCalendarUnitDay:
        days = {local.days, local.days + 1};
        return true;
    default:
        return false;
    }
}

int secondsOfUnit(NSCalendarUnit unit) noexcept {
    switch (unit) {
    case NSCalendarUnitHour:
        return 3600;
    case NSCalendarUnitMinute:
        return 60;
    case NSCalendarUnitSecond:
        return 1;
    default:
        return 0;
    }
}

/// An hour or a minute ends early where the clocks leave it, and begins late where they enter it midway.
/// All zones change by whole seconds, so a second never does so.
Span clockSpan(const LocalDate& local, int length) noexcept {
    const int timeOfHour = local.minute * 60 + local.second;
    Span span = {};
    span.start = local.instant - timeOfHour % length;
    span.end = span.start + length;
    // A change may be one of the clocks' name alone.
    detail::ZonePeriod period = detail::ZoneAccess::periodAt(local.zone, local.instant);
    while (period.until < span.end) {
        const detail::ZonePeriod next = detail::ZoneAccess::periodAt(local.zone, period.until);
        // A change that leaves the offset as it is does not end the hour.
        span.end = next.offset != local.offset ? period.until : span.end;
        period = next;
    }
    period = detail::ZoneAccess::periodAt(local.zone, local.instant);
    while (period.from > span.start) {
        const detail::ZonePeriod before = detail::ZoneAccess::periodAt(local.zone, period.from - 1);
        span.start = before.offset != local.offset ? period.from : span.start;
        period = before;
    }
    return span;
}

} // namespace

bool NSCalendar::rangeOfUnit_startDate_interval_forDate(NSCalendarUnit unit, NSDate* start,
                                                        NSTimeInterval* interval,
                                                        const NSDate& date) const noexcept {
    detail::Instant instant = {};
    if (form_ == Form::absent || !detail::instantOfDate(date, instant)) {
        return false;
    }
    const LocalDate local(instant, timeZone());
    const auto weeks = form_ == Form::iso8601 ? detail::WeekRule::iso8601 : detail::WeekRule::plain;
    Span span = {};
    DaySpan days = {};
    if (daysOfUnit(unit, local, weeks, days)) {
        // From start to start, so that a day of 23 or 25 hours has its real length.
        span = {detail::startOfDay(days.first, local.zone), detail::startOfDay(days.next, local.zone)};
    } else if (const int length = secondsOfUnit(unit); length != 0) {
        span = clockSpan(local, length);
    } else {
        return false;
    }
    if (start != nullptr) {
        *start = detail::dateOfInstant({span.start, 0});
    }
    if (interval != nullptr) {
        *interval = static_cast<NSTimeInterval>(span.end - span.start);
    }
    return true;
}

NSDate NSCalendar::startOfDayForDate(const NSDate& date) const noexcept {
    NSDate start;
    static_cast<void>(rangeOfUnit_startDate_interval_forDate(NSCalendarUnitDay, &start, nullptr, date));
    return start;
}

} // namespace ZQFoundation
