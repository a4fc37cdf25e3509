// SPDX-License-Identifier: MIT
// NSString(ZQFoundation): removes members of a set at the ends of strings.
#include "foundation/objects/Bodies.h"
#include "foundation/objects/CharacterSetPages.h"
#include "foundation/objects/NSString.h"
#include "foundation/objects/StringBodies.h"

namespace ZQFoundation {

using detail::CharacterMembership;

namespace {

/// The ASCII members of `whitespaceAndControlCharacterSet`.
struct AsciiBlanksAndControls {
    static bool contains(char unit) noexcept { return unit <= ' ' || unit == 0x7F; }
};

/// The start of the string without the leading members. The search ends when it has passed as many units as
/// remain, so at most about half of the string is removed. This is intended.
template <class Unit, class Members>
std::size_t leftEdge(const Unit* units, std::size_t length, const Members& members) noexcept {
    std::size_t start = 0;
    std::size_t rest = length;
    while (start < rest && members.contains(units[start])) {
        ++start;
        --rest;
    }
    return start;
}

/// The end of the string without the trailing members. Unlike at the start, there is no limit.
template <class Unit, class Members>
std::size_t rightEdge(const Unit* units, std::size_t start, std::size_t length,
                      const Members& members) noexcept {
    while (length > start && members.contains(units[length - 1])) {
        --length;
    }
    return length;
}

NSString made(const char* units, std::size_t count) { return detail::makeAsciiString(units, count); }
NSString made(const char16_t* units, std::size_t count) { return detail::makeString(units, count); }

/// At which ends members are removed.
struct Sides {
    bool left;
    bool right;
};

/// The string from `start` to `end`; the string itself if nothing is removed.
template <class Unit, class Members>
NSString trimmed(const NSString& string, const Unit* units, const Members& members, Sides sides) {
    const std::size_t length = string.length();
    const std::size_t start = sides.left ? leftEdge(units, length, members) : 0;
    const std::size_t end = sides.right ? rightEdge(units, start, length, members) : length;
    return end - start == length ? string : made(units + start, end - start);
}

/// A nil set has no members, so nothing is removed.
NSString trimmed(const NSString& string, const NSCharacterSet& set, Sides sides) {
    if (!string) {
        return nullptr;
    }
    const detail::StringBody& body = *detail::Access::string(string);
    const CharacterMembership members(set);
    return body.isAscii ? trimmed(string, body.ascii(), members, sides)
                        : trimmed(string, body.units(), members, sides);
}

} // namespace

NSString NSString::trimLeftCharactersOfCharacterSet(const NSCharacterSet& set) const {
    return trimmed(*this, set, {.left = true, .right = false});
}

NSString NSString::trimRightCharactersOfCharacterSet(const NSCharacterSet& set) const {
    return trimmed(*this, set, {.left = false, .right = true});
}

NSString NSString::trimCharactersOfCharacterSet(const NSCharacterSet& set) const {
    return trimmed(*this, set, {.left = true, .right = true});
}

NSString NSString::trim() const {
    if (*this && detail::Access::string(*this)->isAscii) {
        const detail::StringBody& body = *detail::Access::string(*this);
        return trimmed(*this, body.ascii(), AsciiBlanksAndControls(), {.left = true, .right = true});
    }
    return trimCharactersOfCharacterSet(NSCharacterSet::whitespaceAndControlCharacterSet());
}

} // namespace ZQFoundation
