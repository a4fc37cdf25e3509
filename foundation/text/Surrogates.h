// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_TEXT_SURROGATES_H
#define ZQFOUNDATION_TEXT_SURROGATES_H

#include <cstddef>

/// UTF-16 units and code points of the surrogate range, of which a high one and a low one are a pair.
namespace ZQFoundation::detail {

template <class Unit>
constexpr bool isSurrogate(Unit unit) noexcept {
    return (unit & static_cast<Unit>(~Unit{0x7FF})) == 0xD800;
}

template <class Unit>
constexpr bool isHighSurrogate(Unit unit) noexcept {
    return (unit & static_cast<Unit>(~Unit{0x3FF})) == 0xD800;
}

template <class Unit>
constexpr bool isLowSurrogate(Unit unit) noexcept {
    return (unit & static_cast<Unit>(~Unit{0x3FF})) == 0xDC00;
}

/// `left` is the number of units from there on.
constexpr bool isSurrogatePair(const char16_t* at, std::size_t left) noexcept {
    return left >= 2 && isHighSurrogate(at[0]) && isLowSurrogate(at[1]);
}

constexpr char32_t codePointOfPair(const char16_t* pair) noexcept {
    return 0x10000 + ((pair[0] & 0x3FFU) << 10 | (pair[1] & 0x3FFU));
}

/// The number of units before the first surrogate without its partner, or `count`.
constexpr std::size_t pairedPrefix(const char16_t* units, std::size_t count) noexcept {
    std::size_t at = 0;
    while (at < count && (!isSurrogate(units[at]) || isSurrogatePair(units + at, count - at))) {
        at += isSurrogate(units[at]) ? 2 : 1;
    }
    return at;
}

} // namespace ZQFoundation::detail

#endif
