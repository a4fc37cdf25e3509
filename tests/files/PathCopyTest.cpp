// SPDX-License-Identifier: MIT
// Copies of single items, whatever they are.
#include <atomic>
#include <cerrno>
#include <initializer_list>
#include <string>

#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "foundation/files/NSFileManager.h"
#include "tests/files/CopyScene.h"
#include "tests/kit/Child.h"
#include "tests/kit/Items.h"
#include "tests/kit/Mounts.h"
#include "tests/kit/ScratchFolder.h"
#include "tests/kit/Threads.h"

using namespace ZQFoundation;
using scene::copyItem;
using scene::lookAt;

namespace {

class PathCopy : public scene::FolderTest {};

TEST_F(PathCopy, keepsBytesPermissionsAndTimes) {
    const kit::Umask mask(077);
    const struct {
        std::size_t size;
        mode_t mode;
        time_t seconds;
        long nanoseconds;
    } rows[] = {
        {0, 0644, 1, 0},     {1, 0600, 1234567890, 123456789}, {4096, 0400, 999999999, 999999999},
        {65537, 0777, 0, 1}, {1 << 20, 01755, 4000000000, 5},  {3000001, 0751, 86400, 250000000},
    };
    for (const auto& row : rows) {
        std::string bytes(row.size, '\0');
        for (std::size_t index = 0; index < bytes.size(); ++index) {
            bytes[index] = static_cast<char>(index * 2654435761U >> 13);
        }
        folder.write("a", bytes);
        folder.setMode("a", row.mode);
        scene::setTimes(in("a"), row.seconds + 100, row.seconds, row.nanoseconds);
        const std::string before = scene::stamp(in("a"));
        ASSERT_EQ(scene::reasonOfCopy(in("a"), in("b")), "(nil)");
        EXPECT_EQ(scene::stamp(in("b")), before);
        EXPECT_EQ(lookAt(in("b")).st_atim.tv_sec, row.seconds + 100);
        EXPECT_TRUE(kit::contentsOf(in("b")) == bytes) << row.size;
        ::unlink(in("a").c_str());
        ::unlink(in("b").c_str());
    }
}

TEST_F(PathCopy, keepsHoles) {
    folder.write("a", "start");
    ASSERT_EQ(::truncate(in("a").c_str(), 64 << 20), 0);
    EXPECT_TRUE(copyItem(in("a"), in("b")));
    EXPECT_EQ(lookAt(in("b")).st_size, 64 << 20);
    EXPECT_LT(lookAt(in("b")).st_blocks, 8192);
    EXPECT_EQ(kit::contentsOf(in("b")).substr(0, 6), std::string("start\0", 6));
}

TEST_F(PathCopy, takesNamesOfAnyBytes) {
    std::string name(255, '\xFF');
    name[7] = '\n';
    name[8] = '\x80';
    folder.write(name, "x");
    EXPECT_TRUE(copyItem(in(name), in("\xC3\x28")));
    EXPECT_EQ(kit::contentsOf(in("\xC3\x28")), "x");
}

TEST_F(PathCopy, takesPathsThatAreLongerThanTheSystemTakes) {
    const std::string name(250, '\xFE');
    const std::string deep = kit::makeChain(folder.path(), name, 400); // 100,000 bytes of no valid text
    folder.write("a", "x");
    EXPECT_EQ(scene::reasonOfCopy(in("a"), deep + "/b"), "(nil)");
    EXPECT_EQ(scene::reasonOfCopy(deep + "/b", in("c")), "(nil)");
    EXPECT_EQ(kit::contentsOf(in("c")), "x");
    EXPECT_TRUE(NSFileManager::defaultManager().removeItemAtPath_error(kit::fromBytes(in(name))));
}

TEST_F(PathCopy, theDestinationMustBeFree) {
    folder.write("file", "kept");
    folder.write("folder/inside", "kept");
    folder.link("file", "toFile");
    folder.link("folder", "toFolder");
    folder.link("nosuch", "dangling");
    folder.link("loop", "loop");
    folder.makePipe("pipe");
    const std::string before = scene::stamp(folder.path()) + scene::stamp(in("folder")) +
                               scene::stamp(in("file")) + scene::stamp(in("folder/inside"));
    for (const char* const source : {"file", "folder", "toFile", "toFolder", "dangling", "pipe"}) {
        for (const char* const name :
             {"file", "folder", "toFile", "toFolder", "dangling", "loop", "pipe", "folder/..", "folder/.",
              "toFile/", "nosuch/x", "file/x", "dangling/x"}) {
            EXPECT_NE(scene::reasonOfCopy(in(source), in(name)), "(nil)") << source << " " << name;
        }
        EXPECT_FALSE(copyItem(in(source), ""));
    }
    EXPECT_EQ(scene::reasonOfCopy(in("file"), in("dangling")), in("dangling") + ": File exists");
    EXPECT_EQ(scene::reasonOfCopy(in("file"), in("no/b")), in("no/b") + ": No such file or directory");
    EXPECT_EQ(scene::reasonOfCopy(in("no"), in("c")), in("no") + ": No such file or directory");
    EXPECT_EQ(scene::reasonOfCopy(in("file/"), in("c")), in("file/") + ": Not a directory");
    EXPECT_FALSE(copyItem("", in("c")));
    NSFileManager& files = NSFileManager::defaultManager();
    EXPECT_FALSE(files.copyItemAtPath_toPath_error(nullptr, in("c")));
    EXPECT_FALSE(files.copyItemAtPath_toPath_error(in("file"), nullptr));
    EXPECT_FALSE(files.copyItemAtPath_toPath_error(in("file") + std::string("\0x", 2), in("c")));
    EXPECT_FALSE(files.copyItemAtPath_toPath_error(in("file"), in("c") + std::string("\0x", 2)));
    EXPECT_EQ(scene::stamp(folder.path()) + scene::stamp(in("folder")) + scene::stamp(in("file")) +
                  scene::stamp(in("folder/inside")),
              before)
        << "and nothing was made";
}

TEST_F(PathCopy, aLinkIsCopiedWithItsTextAndTimesAndNeverFollowed) {
    folder.write("target", "kept");
    folder.makeFolder("sub");
    folder.setMode("target", 0604);
    const std::string before = scene::stamp(in("target"));
    for (const std::string& target : {std::string("target"), std::string("nosuch"), std::string("."),
                                      std::string("../.."), in("target"), std::string(4000, 'x')}) {
        folder.link(target, "l");
        scene::setTimes(in("l"), 1000000000, 1100000000, 5);
        ASSERT_TRUE(copyItem(in("l"), in("sub/l")));
        std::string text(5000, '\0');
        text.resize(static_cast<std::size_t>(::readlink(in("sub/l").c_str(), text.data(), text.size())));
        EXPECT_EQ(text, target);
        EXPECT_EQ(scene::stamp(in("sub/l")), scene::stamp(in("l")));
        ::unlink(in("l").c_str());
        ::unlink(in("sub/l").c_str());
    }
    EXPECT_EQ(scene::stamp(in("target")), before);
}

TEST_F(PathCopy, pipesAndSocketsAreMadeAnew) {
    ASSERT_EQ(::mkfifo(in("pipe").c_str(), 0600), 0);
    folder.setMode("pipe", 0622);
    kit::makeSocket(in("socket"));
    for (const char* const name : {"pipe", "socket"}) {
        scene::setTimes(in(name), 1000000000, 1100000000, 5);
        const std::string copy = in(name) + "2";
        ASSERT_EQ(scene::reasonOfCopy(in(name), copy), "(nil)"); // at once, though nobody is at the other end
        EXPECT_EQ(scene::stamp(copy), scene::stamp(in(name)));
        EXPECT_NE(lookAt(copy).st_ino, lookAt(in(name)).st_ino);
    }
}

TEST_F(PathCopy, aDeviceIsMadeWhereThatIsAllowed) {
    const struct stat null = lookAt("/dev/null");
    if (copyItem("/dev/null", in("null"))) {
        EXPECT_EQ(lookAt(in("null")).st_rdev, null.st_rdev);
        EXPECT_EQ(lookAt(in("null")).st_mode, null.st_mode);
    } else {
        EXPECT_FALSE(kit::exists(in("null"))) << "nothing else takes its place";
    }
    folder.setMode("", 0777);
    kit::expectAsUser(
        [this] { return scene::reasonOfCopy("/dev/null", in("n")) == "/dev/null: Operation not permitted"; });
}

TEST_F(PathCopy, whatMayNotBeReadSaysSo) {
    folder.write("file", "x");
    folder.makeFolder("folder");
    folder.setMode("", 0777);
    for (const std::string name : {"file", "folder"}) {
        folder.setMode(name, 0);
        kit::expectAsUser(
            [&] { return scene::reasonOfCopy(in(name), in("b")) == in(name) + ": Permission denied"; });
        EXPECT_FALSE(kit::exists(in("b"))) << name;
    }
}

TEST_F(PathCopy, nobodyGetsTheRightToRunAsTheOneWhoCopies) {
    folder.write("a", "x");
    folder.setMode("a", 06755);
    ASSERT_TRUE(copyItem(in("a"), in("own")));
    EXPECT_EQ(kit::modeOf(in("own")), 06755U) << "the owner is the same";
    if (kit::isRoot()) {
        ASSERT_EQ(::chown(in("a").c_str(), 1234, 4321), 0);
        folder.setMode("a", 06755);
        ASSERT_TRUE(copyItem(in("a"), in("kept")));
        EXPECT_EQ(kit::modeOf(in("kept")), 06755U);
        EXPECT_EQ(lookAt(in("kept")).st_uid, 1234U);
        EXPECT_EQ(lookAt(in("kept")).st_gid, 4321U);
        folder.setMode("", 0777);
        kit::expectAsUser([this] { return copyItem(in("a"), in("other")); });
        EXPECT_EQ(kit::modeOf(in("other")), 0755U);
        EXPECT_EQ(lookAt(in("other")).st_uid, 65534U);
    }
}

TEST_F(PathCopy, extendedAttributesAndAccessListsAreKept) {
    folder.write("a", "x");
    folder.makePipe("p");
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

TEST_F(PathCopy, attributesOfTheSystemAreKeptByWhoMay) {
    folder.write("a", "x");
    // Nobody but root sees these; others copy the file without them.
    const bool hasTrusted = scene::setAttribute(in("a"), "trusted.zq.test", "t");
    ASSERT_TRUE(copyItem(in("a"), in("b")));
    EXPECT_EQ(scene::attribute(in("b"), "trusted.zq.test"), hasTrusted ? "t" : "(none)");
    folder.setMode("", 0777);
    kit::expectAsUser([this] { return copyItem(in("a"), in("c")); });
    EXPECT_EQ(scene::attribute(in("c"), "trusted.zq.test"), "(none)");
}

TEST_F(PathCopy, whatAFolderGivesNewItemsDoesNotReachCopies) {
    folder.write("a", "x");
    folder.setMode("a", 0644);
    folder.write("t/f", "x");
    folder.makePipe("p");
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
    EXPECT_EQ(kit::modeOf(in("d/a")), kit::modeOf(in("a")));
}

TEST_F(PathCopy, aFolderThatDeniesItsOwnerNewItemsGetsCopies) {
    std::string list = scene::listForUser(6);
    if (!scene::setAttribute(folder.path(), scene::listForNewItems, list)) {
        GTEST_SKIP() << "the file system keeps no access lists";
    }
    char& ownersPermissions = list[6];
    for (const int permissions : {6, 1, 0}) {
        ownersPermissions = static_cast<char>(permissions);
        const auto copies = [&list] {
            const kit::ScratchFolder own;
            own.write("t/f", "x");
            own.makeFolder("d");
            EXPECT_TRUE(scene::setAttribute(own / "d", scene::listForNewItems, list));
            EXPECT_TRUE(copyItem(own / "t", own / "d/t"));
            EXPECT_EQ(kit::contentsOf(own / "d/t/f"), "x");
            EXPECT_EQ(kit::modeOf(own / "d/t"), kit::modeOf(own / "t"));
        };
        EXPECT_EQ(kit::inUnprivilegedChild(copies), 0) << permissions;
    }
}

TEST_F(PathCopy, aCopyInProgressIsClosedToOthers) {
    folder.write("a", std::string(3 << 20, 'x'));
    folder.setMode("a", 0640);
    std::atomic<int> seen = 0;
    kit::Meanwhile watcher([&] {
        struct stat information;
        if (::lstat(in("b").c_str(), &information) == 0) {
            ++seen;
            // Either it is in progress or it is complete: then it has its final permissions.
            const mode_t mode = information.st_mode & 07777;
            EXPECT_TRUE(mode == 0600 || mode == 0640) << mode;
            EXPECT_TRUE(mode == 0600 || information.st_size == 3 << 20) << information.st_size;
        }
    });
    for (int round = 0; round < 200 || (seen < 20 && round < 5000); ++round) {
        EXPECT_TRUE(copyItem(in("a"), in("b")));
        ::unlink(in("b").c_str());
    }
    watcher.end();
    EXPECT_GE(seen, 20);
}

TEST_F(PathCopy, aFailedWriteFailsTheCopyAndWhatWasWrittenStays) {
    folder.write("a", std::string(300000, 'x'));
    folder.setMode("", 0777);
    kit::expectAsUser([this] {
        const rlimit limit{100000, 100000};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        return scene::reasonOfCopy(in("a"), in("b")) == in("a") + ": File too large";
    });
    EXPECT_LE(lookAt(in("b")).st_size, 100000);
    EXPECT_EQ(kit::modeOf(in("b")), 0600U);
    EXPECT_EQ(lookAt(in("a")).st_size, 300000);
}

TEST_F(PathCopy, aFullFileSystemFailsTheCopy) {
    folder.write("t/a", std::string(300000, 'x'));
    folder.write("t/small", "x");
    folder.makeFolder("m");
    kit::withOwnMounts([this] {
        if (::mount("none", in("m").c_str(), "tmpfs", 0, "size=128k") != 0) {
            return false;
        }
        EXPECT_EQ(scene::reasonOfCopy(in("t/a"), in("m/a")), in("t/a") + ": No space left on device");
        ::unlink(in("m/a").c_str());
        EXPECT_FALSE(copyItem(in("t"), in("m/t")));
        EXPECT_TRUE(kit::exists(in("m/t")));
        return true;
    });
}

TEST_F(PathCopy, keepsTheErrorNumberAndEveryDescriptor) {
    folder.write("a", "x");
    kit::expectNoTrace([this] {
        copyItem(in("a"), in("b"));
        copyItem(in("a"), in("b"));
        copyItem(in("no"), in("c"));
    });
}

} // namespace
