// SPDX-License-Identifier: MIT
// Reads and applies time zone rules in the notation of POSIX.
// The notation has been in use for decades, so its oddities are kept: offsets count west, and hours may be
// up to 167.
#include "foundation/time/PosixZone.h"

#include "foundation/objects/CivilTime.h"
#include "foundation/text/Digits.h"

namespace ZQFoundation::detail {

namespace {

using Clock = PosixZone::Clock;
using Change = PosixZone::Change;

constexpr bool isLetter(char c) noexcept { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
// In angle brackets, names may have digits and signs.
constexpr bool isNameCharacter(char c, bool quoted) noexcept {
    return isLetter(c) || (quoted && (isDigit(c) || c == '+' || c == '-'));
}

/// Takes pieces from the front of a text. A missing piece leaves the cursor at an unspecified place before
/// it.
struct Cursor {
    const char* at;
    const char* end;

    bool atEnd() const noexcept { return at == end; }
    bool isAt(char c) const noexcept { return at != end && *at == c; }

    bool take(char c) noexcept {
        if (!isAt(c)) {
            return false;
        }
        ++at;
        return true;
    }

    bool takeNumber(int min, int max, int& number) noexcept {
        const char* const start = at;
        // No limit has more than three digits; more digits are an error, not a larger number.
        number = takeDigits(at, end, 3);
        return at != start && number >= min && number <= max;
    }

    bool takeTime(int maxHour, std::int32_t& seconds) noexcept {
        const bool negative = take('-');
        // A plus is allowed but means nothing.
        if (!negative) {
            take('+');
        }
        int parts[3] = {};
        if (!takeNumber(0, maxHour, parts[0])) {
            return false;
        }
        for (int i = 1; i < 3 && take(':'); ++i) {
            if (!takeNumber(0, 59, parts[i])) {
                return false;
            }
        }
        const std::int32_t total = parts[0] * 3600 + parts[1] * 60 + parts[2];
        seconds = negative ? -total : total;
        return true;
    }

    bool takeName(char (&name)[PosixZone::nameCapacity]) noexcept {
        const bool quoted = take('<');
        std::size_t length = 0;
        while (at != end && isNameCharacter(*at, quoted)) {
            if (length == PosixZone::nameCapacity - 1) {
                return false;
            }
            name[length++] = *at++;
        }
        // The rest may hold what an earlier reading left there.
        for (std::size_t i = length; i < PosixZone::nameCapacity; ++i) {
            name[i] = '\0';
        }
        // Unquoted names end at the first character that cannot be part of one.
        return length >= 3 && (!quoted || take('>'));
    }

    /// The notation counts offsets west of Greenwich, everything else counts them east.
    bool takeOffset(std::int32_t& offset) noexcept {
        if (!takeTime(24, offset)) {
            return false;
        }
        offset = -offset;
        return true;
    }

    bool takeChange(Change& change) noexcept {
        change = Change();
        if (!take(',')) {
            return false;
        }
        bool good = false;
        if (take('M')) {
            good = takeNumber(1, 12, change.month) && take('.') && takeNumber(1, 5, change.week) &&
                   take('.') && takeNumber(0, 6, change.day);
        } else if (take('J')) {
            change.form = Change::dayWithoutLeapDay;
            good = takeNumber(1, 365, change.day);
        } else {
            // Without a letter, 29 February counts.
            change.form = Change::dayWithLeapDay;
            good = takeNumber(0, 365, change.day);
        }
        return good && (!take('/') || takeTime(167, change.time));
    }
};

/// Only for years near our own: those that `periodAt` comes down to.
std::int64_t dayNumber(std::int64_t year, int month, int day) noexcept {
    std::int64_t days = 0;
    static_cast<void>(daysFromCivil(year, month, day, days));
    return days;
}

std::int64_t dayOfChange(const Change& change, std::int64_t year) noexcept {
    const std::int64_t newYear = dayNumber(year, 1, 1);
    switch (change.form) {
    case Change::dayWithoutLeapDay:
        // From 1 March on, leap years are a day ahead.
        return newYear + change.day - 1 + (isLeapYear(year) && change.day >= 60 ? 1 : 0);
    case Change::dayWithLeapDay:
        return newYear + change.day;
    case Change::weekdayOfMonth:
        break;
    }
    const std::int64_t monthStart = dayNumber(year, change.month, 1);
    const std::int64_t nextMonth = dayNumber(year, change.month + 1, 1);
    // Sunday is 0 in the notation.
    const int firstWeekday = weekdayFromDays(monthStart) % 7;
    std::int64_t day = monthStart + (change.day - firstWeekday + 7) % 7 + 7 * (change.week - 1);
    // The fifth week means the last one.
    if (day >= nextMonth) {
        day -= 7;
    }
    return day;
}

ZonePeriod makePeriod(const Clock& clock, bool daylight, std::int64_t from, std::int64_t until) noexcept {
    return {from, until, clock.offset, daylight, clock.name};
}

} // namespace

/// Daylight-saving time from `start` until before `end`.
struct PosixZone::Span {
    std::int64_t start;
    std::int64_t end;
};

bool PosixZone::read(const char* text, std::size_t count, PosixZone& zone) noexcept {
    Cursor cursor{text, text + count};
    zone.hasDaylight_ = false;
    if (!cursor.takeName(zone.standard_.name) || !cursor.takeOffset(zone.standard_.offset)) {
        return false;
    }
    if (cursor.atEnd()) {
        return true;
    }
    if (!cursor.takeName(zone.daylight_.name)) {
        return false;
    }
    zone.hasDaylight_ = true;
    // By default, the clocks go one hour ahead.
    zone.daylight_.offset = zone.standard_.offset + 3600;
    if (!cursor.atEnd() && !cursor.isAt(',') && !cursor.takeOffset(zone.daylight_.offset)) {
        return false;
    }
    // Without dates, those of the United States apply.
    if (cursor.atEnd()) {
        zone.start_ = {Change::weekdayOfMonth, 3, 2, 0, 7200};
        zone.end_ = {Change::weekdayOfMonth, 11, 1, 0, 7200};
        return true;
    }
    return cursor.takeChange(zone.start_) && cursor.takeChange(zone.end_) && cursor.atEnd();
}

PosixZone::Span PosixZone::daylightSpan(std::int64_t year) const noexcept {
    const auto startOf = [this](std::int64_t y) noexcept {
        // Each change is given in the wall time before it: the clocks of the other season.
        return dayOfChange(start_, y) * secondsPerDay + start_.time - standard_.offset;
    };
    const auto endOf = [this](std::int64_t y) noexcept {
        return dayOfChange(end_, y) * secondsPerDay + end_.time - daylight_.offset;
    };
    const std::int64_t start = startOf(year);
    const std::int64_t end = endOf(year);
    // South of the equator summer lasts over New Year.
    return {start, end >= start ? end : endOf(year + 1)};
}

ZonePeriod PosixZone::periodAt(std::int64_t seconds) const noexcept {
    if (!hasDaylight_) {
        return makePeriod(standard_, false, INT64_MIN, INT64_MAX);
    }
    // Dates and weekdays repeat every 400 years; there no sum can overflow.
    const std::int64_t instant = floorModulo(seconds, daysPerCycle * secondsPerDay);
    const std::int64_t year = civilFromDays(instant / secondsPerDay).year;
    // Back to the real year; at the ends of the range the period is cut.
    const auto shifted = [seconds, instant](std::int64_t edge) noexcept {
        return saturatingAdd(seconds, edge - instant);
    };
    // A change may be written a week off its year, so the spans of two years on both sides can matter. Spans
    // that touch are one: that is how daylight-saving time all year round is written.
    Span spans[5];
    int count = 0;
    for (std::int64_t y = year - 2; y <= year + 2; ++y) {
        const Span next = daylightSpan(y);
        if (count > 0 && next.start <= spans[count - 1].end) {
            spans[count - 1].end = next.end > spans[count - 1].end ? next.end : spans[count - 1].end;
        } else if (next.start < next.end) {
            spans[count++] = next;
        }
    }
    std::int64_t standardSince = instant;
    for (int i = 0; i < count; ++i) {
        if (instant < spans[i].start) {
            return makePeriod(standard_, false, shifted(standardSince), shifted(spans[i].start));
        }
        if (instant < spans[i].end) {
            return makePeriod(daylight_, true, shifted(spans[i].start), shifted(spans[i].end));
        }
        standardSince = spans[i].end;
    }
    // No daylight-saving time begins within the next two years: the answer is right for this instant alone.
    return makePeriod(standard_, false, shifted(standardSince), shifted(instant + 1));
}

} // namespace ZQFoundation::detail
