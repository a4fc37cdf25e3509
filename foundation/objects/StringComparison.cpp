// SPDX-License-Identifier: MIT
// The orders, prefixes and case mappings of strings.
// Three orders exist: by units for equality and containers, canonical for `compare`, folded for comparison
// without case.
#include <algorithm>
#include <cstring>
#include <vector>

#include "foundation/objects/AsciiOrUtf16.h"
#include "foundation/objects/ComposedSequences.h"
#include "foundation/objects/NSString.h"
#include "foundation/objects/TextBuilder.h"
#include "foundation/text/CaseMapping.h"

namespace ZQFoundation {

using detail::AsciiOrUtf16;
using detail::nextCodePoint;
using detail::sequenceEnd;
using detail::sequenceStart;

namespace {

NSComparisonResult ordered(std::size_t left, std::size_t right) noexcept {
    return left < right ? NSOrderedAscending : left > right ? NSOrderedDescending : NSOrderedSame;
}

bool sameUnits(const AsciiOrUtf16& left, std::size_t leftStart, const AsciiOrUtf16& right,
               std::size_t rightStart, std::size_t count) noexcept {
    if (left.isAscii() && right.isAscii()) {
        return std::memcmp(left.ascii() + leftStart, right.ascii() + rightStart, count) == 0;
    }
    if (!left.isAscii() && !right.isAscii()) {
        return std::memcmp(left.units() + leftStart, right.units() + rightStart, count * sizeof(char16_t)) ==
               0;
    }
    // Only for one text of each form, which are never equal but may have equal parts.
    for (std::size_t i = 0; i < count; ++i) {
        if (left[leftStart + i] != right[rightStart + i]) {
            return false;
        }
    }
    return true;
}

std::size_t commonPrefix(const AsciiOrUtf16& left, std::size_t leftStart, const AsciiOrUtf16& right,
                         std::size_t rightStart) noexcept {
    std::size_t count = 0;
    while (leftStart + count < left.length() && rightStart + count < right.length() &&
           left[leftStart + count] == right[rightStart + count]) {
        ++count;
    }
    return count;
}

// Units, not code points: surrogates sort below U+E000 to U+FFFF, as on the platform.
NSComparisonResult compareUnits(const AsciiOrUtf16& left, const AsciiOrUtf16& right) noexcept {
    const std::size_t shorter = left.length() < right.length() ? left.length() : right.length();
    if (left.isAscii() && right.isAscii()) {
        const int order = std::memcmp(left.ascii(), right.ascii(), shorter);
        return order != 0 ? (order < 0 ? NSOrderedAscending : NSOrderedDescending)
                          : ordered(left.length(), right.length());
    }
    const std::size_t common = commonPrefix(left, 0, right, 0);
    return common < shorter ? ordered(left[common], right[common]) : ordered(left.length(), right.length());
}

// Walks over equal units quickly, and looks at sequences only around a difference: there, different units
// may still be equivalent.
NSComparisonResult compareCanonically(const AsciiOrUtf16& left, const AsciiOrUtf16& right) {
    std::vector<detail::ClassedCodePoint> leftSequence;
    std::vector<detail::ClassedCodePoint> rightSequence;
    std::size_t i = 0;
    std::size_t j = 0;
    for (;;) {
        const std::size_t common = commonPrefix(left, i, right, j);
        const std::size_t leftDifference = i + common;
        const std::size_t rightDifference = j + common;
        if (leftDifference == left.length() && rightDifference == right.length()) {
            return NSOrderedSame;
        }
        // Not before the place up to which the texts are known to be equivalent.
        const std::size_t leftStart = std::max(i, sequenceStart(left, leftDifference));
        const std::size_t rightStart = std::max(j, sequenceStart(right, rightDifference));
        // Both sequences start where the texts are still equal, at the earlier of the two starts.
        const std::size_t back = std::max(leftDifference - leftStart, rightDifference - rightStart);
        const std::size_t leftEnd = sequenceEnd(left, leftDifference - back);
        const std::size_t rightEnd = sequenceEnd(right, rightDifference - back);
        decompose(left, leftDifference - back, leftEnd, leftSequence);
        decompose(right, rightDifference - back, rightEnd, rightSequence);
        // The sequences differ: the first different units decide, and the end of a text comes first.
        if (leftSequence != rightSequence) {
            if (leftDifference == left.length() || rightDifference == right.length()) {
                return leftDifference == left.length() ? NSOrderedAscending : NSOrderedDescending;
            }
            return ordered(left[leftDifference], right[rightDifference]);
        }
        i = leftEnd;
        j = rightEnd;
    }
}

/// Iterates over the folded code points of a text.
/// Both texts are folded while they are compared, so that nothing is allocated, and a difference at the
/// start costs nothing beyond.
class FoldedText {
public:
    explicit FoldedText(const AsciiOrUtf16& text) noexcept : text_(text) {}

    /// False at the end.
    bool next(char32_t& codePoint) noexcept {
        if (position_ == count_) {
            if (index_ == text_.length()) {
                return false;
            }
            count_ = detail::foldCase(nextCodePoint(text_, index_), folded_);
            position_ = 0;
        }
        codePoint = folded_[position_++];
        return true;
    }

private:
    const AsciiOrUtf16& text_;
    std::size_t index_ = 0;
    char32_t folded_[3] = {};
    unsigned count_ = 0;
    unsigned position_ = 0;
};

using CaseMapper = unsigned (*)(char32_t, char32_t[3]) noexcept;

NSString caseMapped(const AsciiOrUtf16& text, CaseMapper mapper) {
    detail::TextBuilder builder;
    for (std::size_t i = 0; i < text.length();) {
        char32_t mapped[3];
        const unsigned count = mapper(nextCodePoint(text, i), mapped);
        for (unsigned k = 0; k < count; ++k) {
            builder.appendCodePoint(mapped[k]);
        }
    }
    return builder.string();
}

// The distance of the two cases of an ASCII letter is one bit. The result has the length of the text.
NSString asciiMapped(const AsciiOrUtf16& text, char first, char last) {
    detail::TextBuilder builder;
    char* const out = builder.reserveAscii(text.length());
    // Unsigned: units before the first letter wrap to large numbers.
    const auto range = static_cast<unsigned char>(last - first);
    for (std::size_t i = 0; i < text.length(); ++i) {
        const char unit = text.ascii()[i];
        const bool isLetter = static_cast<unsigned char>(unit - first) <= range;
        out[i] = isLetter ? static_cast<char>(unit ^ 0x20) : unit;
    }
    builder.commitAscii(text.length());
    return builder.string();
}

} // namespace

bool NSString::isEqualToString(StringView other) const {
    if (!*this || !other) {
        return false;
    }
    const AsciiOrUtf16 left(view());
    const AsciiOrUtf16 right(other);
    return left.length() == right.length() && left.isAscii() == right.isAscii() &&
           sameUnits(left, 0, right, 0, left.length());
}

// A strict order for containers, unlike `compare`, for which different texts may be the same.
std::strong_ordering detail::orderOfUnits(const NSString& left, const NSString& right) noexcept {
    if (!left || !right) {
        return static_cast<bool>(left) <=> static_cast<bool>(right);
    }
    return compareUnits(AsciiOrUtf16(left), AsciiOrUtf16(right)) <=> 0;
}

NSComparisonResult NSString::compare(StringView other) const {
    if (!*this) {
        return NSOrderedSame;
    }
    const AsciiOrUtf16 left(view());
    const AsciiOrUtf16 right(other);
    // Between two ASCII texts there are no equivalents.
    return left.isAscii() && right.isAscii() ? compareUnits(left, right) : compareCanonically(left, right);
}

NSComparisonResult NSString::caseInsensitiveCompare(StringView other) const {
    if (!*this) {
        return NSOrderedSame;
    }
    const AsciiOrUtf16 left(view());
    const AsciiOrUtf16 right(other);
    FoldedText leftFolded(left);
    FoldedText rightFolded(right);
    for (;;) {
        char32_t leftPoint = 0;
        char32_t rightPoint = 0;
        const bool leftGoesOn = leftFolded.next(leftPoint);
        const bool rightGoesOn = rightFolded.next(rightPoint);
        // The shorter text comes first when one is the start of the other.
        if (!leftGoesOn || !rightGoesOn) {
            return ordered(leftGoesOn, rightGoesOn);
        }
        if (leftPoint != rightPoint) {
            return ordered(leftPoint, rightPoint);
        }
    }
}

bool NSString::hasPrefix(StringView prefix) const {
    const AsciiOrUtf16 text(view());
    const AsciiOrUtf16 start(prefix);
    // An empty prefix does not count, as on the platform.
    return start.length() != 0 && start.length() <= text.length() &&
           sameUnits(text, 0, start, 0, start.length());
}

bool NSString::hasSuffix(StringView suffix) const {
    const AsciiOrUtf16 text(view());
    const AsciiOrUtf16 end(suffix);
    return end.length() != 0 && end.length() <= text.length() &&
           sameUnits(text, text.length() - end.length(), end, 0, end.length());
}

NSString NSString::uppercaseString() const {
    if (!*this) {
        return {};
    }
    const AsciiOrUtf16 text(view());
    return text.isAscii() ? asciiMapped(text, 'a', 'z') : caseMapped(text, detail::upperCase);
}

NSString NSString::lowercaseString() const {
    if (!*this) {
        return {};
    }
    const AsciiOrUtf16 text(view());
    return text.isAscii() ? asciiMapped(text, 'A', 'Z') : caseMapped(text, detail::lowerCase);
}

} // namespace ZQFoundation
