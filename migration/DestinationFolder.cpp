// SPDX-License-Identifier: MIT
// Finds, creates and keeps open the folder that items are migrated to.
#include "migration/DestinationFolder.h"

#include "foundation/files/NSFileManager.h"
#include "foundation/files/PathHandle.h"
#include "foundation/system/OpenFolders.h"
#include "migration/Recovery.h"

namespace ZQFoundation::detail {

// A folder that was closed must be the same when it is opened again. Another one in its place is a failure:
// the plan was made for the first.
DestinationFolder::State DestinationFolder::find() {
    if (folder_) {
        return State::found;
    }
    bool isDirectory = false;
    // A "~" that remains could not be expanded.
    if (path_.hasPrefix("~") ||
        !NSFileManager::defaultManager().fileExistsAtPath_isDirectory(path_, &isDirectory)) {
        return State::missing;
    }
    if (!isDirectory) {
        return State::notFolder;
    }
    std::string bytes;
    struct stat information;
    SharedFolder folder = getPathBytes(path_, bytes) ? openSharedFolder(bytes) : nullptr;
    if (!folder || ::fstat(folder->number(), &information) != 0 ||
        (isKnown_ && !isSameItem(known_, information))) {
        return State::failed;
    }
    if (recovers_ && !isKnown_) {
        recoverFolder(folder->number());
    }
    isKnown_ = true;
    known_ = information;
    folder_ = std::move(folder);
    return State::found;
}

// A path that still begins with "~" names nobody's home, and no folder of that name is made.
bool DestinationFolder::make() {
    return !path_.hasPrefix("~") &&
           NSFileManager::defaultManager().createDirectoryAtPath_withIntermediateDirectories_attributes_error(
               path_, true, nullptr) &&
           find() == State::found;
}

} // namespace ZQFoundation::detail
