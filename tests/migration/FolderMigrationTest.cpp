// SPDX-License-Identifier: MIT
// The migration of one folder: where it goes the way of files, and where it does not.
#include <string>

#include <gtest/gtest.h>

#include "tests/migration/MigrationScene.h"

using namespace ZQFoundation;
using scene::copying;
using scene::creating;
using scene::Desktop;
using scene::Detail;
using scene::Digest;
using scene::Flags;
using scene::migrateFolder;
using scene::MigrationFolder;
using scene::nothingAllowed;
using scene::overwriting;
using scene::renaming;
using scene::Words;

namespace {

constexpr Flags everything{false, true, true, true};
constexpr Flags overwritingCopies{true, false, true, false};

/// A folder with every kind of item that has contents.
void makeTree(const MigrationFolder& folder, const std::string& name) {
    folder.file(name + "/one.txt", "one");
    folder.file(name + "/empty", "");
    folder.file(name + "/.hidden/two", "two");
    folder.file(name + "/sub/deeper/three", std::string(70000, '3'));
    folder.folder(name + "/nothing");
    folder.link("sub/deeper", name + "/toFolder");
    folder.link("nosuch", name + "/dangling");
    ::chmod((folder / (name + "/one.txt")).c_str(), 0440);
    ::chmod((folder / (name + "/sub")).c_str(), 0750);
}

void expectRefusal(const MigrationFolder& folder, const NSString& from, const NSString& to,
                   const Flags& flags, unsigned code) {
    const Digest before = folder.digest("", Detail::times);
    EXPECT_EQ(migrateFolder(from, to, flags), code) << scene::shownFlags(flags);
    EXPECT_EQ(scene::shownDigest(folder.digest("", Detail::times)), scene::shownDigest(before));
}

} // namespace

TEST(FolderMigration, movesAFolderWithAllThatItHolds) {
    const MigrationFolder folder;
    makeTree(folder, "A");
    const Digest before = folder.digest("A", Detail::times);
    EXPECT_EQ(migrateFolder(folder / "A", folder / "B"), kFileMigrationSuccess);
    EXPECT_EQ(scene::shownDigest(folder.digest("B", Detail::times)), scene::shownDigest(before));
    EXPECT_FALSE(scene::stands(folder / "A"));
}

TEST(FolderMigration, copiesAFolderAndLeavesTheOriginal) {
    const MigrationFolder folder;
    makeTree(folder, "A");
    const Digest before = folder.digest("A", Detail::times);
    EXPECT_EQ(migrateFolder(folder / "A", folder / "new/B", {true, true, false, false}),
              kFileMigrationSuccess);
    EXPECT_EQ(folder.digest("A", Detail::times), before);
    EXPECT_EQ(folder.digest("new/B", Detail::times), before);
}

TEST(FolderMigration, asksForTheSourceBeforeTheDestination) {
    EXPECT_EQ(migrateFolder(nullptr, nullptr), kFileMigrationSourceNotSpecified);
    EXPECT_EQ(migrateFolder(nullptr, "/tmp"), kFileMigrationSourceNotSpecified);
    EXPECT_EQ(migrateFolder("/nosuch", nullptr), kFileMigrationDestinationNotSpecified);
}

TEST(FolderMigration, findsNothingAtEmptyPaths) {
    const MigrationFolder folder;
    folder.folder("A");
    EXPECT_EQ(migrateFolder("", "", everything), kFileMigrationSourceDoesNotExist);
    expectRefusal(folder, folder / "A", "", nothingAllowed,
                  kFileMigrationDestinationParentFolderDoesNotExist);
    expectRefusal(folder, folder / "A", "", everything, kFileMigrationDestinationParentFolderCreationFailed);
}

TEST(FolderMigration, testsTheSourceFirst) {
    const MigrationFolder folder;
    folder.file("file", "x");
    folder.link("nosuch", "dangling");
    folder.link("file", "link");
    folder.pipe("pipe");
    for (const char* source : {"nosuch", "dangling"}) {
        expectRefusal(folder, folder / source, folder / "new/B", everything,
                      kFileMigrationSourceDoesNotExist);
    }
    for (const char* source : {"file", "link", "pipe"}) {
        expectRefusal(folder, folder / source, folder / "new/B", everything, kFileMigrationSourceIsFile);
    }
}

TEST(FolderMigration, doesNotAskWhetherTheSourceCanBeRead) {
    const bool passed = scene::checkedWithoutPrivileges([] {
        const MigrationFolder folder;
        folder.folder("A");
        ::chmod((folder / "A").c_str(), 0300);
        // It is the copy that fails.
        EXPECT_EQ(migrateFolder(folder / "A", folder / "B"), kFileMigrationDestinationFolderWritingFailed);
        EXPECT_TRUE(scene::stands(folder / "A"));
    });
    EXPECT_TRUE(passed);
}

TEST(FolderMigration, needsTheParentOfTheDestination) {
    const MigrationFolder folder;
    makeTree(folder, "A");
    folder.file("plain", "x");
    expectRefusal(folder, folder / "A", folder / "new/B", nothingAllowed,
                  kFileMigrationDestinationParentFolderDoesNotExist);
    expectRefusal(folder, folder / "A", folder / "plain/B", everything,
                  kFileMigrationDestinationParentFolderIsFile);
    expectRefusal(folder, folder / "A", folder / "plain/deep/B", everything,
                  kFileMigrationDestinationParentFolderCreationFailed);
    EXPECT_EQ(migrateFolder(folder / "A", folder / "new/deep/B", creating), kFileMigrationSuccess);
    EXPECT_TRUE(scene::stands(folder / "new/deep/B/sub/deeper/three"));
}

TEST(FolderMigration, refusesAnExistingDestination) {
    const MigrationFolder folder;
    makeTree(folder, "A");
    folder.folder("B");
    folder.file("file", "x");
    expectRefusal(folder, folder / "A", folder / "B", nothingAllowed, kFileMigrationDestinationFolderExists);
    // Without renaming the code is that of a folder, whatever is there.
    expectRefusal(folder, folder / "A", folder / "file", nothingAllowed,
                  kFileMigrationDestinationFolderExists);
}

TEST(FolderMigration, overwritesAFolderAndDoesNotMerge) {
    const MigrationFolder folder;
    makeTree(folder, "A");
    folder.file("B/one.txt", "old");
    folder.file("B/only here/x", "old");
    const Digest before = folder.digest("A");
    EXPECT_EQ(migrateFolder(folder / "A", folder / "B", overwritingCopies), kFileMigrationSuccess);
    EXPECT_EQ(scene::shownDigest(folder.digest("B")), scene::shownDigest(before));
    EXPECT_EQ(folder.digest("A"), before);
}

TEST(FolderMigration, overwritesALinkToAFolderAndNotTheFolder) {
    const MigrationFolder folder;
    folder.file("A/new", "new");
    folder.file("other/old", "old");
    folder.link("other", "B");
    EXPECT_EQ(migrateFolder(folder / "A", folder / "B", overwriting), kFileMigrationSuccess);
    EXPECT_EQ(folder.digest("", Detail::contents), (Digest{{"", "folder"},
                                                           {"B", "folder"},
                                                           {"B/new", "file [new]"},
                                                           {"other", "folder"},
                                                           {"other/old", "file [old]"}}));
}

TEST(FolderMigration, refusesAFileAtTheDestinationOverwritingOrRenaming) {
    const MigrationFolder folder;
    makeTree(folder, "A");
    folder.file("file.txt", "x");
    folder.link("file.txt", "link");
    for (const char* destination : {"file.txt", "link"}) {
        for (const Flags& flags : {overwriting, renaming, scene::overwritingAndRenaming}) {
            expectRefusal(folder, folder / "A", folder / destination, flags, kFileMigrationDestinationIsFile);
        }
    }
}

TEST(FolderMigration, namesACopyWithATrailingPeriod) {
    const MigrationFolder folder;
    folder.file("A/x", "x");
    folder.folder("Data");
    constexpr Flags renamedCopy{true, false, false, true};
    EXPECT_EQ(migrateFolder(folder / "A", folder / "Data", renamedCopy), kFileMigrationSuccess);
    EXPECT_TRUE(scene::stands(folder / "Data 1./x"));
    EXPECT_FALSE(scene::stands(folder / "Data 1"));
    EXPECT_EQ(migrateFolder(folder / "A", folder / "Data", renamedCopy), kFileMigrationSuccess);
    EXPECT_TRUE(scene::stands(folder / "Data 2./x"));
    folder.folder("Mail.box");
    EXPECT_EQ(migrateFolder(folder / "A", folder / "Mail.box", renaming), kFileMigrationSuccess);
    EXPECT_TRUE(scene::stands(folder / "Mail 1.box/x"));
    EXPECT_FALSE(scene::stands(folder / "A"));
}

TEST(FolderMigration, overwritesRatherThanRenames) {
    const MigrationFolder folder;
    folder.file("A/new", "new");
    folder.file("B/old", "old");
    EXPECT_EQ(migrateFolder(folder / "A", folder / "B", scene::overwritingAndRenaming),
              kFileMigrationSuccess);
    EXPECT_EQ(folder.digest("", Detail::contents),
              (Digest{{"", "folder"}, {"B", "folder"}, {"B/new", "file [new]"}}));
}

TEST(FolderMigration, keepsCreatedParentsWhateverFailsLater) {
    const MigrationFolder folder;
    folder.file("A/x", "x");
    // The parent is created as "p/gap", and then the destination turns out to be "p", a folder.
    EXPECT_EQ(migrateFolder(folder / "A", folder / "p/gap/..", creating),
              kFileMigrationDestinationFolderExists);
    EXPECT_TRUE(scene::stands(folder / "p/gap"));
    EXPECT_EQ(scene::contentsOf(folder / "A/x"), "x");
}

TEST(FolderMigration, failsToWriteOverADanglingLink) {
    const MigrationFolder folder;
    makeTree(folder, "A");
    folder.link("nosuch", "B");
    for (const Flags& flags : {nothingAllowed, overwriting, renaming}) {
        expectRefusal(folder, folder / "A", folder / "B", flags,
                      kFileMigrationDestinationFolderWritingFailed);
    }
}

TEST(FolderMigration, leavesTheSourceWhenTheOldDestinationCannotBeRemoved) {
    const bool passed = scene::checkedWithoutPrivileges([] {
        const MigrationFolder folder;
        makeTree(folder, "A");
        folder.file("B/closed/x", "old");
        ::chmod((folder / "B/closed").c_str(), 0555);
        const Digest before = folder.digest("A", Detail::times);
        EXPECT_EQ(migrateFolder(folder / "A", folder / "B", overwriting),
                  kFileMigrationDestinationFolderOverwritingFailed);
        EXPECT_EQ(folder.digest("A", Detail::times), before);
        EXPECT_EQ(scene::contentsOf(folder / "B/closed/x"), "old");
    });
    EXPECT_TRUE(passed);
}

TEST(FolderMigration, leavesTheSourceWhenSomethingInItCannotBeCopied) {
    const bool passed = scene::checkedWithoutPrivileges([] {
        const MigrationFolder folder;
        makeTree(folder, "A");
        folder.file("A/sub/secret", "x");
        folder.file("B/old", "old");
        const Digest before = folder.digest("A", Detail::times);
        ::chmod((folder / "A/sub/secret").c_str(), 0);
        EXPECT_EQ(migrateFolder(folder / "A", folder / "B", overwriting),
                  kFileMigrationDestinationFolderWritingFailed);
        EXPECT_FALSE(scene::stands(folder / "B/old")) << "what was there is gone already";
        ::chmod((folder / "A/sub/secret").c_str(), 0644);
        EXPECT_EQ(folder.digest("A", Detail::times), before);
    });
    EXPECT_TRUE(passed);
}

TEST(FolderMigration, leavesTheCopyWhenTheSourceCannotBeRemoved) {
    const bool passed = scene::checkedWithoutPrivileges([] {
        const MigrationFolder folder;
        const Desktop desktop("SomeClass");
        folder.file("closed/A/x", "x");
        folder.folder("to");
        ::chmod((folder / "closed").c_str(), 0555);
        const Digest before = folder.digest("closed/A");
        EXPECT_EQ(migrateFolder(folder / "closed/A", folder / "to/B"),
                  kFileMigrationSourceFileCannotBeRemoved);
        EXPECT_EQ(folder.digest("to/B"), before);
        EXPECT_EQ(desktop.told(), Words{folder / "to"});
    });
    EXPECT_TRUE(passed);
}

TEST(FolderMigration, copiesAndRemovesALinkItself) {
    const MigrationFolder folder;
    folder.file("target/x", "x");
    folder.link("target", "link");
    EXPECT_EQ(migrateFolder(folder / "link", folder / "moved"), kFileMigrationSuccess);
    EXPECT_EQ(
        folder.digest("", Detail::contents),
        (Digest{{"", "folder"}, {"moved", "link [target]"}, {"target", "folder"}, {"target/x", "file [x]"}}));
}

TEST(FolderMigration, tellsTheDesktopNothing) {
    const MigrationFolder folder;
    const Desktop desktop;
    folder.file("from/A/x", "x");
    folder.folder("to");
    EXPECT_EQ(migrateFolder(folder / "from/A", folder / "to/B"), kFileMigrationSuccess);
    EXPECT_EQ(desktop.told(), Words{});
}

TEST(FolderMigration, tellsAClassThatIsRegisteredAsSomeClass) {
    const MigrationFolder folder;
    Desktop some("SomeClass");
    folder.file("from/A/x", "x");
    folder.folder("to");
    EXPECT_EQ(migrateFolder(folder / "from/A", folder / "to/B", copying), kFileMigrationSuccess);
    EXPECT_EQ(some.told(), Words{folder / "to"});
    some.forget();
    EXPECT_EQ(migrateFolder(folder / "from/A", folder / "to/B", renaming), kFileMigrationSuccess);
    EXPECT_EQ(some.told(), (Words{folder / "to", folder / "from"}));
}

TEST(FolderMigration, expandsTheTildeInBothPaths) {
    const MigrationFolder folder;
    const scene::Variable home("HOME", folder.path().c_str());
    folder.file("from/A/x", "x");
    EXPECT_EQ(migrateFolder("~/from/A/", "~/to/B/", creating), kFileMigrationSuccess);
    EXPECT_EQ(scene::contentsOf(folder / "to/B/x"), "x");
    EXPECT_FALSE(scene::stands(folder / "from/A"));
}

TEST(FolderMigration, keepsTheCallersErrorNumber) {
    const MigrationFolder folder;
    makeTree(folder, "A");
    for (const char* destination : {"B", "nosuch/B", "B"}) {
        errno = 4711;
        migrateFolder(folder / "A", folder / destination, copying);
        EXPECT_EQ(errno, 4711) << destination;
    }
}

TEST(FolderMigration, movesADeepTree) {
    constexpr int depth = 3000;
    const MigrationFolder folder;
    folder.folder("A");
    scene::makeChain(folder / "A", "abc", depth);
    folder.folder("B");
    EXPECT_EQ(migrateFolder(folder / "A", folder / "B", overwriting), kFileMigrationSuccess);
    EXPECT_FALSE(scene::stands(folder / "A"));
    // Removing the whole chain by its length leaves nothing only when every folder was there.
    scene::removeChain(folder / "B", "abc", depth);
    EXPECT_EQ(folder.digest("B", Detail::contents), (Digest{{"", "folder"}}));
}
