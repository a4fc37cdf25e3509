// SPDX-License-Identifier: MIT
// Texts written in every encoding, and read back: examples, the public tables, and what does not fit.
#include "tests/models/Utf.h"
#include "tests/objects/EncodingTesting.h"

using namespace ZQFoundation;
using namespace encodingtesting;
using namespace std::string_literals;

namespace {

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
        {encoding, u"\u00E9", "\\351"},
        {encoding, u"\u0080\u00A0\u00FF", "\\200\\240\\377"},
        {encoding, u"\u20AC\uABCD", "\\u20ac\\uabcd"},
        {encoding, u"\U0001F600", "\\ud83d\\ude00"},
        {encoding, u"\\", "\\\\"},
        {encoding, u"\\u20ac", "\\\\u20ac"},
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

/// The encodings of one byte for each character, each with characters that tell it from the others.
TEST(TextEncoder, writeTheExamples) {
    const Row rows[] = {
        {NSMacOSRomanStringEncoding, u"\u00E9\u20AC\u2206", "\x8E\xDB\xC6"},
        {NSNEXTSTEPStringEncoding, u"\u00E9\u00C6\u00A0", "\xDD\xE1\x80"},
        {NSSymbolStringEncoding, u"\u03B1\u2264\u221E1+", "a\xA3\xA5\x31+"},
        {NSStringEncoding(0x80000201), u"\u00A0\u00FF", "\xA0\xFF"},
        {NSStringEncoding(0x9), u"\u013D\u015A\u0164\u013E\u017A", "\xA5\xA6\xAB\xB5\xBC"},
        {NSStringEncoding(0xB), u"\u2116\u0411\u0414\u0432\u044F", "\xB9\xC1\xC4\xE2\xFF"},
        {NSStringEncoding(0xC), u"\u017D\u017E\u0178\u00F0\u00FF", "\x8E\x9E\x9F\xF0\xFF"},
        {NSStringEncoding(0xD), u"\u0385\u0386\u039B\u03AE\u03CE", "\xA1\xA2\xCB\xDE\xFE"},
        {NSStringEncoding(0xE), u"\u0178\u015E\u011F\u0131\u015F", "\x9F\xDE\xF0\xFD\xFE"},
        {NSStringEncoding(0xF), u"\u015A\u017A\u0104\u013D\u013E", "\x8C\x9F\xA5\xBC\xBE"},
        {NSStringEncoding(0x80000202), u"\u013D\u015A\u0164\u013E\u017A", "\xA5\xA6\xAB\xB5\xBC"},
        {NSStringEncoding(0x80000203), u"\u0127\u0125\u011F\u011D\u015D", "\xB1\xB6\xBB\xF8\xFE"},
        {NSStringEncoding(0x80000204), u"\u013C\u014A\u016A\u0169\u016B", "\xB6\xBD\xDE\xFD\xFE"},
        {NSStringEncoding(0x80000205), u"\u040C\u0417\u043A\u0459\u045F", "\xAC\xB7\xDA\xF9\xFF"},
        {NSStringEncoding(0x80000206), u"\u0638\u0647\u064A\u064D\u0650", "\xD8\xE7\xEA\xED\xF0"},
        {NSStringEncoding(0x80000207), u"\u2018\u20AF\u037A\u0385\u0386", "\xA1\xA5\xAA\xB5\xB6"},
        {NSStringEncoding(0x80000208), u"\u00F7\u2017\u05E0\u05E1\u05EA", "\xBA\xDF\xF0\xF1\xFA"},
        {NSStringEncoding(0x80000209), u"\u0080\u011E\u0131\u015F", "\x80\xD0\xFD\xFE"},
        {NSStringEncoding(0x8000020A), u"\u012B\u0167\u017E\u0168\u0138", "\xB4\xBB\xBC\xD7\xFF"},
        {NSStringEncoding(0x8000020B), u"\u0080\u0E04\u0E17\u0E2B\u0E46", "\x80\xA4\xB7\xCB\xE6"},
        {NSStringEncoding(0x8000020D), u"\u201D\u201C\u0141\u012F\u2019", "\xA1\xB4\xD9\xE1\xFF"},
        {NSStringEncoding(0x8000020E), u"\u1E0B\u0120\u1E40\u0174\u0177", "\xAB\xB2\xB4\xD0\xFE"},
        {NSStringEncoding(0x8000020F), u"\u0160\u0161\u017E\u0178\u00FE", "\xA6\xA8\xB8\xBE\xFE"},
        {NSStringEncoding(0x80000210), u"\u0105\u010C\u021A\u0119\u021B", "\xA2\xB2\xDE\xFD\xFE"},
        {NSStringEncoding(0x80000400), u"\u00EC\u00FF\u00DC\u00A2\u00A5", "\x8D\x98\x9A\x9B\x9D"},
        {NSStringEncoding(0x80000405), u"\u03A0\u03BF\u03AD\u0389\u03AB", "\x8F\xA6\xE2\xEC\xF5"},
        {NSStringEncoding(0x80000406), u"\u014D\u0116\u0161\u016B\u0145", "\x93\xB8\xD5\xD7\xEE"},
        {NSStringEncoding(0x80000410), u"\u00F0\u00D0\u0131\u00DE\u2017", "\xD0\xD1\xD5\xE8\xF2"},
        {NSStringEncoding(0x80000412), u"\u010C\u0102\u010F\u016E\u0159", "\xAC\xC6\xD4\xDE\xFD"},
        {NSStringEncoding(0x80000413), u"\u0406\u0434\u042F\u0448\u0427", "\x8B\xA6\xE0\xF5\xFC"},
        {NSStringEncoding(0x80000414), u"\u0131\u0130\u011E\u00BA\u00FF", "\x8D\x98\xA6\xD0\xED"},
        {NSStringEncoding(0x80000415), u"\u00C3\u00C0\u00C8\u00D3\u00D2", "\x8E\x91\x92\x9F\xA9"},
        {NSStringEncoding(0x80000416), u"\u00FE\u00DD\u00FD\u00D3\u00DA", "\x95\x97\x98\xA6\xA7"},
        {NSStringEncoding(0x80000417), u"\u05D3\u05DF\u05E4\u05E7\u05EA", "\x83\x8F\x94\x97\x9A"},
        {NSStringEncoding(0x80000418), u"\u00B6\u00CA\u00A4\u00B3\u00CE", "\x86\x92\x98\xA6\xA8"},
        {NSStringEncoding(0x80000419), u"\u2248\u0664\u0669\uFEDF\uFEF1", "\x96\xB4\xB9\xE4\xFD"},
        {NSStringEncoding(0x8000041A), u"\u00EC\u00FF\u00BA\u2310\u00A4", "\x8D\x98\xA7\xA9\xAF"},
        {NSStringEncoding(0x8000041B), u"\u0416\u041D\u042B\u0432\u045E", "\x86\x8D\x9B\xA2\xF7"},
        {NSStringEncoding(0x8000041C), u"\u039D\u03A9\u03C1\u03C9\u03CE", "\xB8\xD5\xEB\xFA\xFD"},
        {NSStringEncoding(0x8000041D), u"\u2014\u0E04\u0E17\u0E2B\u0E46", "\x97\xA4\xB7\xCB\xE6"},
        {NSStringEncoding(0x80000500), u"\u017D\u017E\u0178\u00F0\u00FF", "\x8E\x9E\x9F\xF0\xFF"},
        {NSStringEncoding(0x80000501), u"\u015A\u017A\u0104\u013D\u013E", "\x8C\x9F\xA5\xBC\xBE"},
        {NSStringEncoding(0x80000502), u"\u2116\u0411\u0414\u0432\u044F", "\xB9\xC1\xC4\xE2\xFF"},
        {NSStringEncoding(0x80000503), u"\u0385\u0386\u039B\u03AE\u03CE", "\xA1\xA2\xCB\xDE\xFE"},
        {NSStringEncoding(0x80000504), u"\u0178\u015E\u011F\u0131\u015F", "\x9F\xDE\xF0\xFD\xFE"},
        {NSStringEncoding(0x80000505), u"\u05B2\u05BD\u05F1\u05F2\u05F3", "\xC2\xCD\xD5\xD6\xD7"},
        {NSStringEncoding(0x80000506), u"\u06AF\u06BE\u063A\u064A\u06D2", "\x90\xAA\xDB\xED\xFF"},
        {NSStringEncoding(0x80000507), u"\u00A8\u02C7\u00B8\u00AF\u02DB", "\x8D\x8E\x8F\x9D\x9E"},
        {NSStringEncoding(0x80000508), u"\u01A0\u01AF\u0323\u01A1\u01B0", "\xD5\xDD\xF2\xF5\xFD"},
        {NSStringEncoding(0x80000A02), u"\u2553\u2562\u2564\u2565\u256B", "\xA4\xB4\xB6\xB7\xBD"},
        {NSStringEncoding(0x80000A08), u"\u0456\u0457\u0404\u0406\u0490", "\xA6\xA7\xB4\xB6\xBD"},
    };
    for (const Row& row : rows) {
        expectBothWays(row);
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
