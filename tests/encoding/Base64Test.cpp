// SPDX-License-Identifier: MIT
// The C functions: standard examples, lengths and padding, and what the decoder does to texts that nobody
// should write.
#include "encoding/Base64.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "tests/kit/Sanitizers.h"
#include "tests/kit/Texts.h"
#include "tests/models/Base64.h"

using namespace ZQFoundation;
using namespace std::string_literals;

namespace {

const std::string alphabet(models::base64Alphabet);
constexpr std::uint64_t untouched = 0x5A5A5A5A5A5A5A5A;
constexpr std::uint64_t largest = UINT64_MAX;

/// What a call of the decoder returns: the length that it reports, and that many bytes unless it is the
/// largest.
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
    if (result.length != largest && result.length != 0) {
        EXPECT_NE(bytes, nullptr);
        result.bytes.assign(static_cast<const char*>(bytes), static_cast<std::size_t>(result.length));
    }
    std::free(bytes);
    return result;
}

/// From a copy that ends with its last byte, so that an access beyond it is found.
Decoded decoded(const std::string& text) {
    const kit::Exact<char> exact{std::string_view(text)};
    return decoded(exact.data(), static_cast<std::int64_t>(exact.size()));
}

Decoded spells(const std::string& bytes) { return {bytes.size(), bytes}; }

std::string encoded(const std::string& bytes, int separateLines) {
    const kit::Exact<char> exact{std::string_view(bytes)};
    std::uint64_t length = untouched;
    char* const text = NewBase64Encode(exact.data(), exact.size(), separateLines, &length);
    if (text == nullptr) {
        return "(null)";
    }
    std::string result(text, static_cast<std::size_t>(length));
    EXPECT_EQ(std::string_view(text).size(), length) << "the zero byte is the first one";
    std::free(text);
    return result;
}

TEST(Base64, encodesAndDecodesTheStandardExamples) {
    const char* const rows[][2] = {{"", ""},
                                   {"f", "Zg=="},
                                   {"fo", "Zm8="},
                                   {"foo", "Zm9v"},
                                   {"foob", "Zm9vYg=="},
                                   {"fooba", "Zm9vYmE="},
                                   {"foobar", "Zm9vYmFy"}};
    for (const auto& [bytes, text] : rows) {
        EXPECT_EQ(encoded(bytes, 0), text);
        EXPECT_EQ(encoded(bytes, 1), text);
        EXPECT_EQ(decoded(text), spells(bytes)) << text;
    }
}

TEST(Base64, breaksLinesOnlyBetweenLines) {
    std::string expected; // a line of 64 characters for 48 bytes
    for (int line = 0; line < 3; ++line) {
        expected.append(line == 0 ? "" : "\r\n").append(64, 'A');
        const std::size_t bytes = static_cast<std::size_t>(line + 1) * 48;
        for (const int separateLines : {1, 2, -1, 256}) { // every number but 0
            EXPECT_EQ(encoded(std::string(bytes, '\0'), separateLines), expected) << bytes;
        }
        std::string shorter = expected;
        shorter.back() = '=';
        EXPECT_EQ(encoded(std::string(bytes - 1, '\0'), 1), shorter) << bytes;
        EXPECT_EQ(encoded(std::string(bytes + 1, '\0'), 1), std::string(expected).append("\r\nAA=="))
            << bytes;
    }
    EXPECT_EQ(encoded(std::string(3000, '\0'), 0), std::string(4000, 'A'));
}

TEST(Base64, followsTheModelAtEveryLength) {
    kit::Numbers numbers(1);
    for (std::size_t length = 0; length <= 700; ++length) {
        std::string bytes(length == 700 ? (1U << 20) + 1 : length, '\0');
        for (char& byte : bytes) {
            byte = static_cast<char>(numbers.below(256));
        }
        for (const bool separateLines : {false, true}) {
            const std::string text = models::base64Encoded(bytes, separateLines);
            ASSERT_TRUE(encoded(bytes, separateLines ? 1 : 0) == text) << bytes.size();
            ASSERT_TRUE(decoded(text) == spells(bytes)) << bytes.size();
        }
    }
}

TEST(Base64, needsNoPlaceForALength) {
    char* const text = NewBase64Encode("Man", 3, 0, nullptr);
    ASSERT_NE(text, nullptr);
    EXPECT_STREQ(text, "TWFu");
    char* const bytes = static_cast<char*>(NewBase64Decode("TWFu", 4, nullptr));
    ASSERT_NE(bytes, nullptr);
    EXPECT_EQ(std::string(bytes, 3), "Man");
    std::free(bytes);
    std::free(text);
}

TEST(Base64, leavesTheLengthUnwrittenWithoutMemoryForTheText) {
    std::vector<std::uint64_t> lengths{UINT64_MAX, UINT64_MAX - 2, UINT64_MAX / 4 * 3 + 4,
                                       UINT64_MAX / 8 + 1};
    if (!kit::isSanitized) { // whose allocators end the process
        lengths.insert(lengths.end(), {std::uint64_t{1} << 60, UINT64_MAX / 8});
    }
    for (const std::uint64_t length : lengths) {
        for (const int separateLines : {0, 1}) {
            std::uint64_t reported = untouched;
            EXPECT_EQ(NewBase64Encode("", length, separateLines, &reported), nullptr) << length;
            EXPECT_EQ(reported, untouched) << length;
            EXPECT_EQ(NewBase64Encode("", length, separateLines, nullptr), nullptr) << length;
        }
    }
}

TEST(Base64, readsNoFurtherThanTheLengthOrTheZeroThatEndsIt) {
    EXPECT_EQ(decoded("TWFuTWFu", 4), spells("Man"));
    EXPECT_EQ(decoded("TWFuTWFu", 6), spells("ManM"));
    EXPECT_EQ(decoded("TWFuTWFu", 0), spells(""));
    EXPECT_EQ(decoded("TWFu", -2), spells(""));
    EXPECT_EQ(decoded(nullptr, 4), spells(""));
    EXPECT_EQ(decoded("", -1), spells(""));
    EXPECT_EQ(decoded("TWFu", -1), spells("Man"));
    EXPECT_EQ(decoded("TW\0Fu", -1), spells("M"));
    EXPECT_EQ(decoded("QUJD\n", -1), spells("AB"));
    EXPECT_EQ(decoded("TW\0Fu"s), spells("Man")) << "within a given length a zero is foreign";
    EXPECT_EQ(decoded("TWFu\0"s), spells("Ma"));
}

TEST(Base64, ignoresWhatIsNotInTheAlphabet) {
    for (int byte = 0; byte < 256; ++byte) {
        const std::string foreign(1, static_cast<char>(byte));
        if (alphabet.find(foreign) != std::string::npos) {
            continue;
        }
        EXPECT_EQ(decoded("T" + foreign + "W" + foreign + foreign + "Fu"), spells("Man")) << byte;
        EXPECT_EQ(decoded(foreign + "TWFu"), spells("Man")) << byte;
        EXPECT_EQ(decoded("TWFu" + foreign), spells("Ma")) << byte << ", after the last group";
        EXPECT_EQ(decoded(foreign), (Decoded{largest, ""})) << byte;
    }
}

TEST(Base64, doesNotInterpretPadding) {
    const struct {
        const char* text;
        std::string bytes;
    } rows[] = {
        {"TWE", "Ma"},
        {"TWE==", "Ma"},
        {"TQ", "M"},
        {"T=Q", "M"},
        {"T=W=F=u", "Man"},
        {"=T=Q=", "M"},
        {"====TQ", "M"},
        {"TQ====TQ", "M\x04\xD0"}, // groups run on across it
        {"TWE=TWFu", "Ma\x13X["},
        {"T", ""}, // a single character at the end gives nothing
        {"T===", ""},
        {"\nT\n", ""},
        {"TWFuT===", "Man"},
        {"TR==", "M"}, // bits that a group has too many
        {"TWH=", "Ma"},
        {"+/+/", "\xFB\xFF\xBF"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(decoded(row.text), spells(row.bytes)) << row.text;
    }
    EXPECT_EQ(decoded("-_-_"), (Decoded{largest, ""})) << "not the alphabet of URLs";
}

TEST(Base64, dropsTheLastByteWhenSomethingFollowsTheLastWholeGroup) {
    for (const char* const text :
         {"QUJD\n", "QUJD\r\n", "QUJD\n\n\n\n\n", "QUJD=", "QUJD====", "\nQUJD\n", "QUJD-"}) {
        EXPECT_EQ(decoded(text), spells("AB")) << testing::PrintToString(text);
    }
    EXPECT_EQ(decoded("QUJDQUJD\n"), spells("ABCAB"));
    EXPECT_EQ(decoded("QUJD\nQUJD\n"), spells("ABCAB"));
    EXPECT_EQ(decoded("QUJDQQ\n"), spells("ABCA")) << "not after an unfinished group";
    EXPECT_EQ(decoded("QUI=    "), spells("AB"));
}

TEST(Base64, reportsTheLargestLengthForForeignBytesAlone) {
    for (const std::string& text :
         {"="s, "===="s, "\r\n"s, "\0"s, "\xC3\xA9"s, std::string(1000, '='), "%$#"s}) {
        EXPECT_EQ(decoded(text), (Decoded{largest, ""})) << testing::PrintToString(text);
    }
}

} // namespace
