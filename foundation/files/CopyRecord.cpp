// SPDX-License-Identifier: MIT
// Records the items that a copy has read, so that a later removal can check them.
// A mark is a keyed hash instead of the facts themselves, so that a record of a million items takes 16
// megabytes.
#include "foundation/files/CopyRecord.h"

#include <algorithm>
#include <cstring>

#include "foundation/files/FileTimes.h"
#include "foundation/objects/Hashing.h"
#include "foundation/system/FileSystem.h"
#include "foundation/system/OpenFolders.h"

namespace ZQFoundation::detail {

namespace {

bool isSameTime(const timespec& left, const timespec& right) noexcept {
    return left.tv_sec == right.tv_sec && left.tv_nsec == right.tv_nsec;
}

// The order of values matters, so that swapped facts do not cancel out.
std::uint64_t added(std::uint64_t hash, std::uint64_t value) noexcept {
    return mixed(hash ^ value, 0x9E3779B97F4A7C15U);
}

std::uint64_t added(std::uint64_t hash, const timespec& time) noexcept {
    return added(added(hash, static_cast<std::uint64_t>(time.tv_sec)),
                 static_cast<std::uint64_t>(time.tv_nsec));
}

/// The lowest bit of `change`, which is not part of the hash.
constexpr std::uint64_t severalNames = 1;

} // namespace

// Access times are not compared: reading the item, as a copy does, changes them.
bool isUnchanged(const struct stat& before, const struct stat& now, bool alsoChange) noexcept {
    return isSameItem(before, now) && (before.st_mode & S_IFMT) == (now.st_mode & S_IFMT) &&
           before.st_size == now.st_size && isSameTime(modificationTime(before), modificationTime(now)) &&
           (!alsoChange || (before.st_mode == now.st_mode && before.st_uid == now.st_uid &&
                            before.st_gid == now.st_gid && isSameTime(changeTime(before), changeTime(now))));
}

CopyRecord::CopyRecord() : key_(system::freshRandomNumber()) {}

CopyRecord::Mark CopyRecord::markOf(const struct stat& folder, const char* name,
                                    const struct stat& item) const noexcept {
    std::uint64_t seen = 0;
    // The folder and the name are part of the mark, so an item that was moved within the tree is a different
    // one.
    std::uint64_t hash = hashBytes(name, std::strlen(name), key_, seen);
    for (const std::uint64_t value :
         {static_cast<std::uint64_t>(folder.st_dev), static_cast<std::uint64_t>(folder.st_ino),
          static_cast<std::uint64_t>(item.st_dev), static_cast<std::uint64_t>(item.st_ino),
          static_cast<std::uint64_t>(item.st_mode & S_IFMT), static_cast<std::uint64_t>(item.st_size)}) {
        hash = added(hash, value);
    }
    hash = added(hash, modificationTime(item));
    // Kept apart, because it is not compared for items that may have lost another name.
    std::uint64_t change = added(added(added(key_, item.st_mode), item.st_uid), item.st_gid);
    change = added(change, changeTime(item));
    // Removing one of several names changes the item under the others.
    change = item.st_nlink > 1 && !S_ISDIR(item.st_mode) ? change | severalNames : change & ~severalNames;
    return {hash, change};
}

void CopyRecord::add(const struct stat& folder, const char* name, const struct stat& item) {
    marks_.push_back(markOf(folder, name, item));
}

// Sorted once, so that each query is a search; the record cannot be added to afterwards.
void CopyRecord::complete() {
    std::sort(marks_.begin(), marks_.end(),
              [](const Mark& left, const Mark& right) { return left.identity < right.identity; });
}

bool CopyRecord::holds(const struct stat& folder, const char* name, const struct stat& item) const {
    const Mark mark = markOf(folder, name, item);
    const auto found =
        std::lower_bound(marks_.begin(), marks_.end(), mark.identity,
                         [](const Mark& each, std::uint64_t identity) { return each.identity < identity; });
    if (found == marks_.end() || found->identity != mark.identity) {
        return false;
    }
    return found->change == mark.change || (mayHaveLostNames_ && (found->change & severalNames) != 0);
}

} // namespace ZQFoundation::detail
