// SPDX-License-Identifier: MIT
// Which encodings there are, their whole repertoires both ways, and a system that has none of its own.
#include "foundation/text/TextEncodings.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <sys/resource.h>

#include "foundation/objects/NSData.h"
#include "foundation/text/ByteTable.h"
#include "tests/kit/Child.h"
#include "tests/kit/Texts.h"
#include "tests/kit/Threads.h"
#include "tests/kit/Values.h"
#include "tests/models/Utf.h"

using namespace ZQFoundation;
using namespace std::string_literals;
using detail::EncodingForm;
using detail::TextEncoding;
using kit::bytesOf;
using kit::dataOf;
using kit::shownUnits;
using kit::stringOf;
using kit::utf8Of;

namespace {

std::vector<const TextEncoding*> encodingsBy(const std::vector<EncodingForm>& forms) {
    std::vector<const TextEncoding*> found;
    for (const std::uint32_t range :
         {0U, 0x80000000U, 0x88000000U, 0x8C000000U, 0x90000000U, 0x94000000U, 0x98000000U, 0x9C000000U}) {
        for (std::uint32_t number = 0; number < 0x2000; ++number) {
            const TextEncoding* const encoding = detail::findTextEncoding(range + number);
            for (const EncodingForm form : forms) {
                if (encoding != nullptr && encoding->form == form) {
                    found.push_back(encoding);
                }
            }
        }
    }
    return found;
}

NSStringEncoding numberOf(const TextEncoding* encoding) { return NSStringEncoding(encoding->number); }

NSString decoded(const std::string& bytes, NSStringEncoding encoding) {
    return NSString::initWithData_encoding(dataOf(bytes), encoding);
}

TEST(TextEncodings, haveTheirNumbersInOrderAndEachOne) {
    EXPECT_EQ(encodingsBy({EncodingForm::ascii}).size(), 2U);
    EXPECT_EQ(encodingsBy({EncodingForm::utf8}).size(), 2U);
    EXPECT_EQ(encodingsBy({EncodingForm::utf16, EncodingForm::utf32}).size(), 7U);
    EXPECT_EQ(encodingsBy({EncodingForm::bytes}).size(), 48U);
    EXPECT_EQ(encodingsBy({EncodingForm::macRoman}).size(), 2U);
    EXPECT_EQ(encodingsBy({EncodingForm::sequences}).size(), 17U);
    EXPECT_EQ(encodingsBy({EncodingForm::shiftJis}).size(), 2U);
}

/// Every byte that stands for a character is what this character is written as, and there are as many
/// characters with a byte as such bytes.
void expectRoundTripOfBytes(const TextEncoding* encoding) {
    SCOPED_TRACE(testing::Message() << std::hex << encoding->number);
    const detail::ByteTable* const table = detail::byteTableOf(*encoding);
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(detail::byteTableOf(*encoding), table) << "made anew";
    std::string bytes;
    std::u16string units;
    for (int code = 0; code < 256; ++code) {
        const char byte = static_cast<char>(code);
        const NSString character = decoded(std::string(1, byte), numberOf(encoding));
        if (character) {
            bytes += byte;
            units += character.utf16();
        }
    }
    EXPECT_GE(bytes.size(), 200U);
    EXPECT_EQ(units.size(), bytes.size());
    EXPECT_EQ(bytesOf(stringOf(units).dataUsingEncoding(numberOf(encoding))), bytes);
    EXPECT_EQ(stringOf(units).lengthOfBytesUsingEncoding(numberOf(encoding)), bytes.size());
    EXPECT_EQ(shownUnits(decoded(bytes, numberOf(encoding)).utf16()), shownUnits(units));
    std::size_t found = 0;
    for (char32_t unit = 0; unit < 0x10000; ++unit) {
        found += table->byteOf(static_cast<char16_t>(unit)) >= 0 ? 1 : 0;
    }
    EXPECT_EQ(found, bytes.size());
}

TEST(TextEncodings, ofOneByteRoundTripTheirWholeRepertoire) {
    for (const TextEncoding* encoding : encodingsBy(
             {EncodingForm::bytes, EncodingForm::macRoman, EncodingForm::nextStep, EncodingForm::symbol})) {
        expectRoundTripOfBytes(encoding);
    }
}

/// How many characters the encoding holds; each alone comes back, and so do all of them together.
std::size_t roundTripped(NSStringEncoding encoding) {
    std::u16string all;
    std::size_t found = 0;
    for (char32_t code = 0; code < 0x30000; code += code < 0x10000 ? 1 : 7) {
        if (code >= 0xD800 && code < 0xE000) {
            code = 0xE000;
        }
        std::u16string units;
        models::appendUtf16(units, code);
        const NSData data = stringOf(units).dataUsingEncoding(encoding);
        if (data) {
            ++found;
            all += units;
            const std::u16string back = NSString::initWithData_encoding(data, encoding).utf16();
            if (back != units) {
                ADD_FAILURE() << shownUnits(units) << " became " << shownUnits(back);
                break;
            }
        }
    }
    const NSData data = stringOf(all).dataUsingEncoding(encoding);
    EXPECT_TRUE(NSString::initWithData_encoding(data, encoding).utf16() == all);
    return found;
}

TEST(TextEncodings, ofSequencesRoundTripTheirWholeRepertoire) {
    const struct {
        std::uint32_t number;
        std::size_t least; ///< characters of the standard
    } rows[] = {
        {3, 6879 + 128},           {8, 6879 + 63},           {21, 6879 + 100},
        {0x80000420, 6879 + 63},   {0x80000421, 6763 + 128}, {0x80000422, 11172 + 128},
        {0x80000423, 13053 + 128}, {0x80000631, 20902},      {0x80000632, 63000},
        {0x80000930, 6763 + 128},  {0x80000940, 8224 + 128}, {0x80000A03, 13053 + 128},
        {0x80000821, 6879 + 100},  {0x80000840, 8224 + 100}, {0x80000931, 13051 + 128},
        {0x80000A06, 13053 + 128},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << std::hex << row.number);
        EXPECT_GE(roundTripped(NSStringEncoding(row.number)), row.least);
    }
}

TEST(TextEncodings, includeAsciiInEveryEncodingButTheSymbols) {
    std::string text;
    for (char code = 0x20; code < 0x7F; ++code) {
        text += code;
    }
    int counted = 0;
    for (const TextEncoding* encoding :
         encodingsBy({EncodingForm::ascii, EncodingForm::latin1, EncodingForm::utf8, EncodingForm::nextStep,
                      EncodingForm::macRoman, EncodingForm::bytes, EncodingForm::sequences,
                      EncodingForm::shiftJis})) {
        if (encoding->number == 0x80000419 || encoding->number == 0x80000840) {
            continue; // has another percent sign; writes a header first
        }
        EXPECT_EQ(bytesOf(NSString(text).dataUsingEncoding(numberOf(encoding))), text)
            << std::hex << encoding->number;
        EXPECT_EQ(utf8Of(decoded(text, numberOf(encoding))), text) << std::hex << encoding->number;
        ++counted;
    }
    EXPECT_EQ(counted, 75);
}

TEST(TextEncodings, ofShiftJisHaveBackslashAndTilde) {
    EXPECT_EQ(bytesOf(NSString(u"\\~\uFF71\u8868").dataUsingEncoding(NSShiftJISStringEncoding)),
              "\\~\xB1\x95\\");
    EXPECT_EQ(decoded("\\~\xB1\x95\\", NSShiftJISStringEncoding).utf16(), u"\\~\uFF71\u8868");
    EXPECT_FALSE(NSString(u"\u00A5").dataUsingEncoding(NSShiftJISStringEncoding));
    EXPECT_FALSE(NSString(u"\u203E").dataUsingEncoding(NSShiftJISStringEncoding));
}

TEST(TextEncodings, ofMacRomanHaveTheEuroAndTheIncrement) {
    EXPECT_EQ(decoded("\xDB\xC6\xF0", NSMacOSRomanStringEncoding).utf16(), u"\u20AC\u2206\uF8FF");
    EXPECT_FALSE(NSString(u"\u00A4").dataUsingEncoding(NSMacOSRomanStringEncoding));
    EXPECT_FALSE(NSString(u"\u0394").dataUsingEncoding(NSMacOSRomanStringEncoding));
}

TEST(TextEncodings, dropOnlyTheMarkOfTheirOwnOrder) {
    EXPECT_EQ(decoded("\xFF\xFE", NSUTF16BigEndianStringEncoding).utf16(), u"\xFFFE");
    EXPECT_EQ(decoded("\xFE\xFF", NSUTF16LittleEndianStringEncoding).utf16(), u"\xFFFE");
    EXPECT_EQ(decoded("\xFE\xFF\xFE\xFF", NSUTF16StringEncoding).utf16(), u"\uFEFF") << "only one";
    EXPECT_FALSE(decoded("\xFF\xFE\0\0"s, NSUTF32BigEndianStringEncoding));
    EXPECT_EQ(utf8Of(decoded("\0\0\0a"s, NSUTF32StringEncoding)), "a") << "big-endian without a mark";
}

TEST(TextEncodingsConcurrency, makeTheirTablesOnceForAllThreads) {
    const TextEncoding* const encoding = detail::findTextEncoding(0x80000508);
    const detail::ByteTable* seen[4] = {};
    kit::inThreads(4, [&](std::size_t i) { seen[i] = detail::byteTableOf(*encoding); });
    for (const detail::ByteTable* const table : seen) {
        EXPECT_NE(table, nullptr);
        EXPECT_EQ(table, seen[0]);
    }
}

/// What is left when the C library cannot load anything: it has no descriptor to open a file with.
std::string heldWithoutModules() {
    rlimit before{};
    ::getrlimit(RLIMIT_NOFILE, &before);
    const rlimit limit{3, before.rlim_max};
    if (::setrlimit(RLIMIT_NOFILE, &limit) != 0) {
        return "no limit";
    }
    std::string found;
    for (const std::uint32_t number : {1U, 2U, 3U, 4U, 5U, 6U, 7U, 8U, 9U, 10U, 12U, 21U, 30U, 0x80000A02U}) {
        const NSStringEncoding encoding{number};
        const bool writes = bool(NSString("1").dataUsingEncoding(encoding));
        const bool reads =
            bool(NSString::initWithData_encoding(dataOf({"1\0", number == 10 ? 2U : 1U}), encoding));
        const bool counts = NSString("1").lengthOfBytesUsingEncoding(encoding) != 0;
        found += writes && reads && counts   ? " " + std::to_string(number)
                 : writes || reads || counts ? " half of " + std::to_string(number)
                                             : "";
    }
    ::setrlimit(RLIMIT_NOFILE, &before);
    return found;
}

TEST(TextEncodings, thatTheSystemLacksAreUnknown) {
    EXPECT_EQ(kit::inProcessOfItsOwn({}, heldWithoutModules), " 1 2 4 5 6 7 10");
}

} // namespace
