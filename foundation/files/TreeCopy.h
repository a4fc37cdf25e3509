// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_FILES_TREECOPY_H
#define ZQFOUNDATION_FILES_TREECOPY_H

#include <string>
#include <vector>

#include "foundation/files/ItemCopy.h"
#include "foundation/system/FolderNames.h"
#include "foundation/system/OpenFolders.h"

namespace ZQFoundation::detail {

/// Copies a folder with its contents, below open folders, so that nothing that others exchange meanwhile
/// redirects it. Uses memory for the depth, not stack, and a bounded number of descriptors. Stops at the
/// first failure, and leaves what it has made.
class TreeCopy {
public:
    /// `path` is used in error messages. If requested, what was read is recorded, and progress is reported.
    explicit TreeCopy(std::string path, CopyNotes notes = {}) : path_(std::move(path)), notes_(notes) {}

    /// Also makes the folder of the copy. False with `errno`; `path()` is then what could not be copied.
    bool run(Descriptor source, const CopyPlace& place);

    /// Copies into an existing empty folder.
    bool fill(Descriptor source, Descriptor made);

    const std::string& path() const noexcept { return path_; }

private:
    struct Level {
        struct stat information {}; ///< of the source, as it was before it was read
        FolderNames names;
        std::size_t pathLength = 0; ///< of the path to this folder
    };

    bool enter(Descriptor source, const CopyPlace& place);
    bool read(const Descriptor& source, Level& level) const;
    bool push(Level level, Descriptor source, Descriptor made);
    bool copyAll();
    bool isOutsideTheCopy(const struct stat& source) const noexcept;
    bool copyNext(Level& level);
    bool copyEntry(const FolderNames::Entry& entry);
    bool copyFile(const CopyPlace& place);
    bool copyOther(const CopyPlace& place);
    bool copyFolder(const CopyPlace& place);
    bool record(const CopyPlace& place, const struct stat& information);
    bool leave();

    std::string path_;
    CopyNotes notes_;
    std::vector<Level> levels_;
    OpenFolders sources_;
    OpenFolders destinations_;
    struct stat firstMade_ {}; ///< the copy of the start
};

} // namespace ZQFoundation::detail

#endif
