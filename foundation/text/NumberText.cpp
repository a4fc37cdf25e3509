// SPDX-License-Identifier: MIT
// Reads and writes numbers as text, whatever the locale.
// Text of either width goes through the same templates; the widths differ only in which white space they
// know.
#include "foundation/text/NumberText.h"

#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

#include "foundation/text/Digits.h"
#include "foundation/text/RealText.h"

namespace ZQFoundation::detail {

namespace {

template <class Unit>
constexpr bool isSign(Unit unit) {
    return unit == '+' || unit == '-';
}

// Bytes above 0x7F are parts of sequences, never white space by themselves.
constexpr bool isWhiteSpace(char byte) { return byte == ' ' || (byte >= 0x09 && byte <= 0x0D); }

constexpr bool isWhiteSpace(char16_t unit) {
    if (unit < 0x80) {
        return isWhiteSpace(static_cast<char>(unit));
    }
    switch (unit) {
    case 0x0085:
    case 0x00A0:
    case 0x1680:
    case 0x202F:
    case 0x205F:
    case 0x3000:
        return true;
    default:
        return unit >= 0x2000 && unit <= 0x200A;
    }
}

template <class Unit>
std::size_t skipWhiteSpace(const Unit* text, std::size_t count) {
    std::size_t at = 0;
    while (at < count && isWhiteSpace(text[at])) {
        ++at;
    }
    return at;
}

// ---- Integers

template <class Int, class Unit>
Int readInteger(const Unit* text, std::size_t count) {
    using Limits = std::numeric_limits<Int>;
    std::size_t at = skipWhiteSpace(text, count);
    const bool negative = at < count && text[at] == '-';
    if (at < count && isSign(text[at])) {
        ++at;
    }
    // The negative limit is one further; reaching it and exceeding it are equivalent.
    constexpr auto limit = static_cast<std::uint64_t>(Limits::max());
    std::uint64_t magnitude = 0;
    for (; at < count && isDigit(text[at]); ++at) {
        const auto digit = static_cast<std::uint64_t>(text[at] - '0');
        // Checked before the multiplication, which could overflow. Saturated at once: the digits that follow
        // cannot change that.
        if (magnitude > (limit - digit) / 10) {
            return negative ? Limits::min() : Limits::max();
        }
        magnitude = magnitude * 10 + digit;
    }
    // In unsigned arithmetic, since the magnitude of the lowest value has no signed counterpart.
    return static_cast<Int>(negative ? 0 - magnitude : magnitude);
}

// ---- Reals

/// Where the parts of a real number are in a text. The digits begin at `digits` and end at `digitsEnd`; a
/// point among them or at their end is at `point`, else `point` is `digitsEnd`. A length of 0 means no
/// number.
struct RealParts {
    bool negative = false;
    std::size_t digits = 0;
    std::size_t point = 0;
    std::size_t digitsEnd = 0;
    std::int64_t exponent = 0;
    std::size_t length = 0;
};

// Reading an exponent ends when it has reached this size. No text has digits enough to make up for that, and
// ten times as much leaves room for sums with positions in the text.
constexpr std::int64_t exponentLimit = std::int64_t{1} << 57;

template <class Unit>
std::size_t skipDigits(const Unit* text, std::size_t at, std::size_t count) {
    while (at < count && isDigit(text[at])) {
        ++at;
    }
    return at;
}

/// Reads 'e', a sign and digits at the end of what is there already; without digits nothing is taken.
template <class Unit>
void splitExponent(const Unit* text, std::size_t count, RealParts& parts) {
    // An incomplete exponent, as in "1e" or "1e+", is not an error: the number ends before it.
    std::size_t at = parts.length;
    if (at == count || (text[at] != 'e' && text[at] != 'E')) {
        return;
    }
    ++at;
    const bool negative = at < count && text[at] == '-';
    if (at < count && isSign(text[at])) {
        ++at;
    }
    const std::size_t end = skipDigits(text, at, count);
    if (end == at) {
        return;
    }
    std::int64_t exponent = 0;
    // Stops early, but `end` is known: all digits are taken, however many there are.
    for (; at < end && exponent < exponentLimit; ++at) {
        exponent = exponent * 10 + (text[at] - '0');
    }
    parts.exponent = negative ? -exponent : exponent;
    parts.length = end;
}

/// Finds the parts of the longest number at the start. There must be a digit before or after the point; all
/// parts are empty if there is none.
template <class Unit>
RealParts splitReal(const Unit* text, std::size_t count) {
    RealParts parts;
    std::size_t at = 0;
    if (count > 0 && isSign(text[0])) {
        parts.negative = text[0] == '-';
        at = 1;
    }
    parts.digits = at;
    at = skipDigits(text, at, count);
    parts.point = at;
    std::size_t digitCount = at - parts.digits;
    if (at < count && text[at] == '.') {
        const std::size_t end = skipDigits(text, at + 1, count);
        digitCount += end - (at + 1);
        at = end;
    }
    if (digitCount == 0) {
        return RealParts{};
    }
    parts.digitsEnd = at;
    parts.length = at;
    splitExponent(text, count, parts);
    return parts;
}

// A real number, and the midpoint between two neighboring ones, has at most 768 significant digits. So that
// many digits of a longer text decide, with one more nonzero digit if any of the rest is not zero.
constexpr std::size_t decisiveDigits = 768;
constexpr std::size_t exponentRoom = 8; // for "e-10768", with one to spare
constexpr std::size_t digitBuffer = decisiveDigits + 1 + exponentRoom;
static_assert(digitBuffer <= maxRealTextLength);

// Far beyond the powers of ten that a double spans, 309 and -323.
constexpr std::int64_t magnitudeLimit = 9999;

// Texts up to this length are read unchanged.
constexpr std::size_t ordinaryLength = 64;

/// A number as whole significant digits and a power of ten, in the form that readRealText() takes.
struct Digits {
    char text[digitBuffer];
    std::size_t length = 0;
    std::int64_t exponent = 0;
};

template <class Unit>
void collectDigits(const Unit* text, const RealParts& parts, Digits& digits) {
    // Digits beyond the decisive ones only matter by whether any of them is not 0: that decides a tie.
    bool restIsZero = true;
    digits.exponent = parts.exponent;
    for (std::size_t at = parts.digits; at < parts.digitsEnd; ++at) {
        if (at == parts.point) {
            continue;
        }
        const bool isAfterPoint = at > parts.point;
        const bool leadingZero = digits.length == 0 && text[at] == '0';
        // A digit that is kept, or a leading zero, lowers the power of ten if it is after the point; one
        // that is left out raises it if it is before the point.
        if (leadingZero || digits.length < decisiveDigits) {
            digits.exponent -= isAfterPoint ? 1 : 0;
        } else {
            digits.exponent += isAfterPoint ? 0 : 1;
        }
        if (!leadingZero && digits.length < decisiveDigits) {
            digits.text[digits.length++] = static_cast<char>(text[at]);
        } else if (!leadingZero) {
            restIsZero = restIsZero && text[at] == '0';
        }
    }
    // One more digit, 1, puts the number above the midpoint that the kept digits may be equal to.
    if (!restIsZero) {
        digits.text[digits.length++] = '1';
        --digits.exponent;
    }
}

double convertDigits(Digits& digits) {
    if (digits.length == 0) {
        // Zeros only. The sign is applied by the caller.
        return 0;
    }
    // Where the first digit is: it alone decides for numbers that are far out of range, whose exponent may
    // not fit the buffer.
    const std::int64_t magnitude = digits.exponent + static_cast<std::int64_t>(digits.length);
    double value = magnitude > 0 ? std::numeric_limits<double>::infinity() : 0;
    if (magnitude <= magnitudeLimit && magnitude >= -magnitudeLimit) {
        char* const end = digits.text + digits.length;
        *end = 'e';
        const auto written = std::to_chars(end + 1, digits.text + digitBuffer, digits.exponent);
        // Out of range leaves the value as it is, or gives the same: the nearer end of the range.
        readRealText(digits.text, written.ptr, value);
    }
    return value;
}

/// The common case: a short text within the range of a double. False if it is not that.
template <class Unit>
bool convertOrdinary(const Unit* text, std::size_t length, double& value) {
    // The copy is on the stack, and longer texts are rare.
    if (length > ordinaryLength) {
        return false;
    }
    char bytes[ordinaryLength];
    for (std::size_t i = 0; i < length; ++i) {
        bytes[i] = static_cast<char>(text[i]);
    }
    return readRealText(bytes, bytes + length, value);
}

template <class Unit>
DoubleReading scanReal(const Unit* text, std::size_t count) {
    const RealParts parts = splitReal(text, count);
    if (parts.length == 0) {
        return {0, 0};
    }
    double magnitude = 0;
    if (!convertOrdinary(text + parts.digits, parts.length - parts.digits, magnitude)) {
        Digits digits;
        collectDigits(text, parts, digits);
        magnitude = convertDigits(digits);
    }
    return {parts.negative ? -magnitude : magnitude, parts.length};
}

template <class Unit>
double readReal(const Unit* text, std::size_t count) {
    const std::size_t blanks = skipWhiteSpace(text, count);
    return scanReal(text + blanks, count - blanks).value;
}

// ---- Writing

// Two digits at a time halve the number of divisions, which take most of the time.
constexpr struct DigitPairs {
    char text[200];
    constexpr DigitPairs() : text() {
        for (int i = 0; i < 100; ++i) {
            text[2 * i] = static_cast<char>('0' + i / 10);
            text[2 * i + 1] = static_cast<char>('0' + i % 10);
        }
    }
} digitPairs;

unsigned decimalLength(std::uint64_t value) {
    // 1233 / 4096 is a little above the logarithm of 2 to the base 10, near enough for 64 bits.
    value |= 1; // zero has a digit too
    const auto bits = static_cast<unsigned>(std::bit_width(value));
    const unsigned estimate = bits * 1233 >> 12;
    // The estimate is one too low or right, so one comparison corrects it.
    return estimate + (value >= powersOfTen[estimate] ? 1 : 0);
}

template <class Real>
char* writeReal(Real value, int precision, Real wholeLimit, char* out) {
    if (std::isnan(value)) {
        std::memcpy(out, "nan", 3);
        return out + 3;
    }
    // Whole numbers that fit into the precision, the most frequent ones, need no floating-point digits; zero
    // takes the long way for the sake of its sign.
    if (value > -wholeLimit && value < wholeLimit && value != 0) {
        const auto whole = static_cast<std::int64_t>(value);
        if (static_cast<Real>(whole) == value) {
            return writeInt64(whole, out);
        }
    }
    return writeRealText(out, out + numberTextCapacity, value, precision);
}

// Sign, 16 digits, point and an exponent as in "e-308".
static_assert(1 + 16 + 1 + 5 <= numberTextCapacity);

} // namespace

std::size_t whiteSpacePrefix(const char* text, std::size_t count) noexcept {
    return skipWhiteSpace(text, count);
}

std::size_t whiteSpacePrefix(const char16_t* text, std::size_t count) noexcept {
    return skipWhiteSpace(text, count);
}

std::int32_t readInt32(const char* text, std::size_t count) noexcept {
    return readInteger<std::int32_t>(text, count);
}

std::int32_t readInt32(const char16_t* text, std::size_t count) noexcept {
    return readInteger<std::int32_t>(text, count);
}

std::int64_t readInt64(const char* text, std::size_t count) noexcept {
    return readInteger<std::int64_t>(text, count);
}

std::int64_t readInt64(const char16_t* text, std::size_t count) noexcept {
    return readInteger<std::int64_t>(text, count);
}

double readDouble(const char* text, std::size_t count) noexcept { return readReal(text, count); }

double readDouble(const char16_t* text, std::size_t count) noexcept { return readReal(text, count); }

DoubleReading scanDouble(const char* text, std::size_t count) noexcept { return scanReal(text, count); }

DoubleReading scanDouble(const char16_t* text, std::size_t count) noexcept { return scanReal(text, count); }

char* writeUInt64(std::uint64_t value, char* out) noexcept {
    char* const end = out + decimalLength(value);
    char* at = end;
    while (value >= 100) {
        at -= 2;
        std::memcpy(at, digitPairs.text + value % 100 * 2, 2);
        value /= 100;
    }
    if (value >= 10) {
        std::memcpy(at - 2, digitPairs.text + value * 2, 2);
    } else {
        at[-1] = static_cast<char>('0' + value);
    }
    return end;
}

char* writeInt64(std::int64_t value, char* out) noexcept {
    auto magnitude = static_cast<std::uint64_t>(value);
    if (value < 0) {
        *out++ = '-';
        // In unsigned arithmetic this is right for the lowest value, too.
        magnitude = 0 - magnitude;
    }
    return writeUInt64(magnitude, out);
}

char* writeDouble16g(double value, char* out) noexcept { return writeReal(value, 16, 1e16, out); }

char* writeSingle7g(float value, char* out) noexcept { return writeReal(value, 7, 1e7F, out); }

} // namespace ZQFoundation::detail
