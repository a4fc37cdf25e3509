// SPDX-License-Identifier: MIT
// The migration of all files of one extension.
#include <algorithm>
#include <cerrno>
#include <map>
#include <string>

#include <gtest/gtest.h>
#include <unistd.h>

#include "foundation/objects/NSNumber.h"
#include "tests/kit/Child.h"
#include "tests/kit/Environment.h"
#include "tests/kit/Items.h"
#include "tests/kit/ScratchFolder.h"
#include "tests/migration/MigrationScene.h"

using namespace ZQFoundation;
using namespace scene;

namespace {

using Codes = std::map<std::string, unsigned>;

constexpr Flags moving{false, true, false, false};

Codes codesOf(const NSDictionary& results) {
    Codes codes;
    for (const NSDictionaryEntry& entry : results) {
        codes[kit::bytesOf(NSString(entry.key))] = static_cast<unsigned>(NSNumber(entry.value).intValue());
    }
    return codes;
}

/// Batches from the folder "from" to the folder "to".
class BatchMigration : public ::testing::Test {
protected:
    Codes migrated(const NSString& extension, const Flags& flags = moving,
                   DotFiles dotFiles = DotFiles::included) const {
        return codesOf(migrateFiles(extension, folder / "from", folder / "to", dotFiles, flags));
    }
    /// Two names of a batch that overwrites, with one destination: one of them gets there, the other stays.
    void expectOneOfTwo(Codes codes, const std::string& one, const std::string& other,
                        const std::string& place, bool keepsOriginals = false) const {
        EXPECT_TRUE(codes[one] + codes[other] == 34 && codes[one] * codes[other] == 0) << one << codes[one];
        const std::string arrived = codes[one] == 0 ? one : other;
        const std::string refused = codes[one] == 0 ? other : one;
        EXPECT_EQ(folder.contents("to/" + place), arrived);
        EXPECT_EQ(folder.contents("from/" + refused), refused);
        EXPECT_EQ(folder.has("from/" + arrived), keepsOriginals) << arrived;
    }

    const MigrationFolder folder;
};

} // namespace

TEST_F(BatchMigration, asksForTheFoldersFirst) {
    EXPECT_EQ(codesOf(migrateFiles("log", nullptr, nullptr, DotFiles::included)), (Codes{{"", 1}}));
    EXPECT_EQ(codesOf(migrateFiles("log", nullptr, "/tmp/x", DotFiles::included)), (Codes{{"", 1}}));
    EXPECT_EQ(codesOf(migrateFiles("log", "/nosuch", nullptr, DotFiles::included)), (Codes{{"", 2}}));
}

TEST_F(BatchMigration, ofNothingHasNoResults) {
    folder.write("plain.log", "x");
    for (const std::string& from : {folder / "from", std::string(), folder / "plain.log"}) {
        const NSDictionary results = migrateFiles("log", from, folder / "to", DotFiles::included, moving);
        EXPECT_TRUE(static_cast<bool>(results)) << "empty, not nil";
        EXPECT_EQ(results.count(), 0U) << from;
    }
    folder.makeFolder("from");
    EXPECT_EQ(migrated("log"), Codes{});
    EXPECT_FALSE(folder.has("to"));
}

TEST_F(BatchMigration, selectsByTheExactExtension) {
    folder.writeFiles({"a.log", "sub/b.log", "c.LOG", "d.log2", "log", "e.log.txt", "x.log/inside.txt",
                       "x.log/f.log", ".log", "g.x.log", "h."},
                      "from/");
    EXPECT_EQ(migrated(".log"), Codes{}) << "an extension has no period";
    EXPECT_EQ(migrated("log"), (Codes{{"a.log", 0}, {"sub/b.log", 0}, {"x.log/f.log", 0}, {"g.x.log", 0}}));
    EXPECT_EQ(folder.digest("to", Detail::contents), (Digest{{"", "folder"},
                                                             {"a.log", "file [a.log]"},
                                                             {"g.x.log", "file [g.x.log]"},
                                                             {"sub", "folder"},
                                                             {"sub/b.log", "file [sub/b.log]"},
                                                             {"x.log", "folder"},
                                                             {"x.log/f.log", "file [x.log/f.log]"}}));
    EXPECT_TRUE(folder.has("from/c.LOG"));
    EXPECT_TRUE(folder.has("from/sub")) << "emptied folders stay";
    EXPECT_FALSE(folder.has("from/a.log"));
}

TEST_F(BatchMigration, withoutExtensionSelectsEveryFile) {
    for (const NSString& extension : {NSString(), NSString("")}) {
        folder.writeFiles({"a.log", "b", "sub/c.txt", "sub/deep/.d", ".e/f"}, "from/");
        folder.makeFolder("from/empty");
        EXPECT_EQ(migrated(extension, {false, true, true, false}),
                  (Codes{{"a.log", 0}, {"b", 0}, {"sub/c.txt", 0}, {"sub/deep/.d", 0}, {".e/f", 0}}));
        EXPECT_FALSE(folder.has("to/empty")) << "folders are not migrated as such";
    }
}

TEST_F(BatchMigration, skipsWhatBeginsWithAPeriodAtTheTopAlone) {
    folder.writeFiles(
        {".profile", ".git/config", ".git/sub/x", "docs/.notes.log", "docs/.git/y", "a", ".top.log"},
        "from/");
    EXPECT_EQ(migrated("log", moving, DotFiles::skipped), (Codes{{"docs/.notes.log", 0}}));
    EXPECT_EQ(migrated(nullptr, moving, DotFiles::skipped), (Codes{{"docs/.git/y", 0}, {"a", 0}}));
    EXPECT_TRUE(folder.has("from/.git/config"));
    EXPECT_EQ(migrated(nullptr),
              (Codes{{".profile", 0}, {".git/config", 0}, {".git/sub/x", 0}, {".top.log", 0}}));
}

TEST_F(BatchMigration, continuesAfterAFailure) {
    const kit::NoLanguages english;
    folder.writeFiles({"a.log", "b.log", "c.log"}, "from/");
    folder.write("to/b.log", "old");
    const NSDictionary results =
        migrateFiles("log", folder / "from", folder / "to", DotFiles::included, moving);
    EXPECT_EQ(results, (NSDictionary{{"a.log", 0U}, {"b.log", 30U}, {"c.log", 0U}}));
    EXPECT_EQ(results.objectForKey("a.log").className(), "NSNumber");
    EXPECT_EQ(folder.contents("to/b.log"), "old");
    EXPECT_EQ(folder.contents("from/b.log"), "b.log");
    EXPECT_EQ(ZQFileMigrator::descriptionOfFileMigrationErrorsIn(results).string(),
              "b.log: the destination file already exists");
}

TEST_F(BatchMigration, passesTheFlagsOnToEveryFile) {
    const std::string fresh = "file [new]";
    const Digest kept{{"", "folder"}, {"a.log", fresh}};
    const struct {
        Flags flags;
        unsigned code;
        Digest left;
    } rows[] = {
        {nothingAllowed, 30, {{"", "folder"}, {"a.log", "file [old]"}}},
        {overwriting, 0, kept},
        {{true, false, true, false}, 0, kept},
        {renaming, 0, {{"", "folder"}, {"a 1.log", fresh}, {"a.log", "file [old]"}}},
        {{true, false, true, true}, 0, kept},
    };
    for (const auto& row : rows) {
        kit::removeTree(folder / "to");
        folder.write("from/a.log", "new");
        folder.write("to/a.log", "old");
        EXPECT_EQ(migrated("log", row.flags), (Codes{{"a.log", row.code}}));
        EXPECT_EQ(folder.digest("to", Detail::contents), row.left) << shownFlags(row.flags);
        EXPECT_EQ(folder.has("from/a.log"), row.flags.keepOriginal || row.code != 0);
    }
}

TEST_F(BatchMigration, needsTheFoldersAtTheDestination) {
    folder.writeFiles({"a.log", "sub/b.log"}, "from/");
    EXPECT_EQ(migrated("log", copying), (Codes{{"a.log", 20}, {"sub/b.log", 20}}));
    folder.makeFolder("to");
    EXPECT_EQ(migrated("log", copying), (Codes{{"a.log", 0}, {"sub/b.log", 20}}));
    folder.write("to/sub", "a file");
    EXPECT_EQ(migrated("log"), (Codes{{"a.log", 30}, {"sub/b.log", 21}}));
}

TEST_F(BatchMigration, migratesLinksToFilesAndSkipsLinksToFolders) {
    folder.write("elsewhere/x.log", "x");
    folder.makeFolder("from");
    folder.link(folder / "elsewhere/x.log", "from/file.log");
    folder.link(folder / "elsewhere", "from/folder.log");
    EXPECT_EQ(migrated("log"), (Codes{{"file.log", 0}}));
    EXPECT_EQ(folder.digest("to", Detail::contents),
              (Digest{{"", "folder"}, {"file.log", "link [" + (folder / "elsewhere/x.log") + "]"}}));
    EXPECT_TRUE(folder.has("from/folder.log"));
    EXPECT_EQ(folder.contents("elsewhere/x.log"), "x");
}

TEST_F(BatchMigration, startsAtALinkToAFolder) {
    folder.write("real/sub/a.log", "x");
    folder.link("real", "from");
    EXPECT_EQ(migrated("log"), (Codes{{"sub/a.log", 0}}));
}

TEST_F(BatchMigration, treatsADanglingLinkAsTheEntryBeforeIt) {
    // Whatever the order of siblings: a folder's own contents come right after it, here dangling links alone.
    folder.makeFolder("from/folder");
    for (const char* const name : {"a", "b", "c", "d"}) {
        folder.link("nosuch", std::string("from/folder/") + name);
    }
    EXPECT_EQ(migrated(nullptr), Codes{}) << "after a folder it is skipped like one";
    folder.write("others/file", "x");
    folder.link("nosuch", "others/d1");
    folder.link("nosuch", "others/d2");
    // Among a file and dangling links alone nothing is a folder: each of them fails as a missing file, and
    // the first of all may be skipped or fail.
    Codes codes =
        codesOf(migrateFiles(nullptr, folder / "others", folder / "to", DotFiles::included, moving));
    EXPECT_EQ(codes["file"], 0U);
    EXPECT_EQ(codes.erase("file") + codes.size(), 3U);
    for (const auto& [name, code] : codes) {
        EXPECT_EQ(code, 10U) << name;
    }
}

TEST_F(BatchMigration, looksOnlyAtWhatIsSelected) {
    // An entry that is ignored for its name does not change what the next one is taken for: ".sub" and what
    // it contains are not looked at, so "b.log" comes first, taken for a file or ignored.
    folder.makeFolder("from/.sub");
    folder.link("nosuch", "from/.sub/a.log");
    folder.link("nosuch", "from/b.log");
    const Codes first = migrated("log", moving, DotFiles::skipped);
    EXPECT_TRUE(first == Codes{} || first == (Codes{{"b.log", 10}}));
    // "sub" is no "log", so the only answers come from files: "b.log" is a missing file, or comes first.
    kit::removeTree(folder / "from");
    folder.write("from/sub/a.log", "x");
    folder.link("nosuch", "from/sub/b.log");
    Codes second = migrated("log");
    EXPECT_EQ(second.at("sub/a.log"), 0U);
    EXPECT_TRUE(second.count("sub/b.log") == 0 || second["sub/b.log"] == 10U);
}

TEST_F(BatchMigration, expandsTheTildeAndToleratesSlashes) {
    const kit::Variable home("HOME", folder.path().c_str());
    folder.write("from/sub/a.log", "x");
    EXPECT_EQ(codesOf(migrateFiles("log", "~/from", "~/to/", DotFiles::included, moving)),
              (Codes{{"sub/a.log", 0}}));
    EXPECT_EQ(folder.contents("to/sub/a.log"), "x");
    EXPECT_EQ(
        codesOf(migrateFiles("log", folder.path() + "//to/", folder / "back//", DotFiles::included, moving)),
        (Codes{{"sub/a.log", 0}}));
    EXPECT_EQ(folder.contents("back/sub/a.log"), "x");
}

TEST_F(BatchMigration, notifiesTheDesktopOfEveryFile) {
    Desktop desktop;
    Desktop some("SomeClass");
    folder.write("from/sub/a.log", "x");
    errno = 4711;
    EXPECT_EQ(migrated("log"), (Codes{{"sub/a.log", 0}}));
    EXPECT_EQ(errno, 4711) << "the caller's";
    EXPECT_EQ(desktop.takeFolders(), (Words{folder / "to/sub", folder / "from/sub"}));
    EXPECT_EQ(some.takeFolders(), Words{});
}

TEST_F(BatchMigration, removesWhileItEnumerates) {
    const kit::ScratchInMemory memory;
    const MigrationFolder many;
    Codes expected;
    for (int number = 0; number < 3000; ++number) {
        const std::string name = "d" + std::to_string(number % 30) + "/f" + std::to_string(number) + ".log";
        many.write("from/" + name, name);
        expected[name] = 0;
    }
    EXPECT_EQ(codesOf(migrateFiles("log", many / "from", many / "to", DotFiles::included, moving)), expected);
    for (const auto& [name, code] : expected) {
        ASSERT_EQ(many.contents("to/" + name), name);
        ASSERT_FALSE(many.has("from/" + name));
    }
}

TEST_F(BatchMigration, ofAFolderIntoItselfFailsFileByFile) {
    folder.writeFiles({"a.log", "sub/b.log"}, "from/");
    const Digest before = folder.digest("from");
    EXPECT_EQ(folder.migrateLogs("from", "from", moving), "{ a.log = 30; sub/b.log = 30; }");
    EXPECT_EQ(folder.migrateLogs("from", "from", overwriting), "{ a.log = 34; sub/b.log = 34; }");
    EXPECT_EQ(folder.digest("from"), before);
}

TEST_F(BatchMigration, keepsNamesThatAreNoText) {
    const std::string name = "caf\xe9.log";
    folder.write("from/" + name, "x");
    EXPECT_EQ(migrated("log"), (Codes{{name, 0}}));
    EXPECT_EQ(folder.contents("to/" + name), "x");
}

TEST_F(BatchMigration, skipsFoldersThatCannotBeRead) {
    kit::expectAsUser([this] {
        folder.write("from/closed/a.log", "x");
        folder.write("from/b.log", "x");
        folder.setMode("from/closed", 0);
        EXPECT_EQ(migrated("log"), (Codes{{"b.log", 0}}));
        folder.setMode("from", 0);
        EXPECT_EQ(migrated("log"), Codes{});
        folder.setMode("from", 0755);
        folder.setMode("from/closed", 0755);
        EXPECT_EQ(folder.contents("from/closed/a.log"), "x");
    });
}

// Overwriting does not take away what the same batch has brought there under another name.

TEST_F(BatchMigration, keepsWhatItHasBroughtThroughALink) {
    folder.makeFolder("to/one");
    folder.link("one", "to/two");
    folder.link(".", "to/sub");
    for (const bool keeps : {true, false}) {
        folder.writeFiles({"one/x.log", "two/x.log", "one/y.log", "x.log", "sub/x.log"}, "from/");
        const Codes codes = migrated("log", {keeps, true, true, false});
        EXPECT_EQ(codes.size(), 5U);
        expectOneOfTwo(codes, "one/x.log", "two/x.log", "one/x.log", keeps);
        expectOneOfTwo(codes, "x.log", "sub/x.log", "x.log", keeps);
        EXPECT_EQ(codes.at("one/y.log"), 0U);
        kit::removeTree(folder / "from");
    }
}

TEST_F(BatchMigration, ofHundredsKeepsAllThatItHasBrought) {
    folder.makeFolder("to/one");
    folder.link("one", "to/two");
    Words names;
    for (int number = 0; number < 300; ++number) {
        names.push_back("/" + std::to_string(number) + ".log");
        folder.writeFiles({"one" + names.back(), "two" + names.back()}, "from/");
        folder.write("to/one" + names.back(), "old");
    }
    const Codes codes = migrated("log", overwriting);
    EXPECT_EQ(codes.size(), 600U);
    for (const std::string& name : names) {
        expectOneOfTwo(codes, "one" + name, "two" + name, "one" + name);
    }
}

TEST_F(BatchMigration, needsFewDescriptors) {
    constexpr std::size_t folders = 40;
    for (std::size_t number = 0; number < folders; ++number) {
        folder.write("from/" + std::to_string(number) + "/file", "x");
    }
    EXPECT_TRUE(kit::isTrueWithDescriptors(24, [&] {
        const Codes codes = migrated(nullptr);
        return codes.size() == folders && std::all_of(codes.begin(), codes.end(), [](const auto& each) {
                   return each.second == kFileMigrationSuccess;
               });
    }));
}

TEST_F(BatchMigration, replacesTwoNamesOfOneOlderFile) {
    folder.writeFiles({"one/x.log", "two/x.log"}, "from/");
    folder.write("to/one/x.log", "old");
    folder.makeFolder("to/two");
    ASSERT_EQ(::link((folder / "to/one/x.log").c_str(), (folder / "to/two/x.log").c_str()), 0);
    EXPECT_EQ(migrated("log", overwriting), (Codes{{"one/x.log", 0}, {"two/x.log", 0}}));
    EXPECT_EQ(folder.contents("to/one/x.log"), "one/x.log");
    EXPECT_EQ(folder.contents("to/two/x.log"), "two/x.log");
}
