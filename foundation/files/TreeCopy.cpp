// SPDX-License-Identifier: MIT
// Copies of whole trees.
// Each folder is read completely before it is copied, so that items made meanwhile, such as the copies
// themselves, are not seen.
#include "foundation/files/TreeCopy.h"

#include <utility>

#include <dirent.h>

namespace ZQFoundation::detail {

namespace {

bool isTooManyOpen(int error) noexcept { return error == EMFILE || error == ENFILE; }

} // namespace

bool TreeCopy::run(Descriptor source, const CopyPlace& place) {
    return enter(std::move(source), place) && copyAll();
}

bool TreeCopy::fill(Descriptor source, Descriptor made) {
    Level level;
    return read(source, level) && push(std::move(level), std::move(source), std::move(made)) && copyAll();
}

bool TreeCopy::copyAll() {
    while (!levels_.empty()) {
        // A folder whose list is at its end is completed and left.
        if (!(levels_.back().names.isAtEnd() ? leave() : copyNext(levels_.back()))) {
            return false;
        }
    }
    return true;
}

bool TreeCopy::enter(Descriptor source, const CopyPlace& place) {
    Level level;
    Descriptor made;
    // In this order: nothing is made unless the source could be read and is not the copy itself.
    if (!read(source, level) || !isOutsideTheCopy(level.information) || !makeCopyFolder(place, made)) {
        return false;
    }
    // The start itself is not an item of the record.
    if (!levels_.empty()) {
        record(place, level.information);
    }
    return push(std::move(level), std::move(source), std::move(made));
}

/// Everything that may need one more descriptor happens before the folder of the copy is made.
bool TreeCopy::read(const Descriptor& source, Level& level) const {
    level.pathLength = path_.size();
    return ::fstat(source.number(), &level.information) == 0 && level.names.read(source.number());
}

bool TreeCopy::push(Level level, Descriptor source, Descriptor made) {
    // The first folder made is remembered, to recognize it inside the source.
    if ((levels_.empty() && ::fstat(made.number(), &firstMade_) != 0) || !sources_.push(std::move(source)) ||
        !destinations_.push(std::move(made))) {
        return false;
    }
    levels_.push_back(std::move(level));
    return true;
}

/// A mount can put the copy inside its source where no path upwards shows it.
bool TreeCopy::isOutsideTheCopy(const struct stat& source) const noexcept {
    if (!levels_.empty() && isSameItem(source, firstMade_)) {
        errno = EINVAL;
        return false;
    }
    return true;
}

bool TreeCopy::copyNext(Level& level) {
    const FolderNames::Entry entry = level.names.next();
    path_.resize(level.pathLength);
    path_.append("/").append(entry.name);
    if (notes_.observer != nullptr && !notes_.observer->mayCopy(path_)) {
        errno = ECANCELED;
        return false;
    }
    bool isCopied = copyEntry(entry);
    // A lack of descriptors is noticed before anything is created. A folder closed here is opened again on
    // the way back.
    while (!isCopied && isTooManyOpen(errno) && (sources_.closeOne() || destinations_.closeOne())) {
        isCopied = copyEntry(entry);
    }
    return isCopied;
}

bool TreeCopy::copyEntry(const FolderNames::Entry& entry) {
    // Folders within the copy were made by it: nobody else is expected there.
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

bool TreeCopy::copyFile(const CopyPlace& place) {
    Descriptor file;
    struct stat information;
    // `openForCopy` reads the information that the record needs.
    return openForCopy(place.sourceFolder, place.sourceName, notes_.record != nullptr, file, information) &&
           copyRegularFile(file.number(), information, place, notes_.observer) && record(place, information);
}

/// Copies anything that is not known to be a file or folder.
bool TreeCopy::copyOther(const CopyPlace& place) {
    struct stat information;
    struct stat made;
    if (::fstatat(place.sourceFolder, place.sourceName, &information, AT_SYMLINK_NOFOLLOW) != 0) {
        return false;
    }
    if (S_ISDIR(information.st_mode)) {
        return copyFolder(place);
    }
    if (S_ISREG(information.st_mode)) {
        return copyFile(place);
    }
    return copySpecialItem(information, place, made) && record(place, information);
}

bool TreeCopy::copyFolder(const CopyPlace& place) {
    Descriptor folder(openAt(place.sourceFolder, place.sourceName, folderFlags));
    return folder && enter(std::move(folder), place);
}

/// Returns true.
bool TreeCopy::record(const CopyPlace& place, const struct stat& information) {
    if (notes_.record != nullptr) {
        notes_.record->add(levels_.back().information, place.sourceName, information);
    }
    return true;
}

/// The folder above must be open before the copy gets its permissions, which may not allow access to it.
bool TreeCopy::leave() {
    path_.resize(levels_.back().pathLength);
    // Completed last, since every item made in it changed its times.
    if (!sources_.reopenParent() || !destinations_.reopenParent() ||
        !completeCopy(sources_.current(), destinations_.current(), levels_.back().information)) {
        return false;
    }
    levels_.pop_back();
    sources_.pop();
    destinations_.pop();
    return true;
}

} // namespace ZQFoundation::detail
