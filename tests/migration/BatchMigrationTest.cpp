// SPDX-License-Identifier: MIT
// The migration of all files of one extension.
#include <map>
#include <string>

#include <gtest/gtest.h>

#include "foundation/objects/NSNumber.h"
#include "tests/migration/MigrationScene.h"

using namespace ZQFoundation;
using scene::copying;
using scene::Desktop;
using scene::Detail;
using scene::Digest;
using scene::DotFiles;
using scene::Flags;
using scene::migrateFiles;
using scene::MigrationFolder;
using scene::Words;

namespace {

using Codes = std::map<std::string, unsigned>;

constexpr Flags moving{false, true, false, false};
constexpr Flags creatingCopies{true, true, false, false};

Codes codesOf(const NSDictionary& results) {
    Codes codes;
    for (const NSDictionaryEntry& entry : results) {
        codes[scene::bytesOf(NSString(entry.key))] = static_cast<unsigned>(NSNumber(entry.value).intValue());
    }
    return codes;
}

/// Migrates from the folder "from" to the folder "to".
Codes migrated(const MigrationFolder& folder, const NSString& extension, DotFiles dotFiles,
               const Flags& flags) {
    return codesOf(migrateFiles(extension, folder / "from", folder / "to", dotFiles, flags));
}

} // namespace

TEST(BatchMigration, asksForTheFoldersFirst) {
    EXPECT_EQ(codesOf(migrateFiles("log", nullptr, nullptr, DotFiles::included)), (Codes{{"", 1}}));
    EXPECT_EQ(codesOf(migrateFiles("log", nullptr, "/tmp/x", DotFiles::included)), (Codes{{"", 1}}));
    EXPECT_EQ(codesOf(migrateFiles("log", "/nosuch", nullptr, DotFiles::included)), (Codes{{"", 2}}));
}

TEST(BatchMigration, ofNothingHasNoResults) {
    const MigrationFolder folder;
    const NSDictionary missing = migrateFiles("log", folder / "from", folder / "to", DotFiles::included);
    EXPECT_TRUE(static_cast<bool>(missing)) << "empty, not nil";
    EXPECT_EQ(missing.count(), 0U);
    folder.folder("from");
    EXPECT_EQ(migrated(folder, "log", DotFiles::included, moving), Codes{});
    EXPECT_EQ(codesOf(migrateFiles("log", "", folder / "to", DotFiles::included)), Codes{});
    folder.file("plain.log", "x");
    EXPECT_EQ(codesOf(migrateFiles("log", folder / "plain.log", folder / "to", DotFiles::included, moving)),
              Codes{});
    EXPECT_FALSE(scene::stands(folder / "to"));
}

TEST(BatchMigration, selectsByTheExactExtension) {
    const MigrationFolder folder;
    for (const char* name : {"a.log", "sub/b.log", "c.LOG", "d.log2", "log", "e.log.txt", "x.log/inside.txt",
                             "x.log/f.log", ".log", "g.x.log"}) {
        folder.file(std::string("from/") + name, name);
    }
    EXPECT_EQ(migrated(folder, "log", DotFiles::included, moving),
              (Codes{{"a.log", 0}, {"sub/b.log", 0}, {"x.log/f.log", 0}, {"g.x.log", 0}}));
    EXPECT_EQ(folder.digest("to", Detail::contents), (Digest{{"", "folder"},
                                                             {"a.log", "file [a.log]"},
                                                             {"g.x.log", "file [g.x.log]"},
                                                             {"sub", "folder"},
                                                             {"sub/b.log", "file [sub/b.log]"},
                                                             {"x.log", "folder"},
                                                             {"x.log/f.log", "file [x.log/f.log]"}}));
    EXPECT_TRUE(scene::stands(folder / "from/c.LOG"));
    EXPECT_TRUE(scene::stands(folder / "from/sub")) << "emptied folders stay";
    EXPECT_FALSE(scene::stands(folder / "from/a.log"));
}

TEST(BatchMigration, withoutExtensionSelectsEveryFile) {
    for (const NSString& extension : {NSString(), NSString("")}) {
        const MigrationFolder folder;
        for (const char* name : {"a.log", "b", "sub/c.txt", "sub/deep/.d", ".e/f"}) {
            folder.file(std::string("from/") + name, name);
        }
        folder.folder("from/empty");
        EXPECT_EQ(migrated(folder, extension, DotFiles::included, moving),
                  (Codes{{"a.log", 0}, {"b", 0}, {"sub/c.txt", 0}, {"sub/deep/.d", 0}, {".e/f", 0}}));
        EXPECT_FALSE(scene::stands(folder / "to/empty")) << "folders are not migrated as such";
    }
}

TEST(BatchMigration, takesTheExtensionWithoutItsPeriod) {
    const MigrationFolder folder;
    folder.file("from/a.log", "x");
    folder.file("from/b.", "x");
    EXPECT_EQ(migrated(folder, ".log", DotFiles::included, moving), Codes{});
}

TEST(BatchMigration, passesOverWhatBeginsWithAPeriodAtTheTop) {
    const MigrationFolder folder;
    for (const char* name :
         {".profile", ".git/config", ".git/sub/x", "docs/.notes.log", "docs/.git/y", "a"}) {
        folder.file(std::string("from/") + name, name);
    }
    EXPECT_EQ(migrated(folder, nullptr, DotFiles::passedOver, moving),
              (Codes{{"docs/.notes.log", 0}, {"docs/.git/y", 0}, {"a", 0}}));
    EXPECT_TRUE(scene::stands(folder / "from/.git/config"));
    EXPECT_EQ(migrated(folder, nullptr, DotFiles::included, moving),
              (Codes{{".profile", 0}, {".git/config", 0}, {".git/sub/x", 0}}));
}

TEST(BatchMigration, migratesAHiddenFileInsideWhenItsExtensionMatches) {
    const MigrationFolder folder;
    folder.file("from/docs/.notes.log", "x");
    folder.file("from/.top.log", "x");
    EXPECT_EQ(migrated(folder, "log", DotFiles::passedOver, moving), (Codes{{"docs/.notes.log", 0}}));
}

TEST(BatchMigration, goesOnAfterAFailure) {
    const scene::NoLanguages english;
    const MigrationFolder folder;
    folder.file("from/a.log", "new");
    folder.file("from/b.log", "new");
    folder.file("from/c.log", "new");
    folder.file("to/b.log", "old");
    const NSDictionary results =
        migrateFiles("log", folder / "from", folder / "to", DotFiles::included, moving);
    EXPECT_EQ(codesOf(results), (Codes{{"a.log", 0}, {"b.log", 30}, {"c.log", 0}}));
    EXPECT_EQ(scene::contentsOf(folder / "to/b.log"), "old");
    EXPECT_EQ(scene::contentsOf(folder / "from/b.log"), "new");
    EXPECT_EQ(ZQFileMigrator::descriptionOfFileMigrationErrorsIn(results).string(),
              "b.log: the destination file already exists");
}

TEST(BatchMigration, passesTheSwitchesOnToEveryFile) {
    struct Row {
        Flags flags;
        unsigned code;
        Digest left;
    };
    const Digest kept{{"", "folder"}, {"a.log", "file [new]"}};
    const Digest gone{{"", "folder"}};
    const Row rows[] = {
        {{false, false, false, false}, 30, {{"", "folder"}, {"a.log", "file [old]"}}},
        {{false, false, true, false}, 0, {{"", "folder"}, {"a.log", "file [new]"}}},
        {{true, false, true, false}, 0, {{"", "folder"}, {"a.log", "file [new]"}}},
        {{false, false, false, true},
         0,
         {{"", "folder"}, {"a 1.log", "file [new]"}, {"a.log", "file [old]"}}},
        {{true, false, true, true}, 0, {{"", "folder"}, {"a.log", "file [new]"}}},
    };
    for (const Row& row : rows) {
        const MigrationFolder folder;
        folder.file("from/a.log", "new");
        folder.file("to/a.log", "old");
        EXPECT_EQ(migrated(folder, "log", DotFiles::included, row.flags), (Codes{{"a.log", row.code}}));
        EXPECT_EQ(folder.digest("to", Detail::contents), row.left) << scene::shownFlags(row.flags);
        EXPECT_EQ(folder.digest("from", Detail::contents),
                  row.flags.keepOriginal || row.code != 0 ? kept : gone);
    }
}

TEST(BatchMigration, needsTheFoldersAtTheDestination) {
    const MigrationFolder folder;
    folder.file("from/a.log", "x");
    folder.file("from/sub/b.log", "x");
    EXPECT_EQ(migrated(folder, "log", DotFiles::included, copying),
              (Codes{{"a.log", 20}, {"sub/b.log", 20}}));
    folder.folder("to");
    EXPECT_EQ(migrated(folder, "log", DotFiles::included, copying), (Codes{{"a.log", 0}, {"sub/b.log", 20}}));
    folder.file("to/sub", "a file");
    EXPECT_EQ(migrated(folder, "log", DotFiles::included, creatingCopies),
              (Codes{{"a.log", 30}, {"sub/b.log", 21}}));
}

TEST(BatchMigration, mapsToUnsigned32BitNumbers) {
    const MigrationFolder folder;
    folder.file("from/a.log", "x");
    const NSDictionary results = migrateFiles("log", folder / "from", folder / "to", DotFiles::included);
    EXPECT_EQ(results, (NSDictionary{{"a.log", 20U}}));
    EXPECT_EQ(results.objectForKey("a.log").className(), "NSNumber");
}

TEST(BatchMigration, migratesLinksToFilesAndPassesOverLinksToFolders) {
    const MigrationFolder folder;
    folder.file("elsewhere/x.log", "x");
    folder.folder("from");
    folder.link(folder / "elsewhere/x.log", "from/file.log");
    folder.link(folder / "elsewhere", "from/folder.log");
    EXPECT_EQ(migrated(folder, "log", DotFiles::included, moving), (Codes{{"file.log", 0}}));
    EXPECT_EQ(folder.digest("to", Detail::contents),
              (Digest{{"", "folder"}, {"file.log", "link [" + (folder / "elsewhere/x.log") + "]"}}));
    EXPECT_TRUE(scene::stands(folder / "from/folder.log"));
    EXPECT_EQ(scene::contentsOf(folder / "elsewhere/x.log"), "x");
}

TEST(BatchMigration, startsAtALinkToAFolder) {
    const MigrationFolder folder;
    folder.file("real/sub/a.log", "x");
    folder.link("real", "from");
    EXPECT_EQ(migrated(folder, "log", DotFiles::included, moving), (Codes{{"sub/a.log", 0}}));
}

TEST(BatchMigration, treatsAnItemThatIsNotThereAsTheOneBeforeIt) {
    // Whatever the order of siblings: a folder's own contents come right after it.
    const MigrationFolder folder;
    folder.folder("from/folder");
    folder.link("nosuch", "from/folder/dangling");
    EXPECT_EQ(migrated(folder, nullptr, DotFiles::included, moving), Codes{})
        << "behind a folder it is passed over like one";
    folder.folder("others");
    ASSERT_EQ(::rename((folder / "from/folder/dangling").c_str(), (folder / "others/d1").c_str()), 0);
    folder.file("others/file", "x");
    folder.link("nosuch", "others/d2");
    folder.link("nosuch", "others/d3");
    // Among a file and dangling links alone nothing is a folder: each of them fails as a missing file.
    const Codes codes =
        codesOf(migrateFiles(nullptr, folder / "others", folder / "to", DotFiles::included, creatingCopies));
    EXPECT_EQ(codes.at("file"), 0U);
    for (const auto& [name, code] : codes) {
        EXPECT_EQ(code, name == "file" ? 0U : 10U) << name;
    }
}

TEST(BatchMigration, doesNotForgetAFolderForAllTheItemsThatAreNotThere) {
    // One folder that is enumerated, then only dangling links in it, in any order: the switch stays on.
    const MigrationFolder folder;
    folder.folder("from/sub");
    for (const char* name : {"a", "b", "c", "d"}) {
        folder.link("nosuch", std::string("from/sub/") + name);
    }
    EXPECT_EQ(migrated(folder, nullptr, DotFiles::included, moving), Codes{});
}

TEST(BatchMigration, testsOnlyWhatIsSelected) {
    // An entry that is ignored for its name does not change what the next one is taken for.
    const MigrationFolder folder;
    folder.folder("from/.sub");
    folder.link("nosuch", "from/.sub/a.log");
    folder.link("nosuch", "from/b.log");
    // ".sub" and what it holds begin with a period and are not looked at. So "b.log" comes first, for which
    // there is no earlier answer: taken for a file or ignored.
    const Codes codes = migrated(folder, "log", DotFiles::passedOver, moving);
    EXPECT_TRUE(codes == Codes{} || codes == (Codes{{"b.log", 10}}));
}

TEST(BatchMigration, doesNotTakeAFolderPassedOverForItsExtensionIntoAccount) {
    const MigrationFolder folder;
    folder.folder("from/sub");
    folder.file("from/sub/a.log", "x");
    folder.link("nosuch", "from/sub/b.log");
    // "sub" is no "log", so the only answers come from the files: "b.log" is a missing file, or comes first.
    const Codes codes = migrated(folder, "log", DotFiles::included, moving);
    EXPECT_EQ(codes.at("sub/a.log"), 0U);
    EXPECT_TRUE(codes.count("sub/b.log") == 0 || codes.at("sub/b.log") == 10U);
}

TEST(BatchMigration, expandsTheTildeInBothFolders) {
    const MigrationFolder folder;
    const scene::Variable home("HOME", folder.path().c_str());
    folder.file("from/sub/a.log", "x");
    EXPECT_EQ(codesOf(migrateFiles("log", "~/from", "~/to/", DotFiles::included, moving)),
              (Codes{{"sub/a.log", 0}}));
    EXPECT_EQ(scene::contentsOf(folder / "to/sub/a.log"), "x");
}

TEST(BatchMigration, toleratesAFinalSlashAndDoubledOnes) {
    const MigrationFolder folder;
    folder.file("from/sub/a.log", "x");
    const std::string from = folder.path() + "//from/";
    EXPECT_EQ(codesOf(migrateFiles("log", from, folder / "to//", DotFiles::included, moving)),
              (Codes{{"sub/a.log", 0}}));
}

TEST(BatchMigration, tellsTheDesktopOfEveryFile) {
    const MigrationFolder folder;
    const Desktop desktop;
    const Desktop some("SomeClass");
    folder.file("from/sub/a.log", "x");
    EXPECT_EQ(migrated(folder, "log", DotFiles::included, moving), (Codes{{"sub/a.log", 0}}));
    EXPECT_EQ(desktop.told(), (Words{folder / "to/sub", folder / "from/sub"}));
    EXPECT_EQ(some.told(), Words{});
}

TEST(BatchMigration, removesWhileItEnumerates) {
    const MigrationFolder folder;
    Codes expected;
    for (int number = 0; number < 3000; ++number) {
        const std::string name = "d" + std::to_string(number % 30) + "/f" + std::to_string(number) + ".log";
        folder.file("from/" + name, name);
        expected[name] = 0;
    }
    EXPECT_EQ(migrated(folder, "log", DotFiles::included, moving), expected);
    for (const auto& [name, code] : expected) {
        ASSERT_EQ(scene::contentsOf(folder / ("to/" + name)), name);
        ASSERT_FALSE(scene::stands(folder / ("from/" + name)));
    }
}

TEST(BatchMigration, ofAFolderIntoItselfFailsFileByFile) {
    const MigrationFolder folder;
    folder.file("from/a.log", "a");
    folder.file("from/sub/b.log", "b");
    const Digest before = folder.digest("from");
    EXPECT_EQ(codesOf(migrateFiles("log", folder / "from", folder / "from", DotFiles::included, moving)),
              (Codes{{"a.log", 30}, {"sub/b.log", 30}}));
    EXPECT_EQ(codesOf(migrateFiles("log", folder / "from", folder / "from", DotFiles::included,
                                   {false, false, true, false})),
              (Codes{{"a.log", 34}, {"sub/b.log", 34}}));
    EXPECT_EQ(folder.digest("from"), before);
}

TEST(BatchMigration, keepsNamesThatAreNoText) {
    const MigrationFolder folder;
    const std::string name = "caf\xe9.log";
    folder.file("from/" + name, "x");
    const NSDictionary results =
        migrateFiles("log", folder / "from", folder / "to", DotFiles::included, moving);
    EXPECT_EQ(codesOf(results), (Codes{{name, 0}}));
    EXPECT_EQ(scene::contentsOf(folder / ("to/" + name)), "x");
}

TEST(BatchMigration, passesOverFoldersThatCannotBeRead) {
    const bool passed = scene::checkedWithoutPrivileges([] {
        const MigrationFolder folder;
        folder.file("from/closed/a.log", "x");
        folder.file("from/b.log", "x");
        ::chmod((folder / "from/closed").c_str(), 0);
        EXPECT_EQ(migrated(folder, "log", DotFiles::included, moving), (Codes{{"b.log", 0}}));
        ::chmod((folder / "from").c_str(), 0);
        EXPECT_EQ(migrated(folder, "log", DotFiles::included, moving), Codes{});
        ::chmod((folder / "from").c_str(), 0755);
        ::chmod((folder / "from/closed").c_str(), 0755);
        EXPECT_EQ(scene::contentsOf(folder / "from/closed/a.log"), "x");
    });
    EXPECT_TRUE(passed);
}

TEST(BatchMigration, keepsTheCallersErrorNumber) {
    const MigrationFolder folder;
    folder.file("from/a.log", "x");
    errno = 4711;
    migrated(folder, "log", DotFiles::included, moving);
    EXPECT_EQ(errno, 4711);
}
