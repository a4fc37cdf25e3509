// SPDX-License-Identifier: MIT
// Internal: not installed.
// Finds the lines of a text, for all operations that split or indent them.
#ifndef ZQFOUNDATION_EXTENSIONS_LINEWALK_H
#define ZQFOUNDATION_EXTENSIONS_LINEWALK_H

#include "foundation/text/UnitBlocks.h"

namespace ZQFoundation::detail {

/// U+000A to U+000D, U+0085, U+2028, U+2029.
constexpr bool isNewline(char16_t unit) noexcept {
    return (unit >= 0x0A && unit <= 0x0D) || unit == 0x85 || unit == 0x2028 || unit == 0x2029;
}

/// The same for walks over blocks, over bytes of ASCII or over units.
template <class Unit>
inline constexpr auto newlineTest = [](auto unit) {
    // Units below U+000A wrap to large numbers: in a block by themselves, here by the cast.
    const auto isAsciiNewline = static_cast<decltype(unit)>(unit - 0x0A) <= 3;
    if constexpr (sizeof(Unit) == 1) {
        return isAsciiNewline;
    } else {
        return isAsciiNewline | (unit == 0x85) | ((unit | 1) == 0x2029);
    }
};

/// Calls `line(start, end)` for each line. CR LF and LF CR are one break each; a break at the end is followed
/// by an empty line; an empty text has no lines.
template <class Unit, class Line>
void forEachLine(const Unit* units, std::size_t length, const Line& line) {
    std::size_t start = 0;
    std::size_t secondOfPair = length;
    forEachPlace(units, length, newlineTest<Unit>, [&](std::size_t at) {
        if (at == secondOfPair) {
            start = at + 1;
            return;
        }
        line(start, at);
        start = at + 1;
        const bool isPair = start < length && ((units[at] == '\n' && units[start] == '\r') ||
                                               (units[at] == '\r' && units[start] == '\n'));
        secondOfPair = isPair ? start : length;
    });
    if (length != 0) {
        line(start, length);
    }
}

} // namespace ZQFoundation::detail

#endif
