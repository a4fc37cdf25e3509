// SPDX-License-Identifier: MIT
// Enumerating the items below a folder: their order, skipping, links, unreadable folders and descriptors.
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/files/NSFileManager.h"
#include "tests/files/CopyScene.h"
#include "tests/kit/Child.h"
#include "tests/kit/Items.h"
#include "tests/kit/ScratchFolder.h"
#include "tests/kit/Threads.h"

using namespace ZQFoundation;
using Names = std::vector<std::string>;

namespace {

NSDirectoryEnumerator itemsOf(const std::string& path) {
    return NSFileManager::defaultManager().enumeratorAtPath(kit::fromBytes(path));
}

/// In the order in which they are enumerated.
Names namesBelow(const std::string& path) {
    Names names;
    NSDirectoryEnumerator items = itemsOf(path);
    while (const NSString name = items.nextObject()) {
        names.push_back(kit::bytesOf(name));
    }
    EXPECT_FALSE(items.nextObject()) << "the end stays the end";
    return names;
}

Names sorted(Names names) {
    std::sort(names.begin(), names.end());
    return names;
}

class DirectoryEnumerator : public scene::TreeTest {};

TEST_F(DirectoryEnumerator, returnsEverythingBelowAndAFolderBeforeItsContents) {
    folder.writeFiles({"t/a.log", "t/.dot/.inner", "t/sub/deep/b", "t/\xFF/\xC3\x28"});
    folder.makeFolder("t/empty");
    folder.write("outside/x", "");
    folder.link("../outside", "t/link");
    folder.link("no such", "t/dangling");
    folder.makePipe("t/pipe");
    const Names names = namesBelow(in("t"));
    EXPECT_EQ(sorted(names), sorted({"a.log", ".dot", ".dot/.inner", "sub", "sub/deep", "sub/deep/b", "\xFF",
                                     "\xFF/\xC3\x28", "empty", "link", "dangling", "pipe"}));
    for (std::size_t index = 0; index < names.size(); ++index) {
        const std::size_t slash = names[index].rfind('/');
        if (slash != std::string::npos) {
            const auto parent = std::find(names.begin(), names.end(), names[index].substr(0, slash));
            EXPECT_LT(parent - names.begin(), static_cast<std::ptrdiff_t>(index)) << names[index];
        }
    }
}

TEST_F(DirectoryEnumerator, theStartMayBeALinkAndMustBeAFolder) {
    folder.write("t/f", "");
    folder.link("t", "l");
    folder.link(".", "t/self");
    EXPECT_EQ(sorted(namesBelow(in("t/self"))), (Names{"f", "self"}));
    ::unlink(in("t/self").c_str());
    for (const char* const name : {"l", "l/", "t//", "t/.", "l/../t"}) {
        EXPECT_EQ(namesBelow(in(name)), Names{"f"}) << name;
    }
    for (const char* const name : {"t/f", "t/f/", "no", "l/no"}) {
        EXPECT_EQ(namesBelow(in(name)), Names{}) << name;
    }
    EXPECT_FALSE(NSFileManager::defaultManager().enumeratorAtPath(nullptr).nextObject());
    EXPECT_FALSE(NSFileManager::defaultManager().enumeratorAtPath("").nextObject());
    NSDirectoryEnumerator none;
    none.skipDescendents();
    EXPECT_FALSE(none.nextObject());
}

TEST_F(DirectoryEnumerator, skipsOnlyTheFolderReturnedLast) {
    folder.writeFiles({"t/a/x/f", "t/b/y/f", "t/c"});
    NSDirectoryEnumerator items = itemsOf(in("t"));
    items.skipDescendents(); // nothing has been enumerated yet
    Names names;
    while (const NSString name = items.nextObject()) {
        names.push_back(kit::bytesOf(name));
        if (names.back() == "a" || names.back() == "b/y" || names.back() == "c") {
            items.skipDescendents();
            items.skipDescendents();
        }
    }
    EXPECT_EQ(sorted(names), (Names{"a", "b", "b/y", "c"}));
}

TEST_F(DirectoryEnumerator, returnsButSkipsWhatCannotBeRead) {
    folder.writeFiles({"t/closed/f", "t/names-only/f", "t/open/f"});
    folder.setMode("t/closed", 0);
    folder.setMode("t/names-only", 0744); // the names can be read, the items cannot be reached
    kit::expectAsUser([this] {
        return sorted(namesBelow(in("t"))) ==
                   Names{"closed", "names-only", "names-only/f", "open", "open/f"} &&
               namesBelow(in("t/closed")).empty();
    });
}

TEST_F(DirectoryEnumerator, whatWasReturnedMayBeRemoved) {
    for (int number = 0; number < 300; ++number) {
        folder.write("t/" + std::to_string(number % 7) + "/" + std::to_string(number), "");
    }
    NSDirectoryEnumerator items = itemsOf(in("t"));
    int files = 0;
    while (const NSString name = items.nextObject()) {
        if (kit::bytesOf(name).find('/') != std::string::npos) {
            EXPECT_EQ(::unlink((in("t/") + kit::bytesOf(name)).c_str()), 0);
            ++files;
        }
    }
    EXPECT_EQ(files, 300);
}

TEST_F(DirectoryEnumerator, aFolderRemovedUnderTheWalkDoesNotEndIt) {
    for (const char* const name : {"a", "b", "c", "d"}) {
        folder.write("t/" + std::string(name) + "/x/y/f", "");
    }
    NSDirectoryEnumerator items = itemsOf(in("t"));
    Names tops;
    while (const NSString name = items.nextObject()) {
        const std::string bytes = kit::bytesOf(name);
        if (bytes.find('/') == std::string::npos) {
            tops.push_back(bytes);
        } else if (bytes.size() == 5) { // in the middle of the folder's tree
            kit::removeTree(in("t/") + bytes.substr(0, 1));
        }
    }
    EXPECT_EQ(sorted(tops), (Names{"a", "b", "c", "d"}));
}

TEST_F(DirectoryEnumerator, aFolderMovedAwayLeadsNowhereElse) {
    // Deeper than folders stay open, so that the way back must be found.
    folder.makeFolder("elsewhere");
    folder.write("elsewhere/other", "");
    const std::string deep = kit::makeChain(folder.makeFolder("t"), "n", 30);
    folder.write("t/n/n/after", "");
    NSDirectoryEnumerator items = itemsOf(in("t"));
    std::size_t longest = 0;
    bool isAfterSeen = false;
    while (const NSString name = items.nextObject()) {
        const std::string bytes = kit::bytesOf(name);
        EXPECT_EQ(bytes.find("other"), std::string::npos) << bytes;
        isAfterSeen = isAfterSeen || bytes == "n/n/after";
        longest = std::max(longest, bytes.size());
        if (bytes.size() == 2 * 25 - 1) {
            ASSERT_EQ(::rename(in("t/n/n/n/n/n").c_str(), in("elsewhere/n").c_str()), 0);
        }
    }
    EXPECT_EQ(longest, 59U);
    EXPECT_TRUE(isAfterSeen);
}

TEST_F(DirectoryEnumerator, aLinkThatIsSwappedInIsNeverEntered) {
    folder.writeFiles({"outside/secret", "t/y/f"});
    kit::Meanwhile attacker([&] {
        ::mkdir(in("t/x").c_str(), 0755);
        ::rmdir(in("t/x").c_str());
        static_cast<void>(!::symlink(in("outside").c_str(), in("t/x").c_str()));
        ::unlink(in("t/x").c_str());
    });
    for (int round = 0; round < 5000; ++round) {
        for (const std::string& name : namesBelow(in("t"))) {
            EXPECT_EQ(name.find("secret"), std::string::npos);
        }
    }
    attacker.end();
}

TEST_F(DirectoryEnumerator, depthIsNoLimit) {
    constexpr int depth = 5000;
    kit::makeChain(folder.path(), "n", depth);
    const int before = kit::openDescriptors();
    NSDirectoryEnumerator items = itemsOf(folder.path());
    std::size_t count = 0;
    int most = 0;
    while (const NSString name = items.nextObject()) {
        ++count;
        EXPECT_EQ(name.length(), 2 * count - 1);
        most = count % 500 == 0 ? std::max(most, kit::openDescriptors()) : most;
    }
    EXPECT_EQ(count, static_cast<std::size_t>(depth));
    EXPECT_LE(most, before + 12);
    EXPECT_TRUE(NSFileManager::defaultManager().removeItemAtPath_error(in("n")));
}

TEST_F(DirectoryEnumerator, fewDescriptorsAreEnough) {
    kit::makeChain(folder.makeFolder("t"), "n", 60);
    folder.write("t/n/n/f", "");
    EXPECT_TRUE(kit::isTrueWithDescriptors(4, [this] { return namesBelow(in("t")).size() == 61; }));
}

TEST_F(DirectoryEnumerator, twentyThousandItemsAreReturnedOnceEach) {
    makeWideTree("t", 99);
    Names names = sorted(namesBelow(in("t")));
    EXPECT_EQ(names.size(), 20000U);
    EXPECT_EQ(std::unique(names.begin(), names.end()), names.end());
}

TEST_F(DirectoryEnumerator, movesAndClosesItsDescriptors) {
    folder.write("t/a/b/c/f", "");
    const int before = kit::openDescriptors();
    {
        NSDirectoryEnumerator items = itemsOf(in("t"));
        EXPECT_EQ(kit::bytesOf(items.nextObject()), "a");
        NSDirectoryEnumerator moved = std::move(items);
        EXPECT_EQ(kit::bytesOf(moved.nextObject()), "a/b");
        NSDirectoryEnumerator assigned;
        assigned = std::move(moved);
        EXPECT_EQ(kit::bytesOf(assigned.nextObject()), "a/b/c");
        errno = 4711;
        EXPECT_EQ(kit::bytesOf(assigned.nextObject()), "a/b/c/f");
        EXPECT_FALSE(assigned.nextObject());
        EXPECT_EQ(errno, 4711);
    }
    EXPECT_EQ(kit::openDescriptors(), before);
}

} // namespace
