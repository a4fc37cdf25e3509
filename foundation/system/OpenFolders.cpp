// SPDX-License-Identifier: MIT
// Keeps the open folders of a walk.
#include "foundation/system/OpenFolders.h"

#include "foundation/system/FileSystem.h"

namespace ZQFoundation::detail {

namespace {

constexpr std::size_t maxOpenFolders = 8;

/// As deep as a tree may reasonably be: a file system whose ".." form a circle must not keep us forever.
constexpr int maxLevelsUp = 1 << 20;

} // namespace

bool isAtOrAbove(const struct stat& folder, int place) noexcept {
    Descriptor opened;
    struct stat below {};
    for (int level = 0; level < maxLevelsUp; ++level) {
        struct stat information;
        const int current = opened ? opened.number() : place;
        if (::fstat(current, &information) != 0) {
            return false;
        }
        if (isSameItem(information, folder)) {
            return true;
        }
        if (level > 0 && isSameItem(information, below)) {
            return false; // the root is its own parent
        }
        below = information;
        opened = Descriptor(openAt(current, "..", system::openForSearch));
        if (!opened) {
            return false;
        }
    }
    return false;
}

bool OpenFolders::push(Descriptor folder) {
    struct stat information;
    if (::fstat(folder.number(), &information) != 0) {
        return false;
    }
    if (levels_.size() - firstOpen_ >= maxOpenFolders) {
        closeOne();
    }
    levels_.push_back({static_cast<Descriptor&&>(folder), information.st_dev, information.st_ino});
    return true;
}

bool OpenFolders::reopenParent() noexcept {
    if (levels_.size() < 2 || levels_[levels_.size() - 2].folder) {
        return true;
    }
    Descriptor parent(openAt(current(), "..", folderFlags));
    return parent && restore(levels_.size() - 2, static_cast<Descriptor&&>(parent));
}

bool OpenFolders::restore(std::size_t level, Descriptor folder) noexcept {
    struct stat information;
    if (::fstat(folder.number(), &information) != 0) {
        return false;
    }
    Level& place = levels_[level];
    if (information.st_dev != place.device || information.st_ino != place.inode) {
        errno = ESTALE;
        return false;
    }
    place.folder = static_cast<Descriptor&&>(folder);
    firstOpen_ = level < firstOpen_ ? level : firstOpen_;
    return true;
}

void OpenFolders::pop() noexcept {
    levels_.pop_back();
    firstOpen_ = firstOpen_ < levels_.size() ? firstOpen_ : levels_.size();
}

bool OpenFolders::closeOne() noexcept {
    if (firstOpen_ + 1 >= levels_.size()) {
        return false;
    }
    levels_[firstOpen_++].folder.reset();
    return true;
}

} // namespace ZQFoundation::detail
