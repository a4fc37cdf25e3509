// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSCharacterSet.h"
#include "foundation/objects/NSString.h"
#include "foundation/text/NSRange.h"
#include "tests/kit/Values.h"

using namespace ZQFoundation;
using namespace kit;
using namespace std::string_view_literals;

namespace {

constexpr NSRange nowhere{NSNotFound, 0};
constexpr unsigned noOptions = 0;
constexpr unsigned fold = NSCaseInsensitiveSearch;
constexpr unsigned literal = NSLiteralSearch;
constexpr unsigned backwards = NSBackwardsSearch;
constexpr unsigned anchored = NSAnchoredSearch;

NSString units(std::u16string_view text) {
    return NSString::stringWithCharacters_length(text.data(), text.size());
}

std::string shownRange(NSRange range) {
    return range.location == NSNotFound
               ? "nowhere, " + std::to_string(range.length)
               : std::to_string(range.location) + ", " + std::to_string(range.length);
}

struct Row {
    const char* name;
    NSString text;
    NSString needle;
    unsigned options;
    NSRange found;
};

void expectFound(const Row& row) {
    EXPECT_EQ(shownRange(row.text.rangeOfString_options(row.needle, row.options)), shownRange(row.found))
        << row.name;
    const NSRange whole = NSMakeRange(0, row.text.length());
    EXPECT_EQ(shownRange(row.text.rangeOfString_options_range(row.needle, row.options, whole)),
              shownRange(row.found))
        << row.name << ", in the whole";
    if (row.options == noOptions) {
        EXPECT_EQ(shownRange(row.text.rangeOfString(row.needle)), shownRange(row.found)) << row.name;
    }
}

TEST(StringRanges, ofPlainTexts) {
    const Row rows[] = {
        {"at the start", "hello", "he", noOptions, {0, 2}},
        {"in the middle", "hello", "ll", noOptions, {2, 2}},
        {"at the end", "hello", "lo", noOptions, {3, 2}},
        {"the whole", "hello", "hello", noOptions, {0, 5}},
        {"the first of two", "abcabc", "bc", noOptions, {1, 2}},
        {"absent", "hello", "x", noOptions, nowhere},
        {"longer", "hell", "hello", noOptions, nowhere},
        {"other case", "hello", "L", noOptions, nowhere},
        {"empty", "hello", "", noOptions, nowhere},
        {"empty in empty", "", "", noOptions, nowhere},
        {"nil", "hello", nullptr, noOptions, nowhere},
        {"in the empty string", "", "a", noOptions, nowhere},
        {"a false start", "aaab", "aab", noOptions, {1, 3}},
        {"U+0000", "a\0b\0"sv, "\0"sv, noOptions, {1, 1}},
        {"behind U+0000", "a\0b"sv, "b", noOptions, {2, 1}},
        {"Latin-1", "caf\u00e9", "\u00e9", noOptions, {3, 1}},
        {"behind wide units", "\u20ac\u20acx", "x", noOptions, {2, 1}},
        {"a wide text in an ASCII one", "abc", "\u20ac", noOptions, nowhere},
        {"behind a pair", "\U0001F600x", "x", noOptions, {2, 1}},
        {"a pair", "a\U0001F600x", "\U0001F600", noOptions, {1, 2}},
        {"the second unit of CR LF", "a\r\nb", "\n", noOptions, {2, 1}},
    };
    for (const Row& row : rows) {
        expectFound(row);
        expectFound({row.name, row.text, row.needle, literal, row.found});
    }
}

TEST(StringRanges, anEmptyTextIsNowhereWhateverTheOptions) {
    for (unsigned options = 0; options < 16; ++options) {
        for (const char* text : {"", "a", "\u00e9"}) {
            EXPECT_EQ(NSString(text).rangeOfString_options("", options), nowhere) << options;
            EXPECT_EQ(NSString(text).rangeOfString_options(nullptr, options), nowhere) << options;
            EXPECT_EQ(NSString(text).rangeOfString_options_range("", options, {0, 0}), nowhere) << options;
        }
        EXPECT_EQ(NSString("").rangeOfString_options("a", options), nowhere) << options;
    }
}

TEST(StringRanges, composedSequencesAreNotCutUnlessLiteral) {
    const Row rows[] = {
        {"a base", "e\u0301", "e", noOptions, nowhere},
        {"a base, literal", "e\u0301", "e", literal, {0, 1}},
        {"a mark", "e\u0301", "\u0301", noOptions, nowhere},
        {"a mark, literal", "e\u0301", "\u0301", literal, {1, 1}},
        {"up to a base", "xe\u0301y", "xe", noOptions, nowhere},
        {"up to a base, literal", "xe\u0301y", "xe", literal, {0, 2}},
        {"in front of it", "xe\u0301y", "x", noOptions, {0, 1}},
        {"behind it", "xe\u0301y", "y", noOptions, {3, 1}},
        {"with the whole sequence", "xe\u0301y", "xe\u0301", noOptions, {0, 3}},
        {"a later plain base", "e\u0301e", "e", noOptions, {2, 1}},
        {"an earlier plain base, backwards", "ee\u0301", "e", backwards, {0, 1}},
        {"an earlier plain base, backwards and literal", "ee\u0301", "e", backwards | literal, {1, 1}},
        {"two marks, one wanted", "e\u0323\u0301", "e\u0323", noOptions, nowhere},
        {"anchored before a mark", "e\u0301", "e", anchored, nowhere},
        {"anchored before a mark, literal", "e\u0301", "e", anchored | literal, {0, 1}},
        {"another case of the base", "E\u0301", "e", fold, nowhere},
        {"another case of the base, literal", "E\u0301", "e", fold | literal, {0, 1}},
    };
    for (const Row& row : rows) {
        expectFound(row);
    }
}

TEST(StringRanges, canonicalEquivalentsMatchUnlessLiteral) {
    const Row rows[] = {
        {"composed in decomposed", "xe\u0301y", "\u00e9", noOptions, {1, 2}},
        {"decomposed in composed", "x\u00e9y", "e\u0301", noOptions, {1, 1}},
        {"composed in decomposed, literal", "xe\u0301y", "\u00e9", literal, nowhere},
        {"decomposed in composed, literal", "x\u00e9y", "e\u0301", literal, nowhere},
        {"among other text", "caf\u00e9 noir", "fe\u0301 n", noOptions, {2, 4}},
        {"the other way", "cafe\u0301 noir", "f\u00e9 n", noOptions, {2, 5}},
        {"the order of marks", "e\u0301\u0323", "e\u0323\u0301", noOptions, {0, 3}},
        {"one sign for another", "\u212B", "\u00c5", noOptions, {0, 1}},
        {"one sign for two", "\u212B", "A\u030A", noOptions, {0, 1}},
        {"syllables", "\uAC00", "\u1100\u1161", noOptions, {0, 1}},
        {"syllables in parts", "\u1100\u1161", "\uAC00", noOptions, {0, 2}},
        {"the last one", "\u00e9e\u0301", "\u00e9", backwards, {1, 2}},
        {"the first one", "\u00e9e\u0301", "e\u0301", noOptions, {0, 1}},
        {"anchored", "e\u0301x", "\u00e9", anchored, {0, 2}},
        {"anchored at the end", "xe\u0301", "\u00e9", anchored | backwards, {1, 2}},
        {"no compatibility", "\uFB01", "fi", noOptions, nowhere},
        {"in another case", "xE\u0301y", "\u00e9", fold, {1, 2}},
        {"another case, the other way", "x\u00c9y", "e\u0301", fold, {1, 1}},
    };
    for (const Row& row : rows) {
        expectFound(row);
    }
}

TEST(StringRanges, ofTextsInAnotherCase) {
    const Row rows[] = {
        {"upper in lower", "hello", "ELL", fold, {1, 3}},
        {"lower in upper", "HELLO", "ell", fold, {1, 3}},
        {"the last", "aBAb", "ab", fold | backwards, {2, 2}},
        {"anchored", "Hello", "hE", fold | anchored, {0, 2}},
        {"not at the start", "xHello", "hE", fold | anchored, nowhere},
        {"literal too", "xABC", "bc", fold | literal, {2, 2}},
        {"longer than the match", "stra\u00dfe", "SS", fold, {4, 1}},
        {"longer than the match, among others", "stra\u00dfe", "RASSE", fold, {2, 4}},
        {"shorter than the match", "STRASSE", "\u00dfe", fold, {4, 3}},
        {"Kelvin", "1\u212A", "k", fold, {1, 1}},
        {"Greek", "\u0391\u03b2", "\u0392", fold, {1, 1}},
        {"two units", "x\U00010400", "\U00010428", fold, {1, 2}},
        {"dotless i", "\u0131", "I", fold, nowhere},
        {"signs between the cases", "[", "{", fold, nowhere},
        {"absent", "hello", "X", fold, nowhere},
        {"without the option", "hello", "ELL", noOptions, nowhere},
    };
    for (const Row& row : rows) {
        expectFound(row);
    }
}

TEST(StringRanges, literalSearchComparesUnits) {
    const NSString text = "a\U0001F600b";
    EXPECT_EQ(text.rangeOfString_options(units(u"\xD83D"), literal), (NSRange{1, 1}));
    EXPECT_EQ(text.rangeOfString_options(units(u"\xDE00"), literal), (NSRange{2, 1}));
    EXPECT_EQ(text.rangeOfString_options(units(u"\xDE00"
                                               u"b"),
                                         literal),
              (NSRange{2, 2}));
    EXPECT_EQ(units(u"\xDE00\xD83D").rangeOfString_options("\U0001F600", literal), nowhere);
}

TEST(StringRanges, aRangeBoundsTheSearch) {
    const NSString text = "abcabcabc";
    const struct {
        const char* needle;
        unsigned options;
        NSRange range;
        NSRange found;
    } rows[] = {
        {"abc", noOptions, {1, 8}, {3, 3}},
        {"abc", noOptions, {3, 3}, {3, 3}},
        {"abc", noOptions, {1, 4}, nowhere},
        {"abc", backwards, {0, 8}, {3, 3}},
        {"abc", backwards, {0, 9}, {6, 3}},
        {"abc", anchored, {3, 6}, {3, 3}},
        {"abc", anchored, {2, 7}, nowhere},
        {"abc", anchored | backwards, {0, 6}, {3, 3}},
        {"abc", anchored | backwards, {0, 5}, nowhere},
        {"ABC", fold, {1, 8}, {3, 3}},
        {"ABC", fold | literal | backwards, {0, 8}, {3, 3}},
        {"a", noOptions, {9, 0}, nowhere},
        {"a", noOptions, {0, 0}, nowhere},
        {"c", noOptions, {8, 1}, {8, 1}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(shownRange(text.rangeOfString_options_range(row.needle, row.options, row.range)),
                  shownRange(row.found))
            << row.needle << " by " << row.options << " in " << shownRange(row.range);
    }
}

TEST(StringRanges, aRangeBeyondTheEndRaises) {
    const NSString text = "abc";
    const NSRange ranges[] = {{0, 4},
                              {3, 1},
                              {4, 0},
                              {NSNotFound, 0},
                              {1, SIZE_MAX},
                              {SIZE_MAX, 1},
                              {SIZE_MAX, 2},
                              {2, SIZE_MAX - 1},
                              {SIZE_MAX / 2, SIZE_MAX / 2 + 4}};
    const NSCharacterSet set = NSCharacterSet::characterSetWithCharactersInString("b");
    for (const NSRange& range : ranges) {
        EXPECT_EQ(raised([&] { text.rangeOfString_options_range("b", noOptions, range); }),
                  "NSRangeException")
            << shownRange(range);
        EXPECT_EQ(raised([&] { text.rangeOfCharacterFromSet_options_range(set, noOptions, range); }),
                  "NSRangeException")
            << shownRange(range);
    }
    EXPECT_EQ(raised([&] { text.rangeOfString_options_range("b", noOptions, {3, 0}); }), "nothing");
    EXPECT_EQ(raised([&] { text.rangeOfCharacterFromSet_options_range(set, noOptions, {3, 0}); }), "nothing");
}

TEST(StringRanges, ofANilStringAreEmpty) {
    const NSString none;
    const NSCharacterSet set = NSCharacterSet::whitespaceCharacterSet();
    EXPECT_EQ(none.rangeOfString("a").length, 0U);
    EXPECT_EQ(none.rangeOfString_options("a", backwards).length, 0U);
    EXPECT_EQ(none.rangeOfString_options_range("a", noOptions, {5, 7}).length, 0U);
    EXPECT_EQ(none.rangeOfCharacterFromSet(set).length, 0U);
    EXPECT_EQ(none.rangeOfCharacterFromSet_options(set, backwards).length, 0U);
    EXPECT_EQ(none.rangeOfCharacterFromSet_options_range(set, noOptions, {5, 7}).length, 0U);
    EXPECT_EQ(none.componentsSeparatedByString(",").count(), 0U);
    EXPECT_FALSE(none.stringByTrimmingCharactersInSet(set));
}

TEST(StringRanges, inLongTexts) {
    const NSString text = units(std::u16string(1000000, u'a') + u"b" + std::u16string(1000000, u'a'));
    EXPECT_EQ(text.rangeOfString("b"), (NSRange{1000000, 1}));
    EXPECT_EQ(text.rangeOfString("ab"), (NSRange{999999, 2}));
    EXPECT_EQ(text.rangeOfString_options("ba", backwards), (NSRange{1000000, 2}));
    EXPECT_EQ(text.rangeOfString("c"), nowhere);
    EXPECT_EQ(text.rangeOfString_options("AB", fold), (NSRange{999999, 2}));
    const NSString wide = units(std::u16string(1000000, u'\u00e9') + u"e\u0301x");
    EXPECT_EQ(wide.rangeOfString("e\u0301x"), (NSRange{1000000, 3}));
    EXPECT_EQ(wide.rangeOfString_options("e", literal), (NSRange{1000000, 1}));
}

// MARK: Members of a set

TEST(StringRanges, ofMembersOfASet) {
    const NSCharacterSet digits = NSCharacterSet::decimalDigitCharacterSet();
    const struct {
        const char* name;
        NSString text;
        NSRange first;
        NSRange last;
    } rows[] = {
        {"one", "ab7cd", {2, 1}, {2, 1}},
        {"two", "1ab2", {0, 1}, {3, 1}},
        {"none", "abc", nowhere, nowhere},
        {"empty", "", nowhere, nowhere},
        {"a run is not one", "a123b", {1, 1}, {3, 1}},
        {"wide", "\u20ac\u0663\u20ac", {1, 1}, {1, 1}},
        {"two units are no member", "\U0001D7CE", nowhere, nowhere},
        {"behind U+0000",
         "\0"
         "7"sv,
         {1, 1},
         {1, 1}},
        {"with a mark behind", "1\u0301", {0, 1}, {0, 1}},
    };
    for (const auto& row : rows) {
        const NSRange whole = NSMakeRange(0, row.text.length());
        EXPECT_EQ(shownRange(row.text.rangeOfCharacterFromSet(digits)), shownRange(row.first)) << row.name;
        EXPECT_EQ(shownRange(row.text.rangeOfCharacterFromSet_options(digits, noOptions)),
                  shownRange(row.first))
            << row.name;
        EXPECT_EQ(shownRange(row.text.rangeOfCharacterFromSet_options(digits, backwards)),
                  shownRange(row.last))
            << row.name;
        EXPECT_EQ(shownRange(row.text.rangeOfCharacterFromSet_options_range(digits, noOptions, whole)),
                  shownRange(row.first))
            << row.name;
    }
    const NSString text = "1a2b3";
    EXPECT_EQ(text.rangeOfCharacterFromSet_options_range(digits, noOptions, {1, 4}), (NSRange{2, 1}));
    EXPECT_EQ(text.rangeOfCharacterFromSet_options_range(digits, backwards, {0, 4}), (NSRange{2, 1}));
    EXPECT_EQ(text.rangeOfCharacterFromSet_options_range(digits, noOptions, {1, 1}), nowhere);
    EXPECT_EQ(text.rangeOfCharacterFromSet_options_range(digits, noOptions, {5, 0}), nowhere);
    EXPECT_EQ(text.rangeOfCharacterFromSet(NSCharacterSet::emptyCharacterSet()), nowhere);
}

// MARK: What builds on them

TEST(StringRanges, theSeparatorsOfTextsKeepEmptyPieces) {
    const struct {
        NSString text;
        NSString separator;
        std::vector<std::string> expected;
    } rows[] = {
        {"a,b", ",", {"a", "b"}},
        {"a,,b", ",", {"a", "", "b"}},
        {",a,", ",", {"", "a", ""}},
        {"", ",", {""}},
        {"abc", ",", {"abc"}},
        {",", ",", {"", ""}},
        {"aXXb", "XX", {"a", "b"}},
        {"aXXXb", "XX", {"a", "Xb"}},
        {"\u20ac,\U0001F600", ",", {"\u20ac", "\U0001F600"}},
    };
    for (const auto& row : rows) {
        std::vector<std::string> found;
        for (const NSObject& piece : row.text.componentsSeparatedByString(row.separator)) {
            found.push_back(NSString(piece).utf8());
        }
        EXPECT_EQ(found, row.expected) << row.text.utf8();
    }
}

// MARK: Against a slow model

std::vector<std::string> allTexts(std::string_view alphabet, std::size_t longest) {
    std::vector<std::string> texts{""};
    std::size_t first = 0;
    for (std::size_t length = 1; length <= longest; ++length) {
        const std::size_t last = texts.size();
        for (std::size_t i = first; i < last; ++i) {
            for (const char character : alphabet) {
                texts.push_back(texts[i] + character);
            }
        }
        first = last;
    }
    return texts;
}

NSRange modelFound(const std::string& text, const std::string& needle, unsigned options, NSRange range) {
    NSRange found = nowhere;
    for (std::size_t at = range.location; at + needle.size() <= range.location + range.length; ++at) {
        const bool isAtAnchor = (options & backwards) != 0
                                    ? at + needle.size() == range.location + range.length
                                    : at == range.location;
        const bool mayStand = (options & anchored) == 0 || isAtAnchor;
        if (!needle.empty() && mayStand && text.compare(at, needle.size(), needle) == 0) {
            found = {at, needle.size()};
            if ((options & backwards) == 0) {
                break;
            }
        }
    }
    return found;
}

TEST(StringRanges, ofAllShortTextsFollowASlowSearch) {
    const std::vector<std::string> needles = allTexts("ab", 3);
    for (const std::string& text : allTexts("ab", 6)) {
        const NSString string(text);
        // The same text in wide units: a search in a part of it must find the same.
        const NSString wide = string.stringByAppendingString("\u20ac");
        for (const std::string& needle : needles) {
            for (unsigned options = 0; options < 16; options += 2) {
                for (std::size_t start = 0; start <= text.size(); ++start) {
                    for (std::size_t length = 0; start + length <= text.size(); ++length) {
                        const NSRange range{start, length};
                        const std::string expected = shownRange(modelFound(text, needle, options, range));
                        ASSERT_EQ(shownRange(string.rangeOfString_options_range(needle, options, range)),
                                  expected)
                            << text << " " << needle << " " << options << " " << shownRange(range);
                        ASSERT_EQ(shownRange(wide.rangeOfString_options_range(needle, options, range)),
                                  expected)
                            << text << " " << needle << " " << options << " " << shownRange(range);
                    }
                }
            }
        }
    }
}

} // namespace
