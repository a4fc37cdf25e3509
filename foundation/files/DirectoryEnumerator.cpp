// SPDX-License-Identifier: MIT
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include <dirent.h>

#include "foundation/files/NSFileManager.h"
#include "foundation/files/PathHandle.h"
#include "foundation/system/CallerState.h"
#include "foundation/system/FolderNames.h"
#include "foundation/system/OpenFolders.h"

namespace ZQFoundation {

namespace detail {

/// The walk behind an enumerator. However deep it is, a few folders are open; a folder is left for the one
/// above that it was entered from, wherever either was moved meanwhile.
class TreeWalk {
public:
    explicit TreeWalk(Descriptor start) : start_(static_cast<Descriptor&&>(start)) {
        enter(Descriptor(::fcntl(start_.number(), F_DUPFD_CLOEXEC, 0)));
    }

    /// Nil at the end.
    NSString next() {
        enterToldFolder();
        while (!levels_.empty() && levels_.back().names.isAtEnd()) {
            leave();
        }
        if (levels_.empty()) {
            return nullptr;
        }
        Level& level = levels_.back();
        const FolderNames::Entry entry = level.names.next();
        path_.resize(level.pathLength);
        path_.append(level.pathLength == 0 ? "" : "/").append(entry.name);
        told_ = entry.kind == DT_DIR || entry.kind == DT_UNKNOWN ? entry.name : nullptr;
        return NSString::stringWithFileSystemBytes(path_.data(), path_.size());
    }

    void skipDescendents() noexcept { told_ = nullptr; }

private:
    struct Level {
        FolderNames names;
        std::size_t pathLength; ///< of what leads to this folder from the start
    };

    /// False with `errno`.
    bool enter(Descriptor folder) {
        Level level{{}, path_.size()};
        if (!folder || !level.names.read(folder.number()) ||
            !folders_.push(static_cast<Descriptor&&>(folder))) {
            return false;
        }
        levels_.push_back(std::move(level));
        return true;
    }

    /// Only now, so that the caller could look at it, remove it or have it skipped. What cannot be opened or
    /// read is passed over.
    void enterToldFolder() {
        if (const char* const name = std::exchange(told_, nullptr)) {
            while (!enter(Descriptor(openAt(folders_.current(), name, folderFlags))) &&
                   (errno == EMFILE || errno == ENFILE) && folders_.closeOne()) {
            }
        }
    }

    /// Up to the nearest folder that is still to be found.
    void leave() {
        bool isOpen = folders_.reopenParent();
        do {
            levels_.pop_back();
            folders_.pop();
            isOpen = isOpen || levels_.empty() || reopenFromStart();
        } while (!isOpen);
    }

    /// Goes down again to the last level by the names that led there, when the folder below it was moved
    /// away.
    bool reopenFromStart() {
        Descriptor folder(::fcntl(start_.number(), F_DUPFD_CLOEXEC, 0));
        for (std::size_t index = 1; folder && index < levels_.size(); ++index) {
            const std::size_t above = levels_[index - 1].pathLength;
            const std::size_t begin = above == 0 ? 0 : above + 1;
            const std::string name(path_, begin, levels_[index].pathLength - begin);
            folder = Descriptor(openAt(folder.number(), name.c_str(), folderFlags));
        }
        return folder && folders_.restore(levels_.size() - 1, static_cast<Descriptor&&>(folder));
    }

    Descriptor start_;
    OpenFolders folders_;
    std::vector<Level> levels_;
    std::string path_;
    const char* told_ = nullptr; ///< the name told last, in its level's list, when it may be a folder
};

} // namespace detail

NSDirectoryEnumerator& NSDirectoryEnumerator::operator=(NSDirectoryEnumerator&& other) noexcept {
    std::swap(walk_, other.walk_);
    return *this;
}

NSDirectoryEnumerator::~NSDirectoryEnumerator() {
    const detail::CallerState caller;
    delete walk_;
}

NSString NSDirectoryEnumerator::nextObject() {
    const detail::CallerState caller;
    return walk_ != nullptr ? walk_->next() : NSString();
}

void NSDirectoryEnumerator::skipDescendents() {
    if (walk_ != nullptr) {
        walk_->skipDescendents();
    }
}

NSDirectoryEnumerator NSFileManager::enumeratorAtPath(StringView path) const {
    const detail::CallerState caller;
    std::string bytes;
    detail::PathHandle handle;
    if (!detail::getPathBytes(path, bytes) || !handle.reach(bytes)) {
        return {};
    }
    // The start itself may be a link.
    detail::Descriptor start(
        detail::openAt(handle.folder(), handle.name(), detail::folderFlags & ~O_NOFOLLOW));
    return start ? NSDirectoryEnumerator(new detail::TreeWalk(static_cast<detail::Descriptor&&>(start)))
                 : NSDirectoryEnumerator();
}

} // namespace ZQFoundation
