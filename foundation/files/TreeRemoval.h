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

/// Removes a folder with all that it holds, below open folders and without following a link or entering a
/// mount point, so that it never gets outside whatever others exchange meanwhile. Takes memory for the depth,
/// not stack, and a bounded number of descriptors. Stops at the first failure.
class TreeRemoval {
public:
    /// `path` is used in error messages.
    TreeRemoval(int folder, const char* name, std::string path)
        : folder_(folder), name_(name), path_(std::move(path)) {}

    /// Removes only items that the record holds, and the folders that are empty then.
    void setRecord(const CopyRecord& record) noexcept { record_ = &record; }

    /// Gives folders that are in the way the permissions to be emptied: for copies that are given up.
    void setMakesWritable() noexcept { makesWritable_ = true; }

    /// False with `errno`; `path()` is then what could not be removed.
    bool run();

    /// After success: whether something is left that the record does not hold.
    bool isSomethingLeft() const noexcept { return isSomethingLeft_; }

    const std::string& path() const noexcept { return path_; }

private:
    struct Level {
        struct stat information;
        FolderNames names;
        std::size_t pathLength; ///< of what leads to this folder
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
