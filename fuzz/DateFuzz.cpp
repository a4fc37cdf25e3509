// SPDX-License-Identifier: MIT
// Dates as texts and as fields, at fixed offsets, against a calendar that counts days.
//
// Input: a byte that chooses the check, an offset and an instant, then a pattern (see InputReader) or fields.
#include <cmath>
#include <string>

#include "foundation/objects/NSString.h"
#include "foundation/time/LocalTimeText.h"
#include "foundation/time/NSCalendar.h"
#include "foundation/time/NSDateFormatter.h"
#include "fuzz/Fuzzing.h"
#include "fuzz/InputReader.h"
#include "tests/models/Calendar.h"

using namespace ZQFoundation;
using fuzzing::require;
using fuzzing::requireEqual;
using models::CivilDate;

namespace {

std::int64_t plainDays(std::int64_t year, std::int64_t month, std::int64_t day) {
    return static_cast<std::int64_t>(models::dayNumber(year, month, day));
}

/// An instant on the clocks of a fixed offset.
struct PlainTime {
    std::int64_t days;
    CivilDate date;
    int secondOfDay;

    PlainTime(std::int64_t seconds, int offset) : days(0), date{}, secondOfDay(0) {
        std::int64_t local = 0;
        if (__builtin_add_overflow(seconds, offset, &local)) {
            local = offset < 0 ? INT64_MIN : INT64_MAX;
        }
        days = local / 86400 - (local % 86400 < 0 ? 1 : 0);
        secondOfDay = static_cast<int>(local % 86400 + (local % 86400 < 0 ? 86400 : 0));
        date = models::civilDate(days);
    }

    std::int64_t yearOfEra() const { return date.year > 0 ? date.year : 1 - date.year; }
};

std::string digits(std::int64_t number, std::size_t count) {
    std::string text = std::to_string(number < 0 ? -number : number);
    text.insert(0, text.size() < count ? count - text.size() : 0, '0');
    return (number < 0 ? "-" : "") + text;
}

std::string clockOf(int offset, const char* separator) {
    const int distance = offset < 0 ? -offset : offset;
    const std::string seconds = distance % 60 == 0 ? "" : separator + digits(distance % 60, 2);
    return (offset < 0 ? "-" : "+") + digits(distance / 3600, 2) + separator + digits(distance / 60 % 60, 2) +
           seconds;
}

std::string offsetField(char letter, std::size_t count, int offset) {
    if (letter == 'z' && count < 4) {
        const int distance = offset < 0 ? -offset : offset;
        std::string text = "GMT";
        if (offset != 0) {
            text += (offset < 0 ? "-" : "+") + std::to_string(distance / 3600);
            text += distance % 3600 == 0 ? "" : ':' + digits(distance / 60 % 60, 2);
            text += distance % 60 == 0 ? "" : ':' + digits(distance % 60, 2);
        }
        return text;
    }
    if (letter == 'z' || count == 4) {
        return "GMT" + (offset == 0 ? "" : clockOf(offset, ":"));
    }
    if (count == 5) {
        return offset == 0 ? "Z" : clockOf(offset, ":");
    }
    return clockOf(offset, "");
}

std::string word(std::string_view names, std::size_t index, std::size_t letters) {
    for (; index > 0; --index) {
        names.remove_prefix(names.find(' ') + 1);
    }
    return std::string(names.substr(0, std::min(names.find(' '), letters)));
}

std::string dateField(char letter, std::size_t count, const PlainTime& time) {
    constexpr std::string_view months =
        "January February March April May June July August September October November December";
    constexpr std::string_view weekdays = "Sunday Monday Tuesday Wednesday Thursday Friday Saturday";
    const std::int64_t year = letter == 'Y' ? models::decisiveDay(time.days, true).year : time.yearOfEra();
    switch (letter) {
    case 'y':
    case 'Y':
        return digits(count == 2 ? std::abs(year % 100) : year, count);
    case 'M':
        return count < 3 || count > 5 ? digits(time.date.month, count)
                                      : word(months, static_cast<std::size_t>(time.date.month - 1),
                                             count == 3   ? 3
                                             : count == 4 ? 20
                                                          : 1);
    case 'd':
        return digits(time.date.day, count);
    case 'D':
        return digits(time.date.dayOfYear, count);
    default:
        return word(weekdays, static_cast<std::size_t>(time.date.weekday),
                    count == 4   ? 20
                    : count == 5 ? 1
                    : count == 6 ? 2
                                 : 3);
    }
}

std::string timeField(char letter, std::size_t count, const PlainTime& time) {
    const int hour = time.secondOfDay / 3600;
    switch (letter) {
    case 'H':
        return digits(hour, count);
    case 'k':
        return digits(hour == 0 ? 24 : hour, count);
    case 'h':
        return digits((hour + 11) % 12 + 1, count);
    case 'K':
        return digits(hour % 12, count);
    case 'm':
        return digits(time.secondOfDay / 60 % 60, count);
    case 's':
        return digits(time.secondOfDay % 60, count);
    default:
        return hour < 12 ? "AM" : "PM";
    }
}

std::string plainField(char letter, std::size_t count, const PlainTime& time, int milliseconds, int offset) {
    const auto isOneOf = [letter](std::string_view letters) {
        return letters.find(letter) != letters.npos;
    };
    if (isOneOf("yYMdDE")) {
        return dateField(letter, count, time);
    }
    if (isOneOf("HkhKmsa")) {
        return timeField(letter, count, time);
    }
    if (letter == 'S') {
        return digits(milliseconds, 3).append(count, '0').substr(0, count);
    }
    return isOneOf("zZ") ? offsetField(letter, count, offset) : std::string(count, letter);
}

bool isLetter(char16_t unit) { return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z'); }

std::u16string plainText(std::u16string_view pattern, const PlainTime& time, int milliseconds, int offset) {
    std::u16string text;
    bool isQuoted = false;
    for (std::size_t i = 0; i < pattern.size();) {
        std::size_t end = i + 1;
        if (pattern[i] == u'\'' && pattern.substr(i, 2) == u"''") {
            text += u'\'';
            ++end;
        } else if (pattern[i] == u'\'') {
            isQuoted = !isQuoted;
        } else if (isQuoted || !isLetter(pattern[i])) {
            text += pattern[i];
        } else {
            end = std::min(pattern.find_first_not_of(pattern[i], i), pattern.size());
            for (const char c :
                 plainField(static_cast<char>(pattern[i]), end - i, time, milliseconds, offset)) {
                text += static_cast<char16_t>(c);
            }
        }
        i = end;
    }
    return text;
}

/// The nearest millisecond, half up. A value as near to a half as the error of a double that counts
/// thousandths is rounded up: .0425, which has no exact form, is .043.
struct Milliseconds {
    std::int64_t seconds;
    int rest;

    explicit Milliseconds(double value) {
        const double whole = std::floor(value); // exact, and so is what is left
        const long double left = static_cast<long double>(value - whole) * 1000;
        const long double error = std::abs(value) < 0x1p42 ? std::abs(value) * 1000 / 0x1p52L : 0;
        const long double thousandths = std::floor(left);
        const bool goesUp = left - thousandths >= 0.5L - std::min(error, 0.25L);
        const int rounded = static_cast<int>(thousandths) + (goesUp ? 1 : 0);
        isOpen = std::abs(left - thousandths - 0.5L) <= error && left - thousandths != 0.5L;
        seconds = static_cast<std::int64_t>(whole) + rounded / 1000;
        rest = rounded % 1000;
    }

    bool isOpen; ///< either neighbor will do
};

void checkPattern(const NSDate& date, int offset, std::u16string_view pattern) {
    NSDateFormatter formatter;
    formatter.setDateFormat(NSString::stringWithCharacters_length(pattern.data(), pattern.size()));
    formatter.setTimeZone(NSTimeZone::timeZoneForSecondsFromGMT(offset));
    const NSString text = formatter.stringFromDate(date);
    const double seconds = date.timeIntervalSince1970();
    if (!(seconds >= -0x1p63 && seconds < 0x1p63)) {
        require(!text, "a text of no date");
        return;
    }
    const Milliseconds rounded(seconds);
    if (rounded.isOpen) {
        require(static_cast<bool>(text), "a text of a date");
        return;
    }
    require(text.utf16() == plainText(pattern, PlainTime(rounded.seconds, offset), rounded.rest, offset),
            "text of a date");
}

/// What the patterns of log lines and file names write is read as the same instant.
void checkReadingBack(const NSDate& date, int offset) {
    const double since1970 = date.timeIntervalSince1970();
    if (!(std::abs(since1970) < 200000000000)) { // about 6000 years
        return;
    }
    const Milliseconds rounded(since1970);
    if (rounded.isOpen) {
        return;
    }
    NSDateFormatter formatter;
    formatter.setTimeZone(NSTimeZone::timeZoneForSecondsFromGMT(offset));
    formatter.setDateFormat("yyyy-MM-dd HH:mm:ss.SSS");
    const std::string text = formatter.stringFromDate(date).utf8();
    int fields[7] = {};
    require(std::sscanf(text.c_str(), "%d-%d-%d %d:%d:%d.%d", &fields[0], &fields[1], &fields[2], &fields[3],
                        &fields[4], &fields[5], &fields[6]) == 7,
            "fields of a date");
    const bool isBeforeEras = PlainTime(rounded.seconds, offset).date.year < 1;
    const std::int64_t days = plainDays(isBeforeEras ? 1 - fields[0] : fields[0], fields[1], fields[2]);
    require(days * 86400 + fields[3] * 3600 + fields[4] * 60 + fields[5] - offset == rounded.seconds &&
                fields[6] == rounded.rest,
            "a text of a date does not come back");
    if (offset == 0) { // the process's zone here
        char written[detail::localTimeTextCapacity];
        const char* const end = detail::writeLocalTime({rounded.seconds, rounded.rest * 1000000}, written);
        requireEqual({written, static_cast<std::size_t>(end - written)}, text, "text of a log line");
    }
}

NSCalendar calendarOf(bool isIso, int offset) {
    static const NSCalendar calendars[] = {NSCalendar::calendarWithIdentifier(NSCalendarIdentifierGregorian),
                                           NSCalendar::calendarWithIdentifier(NSCalendarIdentifierISO8601)};
    NSCalendar calendar = calendars[isIso ? 1 : 0];
    calendar.setTimeZone(NSTimeZone::timeZoneForSecondsFromGMT(offset));
    return calendar;
}

constexpr unsigned allUnits =
    NSCalendarUnitEra | NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay | NSCalendarUnitHour |
    NSCalendarUnitMinute | NSCalendarUnitSecond | NSCalendarUnitWeekday | NSCalendarUnitQuarter |
    NSCalendarUnitWeekOfYear | NSCalendarUnitYearForWeekOfYear | NSCalendarUnitNanosecond;

/// The calendar's limit, and a second less on either side so that a fraction does not matter.
bool isWellWithinCalendar(double seconds) { return std::abs(seconds) < 292000000000.0 * 31556952.0 - 2048; }

void checkFields(const NSDate& date, int offset, bool isIso) {
    const NSDateComponents found = calendarOf(isIso, offset).components_fromDate(allUnits, date);
    const double since1970 = date.timeIntervalSince1970();
    if (!isWellWithinCalendar(since1970)) {
        require(found.year == NSDateComponentUndefined || std::abs(since1970) < 292000000001.0 * 31556952.0,
                "fields beyond the calendar");
        return;
    }
    // The reference instant and 1970 are so far apart that the sum of doubles loses a little.
    const double sinceReference = date.timeIntervalSinceReferenceDate();
    const double whole = std::floor(sinceReference);
    const PlainTime time(static_cast<std::int64_t>(whole) + 978307200, offset);
    require(found.era == (time.date.year > 0 ? 1 : 0), "era");
    require(found.year == time.yearOfEra(), "year");
    require(found.month == time.date.month && found.day == time.date.day, "month and day");
    require(found.hour == time.secondOfDay / 3600 && found.minute == time.secondOfDay / 60 % 60 &&
                found.second == time.secondOfDay % 60,
            "time");
    require(found.nanosecond == static_cast<NSInteger>(std::min((sinceReference - whole) * 1e9, 999999999.0)),
            "nanosecond");
    require(found.weekday == time.date.weekday + 1, "weekday");
    require(found.quarter == (time.date.month - 1) / 3 + 1, "quarter");
    const CivilDate decisive = models::decisiveDay(time.days, isIso);
    require(found.weekOfYear == (decisive.dayOfYear - 1) / 7 + 1, "week");
    require(found.yearForWeekOfYear == decisive.year, "year of a week");
}

void checkFromFields(fuzzing::InputReader& input, int offset, bool isIso) {
    NSDateComponents fields;
    const unsigned given = input.byte();
    NSInteger* const all[] = {&fields.year, &fields.month,  &fields.day,
                              &fields.hour, &fields.minute, &fields.second};
    NSInteger values[] = {1, 1, 1, 0, 0, 0};
    for (unsigned i = 0; i < 6; ++i) {
        if ((given >> i & 1U) != 0) {
            values[i] = (given & 64U) != 0 ? input.number<std::int32_t>() : input.number<std::int8_t>();
            *all[i] = values[i];
        }
    }
    const NSDate date = calendarOf(isIso, offset).dateFromComponents(fields);
    const std::int64_t seconds = plainDays(values[0], values[1], values[2]) * 86400 + values[3] * 3600 +
                                 values[4] * 60 + values[5] - offset;
    require(static_cast<bool>(date), "a date of fields");
    const double expected = static_cast<double>(seconds - 978307200);
    require(date.timeIntervalSinceReferenceDate() == expected, "instant of fields");
}

void checkRange(const NSDate& date, int offset, bool isIso, unsigned which) {
    const NSCalendarUnit units[] = {NSCalendarUnitYear,       NSCalendarUnitQuarter, NSCalendarUnitMonth,
                                    NSCalendarUnitWeekOfYear, NSCalendarUnitDay,     NSCalendarUnitHour,
                                    NSCalendarUnitMinute,     NSCalendarUnitSecond};
    const double since1970 = date.timeIntervalSince1970();
    if (!(std::abs(since1970) < 1e15)) {
        return;
    }
    const auto whole =
        static_cast<std::int64_t>(std::floor(date.timeIntervalSinceReferenceDate())) + 978307200;
    const PlainTime time(whole, offset);
    const CivilDate& day = time.date;
    const int quarter = (day.month - 1) / 3;
    const std::int64_t weekday = isIso ? (day.weekday + 6) % 7 : day.weekday;
    const std::int64_t midnight = whole - time.secondOfDay;
    const auto first = [&](std::int64_t year, int month) {
        return plainDays(year, month, 1) * 86400 - offset;
    };
    const std::int64_t starts[] = {first(day.year, 1),
                                   first(day.year, quarter * 3 + 1),
                                   first(day.year, day.month),
                                   midnight - weekday * 86400,
                                   midnight,
                                   whole - time.secondOfDay % 3600,
                                   whole - time.secondOfDay % 60,
                                   whole};
    const std::int64_t ends[] = {first(day.year + 1, 1),
                                 first(day.year, quarter * 3 + 4),
                                 first(day.year, day.month + 1),
                                 starts[3] + 7 * 86400,
                                 midnight + 86400,
                                 starts[5] + 3600,
                                 starts[6] + 60,
                                 whole + 1};
    NSDate start;
    NSTimeInterval length = 0;
    require(calendarOf(isIso, offset)
                .rangeOfUnit_startDate_interval_forDate(units[which % 8], &start, &length, date),
            "a unit around a date");
    require(start.timeIntervalSinceReferenceDate() == static_cast<double>(starts[which % 8] - 978307200),
            "start of a unit");
    require(length == static_cast<double>(ends[which % 8] - starts[which % 8]), "length of a unit");
}

/// The day with a month added, the last one where the month is too short.
std::int64_t plainMonthsLater(const PlainTime& time, std::int64_t months) {
    const std::int64_t first = plainDays(time.date.year, time.date.month + months, 1);
    const std::int64_t length = plainDays(time.date.year, time.date.month + months + 1, 1) - first;
    return (first + std::min<std::int64_t>(time.date.day, length) - 1) * 86400 + time.secondOfDay;
}

void checkDifference(std::int64_t from, std::int64_t to, int offset, unsigned units) {
    NSCalendar calendar = calendarOf(false, offset);
    const auto date = [](std::int64_t seconds) {
        return NSDate::dateWithTimeIntervalSince1970(static_cast<double>(seconds));
    };
    const unsigned wanted = ((units & 1U) != 0 ? NSCalendarUnitMonth : 0U) |
                            ((units & 2U) != 0 ? NSCalendarUnitDay : 0U) | NSCalendarUnitSecond;
    const NSDateComponents found = calendar.components_fromDate_toDate(wanted, date(from), date(to));
    const PlainTime start(from, offset);
    std::int64_t local = from + offset;
    if ((units & 1U) != 0) {
        require(found.month != NSDateComponentUndefined && std::abs(found.month) < 1000000, "months");
        local = plainMonthsLater(start, found.month);
        const std::int64_t further = plainMonthsLater(start, found.month + (to < from ? -1 : 1));
        require(to < from ? local >= to + offset && further < to + offset
                          : local <= to + offset && further > to + offset,
                "whole months");
    }
    std::int64_t rest = to + offset - local;
    if ((units & 2U) != 0) {
        require(found.day == rest / 86400, "whole days");
        rest %= 86400;
    }
    require(found.second == rest, "seconds left");
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) { return setenv("TZ", "UTC", 1); }

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzzing::InputReader input(data, size);
    const unsigned switches = input.byte();
    const int offset = input.number<std::int16_t>() * ((switches & 16U) != 0 ? 1 : 15) % 64800;
    // A day within a few thousand years with milliseconds, or any number at all.
    const double seconds = (switches & 32U) != 0
                               ? input.number<double>()
                               : static_cast<double>(input.number<std::int64_t>() % 200000000000000) / 1000;
    const NSDate date = NSDate::dateWithTimeIntervalSince1970(seconds);
    const bool isIso = (switches & 64U) != 0;
    switch (switches & 7U) {
    case 0:
        checkReadingBack(date, offset);
        break;
    case 1:
        checkFields(date, offset, isIso);
        break;
    case 2:
        checkFromFields(input, offset, isIso);
        break;
    case 3:
        checkRange(date, offset, isIso, input.byte());
        break;
    case 4:
        checkDifference(input.number<std::int32_t>() * std::int64_t{60},
                        input.number<std::int32_t>() * std::int64_t{60} + input.byte(), offset, input.byte());
        break;
    default:
        checkPattern(date, offset, fuzzing::unitsFromBytes(input.rest()));
    }
    return 0;
}
