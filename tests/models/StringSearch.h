// SPDX-License-Identifier: MIT
// Where a text occurs in another one: every stretch between two places that no match cuts is compared with
// it. What a single character decomposes to, or folds to, comes from the library's tables.
#ifndef ZQFOUNDATION_TESTS_MODELS_STRINGSEARCH_H
#define ZQFOUNDATION_TESTS_MODELS_STRINGSEARCH_H

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "foundation/objects/ComposedSequences.h"
#include "foundation/objects/NSString.h"
#include "foundation/text/CaseMapping.h"

namespace ZQFoundation::models {

inline std::vector<char32_t> characters(std::u16string_view units) {
    std::vector<char32_t> all;
    for (const char16_t unit : units) {
        const bool isPair =
            !all.empty() && all.back() >= 0xD800 && all.back() < 0xDC00 && unit >= 0xDC00 && unit < 0xE000;
        if (isPair) {
            all.back() = 0x10000 + (all.back() - 0xD800) * 0x400 + (unit - 0xDC00U);
        } else {
            all.push_back(unit);
        }
    }
    return all;
}

/// Decomposed, marks put in canonical order by swapping neighbors until none is out of order.
inline std::vector<char32_t> decomposed(std::u16string_view units) {
    std::vector<char32_t> all;
    for (const char32_t character : characters(units)) {
        char32_t parts[4] = {character};
        const unsigned count = std::max(detail::canonicalDecomposition(character, parts), 1U);
        all.insert(all.end(), parts, parts + count);
    }
    for (bool isOrdered = false; !isOrdered;) {
        isOrdered = true;
        for (std::size_t i = 1; i < all.size(); ++i) {
            const int first = detail::canonicalCombiningClass(all[i - 1]);
            const int second = detail::canonicalCombiningClass(all[i]);
            if (second != 0 && first > second) {
                std::swap(all[i - 1], all[i]);
                isOrdered = false;
            }
        }
    }
    return all;
}

inline std::vector<char32_t> folded(const std::vector<char32_t>& all) {
    std::vector<char32_t> result;
    for (const char32_t character : all) {
        char32_t parts[3];
        result.insert(result.end(), parts, parts + detail::foldCase(character, parts));
    }
    return result;
}

/// A stretch of a text that no match cuts, and what it is compared by.
struct Stretch {
    std::size_t start;
    std::size_t end;
    std::vector<char32_t> points;
};

inline std::vector<Stretch> stretches(std::u16string_view units, std::size_t start, unsigned options) {
    std::vector<Stretch> all;
    const bool isLiteral = (options & NSLiteralSearch) != 0;
    const detail::AsciiOrUtf16 text{StringView(units)};
    const detail::UnitView view(text);
    while (start < units.size()) {
        std::size_t end = start;
        if (isLiteral) {
            const auto pair = characters(units.substr(start, 2));
            end += pair.size() == 1 && start + 2 <= units.size() ? 2 : 1;
        } else {
            end = detail::sequenceEnd(view, start);
        }
        const std::u16string_view piece = units.substr(start, end - start);
        Stretch stretch{start, end, isLiteral ? characters(piece) : decomposed(piece)};
        if ((options & NSCaseInsensitiveSearch) != 0) {
            stretch.points = folded(stretch.points);
        }
        all.push_back(stretch);
        start = end;
    }
    return all;
}

inline std::vector<NSRange> placesOfUnits(std::u16string_view units, std::size_t start,
                                          std::u16string_view wanted) {
    std::vector<NSRange> found;
    for (std::size_t at = start; at + wanted.size() <= units.size(); ++at) {
        if (units.substr(at, wanted.size()) == wanted) {
            found.push_back({at, wanted.size()});
        }
    }
    return found;
}

/// All places where the text occurs within the first units of a text, from a start on.
inline std::vector<NSRange> placesOf(std::u16string_view units, std::size_t start, std::u16string_view wanted,
                                     unsigned options) {
    if (wanted.empty()) {
        return {};
    }
    if ((options & (NSLiteralSearch | NSCaseInsensitiveSearch)) == NSLiteralSearch) {
        return placesOfUnits(units, start, wanted);
    }
    std::vector<char32_t> points;
    for (const Stretch& stretch : stretches(wanted, 0, options)) {
        points.insert(points.end(), stretch.points.begin(), stretch.points.end());
    }
    const std::vector<Stretch> all = stretches(units, start, options);
    std::vector<NSRange> found;
    for (std::size_t first = 0; first < all.size(); ++first) {
        std::vector<char32_t> together;
        for (std::size_t last = first; last < all.size() && together.size() < points.size(); ++last) {
            together.insert(together.end(), all[last].points.begin(), all[last].points.end());
            if (together == points) {
                found.push_back({all[first].start, all[last].end - all[first].start});
            }
        }
    }
    return found;
}

inline NSRange placeOf(std::u16string_view units, std::size_t start, std::u16string_view wanted,
                       unsigned options) {
    const std::vector<NSRange> all = placesOf(units, start, wanted, options);
    const bool isBackwards = (options & NSBackwardsSearch) != 0;
    NSRange found{NSNotFound, 0};
    for (const NSRange& range : all) {
        const bool isInPlace =
            (options & NSAnchoredSearch) == 0 ||
            (isBackwards ? range.location + range.length == units.size() : range.location == start);
        if (isInPlace && (isBackwards || found.location == NSNotFound)) {
            found = range;
        }
    }
    return found;
}

} // namespace ZQFoundation::models

#endif
