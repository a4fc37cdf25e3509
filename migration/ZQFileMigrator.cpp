// SPDX-License-Identifier: MIT
// Migration of one file or one folder.
#include "migration/ZQFileMigrator.h"

#include "foundation/files/FileSystemAnnouncement.h"
#include "foundation/files/NSFileManager.h"
#include "foundation/files/ItemIdentity.h"

namespace ZQFoundation {

namespace {

/// How files and folders differ.
struct ItemKind {
    bool isFolder;
    const char* workspaceClass;
    ZQFileMigrationRetvalType exists;
    ZQFileMigrationRetvalType otherKindExists;
    ZQFileMigrationRetvalType overwritingFailed;
    ZQFileMigrationRetvalType writingFailed;
};

constexpr ItemKind fileKind{false,
                            "NSWorkspace",
                            kFileMigrationDestinationFileExists,
                            kFileMigrationDestinationIsFolder,
                            kFileMigrationDestinationFileOverwritingFailed,
                            kFileMigrationDestinationFileWritingFailed};

// The desktop is told of files only: no process is expected to have a class of this name.
constexpr ItemKind folderKind{true,
                              "SomeClass",
                              kFileMigrationDestinationFolderExists,
                              kFileMigrationDestinationIsFile,
                              kFileMigrationDestinationFolderOverwritingFailed,
                              kFileMigrationDestinationFolderWritingFailed};

struct Policy {
    bool keepOriginal;
    bool createParent;
    bool overwrite;
    bool renameIfExists;
};

/// One migration; each step answers success to go on.
class Migration {
public:
    Migration(const ItemKind& kind, const Policy& policy, const NSString& source, const NSString& destination)
        : kind_(kind), policy_(policy), source_(source.stringByExpandingTildeInPath()),
          sourceParent_(source_.stringByDeletingLastPathComponent()),
          destination_(destination.stringByExpandingTildeInPath()),
          destinationParent_(destination_.stringByDeletingLastPathComponent()),
          workspace_(NSClassFromString(kind.workspaceClass)) {}

    ZQFileMigrationRetvalType run() {
        using Step = ZQFileMigrationRetvalType (Migration::*)();
        for (const Step step :
             {&Migration::testSource, &Migration::prepareParent, &Migration::chooseDestination,
              &Migration::clearDestination, &Migration::copy, &Migration::removeSource}) {
            if (const ZQFileMigrationRetvalType code = (this->*step)(); code != kFileMigrationSuccess) {
                return code;
            }
        }
        return kFileMigrationSuccess;
    }

private:
    ZQFileMigrationRetvalType testSource() {
        bool isDirectory = false;
        if (!files_.fileExistsAtPath_isDirectory(source_, &isDirectory)) {
            return kFileMigrationSourceDoesNotExist;
        }
        if (isDirectory != kind_.isFolder) {
            return kind_.isFolder ? kFileMigrationSourceIsFile : kFileMigrationSourceIsFolder;
        }
        if (!kind_.isFolder && !files_.isReadableFileAtPath(source_)) {
            return kFileMigrationSourceFileUnreadable;
        }
        return kFileMigrationSuccess;
    }

    ZQFileMigrationRetvalType prepareParent() {
        bool isDirectory = false;
        if (files_.fileExistsAtPath_isDirectory(destinationParent_, &isDirectory)) {
            return isDirectory ? kFileMigrationSuccess : kFileMigrationDestinationParentFolderIsFile;
        }
        if (!policy_.createParent) {
            return kFileMigrationDestinationParentFolderDoesNotExist;
        }
        // No folder is made inside the source for a copy that cannot be.
        if (detail::standsInside(destination_, source_)) {
            return kind_.writingFailed;
        }
        const bool created = files_.createDirectoryAtPath_withIntermediateDirectories_attributes_error(
            destinationParent_, true, nullptr);
        return created ? kFileMigrationSuccess : kFileMigrationDestinationParentFolderCreationFailed;
    }

    /// The directory flag is written only by a test that finds something. So a free name for a folder that is
    /// in the way of a file does not help: the flag stays as the first test has set it.
    ZQFileMigrationRetvalType chooseDestination() {
        bool isDirectory = kind_.isFolder;
        destinationExists_ = files_.fileExistsAtPath_isDirectory(destination_, &isDirectory);
        if (destinationExists_ && !policy_.overwrite) {
            if (!policy_.renameIfExists) {
                return kind_.exists;
            }
            destination_ = ZQFileMigrator::uniquePathForPath_usingIntermediateString(destination_, " ");
            destinationExists_ = files_.fileExistsAtPath_isDirectory(destination_, &isDirectory);
        }
        return isDirectory == kind_.isFolder ? kFileMigrationSuccess : kind_.otherKindExists;
    }

    ZQFileMigrationRetvalType clearDestination() {
        if (destinationExists_ && detail::removalWouldHarm(destination_, source_)) {
            return kind_.overwritingFailed;
        }
        // The copy would fail, and the source would not be whole any more without what is removed from it.
        if (detail::standsInside(destination_, source_)) {
            return kind_.writingFailed;
        }
        // What has come to stand at a name that was free is not ours to remove; the copy will not replace it.
        if (destinationExists_ && policy_.overwrite && !files_.removeItemAtPath_error(destination_)) {
            return kind_.overwritingFailed;
        }
        return kFileMigrationSuccess;
    }

    ZQFileMigrationRetvalType copy() {
        if (!files_.copyItemAtPath_toPath_error(source_, destination_)) {
            return kind_.writingFailed;
        }
        detail::announceFileSystemChange(workspace_, destinationParent_);
        return kFileMigrationSuccess;
    }

    ZQFileMigrationRetvalType removeSource() {
        if (policy_.keepOriginal) {
            return kFileMigrationSuccess;
        }
        if (!files_.removeItemAtPath_error(source_)) {
            return kFileMigrationSourceFileCannotBeRemoved;
        }
        detail::announceFileSystemChange(workspace_, sourceParent_);
        return kFileMigrationSuccess;
    }

    const ItemKind& kind_;
    const Policy& policy_;
    NSFileManager& files_ = NSFileManager::defaultManager();
    NSString source_;
    NSString sourceParent_;
    NSString destination_;
    NSString destinationParent_;
    Class workspace_;
    bool destinationExists_ = false;
};

ZQFileMigrationRetvalType migrate(const ItemKind& kind, const Policy& policy, const NSString& source,
                                  const NSString& destination) {
    if (!source) {
        return kFileMigrationSourceNotSpecified;
    }
    if (!destination) {
        return kFileMigrationDestinationNotSpecified;
    }
    return Migration(kind, policy, source, destination).run();
}

} // namespace

ZQFileMigrationRetvalType ZQFileMigrator::
    migrateFileFrom_to_keepOriginal_createDestinationParentFolder_overwriteDestinationFile_renameIfDestinationFileExists(
        const NSString& source, const NSString& destination, bool keepOriginal,
        bool createDestinationParentFolder, bool overwriteDestinationFile,
        bool renameIfDestinationFileExists) {
    return migrate(fileKind,
                   {keepOriginal, createDestinationParentFolder, overwriteDestinationFile,
                    renameIfDestinationFileExists},
                   source, destination);
}

ZQFileMigrationRetvalType ZQFileMigrator::
    migrateFolderFrom_to_keepOriginal_createDestinationParentFolder_overwriteDestinationFolder_renameIfDestinationFolderExists(
        const NSString& source, const NSString& destination, bool keepOriginal,
        bool createDestinationParentFolder, bool overwriteDestinationFolder,
        bool renameIfDestinationFolderExists) {
    return migrate(folderKind,
                   {keepOriginal, createDestinationParentFolder, overwriteDestinationFolder,
                    renameIfDestinationFolderExists},
                   source, destination);
}

} // namespace ZQFoundation
