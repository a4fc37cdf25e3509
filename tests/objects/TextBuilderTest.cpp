// SPDX-License-Identifier: MIT
// Texts built piece by piece, in the builder itself and in a body, as bytes and as units.
#include "foundation/objects/TextBuilder.h"

#include <string>

#include <gtest/gtest.h>

#include "tests/kit/Texts.h"

using namespace ZQFoundation;
using detail::TextBuilder;

namespace {

std::u16string contents(const TextBuilder& builder) {
    return builder.isAscii() ? std::u16string(builder.asciiData(), builder.asciiData() + builder.length())
                             : std::u16string(builder.unitData(), builder.length());
}

/// Appends a piece in one of the ways there are, to both.
void append(TextBuilder& builder, std::u16string& expected, kit::Numbers& numbers) {
    const std::u16string ascii = numbers.text(u"abc", numbers.below(numbers.below(8) == 0 ? 700 : 20));
    const std::string bytes(ascii.begin(), ascii.end());
    const std::u16string wide = numbers.text(u"aé€\xD83D\xDE00", numbers.below(9));
    switch (numbers.below(9)) {
    case 0:
        builder.appendAscii(bytes.data(), bytes.size());
        break;
    case 1:
        builder.append(StringView(ascii));
        break;
    case 2:
        builder.appendUtf8(bytes.data(), bytes.size());
        break;
    case 3:
        builder.appendRepeated('-', bytes.size());
        expected.append(bytes.size(), u'-');
        return;
    case 4:
        if (char* const room = builder.reserveAscii(bytes.size())) {
            std::copy(bytes.begin(), bytes.end(), room);
            builder.commitAscii(bytes.size());
        } else {
            EXPECT_FALSE(builder.isAscii());
            return;
        }
        break;
    case 5:
        builder.truncate(builder.length() / 2);
        expected.resize(expected.size() / 2);
        return;
    case 6:
        builder.appendObjectText(nullptr);
        expected += u"(null)";
        return;
    default:
        if (numbers.below(6) == 0) { // not too soon, so that there are long texts of bytes as well
            builder.appendUnits(wide.data(), wide.size());
            builder.appendUnit(u'ü');
            builder.appendCodePoint(U'😀');
            expected += wide + u"ü😀";
        }
        return;
    }
    expected += ascii;
}

TEST(TextBuilder, containsWhatWasAppended) {
    kit::Numbers numbers(71);
    int wide = 0;
    for (int round = 0; round < 500; ++round) {
        TextBuilder builder;
        std::u16string expected;
        for (std::size_t piece = 0; piece < 25; ++piece) {
            append(builder, expected, numbers);
            ASSERT_EQ(contents(builder), expected) << round << " " << piece;
        }
        wide += builder.isAscii() ? 0 : 1;
        ASSERT_EQ(builder.string().utf16(), expected);
        ASSERT_EQ(builder.length(), 0U);
        ASSERT_TRUE(builder.isAscii());
        builder.appendLiteral("again");
        ASSERT_EQ(builder.string(), "again");
    }
    EXPECT_GT(wide, 50);
    EXPECT_LT(wide, 450);
}

TEST(TextBuilder, widensAtEveryLength) {
    for (std::size_t length = 0; length < 2 * TextBuilder::inlineBytes; ++length) {
        TextBuilder builder;
        builder.appendRepeated('x', length);
        EXPECT_TRUE(builder.isAscii());
        builder.appendUtf8("é\xFF", 3);
        EXPECT_EQ(builder.string().utf16(), std::u16string(length, u'x') + u"é\uFFFD");
    }
}

TEST(TextBuilder, makesAsciiStringsOfTextsWhoseOtherUnitsAreGone) {
    TextBuilder builder;
    builder.append("abc€");
    builder.truncate(3);
    const NSString text = builder.string();
    EXPECT_EQ(text, "abc");
    EXPECT_EQ(text.hash(), NSString("abc").hash());
}

} // namespace
