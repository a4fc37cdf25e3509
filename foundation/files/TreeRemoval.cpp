// SPDX-License-Identifier: MIT
// Removal of whole trees.
// Only items seen in open folders are removed, by name in that folder: an exchanged link or folder cannot
// lead it elsewhere.
#include "foundation/files/TreeRemoval.h"

#include <utility>

#include <dirent.h>

#include "foundation/system/FileSystem.h"
#include "foundation/system/HeldItem.h"

namespace ZQFoundation::detail {

namespace {

/// How often a folder that others keep filling is read.
/// After this many attempts, somebody else is winning the race.
constexpr int maxReadings = 16;

bool isOtherThanFolder(int error) noexcept { return error == ENOTDIR || error == ELOOP || error == EMLINK; }

} // namespace

bool TreeRemoval::run() {
    if (!enterOrRemoveEmpty(folder_, name_)) {
        return false;
    }
    while (!levels_.empty()) {
        if (!(levels_.back().names.isAtEnd() ? leave() : removeNext())) {
            return false;
        }
    }
    return true;
}

bool TreeRemoval::removeNext() {
    const FolderNames::Entry entry = levels_.back().names.next();
    path_.resize(levels_.back().pathLength);
    path_.append("/").append(entry.name);
    // What is not in the record was never copied, so it stays.
    if (record_ != nullptr && !isRecorded(entry.name)) {
        isSomethingLeft_ = true;
        return true;
    }
    return removeEntry(entry);
}

bool TreeRemoval::isRecorded(const char* name) const {
    struct stat information;
    return ::fstatat(folders_.current(), name, &information, AT_SYMLINK_NOFOLLOW) == 0
               ? record_->holds(levels_.back().information, name, information)
               : errno == ENOENT; // nothing to leave
}

bool TreeRemoval::removeEntry(const FolderNames::Entry& entry) {
    if (entry.kind != DT_DIR) {
        if (::unlinkat(folders_.current(), entry.name, 0) == 0 || errno == ENOENT) {
            return true;
        }
        // The kind is not always known, and may be out of date.
        // Systems report EISDIR or EPERM for removing a folder this way.
        if (errno != EISDIR && errno != EPERM) {
            return false;
        }
    }
    return enterOrRemoveEmpty(folders_.current(), entry.name);
}

/// Enters the folder. One that cannot be entered is removed if it is empty, or no longer a folder.
bool TreeRemoval::enterOrRemoveEmpty(int folder, const char* name) {
    if (Descriptor next = openFolder(folder, name)) {
        return push(std::move(next));
    }
    const int error = errno;
    const bool isOther = isOtherThanFolder(error);
    if (::unlinkat(folder, name, isOther ? 0 : AT_REMOVEDIR) == 0) {
        return true;
    }
    // Neither entered nor empty: the error of opening is the reason to report.
    errno = isOther ? errno : error;
    return !levels_.empty() && errno == ENOENT;
}

Descriptor TreeRemoval::openFolder(int folder, const char* name) {
    Descriptor opened(openAt(folder, name, folderFlags));
    // Folders above are reopened when they are needed.
    while (!opened && (errno == EMFILE || errno == ENFILE) && folders_.closeOne()) {
        opened = Descriptor(openAt(folder, name, folderFlags));
    }
    if (!opened && errno == EACCES && makesWritable_) {
        // Held while its permissions change, so that no other item that takes the name is changed.
        system::HeldItem held;
        struct stat information;
        if (held.hold(folder, name) && held.getInformation(information) && S_ISDIR(information.st_mode) &&
            held.setPermissions(0700)) {
            return Descriptor(openAt(folder, name, folderFlags));
        }
        errno = EACCES;
    }
    return opened;
}

// Facts are read from the open folder, so they belong to what will be emptied.
bool TreeRemoval::push(Descriptor opened) {
    system::ItemFacts facts;
    if (!system::getItemFacts(opened.number(), "", facts)) {
        return false;
    }
    if (facts.isMountPoint) {
        errno = EBUSY; // it could not be removed in the end, only emptied
        return false;
    }
    if (makesWritable_ && (facts.information.st_mode & S_IRWXU) != S_IRWXU) {
        ::fchmod(opened.number(), S_IRWXU);
    }
    // With the information from before the removal, which the record contains.
    Level level{facts.information, {}, path_.size(), 1};
    if (!level.names.read(opened.number()) || !folders_.push(std::move(opened))) {
        return false;
    }
    levels_.push_back(std::move(level));
    return true;
}

/// The folder is empty, except for what is to be left: removes it and continues in the one above.
bool TreeRemoval::leave() {
    path_.resize(levels_.back().pathLength);
    if (!folders_.reopenParent()) {
        return false;
    }
    // The top folder is removed by the name it was given.
    const bool isTop = levels_.size() == 1;
    const std::size_t above = isTop ? 0 : levels_[levels_.size() - 2].pathLength + 1;
    const std::string name = isTop ? std::string(name_) : path_.substr(above);
    const int folder = isTop ? folder_ : folders_.parent();
    if (::unlinkat(folder, name.c_str(), AT_REMOVEDIR) != 0 && errno != ENOENT) {
        const bool holdsSomething = errno == ENOTEMPTY || errno == EEXIST;
        // Without a record everything is to go, so a folder that is not empty is read again.
        if (!holdsSomething || (record_ == nullptr && !readAgain())) {
            return false;
        }
        if (record_ == nullptr) {
            return true;
        }
        isSomethingLeft_ = true;
    }
    levels_.pop_back();
    folders_.pop();
    return true;
}

/// Reads a folder again: others have put something into it, or the file system's list was incomplete.
bool TreeRemoval::readAgain() {
    Level& level = levels_.back();
    if (++level.readings > maxReadings) {
        errno = ENOTEMPTY;
        return false;
    }
    level.names = FolderNames();
    return level.names.read(folders_.current());
}

} // namespace ZQFoundation::detail
