// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_TEXT_REALTEXT_H
#define ZQFOUNDATION_TEXT_REALTEXT_H

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <version>

/// The conversions of real numbers in <charconv>, which some C++ libraries lack or have only for recent
/// systems. There the C library's functions are used in such a way that the locale does not matter: numbers
/// are read without a point, and of the text that they write only the digits are used.
namespace ZQFoundation::detail {

/// The longest number, with its exponent, that may be read.
inline constexpr std::size_t maxRealTextLength = 800;

namespace byCLibrary {

/// Whole digits, 'e' and an exponent. Beyond the range, infinity or 0.
inline bool readWholeDigits(const char* first, const char* last, double& value) noexcept {
    char text[maxRealTextLength + 1];
    const auto length = static_cast<std::size_t>(last - first);
    if (length > maxRealTextLength) {
        return false;
    }
    std::memcpy(text, first, length);
    text[length] = '\0';
    const int error = errno;
    value = std::strtod(text, nullptr);
    errno = error;
    return true;
}

/// The significant digits of a number that is not 0, and the power of ten of the first one.
struct RealDigits {
    char text[20];
    int count = 0;
    int exponent = 0;

    RealDigits(double magnitude, int wanted) noexcept : count(wanted) {
        char scientific[40];
        std::snprintf(scientific, sizeof scientific, "%.*e", wanted - 1, magnitude);
        const char* const mark = std::strchr(scientific, 'e');
        char* out = text;
        for (const char* at = scientific; at != mark; ++at) {
            if (*at >= '0' && *at <= '9') {
                *out++ = *at;
            }
        }
        std::from_chars(mark + (mark[1] == '+' ? 2 : 1), std::strchr(mark, '\0'), exponent);
    }

    double value() const noexcept {
        char whole[40];
        std::memcpy(whole, text, static_cast<std::size_t>(count));
        whole[count] = 'e';
        const auto end = std::to_chars(whole + count + 1, whole + sizeof whole, exponent - count + 1).ptr;
        double result = 0;
        readWholeDigits(whole, end, result);
        return result;
    }

    /// To the next number of as many digits.
    void increment() noexcept {
        int at = count - 1;
        while (at >= 0 && text[at] == '9') {
            text[at--] = '0';
        }
        if (at >= 0) {
            ++text[at];
        } else {
            text[0] = '1';
            ++exponent;
        }
    }

    void dropTrailingZeros() noexcept {
        while (count > 1 && text[count - 1] == '0') {
            --count;
        }
    }

    char* put(char* out, int from, int to) const noexcept {
        for (int i = from; i < to; ++i) {
            *out++ = i < count ? text[i] : '0';
        }
        return out;
    }

    char* putFixed(char* out) const noexcept {
        const int whole = exponent + 1; // digits before the point
        if (whole > 0) {
            out = put(out, 0, whole);
        } else {
            *out++ = '0';
        }
        if (count > whole) {
            *out++ = '.';
            for (int zeros = whole; zeros < 0; ++zeros) {
                *out++ = '0';
            }
            out = put(out, whole > 0 ? whole : 0, count);
        }
        return out;
    }

    char* putScientific(char* out) const noexcept {
        *out++ = text[0];
        if (count > 1) {
            *out++ = '.';
            out = put(out, 1, count);
        }
        *out++ = 'e';
        *out++ = exponent < 0 ? '-' : '+';
        const int magnitude = exponent < 0 ? -exponent : exponent;
        if (magnitude < 10) {
            *out++ = '0';
        }
        return std::to_chars(out, out + 3, magnitude).ptr;
    }
};

/// The sign, and the whole text of what has no digits; true when that is all.
inline bool writeWithoutDigits(double value, char*& out) noexcept {
    if (std::signbit(value)) {
        *out++ = '-';
    }
    if (std::isfinite(value) && value != 0) {
        return false;
    }
    const char* const text = std::isnan(value) ? "nan" : value == 0 ? "0" : "inf";
    const std::size_t length = std::strlen(text);
    std::memcpy(out, text, length);
    out += length;
    return true;
}

/// As printf writes "%.<precision>g" in the C locale, of at most 17 digits.
inline char* writeGeneral(char* out, double value, int precision) noexcept {
    if (writeWithoutDigits(value, out)) {
        return out;
    }
    RealDigits digits(std::fabs(value), precision);
    digits.dropTrailingZeros();
    return digits.exponent >= -4 && digits.exponent < precision ? digits.putFixed(out)
                                                                : digits.putScientific(out);
}

/// The shortest text that reads as the same number, and among those the nearest.
inline char* writeShortest(char* out, double value) noexcept {
    if (writeWithoutDigits(value, out)) {
        return out;
    }
    const double magnitude = std::fabs(value);
    RealDigits digits(magnitude, 17);
    for (int count = 1; count < 17; ++count) {
        RealDigits fewer(magnitude, count);
        if (fewer.value() != magnitude) {
            // Above a power of two there is twice the room that there is below.
            fewer.increment();
        }
        if (fewer.value() == magnitude) {
            digits = fewer;
            break;
        }
    }
    digits.dropTrailingZeros();
    char fixed[400];
    char scientific[40];
    const auto scientificLength = digits.putScientific(scientific) - scientific;
    const auto fixedLength = digits.putFixed(fixed) - fixed;
    if (scientificLength < fixedLength) {
        std::memcpy(out, scientific, static_cast<std::size_t>(scientificLength));
        return out + scientificLength;
    }
    if (digits.exponent >= digits.count) { // a whole number, whose own digits are nearer than zeros
        std::snprintf(fixed, sizeof fixed, "%.0f", magnitude);
    }
    std::memcpy(out, fixed, static_cast<std::size_t>(fixedLength));
    return out + fixedLength;
}

} // namespace byCLibrary

#ifdef __cpp_lib_to_chars

/// Reads the number, which must be the whole text; false, with the value unchanged, beyond the range of a
/// double.
inline bool readRealText(const char* first, const char* last, double& value) noexcept {
    return std::from_chars(first, last, value).ec == std::errc{};
}

template <class Real>
char* writeRealText(char* out, char* end, Real value, int precision) noexcept {
    return std::to_chars(out, end, value, std::chars_format::general, precision).ptr;
}

inline char* writeShortestRealText(char* out, char* end, double value) noexcept {
    return std::to_chars(out, end, value).ptr;
}

#else

inline bool readRealText(const char* first, const char* last, double& value) noexcept {
    return std::memchr(first, '.', static_cast<std::size_t>(last - first)) == nullptr &&
           byCLibrary::readWholeDigits(first, last, value) && std::isfinite(value);
}

template <class Real>
char* writeRealText(char* out, char*, Real value, int precision) noexcept {
    return byCLibrary::writeGeneral(out, static_cast<double>(value), precision);
}

inline char* writeShortestRealText(char* out, char*, double value) noexcept {
    return byCLibrary::writeShortest(out, value);
}

#endif

} // namespace ZQFoundation::detail

#endif
