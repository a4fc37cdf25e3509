// SPDX-License-Identifier: MIT
// NSString(ZQFoundation): splits strings into lines and pieces.
#include "extensions/LineWalk.h"
#include "foundation/objects/CharacterSetPages.h"
#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSString.h"
#include "foundation/objects/StringBodies.h"

namespace ZQFoundation {

using detail::CharacterMembership;

namespace {

/// A part of an ASCII text is ASCII, so it is not checked again.
NSString piece(const char* units, std::size_t start, std::size_t end) {
    return detail::makeAsciiString(units + start, end - start);
}

NSString piece(const char16_t* units, std::size_t start, std::size_t end) {
    return detail::makeString(units + start, end - start);
}

/// Space and tab, the white space of ASCII.
struct AsciiBlanks {
    static constexpr auto test = [](auto unit) {
        return (unit == ' ') | (unit == '\t');
    };

    static bool contains(char unit) noexcept { return test(static_cast<unsigned char>(unit)); }
    static std::size_t next(const char* units, std::size_t at, std::size_t length) noexcept {
        return detail::nextPlace(units, at, length, test);
    }
};

/// Any set of separators, tested unit by unit.
struct SetMembers : CharacterMembership {
    using CharacterMembership::CharacterMembership;

    template <class Unit>
    std::size_t next(const Unit* units, std::size_t at, std::size_t length) const noexcept {
        while (at < length && !contains(units[at])) {
            ++at;
        }
        return at;
    }
};

/// Calls `component(start, end)` for each part between runs of members, including empty parts at both ends.
template <class Unit, class Separators, class Component>
void forEachComponent(const Unit* units, std::size_t length, const Separators& separators,
                      const Component& component) {
    std::size_t at = 0;
    while (at < length) {
        const std::size_t start = at;
        at = separators.next(units, at, length);
        component(start, at);
        if (at == length) {
            return;
        }
        while (at < length && separators.contains(units[at])) {
            ++at;
        }
        if (at == length) {
            component(at, at);
        }
    }
}

/// The pieces that `walk` passes to `take`. Reserves space for pieces of the usual length, and releases it if
/// it is far too much.
template <class Unit, class Walk>
NSArray pieces(const Unit* units, std::size_t length, std::size_t usualLength, const Walk& walk) {
    NSMutableArray found(length / usualLength + 2);
    walk([&](std::size_t start, std::size_t end) { found.addObject(piece(units, start, end)); });
    return found.array();
}

/// 40 characters are a usual line of a text.
template <class Unit>
NSArray lines(const Unit* units, std::size_t length) {
    return pieces(units, length, 40, [&](const auto& take) { detail::forEachLine(units, length, take); });
}

/// 8 characters are a usual word with its separator.
template <class Unit, class Separators>
NSArray components(const Unit* units, std::size_t length, const Separators& separators) {
    return pieces(units, length, 8,
                  [&](const auto& take) { forEachComponent(units, length, separators, take); });
}

} // namespace

NSArray NSString::componentsSeparatedByLineBreak() const {
    if (!*this) {
        return nullptr;
    }
    const detail::StringBody& body = *detail::Access::string(*this);
    return body.isAscii ? lines(body.ascii(), body.length) : lines(body.units(), body.length);
}

NSArray NSString::componentsSeparatedByCharacterSet(const NSCharacterSet& set) const {
    if (!*this) {
        return nullptr;
    }
    const detail::StringBody& body = *detail::Access::string(*this);
    const SetMembers separators(set);
    return body.isAscii ? components(body.ascii(), body.length, separators)
                        : components(body.units(), body.length, separators);
}

// The common case of ASCII text is searched block by block, which a set of all Unicode white space does not
// allow.
NSArray NSString::componentsSeparatedByWhitespace() const {
    if (*this && detail::Access::string(*this)->isAscii) {
        const detail::StringBody& body = *detail::Access::string(*this);
        return components(body.ascii(), body.length, AsciiBlanks());
    }
    return componentsSeparatedByCharacterSet(NSCharacterSet::whitespaceCharacterSet());
}

NSArray NSString::componentsSeparatedByWhitespaces() const { return componentsSeparatedByWhitespace(); }

} // namespace ZQFoundation
