// SPDX-License-Identifier: MIT
// Texts written in every encoding, and read back: examples, the public tables, and what does not fit.
#include "tests/models/EncodingTables.h"
#include "tests/models/Utf.h"
#include "tests/objects/EncodingTesting.h"

using namespace ZQFoundation;
using namespace encodingtesting;
using namespace std::string_literals;

namespace {

constexpr NSStringEncoding unicodeEncodings[] = {
    NSUTF8StringEncoding,
    NSUTF16StringEncoding,
    NSUTF16BigEndianStringEncoding,
    NSUTF16LittleEndianStringEncoding,
    NSUTF32StringEncoding,
    NSUTF32BigEndianStringEncoding,
    NSUTF32LittleEndianStringEncoding,
    NSNonLossyASCIIStringEncoding,
};

constexpr NSStringEncoding otherEncodings[] = {
    NSASCIIStringEncoding,         NSNEXTSTEPStringEncoding,      NSJapaneseEUCStringEncoding,
    NSISOLatin1StringEncoding,     NSShiftJISStringEncoding,      NSISOLatin2StringEncoding,
    NSWindowsCP1251StringEncoding, NSWindowsCP1252StringEncoding, NSWindowsCP1253StringEncoding,
    NSWindowsCP1254StringEncoding, NSWindowsCP1250StringEncoding, NSISO2022JPStringEncoding,
    NSMacOSRomanStringEncoding,
};

TEST(TextEncoder, writeUnicodeForms) {
    const std::u16string text = u"a\u00E9\u20AC\U0001F600";
    const Row rows[] = {
        {NSUTF8StringEncoding, text, "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"},
        {NSUTF16BigEndianStringEncoding, text, "\0a\0\xE9\x20\xAC\xD8\x3D\xDE\x00"s},
        {NSUTF16LittleEndianStringEncoding, text, "a\0\xE9\0\xAC\x20\x3D\xD8\x00\xDE"s},
        {NSUTF32BigEndianStringEncoding, text, "\0\0\0a\0\0\0\xE9\0\0\x20\xAC\0\x01\xF6\x00"s},
        {NSUTF32LittleEndianStringEncoding, text, "a\0\0\0\xE9\0\0\0\xAC\x20\0\0\x00\xF6\x01\0"s},
        {NSNonLossyASCIIStringEncoding, text, "a\\351\\u20ac\\ud83d\\ude00"},
        {NSUTF8StringEncoding, u"", ""},
        {NSUTF16BigEndianStringEncoding, u"", ""},
        {NSUTF16LittleEndianStringEncoding, u"", ""},
        {NSUTF32BigEndianStringEncoding, u"", ""},
        {NSUTF32LittleEndianStringEncoding, u"", ""},
        {NSNonLossyASCIIStringEncoding, u"", ""},
        {NSUTF8StringEncoding, u"\0a"s, "\0a"s},
        {NSUTF16BigEndianStringEncoding, u"\0a"s, "\0\0\0a"s},
    };
    for (const Row& row : rows) {
        expectBothWays(row);
    }
}

TEST(TextEncoder, writeAMarkInTheMachinesOrderWhereNoneIsStated) {
    const std::string short16 = isLittleEndian ? "\xFF\xFE" : "\xFE\xFF";
    const std::string short32 = isLittleEndian ? "\xFF\xFE\0\0"s : "\0\0\xFE\xFF"s;
    const NSStringEncoding little16 =
        isLittleEndian ? NSUTF16LittleEndianStringEncoding : NSUTF16BigEndianStringEncoding;
    const NSStringEncoding little32 =
        isLittleEndian ? NSUTF32LittleEndianStringEncoding : NSUTF32BigEndianStringEncoding;
    for (const std::u16string& text : {u""s, u"a"s, u"\u20AC\U0001F600"s}) {
        expectBothWays({NSUTF16StringEncoding, text, short16 + encoded(text, little16)});
        expectBothWays({NSUTF32StringEncoding, text, short32 + encoded(text, little32)});
    }
    EXPECT_EQ(NSUnicodeStringEncoding, NSUTF16StringEncoding);
}

TEST(TextEncoder, writeEveryWellFormedTextInTheUnicodeForms) {
    for (const NSStringEncoding encoding : unicodeEncodings) {
        std::u16string text;
        for (char32_t code = 1; code <= 0x10FFFF; code += code < 0x4000 ? 1 : 61) {
            if (code < 0xD800 || code > 0xDFFF) {
                models::appendUtf16(text, code);
            }
        }
        const std::string bytes = encoded(text, encoding);
        ASSERT_NE(bytes, none);
        EXPECT_TRUE(decodedString(bytes, encoding).utf16() == text) << std::hex << encoding;
    }
}

TEST(TextEncoder, refuseUnpairedSurrogates) {
    for (const NSStringEncoding encoding :
         {NSUTF8StringEncoding, NSUTF32BigEndianStringEncoding, NSUTF32LittleEndianStringEncoding}) {
        for (const std::u16string& text : {u"\xD800"s, u"\xDC00"s, u"a\xDBFF"s, u"\xDFFF\xD800z"s}) {
            expectNoBytes(encoding, text);
        }
    }
}

TEST(TextEncoder, writeNonLossyAsciiWithEscapes) {
    const NSStringEncoding encoding = NSNonLossyASCIIStringEncoding;
    const Row rows[] = {
        {encoding, u"plain ~ text", "plain ~ text"},
        {encoding, u"\u00E9", "\\351"},
        {encoding, u"\u0080\u00A0\u00FF", "\\200\\240\\377"},
        {encoding, u"\u00E91", "\\3511"},
        {encoding, u"\u0100", "\\u0100"},
        {encoding, u"\u20AC\uABCD", "\\u20ac\\uabcd"},
        {encoding, u"\U0001F600", "\\ud83d\\ude00"},
        {encoding, u"\\", "\\\\"},
        {encoding, u"\\u20ac", "\\\\u20ac"},
        {encoding, u"\\351", "\\\\351"},
        {encoding, u"a\\\u00E9\\b", "a\\\\\\351\\\\b"},
    };
    for (const Row& row : rows) {
        expectBothWays(row);
    }
}

TEST(TextEncoder, writeOnlyAsciiAsAscii) {
    std::u16string text;
    std::string bytes;
    for (int code = 0; code < 128; ++code) {
        text += static_cast<char16_t>(code);
        bytes += static_cast<char>(code);
    }
    expectBothWays({NSASCIIStringEncoding, text, bytes});
    for (char32_t unit = 0x80; unit < 0x10000; ++unit) {
        ASSERT_EQ(encoded(std::u16string(1, static_cast<char16_t>(unit)), NSASCIIStringEncoding), none)
            << std::hex << static_cast<unsigned>(unit);
    }
    expectNoBytes(NSASCIIStringEncoding, u"good \u00E9");
}

TEST(TextEncoder, haveTheSameBytesAsUnitsInLatin1) {
    for (char32_t unit = 0; unit < 0x10000; ++unit) {
        const std::u16string text(1, static_cast<char16_t>(unit));
        const std::string bytes = encoded(text, NSISOLatin1StringEncoding);
        ASSERT_EQ(bytes, unit < 0x100 ? std::string(1, static_cast<char>(unit)) : none)
            << std::hex << static_cast<unsigned>(unit);
        if (unit < 0x100) {
            ASSERT_EQ(decoded(bytes, NSISOLatin1StringEncoding), shownUnits(text));
        }
    }
}

TEST(TextEncoder, writeTheExamples) {
    const Row rows[] = {
        {NSWindowsCP1252StringEncoding, u"\u20AC", "\x80"},
        {NSMacOSRomanStringEncoding, u"\u00E9\u20AC", "\x8E\xDB"},
        {isoLatin9, u"\u20AC", "\xA4"},
        {koi8, u"\u043F\u0440\u0438\u0432\u0435\u0442", "\xD0\xD2\xC9\xD7\xC5\xD4"},
        {NSWindowsCP1251StringEncoding, u"\u043F\u0440\u0438\u0432\u0435\u0442", "\xEF\xF0\xE8\xE2\xE5\xF2"},
        {NSISOLatin2StringEncoding, u"\u0141\u00F3d\u017A",
         "\xA3\xF3"
         "d\xBC"},
        {NSWindowsCP1250StringEncoding, u"\u0141\u00F3d\u017A",
         "\xA3\xF3"
         "d\x9F"},
        {NSWindowsCP1253StringEncoding, u"\u03B1\u03C9", "\xE1\xF9"},
        {NSWindowsCP1254StringEncoding, u"\u011E\u0131", "\xD0\xFD"},
        {NSNEXTSTEPStringEncoding, u"\u00E9\u00C6\u00A0", "\xDD\xE1\x80"},
        {NSSymbolStringEncoding, u"\u03B1\u03B2\u03C0", "abp"},
        {NSSymbolStringEncoding, u"\u2264\u221E\u2260", "\xA3\xA5\xB9"},
        {NSSymbolStringEncoding, u"123+", "123+"},
        {NSStringEncoding(0x80000400), u"\u2592\u00E9", "\xB1\x82"},
    };
    for (const Row& row : rows) {
        expectBothWays(row);
    }
}

TEST(TextEncoder, agreeWithThePublicTables) {
    for (const models::EncodingTable& table : models::encodingTables) {
        SCOPED_TRACE(table.name);
        std::u16string text;
        std::string bytes;
        for (char code = 0x20; code < 0x7F; ++code) {
            text += static_cast<char16_t>(code);
            bytes += code;
        }
        int byte = table.firstByte;
        for (const char16_t unit : models::unitsOf(table)) {
            if (unit != 0) {
                text += unit;
                bytes += static_cast<char>(byte);
            }
            ++byte;
        }
        EXPECT_EQ(byte, 256);
        expectBothWays({NSStringEncoding{table.encoding}, text, bytes});
    }
}

TEST(TextEncoder, loseNothing) {
    for (const NSStringEncoding encoding : otherEncodings) {
        expectNoBytes(encoding, u"a\U0001F600");
        expectNoBytes(encoding, u"\u0E01\u05D0");
        expectNoBytes(encoding, u"a\xD800");
        expectNoBytes(encoding, u"\uFFFD");
    }
    expectNoBytes(NSISOLatin1StringEncoding, u"\u20AC");
    expectNoBytes(NSISOLatin1StringEncoding, u"e\u0301");
    expectNoBytes(NSISOLatin1StringEncoding, u"\u2019");
    expectNoBytes(NSISOLatin2StringEncoding, u"\u00F1");
    expectNoBytes(NSWindowsCP1252StringEncoding, u"\u0080");
    expectNoBytes(NSWindowsCP1252StringEncoding, u"\uFF21");
    expectNoBytes(NSWindowsCP1251StringEncoding, u"\u00E9");
    expectNoBytes(NSMacOSRomanStringEncoding, u"\u0160");
    expectNoBytes(isoLatin9, u"\u00A4");
    expectNoBytes(koi8, u"\u00E9");
}

TEST(TextEncoder, writeJapanese) {
    const std::u16string name = u"\u65E5\u672C\u8A9E";
    const Row rows[] = {
        {NSJapaneseEUCStringEncoding, name, "\xC6\xFC\xCB\xDC\xB8\xEC"},
        {NSShiftJISStringEncoding, name, "\x93\xFA\x96\x7B\x8C\xEA"},
        {NSStringEncoding(0x80000A01), name, "\x93\xFA\x96\x7B\x8C\xEA"},
        {NSISO2022JPStringEncoding, name, "\x1B$BF|K\\8l\x1B(B"},
        {NSJapaneseEUCStringEncoding, u"A\u6F22z", "A\xB4\xC1z"},
        {NSShiftJISStringEncoding, u"A\u6F22z", "A\x8A\xBFz"},
        {NSISO2022JPStringEncoding, u"A\u6F22z", "A\x1B$B4A\x1B(Bz"},
        {NSJapaneseEUCStringEncoding, u"\u3042\u30A2", "\xA4\xA2\xA5\xA2"},
        {NSShiftJISStringEncoding, u"\u3042\u30A2", "\x82\xA0\x83\x41"},
        {NSISO2022JPStringEncoding, u"\u3042\u30A2", "\x1B$B$\"%\"\x1B(B"},
        {NSJapaneseEUCStringEncoding, u"\uFF71", "\x8E\xB1"},
        {NSShiftJISStringEncoding, u"\uFF71", "\xB1"},
        {NSShiftJISStringEncoding, u"\u8868", "\x95\x5C"},
        {NSJapaneseEUCStringEncoding, u"\u00A7\u03B1", "\xA1\xF8\xA6\xC1"},
        {NSJapaneseEUCStringEncoding, u"", ""},
        {NSShiftJISStringEncoding, u"", ""},
        {NSISO2022JPStringEncoding, u"", ""},
        {NSISO2022JPStringEncoding, u"plain", "plain"},
    };
    for (const Row& row : rows) {
        expectBothWays(row);
    }
}

TEST(TextEncoder, haveNothingUnderUnknownNumbers) {
    for (const std::uint32_t number : {0u, 16u, 17u, 19u, 20u, 22u, 29u, 31u, 4711u, 0x7FFFFFFFu,
                                       0x80000000u + 0x7777u, 0x8000020Cu, 0x80000211u, 0xFFFFFFFFu}) {
        const NSStringEncoding encoding{number};
        EXPECT_EQ(encoded(u"a", encoding), none) << std::hex << number;
        EXPECT_EQ(encoded(u"", encoding), none) << std::hex << number;
        EXPECT_EQ(decoded("a", encoding), none) << std::hex << number;
        EXPECT_EQ(NSString("a").lengthOfBytesUsingEncoding(encoding), 0u) << std::hex << number;
    }
}

TEST(TextEncoder, convertLongTexts) {
    std::u16string text;
    std::string latin;
    for (int round = 0; round < 100000; ++round) {
        text += round % 7 == 0 ? u'\u00E9' : u'x';
        latin += round % 7 == 0 ? '\xE9' : 'x';
    }
    EXPECT_TRUE(encoded(text, NSISOLatin1StringEncoding) == latin);
    EXPECT_TRUE(encoded(text, NSWindowsCP1252StringEncoding) == latin);
    EXPECT_TRUE(decodedString(latin, NSISOLatin1StringEncoding).utf16() == text);
    text += u'\u20AC';
    EXPECT_EQ(encoded(text, NSISOLatin1StringEncoding), none);
    EXPECT_TRUE(encoded(text, NSWindowsCP1252StringEncoding) == latin + '\x80');
}

} // namespace
