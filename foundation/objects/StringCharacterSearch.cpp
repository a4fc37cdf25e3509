// SPDX-License-Identifier: MIT
// Searches strings for members of character sets.
// One unit at a time: members above U+FFFF cannot be found this way, as on the platform.
#include "foundation/objects/Bodies.h"
#include "foundation/objects/CharacterSetPages.h"
#include "foundation/objects/NSException.h"
#include "foundation/objects/NSString.h"
#include "foundation/objects/StringBodies.h"

namespace ZQFoundation {

using detail::Access;
using detail::CharacterMembership;

namespace {

constexpr NSRange nowhere{NSNotFound, 0};

template <class Unit>
NSRange rangeOfMember(const Unit* units, NSRange range, const CharacterMembership& members,
                      unsigned options) {
    const std::size_t end = range.location + range.length;
    // Anchored means that only the first or last unit is looked at.
    if ((options & NSAnchoredSearch) != 0) {
        const std::size_t at = (options & NSBackwardsSearch) != 0 ? end - 1 : range.location;
        return range.length != 0 && members.contains(units[at]) ? NSMakeRange(at, 1) : nowhere;
    }
    if ((options & NSBackwardsSearch) != 0) {
        std::size_t at = end;
        while (at > range.location && !members.contains(units[at - 1])) {
            --at;
        }
        return at > range.location ? NSMakeRange(at - 1, 1) : nowhere;
    }
    std::size_t at = range.location;
    while (at < end && !members.contains(units[at])) {
        ++at;
    }
    return at < end ? NSMakeRange(at, 1) : nowhere;
}

/// Returns the string itself if nothing is removed.
template <class Unit>
NSString trimmed(const NSString& string, const Unit* units, const CharacterMembership& members) {
    const std::size_t length = string.length();
    std::size_t start = 0;
    while (start < length && members.contains(units[start])) {
        ++start;
    }
    std::size_t end = length;
    while (end > start && members.contains(units[end - 1])) {
        --end;
    }
    if (end - start == length) {
        return string;
    }
    if constexpr (sizeof(Unit) == 1) {
        return detail::makeAsciiString(units + start, end - start);
    } else {
        return detail::makeString(units + start, end - start);
    }
}

} // namespace

NSRange NSString::rangeOfCharacterFromSet(const NSCharacterSet& set) const {
    return rangeOfCharacterFromSet_options(set, 0);
}

NSRange NSString::rangeOfCharacterFromSet_options(const NSCharacterSet& set, unsigned options) const {
    return rangeOfCharacterFromSet_options_range(set, options, NSMakeRange(0, length()));
}

NSRange NSString::rangeOfCharacterFromSet_options_range(const NSCharacterSet& set, unsigned options,
                                                        NSRange range) const {
    if (!*this) {
        return nowhere;
    }
    const detail::StringBody& body = *Access::string(*this);
    if (range.location > body.length || range.length > body.length - range.location) {
        NSException::raise_format(NSRangeException, "a search from %lu over %lu units in a string of %lu",
                                  range.location, range.length, std::size_t{body.length});
    }
    const CharacterMembership members(set);
    return body.isAscii ? rangeOfMember(body.ascii(), range, members, options)
                        : rangeOfMember(body.units(), range, members, options);
}

// A set that is nil has no members, so nothing is trimmed.
NSString NSString::stringByTrimmingCharactersInSet(const NSCharacterSet& set) const {
    if (!*this) {
        return nullptr;
    }
    const detail::StringBody& body = *Access::string(*this);
    const CharacterMembership members(set);
    return body.isAscii ? trimmed(*this, body.ascii(), members) : trimmed(*this, body.units(), members);
}

} // namespace ZQFoundation
