// SPDX-License-Identifier: MIT
#include <cstring>
#include <utility>
#include <vector>

#include <dirent.h>

#include "foundation/files/FileError.h"
#include "foundation/files/NSFileManager.h"
#include "foundation/files/PathHandle.h"
#include "foundation/system/CallerState.h"

namespace ZQFoundation {

namespace {

/// So many folders are open at once; those nearer to the root are opened again on the way back.
constexpr std::size_t mostOpenFolders = 8;

/// Folders are read while they are emptied, which makes some file systems pass entries over.
constexpr int mostReadings = 16;

constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK;

bool isSelfOrParent(const char* name) noexcept {
    return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

/// Removes a folder with all that is in it, below open folders and without following a link, so that it never
/// gets outside whatever others exchange meanwhile. Takes memory for the depth, not stack, and a bounded
/// number of descriptors. Stops at the first failure.
class TreeRemoval {
public:
    /// `path` serves for the telling of errors.
    TreeRemoval(int folder, const char* name, std::string path)
        : folder_(folder), name_(name), path_(std::move(path)) {}
    TreeRemoval(const TreeRemoval&) = delete;
    TreeRemoval& operator=(const TreeRemoval&) = delete;
    ~TreeRemoval() {
        for (const Level& level : levels_) {
            if (level.stream != nullptr) {
                ::closedir(level.stream);
            }
        }
    }

    /// False with `errno`; `path()` is then what could not be removed.
    bool run() {
        if (!enterOrRemoveEmpty(folder_, name_, 0)) {
            return false;
        }
        while (!levels_.empty()) {
            const dirent* const entry = nextEntry();
            if (entry != nullptr ? !removeEntry(*entry) : errno != 0 || !leave()) {
                return false;
            }
        }
        return true;
    }

    const std::string& path() const noexcept { return path_; }

private:
    struct Level {
        DIR* stream; ///< null while closed
        dev_t device;
        ino_t inode;
        std::size_t nameStart; ///< in `path_`
        int readings;
    };

    /// Null at the end, with `errno` 0, and for an error.
    const dirent* nextEntry() noexcept {
        for (;;) {
            errno = 0;
            const dirent* const entry = ::readdir(levels_.back().stream);
            if (entry == nullptr || !isSelfOrParent(entry->d_name)) {
                return entry;
            }
        }
    }

    bool removeEntry(const dirent& entry) {
        const int folder = ::dirfd(levels_.back().stream);
        const std::size_t length = path_.size();
        path_ += '/';
        path_ += entry.d_name;
        if (entry.d_type != DT_DIR) {
            if (::unlinkat(folder, entry.d_name, 0) == 0) {
                path_.resize(length);
                return true;
            }
            // The kind is not always told, and may be out of date.
            if (errno != EISDIR && errno != EPERM) {
                return false;
            }
        }
        const std::size_t depth = levels_.size();
        if (!enterOrRemoveEmpty(folder, entry.d_name, length + 1)) {
            return false;
        }
        if (levels_.size() == depth) {
            path_.resize(length);
        }
        return true;
    }

    /// Goes into the folder. What cannot be gone into is removed if it is empty, or no folder any more.
    bool enterOrRemoveEmpty(int folder, const char* name, std::size_t nameStart) {
        detail::Descriptor next(openFolder(folder, name));
        if (next) {
            return push(static_cast<detail::Descriptor&&>(next), nameStart);
        }
        const int error = errno;
        const bool isOther = error == ENOTDIR || error == ELOOP || error == EMLINK;
        if (::unlinkat(folder, name, isOther ? 0 : AT_REMOVEDIR) == 0) {
            return true;
        }
        if (!isOther) {
            errno = error;
        }
        return false;
    }

    int openFolder(int folder, const char* name) noexcept {
        int opened = detail::openAt(folder, name, folderFlags);
        while (opened < 0 && (errno == EMFILE || errno == ENFILE) && closeOne()) {
            opened = detail::openAt(folder, name, folderFlags);
        }
        return opened;
    }

    bool push(detail::Descriptor opened, std::size_t nameStart) {
        struct stat information;
        if (::fstat(opened.number(), &information) != 0) {
            return false;
        }
        if (levels_.size() - firstOpen_ >= mostOpenFolders) {
            closeOne();
        }
        levels_.push_back({nullptr, information.st_dev, information.st_ino, nameStart, 1});
        return attachStream(static_cast<detail::Descriptor&&>(opened));
    }

    bool attachStream(detail::Descriptor opened) noexcept {
        levels_.back().stream = ::fdopendir(opened.number());
        if (levels_.back().stream == nullptr) {
            return false;
        }
        opened.release();
        return true;
    }

    /// Closes the open folder nearest to the root, the one in use excepted.
    bool closeOne() noexcept {
        if (firstOpen_ + 2 > levels_.size()) {
            return false;
        }
        Level& level = levels_[firstOpen_];
        ::closedir(level.stream);
        level.stream = nullptr;
        ++firstOpen_;
        return true;
    }

    /// The folder is empty: removes it and goes on in the one above.
    bool leave() {
        detail::Descriptor parent;
        if (!openParent(parent)) {
            return false;
        }
        const Level level = levels_.back();
        const int folder = parentDescriptor(parent);
        const char* const name = levels_.size() == 1 ? name_ : path_.c_str() + level.nameStart;
        if (::unlinkat(folder, name, AT_REMOVEDIR) != 0) {
            return readAgain();
        }
        ::closedir(level.stream);
        levels_.pop_back();
        path_.resize(level.nameStart == 0 ? path_.size() : level.nameStart - 1);
        if (parent) {
            --firstOpen_;
            return attachStream(static_cast<detail::Descriptor&&>(parent));
        }
        return true;
    }

    int parentDescriptor(const detail::Descriptor& reopened) const noexcept {
        if (reopened) {
            return reopened.number();
        }
        return levels_.size() == 1 ? folder_ : ::dirfd(levels_[levels_.size() - 2].stream);
    }

    /// Opens the folder above again when it was closed. It must still be the same one: somebody may have
    /// moved the folder that we are in.
    bool openParent(detail::Descriptor& parent) noexcept {
        if (levels_.size() == 1 || firstOpen_ + 1 < levels_.size()) {
            return true;
        }
        parent = detail::Descriptor(detail::openAt(::dirfd(levels_.back().stream), "..", folderFlags));
        struct stat information;
        if (!parent || ::fstat(parent.number(), &information) != 0) {
            return false;
        }
        const Level& expected = levels_[levels_.size() - 2];
        if (information.st_dev != expected.device || information.st_ino != expected.inode) {
            errno = ESTALE;
            return false;
        }
        return true;
    }

    bool readAgain() noexcept {
        Level& level = levels_.back();
        if ((errno != ENOTEMPTY && errno != EEXIST) || ++level.readings > mostReadings) {
            return false;
        }
        ::rewinddir(level.stream);
        return true;
    }

    int folder_;
    const char* name_;
    std::string path_;
    std::vector<Level> levels_;
    std::size_t firstOpen_ = 0; ///< levels before it are closed
};

/// Whether the path names its item by "." or "..", or is the root folder: such an item cannot be removed, and
/// should not lose what is in it in the attempt.
bool namesNoEntry(const std::string& path) {
    const std::string last(path, path.rfind('/') + 1);
    return last.empty() || last == "." || last == "..";
}

bool isFolder(const detail::PathHandle& item) noexcept {
    struct stat information;
    return ::fstatat(item.folder(), item.name(), &information, AT_SYMLINK_NOFOLLOW) == 0 &&
           S_ISDIR(information.st_mode);
}

/// False with `errno`; `failed` is then what could not be removed.
bool removeItem(const std::string& path, std::string& failed) {
    failed = path;
    // A slash at the end would make the system follow a link.
    const std::string bare(path, 0, path.find_last_not_of('/') + 1);
    const bool mustBeFolder = bare.size() != path.size();
    if (namesNoEntry(bare)) {
        errno = EINVAL;
        return false;
    }
    detail::PathHandle item;
    if (!item.reach(bare)) {
        return false;
    }
    if (!mustBeFolder && ::unlinkat(item.folder(), item.name(), 0) == 0) {
        return true;
    }
    const int error = mustBeFolder ? ENOTDIR : errno;
    if ((error != ENOTDIR && error != EISDIR && error != EPERM) || !isFolder(item)) {
        errno = error;
        return false;
    }
    TreeRemoval removal(item.folder(), item.name(), bare);
    const bool done = removal.run();
    const int reason = errno;
    failed = removal.path();
    errno = reason;
    return done;
}

} // namespace

bool NSFileManager::removeItemAtPath_error(StringView path, NSString* errorText) {
    const detail::CallerState caller;
    std::string bytes;
    if (!detail::getPathBytes(path, bytes)) {
        detail::tellError(errorText, path, errno);
        return false;
    }
    std::string failed;
    if (!removeItem(bytes, failed)) {
        detail::tellErrorOfBytes(errorText, failed, errno);
        return false;
    }
    detail::tellSuccess(errorText);
    return true;
}

} // namespace ZQFoundation
