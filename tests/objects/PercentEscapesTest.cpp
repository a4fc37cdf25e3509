// SPDX-License-Identifier: MIT
#include "foundation/objects/PercentEscapes.h"

#include <gtest/gtest.h>

#include "foundation/objects/NSCharacterSet.h"
#include "tests/objects/RandomTexts.h"
#include "tests/objects/TestValues.h"

using namespace ZQFoundation;
using namespace std::string_literals;
using detail::addPercentEscapes;
using detail::EscapeTable;
using detail::removePercentEscapes;
using RandomTexts::stringOf;
using TestValues::utf8Of;

namespace {

constexpr EscapeTable letters("abcdefghijklmnopqrstuvwxyz");

static_assert(letters['a'].length == 1 && letters['A'].length == 3 && letters['a' + 0x80].length == 3);

std::string added(const NSString& text) { return utf8Of(addPercentEscapes(text, letters)); }
std::string removed(const NSString& text) { return utf8Of(removePercentEscapes(text)); }

TEST(PercentEscapes, endAtEveryPlaceOfAText) {
    for (std::size_t before = 0; before < 5; ++before) {
        for (std::size_t escapes = 0; escapes < 4; ++escapes) {
            for (std::size_t behind = 0; behind < 5; ++behind) {
                std::string text(before, 'a');
                std::string expected = text;
                for (std::size_t i = 0; i < escapes; ++i) {
                    text += ' ';
                    expected += "%20";
                }
                text.append(behind, 'z');
                expected.append(behind, 'z');
                EXPECT_EQ(added(text), expected);
                EXPECT_EQ(removed(expected), text);
                EXPECT_EQ(added(u"\u00E9"s + std::u16string(text.begin(), text.end())), "%C3%A9" + expected);
            }
        }
    }
}

// A sign without its two digits takes less room away than its text is short of; under the address sanitizer.
TEST(PercentEscapes, thatAreCutOffWriteNothingBehindTheRoomThatIsThere) {
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
    EXPECT_EQ(removed(u"\u00E9%C3%A9%"), "(nil)");
    EXPECT_EQ(removed(u"\u00E9%C3a%A9"), "(nil)");
    EXPECT_EQ(removed(u"\u20AC%4\u0131"), "(nil)") << "its low byte is a digit";
}

TEST(PercentEscapes, areReadOnlyWholly) {
    for (const char* text : {"%", "a%", "%4", "%%%", "%4%1", "%41%", "%41%4", "%G1", "%1G", "%\xC3\xA9"}) {
        EXPECT_EQ(removed(text), "(nil)") << text;
    }
    EXPECT_EQ(removePercentEscapes(stringOf(u"%4\0"s)), nullptr);
    for (std::size_t marks = 1; marks < 20; ++marks) {
        for (std::size_t plain = 0; plain < 40; ++plain) {
            const std::string text = std::string(plain, 'a') + std::string(marks, '%');
            EXPECT_EQ(removed(text), "(nil)") << text;
            EXPECT_EQ(removed("%41" + text), "(nil)") << text;
        }
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
    const NSCharacterSet set = NSCharacterSet::characterSetWithCharactersInString(u" \u00C3\u00E9z");
    EXPECT_EQ(utf8Of(NSString(u" \u00E9z").stringByAddingPercentEncodingWithAllowedCharacters(set)),
              " %C3%A9z");
}

} // namespace
