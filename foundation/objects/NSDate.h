// SPDX-License-Identifier: MIT
// Declares NSDate, an instant.
#ifndef ZQFOUNDATION_OBJECTS_NSDATE_H
#define ZQFOUNDATION_OBJECTS_NSDATE_H

#include <compare>

#include "NSString.h"

namespace ZQFoundation {

/// Seconds, with fraction.
using NSTimeInterval = double;

/// An instant: the seconds since the reference instant 2001-01-01 00:00:00 UTC, stored in the handle itself.
class ZQFOUNDATION_EXPORT NSDate : public NSObject {
public:
    constexpr NSDate() noexcept = default;
    constexpr NSDate(std::nullptr_t) noexcept {}

    /// The date that the type's `ObjectConversion` makes.
    template <detail::ConvertedTo<NSDate> T>
    NSDate(const T& object) : NSDate(detail::convertedObject(object)) {}

    /// The value when it is a date, else nil.
    explicit NSDate(const NSObject& object) noexcept : NSObject(object, detail::Kind::date) {}

    /// The current instant.
    static NSDate date();

    /// The instant `seconds` after 2001-01-01 00:00:00 UTC, or before it if negative.
    static constexpr NSDate dateWithTimeIntervalSinceReferenceDate(NSTimeInterval seconds) noexcept {
        return NSDate(Payload{.real = seconds});
    }

    /// The instant `seconds` after 1970-01-01 00:00:00 UTC, or before it if negative.
    ///
    ///     NSDate::dateWithTimeIntervalSince1970(0).description();  // "1970-01-01 00:00:00 +0000"
    static constexpr NSDate dateWithTimeIntervalSince1970(NSTimeInterval seconds) noexcept {
        return NSDate(Payload{.real = seconds - timeIntervalBetween1970AndReferenceDate});
    }

    /// Seconds from 1970-01-01 to 2001-01-01, both at 00:00:00 UTC.
    static constexpr NSTimeInterval timeIntervalBetween1970AndReferenceDate = 978307200.0;

    /// Seconds from 2001-01-01 00:00:00 UTC to this date, negative before it; 0 for nil.
    NSTimeInterval timeIntervalSinceReferenceDate() const noexcept {
        return kind_ == detail::Kind::date ? payload_.real : 0;
    }

    /// Seconds from 1970-01-01 00:00:00 UTC to this date, negative before it; 0 for nil.
    NSTimeInterval timeIntervalSince1970() const noexcept {
        return kind_ == detail::Kind::date ? payload_.real + timeIntervalBetween1970AndReferenceDate : 0;
    }

    /// Seconds from the other date to this one, negative if this one is earlier; 0 for nil. If the other date
    /// is nil, it counts as the reference instant.
    NSTimeInterval timeIntervalSinceDate(const NSDate& other) const noexcept {
        return *this ? timeIntervalSinceReferenceDate() - other.timeIntervalSinceReferenceDate() : 0;
    }

    /// The earlier date comes first; the same if either is nil.
    NSComparisonResult compare(const NSDate& other) const noexcept;

    /// Whether both are exactly the same instant, fractions included. False if either is nil.
    bool isEqualToDate(const NSDate& other) const noexcept;

    /// The earlier date first, nil before all; a date that is NaN seconds has no order.
    friend std::partial_ordering operator<=>(const NSDate& left, const NSDate& right) noexcept {
        return left && right ? left.payload_.real <=> right.payload_.real
                             : static_cast<bool>(left) <=> static_cast<bool>(right);
    }

    /// @name NSDate(ZQFoundation)
    /// Calendars are created at each call, in the process's time zone of that moment unless one is given.
    /// @{

    /// The instant of Gregorian fields; a nil zone is the process's. Fields out of range carry over: day 0 is
    /// the last day of the month before, and year 0 the year before 1. A wall time that the clocks skip uses
    /// the offset from before the change, one that occurs twice is the first. `NSDateComponentUndefined`
    /// omits a field: it is then 1 for year, month and day, else 0. Nil if there is no such instant within
    /// 292,000,000,000 years of 1970.
    ///
    ///     // 2024-03-01 12:00 UTC: February 2024 has 29 days
    ///     NSDate::dateWithYear_month_day_hour_minute_second_timeZone(2024, 2, 30, 12, 0, 0, utc);
    static NSDate dateWithYear_month_day_hour_minute_second_timeZone(std::int64_t year, std::int64_t month,
                                                                     std::int64_t day, std::int64_t hour,
                                                                     std::int64_t minute, std::int64_t second,
                                                                     const NSTimeZone& timeZone) noexcept;

    /// That time on the date's day, without a fraction and **without the era:** a date before the year 1
    /// becomes one after it. Nil for a nil date.
    static NSDate dateWithDate_andModifiedHour_minute_second(const NSDate& date, std::int64_t hour,
                                                             std::int64_t minute,
                                                             std::int64_t second) noexcept;

    /// Whether this date comes before the other one. False if either is nil.
    bool isEarlierThan(const NSDate& other) const noexcept;

    /// Whether this date comes after the other one. False if either is nil.
    bool isLaterThan(const NSDate& other) const noexcept;

    /// Whether both dates are at most one second apart. False if either is nil.
    bool isWithinOneSecondFrom(const NSDate& other) const noexcept;

    /// **Also true for equal dates and up to one second later:** false only from there on, and if either is
    /// nil.
    ///
    ///     date.isAtLeastOneSecondEarlierThan(date);  // true
    bool isAtLeastOneSecondEarlierThan(const NSDate& other) const noexcept;

    /// Whether this date comes at least one second after the other one. False if either is nil.
    bool isAtLeastOneSecondLaterThan(const NSDate& other) const noexcept;

    /// Calendar days from the first date's day to the second's; negative when that is earlier. A date that
    /// the zone's calendar skipped counts like any other. 0 if either is nil.
    static std::int64_t calendarDaysBetween_and(const NSDate& first, const NSDate& second) noexcept;

    /// The nearest whole second, half a second up; nil for nil.
    ///
    ///     NSDate::dateWithTimeIntervalSince1970(1.5).roundedDate();  // 1970-01-01 00:00:02 +0000
    NSDate roundedDate() const noexcept;

    /// The week of ISO 8601, 1 to 53, which begins on Monday; 0 for nil and for a date beyond the calendar.
    std::int64_t calendarWeek() const noexcept;

    /// The year to which that week belongs, which may differ from the date's own; it counts through 0. 0 for
    /// nil and for a date beyond the calendar. For 2 January 2027 it is 2026: that day is in week 53 of 2026.
    std::int64_t yearForCalendarWeek() const noexcept;

    /// The month, 1 to 12; 0 for nil and for a date beyond the calendar.
    std::int64_t calendarMonth() const noexcept;

    /// The quarter of the year, 1 to 4; 0 for nil and for a date beyond the calendar.
    std::int64_t calendarQuarter() const noexcept;

    /// The year of the era; 0 for nil and for a date beyond the calendar.
    std::int64_t calendarYear() const noexcept;

    /// `calendarWeek` of the argument; 0 for a nil receiver too.
    std::int64_t calendarWeekOf(const NSDate& date) const noexcept;

    /// `yearForCalendarWeek` of the argument; 0 for a nil receiver too.
    std::int64_t yearForCalendarWeekOf(const NSDate& date) const noexcept;

    /// `calendarMonth` of the argument; 0 for a nil receiver too.
    std::int64_t calendarMonthOf(const NSDate& date) const noexcept;

    /// `calendarYear` of the argument; 0 for a nil receiver too.
    std::int64_t calendarYearOf(const NSDate& date) const noexcept;

    /// **The quarter of the receiver:** the argument is ignored.
    std::int64_t calendarQuarterOf(const NSDate& date) const noexcept;

    /// @}

private:
    constexpr explicit NSDate(Payload payload) noexcept : NSObject(payload, detail::Kind::date) {}
};

} // namespace ZQFoundation

#endif
