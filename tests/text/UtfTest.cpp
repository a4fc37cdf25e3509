// SPDX-License-Identifier: MIT
// UTF-8 and UTF-16, also ill-formed, and file names of any bytes.
#include "foundation/text/Utf.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/models/Utf.h"

namespace {

namespace models = ZQFoundation::models;
using namespace ZQFoundation::detail;

constexpr std::size_t longestLength = 100; // passes several blocks of every size that the code may use

/// The buffers hold exactly what was announced, so that a memory checker sees every byte too many.
std::u16string toUnits(std::string_view bytes, IllFormed policy) {
    const std::vector<char> exact(bytes.begin(), bytes.end());
    std::vector<char16_t> units(utf16Length(exact.data(), exact.size(), policy));
    const char16_t* const end = utf8ToUtf16(exact.data(), exact.size(), units.data(), policy);
    EXPECT_EQ(end, units.data() + units.size());
    return {units.begin(), units.end()};
}

std::string toBytes(std::u16string_view units, IllFormed policy) {
    const std::vector<char16_t> exact(units.begin(), units.end());
    std::vector<char> bytes(utf8Length(exact.data(), exact.size(), policy));
    const char* const end = utf16ToUtf8(exact.data(), exact.size(), bytes.data(), policy);
    EXPECT_EQ(end, bytes.data() + bytes.size());
    return {bytes.begin(), bytes.end()};
}

/// With the length that the check in one pass finds.
bool isWellFormed(std::string_view bytes) {
    const bool result = isWellFormedUtf8(bytes.data(), bytes.size());
    std::size_t length = 0;
    EXPECT_EQ(getUtf16Length(bytes.data(), bytes.size(), length), result);
    if (result) {
        EXPECT_EQ(length, utf16Length(bytes.data(), bytes.size(), IllFormed::replace));
    }
    return result;
}

std::size_t wellFormedPrefix(std::string_view bytes) {
    return wellFormedUtf8Prefix(bytes.data(), bytes.size());
}

bool isWellFormed(std::u16string_view units) { return isWellFormedUtf16(units.data(), units.size()); }

bool hasFileNameForm(std::u16string_view units) {
    return ZQFoundation::detail::hasFileNameForm(units.data(), units.size());
}

std::u16string escaped(std::string_view bytes) {
    std::u16string units;
    for (const char byte : bytes) {
        units += static_cast<char16_t>(0xDC00 + static_cast<unsigned char>(byte));
    }
    return units;
}

/// Whether more bytes can make a well-formed sequence of these, two or three: only the second of a sequence
/// has bounds of its own, so the lowest continuation bytes show it.
bool isBeginning(std::string_view bytes) {
    const auto character = models::characterAt(std::string(bytes) + "\x80\x80", 0);
    return character && character->length > bytes.size();
}

/// Length of the sequence or maximal subpart at the front, and the character if the sequence is complete.
std::pair<std::size_t, std::optional<char32_t>> referenceStep(std::string_view bytes) {
    if (const auto character = models::characterAt(bytes, 0)) {
        return {character->length, character->number};
    }
    std::size_t length = std::min<std::size_t>(bytes.size(), 3);
    while (length > 1 && !isBeginning(bytes.substr(0, length))) {
        --length;
    }
    return {length, std::nullopt};
}

std::u16string referenceUnits(std::string_view bytes, IllFormed policy) {
    std::u16string units;
    while (!bytes.empty()) {
        const auto [length, character] = referenceStep(bytes);
        if (character) {
            models::appendUtf16(units, *character);
        } else {
            units += policy == IllFormed::replace ? u"\uFFFD" : escaped(bytes.substr(0, length));
        }
        bytes.remove_prefix(length);
    }
    return units;
}

/// Bytes that meet in every combination near the borders between lead, continuation and invalid bytes.
std::string randomUtf8(std::mt19937& random, std::size_t length) {
    static constexpr unsigned char telling[] = {0x00, 'a',  0x7F, 0x80, 0x8F, 0x90, 0x9F, 0xA0, 0xBF, 0xC0,
                                                0xC1, 0xC2, 0xDF, 0xE0, 0xE1, 0xEC, 0xED, 0xEE, 0xEF, 0xF0,
                                                0xF1, 0xF3, 0xF4, 0xF5, 0xFF, 0x80, 0xBF, 0x80, 0xBF, 0xA0};
    const bool anyByte = random() % 4 == 0;
    std::string bytes;
    for (std::size_t i = 0; i < length; ++i) {
        const auto number = static_cast<std::size_t>(random());
        bytes += static_cast<char>(anyByte ? number & 0xFF : telling[number % std::size(telling)]);
    }
    return bytes;
}

struct BoundaryRow {
    const char* name;
    std::string_view bytes;
    std::u16string_view units;
};

constexpr BoundaryRow boundaryRows[] = {
    {"empty", "", u""},
    {"U+0000", {"\0", 1}, {u"\0", 1}},
    {"U+0001", "\x01", u"\x01"},
    {"U+007F", "\x7F", u"\x7F"},
    {"U+0080", "\xC2\x80", u"\x80"},
    {"U+07FF", "\xDF\xBF", u"\x7FF"},
    {"U+0800", "\xE0\xA0\x80", u"\x800"},
    {"U+0FFF", "\xE0\xBF\xBF", u"\xFFF"},
    {"U+1000", "\xE1\x80\x80", u"\x1000"},
    {"U+CFFF", "\xEC\xBF\xBF", u"\xCFFF"},
    {"U+D000", "\xED\x80\x80", u"\xD000"},
    {"U+D7FF", "\xED\x9F\xBF", u"\xD7FF"},
    {"U+E000", "\xEE\x80\x80", u"\xE000"},
    {"byte-order mark", "\xEF\xBB\xBF", u"\xFEFF"},
    {"U+FFFD", "\xEF\xBF\xBD", u"\xFFFD"},
    {"U+FFFF", "\xEF\xBF\xBF", u"\xFFFF"},
    {"U+10000", "\xF0\x90\x80\x80", u"\xD800\xDC00"},
    {"U+3FFFF", "\xF0\xBF\xBF\xBF", u"\xD8BF\xDFFF"},
    {"U+40000", "\xF1\x80\x80\x80", u"\xD8C0\xDC00"},
    {"U+FFFFF", "\xF3\xBF\xBF\xBF", u"\xDBBF\xDFFF"},
    {"U+100000", "\xF4\x80\x80\x80", u"\xDBC0\xDC00"},
    {"U+10FFFF", "\xF4\x8F\xBF\xBF", u"\xDBFF\xDFFF"},
    {"neighbors",
     "a\xC3\xA9"
     "b\xE2\x82\xAC\xF0\x9F\x98\x80z",
     u"a\xE9"
     u"b\x20AC\xD83D\xDE00z"},
};

TEST(Utf, convertsTheBoundariesOfEveryLengthBothWays) {
    for (const BoundaryRow& row : boundaryRows) {
        SCOPED_TRACE(row.name);
        for (const IllFormed policy : {IllFormed::replace, IllFormed::fileName}) {
            EXPECT_EQ(toUnits(row.bytes, policy), row.units);
            EXPECT_EQ(toBytes(row.units, policy), row.bytes);
        }
        EXPECT_TRUE(isWellFormed(row.bytes));
        EXPECT_EQ(wellFormedPrefix(row.bytes), row.bytes.size());
        EXPECT_TRUE(isWellFormed(row.units));
    }
}

struct IllFormedRow {
    const char* name;
    std::string_view bytes;
    std::size_t replacements;
};

constexpr IllFormedRow illFormedRows[] = {
    {"stray continuation", "\x80", 1},
    {"last stray continuation", "\xBF", 1},
    {"two stray continuations", "\x80\xBF", 2},
    {"never a lead: C0", "\xC0\x80", 2},
    {"never a lead: C1", "\xC1\xBF", 2},
    {"never a lead: F5", "\xF5\x80\x80\x80", 4},
    {"never a lead: F8", "\xF8\x88\x80\x80\x80", 5},
    {"never a lead: FE, FF", "\xFE\xFF", 2},
    {"two, cut off", "\xC2", 1},
    {"three, cut off after one", "\xE1", 1},
    {"three, cut off after two", "\xE1\x80", 1},
    {"four, cut off after one", "\xF1", 1},
    {"four, cut off after two", "\xF1\x80", 1},
    {"four, cut off after three", "\xF1\x80\x80", 1},
    {"overlong three", "\xE0\x80\x80", 3},
    {"longest overlong three", "\xE0\x9F\xBF", 3},
    {"overlong four", "\xF0\x80\x80\x80", 4},
    {"longest overlong four", "\xF0\x8F\xBF\xBF", 4},
    {"first surrogate", "\xED\xA0\x80", 3},
    {"last surrogate", "\xED\xBF\xBF", 3},
    {"surrogate pair", "\xED\xA0\x80\xED\xB0\x80", 6},
    {"above the last character", "\xF4\x90\x80\x80", 4},
    {"a lead after each lead", "\xC2\xE1\xF1\xC2", 4},
    {"subparts one after another", "\xE1\x80\xE2\xF0\x91\x92\xF1\xBF", 4},
    {"subparts and strays", "\xF0\x90\x80\xC3\x80\x80", 2}, // the third piece is U+00C0
};

TEST(Utf, replacesEachMaximalSubpartOnce) {
    for (const IllFormedRow& row : illFormedRows) {
        SCOPED_TRACE(row.name);
        const std::u16string units = toUnits(row.bytes, IllFormed::replace);
        std::size_t replacements = 0;
        for (const char16_t unit : units) {
            replacements += unit == 0xFFFD ? 1 : 0;
        }
        EXPECT_EQ(replacements, row.replacements);
        EXPECT_EQ(units, referenceUnits(row.bytes, IllFormed::replace));
    }
}

TEST(Utf, continuesRightAfterAnIllFormedSequence) {
    for (const IllFormedRow& row : illFormedRows) {
        SCOPED_TRACE(row.name);
        const std::string text = "a" + std::string(row.bytes) + "b\xC3\xA9";
        for (const IllFormed policy : {IllFormed::replace, IllFormed::fileName}) {
            EXPECT_EQ(toUnits(text, policy), u"a" + toUnits(row.bytes, policy) + u"b\xE9");
        }
        EXPECT_FALSE(isWellFormed(text));
        EXPECT_EQ(wellFormedPrefix(text), 1 + wellFormedPrefix(row.bytes));
    }
}

TEST(Utf, namesEachBadByteOfAFileName) {
    EXPECT_EQ(toUnits("a\x80\xE2\x82z\xFF", IllFormed::fileName), u"a\xDC80\xDCE2\xDC82z\xDCFF");
    EXPECT_EQ(toUnits("\xED\xA0\x80", IllFormed::fileName), u"\xDCED\xDCA0\xDC80");
    EXPECT_EQ(toBytes(u"a\xDC80\xDCE2\xDC82z\xDCFF", IllFormed::fileName), "a\x80\xE2\x82z\xFF");
}

TEST(Utf, agreesWithThePlainTableOnRandomBytes) {
    std::mt19937 random(1);
    for (int round = 0; round < 50000; ++round) {
        const std::string bytes = randomUtf8(random, random() % 24);
        const std::u16string replaced = referenceUnits(bytes, IllFormed::replace);
        const std::u16string named = referenceUnits(bytes, IllFormed::fileName);
        ASSERT_EQ(toUnits(bytes, IllFormed::replace), replaced) << "round " << round;
        ASSERT_EQ(toUnits(bytes, IllFormed::fileName), named) << "round " << round;
        ASSERT_EQ(isWellFormed(bytes), isWellFormed(named)) << "round " << round;
        const std::size_t prefix = wellFormedPrefix(bytes);
        ASSERT_TRUE(isWellFormed(bytes.substr(0, prefix))) << "round " << round;
        ASSERT_TRUE(prefix == bytes.size() || !referenceStep(bytes.substr(prefix)).second)
            << "round " << round;
    }
}

TEST(Utf, bringsAnyBytesBackThroughAFileName) {
    std::mt19937 random(3);
    for (int round = 0; round < 50000; ++round) {
        const std::string bytes = randomUtf8(random, random() % 80);
        const std::u16string units = toUnits(bytes, IllFormed::fileName);
        ASSERT_EQ(toBytes(units, IllFormed::fileName), bytes) << "round " << round;
        ASSERT_EQ(hasFileNameForm(units), bytes.find('\0') == std::string::npos) << "round " << round;
    }
}

TEST(Utf, bringsEveryCharacterBack) {
    std::u16string units;
    for (char32_t codePoint = 0; codePoint < 0x110000; ++codePoint) {
        if (codePoint < 0xD800 || codePoint > 0xDFFF) {
            models::appendUtf16(units, codePoint);
        }
    }
    const std::string bytes = toBytes(units, IllFormed::replace);
    EXPECT_EQ(bytes.size(), 0x80 + 2 * 0x780 + 3 * (0xF800u - 0x800) + 4 * 0x100000u);
    EXPECT_TRUE(isWellFormed(bytes));
    EXPECT_TRUE(toUnits(bytes, IllFormed::replace) == units);
}

struct SurrogateRow {
    const char* name;
    std::u16string_view units;
    std::string_view replaced;
};

constexpr SurrogateRow surrogateRows[] = {
    {"high at the end", u"a\xD800", "a\xEF\xBF\xBD"},
    {"high before a letter", u"\xDBFFz", "\xEF\xBF\xBDz"},
    {"high before a pair", u"\xD800\xD83D\xDE00", "\xEF\xBF\xBD\xF0\x9F\x98\x80"},
    {"low alone", u"\xDC00", "\xEF\xBF\xBD"},
    {"low after a pair", u"\xD83D\xDE00\xDFFF", "\xF0\x9F\x98\x80\xEF\xBF\xBD"},
    {"exchanged", u"\xDC00\xD800", "\xEF\xBF\xBD\xEF\xBF\xBD"},
};

TEST(Utf, replacesUnpairedSurrogates) {
    for (const SurrogateRow& row : surrogateRows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(toBytes(row.units, IllFormed::replace), row.replaced);
        EXPECT_EQ(toBytes(row.units, IllFormed::fileName), row.replaced);
        EXPECT_FALSE(isWellFormed(row.units));
        EXPECT_FALSE(hasFileNameForm(row.units));
    }
}

struct FileNameRow {
    const char* name;
    std::u16string_view units;
    bool accepted;
};

constexpr FileNameRow fileNameRows[] = {
    {"empty", u"", true},
    {"plain", u"/tmp/a\xE9\xD83D\xDE00", true},
    {"NUL", {u"a\0b", 3}, false},
    {"smallest byte", u"\xDC80", true},
    {"largest byte", u"x\xDCFF", true},
    {"below the bytes", u"\xDC7F", false},
    {"above the bytes", u"\xDD00", false},
    {"as second of a pair", u"\xD800\xDC80", true},
    {"spells U+00E9", u"\xDCC3\xDCA9", false},
    {"spells U+20AC", u"\xDCE2\xDC82\xDCAC", false},
    {"spells U+1F600", u"a\xDCF0\xDC9F\xDC98\xDC80", false},
    {"spells within a run", u"\xDC80\xDCE2\xDCC3\xDCA9\xDCFF", false},
    {"spells an overlong form", u"\xDCC0\xDC80", true},
    {"spells a surrogate", u"\xDCED\xDCA0\xDC80", true},
    {"cut off by a letter", u"\xDCE2\xDC82z\xDCAC", true},
    {"cut off by a character", u"\xDCC3\xE9\xDCA9", true},
};

TEST(Utf, refusesFileNamesThatWouldReadBackAsOthers) {
    for (const FileNameRow& row : fileNameRows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(hasFileNameForm(row.units), row.accepted);
    }
}

TEST(Utf, neverTurnsUnitsIntoOtherText) {
    static constexpr char16_t telling[] = {0,      'a',    0xE9,   0x20AC, 0xD83D, 0xDE00, 0xDC7F,
                                           0xDC80, 0xDCA9, 0xDCBF, 0xDCC3, 0xDCE2, 0xDCED, 0xDCF0,
                                           0xDCF4, 0xDCFF, 0xDC90, 0xDC8F, 0xDC9F, 0xDCA0};
    std::mt19937 random(4);
    for (int round = 0; round < 100000; ++round) {
        std::u16string units;
        for (std::size_t left = random() % 8; left > 0; --left) {
            units += telling[random() % std::size(telling)];
        }
        const std::u16string back = toUnits(toBytes(units, IllFormed::fileName), IllFormed::fileName);
        const bool exact = back == units && units.find(u'\0') == std::u16string::npos;
        ASSERT_EQ(hasFileNameForm(units), exact) << "round " << round;
        ASSERT_EQ(back.size(), units.size()) << "round " << round;
        for (std::size_t i = 0; i < units.size(); ++i) {
            ASSERT_TRUE(back[i] == units[i] || back[i] == 0xFFFD) << "round " << round;
        }
    }
}

TEST(Utf, findsTheEndOfAsciiAtEveryPlaceAndLength) {
    for (std::size_t length = 0; length <= longestLength; ++length) {
        std::vector<char> bytes(length, 'a');
        std::vector<char16_t> units(length, u'a');
        EXPECT_EQ(asciiPrefixLength(bytes.data(), length), length);
        EXPECT_EQ(asciiPrefixLength(units.data(), length), length);
        for (std::size_t at = 0; at < length; ++at) {
            bytes[at] = '\x80';
            EXPECT_EQ(asciiPrefixLength(bytes.data(), length), at);
            bytes[at] = '\x7F';
            for (const char16_t unit : {u'\x80', u'\x100', u'\x8000', u'\xFF00'}) {
                units[at] = unit;
                EXPECT_EQ(asciiPrefixLength(units.data(), length), at);
            }
            units[at] = u'\x7F';
        }
    }
}

TEST(Utf, convertsAtEveryPlaceAndLength) {
    for (std::size_t length = 0; length <= longestLength; ++length) {
        for (std::size_t at = 0; at <= length; ++at) {
            const std::string before(at, 'x');
            const std::string after(length - at, 'y');
            const std::u16string units =
                std::u16string(at, u'x') + u'\xE9' + std::u16string(length - at, u'y');
            ASSERT_EQ(toUnits(before + "\xC3\xA9" + after, IllFormed::replace), units);
            ASSERT_EQ(toBytes(units, IllFormed::replace), before + "\xC3\xA9" + after);
            ASSERT_EQ(wellFormedPrefix(before + "\xC3" + after), at);
        }
    }
}

TEST(Utf, seesASurrogateAtEveryPlaceAndLength) {
    for (std::size_t length = 1; length <= longestLength; ++length) {
        std::vector<char16_t> units(length, u'\xE000');
        EXPECT_TRUE(isWellFormedUtf16(units.data(), length));
        for (std::size_t at = 0; at < length; ++at) {
            units[at] = 0xD800;
            ASSERT_FALSE(isWellFormedUtf16(units.data(), length));
            if (at + 1 < length) {
                units[at + 1] = 0xDFFF;
                ASSERT_TRUE(isWellFormedUtf16(units.data(), length));
                units[at + 1] = 0xD7FF;
            }
            units[at] = 0xDFFF;
            ASSERT_FALSE(isWellFormedUtf16(units.data(), length));
            units[at] = 0xD7FF;
        }
    }
}

TEST(Utf, widensAndNarrowsEveryLength) {
    for (std::size_t length = 0; length <= longestLength; ++length) {
        std::vector<char> bytes;
        for (std::size_t i = 0; i < length; ++i) {
            bytes.push_back(static_cast<char>((i * 7 + length) & 0x7F));
        }
        std::vector<char16_t> units(length);
        widenAscii(bytes.data(), length, units.data());
        EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), units.begin(), units.end()));
        std::vector<char> back(length);
        narrowAscii(units.data(), length, back.data());
        EXPECT_EQ(back, bytes);
    }
}

TEST(Utf, widensUpperBytesAsTheirNumbers) {
    const std::string bytes(40, '\xE9');
    std::u16string units(bytes.size(), u' ');
    widenAscii(bytes.data(), bytes.size(), units.data());
    EXPECT_EQ(units, std::u16string(40, u'\xE9'));
}

TEST(Utf, takesNullForNothing) {
    const char* const noBytes = nullptr;
    const char16_t* const noUnits = nullptr;
    EXPECT_EQ(utf16Length(noBytes, 0, IllFormed::replace), 0u);
    EXPECT_EQ(utf8ToUtf16(noBytes, 0, nullptr, IllFormed::replace), nullptr);
    EXPECT_EQ(utf8Length(noUnits, 0, IllFormed::fileName), 0u);
    EXPECT_EQ(utf16ToUtf8(noUnits, 0, nullptr, IllFormed::fileName), nullptr);
    EXPECT_TRUE(isWellFormedUtf8(noBytes, 0));
    EXPECT_TRUE(ZQFoundation::detail::hasFileNameForm(noUnits, 0));
}

} // namespace
