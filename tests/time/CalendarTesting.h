// SPDX-License-Identifier: MIT
// Calendars in zones that a rule describes, and dates and fields as texts.
#ifndef ZQFOUNDATION_TESTS_TIME_CALENDARTESTING_H
#define ZQFOUNDATION_TESTS_TIME_CALENDARTESTING_H

#include <string>

#include "foundation/time/NSCalendar.h"
#include "tests/kit/Zones.h"

namespace ZQFoundation::calendartesting {

inline constexpr NSInteger unset = NSDateComponentUndefined;
inline constexpr unsigned allUnits =
    NSCalendarUnitEra | NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay | NSCalendarUnitHour |
    NSCalendarUnitMinute | NSCalendarUnitSecond | NSCalendarUnitNanosecond | NSCalendarUnitWeekday |
    NSCalendarUnitQuarter | NSCalendarUnitWeekOfYear | NSCalendarUnitYearForWeekOfYear;
inline constexpr unsigned plainUnits = NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay |
                                       NSCalendarUnitHour | NSCalendarUnitMinute | NSCalendarUnitSecond;

inline NSCalendar gregorian() { return NSCalendar::calendarWithIdentifier("gregorian"); }
inline NSCalendar iso() { return NSCalendar::calendarWithIdentifier(NSCalendarIdentifierISO8601); }

inline NSDate since1970(double seconds) { return NSDate::dateWithTimeIntervalSince1970(seconds); }

inline NSDate dateOf(const NSCalendar& calendar, NSInteger year, NSInteger month, NSInteger day,
                     NSInteger hour = 0, NSInteger minute = 0, NSInteger second = 0) {
    NSDateComponents fields;
    fields.year = year;
    fields.month = month;
    fields.day = day;
    fields.hour = hour;
    fields.minute = minute;
    fields.second = second;
    return calendar.dateFromComponents(fields);
}

inline std::string shown(const NSDate& date) { return date ? date.description().utf8() : "nil"; }

inline std::string number(NSInteger value) { return value == unset ? "-" : std::to_string(value); }

/// "2024-3-5 14:7:9", with "-" for what is not set.
inline std::string shown(const NSDateComponents& fields) {
    return number(fields.year) + "-" + number(fields.month) + "-" + number(fields.day) + " " +
           number(fields.hour) + ":" + number(fields.minute) + ":" + number(fields.second);
}

/// A calendar in a zone that a rule describes, so that it is the same on every machine.
struct NewYork {
    kit::TimeZone variable{"EST5EDT,M3.2.0,M11.1.0"};
    NSCalendar calendar = gregorian();
};
struct Universal {
    kit::TimeZone variable{"UTC0"};
    NSCalendar calendar = gregorian();
};

inline bool useZone(NSCalendar& calendar, const char* name) {
    const NSTimeZone zone = NSTimeZone::timeZoneWithName(name);
    calendar.setTimeZone(zone);
    return static_cast<bool>(zone);
}

/// Clocks that are changed a minute after midnight.
inline constexpr char minuteAfterMidnight[] = "STD3:30DST,M3.2.0/0:01,M11.1.0/0:01";

} // namespace ZQFoundation::calendartesting

#endif
