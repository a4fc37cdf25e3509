// SPDX-License-Identifier: MIT
// The attributes of items: numbers, accounts and dates.
#include <string>

#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/files/FileInformation.h"
#include "foundation/files/NSFileManager.h"
#include "foundation/objects/NSDate.h"
#include "foundation/objects/NSNumber.h"
#include "tests/files/FileScene.h"
#include "tests/kit/Items.h"
#include "tests/kit/Values.h"

using namespace ZQFoundation;
using kit::utf8Of;

namespace {

NSDictionary attributesOf(const std::string& path) {
    return NSFileManager::defaultManager().attributesOfItemAtPath_error(kit::fromBytes(path));
}

std::string typeOf(const std::string& path) {
    return utf8Of(NSString(attributesOf(path).objectForKey(NSFileType)));
}

std::int64_t numberOf(const std::string& path, const char* key) {
    return NSNumber(attributesOf(path).objectForKey(key)).integerValue();
}

class FileAttributes : public scene::FolderTest {};

TEST_F(FileAttributes, haveTheTypeOfTheItemItself) {
    folder.write("f", "");
    folder.makeFolder("d");
    folder.link("f", "l");
    folder.link("no such", "dangling");
    folder.makePipe("pipe");
    kit::makeSocket(in("s"));
    EXPECT_EQ(typeOf(in("f")), NSFileTypeRegular);
    EXPECT_EQ(typeOf(in("d")), NSFileTypeDirectory);
    EXPECT_EQ(typeOf(in("l")), NSFileTypeSymbolicLink);
    EXPECT_EQ(typeOf(in("dangling")), NSFileTypeSymbolicLink);
    EXPECT_EQ(typeOf(in("pipe")), NSFileTypeUnknown);
    EXPECT_EQ(typeOf(in("s")), NSFileTypeSocket);
    EXPECT_EQ(typeOf("/dev/null"), NSFileTypeCharacterSpecial);
}

TEST_F(FileAttributes, areTheSystemsOwnNumbers) {
    folder.write("f", std::string(12345, 'x'));
    folder.setMode("f", 06751);
    ASSERT_EQ(::link(in("f").c_str(), in("second").c_str()), 0);
    struct stat information;
    ASSERT_EQ(::stat(in("f").c_str(), &information), 0);
    const std::string path = in("f");
    EXPECT_EQ(numberOf(path, NSFileSize), 12345);
    EXPECT_EQ(numberOf(path, NSFilePosixPermissions), 06751);
    EXPECT_EQ(numberOf(path, NSFileReferenceCount), 2);
    EXPECT_EQ(numberOf(path, NSFileOwnerAccountID), static_cast<std::int64_t>(::geteuid()));
    EXPECT_EQ(numberOf(path, NSFileGroupOwnerAccountID), static_cast<std::int64_t>(information.st_gid));
    EXPECT_EQ(numberOf(path, NSFileSystemNumber), static_cast<std::int64_t>(information.st_dev));
    EXPECT_EQ(numberOf(path, NSFileSystemFileNumber), static_cast<std::int64_t>(information.st_ino));
    folder.makeFolder("d");
    folder.setMode("d", 01750);
    EXPECT_EQ(numberOf(in("d"), NSFilePosixPermissions), 01750);
    folder.link("1234", "l");
    EXPECT_EQ(numberOf(in("l"), NSFileSize), 4) << "the length of its target's name";
}

TEST_F(FileAttributes, nameTheAccounts) {
    folder.write("f", "");
    struct stat information;
    ASSERT_EQ(::stat(in("f").c_str(), &information), 0);
    const passwd* const user = ::getpwuid(information.st_uid);
    const group* const groupRecord = ::getgrgid(information.st_gid);
    const std::string userName = user != nullptr ? user->pw_name : "(nil)";
    const std::string groupName = groupRecord != nullptr ? groupRecord->gr_name : "(nil)";
    for (int time = 0; time < 2; ++time) {
        const NSDictionary attributes = attributesOf(in("f"));
        EXPECT_EQ(utf8Of(NSString(attributes.objectForKey(NSFileOwnerAccountName))), userName);
        EXPECT_EQ(utf8Of(NSString(attributes.objectForKey(NSFileGroupOwnerAccountName))), groupName);
    }
}

TEST_F(FileAttributes, anUnknownAccountHasNoName) {
    if (!kit::isRoot()) {
        GTEST_SKIP() << "only root can give files to another user";
    }
    folder.write("f", "");
    ASSERT_EQ(::chown(in("f").c_str(), 54321, 54322), 0);
    const NSDictionary attributes = attributesOf(in("f"));
    EXPECT_FALSE(attributes.objectForKey(NSFileOwnerAccountName));
    EXPECT_FALSE(attributes.objectForKey(NSFileGroupOwnerAccountName));
    EXPECT_EQ(NSNumber(attributes.objectForKey(NSFileOwnerAccountID)).integerValue(), 54321);
    EXPECT_EQ(utf8Of(NSString(attributesOf("/").objectForKey(NSFileOwnerAccountName))), "root");
}

TEST_F(FileAttributes, datesKeepWhatADoubleHolds) {
    folder.write("f", "");
    const struct {
        timespec time;
        double instant;
    } rows[] = {
        {{978307200, 0}, 0},
        {{978307200, 250'000'000}, 0.25},
        {{978307201, 1}, 1.000000001},
        {{978307199, 999'999'999}, -1e-9},
        {{0, 500'000'000}, -978307199.5},
        {{1'709'647'629, 42'000'001}, 731340429.042000001},
    };
    for (const auto& row : rows) {
        const timespec times[2] = {row.time, row.time};
        ASSERT_EQ(::utimensat(AT_FDCWD, in("f").c_str(), times, 0), 0);
        const NSDate date(attributesOf(in("f")).objectForKey(NSFileModificationDate));
        ASSERT_TRUE(date);
        EXPECT_NEAR(date.timeIntervalSinceReferenceDate(), row.instant,
                    1e-15 + 1e-16 * std::abs(row.instant));
    }
}

TEST_F(FileAttributes, holdWhenTheItemWasMade) {
    const NSDate before = NSDate::date();
    folder.write("f", "");
    const timespec old[2] = {{1, 0}, {1, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, in("f").c_str(), old, 0), 0);
    const NSDate made(attributesOf(in("f")).objectForKey(NSFileCreationDate));
    ASSERT_TRUE(made) << "this file system keeps no such date";
    EXPECT_NEAR(made.timeIntervalSinceDate(before), 0, 30);
}

TEST_F(FileAttributes, areNilWithAReasonWhenThereIsNothing) {
    NSString reason("before");
    folder.write("f", "");
    NSFileManager& files = NSFileManager::defaultManager();
    EXPECT_TRUE(files.attributesOfItemAtPath_error(in("f"), &reason));
    EXPECT_FALSE(reason) << "nil on success";
    EXPECT_FALSE(files.attributesOfItemAtPath_error(in("no such"), &reason));
    EXPECT_EQ(utf8Of(reason), in("no such") + ": No such file or directory");
    EXPECT_FALSE(files.attributesOfItemAtPath_error(in("f/"), &reason));
    EXPECT_EQ(utf8Of(reason), in("f/") + ": Not a directory");
    EXPECT_FALSE(files.attributesOfItemAtPath_error("", &reason));
    EXPECT_EQ(utf8Of(reason), ": No such file or directory");
    folder.link("loop", "loop");
    for (const std::string& name : {in("f/x"), in("loop/x")}) {
        EXPECT_FALSE(files.attributesOfItemAtPath_error(name, &reason)) << name;
    }
    EXPECT_FALSE(files.attributesOfItemAtPath_error(nullptr, &reason));
    EXPECT_TRUE(reason);
    const std::u16string zero(u"/\0", 2);
    EXPECT_FALSE(files.attributesOfItemAtPath_error(zero, &reason));
    EXPECT_FALSE(files.attributesOfItemAtPath_error(in("no such")));
}

TEST_F(FileAttributes, pathsMayBeLongerThanTheSystemTakes) {
    const std::string name(200, 'n');
    const std::string deep = kit::makeChain(folder.path(), name, 50);
    EXPECT_EQ(typeOf(deep), NSFileTypeDirectory);
    EXPECT_TRUE(attributesOf(deep).objectForKey(NSFileModificationDate));
}

} // namespace
