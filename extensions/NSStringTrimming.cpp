// SPDX-License-Identifier: MIT
#include "foundation/objects/Bodies.h"
#include "foundation/objects/NSString.h"
#include "foundation/text/CharacterSetPages.h"

namespace ZQFoundation {

using detail::CharacterMembership;

namespace {

/// Where the string begins once the members at its front are gone. The walk ends where as many units are
/// behind it as are left, so no more than about half of the string goes.
template <class Unit>
std::size_t leftEdge(const Unit* units, std::size_t length, const CharacterMembership& members) noexcept {
    std::size_t start = 0;
    std::size_t rest = length;
    while (start < rest && members.contains(units[start])) {
        ++start;
        --rest;
    }
    return start;
}

/// Where it ends once all members at its end are gone.
template <class Unit>
std::size_t rightEdge(const Unit* units, std::size_t start, std::size_t length,
                      const CharacterMembership& members) noexcept {
    while (length > start && members.contains(units[length - 1])) {
        --length;
    }
    return length;
}

NSString trimmed(const NSString& string, const NSCharacterSet& set, bool atLeft, bool atRight) {
    if (!string) {
        return nullptr;
    }
    const detail::StringBody& body = *detail::Access::string(string);
    const CharacterMembership members(set);
    const auto edges = [&](const auto* units) {
        const std::size_t start = atLeft ? leftEdge(units, body.length, members) : 0;
        const std::size_t end = atRight ? rightEdge(units, start, body.length, members) : body.length;
        return NSMakeRange(start, end - start);
    };
    const NSRange rest = body.isAscii ? edges(body.ascii()) : edges(body.units());
    return rest.length == body.length ? string : string.substringWithRange(rest.location, rest.length);
}

} // namespace

NSString NSString::trimLeftCharactersOfCharacterSet(const NSCharacterSet& set) const {
    return trimmed(*this, set, true, false);
}

NSString NSString::trimRightCharactersOfCharacterSet(const NSCharacterSet& set) const {
    return trimmed(*this, set, false, true);
}

NSString NSString::trimCharactersOfCharacterSet(const NSCharacterSet& set) const {
    return trimmed(*this, set, true, true);
}

NSString NSString::trim() const {
    return trimCharactersOfCharacterSet(NSCharacterSet::whitespaceAndControlCharacterSet());
}

} // namespace ZQFoundation
