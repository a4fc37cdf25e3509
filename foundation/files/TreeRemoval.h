// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_FILES_TREEREMOVAL_H
#define ZQFOUNDATION_FILES_TREEREMOVAL_H

#include <string>
#include <vector>

#include "foundation/files/CopyRecord.h"
#include "foundation/system/FolderNames.h"
#include "foundation/system/OpenFolders.h"

namespace ZQFoundation::detail {

/// Removes a folder with its contents, below open folders and without following a link or entering a mount
/// point, so that it never gets outside, whatever others exchange meanwhile. Uses memory for the depth, not
/// stack, and a bounded number of descriptors. Stops at the first failure.
class TreeRemoval {
public:
    /// `path` is used in error messages.
    TreeRemoval(int folder, const char* name, std::string path)
        : folder_(folder), name_(name), path_(std::move(path)) {}

    /// Restricts the removal to items in the record, and to folders that are then empty.
    void setRecord(const CopyRecord& record) noexcept { record_ = &record; }

    /// Adds the permissions needed to empty folders that lack them: for abandoned copies.
    void setMakesWritable() noexcept { makesWritable_ = true; }

    /// False with `errno`; `path()` is then what could not be removed.
    bool run();

    /// After success: whether something is left that is not in the record.
    bool isSomethingLeft() const noexcept { return isSomethingLeft_; }

    const std::string& path() const noexcept { return path_; }

private:
    struct Level {
        struct stat information;
        FolderNames names;
        std::size_t pathLength; ///< of the path to this folder
        int readings;
    };

    bool removeNext();
    bool isRecorded(const char* name) const;
    bool removeEntry(const FolderNames::Entry& entry);
    bool enterOrRemoveEmpty(int folder, const char* name);
    Descriptor openFolder(int folder, const char* name);
    bool push(Descriptor opened);
    bool leave();
    bool readAgain();

    int folder_;
    const char* name_;
    std::string path_;
    const CopyRecord* record_ = nullptr;
    bool makesWritable_ = false;
    bool isSomethingLeft_ = false;
    std::vector<Level> levels_;
    OpenFolders folders_;
};

} // namespace ZQFoundation::detail

#endif
