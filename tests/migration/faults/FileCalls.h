// SPDX-License-Identifier: MIT
// The system calls that touch files, and which of their arguments say what file that is.
#ifndef ZQFOUNDATION_TESTS_FAULTS_FILECALLS_H
#define ZQFOUNDATION_TESTS_FAULTS_FILECALLS_H

#include <cstddef>
#include <cstdint>

#include <sys/syscall.h>

namespace faults {

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

namespace form {
inline constexpr Argument fd = Argument::descriptor;
inline constexpr Argument at = Argument::folder;
inline constexpr Argument path = Argument::path;
inline constexpr Argument no = Argument::other;
} // namespace form

#define ZQ_FILE_CALL(name, ...)                                                                              \
    {                                                                                                        \
        SYS_##name, #name, {__VA_ARGS__}, {}                                                                 \
    }
#define ZQ_TRANSFER_CALL(name, count, source, plain, ...)                                                    \
    {                                                                                                        \
        SYS_##name, #name, {__VA_ARGS__}, { count, source, plain }                                           \
    }

inline constexpr FileCall fileCalls[] = {
    ZQ_FILE_CALL(openat, form::at, form::path),
    ZQ_FILE_CALL(openat2, form::at, form::path),
    ZQ_FILE_CALL(close, form::fd),
    ZQ_TRANSFER_CALL(read, 2, 0, 0, form::fd),
    ZQ_TRANSFER_CALL(pread64, 2, 0, 0, form::fd),
    ZQ_TRANSFER_CALL(readv, 2, 0, SYS_read, form::fd),
    ZQ_TRANSFER_CALL(write, 2, -1, 0, form::fd),
    ZQ_TRANSFER_CALL(pwrite64, 2, -1, 0, form::fd),
    ZQ_TRANSFER_CALL(preadv, 2, 0, SYS_pread64, form::fd),
    ZQ_TRANSFER_CALL(pwritev, 2, -1, SYS_pwrite64, form::fd),
    ZQ_TRANSFER_CALL(writev, 2, -1, SYS_write, form::fd),
    ZQ_FILE_CALL(lseek, form::fd),
    ZQ_FILE_CALL(ftruncate, form::fd),
    ZQ_FILE_CALL(fallocate, form::fd),
    ZQ_FILE_CALL(fadvise64, form::fd),
    ZQ_FILE_CALL(fsync, form::fd),
    ZQ_FILE_CALL(fdatasync, form::fd),
    ZQ_FILE_CALL(syncfs, form::fd),
    ZQ_FILE_CALL(sync_file_range, form::fd),
    ZQ_FILE_CALL(flock, form::fd),
    ZQ_FILE_CALL(fcntl, form::fd),
    ZQ_FILE_CALL(ioctl, form::fd),
    ZQ_TRANSFER_CALL(copy_file_range, 4, 0, 0, form::fd, form::no, form::fd),
    ZQ_TRANSFER_CALL(sendfile, 3, 1, 0, form::fd, form::fd),
    ZQ_TRANSFER_CALL(splice, 4, 0, 0, form::fd, form::no, form::fd),
    ZQ_FILE_CALL(fstat, form::fd),
    ZQ_FILE_CALL(newfstatat, form::at, form::path),
    ZQ_FILE_CALL(statx, form::at, form::path),
    ZQ_FILE_CALL(fstatfs, form::fd),
    ZQ_FILE_CALL(statfs, form::path),
    ZQ_FILE_CALL(faccessat, form::at, form::path),
    ZQ_FILE_CALL(faccessat2, form::at, form::path),
    ZQ_FILE_CALL(readlinkat, form::at, form::path),
    ZQ_FILE_CALL(getdents64, form::fd),
    ZQ_FILE_CALL(mkdirat, form::at, form::path),
    ZQ_FILE_CALL(mknodat, form::at, form::path),
    ZQ_FILE_CALL(symlinkat, form::no, form::at, form::path),
    ZQ_FILE_CALL(linkat, form::at, form::path, form::at, form::path),
    ZQ_FILE_CALL(unlinkat, form::at, form::path),
    ZQ_FILE_CALL(renameat2, form::at, form::path, form::at, form::path),
    ZQ_FILE_CALL(fchmod, form::fd),
    ZQ_FILE_CALL(fchmodat, form::at, form::path),
    ZQ_FILE_CALL(fchown, form::fd),
    ZQ_FILE_CALL(fchownat, form::at, form::path),
    ZQ_FILE_CALL(utimensat, form::at, form::path),
    ZQ_FILE_CALL(fgetxattr, form::fd),
    ZQ_FILE_CALL(fsetxattr, form::fd),
    ZQ_FILE_CALL(flistxattr, form::fd),
    ZQ_FILE_CALL(fremovexattr, form::fd),
    ZQ_FILE_CALL(getxattr, form::path),
    ZQ_FILE_CALL(lgetxattr, form::path),
    ZQ_FILE_CALL(setxattr, form::path),
    ZQ_FILE_CALL(lsetxattr, form::path),
    ZQ_FILE_CALL(listxattr, form::path),
    ZQ_FILE_CALL(llistxattr, form::path),
    ZQ_FILE_CALL(removexattr, form::path),
    ZQ_FILE_CALL(lremovexattr, form::path),
    ZQ_FILE_CALL(fchdir, form::fd),
    ZQ_FILE_CALL(chdir, form::path),
#ifdef SYS_fchmodat2
    ZQ_FILE_CALL(fchmodat2, form::at, form::path),
#endif
#ifdef SYS_renameat
    ZQ_FILE_CALL(renameat, form::at, form::path, form::at, form::path),
#endif
#ifdef SYS_open // the older forms, which newer processors do not have
    ZQ_FILE_CALL(open, form::path),
    ZQ_FILE_CALL(creat, form::path),
    ZQ_FILE_CALL(stat, form::path),
    ZQ_FILE_CALL(lstat, form::path),
    ZQ_FILE_CALL(access, form::path),
    ZQ_FILE_CALL(readlink, form::path),
    ZQ_FILE_CALL(mkdir, form::path),
    ZQ_FILE_CALL(mknod, form::path),
    ZQ_FILE_CALL(rmdir, form::path),
    ZQ_FILE_CALL(unlink, form::path),
    ZQ_FILE_CALL(symlink, form::no, form::path),
    ZQ_FILE_CALL(link, form::path, form::path),
    ZQ_FILE_CALL(rename, form::path, form::path),
    ZQ_FILE_CALL(chmod, form::path),
    ZQ_FILE_CALL(chown, form::path),
    ZQ_FILE_CALL(lchown, form::path),
#endif
};

#undef ZQ_FILE_CALL
#undef ZQ_TRANSFER_CALL

inline constexpr std::size_t fileCallCount = sizeof fileCalls / sizeof *fileCalls;

inline const FileCall* fileCallNumbered(std::uint64_t number) {
    for (const FileCall& call : fileCalls) {
        if (static_cast<std::uint64_t>(call.number) == number) {
            return &call;
        }
    }
    return nullptr;
}

} // namespace faults

#endif
