// SPDX-License-Identifier: MIT
// Existence, permissions and information of items, for any path.
#include <cerrno>
#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "foundation/files/FileInformation.h"
#include "foundation/files/NSFileManager.h"
#include "tests/files/FileScene.h"
#include "tests/kit/Child.h"
#include "tests/kit/Environment.h"
#include "tests/kit/Items.h"
#include "tests/kit/ScratchFolder.h"

using namespace ZQFoundation;
using kit::fromBytes;

namespace {

NSFileManager& files() { return NSFileManager::defaultManager(); }

bool createFolder(StringView path, bool deep) {
    return files().createDirectoryAtPath_withIntermediateDirectories_attributes_error(path, deep, {});
}

/// One letter for each operation that finds something at the path.
std::string findingsAt(StringView path) {
    std::string findings;
    bool isDirectory = false;
    findings += files().fileExistsAtPath(path) ? "e" : "";
    findings += files().fileExistsAtPath_isDirectory(path, &isDirectory) ? "E" : "";
    findings += files().isReadableFileAtPath(path) ? "r" : "";
    findings += files().isWritableFileAtPath(path) ? "w" : "";
    findings += files().attributesOfItemAtPath_error(path) ? "a" : "";
    findings += files().contentsOfDirectoryAtPath_error(path) ? "l" : "";
    return findings;
}

/// One letter for each operation that succeeds with the path.
std::string successesFor(StringView path) {
    std::string successes = findingsAt(path);
    successes += createFolder(path, false) ? "d" : "";
    successes += createFolder(path, true) ? "D" : "";
    successes += files().createFileAtPath_contents_attributes(path, NSData::data(), {}) ? "f" : "";
    successes += files().removeItemAtPath_error(path) ? "x" : "";
    return successes;
}

class FileQueries : public scene::FolderTest {
protected:
    /// A file and a folder, links to them, and dangling links.
    void makeItems() const {
        folder.write("f", "abc");
        folder.makeFolder("d");
        folder.link("f", "to-f");
        folder.link("d", "to-d");
        folder.link("no such", "dangling");
        folder.link("loop", "loop");
    }
};

TEST_F(FileQueries, existenceFollowsLinks) {
    makeItems();
    const struct {
        const char* name;
        bool exists;
        bool isFolder;
    } rows[] = {
        {"f", true, false},           {"d", true, true},          {"to-f", true, false},
        {"to-d", true, true},         {"dangling", false, false}, {"loop", false, false},
        {"no such", false, false},    {"f/", false, false},       {"to-f/", false, false},
        {"d/", true, true},           {"to-d/", true, true},      {"f/x", false, false},
        {"d/.", true, true},          {"d/..", true, true},       {"d/../f", true, false},
        {"no such/..", false, false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(files().fileExistsAtPath(in(row.name)), row.exists) << row.name;
        // The flag is written only together with a yes.
        for (const bool before : {false, true}) {
            bool isFolder = before;
            EXPECT_EQ(files().fileExistsAtPath_isDirectory(in(row.name), &isFolder), row.exists) << row.name;
            EXPECT_EQ(isFolder, row.exists ? row.isFolder : before) << row.name;
        }
    }
    EXPECT_TRUE(files().fileExistsAtPath_isDirectory("/", nullptr));
    EXPECT_TRUE(files().fileExistsAtPath("/dev/null"));
    EXPECT_EQ(&files(), &NSFileManager::defaultManager());
}

TEST_F(FileQueries, everyOperationFailsForAPathThatNoFileCanHave) {
    makeItems();
    const auto below = [this](std::u16string name) {
        const std::u16string whole = NSString(in("")).utf16() + name;
        return NSString::stringWithCharacters_length(whole.data(), whole.size());
    };
    EXPECT_EQ(successesFor(nullptr), "");
    EXPECT_EQ(successesFor(""), "");
    EXPECT_EQ(successesFor(StringView("/\0", 2)), "");
    EXPECT_EQ(successesFor(below(std::u16string(u"f\0", 2))), "");
    EXPECT_EQ(successesFor(below(std::u16string(u"new\0x", 5))), "");
    EXPECT_EQ(successesFor(below(u"a\xD800")), "");
    EXPECT_EQ(successesFor(below(u"\xDBFFz")), "");
    EXPECT_EQ(successesFor(below(u"a\xDC00")), "") << "means no byte";
    EXPECT_EQ(successesFor(below(u"a\xDC7F")), "") << "an ASCII byte needs no surrogate";
    EXPECT_EQ(successesFor(below(u"a\xDD00")), "");
    EXPECT_EQ(kit::contentsOf(in("f")), "abc");
    EXPECT_EQ(files().contentsOfDirectoryAtPath_error(folder.path()).count(), 6U);
}

TEST_F(FileQueries, relativePathsStartInTheCurrentFolderAndNoTildeIsExpanded) {
    folder.write("home/file", "x");
    folder.write("current/file", "x");
    const kit::Variable variable("HOME", in("home").c_str());
    const kit::CurrentFolder current(in("current"));
    EXPECT_TRUE(files().fileExistsAtPath("file"));
    EXPECT_EQ(findingsAt("~/file") + findingsAt("~"), "");
    EXPECT_FALSE(files().removeItemAtPath_error("~/file"));
    EXPECT_TRUE(createFolder("~/a/b", true));
    EXPECT_TRUE(files().createFileAtPath_contents_attributes("~/made", {}, {}));
    EXPECT_TRUE(kit::isFolder(in("current/~/a/b")) && kit::exists(in("current/~/made")));
    EXPECT_TRUE(files().removeItemAtPath_error("file"));
    EXPECT_EQ(files().contentsOfDirectoryAtPath_error(in("home")).count(), 1U);
}

TEST_F(FileQueries, namesOfAnyBytesAreFound) {
    const std::string path = folder.write("\xFF\xC3\x28", "");
    EXPECT_TRUE(files().fileExistsAtPath(fromBytes(path)));
    EXPECT_FALSE(files().fileExistsAtPath(path)) << "as text these bytes are replacement characters";
    EXPECT_TRUE(files().fileExistsAtPath(folder.write("\u00E9\u20AC", "")));
}

TEST_F(FileQueries, permissionsAreThoseOfTheRealUser) {
    makeItems();
    const struct {
        const char* name;
        mode_t mode;
        bool isFolder;
    } items[] = {{"f", 0444, false}, {"none", 0, false},  {"write", 0222, false}, {"open", 0666, false},
                 {"d", 0555, true},  {"locked", 0, true}, {"public", 0777, true}};
    for (const auto& item : items) {
        const std::string path = item.isFolder ? folder.makeFolder(item.name) : folder.write(item.name, "x");
        ASSERT_EQ(::chmod(path.c_str(), item.mode), 0);
    }
    const struct {
        const char* name;
        bool isReadable;
        bool isWritable;
    } rows[] = {
        {"f", true, false},     {"to-f", true, false},     {"none", false, false},
        {"write", false, true}, {"open", true, true},      {"d", true, false},
        {"d/", true, false},    {"to-d", true, false},     {"locked", false, false},
        {"public", true, true}, {"no such", false, false}, {"dangling", false, false},
        {"loop", false, false}, {"open/", false, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        kit::expectAsUser([&] {
            return files().isReadableFileAtPath(in(row.name)) == row.isReadable &&
                   files().isWritableFileAtPath(in(row.name)) == row.isWritable;
        });
        if (kit::isRoot()) {
            const bool exists = files().fileExistsAtPath(in(row.name));
            EXPECT_EQ(files().isReadableFileAtPath(in(row.name)), exists) << row.name;
            EXPECT_EQ(files().isWritableFileAtPath(in(row.name)), exists) << row.name;
        }
    }
}

TEST_F(FileQueries, pathsMayBeLongerThanTheSystemTakes) {
    const std::string name(200, 'n');
    const std::string deep = kit::makeChain(folder.path(), name, 100);
    bool isFolder = false;
    EXPECT_TRUE(files().fileExistsAtPath_isDirectory(deep, &isFolder));
    EXPECT_TRUE(isFolder);
    EXPECT_TRUE(files().fileExistsAtPath(deep + std::string(5000, '/')));
    EXPECT_TRUE(files().fileExistsAtPath(std::string(5000, '/') + deep));
    EXPECT_TRUE(files().isReadableFileAtPath(deep));
    EXPECT_TRUE(files().isWritableFileAtPath(deep));
    EXPECT_FALSE(files().fileExistsAtPath(deep + "/x"));
    EXPECT_FALSE(files().fileExistsAtPath(in(std::string(100'000, 'x'))));
    EXPECT_FALSE(files().fileExistsAtPath("/" + std::string(5000, 'x')));
    EXPECT_TRUE(files().fileExistsAtPath(std::string(5000, '/')));
}

TEST_F(FileQueries, theErrorNumberIsKept) {
    errno = 4711;
    files().fileExistsAtPath(in("no such"));
    files().isReadableFileAtPath(in("no such"));
    files().fileExistsAtPath("");
    EXPECT_EQ(errno, 4711);
}

TEST_F(FileQueries, informationIsOfTheItemOrOfItsTarget) {
    folder.write("f", "12345");
    folder.link("f", "l");
    struct stat information;
    ASSERT_TRUE(detail::getItemInformation(in("l"), information));
    EXPECT_TRUE(S_ISLNK(information.st_mode));
    ASSERT_TRUE(detail::getTargetInformation(in("l"), information));
    EXPECT_EQ(information.st_size, 5);
    EXPECT_FALSE(detail::getItemInformation(nullptr, information));
}

} // namespace
