// SPDX-License-Identifier: MIT
// Texts in UTF-16 and UTF-32 with either byte order, and in ASCII.
#include "foundation/text/UnicodeForms.h"

#include <gtest/gtest.h>

using namespace ZQFoundation::detail;
using namespace std::string_literals;

namespace {

constexpr ByteOrder orders[] = {ByteOrder::big, ByteOrder::little};

/// Every unit but the surrogates, then a pair for each of them.
std::u16string everything() {
    std::u16string units;
    for (char32_t unit = 0; unit < 0x10000; ++unit) {
        if (unit < 0xD800 || unit > 0xDFFF) {
            units.push_back(static_cast<char16_t>(unit));
        }
    }
    for (char32_t half = 0; half < 0x400; ++half) {
        units.push_back(static_cast<char16_t>(0xD800 + half));
        units.push_back(static_cast<char16_t>(0xDFFF - half));
    }
    return units;
}

TEST(UnicodeForms, takeEveryCharacterBothWays) {
    const std::u16string units = everything();
    for (const ByteOrder order : orders) {
        std::u16string read;
        std::string bytes(2 * units.size(), '\0');
        EXPECT_EQ(writeUtf16(units.data(), units.size(), order, bytes.data()), bytes.data() + bytes.size());
        EXPECT_TRUE(readUtf16(bytes, order, read));
        EXPECT_TRUE(read == units);

        bytes.resize(4 * countOfCharacters(units.data(), units.size()));
        EXPECT_EQ(writeUtf32(units.data(), units.size(), order, bytes.data()), bytes.data() + bytes.size());
        EXPECT_TRUE(readUtf32(bytes, order, read));
        EXPECT_TRUE(read == units);
    }
}

TEST(UnicodeForms, writeTextsStoredAsBytesTheSameWay) {
    char bytes[8];
    EXPECT_EQ(std::string(bytes, writeUtf16("az", 2, ByteOrder::big, bytes)), "\0a\0z"s);
    EXPECT_EQ(std::string(bytes, writeUtf16("az", 2, ByteOrder::little, bytes)), "a\0z\0"s);
    EXPECT_EQ(std::string(bytes, writeUtf32("az", 2, ByteOrder::big, bytes)), "\0\0\0a\0\0\0z"s);
    EXPECT_EQ(std::string(bytes, writeUtf32("az", 2, ByteOrder::little, bytes)), "a\0\0\0z\0\0\0"s);
    EXPECT_EQ(std::string(bytes, writeEscapedAscii("a\\", 2, bytes)), "a\\\\");
    EXPECT_EQ(escapedAsciiLength("a\\", 2), 3U);
}

TEST(UnicodeForms, areNotReadCutOff) {
    std::u16string units;
    for (const ByteOrder order : orders) {
        EXPECT_FALSE(readUtf16("a", order, units));
        EXPECT_FALSE(readUtf16("abc", order, units));
        for (const std::string& bytes : {"a"s, "ab"s, "abc"s, "\0\0\0a\0"s}) {
            EXPECT_FALSE(readUtf32(bytes, order, units));
        }
        EXPECT_TRUE(readUtf16("", order, units));
        EXPECT_TRUE(readUtf32("", order, units));
        EXPECT_EQ(units, u"");
    }
}

TEST(UnicodeForms, ofFourBytesAreNumbersOfCharacters) {
    std::u16string units;
    for (const std::string& bytes :
         {"\0\0\xD8\0"s, "\0\0\xDF\xFF"s, "\0\x11\0\0"s, "\1\0\0a"s, "\xFF\xFF\xFF\xFF"s, "\x80\0\0\0"s}) {
        EXPECT_FALSE(readUtf32(bytes, ByteOrder::big, units)) << testing::PrintToString(bytes);
    }
    EXPECT_TRUE(readUtf32("\0\0\xD7\xFF\0\0\xE0\0\0\x10\xFF\xFF"s, ByteOrder::big, units));
    EXPECT_EQ(units, u"\uD7FF\uE000\U0010FFFF");
}

TEST(UnicodeForms, asAsciiKeepEveryUnit) {
    for (char32_t code = 0; code < 0x10000; ++code) {
        const auto unit = static_cast<char16_t>(code);
        std::string bytes(escapedAsciiLength(&unit, 1), '\0');
        ASSERT_EQ(writeEscapedAscii(&unit, 1, bytes.data()), bytes.data() + bytes.size());
        std::u16string read;
        ASSERT_TRUE(readEscapedAscii(bytes, read)) << bytes;
        ASSERT_EQ(read, std::u16string(1, unit));
    }
}

TEST(UnicodeForms, asAsciiAreReadStrictly) {
    std::u16string units;
    for (const char* bytes :
         {"\\", "a\\", "\\x", "\\U0041", "\\1", "\\12", "\\128", "\\400", "\\777", "\\u", "\\u12", "\\u12g4",
          "\\u 123", "\\ ", "\x80", "\xE9", "\\\\\\", "\\n", "\\08"}) {
        EXPECT_FALSE(readEscapedAscii(bytes, units)) << testing::PrintToString(bytes);
    }
    EXPECT_TRUE(readEscapedAscii("\\101\\u0042\\u00e9\\u00E9\\377\\0001\\\\", units));
    EXPECT_EQ(units, u"AB\u00E9\u00E9\u00FF\0"
                     u"1\\"s);
}

} // namespace
