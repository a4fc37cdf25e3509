// SPDX-License-Identifier: MIT
// The file manager's removal of the item at a path.
// A link is removed, never what it refers to.
#include <unistd.h>

#include "foundation/files/FileError.h"
#include "foundation/files/ItemPlace.h"
#include "foundation/files/NSFileManager.h"
#include "foundation/files/PathHandle.h"
#include "foundation/files/TreeRemoval.h"
#include "foundation/system/CallerState.h"

namespace ZQFoundation {

namespace {

/// False with `errno`; `failed` is then what could not be removed.
bool removeItem(const std::string& path, std::string& failed) {
    // For most items, which are files, one call does it all. It refuses folders and every name that is not an
    // entry.
    if (::unlink(path.c_str()) == 0) {
        return true;
    }
    detail::ItemPlace item;
    struct stat information;
    failed = path;
    if (!item.open(path) || !item.look(information)) {
        return false;
    }
    // It cannot be removed, and must not lose its contents in the attempt.
    if (!item.isEntry()) {
        errno = EINVAL;
        return false;
    }
    if (!S_ISDIR(information.st_mode)) {
        return ::unlinkat(item.folder(), item.name(), 0) == 0;
    }
    detail::TreeRemoval removal(item.folder(), item.name(), detail::withoutEndSlashes(path));
    // `run` leaves the reason in `errno`, and reading the path must not change it.
    const bool done = removal.run();
    const int reason = errno;
    failed = removal.path();
    errno = reason;
    return done;
}

} // namespace

bool NSFileManager::removeItemAtPath_error(StringView path, NSString* errorText) {
    const detail::CallerState caller;
    std::string bytes;
    if (!detail::getPathBytes(path, bytes)) {
        detail::reportError(errorText, path, errno);
        return false;
    }
    std::string failed;
    if (!removeItem(bytes, failed)) {
        detail::reportErrorOfBytes(errorText, failed, errno);
        return false;
    }
    detail::clearError(errorText);
    return true;
}

} // namespace ZQFoundation
