// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_OBJECTS_CHARACTERSETPAGES_H
#define ZQFOUNDATION_OBJECTS_CHARACTERSETPAGES_H

#include <array>
#include <atomic>
#include <cstdint>
#include <vector>

#include "foundation/objects/Bodies.h"
#include "foundation/text/CharacterCategories.h"

namespace ZQFoundation::detail {

class TextBuilder;

inline constexpr char32_t codeSpace = 0x110000;
inline constexpr std::size_t codePages = codeSpace >> 8;

/// The set without members; represents nil where a body is needed.
const CharacterSetBody& emptyCharacterSetBody() noexcept;

inline const CharacterSetBody& bodyOrEmpty(const NSCharacterSet& set) noexcept {
    return Access::kind(set) == Kind::characterSet ? *Access::characterSet(set) : emptyCharacterSetBody();
}

inline bool containsCodePoint(const CharacterSetBody& body, char32_t codePoint) noexcept {
    return codePoint < codeSpace && body.pages()[body.pageNumber(codePoint >> 8)].contains(codePoint);
}

/// The test of membership for loops: two loads for a unit. Refers to a set that its owner must keep alive; a
/// nil set has no members.
class CharacterMembership {
public:
    explicit CharacterMembership(const CharacterSetBody& body) noexcept
        : numbers_(body.numbers), pages_(body.pages()), ascii_(pages_ + numbers_[0]) {}
    explicit CharacterMembership(const NSCharacterSet& set) noexcept
        : CharacterMembership(bodyOrEmpty(set)) {}

    bool contains(char16_t unit) const noexcept { return pages_[numbers_[unit >> 8]].contains(unit); }

    /// For strings held as bytes, which are below U+0080.
    bool contains(char ascii) const noexcept { return ascii_->contains(static_cast<unsigned char>(ascii)); }

private:
    const std::uint16_t* numbers_;
    const CharacterPage* pages_;
    const CharacterPage* ascii_;
};

bool equalCharacterSets(const CharacterSetBody& left, const CharacterSetBody& right) noexcept;
std::uint64_t hashCharacterSet(const CharacterSetBody& body, std::uint64_t seed) noexcept;

/// "<NSCharacterSet: 0009 000B-000D ...>"
void appendCharacterSet(TextBuilder& out, const CharacterSetBody& body);

/// A set that is being built. Its numbers have the same meaning as those of a body, but no two places share a
/// page other than the empty and the full one, so each may be changed in place.
struct CharacterSetPages {
    CharacterSetPages();
    explicit CharacterSetPages(const CharacterSetBody& body);

    std::size_t pageNumber(std::size_t page) const noexcept;
    bool contains(char32_t codePoint) const noexcept;

    /// From `first` up to, but not including, `end`, which is at most the end of the code space.
    void setRange(char32_t first, char32_t end, bool isMember);
    void setCharacters(StringView characters, bool isMember);
    void setCategories(CategoryMask categories);
    void unite(const CharacterSetBody& other) { combine(other, true); }
    void intersect(const CharacterSetBody& other) { combine(other, false); }
    void invert() noexcept;

    NSCharacterSet characterSet() const;

private:
    using PlaneNumbers = std::array<std::uint16_t, CharacterSetBody::pagesInPlane>;

    std::uint16_t& numberSlot(std::size_t page);
    CharacterPage& ownPage(std::size_t page);
    void fillPage(std::size_t page, bool isMember);
    void combine(const CharacterSetBody& other, bool isUnion);

    std::uint8_t planes_[CharacterSetBody::planeCount];
    std::vector<PlaneNumbers> numbers_; ///< the first plane's first
    std::vector<CharacterPage> pages_;
};

using SharedCharacterSet = std::atomic<CharacterSetBody*>;

/// The slot's set, which the first call makes. When several threads make it at once, one result is kept. It
/// is never released.
NSCharacterSet sharedCharacterSet(SharedCharacterSet& slot, NSCharacterSet (*make)());

} // namespace ZQFoundation::detail

#endif
