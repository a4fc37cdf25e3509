// SPDX-License-Identifier: MIT
// NSString(ZQFoundation): splits strings into lines and pieces.
#include "extensions/LineWalk.h"
#include "foundation/objects/CharacterSetPages.h"
#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSString.h"
#include "foundation/objects/ShortStrings.h"

namespace ZQFoundation {

using detail::CharacterMembership;
using detail::StringPieces;

namespace {

/// The members of `whitespaceCharacterSet`, for walks over blocks.
template <class Unit>
constexpr auto whitespaceTest = [](auto unit) {
    const auto isAsciiBlank = (unit == ' ') | (unit == '\t');
    if constexpr (sizeof(Unit) == 1) {
        return isAsciiBlank;
    } else {
        // Units below U+2000 wrap to large numbers: in a block by themselves, here by the cast.
        const auto isSpaceOfSomeWidth = static_cast<decltype(unit)>(unit - 0x2000) <= 0x0A;
        return isAsciiBlank | isSpaceOfSomeWidth | (unit == 0xA0) | (unit == 0x1680) | (unit == 0x202F) |
               (unit == 0x205F) | (unit == 0x3000);
    }
};

/// Calls `component(start, end)` for each part between runs of separators, including empty parts at both
/// ends. `walk` calls its argument for the place of each separator, in order.
template <class Walk, class Component>
void forEachComponent(std::size_t length, const Walk& walk, const Component& component) {
    std::size_t start = 0;
    walk([&](std::size_t at) {
        if (at != start || at == 0) {
            component(start, at);
        }
        start = at + 1;
    });
    if (length != 0) {
        component(start, length);
    }
}

/// 40 characters are a usual line of a text.
template <class Unit>
NSArray lines(const Unit* units, std::size_t length) {
    constexpr std::size_t usualLength = 40;
    StringPieces<Unit> pieces(units, length, 2 + length / usualLength);
    detail::forEachLine(units, length, [&](std::size_t start, std::size_t end) { pieces.add(start, end); });
    return pieces.array();
}

template <class Unit>
NSArray components(const Unit* units, std::size_t length, const CharacterMembership& separators) {
    constexpr std::size_t usualLength = 8;
    StringPieces<Unit> pieces(units, length, 2 + length / usualLength);
    const auto walk = [&](const auto& found) {
        for (std::size_t at = 0; at < length; ++at) {
            if (separators.contains(units[at])) {
                found(at);
            }
        }
    };
    forEachComponent(length, walk, [&](std::size_t start, std::size_t end) { pieces.add(start, end); });
    return pieces.array();
}

template <class Unit>
NSArray words(const Unit* units, std::size_t length) {
    StringPieces<Unit> pieces(units, length, 1 + detail::countPlaces(units, length, whitespaceTest<Unit>));
    const auto walk = [&](const auto& found) {
        detail::forEachPlace(units, length, whitespaceTest<Unit>, found);
    };
    forEachComponent(length, walk, [&](std::size_t start, std::size_t end) { pieces.add(start, end); });
    return pieces.array();
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
    const CharacterMembership separators(set);
    return body.isAscii ? components(body.ascii(), body.length, separators)
                        : components(body.units(), body.length, separators);
}

// The common case of ASCII text is searched block by block, which a set of all Unicode white space does not
// allow.
NSArray NSString::componentsSeparatedByWhitespace() const {
    if (!*this) {
        return nullptr;
    }
    const detail::StringBody& body = *detail::Access::string(*this);
    return body.isAscii ? words(body.ascii(), body.length) : words(body.units(), body.length);
}

NSArray NSString::componentsSeparatedByWhitespaces() const { return componentsSeparatedByWhitespace(); }

} // namespace ZQFoundation
