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

/// What a migration may do, by name. The flags mean what the arguments of the same names mean.
struct ZQMigrationOptions {
    bool keepOriginal = false;
    bool createDestinationParentFolder = false;
    bool overwriteDestination = false;
    bool renameIfDestinationExists = false;
    bool includeDotFiles = false; ///< looked at by `migrateFiles` only
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
    ZQFileMigrationRetvalType code = kFileMigrationSuccess;
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

    /// Migrates one file, one folder with all that it holds, or all files of one extension (every file for
    /// nil or "") below a folder: the operations below with names in place of booleans, and somebody to
    /// follow them. The observer may be null.
    [[nodiscard]] static ZQMigrationResult migrateFile(const NSString& source, const NSString& destination,
                                                       const ZQMigrationOptions& options,
                                                       ZQMigrationObserver* observer = nullptr);
    [[nodiscard]] static ZQMigrationResult migrateFolder(const NSString& source, const NSString& destination,
                                                         const ZQMigrationOptions& options,
                                                         ZQMigrationObserver* observer = nullptr);
    [[nodiscard]] static ZQBatchMigrationResult
    migrateFiles(const NSString& extension, const NSString& source, const NSString& destination,
                 const ZQMigrationOptions& options, ZQMigrationObserver* observer = nullptr);

    /// Migrates one file: anything that is not a directory, links followed for that question; a link itself
    /// is what is copied and removed.
    ///
    /// `keepOriginal`: copy, do not remove the source. `createDestinationParentFolder`: make the missing
    /// folders above the destination, which stay whatever fails later. `overwriteDestinationFile`: remove
    /// what stands at the destination **before** the copy. `renameIfDestinationFileExists`, when not
    /// overwriting: "notes.txt" becomes "notes 1.txt".
    ///
    /// A host's class registered as "NSWorkspace" is notified of the folders that changed.
    [[nodiscard]] static ZQFileMigrationRetvalType
    migrateFileFrom_to_keepOriginal_createDestinationParentFolder_overwriteDestinationFile_renameIfDestinationFileExists(
        const NSString& source, const NSString& destination, bool keepOriginal,
        bool createDestinationParentFolder, bool overwriteDestinationFile,
        bool renameIfDestinationFileExists);

    /// The same for one folder with all that it holds; trees are not merged. **Nobody is notified** unless a
    /// class is registered as "SomeClass". A renamed copy of a folder "Data" is "Data 1.", with the period.
    [[nodiscard]] static ZQFileMigrationRetvalType
    migrateFolderFrom_to_keepOriginal_createDestinationParentFolder_overwriteDestinationFolder_renameIfDestinationFolderExists(
        const NSString& source, const NSString& destination, bool keepOriginal,
        bool createDestinationParentFolder, bool overwriteDestinationFolder,
        bool renameIfDestinationFolderExists);

    /// Migrates every file of that extension (every file for nil or "") from the tree below one folder to the
    /// same relative place below another. Without `includeDotFiles`, what begins with "." at the top of the
    /// tree is ignored with all that it holds. Folders are never entered through links. **A subfolder that
    /// cannot be read is ignored without an entry**: do not remove the source folder because all codes are 0.
    ///
    /// Relative path -> code, successes included; an empty key for a failure of the whole call; empty when
    /// the source folder does not exist or holds nothing.
    [[nodiscard]] static NSDictionary
    migrateFilesWithExtension_from_to_includeDotFiles_keepOriginal_createDestinationParentFolder_overwriteDestinationFile_renameIfDestinationFileExists(
        const NSString& extension, const NSString& source, const NSString& destination, bool includeDotFiles,
        bool keepOriginal, bool createDestinationParentFolder, bool overwriteDestinationFile,
        bool renameIfDestinationFileExists);

    /// The code's description in the user's language.
    [[nodiscard]] static NSString descriptionOfFileMigrationRetvalType(std::uint32_t code);

    /// "/A/z.log: the source file cannot be read, /b/x.log: ...": every failed item of a result, sorted by
    /// key; empty when none failed.
    [[nodiscard]] static NSMutableString descriptionOfFileMigrationErrorsIn(const NSDictionary& results);

    /// The path when nothing exists there, else the first free one of "<path without extension><intermediate
    /// string><counter>.<extension>", the counter from 1 to `maxAttempts` (100000 without it); nil when all
    /// are taken. **The "." is there without an extension too.** Nothing is created: another process may
    /// take the path.
    [[nodiscard]] static NSString uniquePathForPath_usingIntermediateString(const NSString& path,
                                                                            StringView intermediateString);
    [[nodiscard]] static NSString
    uniquePathForPath_usingIntermediateString_maxAttempts(const NSString& path, StringView intermediateString,
                                                          std::uint64_t maxAttempts);
};

} // namespace ZQFoundation

#endif
