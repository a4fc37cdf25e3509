// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_FORMAT_FORMATDECIMAL_H
#define ZQFOUNDATION_FORMAT_FORMATDECIMAL_H

#include <cfloat>
#include <cstddef>
#include <cstdint>

namespace ZQFoundation::detail {

/// The magnitude of a finite real: mantissa * 2^exponent. The mantissa is odd, or 0 for zero.
struct BinaryReal {
    std::uint64_t high = 0; ///< of the mantissa; 0 unless the type has more than 64 bits
    std::uint64_t low = 0;
    int exponent = 0;
};

BinaryReal binaryOf(double value) noexcept;
BinaryReal binaryOf(long double value) noexcept;

/// Correctly rounded decimal digits: the exact binary value, halves to the even digit, as the C library
/// prints them.
///
/// Written here because neither standard library is suitable: the C library's functions use the decimal point
/// of setlocale; the C++ library's are missing from the older systems that we support, or use the C library
/// for long double.
///
/// The value is 0.ddd * 10^point. There is no leading zero; trailing zeros may be present or not when the
/// number of digits was asked for: digits beyond `count` are zeros. Zero has no digits.
class DecimalDigits {
public:
    /// Rounds to `places` digits after the decimal point.
    void roundToPlaces(const BinaryReal& value, std::size_t places) noexcept;

    /// Rounds to `digits` significant digits, at least one.
    void roundToDigits(const BinaryReal& value, std::size_t digits) noexcept;

    /// Removes trailing zeros.
    void dropZeros() noexcept;

    const char* digits() const noexcept { return digits_; }
    std::size_t count() const noexcept { return count_; }
    /// Digits before the decimal point; 0 or less for values below 0.1.
    std::ptrdiff_t point() const noexcept { return point_; }

private:
    void set(std::uint64_t number, std::ptrdiff_t scale) noexcept;
    void setExactly(const BinaryReal& value) noexcept;
    void roundAt(std::ptrdiff_t kept) noexcept;

    // The longest exact expansion is that of the smallest numbers with all bits set: mantissa * 5^-exponent.
    static constexpr std::size_t capacity =
        static_cast<std::size_t>((LDBL_MANT_DIG * 302 + (LDBL_MANT_DIG - LDBL_MIN_EXP) * 700) / 1000 + 32);

    std::size_t count_ = 0;
    std::ptrdiff_t point_ = 0;
    char digits_[capacity];
};

} // namespace ZQFoundation::detail

#endif
