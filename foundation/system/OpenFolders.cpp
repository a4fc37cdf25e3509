// SPDX-License-Identifier: MIT
// Keeps the open folders of a walk.
// A walk must work at any depth with few descriptors: a host's limit may be 256, and other threads need
// some.
#include "foundation/system/OpenFolders.h"

#include "foundation/system/FileSystem.h"

namespace ZQFoundation::detail {

namespace {

// Open at once in one walk. A copy has two walks, one of them into the destination, and a wide margin
// remains below the usual limit of 256 descriptors. Trees that are deeper reopen ".." on the way up, one
// call for each folder.
constexpr std::size_t maxOpenFolders = 8;

/// As deep as a tree may reasonably be: a file system whose ".." form a circle must not keep us forever.
constexpr int maxLevelsUp = 1 << 20;

} // namespace

// Goes up by "..", whose identity nobody can forge, not by names: a path may contain links, and folders of
// the way may have been moved.
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

// The identity is recorded even though the descriptor is open: once closed, it is the only way to recognize
// the folder that ".." finds.
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

/// The folder below may have been moved elsewhere while its parent was closed. Then ".." is another folder,
/// in which nothing may be removed or written.
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

// Levels above the new end are closed, so the mark must not stay beyond it.
void OpenFolders::pop() noexcept {
    levels_.pop_back();
    firstOpen_ = firstOpen_ < levels_.size() ? firstOpen_ : levels_.size();
}

/// Never the last level: the walk reads it. The levels nearest to the start are needed last.
bool OpenFolders::closeOne() noexcept {
    // Only the current folder is left open.
    if (firstOpen_ + 1 >= levels_.size()) {
        return false;
    }
    levels_[firstOpen_++].folder.reset();
    return true;
}

} // namespace ZQFoundation::detail
