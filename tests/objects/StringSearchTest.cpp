// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "foundation/objects/ComposedSequences.h"
#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSString.h"
#include "foundation/text/CaseMapping.h"
#include "tests/kit/Texts.h"

using namespace ZQFoundation;
using kit::shownUnits;
using kit::stringOf;
using kit::textsOf;

namespace {

constexpr NSRange nowhere{NSNotFound, 0};
constexpr std::size_t million = 1000000;

// MARK: A slow model: every stretch between two boundaries is compared with what is wanted

std::u32string folded(const std::u16string& text, unsigned options) {
    const NSString string = stringOf(text);
    const detail::UnitView view(*detail::Access::string(string));
    std::vector<detail::ClassedCodePoint> points;
    for (std::size_t at = 0; at < text.size();) {
        std::vector<detail::ClassedCodePoint> sequence;
        const std::size_t start = at;
        if ((options & NSLiteralSearch) != 0) {
            sequence.push_back({detail::nextCodePoint(view, at), 0});
        } else {
            at = detail::sequenceEnd(view, at);
            detail::decompose(view, start, at, sequence);
        }
        points.insert(points.end(), sequence.begin(), sequence.end());
    }
    std::u32string result;
    for (const detail::ClassedCodePoint& point : points) {
        char32_t forms[3] = {point.codePoint};
        const bool folds = (options & NSCaseInsensitiveSearch) != 0;
        result.append(forms, folds ? detail::foldCase(point.codePoint, forms) : 1);
    }
    return result;
}

std::vector<std::size_t> boundaries(const std::u16string& text, unsigned options) {
    const NSString string = stringOf(text);
    const detail::UnitView view(*detail::Access::string(string));
    std::vector<std::size_t> found;
    for (std::size_t at = 0; at < text.size();) {
        found.push_back(at);
        if ((options & NSLiteralSearch) == 0) {
            at = detail::sequenceEnd(view, at);
        } else if ((options & NSCaseInsensitiveSearch) != 0) {
            detail::nextCodePoint(view, at);
        } else {
            ++at;
        }
    }
    found.push_back(text.size());
    return found;
}

bool isSame(const std::u16string& text, const std::u16string& wanted, unsigned options) {
    const bool byUnits = (options & (NSLiteralSearch | NSCaseInsensitiveSearch)) == NSLiteralSearch;
    return byUnits ? text == wanted : folded(text, options) == folded(wanted, options);
}

NSRange modelFound(const std::u16string& text, const std::u16string& wanted, unsigned options) {
    const std::vector<std::size_t> places = boundaries(text, options);
    NSRange found = nowhere;
    for (std::size_t i = 0; i + 1 < places.size(); ++i) {
        for (std::size_t j = i + 1; j < places.size() && !wanted.empty(); ++j) {
            const bool isBackwards = (options & NSBackwardsSearch) != 0;
            const bool isAtAnchor = isBackwards ? j + 1 == places.size() : i == 0;
            const bool mayStand = isAtAnchor || (options & NSAnchoredSearch) == 0;
            const NSRange range{places[i], places[j] - places[i]};
            if (mayStand && isSame(text.substr(range.location, range.length), wanted, options)) {
                found = range;
                if (!isBackwards) {
                    return found;
                }
            }
        }
    }
    return found;
}

void expectAsModel(const std::u16string& text, const std::u16string& wanted) {
    const NSString string = stringOf(text);
    for (unsigned options = 0; options < 16; ++options) {
        ASSERT_EQ(string.rangeOfString_options(stringOf(wanted), options), modelFound(text, wanted, options))
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

TEST(StringSearch, takesARangeForAWholeText) {
    kit::Numbers numbers(31);
    for (int round = 0; round < 1500; ++round) {
        const std::u16string text = numbers.text(u"aeE\u0301\u0323\u00e9\xD83D\xDE00", 1 + numbers.below(40));
        const NSString string = stringOf(text);
        const std::size_t start = numbers.below(text.size());
        const NSRange range{start, numbers.below(text.size() - start + 1)};
        const std::u16string part = text.substr(range.location, range.length);
        const std::u16string wanted = numbers.text(u"aeE\u0301\u00e9", 1 + numbers.below(2));
        for (unsigned options = 0; options < 16; ++options) {
            NSRange expected = modelFound(part, wanted, options);
            expected.location += expected.length != 0 ? start : 0;
            ASSERT_EQ(string.rangeOfString_options_range(stringOf(wanted), options, range), expected)
                << shownUnits(wanted) << " in " << shownUnits(part) << " of " << shownUnits(text) << " by "
                << options;
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
        for (unsigned options = 0; options < 16; ++options) {
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

TEST(StringSearch, splitsAtTextsAsASlowSplitDoes) {
    kit::Numbers numbers(41);
    for (int round = 0; round < 5000; ++round) {
        const std::u16string text =
            numbers.text(numbers.below(2) == 0 ? u"ab," : u"a,\u20ac\u00e9", numbers.below(60));
        const std::u16string separator = numbers.below(2) == 0 ? u"," : u",a";
        std::vector<std::u16string> expected;
        std::size_t start = 0;
        for (std::size_t end; (end = text.find(separator, start)) != text.npos;
             start = end + separator.size()) {
            expected.push_back(text.substr(start, end - start));
        }
        expected.push_back(text.substr(start));
        ASSERT_EQ(textsOf(stringOf(text).componentsSeparatedByString(stringOf(separator))), expected)
            << shownUnits(text);
    }
}

TEST(StringSearch, splitsAtPlainTextsUnlessAMarkFollows) {
    kit::Numbers numbers(53);
    for (int round = 0; round < 20000; ++round) {
        const std::u16string text = numbers.text(u"ab,\u0301\u20ac", numbers.below(40));
        const std::u16string separator = numbers.text(u"a,", 1 + numbers.below(3));
        std::vector<std::u16string> expected;
        std::size_t start = 0;
        for (std::size_t at = 0; (at = text.find(separator, at)) != text.npos;) {
            const std::size_t end = at + separator.size();
            if (end == text.size() || text[end] != u'\u0301') {
                expected.push_back(text.substr(start, at - start));
                start = end;
            }
            at = end;
        }
        expected.push_back(text.substr(start));
        ASSERT_EQ(textsOf(stringOf(text).componentsSeparatedByString(stringOf(separator))), expected)
            << shownUnits(separator) << " in " << shownUnits(text);
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
