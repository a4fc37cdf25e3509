// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_SYSTEM_OPENFOLDERS_H
#define ZQFOUNDATION_SYSTEM_OPENFOLDERS_H

#include <vector>

#include "foundation/system/Descriptor.h"

namespace ZQFoundation::detail {

/// Opens a folder to read it. These flags neither follow a link nor wait.
inline constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

inline bool isSameItem(const struct stat& left, const struct stat& right) noexcept {
    return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

/// Whether the folder is the open folder `place` or one of those above it. False also if that cannot be
/// determined.
bool isAtOrAbove(const struct stat& folder, int place) noexcept;

/// The folders from the start of a walk down to the current one. However deep that is, only the last few are
/// open; those above are reopened by "..", which must be the same folder as before, because others may have
/// moved the one below meanwhile.
class OpenFolders {
public:
    /// Makes the folder the current one. False with `errno`.
    bool push(Descriptor folder);

    std::size_t depth() const noexcept { return levels_.size(); }

    /// The descriptor of the folder that the walk is in.
    int current() const noexcept { return levels_.back().folder.number(); }

    /// The descriptor of the folder above the current one, which must be open (`reopenParent`).
    int parent() const noexcept { return levels_[levels_.size() - 2].folder.number(); }

    /// Makes sure that the folder above the current one is open, if there is one. False with `errno`, ESTALE
    /// when it cannot be found again.
    bool reopenParent() noexcept;

    /// Makes the folder above the current one, open or not.
    void pop() noexcept;

    /// Closes the open folder nearest to the start; never the current one. False when there is none.
    bool closeOne() noexcept;

    /// Sets the descriptor of a level's folder. False with ESTALE for another folder's descriptor.
    bool restore(std::size_t level, Descriptor folder) noexcept;

private:
    struct Level {
        Descriptor folder; ///< none while closed
        dev_t device;
        ino_t inode;
    };

    std::vector<Level> levels_;
    std::size_t firstOpen_ = 0; ///< levels before it are closed
};

} // namespace ZQFoundation::detail

#endif
