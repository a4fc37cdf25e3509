// SPDX-License-Identifier: MIT
// Migration of all files of one extension, file by file.
#include "foundation/files/NSFileManager.h"
#include "migration/ZQFileMigrator.h"

namespace ZQFoundation {

namespace {

NSDictionary failureOfTheWhole(ZQFileMigrationRetvalType code) {
    return NSDictionary{{"", static_cast<std::uint32_t>(code)}};
}

bool isWanted(const NSString& path, const NSString& extension, bool includeDotFiles) {
    const bool matches =
        !extension || extension.isEqualToString("") || path.pathExtension().isEqualToString(extension);
    return matches && (includeDotFiles || !path.hasPrefix("."));
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
    const NSFileManager& files = NSFileManager::defaultManager();
    NSDirectoryEnumerator items = files.enumeratorAtPath(sourceFolder);
    items.skipDescendents(); // nothing was told yet, so nothing is skipped
    NSMutableDictionary results;
    // Not reset between entries: one at which nothing is found counts as what the entry before it was.
    bool isDirectory = false;
    while (const NSString path = items.nextObject()) {
        if (!isWanted(path, extension, includeDotFiles)) {
            continue;
        }
        const NSString file = sourceFolder.stringByAppendingPathComponent(path);
        files.fileExistsAtPath_isDirectory(file, &isDirectory);
        if (isDirectory) {
            continue;
        }
        const ZQFileMigrationRetvalType code =
            migrateFileFrom_to_keepOriginal_createDestinationParentFolder_overwriteDestinationFile_renameIfDestinationFileExists(
                file, destinationFolder.stringByAppendingPathComponent(path), keepOriginal,
                createDestinationParentFolder, overwriteDestinationFile, renameIfDestinationFileExists);
        results.setObject_forKey(static_cast<std::uint32_t>(code), path);
    }
    return results.dictionary();
}

} // namespace ZQFoundation
