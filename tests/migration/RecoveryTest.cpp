// SPDX-License-Identifier: MIT
// Recovery of what an ended process has left over.
#include "migration/Recovery.h"

#include <fcntl.h>
#include <sys/file.h>

#include <gtest/gtest.h>

#include "tests/migration/MigrationScene.h"

using namespace ZQFoundation;
using scene::Detail;
using scene::Digest;

namespace {

constexpr char copyName[] = ".zq-copy.0123456789abcdef";
constexpr char goneName[] = ".zq-gone.0123456789abcdef";
constexpr char asidesName[] = ".zq-asides.0123456789abcdef";

class Recovery : public ::testing::Test {
protected:
    void recover() const {
        const int opened = ::open(scene::bytesOf(folder / "").c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
        ASSERT_GE(opened, 0);
        detail::recoverFolder(opened);
        ::close(opened);
    }
    Digest contents() const { return folder.digest("", Detail::contents); }

    scene::MigrationFolder folder;
};

/// An open item, locked by a descriptor of its own as another process would.
class Held {
public:
    explicit Held(const std::string& path) : number_(::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
        EXPECT_EQ(::flock(number_, LOCK_SH | LOCK_NB), 0);
    }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;
    ~Held() { ::close(number_); }

private:
    int number_;
};

} // namespace

TEST_F(Recovery, putsBackWhatWasOnlySetAside) {
    folder.file(".zq-aside.a.txt", "1");
    folder.file(".zq-aside.tree/sub/b", "2");
    folder.link("nosuch", ".zq-aside.link");
    folder.pipe(".zq-aside.pipe");
    folder.file(std::string(asidesName) + "/" + std::string(255, 'n'), "3");
    recover();
    EXPECT_EQ(contents(), (Digest{{"", "folder"},
                                  {"a.txt", "file [1]"},
                                  {"tree", "folder"},
                                  {"tree/sub", "folder"},
                                  {"tree/sub/b", "file [2]"},
                                  {"link", "link [nosuch]"},
                                  {"pipe", "pipe"},
                                  {std::string(255, 'n'), "file [3]"}}));
}

TEST_F(Recovery, keepsWhatHasTakenTheNameMeanwhile) {
    folder.file(".zq-aside.a.txt", "old");
    folder.file("a.txt", "new");
    recover();
    EXPECT_EQ(contents(), (Digest{{"", "folder"}, {"a.txt", "file [new]"}, {"a 1.txt", "file [old]"}}));
}

TEST_F(Recovery, removesWhatWasGivenUpAndCopiesWithoutAName) {
    folder.file(std::string(goneName) + "/sub/a", "1");
    folder.link(scene::bytesOf(folder / "kept"), std::string(goneName) + "/link");
    folder.file("kept/file", "2");
    folder.file(std::string(copyName) + "/sub/b", "3");
    folder.file(".zq-copy.ffffffffffffffff", "4");
    ::chmod(scene::bytesOf(folder / (std::string(copyName) + "/sub")).c_str(), 0500);
    ::chmod(scene::bytesOf(folder / copyName).c_str(), 0100);
    recover();
    EXPECT_EQ(contents(), (Digest{{"", "folder"}, {"kept", "folder"}, {"kept/file", "file [2]"}}));
}

TEST_F(Recovery, removesACopyOfFoldersThatMayNotBeChanged) {
    folder.file(std::string(copyName) + "/sub/b", "3");
    for (const char* name : {"/sub", ""}) {
        ::chmod(scene::bytesOf(folder / (std::string(copyName) + name)).c_str(), 0500);
    }
    ::chmod(scene::bytesOf(folder / "").c_str(), 0777);
    ASSERT_EQ(::system(("chown -R 65534 '" + scene::bytesOf(folder / "") + "'").c_str()), 0);
    EXPECT_TRUE(scene::checkedWithoutPrivileges([this] { recover(); }));
    EXPECT_EQ(contents(), (Digest{{"", "folder"}}));
}

TEST_F(Recovery, leavesAloneWhatALivingProcessWorksOn) {
    folder.file(".zq-aside.a", "1");
    folder.file(std::string(goneName) + "/b", "2");
    folder.file(std::string(copyName) + "/c", "3");
    folder.file(std::string(asidesName) + "/d", "4");
    const Digest before = contents();
    {
        const Held aside(scene::bytesOf(folder / ".zq-aside.a"));
        const Held gone(scene::bytesOf(folder / goneName));
        const Held copy(scene::bytesOf(folder / copyName));
        const Held asides(scene::bytesOf(folder / asidesName));
        recover();
        EXPECT_EQ(contents(), before);
    }
    recover();
    EXPECT_EQ(contents(), (Digest{{"", "folder"}, {"a", "file [1]"}, {"d", "file [4]"}}));
}

TEST_F(Recovery, leavesAloneWhatDoesNotBearTheMark) {
    for (const std::string name :
         {".zq-aside", ".zq-gone", ".zq-copy", ".zq-aside.", ".zq-asideX.1", "zq-aside.a", ".zq-gone.",
          ".zq-gone.0123", ".zq-gone.1", "zq-gone.1", ".zq-Gone.1", ".ZQ-GONE.1", ".zq-other.1",
          ".zq-copy.0123456789abcdeF", "a.zq-gone.0123456789abcdef", ". zq-gone.1", ".zq-gone-.1"}) {
        folder.file(name, "x");
        if (name != ".zq-aside.") { // which would say what name to restore
            folder.file(name + "-folder/inside", "x");
        }
    }
    const Digest before = contents();
    recover();
    EXPECT_EQ(contents(), before);
}

TEST_F(Recovery, leavesAloneWhatBelongsToOthersInAFolderForAll) {
    if (!scene::isRoot()) {
        GTEST_SKIP() << "gives files to another user";
    }
    folder.file(".zq-aside.a", "theirs");
    folder.file(".zq-aside.b", "ours");
    ASSERT_EQ(::chown(scene::bytesOf(folder / ".zq-aside.a").c_str(), 65534, 65534), 0);
    ::chmod(scene::bytesOf(folder / "").c_str(), 01777);
    recover();
    EXPECT_EQ(contents(), (Digest{{"", "folder"}, {".zq-aside.a", "file [theirs]"}, {"b", "file [ours]"}}));
}

TEST_F(Recovery, happensInTheFoldersOfTheNextMigration) {
    folder.file("from/.zq-aside.old", "1");
    folder.file("from/new", "2");
    folder.file(std::string("to/") + goneName + "/x", "3");
    EXPECT_EQ(scene::migrateFile(folder / "from/new", folder / "to/new"), kFileMigrationSuccess);
    EXPECT_EQ(contents(), (Digest{{"", "folder"},
                                  {"from", "folder"},
                                  {"from/old", "file [1]"},
                                  {"to", "folder"},
                                  {"to/new", "file [2]"}}));
}

TEST_F(Recovery, comesBeforeABatchReadsAFolder) {
    folder.file("from/sub/.zq-aside.a.log", "1");
    folder.file("to/sub/.zq-aside.b", "2");
    const NSDictionary codes = scene::migrateFiles("log", folder / "from", folder / "to",
                                                   scene::DotFiles::included, scene::creating);
    EXPECT_EQ(codes.condensedDescription(), "{ sub/a.log = 0; }");
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
        folder.file("from/" + std::to_string(count) + std::string(200, 'x'), "");
    }
    folder.file("from/a", "1");
    folder.folder("to");
    EXPECT_EQ(scene::migrateFile(folder / "from/a", folder / "to/a"), kFileMigrationSuccess);
    const timespec later[2] = {{1, 0}, {2, 0}}; // as if some time had passed
    folder.file("from/.zq-aside.b", "2");
    ASSERT_EQ(::utimensat(AT_FDCWD, scene::bytesOf(folder / "from").c_str(), later, 0), 0);
    EXPECT_EQ(scene::migrateFile(folder / "from/b", folder / "to/b"), kFileMigrationSuccess);
}
