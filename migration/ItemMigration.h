// SPDX-License-Identifier: MIT
// Internal: not installed.
// Declares the migration of one file or folder, step by step.
#ifndef ZQFOUNDATION_MIGRATION_ITEMMIGRATION_H
#define ZQFOUNDATION_MIGRATION_ITEMMIGRATION_H

#include <optional>

#include "foundation/files/CopyRecord.h"
#include "foundation/files/ItemCopy.h"
#include "foundation/files/ItemPlace.h"
#include "foundation/objects/ClassesByName.h"
#include "migration/DestinationFolder.h"
#include "migration/MadeItems.h"
#include "migration/ZQFileMigrator.h"

namespace ZQFoundation::detail {

/// The differences between files and folders.
struct MigratedKind {
    bool isFolder;
    const char* workspaceClass;       ///< whose registered object is notified of changed folders
    ZQFileMigrationRetvalType exists; ///< the codes that depend on the kind
    ZQFileMigrationRetvalType otherKindExists;
    ZQFileMigrationRetvalType overwritingFailed;
    ZQFileMigrationRetvalType writingFailed;
};

extern const MigratedKind fileKind;
extern const MigratedKind folderKind;

struct MigrationPolicy {
    bool keepOriginal = false;
    bool createParent = false;
    bool overwrite = false;
    bool renameIfExists = false;
};

/// What a migration would do in the present state.
struct MigrationPlan {
    ZQFileMigrationRetvalType code = kFileMigrationSuccess; ///< success, or why nothing would be done
    bool makesParent = false;
    bool replaces = false; ///< the item at the destination is removed first
    NSString destination;  ///< where the copy will be; nil if no name is free
};

/// The migration of one file or folder. The steps of a move are separate calls, so that many files can be
/// flushed to the disk together:
///
///     plan, copy, announceCopy, (what was copied is flushed), removeSource
///
/// docs/migration.md describes the protocol by which nothing is lost.
class ItemMigration {
public:
    /// `source` and `destination` are full paths, "~" expanded; `place` is where the source is. A place that
    /// was not found means a source that does not exist. `kind` must outlive the migration.
    ItemMigration(const MigratedKind& kind, const MigrationPolicy& policy, const NSString& source,
                  ItemPlace place, const NSString& destination);

    /// Changes nothing.
    const MigrationPlan& plan(DestinationFolder& parent);

    /// Creates the parent folder if that was planned, and plans again.
    ZQFileMigrationRetvalType makeParent(DestinationFolder& parent);

    /// Requirements for a copy.
    struct CopyOptions {
        bool isFlushed = false;    ///< the copy is on the disk before it takes its name
        MadeItems* made = nullptr; ///< what the same run has created, which is not replaced
        CopyObserver* observer = nullptr;
    };

    /// Carries out the plan: removes what is to be replaced, and copies. The copy gets its name when it is
    /// complete; after a failure nothing remains.
    ZQFileMigrationRetvalType copy(const CopyOptions& options);

    /// Notifies the host's workspace object, if there is one, of the changed destination folder.
    void announceCopy() const;

    /// Closes the source's descriptor; a file is opened again for its removal.
    void closeSource() noexcept { opened_.reset(); }

    /// Removes the source if it is unchanged since it was copied, and nothing else.
    ZQFileMigrationRetvalType removeSource();

    /// Where the copy is, or would have been.
    const NSString& destination() const noexcept { return plan_.destination; }
    const ItemPlace& target() const noexcept { return target_; }

    /// Whether this item exists at the destination, according to the last plan: for a link, the link or its
    /// target.
    bool isInTheWay(const struct stat& item) const noexcept;
    const struct stat& copiedItem() const noexcept { return copied_; }
    const struct stat& madeItem() const noexcept { return made_; }

private:
    ZQFileMigrationRetvalType testSource() const;
    ZQFileMigrationRetvalType testParent(DestinationFolder& parent);
    ZQFileMigrationRetvalType chooseDestination(const DestinationFolder& parent);
    ZQFileMigrationRetvalType testHarm(bool exists) const;
    bool look();

    bool isSourceThere() const;
    bool removeExisting(const MadeItems* made);
    bool removeExistingFolder(const struct stat& present);
    bool removeExistingFile(const struct stat& present);

    bool makeCopy(const CopyOptions& options);
    bool copyFile(const CopyOptions& options);
    enum class Naming { done, failed, impossible };
    Naming copyUnnamed(int source, const CopyOptions& options);
    bool copyHidden(int source, const CopyOptions& options);
    bool copySpecial();
    bool copyTree(const CopyOptions& options);
    bool fillTree(Descriptor folder, Descriptor made, const CopyOptions& options);

    bool removeTree();
    bool removeFile();
    bool removeSpecial();

    const MigratedKind& kind_;
    MigrationPolicy policy_;
    NSString source_;
    ItemPlace place_;
    NSString wanted_; ///< the requested destination
    Class workspace_;
    MigrationPlan plan_;
    ItemPlace target_;
    struct stat existing_ {};          ///< at the destination, following links
    struct stat existingItem_ {};      ///< the same without following a link
    struct stat copied_ {};            ///< the source before it was read
    struct stat made_ {};              ///< the copy
    Descriptor opened_;                ///< the source, while it is open
    std::optional<CopyRecord> record_; ///< for a tree that is to be moved
};

} // namespace ZQFoundation::detail

#endif
