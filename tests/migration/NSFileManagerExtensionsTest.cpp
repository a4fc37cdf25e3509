// SPDX-License-Identifier: MIT
// The file manager's group: type tests through links, files with the folders above them, chains of folders.
#include <cerrno>
#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "foundation/files/NSFileManager.h"
#include "tests/kit/Child.h"
#include "tests/kit/Environment.h"
#include "tests/kit/Items.h"
#include "tests/kit/ScratchFolder.h"

using namespace ZQFoundation;
using kit::CurrentFolder;
using kit::exists;
using kit::modeOf;

namespace {

NSDictionary permissions(int mode) { return NSDictionary{{NSFilePosixPermissions, mode}}; }

class NSFileManagerExtensions : public testing::Test {
protected:
    std::string in(const std::string& name) const { return base + "/" + name; }
    static bool isFile(const NSString& path) { return files.isRegularFileAtPath(path); }
    static bool isFolder(const NSString& path) { return files.isDirectoryAtPath(path); }
    static bool makeFolder(const NSString& path, int mode, bool deep) {
        return files.createDirectoryAtPath_attributes_deepCreate(path, permissions(mode), deep);
    }
    static bool makeFile(const NSString& path, bool deep, const std::string& text = "text") {
        return files.createFileAtPath_contents_fileAttributes_directoryAttributes_deepCreate(
            path, NSData::dataWithBytes_length(text.data(), text.size()), permissions(0640),
            permissions(0710), deep);
    }
    static bool makeChain(const NSString& path) { return files.recursivelyCreateDirectoriesInPath(path); }

    static inline NSFileManager& files = NSFileManager::defaultManager();
    const kit::ScratchFolder folder;
    const std::string base = kit::realPath(folder.path());
};

} // namespace

TEST_F(NSFileManagerExtensions, typeTestsFollowLinks) {
    folder.write("file", "x");
    folder.makeFolder("folder");
    folder.link("file", "toFile");
    folder.link("folder", "toFolder");
    folder.link(in("toFolder"), "toLink");
    folder.link("nosuch", "dangling");
    folder.link("loop", "loop");
    folder.makePipe("pipe");
    {
        const CurrentFolder current(base); // the address holds only short names
        kit::makeSocket("socket");
    }
    const char* const folders[] = {"folder", "toFolder", "toLink", "folder/", "toFolder/", "folder/..", ""};
    // A final slash goes with the links, before the type is looked up.
    const char* const regular[] = {"file",    "toFile",         "file/",
                                   "toFile/", "folder/../file", "toFolder/../file"};
    const char* const neither[] = {"dangling", "loop", "pipe", "socket", "nosuch", "file/x", "folder/x"};
    for (const char* const name : folders) {
        EXPECT_TRUE(isFolder(in(name)) && !isFile(in(name))) << name;
    }
    for (const char* const name : regular) {
        EXPECT_TRUE(isFile(in(name)) && !isFolder(in(name))) << name;
    }
    for (const char* const name : neither) {
        EXPECT_FALSE(isFile(in(name)) || isFolder(in(name))) << name;
    }
    EXPECT_TRUE(isFolder("/"));
    for (const NSString& none : {NSString("/dev/null"), NSString(""), NSString()}) {
        EXPECT_FALSE(isFile(none) || isFolder(none));
    }
}

TEST_F(NSFileManagerExtensions, typeTestsSeeNothingInAPrivateFolder) {
    folder.write("locked/file", "x");
    folder.makeFolder("locked/folder");
    folder.setMode("locked", 0);
    kit::expectAsUser([this] {
        return (isFile(in("locked/file")) ? 1 : 0) | (isFolder(in("locked/folder")) ? 2 : 0) |
               (isFolder(in("locked")) ? 0 : 4);
    });
}

TEST_F(NSFileManagerExtensions, makesOneFolderOrAllOnTheWay) {
    folder.write("file", "kept");
    EXPECT_TRUE(makeFolder(in("new"), 0711, false));
    EXPECT_EQ(modeOf(in("new")), 0711U);
    for (const char* const name : {"new", "file", "a/b"}) {
        EXPECT_FALSE(makeFolder(in(name), 0700, false)) << name;
    }
    EXPECT_FALSE(exists(in("a")));
    EXPECT_TRUE(makeFolder(in("a/b/c"), 0710, true));
    EXPECT_TRUE(makeFolder(in("a/b/c"), 0700, true));
    for (const char* const name : {"a", "a/b", "a/b/c"}) {
        EXPECT_EQ(modeOf(in(name)), 0710U) << name << ", those of the first call";
    }
    EXPECT_FALSE(makeFolder(in("file"), 0700, true));
    EXPECT_FALSE(makeFolder(in("file/a"), 0700, true));
    EXPECT_EQ(kit::contentsOf(in("file")), "kept");
}

TEST_F(NSFileManagerExtensions, makesAFileWithTheFoldersAboveIt) {
    folder.write("file", "kept");
    ASSERT_EQ(::chmod(folder.makeFolder("there").c_str(), 0755), 0);
    folder.link("file", "toFile");
    folder.link("there", "toFolder");
    folder.link("nosuch", "dangling");
    const struct {
        std::string path;
        bool deep;
        bool isMade;
    } rows[] = {
        {"plain", false, true},
        {"a/b/f", false, false},
        {"a/b/f", true, true},
        {"a/b/f", false, true}, // again, now that the folders are there
        {"there/f", true, true},
        {"toFolder/g", true, true},
        {"file/x", false, false},
        {"file/x", true, false},
        {"toFile/x", true, false},
        {"file/a/x", true, false},
        {"dangling/x", true, false},
        {"c/d/", true, false}, // the slash is dropped, and the folder made: no file can take its place
        {"e/f/" + std::string(300, 'x'), true, false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(makeFile(in(row.path), row.deep), row.isMade) << row.path;
        if (row.isMade) {
            EXPECT_EQ(kit::contentsOf(in(row.path)), "text") << row.path;
            EXPECT_EQ(modeOf(in(row.path)), 0640U) << row.path;
        }
        EXPECT_EQ(exists(in("a")), &row > rows + 1);
    }
    for (const char* const name : {"a", "a/b", "c/d", "e/f"}) { // what was made before a failure remains
        EXPECT_EQ(modeOf(in(name)), 0710U) << name;
    }
    EXPECT_EQ(modeOf(in("there")), 0755U);
    EXPECT_TRUE(exists(in("there/g")));
    EXPECT_EQ(kit::contentsOf(in("file")), "kept");
    EXPECT_FALSE(exists(in("nosuch")));
}

TEST_F(NSFileManagerExtensions, makesEmptyFilesAndReplacesThem) {
    EXPECT_TRUE(files.createFileAtPath_contents_fileAttributes_directoryAttributes_deepCreate(
        in("a/f"), nullptr, nullptr, nullptr, true));
    EXPECT_TRUE(isFile(in("a/f")));
    EXPECT_EQ(kit::contentsOf(in("a/f")), "");
    EXPECT_TRUE(makeFile(in("a/f"), true, "one"));
    EXPECT_TRUE(makeFile(in("a/f"), false, "2"));
    EXPECT_EQ(kit::contentsOf(in("a/f")), "2");
}

TEST_F(NSFileManagerExtensions, findsNoParentInABareName) {
    const CurrentFolder current(base);
    EXPECT_FALSE(makeFile("bare", true)) << "the parent is the empty path, which cannot be created";
    EXPECT_FALSE(exists("bare"));
    EXPECT_TRUE(makeFile("bare", false));
    EXPECT_TRUE(makeFile("./f", true));
    EXPECT_TRUE(makeFile("a/f", true));
    EXPECT_FALSE(makeFile("", true));
    EXPECT_FALSE(makeFile("", false));
}

TEST_F(NSFileManagerExtensions, makesEveryFolderOfAChain) {
    folder.makeFolder("there");
    folder.link("there", "link");
    for (const char* const name : {"a/b/c", "a/b/c", "link/d", "/e//f/./g/", "x/../h"}) {
        EXPECT_TRUE(makeChain(in(name))) << name;
    }
    for (const char* const name : {"a/b/c", "there/d", "e/f/g", "h"}) {
        EXPECT_TRUE(isFolder(in(name))) << name;
    }
    EXPECT_FALSE(exists(in("x"))) << "an absolute path is folded first";
    const CurrentFolder current(base);
    const std::size_t count = files.contentsOfDirectoryAtPath_error(base).count();
    for (const char* const path : {"", "/", "//", "/.", "/.."}) {
        EXPECT_TRUE(makeChain(path)) << path;
    }
    EXPECT_TRUE(makeChain(nullptr));
    EXPECT_EQ(files.contentsOfDirectoryAtPath_error(base).count(), count);
}

TEST_F(NSFileManagerExtensions, makesRelativeChainsBelowTheRoot) {
    // The current folder holds a file with the name of a folder of the root folder.
    const std::string relative = in("").substr(1);
    folder.write("current/" + relative.substr(0, relative.find('/')), "");
    const CurrentFolder current(in("current"));
    EXPECT_TRUE(makeChain(relative + "a/b"));
    EXPECT_TRUE(isFolder(in("a/b")));
    // A relative path keeps its "..", so what comes before it is made as well.
    EXPECT_TRUE(makeChain(relative + "c/../d"));
    EXPECT_TRUE(isFolder(in("c")) && isFolder(in("d")));
    EXPECT_EQ(files.contentsOfDirectoryAtPath_error(in("current")).count(), 1U);
}

TEST_F(NSFileManagerExtensions, endsAChainAtWhatIsNoFolder) {
    folder.write("file", "kept");
    folder.write("a/file", "kept");
    folder.link("nosuch", "dangling");
    folder.link("file", "toFile");
    folder.makePipe("pipe");
    for (const char* const name :
         {"file", "file/b", "a/file/b/c", "toFile", "toFile/b", "dangling", "dangling/b", "pipe/b"}) {
        EXPECT_FALSE(makeChain(in(name))) << name;
        EXPECT_FALSE(makeChain(in(name).substr(1))) << name;
    }
    EXPECT_EQ(kit::contentsOf(in("file")) + kit::contentsOf(in("a/file")), "keptkept");
    EXPECT_FALSE(exists(in("nosuch")));
    EXPECT_FALSE(makeChain(in("b/c/" + std::string(300, 'x') + "/d")));
    EXPECT_TRUE(isFolder(in("b/c"))) << "what was made before remains";
}

TEST_F(NSFileManagerExtensions, expandsTheTilde) {
    folder.write("file", "x");
    const kit::Variable home("HOME", base.c_str());
    EXPECT_TRUE(isFolder("~") && isFile("~/file"));
    EXPECT_FALSE(isFile("~/nosuch"));
    EXPECT_TRUE(makeChain("~/a/b"));
    EXPECT_TRUE(isFolder(in("a/b")));
}

TEST_F(NSFileManagerExtensions, makesNothingWhereTheUserMayNotWrite) {
    ASSERT_EQ(::chmod(folder.makeFolder("closed").c_str(), 0555), 0);
    kit::expectAsUser([this] {
        return (makeChain(in("closed/a/b")) ? 1 : 0) | (makeFile(in("closed/a/x"), true) ? 2 : 0) |
               (makeFile(in("closed/x"), false) ? 4 : 0) | (makeFile(in("closed/x"), true) ? 8 : 0) |
               (makeChain(in("closed")) ? 0 : 16);
    });
    EXPECT_EQ(files.contentsOfDirectoryAtPath_error(in("closed")).count(), 0U);
}

TEST_F(NSFileManagerExtensions, writesNoLineAndKeepsErrnoWhenItFails) {
    folder.write("file", "x");
    ::testing::internal::CaptureStderr();
    errno = EDOM;
    EXPECT_FALSE(isFile(in("nosuch")) || isFolder(in("nosuch")) || makeFolder(in("file/a"), 0700, true) ||
                 makeFolder(in("file"), 0700, false) || makeFile(in("file/x"), true) ||
                 makeFile(in("a/x"), false) || makeChain(in("file/b")));
    EXPECT_EQ(errno, EDOM);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}
