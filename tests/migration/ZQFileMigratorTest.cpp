// SPDX-License-Identifier: MIT
// Migrations by options, observed and stopped.
#include <csignal>
#include <string>

#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/wait.h>

#include "foundation/system/Descriptor.h"
#include "tests/kit/Child.h"
#include "tests/kit/Items.h"
#include "tests/kit/ScratchFolder.h"
#include "tests/kit/Values.h"
#include "tests/migration/MigrationScene.h"

using namespace ZQFoundation;
using namespace scene;

namespace {

/// Records its notifications, and stops the migration before a given item or beyond a number of bytes.
class Follower : public ZQMigrationObserver {
public:
    std::string stopsBefore;
    std::uint64_t stopsBeyond = UINT64_MAX;
    Words items;
    Words results;
    std::uint64_t bytes = 0;

    bool migrationMayContinue(const ZQMigrationProgress& progress) override {
        EXPECT_GE(progress.bytes, bytes);
        bytes = progress.bytes;
        if (progress.items > items.size()) {
            items.push_back(lastNames(progress.path));
        }
        return (stopsBefore.empty() || items.back() != stopsBefore) && bytes <= stopsBeyond;
    }
    void migrationDidFinish(const NSString& path, ZQFileMigrationRetvalType code,
                            const NSString& destination) override {
        results.push_back(lastNames(path) + " " + std::to_string(code) + " " + lastNames(destination));
    }

private:
    static std::string lastNames(const NSString& path) { return kit::utf8Of(path.lastPathComponent()); }
};

class FileMigrator : public ::testing::Test {
protected:
    Digest contents(const char* name = "") const { return folder.digest(name, Detail::contents); }
    MigrationFolder folder;
    Follower follower;
};

} // namespace

TEST_F(FileMigrator, needsNoObserver) {
    folder.write("a", "x");
    const ZQMigrationResult result =
        ZQFileMigrator::migrateFile(folder / "a", folder / "new/b", {.createDestinationParentFolder = true});
    EXPECT_EQ(result.code, kFileMigrationSuccess);
    EXPECT_FALSE(result.isStopped);
    EXPECT_EQ(result.destination, folder / "new/b");
    EXPECT_FALSE(kit::exists(folder / "a"));
}

TEST_F(FileMigrator, reportsTheNameThatACopyGot) {
    folder.write("a", "x");
    folder.write("b.txt", "y");
    const ZQMigrationResult result = ZQFileMigrator::migrateFile(
        folder / "a", folder / "b.txt", {.keepOriginal = true, .renameIfDestinationExists = true}, &follower);
    EXPECT_EQ(result.destination, folder / "b 1.txt");
    EXPECT_EQ(follower.items, (Words{"a"}));
    EXPECT_EQ(follower.results, (Words{"a 0 b 1.txt"}));
}

TEST_F(FileMigrator, reportsItemsAndBytesInsideAFolder) {
    folder.write("from/one", std::string(1000, 'x'));
    folder.write("from/sub/two", std::string(3000000, 'y'));
    EXPECT_EQ(ZQFileMigrator::migrateFolder(folder / "from", folder / "to", {}, &follower).code,
              kFileMigrationSuccess);
    EXPECT_EQ(follower.items.size(), 4U);
    EXPECT_EQ(follower.items.front(), "from");
    EXPECT_EQ(follower.bytes, 3001000U);
    EXPECT_EQ(follower.results, (Words{"from 0 to"}));
}

TEST_F(FileMigrator, stopsAFolderAndLosesNothing) {
    folder.write("from/one", "1");
    folder.write("from/sub/two", "2");
    const Digest before = contents();
    follower.stopsBefore = "two";
    const ZQMigrationResult result =
        ZQFileMigrator::migrateFolder(folder / "from", folder / "to", {}, &follower);
    EXPECT_EQ(result.code, kFileMigrationDestinationFolderWritingFailed);
    EXPECT_TRUE(result.isStopped);
    EXPECT_EQ(contents(), before);
}

TEST_F(FileMigrator, stopsALargeFileInTheMiddle) {
    folder.write("a", std::string(std::size_t{80} << 20, 'x'));
    follower.stopsBeyond = std::uint64_t{20} << 20;
    const ZQMigrationResult result = ZQFileMigrator::migrateFile(folder / "a", folder / "b", {}, &follower);
    EXPECT_EQ(result.code, kFileMigrationDestinationFileWritingFailed);
    EXPECT_TRUE(result.isStopped);
    EXPECT_LT(follower.bytes, std::uint64_t{80} << 20);
    EXPECT_EQ(contents().size(), 2U) << "nothing beside the source";
}

TEST_F(FileMigrator, stopsBeforeAnythingHasHappened) {
    folder.write("a", "x");
    follower.stopsBefore = "a";
    EXPECT_TRUE(ZQFileMigrator::migrateFile(folder / "a", folder / "new/b",
                                            {.createDestinationParentFolder = true}, &follower)
                    .isStopped);
    EXPECT_EQ(contents().size(), 2U);
}

TEST_F(FileMigrator, stopsABatchBetweenFiles) {
    folder.writeFiles({"a", "b", "c", "d"}, "from/");
    follower.stopsBefore = "c";
    const ZQBatchMigrationResult result = ZQFileMigrator::migrateFiles(
        nullptr, folder / "from", folder / "to", {.createDestinationParentFolder = true}, &follower);
    EXPECT_TRUE(result.isStopped);
    EXPECT_EQ(result.codes.count(), follower.results.size());
    EXPECT_EQ(follower.items.size(), follower.results.size() + 1) << "the one in hand was not begun";
    // What has a result was moved, the rest stays.
    EXPECT_EQ(contents("from").size() - 1 + result.codes.count(), 4U);
    EXPECT_EQ(contents("to").size(), result.codes.count() + 1);
    EXPECT_TRUE(kit::exists(folder / "from/c"));
}

TEST_F(FileMigrator, leavesNoLockToAChildThatIsForkedMeanwhile) {
    class Forker : public ZQMigrationObserver {
    public:
        ~Forker() {
            ::kill(child_, SIGKILL);
            ::waitpid(child_, nullptr, 0);
        }
        bool migrationMayContinue(const ZQMigrationProgress& progress) override {
            if (progress.items == 2 && child_ == 0) {
                child_ = ::fork();
                if (child_ == 0) {
                    ::alarm(60);
                    ::pause();
                    kit::leave(0);
                }
            }
            return true;
        }

    private:
        pid_t child_ = 0;
    };
    for (const bool isKept : {false, true}) {
        const std::string source = folder / (isKept ? "kept" : "moved");
        const std::string destination = folder / (isKept ? "copy" : "to");
        folder.writeFiles({"one", "two"}, isKept ? "kept/" : "moved/");
        const detail::Descriptor writer(::open((source + "/one").c_str(), (isKept ? O_WRONLY : O_RDONLY)));
        Forker forker;
        EXPECT_EQ(ZQFileMigrator::migrateFolder(source, destination, {}, &forker).code, isKept ? 15U : 0U);
        for (const std::string& each : {isKept ? source : destination, destination}) {
            const detail::Descriptor opened(::open(each.c_str(), O_RDONLY | O_DIRECTORY));
            EXPECT_EQ(::flock(opened.number(), LOCK_EX | LOCK_NB), 0) << each;
        }
    }
}

TEST_F(FileMigrator, passesOnAnExceptionOfTheObserverAndLosesNothing) {
    class Thrower : public ZQMigrationObserver {
        bool migrationMayContinue(const ZQMigrationProgress& progress) override {
            if (progress.items > 2) {
                throw 7;
            }
            return true;
        }
    } thrower;
    folder.write("from/sub/one", "1");
    folder.write("from/sub/two", "2");
    const Digest before = contents();
    EXPECT_THROW(
        static_cast<void>(ZQFileMigrator::migrateFolder(folder / "from", folder / "to", {}, &thrower)), int);
    EXPECT_EQ(contents(), before);
}

// In both ways, the files are in a window by then: copied, and not yet removed.
TEST_F(FileMigrator, leavesNothingInTwoPlacesWhenItEndsABatchByAnException) {
    struct Thrower : ZQMigrationObserver {
        bool throwsBefore = false;
        int calls = 0;
        bool migrationMayContinue(const ZQMigrationProgress& progress) override {
            return progress.items < 4 || !throwsBefore || fail();
        }
        void migrationDidFinish(const NSString&, ZQFileMigrationRetvalType, const NSString&) override {
            ++calls;
            fail();
        }
        [[noreturn]] static bool fail() { throw 7; }
    };
    for (const bool throwsBefore : {true, false}) {
        folder.writeFiles({"a", "b", "c", "d", "e", "f"}, "from/");
        Thrower thrower;
        thrower.throwsBefore = throwsBefore;
        EXPECT_THROW(static_cast<void>(ZQFileMigrator::migrateFiles(nullptr, folder / "from", folder / "to",
                                                                    {.createDestinationParentFolder = true},
                                                                    &thrower)),
                     int);
        EXPECT_EQ(thrower.calls, throwsBefore ? 0 : 1) << "it is called no more";
        EXPECT_EQ(contents("from").size() - 1 + contents("to").size() - 1, 6U);
        const ZQBatchMigrationResult rest =
            ZQFileMigrator::migrateFiles(nullptr, folder / "from", folder / "to", {});
        EXPECT_EQ(contents("from").size(), 1U);
        EXPECT_EQ(rest.codes.count(), throwsBefore ? 3U : 0U);
        EXPECT_EQ(contents("to").size(), 7U);
        kit::removeTree(folder / "to");
    }
}
