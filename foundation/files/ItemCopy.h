// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_FILES_ITEMCOPY_H
#define ZQFOUNDATION_FILES_ITEMCOPY_H

#include <sys/stat.h>

#include "foundation/system/Descriptor.h"

/// Copies of single items, made below open folders. A copy is made under a name at which nothing stands,
/// never through a link, and is open to its maker only until it is complete. All answer false with `errno`;
/// what was made until then stays.
namespace ZQFoundation::detail {

/// Where an item is to be copied from and to.
struct CopyPlace {
    int sourceFolder;
    const char* sourceName;
    int destinationFolder;
    const char* destinationName;

    /// Whether the destination folder is one that the copy did not make: others may work in it, and its
    /// access list may be handed down to new items.
    bool isForeign;
};

/// A regular file, already open and looked at.
bool copyRegularFile(int source, const struct stat& information, const CopyPlace& place);

/// A link as a link, a pipe or socket made anew, a device where that is allowed; whatever is no file and no
/// folder.
bool copySpecialItem(const struct stat& information, const CopyPlace& place);

/// Makes the folder of a copy, closed to others, and opens it.
bool makeCopyFolder(const CopyPlace& place, Descriptor& folder);

/// Gives a complete copy the owner where that is allowed, attributes, access lists, permissions and times of
/// the source.
bool completeCopy(int source, int destination, const struct stat& information);

} // namespace ZQFoundation::detail

#endif
