// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundation/objects/NSCharacterSet.h"
#include "tests/objects/RandomTexts.h"
#include "tests/objects/TestValues.h"

using namespace ZQFoundation;
using namespace std::string_literals;
using RandomTexts::stringOf;
using TestValues::utf8Of;

namespace {

const std::string alphanumerics = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
const std::string pathMembers = alphanumerics + "!$&'()*+,-./:=@_~";
const std::string queryMembers = alphanumerics + "!$&'()*+,-./:;=?@_~";
const std::string componentMembers = alphanumerics + "!'()*-._~";
const std::string componentExceptions = ":/?@$&+,;=# ";

std::string escapeOf(unsigned byte) {
    const std::string digits = "0123456789ABCDEF";
    return {'%', digits[byte >> 4], digits[byte & 15]};
}

// The plain model: the bytes of UTF-8 one by one.

std::string utf8Bytes(char32_t code) {
    const auto byte = [](char32_t value) {
        return static_cast<char>(value);
    };
    if (code < 0x80) {
        return {byte(code)};
    }
    if (code < 0x800) {
        return {byte(0xC0 | code >> 6), byte(0x80 | (code & 63))};
    }
    if (code < 0x10000) {
        return {byte(0xE0 | code >> 12), byte(0x80 | (code >> 6 & 63)), byte(0x80 | (code & 63))};
    }
    return {byte(0xF0 | code >> 18), byte(0x80 | (code >> 12 & 63)), byte(0x80 | (code >> 6 & 63)),
            byte(0x80 | (code & 63))};
}

std::string modelEncoded(const std::string& bytes, const std::string& kept) {
    std::string text;
    for (const char character : bytes) {
        const bool stays = character != '\0' && kept.find(character) != std::string::npos;
        text += stays ? std::string(1, character) : escapeOf(static_cast<unsigned char>(character));
    }
    return text;
}

NSString stringOfCode(char32_t code) {
    if (code < 0x10000) {
        return stringOf(std::u16string{static_cast<char16_t>(code)});
    }
    return stringOf(std::u16string{static_cast<char16_t>(0xD7C0 + (code >> 10)),
                                   static_cast<char16_t>(0xDC00 + (code & 1023))});
}

/// How many bytes the well-formed sequence at the place has; 0 for none.
std::size_t sequenceAt(const std::string& bytes, std::size_t place) {
    const auto at = [&](std::size_t index) -> unsigned {
        return place + index < bytes.size() ? static_cast<unsigned char>(bytes[place + index]) : 0u;
    };
    const auto continues = [&](std::size_t index) {
        return at(index) >= 0x80 && at(index) <= 0xBF;
    };
    const unsigned first = at(0);
    if (first < 0x80) {
        return 1;
    }
    if (first >= 0xC2 && first <= 0xDF) {
        return continues(1) ? 2 : 0;
    }
    if (first >= 0xE0 && first <= 0xEF) {
        const bool isOverlong = first == 0xE0 && at(1) < 0xA0;
        const bool isSurrogate = first == 0xED && at(1) > 0x9F;
        return continues(1) && continues(2) && !isOverlong && !isSurrogate ? 3 : 0;
    }
    if (first >= 0xF0 && first <= 0xF4) {
        const bool isOutside = (first == 0xF0 && at(1) < 0x90) || (first == 0xF4 && at(1) > 0x8F);
        return continues(1) && continues(2) && continues(3) && !isOutside ? 4 : 0;
    }
    return 0;
}

/// What a text decodes to; "(nil)" when it does not.
std::string modelDecoded(const std::string& text) {
    const std::string digits = "0123456789ABCDEF0123456789abcdef";
    const auto digitAt = [&](std::size_t place) {
        return place < text.size() && text[place] != '\0' ? digits.find(text[place]) : std::string::npos;
    };
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            bytes += text[i];
            continue;
        }
        if (digitAt(i + 1) == std::string::npos || digitAt(i + 2) == std::string::npos) {
            return "(nil)";
        }
        bytes += static_cast<char>(digitAt(i + 1) % 16 * 16 + digitAt(i + 2) % 16);
        i += 2;
    }
    for (std::size_t place = 0; place < bytes.size();) {
        const std::size_t size = sequenceAt(bytes, place);
        if (size == 0) {
            return "(nil)";
        }
        place += size;
    }
    return bytes;
}

std::string decoded(const std::string& text) { return utf8Of(NSString(text).urlDecodedString()); }

struct Encoder {
    const char* name;
    NSString (NSString::*encode)() const;
    const std::string& members;
};

const Encoder encoders[] = {
    {"component", &NSString::urlEncodedString, componentMembers},
    {"path", &NSString::urlPathEncodedString, pathMembers},
    {"query", &NSString::urlQueryEncodedString, queryMembers},
};

std::string encoded(const Encoder& encoder, const NSString& text) { return utf8Of((text.*encoder.encode)()); }

// Sets

TEST(PercentEncodingFromFacts, setsHoldExactlyTheirCharacters) {
    const NSCharacterSet path = NSCharacterSet::URLPathAllowedCharacterSet();
    const NSCharacterSet query = NSCharacterSet::URLQueryAllowedCharacterSet();
    for (char32_t code = 0; code <= 0x10FFFF; ++code) {
        const bool isAscii = code != 0 && code < 0x80;
        const bool inPath = isAscii && pathMembers.find(static_cast<char>(code)) != std::string::npos;
        const bool inQuery = isAscii && queryMembers.find(static_cast<char>(code)) != std::string::npos;
        ASSERT_EQ(path.longCharacterIsMember(code), inPath) << std::hex << static_cast<unsigned>(code);
        ASSERT_EQ(query.longCharacterIsMember(code), inQuery) << std::hex << static_cast<unsigned>(code);
    }
}

TEST(PercentEncodingFromFacts, aSetDecidesOnlyAboutAscii) {
    const NSCharacterSet set = NSCharacterSet::characterSetWithCharactersInString(u"a%\u00E9\u20AC");
    EXPECT_EQ(utf8Of(NSString(u"ab%\u00E9\u20AC").stringByAddingPercentEncodingWithAllowedCharacters(set)),
              "a%62%%C3%A9%E2%82%AC");
}

TEST(PercentEncodingFromFacts, setsOfNothingAndOfAllKeepNothingAndAscii) {
    const NSCharacterSet none = NSCharacterSet::emptyCharacterSet();
    std::string ascii;
    std::string escapes;
    for (unsigned code = 0; code < 128; ++code) {
        ascii += static_cast<char>(code);
        escapes += escapeOf(code);
    }
    const NSString text(ascii + "\u00E9");
    EXPECT_EQ(utf8Of(text.stringByAddingPercentEncodingWithAllowedCharacters(none)), escapes + "%C3%A9");
    EXPECT_EQ(utf8Of(text.stringByAddingPercentEncodingWithAllowedCharacters(none.invertedSet())),
              ascii + "%C3%A9");
}

// Encoding

TEST(PercentEncodingFromFacts, encodesTheExamples) {
    const struct {
        const char* text;
        const char* component;
        const char* path;
        const char* query;
    } rows[] = {
        {"a b/c?d=\u00E9", "a%20b%2Fc%3Fd%3D%C3%A9", "a%20b/c%3Fd=%C3%A9", "a%20b/c?d=%C3%A9"},
        {"a+b&c", "a%2Bb%26c", "a+b&c", "a+b&c"},
        {"~x_y.z", "~x_y.z", "~x_y.z", "~x_y.z"},
        {"/a b", "%2Fa%20b", "/a%20b", "/a%20b"},
        {"q=a b&x", "q%3Da%20b%26x", "q=a%20b&x", "q=a%20b&x"},
        {"", "", "", ""},
        {"%", "%25", "%25", "%25"},
        {"%20", "%2520", "%2520", "%2520"},
        {"100%", "100%25", "100%25", "100%25"},
        {"+", "%2B", "+", "+"},
        {";", "%3B", "%3B", ";"},
        {"?", "%3F", "%3F", "?"},
        {"#", "%23", "%23", "%23"},
        {"[::1]", "%5B%3A%3A1%5D", "%5B::1%5D", "%5B::1%5D"},
        {"!'()*-._~", "!'()*-._~", "!'()*-._~", "!'()*-._~"},
        {"$&+,=:@/", "%24%26%2B%2C%3D%3A%40%2F", "$&+,=:@/", "$&+,=:@/"},
        {"\"<>\\^`{|}", "%22%3C%3E%5C%5E%60%7B%7C%7D", "%22%3C%3E%5C%5E%60%7B%7C%7D",
         "%22%3C%3E%5C%5E%60%7B%7C%7D"},
        {"a\nb\tc\x7F", "a%0Ab%09c%7F", "a%0Ab%09c%7F", "a%0Ab%09c%7F"},
        {"\u20AC", "%E2%82%AC", "%E2%82%AC", "%E2%82%AC"},
        {"\U0001F600", "%F0%9F%98%80", "%F0%9F%98%80", "%F0%9F%98%80"},
        {"e\u0301", "e%CC%81", "e%CC%81", "e%CC%81"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(utf8Of(NSString(row.text).urlEncodedString()), row.component);
        EXPECT_EQ(utf8Of(NSString(row.text).urlPathEncodedString()), row.path);
        EXPECT_EQ(utf8Of(NSString(row.text).urlQueryEncodedString()), row.query);
        EXPECT_EQ(utf8Of(NSString(row.text).urlEncodedStringWithExceptions(componentExceptions)),
                  row.component);
    }
}

TEST(PercentEncodingFromFacts, encodesEachByteOfAsciiAsItsSetSays) {
    for (const Encoder& encoder : encoders) {
        for (unsigned code = 0; code < 128; ++code) {
            const bool stays =
                code != 0 && encoder.members.find(static_cast<char>(code)) != std::string::npos;
            EXPECT_EQ(encoded(encoder, stringOfCode(code)),
                      stays ? std::string(1, static_cast<char>(code)) : escapeOf(code))
                << encoder.name << " " << code;
        }
    }
}

TEST(PercentEncodingFromFacts, encodesEveryCharacterAsTheModelDoes) {
    for (const Encoder& encoder : encoders) {
        for (char32_t code = 0; code <= 0x10FFFF; code += code < 0x3000 ? 1 : 97) {
            if (code >= 0xD800 && code < 0xE000) {
                continue;
            }
            ASSERT_EQ(encoded(encoder, stringOfCode(code)), modelEncoded(utf8Bytes(code), encoder.members))
                << encoder.name << " " << std::hex << static_cast<unsigned>(code);
        }
    }
}

TEST(PercentEncodingFromFacts, encodesRandomTextsAsTheModelDoes) {
    RandomTexts::Numbers numbers(21);
    for (int round = 0; round < 5000; ++round) {
        std::string bytes;
        for (std::size_t count = numbers.below(60); count != 0; --count) {
            const char32_t ends[] = {0x80, 0x80, 0x800, 0xD800};
            bytes += utf8Bytes(static_cast<char32_t>(numbers.below(ends[numbers.below(4)])));
        }
        const NSString text = NSString::stringWithUTF8Bytes(bytes.data(), bytes.size());
        for (const Encoder& encoder : encoders) {
            const std::string expected = modelEncoded(bytes, encoder.members);
            ASSERT_EQ(encoded(encoder, text), expected) << encoder.name;
            ASSERT_EQ(decoded(expected), bytes);
        }
    }
}

TEST(PercentEncodingFromFacts, exceptionsAreEncodedAlthoughThePathAllowsThem) {
    const struct {
        const char* exceptions;
        const char* result;
    } rows[] = {
        {"", "aZ9/:+~%3B%3F%20%25"},
        {"a", "%61Z9/:+~%3B%3F%20%25"},
        {"Z9", "a%5A%39/:+~%3B%3F%20%25"},
        {"~~~", "aZ9/:+%7E%3B%3F%20%25"},
        {";? %", "aZ9/:+~%3B%3F%20%25"},
        {"/:+", "aZ9%2F%3A%2B~%3B%3F%20%25"},
        {"\u00E9", "aZ9/:+~%3B%3F%20%25"},
        {"A", "aZ9/:+~%3B%3F%20%25"},
        {"aZ9/:+~", "%61%5A%39%2F%3A%2B%7E%3B%3F%20%25"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(utf8Of(NSString("aZ9/:+~;? %").urlEncodedStringWithExceptions(row.exceptions)), row.result)
            << row.exceptions;
    }
}

TEST(PercentEncodingFromFacts, exceptionsOfEachCharacterTakeAwayThatCharacterAlone) {
    for (unsigned code = 1; code < 128; ++code) {
        const std::string exception(1, static_cast<char>(code));
        std::string kept = pathMembers;
        std::erase(kept, exception[0]);
        std::string all;
        for (unsigned other = 0; other < 128; ++other) {
            all += static_cast<char>(other);
        }
        ASSERT_EQ(utf8Of(NSString(all).urlEncodedStringWithExceptions(exception)), modelEncoded(all, kept))
            << code;
    }
}

TEST(PercentEncodingFromFacts, isNilForAnUnpairedSurrogate) {
    for (const std::u16string& units :
         {u"\xD800"s, u"\xDC00"s, u"a\xD83D"s, u"\xDE00\xD83D"s, u"\xD83D\xD83D\xDE00"s, u"a b\xDFFFz"s}) {
        const NSString text = stringOf(units);
        SCOPED_TRACE(RandomTexts::shownUnits(units));
        EXPECT_FALSE(text.urlEncodedString());
        EXPECT_FALSE(text.urlPathEncodedString());
        EXPECT_FALSE(text.urlQueryEncodedString());
        EXPECT_FALSE(text.urlEncodedStringWithExceptions("a"));
        EXPECT_FALSE(text.stringByAddingPercentEncodingWithAllowedCharacters(
            NSCharacterSet::URLPathAllowedCharacterSet()));
    }
}

TEST(PercentEncodingFromFacts, isNilForNil) {
    EXPECT_FALSE(NSString().urlEncodedString());
    EXPECT_FALSE(NSString().urlPathEncodedString());
    EXPECT_FALSE(NSString().urlQueryEncodedString());
    EXPECT_FALSE(NSString().urlEncodedStringWithExceptions("a"));
    EXPECT_FALSE(NSString().urlDecodedString());
}

// Decoding

TEST(PercentEncodingFromFacts, decodesTheExamples) {
    const struct {
        const char* text;
        const char* result;
    } rows[] = {
        {"", ""},
        {"a%20b", "a b"},
        {"a+b", "a+b"},
        {"100%25", "100%"},
        {"%2525", "%25"},
        {"%C3%A9", "\u00E9"},
        {"%c3%a9", "\u00E9"},
        {"%c3%A9", "\u00E9"},
        {"\u00E9", "\u00E9"},
        {"\u00E9%20\u20AC", "\u00E9 \u20AC"},
        {"%F0%9F%98%80", "\U0001F600"},
        {"\U0001F600%41", "\U0001F600A"},
        {"%EF%BB%BFa", "\uFEFFa"},
        {"%41%42%43", "ABC"},
        {"%7f%01", "\x7F\x01"},
        {"#?&=;/", "#?&=;/"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(decoded(row.text), row.result) << row.text;
        EXPECT_EQ(modelDecoded(row.text), row.result) << "the model: " << row.text;
    }
}

TEST(PercentEncodingFromFacts, decodesAZero) {
    EXPECT_EQ(NSString("a%00b").urlDecodedString().utf16(), u"a\0b"s);
    EXPECT_EQ(NSString("%00").urlDecodedString().utf16(), u"\0"s);
}

TEST(PercentEncodingFromFacts, decodesOnlyOnce) {
    EXPECT_EQ(decoded("%2541"), "%41");
    EXPECT_EQ(decoded("%25zz"), "%zz");
    EXPECT_EQ(decoded("%25%32%30"), "%20");
}

TEST(PercentEncodingFromFacts, isNilForAnEscapeWithoutTwoDigits) {
    for (const char* text : {"%",      "100%",   "a%2",   "%2",       "%g0",           "%0g",      "%zz",
                             "%%",     "%%41",   "%4%41", "% 20",     "%-1",           "%+1",      "%0x41",
                             "%u20AC", "a%20b%", "%20%2", "%2\u0660", "%\uFF12\uFF10", "%2\u00E9", "%:0",
                             "%@0",    "%G0",    "%`0",   "%/0"}) {
        EXPECT_EQ(decoded(text), "(nil)") << text;
        EXPECT_EQ(modelDecoded(text), "(nil)") << "the model: " << text;
    }
    EXPECT_FALSE(stringOf(u"%2\0"s).urlDecodedString());
    EXPECT_FALSE(stringOf(u"%\x0132\x0130"s).urlDecodedString()) << "their low bytes are digits";
}

TEST(PercentEncodingFromFacts, isNilForSignsWithoutDigitsBehindALongText) {
    for (const std::size_t length : {1u, 100u, 3000u, 300000u}) {
        for (const std::size_t signs : {std::size_t{1}, length / 2, length, 3 * length}) {
            const NSString before(std::string(length, 'b'));
            EXPECT_EQ(decoded(std::string(length, 'a') + std::string(signs + 1, '%')), "(nil)");
            EXPECT_TRUE(before == std::string(length, 'b'));
        }
    }
}

TEST(PercentEncodingFromFacts, isNilForBytesThatAreNotWellFormed) {
    for (const char* text : {"%80",          "%BF",          "%C0%80",
                             "%C1%BF",       "%C3",          "%C3%28",
                             "a%C3b",        "%C3%C3%A9",    "%E0%80%80",
                             "%E0%9F%BF",    "%E2%82",       "%E2%82x",
                             "%ED%A0%80",    "%ED%BF%BF",    "%ED%A0%BD%ED%B8%80",
                             "%F0%80%80%80", "%F0%8F%BF%BF", "%F0%9F%98",
                             "%F4%90%80%80", "%F5%80%80%80", "%F8%88%80%80%80",
                             "%FE",          "%FF",          "%C3\u00E9",
                             "\u00E9%A9",    "%E9",          "%C3%A9%A9"}) {
        EXPECT_EQ(decoded(text), "(nil)") << text;
        EXPECT_EQ(modelDecoded(text), "(nil)") << "the model: " << text;
    }
}

TEST(PercentEncodingFromFacts, decodesEveryByteAndEveryPairAsTheModelDoes) {
    for (unsigned first = 0; first < 256; ++first) {
        ASSERT_EQ(decoded(escapeOf(first)), modelDecoded(escapeOf(first)));
        for (unsigned second = 0; second < 256; ++second) {
            const std::string text = escapeOf(first) + escapeOf(second);
            ASSERT_EQ(decoded(text), modelDecoded(text)) << text;
        }
    }
}

TEST(PercentEncodingFromFacts, decodesLongerSequencesAsTheModelDoes) {
    const unsigned places[] = {0x00, 0x7F, 0x80, 0x8F, 0x90, 0x9F, 0xA0, 0xBF, 0xC0, 0xFF};
    for (unsigned first = 0xDF; first <= 0xF8; ++first) {
        for (const unsigned second : places) {
            for (const unsigned third : places) {
                const std::string text = escapeOf(first) + escapeOf(second) + escapeOf(third);
                ASSERT_EQ(decoded(text), modelDecoded(text)) << text;
                for (const unsigned fourth : places) {
                    ASSERT_EQ(decoded(text + escapeOf(fourth)), modelDecoded(text + escapeOf(fourth)))
                        << text;
                }
            }
        }
    }
}

TEST(PercentEncodingFromFacts, decodesRandomTextsAsTheModelDoes) {
    RandomTexts::Numbers numbers(22);
    const std::vector<std::string> words = {"%",   "2",      "0",   "%41", "a",   "%C3",
                                            "%a9", "\u00E9", "%E2", "%82", "%AC", "%f0",
                                            "%9F", "+",      "%98", "%80", "%25", "\u20AC"};
    int texts = 0;
    for (int round = 0; round < 50000; ++round) {
        std::string text;
        for (std::size_t count = numbers.below(8); count != 0; --count) {
            text += words[numbers.below(words.size())];
        }
        const std::string expected = modelDecoded(text);
        ASSERT_EQ(decoded(text), expected) << text;
        texts += expected != "(nil)" && !expected.empty() ? 1 : 0;
    }
    EXPECT_GT(texts, 1000);
}

TEST(PercentEncodingFromFacts, decodesWhatItEncoded) {
    std::u16string all;
    for (char32_t unit = 0; unit < 0xFFFF; unit += unit < 0x1000 ? 1 : 31) {
        if (unit < 0xD800 || unit >= 0xE000) {
            all += static_cast<char16_t>(unit);
        }
    }
    for (const Encoder& encoder : encoders) {
        EXPECT_TRUE((stringOf(all).*encoder.encode)().urlDecodedString() == stringOf(all)) << encoder.name;
    }
}

} // namespace
