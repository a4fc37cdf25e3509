// SPDX-License-Identifier: MIT
#include <cstring>

#include <dirent.h>

#include "foundation/files/FileError.h"
#include "foundation/files/NSFileManager.h"
#include "foundation/files/PathHandle.h"
#include "foundation/system/CallerState.h"

namespace ZQFoundation {

namespace {

/// Closes a folder with its scope.
class FolderStream {
public:
    /// Takes the descriptor over.
    explicit FolderStream(detail::Descriptor folder) noexcept
        : stream_(folder ? ::fdopendir(folder.number()) : nullptr) {
        if (stream_ != nullptr) {
            folder.release();
        }
    }
    FolderStream(const FolderStream&) = delete;
    FolderStream& operator=(const FolderStream&) = delete;
    ~FolderStream() {
        if (stream_ != nullptr) {
            ::closedir(stream_);
        }
    }

    explicit operator bool() const noexcept { return stream_ != nullptr; }

    /// Null at the end, with `errno` 0, and for an error.
    const dirent* next() noexcept {
        errno = 0;
        return ::readdir(stream_);
    }

private:
    DIR* stream_;
};

detail::Descriptor openFolder(StringView path) {
    constexpr int flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NONBLOCK;
    std::string bytes;
    detail::PathHandle handle;
    if (!detail::getPathBytes(path, bytes) || !handle.reach(bytes)) {
        return {};
    }
    return detail::Descriptor(detail::openAt(handle.folder(), handle.name(), flags));
}

bool isSelfOrParent(const char* name) noexcept {
    return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

} // namespace

NSArray NSFileManager::contentsOfDirectoryAtPath_error(StringView path, NSString* errorText) const {
    const detail::CallerState caller;
    FolderStream folder(openFolder(path));
    if (!folder) {
        detail::tellError(errorText, path, errno);
        return nullptr;
    }
    NSMutableArray names;
    while (const dirent* const entry = folder.next()) {
        if (!isSelfOrParent(entry->d_name)) {
            names.addObject(NSString::stringWithFileSystemBytes(entry->d_name, std::strlen(entry->d_name)));
        }
    }
    if (errno != 0) {
        detail::tellError(errorText, path, errno);
        return nullptr;
    }
    detail::tellSuccess(errorText);
    return names.array();
}

} // namespace ZQFoundation
