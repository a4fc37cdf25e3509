// SPDX-License-Identifier: MIT
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include <dirent.h>

#include "foundation/files/NSFileManager.h"
#include "foundation/files/PathHandle.h"
#include "foundation/system/CallerState.h"

namespace ZQFoundation {

namespace detail {

namespace {

constexpr int startFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
constexpr int folderFlags = startFlags | O_NOFOLLOW;

struct NameList {
    std::vector<char> names; ///< each with NUL behind it
    std::vector<bool> mayBeFolder;
};

/// What an open folder holds. Read as a whole, so that what is removed or made meanwhile neither hides nor
/// repeats an entry. Empty when it cannot be read.
NameList listOf(int folder) {
    NameList list;
    Descriptor own(openAt(folder, ".", folderFlags));
    DIR* const stream = own ? ::fdopendir(own.number()) : nullptr;
    if (stream == nullptr) {
        return list;
    }
    own.release();
    while (const dirent* const entry = ::readdir(stream)) {
        if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0) {
            list.names.insert(list.names.end(), entry->d_name,
                              entry->d_name + std::strlen(entry->d_name) + 1);
            list.mayBeFolder.push_back(entry->d_type == DT_DIR || entry->d_type == DT_UNKNOWN);
        }
    }
    ::closedir(stream);
    return list;
}

} // namespace

/// The walk behind an enumerator. One folder is open at a time, at any depth; the way back goes through "..",
/// which must lead to the folder that it came from, else the walk ends what it cannot find again.
class TreeWalk {
public:
    explicit TreeWalk(Descriptor start) : folder_(static_cast<Descriptor&&>(start)) { push(); }

    /// False at the end.
    bool next(NSString& path) {
        enterToldFolder();
        while (!levels_.empty()) {
            Level& level = levels_.back();
            if (level.at == level.list.names.size()) {
                leave();
                continue;
            }
            const char* const name = level.list.names.data() + level.at;
            path_.resize(level.pathLength);
            path_.append(level.pathLength == 0 ? "" : "/").append(name);
            told_ = level.list.mayBeFolder[level.index++] ? name : nullptr;
            level.at += std::strlen(name) + 1;
            path = NSString::stringWithFileSystemBytes(path_.data(), path_.size());
            return true;
        }
        return false;
    }

    void skipDescendents() noexcept { told_ = nullptr; }

private:
    struct Level {
        NameList list;
        std::size_t at = 0; ///< in the names
        std::size_t index = 0;
        std::size_t pathLength = 0; ///< of what leads to this folder
        dev_t device = 0;
        ino_t inode = 0;
    };

    void push() {
        struct stat information;
        if (::fstat(folder_.number(), &information) != 0) {
            return;
        }
        Level level;
        level.list = listOf(folder_.number());
        level.pathLength = path_.size();
        level.device = information.st_dev;
        level.inode = information.st_ino;
        levels_.push_back(std::move(level));
    }

    /// Only now, so that the caller could look at it, remove it or have it skipped.
    void enterToldFolder() {
        if (told_ == nullptr) {
            return;
        }
        Descriptor below(openAt(folder_.number(), told_, folderFlags));
        told_ = nullptr;
        if (below) {
            folder_ = static_cast<Descriptor&&>(below);
            push();
        }
    }

    void leave() {
        levels_.pop_back();
        if (levels_.empty()) {
            folder_.reset();
            return;
        }
        Descriptor parent(openAt(folder_.number(), "..", folderFlags));
        struct stat information;
        const Level& expected = levels_.back();
        if (parent && ::fstat(parent.number(), &information) == 0 && information.st_dev == expected.device &&
            information.st_ino == expected.inode) {
            folder_ = static_cast<Descriptor&&>(parent);
            return;
        }
        levels_.clear(); // the folder was moved away, and nobody knows to where
        folder_.reset();
    }

    Descriptor folder_;
    std::vector<Level> levels_;
    std::string path_;
    const char* told_ =
        nullptr; ///< the name told last, in its level's list, when it may be a folder to enter
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
    NSString path;
    return walk_ != nullptr && walk_->next(path) ? path : NSString();
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
    detail::Descriptor start(detail::openAt(handle.folder(), handle.name(), detail::startFlags));
    return start ? NSDirectoryEnumerator(new detail::TreeWalk(static_cast<detail::Descriptor&&>(start)))
                 : NSDirectoryEnumerator();
}

} // namespace ZQFoundation
