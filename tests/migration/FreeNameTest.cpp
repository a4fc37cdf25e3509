// SPDX-License-Identifier: MIT
// Numbered names beside a taken one, by themselves and in migrations.
#include "migration/FreeName.h"

#include <string>

#include <gtest/gtest.h>

#include "tests/migration/MigrationScene.h"

using namespace ZQFoundation;
using detail::freeName;
using detail::numberedName;
using scene::MigrationFolder;
using scene::renaming;

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

TEST(FreeName, isNotThatOfADanglingLink) {
    const MigrationFolder folder;
    folder.file("from/notes.txt", "new");
    folder.file("from/data/inside", "new");
    folder.file("from/sub/a.log", "new");
    folder.file("to/notes.txt", "old");
    folder.file("to/data/inside", "old");
    folder.file("to/sub/a.log", "old");
    for (const char* const link : {"to/notes 1.txt", "to/data 1.", "to/sub/a 1.log"}) {
        folder.link("nowhere", link);
    }
    EXPECT_EQ(scene::migrateFile(folder / "from/notes.txt", folder / "to/notes.txt", renaming), 0U);
    EXPECT_EQ(scene::migrateFolder(folder / "from/data", folder / "to/data", renaming), 0U);
    const auto codes =
        scene::migrateFiles("log", folder / "from", folder / "to", scene::DotFiles::included, renaming);
    EXPECT_EQ(codes.condensedDescription(), "{ sub/a.log = 0; }");
    EXPECT_EQ(folder.digest("", scene::Detail::contents), (scene::Digest{{"", "folder"},
                                                                         {"from", "folder"},
                                                                         {"from/sub", "folder"},
                                                                         {"to", "folder"},
                                                                         {"to/notes.txt", "file [old]"},
                                                                         {"to/notes 1.txt", "link [nowhere]"},
                                                                         {"to/notes 2.txt", "file [new]"},
                                                                         {"to/data", "folder"},
                                                                         {"to/data/inside", "file [old]"},
                                                                         {"to/data 1.", "link [nowhere]"},
                                                                         {"to/data 2.", "folder"},
                                                                         {"to/data 2./inside", "file [new]"},
                                                                         {"to/sub", "folder"},
                                                                         {"to/sub/a.log", "file [old]"},
                                                                         {"to/sub/a 1.log", "link [nowhere]"},
                                                                         {"to/sub/a 2.log", "file [new]"}}));
}

TEST(FreeName, isCutInMigrationsToo) {
    const MigrationFolder folder;
    const std::string file = repeated("é", 125) + "x.txt"; // 255 bytes
    const std::string tree = repeated("é", 127);
    for (const char* const place : {"from/", "to/"}) {
        folder.file(place + file, place);
        folder.file(place + tree + "/inside", place);
    }
    EXPECT_EQ(scene::migrateFile(folder / ("from/" + file), folder / ("to/" + file), renaming), 0U);
    for (int copy = 0; copy < 2; ++copy) {
        EXPECT_EQ(scene::migrateFolder(folder / ("from/" + tree), folder / ("to/" + tree),
                                       {true, false, false, true}),
                  0U);
    }
    EXPECT_EQ(scene::contentsOf(folder / ("to/" + file)), "to/");
    EXPECT_EQ(scene::contentsOf(folder / ("to/" + tree + "/inside")), "to/");
    EXPECT_EQ(scene::contentsOf(folder / ("to/" + repeated("é", 124) + " 1.txt")), "from/");
    EXPECT_EQ(scene::contentsOf(folder / ("to/" + repeated("é", 126) + " 1./inside")), "from/");
    EXPECT_EQ(scene::contentsOf(folder / ("to/" + repeated("é", 126) + " 2./inside")), "from/");
}
