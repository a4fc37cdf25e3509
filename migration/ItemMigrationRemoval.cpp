// SPDX-License-Identifier: MIT
// Removes the source of one migration after the copy.
#include "foundation/files/FileSystemAnnouncement.h"
#include "foundation/files/RemovalCheck.h"
#include "foundation/files/TreeRemoval.h"
#include "foundation/system/FileSystem.h"
#include "foundation/system/OpenFolders.h"
#include "migration/ItemMigration.h"
#include "migration/Recovery.h"
#include "migration/SetAside.h"

namespace ZQFoundation::detail {

// Whatever prevents the removal, the result is the same: source and copy both exist.
ZQFileMigrationRetvalType ItemMigration::removeSource() {
    const bool isRemoved = S_ISDIR(copied_.st_mode)   ? removeTree()
                           : S_ISREG(copied_.st_mode) ? removeFile()
                                                      : removeSpecial();
    if (!isRemoved) {
        return kFileMigrationSourceFileCannotBeRemoved;
    }
    announceFileSystemChange(workspace_, source_.stringByDeletingLastPathComponent());
    return kFileMigrationSuccess;
}

/// After the rename to its hidden name nobody finds the tree by its old name. A process that still uses one
/// of its folders loses nothing that was not copied: such items are kept, under a visible name.
bool ItemMigration::removeTree() {
    const LockRelease release(opened_.number());
    struct stat now;
    if (::fstat(opened_.number(), &now) != 0 || !isUnchanged(copied_, now, true) ||
        !lockForWork(opened_.number())) {
        return false;
    }
    SetAside aside(place_);
    if (!aside.take(copied_) || !isTreeRemovable(opened_, &*record_) || !target_.holds(made_) ||
        !aside.giveUp()) {
        return false;
    }
    record_->beginRemoval();
    TreeRemoval removal(aside.folder(), aside.name(), aside.name());
    removal.setRecord(*record_);
    if (removal.run() && removal.isSomethingLeft()) {
        showItemBeside(aside.folder(), aside.name(), place_.folder(), place_.name());
    }
    return true;
}

/// Setting the file aside changes its times. So check for changes before, and from then on nobody may open it
/// for writing.
bool ItemMigration::removeFile() {
    struct stat now;
    if (!opened_) { // in a batch, where files do not stay open
        opened_ = Descriptor(openAt(place_.folder(), place_.name(),
                                    O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    }
    if (!opened_) {
        return false;
    }
    const LockRelease release(opened_.number());
    const system::WritersHeldOff writers(opened_.number());
    if (!writers.areThereNone() || ::fstat(opened_.number(), &now) != 0 || !isUnchanged(copied_, now, true) ||
        !lockForWork(opened_.number())) {
        return false;
    }
    SetAside aside(place_);
    return aside.take(copied_) && ::fstat(opened_.number(), &now) == 0 && isUnchanged(copied_, now, false) &&
           writers.areThereNone() && target_.holds(made_) && aside.removeFile();
}

// Pipes, devices and links: no descriptor keeps them, so they are compared by their state alone.
bool ItemMigration::removeSpecial() {
    struct stat now;
    if (!place_.look(now) || !isUnchanged(copied_, now, true)) {
        return false;
    }
    SetAside aside(place_);
    return aside.take(copied_) && target_.holds(made_) && aside.removeFile();
}

} // namespace ZQFoundation::detail
