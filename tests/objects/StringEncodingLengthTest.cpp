// SPDX-License-Identifier: MIT
// The number of bytes of a text in each encoding.
#include <gtest/gtest.h>

#include "foundation/objects/NSString.h"
#include "tests/kit/Texts.h"

using namespace ZQFoundation;
using kit::shownUnits;
using kit::stringOf;

namespace {

TEST(StringEncodingLength, countsTheBytesOfEachEncoding) {
    const struct {
        const char* name;
        NSString text;
        std::size_t ascii;
        std::size_t latin1;
        std::size_t utf8;
        std::size_t utf16;
    } rows[] = {
        {"nil", nullptr, 0, 0, 0, 0},
        {"empty", "", 0, 0, 0, 0},
        {"ASCII", "abc", 3, 3, 3, 6},
        {"U+0000", NSString(std::string_view("a\0b", 3)), 3, 3, 3, 6},
        {"U+007F", "\x7F", 1, 1, 1, 2},
        {"U+0080", u"\u0080", 0, 1, 2, 2},
        {"U+00FF", u"a\u00ff", 0, 2, 3, 4},
        {"U+0100", u"a\u0100", 0, 0, 3, 4},
        {"U+07FF and U+0800", u"\u07ff\u0800", 0, 0, 5, 4},
        {"the euro", u"\u20ac", 0, 0, 3, 2},
        {"a pair", u"\U0001F600", 0, 0, 4, 4},
        {"half a pair", u"a\xD83D", 0, 0, 0, 4},
        {"the other half", u"\xDE00", 0, 0, 0, 2},
        {"a byte-order mark is a character", u"\uFEFFa", 0, 0, 4, 4},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.text.lengthOfBytesUsingEncoding(NSASCIIStringEncoding), row.ascii) << row.name;
        EXPECT_EQ(row.text.lengthOfBytesUsingEncoding(NSISOLatin1StringEncoding), row.latin1) << row.name;
        EXPECT_EQ(row.text.lengthOfBytesUsingEncoding(NSUTF8StringEncoding), row.utf8) << row.name;
        EXPECT_EQ(row.text.lengthOfBytesUsingEncoding(NSUTF16StringEncoding), row.utf16) << row.name;
    }
    EXPECT_EQ(NSString("abc").lengthOfBytesUsingEncoding(static_cast<NSStringEncoding>(0x7FFF)), 0U);
}

} // namespace
