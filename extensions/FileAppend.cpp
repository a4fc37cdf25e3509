// SPDX-License-Identifier: MIT
// Texts appended to files in one write.
#include <new>
#include <string>

#include <poll.h>
#include <sys/file.h>

#include "foundation/files/NSFileManager.h"
#include "foundation/files/NonBlockingOpening.h"
#include "foundation/objects/NSData.h"
#include "foundation/objects/NSString.h"
#include "foundation/system/CallerState.h"
#include "foundation/system/WholeWrite.h"

namespace ZQFoundation {

namespace {

using detail::Descriptor;
using detail::PathHandle;

/// Others may make and remove the file between two looks at it; somebody who keeps doing so does not keep us
/// for ever.
constexpr int maxAttempts = 64;

/// The lock of a folder, held by one process and thread at a time; taken back with the object.
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

    /// Waits for about a second at most: the lock is anybody's who may read the folder.
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
            ::poll(nullptr, 0, 1);
        }
        return isLocked_;
    }

private:
    Descriptor folder_;
    bool isLocked_ = false;
};

/// A link that leads to itself leads to no file either.
bool meansDanglingLink(int error) noexcept { return error == ENOENT || error == ELOOP; }

bool isDanglingLink(const PathHandle& path) noexcept {
    struct stat information;
    return ::fstatat(path.folder(), path.name(), &information, AT_SYMLINK_NOFOLLOW) == 0 &&
           S_ISLNK(information.st_mode) && ::fstatat(path.folder(), path.name(), &information, 0) != 0 &&
           meansDanglingLink(errno);
}

/// Puts an empty file in the place of a link that leads nowhere; what it leads to is never made. Of several
/// who find the same link one does so, under the folder's lock, so that nobody's file with a text in it is
/// replaced. True when no such link stands there any more.
bool replaceDanglingLink(const std::string& bytes, const PathHandle& path) {
    if (!isDanglingLink(path)) {
        return true; // somebody else has made the file meanwhile
    }
    FolderLock lock;
    if (!lock.take(bytes)) {
        return false;
    }
    return !isDanglingLink(path) ||
           NSFileManager::defaultManager().createFileAtPath_contents_attributes(
               NSString::stringWithFileSystemBytes(bytes.data(), bytes.size()), nullptr, nullptr);
}

/// The file at the path, made when it is missing; never cut off or replaced. None when that fails.
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
        // Whoever comes second finds the file of the first, and opens that one.
        file = detail::openNonBlocking(path, flags | O_CREAT | O_EXCL, 0666);
        if (file || errno != EEXIST || !replaceDanglingLink(bytes, path)) {
            return file;
        }
    }
    return Descriptor();
}

/// The system moves to the end and writes in one step, so that texts of several processes never tear each
/// other. What has no end, such as a pipe, takes nothing. Closing tells of writes that failed late, as they
/// may over a network.
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
