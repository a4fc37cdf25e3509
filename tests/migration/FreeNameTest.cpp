// SPDX-License-Identifier: MIT
// Numbered names beside a taken one, by themselves and in migrations.
#include "migration/FreeName.h"

#include <string>

#include <gtest/gtest.h>

#include "tests/kit/Texts.h"
#include "tests/migration/MigrationScene.h"

using namespace ZQFoundation;
using namespace scene;
using detail::freeName;
using kit::repeated;

namespace {

NSString named(const std::string& stem, const std::string& extension, std::int64_t counter = 1) {
    return detail::numberedName(NSString(stem), counter, NSString(extension));
}

} // namespace

TEST(FreeName, isTheFirstCandidateThatIsFree) {
    int asked = 0;
    const auto isThird = [&asked](const std::string&) {
        return ++asked == 3;
    };
    const auto isAny = [](const std::string&) {
        return true;
    };
    EXPECT_EQ(freeName("notes.txt", isThird), "notes 3.txt");
    EXPECT_EQ(freeName("Data", isAny), "Data 1.");
    EXPECT_EQ(freeName(".profile", isAny), ".profile 1.");
}

TEST(FreeName, isNilWhenAllAreTaken) {
    int asked = 0;
    EXPECT_FALSE(freeName("a", [&asked](const std::string&) { return ++asked < 0; }));
    EXPECT_EQ(asked, 100000);
}

TEST(FreeName, isShortenedAtAWholeCharacterBeforeTheNumber) {
    // 255 bytes fit as they are; " 1" needs two more.
    EXPECT_EQ(named(repeated("x", 249), "txt").utf8(), repeated("x", 249) + " 1.txt");
    EXPECT_EQ(named(repeated("x", 251), "txt").utf8(), repeated("x", 249) + " 1.txt");
    EXPECT_EQ(named(repeated("x", 251), "txt", 4711).utf8(), repeated("x", 246) + " 4711.txt");
    // Characters of two, three and four bytes, and a letter with a mark of its own.
    const struct {
        std::string stem;
        std::string cut;
    } rows[] = {
        {repeated("é", 126), repeated("é", 126)},
        {repeated("é", 127), repeated("é", 126)},
        {repeated("日", 85), repeated("日", 84)},
        {repeated("🜁", 63), repeated("🜁", 63)},
        {"y" + repeated("🜁", 63), "y" + repeated("🜁", 62)},
        {repeated("e\u0301", 84) + "zz", repeated("e\u0301", 84)},
        {repeated("e\u0301", 85), repeated("e\u0301", 84)},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(named(row.stem, "").utf8(), row.cut + " 1.");
    }
}

TEST(FreeName, isNilWhenNothingOfTheStemWouldBeLeft) {
    EXPECT_EQ(named("x", repeated("y", 251)).utf8(), "x 1." + repeated("y", 251));
    EXPECT_FALSE(named("x", repeated("y", 252)));
    int asked = 0;
    EXPECT_FALSE(freeName("x." + repeated("y", 253), [&asked](const std::string&) { return ++asked > 0; }));
    EXPECT_EQ(asked, 0);
}

TEST(FreeName, isNotThatOfADanglingLink) {
    const MigrationFolder folder;
    for (const std::string name : {"notes.txt", "data/inside", "sub/a.log"}) {
        folder.write("from/" + name, "new");
        folder.write("to/" + name, "old");
    }
    for (const char* const link : {"to/notes 1.txt", "to/data 1.", "to/sub/a 1.log"}) {
        folder.link("nowhere", link);
    }
    EXPECT_EQ(migrateFile(folder / "from/notes.txt", folder / "to/notes.txt", renaming), 0U);
    EXPECT_EQ(migrateFolder(folder / "from/data", folder / "to/data", renaming), 0U);
    EXPECT_EQ(folder.migrateLogs("from", "to", renaming), "{ sub/a.log = 0; }");
    EXPECT_EQ(folder.digest("from", Detail::contents), (Digest{{"", "folder"}, {"sub", "folder"}}));
    EXPECT_EQ(folder.digest("to", Detail::contents), (Digest{{"", "folder"},
                                                             {"notes.txt", "file [old]"},
                                                             {"notes 1.txt", "link [nowhere]"},
                                                             {"notes 2.txt", "file [new]"},
                                                             {"data", "folder"},
                                                             {"data/inside", "file [old]"},
                                                             {"data 1.", "link [nowhere]"},
                                                             {"data 2.", "folder"},
                                                             {"data 2./inside", "file [new]"},
                                                             {"sub", "folder"},
                                                             {"sub/a.log", "file [old]"},
                                                             {"sub/a 1.log", "link [nowhere]"},
                                                             {"sub/a 2.log", "file [new]"}}));
}

TEST(FreeName, isCutInMigrationsToo) {
    const MigrationFolder folder;
    const std::string file = repeated("é", 125) + "x.txt"; // 255 bytes
    const std::string tree = repeated("é", 127);
    for (const char* const place : {"from/", "to/"}) {
        folder.write(place + file, place);
        folder.write(place + tree + "/inside", place);
    }
    EXPECT_EQ(migrateFile(folder / ("from/" + file), folder / ("to/" + file), renaming), 0U);
    for (int copy = 0; copy < 2; ++copy) {
        EXPECT_EQ(
            migrateFolder(folder / ("from/" + tree), folder / ("to/" + tree), {true, false, false, true}),
            0U);
    }
    const std::string cut = repeated("é", 126);
    EXPECT_EQ(folder.contents("to/" + file), "to/");
    EXPECT_EQ(folder.contents("to/" + tree + "/inside"), "to/");
    EXPECT_EQ(folder.contents("to/" + repeated("é", 124) + " 1.txt"), "from/");
    EXPECT_EQ(folder.contents("to/" + cut + " 1./inside"), "from/");
    EXPECT_EQ(folder.contents("to/" + cut + " 2./inside"), "from/");
}
