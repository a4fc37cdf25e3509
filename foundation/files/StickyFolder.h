// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_FILES_STICKYFOLDER_H
#define ZQFOUNDATION_FILES_STICKYFOLDER_H

#include <sys/stat.h>
#include <unistd.h>

/// The rule for folders in which everybody may make items and nobody may remove those of others, such as
/// /tmp: an item there with an expected name may have been planted. Some systems enforce such a rule
/// themselves, but not all do, and not always by default.
namespace ZQFoundation::detail {

inline bool isSharedFolder(const struct stat& folder) noexcept {
    return (folder.st_mode & S_ISVTX) != 0 && (folder.st_mode & S_IWOTH) != 0;
}

/// Whether the item belongs to the effective user or to the owner of the folder that contains it.
inline bool isOwnedByTrusted(const struct stat& item, const struct stat& folder) noexcept {
    return item.st_uid == ::geteuid() || item.st_uid == folder.st_uid;
}

/// Whether a link in the folder may be followed.
inline bool mayFollowLink(const struct stat& link, const struct stat& folder) noexcept {
    return !isSharedFolder(folder) || isOwnedByTrusted(link, folder);
}

/// Whether an item in the folder may be written to. An item with a second name could be a file of somebody
/// else in another folder.
inline bool mayWriteItem(const struct stat& item, const struct stat& folder) noexcept {
    return !isSharedFolder(folder) ||
           (isOwnedByTrusted(item, folder) && (S_ISDIR(item.st_mode) || item.st_nlink <= 1));
}

} // namespace ZQFoundation::detail

#endif
