// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_OBJECTS_COMPOSEDSEQUENCES_H
#define ZQFOUNDATION_OBJECTS_COMPOSEDSEQUENCES_H

#include <vector>

#include "foundation/objects/AsciiOrUtf16.h"
#include "foundation/objects/Bodies.h"
#include "foundation/text/Surrogates.h"

/// What the Unicode standard treats as one character: a base character with its marks, and the decompositions
/// that make two such sequences equivalent.
namespace ZQFoundation::detail {

/// A view of the units of a text, as ASCII bytes or as UTF-16, that does not own them.
class UnitView {
public:
    UnitView(const AsciiOrUtf16& text) noexcept
        : ascii_(text.ascii()), units_(text.units()), length_(text.length()) {}
    explicit UnitView(const StringBody& body) noexcept
        : ascii_(body.isAscii ? body.ascii() : nullptr), units_(body.isAscii ? nullptr : body.units()),
          length_(body.length) {}

    /// The first `length` units.
    UnitView upTo(std::size_t length) const noexcept {
        UnitView front(*this);
        front.length_ = length;
        return front;
    }

    bool isAscii() const noexcept { return ascii_ != nullptr; }
    std::size_t length() const noexcept { return length_; }
    const char* ascii() const noexcept { return ascii_; }
    const char16_t* units() const noexcept { return units_; }
    char16_t operator[](std::size_t index) const noexcept {
        return ascii_ != nullptr ? static_cast<unsigned char>(ascii_[index]) : units_[index];
    }

private:
    const char* ascii_;
    const char16_t* units_;
    std::size_t length_;
};

/// The code point at `index`, an unpaired surrogate as itself; moves the index past it.
inline char32_t nextCodePoint(const UnitView& text, std::size_t& index) noexcept {
    const char16_t unit = text[index++];
    if (isHighSurrogate(unit) && index < text.length() && isLowSurrogate(text[index])) {
        return 0x10000U + ((unit & 0x3FFU) << 10) + (text[index++] & 0x3FFU);
    }
    return unit;
}

/// Where the sequence that contains the unit at `index` begins.
std::size_t sequenceStart(const UnitView& text, std::size_t index) noexcept;

/// Where the sequence that begins at `index` ends.
std::size_t sequenceEnd(const UnitView& text, std::size_t index) noexcept;

struct ClassedCodePoint {
    char32_t codePoint;
    unsigned char combiningClass;

    friend bool operator==(const ClassedCodePoint&, const ClassedCodePoint&) = default;
};

/// Replaces `sequence` by the canonical decomposition of the units from `start` to `end`.
void decompose(const UnitView& text, std::size_t start, std::size_t end,
               std::vector<ClassedCodePoint>& sequence);

} // namespace ZQFoundation::detail

#endif
