// SPDX-License-Identifier: MIT
// Recovery of what a killed process has left.
#include "migration/Recovery.h"

#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/kit/Child.h"
#include "tests/kit/Items.h"
#include "tests/migration/MigrationScene.h"

using namespace ZQFoundation;
using namespace scene;

namespace {

const std::string copyName = ".zq-copy.0123456789abcdef";
const std::string goneName = ".zq-gone.0123456789abcdef";
const std::string asidesName = ".zq-asides.0123456789abcdef";

class Recovery : public ::testing::Test {
protected:
    void recover() const { recoverIn(folder.path()); }
    static void recoverIn(const std::string& path) {
        const int opened = ::open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
        ASSERT_GE(opened, 0);
        detail::recoverFolder(opened);
        ::close(opened);
    }
    Digest contents() const { return folder.digest("", Detail::contents); }
    void giveTo(const std::string& name, uid_t owner) const {
        for (const auto& [path, what] : folder.digest(name)) {
            folder.setOwner(path.empty() ? name : name + "/" + path, owner);
        }
    }

    MigrationFolder folder;
};

/// An open item, locked by a descriptor of its own as another process would.
class LockedItem {
public:
    explicit LockedItem(const std::string& path) : number_(::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
        EXPECT_EQ(::flock(number_, LOCK_SH | LOCK_NB), 0);
    }
    LockedItem(const LockedItem&) = delete;
    LockedItem& operator=(const LockedItem&) = delete;
    ~LockedItem() { ::close(number_); }

private:
    int number_;
};

} // namespace

TEST_F(Recovery, putsBackWhatWasOnlySetAside) {
    const std::string longName(255, 'n');
    folder.write(".zq-aside.a.txt", "1");
    folder.write(".zq-aside.tree/sub/b", "2");
    folder.link("nosuch", ".zq-aside.link");
    folder.makePipe(".zq-aside.pipe");
    folder.write(asidesName + "/" + longName, "3");
    recover();
    EXPECT_EQ(contents(), (Digest{{"", "folder"},
                                  {"a.txt", "file [1]"},
                                  {"tree", "folder"},
                                  {"tree/sub", "folder"},
                                  {"tree/sub/b", "file [2]"},
                                  {"link", "link [nosuch]"},
                                  {"pipe", "pipe"},
                                  {longName, "file [3]"}}));
}

TEST_F(Recovery, keepsWhatHasTakenTheNameMeanwhile) {
    folder.write(".zq-aside.a.txt", "old");
    folder.write("a.txt", "new");
    folder.makeFolder(".zq-aside.tree");
    folder.makeFolder("tree/mine");
    recover();
    EXPECT_EQ(contents(), (Digest{{"", "folder"},
                                  {"a.txt", "file [new]"},
                                  {"a 1.txt", "file [old]"},
                                  {"tree", "folder"},
                                  {"tree/mine", "folder"},
                                  {"tree 1.", "folder"}}));
}

TEST_F(Recovery, removesWhatWasGivenUpAndCopiesWithoutAName) {
    folder.write(goneName + "/sub/a", "1");
    folder.link(folder / "kept", goneName + "/link");
    folder.write("kept/file", "2");
    folder.write(copyName + "/sub/b", "3");
    folder.write(".zq-copy.ffffffffffffffff", "4");
    folder.setMode(copyName + "/sub", 0500);
    folder.setMode(copyName, kit::isRoot() ? 0100 : 0500); // who is not root must be able to read it
    recover();
    EXPECT_EQ(contents(), (Digest{{"", "folder"}, {"kept", "folder"}, {"kept/file", "file [2]"}}));
}

TEST_F(Recovery, removesACopyOfFoldersThatMayNotBeChanged) {
    kit::expectAsUser([] {
        const MigrationFolder own;
        own.write(copyName + "/sub/b", "3");
        own.setMode(copyName + "/sub", 0500);
        own.setMode(copyName, 0500);
        recoverIn(own.path());
        EXPECT_EQ(own.digest("", Detail::contents), (Digest{{"", "folder"}}));
    });
}

TEST_F(Recovery, leavesAloneWhatALivingProcessWorksOn) {
    folder.write(".zq-aside.a", "1");
    folder.write(goneName + "/b", "2");
    folder.write(copyName + "/c", "3");
    folder.write(asidesName + "/d", "4");
    const Digest before = contents();
    {
        const LockedItem aside(folder / ".zq-aside.a");
        const LockedItem gone(folder / goneName);
        const LockedItem copy(folder / copyName);
        const LockedItem asides(folder / asidesName);
        recover();
        EXPECT_EQ(contents(), before);
    }
    recover();
    EXPECT_EQ(contents(), (Digest{{"", "folder"}, {"a", "file [1]"}, {"d", "file [4]"}}));
}

TEST_F(Recovery, leavesAloneWhatHasNoSuchName) {
    for (const std::string name :
         {".zq-aside", ".zq-gone", ".zq-copy", ".zq-aside.", ".zq-asideX.1", "zq-aside.a", ".zq-gone.",
          ".zq-gone.0123", ".zq-gone.1", "zq-gone.1", ".zq-Gone.1", ".ZQ-GONE.1", ".zq-other.1",
          ".zq-copy.0123456789abcdeF", "a.zq-gone.0123456789abcdef", ". zq-gone.1", ".zq-gone-.1"}) {
        folder.write(name, "x");
        if (name != ".zq-aside.") { // which would say what name to restore
            folder.write(name + "-folder/inside", "x");
        }
    }
    const Digest before = contents();
    recover();
    EXPECT_EQ(contents(), before);
}

TEST_F(Recovery, followsNoLinks) {
    folder.write("victim/file", "the victim's");
    for (const std::string& name : {std::string(".zq-aside.a"), goneName, copyName, asidesName}) {
        folder.link("victim", name);
    }
    folder.link("victim/file", ".zq-aside.b");
    folder.link("victim/file", ".zq-gone.ffffffffffffffff");
    folder.link("nowhere", ".zq-copy.ffffffffffffffff");
    const Digest before = folder.digest("victim", Detail::times);
    folder.write("file", "a file");
    EXPECT_EQ(migrateFile(folder / "file", folder / "moved"), kFileMigrationSuccess);
    EXPECT_EQ(folder.contents("moved"), "a file");
    EXPECT_EQ(shownDigest(folder.digest("victim", Detail::times)), shownDigest(before));
}

TEST_F(Recovery, leavesAloneWhatBelongsToOthersInAFolderForAll) {
    if (!kit::isRoot()) {
        GTEST_SKIP() << "gives files to another user";
    }
    constexpr uid_t somebodyElse = 65533;
    folder.write(".zq-aside.b", "ours");
    folder.write(".zq-aside.a", "theirs");
    folder.write(goneName + "/c", "theirs");
    folder.write(copyName + "/d", "theirs");
    for (const std::string& name : {std::string(".zq-aside.a"), goneName, copyName}) {
        giveTo(name, somebodyElse);
    }
    folder.setMode("", 01777);
    const Digest before = contents();
    kit::expectAsUser([this] { recover(); });
    EXPECT_EQ(contents(), before) << "by another user";
    recover();
    Digest after = before;
    after.erase(".zq-aside.b");
    after["b"] = "file [ours]";
    EXPECT_EQ(contents(), after) << "by root";
    kit::expectInChild([this] { return ::setuid(somebodyElse) == 0 ? (recover(), 0) : 1; });
    EXPECT_EQ(contents(), (Digest{{"", "folder"}, {"a", "file [theirs]"}, {"b", "file [ours]"}}));
}

TEST_F(Recovery, happensInTheFoldersOfTheNextMigration) {
    folder.write("from/.zq-aside.old", "1");
    folder.write("from/new", "2");
    folder.write("to/" + goneName + "/x", "3");
    EXPECT_EQ(migrateFile(folder / "from/new", folder / "to/new"), kFileMigrationSuccess);
    EXPECT_EQ(contents(), (Digest{{"", "folder"},
                                  {"from", "folder"},
                                  {"from/old", "file [1]"},
                                  {"to", "folder"},
                                  {"to/new", "file [2]"}}));
}

TEST_F(Recovery, comesBeforeABatchReadsAFolder) {
    folder.write("from/sub/.zq-aside.a.log", "1");
    folder.write("to/sub/.zq-aside.b", "2");
    EXPECT_EQ(folder.migrateLogs("from", "to"), "{ sub/a.log = 0; }");
    EXPECT_EQ(contents(), (Digest{{"", "folder"},
                                  {"from", "folder"},
                                  {"from/sub", "folder"},
                                  {"to", "folder"},
                                  {"to/sub", "folder"},
                                  {"to/sub/a.log", "file [1]"},
                                  {"to/sub/b", "file [2]"}}));
}

TEST_F(Recovery, findsWhatWasLeftInALargeFolderSinceTheLastMigration) {
    // Long names make the folder's own size that of a large one.
    for (int count = 0; count < 400; ++count) {
        folder.write("from/" + std::to_string(count) + std::string(200, 'x'), "");
    }
    folder.write("from/a", "1");
    folder.makeFolder("to");
    EXPECT_EQ(migrateFile(folder / "from/a", folder / "to/a"), kFileMigrationSuccess);
    const timespec later[2] = {{1, 0}, {2, 0}}; // as if some time had passed
    folder.write("from/.zq-aside.b", "2");
    ASSERT_EQ(::utimensat(AT_FDCWD, (folder / "from").c_str(), later, 0), 0);
    EXPECT_EQ(migrateFile(folder / "from/b", folder / "to/b"), kFileMigrationSuccess);
}
