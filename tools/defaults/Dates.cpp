// SPDX-License-Identifier: MIT
// Reads dates from the command line, strictly: a misspelled date must not become another one. Neither the
// user's locale nor time zone matters, so a script writes the same everywhere.
#include "tools/defaults/Dates.h"

#include "foundation/objects/CivilTime.h"
#include "foundation/text/Digits.h"
#include "tools/common/Program.h"

namespace ZQFoundation::tools::defaults {

namespace {

/// Reads a text from front to back. The terminating zero is neither a digit nor a mark, so nothing reads
/// beyond it.
class Cursor {
public:
    explicit Cursor(const std::string& text) noexcept : next_(text.data()), end_(next_ + text.size()) {}

    bool take(char character) noexcept {
        const bool found = next_ != end_ && *next_ == character;
        next_ += found ? 1 : 0;
        return found;
    }

    /// Exactly `digits` digits that make a number from `min` to `max`.
    bool takeNumber(int digits, int min, int max, int& number) noexcept {
        return detail::takeAllDigits(next_, end_, digits, number) && number >= min && number <= max;
    }

    bool isAtEnd() const noexcept { return next_ == end_; }

private:
    const char* next_;
    const char* end_;
};

/// "2024-03-05", as days since 1970.
bool takeDays(Cursor& cursor, std::int64_t& days) noexcept {
    int year = 0;
    int month = 0;
    int day = 0;
    const bool isDate = cursor.takeNumber(4, 0, 9999, year) && cursor.take('-') &&
                        cursor.takeNumber(2, 1, 12, month) && cursor.take('-') &&
                        cursor.takeNumber(2, 1, 31, day);
    // A day that the month does not have would carry into the next one.
    return isDate && detail::daysFromCivil(year, month, day, days) &&
           detail::civilFromDays(days) == detail::CivilDate{year, month, day};
}

/// "14:07" or "14:07:09", as seconds of the day. There is no second 60.
bool takeTime(Cursor& cursor, int& seconds) noexcept {
    int hour = 0;
    int minute = 0;
    int second = 0;
    if (!cursor.takeNumber(2, 0, 23, hour) || !cursor.take(':') || !cursor.takeNumber(2, 0, 59, minute)) {
        return false;
    }
    if (cursor.take(':') && !cursor.takeNumber(2, 0, 59, second)) {
        return false;
    }
    seconds = hour * 3600 + minute * 60 + second;
    return true;
}

/// "Z", "+0100" or "+01:00", after a space or not, as seconds that local time is ahead of UTC.
bool takeOffset(Cursor& cursor, int& seconds) noexcept {
    cursor.take(' ');
    if (cursor.take('Z')) {
        return true;
    }
    const bool isNegative = cursor.take('-');
    if (!isNegative && !cursor.take('+')) {
        return false;
    }
    int hours = 0;
    int minutes = 0;
    if (!cursor.takeNumber(2, 0, 23, hours)) {
        return false;
    }
    cursor.take(':');
    if (!cursor.takeNumber(2, 0, 59, minutes)) {
        return false;
    }
    seconds = (hours * 60 + minutes) * (isNegative ? -60 : 60);
    return true;
}

} // namespace

// The whole word must be consumed: text after a date is a mistake, too.
NSDate dateFromText(const std::string& text) {
    Cursor cursor(text);
    std::int64_t days = 0;
    int time = 0;
    int offset = 0;
    bool isRight = takeDays(cursor, days);
    if (isRight && !cursor.isAtEnd()) {
        isRight = (cursor.take('T') || cursor.take(' ')) && takeTime(cursor, time) &&
                  (cursor.isAtEnd() || takeOffset(cursor, offset));
    }
    if (!isRight || !cursor.isAtEnd()) {
        fail("\"%@\" is not a date such as \"2024-03-05 14:07:09 +0100\"", text);
    }
    return NSDate::dateWithTimeIntervalSince1970(
        static_cast<double>(days * detail::secondsPerDay + time - offset));
}

} // namespace ZQFoundation::tools::defaults
