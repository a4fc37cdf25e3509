// SPDX-License-Identifier: MIT
// Internal: not installed.
// Declares the recovery of what killed processes have left.
#ifndef ZQFOUNDATION_MIGRATION_RECOVERY_H
#define ZQFOUNDATION_MIGRATION_RECOVERY_H

#include <sys/stat.h>

namespace ZQFoundation::detail {

/// Recovers what a migration has left in an open folder because its process was killed: items that were only
/// set aside get their names back; items to be removed, and copies that never got their name, are removed.
/// Items that a running process works on are not touched, nor, in a folder that everybody may write to, items
/// of others. Failures change nothing.
void recoverFolder(int folder);

/// Remembers that there is nothing to recover in a folder, so that it is not read again until somebody
/// changes it.
void noteRecovered(int folder) noexcept;

/// Locks an open item that the caller works on, until the descriptor is closed. False if another process
/// works on it; true if the file system has no locks.
bool lockForWork(int item) noexcept;

/// Releases the lock of an open item at the end of a scope. Closing it would not do: a child that was forked
/// meanwhile has it open, too.
class LockRelease {
public:
    explicit LockRelease(int item) noexcept : item_(item) {}
    LockRelease(const LockRelease&) = delete;
    LockRelease& operator=(const LockRelease&) = delete;
    ~LockRelease();

private:
    int item_;
};

/// Removes a copy that has not got its name, whatever its permissions.
void removeCopy(int folder, const char* name) noexcept;

} // namespace ZQFoundation::detail

#endif
