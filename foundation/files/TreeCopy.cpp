// SPDX-License-Identifier: MIT
#include <cstring>
#include <utility>
#include <vector>

#include <dirent.h>

#include "foundation/files/FileError.h"
#include "foundation/files/ItemCopy.h"
#include "foundation/files/NSFileManager.h"
#include "foundation/files/PathHandle.h"
#include "foundation/system/CallerState.h"
#include "foundation/system/FileSystem.h"
#include "foundation/system/FolderNames.h"
#include "foundation/system/OpenFolders.h"

namespace ZQFoundation {

using detail::CopyPlace;
using detail::Descriptor;
using detail::folderFlags;
using detail::FolderNames;
using detail::OpenFolders;

namespace {

/// Without O_NONBLOCK a pipe that has just taken the file's place would keep us waiting.
constexpr int fileFlags = O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

/// As deep as a tree may reasonably be; a file system that answers ".." in a circle does not keep us for
/// ever.
constexpr int mostLevelsUp = 1 << 20;

/// What the listing said may be out of date, or the item was exchanged since it was looked at.
bool isStill(mode_t kind, const struct stat& information) noexcept {
    if ((information.st_mode & S_IFMT) == kind) {
        return true;
    }
    errno = ESTALE;
    return false;
}

bool copyFile(const CopyPlace& place) {
    const Descriptor file(detail::openAt(place.sourceFolder, place.sourceName, fileFlags));
    struct stat information;
    return file && ::fstat(file.number(), &information) == 0 && isStill(S_IFREG, information) &&
           detail::copyRegularFile(file.number(), information, place);
}

bool isTooManyOpen(int error) noexcept { return error == EMFILE || error == ENFILE; }

/// Copies a folder with all that is in it, below open folders, so that nothing that others exchange meanwhile
/// leads it elsewhere. Takes memory for the depth, not stack, and a bounded number of descriptors. Stops at
/// the first failure.
class TreeCopy {
public:
    /// `path` serves for the telling of errors.
    explicit TreeCopy(std::string path) : path_(std::move(path)) {}

    /// False with `errno`; `path()` is then what could not be copied.
    bool run(Descriptor source, const CopyPlace& place) {
        if (!enter(std::move(source), place)) {
            return false;
        }
        while (!levels_.empty()) {
            if (!(levels_.back().names.isAtEnd() ? leave() : copyNext(levels_.back()))) {
                return false;
            }
        }
        return true;
    }

    const std::string& path() const noexcept { return path_; }

private:
    struct Level {
        struct stat information; ///< of the source, as it was before it was read
        FolderNames names;
        std::size_t pathLength; ///< of what leads to this folder
    };

    bool enter(Descriptor source, const CopyPlace& place) {
        Level level{{}, {}, path_.size()};
        Descriptor made;
        if (::fstat(source.number(), &level.information) != 0 || !isOutsideTheCopy(level.information) ||
            !level.names.read(source.number()) || !detail::makeCopyFolder(place, made) ||
            (levels_.empty() && ::fstat(made.number(), &firstMade_) != 0) ||
            !sources_.push(std::move(source)) || !destinations_.push(std::move(made))) {
            return false;
        }
        levels_.push_back(std::move(level));
        return true;
    }

    /// A mount can put the copy inside its source where no way upwards shows it.
    bool isOutsideTheCopy(const struct stat& source) const noexcept {
        if (!levels_.empty() && detail::isSameItem(source, firstMade_)) {
            errno = EINVAL;
            return false;
        }
        return true;
    }

    bool copyNext(Level& level) {
        const FolderNames::Entry entry = level.names.next();
        path_.resize(level.pathLength);
        path_.append("/").append(entry.name);
        bool isCopied = copyEntry(entry);
        // Too many descriptors are noticed before anything is made.
        while (!isCopied && isTooManyOpen(errno) && (sources_.closeOne() || destinations_.closeOne())) {
            isCopied = copyEntry(entry);
        }
        return isCopied;
    }

    bool copyEntry(const FolderNames::Entry& entry) {
        const CopyPlace place{sources_.current(), entry.name, destinations_.current(), entry.name, false};
        switch (entry.kind) {
        case DT_REG:
            return copyFile(place);
        case DT_DIR:
            return copyFolder(place);
        default:
            return copyOther(place);
        }
    }

    /// What is no file and no folder, or is not told to be one.
    bool copyOther(const CopyPlace& place) {
        struct stat information;
        if (::fstatat(place.sourceFolder, place.sourceName, &information, AT_SYMLINK_NOFOLLOW) != 0) {
            return false;
        }
        if (S_ISDIR(information.st_mode)) {
            return copyFolder(place);
        }
        return S_ISREG(information.st_mode) ? copyFile(place) : detail::copySpecialItem(information, place);
    }

    bool copyFolder(const CopyPlace& place) {
        Descriptor folder(detail::openAt(place.sourceFolder, place.sourceName, folderFlags));
        return folder && enter(std::move(folder), place);
    }

    /// The way back must be open before the copy gets its permissions, which may not let it through.
    bool leave() {
        path_.resize(levels_.back().pathLength);
        if (!sources_.reopenParent() || !destinations_.reopenParent() ||
            !detail::completeCopy(sources_.current(), destinations_.current(), levels_.back().information)) {
            return false;
        }
        levels_.pop_back();
        sources_.pop();
        destinations_.pop();
        return true;
    }

    std::string path_;
    std::vector<Level> levels_;
    OpenFolders sources_;
    OpenFolders destinations_;
    struct stat firstMade_ {}; ///< the copy of the start
};

/// Whether the folder is one of those that lead from the root to `place`, or that one itself.
bool isAtOrAbove(const struct stat& folder, int place) {
    Descriptor opened;
    struct stat below {};
    for (int level = 0; level < mostLevelsUp; ++level) {
        struct stat information;
        const int current = opened ? opened.number() : place;
        if (::fstat(current, &information) != 0) {
            return false;
        }
        if (detail::isSameItem(information, folder)) {
            return true;
        }
        if (level > 0 && detail::isSameItem(information, below)) {
            return false; // the root is its own parent
        }
        below = information;
        opened = Descriptor(detail::openAt(current, "..", detail::system::openForSearch));
        if (!opened) {
            return false;
        }
    }
    return false;
}

/// What an item is to become: a name in a folder that is opened once, so that all happens in the same one.
class CopyTarget {
public:
    /// False with `errno`, also when something stands there.
    bool open(const std::string& path) {
        const std::string bare = withoutEndSlashes(path);
        const std::size_t start = bare.rfind('/') + 1; // 0 without a slash
        name_ = bare.substr(start);
        if (name_.empty()) {
            name_.push_back('.'); // of the root folder
        }
        const std::string parent = start == 0 ? "." : bare.substr(0, start);
        detail::PathHandle handle;
        if (!handle.reach(parent)) {
            return false;
        }
        folder_ = Descriptor(detail::openAt(handle.folder(), handle.name(), detail::system::openForSearch));
        struct stat present;
        if (!folder_) {
            return false;
        }
        if (::fstatat(folder(), name(), &present, AT_SYMLINK_NOFOLLOW) == 0) {
            errno = EEXIST;
            return false;
        }
        return errno == ENOENT;
    }

    int folder() const noexcept { return folder_.number(); }
    const char* name() const noexcept { return name_.c_str(); }

    static std::string withoutEndSlashes(const std::string& path) {
        return path.substr(0, path.find_last_not_of('/') + 1);
    }

private:
    Descriptor folder_;
    std::string name_;
};

/// One call: a source and a target.
class ItemCopy {
public:
    ItemCopy(const std::string& source, const std::string& destination)
        : source_(source), destination_(destination) {}

    /// False with `errno`; `failed()` is then what could not be copied or made.
    bool run() {
        struct stat information;
        if (!look(information)) {
            return false;
        }
        failed_ = destination_;
        if (!target_.open(destination_)) {
            return false;
        }
        const CopyPlace place{handle_.folder(), handle_.name(), target_.folder(), target_.name(), true};
        failed_ = source_;
        if (S_ISDIR(information.st_mode)) {
            return copyTree(place);
        }
        if (!S_ISREG(information.st_mode)) {
            return detail::copySpecialItem(information, place);
        }
        return copyFile(place);
    }

    const std::string& failed() const noexcept { return failed_; }

private:
    bool look(struct stat& information) {
        failed_ = source_;
        // A slash at the end would make the system follow a link.
        bareSource_ = CopyTarget::withoutEndSlashes(source_);
        const bool mustBeFolder = bareSource_.size() != source_.size();
        bareSource_ = bareSource_.empty() ? "/" : bareSource_;
        if (!handle_.reach(bareSource_) ||
            ::fstatat(handle_.folder(), handle_.name(), &information, AT_SYMLINK_NOFOLLOW) != 0) {
            return false;
        }
        if (mustBeFolder && !S_ISDIR(information.st_mode)) {
            errno = ENOTDIR;
            return false;
        }
        return true;
    }

    bool copyTree(const CopyPlace& place) {
        Descriptor folder(detail::openAt(place.sourceFolder, place.sourceName, folderFlags));
        struct stat information;
        if (!folder || ::fstat(folder.number(), &information) != 0) {
            return false;
        }
        if (isAtOrAbove(information, place.destinationFolder)) {
            errno = EINVAL;
            return false;
        }
        TreeCopy tree(bareSource_);
        const bool isCopied = tree.run(std::move(folder), place);
        const int error = errno;
        failed_ = tree.path();
        errno = error;
        return isCopied;
    }

    const std::string& source_;
    const std::string& destination_;
    std::string bareSource_;
    detail::PathHandle handle_;
    CopyTarget target_;
    std::string failed_;
};

} // namespace

bool NSFileManager::copyItemAtPath_toPath_error(StringView source, StringView destination,
                                                NSString* errorText) {
    const detail::CallerState caller;
    std::string sourceBytes;
    std::string destinationBytes;
    if (!detail::getPathBytes(source, sourceBytes)) {
        detail::tellError(errorText, source, errno);
        return false;
    }
    if (!detail::getPathBytes(destination, destinationBytes)) {
        detail::tellError(errorText, destination, errno);
        return false;
    }
    ItemCopy copy(sourceBytes, destinationBytes);
    if (!copy.run()) {
        const int error = errno;
        detail::tellErrorOfBytes(errorText, copy.failed(), error);
        return false;
    }
    detail::tellSuccess(errorText);
    return true;
}

} // namespace ZQFoundation
