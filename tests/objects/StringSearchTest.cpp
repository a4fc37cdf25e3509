// SPDX-License-Identifier: MIT
// Where texts are found: rows, a slow model, and linear time.
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/objects/NSCharacterSet.h"
#include "foundation/objects/NSString.h"
#include "foundation/text/CaseMapping.h"
#include "tests/kit/Sanitizers.h"
#include "tests/kit/Texts.h"
#include "tests/kit/Values.h"
#include "tests/models/StringSearch.h"

using namespace ZQFoundation;
using kit::nowhere;
using kit::raised;
using kit::shownUnits;
using kit::stringOf;
using kit::textsOf;
using namespace std::string_view_literals;

namespace {

constexpr std::size_t million = 1000000;
constexpr unsigned noOptions = 0;
constexpr unsigned fold = NSCaseInsensitiveSearch;
constexpr unsigned literal = NSLiteralSearch;
constexpr unsigned backwards = NSBackwardsSearch;
constexpr unsigned anchored = NSAnchoredSearch;

// MARK: Rows

std::string shownRange(NSRange range) {
    return range.location == NSNotFound
               ? "nowhere, " + std::to_string(range.length)
               : std::to_string(range.location) + ", " + std::to_string(range.length);
}

struct SearchRow {
    const char* name;
    NSString text;
    NSString needle;
    unsigned options;
    NSRange found;
};

void expectFound(const SearchRow& row) {
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

TEST(StringSearch, findsPlainTexts) {
    const SearchRow rows[] = {
        {"at the start", "hello", "he", noOptions, {0, 2}},
        {"at the end", "hello", "lo", noOptions, {3, 2}},
        {"the whole", "hello", "hello", noOptions, {0, 5}},
        {"the first of two", "abcabc", "bc", noOptions, {1, 2}},
        {"longer", "hell", "hello", noOptions, nowhere},
        {"other case", "hello", "L", noOptions, nowhere},
        {"a false start", "aaab", "aab", noOptions, {1, 3}},
        {"U+0000", "a\0b\0"sv, "\0"sv, noOptions, {1, 1}},
        {"after wide units", "\u20ac\u20acx", "x", noOptions, {2, 1}},
        {"a wide text in an ASCII one", "abc", "\u20ac", noOptions, nowhere},
        {"a pair", "a\U0001F600x", "\U0001F600", noOptions, {1, 2}},
        {"the second unit of CR LF", "a\r\nb", "\n", noOptions, {2, 1}},
    };
    for (const SearchRow& row : rows) {
        expectFound(row);
        expectFound({row.name, row.text, row.needle, literal, row.found});
    }
}

TEST(StringSearch, findsTheEmptyTextNowhere) {
    for (unsigned options = 0; options < 16; ++options) {
        for (const char* text : {"", "a", "\u00e9"}) {
            EXPECT_EQ(NSString(text).rangeOfString_options("", options), nowhere) << options;
            EXPECT_EQ(NSString(text).rangeOfString_options(nullptr, options), nowhere) << options;
            EXPECT_EQ(NSString(text).rangeOfString_options_range("", options, {0, 0}), nowhere) << options;
        }
        EXPECT_EQ(NSString("").rangeOfString_options("a", options), nowhere) << options;
    }
}

TEST(StringSearch, cutsNoComposedSequenceUnlessLiteral) {
    const SearchRow rows[] = {
        {"a mark", "e\u0301", "\u0301", noOptions, nowhere},
        {"a mark, literal", "e\u0301", "\u0301", literal, {1, 1}},
        {"up to a base", "xe\u0301y", "xe", noOptions, nowhere},
        {"up to a base, literal", "xe\u0301y", "xe", literal, {0, 2}},
        {"in front of it", "xe\u0301y", "x", noOptions, {0, 1}},
        {"with the whole sequence", "xe\u0301y", "xe\u0301", noOptions, {0, 3}},
        {"a later plain base", "e\u0301e", "e", noOptions, {2, 1}},
        {"an earlier plain base, backwards", "ee\u0301", "e", backwards, {0, 1}},
        {"an earlier plain base, backwards and literal", "ee\u0301", "e", backwards | literal, {1, 1}},
        {"two marks, one wanted", "e\u0323\u0301", "e\u0323", noOptions, nowhere},
        {"anchored before a mark", "e\u0301", "e", anchored, nowhere},
        {"anchored before a mark, literal", "e\u0301", "e", anchored | literal, {0, 1}},
        {"another case of the base, literal", "E\u0301", "e", fold | literal, {0, 1}},
    };
    for (const SearchRow& row : rows) {
        expectFound(row);
    }
}

TEST(StringSearch, findsCanonicalEquivalentsUnlessLiteral) {
    const SearchRow rows[] = {
        {"composed in decomposed", "xe\u0301y", "\u00e9", noOptions, {1, 2}},
        {"decomposed in composed", "x\u00e9y", "e\u0301", noOptions, {1, 1}},
        {"composed in decomposed, literal", "xe\u0301y", "\u00e9", literal, nowhere},
        {"decomposed in composed, literal", "x\u00e9y", "e\u0301", literal, nowhere},
        {"the other way", "cafe\u0301 noir", "f\u00e9 n", noOptions, {2, 5}},
        {"the order of marks", "e\u0301\u0323", "e\u0323\u0301", noOptions, {0, 3}},
        {"one sign for two", "\u212B", "A\u030A", noOptions, {0, 1}},
        {"syllables in parts", "\u1100\u1161", "\uAC00", noOptions, {0, 2}},
        {"the last one", "\u00e9e\u0301", "\u00e9", backwards, {1, 2}},
        {"anchored", "e\u0301x", "\u00e9", anchored, {0, 2}},
        {"anchored at the end", "xe\u0301", "\u00e9", anchored | backwards, {1, 2}},
        {"no compatibility", "\uFB01", "fi", noOptions, nowhere},
        {"in another case", "xE\u0301y", "\u00e9", fold, {1, 2}},
        {"another case, the other way", "x\u00c9y", "e\u0301", fold, {1, 1}},
    };
    for (const SearchRow& row : rows) {
        expectFound(row);
    }
}

TEST(StringSearch, findsTextsInAnotherCase) {
    const SearchRow rows[] = {
        {"upper in lower", "hello", "ELL", fold, {1, 3}},
        {"the last", "aBAb", "ab", fold | backwards, {2, 2}},
        {"anchored", "Hello", "hE", fold | anchored, {0, 2}},
        {"not at the start", "xHello", "hE", fold | anchored, nowhere},
        {"literal too", "xABC", "bc", fold | literal, {2, 2}},
        {"longer than the match, among others", "stra\u00dfe", "RASSE", fold, {2, 4}},
        {"shorter than the match", "STRASSE", "\u00dfe", fold, {4, 3}},
        {"Kelvin", "1\u212A", "k", fold, {1, 1}},
        {"two units", "x\U00010400", "\U00010428", fold, {1, 2}},
        {"dotless i", "\u0131", "I", fold, nowhere},
        {"signs between the cases", "[", "{", fold, nowhere},
        {"without the option", "hello", "ELL", noOptions, nowhere},
    };
    for (const SearchRow& row : rows) {
        expectFound(row);
    }
}

TEST(StringSearch, comparesUnitsWhenLiteral) {
    const NSString text = "a\U0001F600b";
    EXPECT_EQ(text.rangeOfString_options(stringOf(u"\xD83D"), literal), (NSRange{1, 1}));
    EXPECT_EQ(text.rangeOfString_options(stringOf(u"\xDE00"), literal), (NSRange{2, 1}));
    EXPECT_EQ(text.rangeOfString_options(stringOf(u"\xDE00"
                                                  u"b"),
                                         literal),
              (NSRange{2, 2}));
    EXPECT_EQ(stringOf(u"\xDE00\xD83D").rangeOfString_options("\U0001F600", literal), nowhere);
}

TEST(StringSearch, staysInItsRange) {
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
    // What is outside the range is not seen: "e" and its accent on either side of its end.
    const NSString composed = stringOf(u"ae\x301z");
    EXPECT_EQ(composed.rangeOfString_options_range("e", noOptions, {0, 4}), nowhere);
    EXPECT_EQ(composed.rangeOfString_options_range("e", noOptions, {0, 2}), (NSRange{1, 1}));
    EXPECT_EQ(composed.rangeOfString_options_range(stringOf(u"\x301"), noOptions, {0, 4}), nowhere);
    EXPECT_EQ(composed.rangeOfString_options_range(stringOf(u"\x301"), noOptions, {2, 2}), (NSRange{2, 1}));
}

TEST(StringSearch, refusesARangeBeyondTheEnd) {
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

TEST(StringSearch, findsNothingInANilString) {
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

// MARK: Against a slow model

void expectAsModel(const std::u16string& text, const std::u16string& wanted) {
    const NSString string = stringOf(text);
    for (unsigned options = 0; options < 16; ++options) {
        ASSERT_EQ(string.rangeOfString_options(stringOf(wanted), options),
                  models::placeOf(text, 0, wanted, options))
            << shownUnits(wanted) << " in " << shownUnits(text) << " by " << options;
    }
}

TEST(StringSearch, findsWhatASlowSearchFinds) {
    const std::u16string_view alphabets[] = {
        u"abAB",
        u"a;K`\u037E\u212A\u1FEFk",
        u"eE\u0301\u0323\u00e9\u00c9",
        u"s\u00dfS\u017Ff\uFB01i",
        u"a\xD83D\xDE00\xD801\xDC00\xDC28",
        u"\u1100\u1161\u11A8\uAC00\uAC01a",
        u"\u03B1\u0345\u03B9\u1FB3\u0391\u0301",
    };
    kit::Numbers numbers(29);
    for (const std::u16string_view alphabet : alphabets) {
        for (int round = 0; round < 250; ++round) {
            const std::u16string text = numbers.text(alphabet, numbers.below(10));
            expectAsModel(text, numbers.text(alphabet, numbers.below(4)));
            if (text.size() > 2) {
                const std::size_t start = numbers.below(text.size() - 1);
                expectAsModel(text, text.substr(start, 1 + numbers.below(text.size() - start)));
            }
        }
    }
}

TEST(StringSearch, findsAsciiInWideTextsUnlessAMarkFollows) {
    const std::u16string mark = u"\u0301";
    for (std::size_t length = 0; length < 40; ++length) {
        const std::u16string front(length, u'\u20ac');
        expectAsModel(front + u"ab" + mark + u"ab" + mark + u"c", u"ab");
        expectAsModel(front + u"ab" + mark + u"abab" + mark, u"ab");
    }
}

TEST(StringSearch, knowsEverySignThatStandsForAsciiOfItsOwn) {
    for (char32_t codePoint = 0x80; codePoint < 0x110000; ++codePoint) {
        char32_t parts[4];
        if (detail::canonicalDecomposition(codePoint, parts) == 1 && parts[0] < 0x80) {
            const std::u16string sign(1, static_cast<char16_t>(codePoint));
            const std::u16string ascii(1, static_cast<char16_t>(parts[0]));
            EXPECT_EQ(stringOf(u"a" + sign).rangeOfString(stringOf(ascii)), (NSRange{1, 1}))
                << shownUnits(sign);
        }
    }
}

// MARK: Linear time

TEST(StringSearch, takesLinearTimeForTextsThatNearlyMatch) {
    const std::u16string wanted = std::u16string(million / 2, u'a') + u"b";
    for (const char16_t filling : {u'a', u'\u00e9'}) {
        std::u16string sought = wanted;
        sought.front() = filling;
        const NSString text = stringOf(std::u16string(million, filling));
        for (unsigned options = 0; options < 16; options += kit::isSanitized ? 5 : 1) {
            EXPECT_EQ(text.rangeOfString_options(stringOf(sought), options), nowhere);
        }
    }
}

TEST(StringSearch, takesLinearTimeForAMillionMarks) {
    const std::u16string text = u"xe" + std::u16string(million, u'\u0301') + u"y";
    const NSString string = stringOf(text);
    EXPECT_EQ(string.rangeOfString("e"), nowhere);
    EXPECT_EQ(string.rangeOfString("y"), (NSRange{million + 2, 1}));
    EXPECT_EQ(string.rangeOfString(u"\u00e9"), nowhere);
    EXPECT_EQ(string.rangeOfString_options("E", NSCaseInsensitiveSearch), nowhere);
    EXPECT_EQ(string.rangeOfString(stringOf(text.substr(1))), (NSRange{1, million + 2}));
    EXPECT_EQ(string.rangeOfString_options("e", NSBackwardsSearch), nowhere);
}

TEST(StringSearch, stepsThroughALongTextInLinearTime) {
    std::u16string text;
    std::u16string marked;
    for (int i = 0; i < 100000; ++i) {
        text += u"\u20acab,";
        marked += u"a\u0301a";
    }
    const NSString string = stringOf(text);
    EXPECT_EQ(string.componentsSeparatedByString(",").count(), 100001U);
    EXPECT_EQ(string.componentsSeparatedByString(u"\u20ac").count(), 100001U);
    EXPECT_EQ(stringOf(marked).componentsSeparatedByString("a").count(), 100001U);
    std::size_t count = 0;
    for (std::size_t at = 0; at < text.size(); ++count) {
        const NSRange found = string.rangeOfString_options_range("AB,", NSCaseInsensitiveSearch,
                                                                 NSMakeRange(at, text.size() - at));
        ASSERT_GT(found.location + found.length, at);
        at = found.location + found.length;
    }
    EXPECT_EQ(count, 100000U);
}

TEST(StringSearch, stepsBackThroughALongTextInLinearTime) {
    std::u16string text;
    for (int i = 0; i < 100000; ++i) {
        text += u"\u20acab,";
    }
    const NSString string = stringOf(text);
    for (const unsigned options : {0U, unsigned{NSCaseInsensitiveSearch}}) {
        for (const NSString& wanted : {NSString(u"\u20ac"), NSString("ab")}) {
            std::size_t count = 0;
            std::size_t end = text.size();
            while (end > 1) {
                end = string.rangeOfString_options_range(wanted, options | NSBackwardsSearch, {0, end})
                          .location;
                ASSERT_NE(end, std::size_t{NSNotFound});
                ++count;
            }
            EXPECT_EQ(count, 100000U);
        }
    }
}

// MARK: Separators

TEST(StringSearch, keepsEmptyPiecesBetweenSeparators) {
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
        {"a,\u0301b,c", ",", {"a,\u0301b", "c"}},
        {"a,a,\u0301", ",a", {"a", ",\u0301"}},
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

TEST(StringSearch, splitsAtSignsThatStandForAscii) {
    const NSString text = u"a\u212Ab\u037Ec\u1FEFd\u20ac";
    using Texts = std::vector<std::u16string>;
    EXPECT_EQ(textsOf(text.componentsSeparatedByString("K")), (Texts{u"a", u"b\u037Ec\u1FEFd\u20ac"}));
    EXPECT_EQ(textsOf(text.componentsSeparatedByString(";")), (Texts{u"a\u212Ab", u"c\u1FEFd\u20ac"}));
    EXPECT_EQ(textsOf(text.componentsSeparatedByString("`")), (Texts{u"a\u212Ab\u037Ec", u"d\u20ac"}));
}

} // namespace
