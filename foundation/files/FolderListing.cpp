// SPDX-License-Identifier: MIT
// The names of the items in a folder.
// All names are read before any is returned, so that changes meanwhile do no harm.
#include <cstring>

#include "foundation/files/FileError.h"
#include "foundation/files/NSFileManager.h"
#include "foundation/files/PathHandle.h"
#include "foundation/system/CallerState.h"
#include "foundation/system/FolderNames.h"
#include "foundation/system/OpenFolders.h"

namespace ZQFoundation {

namespace {

/// False with `errno`.
bool readFolder(StringView path, detail::FolderNames& names) {
    std::string bytes;
    detail::PathHandle handle;
    if (!detail::getPathBytes(path, bytes) || !handle.reach(bytes)) {
        return false;
    }
    const detail::Descriptor folder(
        detail::openAt(handle.folder(), handle.name(), detail::folderFlags & ~O_NOFOLLOW));
    return folder && names.read(folder.number());
}

} // namespace

NSArray NSFileManager::contentsOfDirectoryAtPath_error(StringView path, NSString* errorText) const {
    const detail::CallerState caller;
    detail::FolderNames found;
    if (!readFolder(path, found)) {
        detail::reportError(errorText, path, errno);
        return nullptr;
    }
    NSMutableArray names;
    while (!found.isAtEnd()) {
        const char* const name = found.next().name;
        names.addObject(NSString::stringWithFileSystemBytes(name, std::strlen(name)));
    }
    detail::clearError(errorText);
    return names.array();
}

} // namespace ZQFoundation
