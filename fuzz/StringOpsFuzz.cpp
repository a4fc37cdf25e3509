// SPDX-License-Identifier: MIT
// Searching, comparing, case, splitting, trimming and replacing in texts of any units, checked against plain
// loops. What a single character decomposes to, or folds to, comes from the library's tables.
//
// Input: a byte that chooses the check, one of options, two of a range; another text up to a line feed; the
// text (see InputReader for their units).
#include <string>
#include <vector>

#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSCharacterSet.h"
#include "foundation/objects/NSString.h"
#include "foundation/text/CaseMapping.h"
#include "fuzz/Fuzzing.h"
#include "fuzz/InputReader.h"
#include "tests/kit/Texts.h"
#include "tests/models/StringSearch.h"
#include "tests/models/Strings.h"
#include "tests/models/Utf.h"

using namespace ZQFoundation;
using fuzzing::require;
using kit::stringOf;

namespace {

using Units = std::u16string;
using Pieces = std::vector<Units>;

void requireRange(const NSRange& found, const NSRange& expected, const char* what) {
    require(found.location == expected.location && found.length == expected.length, what);
}

void checkSearch(const Units& units, const Units& wanted, unsigned options, unsigned from, unsigned count) {
    const std::size_t start = std::min<std::size_t>(from % 64, units.size());
    const std::size_t end = std::min<std::size_t>(start + (from >= 128 ? 256 : count % 64), units.size());
    const NSRange found =
        stringOf(units).rangeOfString_options_range(wanted, options & 15U, NSMakeRange(start, end - start));
    const std::u16string_view searched = std::u16string_view(units).substr(0, end);
    requireRange(found, models::placeOf(searched, start, wanted, options & 15U), "range of a text");
}

void checkContaining(const Units& units, const Units& wanted) {
    const NSString text = stringOf(units);
    require(text.containsString(wanted) == !models::placesOf(units, 0, wanted, NSLiteralSearch).empty(),
            "whether a text occurs");
    const bool isPrefix = !wanted.empty() && units.starts_with(wanted);
    const bool isSuffix = !wanted.empty() && units.ends_with(wanted);
    require(text.hasPrefix(wanted) == isPrefix && text.hasSuffix(wanted) == isSuffix, "prefix and suffix");
    const NSRange first = models::placeOf(units, 0, wanted, NSLiteralSearch);
    const NSString rest = text.substringFromEndOfString(wanted);
    require(static_cast<bool>(rest) == (first.location != NSNotFound), "whether there is a rest");
    require(!rest || rest.utf16() == units.substr(first.location + first.length), "rest after a text");
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
    require((order == 0) == (models::decomposed(units) == models::decomposed(others)),
            "whether texts are equivalent");
    require(other.compare(units) == -order, "order the other way round");
    const auto isSimple = [](const Units& any) {
        return std::all_of(any.begin(), any.end(), [](char16_t unit) { return unit < 0xC0; });
    };
    require(!isSimple(units) || !isSimple(others) || order == signOf(units <=> others), "order by units");
    const auto left = models::folded(models::characters(units));
    const auto right = models::folded(models::characters(others));
    require(text.caseInsensitiveCompare(others) == signOf(left <=> right), "order in any case");
    const int byLength = signOf(others.size() <=> units.size());
    require(text.compareLength(others) == byLength, "order by length");
}

void checkCase(const Units& units) {
    const auto mapped = [&](unsigned (*map)(char32_t, char32_t[3]) noexcept) {
        Units result;
        for (const char32_t character : models::characters(units)) {
            char32_t parts[3];
            const unsigned count = map(character, parts);
            for (unsigned i = 0; i < count; ++i) {
                models::appendUtf16(result, parts[i]);
            }
        }
        return result;
    };
    require(stringOf(units).uppercaseString().utf16() == mapped(detail::upperCase), "upper case");
    require(stringOf(units).lowercaseString().utf16() == mapped(detail::lowerCase), "lower case");
}

void requirePieces(const NSArray& found, const Pieces& expected, const char* what) {
    require(kit::textsOf(found) == expected, what);
}

void checkSplitting(const Units& units, const Units& separator) {
    Pieces pieces;
    std::size_t start = 0;
    for (NSRange found = models::placeOf(units, 0, separator, 0); found.location != NSNotFound;
         found = models::placeOf(units, start, separator, 0)) {
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

    const auto front = std::find_if_not(units.begin(), units.end(), isMember);
    const Units left = models::leftTrimmed(units, set);
    require(text.stringByTrimmingCharactersInSet(set).utf16() ==
                models::rightTrimmed(Units(front, units.end()), set),
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
            "a member after the last one");
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
