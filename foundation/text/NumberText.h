// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_TEXT_NUMBERTEXT_H
#define ZQFOUNDATION_TEXT_NUMBERTEXT_H

#include <cstddef>
#include <cstdint>

/// Reading numbers from text and writing them, always with '.' and without grouping, whatever the locale.
///
/// Each reading comes twice: for bytes, of which only the ASCII ones mean anything, and for UTF-16 code
/// units. Digits are the ASCII ones only. Nothing allocates, fails or touches errno; every function may be
/// called from any thread.
///
///     text                     readInt32      readDouble
///     ""  "abc"  "-"  "--5"    0              0
///     " 12"  "+12"  "012"      12             12
///     "12.9"  "1e3"            12, 1          12.9, 1000
///     "1e"  "1e+"  "1,5"       1              1
///     ".5"  "5."               0, 5           0.5, 5
///     "2147483648"             2147483647     2147483648
///     "0x10"  "inf"  "nan"     0              0
///     "- 5"                    0              0
namespace ZQFoundation::detail {

/// Length of the leading white space: space, U+0009 to U+000D, and among units also U+0085, U+00A0, U+1680,
/// U+2000 to U+200A, U+202F, U+205F and U+3000.
std::size_t whiteSpacePrefix(const char* text, std::size_t count) noexcept;
std::size_t whiteSpacePrefix(const char16_t* text, std::size_t count) noexcept;

/// The number after white space and an optional sign, up to the first unit that is not a digit; 0 without a
/// digit directly after the sign. Beyond the range of the result, its nearest limit.
std::int32_t readInt32(const char* text, std::size_t count) noexcept;
std::int32_t readInt32(const char16_t* text, std::size_t count) noexcept;
std::int64_t readInt64(const char* text, std::size_t count) noexcept;
std::int64_t readInt64(const char16_t* text, std::size_t count) noexcept;

/// The number after white space: sign, digits with at most one '.' and at least one digit, then 'e' or 'E'
/// with sign and digits if there are digits. Correctly rounded, however many digits there are. 0 without a
/// number, an infinity beyond the range, a zero of the number's sign below it.
double readDouble(const char* text, std::size_t count) noexcept;
double readDouble(const char16_t* text, std::size_t count) noexcept;

/// A real number and the units it took; a length of 0 means that there is none (then the value is 0).
struct DoubleReading {
    double value;
    std::size_t length;
};

/// As readDouble(), but the number, with its sign, must be right at the start.
DoubleReading scanDouble(const char* text, std::size_t count) noexcept;
DoubleReading scanDouble(const char16_t* text, std::size_t count) noexcept;

/// Room that every writing function below may rely on; the longest result takes 23 bytes.
inline constexpr std::size_t numberTextCapacity = 32;

/// Decimal digits, without a NUL; returns the end of what was written.
char* writeInt64(std::int64_t value, char* out) noexcept;
char* writeUInt64(std::uint64_t value, char* out) noexcept;

/// As printf writes "%.16g" (for the single form "%.7g") in the C locale: 0.1 "0.1", 1e15 "1000000000000000",
/// 1e16 "1e+16", -0.0 "-0", infinities "inf" and "-inf", every not-a-number "nan". Without a NUL; returns the
/// end of what was written.
char* writeDouble16g(double value, char* out) noexcept;
char* writeSingle7g(float value, char* out) noexcept;

} // namespace ZQFoundation::detail

#endif
