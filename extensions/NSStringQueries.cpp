// SPDX-License-Identifier: MIT
// NSString(ZQFoundation): queries for emptiness, containment, counts and lengths.
#include "foundation/objects/Bodies.h"
#include "foundation/objects/NSCharacterSet.h"
#include "foundation/objects/NSString.h"
#include "foundation/text/UnitBlocks.h"
#include "foundation/text/Utf.h"

namespace ZQFoundation {

namespace {

/// Block by block: counting runs at the speed of memory.
template <class Unit>
std::size_t countOf(const Unit* units, std::size_t length, Unit wanted) noexcept {
    const auto sought = static_cast<detail::Lane<Unit>>(wanted);
    return detail::countPlaces(units, length, [sought](auto unit) { return unit == sought; });
}

/// Only UTF-8 has another number of bytes than of units.
std::size_t unitsOf(StringView text) noexcept {
    return text.form() == StringView::Form::utf8
               ? detail::utf16Length(text.bytes(), text.size(), detail::IllFormed::replace)
               : text.size();
}

/// The reverse of the usual order, deliberately.
NSComparisonResult longerFirst(std::size_t length, std::size_t other) noexcept {
    return length > other ? NSOrderedAscending : length < other ? NSOrderedDescending : NSOrderedSame;
}

} // namespace

NSString NSString::asDefaultOr(const NSString& other) const {
    // Also for a nil receiver: operations on nil return nil.
    return *this && other ? other : *this;
}

bool NSString::isEmpty() const noexcept { return *this && length() == 0; }

// Literal searches, unlike the platform's own: canonical equivalents do not match, and a match may begin
// inside a composed character.
bool NSString::containsString(StringView other) const {
    return rangeOfString_options(other, NSLiteralSearch).length != 0;
}

bool NSString::containsString_caseInsensitiveSearch(StringView other, detail::Flag caseInsensitive) const {
    const unsigned options = caseInsensitive ? NSLiteralSearch | NSCaseInsensitiveSearch : NSLiteralSearch;
    return rangeOfString_options(other, options).length != 0;
}

bool NSString::containsDecimalDigit() const {
    return rangeOfCharacterFromSet(NSCharacterSet::decimalDigitCharacterSet()).length != 0;
}

NSString NSString::substringFromEndOfString(StringView marker) const {
    const NSRange found = rangeOfString_options(marker, NSLiteralSearch);
    return found.length != 0 ? substringFromIndex(found.location + found.length) : NSString();
}

// A string that holds ASCII alone cannot contain any other unit, so for those nothing is searched.
std::size_t NSString::occurrenceCountOfCharacter(char16_t unit) const noexcept {
    if (!*this) {
        return 0;
    }
    const detail::StringBody& body = *detail::Access::string(*this);
    if (!body.isAscii) {
        return countOf(body.units(), body.length, unit);
    }
    return unit < 0x80 ? countOf(body.ascii(), body.length, static_cast<char>(unit)) : 0;
}

NSComparisonResult NSString::compareLength(StringView other) const noexcept {
    return *this ? longerFirst(length(), unitsOf(other)) : NSOrderedSame;
}

} // namespace ZQFoundation
