// SPDX-License-Identifier: MIT
// The fields of date patterns.
// Letters are those of the Unicode patterns; a reserved letter stays in the text, so that the mistake is
// visible.
#include "foundation/time/DatePattern.h"

#include <cstring>
#include <string_view>

#include "foundation/objects/DecimalText.h"
#include "foundation/text/Digits.h"
#include "foundation/time/DateNames.h"
#include "foundation/time/OffsetText.h"
#include "foundation/time/ZoneAccess.h"

namespace ZQFoundation::detail {

namespace {

template <class Unit>
constexpr bool isLetter(Unit unit) noexcept {
    return (unit >= 'a' && unit <= 'z') || (unit >= 'A' && unit <= 'Z');
}

void appendWord(TextBuilder& text, std::string_view word) { text.appendAscii(word.data(), word.size()); }

/// Two letters show the last two digits; any other number of letters is the minimum number of digits.
void appendYear(TextBuilder& text, std::int64_t year, std::size_t count) {
    appendDecimal(text, count == 2 ? (year < 0 ? -(year % 100) : year % 100) : year, count);
}

/// The number of letters chooses the form: a number, a short name, a name, or its first letter.
void appendMonth(TextBuilder& text, int month, std::size_t count) {
    switch (count) {
    case 3:
        return appendWord(text, shortMonthName(month));
    case 4:
        return appendWord(text, monthName(month));
    case 5:
        return appendWord(text, monthName(month).substr(0, 1));
    default:
        return appendDecimal(text, month, count);
    }
}

void appendWeekday(TextBuilder& text, int weekday, std::size_t count) {
    switch (count) {
    case 4:
        return appendWord(text, weekdayName(weekday));
    case 5:
        return appendWord(text, weekdayName(weekday).substr(0, 1));
    case 6:
        return appendWord(text, weekdayName(weekday).substr(0, 2));
    default:
        return appendWord(text, shortWeekdayName(weekday));
    }
}

/// Cut, not rounded: the instant was rounded to milliseconds before, and nothing finer is left of it.
void appendFraction(TextBuilder& text, int millisecond, std::size_t count) {
    char digits[3];
    writeDigits<3>(static_cast<std::uint32_t>(millisecond), digits);
    text.appendAscii(digits, count < 3 ? count : 3);
    if (count > 3) {
        text.appendRepeated('0', count - 3);
    }
}

// GMT alone, without an offset of zero.
void appendGmtOffset(TextBuilder& text, std::int32_t offset) {
    char written[3 + offsetTextCapacity] = {'G', 'M', 'T'};
    const char* const end = offset == 0 ? written + 3 : writeExtendedOffset(offset, written + 3);
    text.appendAscii(written, static_cast<std::size_t>(end - written));
}

/// "+0100" with up to three letters, "GMT+01:00" with four, "+01:00" or "Z" with five.
void appendOffset(TextBuilder& text, std::int32_t offset, std::size_t count) {
    char written[offsetTextCapacity];
    if (count == 4) {
        appendGmtOffset(text, offset);
    } else if (count == 5 && offset == 0) {
        text.appendAscii('Z');
    } else {
        const char* const end =
            count == 5 ? writeExtendedOffset(offset, written) : writeBasicOffset(offset, written);
        text.appendAscii(written, static_cast<std::size_t>(end - written));
    }
}

void appendZone(TextBuilder& text, const LocalDate& date, std::size_t count) {
    const ZonePeriod period = ZoneAccess::periodAt(date.zone, date.instant);
    // Long names are the same whatever the locale; zones without one show their offset.
    if (count >= 4) {
        const std::string_view name = longZoneName(period);
        return name.empty() ? appendGmtOffset(text, date.offset) : appendWord(text, name);
    }
    // Many zones have no abbreviation that people use; their data then say "+0530" or "-00".
    if (period.abbreviation != nullptr && isLetter(*period.abbreviation)) {
        return appendWord(text, period.abbreviation);
    }
    char written[offsetTextCapacity];
    const char* const end = writeShortOffsetWithGMT(date.offset, written);
    text.appendAscii(written, static_cast<std::size_t>(end - written));
}

/// The hour counted from 1 to `limit`, where the clock shows the limit in place of 0.
/// 12 AM is midnight and 12 PM noon.
constexpr int countedFromOne(int hour, int limit) noexcept {
    return hour % limit == 0 ? limit : hour % limit;
}

/// Writes the field that a run of the same letter asks for. A letter that no field has is copied.
void appendField(TextBuilder& text, char letter, std::size_t count, const LocalDate& local) {
    switch (letter) {
    case 'y':
        // Years before 1 count backwards, as those of an era.
        return appendYear(text, local.date.year > 0 ? local.date.year : 1 - local.date.year, count);
    case 'Y':
        // The year of the week, which differs from the date's around New Year.
        return appendYear(text, weekFromDays(local.days).year, count);
    case 'M':
        return appendMonth(text, local.date.month, count);
    case 'd':
        return appendDecimal(text, local.date.day, count);
    case 'D':
        return appendDecimal(text, dayOfYear(local.date), count);
    case 'E':
        return appendWeekday(text, weekdayFromDays(local.days), count);
    case 'a':
        return appendWord(text, dayHalfName(local.hour));
    case 'H':
        return appendDecimal(text, local.hour, count);
    case 'k':
        return appendDecimal(text, countedFromOne(local.hour, 24), count);
    case 'h':
        return appendDecimal(text, countedFromOne(local.hour, 12), count);
    case 'K':
        return appendDecimal(text, local.hour % 12, count);
    case 'm':
        return appendDecimal(text, local.minute, count);
    case 's':
        return appendDecimal(text, local.second, count);
    case 'S':
        return appendFraction(text, local.millisecond, count);
    case 'Z':
        return appendOffset(text, local.offset, count);
    case 'z':
        return appendZone(text, local, count);
    default:
        return text.appendRepeated(letter, count);
    }
}

void appendLiteralUnits(TextBuilder& text, const char* units, std::size_t count) {
    text.appendAscii(units, count);
}
void appendLiteralUnits(TextBuilder& text, const char16_t* units, std::size_t count) {
    text.appendUnits(units, count);
}

/// Walks a pattern of ASCII bytes or of UTF-16 units.
template <class Unit>
class PatternWalk {
public:
    PatternWalk(TextBuilder& text, const Unit* pattern, std::size_t count, const LocalDate& date) noexcept
        : text_(text), at_(pattern), end_(pattern + count), date_(date) {}

    void run() {
        while (at_ != end_) {
            if (*at_ == '\'') {
                quote();
            } else if (!inQuotes_ && isLetter(*at_)) {
                field();
            } else {
                literal();
            }
        }
    }

private:
    void quote() {
        // Two quotes are one, inside and outside quotes.
        const bool doubled = end_ - at_ > 1 && at_[1] == '\'';
        if (doubled) {
            text_.appendAscii('\'');
            at_ += 2;
        } else {
            inQuotes_ = !inQuotes_;
            ++at_;
        }
    }

    void field() {
        const Unit* const start = at_;
        while (at_ != end_ && *at_ == *start) {
            ++at_;
        }
        appendField(text_, static_cast<char>(*start), static_cast<std::size_t>(at_ - start), date_);
    }

    void literal() {
        const Unit* const start = at_;
        while (at_ != end_ && *at_ != '\'' && (inQuotes_ || !isLetter(*at_))) {
            ++at_;
        }
        appendLiteralUnits(text_, start, static_cast<std::size_t>(at_ - start));
    }

    TextBuilder& text_;
    const Unit* at_;
    const Unit* end_;
    const LocalDate& date_;
    bool inQuotes_ = false;
};

} // namespace

LocalDate::LocalDate(Instant rounded, const NSTimeZone& timeZone) noexcept
    : millisecond(rounded.nanoseconds / 1000000), offset(ZoneAccess::offsetAt(timeZone, rounded.seconds)),
      instant(rounded.seconds), zone(timeZone) {
    // At the ends of the range the sum saturates, as dates there are meaningless anyway.
    const std::int64_t local = saturatingAdd(instant, offset);
    const int time = static_cast<int>(floorModulo(local, secondsPerDay));
    days = floorDivide(local, secondsPerDay);
    date = civilFromDays(days);
    hour = time / 3600;
    minute = time / 60 % 60;
    second = time % 60;
}

void appendDate(TextBuilder& text, StringView pattern, const LocalDate& date) {
    // A string's own text is never UTF-8 with bytes beyond ASCII.
    if (pattern.form() == StringView::Form::utf16) {
        PatternWalk<char16_t>(text, pattern.units(), pattern.size(), date).run();
    } else {
        PatternWalk<char>(text, pattern.bytes(), pattern.size(), date).run();
    }
}

} // namespace ZQFoundation::detail
