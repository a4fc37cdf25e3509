// SPDX-License-Identifier: MIT
// The system calls that touch files, and which of their arguments say what file that is.
#ifndef ZQFOUNDATION_TESTS_FAULTS_FILECALLS_H
#define ZQFOUNDATION_TESTS_FAULTS_FILECALLS_H

#include <array>
#include <cstdint>

#include <sys/syscall.h>

namespace ZQFoundation::faults {

/// What one argument of a call is. A `path` after a `folder` is relative to it.
enum class Argument : unsigned char { other, descriptor, folder, path };

/// How a call moves bytes: the argument that says how many, and the one with the descriptor they are read
/// from.
struct Transfer {
    int count = -1;  ///< -1: it moves none
    int source = -1; ///< -1: they come from memory
    long plain = 0;  ///< of a call with a list of buffers, the number of the one with a single buffer
};

struct FileCall {
    long number;
    const char* name;
    Argument arguments[5];
    Transfer transfer{};
};

#define ZQ_CALL(name, ...)                                                                                   \
    FileCall {                                                                                               \
        SYS_##name, #name, {__VA_ARGS__}, {}                                                                 \
    }
#define ZQ_TRANSFER(name, count, source, plain, ...)                                                         \
    FileCall {                                                                                               \
        SYS_##name, #name, {__VA_ARGS__}, { count, source, plain }                                           \
    }

// clang-format off
inline constexpr auto fileCalls = [] {
    constexpr Argument fd = Argument::descriptor, at = Argument::folder, path = Argument::path,
                       no = Argument::other;
    return std::array{
    ZQ_CALL(openat, at, path), ZQ_CALL(openat2, at, path), ZQ_CALL(close, fd),
    ZQ_TRANSFER(read, 2, 0, 0, fd), ZQ_TRANSFER(pread64, 2, 0, 0, fd),
    ZQ_TRANSFER(readv, 2, 0, SYS_read, fd), ZQ_TRANSFER(write, 2, -1, 0, fd),
    ZQ_TRANSFER(pwrite64, 2, -1, 0, fd), ZQ_TRANSFER(preadv, 2, 0, SYS_pread64, fd),
    ZQ_TRANSFER(pwritev, 2, -1, SYS_pwrite64, fd), ZQ_TRANSFER(writev, 2, -1, SYS_write, fd),
    ZQ_CALL(lseek, fd), ZQ_CALL(ftruncate, fd), ZQ_CALL(fallocate, fd), ZQ_CALL(fadvise64, fd),
    ZQ_CALL(fsync, fd), ZQ_CALL(fdatasync, fd), ZQ_CALL(syncfs, fd), ZQ_CALL(sync_file_range, fd),
    ZQ_CALL(flock, fd), ZQ_CALL(fcntl, fd), ZQ_CALL(ioctl, fd),
    ZQ_TRANSFER(copy_file_range, 4, 0, 0, fd, no, fd), ZQ_TRANSFER(sendfile, 3, 1, 0, fd, fd),
    ZQ_TRANSFER(splice, 4, 0, 0, fd, no, fd), ZQ_CALL(fstat, fd), ZQ_CALL(newfstatat, at, path),
    ZQ_CALL(statx, at, path), ZQ_CALL(fstatfs, fd), ZQ_CALL(statfs, path), ZQ_CALL(faccessat, at, path),
    ZQ_CALL(faccessat2, at, path), ZQ_CALL(readlinkat, at, path), ZQ_CALL(getdents64, fd),
    ZQ_CALL(mkdirat, at, path), ZQ_CALL(mknodat, at, path), ZQ_CALL(symlinkat, no, at, path),
    ZQ_CALL(linkat, at, path, at, path), ZQ_CALL(unlinkat, at, path),
    ZQ_CALL(renameat2, at, path, at, path), ZQ_CALL(fchmod, fd), ZQ_CALL(fchmodat, at, path),
    ZQ_CALL(fchown, fd), ZQ_CALL(fchownat, at, path), ZQ_CALL(utimensat, at, path), ZQ_CALL(fgetxattr, fd),
    ZQ_CALL(fsetxattr, fd), ZQ_CALL(flistxattr, fd), ZQ_CALL(fremovexattr, fd), ZQ_CALL(getxattr, path),
    ZQ_CALL(lgetxattr, path), ZQ_CALL(setxattr, path), ZQ_CALL(lsetxattr, path), ZQ_CALL(listxattr, path),
    ZQ_CALL(llistxattr, path), ZQ_CALL(removexattr, path), ZQ_CALL(lremovexattr, path),
    ZQ_CALL(fchdir, fd), ZQ_CALL(chdir, path),
#ifdef SYS_fchmodat2
    ZQ_CALL(fchmodat2, at, path),
#endif
#ifdef SYS_renameat
    ZQ_CALL(renameat, at, path, at, path),
#endif
#ifdef SYS_open // the older forms, which newer processors do not have
    ZQ_CALL(open, path), ZQ_CALL(creat, path), ZQ_CALL(stat, path), ZQ_CALL(lstat, path),
    ZQ_CALL(access, path), ZQ_CALL(readlink, path), ZQ_CALL(mkdir, path), ZQ_CALL(mknod, path),
    ZQ_CALL(rmdir, path), ZQ_CALL(unlink, path), ZQ_CALL(symlink, no, path), ZQ_CALL(link, path, path),
    ZQ_CALL(rename, path, path), ZQ_CALL(chmod, path), ZQ_CALL(chown, path), ZQ_CALL(lchown, path),
#endif
    };
}();
// clang-format on

#undef ZQ_CALL
#undef ZQ_TRANSFER

inline const FileCall* fileCallNumbered(std::uint64_t number) {
    for (const FileCall& call : fileCalls) {
        if (static_cast<std::uint64_t>(call.number) == number) {
            return &call;
        }
    }
    return nullptr;
}

} // namespace ZQFoundation::faults

#endif
