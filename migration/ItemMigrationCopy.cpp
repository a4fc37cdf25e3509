// SPDX-License-Identifier: MIT
// Copies for one migration, and removes what the copy replaces.
#include <sys/file.h>

#include "foundation/files/RemovalCheck.h"
#include "foundation/files/TreeCopy.h"
#include "foundation/files/TreeRemoval.h"
#include "foundation/system/StandardStreams.h"
#include "migration/HiddenNames.h"
#include "migration/ItemMigration.h"
#include "migration/Recovery.h"
#include "migration/SetAside.h"

namespace ZQFoundation::detail {

namespace {

/// Others may remove a copy that is not locked yet, so bound the retries.
constexpr int maxNames = 16;

// By the time of the opening, a pipe or a terminal may have the name: do not wait for the one, nor be
// controlled by the other. What is created must be new: nobody else's item is ever opened for writing.
constexpr int oldFileFlags = O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
constexpr int newFileFlags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC | O_NOCTTY;

/// Never with the number of a standard stream that the host has closed: what is written to the stream would
/// go into the copy.
Descriptor duplicateOf(const Descriptor& descriptor) noexcept {
    return Descriptor(::fcntl(descriptor.number(), F_DUPFD_CLOEXEC, system::firstFreeDescriptor));
}

/// If the host has closed its standard streams, a new file would get the number of one, and what the host
/// prints would go into the copy.
Descriptor openUnnamed(int folder) noexcept {
    const system::StandardStreamsGuard guard(true);
    return Descriptor(system::keepOffStandardStreams(system::openUnnamedFile(folder)));
}

/// A hidden copy that is removed at the end of the scope unless it has got its name.
class HiddenCopy {
public:
    explicit HiddenCopy(const ItemPlace& target) : target_(target) {}
    HiddenCopy(const HiddenCopy&) = delete;
    HiddenCopy& operator=(const HiddenCopy&) = delete;
    ~HiddenCopy() {
        if (!name_.empty()) {
            removeCopy(target_.folder(), name_.c_str());
        }
    }

    /// Creates an item with `make(name)`, which opens it, and locks it. Between the two, recovery in another
    /// process may take it for a leftover and remove it; then the name is no longer that of the item, and
    /// another one is tried.
    template <class Make>
    Descriptor begin(const Make& make) {
        for (int attempt = 0; attempt < maxNames; ++attempt) {
            name_ = newHiddenName(HiddenKind::copy);
            Descriptor made = make(name_.c_str());
            struct stat information;
            if (!made && errno != ENOENT) {
                return made; // the destructor removes what may have been created
            }
            if (made && lockForWork(made.number()) && ::fstat(made.number(), &information) == 0 &&
                ItemPlace(target_.sharedFolder(), name_).holds(information)) {
                return made;
            }
        }
        errno = EAGAIN;
        return {};
    }

    /// Never replaces: an item that somebody has created at the destination meanwhile stays, and the copy
    /// fails.
    bool takeName() {
        if (!system::renameWithoutReplacing(target_.folder(), name_.c_str(), target_.folder(),
                                            target_.name())) {
            return false;
        }
        name_.clear();
        return true;
    }

    const char* name() const noexcept { return name_.c_str(); }

private:
    const ItemPlace& target_;
    std::string name_;
};

} // namespace

ZQFileMigrationRetvalType ItemMigration::copy(const CopyOptions& options) {
    if (!place_.look(copied_)) {
        return kind_.writingFailed;
    }
    if (plan_.replaces && !removeExisting(options.made)) {
        return kind_.overwritingFailed;
    }
    if (!makeCopy(options)) {
        return kind_.writingFailed;
    }
    if (options.made != nullptr) {
        options.made->add(made_);
    }
    return kFileMigrationSuccess;
}

// What was planned may have changed since, so the kind is checked once more: a folder with its contents is
// never removed for a file.
bool ItemMigration::removeExisting(const MadeItems* made) {
    struct stat present;
    if (!target_.look(present)) {
        return false;
    }
    if (made != nullptr && made->holds(present)) {
        errno = EEXIST; // two paths of this run have the same destination
        return false;
    }
    if (S_ISDIR(present.st_mode) && !kind_.isFolder) {
        errno = EISDIR;
        return false;
    }
    return S_ISDIR(present.st_mode) ? removeExistingFolder(present) : removeExistingFile(present);
}

/// Whether the source still has its name, and is not the item that was just set aside. A file system that
/// shows another one's items, with a device number of its own, may still have the name in its cache; but it
/// cannot open the item by that name any more.
bool ItemMigration::isSourceThere() const {
    if (!place_.holds(copied_)) {
        return false;
    }
    if (!S_ISREG(copied_.st_mode) && !S_ISDIR(copied_.st_mode)) {
        return true;
    }
    const Descriptor source(
        openAt(place_.folder(), place_.name(), S_ISDIR(copied_.st_mode) ? folderFlags : oldFileFlags));
    return source || (errno != ENOENT && errno != ESTALE);
}

/// If two migrations have the same source and destination, each takes one item away and then looks for the
/// other one. So the second never removes the copy of the first while the first removes the source.
bool ItemMigration::removeExistingFile(const struct stat& present) {
    Descriptor file;
    if (S_ISREG(present.st_mode)) {
        file = Descriptor(openAt(target_.folder(), target_.name(), oldFileFlags));
        if (file && !lockForWork(file.number())) {
            return false;
        }
    }
    const LockRelease release(file.number());
    SetAside aside(target_);
    return aside.take(present) && isSourceThere() && aside.removeFile();
}

// Checked as a whole before it is set aside: if one item in it cannot be removed, nothing is.
bool ItemMigration::removeExistingFolder(const struct stat& present) {
    const Descriptor folder(openAt(target_.folder(), target_.name(), folderFlags));
    const LockRelease release(folder.number());
    if (!folder || !lockForWork(folder.number()) || !isTreeRemovable(folder, nullptr)) {
        return false;
    }
    SetAside aside(target_);
    return aside.take(present) && isSourceThere() && aside.giveUp() &&
           TreeRemoval(aside.folder(), aside.name(), aside.name()).run();
}

bool ItemMigration::makeCopy(const CopyOptions& options) {
    struct stat present;
    if (target_.look(present)) {
        errno = EEXIST; // a dangling link, or an item created meanwhile
        return false;
    }
    if (S_ISDIR(copied_.st_mode)) {
        return copyTree(options);
    }
    return S_ISREG(copied_.st_mode) ? copyFile(options) : copySpecial();
}

bool ItemMigration::copyFile(const CopyOptions& options) {
    struct stat opened;
    if (!openForCopy(place_.folder(), place_.name(), !policy_.keepOriginal, opened_, opened)) {
        return false;
    }
    if (!isSameItem(opened, copied_)) {
        errno = ESTALE;
        return false;
    }
    copied_ = opened;
    const Naming naming = copyUnnamed(opened_.number(), options);
    return naming == Naming::done || (naming == Naming::impossible && copyHidden(opened_.number(), options));
}

/// A file without a name vanishes with the process, so a killed process leaves nothing.
ItemMigration::Naming ItemMigration::copyUnnamed(int source, const CopyOptions& options) {
    Descriptor made = openUnnamed(target_.folder());
    if (!made) {
        return errno == EMFILE || errno == ENFILE || errno == ENOSPC || errno == EDQUOT ? Naming::failed
                                                                                        : Naming::impossible;
    }
    if (!fillCopy(source, copied_, made.number(), true, options.observer) ||
        (options.isFlushed && !system::flushItem(made.number())) || ::fstat(made.number(), &made_) != 0) {
        return Naming::failed;
    }
    if (!system::nameFile(made.number(), target_.folder(), target_.name())) {
        return errno == EEXIST ? Naming::failed : Naming::impossible;
    }
    if (closeWell(made)) {
        return Naming::done;
    }
    if (target_.holds(made_)) {
        ::unlinkat(target_.folder(), target_.name(), 0);
    }
    return Naming::failed;
}

bool ItemMigration::copyHidden(int source, const CopyOptions& options) {
    HiddenCopy hidden(target_);
    Descriptor made = hidden.begin(
        [&](const char* name) { return Descriptor(openAt(target_.folder(), name, newFileFlags, 0600)); });
    const Descriptor lock = made ? duplicateOf(made) : Descriptor();
    const LockRelease release(lock.number());
    return made && fillCopy(source, copied_, made.number(), true, options.observer) &&
           (!options.isFlushed || system::flushItem(made.number())) && ::fstat(made.number(), &made_) == 0 &&
           closeWell(made) && hidden.takeName();
}

/// A link is complete as soon as it is created, and so is a pipe except for its permissions: these get their
/// names at once.
bool ItemMigration::copySpecial() {
    const CopyPlace place{place_.folder(), place_.name(), target_.folder(), target_.name(), true};
    made_ = {};
    if (copySpecialItem(copied_, place, made_)) {
        return true;
    }
    const int error = errno;
    if (made_.st_ino != 0 && target_.holds(made_)) {
        ::unlinkat(target_.folder(), target_.name(), 0);
    }
    errno = error;
    return false;
}

bool ItemMigration::copyTree(const CopyOptions& options) {
    struct stat opened;
    opened_ = Descriptor(openAt(place_.folder(), place_.name(), folderFlags));
    if (!opened_ || ::fstat(opened_.number(), &opened) != 0) {
        return false;
    }
    if (!isSameItem(opened, copied_) || isAtOrAbove(opened, target_.folder())) {
        errno = EINVAL;
        return false;
    }
    HiddenCopy hidden(target_);
    const Descriptor made = hidden.begin([&](const char* name) {
        Descriptor folder;
        makeCopyFolder({place_.folder(), place_.name(), target_.folder(), name, true}, folder);
        return folder;
    });
    const LockRelease release(made.number());
    // The duplicate keeps the lock, and the means to flush the copy, until both descriptors are closed.
    return made && fillTree(duplicateOf(opened_), duplicateOf(made), options) &&
           (!options.isFlushed || system::flushFileSystem(made.number())) &&
           ::fstat(made.number(), &made_) == 0 && hidden.takeName();
}

bool ItemMigration::fillTree(Descriptor folder, Descriptor made, const CopyOptions& options) {
    if (!folder || !made) {
        return false;
    }
    std::string path;
    source_.getFileSystemBytes(path);
    if (policy_.keepOriginal) {
        return TreeCopy(withoutEndSlashes(path), {nullptr, options.observer})
            .fill(std::move(folder), std::move(made));
    }
    TreeCopy tree(withoutEndSlashes(path), {&record_.emplace(), options.observer});
    const bool isCopied = tree.fill(std::move(folder), std::move(made));
    record_->complete();
    return isCopied;
}

} // namespace ZQFoundation::detail
