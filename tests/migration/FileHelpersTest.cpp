// SPDX-License-Identifier: MIT
// The file manager's group: type tests through links, deep creation, chains of folders.
#include <climits>
#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "foundation/files/NSFileManager.h"
#include "tests/process/ItemFacts.h"

using namespace ZQFoundation;

namespace {

using scene::insideFolder;
using scene::isFile;
using scene::isFolder;
using scene::modeOf;
using scene::realPath;
using scene::stands;

NSFileManager& files() { return NSFileManager::defaultManager(); }

NSData bytes(const std::string& text) { return NSData::dataWithBytes_length(text.data(), text.size()); }

NSDictionary permissions(int mode) { return NSDictionary{{NSFilePosixPermissions, mode}}; }

bool createDeep(const std::string& path, const NSData& contents = {}, const NSDictionary& ofFile = {},
                const NSDictionary& ofFolders = {}) {
    return files().createFileAtPath_contents_fileAttributes_directoryAttributes_deepCreate(
        path, contents, ofFile, ofFolders, true);
}

bool createFlat(const std::string& path, const NSData& contents = {}, const NSDictionary& ofFile = {},
                const NSDictionary& ofFolders = {}) {
    return files().createFileAtPath_contents_fileAttributes_directoryAttributes_deepCreate(
        path, contents, ofFile, ofFolders, false);
}

struct Scene {
    Scene() : base(realPath(folder.path())) {}

    std::string operator/(const std::string& name) const { return base + "/" + name; }
    void link(const std::string& target, const std::string& name) const {
        EXPECT_EQ(::symlink(target.c_str(), (*this / name).c_str()), 0) << name;
    }

    scene::Folder folder;
    std::string base;
};

void makeSocket(const std::string& folder, const std::string& name) {
    // By a relative name: the address holds only short ones.
    EXPECT_TRUE(insideFolder(folder, [&name] {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        name.copy(address.sun_path, sizeof address.sun_path - 1);
        const int descriptor = ::socket(AF_UNIX, SOCK_STREAM, 0);
        return ::bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    }));
}

} // namespace

// Type tests.

TEST(FileHelpers, tellFilesAndFoldersThroughLinks) {
    const Scene scene;
    scene.folder.write("file", "x");
    scene.folder.makeFolder("folder");
    scene.link("file", "toFile");
    scene.link("folder", "toFolder");
    scene.link(scene / "toFolder", "toLink");
    scene.link("nosuch", "dangling");
    scene.link("loop", "loop");
    ASSERT_EQ(::mkfifo((scene / "pipe").c_str(), 0600), 0);
    makeSocket(scene.base, "socket");
    const struct {
        const char* name;
        bool isRegular;
        bool isDirectory;
    } rows[] = {
        {"file", true, false},
        {"folder", false, true},
        {"toFile", true, false},
        {"toFolder", false, true},
        {"toLink", false, true},
        {"dangling", false, false},
        {"loop", false, false},
        {"pipe", false, false},
        {"socket", false, false},
        {"nosuch", false, false},
        {"file/x", false, false},
        {"folder/x", false, false},
        {"folder/", false, true},
        {"folder/..", false, true},
        {"folder/../file", true, false},
        // The final slash goes with the links, before anybody looks.
        {"file/", true, false},
        {"toFile/", true, false},
        {"toFolder/", false, true},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(files().isRegularFileAtPath(scene / row.name), row.isRegular) << row.name;
        EXPECT_EQ(files().isDirectoryAtPath(scene / row.name), row.isDirectory) << row.name;
    }
    EXPECT_FALSE(files().isRegularFileAtPath("/dev/null"));
    EXPECT_FALSE(files().isDirectoryAtPath("/dev/null"));
    EXPECT_TRUE(files().isDirectoryAtPath("/"));
    for (const StringView none : {StringView(""), StringView(nullptr)}) {
        EXPECT_FALSE(files().isRegularFileAtPath(none));
        EXPECT_FALSE(files().isDirectoryAtPath(none));
    }
}

TEST(FileHelpers, tellWhatStandsBehindTheTilde) {
    const Scene scene;
    scene.folder.write("file", "x");
    const scene::Variable home("HOME", scene.base.c_str());
    EXPECT_TRUE(files().isDirectoryAtPath("~"));
    EXPECT_TRUE(files().isRegularFileAtPath("~/file"));
    EXPECT_FALSE(files().isRegularFileAtPath("~/nosuch"));
}

TEST(FileHelpers, tellNothingOfWhatTheUserMayNotLookInto) {
    const Scene scene;
    scene.folder.write("locked/file", "x");
    scene.folder.makeFolder("locked/folder");
    ASSERT_EQ(::chmod((scene / "locked").c_str(), 0), 0);
    EXPECT_EQ(scene::inUnprivilegedChild([&scene] {
                  return (files().isRegularFileAtPath(scene / "locked/file") ? 1 : 0) |
                         (files().isDirectoryAtPath(scene / "locked/folder") ? 2 : 0) |
                         (files().isDirectoryAtPath(scene / "locked") ? 0 : 4);
              }),
              0);
    ::chmod((scene / "locked").c_str(), 0755);
}

// One folder, or a chain of them.

TEST(FileHelpers, createOneFolderAndNothingOnTheWayWithoutTheSwitch) {
    const Scene scene;
    scene.folder.write("file", "x");
    EXPECT_TRUE(files().createDirectoryAtPath_attributes_deepCreate(scene / "new", {}, false));
    EXPECT_TRUE(isFolder(scene / "new"));
    EXPECT_FALSE(files().createDirectoryAtPath_attributes_deepCreate(scene / "new", {}, false));
    EXPECT_FALSE(files().createDirectoryAtPath_attributes_deepCreate(scene / "file", {}, false));
    EXPECT_FALSE(files().createDirectoryAtPath_attributes_deepCreate(scene / "a/b", {}, false));
    EXPECT_FALSE(stands(scene / "a"));
}

TEST(FileHelpers, createFoldersOnTheWayWithTheSwitch) {
    const Scene scene;
    scene.folder.write("file", "x");
    EXPECT_TRUE(
        files().createDirectoryAtPath_attributes_deepCreate(scene / "a/b/c", permissions(0710), true));
    for (const char* const name : {"a", "a/b", "a/b/c"}) {
        EXPECT_EQ(modeOf(scene / name), 0710U) << name;
    }
    EXPECT_TRUE(
        files().createDirectoryAtPath_attributes_deepCreate(scene / "a/b/c", permissions(0700), true));
    EXPECT_EQ(modeOf(scene / "a/b/c"), 0710U) << "the folder was there already";
    EXPECT_FALSE(files().createDirectoryAtPath_attributes_deepCreate(scene / "file", {}, true));
    EXPECT_FALSE(files().createDirectoryAtPath_attributes_deepCreate(scene / "file/a", {}, true));
    EXPECT_EQ(scene::contentsOf(scene / "file"), "x");
}

TEST(FileHelpers, passTheAttributesOn) {
    const Scene scene;
    EXPECT_TRUE(files().createDirectoryAtPath_attributes_deepCreate(scene / "new", permissions(0711), false));
    EXPECT_EQ(modeOf(scene / "new"), 0711U);
}

// A file, with the folders above it.

TEST(FileHelpers, createAFileWithoutTheSwitchOnlyInAFolderThatIsThere) {
    const Scene scene;
    EXPECT_TRUE(createFlat(scene / "file", bytes("text"), permissions(0640), permissions(0700)));
    EXPECT_EQ(scene::contentsOf(scene / "file"), "text");
    EXPECT_EQ(modeOf(scene / "file"), 0640U);
    EXPECT_FALSE(createFlat(scene / "a/file", bytes("text")));
    EXPECT_FALSE(stands(scene / "a"));
}

TEST(FileHelpers, createAFileWithTheFoldersAboveIt) {
    const Scene scene;
    EXPECT_TRUE(createDeep(scene / "a/b/file", bytes("text"), permissions(0640), permissions(0710)));
    EXPECT_EQ(scene::contentsOf(scene / "a/b/file"), "text");
    EXPECT_EQ(modeOf(scene / "a/b/file"), 0640U);
    EXPECT_EQ(modeOf(scene / "a"), 0710U);
    EXPECT_EQ(modeOf(scene / "a/b"), 0710U);
}

TEST(FileHelpers, leaveTheAttributesOfAParentThatIsThere) {
    const Scene scene;
    ASSERT_EQ(::chmod(scene.folder.makeFolder("a").c_str(), 0755), 0);
    scene.link("a", "toFolder");
    EXPECT_TRUE(createDeep(scene / "a/file", bytes("1"), {}, permissions(0700)));
    EXPECT_TRUE(createDeep(scene / "toFolder/other", bytes("2"), {}, permissions(0700)));
    EXPECT_EQ(modeOf(scene / "a"), 0755U);
    EXPECT_EQ(scene::contentsOf(scene / "a/other"), "2");
}

TEST(FileHelpers, createAnEmptyFileAndReplaceOne) {
    const Scene scene;
    EXPECT_TRUE(createDeep(scene / "a/file"));
    EXPECT_TRUE(isFile(scene / "a/file"));
    EXPECT_EQ(scene::contentsOf(scene / "a/file"), "");
    EXPECT_TRUE(createDeep(scene / "a/file", bytes("one")));
    EXPECT_TRUE(createFlat(scene / "a/file", bytes("2")));
    EXPECT_EQ(scene::contentsOf(scene / "a/file"), "2");
}

TEST(FileHelpers, createNoFileBelowAnotherFile) {
    const Scene scene;
    scene.folder.write("file", "as it was");
    scene.link("file", "toFile");
    for (const char* const name : {"file/x", "toFile/x", "file/a/x"}) {
        EXPECT_FALSE(createDeep(scene / name, bytes("text"))) << name;
        EXPECT_FALSE(createFlat(scene / name, bytes("text"))) << name;
    }
    EXPECT_EQ(scene::contentsOf(scene / "file"), "as it was");
}

TEST(FileHelpers, createNoFileBelowADanglingLink) {
    const Scene scene;
    scene.link("nosuch", "dangling");
    EXPECT_FALSE(createDeep(scene / "dangling/x"));
    EXPECT_FALSE(stands(scene / "nosuch"));
}

TEST(FileHelpers, leaveFoldersThatWereMadeBeforeTheFileFailed) {
    const Scene scene;
    EXPECT_FALSE(createDeep(scene / ("a/b/" + std::string(300, 'x'))));
    EXPECT_TRUE(isFolder(scene / "a/b"));
    scene.folder.write("c/file", "x");
    EXPECT_FALSE(createDeep(scene / "c/file/d/x"));
    EXPECT_EQ(scene::contentsOf(scene / "c/file"), "x");
}

TEST(FileHelpers, findNoParentInABareName) {
    // The parent is the empty path, which nobody can make; without the switch it is not needed.
    const Scene scene;
    EXPECT_TRUE(insideFolder(scene.base, [] { return !createDeep("bare") && !stands("bare"); }));
    EXPECT_TRUE(insideFolder(scene.base, [] { return createFlat("bare") && isFile("bare"); }));
    EXPECT_TRUE(insideFolder(scene.base, [] { return createDeep("a/b") && isFile("a/b"); }));
    EXPECT_FALSE(createDeep(""));
    EXPECT_FALSE(createFlat(""));
}

TEST(FileHelpers, takeAFinalSlashForTheLastComponent) {
    // What is dropped is the slash: the folder is made, and the file cannot take its place.
    const Scene scene;
    EXPECT_FALSE(createDeep(scene / "a/b/"));
    EXPECT_TRUE(isFolder(scene / "a/b"));
}

// Chains from the root folder.

TEST(FileHelpers, makeEveryFolderOfAChain) {
    const Scene scene;
    scene.folder.makeFolder("there");
    scene.link("there", "link");
    EXPECT_TRUE(files().recursivelyCreateDirectoriesInPath(scene / "a/b/c"));
    EXPECT_TRUE(isFolder(scene / "a/b/c"));
    EXPECT_TRUE(files().recursivelyCreateDirectoriesInPath(scene / "a/b/c")) << "all there";
    EXPECT_TRUE(files().recursivelyCreateDirectoriesInPath(scene / "link/d"));
    EXPECT_TRUE(isFolder(scene / "there/d"));
    EXPECT_TRUE(files().recursivelyCreateDirectoriesInPath((scene / "/e//f/./g/")));
    EXPECT_TRUE(isFolder(scene / "e/f/g"));
}

TEST(FileHelpers, makeNothingForAnEmptyPathAndForTheRoot) {
    const Scene scene;
    EXPECT_TRUE(insideFolder(scene.base, [] { return files().recursivelyCreateDirectoriesInPath(""); }));
    for (const char* const path : {"/", "//", "/.", "/.."}) {
        EXPECT_TRUE(files().recursivelyCreateDirectoriesInPath(path)) << path;
    }
    EXPECT_EQ(files().contentsOfDirectoryAtPath_error(scene.base).count(), 0U);
}

TEST(FileHelpers, makeRelativeChainsBelowTheRoot) {
    const Scene scene;
    scene.folder.makeFolder("current");
    const std::string relative = (scene / "a/b").substr(1);
    EXPECT_TRUE(insideFolder(scene / "current",
                             [&relative] { return files().recursivelyCreateDirectoriesInPath(relative); }));
    EXPECT_TRUE(isFolder(scene / "a/b"));
    EXPECT_EQ(files().contentsOfDirectoryAtPath_error(scene / "current").count(), 0U);
}

TEST(FileHelpers, foldParentsOfAbsoluteChainsAndWalkThoseOfRelativeOnes) {
    const Scene scene;
    EXPECT_TRUE(files().recursivelyCreateDirectoriesInPath(scene / "a/../b"));
    EXPECT_FALSE(stands(scene / "a"));
    EXPECT_TRUE(isFolder(scene / "b"));
    // A relative path keeps its "..", so what comes before it is made as well.
    EXPECT_TRUE(files().recursivelyCreateDirectoriesInPath((scene / "c/../d").substr(1)));
    EXPECT_TRUE(isFolder(scene / "c"));
    EXPECT_TRUE(isFolder(scene / "d"));
}

TEST(FileHelpers, makeChainsBehindTheTilde) {
    const Scene scene;
    const scene::Variable home("HOME", scene.base.c_str());
    EXPECT_TRUE(files().recursivelyCreateDirectoriesInPath("~/a/b"));
    EXPECT_TRUE(isFolder(scene / "a/b"));
}

TEST(FileHelpers, stopAChainAtWhatIsNoFolder) {
    const Scene scene;
    scene.folder.write("file", "as it was");
    scene.folder.write("a/file", "as it was");
    scene.link("nosuch", "dangling");
    scene.link("file", "toFile");
    ASSERT_EQ(::mkfifo((scene / "pipe").c_str(), 0600), 0);
    for (const char* const name :
         {"file", "file/b", "a/file/b/c", "toFile", "toFile/b", "dangling", "dangling/b", "pipe/b"}) {
        EXPECT_FALSE(files().recursivelyCreateDirectoriesInPath(scene / name)) << name;
        EXPECT_FALSE(files().recursivelyCreateDirectoriesInPath((scene / name).substr(1))) << name;
    }
    EXPECT_EQ(scene::contentsOf(scene / "file"), "as it was");
    EXPECT_EQ(scene::contentsOf(scene / "a/file"), "as it was");
    EXPECT_FALSE(stands(scene / "nosuch"));
}

TEST(FileHelpers, leaveTheFoldersOfAChainThatFailedLater) {
    const Scene scene;
    EXPECT_FALSE(files().recursivelyCreateDirectoriesInPath(scene / ("a/b/" + std::string(300, 'x') + "/c")));
    EXPECT_TRUE(isFolder(scene / "a/b"));
}

TEST(FileHelpers, failWhereTheUserMayNotWrite) {
    const Scene scene;
    scene.folder.makeFolder("closed");
    ASSERT_EQ(::chmod((scene / "closed").c_str(), 0555), 0);
    EXPECT_EQ(scene::inUnprivilegedChild([&scene] {
                  return (files().recursivelyCreateDirectoriesInPath(scene / "closed/a/b") ? 1 : 0) |
                         (createDeep(scene / "closed/a/x") ? 2 : 0) |
                         (createFlat(scene / "closed/x") ? 4 : 0) | (createDeep(scene / "closed/x") ? 8 : 0) |
                         (files().recursivelyCreateDirectoriesInPath(scene / "closed") ? 0 : 16);
              }),
              0);
    EXPECT_EQ(files().contentsOfDirectoryAtPath_error(scene / "closed").count(), 0U);
    ::chmod((scene / "closed").c_str(), 0755);
}

// Silence.

TEST(FileHelpers, writeNoLineAndKeepErrnoWhenTheyFail) {
    const Scene scene;
    scene.folder.write("file", "x");
    const std::string output = scene / "output";
    const int file = ::open(output.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    ASSERT_GE(file, 0);
    const int before = ::fcntl(2, F_DUPFD_CLOEXEC, 3);
    ::dup2(file, 2);
    errno = EDOM;
    files().isRegularFileAtPath(scene / "nosuch");
    files().isDirectoryAtPath(scene / "nosuch");
    files().createDirectoryAtPath_attributes_deepCreate(scene / "file/a", {}, true);
    files().createDirectoryAtPath_attributes_deepCreate(scene / "file", {}, false);
    createDeep(scene / "file/x");
    createFlat(scene / "a/x");
    files().recursivelyCreateDirectoriesInPath(scene / "file/b");
    const int after = errno;
    ::dup2(before, 2);
    ::close(before);
    ::close(file);
    EXPECT_EQ(after, EDOM);
    EXPECT_EQ(scene::contentsOf(output), "");
}
