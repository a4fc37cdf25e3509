// SPDX-License-Identifier: MIT
// The migration of one file: each step with its code, what is left over, who is notified.
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
using scene::migrateFile;
using scene::MigrationFolder;
using scene::nothingAllowed;
using scene::overwriting;
using scene::renaming;
using scene::Words;

namespace {

constexpr Flags renamingCopies{true, false, false, true};
constexpr Flags overwritingCopies{true, false, true, false};
constexpr Flags everything{false, true, true, true};

/// Expects the code and that nothing in the folder has changed.
void expectRefusal(const MigrationFolder& folder, const NSString& from, const NSString& to,
                   const Flags& flags, unsigned code) {
    const Digest before = folder.digest("", Detail::times);
    EXPECT_EQ(migrateFile(from, to, flags), code);
    EXPECT_EQ(scene::shownDigest(folder.digest("", Detail::times)), scene::shownDigest(before));
}

} // namespace

TEST(FileMigration, movesAFile) {
    const MigrationFolder folder;
    folder.file("from/a.txt", "contents");
    folder.folder("to");
    EXPECT_EQ(migrateFile(folder / "from/a.txt", folder / "to/b.txt"), kFileMigrationSuccess);
    EXPECT_FALSE(scene::stands(folder / "from/a.txt"));
    EXPECT_EQ(scene::contentsOf(folder / "to/b.txt"), "contents");
}

TEST(FileMigration, copiesAFileWithItsPermissionsAndTimes) {
    const MigrationFolder folder;
    folder.file("a.txt", std::string(300000, 'x') + "end");
    ::chmod((folder / "a.txt").c_str(), 0640);
    const timespec times[2] = {{1000000, 5000}, {1234567, 890123000}};
    ASSERT_EQ(::utimensat(AT_FDCWD, (folder / "a.txt").c_str(), times, 0), 0);
    EXPECT_EQ(migrateFile(folder / "a.txt", folder / "b.txt", copying), kFileMigrationSuccess);
    EXPECT_EQ(folder.digest("a.txt", Detail::times), folder.digest("b.txt", Detail::times));
}

TEST(FileMigration, asksForTheSourceBeforeTheDestination) {
    EXPECT_EQ(migrateFile(nullptr, nullptr), kFileMigrationSourceNotSpecified);
    EXPECT_EQ(migrateFile(nullptr, "/tmp/x"), kFileMigrationSourceNotSpecified);
    EXPECT_EQ(migrateFile("/nosuch/x", nullptr), kFileMigrationDestinationNotSpecified);
}

TEST(FileMigration, findsNothingAtEmptyPaths) {
    const MigrationFolder folder;
    folder.file("a", "x");
    EXPECT_EQ(migrateFile("", ""), kFileMigrationSourceDoesNotExist);
    EXPECT_EQ(migrateFile("", folder / "b", everything), kFileMigrationSourceDoesNotExist);
    expectRefusal(folder, folder / "a", "", nothingAllowed,
                  kFileMigrationDestinationParentFolderDoesNotExist);
    expectRefusal(folder, folder / "a", "", everything, kFileMigrationDestinationParentFolderCreationFailed);
}

TEST(FileMigration, testsTheSourceFirst) {
    const MigrationFolder folder;
    folder.folder("folder");
    folder.link("nosuch", "dangling");
    // The destination's parent is missing too, and may be created: it is not.
    for (const char* source : {"nosuch", "dangling"}) {
        expectRefusal(folder, folder / source, folder / "new/b", everything,
                      kFileMigrationSourceDoesNotExist);
    }
    expectRefusal(folder, folder / "folder", folder / "new/b", everything, kFileMigrationSourceIsFolder);
    expectRefusal(folder, folder / "folder/", folder / "new/b", everything, kFileMigrationSourceIsFolder);
}

TEST(FileMigration, refusesALinkToAFolder) {
    const MigrationFolder folder;
    folder.folder("folder");
    folder.link("folder", "link");
    expectRefusal(folder, folder / "link", folder / "b", nothingAllowed, kFileMigrationSourceIsFolder);
}

TEST(FileMigration, refusesAFileThatCannotBeRead) {
    const bool passed = scene::checkedWithoutPrivileges([] {
        const MigrationFolder folder;
        folder.file("a", "x");
        ::chmod((folder / "a").c_str(), 0200);
        expectRefusal(folder, folder / "a", folder / "new/b", everything, kFileMigrationSourceFileUnreadable);
    });
    EXPECT_TRUE(passed);
}

TEST(FileMigration, needsTheParentOfTheDestination) {
    const MigrationFolder folder;
    folder.file("a", "x");
    folder.file("plain", "x");
    folder.link("nosuch", "dangling");
    expectRefusal(folder, folder / "a", folder / "new/b", nothingAllowed,
                  kFileMigrationDestinationParentFolderDoesNotExist);
    expectRefusal(folder, folder / "a", folder / "plain/b", nothingAllowed,
                  kFileMigrationDestinationParentFolderIsFile);
    expectRefusal(folder, folder / "a", folder / "plain/b", everything,
                  kFileMigrationDestinationParentFolderIsFile);
    // Below a file there is nothing at all.
    expectRefusal(folder, folder / "a", folder / "plain/deep/b", nothingAllowed,
                  kFileMigrationDestinationParentFolderDoesNotExist);
    expectRefusal(folder, folder / "a", folder / "plain/deep/b", everything,
                  kFileMigrationDestinationParentFolderCreationFailed);
    expectRefusal(folder, folder / "a", folder / "dangling/b", everything,
                  kFileMigrationDestinationParentFolderCreationFailed);
}

TEST(FileMigration, createsAllFoldersAboveTheDestination) {
    const MigrationFolder folder;
    folder.file("a", "x");
    EXPECT_EQ(migrateFile(folder / "a", folder / "new/and/deep/b", creating), kFileMigrationSuccess);
    EXPECT_EQ(scene::contentsOf(folder / "new/and/deep/b"), "x");
    EXPECT_FALSE(scene::stands(folder / "a"));
}

TEST(FileMigration, leavesFoldersThatItMadeBeforeACreationFailed) {
    const bool passed = scene::checkedWithoutPrivileges([] {
        const MigrationFolder folder;
        folder.file("a", "x");
        ::chmod(folder.folder("closed").c_str(), 0555);
        EXPECT_EQ(migrateFile(folder / "a", folder / "closed/new/b", creating),
                  kFileMigrationDestinationParentFolderCreationFailed);
        EXPECT_EQ(scene::contentsOf(folder / "a"), "x");
    });
    EXPECT_TRUE(passed);
}

TEST(FileMigration, refusesAnExistingFileAndLeavesBoth) {
    const MigrationFolder folder;
    folder.file("a", "new");
    folder.file("b", "old");
    expectRefusal(folder, folder / "a", folder / "b", nothingAllowed, kFileMigrationDestinationFileExists);
    folder.folder("folder");
    // Without renaming the code is that of a file, whatever is there.
    expectRefusal(folder, folder / "a", folder / "folder", nothingAllowed,
                  kFileMigrationDestinationFileExists);
}

TEST(FileMigration, overwritesAFile) {
    const MigrationFolder folder;
    folder.file("a", "new");
    folder.file("b", "old and longer");
    EXPECT_EQ(migrateFile(folder / "a", folder / "b", overwriting), kFileMigrationSuccess);
    EXPECT_EQ(folder.digest("", Detail::contents), (Digest{{"", "folder"}, {"b", "file [new]"}}));
}

TEST(FileMigration, overwritesWithoutTouchingWhatALinkLeadsTo) {
    const MigrationFolder folder;
    folder.file("a", "new");
    folder.file("other", "old");
    folder.link("other", "b");
    EXPECT_EQ(migrateFile(folder / "a", folder / "b", overwritingCopies), kFileMigrationSuccess);
    EXPECT_EQ(folder.digest("", Detail::contents),
              (Digest{{"", "folder"}, {"a", "file [new]"}, {"b", "file [new]"}, {"other", "file [old]"}}));
}

TEST(FileMigration, namesACopyWithABlankAndACounter) {
    const MigrationFolder folder;
    folder.file("report.txt", "old");
    for (const char* copy : {"report 1.txt", "report 2.txt", "report 3.txt"}) {
        folder.file("from/report.txt", copy);
        EXPECT_EQ(migrateFile(folder / "from/report.txt", folder / "report.txt", renaming),
                  kFileMigrationSuccess);
        EXPECT_EQ(scene::contentsOf(folder / copy), copy);
    }
    EXPECT_EQ(scene::contentsOf(folder / "report.txt"), "old");
    EXPECT_EQ(folder.digest("from", Detail::contents), (Digest{{"", "folder"}}));
}

TEST(FileMigration, putsAPeriodBehindTheCounterOfANameWithoutExtension) {
    const MigrationFolder folder;
    folder.file("a", "new");
    folder.file("b", "old");
    EXPECT_EQ(migrateFile(folder / "a", folder / "b", renamingCopies), kFileMigrationSuccess);
    EXPECT_EQ(scene::contentsOf(folder / "b 1."), "new");
}

TEST(FileMigration, overwritesRatherThanRenames) {
    const MigrationFolder folder;
    folder.file("a.txt", "new");
    folder.file("b.txt", "old");
    EXPECT_EQ(migrateFile(folder / "a.txt", folder / "b.txt", scene::overwritingAndRenaming),
              kFileMigrationSuccess);
    EXPECT_EQ(folder.digest("", Detail::contents), (Digest{{"", "folder"}, {"b.txt", "file [new]"}}));
}

TEST(FileMigration, doesNotRenameWhereNothingStands) {
    const MigrationFolder folder;
    folder.file("a.txt", "new");
    EXPECT_EQ(migrateFile(folder / "a.txt", folder / "b.txt", renaming), kFileMigrationSuccess);
    EXPECT_EQ(folder.digest("", Detail::contents), (Digest{{"", "folder"}, {"b.txt", "file [new]"}}));
}

TEST(FileMigration, refusesAFolderAtTheDestinationOverwritingOrRenaming) {
    const MigrationFolder folder;
    folder.file("a", "new");
    folder.file("b/inside", "old");
    folder.link("b", "link");
    for (const char* destination : {"b", "link"}) {
        for (const Flags& flags : {overwriting, renaming, scene::overwritingAndRenaming}) {
            expectRefusal(folder, folder / "a", folder / destination, flags,
                          kFileMigrationDestinationIsFolder);
        }
    }
}

TEST(FileMigration, renamesPastAFolderThatHasTheFirstFreeName) {
    const MigrationFolder folder;
    folder.file("a.txt", "new");
    folder.file("b.txt", "old");
    folder.folder("b 1.txt");
    EXPECT_EQ(migrateFile(folder / "a.txt", folder / "b.txt", renaming), kFileMigrationSuccess);
    EXPECT_EQ(scene::contentsOf(folder / "b 2.txt"), "new");
}

TEST(FileMigration, keepsCreatedParentsWhateverFailsLater) {
    const MigrationFolder folder;
    folder.file("a", "x");
    // The parent is created as "p/gap", and then the destination turns out to be "p", a folder.
    const std::string destination = folder / "p/gap/..";
    EXPECT_EQ(migrateFile(folder / "a", destination, creating), kFileMigrationDestinationFileExists);
    EXPECT_EQ(folder.digest("", Detail::contents),
              (Digest{{"", "folder"}, {"a", "file [x]"}, {"p", "folder"}, {"p/gap", "folder"}}));
}

TEST(FileMigration, failsToWriteOverADanglingLink) {
    const MigrationFolder folder;
    folder.file("a", "x");
    folder.link("nosuch", "b");
    for (const Flags& flags : {nothingAllowed, overwriting, renaming}) {
        expectRefusal(folder, folder / "a", folder / "b", flags, kFileMigrationDestinationFileWritingFailed);
    }
}

TEST(FileMigration, failsToOverwriteInAFolderThatIsNotWritable) {
    const bool passed = scene::checkedWithoutPrivileges([] {
        const MigrationFolder folder;
        folder.file("a", "new");
        folder.file("closed/b", "old");
        ::chmod((folder / "closed").c_str(), 0555);
        expectRefusal(folder, folder / "a", folder / "closed/b", overwriting,
                      kFileMigrationDestinationFileOverwritingFailed);
        expectRefusal(folder, folder / "a", folder / "closed/c", overwriting,
                      kFileMigrationDestinationFileWritingFailed);
        expectRefusal(folder, folder / "a", folder / "closed/b", renaming,
                      kFileMigrationDestinationFileWritingFailed);
    });
    EXPECT_TRUE(passed);
}

TEST(FileMigration, leavesTheCopyWhenTheSourceCannotBeRemoved) {
    const bool passed = scene::checkedWithoutPrivileges([] {
        const MigrationFolder folder;
        const Desktop desktop;
        folder.file("closed/a", "x");
        folder.folder("to");
        ::chmod((folder / "closed").c_str(), 0555);
        EXPECT_EQ(migrateFile(folder / "closed/a", folder / "to/b"), kFileMigrationSourceFileCannotBeRemoved);
        EXPECT_EQ(scene::contentsOf(folder / "closed/a"), "x");
        EXPECT_EQ(scene::contentsOf(folder / "to/b"), "x");
        EXPECT_EQ(desktop.told(), Words{folder / "to"}) << "the copy was made, the source is still there";
        // A copy needs no removal.
        EXPECT_EQ(migrateFile(folder / "closed/a", folder / "to/c", copying), kFileMigrationSuccess);
    });
    EXPECT_TRUE(passed);
}

TEST(FileMigration, copiesAndRemovesALinkItself) {
    const MigrationFolder folder;
    folder.file("target", "x");
    folder.link("target", "link");
    EXPECT_EQ(migrateFile(folder / "link", folder / "moved"), kFileMigrationSuccess);
    EXPECT_EQ(folder.digest("", Detail::contents),
              (Digest{{"", "folder"}, {"moved", "link [target]"}, {"target", "file [x]"}}));
}

TEST(FileMigration, makesAPipeAnewAndDoesNotWait) {
    const MigrationFolder folder;
    folder.pipe("pipe");
    EXPECT_EQ(migrateFile(folder / "pipe", folder / "moved"), kFileMigrationSuccess);
    EXPECT_EQ(folder.digest("", Detail::contents), (Digest{{"", "folder"}, {"moved", "pipe"}}));
}

TEST(FileMigration, movesAReadOnlyFile) {
    const bool passed = scene::checkedWithoutPrivileges([] {
        const MigrationFolder folder;
        folder.file("a", "x");
        ::chmod((folder / "a").c_str(), 0400);
        EXPECT_EQ(migrateFile(folder / "a", folder / "b"), kFileMigrationSuccess);
        EXPECT_EQ(folder.digest("b"), (Digest{{"", "file [x] 0400"}}));
        EXPECT_FALSE(scene::stands(folder / "a"));
    });
    EXPECT_TRUE(passed);
}

TEST(FileMigration, expandsTheTildeInBothPaths) {
    const MigrationFolder folder;
    const scene::Variable home("HOME", folder.path().c_str());
    const Desktop desktop;
    folder.file("from/a", "x");
    EXPECT_EQ(migrateFile("~/from/a", "~/to/b", creating), kFileMigrationSuccess);
    EXPECT_EQ(scene::contentsOf(folder / "to/b"), "x");
    EXPECT_EQ(desktop.told(), (Words{folder / "to", folder / "from"}));
}

TEST(FileMigration, takesRelativePathsFromTheCurrentFolder) {
    const MigrationFolder folder;
    folder.file("from/a", "x");
    folder.folder("to");
    const scene::CurrentFolder current(folder.path());
    EXPECT_EQ(migrateFile("from/a", "to/b"), kFileMigrationSuccess);
    EXPECT_EQ(scene::contentsOf(folder / "to/b"), "x");
    // A bare name has the empty path as its parent, and nothing exists there.
    EXPECT_EQ(migrateFile("to/b", "c"), kFileMigrationDestinationParentFolderDoesNotExist);
    EXPECT_EQ(migrateFile("to/b", "c", creating), kFileMigrationDestinationParentFolderCreationFailed);
    EXPECT_EQ(scene::contentsOf(folder / "to/b"), "x");
}

TEST(FileMigration, tellsTheDesktopOfTheCopyAndThenOfTheRemoval) {
    const MigrationFolder folder;
    const Desktop desktop;
    folder.file("from/a", "x");
    folder.folder("to");
    EXPECT_EQ(migrateFile(folder / "from/a", folder / "to/b"), kFileMigrationSuccess);
    EXPECT_EQ(desktop.told(), (Words{folder / "to", folder / "from"}));
}

TEST(FileMigration, tellsTheDesktopOfACopyOnlyOnce) {
    const MigrationFolder folder;
    Desktop desktop;
    folder.file("from/a", "x");
    folder.folder("to");
    EXPECT_EQ(migrateFile(folder / "from/a", folder / "to/b", copying), kFileMigrationSuccess);
    EXPECT_EQ(desktop.told(), Words{folder / "to"});
    desktop.forget();
    EXPECT_EQ(migrateFile(folder / "from/a", folder / "to/b", renamingCopies), kFileMigrationSuccess);
    EXPECT_EQ(desktop.told(), Words{folder / "to"}) << "a renamed copy lies in the same folder";
}

TEST(FileMigration, tellsTheDesktopTwiceOfAMoveInsideAFolder) {
    const MigrationFolder folder;
    const Desktop desktop;
    folder.file("a", "x");
    EXPECT_EQ(migrateFile(folder / "a", folder / "b"), kFileMigrationSuccess);
    EXPECT_EQ(desktop.told(), (Words{folder.path(), folder.path()}));
}

TEST(FileMigration, tellsTheDesktopNothingWhenItFails) {
    const MigrationFolder folder;
    const Desktop desktop;
    folder.file("a", "x");
    folder.file("b", "x");
    folder.folder("c");
    folder.link("nosuch", "d");
    migrateFile(folder / "a", folder / "b");
    migrateFile(folder / "a", folder / "c", overwriting);
    migrateFile(folder / "a", folder / "d");
    migrateFile(folder / "nosuch", folder / "e");
    migrateFile(folder / "a", folder / "new/e");
    EXPECT_EQ(desktop.told(), Words{});
}

TEST(FileMigration, tellsNobodyElse) {
    const MigrationFolder folder;
    const Desktop other("SomeClass");
    const Desktop lowerCase("nsworkspace");
    folder.file("a", "x");
    EXPECT_EQ(migrateFile(folder / "a", folder / "b"), kFileMigrationSuccess);
    EXPECT_EQ(other.told(), Words{});
    EXPECT_EQ(lowerCase.told(), Words{});
}

TEST(FileMigration, looksTheDesktopUpInEveryCall) {
    const MigrationFolder folder;
    folder.file("a", "x");
    {
        const Desktop first;
        EXPECT_EQ(migrateFile(folder / "a", folder / "b", copying), kFileMigrationSuccess);
        EXPECT_EQ(first.told().size(), 1U);
    }
    EXPECT_EQ(migrateFile(folder / "a", folder / "c", copying), kFileMigrationSuccess);
    const Desktop second;
    EXPECT_EQ(migrateFile(folder / "a", folder / "d", copying), kFileMigrationSuccess);
    EXPECT_EQ(second.told().size(), 1U);
}

TEST(FileMigration, writesNothingToStandardError) {
    const MigrationFolder folder;
    folder.file("a", "x");
    ::testing::internal::CaptureStderr();
    migrateFile(folder / "a", folder / "nosuch/b");
    migrateFile(folder / "a", folder / "b", copying);
    migrateFile(nullptr, nullptr);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

TEST(FileMigration, keepsTheCallersErrorNumber) {
    const MigrationFolder folder;
    folder.file("a", "x");
    for (const char* destination : {"b", "nosuch/b", "b"}) {
        errno = 4711;
        migrateFile(folder / "a", folder / destination, copying);
        EXPECT_EQ(errno, 4711) << destination;
    }
}
