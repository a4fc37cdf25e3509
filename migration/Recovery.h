// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_MIGRATION_RECOVERY_H
#define ZQFOUNDATION_MIGRATION_RECOVERY_H

#include <sys/stat.h>

namespace ZQFoundation::detail {

/// Finishes what a migration has left in an open folder because its process was ended: what was only set
/// aside goes back to its name, what was given up and copies that never took their name are removed. What a
/// living process works on is left alone, and in a folder that everybody may write to what belongs to
/// others. Failures leave things as they are.
void recoverFolder(int folder);

/// Says that a folder was left with nothing to recover, so that it need not be read again before somebody has
/// changed it.
void noteRecovered(int folder) noexcept;

/// Takes the lock of an open item for who works on it, as long as the descriptor is open. False when another
/// process works on it; true also where the file system has no locks.
bool lockForWork(int item) noexcept;

/// Removes a copy that has not taken its name, whatever permissions it has got already.
void removeCopy(int folder, const char* name) noexcept;

} // namespace ZQFoundation::detail

#endif
