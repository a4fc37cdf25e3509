// SPDX-License-Identifier: MIT
// Existence, permissions and information of items, for any path.
#include <string>

#include <gtest/gtest.h>

#include "foundation/files/FileInformation.h"
#include "tests/files/FileScene.h"

using namespace ZQFoundation;
using scene::fromBytes;

namespace {

NSFileManager& files() { return NSFileManager::defaultManager(); }

class FileQueries : public testing::Test {
protected:
    std::string in(const std::string& name) const { return folder / name; }
    void link(const std::string& target, const std::string& name) {
        ASSERT_EQ(::symlink(target.c_str(), in(name).c_str()), 0);
    }
    scene::Folder folder;
};

TEST_F(FileQueries, existenceFollowsLinks) {
    folder.write("f", "");
    folder.makeFolder("d");
    link("f", "to-f");
    link("d", "to-d");
    link("no such", "dangling");
    link("loop", "loop");
    const struct {
        const char* name;
        bool exists;
        bool isFolder;
    } rows[] = {
        {"f", true, false},   {"d", true, true},          {"d/", true, true},      {"to-f", true, false},
        {"to-d", true, true}, {"dangling", false, false}, {"loop", false, false},  {"no such", false, false},
        {"f/", false, false}, {"f/x", false, false},      {"d/../f", true, false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(files().fileExistsAtPath(in(row.name)), row.exists) << row.name;
        for (const bool before : {false, true}) {
            bool isFolder = before;
            EXPECT_EQ(files().fileExistsAtPath_isDirectory(in(row.name), &isFolder), row.exists) << row.name;
            EXPECT_EQ(isFolder, row.exists ? row.isFolder : before) << row.name;
        }
    }
    EXPECT_TRUE(files().fileExistsAtPath_isDirectory("/", nullptr));
}

TEST_F(FileQueries, pathsWithoutAFormAreNowhere) {
    const std::u16string zero(u"/\0", 2);
    const std::u16string loneSurrogate(u"/\xD800");
    for (const StringView path :
         {StringView(), StringView(""), StringView(zero), StringView(loneSurrogate), StringView("/\0", 2)}) {
        EXPECT_FALSE(files().fileExistsAtPath(path));
        EXPECT_FALSE(files().isReadableFileAtPath(path));
        EXPECT_FALSE(files().isWritableFileAtPath(path));
    }
}

TEST_F(FileQueries, noTildeIsExpanded) {
    const scene::Variable home("HOME", folder.path().c_str());
    EXPECT_FALSE(files().fileExistsAtPath("~"));
}

TEST_F(FileQueries, relativePathsStartInTheCurrentFolder) {
    folder.write("f", "");
    const scene::CurrentFolder current(folder.path());
    EXPECT_TRUE(files().fileExistsAtPath("f"));
    EXPECT_TRUE(files().fileExistsAtPath("."));
}

TEST_F(FileQueries, namesOfAnyBytesAreFound) {
    const std::string path = folder.write("\xFF\xC3\x28", "");
    EXPECT_TRUE(files().fileExistsAtPath(fromBytes(path)));
    EXPECT_FALSE(files().fileExistsAtPath(path)) << "as text these bytes are replacement characters";
    EXPECT_TRUE(files().fileExistsAtPath(folder.write("\u00E9\u20AC", "")));
}

TEST_F(FileQueries, permissionsAreThoseOfTheRealUser) {
    folder.write("none", "");
    folder.write("read", "");
    folder.write("write", "");
    folder.makeFolder("d");
    ::chmod(in("none").c_str(), 0);
    ::chmod(in("read").c_str(), 0444);
    ::chmod(in("write").c_str(), 0222);
    ::chmod(in("d").c_str(), 0555);
    link("read", "to-read");
    link("no such", "dangling");
    const int answer = scene::inUnprivilegedChild([this] {
        const struct {
            const char* name;
            bool isReadable;
            bool isWritable;
        } rows[] = {
            {"none", false, false},     {"read", true, false},   {"write", false, true},
            {"d", true, false},         {"d/", true, false},     {"to-read", true, false},
            {"dangling", false, false}, {"read/", false, false},
        };
        int number = 1;
        for (const auto& row : rows) {
            if (files().isReadableFileAtPath(in(row.name)) != row.isReadable ||
                files().isWritableFileAtPath(in(row.name)) != row.isWritable) {
                return number;
            }
            ++number;
        }
        return 0;
    });
    EXPECT_EQ(answer, 0) << "the number of the row";
    EXPECT_EQ(files().isWritableFileAtPath(in("none")), scene::isRoot());
    EXPECT_FALSE(files().isReadableFileAtPath(in("dangling")));
}

TEST_F(FileQueries, pathsMayBeLongerThanTheSystemTakes) {
    const std::string name(200, 'n');
    const std::string deep = scene::makeChain(folder.path(), name, 100);
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
    scene::removeChain(folder.path(), name, 100);
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
    link("f", "l");
    struct stat information;
    ASSERT_TRUE(detail::getItemInformation(in("l"), information));
    EXPECT_TRUE(S_ISLNK(information.st_mode));
    ASSERT_TRUE(detail::getTargetInformation(in("l"), information));
    EXPECT_EQ(information.st_size, 5);
    EXPECT_FALSE(detail::getItemInformation(nullptr, information));
}

} // namespace
