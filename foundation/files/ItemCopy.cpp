// SPDX-License-Identifier: MIT
// Copies single files, links and special items, and completes the copies. The order of steps keeps a copy
// closed until it is complete, and never lets it be more open than its source.
#include "foundation/files/ItemCopy.h"

#include <string>

#include "foundation/files/FileTimes.h"
#include "foundation/system/FolderNames.h"
#include "foundation/system/HeldItem.h"
#include "foundation/system/LinkReading.h"
#include "foundation/system/OpenFolders.h"

namespace ZQFoundation::detail {

namespace {

constexpr mode_t kindBits = S_IFMT;

// Permissions only mean the same with the same owner and group.
bool isOwnerKept(const struct stat& source, const struct stat& made) noexcept {
    return made.st_uid == source.st_uid && made.st_gid == source.st_gid;
}

/// Which of the source's permissions a copy with this owner may have: nobody gets the right to run a program
/// as the user who copies it.
mode_t permissionsFor(const struct stat& made, const struct stat& source) noexcept {
    mode_t permissions = source.st_mode & 07777;
    const bool isKept = isOwnerKept(source, made);
    permissions &= isKept ? ~mode_t{0} : ~mode_t{S_ISUID};
    // On a folder this bit gives the group to new items.
    const bool mayHandOn = S_ISDIR(source.st_mode) && made.st_gid == source.st_gid;
    permissions &= isKept || mayHandOn ? ~mode_t{0} : ~mode_t{S_ISGID};
    return permissions;
}

/// Sets the owner and group where that is allowed, or the group alone, of open and of held items, by
/// `owner(user, group)` and `look(information)`. False when the item cannot be looked at.
/// The owner is read again afterwards, because the permissions depend on what the system has allowed.
template <class SetOwner, class Look>
bool takeOwner(const struct stat& source, struct stat& made, const SetOwner& setOwner, const Look& look) {
    if (!look(made)) {
        return false;
    }
    if (isOwnerKept(source, made)) {
        return true;
    }
    // An ordinary user cannot give files away but may choose among own groups.
    if (!setOwner(source.st_uid, source.st_gid)) {
        setOwner(static_cast<uid_t>(-1), source.st_gid);
    }
    return look(made);
}

/// What the listing said may be out of date, or the item was exchanged since it was looked at.
bool isStillFile(const struct stat& information) noexcept {
    if (S_ISREG(information.st_mode)) {
        return true;
    }
    errno = ESTALE;
    return false;
}

bool makeLink(const CopyPlace& place) {
    std::string target;
    const LinkResult result = readLink(place.sourceFolder, place.sourceName, target);
    // The item was a link when it was looked at, so it was exchanged.
    if (result == LinkResult::other) {
        errno = ESTALE;
    }
    return result == LinkResult::link &&
           ::symlinkat(target.c_str(), place.destinationFolder, place.destinationName) == 0;
}

bool makeSpecialItem(const struct stat& information, const CopyPlace& place) {
    switch (information.st_mode & kindBits) {
    case S_IFLNK:
        return makeLink(place);
    case S_IFIFO:
    case S_IFSOCK:
    case S_IFCHR:
    case S_IFBLK:
        // A new item of the same kind: what is inside a pipe or device is not copied.
        return system::makeSpecialFile(place.destinationFolder, place.destinationName,
                                       information.st_mode & kindBits, information.st_rdev);
    default:
        errno = ENOTSUP;
        return false;
    }
}

/// Whether the held item is the one that was just made, not one that somebody has put in its place.
/// A link count of 1 excludes a second name that somebody gave to an item of their own.
bool isOurs(const struct stat& made, const struct stat& source) noexcept {
    return (made.st_mode & kindBits) == (source.st_mode & kindBits) && made.st_nlink == 1;
}

/// In a folder that others may write to, another folder may have taken the new one's place.
/// Anything in it means that it is not the folder just made, which is empty.
bool isFolderOurs(int folder, int parent) {
    struct stat made;
    struct stat around;
    FolderNames names;
    if (::fstat(folder, &made) != 0 || ::fstat(parent, &around) != 0 || !names.read(folder)) {
        return false;
    }
    // On some file systems everything has one owner.
    const bool isTrusted = made.st_uid == ::geteuid() || (around.st_mode & (S_IWGRP | S_IWOTH)) == 0;
    if (!isTrusted || !names.isAtEnd()) {
        errno = ESTALE;
        return false;
    }
    return true;
}

/// Gives the owner of the new folder the permissions that the access list of its parent denied.
bool admitOwner(const CopyPlace& place) {
    system::HeldItem item;
    struct stat made;
    return item.hold(place.destinationFolder, place.destinationName) && item.getInformation(made) &&
           S_ISDIR(made.st_mode) && made.st_uid == ::geteuid() && item.setPermissions(0700);
}

/// Whether one more descriptor is available; checked before making something that then could not be opened.
bool hasSpareDescriptor(int open) noexcept {
    return static_cast<bool>(Descriptor(::fcntl(open, F_DUPFD_CLOEXEC, 0)));
}

} // namespace

bool completeCopy(int source, int destination, const struct stat& information) {
    struct stat made;
    // The owner first: changing it clears permission bits.
    const auto setOwner = [&](uid_t owner, gid_t group) {
        return ::fchown(destination, owner, group) == 0;
    };
    if (!takeOwner(information, made, setOwner,
                   [&](struct stat& found) { return ::fstat(destination, &found) == 0; })) {
        return false;
    }
    // Access lists before permissions, which alone might briefly allow more.
    // Only when all contents are made: a folder's list for new items would act on them.
    if (!system::copyExtendedAttributes(source, destination)) {
        return false;
    }
    system::copyCreationTime(source, destination);
    // After all contents, since every write and attribute changes the times.
    const timespec times[2] = {accessTime(information), modificationTime(information)};
    return ::fchmod(destination, permissionsFor(made, information)) == 0 &&
           ::futimens(destination, times) == 0;
}

bool closeWell(Descriptor& file) noexcept {
    // After an interrupted call it is unknown whether the last data were written.
    return ::close(file.release()) == 0;
}

// The information is read from what was opened, so it belongs to the data that follow.
bool openForCopy(int folder, const char* name, bool isEvidence, Descriptor& file, struct stat& information) {
    // Without O_NONBLOCK a pipe that has just taken the file's place would make us wait.
    file = Descriptor(openAt(folder, name, O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!file || ::fstat(file.number(), &information) != 0 || !isStillFile(information)) {
        return false;
    }
    // A change within the same tick of the clock would not show later; after the wait, the facts are read
    // once more.
    return !isEvidence || !system::mightHideChange(changeTime(information)) ||
           ::fstat(file.number(), &information) == 0;
}

bool fillCopy(int source, const struct stat& information, int made, bool isForeign,
              system::CopyWatch* watch) {
    // Inherited lists may allow others more than the permissions do.
    return (!isForeign || system::removeInheritedAccessList(made)) &&
           system::copyFileData(source, made, system::DataMeans::clone, watch) &&
           completeCopy(source, made, information);
}

bool copyRegularFile(int source, const struct stat& information, const CopyPlace& place,
                     system::CopyWatch* watch) {
    // O_EXCL: neither an existing file nor a link is written to. 0600 until the end.
    Descriptor file(openAt(place.destinationFolder, place.destinationName,
                           O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC | O_NOCTTY, 0600));
    return file && fillCopy(source, information, file.number(), place.isForeign, watch) && closeWell(file);
}

bool copySpecialItem(const struct stat& information, const CopyPlace& place, struct stat& made) {
    system::HeldItem source;
    system::HeldItem item;
    // The source is held first, so that it cannot be exchanged between reading and copying its attributes.
    if (!source.hold(place.sourceFolder, place.sourceName) || !hasSpareDescriptor(place.destinationFolder) ||
        !makeSpecialItem(information, place) || !item.hold(place.destinationFolder, place.destinationName) ||
        !item.getInformation(made)) {
        return false;
    }
    if (!isOurs(made, information)) {
        errno = ESTALE;
        return false;
    }
    const auto setOwner = [&](uid_t owner, gid_t group) {
        return item.setOwner(owner, group);
    };
    if (!takeOwner(information, made, setOwner,
                   [&](struct stat& found) { return item.getInformation(found); }) ||
        (place.isForeign && !item.removeInheritedAccessList())) {
        return false;
    }
    if (!item.takeExtendedAttributes(source) ||
        // A link's own permissions mean nothing on this kind of system.
        (!S_ISLNK(made.st_mode) && !item.setPermissions(permissionsFor(made, information)))) {
        return false;
    }
    return item.setTimes({accessTime(information), modificationTime(information)});
}

bool makeCopyFolder(const CopyPlace& place, Descriptor& folder) {
    if (!hasSpareDescriptor(place.destinationFolder) ||
        ::mkdirat(place.destinationFolder, place.destinationName, 0700) != 0) {
        return false;
    }
    // Not following links: somebody may have replaced the folder in between.
    folder = Descriptor(openAt(place.destinationFolder, place.destinationName, folderFlags));
    if (!folder && errno == EACCES && admitOwner(place)) {
        folder = Descriptor(openAt(place.destinationFolder, place.destinationName, folderFlags));
    }
    return folder && (!place.isForeign || (isFolderOurs(folder.number(), place.destinationFolder) &&
                                           system::removeInheritedAccessList(folder.number()) &&
                                           ::fchmod(folder.number(), 0700) == 0)); // denied by that list
}

} // namespace ZQFoundation::detail
