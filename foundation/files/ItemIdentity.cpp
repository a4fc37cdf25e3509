// SPDX-License-Identifier: MIT
// Checks whether two paths refer to the same place.
// Names prove nothing: one place may be reached by many paths. Device and inode decide, and for files with
// several names the name, too.
#include "foundation/files/ItemIdentity.h"

#include "foundation/files/FileInformation.h"
#include "foundation/files/ItemPlace.h"
#include "foundation/files/PathHandle.h"
#include "foundation/system/CallerState.h"
#include "foundation/system/Descriptor.h"
#include "foundation/system/LinkReading.h"
#include "foundation/system/OpenFolders.h"

namespace ZQFoundation::detail {

namespace {

bool getParentInformation(const NSString& path, struct stat& information) {
    const NSString parent = path.stringByDeletingLastPathComponent();
    // A path of one name is in the current folder.
    return getTargetInformation(parent.isEqualToString("") ? NSString(".") : parent, information);
}

/// Whether two paths to one and the same item also use the same name of it: a file with several names keeps
/// the others when one is removed.
bool isSameEntry(const NSString& left, const NSString& right, const struct stat& item) {
    if (S_ISDIR(item.st_mode) || item.st_nlink <= 1) {
        return true;
    }
    struct stat leftParent;
    struct stat rightParent;
    // If the parents cannot be looked at, assume the worse.
    return !getParentInformation(left, leftParent) || !getParentInformation(right, rightParent) ||
           (isSameItem(leftParent, rightParent) &&
            // Some file systems ignore case in names.
            left.lastPathComponent().caseInsensitiveCompare(right.lastPathComponent()) == NSOrderedSame);
}

NSString targetOfLink(const NSString& link) {
    std::string bytes;
    std::string target;
    PathHandle handle;
    if (!getPathBytes(link, bytes) || !handle.reach(bytes) ||
        readLink(handle.folder(), handle.name(), target) != LinkResult::link || target.empty()) {
        return nullptr;
    }
    const NSString text = NSString::stringWithFileSystemBytes(target.data(), target.size());
    // A relative target starts in the link's folder.
    return text.hasPrefix("/")
               ? text
               : link.stringByDeletingLastPathComponent().stringByAppendingPathComponent(text);
}

/// Whether the item is on the way from the path along its links to their targets.
bool isMetAlongLinks(const struct stat& item, const NSString& itemPath, NSString path) {
    // Bounded, since links may form a loop.
    for (int links = 0; path && links <= maxLinks; ++links) {
        struct stat step;
        if (!getItemInformation(path, step)) {
            return false;
        }
        if (isSameItem(step, item) && isSameEntry(itemPath, path, item)) {
            return true;
        }
        if (!S_ISLNK(step.st_mode)) {
            return false;
        }
        path = targetOfLink(path);
    }
    return false;
}

/// Whether the item is one of the folders, or links to folders, that the path names.
bool isSpelledWith(const struct stat& item, NSString path) {
    for (path = path.stringByDeletingLastPathComponent(); path.length() > 1;
         path = path.stringByDeletingLastPathComponent()) {
        struct stat step;
        if (getItemInformation(path, step) && isSameItem(step, item)) {
            return true;
        }
    }
    return false;
}

/// Whether the folder is the one at the path or above it.
bool isAtOrAbovePath(const struct stat& folder, const NSString& path) {
    // By open folders, going up: independent of names.
    std::string bytes;
    const SharedFolder place = getPathBytes(path, bytes) ? openSharedFolder(bytes) : nullptr;
    return place && isAtOrAbove(folder, place->number());
}

/// The deepest folder of the path that exists, the path itself included.
NSString existingFront(NSString path) {
    struct stat information;
    // Missing folders at the end would be made below it.
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
    // The source would be lost if it is the same item or found through it, if its path passes through it, or
    // if it or its folder is inside it.
    return isMetAlongLinks(item, destination, source) || isSpelledWith(item, source) ||
           (S_ISDIR(item.st_mode) &&
            (isAtOrAbovePath(item, source) || isAtOrAbovePath(item, existingFront(sourceFolder))));
}

bool leadsThroughItself(const NSString& path) {
    const CallerState callerState;
    struct stat item;
    return getItemInformation(path, item) && isSpelledWith(item, path);
}

bool isInside(const NSString& destination, const NSString& source) {
    const CallerState callerState;
    struct stat folder;
    return getItemInformation(source, folder) && S_ISDIR(folder.st_mode) &&
           isAtOrAbovePath(folder, existingFront(destination.stringByDeletingLastPathComponent()));
}

} // namespace ZQFoundation::detail
