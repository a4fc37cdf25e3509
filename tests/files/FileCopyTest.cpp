// SPDX-License-Identifier: MIT
// Copies of single items.
#include <atomic>
#include <initializer_list>
#include <string>
#include <thread>

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>

#include "tests/files/CopyScene.h"

using namespace ZQFoundation;
using scene::copyItem;
using scene::lookAt;

namespace {

class FileCopy : public testing::Test {
protected:
    std::string in(const std::string& name) const { return folder / name; }
    scene::Folder folder;
};

TEST_F(FileCopy, keepsBytesPermissionsAndTimes) {
    const scene::Umask mask(077);
    for (const mode_t mode : std::initializer_list<mode_t>{0400U, 0644U, 0777U, 01755U}) {
        folder.write("a", std::string(70000, 'x') + "\0y");
        ::chmod(in("a").c_str(), mode);
        scene::setTimes(in("a"), 1000000000, 1234567890, 123456789);
        const std::string before = scene::stamp(in("a"));
        ASSERT_EQ(scene::reasonOfCopy(in("a"), in("b")), "(nil)");
        EXPECT_EQ(scene::stamp(in("b")), before);
        EXPECT_EQ(lookAt(in("b")).st_atim.tv_sec, 1000000000);
        EXPECT_EQ(scene::contentsOf(in("b")), scene::contentsOf(in("a")));
        ::unlink(in("a").c_str());
        ::unlink(in("b").c_str());
    }
}

TEST_F(FileCopy, takesNamesOfAnyBytes) {
    std::string name(255, '\xFF');
    name[7] = '\n';
    name[8] = '\x80';
    folder.write(name, "x");
    EXPECT_TRUE(copyItem(in(name), in("\xC3\x28")));
    EXPECT_EQ(scene::contentsOf(in("\xC3\x28")), "x");
}

TEST_F(FileCopy, takesPathsThatAreLongerThanTheSystemTakes) {
    const std::string name(250, '\xFE');
    const std::string deep = scene::makeChain(folder.path(), name, 400); // 100,000 bytes of no valid text
    folder.write("a", "x");
    EXPECT_EQ(scene::reasonOfCopy(in("a"), deep + "/b"), "(nil)");
    EXPECT_EQ(scene::reasonOfCopy(deep + "/b", in("c")), "(nil)");
    EXPECT_EQ(scene::contentsOf(in("c")), "x");
    EXPECT_TRUE(NSFileManager::defaultManager().removeItemAtPath_error(scene::fromBytes(in(name))));
}

TEST_F(FileCopy, nothingMayStandAtTheDestination) {
    folder.write("a", "a");
    folder.write("b", "b");
    folder.makeFolder("d");
    ASSERT_EQ(::symlink("new", in("dangling").c_str()), 0);
    ASSERT_EQ(::symlink("b", in("link").c_str()), 0);
    for (const char* const name : {"a", "b", "d", "dangling", "link", "d/..", "d/.", "link/"}) {
        EXPECT_FALSE(copyItem(in("a"), in(name))) << name;
    }
    EXPECT_EQ(scene::reasonOfCopy(in("a"), in("dangling")), in("dangling") + ": File exists");
    EXPECT_EQ(scene::reasonOfCopy(in("a"), in("no/b")), in("no/b") + ": No such file or directory");
    EXPECT_EQ(scene::reasonOfCopy(in("no"), in("c")), in("no") + ": No such file or directory");
    EXPECT_EQ(scene::reasonOfCopy(in("a/"), in("c")), in("a/") + ": Not a directory");
    EXPECT_EQ(scene::contentsOf(in("b")), "b");
    EXPECT_FALSE(scene::stands(in("new")));
    EXPECT_FALSE(scene::stands(in("c")));
}

TEST_F(FileCopy, aLinkIsCopiedWithItsTextAndTimesAndNeverFollowed) {
    folder.write("target", "kept");
    ASSERT_EQ(::symlink("target", in("l").c_str()), 0);
    ::chmod(in("target").c_str(), 0604);
    scene::setTimes(in("l"), 1000000000, 1100000000, 5);
    const std::string before = scene::stamp(in("target"));
    ASSERT_TRUE(copyItem(in("l"), in("m")));
    char text[100] = {};
    EXPECT_EQ(::readlink(in("m").c_str(), text, sizeof text), 6);
    EXPECT_STREQ(text, "target");
    EXPECT_EQ(scene::stamp(in("m")), scene::stamp(in("l")));
    EXPECT_EQ(scene::stamp(in("target")), before);
}

TEST_F(FileCopy, pipesAndSocketsAreMadeAnew) {
    ASSERT_EQ(::mkfifo(in("pipe").c_str(), 0600), 0);
    ::chmod(in("pipe").c_str(), 0622);
    const int listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = in("socket");
    ASSERT_LT(path.size(), sizeof address.sun_path);
    std::copy(path.begin(), path.end(), address.sun_path);
    ASSERT_EQ(::bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    for (const char* const name : {"pipe", "socket"}) {
        scene::setTimes(in(name), 1000000000, 1100000000, 5);
        const std::string copy = in(name) + "2";
        ASSERT_EQ(scene::reasonOfCopy(in(name), copy), "(nil)"); // at once, though nobody is at the other end
        EXPECT_EQ(scene::stamp(copy), scene::stamp(in(name)));
        EXPECT_NE(lookAt(copy).st_ino, lookAt(in(name)).st_ino);
    }
    ::close(listener);
}

TEST_F(FileCopy, aDeviceIsMadeWhereThatIsAllowed) {
    const struct stat null = lookAt("/dev/null");
    if (copyItem("/dev/null", in("null"))) {
        EXPECT_EQ(lookAt(in("null")).st_rdev, null.st_rdev);
        EXPECT_EQ(lookAt(in("null")).st_mode, null.st_mode);
    } else {
        EXPECT_FALSE(scene::stands(in("null"))) << "nothing else takes its place";
    }
    ::chmod(folder.path().c_str(), 0777);
    EXPECT_EQ(scene::inUnprivilegedChild([this] {
                  return scene::reasonOfCopy("/dev/null", in("n")) == "/dev/null: Operation not permitted"
                             ? 0
                             : 1;
              }),
              0);
}

TEST_F(FileCopy, aFileThatMayNotBeReadSaysSo) {
    folder.write("a", "x");
    ::chmod(in("a").c_str(), 0);
    ::chmod(folder.path().c_str(), 0777);
    const int answer = scene::inUnprivilegedChild(
        [this] { return scene::reasonOfCopy(in("a"), in("b")) == in("a") + ": Permission denied" ? 0 : 1; });
    EXPECT_EQ(answer, 0);
    EXPECT_FALSE(scene::stands(in("b")));
}

TEST_F(FileCopy, nobodyGetsTheRightToRunAsTheOneWhoCopies) {
    folder.write("a", "x");
    ::chmod(in("a").c_str(), 06755);
    ASSERT_TRUE(copyItem(in("a"), in("own")));
    EXPECT_EQ(scene::modeOf(in("own")), 06755U) << "the owner is the same";
    if (scene::isRoot()) {
        ASSERT_EQ(::chown(in("a").c_str(), 1234, 4321), 0);
        ::chmod(in("a").c_str(), 06755);
        ASSERT_TRUE(copyItem(in("a"), in("kept")));
        EXPECT_EQ(scene::modeOf(in("kept")), 06755U);
        EXPECT_EQ(lookAt(in("kept")).st_uid, 1234U);
        EXPECT_EQ(lookAt(in("kept")).st_gid, 4321U);
        ::chmod(folder.path().c_str(), 0777);
        EXPECT_EQ(scene::inUnprivilegedChild([this] { return copyItem(in("a"), in("other")) ? 0 : 1; }), 0);
        EXPECT_EQ(scene::modeOf(in("other")), 0755U);
        EXPECT_EQ(lookAt(in("other")).st_uid, 65534U);
    }
}

TEST_F(FileCopy, extendedAttributesAndAccessListsAreKept) {
    folder.write("a", "x");
    ASSERT_EQ(::mkfifo(in("p").c_str(), 0640), 0);
    const std::string large(2000, 'v');
    if (!scene::setAttribute(in("a"), "user.zq.large", large) ||
        !scene::setAttribute(in("a"), scene::accessList, scene::listForUser(4))) {
        GTEST_SKIP() << "the file system keeps no extended attributes";
    }
    ASSERT_TRUE(scene::setAttribute(in("a"), "user.zq.empty", ""));
    ASSERT_TRUE(scene::setAttribute(in("p"), scene::accessList, scene::listForUser(2)));
    ASSERT_EQ(scene::reasonOfCopy(in("a"), in("b")), "(nil)");
    char value[4096];
    EXPECT_EQ(::lgetxattr(in("b").c_str(), "user.zq.large", value, sizeof value), 2000);
    EXPECT_EQ(scene::attribute(in("b"), "user.zq.empty"), "");
    EXPECT_EQ(scene::attribute(in("b"), scene::accessList), scene::listForUser(4));
    EXPECT_EQ(scene::stamp(in("b")), scene::stamp(in("a")));
    ASSERT_TRUE(copyItem(in("p"), in("q")));
    EXPECT_EQ(scene::attribute(in("q"), scene::accessList), scene::listForUser(2));
}

TEST_F(FileCopy, attributesOfTheSystemAreKeptByWhoMay) {
    folder.write("a", "x");
    // Nobody but root sees these; others copy the file without them.
    const bool hasTrusted = scene::setAttribute(in("a"), "trusted.zq.test", "t");
    ASSERT_TRUE(copyItem(in("a"), in("b")));
    EXPECT_EQ(scene::attribute(in("b"), "trusted.zq.test"), hasTrusted ? "t" : "(none)");
    ::chmod(folder.path().c_str(), 0777);
    EXPECT_EQ(scene::inUnprivilegedChild([this] { return copyItem(in("a"), in("c")) ? 0 : 1; }), 0);
    EXPECT_EQ(scene::attribute(in("c"), "trusted.zq.test"), "(none)");
}

TEST_F(FileCopy, whatAFolderGivesNewItemsDoesNotReachCopies) {
    folder.write("a", "x");
    ::chmod(in("a").c_str(), 0644);
    folder.write("t/f", "x");
    ASSERT_EQ(::mkfifo(in("p").c_str(), 0644), 0);
    folder.makeFolder("d");
    if (!scene::setAttribute(in("d"), scene::listForNewItems, scene::listForUser(6))) {
        GTEST_SKIP() << "the file system keeps no access lists";
    }
    for (const char* const name : {"a", "p", "t"}) {
        ASSERT_EQ(scene::reasonOfCopy(in(name), in("d/") + name), "(nil)");
    }
    for (const char* const name : {"d/a", "d/p", "d/t", "d/t/f"}) {
        EXPECT_EQ(scene::attribute(in(name), scene::accessList), "(none)") << name;
        EXPECT_EQ(scene::attribute(in(name), scene::listForNewItems), "(none)") << name;
    }
    EXPECT_EQ(scene::modeOf(in("d/a")), scene::modeOf(in("a")));
}

TEST_F(FileCopy, aCopyInProgressIsClosedToOthers) {
    folder.write("a", std::string(3 << 20, 'x'));
    ::chmod(in("a").c_str(), 0640);
    std::atomic<bool> done = false;
    std::atomic<int> seen = 0;
    std::thread watcher([&] {
        while (!done) {
            struct stat information;
            if (::lstat(in("b").c_str(), &information) == 0) {
                ++seen;
                // Either it is in progress or it is complete: then it has its final permissions.
                const mode_t mode = information.st_mode & 07777;
                EXPECT_TRUE(mode == 0600 || mode == 0640) << mode;
                EXPECT_TRUE(mode == 0600 || information.st_size == 3 << 20) << information.st_size;
            }
        }
    });
    for (int round = 0; round < 200 || (seen < 20 && round < 5000); ++round) {
        EXPECT_TRUE(copyItem(in("a"), in("b")));
        ::unlink(in("b").c_str());
    }
    done = true;
    watcher.join();
    EXPECT_GE(seen, 20);
}

TEST_F(FileCopy, aFailedWriteFailsTheCopyAndWhatWasWrittenStays) {
    folder.write("a", std::string(300000, 'x'));
    ::chmod(folder.path().c_str(), 0777);
    const int answer = scene::inUnprivilegedChild([this] {
        const rlimit limit{100000, 100000};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        return scene::reasonOfCopy(in("a"), in("b")) == in("a") + ": File too large" ? 0 : 1;
    });
    EXPECT_EQ(answer, 0);
    EXPECT_LE(lookAt(in("b")).st_size, 100000);
    EXPECT_EQ(scene::modeOf(in("b")), 0600U);
    EXPECT_EQ(lookAt(in("a")).st_size, 300000);
}

TEST_F(FileCopy, aFullFileSystemFailsTheCopy) {
    folder.write("t/a", std::string(300000, 'x'));
    folder.write("t/small", "x");
    folder.makeFolder("m");
    const pid_t child = ::fork();
    if (child == 0) {
        const bool isMounted = ::unshare(CLONE_NEWNS) == 0 &&
                               ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                               ::mount("none", in("m").c_str(), "tmpfs", 0, "size=128k") == 0;
        if (!isMounted) {
            scene::leave(77);
        }
        const bool fileFails =
            scene::reasonOfCopy(in("t/a"), in("m/a")) == in("t/a") + ": No space left on device";
        ::unlink(in("m/a").c_str());
        const bool treeFails = !copyItem(in("t"), in("m/t")) && scene::stands(in("m/t"));
        scene::leave(fileFails && treeFails ? 0 : 1);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    if (WIFEXITED(status) && WEXITSTATUS(status) == 77) {
        GTEST_SKIP() << "this machine allows no mounts of one's own";
    }
    EXPECT_EQ(status, 0);
}

TEST_F(FileCopy, keepsTheErrorNumberAndEveryDescriptor) {
    folder.write("a", "x");
    const int before = scene::openDescriptors();
    errno = 4711;
    copyItem(in("a"), in("b"));
    copyItem(in("a"), in("b"));
    copyItem(in("no"), in("c"));
    EXPECT_EQ(errno, 4711);
    EXPECT_EQ(scene::openDescriptors(), before);
}

} // namespace
