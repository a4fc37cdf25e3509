// SPDX-License-Identifier: MIT
// Trimming of strings: rows, all short texts and all units against the model. The left trim keeps half of the
// text.
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

NSCharacterSet blanks() { return NSCharacterSet::whitespaceCharacterSet(); }

void expectTrims(const std::u16string& text, const NSCharacterSet& set) {
    const NSString string = stringOf(text);
    const std::u16string left = models::leftTrimmed(text, set);
    ASSERT_EQ(string.trimLeftCharactersOfCharacterSet(set).utf16(), left) << shownUnits(text);
    ASSERT_EQ(string.trimRightCharactersOfCharacterSet(set).utf16(), models::rightTrimmed(text, set))
        << shownUnits(text);
    ASSERT_EQ(string.trimCharactersOfCharacterSet(set).utf16(), models::rightTrimmed(left, set))
        << shownUnits(text);
}

TEST(NSStringTrimming, onTheLeftRemovesAtMostAboutHalf) {
    const NSString rows[][2] = {
        {"", ""},        {" ", ""},         {"  ", " "},   {"   ", " "},   {"    ", "  "},
        {"x", "x"},      {" x", "x"},       {"  x", "x"},  {"   x", " x"}, {"    x", " x"},
        {"   xx", "xx"}, {"    xx", " xx"}, {" x ", "x "}, {"\nx", "\nx"}, {"   \u00E9", " \u00E9"}};
    for (const auto& [text, trimmed] : rows) {
        EXPECT_EQ(text.trimLeftCharactersOfCharacterSet(blanks()), trimmed) << shownUnits(text.utf16());
    }
}

TEST(NSStringTrimming, onTheRightHasNoBound) {
    const NSString rows[][2] = {
        {"", ""},         {"    ", ""},    {"x     ", "x"},     {" x ", " x"},
        {"x y  ", "x y"}, {"x\n ", "x\n"}, {"x\t \u3000", "x"}, {"\u00E9  ", "\u00E9"}};
    for (const auto& [text, trimmed] : rows) {
        EXPECT_EQ(text.trimRightCharactersOfCharacterSet(blanks()), trimmed) << shownUnits(text.utf16());
    }
}

TEST(NSStringTrimming, takesWhiteSpaceAndControlCharactersWithoutASet) {
    const struct {
        const char* name;
        NSString text;
        NSString trimmed;
    } rows[] = {
        {"tabs and newlines", "\t\tab \n", "ab"},
        {"three blanks in front of one character", "   x", " x"},
        {"four blanks", "    ", ""},
        {"zero width space", "\u200Bab\u200B", "ab"},
        {"byte-order mark", "\uFEFFab\uFEFF", "ab"},
        {"soft hyphen", "\u00ADab\u00AD", "ab"},
        {"U+0000", "\0ab\0"sv, "ab"},
        {"U+001C and U+007F", "\x1C"s + "ab\x7F", "ab"},
        {"CR LF", "\r\nab\r\n", "ab"},
        {"line separators stay", "\u2028ab\u2029", "\u2028ab\u2029"},
        {"inside stays", "a \t b", "a \t b"},
        {"a mark at the end stays", "e\u0301", "e\u0301"},
        {"a pair at either end stays", "\U0001F600x\U0001F600", "\U0001F600x\U0001F600"},
        {"a tag character is two units and stays", "ab\U000E0001", "ab\U000E0001"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.text.trim(), row.trimmed) << row.name;
    }
    const NSCharacterSet set = NSCharacterSet::whitespaceAndControlCharacterSet();
    for (unsigned value = 0; value <= 0xFFFF; ++value) {
        const auto unit = static_cast<char16_t>(value);
        const std::size_t expected = set.characterIsMember(unit) ? 2 : 4;
        ASSERT_EQ(stringOf(std::u16string(1, unit) + u"ab" + unit).trim().length(), expected) << value;
        ASSERT_EQ(stringOf(std::u16string(1, unit) + u"a\u20AC" + unit).trim().length(), expected) << value;
    }
}

TEST(NSStringTrimming, followsTheModelForAllShortTexts) {
    const NSCharacterSet wide = setOf(u" \u3000\u20AC");
    const NSCharacterSet all = NSCharacterSet::whitespaceAndControlCharacterSet();
    for (const std::u16string& text : allTexts(u" x", 10)) {
        expectTrims(text, blanks());
    }
    for (const std::u16string& text : allTexts(u" \u3000\t\u20ACx\xD83D", 6)) {
        expectTrims(text, wide);
        ASSERT_EQ(stringOf(text).trim().utf16(), models::rightTrimmed(models::leftTrimmed(text, all), all));
    }
    for (const std::u16string& text : allTexts(u" \tx", 7)) {
        expectTrims(text, wide);
    }
}

TEST(NSStringTrimming, looksAtUnits) {
    const std::u16string text = u"\U0001F600x\U0001F600";
    expectTrims(text, setOf(text));
    expectTrims(text, setOf(u"\xDE00"sv));
    expectTrims(text, setOf(u"\xD83D"sv));
    expectTrims(text, NSCharacterSet::emptyCharacterSet());
    expectTrims(u"  x  ", NSCharacterSet::emptyCharacterSet());
}

TEST(NSStringTrimming, keepsTheBoundInLongTexts) {
    constexpr std::size_t million = 1000000;
    expectTrims(std::u16string(million, u' '), blanks());
    expectTrims(std::u16string(million - 1, u' '), blanks());
    expectTrims(std::u16string(million - 1, u' ') + u"\u20AC", blanks());
    expectTrims(u"   " + std::u16string(million, u'x') + u"   ", blanks());
}

TEST(NSStringTrimming, keepsWideTextsEqualToNarrowOnesWhenOnlyAsciiIsLeft) {
    EXPECT_TRUE(NSString(u"\u3000ab\u3000").trim().isEqual(NSString("ab")));
    EXPECT_TRUE(NSString(u"\u3000").trim().isEqual(NSString("")));
}

TEST(NSStringTrimming, changesNothingWithoutASetOrAString) {
    EXPECT_EQ(NSString(" a ").trimLeftCharactersOfCharacterSet(nullptr), " a ");
    EXPECT_EQ(NSString(" a ").trimRightCharactersOfCharacterSet(nullptr), " a ");
    EXPECT_EQ(NSString(u" \u20AC ").trimCharactersOfCharacterSet(nullptr), u" \u20AC ");
    EXPECT_FALSE(NSString().trimLeftCharactersOfCharacterSet(blanks()));
    EXPECT_FALSE(NSString().trimRightCharactersOfCharacterSet(blanks()));
    EXPECT_FALSE(NSString().trimCharactersOfCharacterSet(blanks()));
    EXPECT_FALSE(NSString().trim());
}

} // namespace
