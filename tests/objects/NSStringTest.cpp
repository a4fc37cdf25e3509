// SPDX-License-Identifier: MIT
// Strings: creating, comparing and reading them, and nil.
#include "foundation/objects/NSString.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSDictionary.h"
#include "foundation/objects/NSSet.h"

#include "tests/kit/AllocationCount.h"
#include "tests/kit/Environment.h"
#include "tests/kit/Values.h"

using namespace ZQFoundation;
using namespace kit;
using namespace std::string_literals;
using namespace std::string_view_literals;

namespace {

constexpr char16_t highSurrogate = 0xD83D;
constexpr char16_t lowSurrogate = 0xDE00;

NSString units(std::u16string_view text) {
    return NSString::stringWithCharacters_length(text.data(), text.size());
}

NSString fileName(std::string_view bytes) {
    return NSString::stringWithFileSystemBytes(bytes.data(), bytes.size());
}

// MARK: Making and reading

TEST(NSString, lengthAndCharactersCountUnits) {
    const struct {
        const char* name;
        NSString text;
        std::u16string_view units;
    } rows[] = {
        {"empty", "", u""},
        {"ascii", "abc", u"abc"},
        {"Latin-1", "caf\u00e9", u"caf\u00e9"},
        {"three bytes", "\u20ac", u"\u20ac"},
        {"a surrogate pair", "a\U0001F600", u"a\xD83D\xDE00"},
        {"the last character", "\U0010FFFF", u"\xDBFF\xDFFF"},
        {"U+0000 inside", "a\0b"sv, u"a\0b"sv},
        {"U+007F and U+0080", "\x7F\u0080", u"\x7F\x80"},
        {"a byte-order mark stays", "\uFEFFx", u"\xFEFFx"},
        {"from units", u"x\u00e9", u"x\u00e9"},
        {"from ascii units", u"xyz", u"xyz"},
    };
    for (const auto& row : rows) {
        ASSERT_EQ(row.text.length(), row.units.size()) << row.name;
        for (std::size_t i = 0; i < row.units.size(); ++i) {
            EXPECT_EQ(row.text.characterAtIndex(i), row.units[i]) << row.name << " at " << i;
        }
        EXPECT_EQ(row.text.utf16(), row.units) << row.name;
    }
}

TEST(NSString, theSameTextIsEqualHoweverItWasMade) {
    const NSString texts[] = {"plain",
                              u"plain",
                              u8"plain",
                              "plain"s,
                              "plain"sv,
                              u"plain"s,
                              units(u"plain"),
                              NSString::stringWithUTF8Bytes("plain", 5),
                              fileName("plain"),
                              NSString("explain").substringFromIndex(2),
                              NSString("pla").stringByAppendingString(u"in"),
                              NSString("plain\u00e9").substringToIndex(5),
                              NSMutableString(u"plain").string()};
    for (const NSString& left : texts) {
        EXPECT_TRUE(left == "plain");
        EXPECT_TRUE(left == u"plain");
        for (const NSString& right : texts) {
            EXPECT_TRUE(left.isEqualToString(right));
            EXPECT_TRUE(left.isEqual(right));
            EXPECT_EQ(left.hash(), right.hash());
        }
    }
}

TEST(NSString, aMessageToANilStringGivesNothing) {
    const NSString none;
    std::string bytes = "untouched";
    EXPECT_FALSE(none);
    EXPECT_EQ(none.length(), 0U);
    EXPECT_EQ(none.characterAtIndex(3), 0);
    EXPECT_EQ(none.utf8(), "");
    EXPECT_FALSE(none.getUTF8(bytes));
    EXPECT_FALSE(none.getFileSystemBytes(bytes));
    EXPECT_EQ(bytes, "untouched");
    EXPECT_EQ(none.utf16(), u"");
    EXPECT_FALSE(none.isEqualToString(""));
    EXPECT_FALSE(none.isEqualToString(none));
    EXPECT_EQ(none.compare("a"), NSOrderedSame);
    EXPECT_EQ(none.caseInsensitiveCompare("a"), NSOrderedSame);
    EXPECT_FALSE(none.hasPrefix("a"));
    EXPECT_FALSE(none.hasSuffix("a"));
    EXPECT_FALSE(none.uppercaseString());
    EXPECT_FALSE(none.lowercaseString());
    EXPECT_FALSE(none.substringToIndex(7));
    EXPECT_FALSE(none.substringFromIndex(7));
    EXPECT_FALSE(none.substringWithRange(3, 4));
    EXPECT_FALSE(none.stringByAppendingString("a"));
    EXPECT_EQ(none.intValue(), 0);
    EXPECT_EQ(none.integerValue(), 0);
    EXPECT_EQ(none.doubleValue(), 0);
    EXPECT_EQ(none.floatValue(), 0);
    EXPECT_FALSE(none.boolValue());
    EXPECT_FALSE(none.lastPathComponent());
    EXPECT_FALSE(none.propertyList());
    EXPECT_FALSE(none.propertyListFromStringsFileFormat());
}

TEST(NSString, nilTextMakesANilStringAndEmptyTextAnEmptyOne) {
    const char* const none = nullptr;
    EXPECT_FALSE(NSString(none));
    EXPECT_FALSE(NSString(StringView()));
    EXPECT_TRUE(NSString(""));
    EXPECT_TRUE(NSString(""sv));
    EXPECT_TRUE(NSString::string());
    EXPECT_EQ(NSString::string().length(), 0U);
}

TEST(NSString, surrogatesWithoutPartnerAreKept) {
    const std::u16string high(1, highSurrogate);
    const std::u16string low(1, lowSurrogate);
    const NSString pair = "\U0001F600";
    const NSString left = pair.substringToIndex(1);
    const NSString right = pair.substringFromIndex(1);
    EXPECT_EQ(left.utf16(), high);
    EXPECT_EQ(right.utf16(), low);
    EXPECT_EQ(left.stringByAppendingString(right), pair);
    EXPECT_EQ(right.stringByAppendingString(left).utf16(), low + high);

    const NSString copy = left;
    EXPECT_EQ(copy.utf16(), high);
    EXPECT_EQ(NSString(StringView(left)).utf16(), high);
    NSMutableString builder;
    builder.appendString("a");
    builder.appendCharacter(highSurrogate);
    builder.appendString(right);
    EXPECT_EQ(builder.string().utf16(), u"a" + high + low);
    EXPECT_NE(left, right);
    EXPECT_EQ((NSDictionary{{left, 1}, {right, 2}}).objectForKey(right), 2);
    EXPECT_EQ(shown(NSArray::arrayWithObject(left)), "(\n    \"\\Ud83d\"\n)");
}

TEST(NSString, anUnpairedSurrogateReadsAsAReplacementCharacterUnlessAskedExactly) {
    const NSString text = units(u"a\xD83D"
                                u"b");
    EXPECT_EQ(text.utf8(), "a\uFFFDb");
    std::string exact = "untouched";
    EXPECT_FALSE(text.getUTF8(exact));
    EXPECT_EQ(exact, "untouched");
    EXPECT_TRUE(NSString("a\U0001F600").getUTF8(exact));
    EXPECT_EQ(exact, "a\U0001F600");
    EXPECT_TRUE(NSString("").getUTF8(exact));
    EXPECT_EQ(exact, "");
}

// Each row is ill-formed: read implicitly it shows U+FFFD, read by name there is no string.
TEST(NSString, illFormedBytesBecomeReplacementCharactersOrNil) {
    const struct {
        const char* name;
        std::string_view bytes;
        std::u16string_view read;
    } rows[] = {
        {"a stray continuation byte", "a\x80z"sv, u"a\xFFFDz"},
        {"cut after two of three", "a\xE2\x82"sv, u"a\xFFFD"},
        {"overlong zero", "\xC0\x80"sv, u"\xFFFD\xFFFD"},
        {"two cut ones in a row", "\xE2\x82\xE2\x82\xAC"sv, u"\xFFFD\x20AC"},
        {"after a long ascii run", "0123456789abcdef0123456789abcdef\xFEz"sv,
         u"0123456789abcdef0123456789abcdef\xFFFDz"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(NSString(row.bytes).utf16(), row.read) << row.name;
        EXPECT_FALSE(NSString::stringWithUTF8Bytes(row.bytes.data(), row.bytes.size())) << row.name;
    }
    EXPECT_EQ(NSString::stringWithUTF8Bytes("a\0b", 3).length(), 3U);
    EXPECT_TRUE(NSString::stringWithUTF8Bytes("", 0));
}

TEST(NSString, bytesOfAFileNameSurviveTheWayThereAndBack) {
    std::vector<std::string> names = {"plain", "caf\u00e9", "a\xC3", "\xED\xB3\xBF", "/a/b\xE9/c"};
    for (int byte = 1; byte < 256; ++byte) {
        names.push_back("n"s + static_cast<char>(byte));
        names.push_back(static_cast<char>(byte) + "\u00e9"s);
    }
    for (const std::string& name : names) {
        std::string back;
        EXPECT_TRUE(fileName(name).getFileSystemBytes(back)) << testing::PrintToString(name);
        EXPECT_EQ(back, name);
    }
}

TEST(NSString, aBadByteOfAFileNameIsTheUnitDC00PlusByte) {
    EXPECT_EQ(fileName("a\xFFz").utf16(), u"a\xDCFFz");
    EXPECT_EQ(fileName("caf\xE9").utf16(), u"caf\xDCE9");
    EXPECT_EQ(fileName("caf\u00e9").utf16(), u"caf\u00e9");
    std::string bytes = "untouched";
    EXPECT_FALSE(units(u"a\0b"sv).getFileSystemBytes(bytes));
    EXPECT_FALSE(units(u"\xDD00").getFileSystemBytes(bytes)) << "stands for no byte";
}

// MARK: Comparing

TEST(NSString, equalityComparesUnitsExactly) {
    EXPECT_FALSE(NSString("caf\u00e9").isEqualToString("cafe\u0301"));
    EXPECT_FALSE(NSString("a").isEqualToString("A"));
    EXPECT_FALSE(NSString("a").isEqualToString("ab"));
    EXPECT_FALSE(NSString("a\0b"sv).isEqualToString("a\0c"sv));
    EXPECT_FALSE(NSString("a\0b"sv).isEqualToString("a"));
    EXPECT_TRUE(NSString("a\0b"sv).isEqualToString(u"a\0b"sv));
    EXPECT_TRUE(NSString("caf\u00e9").isEqualToString("caf\u00e9"));
    EXPECT_TRUE(NSString("caf\u00e9").isEqualToString(u"caf\u00e9"));
    EXPECT_FALSE(NSString("a").isEqualToString(nullptr));
    EXPECT_FALSE(NSString("").isEqualToString(nullptr));
    EXPECT_TRUE(NSString("").isEqualToString(""));
    EXPECT_EQ((NSDictionary{{"caf\u00e9", 1}, {"cafe\u0301", 2}}).count(), 2U);
    EXPECT_EQ((NSSet{"caf\u00e9", "cafe\u0301"}).count(), 2U);
}

TEST(NSString, upperAndLowerCaseUseTheFullMapping) {
    const struct {
        const char* text;
        const char* upper;
    } upperRows[] = {
        {"abc1", "ABC1"},           {"stra\u00dfe", "STRASSE"},       {"\u0130", "\u0130"},
        {"\uFB01x", "FIX"},         {"\u03C2\u03C3", "\u03A3\u03A3"}, {"\U00010428", "\U00010400"},
        {"caf\u00e9", "CAF\u00c9"},
    };
    for (const auto& row : upperRows) {
        EXPECT_EQ(utf8Of(NSString(row.text).uppercaseString()), row.upper) << row.text;
    }
    EXPECT_EQ(utf8Of(NSString("ABC\u00c9").lowercaseString()), "abc\u00e9");
    EXPECT_EQ(utf8Of(NSString("\u0130I").lowercaseString()), "i\u0307i");
    EXPECT_EQ(utf8Of(NSString("\u039F\u03A3").lowercaseString()), "\u03BF\u03C3"); // not a final sigma
    EXPECT_EQ(utf8Of(NSString("\U00010400").lowercaseString()), "\U00010428");
    EXPECT_EQ(units(u"a\xD83D").uppercaseString().utf16(), u"A\xD83D");
    EXPECT_EQ(NSString("a\0b"sv).uppercaseString().utf16(), u"A\0B"sv);
}

TEST(NSString, prefixesAndSuffixesCompareUnitsAndAnEmptyOneNeverFits) {
    const struct {
        const char* name;
        NSString text;
        NSString part;
        bool prefix;
        bool suffix;
    } rows[] = {
        {"front", "TraceKey", "Trace", true, false},
        {"end", "TraceKey", "Key", false, true},
        {"whole", "Trace", "Trace", true, true},
        {"case counts", "Trace", "trace", false, false},
        {"empty", "Trace", "", false, false},
        {"empty in empty", "", "", false, false},
        {"nil", "Trace", nullptr, false, false},
        {"longer than the text", "ab", "abc", false, false},
        {"in front of a composed sequence", "e\u0301", "e", true, false},
        {"a mark alone", "e\u0301", "\u0301", false, true},
        {"composed is not decomposed", "\u00e9", "e", false, false},
        {"half a pair", "\U0001F600x", NSString("\U0001F600").substringToIndex(1), true, false},
        {"U+0000", "a\0b"sv, "a\0"sv, true, false},
        {"ascii in a longer other text", "abc\u00e9", "abc", true, false},
        {"other text in ascii", "abc", "abc\u00e9", false, false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.text.hasPrefix(row.part), row.prefix) << row.name;
        EXPECT_EQ(row.text.hasSuffix(row.part), row.suffix) << row.name;
    }
}

// MARK: Parts

TEST(NSString, substringsEndAtTheLengthAndRaiseBeyond) {
    const NSString text = "abc";
    EXPECT_EQ(text.substringToIndex(0), "");
    EXPECT_EQ(text.substringToIndex(2), "ab");
    EXPECT_EQ(text.substringToIndex(3), "abc");
    EXPECT_EQ(text.substringFromIndex(0), "abc");
    EXPECT_EQ(text.substringFromIndex(3), "");
    EXPECT_EQ(text.substringWithRange(1, 1), "b");
    EXPECT_EQ(text.substringWithRange(3, 0), "");

    const std::size_t huge = std::numeric_limits<std::size_t>::max();
    char16_t buffer[4] = {};
    EXPECT_EQ(raised([&] { text.substringToIndex(4); }), NSRangeException);
    EXPECT_EQ(raised([&] { text.substringFromIndex(4); }), NSRangeException);
    EXPECT_EQ(raised([&] { text.substringWithRange(2, 2); }), NSRangeException);
    EXPECT_EQ(raised([&] { text.substringWithRange(4, 0); }), NSRangeException);
    EXPECT_EQ(raised([&] { text.substringWithRange(2, huge); }), NSRangeException) << "the sum overflows";
    EXPECT_EQ(raised([&] { text.substringWithRange(huge, 2); }), NSRangeException) << "the sum overflows";
    EXPECT_EQ(raised([&] { text.characterAtIndex(3); }), NSRangeException);
    EXPECT_EQ(raised([&] { text.characterAtIndex(huge); }), NSRangeException);
    EXPECT_EQ(raised([&] { text.getCharacters(buffer, 2, 2); }), NSRangeException);
    EXPECT_EQ(raised([&] { text.getCharacters(buffer, huge, 2); }), NSRangeException);
    EXPECT_EQ(raised([&] { NSString("").characterAtIndex(0); }), NSRangeException);
}

TEST(NSString, charactersAreCopiedInBothForms) {
    char16_t buffer[3] = {u'-', u'-', u'-'};
    NSString("abcd").getCharacters(buffer, 1, 2);
    EXPECT_EQ(std::u16string_view(buffer, 3), u"bc-");
    NSString("ab\u20acd").getCharacters(buffer, 2, 2);
    EXPECT_EQ(std::u16string_view(buffer, 3), u"\u20acd-");
    NSString("ab").getCharacters(buffer, 2, 0);
    EXPECT_EQ(std::u16string_view(buffer, 3), u"\u20acd-");
}

TEST(NSString, appendingJoinsAnyForms) {
    EXPECT_EQ(NSString("a").stringByAppendingString("b"), "ab");
    EXPECT_EQ(NSString("a").stringByAppendingString("\u00e9"), "a\u00e9");
    EXPECT_EQ(NSString("\u00e9").stringByAppendingString("b"), "\u00e9b");
    EXPECT_EQ(NSString("").stringByAppendingString(""), "");
    EXPECT_EQ(NSString("a\0"sv).stringByAppendingString("\0b"sv).length(), 4U);
}

// MARK: Numeric views

const struct {
    NSString text;
    int integer;
    double real;
} readings[] = {
    {"", 0, 0},
    {" -12.9kg", -12, -12.9},
    {"1e+3", 1, 1000},
    {"0x10", 0, 0},
    {"2147483648", 2147483647, 2147483648.0},
    {"-99999999999999999999", std::numeric_limits<int>::lowest(), -1e20},
    {"\u0663", 0, 0},
    {u"\u3000\u00857", 7, 7},
    {"-1e400", -1, -infinity},
    {"inf", 0, 0},
    {"12\0"
     "34"sv,
     12, 12},
    {u"12\u00e9", 12, 12},
};

TEST(NSStringNumericViews, readALeadingDecimalNumber) {
    for (const auto& row : readings) {
        EXPECT_EQ(row.text.intValue(), row.integer) << row.text.utf8();
        EXPECT_EQ(row.text.doubleValue(), row.real) << row.text.utf8();
    }
}

TEST(NSStringNumericViews, wideIntegersSaturateAtSixtyFourBits) {
    EXPECT_EQ(NSString("5000000000").integerValue(), 5000000000);
    EXPECT_EQ(NSString("9223372036854775807").integerValue(), INT64_MAX);
    EXPECT_EQ(NSString("9223372036854775808").longLongValue(), INT64_MAX);
    EXPECT_EQ(NSString("18446744073709551617").longLongValue(), INT64_MAX);
    EXPECT_EQ(NSString("-9223372036854775808").integerValue(), INT64_MIN);
    EXPECT_EQ(NSString("-9223372036854775809").integerValue(), INT64_MIN);
    EXPECT_EQ(NSString("000000000000000000000000000012").integerValue(), 12);
}

TEST(NSStringNumericViews, floatsAreDoublesRoundedToSingle) {
    EXPECT_EQ(NSString("2.5kg").floatValue(), 2.5F);
    EXPECT_EQ(NSString("0.1").floatValue(), 0.1F);
    EXPECT_EQ(NSString("16777217").floatValue(), 16777216.0F);
    EXPECT_EQ(NSString("1e39").floatValue(), std::numeric_limits<float>::infinity());
    EXPECT_EQ(NSString("-1e39").floatValue(), -std::numeric_limits<float>::infinity());
    EXPECT_EQ(NSString("abc").floatValue(), 0.0F);
}

TEST(NSStringNumericViews, doNotFollowTheLocale) {
    const DecimalCommaLocale locale;
    ASSERT_TRUE(locale.isSet());
    EXPECT_EQ(NSString("2.5").doubleValue(), 2.5);
    EXPECT_EQ(NSString("2,5").doubleValue(), 2);
    EXPECT_EQ(shown(2.5), "2.5");
    EXPECT_EQ(shown(2.5F), "2.5");
    EXPECT_EQ(NSString("i").uppercaseString(), "I");
}

// MARK: Builders

TEST(NSMutableString, buildsPieceByPieceInAnyForm) {
    NSMutableString builder;
    EXPECT_EQ(builder.length(), 0U);
    builder.appendString("ab");
    builder.appendString(nullptr);
    builder.appendString("");
    builder.appendCharacter(u'c');
    EXPECT_EQ(builder.length(), 3U);
    builder.appendString("\u00e9");
    builder.appendString(u"d\u20ac");
    builder.appendString(NSString("e"));
    builder.appendCharacter(0);
    builder.appendFormat("%d-%@", 7, "x");
    EXPECT_EQ(builder.length(), 11U);
    EXPECT_EQ(builder.string().utf16(), u"abc\u00e9d\u20ace\0"
                                        u"7-x"sv);
}

TEST(NSMutableString, isEmptyOnceTheTextIsHandedOver) {
    NSMutableString builder("start");
    EXPECT_EQ(builder.string(), "start");
    EXPECT_EQ(builder.length(), 0U);
    EXPECT_EQ(builder.string(), "");
    builder.appendString("again");
    EXPECT_EQ(builder.string(), "again");
}

TEST(NSMutableString, movesWithItsText) {
    NSMutableString first("one");
    NSMutableString second(std::move(first));
    second.appendString("-two");
    NSMutableString third;
    third.appendString("dropped");
    third = std::move(second);
    EXPECT_EQ(third.string(), "one-two");
    static_assert(!std::is_copy_constructible_v<NSMutableString>);
}

TEST(NSMutableString, handsALongTextOverWithoutACopy) {
    const std::string piece(1000, 'x');
    for (const char* last : {"", "\u00e9"}) {
        NSMutableString builder;
        for (int i = 0; i < 1000; ++i) {
            builder.appendString(piece);
        }
        builder.appendString(last);
        const std::size_t expected = builder.length();
        const std::size_t before = kit::AllocationCount::now();
        const NSString text = builder.string();
        const std::size_t after = kit::AllocationCount::now();
        EXPECT_EQ(after, before);
        EXPECT_EQ(text.length(), expected);
    }
}

TEST(NSMutableString, aTextThatOnlyPassedThroughUnitsEqualsItsAsciiForm) {
    NSMutableString builder;
    builder.appendString(u"abc");
    builder.appendCharacter(u'd');
    const NSString text = builder.string();
    EXPECT_EQ(text, "abcd");
    EXPECT_EQ(text.hash(), NSString("abcd").hash());
    EXPECT_EQ((NSDictionary{{text, 1}}).objectForKey("abcd"), 1);
}

} // namespace
