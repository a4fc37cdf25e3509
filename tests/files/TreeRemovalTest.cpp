// SPDX-License-Identifier: MIT
// Removing files and whole trees, also while others change them.
#include <cerrno>
#include <cstdio>
#include <string>
#include <thread>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/files/NSFileManager.h"
#include "tests/files/FileScene.h"
#include "tests/kit/Child.h"
#include "tests/kit/Items.h"
#include "tests/kit/ScratchFolder.h"
#include "tests/kit/Threads.h"
#include "tests/kit/Values.h"

using namespace ZQFoundation;

namespace {

bool removeItem(const std::string& path, NSString* reason = nullptr) {
    return NSFileManager::defaultManager().removeItemAtPath_error(kit::fromBytes(path), reason);
}

class TreeRemoval : public scene::FolderTestInMemory {};

TEST_F(TreeRemoval, takesAFileALinkAndAPipe) {
    folder.write("f", "");
    folder.write("target", "kept");
    folder.makeFolder("d");
    folder.write("d/f", "kept");
    folder.link("target", "l");
    folder.link("d", "to-d");
    folder.link("no such", "dangling");
    folder.makePipe("pipe");
    for (const char* const name : {"f", "l", "to-d", "dangling", "pipe"}) {
        EXPECT_TRUE(removeItem(in(name))) << name;
        EXPECT_FALSE(kit::exists(in(name))) << name;
        EXPECT_FALSE(removeItem(in(name))) << name << " is gone already";
    }
    EXPECT_EQ(kit::contentsOf(in("target")) + kit::contentsOf(in("d/f")), "keptkept");
}

TEST_F(TreeRemoval, takesAWholeTreeWithoutFollowingLinks) {
    folder.write("outside/f", "kept");
    folder.writeFiles({"t/a/b/f", "t/a/.hidden", "t/\xFF\xC3\x28/\xA9"});
    folder.makeFolder("t/empty");
    folder.makeFolder("t/..x");
    folder.link("../../outside", "t/a/l");
    folder.link("../outside/f", "t/l");
    folder.makePipe("t/pipe");
    EXPECT_TRUE(removeItem(in("t")));
    EXPECT_FALSE(kit::exists(in("t")));
    EXPECT_EQ(kit::contentsOf(in("outside/f")), "kept");
}

TEST_F(TreeRemoval, aSlashAtTheEndNeedsAFolder) {
    folder.write("f", "");
    folder.write("t/f", "kept");
    folder.makeFolder("d/inner");
    folder.link("t", "l");
    EXPECT_TRUE(removeItem(in("d//")));
    EXPECT_FALSE(kit::exists(in("d")));
    EXPECT_FALSE(removeItem(in("f/")));
    EXPECT_FALSE(removeItem(in("l/")));
    EXPECT_TRUE(kit::exists(in("f")));
    EXPECT_TRUE(kit::exists(in("l")));
    EXPECT_EQ(kit::contentsOf(in("t/f")), "kept");
}

TEST_F(TreeRemoval, whatCannotBeNamedIsLeftWithAllThatIsInIt) {
    folder.write("t/f", "kept");
    const kit::CurrentFolder current(in("t"));
    for (const std::string& path : {in("t/."), in("t/x/.."), in("t/./"), std::string("."), std::string("./"),
                                    std::string(".."), std::string("/"), std::string("//")}) {
        EXPECT_FALSE(removeItem(path)) << path;
    }
    EXPECT_EQ(kit::contentsOf(in("t/f")), "kept");
}

TEST_F(TreeRemoval, reportsWhatItCouldNotRemove) {
    NSString reason("before");
    folder.write("f", "");
    EXPECT_TRUE(removeItem(in("f"), &reason));
    EXPECT_FALSE(reason);
    EXPECT_FALSE(removeItem(in("f"), &reason));
    EXPECT_EQ(kit::utf8Of(reason), in("f") + ": No such file or directory");
    EXPECT_FALSE(removeItem("", &reason));
    EXPECT_FALSE(NSFileManager::defaultManager().removeItemAtPath_error(nullptr));
    EXPECT_FALSE(removeItem("/", &reason));
    EXPECT_EQ(kit::utf8Of(reason), "/: Invalid argument");
}

TEST_F(TreeRemoval, stopsAtAFolderThatMayNotBeWritten) {
    folder.write("t/a/b/f", "kept");
    for (const char* const name : {"t", "t/a", "t/a/b"}) {
        folder.setMode(name, 0777);
    }
    folder.setMode("", 0777);
    folder.setMode("t/a/b", 0555);
    kit::expectAsUser([this] {
        NSString reason;
        if (removeItem(in("t"), &reason)) {
            return 1;
        }
        return reason.utf8() == in("t/a/b/f") + ": Permission denied" ? 0 : 2;
    });
    EXPECT_EQ(kit::contentsOf(in("t/a/b/f")), "kept");
}

TEST_F(TreeRemoval, needsNoPermissionOfWhatIsRemovedButOfItsFolder) {
    folder.write("d/read-only", "");
    folder.makeFolder("d/closed");
    folder.makeFolder("d/t/closed");
    folder.setMode("d/read-only", 0);
    folder.setMode("d", 0777);
    folder.setMode("d/t", 0777);
    const int closed = ::chmod(in("d/closed").c_str(), 0) | ::chmod(in("d/t/closed").c_str(), 0);
    ASSERT_EQ(closed, 0);
    const int answer = kit::inUnprivilegedChild([this] {
        return removeItem(in("d/read-only")) && removeItem(in("d/closed")) && removeItem(in("d/t")) ? 0 : 1;
    });
    EXPECT_EQ(answer, 0) << "an empty folder goes even when it may not be looked into";
    folder.setMode("d", 0755);
    folder.write("d/f", "");
    folder.setMode("d/f", 0666);
    folder.setMode("d", 0555);
    kit::expectAsUser([this] { return removeItem(in("d/f")) ? 1 : 0; });
}

TEST_F(TreeRemoval, depthIsNoLimit) {
    const std::string deep = kit::makeChain(folder.path(), "n", 5000);
    NSFileManager& files = NSFileManager::defaultManager();
    for (const char* const name : {"/f", "/.g"}) {
        ASSERT_TRUE(files.createFileAtPath_contents_attributes(deep + name, nullptr, nullptr));
    }
    EXPECT_TRUE(removeItem(in("n")));
    EXPECT_FALSE(kit::exists(in("n")));
}

TEST_F(TreeRemoval, foldersOnTheWayBackAreEmptiedToo) {
    makeBranches("t");
    EXPECT_TRUE(removeItem(in("t")));
    EXPECT_FALSE(kit::exists(in("t")));
}

TEST_F(TreeRemoval, fewDescriptorsAreEnough) {
    const std::string deep = kit::makeChain(folder.path(), "n", 100);
    folder.write("n/n/f", "");
    EXPECT_TRUE(kit::isTrueWithDescriptors(3, [this] { return removeItem(in("n")); }));
    EXPECT_FALSE(kit::exists(in("n")));
}

TEST_F(TreeRemoval, manyFoldersInOne) {
    const std::string wide = folder.makeFolder("wide");
    for (int number = 0; number < 1000; ++number) {
        const std::string name = wide + "/" + std::to_string(number);
        ASSERT_EQ(::mkdir(name.c_str(), 0755), 0);
        ASSERT_EQ(::mkdir((name + "/inner").c_str(), 0755), 0);
    }
    EXPECT_TRUE(removeItem(wide));
    EXPECT_FALSE(kit::exists(wide));
}

TEST_F(TreeRemoval, aLinkThatIsSwappedInIsNeverFollowed) {
    folder.makeFolder("outside");
    for (int number = 0; number < 50; ++number) {
        folder.write("outside/" + std::to_string(number), "");
    }
    // A folder of the tree is now a folder and now a link to the one outside.
    kit::Meanwhile attacker([&] {
        const std::string real = in("real");
        const std::string fake = in("fake");
        ::mkdir(real.c_str(), 0755);
        static_cast<void>(!::symlink(in("outside").c_str(), fake.c_str()));
        ::rename(real.c_str(), in("t/x").c_str());
        ::rename(in("t/x").c_str(), in("aside").c_str());
        ::rename(fake.c_str(), in("t/x").c_str());
        ::rename(in("t/x").c_str(), in("aside").c_str());
        ::rmdir(in("aside").c_str());
        ::unlink(in("aside").c_str());
    });
    for (int round = 0; round < 5000; ++round) {
        ::mkdir(in("t").c_str(), 0755);
        ::mkdir(in("t/y").c_str(), 0755);
        removeItem(in("t"));
    }
    attacker.end();
    EXPECT_EQ(NSFileManager::defaultManager().contentsOfDirectoryAtPath_error(in("outside")).count(), 50u);
}

TEST_F(TreeRemoval, aFolderMovedAwayTakesTheRemovalNowhere) {
    // The tree is moved below another folder while it is emptied: whatever is around its new place stays.
    folder.makeFolder("elsewhere");
    folder.write("elsewhere/kept", "");
    for (int round = 0; round < 30; ++round) {
        kit::makeChain(folder.path(), "n", 60);
        std::thread mover([&] { ::rename(in("n/n/n/n/n").c_str(), in("elsewhere/n").c_str()); });
        removeItem(in("n"));
        mover.join();
        EXPECT_TRUE(kit::exists(in("elsewhere/kept")));
        removeItem(in("n"));
        removeItem(in("elsewhere/n"));
        EXPECT_FALSE(kit::exists(in("n")) || kit::exists(in("elsewhere/n")));
    }
}

TEST_F(TreeRemoval, keepsTheErrorNumberAndEveryDescriptor) {
    kit::makeChain(folder.path(), "n", 20);
    kit::expectNoTrace([this] {
        removeItem(in("n"));
        removeItem(in("n"));
    });
}

} // namespace
