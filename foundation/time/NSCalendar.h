// SPDX-License-Identifier: MIT
// Declares NSCalendar and NSDateComponents, the fields of dates.
#ifndef ZQFOUNDATION_TIME_NSCALENDAR_H
#define ZQFOUNDATION_TIME_NSCALENDAR_H

#include <cstdint>

#include "../objects/NSDate.h"
#include "../text/NSRange.h"
#include "NSTimeZone.h"

namespace ZQFoundation {

/// Signed, of the platform's word size: 64 bits.
using NSInteger = std::int64_t;

/// A field that is not set.
inline constexpr NSInteger NSDateComponentUndefined = INT64_MAX;

/// Names fields of dates; combined by `|`. The numbers are the platform's.
enum NSCalendarUnit : unsigned {
    NSCalendarUnitEra = 1U << 1,                ///< 0 before the year 1, else 1
    NSCalendarUnitYear = 1U << 2,               ///< within its era
    NSCalendarUnitMonth = 1U << 3,              ///< 1 to 12
    NSCalendarUnitDay = 1U << 4,                ///< of the month, 1 to 31
    NSCalendarUnitHour = 1U << 5,               ///< 0 to 23
    NSCalendarUnitMinute = 1U << 6,             ///< 0 to 59
    NSCalendarUnitSecond = 1U << 7,             ///< 0 to 59
    NSCalendarUnitWeekday = 1U << 9,            ///< 1 Sunday to 7 Saturday
    NSCalendarUnitQuarter = 1U << 11,           ///< 1 to 4
    NSCalendarUnitWeekOfYear = 1U << 13,        ///< 1 to 53
    NSCalendarUnitYearForWeekOfYear = 1U << 14, ///< to which the week belongs
    NSCalendarUnitNanosecond = 1U << 15,        ///< 0 to 999,999,999
};

/// The fields of a date, each either set or `NSDateComponentUndefined`, and a time zone, which may be nil.
struct NSDateComponents {
    NSInteger era = NSDateComponentUndefined;        ///< 0 before the year 1, else 1
    NSInteger year = NSDateComponentUndefined;       ///< within its era: the year before 1 is year 1 of era 0
    NSInteger month = NSDateComponentUndefined;      ///< 1 January to 12 December
    NSInteger day = NSDateComponentUndefined;        ///< of the month, from 1
    NSInteger hour = NSDateComponentUndefined;       ///< 0 to 23
    NSInteger minute = NSDateComponentUndefined;     ///< 0 to 59
    NSInteger second = NSDateComponentUndefined;     ///< 0 to 59
    NSInteger nanosecond = NSDateComponentUndefined; ///< 0 to 999,999,999
    NSInteger weekday = NSDateComponentUndefined;    ///< 1 Sunday to 7 Saturday
    NSInteger quarter = NSDateComponentUndefined;    ///< 1 to 4
    NSInteger weekOfYear = NSDateComponentUndefined; ///< 1 to 53
    NSInteger yearForWeekOfYear = NSDateComponentUndefined; ///< the year to which the week belongs, through 0
    NSTimeZone timeZone;                                    ///< of the fields; nil: the calendar's
};

/// For `NSCalendar::calendarWithIdentifier`: weeks begin on Sunday.
inline constexpr const char* NSCalendarIdentifierGregorian = "gregorian";

/// For `NSCalendar::calendarWithIdentifier`: weeks begin on Monday.
inline constexpr const char* NSCalendarIdentifierISO8601 = "iso8601";

/// Converts instants to fields and back, on the clocks of a time zone, by the rules of the Gregorian calendar
/// at all times, even before they were introduced. A small value; copy it freely, use it from any thread. A
/// default-constructed one is nil and returns nil, 0, false and unset fields.
///
/// A year is returned as the year of its era, so only era and year together identify it. If a year is given
/// without an era, 0 is the year before 1, and -1 the one before that. The years to which weeks belong have
/// no eras and count through 0.
///
/// The calendar covers 292,000,000,000 years of 365.2425 days before and after 1970. A date beyond that, or
/// one that is NaN, has no fields.
class ZQFOUNDATION_EXPORT NSCalendar {
public:
    constexpr NSCalendar() noexcept = default;
    constexpr NSCalendar(std::nullptr_t) noexcept {}

    /// The Gregorian calendar, whose weeks begin on Sunday and whose first week of a year holds 1 January, or
    /// that of ISO 8601, whose weeks begin on Monday and whose first week holds at least four days of its
    /// year; nil for another name. In the process's time zone at each use.
    static NSCalendar calendarWithIdentifier(StringView identifier);

    /// The user's calendar: the Gregorian one.
    static NSCalendar currentCalendar() noexcept;

    /// True unless the calendar is nil.
    constexpr explicit operator bool() const noexcept { return form_ != Form::absent; }

    /// The name by which the calendar was made; nil for nil.
    NSString calendarIdentifier() const;

    /// Sets the zone; nil, as at first, for the process's zone at the time of each call.
    void setTimeZone(NSTimeZone zone) noexcept { timeZone_ = zone; }
    /// The zone that applies now; nil only for a nil calendar.
    NSTimeZone timeZone() const noexcept;

    /// The instant that the fields era, year, month, day, hour, minute, second and nanosecond name, in their
    /// own time zone or else the calendar's; the others are ignored. A field that is not set is 1 for
    /// era, year, month and day, else 0. Fields out of range carry, the month first, then days, hours,
    /// minutes and seconds in local wall time: day 0 is the last day of the month before. A wall time that
    /// the clocks skip uses the offset from before the change; one that occurs twice is its first occurrence.
    /// Nil for an instant beyond the calendar, and for an era that is neither 0 nor 1.
    ///
    ///     NSDateComponents fields;
    ///     fields.year = 2024;
    ///     fields.month = 2;
    ///     fields.day = 30;                      // February has 29 days
    ///     calendar.dateFromComponents(fields);  // 1 March 2024, 00:00
    NSDate dateFromComponents(const NSDateComponents& components) const noexcept;

    /// The requested fields of the date; the others are not set. None is set for a nil date and one beyond
    /// the calendar. Sets the time zone too.
    ///
    ///     const unsigned units = NSCalendarUnitYear | NSCalendarUnitMonth;
    ///     calendar.components_fromDate(units, date).month;  // 7 in July; the day is not set
    NSDateComponents components_fromDate(unsigned units, const NSDate& date) const noexcept;

    /// One field of the date; `NSDateComponentUndefined` where there is none, 0 for a nil calendar.
    NSInteger component_fromDate(NSCalendarUnit unit, const NSDate& date) const noexcept;

    /// The difference in whole units, toward zero, negative when `to` is earlier: years, months, weeks (of
    /// the year) and days as calendar dates count them, hours, minutes, seconds and nanoseconds as they
    /// elapse. The largest requested unit is filled first; the rest goes into the next smaller ones. If the
    /// next month lacks the day, a month later is that month's last day. Adding whole days or longer units to
    /// the first instant of a day gives the first instant of another day, so between two first instants the
    /// days are those of the calendar, even where one of the days has no midnight. Other units are not set,
    /// nor is a count that does not fit.
    ///
    ///     const unsigned units = NSCalendarUnitMonth | NSCalendarUnitDay;
    ///     calendar.components_fromDate_toDate(units, january31, march1);  // 1 month and 1 day in 2024
    NSDateComponents components_fromDate_toDate(unsigned units, const NSDate& from,
                                                const NSDate& to) const noexcept;

    /// The first instant of the unit around the date and its length in seconds: 23 or 25 hours for a day of
    /// changing clocks. Units year, quarter, month, week of year, day, hour, minute and second; an hour or a
    /// minute in which the clocks are changed ends or begins with the change. False, with nothing written,
    /// for other units, for a nil date and for one beyond the calendar. Either pointer may be null.
    ///
    ///     NSDate start;
    ///     NSTimeInterval seconds = 0;
    ///     calendar.rangeOfUnit_startDate_interval_forDate(NSCalendarUnitMonth, &start, &seconds, july1);
    ///     // start: 1 July, 00:00; seconds: 2678400, which is 31 days
    bool rangeOfUnit_startDate_interval_forDate(NSCalendarUnit unit, NSDate* start, NSTimeInterval* interval,
                                                const NSDate& date) const noexcept;

    /// The first instant of the date's day: 01:00 where midnight is skipped, the first of two midnights. Nil
    /// if there is none.
    NSDate startOfDayForDate(const NSDate& date) const noexcept;

private:
    enum class Form : unsigned char { absent, gregorian, iso8601 };

    constexpr explicit NSCalendar(Form form) noexcept : form_(form) {}

    NSTimeZone timeZone_;
    Form form_ = Form::absent;
};

} // namespace ZQFoundation

#endif
