// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_TEXT_UNITSEARCH_H
#define ZQFOUNDATION_TEXT_UNITSEARCH_H

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "foundation/text/UnitBlocks.h"

/// Searches unit by unit, in time linear in both texts, whatever they contain.
namespace ZQFoundation::detail {

inline constexpr std::size_t unitNotFound = static_cast<std::size_t>(-1);

/// How far a partial match may fall back when the next item does not fit: for each length the longest shorter
/// one that ends alike. One entry more than items.
template <class Item>
std::vector<std::size_t> failureTable(const Item* items, std::size_t count) {
    std::vector<std::size_t> lengths(count + 1, 0);
    std::size_t length = 0;
    for (std::size_t i = 1; i < count; ++i) {
        while (length > 0 && !(items[i] == items[length])) {
            length = lengths[length];
        }
        if (items[i] == items[length]) {
            ++length;
        }
        lengths[i + 1] = length;
    }
    return lengths;
}

/// Units that are compared as they are.
struct ExactUnits {
    template <class Unit>
    static Unit form(Unit unit) noexcept {
        return unit;
    }

    /// A test, for `nextMatch`, whether a unit is this one.
    template <class Unit>
    static auto test(Unit unit) noexcept {
        return [lane = static_cast<Lane<Unit>>(unit)](auto units) {
            return units == lane;
        };
    }
};

/// ASCII whose letters are compared in lower case; what is wanted has only such.
struct AsciiInAnyCase {
    static char form(char unit) noexcept {
        return unit >= 'A' && unit <= 'Z' ? static_cast<char>(unit | 0x20) : unit;
    }

    static auto test(char unit) noexcept {
        const bool isLetter = unit >= 'a' && unit <= 'z';
        const auto lower = static_cast<Lane<char>>(unit);
        const auto upper = static_cast<Lane<char>>(isLetter ? unit & ~0x20 : unit);
        return [lower, upper](auto units) {
            return (units == lower) | (units == upper);
        };
    }
};

/// The first occurrence without looking at any unit twice; for texts that begin to match too often.
template <class Unit, class Forms = ExactUnits>
std::size_t findByFailureTable(const Unit* text, std::size_t length, const Unit* wanted, std::size_t count,
                               Forms forms = {}) {
    const std::vector<std::size_t> lengths = failureTable(wanted, count);
    std::size_t matched = 0;
    for (std::size_t i = 0; i < length; ++i) {
        const Unit unit = forms.form(text[i]);
        while (matched > 0 && unit != wanted[matched]) {
            matched = lengths[matched];
        }
        if (unit == wanted[matched] && ++matched == count) {
            return i + 1 - count;
        }
    }
    return unitNotFound;
}

/// The first occurrence, or `unitNotFound`; `count` is at least 1.
template <class Unit, class Forms = ExactUnits>
std::size_t findUnits(const Unit* text, std::size_t length, const Unit* wanted, std::size_t count,
                      Forms forms = {}) {
    // Few places have the first and the last unit at their distance.
    const auto isFirst = forms.test(wanted[0]);
    const auto isLast = forms.test(wanted[count - 1]);
    const auto blockMask = [&](std::size_t place) {
        return matchMask(isFirst(loadBlock(text + place)) & isLast(loadBlock(text + place + count - 1)));
    };
    const auto unitMatches = [&](std::size_t place) {
        return isFirst(static_cast<Lane<Unit>>(text[place])) &&
               isLast(static_cast<Lane<Unit>>(text[place + count - 1]));
    };
    std::size_t at = 0;
    // Wasted comparisons per unit before switching to the failure table.
    constexpr std::size_t maxWastedPerUnit = 4;
    std::size_t wasted = 0;
    while (count <= length - at) {
        const std::size_t end = length - count + 1;
        at = nextMatch<Unit>(at, end, blockMask, unitMatches);
        if (at == end) {
            return unitNotFound;
        }
        std::size_t matched = 1;
        while (matched < count && forms.form(text[at + matched]) == wanted[matched]) {
            ++matched;
        }
        if (matched == count) {
            return at;
        }
        wasted += matched;
        ++at;
        if (wasted > maxWastedPerUnit * at + 256) {
            const std::size_t found = findByFailureTable(text + at, length - at, wanted, count, forms);
            return found == unitNotFound ? found : at + found;
        }
    }
    return unitNotFound;
}

/// The last occurrence, or `unitNotFound`. Looks from the end backwards.
template <class Unit>
std::size_t findLastUnits(const Unit* text, std::size_t length, const Unit* wanted, std::size_t count) {
    const std::basic_string<Unit> reversedWanted(std::make_reverse_iterator(wanted + count),
                                                 std::make_reverse_iterator(wanted));
    const std::vector<std::size_t> lengths = failureTable(reversedWanted.data(), count);
    std::size_t matched = 0;
    for (std::size_t i = length; i > 0; --i) {
        while (matched > 0 && text[i - 1] != reversedWanted[matched]) {
            matched = lengths[matched];
        }
        if (text[i - 1] == reversedWanted[matched] && ++matched == count) {
            return i - 1;
        }
    }
    return unitNotFound;
}

} // namespace ZQFoundation::detail

#endif
