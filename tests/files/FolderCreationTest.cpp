// SPDX-License-Identifier: MIT
// Creating folders, with or without the missing parent folders.
#include <cerrno>
#include <string>
#include <utility>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/files/FileInformation.h"
#include "foundation/files/NSFileManager.h"
#include "foundation/objects/NSDate.h"
#include "tests/files/FileScene.h"
#include "tests/kit/Child.h"
#include "tests/kit/Items.h"
#include "tests/kit/ScratchFolder.h"
#include "tests/kit/Values.h"

using namespace ZQFoundation;

namespace {

using kit::isFolder;

bool make(const std::string& path, bool withIntermediates, const NSDictionary& attributes = nullptr,
          NSString* reason = nullptr) {
    return NSFileManager::defaultManager().createDirectoryAtPath_withIntermediateDirectories_attributes_error(
        kit::fromBytes(path), withIntermediates, attributes, reason);
}

class FolderCreation : public scene::FolderTestInMemory {
protected:
    FolderCreation() { folder.write("f", "kept"); }
};

TEST_F(FolderCreation, withoutIntermediatesMakesOneNewFolder) {
    const kit::Umask umask(027);
    EXPECT_TRUE(make(in("d"), false));
    EXPECT_EQ(kit::modeOf(in("d")), 0750u);
    EXPECT_TRUE(make(in("d/slash/"), false));
    EXPECT_TRUE(isFolder(in("d/slash")));
    NSString reason;
    EXPECT_FALSE(make(in("d"), false, nullptr, &reason));
    EXPECT_EQ(kit::utf8Of(reason), in("d") + ": File exists");
    EXPECT_FALSE(make(in("f"), false));
    EXPECT_FALSE(make(in("no such/d"), false, nullptr, &reason));
    EXPECT_EQ(kit::utf8Of(reason), in("no such/d") + ": No such file or directory");
    EXPECT_FALSE(kit::exists(in("no such")));
    EXPECT_TRUE(make(in("other"), false, nullptr, &reason));
    EXPECT_FALSE(reason);
}

TEST_F(FolderCreation, withIntermediatesMakesWhatIsMissing) {
    const kit::Umask umask(027);
    EXPECT_TRUE(make(in("a/b//c/"), true));
    for (const char* const name : {"a", "a/b", "a/b/c"}) {
        EXPECT_EQ(kit::modeOf(in(name)), 0750u) << name;
    }
    EXPECT_TRUE(make(in("a/b/c"), true)) << "it is there already";
    EXPECT_TRUE(make(in("a/./x/../y"), true));
    EXPECT_TRUE(isFolder(in("a/y")));
    EXPECT_TRUE(make("/", true));
    EXPECT_FALSE(make("/", false));
}

TEST_F(FolderCreation, followsLinksToFoldersAndFailsAtFiles) {
    const struct {
        const char* name;
        bool alone; ///< without intermediates
        bool withIntermediates;
    } rows[] = {
        {"new", true, true},        {"d", false, true},         {"to-d", false, true},
        {"f", false, false},        {"to-f", false, false},     {"a/b/c", false, true},
        {"dangling", false, false}, {"loop", false, false},     {"d/new", true, true},
        {"to-d/new", true, true},   {"to-d/x/y", false, true},  {"f/new", false, false},
        {"f/x/y", false, false},    {"to-f/new", false, false}, {"dangling/new", false, false},
    };
    for (const auto& row : rows) {
        for (const bool isDeep : {false, true}) {
            const kit::ScratchFolder items;
            items.write("f", "kept");
            items.makeFolder("d");
            for (const auto& [target, name] : {std::pair("d", "to-d"), std::pair("f", "to-f"),
                                               std::pair("no such", "dangling"), std::pair("loop", "loop")}) {
                ASSERT_EQ(::symlink(target, (items / name).c_str()), 0);
            }
            const bool isMade = isDeep ? row.withIntermediates : row.alone;
            NSString reason("before");
            EXPECT_EQ(make(items / row.name, isDeep, nullptr, &reason), isMade) << row.name << isDeep;
            EXPECT_EQ(!reason, isMade) << row.name;
            EXPECT_EQ(isMade, NSFileManager::defaultManager().isDirectoryAtPath(items / row.name) &&
                                  (isDeep || row.alone))
                << row.name;
            EXPECT_FALSE(kit::exists(items / "no such"));
            EXPECT_EQ(kit::contentsOf(items / "f"), "kept");
        }
    }
}

TEST_F(FolderCreation, whatWasMadeBeforeAFailureStays) {
    EXPECT_FALSE(make(in("a/b/") + std::string(300, 'n') + "/c", true));
    EXPECT_TRUE(isFolder(in("a/b")));
}

TEST_F(FolderCreation, pathsWithoutAFormFail) {
    NSString reason;
    EXPECT_FALSE(make("", true, nullptr, &reason));
    EXPECT_TRUE(reason);
    NSFileManager& files = NSFileManager::defaultManager();
    EXPECT_FALSE(files.createDirectoryAtPath_attributes_deepCreate(nullptr, nullptr, true));
    const std::u16string zero(u"/tmp/\0", 6);
    EXPECT_FALSE(files.createDirectoryAtPath_attributes_deepCreate(zero, nullptr, true));
}

TEST_F(FolderCreation, attributesAreGivenToEachFolderThatWasMade) {
    folder.makeFolder("old");
    folder.setMode("old", 0755);
    const NSDate date = NSDate::dateWithTimeIntervalSinceReferenceDate(1000.5);
    const NSDictionary attributes{{NSFilePosixPermissions, 0523},
                                  {NSFileModificationDate, date},
                                  {"unknown", 1},
                                  {NSFileOwnerAccountID, "no number"}};
    EXPECT_TRUE(make(in("old/a/b"), true, attributes));
    EXPECT_EQ(kit::modeOf(in("old")), 0755u);
    for (const char* const name : {"old/a", "old/a/b"}) {
        EXPECT_EQ(kit::modeOf(in(name)), 0523u) << name << ": the umask does not count";
        struct stat information;
        ASSERT_TRUE(detail::getItemInformation(in(name), information));
        EXPECT_TRUE(detail::modificationDateOf(information).isEqualToDate(date)) << name;
    }
    EXPECT_TRUE(make(in("old"), true, attributes));
    EXPECT_EQ(kit::modeOf(in("old")), 0755u) << "it was there already";
    EXPECT_TRUE(make(in("single"), false, NSDictionary{{NSFilePosixPermissions, 0}}));
    EXPECT_EQ(kit::modeOf(in("single")), 0u);
}

TEST_F(FolderCreation, permissionsThatCloseTheFoldersAreSetLast) {
    folder.setMode("", 0777);
    kit::expectAsUser([this] {
        const bool made = make(in("a/b/c"), true, NSDictionary{{NSFilePosixPermissions, 0}});
        const bool closed = kit::modeOf(in("a")) == 0;
        folder.setMode("a", 0700);
        folder.setMode("a/b", 0700);
        return made && closed && kit::modeOf(in("a/b/c")) == 0;
    });
    EXPECT_TRUE(NSFileManager::defaultManager().removeItemAtPath_error(in("a")));
}

TEST_F(FolderCreation, aFolderThatMayNotBeWrittenIsAFailure) {
    folder.makeFolder("d");
    folder.setMode("d", 0555);
    kit::expectAsUser([this] {
        NSString reason;
        const bool refused = !make(in("d/x/y"), true, nullptr, &reason) && !make(in("d/x"), false);
        return refused && reason.utf8() == in("d/x/y") + ": Permission denied" && make(in("d"), true);
    });
}

TEST_F(FolderCreation, pathsMayBeLongerThanTheSystemTakes) {
    std::string deep = folder.path();
    for (int level = 0; level < 2500; ++level) {
        deep += "/n";
    }
    EXPECT_TRUE(make(deep, true, NSDictionary{{NSFilePosixPermissions, 0711}}));
    bool isThere = false;
    EXPECT_TRUE(NSFileManager::defaultManager().fileExistsAtPath_isDirectory(deep, &isThere));
    EXPECT_TRUE(isThere);
    EXPECT_EQ(kit::modeOf(in("n/n/n")), 0711u);
    EXPECT_TRUE(make(deep, true));
    EXPECT_FALSE(make(deep, false));
    EXPECT_TRUE(make(deep + "/one", false));
    EXPECT_TRUE(NSFileManager::defaultManager().removeItemAtPath_error(in("n")));
}

TEST_F(FolderCreation, namesOfAnyBytesAreMade) {
    EXPECT_TRUE(make(in("\xFF/\xC3\x28"), true));
    EXPECT_TRUE(isFolder(in("\xFF/\xC3\x28")));
}

TEST_F(FolderCreation, keepsTheErrorNumberAndEveryDescriptor) {
    kit::expectNoTrace([this] {
        make(in("a/b"), true, NSDictionary{{NSFilePosixPermissions, 0700}});
        make(in("f/b"), true);
    });
}

} // namespace
