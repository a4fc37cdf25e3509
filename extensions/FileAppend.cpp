// SPDX-License-Identifier: MIT
// Appends texts to files in one write.
#include <new>
#include <string>

#include <sys/file.h>

#include "foundation/files/NSFileManager.h"
#include "foundation/files/NonBlockingOpening.h"
#include "foundation/objects/NSData.h"
#include "foundation/objects/NSString.h"
#include "foundation/system/CallerState.h"
#include "foundation/system/System.h"
#include "foundation/system/WholeWrite.h"

namespace ZQFoundation {

namespace {

using detail::Descriptor;
using detail::PathHandle;

/// Others may create and remove the file between two checks, so bound the retries.
constexpr int maxAttempts = 64;

/// The lock of a folder, held by one process and thread at a time and released with the object.
class FolderLock {
public:
    FolderLock() = default;
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;
    ~FolderLock() {
        if (isLocked_) { // a child that was forked meanwhile has the descriptor too, and would keep the lock
            ::flock(folder_.number(), LOCK_UN);
        }
    }

    /// Waits at most about a second, because anybody who can read the folder can take the lock.
    bool take(const std::string& path) {
        constexpr int maxMilliseconds = 1000;
        const std::size_t slash = path.rfind('/');
        const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
        PathHandle handle;
        if (!handle.reach(folder)) {
            return false;
        }
        folder_ =
            Descriptor(detail::openAt(handle.folder(), handle.name(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        for (int attempt = 0; folder_ && attempt < maxMilliseconds; ++attempt) {
            isLocked_ = ::flock(folder_.number(), LOCK_EX | LOCK_NB) == 0;
            if (isLocked_ || (errno != EWOULDBLOCK && errno != EINTR)) {
                break;
            }
            detail::system::pauseFor(1'000'000);
        }
        return isLocked_;
    }

private:
    Descriptor folder_;
    bool isLocked_ = false;
};

/// Whether this error of following a link means that it is dangling; a link to itself counts as dangling too.
bool meansDanglingLink(int error) noexcept { return error == ENOENT || error == ELOOP; }

bool isDanglingLink(const PathHandle& path) noexcept {
    struct stat information;
    return ::fstatat(path.folder(), path.name(), &information, AT_SYMLINK_NOFOLLOW) == 0 &&
           S_ISLNK(information.st_mode) && ::fstatat(path.folder(), path.name(), &information, 0) != 0 &&
           meansDanglingLink(errno);
}

/// Replaces a dangling link by an empty file; its target is never created. If several processes find the same
/// link, one replaces it, under the folder's lock, so that no file that already has text is replaced. True if
/// there is no longer such a link.
bool replaceDanglingLink(const std::string& bytes, const PathHandle& path) {
    if (!isDanglingLink(path)) {
        return true; // somebody else has created the file meanwhile
    }
    FolderLock lock;
    if (!lock.take(bytes)) {
        return false;
    }
    return !isDanglingLink(path) ||
           NSFileManager::defaultManager().createFileAtPath_contents_attributes(
               NSString::stringWithFileSystemBytes(bytes.data(), bytes.size()), nullptr, nullptr);
}

/// The file at the path, created if missing; never truncated or replaced. No descriptor if that fails.
Descriptor openForAppending(const std::string& bytes) {
    constexpr int flags = O_WRONLY | O_APPEND;
    PathHandle path;
    if (!path.reach(bytes)) {
        return Descriptor();
    }
    for (int attempt = 0; attempt < maxAttempts; ++attempt) {
        Descriptor file = detail::openNonBlocking(path, flags);
        if (file || !meansDanglingLink(errno)) {
            return file;
        }
        // If another process has created it in between, the next attempt opens that file.
        file = detail::openNonBlocking(path, flags | O_CREAT | O_EXCL, 0666);
        if (file || errno != EEXIST || !replaceDanglingLink(bytes, path)) {
            return file;
        }
    }
    return Descriptor();
}

/// The system seeks to the end and writes in one step, so that texts of several processes are never
/// interleaved. Files without an end, such as a pipe, are rejected. Closing reports writes that failed late,
/// as on network file systems.
bool append(const std::string& path, const NSData& data) {
    Descriptor file = openForAppending(path);
    return file && ::lseek(file.number(), 0, SEEK_END) >= 0 &&
           detail::writeWhole(file.number(), reinterpret_cast<const char*>(data.bytes()), data.length()) &&
           (::close(file.release()) == 0 || errno == EINTR);
}

} // namespace

bool NSString::appendToFile_encoding(StringView path, NSStringEncoding encoding) const {
    const detail::CallerState caller;
    try {
        const NSData data = dataUsingEncoding(encoding);
        std::string bytes;
        return data && detail::getPathBytes(path, bytes) && append(bytes, data);
    } catch (const std::bad_alloc&) {
        return false;
    }
}

} // namespace ZQFoundation
