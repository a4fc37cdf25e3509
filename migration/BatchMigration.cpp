// SPDX-License-Identifier: MIT
// Migration of all files of one extension, file by file.
#include "migration/BatchSelection.h"
#include "migration/FilesOnDisk.h"
#include "migration/ZQFileMigrator.h"

namespace ZQFoundation {

namespace {

NSDictionary failureOfTheWhole(ZQFileMigrationRetvalType code) {
    return NSDictionary{{"", static_cast<std::uint32_t>(code)}};
}

} // namespace

NSDictionary ZQFileMigrator::
    migrateFilesWithExtension_from_to_includeDotFiles_keepOriginal_createDestinationParentFolder_overwriteDestinationFile_renameIfDestinationFileExists(
        const NSString& extension, const NSString& source, const NSString& destination, bool includeDotFiles,
        bool keepOriginal, bool createDestinationParentFolder, bool overwriteDestinationFile,
        bool renameIfDestinationFileExists) {
    if (!source) {
        return failureOfTheWhole(kFileMigrationSourceNotSpecified);
    }
    if (!destination) {
        return failureOfTheWhole(kFileMigrationDestinationNotSpecified);
    }
    const NSString sourceFolder = source.stringByExpandingTildeInPath();
    const NSString destinationFolder = destination.stringByExpandingTildeInPath();
    const detail::FilesOnDisk files;
    detail::BatchSelection selection(files, extension, sourceFolder, includeDotFiles);
    NSMutableDictionary results;
    while (const NSString path = selection.next()) {
        const ZQFileMigrationRetvalType code =
            migrateFileFrom_to_keepOriginal_createDestinationParentFolder_overwriteDestinationFile_renameIfDestinationFileExists(
                selection.file(), destinationFolder.stringByAppendingPathComponent(path), keepOriginal,
                createDestinationParentFolder, overwriteDestinationFile, renameIfDestinationFileExists);
        results.setObject_forKey(static_cast<std::uint32_t>(code), path);
    }
    return results.dictionary();
}

} // namespace ZQFoundation
