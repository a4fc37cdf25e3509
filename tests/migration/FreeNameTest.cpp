// SPDX-License-Identifier: MIT
// Numbered names beside a taken one.
#include "migration/FreeName.h"

#include <gtest/gtest.h>

using namespace ZQFoundation;
using detail::freeName;
using detail::numberedName;

namespace {

std::string repeated(const char* text, int count) {
    std::string result;
    while (count-- > 0) {
        result += text;
    }
    return result;
}

NSString named(const std::string& stem, const std::string& extension, std::int64_t counter = 1) {
    return numberedName(NSString(stem), counter, NSString(extension));
}

} // namespace

TEST(FreeName, isTheFirstCandidateThatIsFree) {
    int asked = 0;
    const auto isThird = [&asked](const std::string&) {
        return ++asked == 3;
    };
    EXPECT_EQ(freeName("notes.txt", isThird), "notes 3.txt");
    EXPECT_EQ(freeName("Data", [](const std::string&) { return true; }), "Data 1.");
    EXPECT_EQ(freeName(".profile", [](const std::string&) { return true; }), ".profile 1.");
}

TEST(FreeName, isNilWhenAllAreTaken) {
    int asked = 0;
    EXPECT_FALSE(freeName("a", [&asked](const std::string&) {
        ++asked;
        return false;
    }));
    EXPECT_EQ(asked, 100000);
}

TEST(FreeName, isShortenedAtAWholeCharacterInFrontOfTheNumber) {
    // 255 bytes fit as they are; " 1" needs two more.
    EXPECT_EQ(named(repeated("x", 249), "txt").utf8(), repeated("x", 249) + " 1.txt");
    EXPECT_EQ(named(repeated("x", 251), "txt").utf8(), repeated("x", 249) + " 1.txt");
    EXPECT_EQ(named(repeated("x", 251), "txt", 4711).utf8(), repeated("x", 246) + " 4711.txt");
    // Characters of two, three and four bytes, and a letter with a mark of its own.
    EXPECT_EQ(named(repeated("é", 126), "").utf8(), repeated("é", 126) + " 1.");
    EXPECT_EQ(named(repeated("é", 127), "").utf8(), repeated("é", 126) + " 1.");
    EXPECT_EQ(named(repeated("日", 85), "").utf8(), repeated("日", 84) + " 1.");
    EXPECT_EQ(named(repeated("🜁", 63), "").utf8(), repeated("🜁", 63) + " 1.");
    EXPECT_EQ(named("y" + repeated("🜁", 63), "").utf8(), "y" + repeated("🜁", 62) + " 1.");
    EXPECT_EQ(named(repeated("e\u0301", 84) + "zz", "").utf8(), repeated("e\u0301", 84) + " 1.");
    EXPECT_EQ(named(repeated("e\u0301", 85), "").utf8(), repeated("e\u0301", 84) + " 1.");
}

TEST(FreeName, isNilWhenNothingOfTheStemWouldBeLeft) {
    EXPECT_EQ(named("x", repeated("y", 251)).utf8(), "x 1." + repeated("y", 251));
    EXPECT_FALSE(named("x", repeated("y", 252)));
    int asked = 0;
    EXPECT_FALSE(
        freeName(NSString("x." + repeated("y", 253)), [&asked](const std::string&) { return ++asked > 0; }));
    EXPECT_EQ(asked, 0);
}
