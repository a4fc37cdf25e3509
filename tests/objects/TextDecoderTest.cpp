// SPDX-License-Identifier: MIT
// Bytes read in every encoding: marks, ill-formed bytes, leniency.
#include "tests/objects/EncodingTesting.h"

using namespace ZQFoundation;
using namespace encodingtesting;
using namespace std::string_literals;

namespace {

TEST(TextDecoder, passUnpairedSurrogatesInUtf16) {
    const std::string bytes = isLittleEndian ? "\xFF\xFE\x00\xD8\x61\x00"s : "\xFE\xFF\xD8\x00\x00\x61"s;
    EXPECT_EQ(shownBytes(encoded(u"\xD800\x61", NSUTF16StringEncoding)), shownBytes(bytes));
    EXPECT_EQ(decoded(bytes, NSUTF16StringEncoding), "<D800>a");
}

TEST(TextDecoder, readUtf16ByItsMarkElseBigEndian) {
    const NSStringEncoding encoding = NSUTF16StringEncoding;
    EXPECT_EQ(decoded("\xFF\xFE"
                      "a\0\xAC\x20"s,
                      encoding),
              "a<20AC>");
    EXPECT_EQ(decoded("\xFE\xFF\0a\x20\xAC"s, encoding), "a<20AC>");
    EXPECT_EQ(decoded("\0a\x20\xAC"s, encoding), "a<20AC>");
    EXPECT_EQ(decoded("a\0"s, encoding), "<6100>");
    EXPECT_EQ(decoded("\xFF\xFE", encoding), "");
    EXPECT_EQ(decoded("", encoding), "");
}

TEST(TextDecoder, readUtf32ByItsMark) {
    EXPECT_EQ(decoded("\xFF\xFE\0\0"
                      "a\0\0\0"s,
                      NSUTF32StringEncoding),
              "a");
    EXPECT_EQ(decoded("\0\0\xFE\xFF\0\0\0a"s, NSUTF32StringEncoding), "a");
    EXPECT_EQ(decoded("\xFF\xFE\0\0\x00\xF6\x01\0"s, NSUTF32StringEncoding), "<D83D><DE00>");
}

TEST(TextDecoder, dropALeadingMarkOnReading) {
    EXPECT_EQ(decoded("\xEF\xBB\xBF"
                      "a",
                      NSUTF8StringEncoding),
              "a");
    EXPECT_EQ(decoded("\xEF\xBB\xBF", NSUTF8StringEncoding), "");
    EXPECT_EQ(decoded("a\xEF\xBB\xBF", NSUTF8StringEncoding), "a<FEFF>");
    EXPECT_EQ(decoded("\xFE\xFF\0a"s, NSUTF16BigEndianStringEncoding), "a");
    EXPECT_EQ(decoded("\xFF\xFE"
                      "a\0"s,
                      NSUTF16LittleEndianStringEncoding),
              "a");
    EXPECT_EQ(decoded("\0\0\xFE\xFF\0\0\0a"s, NSUTF32BigEndianStringEncoding), "a");
    EXPECT_EQ(decoded("\xFF\xFE\0\0"
                      "a\0\0\0"s,
                      NSUTF32LittleEndianStringEncoding),
              "a");
}

TEST(TextDecoder, readNoIllFormedUtf8) {
    for (const std::string bytes :
         {"\x80", "\xC0\x80", "\xE2\x82x", "\xED\xA0\xBD\xED\xB8\x80", "good \xE9", "\xEF\xBB\xBF\xFF"}) {
        EXPECT_EQ(decoded(bytes, NSUTF8StringEncoding), none) << testing::PrintToString(bytes);
    }
    EXPECT_EQ(decoded("\xF4\x8F\xBF\xBF", NSUTF8StringEncoding), "<DBFF><DFFF>");
    EXPECT_EQ(decoded("\xC2\x80\xEF\xBF\xBF", NSUTF8StringEncoding), "<0080><FFFF>");
}

TEST(TextDecoder, readNoUtf32BeyondUnicode) {
    EXPECT_EQ(decoded("\0\x11\0\0"s, NSUTF32BigEndianStringEncoding), none);
    EXPECT_EQ(decoded("\0\0\x11\0"s, NSUTF32LittleEndianStringEncoding), none);
    EXPECT_EQ(decoded("\xFF\xFE\0\0\xFF\xFF\xFF\xFF"s, NSUTF32StringEncoding), none);
    EXPECT_EQ(decoded("\0\x10\xFF\xFF"s, NSUTF32BigEndianStringEncoding), "<DBFF><DFFF>");
}

TEST(TextDecoder, readAsciiLeniently) {
    std::string bytes;
    std::u16string text;
    for (int code = 0; code < 256; ++code) {
        bytes += static_cast<char>(code);
        text += static_cast<char16_t>(code);
    }
    EXPECT_EQ(decoded(bytes, NSASCIIStringEncoding), shownUnits(text));
}

TEST(TextDecoder, readNoBrokenJapanese) {
    EXPECT_EQ(decoded("\xC6", NSJapaneseEUCStringEncoding), none);
    EXPECT_EQ(decoded("\xC6 ", NSJapaneseEUCStringEncoding), none);
    EXPECT_EQ(decoded("\x93", NSShiftJISStringEncoding), none);
    EXPECT_EQ(decoded("\x93 ", NSShiftJISStringEncoding), none);
}

} // namespace
