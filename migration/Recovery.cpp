// SPDX-License-Identifier: MIT
// Restores or removes what a killed process has left.
#include "migration/Recovery.h"

#include <atomic>
#include <cstring>

#include <sys/file.h>

#include "foundation/files/FileTimes.h"
#include "foundation/files/StickyFolder.h"
#include "foundation/files/TreeRemoval.h"
#include "foundation/objects/Hashing.h"
#include "foundation/system/FolderNames.h"
#include "migration/HiddenNames.h"
#include "migration/SetAside.h"

namespace ZQFoundation::detail {

namespace {

constexpr int itemFlags = O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

/// States of large folders in which there was nothing to recover, so that a host that migrates their files
/// one by one does not cause them to be read each time. A different state means that somebody has changed the
/// folder; a change within the same tick of the file system's clock may go unnoticed until the next change.
constinit std::atomic<std::uint64_t> recovered[8] = {};
constinit std::atomic<unsigned> nextRecovered = 0;

/// Smaller folders are read quickly, so they are not remembered.
constexpr off_t smallFolderBytes = off_t{64} << 10;

/// A hash of the folder's state; 0 for a folder that is not remembered.
std::uint64_t stateOf(int folder) noexcept {
    struct stat information;
    if (::fstat(folder, &information) != 0 || information.st_size < smallFolderBytes) {
        return 0;
    }
    const timespec modified = modificationTime(information);
    const timespec changed = changeTime(information);
    std::uint64_t state = 1;
    for (const std::uint64_t value :
         {static_cast<std::uint64_t>(information.st_dev), static_cast<std::uint64_t>(information.st_ino),
          static_cast<std::uint64_t>(modified.tv_sec), static_cast<std::uint64_t>(modified.tv_nsec),
          static_cast<std::uint64_t>(changed.tv_sec), static_cast<std::uint64_t>(changed.tv_nsec)}) {
        state = mixed(state ^ value, 0x9E3779B97F4A7C15U);
    }
    return state;
}

/// By the present state of the folder, which is 0 for a small one: that is always read.
bool isKnownAsRecovered(int folder) noexcept {
    const std::uint64_t state = stateOf(folder);
    for (const std::atomic<std::uint64_t>& each : recovered) {
        if (state != 0 && each.load(std::memory_order_relaxed) == state) {
            return true;
        }
    }
    return false;
}

/// A hidden item of a killed process, locked so that no other process recovers it at the same time.
class Leftover {
public:
    Leftover(int folder, const char* name) : folder_(folder), name_(name) {}

    /// Whether it still exists and nobody works on it. An item that cannot be opened cannot be locked; that
    /// is acceptable only for items to be restored, because restoring is harmless.
    bool take(bool mayBeUnlocked) {
        item_ = Descriptor(openAt(folder_, name_, itemFlags));
        if (!item_ || ::flock(item_.number(), LOCK_EX | LOCK_NB) != 0) {
            return mayBeUnlocked && !item_ && errno != ENOENT;
        }
        struct stat opened;
        struct stat present;
        return ::fstat(item_.number(), &opened) == 0 &&
               ::fstatat(folder_, name_, &present, AT_SYMLINK_NOFOLLOW) == 0 && isSameItem(opened, present);
    }

    int number() const noexcept { return item_.number(); }

private:
    int folder_;
    const char* name_;
    Descriptor item_;
};

/// Restores the items in a folder of kind `asideLong`, and removes the folder.
void emptyLongFolder(int folder, const char* name, int opened) {
    FolderNames names;
    if (!names.read(opened)) {
        return;
    }
    while (!names.isAtEnd()) {
        const char* const held = names.next().name;
        showItem(opened, held, folder, held);
    }
    ::unlinkat(folder, name, AT_REMOVEDIR);
}

/// Files first, by one call. An error that says "a folder" leads to the removal of a tree. `makesWritable` is
/// for copies: they may have the permissions of a source that could not be written.
void removeTree(int folder, const char* name, bool makesWritable) {
    if (::unlinkat(folder, name, 0) == 0 || (errno != EISDIR && errno != EPERM)) {
        return;
    }
    TreeRemoval removal(folder, name, name);
    if (makesWritable) {
        removal.setMakesWritable();
    }
    removal.run();
}

/// What was set aside may be the only copy, so it is restored, never removed. What was given up is no longer
/// wanted, and of a copy without its name the source still exists.
void recoverItem(int folder, const char* name, const HiddenName& hidden) {
    Leftover leftover(folder, name);
    if (!leftover.take(hidden.kind == HiddenKind::aside)) {
        return;
    }
    const LockRelease release(leftover.number());
    switch (hidden.kind) {
    case HiddenKind::aside:
        showItem(folder, name, folder, hidden.original);
        break;
    case HiddenKind::asideLong:
        emptyLongFolder(folder, name, leftover.number());
        break;
    case HiddenKind::gone:
        removeTree(folder, name, false);
        break;
    case HiddenKind::copy:
        removeTree(folder, name, true);
        break;
    case HiddenKind::none:
        break;
    }
}

} // namespace

// In a folder that others may write to, only the user's own items are recovered: the names are known, and
// somebody could plant one to have a file renamed or removed.
void recoverFolder(int folder) {
    struct stat information;
    if (isKnownAsRecovered(folder)) {
        return;
    }
    const Descriptor own(openAt(folder, ".", folderFlags));
    FolderNames names;
    if (!own || ::fstat(own.number(), &information) != 0 || !names.read(own.number())) {
        return;
    }
    while (!names.isAtEnd()) {
        const char* const name = names.next().name;
        const HiddenName hidden = *name == '.' ? parsedHiddenName(name) : HiddenName{};
        struct stat item;
        if (hidden.kind != HiddenKind::none &&
            ::fstatat(own.number(), name, &item, AT_SYMLINK_NOFOLLOW) == 0 &&
            (!isSharedFolder(information) || item.st_uid == ::geteuid())) {
            recoverItem(own.number(), name, hidden);
        }
    }
}

void noteRecovered(int folder) noexcept {
    const unsigned slot = nextRecovered.fetch_add(1, std::memory_order_relaxed) % std::size(recovered);
    recovered[slot].store(stateOf(folder), std::memory_order_relaxed);
}

// A shared lock: only recovery takes the lock for itself alone, and so never touches an item that is worked
// on. If the file system has no locks, the work continues unprotected.
bool lockForWork(int item) noexcept {
    return ::flock(item, LOCK_SH | LOCK_NB) == 0 || (errno != EWOULDBLOCK && errno != EINTR);
}

LockRelease::~LockRelease() {
    const int error = errno;
    ::flock(item_, LOCK_UN);
    errno = error;
}

void removeCopy(int folder, const char* name) noexcept {
    const int error = errno;
    try {
        removeTree(folder, name, true);
    } catch (...) {
        // Out of memory: the next migration removes it.
    }
    errno = error;
}

} // namespace ZQFoundation::detail
