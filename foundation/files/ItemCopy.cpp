// SPDX-License-Identifier: MIT
#include "foundation/files/ItemCopy.h"

#include <string>

#include "foundation/files/FileTimes.h"
#include "foundation/files/LinkReading.h"
#include "foundation/system/FileSystem.h"

namespace ZQFoundation::detail {

namespace {

constexpr mode_t setIdBits = S_ISUID | S_ISGID;

/// The permissions for the copy of an item whose owner could not be kept: nobody gets the right to run as the
/// one who copies.
mode_t permissionsOf(const struct stat& information, bool isOwnerKept) noexcept {
    const mode_t permissions = information.st_mode & 07777;
    return isOwnerKept ? permissions : permissions & ~setIdBits;
}

bool closeWell(Descriptor& file) noexcept { return ::close(file.release()) == 0 || errno == EINTR; }

bool setTimes(int folder, const char* name, const struct stat& information) noexcept {
    const timespec times[2] = {accessTime(information), modificationTime(information)};
    return ::utimensat(folder, name, times, AT_SYMLINK_NOFOLLOW) == 0;
}

bool copyLink(const CopyPlace& place) {
    std::string target;
    if (readLink(place.sourceFolder, place.sourceName, target) != LinkResult::link) {
        errno = errno == 0 ? ESTALE : errno;
        return false;
    }
    return ::symlinkat(target.c_str(), place.destinationFolder, place.destinationName) == 0;
}

bool makeSpecialItem(const struct stat& information, const CopyPlace& place) {
    switch (information.st_mode & S_IFMT) {
    case S_IFLNK:
        return copyLink(place);
    case S_IFIFO:
        return ::mkfifoat(place.destinationFolder, place.destinationName, 0600) == 0;
    case S_IFSOCK:
    case S_IFCHR:
    case S_IFBLK:
        return ::mknodat(place.destinationFolder, place.destinationName,
                         static_cast<mode_t>((information.st_mode & S_IFMT) | 0600),
                         information.st_rdev) == 0;
    default:
        errno = EOPNOTSUPP;
        return false;
    }
}

} // namespace

bool completeCopy(int source, int destination, const struct stat& information) {
    // The owner first: a change of it takes permissions away.
    const bool isOwnerKept = ::fchown(destination, information.st_uid, information.st_gid) == 0;
    const bool isGroupKept =
        isOwnerKept || ::fchown(destination, static_cast<uid_t>(-1), information.st_gid) == 0;
    // Access lists before permissions, which alone might allow more for a moment.
    const system::AttributesCopied attributes = system::copyExtendedAttributes(source, destination);
    if (attributes == system::AttributesCopied::failed) {
        return false;
    }
    mode_t permissions = permissionsOf(information, isOwnerKept && isGroupKept);
    if (attributes == system::AttributesCopied::withoutAccessList) {
        permissions &=
            ~static_cast<mode_t>(S_IRWXG); // with a list these bits say what the list allows at most
    }
    const timespec times[2] = {accessTime(information), modificationTime(information)};
    return ::fchmod(destination, permissions) == 0 && ::futimens(destination, times) == 0;
}

bool copyRegularFile(int source, const struct stat& information, const CopyPlace& place) {
    Descriptor file(openAt(place.destinationFolder, place.destinationName,
                           O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC | O_NOCTTY, 0600));
    return file && system::copyFileData(source, file.number()) &&
           completeCopy(source, file.number(), information) && closeWell(file);
}

bool copySpecialItem(const struct stat& information, const CopyPlace& place) {
    if (!makeSpecialItem(information, place)) {
        return false;
    }
    const int folder = place.destinationFolder;
    const char* const name = place.destinationName;
    const bool isOwnerKept =
        ::fchownat(folder, name, information.st_uid, information.st_gid, AT_SYMLINK_NOFOLLOW) == 0;
    if (!S_ISLNK(information.st_mode)) {
        // Nobody could have put a link in its place: its name is in a folder that only its maker may change,
        // or it is the copy's own name, and then only the permissions of a pipe are at stake.
        struct stat made;
        if (::fstatat(folder, name, &made, AT_SYMLINK_NOFOLLOW) != 0 || S_ISLNK(made.st_mode) ||
            ::fchmodat(folder, name, permissionsOf(information, isOwnerKept), 0) != 0) {
            return false;
        }
    }
    return setTimes(folder, name, information);
}

bool makeCopyFolder(const CopyPlace& place, Descriptor& folder) noexcept {
    if (::mkdirat(place.destinationFolder, place.destinationName, 0700) != 0) {
        return false;
    }
    folder = Descriptor(openAt(place.destinationFolder, place.destinationName,
                               O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat made;
    if (!folder || ::fstat(folder.number(), &made) != 0) {
        return false;
    }
    if (made.st_uid != ::geteuid() || (made.st_mode & 0077) != 0) {
        errno = ESTALE; // somebody has put another folder in its place
        return false;
    }
    return true;
}

} // namespace ZQFoundation::detail
