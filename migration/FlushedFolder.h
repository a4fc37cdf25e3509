// SPDX-License-Identifier: MIT
// Internal: not installed.
// Waits until what a migration has written is on the disk.
#ifndef ZQFOUNDATION_MIGRATION_FLUSHEDFOLDER_H
#define ZQFOUNDATION_MIGRATION_FLUSHEDFOLDER_H

#include <unistd.h>

#include "foundation/files/ItemPlace.h"
#include "foundation/system/FileSystem.h"
#include "foundation/system/OpenFolders.h"

namespace ZQFoundation::detail {

/// Calls `flush(descriptor)` for the folder of a place. If it cannot be opened for reading, flushes all file
/// systems.
template <class Flush>
bool flushFolderBy(const ItemPlace& place, const Flush& flush) noexcept {
    const Descriptor folder(openAt(place.folder(), ".", folderFlags));
    if (folder) {
        return flush(folder.number());
    }
    ::sync();
    return true;
}

/// Returns when the names in the folder are on the disk. False with `errno`.
inline bool flushFolderOf(const ItemPlace& place) noexcept { return flushFolderBy(place, system::flushItem); }

/// Returns when everything on its file system is on the disk. False with `errno`.
inline bool flushFileSystemOf(const ItemPlace& place) noexcept {
    return flushFolderBy(place, system::flushFileSystem);
}

} // namespace ZQFoundation::detail

#endif
