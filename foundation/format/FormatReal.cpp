// SPDX-License-Identifier: MIT
// The layout of floating-point numbers: fixed, scientific, general, hexadecimal.
// Digits are computed first, then laid out in parts, and only then padded and written.
#include <bit>
#include <cmath>

#include "foundation/format/FormatDecimal.h"
#include "foundation/format/FormatNumber.h"
#include "foundation/text/Digits.h"
#include "foundation/text/NumberText.h"

namespace ZQFoundation::detail {

namespace {

constexpr std::size_t defaultPrecision = 6;

bool isUpperCase(char letter) noexcept { return letter < 'a'; }

// As long as ShortNumber requires of its pieces.
constexpr char zeroDigit[ShortNumber::pieceSlack] = {'0'};

/// A real between its padding: sign, whole part, decimal point, fraction, exponent. Zeros that were not
/// computed are only counted, so a precision of a million needs no room for digits.
struct RealParts {
    const char* whole = zeroDigit;
    std::size_t wholeCount = 1;
    std::size_t wholeZeros = 0;
    bool hasPoint = false;
    std::size_t fractionZerosBefore = 0;
    const char* fraction = zeroDigit;
    std::size_t fractionCount = 0;
    std::size_t fractionZerosAfter = 0;
    char exponent[ShortNumber::pieceSlack];
    std::size_t exponentCount = 0;
};

/// Sets the fraction to the digits from index `from` on, then zeros, `length` in all.
void setFraction(RealParts& parts, const DecimalDigits& number, std::size_t from,
                 std::size_t length) noexcept {
    const std::size_t there = number.count() > from ? number.count() - from : 0;
    // Digits may end before the point or after it; what is missing is counted as zeros.
    parts.fraction = number.digits() + from;
    parts.fractionCount = there < length ? there : length;
    parts.fractionZerosAfter = length - parts.fractionCount;
}

void layOutFixed(RealParts& parts, const DecimalDigits& number, std::size_t places) noexcept {
    const bool isZero = number.count() == 0;
    const std::ptrdiff_t point = isZero ? 0 : number.point();
    if (point > 0) {
        // Some whole digits may be missing, as in 1e20.
        const auto length = static_cast<std::size_t>(point);
        parts.whole = number.digits();
        parts.wholeCount = length < number.count() ? length : number.count();
        parts.wholeZeros = length - parts.wholeCount;
        setFraction(parts, number, length, places);
    } else {
        const auto before = static_cast<std::size_t>(-point);
        parts.fractionZerosBefore = before < places ? before : places;
        setFraction(parts, number, 0, places - parts.fractionZerosBefore);
    }
}

void layOutScientific(RealParts& parts, const DecimalDigits& number, std::size_t places,
                      bool upperCase) noexcept {
    const bool isZero = number.count() == 0;
    if (!isZero) {
        // Zero keeps its preset digit.
        parts.whole = number.digits();
    }
    setFraction(parts, number, 1, places);
    const std::ptrdiff_t exponent = isZero ? 0 : number.point() - 1;
    parts.exponent[0] = upperCase ? 'E' : 'e';
    parts.exponent[1] = exponent < 0 ? '-' : '+';
    const auto magnitude = static_cast<std::uint64_t>(exponent < 0 ? -exponent : exponent);
    char* end = parts.exponent + 2;
    if (magnitude < 10) {
        *end++ = '0';
    }
    end = writeUInt64(magnitude, end);
    parts.exponentCount = static_cast<std::size_t>(end - parts.exponent);
}

/// The shorter of the two styles; without '#' no zeros at the end of the fraction.
void layOutGeneral(RealParts& parts, DecimalDigits& number, std::size_t precision,
                   const FormatSpec& spec) noexcept {
    const std::ptrdiff_t exponent = number.count() == 0 ? 0 : number.point() - 1;
    if (!spec.has(formatAlternate)) {
        number.dropZeros();
    }
    const auto digits = static_cast<std::ptrdiff_t>(spec.has(formatAlternate) ? precision : number.count());
    // The rule of C: fixed if the exponent is from -4 to below the precision.
    if (exponent >= -4 && exponent < static_cast<std::ptrdiff_t>(precision)) {
        const std::ptrdiff_t places = digits - 1 - exponent;
        layOutFixed(parts, number, places > 0 ? static_cast<std::size_t>(places) : 0);
    } else {
        layOutScientific(parts, number, digits > 0 ? static_cast<std::size_t>(digits) - 1 : 0,
                         isUpperCase(spec.letter));
    }
}

/// The usual short number without a width is appended in one piece.
bool appendShort(TextBuilder& out, const char* sign, std::size_t signLength, const RealParts& parts) {
    const std::size_t length = signLength + parts.wholeCount + parts.wholeZeros + parts.fractionZerosBefore +
                               parts.fractionCount + parts.fractionZerosAfter + parts.exponentCount + 1;
    if (length > ShortNumber::capacity) {
        return false;
    }
    ShortNumber text(out);
    if (signLength != 0) {
        text.put(*sign);
    }
    text.put(parts.whole, parts.wholeCount);
    text.putRepeated('0', parts.wholeZeros);
    if (parts.hasPoint) {
        text.put('.');
    }
    text.putRepeated('0', parts.fractionZerosBefore);
    text.put(parts.fraction, parts.fractionCount);
    text.putRepeated('0', parts.fractionZerosAfter);
    text.put(parts.exponent, parts.exponentCount);
    text.append();
    return true;
}

void appendParts(TextBuilder& out, const FormatSpec& spec, bool isNegative, const RealParts& parts,
                 const FormatLocale* locale) {
    char sign[1] = {};
    const std::size_t signLength = writeSign(spec, isNegative, sign);
    if (locale == nullptr && spec.width == 0 && appendShort(out, sign, signLength, parts)) {
        return;
    }
    FormatNumberWriter writer(out, spec, locale);
    // The style with an exponent has one leading digit, which is never grouped.
    // The widths of all parts decide about the padding, separators included.
    const std::size_t length = writer.groupedLength(parts.wholeCount + parts.wholeZeros) +
                               (parts.hasPoint ? writer.decimalPointLength() : 0) +
                               parts.fractionZerosBefore + parts.fractionCount + parts.fractionZerosAfter +
                               parts.exponentCount;
    writer.begin(sign, signLength, length, true);
    writer.appendGrouped(0, parts.whole, parts.wholeCount, parts.wholeZeros);
    if (parts.hasPoint) {
        writer.appendDecimalPoint();
    }
    out.appendRepeated('0', parts.fractionZerosBefore);
    out.appendAscii(parts.fraction, parts.fractionCount);
    out.appendRepeated('0', parts.fractionZerosAfter);
    out.appendAscii(parts.exponent, parts.exponentCount);
    writer.end();
}

/// The usual "%.2f" of the usual number, 0.1 or more: all its digits are known and need only the point
/// between them.
bool appendOrdinaryFixed(TextBuilder& out, const FormatSpec& spec, bool isNegative,
                         const DecimalDigits& number, std::size_t places) {
    const auto whole = static_cast<std::size_t>(number.point());
    if (spec.flags != 0 || spec.width != 0 || number.point() <= 0 || number.count() != whole + places ||
        number.count() > ShortNumber::capacity - 2) {
        return false;
    }
    ShortNumber text(out);
    if (isNegative) {
        text.put('-');
    }
    text.put(number.digits(), whole);
    if (places != 0) {
        text.put('.');
        text.put(number.digits() + whole, places);
    }
    text.append();
    return true;
}

/// Infinities and NaN: never padded with zeros. NaN has no minus.
template <class Real>
bool appendNotFinite(TextBuilder& out, const FormatSpec& spec, Real value) {
    if (std::isfinite(value)) {
        return false;
    }
    const bool isNaN = std::isnan(value);
    char sign[1] = {};
    const std::size_t signLength = writeSign(spec, !isNaN && std::signbit(value), sign);
    const char* const text = isUpperCase(spec.letter) ? (isNaN ? "NAN" : "INF") : (isNaN ? "nan" : "inf");
    FormatNumberWriter writer(out, spec, nullptr);
    // Words are padded with spaces, even if zeros were requested.
    writer.begin(sign, signLength, 3, false);
    out.appendAscii(text, 3);
    writer.end();
    return true;
}

template <class Real>
void appendDecimalReal(TextBuilder& out, const FormatSpec& spec, Real value, const FormatLocale* locale) {
    if (appendNotFinite(out, spec, value)) {
        return;
    }
    const std::size_t precision = spec.hasPrecision ? spec.numberPrecision() : defaultPrecision;
    const BinaryReal binary = binaryOf(value);
    DecimalDigits number;
    RealParts parts;
    switch (spec.letter) {
    case 'f':
    case 'F':
        number.roundToPlaces(binary, precision);
        if (locale == nullptr && appendOrdinaryFixed(out, spec, std::signbit(value), number, precision)) {
            return;
        }
        layOutFixed(parts, number, precision);
        break;
    case 'e':
    case 'E':
        // One digit before the point and the precision after it.
        number.roundToDigits(binary, precision + 1);
        layOutScientific(parts, number, precision, isUpperCase(spec.letter));
        break;
    default:
        // A precision of 0 counts as 1 in this style.
        const std::size_t digits = precision != 0 ? precision : 1;
        number.roundToDigits(binary, digits);
        layOutGeneral(parts, number, digits, spec);
        break;
    }
    // A point with nothing after it is written only if requested.
    parts.hasPoint = spec.has(formatAlternate) ||
                     parts.fractionZerosBefore + parts.fractionCount + parts.fractionZerosAfter != 0;
    appendParts(out, spec, std::signbit(value), parts, locale);
}

__extension__ typedef unsigned __int128 Wide;

/// A mantissa with its leading digit, one hexadecimal digit or, where the type's own bits start with one, a
/// single bit, and then `fractionBits` bits.
struct HexadecimalReal {
    Wide mantissa = 0;
    int exponent = 0;
    int fractionBits = 0;
};

/// The smallest numbers keep the type's lowest exponent and a leading 0, as the C library prints them.
HexadecimalReal hexadecimalOf(const BinaryReal& value, int mantissaBits, int lowestExponent) noexcept {
    HexadecimalReal result;
    // Whole hexadecimal digits, so that the leading one takes the bits that are left.
    result.fractionBits = (mantissaBits - 1) & ~3;
    const Wide mantissa = static_cast<Wide>(value.high) << 64 | value.low;
    if (mantissa == 0) {
        return result;
    }
    const int width = value.high != 0 ? 64 + static_cast<int>(std::bit_width(value.high))
                                      : static_cast<int>(std::bit_width(value.low));
    const int highest = value.exponent + width - 1;
    // Subnormal numbers are not normalized.
    const int unit = (highest > lowestExponent ? highest : lowestExponent) - (mantissaBits - 1);
    result.mantissa = mantissa << (value.exponent - unit);
    result.exponent = unit + result.fractionBits;
    return result;
}

/// Cuts the fraction to `digits` hexadecimal digits, halves to even. A carry goes into the leading digit, and
/// from an F into the exponent.
void roundFraction(HexadecimalReal& value, std::size_t digits) noexcept {
    if (digits >= static_cast<std::size_t>(value.fractionBits / 4)) {
        return;
    }
    const int dropped = value.fractionBits - static_cast<int>(digits) * 4;
    // The bits that are cut off decide, as with decimal digits.
    const Wide rest = value.mantissa & ((static_cast<Wide>(1) << dropped) - 1);
    const Wide half = static_cast<Wide>(1) << (dropped - 1);
    value.mantissa >>= dropped;
    if (rest > half || (rest == half && (value.mantissa & 1) != 0)) {
        ++value.mantissa;
    }
    value.fractionBits -= dropped;
    if (value.mantissa >> value.fractionBits > 0xF) {
        value.mantissa >>= 4;
        value.exponent += 4;
    }
}

/// Leaves as many digits as the value needs.
void dropZeros(HexadecimalReal& value) noexcept {
    while (value.fractionBits > 0 && (value.mantissa & 0xF) == 0) {
        value.mantissa >>= 4;
        value.fractionBits -= 4;
    }
}

std::size_t writeExponent(int exponent, char letter, char* out) noexcept {
    out[0] = letter;
    out[1] = exponent < 0 ? '-' : '+';
    return static_cast<std::size_t>(
        writeUInt64(static_cast<std::uint64_t>(exponent < 0 ? -exponent : exponent), out + 2) - out);
}

template <class Real>
void appendHexadecimal(TextBuilder& out, const FormatSpec& spec, Real value, int mantissaBits,
                       int lowestExponent) {
    if (appendNotFinite(out, spec, value)) {
        return;
    }
    const bool upperCase = isUpperCase(spec.letter);
    // The digits of this style are exact without a precision.
    HexadecimalReal number = hexadecimalOf(binaryOf(value), mantissaBits, lowestExponent);
    if (spec.hasPrecision) {
        roundFraction(number, spec.numberPrecision());
    } else {
        dropZeros(number);
    }
    const char* const digits = upperCase ? upperHexDigits : lowerHexDigits;
    // All hexadecimal digits of the widest mantissa.
    char text[sizeof(Wide) * 2 + 2];
    std::size_t count = 0;
    for (int shift = number.fractionBits; shift >= 0; shift -= 4) {
        text[count++] = digits[static_cast<unsigned>(number.mantissa >> shift) & 0xF];
    }
    char exponent[8];
    const std::size_t exponentCount = writeExponent(number.exponent, upperCase ? 'P' : 'p', exponent);
    const std::size_t fraction = count - 1;
    const std::size_t zeros =
        spec.hasPrecision && spec.numberPrecision() > fraction ? spec.numberPrecision() - fraction : 0;
    const bool hasPoint = spec.has(formatAlternate) || fraction + zeros != 0;

    char prefix[3] = {};
    std::size_t prefixCount = writeSign(spec, std::signbit(value), prefix);
    prefix[prefixCount++] = '0';
    prefix[prefixCount++] = upperCase ? 'X' : 'x';

    // No locale: this style is for programs.
    FormatNumberWriter writer(out, spec, nullptr);
    writer.begin(prefix, prefixCount, count + zeros + (hasPoint ? 1 : 0) + exponentCount, true);
    out.appendAscii(text, 1);
    if (hasPoint) {
        out.appendAscii('.');
    }
    out.appendAscii(text + 1, fraction);
    out.appendRepeated('0', zeros);
    out.appendAscii(exponent, exponentCount);
    writer.end();
}

} // namespace

void appendReal(TextBuilder& out, const FormatSpec& spec, double value, const FormatLocale* locale) {
    appendDecimalReal(out, spec, value, locale);
}

void appendReal(TextBuilder& out, const FormatSpec& spec, long double value, const FormatLocale* locale) {
    appendDecimalReal(out, spec, value, locale);
}

void appendHexadecimalReal(TextBuilder& out, const FormatSpec& spec, double value) {
    appendHexadecimal(out, spec, value, DBL_MANT_DIG, DBL_MIN_EXP - 1);
}

void appendHexadecimalReal(TextBuilder& out, const FormatSpec& spec, long double value) {
    appendHexadecimal(out, spec, value, LDBL_MANT_DIG, LDBL_MIN_EXP - 1);
}

} // namespace ZQFoundation::detail
