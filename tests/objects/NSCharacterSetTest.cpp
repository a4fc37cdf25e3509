// SPDX-License-Identifier: MIT
// Sets of characters: the named ones, those of a text, and their operations.
#include "foundation/objects/NSCharacterSet.h"

#include <gtest/gtest.h>

#include "foundation/objects/CharacterSetPages.h"
#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSSet.h"
#include "tests/kit/AllocationCount.h"
#include "tests/kit/Threads.h"
#include "tests/kit/Values.h"

namespace {

using namespace ZQFoundation;
using kit::raised;
using kit::shown;

using detail::codeSpace;

std::size_t memberCount(const NSCharacterSet& set) {
    std::size_t count = 0;
    for (char32_t codePoint = 0; codePoint < codeSpace; ++codePoint) {
        count += set.longCharacterIsMember(codePoint) ? 1 : 0;
    }
    return count;
}

NSCharacterSet rangeSet(std::size_t location, std::size_t length) {
    return NSCharacterSet::characterSetWithRange(NSMakeRange(location, length));
}

struct NamedRow {
    const char* name;
    NSCharacterSet (*set)();
    std::size_t count;
    std::u32string_view members;
    std::u32string_view others;
};

using namespace std::literals;

const NamedRow namedRows[] = {
    {"whitespace", NSCharacterSet::whitespaceCharacterSet, 18,
     U"\x09\x20\xA0\x1680\x2000\x200A\x202F\x205F\x3000"sv,
     U"\x0A\x0B\x1C\x1F\x85\x180E\x200B\x2028\xFEFF"
     U"a"sv},
    {"newline", NSCharacterSet::newlineCharacterSet, 7, U"\x0A\x0B\x0C\x0D\x85\x2028\x2029"sv,
     U"\x09\x0E\x1C\x1D\x1E\x1F\x20\x84\x86\x2027\x202A"sv},
    {"whitespaceAndNewline", NSCharacterSet::whitespaceAndNewlineCharacterSet, 25,
     U"\x09\x0A\x0D\x20\x85\xA0\x2028\x2029\x3000"sv, U"\x08\x0E\x1C\x1F\x200B"sv},
    {"control", NSCharacterSet::controlCharacterSet, 235,
     U"\0\x09\x0A\x1F\x7F\x9F\xAD\x600\x605\x61C\x6DD\x70F\x180E\x200B\x200F\x202A\x202E\x2060\x2064\x2066"
     U"\x206F\xFEFF\xFFF9\xFFFB\xE0001"sv,
     U"\x20\x7E\xA0\x2028\x2029\x2065\xD800\xDFFF\xFFFC"sv},
    {"decimalDigit", NSCharacterSet::decimalDigitCharacterSet, 680, U"09\x660\x663\xFF11\x1D7CE\x1D7FF"sv,
     U"/:\xB2\xBD\x2160\x2460\x3007"sv},
    {"letter", NSCharacterSet::letterCharacterSet, 138554,
     U"azAZ\xE9\xDF\x1C5\x2B0\x5D0\x301\x903\x4E00\x10000"sv, U"0_ @[`{\xD7\xF7\x2160\xD800"sv},
    {"lowercaseLetter", NSCharacterSet::lowercaseLetterCharacterSet, 2233, U"az\xE9\xDF\x1D41A"sv,
     U"AZ\xC9\x1C5\x2B0"
     U"0"sv},
    {"uppercaseLetter", NSCharacterSet::uppercaseLetterCharacterSet, 1862, U"AZ\xC9\x1C5\x1D400"sv,
     U"az\xE9\xDF"sv},
    {"alphanumeric", NSCharacterSet::alphanumericCharacterSet, 140385,
     U"azAZ09\xE9\xB2\xBD\x2160\x2460\x301"sv, U"_- .\x378"sv},
    {"punctuation", NSCharacterSet::punctuationCharacterSet, 842, U"!\"#%&'()*,-./:;?@[\\]_{}\xA1\x2014"sv,
     U"$+<=>^`|~a0 \xA9"sv},
    {"symbol", NSCharacterSet::symbolCharacterSet, 7770, U"$+<=>^`|~\xA9\xD7\x20AC\x1F600"sv, U"!a0 _\xB2"sv},
};

TEST(NSCharacterSet, hasTheNamedMembers) {
    for (const NamedRow& row : namedRows) {
        const NSCharacterSet set = row.set();
        for (const char32_t codePoint : row.members) {
            EXPECT_TRUE(set.longCharacterIsMember(codePoint)) << row.name << std::hex << " " << +codePoint;
            if (codePoint < 0x10000) {
                EXPECT_TRUE(set.characterIsMember(static_cast<char16_t>(codePoint)))
                    << row.name << std::hex << " " << +codePoint;
            }
        }
        for (const char32_t codePoint : row.others) {
            EXPECT_FALSE(set.longCharacterIsMember(codePoint)) << row.name << std::hex << " " << +codePoint;
            if (codePoint < 0x10000) {
                EXPECT_FALSE(set.characterIsMember(static_cast<char16_t>(codePoint)))
                    << row.name << std::hex << " " << +codePoint;
            }
        }
        EXPECT_EQ(memberCount(set), row.count) << row.name;
    }
}

TEST(NSCharacterSet, doesNotAllocateForANamedSetAfterTheFirstCall) {
    for (const NamedRow& row : namedRows) {
        const NSCharacterSet first = row.set();
        const std::size_t before = kit::AllocationCount::now();
        const NSCharacterSet second = row.set();
        EXPECT_EQ(kit::AllocationCount::now(), before) << row.name;
        EXPECT_EQ(detail::Access::body(first), detail::Access::body(second)) << row.name;
    }
}

TEST(NSCharacterSet, makesEachNamedSetOnceForAllThreads) {
    constexpr std::size_t threadCount = 4;
    for (const NamedRow& row : namedRows) {
        const void* bodies[threadCount] = {};
        kit::inThreads(threadCount, [&](std::size_t i) { bodies[i] = detail::Access::body(row.set()); });
        for (const void* body : bodies) {
            EXPECT_EQ(body, bodies[0]) << row.name;
        }
    }
}

TEST(NSCharacterSet, takesASurrogatePairAsOneCharacter) {
    const NSCharacterSet set = NSCharacterSet::characterSetWithCharactersInString(u"a\u00E9\U0001F600");
    EXPECT_TRUE(set.characterIsMember(u'a'));
    EXPECT_TRUE(set.characterIsMember(u'\u00E9'));
    EXPECT_TRUE(set.longCharacterIsMember(0x1F600));
    EXPECT_EQ(memberCount(set), 3U) << "no half of the pair";
}

TEST(NSCharacterSet, takesAnUnpairedSurrogateAsItself) {
    const char16_t units[] = {0xDE00, 0xD83D};
    const NSCharacterSet set = NSCharacterSet::characterSetWithCharactersInString(StringView(units, 2));
    EXPECT_TRUE(set.characterIsMember(0xDE00));
    EXPECT_TRUE(set.characterIsMember(0xD83D));
    EXPECT_EQ(memberCount(set), 2U);
}

TEST(NSCharacterSet, isEmptyForTheEmptyTextAndNilForNil) {
    const NSCharacterSet empty = NSCharacterSet::characterSetWithCharactersInString("");
    EXPECT_TRUE(empty);
    EXPECT_EQ(memberCount(empty), 0U);
    EXPECT_FALSE(NSCharacterSet::characterSetWithCharactersInString(nullptr));
}

TEST(NSCharacterSet, ofNilHasNoMembers) {
    const NSCharacterSet none;
    EXPECT_FALSE(none.characterIsMember(0));
    EXPECT_FALSE(none.characterIsMember(u'a'));
    EXPECT_FALSE(none.longCharacterIsMember(0x1F600));
    EXPECT_FALSE(none.invertedSet());
    EXPECT_FALSE(none.isSupersetOfSet(none));
    EXPECT_FALSE(none.isSupersetOfSet(NSCharacterSet::emptyCharacterSet()));
}

TEST(NSCharacterSet, containsTheCodePointsOfARange) {
    struct Row {
        std::size_t location;
        std::size_t length;
    };
    constexpr Row rows[] = {
        {0, 0},         {0, 1},        {'a', 26},     {0xFF, 2},          {0x80, 0x400},
        {0x100, 0x100}, {0xFFFF, 2},   {0xD800, 1},   {0x10000, 0x10000}, {0xFF00, 0x20200},
        {0, 0x110000},  {0x10FFFF, 1}, {0x110000, 0}, {SIZE_MAX, 0}};
    for (const Row& row : rows) {
        const NSCharacterSet set = rangeSet(row.location, row.length);
        for (char32_t codePoint = 0; codePoint < codeSpace; ++codePoint) {
            const bool expected = codePoint >= row.location && codePoint - row.location < row.length;
            ASSERT_EQ(set.longCharacterIsMember(codePoint), expected)
                << std::hex << row.location << " " << row.length << " " << +codePoint;
        }
        EXPECT_FALSE(set.longCharacterIsMember(codeSpace));
    }
}

TEST(NSCharacterSet, refusesARangeBeyondTheLastCodePoint) {
    EXPECT_EQ(raised([] { rangeSet(0x110000, 1); }), "NSInvalidArgumentException");
    EXPECT_EQ(raised([] { rangeSet(0x10FFFF, 2); }), "NSInvalidArgumentException");
    EXPECT_EQ(raised([] { rangeSet(1, SIZE_MAX); }), "NSInvalidArgumentException");
    EXPECT_EQ(raised([] { rangeSet(SIZE_MAX, 1); }), "NSInvalidArgumentException");
    EXPECT_EQ(raised([] { NSMutableCharacterSet().addCharactersInRange(NSMakeRange(0, 0x110001)); }),
              "NSInvalidArgumentException");
    EXPECT_EQ(raised([] { NSMutableCharacterSet().removeCharactersInRange(NSMakeRange(0x110000, 1)); }),
              "NSInvalidArgumentException");
}

TEST(NSCharacterSet, invertsEveryCodePoint) {
    const NSCharacterSet sets[] = {NSCharacterSet::letterCharacterSet(),
                                   NSCharacterSet::characterSetWithCharactersInString("x\U0001F600"),
                                   NSCharacterSet::emptyCharacterSet(), rangeSet(0, codeSpace)};
    for (const NSCharacterSet& set : sets) {
        const NSCharacterSet inverted = set.invertedSet();
        for (char32_t codePoint = 0; codePoint < codeSpace; ++codePoint) {
            ASSERT_NE(set.longCharacterIsMember(codePoint), inverted.longCharacterIsMember(codePoint));
        }
        EXPECT_FALSE(inverted.longCharacterIsMember(codeSpace));
        EXPECT_EQ(inverted.invertedSet(), set);
    }
}

TEST(NSCharacterSet, hasSurrogatesInTheInverseOfANamedSet) {
    EXPECT_TRUE(NSCharacterSet::letterCharacterSet().invertedSet().characterIsMember(0xD800));
}

TEST(NSCharacterSet, knowsWhetherItIncludesAnother) {
    const NSCharacterSet letters = NSCharacterSet::letterCharacterSet();
    const NSCharacterSet lower = NSCharacterSet::lowercaseLetterCharacterSet();
    EXPECT_TRUE(letters.isSupersetOfSet(lower));
    EXPECT_TRUE(letters.isSupersetOfSet(letters));
    EXPECT_FALSE(lower.isSupersetOfSet(letters));
    EXPECT_TRUE(lower.isSupersetOfSet(NSCharacterSet::emptyCharacterSet()));
    EXPECT_TRUE(lower.isSupersetOfSet(nullptr));
    EXPECT_TRUE(rangeSet(0, codeSpace).isSupersetOfSet(letters));
    EXPECT_FALSE(rangeSet(0, 0x10000).isSupersetOfSet(letters));
}

TEST(NSCharacterSet, equalsASetOfTheSameMembersHoweverItWasMade) {
    NSMutableCharacterSet byParts;
    byParts.addCharactersInRange(NSMakeRange(0, 0x300));
    byParts.addCharactersInRange(NSMakeRange(0x20000, 0x10000));
    byParts.removeCharactersInRange(NSMakeRange(0x80, 0x280));
    byParts.removeCharactersInRange(NSMakeRange(0x20000, 0x10000));
    byParts.addCharactersInString("€");
    byParts.removeCharactersInString("€");
    const NSCharacterSet built = byParts.characterSet();
    const NSCharacterSet ascii = rangeSet(0, 0x80);
    EXPECT_EQ(built, ascii);
    EXPECT_TRUE(built.isEqual(ascii));
    EXPECT_EQ(built.hash(), ascii.hash());
    EXPECT_NE(ascii, rangeSet(0, 0x7F));
    EXPECT_NE(ascii, rangeSet(0x10000, 0x80));
    EXPECT_FALSE(ascii.isEqual(NSObject("a")));
    EXPECT_FALSE(NSObject("a").isEqual(ascii));
    EXPECT_FALSE(ascii.isEqual(nullptr));
    EXPECT_NE(rangeSet(0x10000, 0x10000), rangeSet(0x20000, 0x10000));
}

TEST(NSCharacterSet, isAValueLikeOthers) {
    const NSObject object = NSCharacterSet::newlineCharacterSet();
    EXPECT_EQ(object.className(), "NSCharacterSet");
    EXPECT_TRUE(object.as<NSCharacterSet>().characterIsMember(u'\n'));
    EXPECT_FALSE(object.as<NSString>());
    EXPECT_FALSE(NSCharacterSet(NSObject("\n")));
    EXPECT_TRUE(NSSet{object}.containsObject(rangeSet(0x0A, 4)) == false);
    EXPECT_TRUE(
        NSSet{object}.containsObject(NSCharacterSet::newlineCharacterSet().invertedSet().invertedSet()));
    const NSArray held{rangeSet('a', 3), object}; // released with the array
    EXPECT_EQ(held.objectAtIndex(0), rangeSet('a', 3));
}

TEST(NSCharacterSet, showsItsMembers) {
    EXPECT_EQ(shown(NSCharacterSet::newlineCharacterSet()), "<NSCharacterSet: 000A-000D 0085 2028-2029>");
    EXPECT_EQ(shown(NSCharacterSet::emptyCharacterSet()), "<NSCharacterSet:>");
    EXPECT_EQ(shown(rangeSet(0, codeSpace)), "<NSCharacterSet: 0000-10FFFF>");
    EXPECT_EQ(shown(NSCharacterSet::characterSetWithCharactersInString("\U0001F600")),
              "<NSCharacterSet: 1F600>");
    EXPECT_EQ(shown(NSCharacterSet::characterSetWithCharactersInString("acegikmoqsuwy02468")),
              "<NSCharacterSet: 0030 0032 0034 0036 0038 0061 0063 0065 0067 0069 006B 006D 006F 0071 0073 "
              "0075 ...>");
}

TEST(NSMutableCharacterSet, leavesTheSetThatItWasMadeFromAlone) {
    const NSCharacterSet digits = rangeSet('0', 10);
    NSMutableCharacterSet copy(digits);
    copy.addCharactersInString("abc");
    copy.removeCharactersInString("0");
    EXPECT_TRUE(copy.characterIsMember(u'b'));
    EXPECT_FALSE(copy.characterIsMember(u'0'));
    EXPECT_FALSE(digits.characterIsMember(u'b'));
    EXPECT_TRUE(digits.characterIsMember(u'0'));
}

TEST(NSMutableCharacterSet, changesNothingForNil) {
    NSMutableCharacterSet set(rangeSet('a', 3));
    set.addCharactersInString(nullptr);
    set.removeCharactersInString(nullptr);
    set.formUnionWithCharacterSet(nullptr);
    set.formIntersectionWithCharacterSet(nullptr);
    EXPECT_EQ(set.characterSet(), rangeSet('a', 3));
    EXPECT_EQ(NSMutableCharacterSet(NSCharacterSet()).characterSet(), NSCharacterSet::emptyCharacterSet());
}

TEST(NSMutableCharacterSet, inverts) {
    NSMutableCharacterSet set;
    set.invert();
    EXPECT_TRUE(set.longCharacterIsMember(0x10FFFF));
    EXPECT_FALSE(set.longCharacterIsMember(codeSpace));
    set.removeCharactersInRange(NSMakeRange(0, 'a'));
    set.invert();
    EXPECT_EQ(set.characterSet(), rangeSet(0, 'a'));
}

TEST(NSMutableCharacterSet, isEmptyOnceItHandedItsMembersOver) {
    NSMutableCharacterSet set(rangeSet('a', 3));
    EXPECT_EQ(set.characterSet(), rangeSet('a', 3));
    EXPECT_FALSE(set.characterIsMember(u'a'));
    EXPECT_EQ(set.characterSet(), NSCharacterSet::emptyCharacterSet());
}

TEST(NSMutableCharacterSet, isUsableAfterItWasMovedFrom) {
    NSMutableCharacterSet set(rangeSet('a', 3));
    NSMutableCharacterSet taken(std::move(set));
    EXPECT_FALSE(set.characterIsMember(u'a')); // NOLINT(bugprone-use-after-move)
    set.addCharactersInString("z");
    set = std::move(taken);
    EXPECT_EQ(set.characterSet(), rangeSet('a', 3));
    EXPECT_EQ(taken.characterSet(), NSCharacterSet::emptyCharacterSet());
}

} // namespace
