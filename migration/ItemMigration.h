// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_MIGRATION_ITEMMIGRATION_H
#define ZQFOUNDATION_MIGRATION_ITEMMIGRATION_H

#include "foundation/objects/ClassesByName.h"
#include "migration/FreePath.h"
#include "migration/ZQFileMigrator.h"

namespace ZQFoundation::detail {

/// How files and folders differ.
struct MigratedKind {
    bool isFolder;
    const char* workspaceClass;
    ZQFileMigrationRetvalType exists;
    ZQFileMigrationRetvalType otherKindExists;
    ZQFileMigrationRetvalType overwritingFailed;
    ZQFileMigrationRetvalType writingFailed;
};

inline constexpr MigratedKind fileKind{false,
                                       "NSWorkspace",
                                       kFileMigrationDestinationFileExists,
                                       kFileMigrationDestinationIsFolder,
                                       kFileMigrationDestinationFileOverwritingFailed,
                                       kFileMigrationDestinationFileWritingFailed};

// The desktop is told of files only: no process is expected to have a class of this name.
inline constexpr MigratedKind folderKind{true,
                                         "SomeClass",
                                         kFileMigrationDestinationFolderExists,
                                         kFileMigrationDestinationIsFile,
                                         kFileMigrationDestinationFolderOverwritingFailed,
                                         kFileMigrationDestinationFolderWritingFailed};

struct MigrationPolicy {
    bool keepOriginal = false;
    bool createParent = false;
    bool overwrite = false;
    bool renameIfExists = false;
};

/// One migration; each step answers success to go on.
///
/// All that touches the disk goes through `Files`, so that the same steps serve a real run (`FilesOnDisk`)
/// and a trial that changes nothing. Kind, policy and files must outlive the migration.
template <class Files>
class ItemMigration {
public:
    ItemMigration(Files& files, const MigratedKind& kind, const MigrationPolicy& policy,
                  const NSString& source, const NSString& destination)
        : files_(files), kind_(kind), policy_(policy), source_(source.stringByExpandingTildeInPath()),
          sourceParent_(source_.stringByDeletingLastPathComponent()),
          destination_(destination.stringByExpandingTildeInPath()),
          destinationParent_(destination_.stringByDeletingLastPathComponent()),
          workspace_(NSClassFromString(kind.workspaceClass)) {}

    ZQFileMigrationRetvalType run() {
        using Step = ZQFileMigrationRetvalType (ItemMigration::*)();
        for (const Step step :
             {&ItemMigration::testSource, &ItemMigration::prepareParent, &ItemMigration::chooseDestination,
              &ItemMigration::clearDestination, &ItemMigration::copy, &ItemMigration::removeSource}) {
            if (const ZQFileMigrationRetvalType code = (this->*step)(); code != kFileMigrationSuccess) {
                return code;
            }
        }
        return kFileMigrationSuccess;
    }

    /// Where the copy is, or was to be; after `run` the name that was chosen.
    const NSString& destination() const noexcept { return destination_; }

private:
    ZQFileMigrationRetvalType testSource() {
        bool isDirectory = false;
        if (!files_.exists(source_, &isDirectory)) {
            return kFileMigrationSourceDoesNotExist;
        }
        if (isDirectory != kind_.isFolder) {
            return kind_.isFolder ? kFileMigrationSourceIsFile : kFileMigrationSourceIsFolder;
        }
        if (!kind_.isFolder && !files_.isReadable(source_)) {
            return kFileMigrationSourceFileUnreadable;
        }
        return kFileMigrationSuccess;
    }

    ZQFileMigrationRetvalType prepareParent() {
        bool isDirectory = false;
        if (files_.exists(destinationParent_, &isDirectory)) {
            return isDirectory ? kFileMigrationSuccess : kFileMigrationDestinationParentFolderIsFile;
        }
        if (!policy_.createParent) {
            return kFileMigrationDestinationParentFolderDoesNotExist;
        }
        // No folder is made inside the source for a copy that cannot be.
        if (files_.standsInside(destination_, source_)) {
            return kind_.writingFailed;
        }
        return files_.makeFolders(destinationParent_) ? kFileMigrationSuccess
                                                      : kFileMigrationDestinationParentFolderCreationFailed;
    }

    /// The directory flag is written only by a test that finds something. So a free name for a folder that is
    /// in the way of a file does not help: the flag stays as the first test has set it.
    ZQFileMigrationRetvalType chooseDestination() {
        bool isDirectory = kind_.isFolder;
        destinationExists_ = files_.exists(destination_, &isDirectory);
        if (destinationExists_ && !policy_.overwrite) {
            if (!policy_.renameIfExists) {
                return kind_.exists;
            }
            destination_ = freePath(destination_, " ", defaultAttempts, [this](const NSString& candidate) {
                return !files_.exists(candidate, nullptr);
            });
            destinationExists_ = files_.exists(destination_, &isDirectory);
        }
        return isDirectory == kind_.isFolder ? kFileMigrationSuccess : kind_.otherKindExists;
    }

    ZQFileMigrationRetvalType clearDestination() {
        if (!destination_) {
            return kind_.writingFailed; // every numbered name is taken
        }
        if (destinationExists_ && files_.removalWouldHarm(destination_, source_)) {
            return kind_.overwritingFailed;
        }
        // The copy would fail, and the source would not be whole any more without what is removed from it.
        if (files_.standsInside(destination_, source_)) {
            return kind_.writingFailed;
        }
        // What has come to stand at a name that was free is not ours to remove; the copy will not replace it.
        if (destinationExists_ && policy_.overwrite && !files_.removeItem(destination_)) {
            return kind_.overwritingFailed;
        }
        return kFileMigrationSuccess;
    }

    ZQFileMigrationRetvalType copy() {
        if (!files_.copyItem(source_, destination_)) {
            return kind_.writingFailed;
        }
        files_.announceChange(workspace_, destinationParent_);
        return kFileMigrationSuccess;
    }

    ZQFileMigrationRetvalType removeSource() {
        if (policy_.keepOriginal) {
            return kFileMigrationSuccess;
        }
        if (!files_.removeItem(source_)) {
            return kFileMigrationSourceFileCannotBeRemoved;
        }
        files_.announceChange(workspace_, sourceParent_);
        return kFileMigrationSuccess;
    }

    Files& files_;
    const MigratedKind& kind_;
    const MigrationPolicy& policy_;
    NSString source_;
    NSString sourceParent_;
    NSString destination_;
    NSString destinationParent_;
    Class workspace_;
    bool destinationExists_ = false;
};

} // namespace ZQFoundation::detail

#endif
