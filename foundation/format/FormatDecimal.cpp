// SPDX-License-Identifier: MIT
// Exact decimal digits of binary floating-point numbers.
// Digits come from integers only: of 128 bits in nearly all cases, of any length where these do not suffice.
// Nothing is ever rounded twice.
#include "foundation/format/FormatDecimal.h"

#include <bit>
#include <cmath>
#include <cstring>

#include "foundation/text/Digits.h"
#include "foundation/text/NumberText.h"

namespace ZQFoundation::detail {

namespace {

__extension__ typedef unsigned __int128 Wide;

constexpr int maxPower = PowersOfTen::max;

// The language's own function is not defined for this type everywhere.
int bitWidth(Wide value) noexcept {
    const auto high = static_cast<std::uint64_t>(value >> 64);
    return high != 0 ? 64 + static_cast<int>(std::bit_width(high))
                     : static_cast<int>(std::bit_width(static_cast<std::uint64_t>(value)));
}

// An odd mantissa keeps the numbers small that the exact way has to multiply.
BinaryReal withOddMantissa(Wide mantissa, int exponent) noexcept {
    if (mantissa == 0) {
        return {};
    }
    const auto low = static_cast<std::uint64_t>(mantissa);
    const int zeros =
        low != 0 ? std::countr_zero(low) : 64 + std::countr_zero(static_cast<std::uint64_t>(mantissa >> 64));
    mantissa >>= zeros;
    return {static_cast<std::uint64_t>(mantissa >> 64), static_cast<std::uint64_t>(mantissa),
            exponent + zeros};
}

/// The quotient, rounded by the remainder, halves to even. Compares the remainder with its difference from
/// the divisor, which cannot overflow as twice the remainder could.
/// The result is below 2^63, so adding 1 cannot overflow.
template <class Number>
std::uint64_t rounded(Number quotient, Number remainder, Number divisor) noexcept {
    const Number missing = divisor - remainder;
    const bool up = remainder > missing || (remainder == missing && (quotient & 1) != 0);
    return static_cast<std::uint64_t>(quotient) + (up ? 1 : 0);
}

/// mantissa * 2^exponent * 10^scale, rounded, when all steps fit into 128 bits and the result into 63.
bool scaledExactly(std::uint64_t mantissa, int exponent, std::ptrdiff_t scale,
                   std::uint64_t& result) noexcept {
    // Larger powers do not fit into 64 bits.
    if (scale > maxPower || scale < -maxPower) {
        return false;
    }
    // Few places of usual numbers need only 64 bits.
    if (scale >= 0 && exponent < 0 && exponent > -64 &&
        std::bit_width(mantissa) + std::bit_width(powersOfTen.at[scale]) <= 64) {
        const std::uint64_t scaled = mantissa * powersOfTen.at[scale];
        const std::uint64_t divisor = std::uint64_t{1} << -exponent;
        result = rounded(scaled >> -exponent, scaled & (divisor - 1), divisor);
        return true;
    }
    Wide numerator = mantissa;
    Wide divisor = 1;
    if (scale >= 0) {
        numerator *= powersOfTen.at[scale];
    } else {
        divisor = powersOfTen.at[-scale];
    }
    if (exponent >= 0) {
        // One bit is left free, so that sums and comparisons cannot overflow.
        if (bitWidth(numerator) + exponent > 127) {
            return false;
        }
        numerator <<= exponent;
    } else {
        if (bitWidth(divisor) - exponent > 127) {
            return false;
        }
        divisor <<= -exponent;
    }
    // Mostly the divisor is a power of two, and a division of 128 bits is slow.
    const Wide quotient = scale < 0 ? numerator / divisor : exponent < 0 ? numerator >> -exponent : numerator;
    if (quotient >> 63 != 0) {
        return false;
    }
    const Wide remainder = scale < 0 ? numerator - quotient * divisor : numerator & (divisor - 1);
    result = rounded(quotient, remainder, divisor);
    return true;
}

/// A large whole number in limbs of nine decimal digits, the lowest first.
/// Base 10^9, because its digits come out without another conversion.
class LargeNumber {
public:
    explicit LargeNumber(const BinaryReal& value) noexcept {
        // In four pieces of 32 bits, the largest factor that a step takes.
        const std::uint64_t halves[] = {value.high, value.low};
        for (const std::uint64_t half : halves) {
            multiplyAndAdd(std::uint64_t{1} << 32, half >> 32);
            multiplyAndAdd(std::uint64_t{1} << 32, half & 0xFFFFFFFF);
        }
    }

    void multiplyByPowerOfTwo(int exponent) noexcept {
        for (; exponent >= 32; exponent -= 32) {
            multiplyAndAdd(std::uint64_t{1} << 32, 0);
        }
        multiplyAndAdd(std::uint64_t{1} << exponent, 0);
    }

    void multiplyByPowerOfFive(int exponent) noexcept {
        // The largest power of five below 2^32.
        constexpr std::uint64_t fiveToThe13th = 1220703125;
        for (; exponent >= 13; exponent -= 13) {
            multiplyAndAdd(fiveToThe13th, 0);
        }
        for (; exponent > 0; --exponent) {
            multiplyAndAdd(5, 0);
        }
    }

    /// Writes all digits, the first not a zero, and returns their number.
    std::size_t write(char* out) const noexcept {
        const char* const start = out;
        for (std::size_t i = count_; i-- > 0;) {
            // Only the first limb has no leading zeros.
            if (i + 1 == count_) {
                out = writeUInt64(limbs_[i], out);
                continue;
            }
            out = writeDigits<9>(limbs_[i], out);
        }
        return static_cast<std::size_t>(out - start);
    }

private:
    /// The factor is at most 2^32 and a limb below 10^9, so limb * factor + carry stays below 2^63.
    void multiplyAndAdd(std::uint64_t factor, std::uint64_t carry) noexcept {
        for (std::size_t i = 0; i < count_; ++i) {
            const std::uint64_t product = limbs_[i] * factor + carry;
            limbs_[i] = static_cast<std::uint32_t>(product % base);
            carry = product / base;
        }
        for (; carry != 0; carry /= base) {
            limbs_[count_++] = static_cast<std::uint32_t>(carry % base);
        }
    }

    static constexpr std::uint64_t base = 1000000000;
    // Room for the mantissa's digits and for the longest power that is multiplied in.
    static constexpr std::size_t capacity =
        static_cast<std::size_t>((LDBL_MANT_DIG * 302 + (LDBL_MANT_DIG - LDBL_MIN_EXP) * 700) / 9000 + 4);
    static_assert(capacity * 9 >= LDBL_MAX_10_EXP + 1);

    std::size_t count_ = 0;
    std::uint32_t limbs_[capacity];
};

} // namespace

BinaryReal binaryOf(double value) noexcept {
    constexpr int fractionBits = DBL_MANT_DIG - 1;
    const auto bits = std::bit_cast<std::uint64_t>(value);
    const std::uint64_t fraction = bits & ((std::uint64_t{1} << fractionBits) - 1);
    const int biased = static_cast<int>(bits >> fractionBits & 0x7FF);
    // 1023 for the bias and 52 for the fraction; subnormal numbers have the exponent of the smallest normal
    // one.
    const int exponent = (biased == 0 ? 1 : biased) - 1075;
    return withOddMantissa(biased == 0 ? fraction : fraction | std::uint64_t{1} << fractionBits, exponent);
}

BinaryReal binaryOf(long double value) noexcept {
    int exponent = 0;
    long double rest = std::frexp(std::fabs(value), &exponent);
    Wide mantissa = 0;
    while (rest != 0) {
        // 32 bits at a time: exact for any mantissa, whatever the type's layout.
        rest *= 4294967296.0L;
        const auto part = static_cast<std::uint32_t>(rest);
        rest -= static_cast<long double>(part);
        mantissa = mantissa << 32 | part;
        exponent -= 32;
    }
    return withOddMantissa(mantissa, exponent);
}

void DecimalDigits::set(std::uint64_t number, std::ptrdiff_t scale) noexcept {
    count_ = number == 0 ? 0 : static_cast<std::size_t>(writeUInt64(number, digits_) - digits_);
    point_ = static_cast<std::ptrdiff_t>(count_) - scale;
}

void DecimalDigits::setExactly(const BinaryReal& value) noexcept {
    LargeNumber number(value);
    if (value.exponent >= 0) {
        number.multiplyByPowerOfTwo(value.exponent);
    } else {
        // The value times 10^-exponent is a whole number: 2^exponent turns into 5^-exponent.
        number.multiplyByPowerOfFive(-value.exponent);
    }
    count_ = number.write(digits_);
    point_ = static_cast<std::ptrdiff_t>(count_) + (value.exponent < 0 ? value.exponent : 0);
}

void DecimalDigits::roundAt(std::ptrdiff_t kept) noexcept {
    if (kept >= static_cast<std::ptrdiff_t>(count_)) {
        return;
    }
    // Everything is below half of the last place.
    if (kept < 0) {
        count_ = 0;
        return;
    }
    const auto length = static_cast<std::size_t>(kept);
    bool up = digits_[length] > '5';
    if (digits_[length] == '5') {
        // Exactly half is only known when all digits after it are zeros; until then it rounds to even.
        up = length != 0 && (digits_[length - 1] - '0') % 2 != 0;
        for (std::size_t i = length + 1; i < count_ && !up; ++i) {
            up = digits_[i] != '0';
        }
    }
    count_ = length;
    if (!up) {
        return;
    }
    while (count_ != 0 && digits_[count_ - 1] == '9') {
        --count_;
    }
    if (count_ != 0) {
        ++digits_[count_ - 1];
    } else {
        // All nines: the number becomes a one with a higher point.
        digits_[count_++] = '1';
        ++point_;
    }
}

void DecimalDigits::roundToPlaces(const BinaryReal& value, std::size_t places) noexcept {
    std::uint64_t number = 0;
    const auto scale = static_cast<std::ptrdiff_t>(places);
    if (value.high == 0 && scaledExactly(value.low, value.exponent, scale, number)) {
        set(number, scale);
        return;
    }
    // Values far below the last place, which would take long to expand for nothing.
    if (places < 1000 && value.high == 0 &&
        static_cast<int>(std::bit_width(value.low)) + value.exponent < -4 * static_cast<int>(places) - 1) {
        count_ = 0; // surely less than half of the last place
        return;
    }
    setExactly(value);
    roundAt(point_ + scale);
}

void DecimalDigits::roundToDigits(const BinaryReal& value, std::size_t digits) noexcept {
    if (value.low == 0 && value.high == 0) {
        count_ = 0;
        point_ = 1;
        return;
    }
    // Beyond these exponents a step of 128 bits would overflow.
    if (value.high == 0 && digits <= 18 && value.exponent > -127 && value.exponent < 127) {
        const int bits = static_cast<int>(std::bit_width(value.low)) + value.exponent - 1;
        // The decimal exponent, or one less: log10(2) is a little more than 78912 / 2^18.
        std::ptrdiff_t exponent = (bits * 78912) >> 18;
        // The estimate may be one too low: then the number has a digit too many, and the next exponent is
        // right.
        for (int attempt = 0; attempt < 2; ++attempt, ++exponent) {
            const std::ptrdiff_t scale = static_cast<std::ptrdiff_t>(digits) - 1 - exponent;
            std::uint64_t number = 0;
            if (!scaledExactly(value.low, value.exponent, scale, number)) {
                break;
            }
            if (number < powersOfTen.at[digits]) {
                set(number, scale);
                return;
            }
        }
    }
    setExactly(value);
    roundAt(static_cast<std::ptrdiff_t>(digits));
}

void DecimalDigits::dropZeros() noexcept {
    while (count_ != 0 && digits_[count_ - 1] == '0') {
        --count_;
    }
}

} // namespace ZQFoundation::detail
