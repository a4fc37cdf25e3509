// SPDX-License-Identifier: MIT
// Where sequences of a base character and its marks begin and end, and their decompositions.
#include "foundation/objects/ComposedSequences.h"

#include <gtest/gtest.h>

#include "foundation/text/CaseMapping.h"
#include "tests/kit/Texts.h"
#include "tests/models/Utf.h"

using namespace ZQFoundation;
using namespace ZQFoundation::detail;
using namespace std::string_literals;
using kit::shownUnits;
using kit::stringOf;
using models::appendUtf16;

namespace {

UnitView viewOf(const NSString& string) { return UnitView(*Access::string(string)); }

/// Where the sequences begin, by walking from the front.
std::vector<std::size_t> starts(const UnitView& text) {
    std::vector<std::size_t> found;
    for (std::size_t at = 0; at < text.length(); at = sequenceEnd(text, at)) {
        found.push_back(at);
    }
    return found;
}

TEST(ComposedSequences, joinMarksToTheirBase) {
    using Starts = std::vector<std::size_t>;
    const struct {
        const char* name;
        std::u16string text;
        Starts starts;
    } rows[] = {
        {"nothing", u"", {}},
        {"ASCII", u"abc", {0, 1, 2}},
        {"one mark", u"e\u0301x", {0, 2}},
        {"two marks", u"e\u0301\u0323x", {0, 3}},
        {"a mark in front", u"\u0301e", {0, 1}},
        {"marks alone", u"\u0301\u0301", {0}},
        {"composed", u"\u00e9x", {0, 1}},
        {"a pair", u"\U0001F600x", {0, 2}},
        {"a pair and a mark", u"\U0001F600\u0301x", {0, 3}},
        {"a mark of two units", u"x\U0001D165y", {0, 3}},
        {"syllable in letters", u"\u1100\u1161\u11A8\u1100", {0, 3}},
        {"unpaired halves", u"\xD83D\xD83D\xDE00\xDE00"s, {0, 1, 3}},
        {"CR LF", u"\r\n", {0, 1}},
    };
    for (const auto& row : rows) {
        const NSString string = stringOf(row.text);
        EXPECT_EQ(starts(viewOf(string)), row.starts) << row.name;
    }
}

TEST(ComposedSequences, beginWhereTheWalkFromTheFrontHasThem) {
    kit::Numbers numbers(5);
    for (int round = 0; round < 3000; ++round) {
        const std::u16string text =
            numbers.text(u"ab\u00e9\u0301\u0323\u1100\u1161\xD83D\xDE00\xD834\xDD65", numbers.below(30));
        const NSString string = stringOf(text);
        const UnitView view = viewOf(string);
        const std::vector<std::size_t> all = starts(view);
        for (std::size_t i = 0; i < all.size(); ++i) {
            const std::size_t end = i + 1 < all.size() ? all[i + 1] : text.size();
            for (std::size_t at = all[i]; at < end; ++at) {
                ASSERT_EQ(sequenceStart(view, at), all[i]) << shownUnits(text) << " at " << at;
            }
        }
    }
}

TEST(ComposedSequences, includeTheWholeDecompositionOfEveryCharacter) {
    for (char32_t codePoint = 0; codePoint < 0x110000; ++codePoint) {
        char32_t parts[4];
        const unsigned count = canonicalDecomposition(codePoint, parts);
        if (count == 0) {
            continue;
        }
        std::u16string composed;
        appendUtf16(composed, codePoint);
        std::u16string decomposed;
        for (unsigned i = 0; i < count; ++i) {
            appendUtf16(decomposed, parts[i]);
        }
        const NSString string = stringOf(decomposed);
        ASSERT_EQ(sequenceEnd(viewOf(string), 0), decomposed.size()) << std::hex << unsigned{codePoint};
        std::vector<ClassedCodePoint> left;
        std::vector<ClassedCodePoint> right;
        decompose(viewOf(stringOf(composed)), 0, composed.size(), left);
        decompose(viewOf(string), 0, decomposed.size(), right);
        ASSERT_EQ(left, right) << std::hex << unsigned{codePoint};
    }
}

TEST(ComposedSequences, bringMarksIntoOneOrder) {
    std::vector<ClassedCodePoint> sequence;
    const NSString string = stringOf(u"a\u0301\u0323\u0300x\u0301\u0323");
    decompose(viewOf(string), 0, string.length(), sequence);
    const std::vector<ClassedCodePoint> expected{{U'a', 0}, {0x323, 220}, {0x301, 230}, {0x300, 230},
                                                 {U'x', 0}, {0x323, 220}, {0x301, 230}};
    EXPECT_EQ(sequence, expected);
}

TEST(ComposedSequences, ofAMillionMarksTakeLinearTime) {
    const std::u16string text = u"a" + std::u16string(1000000, u'\u0301') + u"b";
    const NSString string = stringOf(text);
    const UnitView view = viewOf(string);
    EXPECT_EQ(sequenceEnd(view, 0), 1000001U);
    EXPECT_EQ(sequenceStart(view, 1000000), 0U);
    EXPECT_EQ(sequenceStart(view, 1000001), 1000001U);
    std::vector<ClassedCodePoint> sequence;
    decompose(view, 0, 1000001, sequence);
    EXPECT_EQ(sequence.size(), 1000001U);
}

} // namespace
