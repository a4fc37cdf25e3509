// SPDX-License-Identifier: MIT
// Finds where a base character and its marks begin and end.
// The rules are those of canonical equivalence; no language is considered.
#include "foundation/objects/ComposedSequences.h"

#include <algorithm>

#include "foundation/text/CaseMapping.h"

namespace ZQFoundation::detail {

namespace {

/// Whether the code point can follow a starter inside one composed sequence: combining marks and the later
/// letters of Hangul syllables.
/// Some of them have combining class 0 and still compose with the starter before them; those are listed.
/// They are fixed in the standard, which never changes the composition of assigned characters.
bool extendsSequence(char32_t codePoint) noexcept {
    return canonicalCombiningClass(codePoint) != 0 || (codePoint >= 0x1160 && codePoint <= 0x11FF) ||
           codePoint == 0x0F73 || codePoint == 0x0F75 || codePoint == 0x0F81 || codePoint == 0x0FB5 ||
           codePoint == 0x0FB7 || codePoint == 0x09BE || codePoint == 0x09D7 || codePoint == 0x0B3E ||
           codePoint == 0x0B56 || codePoint == 0x0B57 || codePoint == 0x0BBE || codePoint == 0x0BD7 ||
           codePoint == 0x0CC2 || codePoint == 0x0CD5 || codePoint == 0x0CD6 || codePoint == 0x0D3E ||
           codePoint == 0x0D57 || codePoint == 0x0DCF || codePoint == 0x0DDF || codePoint == 0x102E ||
           codePoint == 0x1B35 || codePoint == 0x11127 || codePoint == 0x1133E || codePoint == 0x11357 ||
           codePoint == 0x114B0 || codePoint == 0x114BA || codePoint == 0x114BD || codePoint == 0x115AF ||
           codePoint == 0x11930;
}

/// Sorts each run of marks into canonical order: stably, by class.
/// Marks of different classes do not interact, so their order makes no difference; marks of one class do, and
/// theirs is kept.
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

} // namespace

std::size_t sequenceStart(const UnitView& text, std::size_t index) noexcept {
    while (index > 0) {
        std::size_t probe = index;
        if (index < text.length() && isLowSurrogate(text[index]) && isHighSurrogate(text[index - 1])) {
            --index;
            continue;
        }
        if (probe >= text.length() || !extendsSequence(nextCodePoint(text, probe))) {
            break;
        }
        // Continues with the code point before it, which may be a mark, too.
        --index;
    }
    return index;
}

std::size_t sequenceEnd(const UnitView& text, std::size_t index) noexcept {
    if (index < text.length()) {
        // The first code point belongs to the sequence, whatever it is.
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

void decompose(const UnitView& text, std::size_t start, std::size_t end,
               std::vector<ClassedCodePoint>& sequence) {
    sequence.clear();
    while (start < end) {
        const char32_t codePoint = nextCodePoint(text, start);
        char32_t parts[4] = {codePoint};
        // 0 means that the code point is its own decomposition.
        const unsigned count = std::max(canonicalDecomposition(codePoint, parts), 1U);
        for (unsigned i = 0; i < count; ++i) {
            sequence.push_back({parts[i], canonicalCombiningClass(parts[i])});
        }
    }
    orderMarks(sequence);
}

} // namespace ZQFoundation::detail
