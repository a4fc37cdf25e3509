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

/// The same for `nextPlace` and `countPlaces`, over bytes of ASCII or over units.
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
    std::size_t at = 0;
    while (at < length) {
        const std::size_t start = at;
        at = nextPlace(units, at, length, newlineTest<Unit>);
        line(start, at);
        if (at == length) {
            return;
        }
        const Unit first = units[at++];
        const bool isPair =
            at < length && ((first == '\n' && units[at] == '\r') || (first == '\r' && units[at] == '\n'));
        at += isPair ? 1 : 0;
        if (at == length) {
            line(at, at);
        }
    }
}

} // namespace ZQFoundation::detail

#endif
