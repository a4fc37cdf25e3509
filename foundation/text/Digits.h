// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_TEXT_DIGITS_H
#define ZQFOUNDATION_TEXT_DIGITS_H

#include <cstddef>
#include <cstdint>
#include <type_traits>

/// Single ASCII digits, and numbers with a fixed count of them. `NumberText.h` has whole numbers.
namespace ZQFoundation::detail {

inline constexpr char lowerHexDigits[] = "0123456789abcdef";
inline constexpr char upperHexDigits[] = "0123456789ABCDEF";

/// 10^0 to 10^19, all that fit.
inline constexpr struct PowersOfTen {
    static constexpr int max = 19;
    std::uint64_t at[max + 1] = {1};

    constexpr PowersOfTen() noexcept {
        for (int i = 1; i <= max; ++i) {
            at[i] = at[i - 1] * 10;
        }
    }
    constexpr std::uint64_t operator[](std::size_t exponent) const noexcept { return at[exponent]; }
} powersOfTen;

template <class Unit>
constexpr bool isDigit(Unit unit) noexcept {
    return unit >= '0' && unit <= '9';
}

/// The value of a hexadecimal digit of either case, or -1.
template <class Unit>
constexpr int hexDigitValue(Unit unit) noexcept {
    if (isDigit(unit)) {
        return static_cast<int>(unit - '0');
    }
    const auto letter = (static_cast<std::make_unsigned_t<Unit>>(unit) | 0x20U) - 'a';
    return letter < 6 ? static_cast<int>(letter + 10) : -1;
}

/// Reads the digits at `at`, at most `maxCount` of them, and moves past them. At most 9 fit.
template <class Unit>
constexpr int takeDigits(const Unit*& at, const Unit* end, int maxCount) noexcept {
    int value = 0;
    for (; at != end && maxCount > 0 && isDigit(*at); ++at, --maxCount) {
        value = value * 10 + static_cast<int>(*at - '0');
    }
    return value;
}

/// Reads exactly `count` digits, at most 9, and moves past them. False, at an unspecified place, when there
/// are fewer.
template <class Unit>
constexpr bool takeAllDigits(const Unit*& at, const Unit* end, int count, int& value) noexcept {
    const Unit* const start = at;
    value = takeDigits(at, end, count);
    return at - start == count;
}

/// The last `count` decimal digits, with leading zeros. Returns the end of what was written, as all of these
/// do.
template <std::size_t count>
constexpr char* writeDigits(std::uint32_t value, char* out) noexcept {
    for (std::size_t place = count; place-- > 0; value /= 10) {
        out[place] = static_cast<char>('0' + value % 10);
    }
    return out + count;
}

/// The same with digits of `bits` each: 4 for hexadecimal, 3 for octal.
template <unsigned bits = 4>
constexpr char* writeHexDigits(std::uint64_t value, std::size_t count, char* out,
                               const char* digits = lowerHexDigits) noexcept {
    for (std::size_t place = count; place-- > 0; value >>= bits) {
        out[place] = digits[value & ((1U << bits) - 1)];
    }
    return out + count;
}

/// Hexadecimal without leading zeros, backwards from `end`; returns the start.
inline char* writeHexBefore(std::uint64_t value, char* end) noexcept {
    do {
        *--end = lowerHexDigits[value & 15];
        value >>= 4;
    } while (value != 0);
    return end;
}

} // namespace ZQFoundation::detail

#endif
