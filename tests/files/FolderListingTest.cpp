// SPDX-License-Identifier: MIT
// The names in a folder, and nil for what cannot be listed.
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/files/NSFileManager.h"
#include "foundation/objects/NSArray.h"
#include "tests/files/FileScene.h"
#include "tests/kit/Child.h"
#include "tests/kit/Items.h"
#include "tests/kit/Values.h"

using namespace ZQFoundation;

namespace {

/// In the order of the listing.
std::vector<std::string> listed(const NSArray& listing) {
    std::vector<std::string> names;
    for (const NSObject& name : listing) {
        names.push_back(kit::bytesOf(name.as<NSString>()));
    }
    return names;
}

std::vector<std::string> namesOf(const NSArray& listing) {
    std::vector<std::string> names = listed(listing);
    std::sort(names.begin(), names.end());
    return names;
}

NSArray list(const std::string& path, NSString* reason = nullptr) {
    return NSFileManager::defaultManager().contentsOfDirectoryAtPath_error(kit::fromBytes(path), reason);
}

class FolderListing : public scene::FolderTest {};

TEST_F(FolderListing, holdsEveryNameButDotAndDoubleDot) {
    folder.makeFolder("d/inner");
    for (const char* const name : {"d/f", "d/.hidden", "d/..x", "d/...", "d/\xFF\xC3\x28", "d/\u00E9"}) {
        folder.write(name, "");
    }
    folder.link("no such", "d/dangling");
    const std::vector<std::string> expected{"...", "..x",   ".hidden", "dangling",
                                            "f",   "inner", "\u00E9",  "\xFF\xC3\x28"};
    EXPECT_EQ(namesOf(list(in("d"))), expected);
    EXPECT_EQ(namesOf(list(in("d/"))), expected);
}

TEST_F(FolderListing, keepsTheOrderOfTheSystem) {
    std::vector<std::string> expected;
    for (int number = 0; number < 100; ++number) {
        folder.write(std::to_string(number * 7919 % 100), "");
    }
    DIR* const names = ::opendir(folder.path().c_str());
    while (const dirent* const entry = ::readdir(names)) {
        if (entry->d_name[0] != '.') {
            expected.emplace_back(entry->d_name);
        }
    }
    ::closedir(names);
    EXPECT_EQ(listed(list(folder.path())), expected);
}

TEST_F(FolderListing, isEmptyNotNilForAnEmptyFolder) {
    folder.makeFolder("d");
    const NSArray listing = list(in("d"));
    ASSERT_TRUE(listing);
    EXPECT_EQ(listing.count(), 0u);
}

TEST_F(FolderListing, followsALinkToAFolder) {
    folder.makeFolder("d");
    folder.write("d/f", "");
    folder.link("d", "l");
    EXPECT_EQ(namesOf(list(in("l"))), std::vector<std::string>{"f"});
}

TEST_F(FolderListing, isNilForWhatIsNoFolderOrMissing) {
    folder.write("f", "");
    folder.makeFolder("d");
    NSString reason("before");
    EXPECT_TRUE(list(in("d"), &reason));
    EXPECT_FALSE(reason);
    EXPECT_FALSE(list(in("f"), &reason));
    EXPECT_EQ(kit::utf8Of(reason), in("f") + ": Not a directory");
    EXPECT_FALSE(list(in("no such"), &reason));
    EXPECT_EQ(kit::utf8Of(reason), in("no such") + ": No such file or directory");
    EXPECT_FALSE(list("", &reason));
    EXPECT_FALSE(NSFileManager::defaultManager().contentsOfDirectoryAtPath_error(nullptr));
}

TEST_F(FolderListing, isNilForAnUnreadableFolder) {
    folder.makeFolder("d");
    folder.setMode("d", 0311);
    kit::expectAsUser([this] { return list(in("d")) ? 1 : 0; });
    folder.setMode("d", 0755);
}

TEST_F(FolderListing, doesNotWaitForAPipe) {
    folder.makePipe("pipe");
    EXPECT_FALSE(list(in("pipe")));
}

TEST_F(FolderListing, holdsTwoHundredThousandNames) {
    const kit::ScratchInMemory memory;
    const kit::ScratchFolder inMemory;
    const std::string& big = inMemory.path();
    const int at = ::open(big.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    constexpr int count = 200'000;
    const auto makeFile = [at](const char* name) {
        return ::close(::openat(at, name, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    };
    ASSERT_EQ(makeFile("first"), 0);
    for (int number = 0; number < count; ++number) {
        // Names of one file are made faster than files; a file takes 65,000 of them at most.
        const std::string name = std::to_string(number);
        if (number % 50'000 == 0) {
            ASSERT_EQ(makeFile(name.c_str()), 0);
        } else {
            const std::string first = std::to_string(number - number % 50'000);
            ASSERT_EQ(::linkat(at, first.c_str(), at, name.c_str(), 0), 0) << std::strerror(errno);
        }
    }
    ::close(at);
    const NSArray listing = list(big);
    ASSERT_EQ(listing.count(), static_cast<std::size_t>(count) + 1);
    std::vector<bool> seen(count);
    for (const NSObject& name : listing) {
        if (!name.as<NSString>().isEqualToString("first")) {
            seen.at(static_cast<std::size_t>(name.as<NSString>().intValue())) = true;
        }
    }
    EXPECT_EQ(std::count(seen.begin(), seen.end(), true), count);
    EXPECT_TRUE(NSFileManager::defaultManager().removeItemAtPath_error(big));
    EXPECT_FALSE(kit::exists(big));
}

TEST_F(FolderListing, pathsMayBeLongerThanTheSystemTakes) {
    const std::string name(200, 'n');
    const std::string deep = kit::makeChain(folder.path(), name, 50);
    EXPECT_EQ(namesOf(list(deep.substr(0, deep.rfind('/')))), std::vector<std::string>{name});
}

TEST_F(FolderListing, keepsTheErrorNumberAndEveryDescriptor) {
    kit::expectNoTrace([this] {
        list(folder.path());
        list(in("no such"));
    });
}

} // namespace
