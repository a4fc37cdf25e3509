// SPDX-License-Identifier: MIT
// Internal: not installed.
// Declares the migration of all files of a kind below a folder.
#ifndef ZQFOUNDATION_MIGRATION_BATCHMIGRATION_H
#define ZQFOUNDATION_MIGRATION_BATCHMIGRATION_H

#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "migration/ItemMigration.h"
#include "migration/MigratedFiles.h"

namespace ZQFoundation::detail {

/// Migrates all files with one extension below a folder, one after another.
///
/// A move works in windows: the files of a window are copied, flushed to the disk together, and then removed
/// at the source, in order.
class BatchMigration {
public:
    struct Options {
        NSString extension; ///< nil and "" mean every file
        NSString source;    ///< folders, "~" expanded
        NSString destination;
        bool includeDotFiles = false;
        MigrationPolicy policy;
    };

    /// Observes a batch.
    class Observer : public CopyObserver {
    public:
        /// Called before each file, with its path relative to the source folder; false ends the batch before
        /// it.
        virtual bool willMigrate(const NSString& path) = 0;
        /// Called when the result of a file is known. `destination` is nil if no name was free.
        virtual void didMigrate(const NSString& path, ZQFileMigrationRetvalType code,
                                const NSString& destination) = 0;

    protected:
        ~Observer() = default;
    };

    BatchMigration(const Options& options, Observer& observer) : options_(options), observer_(observer) {}

    /// Migrates the files one after another; the observer is notified of each. Call it once.
    void run();

    /// Reports to the observer what `run` would do with each file in the present state. Changes nothing.
    void plan();

private:
    /// A file of the current window: copied, but not yet removed at the source; then without its migration.
    struct Pending {
        NSString path;
        std::unique_ptr<ItemMigration> migration;
    };

    /// The destination for the files of one folder.
    struct Level {
        std::string folder; ///< relative to the source
        std::unique_ptr<DestinationFolder> destination;
    };

    bool openSource();
    std::unique_ptr<ItemMigration> migrationOfItem();
    DestinationFolder& destinationOfItem();
    void migrateItems();
    void migrateItem();
    ZQFileMigrationRetvalType copyItem(std::unique_ptr<ItemMigration>& migration);
    bool isSourcePending(const struct stat& item) const noexcept;
    bool isWindowFull() const noexcept;
    void keepDescriptors(int open) noexcept;
    void finishWindow();
    bool isFlushed(const ItemMigration& migration, std::vector<std::pair<dev_t, bool>>& flushed) const;

    const Options& options_;
    Observer& observer_;
    bool changesNothing_ = false;
    bool isObserved_ = true;
    std::optional<MigratedFiles> files_;
    std::vector<Level> levels_;
    std::vector<Pending> window_;
    Descriptor kept_[3]; ///< for what finishes the window
    std::uint64_t windowBytes_ = 0;
    MadeItems made_;
};

} // namespace ZQFoundation::detail

#endif
