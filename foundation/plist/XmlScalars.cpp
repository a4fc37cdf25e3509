// SPDX-License-Identifier: MIT
// Reads numbers, dates and data in the text of XML elements.
// Notations are strict, because a value that was misread is worse than one that was refused.
#include "foundation/plist/XmlScalars.h"

#include <limits>
#include <memory>

#include "foundation/objects/CivilTime.h"
#include "foundation/objects/NSData.h"
#include "foundation/objects/NSDate.h"
#include "foundation/objects/NSNumber.h"
#include "foundation/plist/TextUnits.h"
#include "foundation/text/Base64Codec.h"
#include "foundation/text/Digits.h"
#include "foundation/text/NumberText.h"

namespace ZQFoundation::detail {

namespace {

constexpr bool isXmlBlank(unsigned number) noexcept {
    return number == ' ' || number == '\t' || number == '\n' || number == '\r';
}

/// ASCII white space, the same for bytes and units.
/// Reals allow more white space before the number than integers.
constexpr bool isWhiteSpace(unsigned number) noexcept { return number == ' ' || number - 0x09 < 5; }

template <class Unit>
const Unit* skipXmlBlanks(const Unit* text, const Unit* end) noexcept {
    while (text != end && isXmlBlank(unitNumber(*text))) {
        ++text;
    }
    return text;
}

/// The digits up to the end; at least one. In both bases, and a letter after too many digits is malformed,
/// which the standard library's reading does not distinguish.
template <class Unit>
IntegerReading readMagnitude(const Unit* text, const Unit* end, unsigned base,
                             std::uint64_t& magnitude) noexcept {
    if (text == end) {
        return IntegerReading::malformed;
    }
    bool overflows = false;
    for (; text != end; ++text) {
        // Digits of 10 to 15 are refused for the base of 10.
        const int digit = hexDigitValue(*text);
        if (digit < 0 || digit >= static_cast<int>(base)) {
            return IntegerReading::malformed;
        }
        // Goes on after an overflow: whether the text is malformed decides first.
        overflows |= __builtin_mul_overflow(magnitude, std::uint64_t{base}, &magnitude);
        overflows |= __builtin_add_overflow(magnitude, static_cast<std::uint64_t>(digit), &magnitude);
    }
    return overflows ? IntegerReading::outOfRange : IntegerReading::good;
}

template <class Unit>
IntegerReading readInteger(const Unit* text, const Unit* end, NSObject& value) {
    text = skipXmlBlanks(text, end);
    const bool isNegative = startsWith(text, end, "-");
    if (isNegative || startsWith(text, end, "+")) {
        text = skipXmlBlanks(text + 1, end);
    }
    // Both letters are accepted, and any case of digits.
    const bool isHexadecimal = startsWith(text, end, "0x") || startsWith(text, end, "0X");
    std::uint64_t magnitude = 0;
    const IntegerReading reading =
        readMagnitude(isHexadecimal ? text + 2 : text, end, isHexadecimal ? 16 : 10, magnitude);
    if (reading != IntegerReading::good) {
        return reading;
    }
    // Positive numbers may use all 64 bits.
    if (!isNegative) {
        value = NSNumber(magnitude);
        return reading;
    }
    // The magnitude of the lowest number is one more than that of the highest.
    if (magnitude > std::uint64_t{1} << 63) {
        return IntegerReading::outOfRange;
    }
    value = NSNumber(static_cast<std::int64_t>(0 - magnitude));
    return reading;
}

/// The ASCII literal in lower case, to the end and in any case.
template <class Unit, std::size_t size>
bool isWord(const Unit* text, const Unit* end, const char (&word)[size]) noexcept {
    if (static_cast<std::size_t>(end - text) != size - 1) {
        return false;
    }
    // Letters differ between cases by one bit; no other ASCII character becomes a letter of these words.
    for (std::size_t index = 0; index < size - 1; ++index) {
        if ((unitNumber(text[index]) | 0x20) != static_cast<unsigned char>(word[index])) {
            return false;
        }
    }
    return true;
}

/// A decimal number, or one of the words that C uses for infinity and NaN, in any case and with a sign. White
/// space is allowed before it, but nothing after it.
template <class Unit>
bool readReal(const Unit* text, const Unit* end, NSObject& value) {
    while (text != end && isWhiteSpace(unitNumber(*text))) {
        ++text;
    }
    const auto count = static_cast<std::size_t>(end - text);
    const DoubleReading reading = scanDouble(text, count);
    if (reading.length == count && count > 0) {
        value = NSNumber(reading.value);
        return true;
    }
    const bool isNegative = startsWith(text, end, "-");
    if (isNegative || startsWith(text, end, "+")) {
        ++text;
    }
    constexpr double infinity = std::numeric_limits<double>::infinity();
    if (isWord(text, end, "nan")) {
        value = NSNumber(std::numeric_limits<double>::quiet_NaN());
        return true;
    }
    if (isWord(text, end, "inf") || isWord(text, end, "infinity")) {
        value = NSNumber(isNegative ? -infinity : infinity);
        return true;
    }
    return false;
}

/// Exactly `digits` decimal digits and then `separator`; moves `text` past both.
template <class Unit>
bool readField(const Unit*& text, const Unit* end, int digits, char separator, int& field) noexcept {
    return takeAllDigits(text, end, digits, field) && text != end && *text++ == static_cast<Unit>(separator);
}

template <class Unit>
bool readDate(const Unit* text, const Unit* end, NSObject& value) {
    const bool isBeforeYearZero = startsWith(text, end, "-");
    // Years are counted astronomically, so -0001 is the year before 0.
    text += isBeforeYearZero ? 1 : 0;
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
    if (!readField(text, end, 4, '-', year) || !readField(text, end, 2, '-', month) ||
        !readField(text, end, 2, 'T', day) || !readField(text, end, 2, ':', hour) ||
        !readField(text, end, 2, ':', minute) || !readField(text, end, 2, 'Z', second) || text != end) {
        return false;
    }
    const std::int64_t signedYear = isBeforeYearZero ? -std::int64_t{year} : std::int64_t{year};
    const CivilDate date{signedYear, month, day};
    std::int64_t days = 0;
    // A day that does not exist comes back as another one.
    if (!daysFromCivil(signedYear, month, day, days) || civilFromDays(days) != date || hour > 23 ||
        minute > 59 || second > 59) {
        return false;
    }
    const std::int64_t seconds = days * secondsPerDay + (hour * 60 + minute) * 60 + second;
    value = NSDate::dateWithTimeIntervalSince1970(static_cast<double>(seconds));
    return true;
}

/// Above the values of the alphabet and below the mark of foreign characters.
constexpr int base64Filler = 64;
static_assert(base64::foreign > base64Filler);

/// 0 to 63 for a character of the alphabet, `base64Filler` for "=", `base64::foreign` for any other.
template <class Unit>
int base64Value(Unit unit) noexcept {
    const unsigned number = unitNumber(unit);
    return number == '=' ? base64Filler : number < 0x80 ? base64::valueOfByte[number] : base64::foreign;
}

/// Turns groups of four symbols into three bytes, fewer when fillers end the group.
class Base64Groups {
public:
    explicit Base64Groups(unsigned char* out) noexcept : out_(out) {}

    void add(int symbol) noexcept {
        const bool isFiller = symbol == base64Filler;
        // Only fillers at the end of a group shorten it; one that is followed by a symbol counts as 0.
        fillers_ = isFiller ? fillers_ + 1 : 0;
        bits_ = bits_ << 6 | (isFiller ? 0U : static_cast<unsigned>(symbol));
        if (++symbols_ == 4) {
            // Six bits for each symbol: four make three bytes.
            for (unsigned index = 0; index + fillers_ < 3; ++index) {
                *out_++ = static_cast<unsigned char>(bits_ >> (16 - 8 * index));
            }
            bits_ = symbols_ = fillers_ = 0;
        }
    }

    /// Four symbols at once, between groups; false when one of them is not a symbol.
    template <class Unit>
    bool addWholeGroup(const Unit* text) noexcept {
        const int first = base64Value(text[0]);
        const int second = base64Value(text[1]);
        const int third = base64Value(text[2]);
        const int fourth = base64Value(text[3]);
        // Neither a foreign character nor the filler passes: both have a bit above the low six.
        if (((first | second | third | fourth) & ~63) != 0) {
            return false;
        }
        const auto bits = static_cast<unsigned>(first << 18 | second << 12 | third << 6 | fourth);
        out_[0] = static_cast<unsigned char>(bits >> 16);
        out_[1] = static_cast<unsigned char>(bits >> 8);
        out_[2] = static_cast<unsigned char>(bits);
        out_ += 3;
        return true;
    }

    bool isBetweenGroups() const noexcept { return symbols_ == 0; }
    const unsigned char* end() const noexcept { return out_; }

private:
    unsigned char* out_;
    unsigned bits_ = 0;
    unsigned symbols_ = 0;
    unsigned fillers_ = 0;
};

template <class Unit>
bool readData(const Unit* text, const Unit* end, NSObject& value) {
    const auto count = static_cast<std::size_t>(end - text);
    // Enough for all groups that the characters can make; an incomplete last one is dropped.
    const std::unique_ptr<unsigned char[]> bytes(new unsigned char[count / 4 * 3 + 1]);
    Base64Groups groups(bytes.get());
    while (text != end) {
        // Long stretches go by groups; white space and fillers take the slow way for one character.
        if (groups.isBetweenGroups() && end - text >= 4 && groups.addWholeGroup(text)) {
            text += 4;
            continue;
        }
        if (unitNumber(*text) >= 0x80) {
            return false;
        }
        if (const int symbol = base64Value(*text); symbol != base64::foreign) {
            groups.add(symbol);
        }
        ++text;
    }
    value = NSData::dataWithBytes_length(bytes.get(), static_cast<std::size_t>(groups.end() - bytes.get()));
    return true;
}

} // namespace

template <class Unit>
IntegerReading readXmlInteger(const Unit* text, std::size_t count, NSObject& value) {
    return readInteger(text, text + count, value);
}

template <class Unit>
bool readXmlReal(const Unit* text, std::size_t count, NSObject& value) {
    return readReal(text, text + count, value);
}

template <class Unit>
bool readXmlDate(const Unit* text, std::size_t count, NSObject& value) {
    return readDate(text, text + count, value);
}

template <class Unit>
bool readXmlData(const Unit* text, std::size_t count, NSObject& value) {
    return readData(text, text + count, value);
}

template IntegerReading readXmlInteger(const char*, std::size_t, NSObject&);
template IntegerReading readXmlInteger(const char16_t*, std::size_t, NSObject&);
template bool readXmlReal(const char*, std::size_t, NSObject&);
template bool readXmlReal(const char16_t*, std::size_t, NSObject&);
template bool readXmlDate(const char*, std::size_t, NSObject&);
template bool readXmlDate(const char16_t*, std::size_t, NSObject&);
template bool readXmlData(const char*, std::size_t, NSObject&);
template bool readXmlData(const char16_t*, std::size_t, NSObject&);

} // namespace ZQFoundation::detail
