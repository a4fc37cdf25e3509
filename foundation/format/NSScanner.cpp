// SPDX-License-Identifier: MIT
// Reads strings from front to back.
// Each operation skips first, and does not move the location if it finds nothing.
#include "foundation/format/NSScanner.h"

#include <limits>

#include "foundation/objects/AsciiOrUtf16.h"
#include "foundation/objects/CharacterSetPages.h"
#include "foundation/objects/NSException.h"
#include "foundation/text/Digits.h"
#include "foundation/text/NumberText.h"

namespace ZQFoundation {

using detail::Access;
using detail::AsciiOrUtf16;
using detail::CharacterMembership;
using detail::hexDigitValue;
using detail::isDigit;

namespace {

/// Calls `action` with the units of a string that is not nil, in the string's own form, and with their
/// number.
/// A template for both forms, so that the common case is compiled without a test for each unit.
template <class Action>
auto withUnits(const NSString& string, const Action& action) {
    const detail::StringBody& body = *Access::string(string);
    const std::size_t length = body.length;
    return body.isAscii ? action(body.ascii(), length) : action(body.units(), length);
}

/// The first index from `location` on whose unit is, or is not, a member; the length if there is none.
std::size_t placeOfUnit(const NSString& string, std::size_t location, const NSCharacterSet& set,
                        bool isMember) {
    // Members above U+FFFF are not found: scanning goes by units.
    const CharacterMembership membership(set);
    return withUnits(string, [&](const auto* units, std::size_t length) {
        std::size_t at = location;
        while (at < length && membership.contains(units[at]) != isMember) {
            ++at;
        }
        return at;
    });
}

/// Sets the output, if there is one, to the units from `start` to `end`, and the location to the end. Returns
/// true.
bool take(const NSString& string, std::size_t start, std::size_t end, NSString* output,
          std::size_t& location) {
    if (output != nullptr) {
        *output = string.substringWithRange(start, end - start);
    }
    location = end;
    return true;
}

/// Only ASCII: everything else is left to the search, which knows the case mappings of Unicode.
char16_t lowered(char16_t unit) noexcept {
    return unit >= 'A' && unit <= 'Z' ? static_cast<char16_t>(unit | 0x20) : unit;
}

enum class Answer { no, yes, open };

/// Whether the text is at a place, as far as ASCII decides that: undecided if another unit is involved, for
/// that may be a mark on the last letter or one character equal to two.
template <class Unit>
Answer matchesAt(const Unit* units, std::size_t length, const AsciiOrUtf16& text, bool isCaseSensitive) {
    for (std::size_t i = 0; i < text.length(); ++i) {
        if (i == length) {
            return Answer::no;
        }
        const auto present = static_cast<char16_t>(units[i]);
        const char16_t wanted = text[i];
        // One unit beyond ASCII is enough to leave the decision to the search.
        if ((present | wanted) >= 0x80) {
            return Answer::open;
        }
        if (present != wanted && (isCaseSensitive || lowered(present) != lowered(wanted))) {
            return Answer::no;
        }
    }
    // A mark may follow the last letter and change it.
    const bool mayGoOn = text.length() < length && static_cast<char16_t>(units[text.length()]) >= 0x80;
    return mayGoOn ? Answer::open : Answer::yes;
}

unsigned searchOptions(bool isCaseSensitive) noexcept {
    return isCaseSensitive ? 0U : unsigned{NSCaseInsensitiveSearch};
}

/// Where the text ends if it is at `location`, else NSNotFound.
std::size_t endOfText(const NSString& string, std::size_t location, StringView text, bool isCaseSensitive) {
    const AsciiOrUtf16 wanted(text);
    if (wanted.length() == 0) {
        return NSNotFound;
    }
    // Two ASCII texts are the usual case, and decided without the search.
    const Answer answer = withUnits(string, [&](const auto* units, std::size_t length) {
        return matchesAt(units + location, length - location, wanted, isCaseSensitive);
    });
    if (answer != Answer::open) {
        return answer == Answer::yes ? location + wanted.length() : NSNotFound;
    }
    const NSRange found =
        string.rangeOfString_options_range(text, searchOptions(isCaseSensitive) | NSAnchoredSearch,
                                           NSMakeRange(location, string.length() - location));
    return found.location == location ? location + found.length : NSNotFound;
}

/// A run of digits, with its sign.
struct DigitStretch {
    std::size_t start; ///< of the sign
    std::size_t digits;
    std::size_t end;
};

/// Finds the digits without converting them, so that a number that saturates is still skipped as a whole.
DigitStretch decimalDigits(const NSString& string, std::size_t location) {
    // White space before a number is skipped even if the scanner skips nothing.
    return withUnits(string, [&](const auto* units, std::size_t length) {
        DigitStretch found{};
        found.start = location + detail::whiteSpacePrefix(units + location, length - location);
        found.digits = found.start;
        if (found.digits < length && (units[found.digits] == '+' || units[found.digits] == '-')) {
            ++found.digits;
        }
        found.end = found.digits;
        while (found.end < length && isDigit(units[found.end])) {
            ++found.end;
        }
        return found;
    });
}

struct HexReading {
    std::uint64_t value;
    std::size_t end; ///< NSNotFound: no digit
};

/// Digits of either case, with or without the prefix. All digits are taken, even those of a number that does
/// not fit: the scanner must not stop inside a number.
template <class Unit>
HexReading readHex(const Unit* units, std::size_t length, std::size_t at) {
    at += detail::whiteSpacePrefix(units + at, length - at);
    // Without a digit after it, the prefix is the digit 0 and an x that is left.
    if (length - at > 2 && units[at] == '0' && (units[at + 1] == 'x' || units[at + 1] == 'X') &&
        hexDigitValue(units[at + 2]) >= 0) {
        at += 2;
    }
    const std::size_t digits = at;
    std::uint64_t value = 0;
    for (; at < length && hexDigitValue(units[at]) >= 0; ++at) {
        const auto digit = static_cast<std::uint64_t>(hexDigitValue(units[at]));
        value = value >> 60 != 0 ? UINT64_MAX : value << 4 | digit; // a larger number saturates
    }
    return {value, at == digits ? NSNotFound : at};
}

} // namespace

NSScanner::NSScanner(NSString string)
    : string_(string ? static_cast<NSString&&>(string) : NSString::string()),
      // The default set; a set of nil skips nothing.
      skipped_(NSCharacterSet::whitespaceAndNewlineCharacterSet()) {}

NSScanner NSScanner::scannerWithString(NSString string) { return NSScanner(static_cast<NSString&&>(string)); }

void NSScanner::setScanLocation(std::size_t location) {
    if (location > string_.length()) {
        NSException::raise_format(NSRangeException, "setScanLocation: %lu beyond a string of %lu units",
                                  location, string_.length());
    }
    location_ = location;
}

void NSScanner::setCharactersToBeSkipped(NSCharacterSet set) {
    skipped_ = static_cast<NSCharacterSet&&>(set);
}

std::size_t NSScanner::locationAfterSkipping() const {
    return placeOfUnit(string_, location_, skipped_, false);
}

// Also at the end if only characters to be skipped are left.
bool NSScanner::isAtEnd() const { return locationAfterSkipping() == string_.length(); }

bool NSScanner::scanString_intoString(StringView text, NSString* output) {
    const std::size_t start = locationAfterSkipping();
    const std::size_t end = endOfText(string_, start, text, isCaseSensitive_);
    return end != NSNotFound && take(string_, start, end, output, location_);
}

bool NSScanner::scanUpToString_intoString(StringView text, NSString* output) {
    const std::size_t start = locationAfterSkipping();
    const std::size_t length = string_.length();
    // The search is over what follows the skipped characters, so what is found begins after them.
    const NSRange found = string_.rangeOfString_options_range(text, searchOptions(isCaseSensitive_),
                                                              NSMakeRange(start, length - start));
    const std::size_t end = found.location != NSNotFound ? found.location : length;
    return end != start && take(string_, start, end, output, location_);
}

bool NSScanner::scanCharactersFromSet_intoString(const NSCharacterSet& set, NSString* output) {
    const std::size_t start = locationAfterSkipping();
    const std::size_t end = placeOfUnit(string_, start, set, false);
    return end != start && take(string_, start, end, output, location_);
}

bool NSScanner::scanUpToCharactersFromSet_intoString(const NSCharacterSet& set, NSString* output) {
    const std::size_t start = locationAfterSkipping();
    const std::size_t end = placeOfUnit(string_, start, set, true);
    return end != start && take(string_, start, end, output, location_);
}

// A null output is allowed everywhere: then the scan only moves.
bool NSScanner::scanInteger(std::int64_t* value) {
    const DigitStretch found = decimalDigits(string_, locationAfterSkipping());
    if (found.end == found.digits) {
        return false;
    }
    if (value != nullptr) {
        *value = withUnits(string_, [&](const auto* units, std::size_t) {
            return detail::readInt64(units + found.start, found.end - found.start);
        });
    }
    location_ = found.end;
    return true;
}

bool NSScanner::scanInt(int* value) {
    std::int64_t wide = 0;
    if (!scanInteger(&wide)) {
        return false;
    }
    using Limits = std::numeric_limits<int>;
    if (value != nullptr) {
        // The nearest limit, as a string's own number is cut.
        *value = static_cast<int>(wide < Limits::min()   ? std::int64_t{Limits::min()}
                                  : wide > Limits::max() ? std::int64_t{Limits::max()}
                                                         : wide);
    }
    return true;
}

bool NSScanner::scanDouble(double* value) {
    const std::size_t start = locationAfterSkipping();
    std::size_t blanks = 0;
    const detail::DoubleReading reading = withUnits(string_, [&](const auto* units, std::size_t length) {
        blanks = detail::whiteSpacePrefix(units + start, length - start);
        return detail::scanDouble(units + start + blanks, length - start - blanks);
    });
    if (reading.length == 0) {
        return false;
    }
    if (value != nullptr) {
        *value = reading.value;
    }
    location_ = start + blanks + reading.length;
    return true;
}

bool NSScanner::scanFloat(float* value) {
    double wide = 0;
    if (!scanDouble(&wide)) {
        return false;
    }
    if (value != nullptr) {
        *value = static_cast<float>(wide);
    }
    return true;
}

bool NSScanner::scanHexLongLong(std::uint64_t* value) {
    const std::size_t start = locationAfterSkipping();
    const HexReading reading = withUnits(
        string_, [&](const auto* units, std::size_t length) { return readHex(units, length, start); });
    if (reading.end == NSNotFound) {
        return false;
    }
    if (value != nullptr) {
        *value = reading.value;
    }
    location_ = reading.end;
    return true;
}

bool NSScanner::scanHexInt(unsigned* value) {
    std::uint64_t wide = 0;
    if (!scanHexLongLong(&wide)) {
        return false;
    }
    using Limits = std::numeric_limits<unsigned>;
    if (value != nullptr) {
        *value = wide > Limits::max() ? Limits::max() : static_cast<unsigned>(wide);
    }
    return true;
}

} // namespace ZQFoundation
