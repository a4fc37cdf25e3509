// SPDX-License-Identifier: MIT
// Text arguments in their four forms as bytes or units.
#include "foundation/objects/AsciiOrUtf16.h"

#include <string>

#include <gtest/gtest.h>

#include "foundation/objects/NSString.h"

using namespace ZQFoundation;
using detail::AsciiOrUtf16;

namespace {

std::u16string unitsOf(const AsciiOrUtf16& text) {
    std::u16string units;
    for (std::size_t i = 0; i < text.length(); ++i) {
        units += text[i];
        EXPECT_EQ(text[i], text.isAscii() ? static_cast<char16_t>(text.ascii()[i]) : text.units()[i]);
    }
    return units;
}

TEST(AsciiOrUtf16, isAsciiExactlyWhenEveryUnitIs) {
    for (const std::size_t length :
         {0U, 1U, 7U, 127U, 128U, 129U, 130U, 5000U}) { // some need a block of their own
        const std::u16string plain(length, u'a');
        const std::string bytes(length, 'a');
        for (const StringView& view : {StringView(bytes), StringView(plain)}) {
            const AsciiOrUtf16 text(view);
            EXPECT_FALSE(text.isNil());
            EXPECT_TRUE(text.isAscii()) << length;
            EXPECT_EQ(unitsOf(text), plain);
        }
        for (const std::u16string& wide : {plain + u"é", u"é" + plain, plain + u"\x7F\x80", plain + u"😀"}) {
            const std::string utf8 = NSString(wide).utf8();
            for (const StringView& view : {StringView(utf8), StringView(wide)}) {
                const AsciiOrUtf16 text(view);
                EXPECT_FALSE(text.isAscii()) << length;
                EXPECT_EQ(unitsOf(text), wide);
            }
        }
    }
}

TEST(AsciiOrUtf16, readsIllFormedBytesAsReplacementsAndKeepsUnits) {
    EXPECT_EQ(unitsOf(AsciiOrUtf16("a\xFF\xC3")), u"a\uFFFD\uFFFD");
    EXPECT_EQ(unitsOf(AsciiOrUtf16(StringView(u"\xD800z", 2))), (std::u16string{0xD800, u'z'}));
}

TEST(AsciiOrUtf16, distinguishesNilFromTheEmptyText) {
    EXPECT_TRUE(AsciiOrUtf16(nullptr).isNil());
    EXPECT_EQ(AsciiOrUtf16(nullptr).length(), 0U);
    EXPECT_FALSE(AsciiOrUtf16("").isNil());
}

} // namespace
