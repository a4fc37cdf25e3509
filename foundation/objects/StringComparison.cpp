// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstring>
#include <vector>

#include "foundation/objects/NSString.h"
#include "foundation/objects/NormalizedText.h"
#include "foundation/objects/TextBuilder.h"
#include "foundation/text/CaseMapping.h"

namespace ZQFoundation {

using detail::NormalizedText;

namespace {

NSComparisonResult ordered(std::size_t left, std::size_t right) noexcept {
    return left < right ? NSOrderedAscending : left > right ? NSOrderedDescending : NSOrderedSame;
}

bool sameUnits(const NormalizedText& left, std::size_t leftStart, const NormalizedText& right,
               std::size_t rightStart, std::size_t count) noexcept {
    if (left.isAscii() && right.isAscii()) {
        return std::memcmp(left.ascii() + leftStart, right.ascii() + rightStart, count) == 0;
    }
    if (!left.isAscii() && !right.isAscii()) {
        return std::memcmp(left.units() + leftStart, right.units() + rightStart, count * sizeof(char16_t)) ==
               0;
    }
    for (std::size_t i = 0; i < count; ++i) {
        if (left[leftStart + i] != right[rightStart + i]) {
            return false;
        }
    }
    return true;
}

std::size_t commonPrefix(const NormalizedText& left, std::size_t leftStart, const NormalizedText& right,
                         std::size_t rightStart) noexcept {
    std::size_t count = 0;
    while (leftStart + count < left.length() && rightStart + count < right.length() &&
           left[leftStart + count] == right[rightStart + count]) {
        ++count;
    }
    return count;
}

bool isHighSurrogate(char16_t unit) noexcept { return (unit & 0xFC00) == 0xD800; }
bool isLowSurrogate(char16_t unit) noexcept { return (unit & 0xFC00) == 0xDC00; }

/// The code point at `index`, an unpaired surrogate standing for itself; moves the index behind it.
char32_t nextCodePoint(const NormalizedText& text, std::size_t& index) noexcept {
    const char16_t unit = text[index++];
    if (isHighSurrogate(unit) && index < text.length() && isLowSurrogate(text[index])) {
        return 0x10000U + ((unit & 0x3FFU) << 10) + (text[index++] & 0x3FFU);
    }
    return unit;
}

/// Can follow a starter inside one composed sequence: combining marks and the later letters of Hangul
/// syllables.
bool extendsSequence(char32_t codePoint) noexcept {
    return detail::canonicalCombiningClass(codePoint) != 0 || (codePoint >= 0x1160 && codePoint <= 0x11FF) ||
           codePoint == 0x0F73 || codePoint == 0x0F75 || codePoint == 0x0F81 || codePoint == 0x0FB5 ||
           codePoint == 0x0FB7 || codePoint == 0x09BE || codePoint == 0x09D7 || codePoint == 0x0B3E ||
           codePoint == 0x0B56 || codePoint == 0x0B57 || codePoint == 0x0BBE || codePoint == 0x0BD7 ||
           codePoint == 0x0CC2 || codePoint == 0x0CD5 || codePoint == 0x0CD6 || codePoint == 0x0D3E ||
           codePoint == 0x0D57 || codePoint == 0x0DCF || codePoint == 0x0DDF || codePoint == 0x102E ||
           codePoint == 0x1B35 || codePoint == 0x11127 || codePoint == 0x1133E || codePoint == 0x11357 ||
           codePoint == 0x114B0 || codePoint == 0x114BA || codePoint == 0x114BD || codePoint == 0x115AF ||
           codePoint == 0x11930;
}

std::size_t sequenceStart(const NormalizedText& text, std::size_t index) noexcept {
    while (index > 0) {
        std::size_t probe = index;
        if (index < text.length() && isLowSurrogate(text[index]) && isHighSurrogate(text[index - 1])) {
            --index;
            continue;
        }
        if (probe >= text.length() || !extendsSequence(nextCodePoint(text, probe))) {
            break;
        }
        --index;
    }
    return index;
}

std::size_t sequenceEnd(const NormalizedText& text, std::size_t index) noexcept {
    if (index < text.length()) {
        nextCodePoint(text, index);
    }
    while (index < text.length()) {
        std::size_t next = index;
        if (!extendsSequence(nextCodePoint(text, next))) {
            break;
        }
        index = next;
    }
    return index;
}

struct ClassedCodePoint {
    char32_t codePoint;
    unsigned char combiningClass;

    friend bool operator==(const ClassedCodePoint&, const ClassedCodePoint&) = default;
};

/// Brings each run of marks into the canonical order: by class, those of one class as they stood.
void orderMarks(std::vector<ClassedCodePoint>& sequence) {
    const auto isStarter = [](const ClassedCodePoint& entry) {
        return entry.combiningClass == 0;
    };
    for (auto run = sequence.begin(); run != sequence.end();) {
        run = std::find_if_not(run, sequence.end(), isStarter);
        const auto runEnd = std::find_if(run, sequence.end(), isStarter);
        std::stable_sort(run, runEnd, [](const ClassedCodePoint& left, const ClassedCodePoint& right) {
            return left.combiningClass < right.combiningClass;
        });
        run = runEnd;
    }
}

std::vector<ClassedCodePoint> decomposed(const NormalizedText& text, std::size_t start, std::size_t end) {
    std::vector<ClassedCodePoint> sequence;
    while (start < end) {
        const char32_t codePoint = nextCodePoint(text, start);
        char32_t parts[4] = {codePoint};
        const unsigned count = std::max(detail::canonicalDecomposition(codePoint, parts), 1U);
        for (unsigned i = 0; i < count; ++i) {
            sequence.push_back({parts[i], detail::canonicalCombiningClass(parts[i])});
        }
    }
    orderMarks(sequence);
    return sequence;
}

NSComparisonResult compareUnits(const NormalizedText& left, const NormalizedText& right) noexcept {
    const std::size_t shorter = left.length() < right.length() ? left.length() : right.length();
    if (left.isAscii() && right.isAscii()) {
        const int order = std::memcmp(left.ascii(), right.ascii(), shorter);
        return order != 0 ? (order < 0 ? NSOrderedAscending : NSOrderedDescending)
                          : ordered(left.length(), right.length());
    }
    const std::size_t common = commonPrefix(left, 0, right, 0);
    return common < shorter ? ordered(left[common], right[common]) : ordered(left.length(), right.length());
}

NSComparisonResult compareCanonically(const NormalizedText& left, const NormalizedText& right) {
    std::size_t i = 0;
    std::size_t j = 0;
    for (;;) {
        const std::size_t common = commonPrefix(left, i, right, j);
        const std::size_t leftDifference = i + common;
        const std::size_t rightDifference = j + common;
        if (leftDifference == left.length() && rightDifference == right.length()) {
            return NSOrderedSame;
        }
        const std::size_t leftStart = std::max(i, sequenceStart(left, leftDifference));
        const std::size_t rightStart = std::max(j, sequenceStart(right, rightDifference));
        // Both sequences start where the texts still agree, at the earlier of the two starts.
        const std::size_t back = std::max(leftDifference - leftStart, rightDifference - rightStart);
        const std::size_t leftEnd = sequenceEnd(left, leftDifference - back);
        const std::size_t rightEnd = sequenceEnd(right, rightDifference - back);
        if (decomposed(left, leftDifference - back, leftEnd) !=
            decomposed(right, rightDifference - back, rightEnd)) {
            if (leftDifference == left.length() || rightDifference == right.length()) {
                return leftDifference == left.length() ? NSOrderedAscending : NSOrderedDescending;
            }
            return ordered(left[leftDifference], right[rightDifference]);
        }
        i = leftEnd;
        j = rightEnd;
    }
}

/// Walks a text as its folded code points.
class FoldedText {
public:
    explicit FoldedText(const NormalizedText& text) noexcept : text_(text) {}

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
    const NormalizedText& text_;
    std::size_t index_ = 0;
    char32_t folded_[3] = {};
    unsigned count_ = 0;
    unsigned position_ = 0;
};

using CaseMapper = unsigned (*)(char32_t, char32_t[3]) noexcept;

NSString caseMapped(const NormalizedText& text, CaseMapper mapper) {
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

NSString asciiMapped(const NormalizedText& text, char first, char last) {
    detail::TextBuilder builder;
    char* const out = builder.reserveAscii(text.length());
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
    const NormalizedText left(view());
    const NormalizedText right(other);
    return left.length() == right.length() && left.isAscii() == right.isAscii() &&
           sameUnits(left, 0, right, 0, left.length());
}

NSComparisonResult NSString::compare(StringView other) const {
    if (!*this) {
        return NSOrderedSame;
    }
    const NormalizedText left(view());
    const NormalizedText right(other);
    return left.isAscii() && right.isAscii() ? compareUnits(left, right) : compareCanonically(left, right);
}

NSComparisonResult NSString::caseInsensitiveCompare(StringView other) const {
    if (!*this) {
        return NSOrderedSame;
    }
    const NormalizedText left(view());
    const NormalizedText right(other);
    FoldedText leftFolded(left);
    FoldedText rightFolded(right);
    for (;;) {
        char32_t leftPoint = 0;
        char32_t rightPoint = 0;
        const bool leftGoesOn = leftFolded.next(leftPoint);
        const bool rightGoesOn = rightFolded.next(rightPoint);
        if (!leftGoesOn || !rightGoesOn) {
            return ordered(leftGoesOn, rightGoesOn);
        }
        if (leftPoint != rightPoint) {
            return ordered(leftPoint, rightPoint);
        }
    }
}

bool NSString::hasPrefix(StringView prefix) const {
    const NormalizedText text(view());
    const NormalizedText start(prefix);
    return start.length() != 0 && start.length() <= text.length() &&
           sameUnits(text, 0, start, 0, start.length());
}

bool NSString::hasSuffix(StringView suffix) const {
    const NormalizedText text(view());
    const NormalizedText end(suffix);
    return end.length() != 0 && end.length() <= text.length() &&
           sameUnits(text, text.length() - end.length(), end, 0, end.length());
}

NSString NSString::uppercaseString() const {
    if (!*this) {
        return {};
    }
    const NormalizedText text(view());
    return text.isAscii() ? asciiMapped(text, 'a', 'z') : caseMapped(text, detail::upperCase);
}

NSString NSString::lowercaseString() const {
    if (!*this) {
        return {};
    }
    const NormalizedText text(view());
    return text.isAscii() ? asciiMapped(text, 'A', 'Z') : caseMapped(text, detail::lowerCase);
}

} // namespace ZQFoundation
