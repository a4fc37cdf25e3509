// SPDX-License-Identifier: MIT
// Tests for types of items, and creating folders on the way to a path.
#include <string>

#include <gtest/gtest.h>

#include "foundation/files/NSFileManager.h"
#include "tests/files/FileScene.h"

using namespace ZQFoundation;

namespace {

NSFileManager& files() { return NSFileManager::defaultManager(); }

class NSFileManagerExtensions : public testing::Test {
protected:
    void link(const std::string& target, const std::string& name) {
        ASSERT_EQ(::symlink(target.c_str(), in(name).c_str()), 0);
    }
    std::string in(const std::string& name) const { return folder / name; }
    scene::Folder folder;
};

TEST_F(NSFileManagerExtensions, theTypeTestsFollowLinks) {
    folder.write("f", "");
    folder.makeFolder("d");
    link("f", "to-f");
    link("d", "to-d");
    link("no such", "dangling");
    link("loop", "loop");
    ASSERT_EQ(::mkfifo(in("pipe").c_str(), 0600), 0);
    const struct {
        const char* name;
        bool isFile;
        bool isFolder;
    } rows[] = {
        {"f", true, false},         {"d", false, true},         {"to-f", true, false},
        {"to-d", false, true},      {"dangling", false, false}, {"loop", false, false},
        {"pipe", false, false},     {"no such", false, false},  {"d/", false, true},
        {"to-d/../f", true, false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(files().isRegularFileAtPath(in(row.name)), row.isFile) << row.name;
        EXPECT_EQ(files().isDirectoryAtPath(in(row.name)), row.isFolder) << row.name;
    }
    for (const StringView none : {StringView(), StringView("")}) {
        EXPECT_FALSE(files().isRegularFileAtPath(none));
        EXPECT_FALSE(files().isDirectoryAtPath(none));
    }
}

TEST_F(NSFileManagerExtensions, theTypeTestsExpandTheTilde) {
    folder.write("f", "");
    const scene::Variable home("HOME", folder.path().c_str());
    EXPECT_TRUE(files().isRegularFileAtPath("~/f"));
    EXPECT_TRUE(files().isDirectoryAtPath("~"));
}

TEST_F(NSFileManagerExtensions, aFolderIsMadeDeepOrNot) {
    EXPECT_FALSE(files().createDirectoryAtPath_attributes_deepCreate(in("a/b"), nullptr, false));
    EXPECT_FALSE(scene::stands(in("a")));
    EXPECT_TRUE(files().createDirectoryAtPath_attributes_deepCreate(
        in("a/b"), NSDictionary{{NSFilePosixPermissions, 0711}}, true));
    EXPECT_EQ(scene::modeOf(in("a")), 0711u);
    EXPECT_EQ(scene::modeOf(in("a/b")), 0711u);
    EXPECT_TRUE(files().createDirectoryAtPath_attributes_deepCreate(in("a/b"), nullptr, true));
    EXPECT_FALSE(files().createDirectoryAtPath_attributes_deepCreate(in("a/b"), nullptr, false));
}

class DeepFileCreation : public NSFileManagerExtensions {
protected:
    bool create(const std::string& path, bool deep) {
        return files().createFileAtPath_contents_fileAttributes_directoryAttributes_deepCreate(
            path, NSData::dataWithBytes_length("text", 4), NSDictionary{{NSFilePosixPermissions, 0640}},
            NSDictionary{{NSFilePosixPermissions, 0710}}, deep);
    }
};

TEST_F(DeepFileCreation, makesTheMissingFoldersWhenAsked) {
    EXPECT_FALSE(create(in("a/b/f"), false));
    EXPECT_FALSE(scene::stands(in("a")));
    EXPECT_TRUE(create(in("a/b/f"), true));
    EXPECT_EQ(scene::contentsOf(in("a/b/f")), "text");
    EXPECT_EQ(scene::modeOf(in("a/b/f")), 0640u);
    EXPECT_EQ(scene::modeOf(in("a/b")), 0710u);
    EXPECT_TRUE(create(in("a/b/f"), true)) << "once more, over what stands";
    EXPECT_TRUE(create(in("a/g"), false));
}

TEST_F(DeepFileCreation, aFileInTheParentsPlaceIsAFailureAndUntouched) {
    folder.write("f", "kept");
    link("f", "to-f");
    EXPECT_FALSE(create(in("f/x"), true));
    EXPECT_FALSE(create(in("f/x/y"), true));
    EXPECT_FALSE(create(in("to-f/x"), true));
    EXPECT_EQ(scene::contentsOf(in("f")), "kept");
}

TEST_F(DeepFileCreation, aLinkToAFolderIsAParent) {
    folder.makeFolder("d");
    link("d", "l");
    EXPECT_TRUE(create(in("l/f"), true));
    EXPECT_TRUE(scene::stands(in("d/f")));
}

TEST_F(DeepFileCreation, aBareNameHasNoParentToMake) {
    const scene::CurrentFolder current(folder.path());
    EXPECT_FALSE(create("f", true)) << "the empty path can be no folder";
    EXPECT_TRUE(create("f", false));
    EXPECT_TRUE(create("./g", true));
}

TEST_F(NSFileManagerExtensions, theChainOfFoldersIsMadeOneByOne) {
    EXPECT_TRUE(files().recursivelyCreateDirectoriesInPath(in("a/./b//x/../c/")));
    EXPECT_TRUE(scene::stands(in("a/b/c")));
    EXPECT_FALSE(scene::stands(in("a/b/x")));
    EXPECT_TRUE(files().recursivelyCreateDirectoriesInPath(in("a/b/c")));
    EXPECT_TRUE(files().recursivelyCreateDirectoriesInPath(""));
    EXPECT_TRUE(files().recursivelyCreateDirectoriesInPath(nullptr));
    EXPECT_TRUE(files().recursivelyCreateDirectoriesInPath("/"));
}

TEST_F(NSFileManagerExtensions, theChainEndsAtAFile) {
    folder.write("a/f", "kept");
    EXPECT_FALSE(files().recursivelyCreateDirectoriesInPath(in("a/f/x")));
    EXPECT_FALSE(files().recursivelyCreateDirectoriesInPath(in("a/f")));
    EXPECT_EQ(scene::contentsOf(in("a/f")), "kept");
    EXPECT_FALSE(files().recursivelyCreateDirectoriesInPath(in("a/new/") + std::string(300, 'n') + "/y"));
    EXPECT_TRUE(scene::stands(in("a/new"))) << "what was made before stays";
}

TEST_F(NSFileManagerExtensions, theChainExpandsTheTilde) {
    const scene::Variable home("HOME", folder.path().c_str());
    EXPECT_TRUE(files().recursivelyCreateDirectoriesInPath("~/a/b"));
    EXPECT_TRUE(scene::stands(in("a/b")));
}

TEST_F(NSFileManagerExtensions, aRelativeChainStartsAtTheRootFolder) {
    // The current folder holds a file that has the name of a folder in the root folder.
    const std::string relative = folder.path().substr(1);
    const std::string first = relative.substr(0, relative.find('/'));
    folder.write(first, "");
    const scene::CurrentFolder current(folder.path());
    EXPECT_TRUE(files().recursivelyCreateDirectoriesInPath(relative + "/a/b"));
    EXPECT_TRUE(scene::stands(in("a/b")));
}

} // namespace
