// SPDX-License-Identifier: MIT
// What exists at a path, and what the process may do with it.
// A result is valid for one moment and may be out of date when it is used. Operations that depend on it must
// check the item that they open.
#include "foundation/files/FileInformation.h"
#include "foundation/files/NSFileManager.h"
#include "foundation/files/PathHandle.h"
#include "foundation/system/CallerState.h"

namespace ZQFoundation::detail {

namespace {

// A path that cannot be converted does not exist.
bool getInformation(StringView path, struct stat& information, int flags) {
    std::string bytes;
    PathHandle handle;
    return getPathBytes(path, bytes) && handle.reach(bytes) &&
           ::fstatat(handle.folder(), handle.name(), &information, flags) == 0;
}

/// By the real ids, as `access` without flags does.
bool isPermitted(StringView path, int mode) {
    const CallerState caller;
    std::string bytes;
    PathHandle handle;
    return getPathBytes(path, bytes) && handle.reach(bytes) &&
           ::faccessat(handle.folder(), handle.name(), mode, 0) == 0;
}

} // namespace

bool getItemInformation(StringView path, struct stat& information) {
    return getInformation(path, information, AT_SYMLINK_NOFOLLOW);
}

bool getTargetInformation(StringView path, struct stat& information) {
    return getInformation(path, information, 0);
}

} // namespace ZQFoundation::detail

namespace ZQFoundation {

NSFileManager& NSFileManager::defaultManager() noexcept {
    // Has no state, so one serves all threads.
    static constinit NSFileManager manager;
    return manager;
}

bool NSFileManager::fileExistsAtPath(StringView path) const {
    return fileExistsAtPath_isDirectory(path, nullptr);
}

bool NSFileManager::fileExistsAtPath_isDirectory(StringView path, bool* isDirectory) const {
    const detail::CallerState caller;
    struct stat information;
    if (!detail::getTargetInformation(path, information)) {
        return false;
    }
    // Only on success: callers rely on the flag being unchanged otherwise.
    if (isDirectory != nullptr) {
        *isDirectory = S_ISDIR(information.st_mode);
    }
    return true;
}

bool NSFileManager::isReadableFileAtPath(StringView path) const { return detail::isPermitted(path, R_OK); }

bool NSFileManager::isWritableFileAtPath(StringView path) const { return detail::isPermitted(path, W_OK); }

} // namespace ZQFoundation
