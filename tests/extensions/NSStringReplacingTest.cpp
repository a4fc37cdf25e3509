// SPDX-License-Identifier: MIT
// Replacing characters, indenting lines, the final newline and repeating: rows, and texts against the model.
#include <cstdint>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "foundation/objects/NSCharacterSet.h"
#include "tests/kit/Texts.h"
#include "tests/kit/Values.h"
#include "tests/models/Strings.h"

using namespace ZQFoundation;
using namespace kit;
using namespace std::string_literals;
using namespace std::string_view_literals;

namespace {

constexpr std::size_t million = 1000000;
constexpr std::int64_t greatest = std::numeric_limits<std::int64_t>::max();

void expectReplaced(const std::u16string& text, const NSCharacterSet& set,
                    const std::u16string& replacement) {
    const std::u16string expected = models::replaced(text, set, replacement);
    const NSString found = stringOf(text).stringByReplacingEveryOccurrenceOfCharactersFromSet_withString(
        set, stringOf(replacement));
    ASSERT_EQ(found.utf16(), expected) << shownUnits(text);
    ASSERT_TRUE(found.isEqual(stringOf(expected))) << shownUnits(text);
    ASSERT_EQ(stringOf(text).stringByRemovingEveryOccurrenceOfCharactersFromSet(set).utf16(),
              models::replaced(text, set, u""))
        << shownUnits(text);
}

void expectIndented(const std::u16string& text, const std::u16string& indent) {
    ASSERT_EQ(stringOf(text).stringByIndentingLinesWithString(stringOf(indent)).utf16(),
              models::indented(text, indent))
        << shownUnits(text);
}

TEST(NSStringReplacing, replacesEachMemberByItself) {
    const NSCharacterSet digits = NSCharacterSet::decimalDigitCharacterSet();
    const struct {
        const char* name;
        NSString text;
        NSCharacterSet set;
        NSString replacement;
        NSString result;
    } rows[] = {
        {"runs are not one", "a1b22", digits, "#", "a#b##"},
        {"empty receiver", "", digits, "#", ""},
        {"by members of the set", "a1b", digits, "11", "a11b"},
        {"by U+0000", "a1b", digits, "\0"sv, "a\0b"sv},
        {"by a format", "a1b", digits, "%@%n", "a%@%nb"},
        {"a wide text that becomes narrow", "a\u0663b", digits, "3", "a3b"},
        {"U+0000", "a\0b"sv, NSCharacterSet::nullByteCharacterSet(), "-", "a-b"},
        {"a digit of two units", "a\U0001D7CEb", digits, "#", "a\U0001D7CEb"},
        {"a member of two units", "a\U0001F600b", setOf("\U0001F600"), "#", "a\U0001F600b"},
        {"half a pair", "a\U0001F600b", setOf(u"\xDE00"sv), "#", stringOf(u"a\xD83D#b")},
        {"the base of a mark", "e\u0301", setOf("e"), "a", "a\u0301"},
        {"nil replacement", "a1b22", digits, nullptr, "a1b22"},
        {"nil set", "a1b22", nullptr, "#", "a1b22"},
        {"both nil", "a1b22", nullptr, nullptr, "a1b22"},
    };
    for (const auto& row : rows) {
        const NSString found =
            row.text.stringByReplacingEveryOccurrenceOfCharactersFromSet_withString(row.set, row.replacement);
        EXPECT_TRUE(found) << row.name;
        EXPECT_EQ(found.utf16(), row.result.utf16()) << row.name;
    }
    EXPECT_EQ(NSString("a1").stringByRemovingEveryOccurrenceOfCharactersFromSet(nullptr), "a1");
    EXPECT_FALSE(NSString().stringByReplacingEveryOccurrenceOfCharactersFromSet_withString(digits, "x"));
    EXPECT_FALSE(NSString().stringByReplacingEveryOccurrenceOfCharactersFromSet_withString(nullptr, nullptr));
    EXPECT_FALSE(NSString().stringByRemovingEveryOccurrenceOfCharactersFromSet(digits));
}

TEST(NSStringReplacing, replacesWhatTheModelReplaces) {
    for (const std::u16string& text : allTexts(u"a \u00E9\t", 6)) {
        expectReplaced(text, NSCharacterSet::whitespaceCharacterSet(), u"<>");
    }
    expectReplaced(u"a1b", NSCharacterSet::emptyCharacterSet(), u"#");
    const NSCharacterSet set = setOf(u"12\u20AC");
    for (const std::u16string replacement : {u"", u"#", u"<->", u"\u00E9"}) {
        expectReplaced(repeated(u"abc12", 140), set, replacement);
        expectReplaced(repeated(u"ab1\u20AC\u00E9\U0001F600", 100), set, replacement);
    }
    expectReplaced(repeated(u"a ", million / 2), setOf(" "), u"\u20AC\u20AC");
}

TEST(NSStringReplacing, indentsEveryLine) {
    const struct {
        const char* name;
        NSString text;
        NSString indent;
        NSString result;
    } rows[] = {
        {"two lines", "a\nb", "> ", "> a\n> b"},
        {"empty", "", "> ", "> "},
        {"a break at the end", "a\n", "> ", "> a\n> "},
        {"every break becomes LF", "a\r\nb\n\rc\rd\u2028e", "\t", "\ta\n\tb\n\tc\n\td\n\te"},
        {"nothing in front", "a\r\nb", "", "a\nb"},
        {"nil keeps the breaks", "a\r\nb\u2028", nullptr, "a\r\nb\u2028"},
        {"an indent with a newline", "a\nb", "\n", "\na\n\nb"},
        {"texts like formats", "%@\n%n", "100%@ %d%%", "100%@ %d%%%@\n100%@ %d%%%n"},
        {"a wide indent", "a\nb", "\u2192", "\u2192a\n\u2192b"},
        {"U+0000", "a\0\nb"sv, "\0"sv, "\0a\0\n\0b"sv},
    };
    for (const auto& row : rows) {
        const NSString found = row.text.stringByIndentingLinesWithString(row.indent);
        EXPECT_TRUE(found) << row.name;
        EXPECT_EQ(found.utf16(), row.result.utf16()) << row.name;
    }
    EXPECT_FALSE(NSString().stringByIndentingLinesWithString("> "));
    EXPECT_FALSE(NSString().stringByIndentingLinesWithString(nullptr));
}

TEST(NSStringReplacing, indentsTheLinesOfTheModel) {
    for (const std::u16string& text : allTexts(u"a\r\n\u2029", 6)) {
        expectIndented(text, u"  ");
        expectIndented(text, u"\r");
    }
    expectIndented(std::u16string(million, u'\n'), u"> ");
}

TEST(NSStringReplacing, addsANewlineOnlyWhereThereIsNone) {
    const NSString rows[][2] = {{"", ""},
                                {"a", "a\n"},
                                {"a\n", "a\n"},
                                {"a\n\r", "a\n\r"},
                                {"a\nb", "a\nb\n"},
                                {"\n ", "\n \n"},
                                {"\U0001F600", "\U0001F600\n"}};
    for (const auto& [text, result] : rows) {
        EXPECT_EQ(text.addMissingNewline(), result) << shownUnits(text.utf16());
    }
    for (unsigned value = 0; value <= 0xFFFF; ++value) {
        const std::u16string text{u'a', static_cast<char16_t>(value)};
        ASSERT_EQ(stringOf(text).addMissingNewline().utf16(),
                  models::isNewline(text[1]) ? text : text + u'\n');
    }
    EXPECT_FALSE(NSString().addMissingNewline());
}

TEST(NSStringReplacing, repeatsAPiece) {
    for (const std::u16string piece : {u"", u"a", u"ab", u"abc", u"%@", u"\u20AC", u"a\u20ACb", u"\xD83D"}) {
        for (std::size_t count = 0; count < 70; ++count) {
            const NSString found = NSString::stringByRepeating_count(piece, static_cast<std::int64_t>(count));
            ASSERT_EQ(found.utf16(), repeated(piece, count)) << count;
            ASSERT_TRUE(found.isEqual(stringOf(repeated(piece, count)))) << count;
        }
    }
    EXPECT_EQ(NSString::stringByRepeating_count("\0"sv, 2), "\0\0"sv);
    EXPECT_EQ(NSString::stringByRepeating_count("ab", million).length(), 2 * million);
    EXPECT_EQ(NSString::stringByRepeating_count("", greatest), "");
    for (const std::int64_t count : {std::int64_t{-1}, std::numeric_limits<std::int64_t>::lowest()}) {
        EXPECT_FALSE(NSString::stringByRepeating_count("ab", count));
        EXPECT_FALSE(NSString::stringByRepeating_count("", count));
        EXPECT_FALSE(NSString::stringByRepeating_count(nullptr, count));
    }
    EXPECT_FALSE(NSString::stringByRepeating_count(nullptr, 3));
    EXPECT_FALSE(NSString::stringByRepeating_count(nullptr, 0));
}

TEST(NSStringReplacing, refusesToRepeatBeyondTheMemory) {
    for (const StringView piece : {StringView("abcd"), StringView("ab"), StringView(u"\u20AC")}) {
        for (const std::int64_t count : {greatest, greatest / 2, greatest / 2 + 1, std::int64_t{1} << 61}) {
            EXPECT_EQ(raised([&] { NSString::stringByRepeating_count(piece, count); }), "NSMallocException")
                << count;
        }
    }
}

} // namespace
