// SPDX-License-Identifier: MIT
// Renaming finds a free name also where a dangling link has the first one, and where names are as long as
// they may be.
#include <string>

#include <gtest/gtest.h>

#include "tests/migration/MigrationScene.h"

using scene::MigrationFolder;
using scene::renaming;

namespace {

constexpr std::size_t longestName = 255; ///< bytes

std::string repeated(const std::string& text, std::size_t count) {
    std::string result;
    while (count-- > 0) {
        result += text;
    }
    return result;
}

/// The names in a folder besides this one.
scene::Words others(const MigrationFolder& folder, const std::string& place, const std::string& name) {
    scene::Words names;
    for (const auto& [path, what] : folder.digest(place, scene::Detail::contents)) {
        if (!path.empty() && path != name && path.find('/') == std::string::npos) {
            names.push_back(path);
        }
    }
    return names;
}

bool isWholeText(const std::string& bytes) {
    return static_cast<bool>(ZQFoundation::NSString::stringWithUTF8Bytes(bytes.data(), bytes.size()));
}

/// The one other name begins as the taken one does, cut between two characters, and ends in `end`.
void expectShortened(const MigrationFolder& folder, const std::string& taken, const std::string& end) {
    const scene::Words found = others(folder, "to", taken);
    ASSERT_EQ(found.size(), 1U);
    const std::string& name = found[0];
    ASSERT_GT(name.size(), end.size());
    const std::string stem = name.substr(0, name.size() - end.size());
    EXPECT_EQ(name.substr(stem.size()), end);
    EXPECT_EQ(taken.compare(0, stem.size(), stem), 0) << name;
    EXPECT_TRUE(isWholeText(stem)) << name;
    EXPECT_LE(name.size(), longestName);
    EXPECT_GT(name.size(), longestName - 4) << "more was cut than a character";
}

} // namespace

TEST(FreeNames, areNotThoseOfDanglingLinks) {
    const MigrationFolder folder;
    folder.file("from/notes.txt", "new");
    folder.file("from/data/inside", "new");
    folder.file("to/notes.txt", "old");
    folder.file("to/data/inside", "old");
    folder.link("nowhere", "to/notes 1.txt");
    folder.link("nowhere", "to/data 1.");
    EXPECT_EQ(scene::migrateFile(folder / "from/notes.txt", folder / "to/notes.txt", renaming), 0U);
    EXPECT_EQ(scene::migrateFolder(folder / "from/data", folder / "to/data", renaming), 0U);
    EXPECT_EQ(scene::contentsOf(folder / "to/notes 2.txt"), "new");
    EXPECT_EQ(scene::contentsOf(folder / "to/data 2./inside"), "new");
    EXPECT_EQ(scene::linkText(folder / "to/notes 1.txt"), "nowhere");
    EXPECT_EQ(scene::linkText(folder / "to/data 1."), "nowhere");
    EXPECT_FALSE(scene::stands(folder / "from/notes.txt"));
    EXPECT_FALSE(scene::stands(folder / "from/data"));
}

TEST(FreeNames, areNotThoseOfDanglingLinksInABatch) {
    const MigrationFolder folder;
    folder.file("from/sub/a.log", "new");
    folder.file("to/sub/a.log", "old");
    folder.link("nowhere", "to/sub/a 1.log");
    const auto codes =
        scene::migrateFiles("log", folder / "from", folder / "to", scene::DotFiles::included, renaming);
    EXPECT_EQ(codes.condensedDescription(), "{ sub/a.log = 0; }");
    EXPECT_EQ(scene::contentsOf(folder / "to/sub/a 2.log"), "new");
    EXPECT_EQ(scene::contentsOf(folder / "to/sub/a.log"), "old");
}

TEST(FreeNames, areCutWhereTheyWouldBeTooLong) {
    // Characters of one to four bytes, so that the end of the name falls into the middle of some.
    for (const std::string& character : {std::string("n"), std::string("\xC3\xA9"),
                                         std::string("\xE2\x82\xAC"), std::string("\xF0\x9D\x84\x9E")}) {
        for (std::size_t room = 0; room < 4; ++room) {
            const MigrationFolder folder;
            const std::string stem = repeated(character, (longestName - 4 - room) / character.size());
            const std::string name = stem + repeated("x", longestName - 4 - room - stem.size()) + ".txt";
            folder.file("from/" + name, "new");
            folder.file("to/" + name, "old");
            EXPECT_EQ(scene::migrateFile(folder / ("from/" + name), folder / ("to/" + name), renaming), 0U)
                << name.size();
            EXPECT_EQ(scene::contentsOf(folder / ("to/" + name)), "old");
            if (name.size() + 2 > longestName) {
                expectShortened(folder, name, " 1.txt");
            } else {
                EXPECT_EQ(others(folder, "to", name),
                          scene::Words{name.substr(0, name.size() - 4) + " 1.txt"});
            }
        }
    }
}

TEST(FreeNames, ofFoldersAreCutWhereTheyWouldBeTooLong) {
    const MigrationFolder folder;
    const std::string name = repeated("\xC3\xA9", longestName / 2);
    folder.file("from/" + name + "/inside", "new");
    folder.file("to/" + name + "/inside", "old");
    for (const char* const end : {" 1.", " 2."}) {
        EXPECT_EQ(scene::migrateFolder(folder / ("from/" + name), folder / ("to/" + name),
                                       {true, false, false, true}),
                  0U)
            << end;
    }
    EXPECT_EQ(others(folder, "to", name).size(), 2U);
    EXPECT_EQ(scene::contentsOf(folder / ("to/" + name + "/inside")), "old");
}
