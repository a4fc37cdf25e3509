// SPDX-License-Identifier: MIT
// Internal: not installed.
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

/// How files and folders differ.
struct MigratedKind {
    bool isFolder;
    const char* workspaceClass;
    ZQFileMigrationRetvalType exists;
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

/// What a migration would do, found by looking.
struct MigrationPlan {
    ZQFileMigrationRetvalType code = kFileMigrationSuccess; ///< success, or why nothing would be done
    bool makesParent = false;
    bool replaces = false; ///< what is at the destination is removed first
    NSString destination;  ///< where the copy is to be; nil when no name is free
};

/// One file or folder on its way. The steps of a move are calls of their own, so that many files can be
/// flushed to the disk together:
///
///     plan, copy, announceCopy, (what was copied is flushed), removeSource
///
/// The protocol by which nothing is lost is in docs/migration.md.
class ItemMigration {
public:
    /// `source` and `destination` are whole paths, "~" expanded; `place` is where the source is. A place that
    /// was not found stands for a source that does not exist. Kind must outlive the migration.
    ItemMigration(const MigratedKind& kind, const MigrationPolicy& policy, const NSString& source,
                  ItemPlace place, const NSString& destination);

    /// Changes nothing.
    const MigrationPlan& plan(DestinationFolder& parent);

    /// Makes the parent folder if that was planned, and plans again.
    ZQFileMigrationRetvalType makeParent(DestinationFolder& parent);

    /// What is wanted of a copy.
    struct CopyWishes {
        bool isFlushed = false;    ///< the copy is on the disk before it takes its name
        MadeItems* made = nullptr; ///< what the same run has made: it is not replaced
        CopyObserver* observer = nullptr;
    };

    /// By the plan: removes what is to be replaced, and copies. The copy takes its name when it is complete;
    /// after a failure nothing is there.
    ZQFileMigrationRetvalType copy(const CopyWishes& wishes);

    void announceCopy() const;

    /// Gives the source's descriptor back; a file is opened again for its removal.
    void closeSource() noexcept { opened_.reset(); }

    /// Removes what was copied and is unchanged, and nothing else.
    ZQFileMigrationRetvalType removeSource();

    /// Where the copy is, or was to be.
    const NSString& destination() const noexcept { return plan_.destination; }
    const ItemPlace& target() const noexcept { return target_; }

    /// What exists at the destination, by the last plan: one of two items where that is a link.
    bool isInTheWay(const struct stat& item) const noexcept;
    const struct stat& copiedItem() const noexcept { return copied_; }
    const struct stat& madeItem() const noexcept { return made_; }

private:
    ZQFileMigrationRetvalType testSource() const;
    ZQFileMigrationRetvalType testParent(DestinationFolder& parent);
    ZQFileMigrationRetvalType chooseDestination(const DestinationFolder& parent);
    ZQFileMigrationRetvalType testHarm(bool exists) const;
    bool look();

    bool removeExisting(const MadeItems* made);
    bool removeExistingFolder(const struct stat& present);
    bool removeExistingFile(const struct stat& present);

    bool makeCopy(const CopyWishes& wishes);
    bool copyFile(const CopyWishes& wishes);
    enum class Naming { done, failed, impossible };
    Naming copyUnnamed(int source, const CopyWishes& wishes);
    bool copyHidden(int source, const CopyWishes& wishes);
    bool copySpecial();
    bool copyTree(const CopyWishes& wishes);
    bool fillTree(Descriptor folder, Descriptor made, const CopyWishes& wishes);

    bool removeTree();
    bool removeFile();
    bool removeSpecial();

    const MigratedKind& kind_;
    MigrationPolicy policy_;
    NSString source_;
    ItemPlace place_;
    NSString wanted_; ///< the destination that was asked for
    Class workspace_;
    MigrationPlan plan_;
    ItemPlace target_;
    struct stat existing_ {};          ///< at the destination, links followed
    struct stat existingItem_ {};      ///< the same, a link not being followed
    struct stat copied_ {};            ///< the source as it was before it was read
    struct stat made_ {};              ///< the copy
    Descriptor opened_;                ///< the source, while it is open
    std::optional<CopyRecord> record_; ///< of a tree that is to be moved
};

} // namespace ZQFoundation::detail

#endif
