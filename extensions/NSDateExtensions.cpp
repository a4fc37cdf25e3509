// SPDX-License-Identifier: MIT
// NSDate(ZQFoundation): builds, compares and rounds dates, and gives their calendar fields.
#include <cmath>

#include "foundation/objects/NSDate.h"
#include "foundation/time/DatePattern.h"
#include "foundation/time/NSCalendar.h"
#include "foundation/time/WallTime.h"

namespace ZQFoundation {

namespace {

/// The value of a calendar field; 0 if the date does not have it. Of the receiver, only whether it is nil
/// matters: an operation on nil returns 0, even if its argument is a date. The calendar is made at each call,
/// in the process's present time zone.
std::int64_t isoField(NSCalendarUnit unit, const NSDate& receiver, const NSDate& date) noexcept {
    if (!receiver) {
        return 0;
    }
    const NSCalendar calendar = NSCalendar::calendarWithIdentifier(NSCalendarIdentifierISO8601);
    const NSInteger field = calendar.component_fromDate(unit, date);
    return field != NSDateComponentUndefined ? field : 0;
}

} // namespace

NSDate NSDate::dateWithYear_month_day_hour_minute_second_timeZone(std::int64_t year, std::int64_t month,
                                                                  std::int64_t day, std::int64_t hour,
                                                                  std::int64_t minute, std::int64_t second,
                                                                  const NSTimeZone& timeZone) noexcept {
    NSDateComponents components;
    components.year = year;
    components.month = month;
    components.day = day;
    components.hour = hour;
    components.minute = minute;
    components.second = second;
    components.timeZone = timeZone;
    return NSCalendar::calendarWithIdentifier(NSCalendarIdentifierGregorian).dateFromComponents(components);
}

NSDate NSDate::dateWithDate_andModifiedHour_minute_second(const NSDate& date, std::int64_t hour,
                                                          std::int64_t minute, std::int64_t second) noexcept {
    const NSCalendar calendar = NSCalendar::currentCalendar();
    // The era is not carried over: a year BC becomes the year AD with the same number.
    NSDateComponents components =
        calendar.components_fromDate(NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay, date);
    if (components.day == NSDateComponentUndefined) {
        return nullptr;
    }
    components.hour = hour;
    components.minute = minute;
    components.second = second;
    return calendar.dateFromComponents(components);
}

bool NSDate::isEarlierThan(const NSDate& other) const noexcept {
    return compare(other) == NSOrderedAscending;
}

bool NSDate::isLaterThan(const NSDate& other) const noexcept { return compare(other) == NSOrderedDescending; }

bool NSDate::isWithinOneSecondFrom(const NSDate& other) const noexcept {
    return *this && other && std::fabs(timeIntervalSinceDate(other)) <= 1.0;
}

bool NSDate::isAtLeastOneSecondEarlierThan(const NSDate& other) const noexcept {
    // Not -1.0: hosts rely on the result for equal dates, and for dates up to a second later.
    return *this && other && timeIntervalSinceDate(other) <= 1.0;
}

bool NSDate::isAtLeastOneSecondLaterThan(const NSDate& other) const noexcept {
    return *this && other && timeIntervalSinceDate(other) >= 1.0;
}

std::int64_t NSDate::calendarDaysBetween_and(const NSDate& first, const NSDate& second) noexcept {
    detail::Instant from = {};
    detail::Instant to = {};
    if (!detail::instantOfDate(first, from) || !detail::instantOfDate(second, to)) {
        return 0;
    }
    // Between two starts of days the number of days is the difference of the calendar dates, so the starts
    // need not be computed.
    const NSTimeZone zone = NSCalendar::currentCalendar().timeZone();
    return detail::LocalDate(to, zone).days - detail::LocalDate(from, zone).days;
}

// Half a second goes up at all times: `std::round` would take it down before the reference instant, where the
// number is negative.
NSDate NSDate::roundedDate() const noexcept {
    if (!*this) {
        return nullptr;
    }
    return dateWithTimeIntervalSinceReferenceDate(std::floor(timeIntervalSinceReferenceDate() + 0.5));
}

std::int64_t NSDate::calendarWeek() const noexcept { return calendarWeekOf(*this); }
std::int64_t NSDate::yearForCalendarWeek() const noexcept { return yearForCalendarWeekOf(*this); }
std::int64_t NSDate::calendarMonth() const noexcept { return calendarMonthOf(*this); }
std::int64_t NSDate::calendarQuarter() const noexcept { return calendarQuarterOf(*this); }
std::int64_t NSDate::calendarYear() const noexcept { return calendarYearOf(*this); }

std::int64_t NSDate::calendarWeekOf(const NSDate& date) const noexcept {
    return isoField(NSCalendarUnitWeekOfYear, *this, date);
}

std::int64_t NSDate::yearForCalendarWeekOf(const NSDate& date) const noexcept {
    return isoField(NSCalendarUnitYearForWeekOfYear, *this, date);
}

std::int64_t NSDate::calendarMonthOf(const NSDate& date) const noexcept {
    return isoField(NSCalendarUnitMonth, *this, date);
}

std::int64_t NSDate::calendarYearOf(const NSDate& date) const noexcept {
    return isoField(NSCalendarUnitYear, *this, date);
}

// The argument is deliberately ignored. Month 0, of a date without fields, gives quarter 0.
std::int64_t NSDate::calendarQuarterOf(const NSDate&) const noexcept {
    return (calendarMonthOf(*this) + 2) / 3;
}

} // namespace ZQFoundation
