// SPDX-License-Identifier: MIT
// Integers in all bases, with sign, prefix, padding and grouping.
// Lengths are counted before anything is written, because padding comes first.
#include "foundation/format/FormatNumber.h"

#include "foundation/text/Digits.h"
#include "foundation/text/NumberText.h"
#include "foundation/text/Utf.h"

namespace ZQFoundation::detail {

std::size_t unitLength(StringView text) noexcept {
    return text.form() == StringView::Form::utf8 ? utf16Length(text.bytes(), text.size(), IllFormed::replace)
                                                 : text.size();
}

namespace {

/// Where the groups of a whole number lie, counted from its right end.
struct Groups {
    std::size_t first;
    std::size_t others;

    explicit Groups(const FormatLocale& locale) noexcept
        : first(locale.groupSize),
          others(locale.secondaryGroupSize != 0 ? locale.secondaryGroupSize : locale.groupSize) {}

    // A separator after each full group to the left of the first.
    std::size_t separatorsIn(std::size_t digits) const noexcept {
        return digits <= first ? 0 : (digits - first - 1) / others + 1;
    }

    /// Whether a separator comes before the last `digits` digits.
    bool separatesBefore(std::size_t digits) const noexcept {
        return digits >= first && digits != 0 && (digits - first) % others == 0;
    }
};

} // namespace

std::size_t FormatNumberWriter::groupedLength(std::size_t digits) const noexcept {
    if (!groups(digits)) {
        return digits;
    }
    return digits + Groups(*locale_).separatorsIn(digits) * unitLength(locale_->groupingSeparator);
}

void FormatNumberWriter::appendGrouped(std::size_t zeros, const char* digits, std::size_t count,
                                       std::size_t moreZeros) {
    const std::size_t total = zeros + count + moreZeros;
    if (!groups(total)) {
        if (zeros != 0) {
            out_.appendRepeated('0', zeros);
        }
        out_.appendAscii(digits, count);
        if (moreZeros != 0) {
            out_.appendRepeated('0', moreZeros);
        }
        return;
    }
    const Groups places(*locale_);
    for (std::size_t i = 0; i < total; ++i) {
        if (i != 0 && places.separatesBefore(total - i)) {
            appendText(out_, locale_->groupingSeparator);
        }
        // Zeros that were not computed are written here, so that they are grouped, too.
        out_.appendAscii(i < zeros || i >= zeros + count ? '0' : digits[i - zeros]);
    }
}

std::size_t FormatNumberWriter::decimalPointLength() const noexcept {
    return locale_ != nullptr && locale_->decimalSeparator ? unitLength(locale_->decimalSeparator) : 1;
}

// A locale may have a separator of several units.
void FormatNumberWriter::appendDecimalPoint() {
    if (locale_ != nullptr && locale_->decimalSeparator) {
        appendText(out_, locale_->decimalSeparator);
    } else {
        out_.appendAscii('.');
    }
}

// Padding zeros come after the sign or prefix, padding spaces before it.
void FormatNumberWriter::begin(const char* prefix, std::size_t prefixLength, std::size_t length,
                               bool zeroPads) {
    const std::size_t padding = spec_.paddingFor(prefixLength + length);
    if (padding == 0) {
        if (prefixLength != 0) {
            out_.appendAscii(prefix, prefixLength);
        }
        return;
    }
    const bool zeros = zeroPads && spec_.has(formatZero) && !spec_.has(formatLeftJustified);
    if (!zeros && !spec_.has(formatLeftJustified)) {
        out_.appendRepeated(' ', padding);
    }
    out_.appendAscii(prefix, prefixLength);
    if (zeros) {
        out_.appendRepeated('0', padding);
    }
    padding_ = spec_.has(formatLeftJustified) ? padding : 0;
}

namespace {

// As C does when it converts: the low bits, with their sign extended if the conversion is signed.
std::uint64_t cut(std::uint64_t value, FormatLength length, bool isSigned) noexcept {
    switch (length) {
    case FormatLength::bits8:
        return isSigned ? static_cast<std::uint64_t>(static_cast<std::int8_t>(value)) : value & 0xFF;
    case FormatLength::bits16:
        return isSigned ? static_cast<std::uint64_t>(static_cast<std::int16_t>(value)) : value & 0xFFFF;
    case FormatLength::bits32:
        return isSigned ? static_cast<std::uint64_t>(static_cast<std::int32_t>(value)) : value & 0xFFFFFFFF;
    default:
        return value;
    }
}

/// Octal for 3 bits per digit, hexadecimal for 4. Writes backwards from `end`, nothing for 0.
char* writePowerOfTwoBase(std::uint64_t value, int bits, bool upperCase, char* end) noexcept {
    const char* const digits = upperCase ? upperHexDigits : lowerHexDigits;
    for (; value != 0; value >>= bits) {
        *--end = digits[value & ((1U << bits) - 1)];
    }
    return end;
}

/// The integer without any modifier, by far the most frequent conversion.
void appendPlainDecimal(TextBuilder& out, std::uint64_t value, bool isSigned) {
    ShortNumber number(out);
    number.advance(isSigned ? writeInt64(static_cast<std::int64_t>(value), number.end())
                            : writeUInt64(value, number.end()));
    number.append();
}

struct IntegerText {
    char prefix[2] = {};
    std::size_t prefixLength = 0;
    const char* digits;
    std::size_t count;
    char buffer[numberTextCapacity + ShortNumber::pieceSlack];
};

void writeDecimal(const FormatSpec& spec, std::uint64_t value, IntegerText& text) noexcept {
    const bool isSigned = spec.letter != 'u';
    // Cut first: the sign is that of the cut number.
    value = cut(value, spec.length, isSigned);
    const bool isNegative = isSigned && static_cast<std::int64_t>(value) < 0;
    if (isSigned) {
        text.prefixLength = writeSign(spec, isNegative, text.prefix);
    }
    text.digits = text.buffer;
    // In unsigned arithmetic, so that the lowest number is right.
    const char* const end = writeUInt64(isNegative ? 0 - value : value, text.buffer);
    text.count = static_cast<std::size_t>(end - text.buffer);
    if (value == 0 && spec.hasPrecision) {
        text.count = 0; // the precision adds the zeros, if any
    }
}

void writeOctalOrHexadecimal(const FormatSpec& spec, std::uint64_t value, IntegerText& text) noexcept {
    const bool isOctal = spec.letter == 'o';
    value = cut(value, spec.length, false);
    char* const end = text.buffer + numberTextCapacity;
    char* start = writePowerOfTwoBase(value, isOctal ? 3 : 4, spec.letter == 'X', end);
    if (value == 0 && !spec.hasPrecision) {
        *--start = '0';
    }
    text.digits = start;
    text.count = static_cast<std::size_t>(end - start);
    if (!spec.has(formatAlternate)) {
        return;
    }
    if (!isOctal && value != 0) {
        text.prefix[0] = '0';
        text.prefix[1] = spec.letter;
        text.prefixLength = 2;
    } else if (isOctal && (value != 0 || spec.hasPrecision) &&
               !(spec.hasPrecision && spec.numberPrecision() > text.count)) {
        // The zero counts as a digit: a precision that adds one suffices.
        *--start = '0';
        text.digits = start;
        ++text.count;
    }
}

/// Without groups, and neither width nor precision beyond a few digits.
void appendShortInteger(TextBuilder& out, const FormatSpec& spec, const IntegerText& text,
                        std::size_t zeros) {
    static_assert(2 * 32 + sizeof text.prefix + sizeof text.buffer <= ShortNumber::capacity);
    const std::size_t padding = spec.paddingFor(text.prefixLength + zeros + text.count);
    const bool padsRight = spec.has(formatLeftJustified);
    const bool padsWithZeros = spec.has(formatZero) && !spec.hasPrecision && !padsRight;
    ShortNumber number(out);
    number.putRepeated(' ', padsRight || padsWithZeros ? 0 : padding);
    for (std::size_t i = 0; i < text.prefixLength; ++i) {
        number.put(text.prefix[i]);
    }
    number.putRepeated('0', zeros + (padsWithZeros ? padding : 0));
    number.put(text.digits, text.count);
    number.putRepeated(' ', padsRight ? padding : 0);
    number.append();
}

} // namespace

void appendInteger(TextBuilder& out, const FormatSpec& spec, std::uint64_t value,
                   const FormatLocale* locale) {
    const bool isDecimal = spec.letter == 'd' || spec.letter == 'i' || spec.letter == 'u';
    // Most integers have no modifier, and need neither a specification nor lengths.
    if (isDecimal && locale == nullptr && spec.flags == 0 && spec.width == 0 && !spec.hasPrecision) {
        return appendPlainDecimal(out, cut(value, spec.length, spec.letter != 'u'), spec.letter != 'u');
    }
    IntegerText text;
    if (isDecimal) {
        writeDecimal(spec, value, text);
    } else {
        writeOctalOrHexadecimal(spec, value, text);
    }
    const std::size_t wanted = spec.hasPrecision ? spec.numberPrecision() : 0;
    const std::size_t zeros = wanted > text.count ? wanted - text.count : 0;
    // Room for any padding of a short number is in the buffer.
    if ((!isDecimal || locale == nullptr) && spec.width <= 32 && wanted <= 32) {
        return appendShortInteger(out, spec, text, zeros);
    }
    FormatNumberWriter writer(out, spec, isDecimal ? locale : nullptr);
    writer.begin(text.prefix, text.prefixLength, writer.groupedLength(zeros + text.count),
                 !spec.hasPrecision);
    writer.appendGrouped(zeros, text.digits, text.count, 0);
    writer.end();
}

// For numbers that were written without a locale: only the separators are exchanged.
void appendLocalized(TextBuilder& out, const char* number, std::size_t length, const FormatLocale& locale) {
    const FormatSpec plain;
    FormatNumberWriter writer(out, plain, &locale);
    const std::size_t sign = length != 0 && number[0] == '-' ? 1 : 0;
    std::size_t whole = sign;
    while (whole < length && isFormatDigit(number[whole])) {
        ++whole;
    }
    out.appendAscii(number, sign);
    writer.appendGrouped(0, number + sign, whole - sign, 0);
    if (whole < length && number[whole] == '.') {
        writer.appendDecimalPoint();
        ++whole;
    }
    out.appendAscii(number + whole, length - whole);
}

} // namespace ZQFoundation::detail
