// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_FILES_ITEMCOPY_H
#define ZQFOUNDATION_FILES_ITEMCOPY_H

#include <string>

#include <sys/stat.h>

#include "foundation/files/CopyRecord.h"
#include "foundation/system/Descriptor.h"
#include "foundation/system/FileSystem.h"

/// Copies of single items, made below open folders. A copy is made under a name that is free, never through a
/// link, and is open to its maker only until it is complete. All return false with `errno` on failure; what
/// was made until then stays.
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

/// Is notified of a copy's progress, and may stop it: when it returns false, the copy fails with ECANCELED.
class CopyObserver : public system::CopyWatch {
public:
    /// Before an item is copied. `path` begins as the path of the whole copy does.
    virtual bool mayCopy(const std::string& path) = 0;

protected:
    ~CopyObserver() = default;
};

/// What is wanted besides the copy itself.
struct CopyNotes {
    CopyRecord* record = nullptr;
    CopyObserver* observer = nullptr;
};

/// Opens a regular file that is to be copied, and reads its information. When the copy is evidence for a
/// removal, does so in a way that any later change shows.
bool openForCopy(int folder, const char* name, bool isEvidence, Descriptor& file, struct stat& information);

/// A regular file, already open, with its information.
bool copyRegularFile(int source, const struct stat& information, const CopyPlace& place,
                     system::CopyWatch* watch = nullptr);

/// The same into a new file that is open for writing and not yet known to anybody else.
bool fillCopy(int source, const struct stat& information, int made, bool isForeign, system::CopyWatch* watch);

/// Copies anything but a file or folder: a link as a link, a pipe or socket as a new one, a device where that
/// is allowed. `made` is then the new item.
bool copySpecialItem(const struct stat& information, const CopyPlace& place, struct stat& made);

/// Makes the folder of a copy, closed to others, and opens it.
bool makeCopyFolder(const CopyPlace& place, Descriptor& folder);

/// Applies the source's owner (where that is allowed), attributes, access lists, permissions and times to a
/// complete copy.
bool completeCopy(int source, int destination, const struct stat& information);

/// Closes a file that was written; false with `errno` when that shows that data were lost.
bool closeWell(Descriptor& file) noexcept;

} // namespace ZQFoundation::detail

#endif
