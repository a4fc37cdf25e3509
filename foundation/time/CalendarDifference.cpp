// SPDX-License-Identifier: MIT
// NSCalendar: the number of units between two dates.
// Larger units are counted first, each on what the ones before it have left, always from the first date: so
// 31 January and one month is the end of February, and two months are the end of March.
#include <algorithm>

#include "foundation/time/CalendarFields.h"
#include "foundation/time/DatePattern.h"
#include "foundation/time/NSCalendar.h"
#include "foundation/time/WallTime.h"

namespace ZQFoundation {

using detail::Instant;
using detail::LocalDate;
using detail::WideInteger;

namespace {

constexpr std::int64_t nanosecondsPerSecond = 1000000000;

// In 128 bits: the calendar's whole range in nanoseconds does not fit into 64.
WideInteger nanosecondsBetween(Instant from, Instant to) noexcept {
    return (static_cast<WideInteger>(to.seconds) - from.seconds) * nanosecondsPerSecond +
           (to.nanoseconds - from.nanoseconds);
}

/// Goes from one instant to another in steps, each kind as often as it can be taken without passing the goal.
class Walk {
public:
    Walk(Instant from, Instant to, const NSTimeZone& zone) noexcept
        : start_(from, zone), goal_(to, zone), from_(from), to_(to),
          direction_(nanosecondsBetween(from, to) < 0 ? -1 : 1) {
        // From the start of a day steps lead to starts of days, wherever their clocks begin.
        // Such a day may begin at 01:00, where midnight is skipped.
        fromDayStart_ = from == Instant{detail::startOfDay(start_.days, zone), 0};
        left_ = nanosecondsBetween(from, to);
    }

    NSInteger takeMonths(int months) noexcept {
        // Months are counted on the calendar and then corrected by time, so that no loop runs over years.
        const std::int64_t between =
            (goal_.date.year - start_.date.year) * 12 + (goal_.date.month - start_.date.month) - months_;
        return take(between / months, [this, months](std::int64_t count) noexcept {
            return Place{months_ + count * months, days_};
        });
    }

    NSInteger takeDays(int days) noexcept {
        // Counted from where the months have led.
        const std::int64_t between = goal_.days - dayAt({months_, days_});
        return take(between / days, [this, days](std::int64_t count) noexcept {
            return Place{months_, days_ + count * days};
        });
    }

    /// Not set when the count has no room.
    NSInteger takeTime(std::int64_t nanoseconds) noexcept {
        // Hours and less are of equal length, so they are divided.
        const WideInteger count = left_ / nanoseconds;
        if (count <= INT64_MIN || count >= INT64_MAX) {
            return NSDateComponentUndefined;
        }
        left_ -= count * nanoseconds;
        return static_cast<NSInteger>(count);
    }

private:
    /// Months and then days away from the start.
    struct Place {
        std::int64_t months;
        std::int64_t days;
    };

    /// A day that the month does not have is its last one.
    /// The calendar's months are used only if there are any: days alone need none.
    std::int64_t dayAt(Place place) const noexcept {
        if (place.months == 0) {
            return start_.days + place.days;
        }
        const std::int64_t month = start_.date.month - 1 + place.months;
        // The month's number may be of any size, and negative.
        const std::int64_t year = start_.date.year + detail::floorDivide(month, 12);
        const int monthOfYear = static_cast<int>(detail::floorModulo(month, 12)) + 1;
        const std::int64_t first = detail::firstDayOfMonth(year, monthOfYear);
        const std::int64_t length = detail::firstDayOfMonth(year, monthOfYear + 1) - first;
        return first + std::min<std::int64_t>(start_.date.day, length) - 1 + place.days;
    }

    Instant instantAt(Place place) const noexcept {
        if (place.months == 0 && place.days == 0) {
            return from_;
        }
        const std::int64_t day = dayAt(place);
        // Not at the wall time of the start, which other days may show twice or not at all.
        if (fromDayStart_) {
            return {detail::startOfDay(day, start_.zone), 0};
        }
        const std::int64_t time = start_.hour * 3600 + start_.minute * 60 + start_.second;
        return {detail::instantOfWallTime(day * detail::secondsPerDay + time, start_.zone),
                from_.nanoseconds};
    }

    bool passesGoal(Place place) const noexcept {
        return nanosecondsBetween(instantAt(place), to_) * direction_ < 0;
    }

    /// Not more than the calendar has from date to date: a day that was left out costs no time, so it could
    /// be stepped over without passing the goal. Fewer by one or so when the time of day comes later.
    template <class PlaceAfter>
    NSInteger take(std::int64_t max, const PlaceAfter& placeAfter) noexcept {
        std::int64_t count = max * direction_ < 0 ? 0 : max;
        // No steps at all are always possible.
        // Rarely more than one step: only the time of day can be in the way.
        while (passesGoal(placeAfter(count))) {
            count -= direction_;
        }
        const Place reached = placeAfter(count);
        months_ = reached.months;
        days_ = reached.days;
        left_ = nanosecondsBetween(instantAt(reached), to_);
        return count;
    }

    const LocalDate start_;
    const LocalDate goal_;
    const Instant from_;
    const Instant to_;
    const int direction_;
    bool fromDayStart_ = false;
    std::int64_t months_ = 0;
    std::int64_t days_ = 0;
    WideInteger left_ = 0; ///< nanoseconds from where the walk is
};

} // namespace

NSDateComponents NSCalendar::components_fromDate_toDate(unsigned units, const NSDate& from,
                                                        const NSDate& to) const noexcept {
    NSDateComponents counts;
    Instant start = {};
    Instant goal = {};
    // Nil and dates beyond the calendar leave all counts unset.
    if (form_ == Form::absent || !detail::instantOfDate(from, start) || !detail::instantOfDate(to, goal)) {
        return counts;
    }
    Walk walk(start, goal, timeZone());
    if ((units & NSCalendarUnitYear) != 0) {
        counts.year = walk.takeMonths(12);
    }
    if ((units & NSCalendarUnitMonth) != 0) {
        counts.month = walk.takeMonths(1);
    }
    if ((units & NSCalendarUnitWeekOfYear) != 0) {
        counts.weekOfYear = walk.takeDays(7);
    }
    if ((units & NSCalendarUnitDay) != 0) {
        counts.day = walk.takeDays(1);
    }
    if ((units & NSCalendarUnitHour) != 0) {
        counts.hour = walk.takeTime(3600 * nanosecondsPerSecond);
    }
    if ((units & NSCalendarUnitMinute) != 0) {
        counts.minute = walk.takeTime(60 * nanosecondsPerSecond);
    }
    if ((units & NSCalendarUnitSecond) != 0) {
        counts.second = walk.takeTime(nanosecondsPerSecond);
    }
    if ((units & NSCalendarUnitNanosecond) != 0) {
        counts.nanosecond = walk.takeTime(1);
    }
    return counts;
}

} // namespace ZQFoundation
