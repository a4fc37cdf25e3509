// SPDX-License-Identifier: MIT
// Copies of whole folders.
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/files/NSFileManager.h"
#include "tests/files/CopyScene.h"
#include "tests/kit/Child.h"
#include "tests/kit/Environment.h"
#include "tests/kit/Items.h"
#include "tests/kit/ScratchFolder.h"
#include "tests/kit/Threads.h"

using namespace ZQFoundation;
using scene::copyItem;
using scene::lookAt;

namespace {

class TreeCopy : public scene::TreeTest {
protected:
    bool remove(const std::string& name) const {
        return NSFileManager::defaultManager().removeItemAtPath_error(kit::fromBytes(in(name)));
    }
};

TEST_F(TreeCopy, takesEverythingAlong) {
    const kit::Umask mask(077);
    folder.write("t/.hidden", "h");
    folder.write("t/a/b/f", "bytes");
    folder.write("t/\xFF\xC3\x28/\xA9", "odd");
    folder.makeFolder("t/empty");
    folder.makeFolder("t/..x");
    folder.link("../outside", "t/a/l");
    folder.link("no such", "t/dangling");
    ASSERT_EQ(::mkfifo(in("t/pipe").c_str(), 0620), 0);
    folder.setMode("t/a", 02711);
    const std::vector<std::string> names = {
        "/a/b/f", "/a/b",   "/a/l", "/.hidden", "/\xFF\xC3\x28/\xA9", "/pipe", "/\xFF\xC3\x28",
        "/a",     "/empty", "/..x", ""};
    int second = 1000000000;
    for (const std::string& name : names) {
        ++second;
        scene::setTimes(in("t" + name), 900000000, second, second - 1000000000);
    }
    ASSERT_EQ(scene::reasonOfCopy(in("t"), in("u")), "(nil)");
    for (const std::string& name : names) {
        EXPECT_EQ(scene::stamp(in("u" + name)), scene::stamp(in("t" + name))) << name;
    }
    EXPECT_EQ(kit::contentsOf(in("u/a/b/f")) + kit::contentsOf(in("u/.hidden")), "bytesh");
    EXPECT_EQ(kit::contentsOf(in("u/\xFF\xC3\x28/\xA9")), "odd");
    char text[20] = {};
    EXPECT_EQ(::readlink(in("u/a/l").c_str(), text, sizeof text), 10);
    EXPECT_STREQ(text, "../outside");
    EXPECT_EQ(lookAt(in("u")).st_atim.tv_sec, 900000000) << "as it was before the folder was read";
}

TEST_F(TreeCopy, keepsAttributesAndAccessListsOfFolders) {
    const kit::Variable place("TMPDIR", "/tmp"); // memory keeps no attributes on older systems
    const kit::ScratchFolder disk;
    const auto in = [&](const char* name) {
        return disk / name;
    };
    disk.write("t/f", "x");
    if (!scene::setAttribute(in("t"), "user.zq.color", "green") ||
        !scene::setAttribute(in("t"), scene::listForNewItems, scene::listForUser(4))) {
        GTEST_SKIP() << "the file system keeps no extended attributes";
    }
    ASSERT_EQ(scene::reasonOfCopy(in("t"), in("u")), "(nil)");
    EXPECT_EQ(scene::attribute(in("u"), "user.zq.color"), "green");
    EXPECT_EQ(scene::attribute(in("u"), scene::listForNewItems), scene::listForUser(4));
    EXPECT_EQ(scene::attribute(in("u/f"), scene::accessList), "(none)") << "the file has no such list";
}

TEST_F(TreeCopy, hardLinksBecomeSeparateFiles) {
    folder.write("t/one", "x");
    ASSERT_EQ(::link(in("t/one").c_str(), in("t/two").c_str()), 0);
    ASSERT_TRUE(copyItem(in("t"), in("u")));
    EXPECT_EQ(lookAt(in("u/one")).st_nlink, 1U);
    EXPECT_EQ(kit::contentsOf(in("u/two")), "x");
}

TEST_F(TreeCopy, depthIsNoLimit) {
    constexpr int depth = 5000;
    const std::string deep = kit::makeChain(folder.path(), "n", depth);
    NSFileManager& files = NSFileManager::defaultManager();
    ASSERT_TRUE(files.createFileAtPath_contents_attributes(deep + "/f", nullptr, nullptr));
    EXPECT_EQ(scene::reasonOfCopy(in("n"), in("m")), "(nil)");
    const std::string copied = in("m") + deep.substr(folder.path().size() + 2) + "/f";
    EXPECT_TRUE(files.fileExistsAtPath(copied));
    // A folder cannot be copied into its own depths either.
    EXPECT_FALSE(copyItem(in("n"), deep + "/x"));
    EXPECT_FALSE(files.fileExistsAtPath(deep + "/x"));
    EXPECT_TRUE(remove("n") && remove("m"));
}

TEST_F(TreeCopy, thingsOnTheWayBackAreCopiedToo) {
    makeBranches("t");
    ASSERT_EQ(scene::reasonOfCopy(in("t"), in("u")), "(nil)");
    std::string at = "u";
    for (int level = 0; level < levels; ++level) {
        for (const char* const name : {"/a/f", "/m/f", "/z/f"}) {
            EXPECT_EQ(kit::contentsOf(in(at + name)), std::to_string(level));
        }
        at += "/m";
    }
}

TEST_F(TreeCopy, twentyThousandFilesKeepTheirPlaces) {
    makeWideTree("t", 100);
    ASSERT_EQ(scene::reasonOfCopy(in("t"), in("u")), "(nil)");
    int present = 0;
    for (int number = 0; number < 200; ++number) {
        for (int file = 0; file < 100; ++file) {
            struct stat information;
            const std::string name = in("u/") + std::to_string(number) + "/" + std::to_string(file);
            present +=
                ::lstat(name.c_str(), &information) == 0 && information.st_mode == (S_IFREG | 0604) ? 1 : 0;
        }
    }
    EXPECT_EQ(present, 20000);
}

TEST_F(TreeCopy, foldersWithoutPermissionsAreFilledBeforeTheyGetTheirs) {
    folder.setMode("", 0777);
    kit::expectAsUser([this] {
        folder.write("t/locked/f", "x");
        folder.makeFolder("t/list-only");
        folder.setMode("t/list-only", 0400);
        folder.setMode("t/locked", 0500);
        folder.setMode("t", 0555);
        const std::string reason = scene::reasonOfCopy(in("t"), in("u"));
        const bool isSame = kit::modeOf(in("u")) == 0555 && kit::modeOf(in("u/locked")) == 0500 &&
                            kit::modeOf(in("u/list-only")) == 0400 &&
                            kit::contentsOf(in("u/locked/f")) == "x";
        for (const char* const name : {"t", "u", "t/locked", "u/locked", "t/list-only", "u/list-only"}) {
            folder.setMode(name, 0777);
        }
        return reason == "(nil)" && isSame;
    });
}

TEST_F(TreeCopy, stopsAtWhatItMayNotReadAndLeavesWhatItMade) {
    folder.write("t/secret/f", "x");
    folder.setMode("t/secret", 0);
    folder.write("v/f", "x");
    folder.setMode("v/f", 0);
    folder.setMode("", 0777);
    kit::expectAsUser([this] {
        return scene::reasonOfCopy(in("t"), in("u")) == in("t/secret") + ": Permission denied" &&
               scene::reasonOfCopy(in("t/secret"), in("w")) == in("t/secret") + ": Permission denied" &&
               scene::reasonOfCopy(in("v"), in("x")) == in("v/f") + ": Permission denied";
    });
    EXPECT_TRUE(kit::exists(in("u")) && kit::exists(in("x")));
    EXPECT_FALSE(kit::exists(in("w"))) << "it was known before anything was made";
    EXPECT_EQ(kit::modeOf(in("u")), 0700U);
}

TEST_F(TreeCopy, aFolderIsNotCopiedIntoItselfHoweverItIsSpelled) {
    folder.write("t/sub/f", "x");
    folder.link("t", "to-t");
    folder.link("t/sub", "to-sub");
    folder.link("to-sub", "to-to-sub");
    folder.link(in("t"), "absolute");
    const std::string before = scene::stamp(in("t")) + scene::stamp(in("t/sub"));
    const char* const destinations[] = {"t/x",         "t/./x",           "t//x",     "t/sub/x",
                                        "t/sub/../x",  "t/sub/../../t/x", "./t/x",    "../NAME/t/x",
                                        "to-t/x",      "to-t/sub/x",      "to-sub/x", "to-sub/../x",
                                        "to-to-sub/x", "absolute/x",      "t/x/",     "absolute/sub/../x"};
    const std::string own = folder.path().substr(folder.path().rfind('/') + 1);
    for (const char* const destination : destinations) {
        std::string path = in(destination);
        const std::size_t place = path.find("NAME");
        path = place == std::string::npos ? path : path.replace(place, 4, own);
        for (const char* const source : {"t", "t/", "t/.", "to-t/.", "t/sub/..", "absolute/../t"}) {
            EXPECT_EQ(scene::reasonOfCopy(in(source), path), in(source) + ": Invalid argument") << path;
        }
    }
    const kit::CurrentFolder current(in("t/sub"));
    for (const char* const destination : {"x", "../x", "./x", "../sub/x"}) {
        EXPECT_FALSE(copyItem("..", destination)) << destination;
    }
    for (const char* const present : {".", "..", "../sub", "/", "f"}) {
        EXPECT_FALSE(copyItem("..", present)) << present;
    }
    EXPECT_EQ(scene::stamp(in("t")) + scene::stamp(in("t/sub")), before) << "and nothing was made";
    // A name that begins alike, and a link that is only copied, are something else.
    EXPECT_TRUE(copyItem(in("t"), in("tt")));
    EXPECT_TRUE(copyItem(in("to-t"), in("t/link")));
}

TEST_F(TreeCopy, copiesInProgressAreClosedToOthers) {
    for (int number = 0; number < 30; ++number) {
        folder.write("t/d/" + std::to_string(number), std::string(20000, 'x'));
    }
    folder.setMode("t", 0750);
    folder.setMode("t/d", 0755);
    std::atomic<int> seen = 0;
    kit::Meanwhile watcher([&] {
        for (const auto& [name, complete] : {std::pair("u", 0750U), std::pair("u/d", 0755U)}) {
            struct stat information;
            if (::lstat(in(name).c_str(), &information) == 0) {
                const mode_t mode = information.st_mode & 07777;
                EXPECT_TRUE(mode == 0700 || mode == complete) << name << mode;
                seen += mode == 0700 ? 1 : 0;
            }
        }
    });
    for (int round = 0; round < 50 || (seen < 20 && round < 2000); ++round) {
        EXPECT_TRUE(copyItem(in("t"), in("u")));
        ASSERT_EQ(::rename(in("u").c_str(), in("old").c_str()), 0);
        EXPECT_TRUE(remove("old"));
    }
    watcher.end();
    EXPECT_GE(seen, 20);
}

TEST_F(TreeCopy, aLinkThatIsSwappedInIsNeverFollowed) {
    folder.write("outside/secret", "secret");
    folder.write("t/y/f", "x");
    // t/x is now a folder, now a file, now a link to the folder outside.
    kit::Meanwhile attacker([&] {
        ::mkdir(in("t/x").c_str(), 0755);
        ::rmdir(in("t/x").c_str());
        static_cast<void>(!::symlink(in("outside").c_str(), in("t/x").c_str()));
        ::unlink(in("t/x").c_str());
        ::mknod(in("t/x").c_str(), S_IFREG | 0644, 0);
        ::unlink(in("t/x").c_str());
        ::mkfifo(in("t/x").c_str(), 0644);
        ::unlink(in("t/x").c_str());
    });
    for (int round = 0; round < 1500; ++round) {
        copyItem(in("t"), in("u"));
        EXPECT_FALSE(S_ISDIR(lookAt(in("u")).st_mode) && ::access(in("u/x/secret").c_str(), F_OK) == 0 &&
                     !S_ISLNK(lookAt(in("u/x")).st_mode));
        remove("u");
    }
    attacker.end();
}

TEST_F(TreeCopy, aLinkPlantedAtTheDestinationIsNeverFollowed) {
    folder.write("outside/kept", "kept");
    const std::string before = scene::stamp(in("outside"));
    folder.write("t/a/f", "x");
    folder.write("file", "x");
    ASSERT_EQ(::mkfifo(in("pipe").c_str(), 0666), 0);
    folder.setMode("pipe", 0666);
    kit::Meanwhile attacker([&] {
        // Takes the new item away and puts a link in its place.
        static_cast<void>(!::symlink(in("outside").c_str(), in("planted").c_str()));
        ::rename(in("u").c_str(), in("away").c_str());
        ::rename(in("planted").c_str(), in("u").c_str());
        ::unlink(in("u").c_str());
        ::rename(in("away").c_str(), in("u").c_str());
        ::unlink(in("planted").c_str());
    });
    for (int round = 0; round < 1000; ++round) {
        for (const char* const source : {"t", "file", "pipe"}) {
            copyItem(in(source), in("u"));
            remove("u");
            remove("away");
        }
    }
    attacker.end();
    EXPECT_EQ(scene::stamp(in("outside")), before);
    EXPECT_FALSE(kit::exists(in("outside/f")) || kit::exists(in("outside/a")));
}

TEST_F(TreeCopy, aFolderThatIsBeingFilledComesToAnEnd) {
    folder.write("t/f", "x");
    std::atomic<int> made = 0;
    kit::Meanwhile filler([&] {
        if (made < 200000) {
            ::mknod((in("t/") + std::to_string(made)).c_str(), S_IFREG | 0600, 0);
            ++made;
        }
    });
    while (made < 2000) {
        std::this_thread::yield();
    }
    EXPECT_EQ(scene::reasonOfCopy(in("t"), in("u")), "(nil)");
    filler.end();
    EXPECT_TRUE(kit::exists(in("u/1999")));
}

TEST_F(TreeCopy, aFolderMovedAwayTakesTheCopyNowhere) {
    folder.makeFolder("elsewhere");
    folder.write("elsewhere/other", "");
    for (int round = 0; round < 30; ++round) {
        kit::makeChain(folder.path(), "n", 60);
        std::thread mover([&] { ::rename(in("n/n/n/n/n").c_str(), in("elsewhere/n").c_str()); });
        copyItem(in("n"), in("m"));
        mover.join();
        struct stat information;
        std::string at = in("m");
        while (::lstat(at.c_str(), &information) == 0) {
            EXPECT_FALSE(kit::exists(at + "/other")) << at;
            at += "/n";
        }
        remove("n");
        remove("m");
        remove("elsewhere/n");
    }
}

TEST_F(TreeCopy, fewDescriptorsAreEnough) {
    kit::makeChain(folder.path(), "n", 100);
    folder.write("n/n/n/n/n/n/n/n/n/n/n/n/f", "x");
    folder.link("f", "n/n/n/n/n/n/n/n/n/n/n/n/l");
    EXPECT_TRUE(kit::isTrueWithDescriptors(6, [this] { return copyItem(in("n"), in("m")); }));
    EXPECT_EQ(kit::contentsOf(in("m/n/n/n/n/n/n/n/n/n/n/n/f")), "x");
    EXPECT_TRUE(remove("n") && remove("m"));
}

TEST_F(TreeCopy, keepsTheErrorNumberAndEveryDescriptor) {
    kit::makeChain(folder.path(), "n", 20);
    kit::expectNoTrace([this] {
        copyItem(in("n"), in("m"));
        copyItem(in("n"), in("n/n/x"));
        copyItem(in("n"), in("m"));
    });
}

} // namespace
