// SPDX-License-Identifier: MIT
#include "foundation/files/ItemIdentity.h"

#include "foundation/files/FileInformation.h"
#include "foundation/files/PathHandle.h"
#include "foundation/system/CallerState.h"
#include "foundation/system/Descriptor.h"
#include "foundation/system/FileSystem.h"

namespace ZQFoundation::detail {

namespace {

constexpr int mostLinks = 32;

/// As deep as a tree may reasonably be; a file system that answers ".." in a circle does not keep us for
/// ever.
constexpr int mostLevels = 1 << 20;

bool isSame(const struct stat& left, const struct stat& right) noexcept {
    return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

bool getParentInformation(const NSString& path, struct stat& information) {
    const NSString parent = path.stringByDeletingLastPathComponent();
    return getTargetInformation(parent.isEqualToString("") ? NSString(".") : parent, information);
}

/// Whether two paths whose items are one and the same name that one item in the same way: a file with several
/// names keeps the others when one is removed.
bool isSameEntry(const NSString& left, const NSString& right, const struct stat& item) {
    if (S_ISDIR(item.st_mode) || item.st_nlink <= 1) {
        return true;
    }
    struct stat leftParent;
    struct stat rightParent;
    return !getParentInformation(left, leftParent) || !getParentInformation(right, rightParent) ||
           (isSame(leftParent, rightParent) &&
            left.lastPathComponent().caseInsensitiveCompare(right.lastPathComponent()) == NSOrderedSame);
}

NSString targetOfLink(const NSString& link) {
    std::string bytes;
    PathHandle handle;
    std::string target(1024, '\0');
    if (!getPathBytes(link, bytes) || !handle.reach(bytes)) {
        return nullptr;
    }
    for (;;) {
        const ssize_t length = ::readlinkat(handle.folder(), handle.name(), target.data(), target.size());
        if (length <= 0) {
            return nullptr;
        }
        if (static_cast<std::size_t>(length) < target.size()) {
            const NSString text =
                NSString::stringWithFileSystemBytes(target.data(), static_cast<std::size_t>(length));
            return text.hasPrefix("/")
                       ? text
                       : link.stringByDeletingLastPathComponent().stringByAppendingPathComponent(text);
        }
        target.resize(2 * target.size());
    }
}

/// Whether the item is met on the way from the path along its links to what they lead to.
bool isMetAlongLinks(const struct stat& item, const NSString& itemPath, NSString path) {
    for (int links = 0; path && links <= mostLinks; ++links) {
        struct stat step;
        if (!getItemInformation(path, step)) {
            return false;
        }
        if (isSame(step, item) && isSameEntry(itemPath, path, item)) {
            return true;
        }
        if (!S_ISLNK(step.st_mode)) {
            return false;
        }
        path = targetOfLink(path);
    }
    return false;
}

/// Whether the item is one of the folders, or links to folders, that the path is spelled with.
bool isSpelledWith(const struct stat& item, NSString path) {
    for (path = path.stringByDeletingLastPathComponent(); path.length() > 1;
         path = path.stringByDeletingLastPathComponent()) {
        struct stat step;
        if (getItemInformation(path, step) && isSame(step, item)) {
            return true;
        }
    }
    return false;
}

/// Whether the folder is the one at the path or stands above it, found by going up folder by folder.
bool isAtOrAbove(const struct stat& folder, const NSString& path) {
    std::string bytes;
    PathHandle handle;
    if (!getPathBytes(path, bytes) || !handle.reach(bytes)) {
        return false;
    }
    Descriptor current(openAt(handle.folder(), handle.name(), system::openForSearch));
    struct stat information;
    struct stat below {};
    for (int level = 0; current && level < mostLevels; ++level) {
        if (::fstat(current.number(), &information) != 0) {
            return false;
        }
        if (isSame(information, folder)) {
            return true;
        }
        if (level > 0 && isSame(information, below)) {
            return false; // the root is its own parent
        }
        below = information;
        current = Descriptor(openAt(current.number(), "..", system::openForSearch));
    }
    return false;
}

/// The deepest folder of the path that exists, the path itself included.
NSString existingFront(NSString path) {
    struct stat information;
    while (path && !path.isEqualToString("") && !path.isEqualToString("/")) {
        if (getTargetInformation(path, information) && S_ISDIR(information.st_mode)) {
            return path;
        }
        path = path.stringByDeletingLastPathComponent();
    }
    return path.isEqualToString("") ? NSString(".") : path;
}

} // namespace

bool removalWouldHarm(const NSString& destination, const NSString& source) {
    const CallerState callerState;
    struct stat item;
    if (!getItemInformation(destination, item)) {
        return false;
    }
    const NSString sourceFolder = source.stringByDeletingLastPathComponent();
    return isMetAlongLinks(item, destination, source) || isSpelledWith(item, source) ||
           (S_ISDIR(item.st_mode) &&
            (isAtOrAbove(item, source) || isAtOrAbove(item, existingFront(sourceFolder))));
}

bool standsInside(const NSString& destination, const NSString& source) {
    const CallerState callerState;
    struct stat folder;
    return getItemInformation(source, folder) && S_ISDIR(folder.st_mode) &&
           isAtOrAbove(folder, existingFront(destination.stringByDeletingLastPathComponent()));
}

} // namespace ZQFoundation::detail
