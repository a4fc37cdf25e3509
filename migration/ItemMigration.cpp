// SPDX-License-Identifier: MIT
// Plans one migration: what would be done, or why nothing would.
#include "migration/ItemMigration.h"

#include "foundation/files/FileSystemAnnouncement.h"
#include "foundation/files/ItemIdentity.h"
#include "foundation/files/NSFileManager.h"
#include "foundation/files/PathHandle.h"
#include "foundation/system/OpenFolders.h"
#include "migration/FreeName.h"

namespace ZQFoundation::detail {

const MigratedKind fileKind{false,
                            "NSWorkspace",
                            kFileMigrationDestinationFileExists,
                            kFileMigrationDestinationIsFolder,
                            kFileMigrationDestinationFileOverwritingFailed,
                            kFileMigrationDestinationFileWritingFailed};

// For folders: nobody is notified unless a class has this name, which is not expected.
const MigratedKind folderKind{true,
                              "SomeClass",
                              kFileMigrationDestinationFolderExists,
                              kFileMigrationDestinationIsFile,
                              kFileMigrationDestinationFolderOverwritingFailed,
                              kFileMigrationDestinationFolderWritingFailed};

ItemMigration::ItemMigration(const MigratedKind& kind, const MigrationPolicy& policy, const NSString& source,
                             ItemPlace place, const NSString& destination)
    : kind_(kind), policy_(policy), source_(source), place_(std::move(place)), wanted_(destination),
      workspace_(NSClassFromString(kind.workspaceClass)) {}

// The first reason in this order is the result: source, parent folder, destination. Without a parent there is
// nothing to choose yet; `makeParent` plans again.
const MigrationPlan& ItemMigration::plan(DestinationFolder& parent) {
    plan_ = MigrationPlan{};
    plan_.destination = wanted_;
    plan_.code = testSource();
    if (plan_.code == kFileMigrationSuccess) {
        plan_.code = testParent(parent);
    }
    if (plan_.code == kFileMigrationSuccess && !plan_.makesParent) {
        plan_.code = chooseDestination(parent);
    }
    return plan_;
}

// A folder is not asked whether it is readable: what in it cannot be read fails the copy, with nothing left
// of it.
ZQFileMigrationRetvalType ItemMigration::testSource() const {
    bool isDirectory = false;
    if (!place_) {
        // If its folder cannot be opened, the source still exists.
        return NSFileManager::defaultManager().fileExistsAtPath(source_) ? kind_.writingFailed
                                                                         : kFileMigrationSourceDoesNotExist;
    }
    if (!place_.exists(isDirectory)) {
        return kFileMigrationSourceDoesNotExist;
    }
    if (isDirectory != kind_.isFolder) {
        return kind_.isFolder ? kFileMigrationSourceIsFile : kFileMigrationSourceIsFolder;
    }
    const bool isReadable = kind_.isFolder || ::faccessat(place_.folder(), place_.name(), R_OK, 0) == 0;
    return isReadable ? kFileMigrationSuccess : kFileMigrationSourceFileUnreadable;
}

ZQFileMigrationRetvalType ItemMigration::testParent(DestinationFolder& parent) {
    switch (parent.find()) {
    case DestinationFolder::State::found:
        return kFileMigrationSuccess;
    case DestinationFolder::State::notFolder:
        return kFileMigrationDestinationParentFolderIsFile;
    case DestinationFolder::State::failed:
        return kind_.writingFailed;
    case DestinationFolder::State::missing:
        break;
    }
    if (!policy_.createParent) {
        return kFileMigrationDestinationParentFolderDoesNotExist;
    }
    // Do not create a folder inside the source for a copy that cannot be made.
    if (kind_.isFolder && isInside(wanted_, source_)) {
        return kind_.writingFailed;
    }
    plan_.makesParent = true;
    return kFileMigrationSuccess;
}

ZQFileMigrationRetvalType ItemMigration::makeParent(DestinationFolder& parent) {
    if (plan_.makesParent) {
        if (!parent.make()) {
            return kFileMigrationDestinationParentFolderCreationFailed;
        }
        plan(parent);
    }
    return plan_.code;
}

// Whether something exists at the destination, and what: the link itself and what it refers to, because
// either may be a source of the same run.
bool ItemMigration::look() {
    existing_ = {};
    existingItem_ = {};
    return target_.look(existingItem_) && ::fstatat(target_.folder(), target_.name(), &existing_, 0) == 0;
}

/// The directory flag is written only by a test that finds something. So if a folder has the name of a file,
/// renaming does not help: the flag keeps the value of the first test.
ZQFileMigrationRetvalType ItemMigration::chooseDestination(const DestinationFolder& parent) {
    std::string bytes;
    if (!getPathBytes(wanted_, bytes) || !target_.set(parent.folder(), bytes)) {
        return kind_.writingFailed;
    }
    bool isDirectory = kind_.isFolder;
    bool exists = target_.exists(isDirectory) && look();
    if (exists && !policy_.overwrite) {
        if (!policy_.renameIfExists) {
            return kind_.exists;
        }
        // A dangling link makes a name unavailable, too.
        const NSString name = freeName(wanted_.lastPathComponent(), [&](const std::string& candidate) {
            struct stat ignored;
            return ::fstatat(target_.folder(), candidate.c_str(), &ignored, AT_SYMLINK_NOFOLLOW) != 0;
        });
        plan_.destination = name ? parent.path().stringByAppendingPathComponent(name) : NSString();
        exists = !name || (getPathBytes(name, bytes) && target_.set(parent.folder(), bytes) &&
                           target_.exists(isDirectory));
    }
    if (isDirectory != kind_.isFolder) {
        return kind_.otherKindExists;
    }
    if (!plan_.destination) {
        return kind_.writingFailed; // every numbered name is taken
    }
    struct stat dangling {};
    if (!exists && target_.look(dangling)) {
        return kind_.writingFailed; // a link that refers to nothing is not replaced
    }
    plan_.replaces = exists && policy_.overwrite;
    return testHarm(exists);
}

/// Rejects a migration that would lose the only copy, however the paths are spelled.
ZQFileMigrationRetvalType ItemMigration::testHarm(bool exists) const {
    if (exists && (removalWouldHarm(plan_.destination, source_) || leadsThroughItself(plan_.destination))) {
        return kind_.overwritingFailed;
    }
    return kind_.isFolder && isInside(plan_.destination, source_) ? kind_.writingFailed
                                                                  : kFileMigrationSuccess;
}

// No item has the inode 0: it means that nothing was found at the destination.
bool ItemMigration::isInTheWay(const struct stat& item) const noexcept {
    return existing_.st_ino != 0 && (isSameItem(existing_, item) || isSameItem(existingItem_, item));
}

// The folder of the wanted destination, which is also that of a copy with another name.
void ItemMigration::announceCopy() const {
    announceFileSystemChange(workspace_, wanted_.stringByDeletingLastPathComponent());
}

} // namespace ZQFoundation::detail
