// SPDX-License-Identifier: MIT
#ifndef ZQFOUNDATION_MIGRATION_ZQFILEMIGRATOR_H
#define ZQFOUNDATION_MIGRATION_ZQFILEMIGRATOR_H

#include "../foundation/objects/NSDictionary.h"
#include "../foundation/objects/NSString.h"

namespace ZQFoundation {

/// How a migration ended. The numbers are fixed, gaps included.
enum ZQFileMigrationRetvalType : std::uint32_t {
    kFileMigrationSuccess = 0,

    kFileMigrationSourceNotSpecified = 1,
    kFileMigrationDestinationNotSpecified = 2,

    kFileMigrationSourceDoesNotExist = 10,
    kFileMigrationSourceParentDoesNotExist = 11, ///< returned by no operation
    kFileMigrationSourceIsFolder = 12,
    kFileMigrationSourceIsFile = 13,
    kFileMigrationSourceFileUnreadable = 14,
    kFileMigrationSourceFileCannotBeRemoved = 15, ///< source and complete copy both exist

    kFileMigrationDestinationParentFolderDoesNotExist = 20,
    kFileMigrationDestinationParentFolderIsFile = 21,
    kFileMigrationDestinationParentFolderCreationFailed = 22,

    kFileMigrationDestinationFileExists = 30,
    kFileMigrationDestinationFolderExists = 31,
    kFileMigrationDestinationIsFolder = 32,
    kFileMigrationDestinationIsFile = 33,
    kFileMigrationDestinationFileOverwritingFailed = 34,
    kFileMigrationDestinationFileWritingFailed = 35,
    kFileMigrationDestinationFolderOverwritingFailed = 36,
    kFileMigrationDestinationFolderWritingFailed = 37,
};

/// Moves and copies files and folders under explicit policies. Class operations only; they log nothing and
/// raise nothing, the code is the whole report.
///
///     const auto code = ZQFileMigrator::
///         migrateFileFrom_to_keepOriginal_createDestinationParentFolder_overwriteDestinationFile_renameIfDestinationFileExists(
///             "~/.viewer.conf", "~/.config/viewer/settings.conf", false, true, false, false);
///
/// A move is a copy and then the removal of the source, never a renaming: whatever fails, the source is
/// untouched until the copy is complete. A leading "~" is the user's home folder. Synchronous; any thread.
/// Other processes are not locked out.
class ZQFOUNDATION_EXPORT ZQFileMigrator {
public:
    ZQFileMigrator() = delete;

    /// Migrates one file: anything that is not a directory, links followed for that question; a link itself
    /// is what is copied and removed.
    ///
    /// `keepOriginal`: copy, do not remove the source. `createDestinationParentFolder`: make the missing
    /// folders above the destination, which stay whatever fails later. `overwriteDestinationFile`: remove
    /// what stands at the destination **before** the copy. `renameIfDestinationFileExists`, when not
    /// overwriting: "notes.txt" becomes "notes 1.txt".
    ///
    /// A host's class registered as "NSWorkspace" is told of the folders that changed.
    static ZQFileMigrationRetvalType
    migrateFileFrom_to_keepOriginal_createDestinationParentFolder_overwriteDestinationFile_renameIfDestinationFileExists(
        const NSString& source, const NSString& destination, bool keepOriginal,
        bool createDestinationParentFolder, bool overwriteDestinationFile,
        bool renameIfDestinationFileExists);

    /// The same for one folder with all that it holds; trees are not merged. **Tells nobody of the change**
    /// unless a class is registered as "SomeClass". A renamed copy of a folder "Data" is "Data 1.", with the
    /// period.
    static ZQFileMigrationRetvalType
    migrateFolderFrom_to_keepOriginal_createDestinationParentFolder_overwriteDestinationFolder_renameIfDestinationFolderExists(
        const NSString& source, const NSString& destination, bool keepOriginal,
        bool createDestinationParentFolder, bool overwriteDestinationFolder,
        bool renameIfDestinationFolderExists);

    /// Migrates every file of that extension (every file for nil or "") from the tree below one folder to the
    /// same relative place below another. Without `includeDotFiles`, what begins with "." at the top of the
    /// tree is passed over with all that it holds. Folders are never entered through links.
    ///
    /// Relative path -> code, successes included; an empty key for a failure of the whole call; empty when
    /// the source folder does not exist or holds nothing.
    static NSDictionary
    migrateFilesWithExtension_from_to_includeDotFiles_keepOriginal_createDestinationParentFolder_overwriteDestinationFile_renameIfDestinationFileExists(
        const NSString& extension, const NSString& source, const NSString& destination, bool includeDotFiles,
        bool keepOriginal, bool createDestinationParentFolder, bool overwriteDestinationFile,
        bool renameIfDestinationFileExists);

    /// The code's description in the user's language.
    static NSString descriptionOfFileMigrationRetvalType(std::uint32_t code);

    /// "/A/z.log: the source file cannot be read, /b/x.log: ...": every failed item of a result, sorted by
    /// key; empty when none failed.
    static NSMutableString descriptionOfFileMigrationErrorsIn(const NSDictionary& results);

    /// The path when nothing exists there, else the first free one of "<path without extension><intermediate
    /// string><counter>.<extension>", the counter from 1 to `maxAttempts` (100000 without it); nil when all
    /// are taken. **The "." stands there without an extension too.** Nothing is created: another process may
    /// take the path.
    static NSString uniquePathForPath_usingIntermediateString(const NSString& path,
                                                              StringView intermediateString);
    static NSString uniquePathForPath_usingIntermediateString_maxAttempts(const NSString& path,
                                                                          StringView intermediateString,
                                                                          std::uint64_t maxAttempts);
};

} // namespace ZQFoundation

#endif
