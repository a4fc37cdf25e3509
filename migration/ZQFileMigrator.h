// SPDX-License-Identifier: MIT
#ifndef ZQFOUNDATION_MIGRATION_ZQFILEMIGRATOR_H
#define ZQFOUNDATION_MIGRATION_ZQFILEMIGRATOR_H

#include "../foundation/objects/NSDictionary.h"
#include "../foundation/objects/NSString.h"

namespace ZQFoundation {

/// How a migration ended. The numbers are fixed, gaps included.
enum ZQFileMigrationRetvalType : std::uint32_t {
    kFileMigrationSuccess = 0, ///< migrated

    kFileMigrationSourceNotSpecified = 1,      ///< the source is nil or empty
    kFileMigrationDestinationNotSpecified = 2, ///< the destination is nil or empty

    kFileMigrationSourceDoesNotExist = 10,        ///< nothing exists at the source
    kFileMigrationSourceParentDoesNotExist = 11,  ///< returned by no operation
    kFileMigrationSourceIsFolder = 12,            ///< a file was to be migrated
    kFileMigrationSourceIsFile = 13,              ///< a folder was to be migrated
    kFileMigrationSourceFileUnreadable = 14,      ///< the source cannot be read
    kFileMigrationSourceFileCannotBeRemoved = 15, ///< source and complete copy both exist

    kFileMigrationDestinationParentFolderDoesNotExist = 20,   ///< and was not to be made
    kFileMigrationDestinationParentFolderIsFile = 21,         ///< a file is where the folder should be
    kFileMigrationDestinationParentFolderCreationFailed = 22, ///< the folder could not be made

    kFileMigrationDestinationFileExists = 30,              ///< and was not to be overwritten
    kFileMigrationDestinationFolderExists = 31,            ///< and was not to be overwritten
    kFileMigrationDestinationIsFolder = 32,                ///< a file does not overwrite a folder
    kFileMigrationDestinationIsFile = 33,                  ///< a folder does not overwrite a file
    kFileMigrationDestinationFileOverwritingFailed = 34,   ///< the file there could not be removed
    kFileMigrationDestinationFileWritingFailed = 35,       ///< the copy failed
    kFileMigrationDestinationFolderOverwritingFailed = 36, ///< the folder there could not be removed
    kFileMigrationDestinationFolderWritingFailed = 37,     ///< the copy failed
};

/// What a migration may do, by name. The flags mean what the arguments of the same names mean.
struct ZQMigrationOptions {
    bool keepOriginal = false;                  ///< copy: the source stays
    bool createDestinationParentFolder = false; ///< make missing folders above the destination
    bool overwriteDestination = false;          ///< remove what exists at the destination first
    bool renameIfDestinationExists = false;     ///< else take a free name beside it
    bool includeDotFiles = false;               ///< used by `migrateFiles` only
};

/// How far a migration is.
struct ZQMigrationProgress {
    NSString path; ///< the item in hand: relative to the source folder in a batch, else a whole path
    std::uint64_t items = 0; ///< begun until now, this one among them
    std::uint64_t bytes = 0; ///< copied until now
};

/// Follows a migration, for a window or a terminal. Called on the thread that migrates, with no lock held. An
/// exception that leaves it ends the migration as a stop does, and reaches the caller.
class ZQMigrationObserver {
public:
    virtual ~ZQMigrationObserver() = default;

    /// Before each item, those inside a folder too, and after each few megabytes of a large file. False stops
    /// the migration: a copy in progress is removed again, its source stays, and what was moved stays moved.
    virtual bool migrationMayContinue(const ZQMigrationProgress& progress) = 0;

    /// The result of one file, or of one folder as a whole. In a batch that moves, results come a few hundred
    /// files late, when these are on the disk. `destination` is where the copy is or was to be, nil where no
    /// name was free.
    virtual void migrationDidFinish(const NSString& path, ZQFileMigrationRetvalType code,
                                    const NSString& destination) {
        static_cast<void>(path);
        static_cast<void>(code);
        static_cast<void>(destination);
    }
};

/// How the migration of one file or folder has ended.
struct ZQMigrationResult {
    ZQFileMigrationRetvalType code = kFileMigrationSuccess; ///< how it ended
    bool isStopped = false; ///< by the observer; the code is then that of a copy that failed
    NSString destination;   ///< where the copy is or was to be, "~" expanded; nil where no name was free
};

/// How the migration of many files has ended.
struct ZQBatchMigrationResult {
    NSDictionary codes;     ///< as `migrateFilesWithExtension_...` gives them; without the files not reached
    bool isStopped = false; ///< by the observer
};

/// Moves and copies files and folders under explicit policies. Class operations only; they log nothing and
/// raise nothing, the code is the whole report.
///
///     const ZQMigrationOptions options{.createDestinationParentFolder = true};
///     const auto result = ZQFileMigrator::migrateFile("~/.viewer.conf", "~/.config/viewer/settings.conf",
///     options);
///
/// A move is a copy and then the removal of the source, never a renaming. Whatever happens, failures, other
/// programs, the end of the process or of the computer's power, each file is at its source or complete at its
/// destination; docs/migration.md says how. What has changed since it was copied is not removed, nor is a
/// file that somebody has open for writing: the code is then 15. Relative links are moved as they are, and
/// may lead nowhere afterwards. A leading "~" is the user's home folder; one that cannot be expanded leads to
/// no folder. Synchronous; any thread.
class ZQFOUNDATION_EXPORT ZQFileMigrator {
public:
    ZQFileMigrator() = delete;

    /// Migrates one file: `migrateFileFrom_to_...` with named options. The observer may be null.
    [[nodiscard]] static ZQMigrationResult migrateFile(const NSString& source, const NSString& destination,
                                                       const ZQMigrationOptions& options,
                                                       ZQMigrationObserver* observer = nullptr);

    /// Migrates one folder with all that it holds: `migrateFolderFrom_to_...` with named options. The
    /// observer may be null.
    [[nodiscard]] static ZQMigrationResult migrateFolder(const NSString& source, const NSString& destination,
                                                         const ZQMigrationOptions& options,
                                                         ZQMigrationObserver* observer = nullptr);

    /// Migrates all files of one extension (every file for nil or "") below a folder:
    /// `migrateFilesWithExtension_from_to_...` with named options. The observer may be null.
    [[nodiscard]] static ZQBatchMigrationResult
    migrateFiles(const NSString& extension, const NSString& source, const NSString& destination,
                 const ZQMigrationOptions& options, ZQMigrationObserver* observer = nullptr);

    /// Migrates one file: anything that is not a directory, links followed for that question; a link itself
    /// is what is copied and removed.
    ///
    /// `keepOriginal`: copy, do not remove the source. `createDestinationParentFolder`: make the missing
    /// folders above the destination, which stay whatever fails later. `overwriteDestinationFile`: remove
    /// what exists at the destination **before** the copy. `renameIfDestinationFileExists`, when not
    /// overwriting: "notes.txt" becomes "notes 1.txt".
    ///
    /// A host's class registered as "NSWorkspace" is notified of the folders that changed.
    [[nodiscard]] static ZQFileMigrationRetvalType
    migrateFileFrom_to_keepOriginal_createDestinationParentFolder_overwriteDestinationFile_renameIfDestinationFileExists(
        const NSString& source, const NSString& destination, detail::Flag keepOriginal,
        detail::Flag createDestinationParentFolder, detail::Flag overwriteDestinationFile,
        detail::Flag renameIfDestinationFileExists);

    /// Migrates one folder with all that it holds, as `migrateFileFrom_to_...` does one file; trees are not
    /// merged. **Nobody is notified** unless a class is registered as "SomeClass". A renamed copy of a folder
    /// "Data" is "Data 1.", with the period.
    [[nodiscard]] static ZQFileMigrationRetvalType
    migrateFolderFrom_to_keepOriginal_createDestinationParentFolder_overwriteDestinationFolder_renameIfDestinationFolderExists(
        const NSString& source, const NSString& destination, detail::Flag keepOriginal,
        detail::Flag createDestinationParentFolder, detail::Flag overwriteDestinationFolder,
        detail::Flag renameIfDestinationFolderExists);

    /// Migrates every file of that extension (every file for nil or "") from the tree below one folder to the
    /// same relative place below another. Without `includeDotFiles`, what begins with "." at the top of the
    /// tree is ignored with all that it holds. Links to folders are not followed. **A subfolder that
    /// cannot be read is ignored without an entry**: do not remove the source folder because all codes are 0.
    ///
    /// Relative path -> code, successes included; an empty key for a failure of the whole call; empty when
    /// the source folder does not exist or holds nothing.
    [[nodiscard]] static NSDictionary
    migrateFilesWithExtension_from_to_includeDotFiles_keepOriginal_createDestinationParentFolder_overwriteDestinationFile_renameIfDestinationFileExists(
        const NSString& extension, const NSString& source, const NSString& destination,
        detail::Flag includeDotFiles, detail::Flag keepOriginal, detail::Flag createDestinationParentFolder,
        detail::Flag overwriteDestinationFile, detail::Flag renameIfDestinationFileExists);

    /// The code's description in the user's language.
    [[nodiscard]] static NSString descriptionOfFileMigrationRetvalType(std::uint32_t code);

    /// "/A/z.log: the source file cannot be read, /b/x.log: ...": every failed item of a result, sorted by
    /// key; empty when none failed.
    [[nodiscard]] static NSMutableString descriptionOfFileMigrationErrorsIn(const NSDictionary& results);

    /// `uniquePathForPath_usingIntermediateString_maxAttempts` with at most 100000 attempts.
    [[nodiscard]] static NSString uniquePathForPath_usingIntermediateString(const NSString& path,
                                                                            StringView intermediateString);
    /// The path if nothing exists there, else the first free one with a counter from 1 to `maxAttempts`; nil
    /// if all are taken. It is made of the path without its extension, the intermediate string, the counter,
    /// "." and the extension. **The "." is there without an extension too.** Nothing is created: another
    /// process may take the path.
    [[nodiscard]] static NSString
    uniquePathForPath_usingIntermediateString_maxAttempts(const NSString& path, StringView intermediateString,
                                                          std::uint64_t maxAttempts);
};

} // namespace ZQFoundation

#endif
