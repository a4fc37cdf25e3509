// SPDX-License-Identifier: MIT
// Facts about items, renaming without replacing, files without a name, flushing and leases: what this kernel
// offers to move items without loss.
// Numbers and layouts of the kernel's interface are given here, because C libraries declare them at
// different times; the calls are made by number for the same reason.
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ctime>

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/syscall.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include "foundation/system/FileSystem.h"

namespace ZQFoundation::detail::system {

namespace {

// The kernel's interface by its numbers: not every C library declares it.

struct KernelTime {
    std::int64_t seconds;
    std::uint32_t nanoseconds;
    std::int32_t unused;
};

/// The layout is fixed by the kernel, which reserves the end for later fields and fills all 256 bytes.
struct KernelFacts {
    std::uint32_t mask;
    std::uint32_t blockBytes;
    std::uint64_t attributes;
    std::uint32_t links;
    std::uint32_t user;
    std::uint32_t group;
    std::uint16_t mode;
    std::uint16_t unused;
    std::uint64_t inode;
    std::uint64_t bytes;
    std::uint64_t blocks;
    std::uint64_t knownAttributes;
    KernelTime accessed;
    KernelTime made;
    KernelTime changed;
    KernelTime modified;
    std::uint32_t ownMajor;
    std::uint32_t ownMinor;
    std::uint32_t deviceMajor;
    std::uint32_t deviceMinor;
    std::uint64_t later[14];
};
static_assert(sizeof(KernelFacts) == 256);

/// The bits of the mask: all that `stat` reports, and the creation time, which not every file system stores.
constexpr unsigned basicFacts = 0x7FF;
constexpr unsigned creationFact = 0x800;
/// The bits of `attributes`; one that `knownAttributes` lacks is always 0.
constexpr std::uint64_t isImmutable = 0x10;
constexpr std::uint64_t isAppendOnly = 0x20;
constexpr std::uint64_t isRootOfMount = 0x2000;
/// RENAME_NOREPLACE, which older C libraries do not declare.
constexpr unsigned noReplacing = 1;

bool askKernel(int folder, const char* name, unsigned wanted, KernelFacts& facts) noexcept {
    const int flags = AT_SYMLINK_NOFOLLOW | (*name == '\0' ? AT_EMPTY_PATH : 0);
    return ::syscall(SYS_statx, folder, name, flags, wanted, &facts) == 0;
}

timespec timeOf(const KernelTime& time) noexcept {
    return {static_cast<time_t>(time.seconds), static_cast<long>(time.nanoseconds)};
}

/// Rebuilt from the kernel's facts so that one call serves for both: a walk over a large tree asks for each
/// item once.
void fill(struct stat& information, const KernelFacts& facts) noexcept {
    information = {};
    information.st_dev = makedev(facts.deviceMajor, facts.deviceMinor);
    information.st_ino = facts.inode;
    information.st_mode = facts.mode;
    information.st_nlink = facts.links;
    information.st_uid = facts.user;
    information.st_gid = facts.group;
    information.st_rdev = makedev(facts.ownMajor, facts.ownMinor);
    information.st_size = static_cast<off_t>(facts.bytes);
    information.st_blksize = static_cast<blksize_t>(facts.blockBytes);
    information.st_blocks = static_cast<blkcnt_t>(facts.blocks);
    information.st_atim = timeOf(facts.accessed);
    information.st_mtim = timeOf(facts.modified);
    information.st_ctim = timeOf(facts.changed);
}

/// The number of the mount that the item belongs to, on a kernel that does not report which items are the
/// root of one; -1 if unknown. Needed for a folder that is bound to another place of the same file system:
/// its device number is the same.
int mountOf(int folder, const char* name) noexcept {
    struct file_handle handle {};
    int mount = -1;
    const int flags = *name == '\0' ? AT_EMPTY_PATH : 0;
    // No handle fits, but the number is still returned.
    if (::name_to_handle_at(folder, name, &handle, &mount, flags) != 0 && errno != EOVERFLOW) {
        return -1;
    }
    return mount;
}

/// For kernels before 5.8: whether the item is on another file system than its folder, or in another mount.
bool isMountedOver(int folder, const char* name, const struct stat& item) noexcept {
    struct stat around;
    if (*name == '\0' || !S_ISDIR(item.st_mode) || ::fstat(folder, &around) != 0) {
        return false;
    }
    return around.st_dev != item.st_dev || mountOf(folder, name) != mountOf(folder, "");
}

/// Used if the file system cannot rename without replacing.
/// Both nearest means take the name first, by a step that fails if it exists. What another process puts there
/// between the last look and the renaming cannot be protected: such file systems have no better step.
bool renameFolderByNearestMeans(int fromFolder, const char* from, int toFolder, const char* to) noexcept {
    // The name is taken by a folder of ours, and a folder does not replace one that is not empty.
    if (::mkdirat(toFolder, to, 0700) != 0) {
        return false;
    }
    if (::renameat(fromFolder, from, toFolder, to) == 0) {
        return true;
    }
    const int error = errno;
    ::unlinkat(toFolder, to, AT_REMOVEDIR); // unless somebody has put an item into it
    errno = error;
    return false;
}

/// Whether the name still refers to an empty file. Its number is not compared: file systems that are served
/// by a process may give it another one.
bool isEmptyFile(int folder, const char* name) noexcept {
    struct stat information;
    return ::fstatat(folder, name, &information, AT_SYMLINK_NOFOLLOW) == 0 && S_ISREG(information.st_mode) &&
           information.st_size == 0;
}

/// A hard link is a second name, made in one step that fails if the name is taken.
bool renameFileByNearestMeans(int fromFolder, const char* from, int toFolder, const char* to) noexcept {
    if (::linkat(fromFolder, from, toFolder, to, 0) == 0) {
        // If this fails, the item has both names: nothing is lost, and the caller reports the error.
        return ::unlinkat(fromFolder, from, 0) == 0;
    }
    if (errno == EEXIST) {
        return false;
    }
    // Hard links are not available either: the name is taken by an empty file, which is then replaced.
    // Another process may have written to it before that.
    const int taken = ::openat(toFolder, to, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (taken < 0) {
        return false;
    }
    ::close(taken);
    errno = EEXIST;
    if (isEmptyFile(toFolder, to) && ::renameat(fromFolder, from, toFolder, to) == 0) {
        return true;
    }
    // The empty file was ours; it must not stay where the item should have been.
    const int error = errno;
    if (isEmptyFile(toFolder, to)) {
        ::unlinkat(toFolder, to, 0);
    }
    errno = error;
    return false;
}

} // namespace

// The mask says whether the file system stores it: the call succeeds in either case.
bool getCreationTime(int folder, const char* name, timespec& time) noexcept {
    KernelFacts facts;
    if (!askKernel(folder, name, creationFact, facts) || (facts.mask & creationFact) == 0) {
        return false;
    }
    time = timeOf(facts.made);
    return true;
}

bool getItemFacts(int folder, const char* name, ItemFacts& facts) noexcept {
    KernelFacts found;
    if (!askKernel(folder, name, basicFacts, found)) {
        // A kernel before 4.11, or a sandbox that forbids the call.
        // What older kernels cannot report, protection above all, then shows when a removal fails.
        const int flags = AT_SYMLINK_NOFOLLOW | (*name == '\0' ? AT_EMPTY_PATH : 0);
        if ((errno != ENOSYS && errno != EPERM) || ::fstatat(folder, name, &facts.information, flags) != 0) {
            return false;
        }
        found.attributes = 0;
        found.knownAttributes = 0;
    } else {
        fill(facts.information, found);
    }
    facts.isProtected = (found.attributes & (isImmutable | isAppendOnly)) != 0;
    facts.isMountPoint = (found.knownAttributes & isRootOfMount) != 0
                             ? (found.attributes & isRootOfMount) != 0
                             : isMountedOver(folder, name, facts.information);
    return true;
}

// Names may be any bytes. All copies of a folder's descriptor share one position, so it is set to the start
// first.
bool appendFolderEntries(int folder, std::vector<char>& entries) {
    struct alignas(8) Entry { // as the kernel writes it, the name following
        std::uint64_t inode;
        std::int64_t offset;
        std::uint16_t length;
        unsigned char kind;
    };
    // Not `sizeof`: the name follows the kind without padding.
    constexpr std::size_t nameOffset = 19;
    alignas(Entry) char buffer[std::size_t{32} << 10];
    if (::lseek(folder, 0, SEEK_SET) < 0) {
        return false;
    }
    for (;;) {
        // No stream of the C library: this needs no further descriptor.
        const long filled = ::syscall(SYS_getdents64, folder, buffer, sizeof buffer);
        if (filled < 0 && errno == EINTR) {
            continue;
        }
        if (filled <= 0) {
            return filled == 0;
        }
        for (const char* at = buffer; at < buffer + filled;) {
            Entry entry;
            std::memcpy(&entry, at, nameOffset);
            const char* const name = at + nameOffset;
            if (std::strcmp(name, ".") != 0 && std::strcmp(name, "..") != 0) {
                entries.push_back(static_cast<char>(entry.kind));
                entries.insert(entries.end(), name, name + std::strlen(name) + 1);
            }
            at += entry.length;
        }
    }
}

/// EINVAL is what a file system without this step returns, ENOSYS a kernel before 3.15. Interrupted renames
/// occur on network file systems.
bool renameWithoutReplacing(int fromFolder, const char* from, int toFolder, const char* to) noexcept {
    long result = -1;
    do {
        result = ::syscall(SYS_renameat2, fromFolder, from, toFolder, to, noReplacing);
    } while (result != 0 && errno == EINTR);
    if (result == 0) {
        return true;
    }
    if (errno != EINVAL && errno != ENOSYS) {
        return false;
    }
    struct stat information;
    if (::fstatat(fromFolder, from, &information, AT_SYMLINK_NOFOLLOW) != 0) {
        return false;
    }
    // Decides by the item itself: a link to a folder is renamed like a file.
    return S_ISDIR(information.st_mode) ? renameFolderByNearestMeans(fromFolder, from, toFolder, to)
                                        : renameFileByNearestMeans(fromFolder, from, toFolder, to);
}

// Opened relative to the folder itself, so that it cannot move away before the file gets its name there.
int openUnnamedFile(int folder) noexcept {
    return ::openat(folder, ".", O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
}

// The descriptor's path is used, because linking by an empty name needs a privilege.
bool nameFile(int file, int folder, const char* name) noexcept {
    char path[32] = "/proc/self/fd/";
    *std::to_chars(path + sizeof "/proc/self/fd/" - 1, path + sizeof path, file).ptr = '\0';
    return ::linkat(AT_FDCWD, path, folder, name, AT_SYMLINK_FOLLOW) == 0;
}

// A system that is mounted read-only has nothing to write, either.
bool flushItem(int item) noexcept {
    // Pipes and the like have nothing to flush.
    return ::fsync(item) == 0 || errno == EINVAL || errno == EROFS;
}

bool flushFileSystem(int item) noexcept { return ::syncfs(item) == 0 || errno == ENOSYS; }

/// A read lease is granted only while nobody has the file open for writing. When somebody wants to open it
/// for writing while the lease is held, the kernel sends a signal: one that does nothing unless the host has
/// a handler for it.
/// The signal is SIGURG because it is ignored by default: the usual one, SIGIO, ends a process that does not
/// expect it.
WritersHeldOff::WritersHeldOff(int file) noexcept : file_(file), state_(State::unknown) {
    // Must come first: between lease and choice of signal a writer would raise the default one.
    if (::fcntl(file, F_SETSIG, SIGURG) != 0) {
        return;
    }
    if (::fcntl(file, F_SETLEASE, F_RDLCK) == 0) {
        state_ = State::held;
    } else if (errno == EAGAIN) {
        // Somebody has it open for writing. Other errors mean that the file system or the user may not have
        // leases.
        state_ = State::failed;
    }
}

WritersHeldOff::~WritersHeldOff() {
    if (state_ == State::held) {
        const int error = errno;
        ::fcntl(file_, F_SETLEASE, F_UNLCK);
        errno = error;
    }
}

// A broken lease is no longer a read lease, as soon as the writer waits.
bool WritersHeldOff::areThereNone() const noexcept {
    return state_ == State::unknown || (state_ == State::held && ::fcntl(file_, F_GETLEASE) == F_RDLCK);
}

// The coarse clock is the one that file times are taken from; the precise one is ahead of it.
timespec currentFileTime() noexcept {
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME_COARSE, &now);
    return now;
}

} // namespace ZQFoundation::detail::system
