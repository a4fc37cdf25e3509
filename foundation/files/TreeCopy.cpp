// SPDX-License-Identifier: MIT
#include <cstring>
#include <utility>
#include <vector>

#include <dirent.h>

#include "foundation/files/FileError.h"
#include "foundation/files/ItemCopy.h"
#include "foundation/files/ItemIdentity.h"
#include "foundation/files/NSFileManager.h"
#include "foundation/files/PathHandle.h"
#include "foundation/system/CallerState.h"

namespace ZQFoundation {

using detail::CopyPlace;
using detail::Descriptor;

namespace {

constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

/// Without O_NONBLOCK a pipe that has just taken the file's place would keep us waiting.
constexpr int fileFlags = O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

/// The names in an open folder, each with NUL behind it. Read as a whole, so that a folder which is being
/// filled comes to an end. False with `errno`.
bool readNames(int folder, std::vector<char>& names) {
    Descriptor own(detail::openAt(folder, ".", folderFlags));
    DIR* const stream = own ? ::fdopendir(own.number()) : nullptr;
    if (stream == nullptr) {
        return false;
    }
    own.release();
    errno = 0;
    while (const dirent* const entry = ::readdir(stream)) {
        if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0) {
            names.insert(names.end(), entry->d_name, entry->d_name + std::strlen(entry->d_name) + 1);
        }
    }
    const int error = errno;
    ::closedir(stream);
    errno = error;
    return error == 0;
}

bool isSame(const struct stat& left, const struct stat& right) noexcept {
    return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

/// Copies a folder with all that is in it, below open folders, so that nothing that others exchange meanwhile
/// leads it elsewhere. Two folders are open at once at any depth; the way back goes through "..", which must
/// lead to the folder that it came from. Takes memory for the depth, not stack. Stops at the first failure.
class TreeCopy {
public:
    explicit TreeCopy(std::string path) : path_(std::move(path)) {}

    /// False with `errno`; `path()` is then what could not be copied.
    bool run(Descriptor source, const CopyPlace& place) {
        if (!enter(static_cast<Descriptor&&>(source), place)) {
            return false;
        }
        while (!levels_.empty()) {
            Level& level = levels_.back();
            const bool done = level.next == level.names.size() ? leave() : copyNext(level);
            if (!done) {
                return false;
            }
        }
        return true;
    }

    const std::string& path() const noexcept { return path_; }

private:
    struct Level {
        struct stat source;
        struct stat destination;
        std::vector<char> names;
        std::size_t next = 0;
        std::size_t pathLength = 0; ///< of what leads to this folder
    };

    bool enter(Descriptor source, const CopyPlace& place) {
        Level level;
        Descriptor destination;
        level.pathLength = path_.size();
        if (::fstat(source.number(), &level.source) != 0) {
            return false;
        }
        // A mount can put the copy inside its source where no way upwards shows it.
        if (!levels_.empty() && isSame(level.source, levels_.front().destination)) {
            errno = EINVAL;
            return false;
        }
        if (!detail::makeCopyFolder(place, destination) ||
            ::fstat(destination.number(), &level.destination) != 0 ||
            !readNames(source.number(), level.names)) {
            return false;
        }
        source_ = static_cast<Descriptor&&>(source);
        destination_ = static_cast<Descriptor&&>(destination);
        levels_.push_back(std::move(level));
        return true;
    }

    bool copyNext(Level& level) {
        const char* const name = level.names.data() + level.next;
        level.next += std::strlen(name) + 1;
        path_.resize(level.pathLength);
        path_.append("/").append(name);
        const CopyPlace place{source_.number(), name, destination_.number(), name};
        struct stat information;
        if (::fstatat(place.sourceFolder, name, &information, AT_SYMLINK_NOFOLLOW) != 0) {
            return false;
        }
        if (S_ISDIR(information.st_mode)) {
            Descriptor folder(detail::openAt(place.sourceFolder, name, folderFlags));
            return folder && enter(static_cast<Descriptor&&>(folder), place);
        }
        return S_ISREG(information.st_mode) ? copyFile(place) : detail::copySpecialItem(information, place);
    }

    static bool copyFile(const CopyPlace& place) {
        const Descriptor file(detail::openAt(place.sourceFolder, place.sourceName, fileFlags));
        struct stat information;
        if (!file || ::fstat(file.number(), &information) != 0) {
            return false;
        }
        if (!S_ISREG(information.st_mode)) {
            errno = ESTALE;
            return false;
        }
        return detail::copyRegularFile(file.number(), information, place);
    }

    bool leave() {
        path_.resize(levels_.back().pathLength);
        // As it was at the start: the reading has changed its times.
        if (!detail::completeCopy(source_.number(), destination_.number(), levels_.back().source)) {
            return false;
        }
        levels_.pop_back();
        if (levels_.empty()) {
            return true;
        }
        return goUp(source_, levels_.back().source) && goUp(destination_, levels_.back().destination);
    }

    static bool goUp(Descriptor& folder, const struct stat& expected) noexcept {
        Descriptor parent(detail::openAt(folder.number(), "..", folderFlags));
        struct stat information;
        if (!parent || ::fstat(parent.number(), &information) != 0) {
            return false;
        }
        if (!isSame(information, expected)) {
            errno = ESTALE; // somebody has moved the folder away
            return false;
        }
        folder = static_cast<Descriptor&&>(parent);
        return true;
    }

    std::string path_;
    Descriptor source_;
    Descriptor destination_;
    std::vector<Level> levels_;
};

/// Without slashes at the end, which would make the system follow a link.
std::string bareOf(const std::string& path) {
    const std::size_t last = path.find_last_not_of('/');
    return last == std::string::npos ? path.substr(0, 1) : path.substr(0, last + 1);
}

/// False with `errno`; `failed` is then what could not be copied.
bool copyItem(const std::string& sourcePath, const std::string& destinationPath, std::string& failed) {
    detail::PathHandle source;
    detail::PathHandle destination;
    struct stat information;
    failed = sourcePath;
    const std::string bareSource = bareOf(sourcePath);
    if (!source.reach(bareSource) ||
        ::fstatat(source.folder(), source.name(), &information, AT_SYMLINK_NOFOLLOW) != 0) {
        return false;
    }
    if (bareSource.size() != sourcePath.size() && S_ISREG(information.st_mode)) {
        errno = ENOTDIR;
        return false;
    }
    failed = destinationPath;
    if (!destination.reach(destinationPath)) {
        return false;
    }
    struct stat present;
    if (::fstatat(destination.folder(), destination.name(), &present, AT_SYMLINK_NOFOLLOW) == 0) {
        errno = EEXIST;
        return false;
    }
    const CopyPlace place{source.folder(), source.name(), destination.folder(), destination.name()};
    if (!S_ISDIR(information.st_mode) && !S_ISREG(information.st_mode)) {
        return detail::copySpecialItem(information, place);
    }
    const int flags = S_ISDIR(information.st_mode) ? folderFlags : fileFlags;
    Descriptor item(detail::openAt(source.folder(), source.name(), flags));
    if (!item || ::fstat(item.number(), &information) != 0) {
        failed = sourcePath;
        return false;
    }
    if (S_ISREG(information.st_mode)) {
        return detail::copyRegularFile(item.number(), information, place);
    }
    if (!S_ISDIR(information.st_mode)) {
        errno = ESTALE;
        return false;
    }
    TreeCopy tree(sourcePath);
    const bool done = tree.run(static_cast<Descriptor&&>(item), place);
    const int reason = errno;
    failed = tree.path();
    errno = reason;
    return done;
}

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
    std::string failed = destinationBytes;
    errno = EINVAL;
    // Inside itself a folder would be copied without end.
    if (detail::standsInside(NSString(destination), NSString(source)) ||
        !copyItem(sourceBytes, bareOf(destinationBytes), failed)) {
        detail::tellErrorOfBytes(errorText, failed, errno);
        return false;
    }
    detail::tellSuccess(errorText);
    return true;
}

} // namespace ZQFoundation
