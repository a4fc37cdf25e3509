// SPDX-License-Identifier: MIT
// Percent escapes both ways, around the places where a text is taken in pieces, and ill-formed ones.
#include "foundation/objects/PercentEscapes.h"

#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include "foundation/objects/NSCharacterSet.h"
#include "tests/kit/Texts.h"
#include "tests/kit/Values.h"
#include "tests/models/PercentEscapes.h"

using namespace ZQFoundation;
using namespace std::string_literals;
using detail::addPercentEscapes;
using detail::EscapeTable;
using detail::removePercentEscapes;
using kit::stringOf;
using kit::utf8Of;

namespace {

constexpr EscapeTable letters("abcdefghijklmnopqrstuvwxyz");

static_assert(letters['a'].length == 1 && letters['A'].length == 3 && letters['a' + 0x80].length == 3);

std::string added(const NSString& text) { return utf8Of(addPercentEscapes(text, letters)); }
std::string removed(const NSString& text) { return utf8Of(removePercentEscapes(text)); }

TEST(PercentEscapes, endAtEveryPlaceOfAText) {
    for (std::size_t before = 0; before < 5; ++before) {
        for (std::size_t escapes = 0; escapes < 4; ++escapes) {
            for (std::size_t after = 0; after < 5; ++after) {
                std::string text(before, 'a');
                std::string expected = text;
                for (std::size_t i = 0; i < escapes; ++i) {
                    text += ' ';
                    expected += "%20";
                }
                text.append(after, 'z');
                expected.append(after, 'z');
                EXPECT_EQ(added(text), expected);
                EXPECT_EQ(removed(expected), text);
                EXPECT_EQ(added(u"\u00E9"s + std::u16string(text.begin(), text.end())), "%C3%A9" + expected);
            }
        }
    }
}

// A sign without its two digits takes less room away than its text is short of; under the address sanitizer.
TEST(PercentEscapes, thatAreCutOffWriteNothingAfterTheRoomThatIsThere) {
    for (const char* const text :
         {"100%", "a%20b%", "%4141%", "abc%", "%41bcd%", "100%25 %", "%%%", "abcdef%2"}) {
        EXPECT_EQ(removed(text), "(nil)") << text;
        EXPECT_EQ(removed(std::string(text) + "\xC3\xA9"), "(nil)") << text;
    }
}

TEST(PercentEscapes, areTheSameAroundTheEndsOfPieces) {
    for (std::size_t length = 1018; length < 1030; ++length) {
        for (std::size_t more : {0U, 1U, 1023U, 1024U, 1025U}) {
            const std::u16string units = std::u16string(length, u'a') + u"\U0001F600" +
                                         std::u16string(more, u'b') + u"\U0001F600\u20AC";
            const NSString text = stringOf(units);
            const std::string expected =
                std::string(length, 'a') + "%F0%9F%98%80" + std::string(more, 'b') + "%F0%9F%98%80%E2%82%AC";
            ASSERT_TRUE(added(text) == expected) << length << " " << more;
            ASSERT_TRUE(removePercentEscapes(expected) == text) << length << " " << more;
        }
    }
}

TEST(PercentEscapes, shareATextThatStaysAsItIs) {
    const NSString ascii("abc");
    EXPECT_EQ(StringView(addPercentEscapes(ascii, letters)).bytes(), StringView(ascii).bytes());
    EXPECT_EQ(StringView(removePercentEscapes(ascii)).bytes(), StringView(ascii).bytes());
    const NSString wide(u"\u00E9");
    EXPECT_EQ(StringView(removePercentEscapes(wide)).units(), StringView(wide).units());
}

TEST(PercentEscapes, leaveWhatIsNotEscapedAlone) {
    EXPECT_EQ(removePercentEscapes(stringOf(u"\xD800")).utf16(), u"\xD800");
    EXPECT_EQ(removePercentEscapes(stringOf(u"\xDC00%41\xD800")).utf16(), u"\xDC00"
                                                                          u"A\xD800");
    EXPECT_EQ(removed(u"\u20AC%41%e2%82%ac+"), "\u20ACA\u20AC+");
    EXPECT_EQ(removed(u"\u20AC%4\u0131"), "(nil)") << "its low byte is a digit";
}

TEST(PercentEscapes, areReadOnceAndOnlyWhole) {
    const struct {
        const char* text;
        const char* result;
    } rows[] = {
        {"", ""},
        {"a+b", "a+b"},
        {"%2525", "%25"},
        {"%25zz", "%zz"},
        {"%25%32%30", "%20"},
        {"%C3%a9", "\u00E9"},
        {"\u00E9%20\u20AC", "\u00E9 \u20AC"},
        {"\U0001F600%41", "\U0001F600A"},
        {"%EF%BB%BFa", "\uFEFFa"},
        {"%7f%01", "\x7F\x01"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(removed(row.text), row.result) << row.text;
    }
    EXPECT_EQ(removePercentEscapes("a%00b").utf16(), u"a\0b"s);
    for (const char* text : {"%",        "100%", "a%2", "%g0", "%0g",   "%zz",    "%%",       "%%41",
                             "%4%41",    "% 20", "%-1", "%+1", "%0x41", "%u20AC", "%2\u0660", "%\uFF12\uFF10",
                             "%2\u00E9", "%:0",  "%@0", "%G0", "%`0",   "%/0"}) {
        EXPECT_EQ(removed(text), "(nil)") << text;
    }
    EXPECT_FALSE(removePercentEscapes(stringOf(u"%2\0"s)));
    EXPECT_FALSE(removePercentEscapes(stringOf(u"%\x0132\x0130"s))) << "their low bytes are digits";
    for (std::size_t marks = 1; marks < 20; ++marks) {
        for (std::size_t plain = 0; plain < 40; ++plain) {
            const std::string text = std::string(plain, 'a') + std::string(marks, '%');
            EXPECT_EQ(removed(text), "(nil)") << text;
            EXPECT_EQ(removed("%41" + text), "(nil)") << text;
        }
    }
}

TEST(PercentEscapes, ofAnyBytesAreReadAsTheModelReadsThem) {
    const unsigned char bytes[] = {0x00, 0x41, 0x7F, 0x80, 0x8F, 0x90, 0x9F, 0xA0, 0xBF,
                                   0xC0, 0xC1, 0xC2, 0xDF, 0xE0, 0xE1, 0xEC, 0xED, 0xEE,
                                   0xEF, 0xF0, 0xF1, 0xF3, 0xF4, 0xF5, 0xF8, 0xFF};
    const std::size_t count = std::size(bytes);
    for (std::size_t number = 0; number < count * count * count * count;
         number += number < count * count ? 1 : 3) {
        std::string spelled;
        for (std::size_t rest = number; rest != 0; rest /= count) {
            spelled += static_cast<char>(bytes[rest % count]);
        }
        const std::string text = models::percentEncoded(spelled, "");
        const auto expected = models::percentDecoded(std::u16string(text.begin(), text.end()));
        const NSString found = removePercentEscapes(text);
        ASSERT_EQ(static_cast<bool>(found), expected.has_value()) << text;
        ASSERT_EQ(found.utf16(), expected.value_or(u"")) << text;
    }
}

TEST(PercentEscapes, ofEveryCharacterAreWrittenAsTheModelWritesThem) {
    for (char32_t code = 0; code <= 0x10FFFF; code += code < 0x3000 ? 1 : 97) {
        std::u16string units;
        models::appendUtf16(units, code);
        const auto expected = models::percentEncoded(units, "abcdefghijklmnopqrstuvwxyz");
        ASSERT_EQ(added(stringOf(units)), expected.value_or("(nil)"))
            << std::hex << static_cast<unsigned>(code);
    }
}

TEST(PercentEscapes, needNoMoreThanTheirText) {
    std::string blanks(1000000, ' ');
    std::string escaped;
    for (std::size_t i = 0; i < blanks.size(); ++i) {
        escaped += "%20";
    }
    EXPECT_TRUE(added(blanks) == escaped);
    EXPECT_TRUE(removed(escaped) == blanks);
}

TEST(PercentEscapes, takeOnlyTheAsciiMembersOfASet) {
    EXPECT_EQ(utf8Of(NSString("ab c").stringByAddingPercentEncodingWithAllowedCharacters(nullptr)),
              "%61%62%20%63");
    const NSCharacterSet all = NSCharacterSet::emptyCharacterSet().invertedSet();
    EXPECT_EQ(utf8Of(NSString(u"a %\x7F\u00E9").stringByAddingPercentEncodingWithAllowedCharacters(all)),
              "a %\x7F%C3%A9");
    EXPECT_FALSE(stringOf(u"\xD800").stringByAddingPercentEncodingWithAllowedCharacters(all));
    const NSCharacterSet set = NSCharacterSet::characterSetWithCharactersInString(u" \u00C3\u00E9z");
    EXPECT_EQ(utf8Of(NSString(u" \u00E9z").stringByAddingPercentEncodingWithAllowedCharacters(set)),
              " %C3%A9z");
}

} // namespace
