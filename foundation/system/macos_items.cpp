// SPDX-License-Identifier: MIT
// Facts about items, renaming without replacing and flushing: what this system offers to move items without
// loss.
// What the system lacks, files without a name and leases, is reported as missing, and callers use other
// means.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <memory>

#include <dirent.h>
#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/system/FileSystem.h"

namespace ZQFoundation::detail::system {

bool getItemFacts(int folder, const char* name, ItemFacts& facts) noexcept {
    const bool isOpen = *name == '\0';
    struct stat around;
    if ((isOpen ? ::fstat(folder, &facts.information)
                : ::fstatat(folder, name, &facts.information, AT_SYMLINK_NOFOLLOW)) != 0) {
        return false;
    }
    facts.isProtected =
        (facts.information.st_flags & (UF_IMMUTABLE | UF_APPEND | SF_IMMUTABLE | SF_APPEND)) != 0;
    // A mount point is where the device changes from a folder to the one above it.
    const bool isFound = S_ISDIR(facts.information.st_mode) &&
                         (isOpen ? ::fstatat(folder, "..", &around, 0) : ::fstat(folder, &around)) == 0;
    facts.isMountPoint = isFound && around.st_dev != facts.information.st_dev;
    return true;
}

bool appendFolderEntries(int folder, std::vector<char>& entries) {
    // A second descriptor, which the stream closes. Opening "." would need the permission to search the
    // folder.
    const int own = ::fcntl(folder, F_DUPFD_CLOEXEC, 0);
    DIR* const opened = own < 0 ? nullptr : ::fdopendir(own);
    if (opened == nullptr) {
        const int error = errno;
        if (own >= 0) {
            ::close(own);
        }
        errno = error;
        return false;
    }
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(opened, ::closedir);
    ::rewinddir(opened);
    // `readdir` returns null at the end and on failure; only `errno` tells them apart.
    errno = 0;
    while (const dirent* const entry = ::readdir(opened)) {
        const char* const name = entry->d_name;
        if (std::strcmp(name, ".") != 0 && std::strcmp(name, "..") != 0) {
            entries.push_back(static_cast<char>(entry->d_type));
            entries.insert(entries.end(), name, name + std::strlen(name) + 1);
        }
        errno = 0;
    }
    return errno == 0;
}

bool renameWithoutReplacing(int fromFolder, const char* from, int toFolder, const char* to) noexcept {
    if (::renameatx_np(fromFolder, from, toFolder, to, RENAME_EXCL) == 0) {
        return true;
    }
    if (errno != ENOTSUP) {
        return false;
    }
    // The file system has no such step. A second name replaces nothing; a folder replaces an empty one of
    // ours.
    struct stat information;
    if (::fstatat(fromFolder, from, &information, AT_SYMLINK_NOFOLLOW) != 0) {
        return false;
    }
    if (S_ISDIR(information.st_mode)) {
        return ::mkdirat(toFolder, to, 0700) == 0 && ::renameat(fromFolder, from, toFolder, to) == 0;
    }
    return ::linkat(fromFolder, from, toFolder, to, 0) == 0 && ::unlinkat(fromFolder, from, 0) == 0;
}

int openUnnamedFile(int) noexcept {
    errno = ENOTSUP;
    return -1;
}

bool nameFile(int, int, const char*) noexcept {
    errno = ENOTSUP;
    return false;
}

bool flushItem(int item) noexcept {
    // Only this call waits for the disk itself; not every file system has it.
    return ::fcntl(item, F_FULLFSYNC) == 0 || ::fsync(item) == 0 || errno == EINVAL || errno == ENOTSUP;
}

// No call flushes one file system and waits. `sync` starts the writing; flushing the item waits for the
// disk.
bool flushFileSystem(int item) noexcept {
    struct statfs information;
    if (::fstatfs(item, &information) != 0) {
        return false;
    }
    ::sync();
    return flushItem(item);
}

WritersHeldOff::WritersHeldOff(int file) noexcept : file_(file), state_(State::unknown) {}

WritersHeldOff::~WritersHeldOff() = default;

bool WritersHeldOff::areThereNone() const noexcept { return true; }

timespec currentFileTime() noexcept {
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now); // its clock for files has nanoseconds
    return now;
}

} // namespace ZQFoundation::detail::system
