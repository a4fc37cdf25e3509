// SPDX-License-Identifier: MIT
// Converts instants to calendar fields and back; differences and units of time.
// Fields that are not given have defaults; fields out of range carry, and are brought into order together.
#include "foundation/time/NSCalendar.h"

#include <string_view>

#include "foundation/objects/NSString.h"
#include "foundation/time/CalendarFields.h"
#include "foundation/time/DatePattern.h"
#include "foundation/time/WallTime.h"

namespace ZQFoundation {

using detail::LocalDate;

namespace {

/// A unit with the field that it fills.
struct UnitField {
    NSCalendarUnit unit;
    NSInteger NSDateComponents::*field;
};

constexpr UnitField unitFields[] = {
    {NSCalendarUnitEra, &NSDateComponents::era},
    {NSCalendarUnitYear, &NSDateComponents::year},
    {NSCalendarUnitMonth, &NSDateComponents::month},
    {NSCalendarUnitDay, &NSDateComponents::day},
    {NSCalendarUnitHour, &NSDateComponents::hour},
    {NSCalendarUnitMinute, &NSDateComponents::minute},
    {NSCalendarUnitSecond, &NSDateComponents::second},
    {NSCalendarUnitNanosecond, &NSDateComponents::nanosecond},
    {NSCalendarUnitWeekday, &NSDateComponents::weekday},
    {NSCalendarUnitQuarter, &NSDateComponents::quarter},
    {NSCalendarUnitWeekOfYear, &NSDateComponents::weekOfYear},
    {NSCalendarUnitYearForWeekOfYear, &NSDateComponents::yearForWeekOfYear},
};

// Compared without making a string, since calendars are made often.
bool isIdentifier(StringView text, std::string_view identifier) noexcept {
    if (text.size() != identifier.size()) {
        return false;
    }
    for (std::size_t i = 0; i < identifier.size(); ++i) {
        const char16_t unit = text.form() == StringView::Form::utf16
                                  ? text.units()[i]
                                  : static_cast<unsigned char>(text.bytes()[i]);
        if (unit != static_cast<unsigned char>(identifier[i])) {
            return false;
        }
    }
    return true;
}

/// Years are counted within their era: the year before 1 is year 1 of era 0. Years of weeks have no era and
/// count through 0.
NSInteger fieldOfDate(NSCalendarUnit unit, const LocalDate& local, int nanoseconds,
                      detail::WeekRule weeks) noexcept {
    switch (unit) {
    case NSCalendarUnitEra:
        return local.date.year > 0 ? 1 : 0;
    case NSCalendarUnitYear:
        return detail::yearOfEra(local.date.year);
    case NSCalendarUnitMonth:
        return local.date.month;
    case NSCalendarUnitDay:
        return local.date.day;
    case NSCalendarUnitHour:
        return local.hour;
    case NSCalendarUnitMinute:
        return local.minute;
    case NSCalendarUnitSecond:
        return local.second;
    case NSCalendarUnitNanosecond:
        return nanoseconds;
    case NSCalendarUnitWeekday:
        // Sunday is 1 in components.
        return detail::weekdayFromDays(local.days) % 7 + 1;
    case NSCalendarUnitQuarter:
        return detail::quarterOfMonth(local.date.month);
    case NSCalendarUnitWeekOfYear:
        return detail::weekOfDay(local.days, weeks).week;
    case NSCalendarUnitYearForWeekOfYear:
        return detail::weekOfDay(local.days, weeks).year;
    }
    return NSDateComponentUndefined;
}

constexpr NSInteger valueOr(NSInteger field, NSInteger otherwise) noexcept {
    return field != NSDateComponentUndefined ? field : otherwise;
}

/// False for an era that the calendar does not have.
[[nodiscard]] bool wallFields(const NSDateComponents& components, detail::WallFields& fields) noexcept {
    // The era of today, unless another one is given.
    const NSInteger era = valueOr(components.era, 1);
    if (era != 0 && era != 1) {
        return false;
    }
    NSInteger year = valueOr(components.year, 1);
    // Only a year far beyond the calendar overflows here; it is refused when the seconds are checked.
    if (era == 0 && __builtin_sub_overflow(1, year, &year)) {
        year = INT64_MAX;
    }
    fields = {year,
              valueOr(components.month, 1),
              valueOr(components.day, 1),
              valueOr(components.hour, 0),
              valueOr(components.minute, 0),
              valueOr(components.second, 0)};
    return true;
}

} // namespace

// The time zone is not looked up here but at each use, so making a calendar costs two comparisons.
NSCalendar NSCalendar::calendarWithIdentifier(StringView identifier) {
    if (isIdentifier(identifier, NSCalendarIdentifierGregorian)) {
        return NSCalendar(Form::gregorian);
    }
    return isIdentifier(identifier, NSCalendarIdentifierISO8601) ? NSCalendar(Form::iso8601) : NSCalendar();
}

// The user's calendar is always this one here.
NSCalendar NSCalendar::currentCalendar() noexcept { return NSCalendar(Form::gregorian); }

NSString NSCalendar::calendarIdentifier() const {
    switch (form_) {
    case Form::gregorian:
        return NSCalendarIdentifierGregorian;
    case Form::iso8601:
        return NSCalendarIdentifierISO8601;
    case Form::absent:
        break;
    }
    return nullptr;
}

NSTimeZone NSCalendar::timeZone() const noexcept {
    if (form_ == Form::absent) {
        return nullptr;
    }
    // The default zone is queried at each call, so that a change takes effect.
    return timeZone_ ? timeZone_ : NSTimeZone::defaultTimeZone();
}

NSDate NSCalendar::dateFromComponents(const NSDateComponents& components) const noexcept {
    detail::WallFields fields = {};
    if (form_ == Form::absent || !wallFields(components, fields)) {
        return nullptr;
    }
    constexpr NSInteger nanosecondsPerSecond = 1000000000;
    const NSInteger nanoseconds = valueOr(components.nanosecond, 0);
    // Nanoseconds carry into the seconds in either direction.
    const detail::WideInteger wall =
        detail::wallSecondsFromFields(fields) + detail::floorDivide(nanoseconds, nanosecondsPerSecond);
    if (!detail::isWithinCalendar(wall)) {
        return nullptr;
    }
    // A zone in the components applies to these components only.
    const std::int64_t instant = detail::instantOfWallTime(
        static_cast<std::int64_t>(wall), components.timeZone ? components.timeZone : timeZone());
    if (!detail::isWithinCalendar(instant)) {
        return nullptr;
    }
    return detail::dateOfInstant(
        {instant, static_cast<std::int32_t>(detail::floorModulo(nanoseconds, nanosecondsPerSecond))});
}

// The local date is computed once for all units. Unknown units are ignored.
NSDateComponents NSCalendar::components_fromDate(unsigned units, const NSDate& date) const noexcept {
    NSDateComponents components;
    detail::Instant instant = {};
    if (form_ == Form::absent || !detail::instantOfDate(date, instant)) {
        return components;
    }
    components.timeZone = timeZone();
    const LocalDate local(instant, components.timeZone);
    const auto weeks = form_ == Form::iso8601 ? detail::WeekRule::iso8601 : detail::WeekRule::plain;
    for (const UnitField& entry : unitFields) {
        if ((units & entry.unit) != 0) {
            components.*entry.field = fieldOfDate(entry.unit, local, instant.nanoseconds, weeks);
        }
    }
    return components;
}

NSInteger NSCalendar::component_fromDate(NSCalendarUnit unit, const NSDate& date) const noexcept {
    if (form_ == Form::absent) {
        return 0;
    }
    detail::Instant instant = {};
    if (!detail::instantOfDate(date, instant)) {
        return NSDateComponentUndefined;
    }
    const auto weeks = form_ == Form::iso8601 ? detail::WeekRule::iso8601 : detail::WeekRule::plain;
    return fieldOfDate(unit, LocalDate(instant, timeZone()), instant.nanoseconds, weeks);
}

} // namespace ZQFoundation
