// SPDX-License-Identifier: MIT
// Opens files in folders that others may write to, without following links that strangers have put there. A
// path into /tmp is resolved step by step with open folders, because between any check by path and its use
// others may exchange what the path refers to.
#include "foundation/files/GuardedOpening.h"

#include <new>

#include "foundation/files/PathHandle.h"
#include "foundation/files/StickyFolder.h"
#include "foundation/system/Descriptor.h"
#include "foundation/system/FileSystem.h"
#include "foundation/system/LinkReading.h"

namespace ZQFoundation::detail {

namespace {

/// Others may change a name between two checks; somebody who keeps doing so must not keep us busy forever.
constexpr int maxAttempts = 64;

// Without O_NONBLOCK the opening of some devices waits for the other side.
constexpr int appendFlags = O_RDWR | O_APPEND | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;

/// The errors of opening a link with O_NOFOLLOW (and O_DIRECTORY).
/// Systems differ in which of them they report.
bool mayMeanLink(int error) noexcept { return error == ELOOP || error == ENOTDIR || error == EMLINK; }

// The owner is compared, too: inodes are reused quickly.
bool isSameLink(const struct stat& left, const struct stat& right) noexcept {
    return left.st_dev == right.st_dev && left.st_ino == right.st_ino && left.st_uid == right.st_uid &&
           S_ISLNK(right.st_mode);
}

bool getInformation(int folder, const char* name, struct stat& information) noexcept {
    return ::fstatat(folder, name, &information, AT_SYMLINK_NOFOLLOW) == 0;
}

/// Walks a path from folder to folder, each opened below the one before without following a link, so that
/// nothing on the way can be exchanged after it was checked. Links are followed by their text.
class GuardedWalk {
public:
    explicit GuardedWalk(const std::string& path) : rest_(path) {}

    /// Stops in the folder of the path's last name. False with `errno`.
    bool reachLast() {
        if (!folder_ && !start()) {
            return false;
        }
        while (takeName(rest_, position_, name_)) {
            // The last name is left to the caller, who treats it according to what is there.
            if (position_ == rest_.size()) {
                return true;
            }
            // A failure may mean that the name is a link; whether it may be followed is then decided by its
            // owner.
            if (!enter() && !(mayMeanLink(errno) && follow())) {
                return false;
            }
        }
        errno = EISDIR; // a slash at the end, or nothing else
        return false;
    }

    /// Puts the text of the link with the last name before what is left of the path. False with `errno` when
    /// it must not be followed, or is not a link.
    bool follow();

    int folder() const noexcept { return folder_.number(); }
    Descriptor releaseFolder() noexcept { return static_cast<Descriptor&&>(folder_); }
    const char* name() const noexcept { return name_.c_str(); }

private:
    bool start() noexcept {
        // A NUL would end the path early for the system.
        if (rest_.empty() || rest_.find('\0') != std::string::npos) {
            errno = rest_.empty() ? ENOENT : EINVAL;
            return false;
        }
        // The walk continues from here with relative names only.
        const char* const first = rest_[0] == '/' ? "/" : ".";
        folder_ = Descriptor(openAt(AT_FDCWD, first, system::openForSearch));
        return static_cast<bool>(folder_);
    }

    bool enter() noexcept {
        // A link in this place fails, rather than being followed by the system.
        Descriptor next(openAt(folder(), name(), system::openForSearch | O_NOFOLLOW));
        if (!next) {
            return false;
        }
        folder_ = static_cast<Descriptor&&>(next);
        return true;
    }

    bool readJudgedLink(std::string& target);

    std::string rest_;
    std::size_t position_ = 0; ///< in `rest_`
    std::string name_;
    Descriptor folder_;
    int links_ = 0;
};

/// Reads the link between two looks that find the same one, so that the text belongs to the link that was
/// checked.
bool GuardedWalk::readJudgedLink(std::string& target) {
    // Needed for the rule: whether the folder is shared, and who owns it.
    struct stat folderInformation;
    if (::fstat(folder(), &folderInformation) != 0) {
        return false;
    }
    for (int attempt = 0; attempt < maxAttempts; ++attempt) {
        struct stat before;
        struct stat after;
        if (!getInformation(folder(), name(), before)) {
            return false;
        }
        if (!S_ISLNK(before.st_mode)) {
            // The item changed since it was found to be a link, or never was one.
            errno = ENOTDIR;
            return false;
        }
        if (!mayFollowLink(before, folderInformation)) {
            errno = EACCES;
            return false;
        }
        const LinkResult result = readLink(folder(), name(), target);
        // Otherwise it was replaced between the looks; the new one is checked from the beginning.
        if (result == LinkResult::link && getInformation(folder(), name(), after) &&
            isSameLink(before, after)) {
            return true;
        }
    }
    errno = EAGAIN;
    return false;
}

bool GuardedWalk::follow() {
    std::string target;
    if (!readJudgedLink(target)) {
        return false;
    }
    // Counted over the whole path, so that loops end.
    if (++links_ > maxLinks) {
        errno = ELOOP;
        return false;
    }
    rest_ = target + rest_.substr(position_); // which is empty or begins with a slash
    position_ = 0;
    // An absolute target starts again from the root.
    return target[0] != '/' || start();
}

/// Opens the item with the walk's last name, or makes it. ELOOP for a link.
int openLast(const GuardedWalk& walk) noexcept {
    struct stat folder;
    if (::fstat(walk.folder(), &folder) != 0) {
        return -1;
    }
    for (int attempt = 0; attempt < maxAttempts; ++attempt) {
        struct stat item;
        // Merely opening some devices and pipes has an effect at the other end.
        if (isSharedFolder(folder) && getInformation(walk.folder(), walk.name(), item) &&
            !S_ISLNK(item.st_mode) && !mayWriteItem(item, folder)) {
            errno = EACCES;
            return -1;
        }
        // Opened before it is checked, and checked by its descriptor: the item checked is the item opened.
        Descriptor file(openAt(walk.folder(), walk.name(), appendFlags | O_NOFOLLOW));
        if (file) {
            if (::fstat(file.number(), &item) != 0) {
                return -1;
            }
            if (!mayWriteItem(item, folder)) {
                errno = EACCES;
                return -1;
            }
            return file.release();
        }
        // Missing: it is made, unless somebody else makes it first, and then that one is opened and checked.
        if (errno != ENOENT) {
            return -1;
        }
        // In a shared folder nobody else needs to read it.
        const mode_t mode = isSharedFolder(folder) ? 0600 : 0666;
        const int made = openAt(walk.folder(), walk.name(), appendFlags | O_CREAT | O_EXCL, mode);
        if (made >= 0 || errno != EEXIST) {
            return made;
        }
    }
    errno = EAGAIN;
    return -1;
}

int openAtEndOf(GuardedWalk& walk) {
    for (;;) {
        if (!walk.reachLast()) {
            return -1;
        }
        const int file = openLast(walk);
        // A link is not opened by these flags; any other failure is final.
        if (file >= 0 || !mayMeanLink(errno)) {
            return file;
        }
        // Such a link refers to an open object, and its text names no file. The kernel opens that object.
        if (system::holdsObjectLinks(walk.folder())) {
            return openAt(walk.folder(), walk.name(), appendFlags);
        }
        if (!walk.follow()) {
            return -1;
        }
    }
}

/// The descriptor is as a plain opening would have left it.
void clearNonBlocking(int file) noexcept {
    // Flags are read first, because setting them replaces all of them.
    const int flags = ::fcntl(file, F_GETFL);
    if (flags >= 0) {
        ::fcntl(file, F_SETFL, flags & ~O_NONBLOCK);
    }
}

/// Follows links at the end of the path, one by one, as long as the walk permits it; links to open objects
/// are left to the system. A place where nothing exists yet is a result too: a file may be created there.
/// False with `errno`.
bool reachEndOf(GuardedWalk& walk, GuardedPlace& place) {
    for (;;) {
        struct stat item;
        if (!walk.reachLast()) {
            return false;
        }
        const bool exists = getInformation(walk.folder(), walk.name(), item);
        if (!exists && errno != ENOENT) {
            return false;
        }
        const bool isLink = exists && S_ISLNK(item.st_mode);
        place.isObjectLink = isLink && system::holdsObjectLinks(walk.folder());
        if (!isLink || place.isObjectLink) {
            place.name = walk.name();
            place.folder = walk.releaseFolder();
            return true;
        }
        if (!walk.follow()) {
            return false;
        }
    }
}

} // namespace

bool reachGuarded(const std::string& path, GuardedPlace& place) {
    GuardedWalk walk(path);
    return reachEndOf(walk, place);
}

int openForAppendingGuarded(const std::string& path) noexcept {
    // Called by the log, whose functions do not throw.
    try {
        GuardedWalk walk(path);
        const int file = openAtEndOf(walk);
        if (file >= 0) {
            clearNonBlocking(file);
        }
        return file;
    } catch (const std::bad_alloc&) {
        errno = ENOMEM;
        return -1;
    }
}

bool mayAppendGuarded(const std::string& path) noexcept {
    try {
        GuardedPlace place;
        struct stat folder;
        struct stat item;
        // The guarded opening may still fail for missing permissions, which only the attempt shows.
        return reachGuarded(path, place) && ::fstat(place.folder.number(), &folder) == 0 &&
               getInformation(place.folder.number(), place.name.c_str(), item) &&
               (place.isObjectLink || mayWriteItem(item, folder));
    } catch (const std::bad_alloc&) {
        return false;
    }
}

} // namespace ZQFoundation::detail
