// SPDX-License-Identifier: MIT
// Migration of one file or one folder.
#include "migration/ZQFileMigrator.h"

#include "migration/FilesOnDisk.h"
#include "migration/ItemMigration.h"

namespace ZQFoundation {

namespace {

ZQFileMigrationRetvalType migrate(const detail::MigratedKind& kind, const detail::MigrationPolicy& policy,
                                  const NSString& source, const NSString& destination) {
    if (!source) {
        return kFileMigrationSourceNotSpecified;
    }
    if (!destination) {
        return kFileMigrationDestinationNotSpecified;
    }
    detail::FilesOnDisk files;
    return detail::ItemMigration(files, kind, policy, source, destination).run();
}

} // namespace

ZQFileMigrationRetvalType ZQFileMigrator::
    migrateFileFrom_to_keepOriginal_createDestinationParentFolder_overwriteDestinationFile_renameIfDestinationFileExists(
        const NSString& source, const NSString& destination, bool keepOriginal,
        bool createDestinationParentFolder, bool overwriteDestinationFile,
        bool renameIfDestinationFileExists) {
    return migrate(detail::fileKind,
                   {keepOriginal, createDestinationParentFolder, overwriteDestinationFile,
                    renameIfDestinationFileExists},
                   source, destination);
}

ZQFileMigrationRetvalType ZQFileMigrator::
    migrateFolderFrom_to_keepOriginal_createDestinationParentFolder_overwriteDestinationFolder_renameIfDestinationFolderExists(
        const NSString& source, const NSString& destination, bool keepOriginal,
        bool createDestinationParentFolder, bool overwriteDestinationFolder,
        bool renameIfDestinationFolderExists) {
    return migrate(detail::folderKind,
                   {keepOriginal, createDestinationParentFolder, overwriteDestinationFolder,
                    renameIfDestinationFolderExists},
                   source, destination);
}

} // namespace ZQFoundation
