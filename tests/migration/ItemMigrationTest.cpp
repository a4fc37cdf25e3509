// SPDX-License-Identifier: MIT
// The migration of one file or folder, where MigrationTableTest does not reach: times, large and deep items,
// codes that look odd, and items that cannot be read, written or removed.
#include <cerrno>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/kit/Child.h"
#include "tests/kit/Environment.h"
#include "tests/kit/Items.h"
#include "tests/migration/MigrationScene.h"

using namespace ZQFoundation;
using namespace scene;

namespace {

constexpr Operation operations[] = {ofFiles, ofFolders};

/// A file with the text, or a folder with a file that has it.
void makeItem(const MigrationFolder& folder, const Operation& operation, const std::string& name,
              const std::string& text) {
    folder.write(operation.isFolder ? name + "/inside" : name, text);
}
std::string textOf(const MigrationFolder& folder, const Operation& operation, const std::string& name) {
    return folder.contents(operation.isFolder ? name + "/inside" : name);
}

/// The body for a file and for a folder called "a" with the text "new", each in a folder of its own.
template <class Body>
void withEachItem(const Body& body) {
    for (const Operation& operation : operations) {
        SCOPED_TRACE(operation.isFolder ? "a folder" : "a file");
        const MigrationFolder folder;
        makeItem(folder, operation, "a", "new");
        body(operation, folder);
    }
}

/// The same for an ordinary user.
template <class Body>
void withEachItemOfAUser(const Body& body) {
    kit::expectAsUser([&] { withEachItem(body); });
}

/// Expects the code and that nothing has changed.
void expectRefusal(const MigrationFolder& folder, const Operation& migrate, const std::string& from,
                   const std::string& to, const Flags& flags, unsigned code) {
    const Digest before = folder.digest("", Detail::times);
    EXPECT_EQ(migrate(folder / from, folder / to, flags), code) << to << " " << shownFlags(flags);
    EXPECT_EQ(shownDigest(folder.digest("", Detail::times)), shownDigest(before));
}

} // namespace

TEST(ItemMigration, keepsContentsPermissionsAndTimes) {
    const MigrationFolder folder;
    folder.write("file", std::string(300000, 'x') + "end");
    folder.writeFiles({"one.txt", ".hidden/two", "sub/deeper/three"}, "folder/");
    folder.write("folder/empty", "");
    folder.write("folder/large", std::string(70000, '3'));
    folder.makeFolder("folder/nothing");
    folder.link("sub/deeper", "folder/toFolder");
    folder.link("nosuch", "folder/dangling");
    folder.setMode("file", 0640);
    folder.setMode("folder/one.txt", 0440);
    folder.setMode("folder/sub", 0750);
    const timespec times[2] = {{1000000, 5000}, {1234567, 890123000}};
    for (const Operation& migrate : operations) {
        const std::string name = migrate.isFolder ? "folder" : "file";
        ASSERT_EQ(::utimensat(AT_FDCWD, (folder / name).c_str(), times, 0), 0);
        const Digest before = folder.digest(name, Detail::times);
        EXPECT_EQ(migrate(folder / name, folder / ("copies/" + name), {true, true, false, false}), 0U);
        EXPECT_EQ(shownDigest(folder.digest("copies/" + name, Detail::times)), shownDigest(before));
        EXPECT_EQ(shownDigest(folder.digest(name, Detail::times)), shownDigest(before));
        EXPECT_EQ(migrate(folder / name, folder / (name + "Moved")), 0U);
        EXPECT_EQ(shownDigest(folder.digest(name + "Moved", Detail::times)), shownDigest(before));
        EXPECT_FALSE(folder.has(name));
    }
}

TEST(ItemMigration, asksForTheSourceBeforeTheDestination) {
    for (const Operation& migrate : operations) {
        EXPECT_EQ(migrate(nullptr, nullptr), kFileMigrationSourceNotSpecified);
        EXPECT_EQ(migrate(nullptr, "/tmp"), kFileMigrationSourceNotSpecified);
        EXPECT_EQ(migrate("/nosuch", nullptr), kFileMigrationDestinationNotSpecified);
    }
}

TEST(ItemMigration, needsAParentInThePath) {
    withEachItem([](const Operation& migrate, const MigrationFolder& folder) {
        const unsigned parentIsMissing = kFileMigrationDestinationParentFolderDoesNotExist;
        makeItem(folder, migrate.isFolder ? ofFiles : ofFolders, "other", "old");
        expectRefusal(folder, migrate, migrate.isFolder ? "other" : "other/", "b", nothingAllowed,
                      migrate.isFolder ? kFileMigrationSourceIsFile : kFileMigrationSourceIsFolder);
        const kit::CurrentFolder current(folder.path());
        // A bare name has the empty path as its parent, and nothing exists there.
        EXPECT_EQ(migrate("a", "c"), parentIsMissing);
        EXPECT_EQ(migrate("a", "c", creating), kFileMigrationDestinationParentFolderCreationFailed);
        EXPECT_EQ(migrate("a", "./c"), 0U);
        EXPECT_EQ(textOf(folder, migrate, "c"), "new");
    });
}

TEST(ItemMigration, numbersOneCopyAfterTheOther) {
    const MigrationFolder folder;
    folder.write("report.txt", "old");
    folder.write("Data/inside", "old");
    for (const Operation& migrate : operations) {
        const std::string taken = migrate.isFolder ? "Data" : "report.txt";
        for (const char* const number : {"1", "2", "3"}) {
            const std::string copy = migrate.isFolder ? std::string("Data ") + number + "."
                                                      : std::string("report ") + number + ".txt";
            makeItem(folder, migrate, "from", copy);
            EXPECT_EQ(migrate(folder / "from", folder / taken, renaming), 0U);
            EXPECT_EQ(textOf(folder, migrate, copy), copy);
            EXPECT_FALSE(folder.has("from"));
        }
        EXPECT_EQ(textOf(folder, migrate, taken), "old");
    }
}

TEST(ItemMigration, keepsCreatedParentsWhateverFailsLater) {
    withEachItem([](const Operation& migrate, const MigrationFolder& folder) {
        // The parent is created as "p/gap", and then the destination turns out to be "p", a folder.
        EXPECT_EQ(migrate(folder / "a", folder / "p/gap/..", creating), migrate.exists);
        EXPECT_TRUE(folder.has("p/gap"));
        EXPECT_EQ(textOf(folder, migrate, "a"), "new");
    });
    withEachItemOfAUser([](const Operation& migrate, const MigrationFolder& folder) {
        folder.makeFolder("closed");
        folder.setMode("closed", 0555);
        expectRefusal(folder, migrate, "a", "closed/new/b", creating,
                      kFileMigrationDestinationParentFolderCreationFailed);
    });
}

TEST(ItemMigration, failsInAFolderThatIsNotWritable) {
    withEachItemOfAUser([](const Operation& migrate, const MigrationFolder& folder) {
        makeItem(folder, migrate, "closed/b", "old");
        folder.setMode("closed", 0555);
        expectRefusal(folder, migrate, "a", "closed/b", overwriting, migrate.overwritingFailed);
        expectRefusal(folder, migrate, "a", "closed/c", overwriting, migrate.writingFailed);
        expectRefusal(folder, migrate, "a", "closed/b", renaming, migrate.writingFailed);
    });
}

TEST(ItemMigration, overwritingRemovesBeforeItCopies) {
    kit::expectAsUser([] {
        const MigrationFolder folder;
        folder.write("a/sub/secret", "x");
        folder.write("b/old", "old");
        const Digest before = folder.digest("a", Detail::times);
        folder.setMode("a/sub/secret", 0);
        EXPECT_EQ(migrateFolder(folder / "a", folder / "b", overwriting), 37U);
        EXPECT_FALSE(folder.has("b/old")) << "what was there is gone already";
        folder.setMode("a/sub/secret", 0644);
        EXPECT_EQ(folder.digest("a", Detail::times), before);
        // Whether a folder can be read shows only when it is copied.
        folder.setMode("a", 0300);
        EXPECT_EQ(migrateFolder(folder / "a", folder / "c"), 37U);
        EXPECT_TRUE(folder.has("a"));
    });
}

TEST(ItemMigration, leavesTheCopyWhenTheSourceCannotBeRemoved) {
    withEachItemOfAUser([](const Operation& migrate, const MigrationFolder& folder) {
        Desktop desktop(migrate.isFolder ? "SomeClass" : "NSWorkspace");
        makeItem(folder, migrate, "closed/a", "x");
        folder.setMode("closed", 0555);
        EXPECT_EQ(migrate(folder / "closed/a", folder / "b"), kFileMigrationSourceFileCannotBeRemoved);
        EXPECT_EQ(folder.digest("b"), folder.digest("closed/a"));
        EXPECT_EQ(desktop.takeFolders(), Words{folder.path()}) << "the source has not changed";
        EXPECT_EQ(migrate(folder / "closed/a", folder / "c", copying), 0U) << "a copy needs no removal";
    });
}

TEST(ItemMigration, movesAReadOnlyFile) {
    kit::expectAsUser([] {
        const MigrationFolder folder;
        folder.write("a", "x");
        folder.setMode("a", 0400);
        EXPECT_EQ(migrateFile(folder / "a", folder / "b"), 0U);
        EXPECT_EQ(folder.digest("b"), (Digest{{"", "file [x] 0400"}}));
        EXPECT_FALSE(folder.has("a"));
    });
}

TEST(ItemMigration, expandsTheTildeInBothPaths) {
    withEachItem([](const Operation& migrate, const MigrationFolder& folder) {
        const kit::Variable home("HOME", folder.path().c_str());
        EXPECT_EQ(migrate("~/a", "~/to/b", creating), 0U);
        EXPECT_EQ(textOf(folder, migrate, "to/b"), "new");
        EXPECT_FALSE(folder.has("a"));
        if (migrate.isFolder) {
            EXPECT_EQ(migrate("~/to/b/", "~/c/"), 0U);
            EXPECT_EQ(textOf(folder, migrate, "c"), "new");
        }
    });
}

TEST(ItemMigration, looksTheDesktopUpInEveryCall) {
    const MigrationFolder folder;
    folder.write("a", "x");
    Desktop lowerCase("nsworkspace");
    {
        Desktop first;
        EXPECT_EQ(migrateFile(folder / "a", folder / "b", copying), 0U);
        EXPECT_EQ(first.takeFolders(), Words{folder.path()});
    }
    EXPECT_EQ(migrateFile(folder / "a", folder / "c", copying), 0U);
    Desktop second;
    EXPECT_EQ(migrateFile(folder / "a", folder / "d"), 0U);
    EXPECT_EQ(second.takeFolders(), (Words{folder.path(), folder.path()})) << "the copy and the removal";
    EXPECT_EQ(lowerCase.takeFolders(), Words{});
}

TEST(ItemMigration, writesNothingAndKeepsTheCallersErrorNumber) {
    withEachItem([](const Operation& migrate, const MigrationFolder& folder) {
        ::testing::internal::CaptureStderr();
        for (const char* const destination : {"b", "nosuch/b", "b"}) {
            errno = 4711;
            migrate(folder / "a", folder / destination, copying);
            EXPECT_EQ(errno, 4711) << destination;
        }
        migrate(nullptr, nullptr);
        EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
    });
}

TEST(ItemMigration, movesADeepTree) {
    const kit::ScratchInMemory memory;
    constexpr int depth = 3000;
    const MigrationFolder folder;
    folder.makeFolder("A");
    kit::makeChain(folder / "A", "abc", depth);
    folder.makeFolder("B");
    EXPECT_EQ(migrateFolder(folder / "A", folder / "B", overwriting), 0U);
    EXPECT_FALSE(folder.has("A"));
    // Removing the whole chain by its length leaves nothing only when every folder was there.
    kit::removeChain(folder / "B", "abc", depth);
    EXPECT_EQ(folder.digest("B", Detail::contents), (Digest{{"", "folder"}}));
}
