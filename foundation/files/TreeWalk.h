// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_FILES_TREEWALK_H
#define ZQFOUNDATION_FILES_TREEWALK_H

#include <string>
#include <vector>

#include "foundation/system/FolderNames.h"
#include "foundation/system/OpenFolders.h"

namespace ZQFoundation::detail {

/// Visits all items below an open folder, a folder before its contents, links not followed:
///
///     while (walk.next()) ... // walk.path(), walk.folder(), walk.name()
///
/// However deep the tree is, only a few folders are open; from a folder the walk returns to the one that it
/// was entered from, wherever either was moved meanwhile. The last item may be removed before the next call
/// of `next`.
class TreeWalk {
public:
    explicit TreeWalk(Descriptor start) : start_(static_cast<Descriptor&&>(start)) {}
    TreeWalk(const TreeWalk&) = delete;
    TreeWalk& operator=(const TreeWalk&) = delete;
    virtual ~TreeWalk() = default;

    /// Moves to the next item. False at the end.
    bool next();

    /// The last item: its path relative to the start, its name in an open folder, and its kind according to
    /// the folder's list (DT_DIR and so on).
    const std::string& path() const noexcept { return path_; }
    int folder() const noexcept { return folders_.current(); }
    const char* name() const noexcept { return entry_.name; }
    unsigned char kind() const noexcept { return entry_.kind; }

    /// The folder of the last item, as it was before it was read; the length of the path to it, 0 for the
    /// start; and whether the item is the first in it.
    const struct stat& folderInformation() const noexcept { return levels_.back().information; }
    std::size_t folderLength() const noexcept { return levels_.back().pathLength; }
    bool isFirstInFolder() const noexcept { return isFirst_; }

    /// Does not enter the last item.
    void skipDescendents() noexcept { mayEnter_ = false; }

    /// Whether a folder could not be entered or could not be found again.
    bool isIncomplete() const noexcept { return isIncomplete_; }

protected:
    /// Called before an open folder, which `path()` names, is read. If it returns false, the folder is not
    /// entered.
    virtual bool willRead(int folder);

    /// Closes a folder above when descriptors have run out; false when there is none.
    bool closeOne() noexcept { return folders_.closeOne(); }

private:
    struct Level {
        struct stat information;
        FolderNames names;
        std::size_t pathLength; ///< of the path from the start to this folder
    };

    bool enter(Descriptor folder);
    void enterStart();
    void enterLast();
    void leave();
    bool reopenFromStart();

    Descriptor start_;
    OpenFolders folders_;
    std::vector<Level> levels_;
    std::string path_;
    FolderNames::Entry entry_{};
    bool isStarted_ = false;
    bool isFirst_ = false;
    bool mayEnter_ = false;
    bool isIncomplete_ = false;
};

} // namespace ZQFoundation::detail

#endif
