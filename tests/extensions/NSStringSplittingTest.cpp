// SPDX-License-Identifier: MIT
// Splitting of strings at line breaks and at runs of characters: rows, and texts against the model.
#include <string>

#include <gtest/gtest.h>

#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSCharacterSet.h"
#include "tests/kit/Texts.h"
#include "tests/kit/Values.h"
#include "tests/models/Strings.h"

using namespace ZQFoundation;
using namespace kit;
using namespace std::string_literals;
using namespace std::string_view_literals;
using models::Texts;

namespace {

NSCharacterSet whitespace() { return NSCharacterSet::whitespaceCharacterSet(); }

void expectSplit(const std::u16string& text, const NSCharacterSet& set) {
    const NSString string = stringOf(text);
    ASSERT_EQ(textsOf(string.componentsSeparatedByCharacterSet(set)), models::piecesBetweenMembers(text, set))
        << shownUnits(text);
    const Texts words = models::piecesBetweenMembers(text, whitespace());
    ASSERT_EQ(textsOf(string.componentsSeparatedByWhitespace()), words) << shownUnits(text);
    ASSERT_EQ(textsOf(string.componentsSeparatedByWhitespaces()), words) << shownUnits(text);
}

TEST(NSStringSplitting, splitsAtLineBreaks) {
    const struct {
        NSString text;
        Texts expected;
    } rows[] = {
        {"", {}},
        {"a\n", {u"a", u""}},
        {"\n", {u"", u""}},
        {"a\r\nb", {u"a", u"b"}},
        {"a\n\rb", {u"a", u"b"}},
        {"a\n\nb", {u"a", u"", u"b"}},
        {"a\n\r\nb", {u"a", u"", u"b"}},
        {"\r\n\r\n", {u"", u"", u""}},
        {"a\u2028b\u2029c\u0085d", {u"a", u"b", u"c", u"d"}},
        {"a\vb\fc", {u"a", u"b", u"c"}},
        {"  a \t\n\t b  ", {u"  a \t", u"\t b  "}},
        {"a\x1C\x1D\x1E\x1F", {u"a\x1C\x1D\x1E\x1F"}},
        {"a\0b\nc"sv, {u"a\0b"s, u"c"}},
        {"\u00E9\n\U0001F600", {u"\u00E9", u"\U0001F600"}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(textsOf(row.text.componentsSeparatedByLineBreak()), row.expected)
            << shownUnits(row.text.utf16());
    }
}

TEST(NSStringSplitting, splitsAtRunsOfSeparators) {
    const struct {
        NSString text;
        Texts expected;
    } rows[] = {
        {"", {}},
        {"ab", {u"ab"}},
        {"a   b", {u"a", u"b"}},
        {"   ", {u"", u""}},
        {" a b ", {u"", u"a", u"b", u""}},
        {"a \t\u00A0\u3000b", {u"a", u"b"}},
        {"a \n b", {u"a", u"\n", u"b"}},
        {"a\u200Bb", {u"a\u200Bb"}},
        {"a\0 b"sv, {u"a\0"s, u"b"}},
        {"\u00E9 \U0001F600", {u"\u00E9", u"\U0001F600"}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(textsOf(row.text.componentsSeparatedByWhitespace()), row.expected)
            << shownUnits(row.text.utf16());
        expectSplit(row.text.utf16(), setOf("a"));
    }
}

TEST(NSStringSplitting, findsThePiecesOfTheModel) {
    for (const std::u16string& text : allTexts(u"a \t", 8)) {
        expectSplit(text, setOf("a"));
    }
    for (const std::u16string& text : allTexts(u"a,\u3001 ", 6)) {
        expectSplit(text, setOf(u",\u3001"));
    }
    const NSCharacterSet set = setOf(u",; \u20AC");
    for (const std::u16string_view text :
         {u"abc,; \t\n", u"abcdefghijklmnop ", u"abc,\u00E9 \u20AC\u3000\U0001F600", u" \t"}) {
        expectSplit(repeated(text, 20), set);
    }
}

TEST(NSStringSplitting, knowsTheSameWhiteSpaceInBothForms) {
    for (unsigned value = 0; value <= 0xFFFF; ++value) {
        const auto unit = static_cast<char16_t>(value);
        const std::size_t expected = whitespace().characterIsMember(unit) ? 2 : 1;
        const std::u16string text{u'a', unit, u'b'};
        ASSERT_EQ(stringOf(text).componentsSeparatedByWhitespace().count(), expected) << value;
        ASSERT_EQ(stringOf(text + u"\u20AC").componentsSeparatedByWhitespace().count(), expected) << value;
        const std::u16string block = text + std::u16string(10, u'\u20AC');
        ASSERT_EQ(stringOf(block).componentsSeparatedByWhitespace().count(), expected) << value;
    }
}

TEST(NSStringSplitting, looksAtUnits) {
    const std::u16string text = u"a\U0001F600b";
    expectSplit(text, setOf(u"\U0001F600"));
    expectSplit(text, setOf(u"\xD83D"sv));
    expectSplit(text, NSCharacterSet::emptyCharacterSet());
    expectSplit(u"a\0\0b"s, NSCharacterSet::nullByteCharacterSet());
    expectSplit(u"", NSCharacterSet::emptyCharacterSet());
}

TEST(NSStringSplitting, makesPiecesOfAsciiEqualToOthers) {
    EXPECT_TRUE(NSString(u"ab \u20AC").componentsSeparatedByWhitespace().isEqual(NSArray{"ab", u"\u20AC"}));
    EXPECT_TRUE(NSString(u"ab\n\u20AC").componentsSeparatedByLineBreak().isEqual(NSArray{"ab", u"\u20AC"}));
}

TEST(NSStringSplitting, splitsLongTexts) {
    constexpr std::size_t million = 1000000;
    const NSString newlines = stringOf(std::u16string(million, u'\n'));
    EXPECT_EQ(newlines.componentsSeparatedByLineBreak().count(), million + 1);
    EXPECT_EQ(newlines.componentsSeparatedByWhitespace().count(), 1U);
    EXPECT_EQ(stringOf(repeated(u"\r\n", million / 2)).componentsSeparatedByLineBreak().count(),
              million / 2 + 1);
    EXPECT_EQ(stringOf(repeated(u"\u20AC ", million / 2)).componentsSeparatedByWhitespace().count(),
              million / 2 + 1);
    const NSString run = stringOf(std::u16string(million, u' '));
    EXPECT_EQ(textsOf(run.componentsSeparatedByWhitespace()), (Texts{u"", u""}));
    EXPECT_EQ(run.componentsSeparatedByLineBreak().count(), 1U);
}

TEST(NSStringSplitting, givesNilForNilAndAnEmptyArrayForTheEmptyString) {
    EXPECT_TRUE(NSString("").componentsSeparatedByLineBreak());
    EXPECT_TRUE(NSString("").componentsSeparatedByCharacterSet(whitespace()));
    EXPECT_TRUE(NSString("").componentsSeparatedByWhitespace());
    EXPECT_TRUE(NSString("").componentsSeparatedByWhitespaces());
    EXPECT_FALSE(NSString().componentsSeparatedByLineBreak());
    EXPECT_FALSE(NSString().componentsSeparatedByCharacterSet(whitespace()));
    EXPECT_FALSE(NSString().componentsSeparatedByWhitespace());
    EXPECT_FALSE(NSString().componentsSeparatedByWhitespaces());
    EXPECT_EQ(textsOf(NSString("a b").componentsSeparatedByCharacterSet(nullptr)), Texts{u"a b"});
    EXPECT_EQ(NSString("").componentsSeparatedByCharacterSet(nullptr).count(), 0U);
}

} // namespace
