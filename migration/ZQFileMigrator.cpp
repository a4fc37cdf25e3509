// SPDX-License-Identifier: MIT
// The operations that migrate one file, one folder, or all files with one extension.
#include "migration/ZQFileMigrator.h"

#include "foundation/files/PathHandle.h"
#include "foundation/system/CallerState.h"
#include "migration/BatchMigration.h"
#include "migration/FlushedFolder.h"
#include "migration/Recovery.h"

namespace ZQFoundation {

namespace {

using detail::DestinationFolder;
using detail::ItemMigration;
using detail::ItemPlace;
using detail::MigratedKind;
using detail::MigrationPolicy;

/// Forwards events to the host's observer, if there is one, and collects the codes of a batch. Once the
/// observer has said stop, it is not asked again.
class Progress final : public detail::BatchMigration::Observer {
public:
    explicit Progress(ZQMigrationObserver* observer) noexcept : observer_(observer) {}

    bool willMigrate(const NSString& path) override { return mayBegin(path); }

    void didMigrate(const NSString& path, ZQFileMigrationRetvalType code,
                    const NSString& destination) override {
        codes_.setObject_forKey(static_cast<std::uint32_t>(code), path);
        if (observer_ != nullptr) {
            observer_->migrationDidFinish(path, code, destination);
        }
    }

    bool mayCopy(const std::string& path) override {
        return mayBegin(NSString::stringWithFileSystemBytes(path.data(), path.size()));
    }

    bool mayGoOn(std::uint64_t newBytes) override {
        now_.bytes += newBytes;
        return ask();
    }

    /// The observer of a copy; null if there is no host observer.
    detail::CopyObserver* ofCopy() noexcept { return observer_ != nullptr ? this : nullptr; }

    bool isStopped() const noexcept { return isStopped_; }
    NSDictionary codes() { return codes_.dictionary(); }

private:
    /// The count includes the item that is about to begin.
    bool mayBegin(const NSString& path) {
        ++now_.items;
        now_.path = path;
        return ask();
    }

    /// Without an observer nothing ever stops.
    bool ask() {
        isStopped_ = isStopped_ || (observer_ != nullptr && !observer_->migrationMayContinue(now_));
        return !isStopped_;
    }

    ZQMigrationObserver* observer_;
    ZQMigrationProgress now_;
    bool isStopped_ = false;
    NSMutableDictionary codes_;
};

/// The flags without `includeDotFiles`, which only the selection of a batch needs.
MigrationPolicy policyOf(const ZQMigrationOptions& options) noexcept {
    return {options.keepOriginal, options.createDestinationParentFolder, options.overwriteDestination,
            options.renameIfDestinationExists};
}

/// The order of a move: plan, copy, notify, flush, remove. The copy's data are on the disk before it gets its
/// name; the flush is for the name, and only after it may the source go.
ZQFileMigrationRetvalType run(ItemMigration& migration, const MigrationPolicy& policy,
                              DestinationFolder& parent, Progress& progress) {
    migration.plan(parent);
    ZQFileMigrationRetvalType code = migration.makeParent(parent);
    if (code == kFileMigrationSuccess) {
        code = migration.copy({!policy.keepOriginal, nullptr, progress.ofCopy()});
    }
    if (code != kFileMigrationSuccess) {
        return code;
    }
    migration.announceCopy();
    if (policy.keepOriginal) {
        return kFileMigrationSuccess;
    }
    return detail::flushFolderOf(migration.target()) ? migration.removeSource()
                                                     : kFileMigrationSourceFileCannotBeRemoved;
}

/// Leftovers of killed processes are recovered first, at the source and at the destination, because one of
/// them may be the source itself. After a success both folders are known to have none. A nil path is a code
/// and nothing more: there is no item of which an observer could be notified.
ZQMigrationResult migrate(const MigratedKind& kind, const NSString& source, const NSString& destination,
                          const ZQMigrationOptions& options, ZQMigrationObserver* observer) {
    if (!source) {
        return {kFileMigrationSourceNotSpecified, false, destination};
    }
    if (!destination) {
        return {kFileMigrationDestinationNotSpecified, false, destination};
    }
    const detail::CallerState caller;
    const NSString from = source.stringByExpandingTildeInPath();
    const NSString to = destination.stringByExpandingTildeInPath();
    Progress progress(observer);
    if (!progress.willMigrate(from)) {
        return {kind.writingFailed, true, to};
    }
    std::string bytes;
    ItemPlace place;
    if (detail::getPathBytes(from, bytes) && place.open(bytes)) {
        detail::recoverFolder(place.folder());
    }
    DestinationFolder parent(to.stringByDeletingLastPathComponent(), true);
    parent.find();
    ItemMigration migration(kind, policyOf(options), from, place, to);
    const ZQFileMigrationRetvalType code = run(migration, policyOf(options), parent, progress);
    if (code == kFileMigrationSuccess) {
        detail::noteRecovered(place.folder());
        detail::noteRecovered(parent.folder()->number());
    }
    progress.didMigrate(from, code, migration.destination());
    return {code, progress.isStopped() && code != kFileMigrationSuccess, migration.destination()};
}

/// The result of a batch that did not begin.
NSDictionary failureOfTheWhole(ZQFileMigrationRetvalType code) {
    return NSDictionary{{"", static_cast<std::uint32_t>(code)}};
}

} // namespace

// The operations with named options do the work, and those with flags call them: the two always behave alike.
ZQMigrationResult ZQFileMigrator::migrateFile(const NSString& source, const NSString& destination,
                                              const ZQMigrationOptions& options,
                                              ZQMigrationObserver* observer) {
    return migrate(detail::fileKind, source, destination, options, observer);
}

ZQMigrationResult ZQFileMigrator::migrateFolder(const NSString& source, const NSString& destination,
                                                const ZQMigrationOptions& options,
                                                ZQMigrationObserver* observer) {
    return migrate(detail::folderKind, source, destination, options, observer);
}

// A source folder that does not exist has no files, so that the result is empty: not an error for hosts that
// migrate what may be there.
ZQBatchMigrationResult ZQFileMigrator::migrateFiles(const NSString& extension, const NSString& source,
                                                    const NSString& destination,
                                                    const ZQMigrationOptions& options,
                                                    ZQMigrationObserver* observer) {
    if (!source) {
        return {failureOfTheWhole(kFileMigrationSourceNotSpecified), false};
    }
    if (!destination) {
        return {failureOfTheWhole(kFileMigrationDestinationNotSpecified), false};
    }
    const detail::CallerState caller;
    Progress progress(observer);
    const detail::BatchMigration::Options batch{extension, source.stringByExpandingTildeInPath(),
                                                destination.stringByExpandingTildeInPath(),
                                                options.includeDotFiles, policyOf(options)};
    detail::BatchMigration(batch, progress).run();
    return {progress.codes(), progress.isStopped()};
}

ZQFileMigrationRetvalType ZQFileMigrator::
    migrateFileFrom_to_keepOriginal_createDestinationParentFolder_overwriteDestinationFile_renameIfDestinationFileExists(
        const NSString& source, const NSString& destination, detail::Flag keepOriginal,
        detail::Flag createDestinationParentFolder, detail::Flag overwriteDestinationFile,
        detail::Flag renameIfDestinationFileExists) {
    return migrateFile(source, destination,
                       {keepOriginal, createDestinationParentFolder, overwriteDestinationFile,
                        renameIfDestinationFileExists})
        .code;
}

ZQFileMigrationRetvalType ZQFileMigrator::
    migrateFolderFrom_to_keepOriginal_createDestinationParentFolder_overwriteDestinationFolder_renameIfDestinationFolderExists(
        const NSString& source, const NSString& destination, detail::Flag keepOriginal,
        detail::Flag createDestinationParentFolder, detail::Flag overwriteDestinationFolder,
        detail::Flag renameIfDestinationFolderExists) {
    return migrateFolder(source, destination,
                         {keepOriginal, createDestinationParentFolder, overwriteDestinationFolder,
                          renameIfDestinationFolderExists})
        .code;
}

NSDictionary ZQFileMigrator::
    migrateFilesWithExtension_from_to_includeDotFiles_keepOriginal_createDestinationParentFolder_overwriteDestinationFile_renameIfDestinationFileExists(
        const NSString& extension, const NSString& source, const NSString& destination,
        detail::Flag includeDotFiles, detail::Flag keepOriginal, detail::Flag createDestinationParentFolder,
        detail::Flag overwriteDestinationFile, detail::Flag renameIfDestinationFileExists) {
    return migrateFiles(extension, source, destination,
                        {keepOriginal, createDestinationParentFolder, overwriteDestinationFile,
                         renameIfDestinationFileExists, includeDotFiles})
        .codes;
}

} // namespace ZQFoundation
