// SPDX-License-Identifier: MIT
#include "tools/zqmigrate/TrialFiles.h"

#include <algorithm>
#include <cerrno>

#include "foundation/files/FileInformation.h"
#include "foundation/files/ItemIdentity.h"
#include "foundation/files/NSFileManager.h"
#include "foundation/files/PathHandle.h"
#include "foundation/system/OpenFolders.h"

namespace ZQFoundation::zqmigrate {

namespace {

using Links = TrialTree::Links;

mode_t newFolderMode() {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return static_cast<mode_t>(S_IFDIR | (0777 & ~mask));
}

/// Whether the effective user may use the item in that way; false with `errno`.
bool mayUse(const std::string& path, int how) {
    detail::PathHandle handle;
    return handle.reach(path) && ::faccessat(handle.folder(), handle.name(), how, AT_EACCESS) == 0;
}

/// Whether names may be put into the folder and taken out of it.
bool mayChange(const TrialItem& folder) {
    constexpr mode_t needed = S_IWUSR | S_IXUSR;
    return folder.isImagined ? ::geteuid() == 0 || (folder.information.st_mode & needed) == needed
                             : mayUse(folder.path, W_OK | X_OK);
}

/// Whether the item may be taken out of a folder that may be changed.
bool mayBeTaken(const TrialItem& item, const struct stat& folder) {
    const uid_t user = ::geteuid();
    if ((folder.st_mode & S_ISVTX) != 0 && user != 0 && user != item.information.st_uid &&
        user != folder.st_uid) {
        return false;
    }
    if (item.isImagined || S_ISLNK(item.information.st_mode)) {
        return true;
    }
    // Something is mounted there.
    if (S_ISDIR(item.information.st_mode) && item.information.st_dev != folder.st_dev) {
        return false;
    }
    // This error is of items that even their owner may not change; permissions give another one.
    return mayUse(item.path, W_OK) || errno != EPERM;
}

/// Calls `isFine(item, the folder it is in)` for all that the folder holds, a folder before its contents,
/// until that is false.
template <class IsFine>
bool allBelow(const TrialItem& folder, const IsFine& isFine) {
    const NSString start = NSString::stringWithFileSystemBytes(folder.path.data(), folder.path.size());
    NSDirectoryEnumerator items = NSFileManager::defaultManager().enumeratorAtPath(start);
    TrialItem parent = folder;
    while (const NSString path = items.nextObject()) {
        TrialItem item;
        std::string bytes;
        path.getFileSystemBytes(bytes);
        item.path = std::string(folder.path).append("/").append(bytes);
        const std::string above = item.path.substr(0, item.path.rfind('/'));
        if (parent.path != above) {
            parent.path = above;
            detail::getItemInformation(NSString::stringWithFileSystemBytes(above.data(), above.size()),
                                       parent.information);
        }
        if (!detail::getItemInformation(start.stringByAppendingPathComponent(path), item.information) ||
            !isFine(item, parent)) {
            return false;
        }
    }
    return true;
}

bool isFolder(const TrialItem& item) noexcept { return S_ISDIR(item.information.st_mode); }

/// A folder that cannot be read may be empty, and could then be removed; that is not to be seen.
bool mayBeEmptied(const TrialItem& folder) {
    return mayUse(folder.path, R_OK) && allBelow(folder, [](const TrialItem& item, const TrialItem& parent) {
               return mayUse(parent.path, W_OK | X_OK) && mayBeTaken(item, parent.information) &&
                      (!isFolder(item) || mayUse(item.path, R_OK));
           });
}

/// Empty for the root.
std::string withoutEndSlashes(const std::string& path) {
    return path.substr(0, path.find_last_not_of('/') + 1);
}

bool isAmong(const std::vector<TrialItem>& folders, const TrialItem& item) {
    return std::any_of(folders.begin(), folders.end(), [&](const TrialItem& folder) {
        return detail::isSameItem(folder.information, item.information);
    });
}

} // namespace

bool TrialFiles::exists(const NSString& path, bool* isDirectory) const {
    std::string bytes;
    TrialPlace place;
    if (!detail::getPathBytes(path, bytes) || !tree_.find(bytes, Links::followed, place) || !place.item) {
        return false;
    }
    if (isDirectory != nullptr) {
        *isDirectory = isFolder(*place.item);
    }
    return true;
}

bool TrialFiles::isReadable(const NSString& path) const {
    std::string bytes;
    TrialPlace place;
    if (!detail::getPathBytes(path, bytes) || !tree_.find(bytes, Links::followed, place) || !place.item) {
        return false;
    }
    const std::string& real = place.item->path;
    // A copy can be read by who could read the original.
    return place.item->isImagined || NSFileManager::defaultManager().isReadableFileAtPath(
                                         NSString::stringWithFileSystemBytes(real.data(), real.size()));
}

bool TrialFiles::makeFolders(const NSString& path) {
    std::string bytes;
    if (!detail::getPathBytes(path, bytes)) {
        return false;
    }
    std::string name;
    for (std::size_t position = 0; detail::takeName(bytes, position, name);) {
        if (!makeFolder(bytes.substr(0, position))) {
            return false;
        }
    }
    return true;
}

/// Whether a folder stands there in the end.
bool TrialFiles::makeFolder(const std::string& path) {
    TrialPlace place;
    if (tree_.find(path, Links::followed, place) && place.item) {
        return isFolder(*place.item);
    }
    // A link that leads nowhere is in the way.
    if (!tree_.find(path, Links::notFollowed, place) || place.item || !mayChange(place.folders.back())) {
        return false;
    }
    tree_.imagine(place, newFolderMode());
    return true;
}

bool TrialFiles::standsInside(const NSString& destination, const NSString& source) const {
    std::string bytes;
    TrialPlace folder;
    if (!detail::getPathBytes(source, bytes) || !tree_.find(bytes, Links::notFollowed, folder) ||
        !folder.item || !isFolder(*folder.item)) {
        return false;
    }
    NSString front = destination.stringByDeletingLastPathComponent();
    TrialPlace place;
    while (detail::getPathBytes(front, bytes) && bytes != "/") {
        if (tree_.find(bytes, Links::followed, place) && place.item && isFolder(*place.item)) {
            return isAmong(place.folders, *folder.item) || isAmong({*place.item}, *folder.item);
        }
        front = front.stringByDeletingLastPathComponent();
    }
    tree_.find(front.isEqualToString("/") ? "/" : ".", Links::followed, place);
    return isAmong(place.folders, *folder.item);
}

bool TrialFiles::removalWouldHarm(const NSString& destination, const NSString& source) const {
    std::string bytes;
    TrialPlace place;
    if (!detail::getPathBytes(destination, bytes) || !tree_.find(bytes, Links::notFollowed, place) ||
        !place.item || place.item->isImagined) {
        return false;
    }
    const std::string& real = place.item->path;
    return detail::removalWouldHarm(NSString::stringWithFileSystemBytes(real.data(), real.size()), source);
}

bool TrialFiles::removeItem(const NSString& path) {
    std::string bytes;
    TrialPlace place;
    if (!detail::getPathBytes(path, bytes)) {
        return false;
    }
    const std::string bare = withoutEndSlashes(bytes);
    if (bare.empty() || !tree_.find(bare, Links::notFollowed, place) || !place.item || place.name.empty()) {
        return false;
    }
    const bool mustBeFolder = bare.size() != bytes.size();
    const TrialItem& item = *place.item;
    if ((mustBeFolder && !isFolder(item)) || !mayChange(place.folders.back()) ||
        !mayBeTaken(item, place.folders.back().information) ||
        (isFolder(item) && !item.isImagined && !mayBeEmptied(item))) {
        return false;
    }
    tree_.forget(place);
    return true;
}

/// Whether the item, without what is below it, can be read and made anew.
bool TrialFiles::mayCopy(const TrialItem& item) {
    if (item.isImagined) {
        return true;
    }
    switch (item.information.st_mode & S_IFMT) {
    case S_IFREG:
        bytesToCopy_ += static_cast<std::uint64_t>(item.information.st_blocks) * 512;
        return mayUse(item.path, R_OK);
    case S_IFDIR: // one that may not be searched can be empty; what it holds is looked at by itself
        return mayUse(item.path, R_OK);
    case S_IFCHR:
    case S_IFBLK:
        return ::geteuid() == 0;
    default:
        return true;
    }
}

bool TrialFiles::mayCopyWhole(const TrialItem& item, const TrialPlace& target) {
    if (!mayCopy(item)) {
        return false;
    }
    if (!isFolder(item) || item.isImagined) {
        return true;
    }
    return !isAmong(target.folders, item) &&
           allBelow(item, [this](const TrialItem& each, const TrialItem&) { return mayCopy(each); });
}

bool TrialFiles::copyItem(const NSString& source, const NSString& destination) {
    std::string from;
    std::string to;
    if (!detail::getPathBytes(source, from) || !detail::getPathBytes(destination, to)) {
        return false;
    }
    const std::string bareFrom = withoutEndSlashes(from);
    const std::string bareTo = withoutEndSlashes(to);
    TrialPlace place;
    TrialPlace target;
    if (!tree_.find(bareFrom.empty() ? "/" : bareFrom, Links::notFollowed, place) || !place.item ||
        !tree_.find(bareTo.empty() ? "/" : bareTo, Links::notFollowed, target) || target.item) {
        return false;
    }
    const TrialItem& item = *place.item;
    if ((bareFrom.size() != from.size() && !isFolder(item)) || !mayChange(target.folders.back()) ||
        !mayCopyWhole(item, target)) {
        return false;
    }
    tree_.imagine(target, item.information.st_mode, TrialTree::textOfLink(item));
    return true;
}

} // namespace ZQFoundation::zqmigrate
