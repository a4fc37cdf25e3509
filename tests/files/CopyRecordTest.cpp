// SPDX-License-Identifier: MIT
// Marks of the items that a copy has read.
#include "foundation/files/CopyRecord.h"

#include <functional>
#include <string>

#include <gtest/gtest.h>

using namespace ZQFoundation::detail;

namespace {

using Information = struct stat;

Information itemOf(ino_t inode) {
    Information item{};
    item.st_dev = 7;
    item.st_ino = inode;
    item.st_mode = S_IFREG | 0644;
    item.st_uid = 1;
    item.st_gid = 2;
    item.st_size = 1000;
    item.st_mtim = {100, 200};
    item.st_ctim = {300, 400};
    return item;
}

/// What may differ, and whether that already shows in what an item is, or only in its last change.
const struct {
    const char* what;
    std::function<void(Information&)> change;
    bool isOtherItem;
} differences[] = {
    {"device", [](Information& item) { item.st_dev = 8; }, true},
    {"inode", [](Information& item) { item.st_ino += 1; }, true},
    {"kind", [](Information& item) { item.st_mode = S_IFLNK | 0644; }, true},
    {"size", [](Information& item) { item.st_size = 1001; }, true},
    {"seconds", [](Information& item) { item.st_mtim.tv_sec = 101; }, true},
    {"nanoseconds", [](Information& item) { item.st_mtim.tv_nsec = 201; }, true},
    {"permissions", [](Information& item) { item.st_mode = S_IFREG | 0600; }, false},
    {"owner", [](Information& item) { item.st_uid = 5; }, false},
    {"group", [](Information& item) { item.st_gid = 5; }, false},
    {"seconds of the change", [](Information& item) { item.st_ctim.tv_sec = 301; }, false},
    {"nanoseconds of the change", [](Information& item) { item.st_ctim.tv_nsec = 401; }, false},
};

} // namespace

TEST(CopyRecord, comparesWhatAnItemIsAndItsLastChange) {
    const Information item = itemOf(1);
    EXPECT_TRUE(isUnchanged(item, item, true));
    Information read = item;
    read.st_atim = {999, 9};
    read.st_nlink = 2;
    EXPECT_TRUE(isUnchanged(item, read, true)) << "reading it, or a second name for it, changes nothing";
    for (const auto& difference : differences) {
        Information changed = item;
        difference.change(changed);
        EXPECT_FALSE(isUnchanged(item, changed, true)) << difference.what;
        EXPECT_EQ(isUnchanged(item, changed, false), !difference.isOtherItem) << difference.what;
    }
}

TEST(CopyRecord, findsItemsByTheirFolderNameAndState) {
    CopyRecord record;
    const Information folder = itemOf(1);
    for (ino_t inode = 10; inode < 1010; ++inode) {
        record.add(folder, ("file " + std::to_string(inode)).c_str(), itemOf(inode));
    }
    record.complete();
    EXPECT_EQ(record.count(), 1000U);
    for (ino_t inode = 10; inode < 1010; ++inode) {
        EXPECT_TRUE(record.holds(folder, ("file " + std::to_string(inode)).c_str(), itemOf(inode)));
    }
    EXPECT_FALSE(record.holds(folder, "file 9", itemOf(10)));
    EXPECT_FALSE(record.holds(folder, "file 10 ", itemOf(10)));
    EXPECT_FALSE(record.holds(folder, "", itemOf(10)));
    EXPECT_FALSE(record.holds(itemOf(2), "file 10", itemOf(10))) << "it is in another folder now";
    for (const auto& difference : differences) {
        Information changed = itemOf(10);
        difference.change(changed);
        EXPECT_FALSE(record.holds(folder, "file 10", changed)) << difference.what;
    }
}

TEST(CopyRecord, distinguishesWhatDiffersInOneBit) {
    CopyRecord record;
    const Information folder = itemOf(1);
    record.add(folder, "a", itemOf(10));
    record.complete();
    for (int bit = 0; bit < 63; ++bit) {
        Information other = itemOf(10);
        other.st_size ^= off_t{1} << bit;
        EXPECT_FALSE(record.holds(folder, "a", other)) << bit;
        other = itemOf(10);
        other.st_ino ^= ino_t{1} << bit;
        EXPECT_FALSE(record.holds(folder, "a", other)) << bit;
    }
}

TEST(CopyRecord, ofNothingIsEmpty) {
    CopyRecord record;
    record.complete();
    EXPECT_EQ(record.count(), 0U);
    EXPECT_FALSE(record.holds(itemOf(1), "a", itemOf(2)));
}

TEST(CopyRecord, allowsItemsToLoseNamesWhileTheyAreRemoved) {
    CopyRecord record;
    const Information folder = itemOf(1);
    Information several = itemOf(10);
    several.st_nlink = 2;
    Information single = itemOf(11);
    single.st_nlink = 1;
    record.add(folder, "several", several);
    record.add(folder, "single", single);
    record.complete();
    several.st_nlink = 1;
    several.st_ctim = {999, 0};
    single.st_ctim = {999, 0};
    EXPECT_FALSE(record.holds(folder, "several", several));
    record.beginRemoval();
    EXPECT_TRUE(record.holds(folder, "several", several));
    EXPECT_FALSE(record.holds(folder, "single", single));
    several.st_size = 1001;
    EXPECT_FALSE(record.holds(folder, "several", several));
}
