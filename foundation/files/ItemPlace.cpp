// SPDX-License-Identifier: MIT
// Looks at items by their names in open folders.
// The name stays a name: the item it refers to may change at any time, the folder cannot.
#include "foundation/files/ItemPlace.h"

#include "foundation/files/PathHandle.h"
#include "foundation/system/FileSystem.h"
#include "foundation/system/OpenFolders.h"

namespace ZQFoundation::detail {

SharedFolder openSharedFolder(const std::string& path) {
    PathHandle handle;
    if (!handle.reach(path)) {
        return nullptr;
    }
    Descriptor folder(openAt(handle.folder(), handle.name(), system::openForSearch));
    return folder ? std::make_shared<const Descriptor>(std::move(folder)) : nullptr;
}

bool ItemPlace::set(SharedFolder folder, const std::string& path) {
    const std::string bare = withoutEndSlashes(path);
    folder_ = std::move(folder);
    name_ = bare.empty() ? "." : bare.substr(bare.rfind('/') + 1); // the root folder has no name
    mustBeFolder_ = bare.size() != path.size();
    return true;
}

bool ItemPlace::open(const std::string& path) {
    const std::size_t slash = withoutEndSlashes(path).rfind('/');
    const bool isRoot = path.find_first_not_of('/') == std::string::npos;
    const std::string folder = isRoot ? "/" : slash == std::string::npos ? "." : path.substr(0, slash + 1);
    return set(openSharedFolder(folder), path) && folder_ != nullptr;
}

bool ItemPlace::look(struct stat& information) const noexcept {
    if (::fstatat(folder(), name(), &information, AT_SYMLINK_NOFOLLOW) != 0) {
        return false;
    }
    // ENOTDIR is what the system would report for such a path.
    if (mustBeFolder_ && !S_ISDIR(information.st_mode)) {
        errno = ENOTDIR;
        return false;
    }
    return true;
}

bool ItemPlace::exists(bool& isDirectory) const noexcept {
    struct stat information;
    // Links followed, unlike `look`.
    if (::fstatat(folder(), name(), &information, 0) != 0 ||
        (mustBeFolder_ && !S_ISDIR(information.st_mode))) {
        return false;
    }
    isDirectory = S_ISDIR(information.st_mode);
    return true;
}

bool ItemPlace::holds(const struct stat& item) const noexcept {
    // Another item may have been given the name.
    struct stat present;
    return ::fstatat(folder(), name(), &present, AT_SYMLINK_NOFOLLOW) == 0 && isSameItem(present, item);
}

} // namespace ZQFoundation::detail
