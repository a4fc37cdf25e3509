// SPDX-License-Identifier: MIT
#include "encoding/Base64.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/objects/NSData.h"
#include "tests/objects/RandomTexts.h"
#include "tests/objects/TestValues.h"

using namespace ZQFoundation;
using namespace std::string_literals;
using TestValues::utf8Of;

namespace {

const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::uint64_t untouched = 0x5A5A5A5A5A5A5A5A;
constexpr std::uint64_t largest = UINT64_MAX;
constexpr std::size_t bytesOfALine = 48;

/// What a call of the decoder gives: the length that it tells, and that many bytes unless it is the largest.
struct Decoded {
    std::uint64_t length = untouched;
    std::string bytes;
    bool operator==(const Decoded&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Decoded& decoded) {
    return out << decoded.length << " " << testing::PrintToString(decoded.bytes);
}

Decoded decoded(const char* text, std::int64_t length) {
    Decoded result;
    void* const bytes = NewBase64Decode(text, length, &result.length);
    EXPECT_NE(result.length, untouched);
    if (result.length != largest && result.length != 0) {
        EXPECT_NE(bytes, nullptr);
        result.bytes.assign(static_cast<const char*>(bytes), static_cast<std::size_t>(result.length));
    }
    std::free(bytes);
    return result;
}

/// From a copy that ends with its last byte, so that a look beyond it is found.
Decoded decoded(const std::string& text) {
    const std::vector<char> exact(text.begin(), text.end());
    return decoded(exact.empty() ? "" : exact.data(), static_cast<std::int64_t>(exact.size()));
}

Decoded spells(const std::string& bytes) { return {bytes.size(), bytes}; }

std::string encoded(const std::string& bytes, int separateLines) {
    const std::vector<char> exact(bytes.begin(), bytes.end());
    std::uint64_t length = untouched;
    char* const text =
        NewBase64Encode(exact.empty() ? "" : exact.data(), exact.size(), separateLines, &length);
    if (text == nullptr) {
        ADD_FAILURE() << "no text";
        return "(null)";
    }
    std::string result(text, static_cast<std::size_t>(length));
    EXPECT_EQ(text[length], '\0');
    EXPECT_EQ(std::string_view(text).size(), length) << "the zero byte is the first one";
    std::free(text);
    return result;
}

// The plain models: one step at a time, one byte at a time.

char letterOf(unsigned value) { return alphabet[value]; }

std::string modelEncoded(const std::string& bytes, bool separateLines) {
    const auto at = [&](std::size_t index) {
        return static_cast<unsigned char>(bytes[index]);
    };
    const std::size_t line = separateLines ? bytesOfALine : bytes.size();
    std::string text;
    std::size_t i = 0;
    for (std::size_t lineEnd = line;; lineEnd += line) {
        const std::size_t end = lineEnd < bytes.size() ? lineEnd : bytes.size();
        for (; i + 2 < end; i += 3) {
            const unsigned b0 = at(i);
            const unsigned b1 = at(i + 1);
            const unsigned b2 = at(i + 2);
            text += letterOf(b0 >> 2);
            text += letterOf((b0 & 3) << 4 | b1 >> 4);
            text += letterOf((b1 & 15) << 2 | b2 >> 6);
            text += letterOf(b2 & 63);
        }
        if (lineEnd >= bytes.size()) {
            break;
        }
        text += "\r\n";
    }
    if (bytes.size() - i == 2) {
        text += letterOf(at(i) >> 2);
        text += letterOf((at(i) & 3u) << 4 | at(i + 1) >> 4);
        text += letterOf((at(i + 1) & 15u) << 2);
        text += '=';
    } else if (bytes.size() - i == 1) {
        text += letterOf(at(i) >> 2);
        text += letterOf((at(i) & 3u) << 4);
        text += "==";
    }
    return text;
}

Decoded modelDecoded(const std::string& text) {
    std::string bytes((text.size() + 3) / 4 * 3, '?');
    std::int64_t j = 0;
    std::size_t i = 0;
    while (i < text.size()) {
        std::vector<unsigned> values;
        while (i < text.size() && values.size() < 4) {
            const std::size_t value = text[i] == '\0' ? std::string::npos : alphabet.find(text[i]);
            if (value != std::string::npos) {
                values.push_back(static_cast<unsigned>(value));
            }
            ++i;
        }
        const auto to = static_cast<std::size_t>(j);
        if (values.size() >= 2) {
            bytes[to] = static_cast<char>(values[0] << 2 | values[1] >> 4);
        }
        if (values.size() >= 3) {
            bytes[to + 1] = static_cast<char>(values[1] << 4 | values[2] >> 2);
        }
        if (values.size() >= 4) {
            bytes[to + 2] = static_cast<char>(values[2] << 6 | values[3]);
        }
        j += static_cast<std::int64_t>(values.size()) - 1;
    }
    return {static_cast<std::uint64_t>(j), j < 0 ? "" : bytes.substr(0, static_cast<std::size_t>(j))};
}

/// All texts of at most five characters of "AB=", line feed, blank and "-".
template <class Body>
void forEverySmallText(const Body& body) {
    std::vector<std::string> texts{""};
    for (std::size_t index = 0; index < texts.size(); ++index) {
        body(texts[index]);
        if (texts[index].size() < 5) {
            for (const char character : "AB=\n -"s) {
                texts.push_back(texts[index] + character);
            }
        }
    }
    ASSERT_EQ(texts.size(), 1u + 6 + 36 + 216 + 1296 + 7776);
}

std::string randomBytes(RandomTexts::Numbers& numbers, std::size_t length) {
    std::string bytes(length, '\0');
    for (char& byte : bytes) {
        byte = static_cast<char>(numbers.below(256));
    }
    return bytes;
}

NSData dataOf(const std::string& bytes) { return NSData::dataWithBytes_length(bytes.data(), bytes.size()); }

/// The bytes of the data, told apart from none when it is nil.
std::string bytesOf(const NSData& data) {
    return data ? std::string(reinterpret_cast<const char*>(data.bytes()), data.length()) : "(nil)";
}

// Encoding

TEST(Base64FromFacts, encodesTheStandardExamples) {
    const struct {
        const char* bytes;
        const char* text;
    } rows[] = {
        {"", ""},
        {"f", "Zg=="},
        {"fo", "Zm8="},
        {"foo", "Zm9v"},
        {"foob", "Zm9vYg=="},
        {"fooba", "Zm9vYmE="},
        {"foobar", "Zm9vYmFy"},
        {"M", "TQ=="},
        {"Ma", "TWE="},
        {"Man", "TWFu"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.bytes);
        EXPECT_EQ(encoded(row.bytes, 0), row.text);
        EXPECT_EQ(encoded(row.bytes, 1), row.text);
        EXPECT_EQ(decoded(row.text), spells(row.bytes));
    }
}

TEST(Base64FromFacts, encodesNothingAsAnEmptyTextWithItsZero) {
    for (const int separateLines : {0, 1}) {
        std::uint64_t length = untouched;
        char* const text = NewBase64Encode("", 0, separateLines, &length);
        ASSERT_NE(text, nullptr);
        EXPECT_EQ(length, 0u);
        EXPECT_EQ(text[0], '\0');
        std::free(text);
    }
}

TEST(Base64FromFacts, usesAllLettersOfTheAlphabetInOrder) {
    std::string bytes;
    for (unsigned first = 0; first < 64; first += 4) {
        const unsigned group = first << 18 | (first + 1) << 12 | (first + 2) << 6 | (first + 3);
        bytes += static_cast<char>(group >> 16);
        bytes += static_cast<char>(group >> 8);
        bytes += static_cast<char>(group);
    }
    EXPECT_EQ(encoded(bytes, 0), alphabet);
    EXPECT_EQ(decoded(alphabet), spells(bytes));
}

TEST(Base64FromFacts, breaksLinesOnlyBetweenLines) {
    const std::string line(64, 'A');
    const struct {
        std::size_t bytes;
        std::string text;
    } rows[] = {
        {47, std::string(63, 'A') + "="},
        {48, line},
        {49, line + "\r\nAA=="},
        {50, line + "\r\nAAA="},
        {51, line + "\r\nAAAA"},
        {95, line + "\r\n" + std::string(63, 'A') + "="},
        {96, line + "\r\n" + line},
        {97, line + "\r\n" + line + "\r\nAA=="},
        {144, line + "\r\n" + line + "\r\n" + line},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.bytes);
        EXPECT_EQ(encoded(std::string(row.bytes, '\0'), 1), row.text);
    }
}

TEST(Base64FromFacts, writesOneLineUnlessAskedForMore) {
    const std::string text = encoded(std::string(3000, '\0'), 0);
    EXPECT_EQ(text, std::string(4000, 'A'));
}

TEST(Base64FromFacts, takesEveryNumberButZeroForSeparateLines) {
    const std::string bytes(100, 'x');
    for (const int separateLines : {1, 2, -1, 256}) {
        EXPECT_EQ(encoded(bytes, separateLines), encoded(bytes, 1)) << separateLines;
    }
    EXPECT_NE(encoded(bytes, 0), encoded(bytes, 1));
}

TEST(Base64FromFacts, needsNoPlaceForALength) {
    char* const text = NewBase64Encode("Man", 3, 0, nullptr);
    ASSERT_NE(text, nullptr);
    EXPECT_STREQ(text, "TWFu");
    char* const bytes = static_cast<char*>(NewBase64Decode("TWFu", 4, nullptr));
    ASSERT_NE(bytes, nullptr);
    EXPECT_EQ(std::string(bytes, 3), "Man");
    std::free(bytes);
    std::free(text);
}

TEST(Base64FromFacts, encodesEveryPairOfBytesAsTheModelDoes) {
    for (unsigned first = 0; first < 256; ++first) {
        ASSERT_EQ(encoded(std::string(1, static_cast<char>(first)), 0),
                  modelEncoded(std::string(1, static_cast<char>(first)), false));
        for (unsigned second = 0; second < 256; ++second) {
            const std::string bytes{static_cast<char>(first), static_cast<char>(second)};
            ASSERT_EQ(encoded(bytes, 0), modelEncoded(bytes, false)) << first << " " << second;
        }
    }
}

TEST(Base64FromFacts, encodesEveryLengthAsTheModelDoes) {
    RandomTexts::Numbers numbers(1);
    for (std::size_t length = 0; length <= 700; ++length) {
        const std::string bytes = randomBytes(numbers, length);
        ASSERT_EQ(encoded(bytes, 0), modelEncoded(bytes, false)) << length;
        ASSERT_EQ(encoded(bytes, 1), modelEncoded(bytes, true)) << length;
    }
}

TEST(Base64FromFacts, decodesWhatItEncodedAtEveryLength) {
    RandomTexts::Numbers numbers(2);
    for (std::size_t length = 0; length <= 700; ++length) {
        const std::string bytes = randomBytes(numbers, length);
        ASSERT_EQ(decoded(encoded(bytes, 0)), spells(bytes)) << length;
        ASSERT_EQ(decoded(encoded(bytes, 1)), spells(bytes)) << length;
    }
}

TEST(Base64FromFacts, decodesWhatItEncodedOfAMegabyte) {
    RandomTexts::Numbers numbers(3);
    const std::string bytes = randomBytes(numbers, (1u << 20) + 1);
    ASSERT_TRUE(decoded(encoded(bytes, 0)) == spells(bytes));
    ASSERT_TRUE(decoded(encoded(bytes, 1)) == spells(bytes));
    ASSERT_TRUE(encoded(bytes, 1) == modelEncoded(bytes, true));
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define ZQ_TEST_HUGE_ALLOCATIONS_FAIL 1
#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#undef ZQ_TEST_HUGE_ALLOCATIONS_FAIL
#endif
#endif
#endif
#ifdef ZQ_TEST_HUGE_ALLOCATIONS_FAIL // the sanitizers' allocators end the process instead

TEST(Base64FromFacts, leavesTheLengthUnwrittenWithoutMemoryForTheText) {
    for (const std::uint64_t length : {std::uint64_t{1} << 60, std::uint64_t{1} << 62}) {
        for (const int separateLines : {0, 1}) {
            std::uint64_t told = untouched;
            EXPECT_EQ(NewBase64Encode("", length, separateLines, &told), nullptr) << length;
            EXPECT_EQ(told, untouched) << length;
            EXPECT_EQ(NewBase64Encode("", length, separateLines, nullptr), nullptr) << length;
        }
    }
}

#endif

TEST(Base64FromFacts, refusesLengthsWhoseTextNoNumberCounts) {
    for (const std::uint64_t length : {UINT64_MAX, UINT64_MAX - 2, UINT64_MAX / 4 * 3 + 4}) {
        for (const int separateLines : {0, 1}) {
            std::uint64_t told = untouched;
            EXPECT_EQ(NewBase64Encode("", length, separateLines, &told), nullptr) << length;
            EXPECT_EQ(told, untouched) << length;
        }
    }
}

// Decoding

TEST(Base64FromFacts, decodesNothingFromNothing) { EXPECT_EQ(decoded("", 0), spells("")); }

TEST(Base64FromFacts, measuresATextUpToItsZeroWhenTheLengthIsMinusOne) {
    EXPECT_EQ(decoded("", -1), spells(""));
    EXPECT_EQ(decoded("TWFu", -1), spells("Man"));
    EXPECT_EQ(decoded("TW\0Fu", -1), spells("M"));
    EXPECT_EQ(decoded("QUJD\n", -1), spells("AB"));
}

TEST(Base64FromFacts, passesOverZeroBytesWithinAGivenLength) {
    EXPECT_EQ(decoded("TW\0Fu"s), spells("Man"));
    EXPECT_EQ(decoded("TWFu\0"s), spells("Ma"));
}

TEST(Base64FromFacts, looksNoFurtherThanTheGivenLength) {
    EXPECT_EQ(decoded("TWFuTWFu", 4), spells("Man"));
    EXPECT_EQ(decoded("TWFuTWFu", 6), spells("ManM"));
    EXPECT_EQ(decoded("TWFuTWFu", 0), spells(""));
}

TEST(Base64FromFacts, passesOverWhatIsNotInTheAlphabet) {
    for (int byte = 0; byte < 256; ++byte) {
        const char character = static_cast<char>(byte);
        if (byte != 0 && alphabet.find(character) != std::string::npos) {
            continue;
        }
        SCOPED_TRACE(byte);
        const std::string foreign(1, character);
        EXPECT_EQ(decoded("T" + foreign + "W" + foreign + foreign + "Fu"), spells("Man"));
        EXPECT_EQ(decoded(foreign + "TWFu"), spells("Man"));
        EXPECT_EQ(decoded("TWFu" + foreign), spells("Ma")) << "behind the last group";
        EXPECT_EQ(decoded(foreign), (Decoded{largest, ""}));
    }
}

TEST(Base64FromFacts, takesNoUrlAlphabet) {
    EXPECT_EQ(decoded("-_-_"), (Decoded{largest, ""}));
    EXPECT_EQ(decoded("+/+/"), spells("\xFB\xFF\xBF"));
}

TEST(Base64FromFacts, doesNotInterpretPadding) {
    const struct {
        const char* text;
        const char* bytes;
    } rows[] = {
        {"TWE=", "Ma"},
        {"TWE", "Ma"},
        {"TWE==", "Ma"},
        {"TWE====", "Ma"},
        {"TQ==", "M"},
        {"TQ=", "M"},
        {"TQ", "M"},
        {"T=Q", "M"},
        {"=TQ", "M"},
        {"T=W=F=u", "Man"},
        {"=T=Q=", "M"},
        {"====TQ", "M"},
        {"TQ====TQ", "M\x04\xD0"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(decoded(row.text), spells(row.bytes)) << row.text;
    }
}

TEST(Base64FromFacts, runsGroupsOnAcrossPadding) {
    EXPECT_EQ(decoded("TWE=TWFu"), decoded("TWETWFu"));
    EXPECT_EQ(decoded("TWE=TWFu").length, 5u);
    EXPECT_EQ(decoded("TQ==TWFu"), decoded("TQTWFu"));
    EXPECT_EQ(decoded("TQ==TWFu").length, 4u);
}

TEST(Base64FromFacts, givesNothingForASingleCharacterAtTheEnd) {
    EXPECT_EQ(decoded("T"), spells(""));
    EXPECT_EQ(decoded("T==="), spells(""));
    EXPECT_EQ(decoded("\nT\n"), spells(""));
    EXPECT_EQ(decoded("TWFuT"), spells("Man"));
    EXPECT_EQ(decoded("TWFuT==="), spells("Man"));
}

TEST(Base64FromFacts, dropsTheLastByteWhenSomethingFollowsTheLastWholeGroup) {
    const struct {
        const char* text;
        const char* bytes;
    } rows[] = {
        {"QUJD\n", "AB"},          {"QUJD\r\n", "AB"}, {"QUJD\n\n\n\n\n", "AB"}, {"QUJD=", "AB"},
        {"QUJD==", "AB"},          {"QUJD ", "AB"},    {"QUJD====", "AB"},       {"QUJDQUJD\n", "ABCAB"},
        {"QUJD\nQUJD\n", "ABCAB"}, {"\nQUJD\n", "AB"}, {"QUJD-", "AB"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(decoded(row.text), spells(row.bytes)) << testing::PrintToString(row.text);
    }
}

TEST(Base64FromFacts, keepsTheLastByteWhenSomethingFollowsAnUnfinishedGroup) {
    EXPECT_EQ(decoded("QUJDQQ\n"), spells("ABCA"));
    EXPECT_EQ(decoded("QUJDQUI=\n"), spells("ABCAB"));
    EXPECT_EQ(decoded("QQ==\r\n"), spells("A"));
    EXPECT_EQ(decoded("QUI=    "), spells("AB"));
}

TEST(Base64FromFacts, tellsTheLargestLengthForATextOfForeignBytesAlone) {
    for (const std::string& text :
         {"="s, "===="s, "\n"s, "\r\n"s, "    "s, "-"s, "\0"s, "\xC3\xA9"s, std::string(1000, '='), "%$#"s}) {
        EXPECT_EQ(decoded(text), (Decoded{largest, ""})) << testing::PrintToString(text);
    }
}

TEST(Base64FromFacts, ignoresTheBitsThatAGroupHasTooMany) {
    EXPECT_EQ(decoded("TR=="), spells("M"));
    EXPECT_EQ(decoded("Tf=="), spells("M"));
    EXPECT_EQ(decoded("TWH="), spells("Ma"));
}

TEST(Base64FromFacts, decodesEverySmallTextAsTheModelDoes) {
    forEverySmallText([](const std::string& text) {
        ASSERT_EQ(decoded(text), modelDecoded(text)) << testing::PrintToString(text);
    });
}

TEST(Base64FromFacts, decodesEverySmallTextBehindAndBeforeGroupsAsTheModelDoes) {
    const std::string line = "abcdefghijklmnopqrstuvwxyz0123456789+/ABCDEFGHIJKLMNOPQRSTUVWXYZ";
    forEverySmallText([&](const std::string& text) {
        const std::string longText = line + text + line + text;
        ASSERT_EQ(decoded(longText), modelDecoded(longText)) << testing::PrintToString(text);
    });
}

TEST(Base64FromFacts, decodesRandomTextsAsTheModelDoes) {
    RandomTexts::Numbers numbers(4);
    const std::string mixed = alphabet + alphabet + "=\r\n -_\t";
    for (int round = 0; round < 20000; ++round) {
        std::string text(numbers.below(200), '\0');
        const std::size_t foreign = numbers.below(4) * 8;
        for (char& character : text) {
            character = numbers.below(32) < foreign ? static_cast<char>(numbers.below(256))
                        : round % 2 == 0            ? mixed[numbers.below(mixed.size())]
                                                    : alphabet[numbers.below(64)];
        }
        ASSERT_EQ(decoded(text), modelDecoded(text)) << testing::PrintToString(text);
    }
}

TEST(Base64FromFacts, decodesLongTextsWithOneForeignByteAsTheModelDoes) {
    RandomTexts::Numbers numbers(5);
    std::string text;
    while (text.size() < 300) {
        text += alphabet[numbers.below(64)];
    }
    for (std::size_t length = 290; length <= 300; ++length) {
        for (std::size_t place = 0; place < length; ++place) {
            for (const char foreign : "\n=\xFF\0-"s) {
                std::string changed = text.substr(0, length);
                changed[place] = foreign;
                ASSERT_EQ(decoded(changed), modelDecoded(changed)) << length << " " << place;
            }
        }
    }
}

// Data

TEST(Base64FromFacts, turnsDataIntoTextInOneLineOrSeveral) {
    RandomTexts::Numbers numbers(6);
    for (const std::size_t length : {0u, 1u, 2u, 3u, 47u, 48u, 49u, 95u, 96u, 97u, 1000u}) {
        const std::string bytes = randomBytes(numbers, length);
        const NSData data = dataOf(bytes);
        EXPECT_EQ(utf8Of(data.base64EncodedStringInSingleLine()), modelEncoded(bytes, false)) << length;
        EXPECT_EQ(utf8Of(data.base64EncodedStringInSeparateLines()), modelEncoded(bytes, true)) << length;
    }
}

TEST(Base64FromFacts, readsBackTheTextOfData) {
    RandomTexts::Numbers numbers(7);
    for (std::size_t length = 0; length < 200; ++length) {
        const std::string bytes = randomBytes(numbers, length);
        const NSData data = dataOf(bytes);
        ASSERT_EQ(bytesOf(NSData::dataFromBase64String(data.base64EncodedStringInSingleLine())), bytes);
        ASSERT_EQ(bytesOf(NSData::dataFromBase64String(data.base64EncodedStringInSeparateLines())), bytes);
    }
}

TEST(Base64FromFacts, readsStringsByTheDecodersRules) {
    forEverySmallText([](const std::string& text) {
        const Decoded expected = modelDecoded(text);
        ASSERT_EQ(bytesOf(NSData::dataFromBase64String(text)), expected.bytes)
            << testing::PrintToString(text);
    });
    EXPECT_EQ(bytesOf(NSData::dataFromBase64String("QUJD\n")), "AB");
    EXPECT_EQ(bytesOf(NSData::dataFromBase64String("TWE")), "Ma");
}

TEST(Base64FromFacts, readsStringsToTheirEndAndNotToAZero) {
    const NSString text = NSString::stringWithCharacters_length(u"QU\0JD", 5);
    EXPECT_EQ(bytesOf(NSData::dataFromBase64String(text)), "ABC");
}

TEST(Base64FromFacts, givesEmptyDataForAStringThatIsNotAscii) {
    for (const NSString& text :
         {NSString(u"\u00E9"), NSString(u"QUJD\u00E9"), NSString(u"\u00E9QUJD"), NSString(u"QU\u0080JD"),
          NSString(u"\uFF31UJD"), NSString(u"QUJD\u2028"), NSString(u"\U0001F600QUJD"),
          NSString::stringWithCharacters_length(u"QUJD\xD800", 5)}) {
        EXPECT_EQ(bytesOf(NSData::dataFromBase64String(text)), "") << utf8Of(text);
    }
    EXPECT_EQ(bytesOf(NSData::dataFromBase64String("QU\x7FJD")), "ABC") << "the last of ASCII";
}

TEST(Base64FromFacts, givesEmptyDataForNilAndForTextsWithoutLetters) {
    EXPECT_EQ(bytesOf(NSData::dataFromBase64String(nullptr)), "");
    EXPECT_EQ(bytesOf(NSData::dataFromBase64String("")), "");
    EXPECT_EQ(bytesOf(NSData::dataFromBase64String("====")), "");
    EXPECT_EQ(bytesOf(NSData::dataFromBase64String("\n")), "");
}

TEST(Base64FromFacts, givesNoTextForNilData) {
    EXPECT_FALSE(NSData().base64EncodedStringInSingleLine());
    EXPECT_FALSE(NSData().base64EncodedStringInSeparateLines());
    EXPECT_EQ(utf8Of(NSData::data().base64EncodedStringInSingleLine()), "");
    EXPECT_EQ(utf8Of(NSData::data().base64EncodedStringInSeparateLines()), "");
}

} // namespace
