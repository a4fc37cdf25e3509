// SPDX-License-Identifier: MIT
// Searching, comparing, case, splitting, trimming and replacing in texts of any units, against plain loops.
// What a single character decomposes to, or folds to, comes from the library's tables.
//
// Input: a byte that chooses the check, one of options, two of a range; another text up to a line feed; the
// text (see InputReader for their units).
#include <string>
#include <vector>

#include "foundation/objects/ComposedSequences.h"
#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSCharacterSet.h"
#include "foundation/objects/NSString.h"
#include "foundation/text/CaseMapping.h"
#include "fuzz/Fuzzing.h"
#include "fuzz/InputReader.h"
#include "tests/models/Strings.h"

using namespace ZQFoundation;
using fuzzing::require;

namespace {

using Units = std::u16string;
using Pieces = std::vector<Units>;

NSString stringOf(std::u16string_view units) {
    return NSString::stringWithCharacters_length(units.data(), units.size());
}

std::vector<char32_t> characters(std::u16string_view units) {
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

/// Decomposed, marks in their canonical order by exchanging neighbours until none are out of it.
std::vector<char32_t> decomposed(std::u16string_view units) {
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

std::vector<char32_t> folded(const std::vector<char32_t>& all) {
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

std::vector<Stretch> stretches(std::u16string_view units, std::size_t start, unsigned options) {
    std::vector<Stretch> all;
    const bool isLiteral = (options & NSLiteralSearch) != 0;
    const detail::NormalizedText text{StringView(units)};
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

std::vector<NSRange> plainRangesOfUnits(std::u16string_view units, std::size_t start,
                                        std::u16string_view wanted) {
    std::vector<NSRange> found;
    for (std::size_t at = start; at + wanted.size() <= units.size(); ++at) {
        if (units.substr(at, wanted.size()) == wanted) {
            found.push_back({at, wanted.size()});
        }
    }
    return found;
}

/// All places where the text stands within the first units of a text, from a start on.
std::vector<NSRange> plainRanges(std::u16string_view units, std::size_t start, std::u16string_view wanted,
                                 unsigned options) {
    if (wanted.empty()) {
        return {};
    }
    if ((options & (NSLiteralSearch | NSCaseInsensitiveSearch)) == NSLiteralSearch) {
        return plainRangesOfUnits(units, start, wanted);
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

NSRange plainRange(std::u16string_view units, std::size_t start, std::u16string_view wanted,
                   unsigned options) {
    const std::vector<NSRange> all = plainRanges(units, start, wanted, options);
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

void requireRange(const NSRange& found, const NSRange& expected, const char* what) {
    require(found.location == expected.location && found.length == expected.length, what);
}

void checkSearch(const Units& units, const Units& wanted, unsigned options, unsigned from, unsigned count) {
    const std::size_t start = std::min<std::size_t>(from % 64, units.size());
    const std::size_t end = std::min<std::size_t>(start + (from >= 128 ? 256 : count % 64), units.size());
    const NSRange found =
        stringOf(units).rangeOfString_options_range(wanted, options & 15U, NSMakeRange(start, end - start));
    const std::u16string_view searched = std::u16string_view(units).substr(0, end);
    requireRange(found, plainRange(searched, start, wanted, options & 15U), "range of a text");
}

void checkContaining(const Units& units, const Units& wanted) {
    const NSString text = stringOf(units);
    require(text.containsString(wanted) == !plainRanges(units, 0, wanted, NSLiteralSearch).empty(),
            "whether a text occurs");
    const bool isPrefix = !wanted.empty() && units.starts_with(wanted);
    const bool isSuffix = !wanted.empty() && units.ends_with(wanted);
    require(text.hasPrefix(wanted) == isPrefix && text.hasSuffix(wanted) == isSuffix, "prefix and suffix");
    const NSRange first = plainRange(units, 0, wanted, NSLiteralSearch);
    const NSString rest = text.substringFromEndOfString(wanted);
    require(static_cast<bool>(rest) == (first.location != NSNotFound), "whether there is a rest");
    require(!rest || rest.utf16() == units.substr(first.location + first.length), "rest behind a text");
    const char16_t unit = wanted.empty() ? u'a' : wanted[0];
    require(text.occurrenceCountOfCharacter(unit) ==
                static_cast<std::size_t>(std::count(units.begin(), units.end(), unit)),
            "number of occurrences");
}

int signOf(std::strong_ordering order) { return order < 0 ? -1 : order > 0 ? 1 : 0; }

void checkComparison(const Units& units, const Units& others) {
    const NSString text = stringOf(units);
    const NSString other = stringOf(others);
    require(text.isEqualToString(other) == (units == others), "equality");
    require(units != others || text.hash() == other.hash(), "hash");
    const int order = text.compare(others);
    require((order == 0) == (decomposed(units) == decomposed(others)), "whether texts are equivalent");
    require(other.compare(units) == -order, "order the other way round");
    const auto isSimple = [](const Units& any) {
        return std::all_of(any.begin(), any.end(), [](char16_t unit) { return unit < 0xC0; });
    };
    require(!isSimple(units) || !isSimple(others) || order == signOf(units <=> others), "order by units");
    const auto left = folded(characters(units));
    const auto right = folded(characters(others));
    require(text.caseInsensitiveCompare(others) == signOf(left <=> right), "order in any case");
    const int byLength = signOf(others.size() <=> units.size());
    require(text.compareLength(others) == byLength, "order by length");
}

void checkCase(const Units& units) {
    const auto mapped = [&](unsigned (*map)(char32_t, char32_t[3]) noexcept) {
        Units result;
        for (const char32_t character : characters(units)) {
            char32_t parts[3];
            const unsigned count = map(character, parts);
            for (unsigned i = 0; i < count; ++i) {
                const char32_t part = parts[i];
                if (part > 0xFFFF) {
                    result += static_cast<char16_t>(0xD800 + (part - 0x10000) / 0x400);
                }
                result += static_cast<char16_t>(part > 0xFFFF ? 0xDC00 + part % 0x400 : part);
            }
        }
        return result;
    };
    require(stringOf(units).uppercaseString().utf16() == mapped(detail::upperCase), "upper case");
    require(stringOf(units).lowercaseString().utf16() == mapped(detail::lowerCase), "lower case");
}

void requirePieces(const NSArray& found, const Pieces& expected, const char* what) {
    require(found.count() == expected.size(), what);
    for (std::size_t i = 0; i < expected.size(); ++i) {
        require(NSString(found.objectAtIndex(i)).utf16() == expected[i], what);
    }
}

void checkSplitting(const Units& units, const Units& separator) {
    Pieces pieces;
    std::size_t start = 0;
    for (NSRange found = plainRange(units, 0, separator, 0); found.location != NSNotFound;
         found = plainRange(units, start, separator, 0)) {
        pieces.push_back(units.substr(start, found.location - start));
        start = found.location + found.length;
    }
    pieces.push_back(units.substr(start));
    requirePieces(stringOf(units).componentsSeparatedByString(separator), pieces, "pieces between texts");
}

void checkSet(const Units& units, const Units& members, const Units& replacement) {
    const NSCharacterSet set = NSCharacterSet::characterSetWithCharactersInString(members);
    const NSString text = stringOf(units);
    const auto isMember = [&](char16_t unit) {
        return set.characterIsMember(unit);
    };

    std::size_t front = 0;
    while (front < units.size() && isMember(units[front])) {
        ++front;
    }
    const Units left = models::leftTrimmed(units, set);
    require(text.stringByTrimmingCharactersInSet(set).utf16() ==
                models::rightTrimmed(units.substr(front), set),
            "trimmed");
    require(text.trimLeftCharactersOfCharacterSet(set).utf16() == left, "trimmed at the front");
    require(text.trimRightCharactersOfCharacterSet(set).utf16() == models::rightTrimmed(units, set),
            "trimmed at the end");
    require(text.trimCharactersOfCharacterSet(set).utf16() == models::rightTrimmed(left, set),
            "trimmed at both ends");
    require(text.stringByReplacingEveryOccurrenceOfCharactersFromSet_withString(set, replacement).utf16() ==
                models::replaced(units, set, replacement),
            "members replaced");
    requirePieces(text.componentsSeparatedByCharacterSet(set), models::piecesBetweenMembers(units, set),
                  "pieces between members");

    const auto firstMember = std::find_if(units.begin(), units.end(), isMember);
    const auto place = static_cast<std::size_t>(firstMember - units.begin());
    const NSRange found = text.rangeOfCharacterFromSet(set);
    require(found.location == (firstMember == units.end() ? NSNotFound : place), "first member");
    const NSRange last = text.rangeOfCharacterFromSet_options(set, NSBackwardsSearch);
    require((last.location == NSNotFound) == (firstMember == units.end()), "last member");
    require(last.location == NSNotFound ||
                std::find_if(units.begin() + static_cast<std::ptrdiff_t>(last.location) + 1, units.end(),
                             isMember) == units.end(),
            "a member behind the last one");
}

void checkLines(const Units& units, const Units& indent) {
    const NSString text = stringOf(units);
    requirePieces(text.componentsSeparatedByLineBreak(), models::lines(units), "lines");
    require(text.stringByIndentingLinesWithString(indent).utf16() == models::indented(units, indent),
            "indented lines");
    const bool isMissing = !units.empty() && !models::isNewline(units.back());
    require(text.addMissingNewline().utf16() == units + (isMissing ? u"\n" : u""), "newline at the end");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzzing::InputReader input(data, size);
    const unsigned check = input.byte();
    const unsigned options = input.byte();
    const unsigned from = input.byte();
    const unsigned count = input.byte();
    const Units other = fuzzing::unitsFromBytes(input.piece('\n'));
    const Units text = fuzzing::unitsFromBytes(input.rest());
    switch (check % 8) {
    case 0:
        checkContaining(text, other);
        break;
    case 1:
        checkComparison(text, other);
        break;
    case 2:
        checkCase(text);
        break;
    case 3:
        checkSplitting(text, other);
        break;
    case 4:
        checkSet(text, other, Units(options % 4, u'#'));
        break;
    case 5:
        checkLines(text, other);
        break;
    default:
        checkSearch(text, other, options, from, count);
    }
    return 0;
}
