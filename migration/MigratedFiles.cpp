// SPDX-License-Identifier: MIT
// Selects the files that a batch migrates.
#include "migration/MigratedFiles.h"

#include <dirent.h>

#include "migration/HiddenNames.h"
#include "migration/Recovery.h"

namespace ZQFoundation::detail {

// Recovery comes before the folder is read, so that files that get their names back are migrated too.
bool MigratedFiles::willRead(int folder) {
    if (recovers_) {
        recoverFolder(folder);
    }
    return true;
}

bool MigratedFiles::nextItem() {
    while (next()) {
        if (isWanted()) {
            return true;
        }
    }
    return false;
}

// Only the first component of the path decides about a dot, as the path begins with it: "sub/.x" is wanted.
bool MigratedFiles::isWanted() {
    if (parsedHiddenName(name()).kind != HiddenKind::none) {
        skipDescendents(); // another process works on it
        return false;
    }
    const NSString path = relativePath();
    const bool matches =
        !extension_ || extension_.isEqualToString("") || path.pathExtension().isEqualToString(extension_);
    return matches && (includeDotFiles_ || !path.hasPrefix("."));
}

bool MigratedFiles::getLinkTarget(struct stat& target) const noexcept {
    return (kind() == DT_LNK || kind() == DT_UNKNOWN) && ::fstatat(folder(), name(), &target, 0) == 0;
}

// A dangling link has no kind of its own; it keeps that of the item before it, which is deliberate.
bool MigratedFiles::isFile() noexcept {
    struct stat target;
    if (::fstatat(folder(), name(), &target, 0) == 0) {
        isDirectory_ = S_ISDIR(target.st_mode);
    }
    return !isDirectory_;
}

// All files of one folder share a descriptor of it: a window would need too many otherwise.
bool MigratedFiles::getPlace(ItemPlace& place) {
    if (!shared_ || !isSameItem(sharedInformation_, folderInformation())) {
        Descriptor own(::fcntl(folder(), F_DUPFD_CLOEXEC, 0));
        if (!own) {
            return false;
        }
        shared_ = std::make_shared<const Descriptor>(std::move(own));
        sharedInformation_ = folderInformation();
    }
    place = ItemPlace(shared_, name());
    return true;
}

} // namespace ZQFoundation::detail
