// SPDX-License-Identifier: MIT
// Opening files to append to, and which links and files of others are refused.
#include "foundation/files/GuardedOpening.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <string>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "foundation/files/NSFileManager.h"
#include "tests/files/FileScene.h"
#include "tests/kit/Child.h"
#include "tests/kit/Items.h"
#include "tests/kit/ScratchFolder.h"
#include "tests/kit/Threads.h"

using namespace ZQFoundation;
using namespace ZQFoundation::detail;
using scene::stranger;

namespace {

/// The error of an opening, 0 when it succeeds.
int errorOf(const std::string& path) {
    const int file = openForAppendingGuarded(path);
    if (file < 0) {
        return errno;
    }
    ::close(file);
    return 0;
}

bool append(const std::string& path, const std::string& text) {
    const int file = openForAppendingGuarded(path);
    const bool done =
        file >= 0 && ::write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    ::close(file);
    return done;
}

class GuardedOpening : public scene::FolderTest {
protected:
    GuardedOpening() {
        folder.makeFolder("shared");
        folder.setMode("shared", 01777);
    }
};

TEST_F(GuardedOpening, appendsToAFileAndReadsIt) {
    folder.write("log", "one\n");
    const int file = openForAppendingGuarded(in("log"));
    ASSERT_GE(file, 0);
    char byte = 0;
    EXPECT_EQ(::read(file, &byte, 1), 1);
    EXPECT_EQ(byte, 'o');
    EXPECT_EQ(::lseek(file, 0, SEEK_SET), 0);
    EXPECT_EQ(::write(file, "two\n", 4), 4);
    EXPECT_EQ(::fcntl(file, F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
    EXPECT_EQ(::fcntl(file, F_GETFL) & (O_ACCMODE | O_APPEND | O_NONBLOCK), O_RDWR | O_APPEND);
    ::close(file);
    EXPECT_EQ(kit::contentsOf(in("log")), "one\ntwo\n");
}

TEST_F(GuardedOpening, makesAFileWithTheOrdinaryMode) {
    const kit::Umask umask(027);
    EXPECT_TRUE(append(in("log"), "x"));
    EXPECT_EQ(kit::modeOf(in("log")), 0640u);
    EXPECT_TRUE(append(in("shared/log"), "x"));
    EXPECT_EQ(kit::contentsOf(in("shared/log")), "x");
}

TEST_F(GuardedOpening, followsOwnLinksAnywhere) {
    folder.makeFolder("a/b");
    folder.link("a/b", "l");
    folder.link("../l/../log", "shared/l");
    folder.link(in("shared/l"), "absolute");
    EXPECT_TRUE(append(in("l/../log"), "1"));
    EXPECT_TRUE(append(in("shared/l"), "2"));
    EXPECT_TRUE(append(in("absolute"), "3"));
    EXPECT_EQ(kit::contentsOf(in("a/log")), "123");
}

TEST_F(GuardedOpening, aDanglingLinksTargetIsMade) {
    folder.link("made", "dangling");
    EXPECT_TRUE(append(in("dangling"), "x"));
    EXPECT_EQ(kit::contentsOf(in("made")), "x");
    folder.link("no such/made", "hopeless");
    EXPECT_EQ(errorOf(in("hopeless")), ENOENT);
}

TEST_F(GuardedOpening, relativePathsStartInTheCurrentFolder) {
    folder.makeFolder("a");
    const kit::CurrentFolder current(in("a"));
    EXPECT_TRUE(append("log", "1"));
    EXPECT_TRUE(append("./log", "2"));
    EXPECT_TRUE(append("../a//log", "3"));
    EXPECT_EQ(kit::contentsOf(in("a/log")), "123");
}

TEST_F(GuardedOpening, reportsWhyItFails) {
    folder.write("f", "");
    folder.link("two", "one");
    folder.link("one", "two");
    EXPECT_EQ(errorOf(""), ENOENT);
    EXPECT_EQ(errorOf(in("no such/log")), ENOENT);
    EXPECT_EQ(errorOf(in("f/log")), ENOTDIR);
    EXPECT_EQ(errorOf(in("one")), ELOOP);
    EXPECT_EQ(errorOf(in("one/log")), ELOOP);
    EXPECT_EQ(errorOf(in("shared")), EISDIR);
    EXPECT_EQ(errorOf(in("shared/")), EISDIR);
    EXPECT_EQ(errorOf(in("shared/.")), EISDIR);
    EXPECT_EQ(errorOf("/"), EISDIR);
    EXPECT_EQ(errorOf(in(std::string(5000, 'n'))), ENAMETOOLONG);
    EXPECT_EQ(errorOf(std::string("a\0b", 3)), EINVAL);
}

TEST_F(GuardedOpening, followsThirtyTwoLinksAndNoMore) {
    folder.write("0", "");
    for (int number = 1; number <= 33; ++number) {
        folder.link(std::to_string(number - 1), std::to_string(number));
    }
    EXPECT_EQ(errorOf(in("32")), 0);
    EXPECT_EQ(errorOf(in("33")), ELOOP);
    EXPECT_TRUE(mayAppendGuarded(in("32")));
    EXPECT_FALSE(mayAppendGuarded(in("33")));
}

TEST_F(GuardedOpening, searchPermissionOfTheFoldersIsEnough) {
    folder.makeFolder("hidden/inner");
    folder.write("hidden/inner/log", "");
    folder.setMode("hidden/inner/log", 0666);
    folder.setMode("hidden/inner", 0111);
    folder.setMode("hidden", 0111);
    const int answer = kit::inUnprivilegedChild([this] { return errorOf(in("hidden/inner/log")); });
    folder.setMode("hidden", 0755);
    EXPECT_EQ(answer, 0);
}

TEST_F(GuardedOpening, ordinaryPermissionsHold) {
    folder.write("log", "");
    folder.setMode("log", 0444);
    EXPECT_EQ(kit::inUnprivilegedChild([this] { return errorOf(in("log")); }), EACCES);
}

TEST_F(GuardedOpening, pathsMayBeLongerThanTheSystemTakes) {
    const std::string name(100, 'n');
    const std::string deep = kit::makeChain(folder.path(), name, 100);
    EXPECT_TRUE(append(deep + "/log", "x"));
    EXPECT_TRUE(append(deep + "/log", "y"));
    EXPECT_TRUE(mayAppendGuarded(deep + "/log"));
    EXPECT_TRUE(ZQFoundation::NSFileManager::defaultManager().removeItemAtPath_error(in(name)));
}

TEST_F(GuardedOpening, doesNotWaitForTheOtherEndOfAPipe) {
    folder.makePipe("pipe");
    const int pipe = openForAppendingGuarded(in("pipe"));
    ASSERT_GE(pipe, 0);
    EXPECT_EQ(::fcntl(pipe, F_GETFL) & O_NONBLOCK, 0);
    ::close(pipe);
}

TEST_F(GuardedOpening, opensDevicesAndTheProcessesOwnDescriptors) {
    EXPECT_EQ(errorOf("/dev/null"), 0);
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    EXPECT_TRUE(append("/proc/self/fd/" + std::to_string(ends[1]), "x"));
    EXPECT_TRUE(mayAppendGuarded("/proc/self/fd/" + std::to_string(ends[1])));
    char byte = 0;
    EXPECT_EQ(::read(ends[0], &byte, 1), 1);
    EXPECT_EQ(byte, 'x');
    ::close(ends[0]);
    ::close(ends[1]);
}

TEST_F(GuardedOpening, leavesNoDescriptorOpen) {
    folder.write("log", "");
    folder.link("log", "l");
    const int before = kit::openDescriptors();
    errorOf(in("l"));
    errorOf(in("no such/x"));
    errorOf(in("shared/"));
    mayAppendGuarded(in("l"));
    EXPECT_EQ(kit::openDescriptors(), before);
}

TEST_F(GuardedOpening, whatIsThereMayBeAppendedToOrNot) {
    folder.writeFiles({"shared/own", "log"});
    folder.link("own", "shared/l");
    EXPECT_TRUE(mayAppendGuarded(in("shared/own")));
    EXPECT_TRUE(mayAppendGuarded(in("shared/l")));
    EXPECT_TRUE(mayAppendGuarded(in("log")));
    EXPECT_TRUE(mayAppendGuarded(in("shared")));
    EXPECT_FALSE(mayAppendGuarded(in("no such")));
    EXPECT_FALSE(mayAppendGuarded(""));
}

TEST_F(GuardedOpening, aSecondNameIsRefusedInAStickyFolder) {
    folder.write("victim", "v");
    ASSERT_EQ(::link(in("victim").c_str(), in("shared/log").c_str()), 0);
    EXPECT_EQ(errorOf(in("shared/log")), EACCES);
    EXPECT_FALSE(mayAppendGuarded(in("shared/log")));
    EXPECT_EQ(errorOf(in("victim")), 0) << "elsewhere a file may have any number of names";
    ::unlink(in("victim").c_str());
    EXPECT_EQ(errorOf(in("shared/log")), 0);
}

/// What another user planted.
class GuardedOpeningAmongOthers : public GuardedOpening {
protected:
    void SetUp() override {
        if (!kit::isRoot()) {
            GTEST_SKIP() << "only root can give files to another user";
        }
        folder.makeFolder("target");
        folder.write("target/log", "t");
        folder.link("../target", "shared/folder");
        folder.link("../target/log", "shared/link");
        folder.write("shared/file", "f");
        folder.makePipe("shared/pipe");
        for (const char* const name : {"shared/folder", "shared/link", "shared/file", "shared/pipe"}) {
            folder.setOwner(name, stranger);
        }
        folder.link("shared/link", "outside");
    }
};

TEST_F(GuardedOpeningAmongOthers, theirLinksAndFilesAreRefused) {
    for (const char* const name :
         {"shared/folder/log", "shared/folder/new", "shared/link", "shared/file", "shared/pipe", "outside"}) {
        EXPECT_EQ(errorOf(in(name)), EACCES) << name;
        EXPECT_FALSE(mayAppendGuarded(in(name))) << name;
    }
    EXPECT_EQ(kit::contentsOf(in("target/log")), "t");
    EXPECT_FALSE(kit::exists(in("target/new")));
    EXPECT_EQ(kit::contentsOf(in("shared/file")), "f");
}

TEST_F(GuardedOpeningAmongOthers, theFoldersOwnerIsTrusted) {
    folder.setOwner("shared", stranger);
    for (const char* const name :
         {"shared/folder/log", "shared/link", "shared/file", "shared/pipe", "outside"}) {
        EXPECT_EQ(errorOf(in(name)), 0) << name;
        EXPECT_TRUE(mayAppendGuarded(in(name))) << name;
    }
}

TEST_F(GuardedOpeningAmongOthers, theRuleIsOnlyForStickyFoldersThatOthersMayWriteTo) {
    for (const mode_t mode : std::initializer_list<mode_t>{0777u, 01775u, 01755u, 0755u}) {
        folder.setMode("shared", mode);
        for (const char* const name : {"shared/folder/log", "shared/link", "shared/file", "shared/pipe"}) {
            EXPECT_EQ(errorOf(in(name)), 0) << name << std::oct << mode;
            EXPECT_TRUE(mayAppendGuarded(in(name))) << name << std::oct << mode;
        }
    }
}

TEST_F(GuardedOpeningAmongOthers, anOrdinaryUserIsGuardedTheSameWay) {
    folder.setMode("target", 0777);
    folder.setMode("target/log", 0666);
    folder.setMode("shared/file", 0666);
    for (const char* const name : {"shared/folder/log", "shared/link", "shared/file", "shared/pipe"}) {
        EXPECT_EQ(kit::inUnprivilegedChild([&] { return errorOf(in(name)); }), EACCES) << name;
    }
    kit::expectAsUser([&] { return errorOf(in("shared/new")); });
    EXPECT_EQ(errorOf(in("shared/new")), EACCES) << "root is not the other user's helper";
}

TEST_F(GuardedOpeningAmongOthers, whatIsExchangedMeanwhileIsNeverFollowed) {
    folder.write("victim", "");
    int turn = 0;
    // The name is in turn absent, a stranger's link to the victim, and the stranger's own file.
    kit::Meanwhile attacker([&] {
        const std::string name = in("shared/other");
        if (turn++ % 2 == 0) {
            EXPECT_EQ(::symlink(in("victim").c_str(), name.c_str()), 0);
            EXPECT_EQ(::lchown(name.c_str(), stranger, stranger), 0);
        } else {
            const int file = ::open(name.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0666);
            EXPECT_EQ(::fchown(file, stranger, stranger), 0);
            ::close(file);
        }
        ::rename(name.c_str(), in("shared/log").c_str());
        ::unlink(in("shared/log").c_str());
    });
    for (int round = 0; round < 3000; ++round) {
        append(in("shared/log"), "x");
    }
    attacker.end();
    EXPECT_EQ(kit::contentsOf(in("victim")), "");
}

TEST_F(GuardedOpening, newFilesOfThreadsAtOnceAreOneFile) {
    for (int round = 0; round < 50; ++round) {
        const std::string path = in("shared/log" + std::to_string(round));
        std::thread other([&] { EXPECT_TRUE(append(path, "x")); });
        EXPECT_TRUE(append(path, "x"));
        other.join();
        EXPECT_EQ(kit::contentsOf(path), "xx");
    }
}

} // namespace
