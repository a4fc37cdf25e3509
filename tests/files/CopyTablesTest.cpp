// SPDX-License-Identifier: MIT
// Copying, removing and enumerating, row by row.
#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>

#include "tests/migration/MigrationScene.h"

using namespace ZQFoundation;
using scene::Detail;
using scene::Digest;
using scene::MigrationFolder;
using Names = std::multiset<std::string>;

namespace {

NSFileManager& files() { return NSFileManager::defaultManager(); }

bool copied(const std::string& from, const std::string& to, NSString* reason = nullptr) {
    return files().copyItemAtPath_toPath_error(from, to, reason);
}

bool removed(const std::string& path) { return files().removeItemAtPath_error(path); }

std::vector<std::string> enumerated(const std::string& path) {
    std::vector<std::string> names;
    NSDirectoryEnumerator items = files().enumeratorAtPath(path);
    while (const NSString name = items.nextObject()) {
        names.push_back(scene::bytesOf(name));
    }
    return names;
}

Names namesBelow(const std::string& path) {
    const std::vector<std::string> names = enumerated(path);
    return {names.begin(), names.end()};
}

struct stat informationOf(const std::string& path) {
    struct stat information {};
    EXPECT_EQ(::lstat(path.c_str(), &information), 0) << path;
    return information;
}

void setTimes(const std::string& path, time_t seconds, long nanoseconds) {
    const timespec times[2] = {{seconds - 100, nanoseconds}, {seconds, nanoseconds}};
    EXPECT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW), 0) << path;
}

std::string attributeOf(const std::string& path, const char* name) {
    char value[256];
    const ssize_t length = ::lgetxattr(path.c_str(), name, value, sizeof value);
    return length < 0 ? "(none)" : std::string(value, static_cast<std::size_t>(length));
}

bool attributesAreKeptIn(const std::string& folder) {
    return ::setxattr(folder.c_str(), "user.zq.probe", "x", 1, 0) == 0;
}

/// Expects a copy to fail and nothing to change.
void expectNoCopy(const MigrationFolder& folder, const std::string& from, const std::string& to) {
    const Digest before = folder.digest("", Detail::times);
    NSString reason;
    EXPECT_FALSE(copied(from, to, &reason)) << from << " " << to;
    EXPECT_TRUE(static_cast<bool>(reason)) << from << " " << to;
    EXPECT_EQ(scene::shownDigest(folder.digest("", Detail::times)), scene::shownDigest(before));
}

} // namespace

TEST(CopyTables, copyContentsPermissionsAndTimesOfAFile) {
    const MigrationFolder folder;
    struct Row {
        std::size_t size;
        mode_t mode;
        time_t seconds;
        long nanoseconds;
    };
    const Row rows[] = {
        {0, 0644, 1, 0},     {1, 0600, 1234567890, 123456789}, {4096, 0400, 999999999, 999999999},
        {65537, 0777, 0, 1}, {1 << 20, 0, 4000000000, 5},      {3000001, 0751, 86400, 250000000},
    };
    for (const Row& row : rows) {
        std::string bytes(row.size, '\0');
        for (std::size_t index = 0; index < bytes.size(); ++index) {
            bytes[index] = static_cast<char>(index * 2654435761U >> 13);
        }
        folder.file("a", bytes);
        ::chmod((folder / "a").c_str(), row.mode);
        setTimes(folder / "a", row.seconds, row.nanoseconds);
        const struct stat before = informationOf(folder / "a");
        if (row.mode == 0 && !scene::isRoot()) {
            ::chmod((folder / "a").c_str(), 0400);
        }
        NSString reason("x");
        ASSERT_TRUE(copied(folder / "a", folder / "b", &reason)) << scene::shownText(reason);
        EXPECT_FALSE(reason);
        const struct stat after = informationOf(folder / "b");
        EXPECT_EQ(after.st_mtim.tv_sec, before.st_mtim.tv_sec);
        EXPECT_EQ(after.st_mtim.tv_nsec, before.st_mtim.tv_nsec);
        EXPECT_EQ(after.st_atim.tv_sec, before.st_atim.tv_sec);
        EXPECT_EQ(after.st_mode, informationOf(folder / "a").st_mode);
        EXPECT_TRUE(scene::contentsOf(folder / "b") == bytes) << row.size;
        ::unlink((folder / "a").c_str());
        ::unlink((folder / "b").c_str());
    }
}

TEST(CopyTables, leaveTheUmaskOut) {
    const MigrationFolder folder;
    const scene::Umask mask(077);
    folder.file("a/b", "x");
    ::chmod((folder / "a").c_str(), 02775);
    ::chmod((folder / "a/b").c_str(), 0666);
    EXPECT_TRUE(copied(folder / "a", folder / "c"));
    EXPECT_EQ(scene::modeOf(folder / "c") & 0777U, 0775U);
    EXPECT_EQ(scene::modeOf(folder / "c/b"), 0666U);
}

TEST(CopyTables, needADestinationAtWhichNothingStands) {
    const MigrationFolder folder;
    folder.file("file", "x");
    folder.file("folder/inside", "x");
    folder.link("file", "toFile");
    folder.link("folder", "toFolder");
    folder.link("nosuch", "dangling");
    folder.link("loop", "loop");
    folder.pipe("pipe");
    for (const char* source : {"file", "folder", "toFile", "toFolder", "dangling", "pipe"}) {
        for (const char* destination : {"file", "folder", "toFile", "toFolder", "dangling", "loop", "pipe"}) {
            expectNoCopy(folder, folder / source, folder / destination);
        }
        expectNoCopy(folder, folder / source, folder / "nosuch/x");
        expectNoCopy(folder, folder / source, folder / "file/x");
        expectNoCopy(folder, folder / source, folder / "dangling/x");
        expectNoCopy(folder, folder / source, "");
    }
    expectNoCopy(folder, folder / "nosuch", folder / "new");
    expectNoCopy(folder, "", folder / "new");
}

TEST(CopyTables, failForNilAndForTextThatIsNoPath) {
    const MigrationFolder folder;
    folder.file("a", "x");
    EXPECT_FALSE(files().copyItemAtPath_toPath_error(nullptr, folder / "b"));
    EXPECT_FALSE(files().copyItemAtPath_toPath_error(folder / "a", nullptr));
    const std::string cut = (folder / "a") + std::string("\0x", 2);
    EXPECT_FALSE(files().copyItemAtPath_toPath_error(cut, folder / "b"));
    EXPECT_FALSE(files().copyItemAtPath_toPath_error(folder / "a", (folder / "b") + std::string("\0x", 2)));
    EXPECT_FALSE(scene::stands(folder / "b"));
}

TEST(CopyTables, copyLinksAsLinksWithTheSameText) {
    const MigrationFolder folder;
    folder.file("file", "x");
    folder.folder("sub");
    const std::string texts[] = {
        "file", "nosuch", ".", "../..", folder / "file", "loop", std::string(4000, 'x')};
    for (const std::string& text : texts) {
        folder.link(text, "link");
        EXPECT_TRUE(copied(folder / "link", folder / "sub/copy"));
        EXPECT_EQ(scene::linkText(folder / "sub/copy"), text);
        ::unlink((folder / "link").c_str());
        ::unlink((folder / "sub/copy").c_str());
    }
}

TEST(CopyTables, copyAWholeTree) {
    const MigrationFolder folder;
    folder.file("A/.hidden/x", "x");
    folder.file("A/sub/deeper/y", "yy");
    folder.folder("A/empty");
    folder.link("sub", "A/toFolder");
    folder.link("../outside", "A/sub/up");
    folder.pipe("A/pipe");
    ::chmod((folder / "A/sub").c_str(), 0711);
    ::chmod((folder / "A/empty").c_str(), 0700);
    for (const char* name :
         {"A/sub/deeper/y", "A/sub/deeper", "A/sub", "A/.hidden/x", "A/.hidden", "A/empty", "A"}) {
        setTimes(folder / name, 1000000000, 42);
    }
    NSString reason;
    ASSERT_TRUE(copied(folder / "A", folder / "B", &reason)) << scene::shownText(reason);
    Digest before = folder.digest("A", Detail::times);
    Digest after = folder.digest("B", Detail::times);
    // A pipe is recreated; its date is unspecified.
    EXPECT_EQ(before.at("pipe").substr(0, 9), after.at("pipe").substr(0, 9));
    before.erase("pipe");
    after.erase("pipe");
    EXPECT_EQ(scene::shownDigest(after), scene::shownDigest(before));
}

TEST(CopyTables, copyFoldersThatForbidWriting) {
    const bool passed = scene::checkedWithoutPrivileges([] {
        const MigrationFolder folder;
        folder.file("A/sub/x", "x");
        ::chmod((folder / "A/sub").c_str(), 0555);
        ::chmod((folder / "A").c_str(), 0500);
        setTimes(folder / "A", 1000000000, 42);
        const Digest before = folder.digest("A", Detail::times);
        EXPECT_TRUE(copied(folder / "A", folder / "B"));
        EXPECT_EQ(scene::shownDigest(folder.digest("B", Detail::times)), scene::shownDigest(before));
        for (const char* name : {"A", "A/sub", "B", "B/sub"}) {
            ::chmod((folder / name).c_str(), 0755);
        }
    });
    EXPECT_TRUE(passed);
}

TEST(CopyTables, makeHardLinksSeparateFiles) {
    const MigrationFolder folder;
    folder.file("A/one", "x");
    ASSERT_EQ(::link((folder / "A/one").c_str(), (folder / "A/two").c_str()), 0);
    EXPECT_TRUE(copied(folder / "A", folder / "B"));
    EXPECT_EQ(informationOf(folder / "B/one").st_nlink, 1U);
    EXPECT_NE(informationOf(folder / "B/one").st_ino, informationOf(folder / "B/two").st_ino);
    EXPECT_EQ(scene::contentsOf(folder / "B/two"), "x");
}

TEST(CopyTables, copyExtendedAttributes) {
    const MigrationFolder folder;
    if (!attributesAreKeptIn(folder.path())) {
        GTEST_SKIP() << "the file system keeps no extended attributes";
    }
    folder.file("A/file", "x");
    for (const char* name : {"A", "A/file"}) {
        ASSERT_EQ(::setxattr((folder / name).c_str(), "user.zq.colour", "green", 5, 0), 0);
        ASSERT_EQ(::setxattr((folder / name).c_str(), "user.zq.empty", "", 0, 0), 0);
    }
    EXPECT_TRUE(copied(folder / "A", folder / "B"));
    for (const char* name : {"B", "B/file"}) {
        EXPECT_EQ(attributeOf(folder / name, "user.zq.colour"), "green") << name;
        EXPECT_EQ(attributeOf(folder / name, "user.zq.empty"), "") << name;
    }
}

TEST(CopyTables, copyAccessLists) {
    const MigrationFolder folder;
    folder.file("a", "x");
    // One named user beside the ordinary entries, in the kernel's form: version 2, then tag, bits and id.
    const unsigned char list[] = {2, 0,   0,   0,   1,   0,   6,  0, 255, 255, 255, 255, 2,   0,  4,
                                  0, 254, 255, 0,   0,   4,   0,  4, 0,   255, 255, 255, 255, 16, 0,
                                  4, 0,   255, 255, 255, 255, 32, 0, 0,   0,   255, 255, 255, 255};
    const char* const name = "system.posix_acl_access";
    if (::setxattr((folder / "a").c_str(), name, list, sizeof list, 0) != 0) {
        GTEST_SKIP() << "the file system keeps no access lists";
    }
    EXPECT_TRUE(copied(folder / "a", folder / "b"));
    EXPECT_EQ(attributeOf(folder / "b", name), attributeOf(folder / "a", name));
    EXPECT_NE(attributeOf(folder / "b", name), "(none)");
}

TEST(CopyTables, keepTheOwnerOnlyWhereThatIsAllowed) {
    const MigrationFolder folder;
    folder.file("a", "x");
    if (scene::isRoot()) {
        ASSERT_EQ(::chown((folder / "a").c_str(), 1234, 4321), 0);
        ::chmod((folder / "a").c_str(), 06755);
        EXPECT_TRUE(copied(folder / "a", folder / "b"));
        EXPECT_EQ(informationOf(folder / "b").st_uid, 1234U);
        EXPECT_EQ(informationOf(folder / "b").st_gid, 4321U);
        EXPECT_EQ(scene::modeOf(folder / "b"), 06755U);
    }
    const bool passed = scene::checkedWithoutPrivileges([&] {
        ::chmod((folder / "a").c_str(), 0755);
        EXPECT_TRUE(copied(folder / "a", folder / "c"));
        EXPECT_EQ(informationOf(folder / "c").st_uid, ::geteuid());
        // Somebody else's right to run a file as its owner does not become this user's.
        EXPECT_EQ(scene::modeOf(folder / "c") & 06000U, 0U);
    });
    EXPECT_TRUE(passed);
}

TEST(CopyTables, keepHoles) {
    const MigrationFolder folder;
    folder.file("a", "start");
    ASSERT_EQ(::truncate((folder / "a").c_str(), 64 << 20), 0);
    EXPECT_TRUE(copied(folder / "a", folder / "b"));
    EXPECT_EQ(informationOf(folder / "b").st_size, 64 << 20);
    EXPECT_LT(informationOf(folder / "b").st_blocks, 8192);
    EXPECT_EQ(scene::contentsOf(folder / "b").substr(0, 6), std::string("start\0", 6));
}

TEST(CopyTables, makePipesAnewAndNeverOpenThem) {
    const MigrationFolder folder;
    folder.pipe("pipe");
    ::chmod((folder / "pipe").c_str(), 0620);
    ::alarm(30); // a copy that waits for a writer ends the test
    EXPECT_TRUE(copied(folder / "pipe", folder / "copy"));
    ::alarm(0);
    EXPECT_EQ(folder.digest("copy"), (Digest{{"", "pipe 0620"}}));
}

TEST(CopyTables, makeSocketsAnewOrRefuseThem) {
    const MigrationFolder folder;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = folder / "socket";
    ASSERT_LT(path.size(), sizeof address.sun_path);
    std::copy(path.begin(), path.end(), address.sun_path);
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_EQ(::bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    const bool made = copied(path, folder / "copy");
    EXPECT_EQ(made, scene::stands(folder / "copy"));
    if (made) {
        EXPECT_TRUE(S_ISSOCK(informationOf(folder / "copy").st_mode));
    }
    ::close(descriptor);
}

TEST(CopyTables, stopAtTheFirstFailureAndLeaveWhatWasCopied) {
    const bool passed = scene::checkedWithoutPrivileges([] {
        const MigrationFolder folder;
        folder.file("A/sub/secret", "x");
        folder.file("A/open", "x");
        ::chmod((folder / "A/sub/secret").c_str(), 0);
        NSString reason;
        EXPECT_FALSE(copied(folder / "A", folder / "B", &reason));
        EXPECT_TRUE(static_cast<bool>(reason));
        EXPECT_TRUE(scene::stands(folder / "B"));
        EXPECT_TRUE(scene::stands(folder / "A/sub/secret"));
        EXPECT_TRUE(scene::stands(folder / "A/open"));
    });
    EXPECT_TRUE(passed);
}

TEST(CopyTables, refuseAFolderInsideItself) {
    const MigrationFolder folder;
    folder.file("A/sub/x", "x");
    folder.link("A", "link");
    folder.link("A/sub", "deep");
    for (const char* destination :
         {"A/copy", "A/sub/copy", "link/copy", "deep/copy", "A/../A/copy", "A/./sub/copy"}) {
        expectNoCopy(folder, folder / "A", folder / destination);
        expectNoCopy(folder, folder / "link/sub/..", folder / destination);
        expectNoCopy(folder, folder / "A/.", folder / destination);
    }
    EXPECT_TRUE(copied(folder / "A", folder / "AA")) << "a name with the same beginning is no folder below";
    // The link itself may well be copied there.
    EXPECT_TRUE(copied(folder / "link", folder / "A/copy"));
}

TEST(CopyTables, takeAPathOfAnyLength) {
    constexpr int depth = 40;
    const MigrationFolder folder;
    const std::string name(200, 'n');
    const std::string deep = scene::makeChain(folder.path(), name, depth);
    folder.file("a", "x");
    EXPECT_TRUE(copied(folder / "a", deep + "/b"));
    EXPECT_TRUE(copied(deep + "/b", folder / "c"));
    EXPECT_EQ(scene::contentsOf(folder / "c"), "x");
    EXPECT_TRUE(removed(folder / name));
    EXPECT_FALSE(scene::stands(folder / name));
}

TEST(RemovalTables, removeFilesLinksAndTrees) {
    const MigrationFolder folder;
    folder.file("victim/x", "x");
    folder.file("file", "x");
    folder.file("A/sub/y", "y");
    folder.link(folder / "victim", "A/link");
    folder.link("victim", "toFolder");
    folder.link("nosuch", "dangling");
    folder.pipe("pipe");
    for (const char* name : {"file", "A", "toFolder", "dangling", "pipe"}) {
        EXPECT_TRUE(removed(folder / name)) << name;
        EXPECT_FALSE(scene::stands(folder / name)) << name;
        EXPECT_FALSE(removed(folder / name)) << name << " is gone already";
    }
    EXPECT_EQ(folder.digest("", Detail::contents),
              (Digest{{"", "folder"}, {"victim", "folder"}, {"victim/x", "file [x]"}}));
    EXPECT_FALSE(files().removeItemAtPath_error(nullptr));
    EXPECT_FALSE(removed(""));
}

TEST(RemovalTables, needAWritableFolderAndNotAWritableFile) {
    const bool passed = scene::checkedWithoutPrivileges([] {
        const MigrationFolder folder;
        folder.file("readOnly", "x");
        ::chmod((folder / "readOnly").c_str(), 0);
        EXPECT_TRUE(removed(folder / "readOnly"));
        folder.file("A/closed/x", "x");
        ::chmod((folder / "A/closed").c_str(), 0555);
        EXPECT_FALSE(removed(folder / "A/closed/x"));
        EXPECT_FALSE(removed(folder / "A"));
        EXPECT_TRUE(scene::stands(folder / "A/closed/x"));
    });
    EXPECT_TRUE(passed);
}

TEST(EnumerationTables, tellEveryItemBelow) {
    const MigrationFolder folder;
    folder.file("A/a.log", "x");
    folder.file("A/sub/b.log", "x");
    folder.file("A/sub/.c", "x");
    folder.file("A/.git/config", "x");
    folder.folder("A/empty");
    folder.link("sub", "A/link");
    folder.link("nosuch", "A/dangling");
    folder.link(".", "A/self");
    folder.pipe("A/pipe");
    const Names expected{"a.log", "sub",  "sub/b.log", "sub/.c", ".git", ".git/config",
                         "empty", "link", "dangling",  "self",   "pipe"};
    EXPECT_EQ(namesBelow(folder / "A"), expected);
    EXPECT_EQ(namesBelow(folder / "A/"), expected);
    EXPECT_EQ(namesBelow(folder / "A/self"), expected) << "the start itself may be a link";
    EXPECT_EQ(namesBelow(folder / "A/link"), (Names{"b.log", ".c"}));
}

TEST(EnumerationTables, tellAFolderBeforeItsContents) {
    const MigrationFolder folder;
    for (int number = 0; number < 50; ++number) {
        folder.file("A/d" + std::to_string(number % 7) + "/e" + std::to_string(number) + "/f", "x");
    }
    const std::vector<std::string> names = enumerated(folder / "A");
    EXPECT_EQ(names.size(), 107U);
    std::set<std::string> told;
    for (const std::string& name : names) {
        const std::size_t slash = name.find_last_of('/');
        EXPECT_TRUE(slash == std::string::npos || told.count(name.substr(0, slash)) == 1) << name;
        told.insert(name);
    }
}

TEST(EnumerationTables, areEmptyForWhatIsNoFolder) {
    const MigrationFolder folder;
    folder.file("file", "x");
    folder.link("nosuch", "dangling");
    folder.folder("empty");
    for (const char* name : {"file", "dangling", "nosuch", "empty"}) {
        EXPECT_EQ(enumerated(folder / name), std::vector<std::string>{}) << name;
    }
    EXPECT_FALSE(files().enumeratorAtPath(nullptr).nextObject());
    EXPECT_FALSE(files().enumeratorAtPath("").nextObject());
    EXPECT_FALSE(NSDirectoryEnumerator().nextObject());
}

TEST(EnumerationTables, stayAtTheEnd) {
    const MigrationFolder folder;
    folder.file("A/x", "x");
    NSDirectoryEnumerator items = files().enumeratorAtPath(folder / "A");
    EXPECT_EQ(items.nextObject(), "x");
    EXPECT_FALSE(items.nextObject());
    EXPECT_FALSE(items.nextObject());
    items.skipDescendents();
    EXPECT_FALSE(items.nextObject());
}

TEST(EnumerationTables, skipTheFolderToldLast) {
    const MigrationFolder folder;
    folder.file("A/sub/x", "x");
    folder.file("A/sub/deeper/y", "x");
    NSDirectoryEnumerator items = files().enumeratorAtPath(folder / "A");
    EXPECT_EQ(items.nextObject(), "sub");
    items.skipDescendents();
    EXPECT_FALSE(items.nextObject());
}

TEST(EnumerationTables, skipNothingBeforeTheFirstItemOrAfterAFile) {
    const MigrationFolder folder;
    folder.file("A/sub/deeper/y", "x");
    NSDirectoryEnumerator items = files().enumeratorAtPath(folder / "A");
    items.skipDescendents();
    EXPECT_EQ(items.nextObject(), "sub");
    EXPECT_EQ(items.nextObject(), "sub/deeper");
    EXPECT_EQ(items.nextObject(), "sub/deeper/y");
    items.skipDescendents();
    EXPECT_FALSE(items.nextObject());
}

TEST(EnumerationTables, skipOnlyThatFolderAndGoOnWithItsSiblings) {
    const MigrationFolder folder;
    for (const char* name : {"A/one/x", "A/two/x", "A/three/x", "A/one/deep/x", "A/two/deep/x"}) {
        folder.file(name, "x");
    }
    NSDirectoryEnumerator items = files().enumeratorAtPath(folder / "A");
    Names names;
    while (const NSString name = items.nextObject()) {
        names.insert(scene::bytesOf(name));
        if (name == "two") {
            items.skipDescendents();
        }
    }
    EXPECT_EQ(names, (Names{"one", "one/x", "one/deep", "one/deep/x", "two", "three", "three/x"}));
}

TEST(EnumerationTables, tellFoldersThatCannotBeReadAndPassThemOver) {
    const bool passed = scene::checkedWithoutPrivileges([] {
        const MigrationFolder folder;
        folder.file("A/closed/x", "x");
        folder.file("A/open/x", "x");
        ::chmod((folder / "A/closed").c_str(), 0);
        EXPECT_EQ(namesBelow(folder / "A"), (Names{"closed", "open", "open/x"}));
        EXPECT_EQ(namesBelow(folder / "A/closed"), Names{});
        ::chmod((folder / "A/closed").c_str(), 0755);
    });
    EXPECT_TRUE(passed);
}

TEST(EnumerationTables, tolerateTheRemovalOfWhatWasTold) {
    const MigrationFolder folder;
    Names expected;
    for (int number = 0; number < 2000; ++number) {
        const std::string name = "d" + std::to_string(number % 4) + "/f" + std::to_string(number);
        folder.file("A/" + name, "x");
        expected.insert(name);
    }
    Names told;
    NSDirectoryEnumerator items = files().enumeratorAtPath(folder / "A");
    while (const NSString item = items.nextObject()) {
        const std::string name = scene::bytesOf(item);
        if (name.find('/') != std::string::npos) {
            told.insert(name);
            ::unlink((folder / ("A/" + name)).c_str());
        }
    }
    EXPECT_EQ(told, expected);
}

TEST(EnumerationTables, closeWhatTheyOpened) {
    const MigrationFolder folder;
    folder.file("A/sub/deeper/y", "x");
    const int before = scene::openDescriptors();
    {
        NSDirectoryEnumerator items = files().enumeratorAtPath(folder / "A");
        items.nextObject();
        items.nextObject();
        NSDirectoryEnumerator moved = static_cast<NSDirectoryEnumerator&&>(items);
        EXPECT_EQ(moved.nextObject(), "sub/deeper/y");
    }
    EXPECT_EQ(scene::openDescriptors(), before);
}

TEST(EnumerationTables, goToAnyDepth) {
    constexpr int depth = 2500;
    const MigrationFolder folder;
    scene::makeChain(folder.path(), "abc", depth);
    EXPECT_EQ(enumerated(folder.path()).size(), static_cast<std::size_t>(depth));
    scene::removeChain(folder.path(), "abc", depth);
}
