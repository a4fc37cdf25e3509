// SPDX-License-Identifier: MIT
// Migrates all files with one extension below a folder.
#include "migration/BatchMigration.h"

#include <algorithm>

#include "foundation/files/PathHandle.h"
#include "foundation/system/OpenFolders.h"
#include "migration/FlushedFolder.h"

namespace ZQFoundation::detail {

namespace {

// Flushing costs more than copying a small file, so several files are flushed at once. The window is limited
// because files that are not flushed yet exist twice on the disk, and each folder of a window takes two
// descriptors.
constexpr std::size_t maxWindowFiles = 512;
constexpr std::size_t maxWindowFolders = 32;
constexpr std::uint64_t maxWindowBytes = std::uint64_t{256} << 20;

/// Max number of destinations that stay open, of the folders from the start to the current one.
constexpr std::size_t maxOpenDestinations = 16;

/// Whether `folder` is `path` or one of its parents.
bool isAtOrAbove(const std::string& folder, const std::string& path) {
    return folder.empty() || path == folder ||
           (path.size() > folder.size() && path.compare(0, folder.size(), folder) == 0 &&
            path[folder.size()] == '/');
}

} // namespace

// The source is opened once and then walked by descriptors: a folder that takes its path meanwhile is not
// migrated.
bool BatchMigration::openSource() {
    std::string bytes;
    PathHandle handle;
    if (!getPathBytes(options_.source, bytes) || !handle.reach(bytes)) {
        return false;
    }
    // The start itself may be a link.
    Descriptor start(openAt(handle.folder(), handle.name(), folderFlags & ~O_NOFOLLOW));
    if (start) {
        files_.emplace(std::move(start), options_.extension, options_.includeDotFiles, !changesNothing_);
    }
    return files_.has_value();
}

// The window is finished at the end however the loop ends: what was copied is not left in two places. An
// observer that has thrown is called no more.
void BatchMigration::run() {
    if (!openSource()) {
        return;
    }
    try {
        migrateItems();
        finishWindow();
    } catch (...) {
        isObserved_ = false;
        finishWindow();
        throw;
    }
}

void BatchMigration::migrateItems() {
    while (files_->nextItem()) {
        struct stat target;
        if (files_->getLinkTarget(target) && isSourcePending(target)) {
            finishWindow(); // its target is about to be removed, so the link counts as dangling
        }
        if (!files_->isFile()) {
            continue;
        }
        if (!observer_.willMigrate(files_->relativePath())) {
            break;
        }
        migrateItem();
    }
}

// Each file is planned as if it were alone. What one file of a run does to another, which may take its name,
// does not show here.
void BatchMigration::plan() {
    changesNothing_ = true;
    if (!openSource()) {
        return;
    }
    while (files_->nextItem()) {
        if (!files_->isFile()) {
            continue;
        }
        const NSString path = files_->relativePath();
        if (!observer_.willMigrate(path)) {
            return;
        }
        const MigrationPlan plan = migrationOfItem()->plan(destinationOfItem());
        observer_.didMigrate(path, plan.code, plan.destination);
    }
}

std::unique_ptr<ItemMigration> BatchMigration::migrationOfItem() {
    const NSString path = files_->relativePath();
    ItemPlace place;
    files_->getPlace(place);
    return std::make_unique<ItemMigration>(
        fileKind, options_.policy, options_.source.stringByAppendingPathComponent(path), std::move(place),
        options_.destination.stringByAppendingPathComponent(path));
}

/// Each folder is looked up once. Those on the way to the current one are kept.
DestinationFolder& BatchMigration::destinationOfItem() {
    const std::string folder = files_->folderPath();
    while (!levels_.empty() && !isAtOrAbove(levels_.back().folder, folder)) {
        levels_.pop_back();
    }
    if (levels_.empty() || levels_.back().folder != folder) {
        const NSString path = options_.destination.stringByAppendingPathComponent(files_->relativePath());
        levels_.push_back({folder, std::make_unique<DestinationFolder>(
                                       path.stringByDeletingLastPathComponent(), !changesNothing_)});
        if (levels_.size() > maxOpenDestinations) {
            levels_[levels_.size() - maxOpenDestinations - 1].destination->close();
        }
    }
    return *levels_.back().destination;
}

// A failed copy is tried once more if descriptors ran out while a window was open: the window holds most of
// them.
void BatchMigration::migrateItem() {
    const NSString path = files_->relativePath();
    std::unique_ptr<ItemMigration> migration;
    ZQFileMigrationRetvalType code = copyItem(migration);
    if (code != kFileMigrationSuccess && !window_.empty() && (errno == EMFILE || errno == ENFILE)) {
        finishWindow(); // which releases descriptors
        code = copyItem(migration);
    }
    if (code == kFileMigrationSuccess && !options_.policy.keepOriginal) {
        migration->closeSource();
        if (window_.empty()) {
            keepDescriptors(migration->target().folder());
        }
        windowBytes_ += static_cast<std::uint64_t>(migration->copiedItem().st_size);
        window_.push_back({path, std::move(migration)});
        if (isWindowFull()) {
            finishWindow();
        }
        return;
    }
    if (code == kFileMigrationSuccess) {
        migration->announceCopy();
    }
    observer_.didMigrate(path, code, migration->destination());
}

// The copy is not flushed here: the window flushes all of its files at once. `errno` is cleared, so that the
// caller sees only an error of this copy.
ZQFileMigrationRetvalType BatchMigration::copyItem(std::unique_ptr<ItemMigration>& migration) {
    errno = 0;
    migration = migrationOfItem();
    DestinationFolder& parent = destinationOfItem();
    migration->plan(parent);
    // An existing item at the destination may be a source of this window, and gone once the window is
    // finished.
    if (std::any_of(window_.begin(), window_.end(), [&](const Pending& each) {
            return migration->isInTheWay(each.migration->copiedItem());
        })) {
        finishWindow();
        migration->plan(parent);
    }
    const ZQFileMigrationRetvalType code = migration->makeParent(parent);
    return code != kFileMigrationSuccess
               ? code
               : migration->copy({false, options_.policy.overwrite ? &made_ : nullptr, &observer_});
}

// Whether the item is the source of a file in the window: copied already, and about to be removed.
bool BatchMigration::isSourcePending(const struct stat& item) const noexcept {
    return std::any_of(window_.begin(), window_.end(),
                       [&](const Pending& each) { return isSameItem(each.migration->copiedItem(), item); });
}

// Files come folder by folder, so it is enough to count the changes of folder.
bool BatchMigration::isWindowFull() const noexcept {
    std::size_t folders = 1;
    for (std::size_t index = 1; index < window_.size(); ++index) {
        folders += window_[index].migration->target().sharedFolder() !=
                           window_[index - 1].migration->target().sharedFolder()
                       ? 1
                       : 0;
    }
    return window_.size() >= maxWindowFiles || windowBytes_ >= maxWindowBytes || folders > maxWindowFolders;
}

/// A window that ends because there are no descriptors left needs some to be flushed and to remove sources.
void BatchMigration::keepDescriptors(int open) noexcept {
    for (Descriptor& each : kept_) {
        each = Descriptor(::fcntl(open, F_DUPFD_CLOEXEC, system::firstFreeDescriptor));
    }
}

// First all file systems are flushed, then the first source is removed. In the other order a loss of power
// could take both: the source, already removed, and the copy, not yet on the disk.
void BatchMigration::finishWindow() {
    for (Descriptor& each : kept_) {
        each.reset();
    }
    std::vector<std::pair<dev_t, bool>> flushed;
    for (const Pending& each : window_) {
        if (each.migration) {
            isFlushed(*each.migration, flushed);
        }
    }
    for (Pending& each : window_) {
        // Taken out, for the observer may throw: a file is finished once.
        const std::unique_ptr<ItemMigration> migration = std::move(each.migration);
        if (!migration) {
            continue;
        }
        migration->announceCopy();
        const ZQFileMigrationRetvalType code = isFlushed(*migration, flushed)
                                                   ? migration->removeSource()
                                                   : kFileMigrationSourceFileCannotBeRemoved;
        if (isObserved_) {
            observer_.didMigrate(each.path, code, migration->destination());
        }
    }
    window_.clear();
    windowBytes_ = 0;
}

/// Flushes the file system of the copy, once for each file system of a window.
bool BatchMigration::isFlushed(const ItemMigration& migration,
                               std::vector<std::pair<dev_t, bool>>& flushed) const {
    const dev_t device = migration.madeItem().st_dev;
    for (const auto& [known, result] : flushed) {
        if (known == device) {
            return result;
        }
    }
    flushed.emplace_back(device, flushFileSystemOf(migration.target()));
    return flushed.back().second;
}

} // namespace ZQFoundation::detail
