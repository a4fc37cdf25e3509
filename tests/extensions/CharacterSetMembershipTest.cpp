// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <thread>
#include <vector>

#include "foundation/objects/NSCharacterSet.h"
#include "foundation/objects/NSString.h"

using namespace ZQFoundation;

namespace {

struct Stretch {
    char32_t first;
    char32_t last;
};

// Category Zs.
constexpr Stretch spaceSeparators[] = {{0x20, 0x20},     {0xA0, 0xA0},     {0x1680, 0x1680}, {0x2000, 0x200A},
                                       {0x202F, 0x202F}, {0x205F, 0x205F}, {0x3000, 0x3000}};

// Category Cc.
constexpr Stretch controls[] = {{0x00, 0x1F}, {0x7F, 0x9F}};

// Category Cf.
constexpr Stretch formats[] = {{0xAD, 0xAD},       {0x600, 0x605},     {0x61C, 0x61C},     {0x6DD, 0x6DD},
                               {0x70F, 0x70F},     {0x890, 0x891},     {0x8E2, 0x8E2},     {0x180E, 0x180E},
                               {0x200B, 0x200F},   {0x202A, 0x202E},   {0x2060, 0x2064},   {0x2066, 0x206F},
                               {0xFEFF, 0xFEFF},   {0xFFF9, 0xFFFB},   {0x110BD, 0x110BD}, {0x110CD, 0x110CD},
                               {0x13430, 0x1343F}, {0x1BCA0, 0x1BCA3}, {0x1D173, 0x1D17A}, {0xE0001, 0xE0001},
                               {0xE0020, 0xE007F}};

// Category Nd of one unit: ten from each of these on.
constexpr char32_t zeros[] = {0x30,   0x660,  0x6F0,  0x7C0,  0x966,  0x9E6,  0xA66,  0xAE6,  0xB66,  0xBE6,
                              0xC66,  0xCE6,  0xD66,  0xDE6,  0xE50,  0xED0,  0xF20,  0x1040, 0x1090, 0x17E0,
                              0x1810, 0x1946, 0x19D0, 0x1A80, 0x1A90, 0x1B50, 0x1BB0, 0x1C40, 0x1C50, 0xA620,
                              0xA8D0, 0xA900, 0xA9D0, 0xA9F0, 0xAA50, 0xABF0, 0xFF10};

template <std::size_t count>
bool isIn(const Stretch (&stretches)[count], char32_t codePoint) {
    return std::any_of(std::begin(stretches), std::end(stretches), [codePoint](const Stretch& stretch) {
        return codePoint >= stretch.first && codePoint <= stretch.last;
    });
}

bool isWhiteSpace(char32_t codePoint) { return codePoint == 9 || isIn(spaceSeparators, codePoint); }

bool isNewline(char32_t codePoint) {
    return (codePoint >= 0x0A && codePoint <= 0x0D) || codePoint == 0x85 || codePoint == 0x2028 ||
           codePoint == 0x2029;
}

bool isControl(char32_t codePoint) { return isIn(controls, codePoint) || isIn(formats, codePoint); }

bool isDecimalDigit(char32_t codePoint) {
    return std::any_of(std::begin(zeros), std::end(zeros),
                       [codePoint](char32_t zero) { return codePoint >= zero && codePoint < zero + 10; });
}

/// Expects the same members of one unit as by the rule; `longCharacterIsMember` agrees.
template <class Rule>
void expectUnits(const char* name, const NSCharacterSet& set, const Rule& rule) {
    for (std::uint32_t value = 0; value <= 0xFFFF; ++value) {
        ASSERT_EQ(set.characterIsMember(static_cast<char16_t>(value)), rule(char32_t{value}))
            << name << " " << std::hex << value;
        ASSERT_EQ(set.longCharacterIsMember(char32_t{value}), rule(char32_t{value}))
            << name << " " << std::hex << value;
    }
}

TEST(CharacterSetMembership, ofWhiteSpaceNewlinesControlsAndDigitsByCategory) {
    expectUnits("white space", NSCharacterSet::whitespaceCharacterSet(), isWhiteSpace);
    expectUnits("newlines", NSCharacterSet::newlineCharacterSet(), isNewline);
    expectUnits("white space and newlines", NSCharacterSet::whitespaceAndNewlineCharacterSet(),
                [](char32_t unit) { return isWhiteSpace(unit) || isNewline(unit); });
    expectUnits("controls", NSCharacterSet::controlCharacterSet(), isControl);
    expectUnits("digits", NSCharacterSet::decimalDigitCharacterSet(), isDecimalDigit);
}

TEST(CharacterSetMembership, ofWhiteSpaceAndControlsIsTheUnion) {
    const NSCharacterSet set = NSCharacterSet::whitespaceAndControlCharacterSet();
    expectUnits("white space and controls", set,
                [](char32_t unit) { return isWhiteSpace(unit) || isControl(unit); });
    for (char32_t codePoint = 0x10000; codePoint <= 0x10FFFF; ++codePoint) {
        ASSERT_EQ(set.longCharacterIsMember(codePoint), isControl(codePoint))
            << std::hex << std::uint32_t{codePoint};
    }
    const struct {
        const char* name;
        char16_t unit;
        bool isMember;
    } rows[] = {
        {"zero width space", 0x200B, true},
        {"no-break space", 0xA0, true},
        {"blank", u' ', true},
        {"tab", 9, true},
        {"line feed", 10, true},
        {"U+0085", 0x85, true},
        {"U+0000", 0, true},
        {"line separator", 0x2028, false},
        {"U+2029", 0x2029, false},
        {"a letter", u'a', false},
        {"a high surrogate", 0xD83D, false},
        {"a noncharacter", 0xFFFF, false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(set.characterIsMember(row.unit), row.isMember) << row.name;
    }
    NSMutableCharacterSet united(NSCharacterSet::whitespaceCharacterSet());
    united.formUnionWithCharacterSet(NSCharacterSet::controlCharacterSet());
    EXPECT_TRUE(set.isEqual(united.characterSet()));
}

TEST(CharacterSetMembership, theEmptySetHasNoMembers) {
    const NSCharacterSet set = NSCharacterSet::emptyCharacterSet();
    ASSERT_TRUE(set);
    for (char32_t codePoint = 0; codePoint <= 0x110000; ++codePoint) {
        ASSERT_FALSE(set.longCharacterIsMember(codePoint)) << std::hex << std::uint32_t{codePoint};
    }
    expectUnits("none", set, [](char32_t) { return false; });
    EXPECT_TRUE(set.isEqual(NSCharacterSet::characterSetWithCharactersInString("")));
}

TEST(CharacterSetMembership, theNullByteSetHoldsOneCharacter) {
    const NSCharacterSet set = NSCharacterSet::nullByteCharacterSet();
    expectUnits("U+0000", set, [](char32_t unit) { return unit == 0; });
    for (char32_t codePoint = 0x10000; codePoint <= 0x110000; ++codePoint) {
        ASSERT_FALSE(set.longCharacterIsMember(codePoint)) << std::hex << std::uint32_t{codePoint};
    }
    EXPECT_FALSE(set.isEqual(NSCharacterSet::emptyCharacterSet()));
}

TEST(CharacterSetMembership, surrogatesBelongToNoSetOfACategory) {
    const NSCharacterSet sets[] = {
        NSCharacterSet::whitespaceCharacterSet(),
        NSCharacterSet::newlineCharacterSet(),
        NSCharacterSet::whitespaceAndNewlineCharacterSet(),
        NSCharacterSet::controlCharacterSet(),
        NSCharacterSet::decimalDigitCharacterSet(),
        NSCharacterSet::letterCharacterSet(),
        NSCharacterSet::lowercaseLetterCharacterSet(),
        NSCharacterSet::uppercaseLetterCharacterSet(),
        NSCharacterSet::alphanumericCharacterSet(),
        NSCharacterSet::punctuationCharacterSet(),
        NSCharacterSet::symbolCharacterSet(),
    };
    for (const NSCharacterSet& set : sets) {
        for (std::uint32_t unit = 0xD800; unit <= 0xDFFF; ++unit) {
            ASSERT_FALSE(set.characterIsMember(static_cast<char16_t>(unit))) << std::hex << unit;
        }
    }
}

TEST(CharacterSetMembership, aRequestAnswersTheSameMembersOnEveryThread) {
    std::vector<NSCharacterSet> found(24);
    {
        std::vector<std::thread> threads;
        for (std::size_t i = 0; i < found.size(); i += 3) {
            threads.emplace_back([&found, i] {
                found[i] = NSCharacterSet::emptyCharacterSet();
                found[i + 1] = NSCharacterSet::nullByteCharacterSet();
                found[i + 2] = NSCharacterSet::whitespaceAndControlCharacterSet();
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
    }
    for (std::size_t i = 0; i < found.size(); ++i) {
        EXPECT_TRUE(found[i].isEqual(found[i % 3])) << i;
        EXPECT_EQ(found[i].characterIsMember(0), i % 3 != 0) << i;
        EXPECT_EQ(found[i].characterIsMember(u' '), i % 3 == 2) << i;
    }
}

TEST(CharacterSetMembership, aSharedSetIsNotChangedThroughACopy) {
    NSMutableCharacterSet copy(NSCharacterSet::whitespaceAndControlCharacterSet());
    copy.addCharactersInString("x");
    copy.removeCharactersInString(" ");
    NSMutableCharacterSet fromEmpty(NSCharacterSet::emptyCharacterSet());
    fromEmpty.addCharactersInString("x");
    EXPECT_TRUE(copy.characterIsMember(u'x'));
    EXPECT_FALSE(copy.characterIsMember(u' '));
    EXPECT_FALSE(NSCharacterSet::whitespaceAndControlCharacterSet().characterIsMember(u'x'));
    EXPECT_TRUE(NSCharacterSet::whitespaceAndControlCharacterSet().characterIsMember(u' '));
    EXPECT_FALSE(NSCharacterSet::emptyCharacterSet().characterIsMember(u'x'));
}

TEST(CharacterSetMembership, aNilSetHasNoMembers) {
    const NSCharacterSet none;
    EXPECT_FALSE(none.characterIsMember(u'a'));
    EXPECT_FALSE(none.characterIsMember(0));
    EXPECT_FALSE(none.longCharacterIsMember(U'a'));
    EXPECT_FALSE(NSCharacterSet::characterSetWithCharactersInString(nullptr));
}

} // namespace
