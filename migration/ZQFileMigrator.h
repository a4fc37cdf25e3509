// SPDX-License-Identifier: MIT
// Declares the migration of files and folders, its options, results and observer.
#ifndef ZQFOUNDATION_MIGRATION_ZQFILEMIGRATOR_H
#define ZQFOUNDATION_MIGRATION_ZQFILEMIGRATOR_H

#include "../foundation/objects/NSDictionary.h"
#include "../foundation/objects/NSString.h"

namespace ZQFoundation {

/// How a migration ended. The numbers are fixed, gaps included.
enum ZQFileMigrationRetvalType : std::uint32_t {
    kFileMigrationSuccess = 0, ///< migrated

    kFileMigrationSourceNotSpecified = 1,      ///< the source is nil; an empty one does not exist
    kFileMigrationDestinationNotSpecified = 2, ///< the destination is nil; an empty one has no parent folder

    kFileMigrationSourceDoesNotExist = 10,        ///< nothing exists at the source
    kFileMigrationSourceParentDoesNotExist = 11,  ///< returned by no operation
    kFileMigrationSourceIsFolder = 12,            ///< a file was to be migrated
    kFileMigrationSourceIsFile = 13,              ///< a folder was to be migrated
    kFileMigrationSourceFileUnreadable = 14,      ///< the source cannot be read
    kFileMigrationSourceFileCannotBeRemoved = 15, ///< source and complete copy both exist

    kFileMigrationDestinationParentFolderDoesNotExist = 20,   ///< and was not to be created
    kFileMigrationDestinationParentFolderIsFile = 21,         ///< a file is where the folder should be
    kFileMigrationDestinationParentFolderCreationFailed = 22, ///< the folder could not be created

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
    bool createDestinationParentFolder = false; ///< create missing parent folders of the destination
    bool overwriteDestination = false;          ///< first remove what exists at the destination
    bool renameIfDestinationExists = false;     ///< else use a unique name beside it
    bool includeDotFiles = false;               ///< used by `migrateFiles` only
};

/// How far a migration is.
struct ZQMigrationProgress {
    NSString path;           ///< the current item: relative to the source folder in a batch, else a full path
    std::uint64_t items = 0; ///< begun so far, including this one
    std::uint64_t bytes = 0; ///< copied so far
};

/// Follows a migration, for a window or a terminal. Called on the thread that migrates, with no lock held. An
/// exception that leaves it ends the migration like a stop, and propagates to the caller; it is not
/// called again.
///
///     struct Progress : ZQMigrationObserver {
///         bool migrationMayContinue(const ZQMigrationProgress& progress) override {
///             show(progress.path, progress.items);
///             return !isCancelled;
///         }
///     };
class ZQMigrationObserver {
public:
    virtual ~ZQMigrationObserver() = default;

    /// Called before each item, including those inside a folder, after every few megabytes of a large file,
    /// and when a file's data are copied. False stops the migration: a copy in progress is removed, its
    /// source stays, and what was moved stays moved.
    virtual bool migrationMayContinue(const ZQMigrationProgress& progress) = 0;

    /// The result of one file, or of one folder as a whole. In a batch that moves, results arrive up to a few
    /// hundred files later, when the copies are on the disk. `destination` is where the copy is or would have
    /// been, nil if no name was free. Not called for an item before which the migration was stopped, nor for
    /// a nil source or destination.
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
    NSString destination;   ///< where the copy is or would have been, "~" expanded; nil if no name was free
};

/// How the migration of many files has ended.
struct ZQBatchMigrationResult {
    NSDictionary codes;     ///< as returned by `migrateFilesWithExtension_...`; without the files not reached
    bool isStopped = false; ///< by the observer
};

/// Moves and copies files and folders under explicit policies. Class operations only; they log nothing and
/// raise nothing: the code is the only report.
///
///     const ZQMigrationOptions options{.createDestinationParentFolder = true};
///     const auto result =
///         ZQFileMigrator::migrateFile("~/.viewer.conf", "~/.config/viewer/settings.conf", options);
///     if (result.code != kFileMigrationSuccess) {
///         ZQLog::log(ZQFileMigrator::descriptionOfFileMigrationRetvalType(result.code));
///     }
///
/// A move is a copy and then the removal of the source, never a rename. Whatever happens, failures, other
/// programs, the end of the process or of the computer's power, each file is at its source or complete at its
/// destination; docs/migration.md says how. What has changed since it was copied is not removed, nor is a
/// file that somebody has open for writing: the code is then 15. Relative links are moved unchanged, and may
/// be dangling afterwards. A leading "~" is the user's home folder; if it cannot be expanded, there is no
/// such folder. Synchronous; any thread.
class ZQFOUNDATION_EXPORT ZQFileMigrator {
public:
    ZQFileMigrator() = delete;

    /// Migrates one file: `migrateFileFrom_to_...` with named options. The observer may be null.
    [[nodiscard]] static ZQMigrationResult migrateFile(const NSString& source, const NSString& destination,
                                                       const ZQMigrationOptions& options,
                                                       ZQMigrationObserver* observer = nullptr);

    /// Migrates one folder with all its contents: `migrateFolderFrom_to_...` with named options. The observer
    /// may be null.
    [[nodiscard]] static ZQMigrationResult migrateFolder(const NSString& source, const NSString& destination,
                                                         const ZQMigrationOptions& options,
                                                         ZQMigrationObserver* observer = nullptr);

    /// Migrates all files of one extension (every file for nil or "") below a folder:
    /// `migrateFilesWithExtension_from_to_...` with named options. The observer may be null.
    [[nodiscard]] static ZQBatchMigrationResult
    migrateFiles(const NSString& extension, const NSString& source, const NSString& destination,
                 const ZQMigrationOptions& options, ZQMigrationObserver* observer = nullptr);

    /// Migrates one file: anything that is not a directory after following links. A link itself is copied and
    /// removed, not its target.
    ///
    /// `keepOriginal`: copy without removing the source. `createDestinationParentFolder`: create the missing
    /// parent folders of the destination, which remain even if something fails later.
    /// `overwriteDestinationFile`: remove what exists at the destination **before** the copy.
    /// `renameIfDestinationFileExists`, when not overwriting: "notes.txt" becomes "notes 1.txt".
    ///
    /// A host's class registered as "NSWorkspace" is notified of the folders that changed.
    [[nodiscard]] static ZQFileMigrationRetvalType
    migrateFileFrom_to_keepOriginal_createDestinationParentFolder_overwriteDestinationFile_renameIfDestinationFileExists(
        const NSString& source, const NSString& destination, detail::Flag keepOriginal,
        detail::Flag createDestinationParentFolder, detail::Flag overwriteDestinationFile,
        detail::Flag renameIfDestinationFileExists);

    /// Migrates one folder with all its contents, as `migrateFileFrom_to_...` migrates one file; trees are
    /// not merged. **Nobody is notified** unless a class is registered as "SomeClass". A renamed copy of a
    /// folder "Data" is "Data 1.", with the period.
    [[nodiscard]] static ZQFileMigrationRetvalType
    migrateFolderFrom_to_keepOriginal_createDestinationParentFolder_overwriteDestinationFolder_renameIfDestinationFolderExists(
        const NSString& source, const NSString& destination, detail::Flag keepOriginal,
        detail::Flag createDestinationParentFolder, detail::Flag overwriteDestinationFolder,
        detail::Flag renameIfDestinationFolderExists);

    /// Migrates every file of that extension (every file for nil or "") from the tree below one folder to the
    /// same relative place below another. Without `includeDotFiles`, items at the top of the tree whose names
    /// begin with "." are ignored with all their contents. Links to folders are not followed. **A subfolder
    /// that cannot be read is ignored without an entry**: do not remove the source folder because all codes
    /// are 0.
    ///
    /// Relative path -> code, including successes; an empty key for a failure of the whole call; empty if the
    /// source folder does not exist or is empty.
    [[nodiscard]] static NSDictionary
    migrateFilesWithExtension_from_to_includeDotFiles_keepOriginal_createDestinationParentFolder_overwriteDestinationFile_renameIfDestinationFileExists(
        const NSString& extension, const NSString& source, const NSString& destination,
        detail::Flag includeDotFiles, detail::Flag keepOriginal, detail::Flag createDestinationParentFolder,
        detail::Flag overwriteDestinationFile, detail::Flag renameIfDestinationFileExists);

    /// The code's description in the user's language, without a period: "the source file cannot be read".
    /// "unknown error" for a number that is not a code. Never nil.
    [[nodiscard]] static NSString descriptionOfFileMigrationRetvalType(std::uint32_t code);

    /// "/A/z.log: the source file cannot be read, /b/x.log: ...": every failed item of a result, sorted by
    /// key; empty if none failed.
    ///
    ///     const auto result = ZQFileMigrator::migrateFiles("log", "~/.viewer", "~/logs", options);
    ///     ZQLog::log(ZQFileMigrator::descriptionOfFileMigrationErrorsIn(result.codes).string());
    [[nodiscard]] static NSMutableString descriptionOfFileMigrationErrorsIn(const NSDictionary& results);

    /// `uniquePathForPath_usingIntermediateString_maxAttempts` with at most 100000 attempts.
    ///
    ///     // "/a/notes 1.txt" if "/a/notes.txt" exists
    ///     ZQFileMigrator::uniquePathForPath_usingIntermediateString("/a/notes.txt", " ");
    [[nodiscard]] static NSString uniquePathForPath_usingIntermediateString(const NSString& path,
                                                                            StringView intermediateString);
    /// The path if nothing exists there, else the first free one with a counter from 1 to `maxAttempts`; nil
    /// if all are taken. It is made of the path without its extension, the intermediate string (which may be
    /// nil), the counter, "." and the extension. **The "." is added even without an extension.** Nothing is
    /// created: another process may take the path.
    [[nodiscard]] static NSString
    uniquePathForPath_usingIntermediateString_maxAttempts(const NSString& path, StringView intermediateString,
                                                          std::uint64_t maxAttempts);
};

} // namespace ZQFoundation

#endif
