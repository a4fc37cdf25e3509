// SPDX-License-Identifier: MIT
// Included before every test source on macOS: the calls of Linux that tests make. What macOS has in another
// form is put into that of Linux; what it lacks fails with ENOSYS, and the tests that need it are skipped as
// where it is forbidden.
#ifndef ZQFOUNDATION_TESTS_MACOS_LINUXCALLS_H
#define ZQFOUNDATION_TESTS_MACOS_LINUXCALLS_H

#include <fcntl.h>
#include <limits.h>
#include <pthread.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>

extern "C" {
extern char** environ;
int setxattr(const char* path, const char* name, const void* value, size_t size, unsigned position,
             int options);
ssize_t getxattr(const char* path, const char* name, void* value, size_t size, unsigned position,
                 int options);
ssize_t listxattr(const char* path, char* names, size_t size, int options);
int removexattr(const char* path, const char* name, int options);
}

#define st_atim st_atimespec
#define st_mtim st_mtimespec
#define st_ctim st_ctimespec

// Those that fork do not mind what else their children inherit.
#define SOCK_CLOEXEC 0
#define F_SETPIPE_SZ (-1)

inline constexpr int CLONE_NEWNS = 0x1;
inline constexpr int CLONE_NEWUSER = 0x2;
inline constexpr int CLONE_NEWNET = 0x4;
inline constexpr unsigned long MS_RDONLY = 0x1;
inline constexpr unsigned long MS_REMOUNT = 0x2;
inline constexpr unsigned long MS_BIND = 0x4;
inline constexpr unsigned long MS_REC = 0x8;
inline constexpr unsigned long MS_PRIVATE = 0x10;
inline constexpr unsigned long MS_NOEXEC = 0x20;
inline constexpr unsigned long MS_NOSUID = 0x40;
inline constexpr unsigned long MS_NODEV = 0x80;
inline constexpr int MNT_DETACH = 0x1;

inline int unshare(int) {
    errno = ENOSYS;
    return -1;
}

inline int mount(const char*, const char*, const char*, unsigned long, const void*) {
    errno = ENOSYS;
    return -1;
}

inline int umount(const char* path) { return ::unmount(path, 0); }
inline int umount2(const char* path, int) { return ::unmount(path, MNT_FORCE); }

inline int pipe2(int (&ends)[2], int flags) {
    if (::pipe(ends) != 0) {
        return -1;
    }
    for (const int end : ends) {
        if ((flags & O_CLOEXEC) != 0) {
            ::fcntl(end, F_SETFD, FD_CLOEXEC);
        }
        if ((flags & O_NONBLOCK) != 0) {
            ::fcntl(end, F_SETFL, O_NONBLOCK);
        }
    }
    return 0;
}

inline int setxattr(const char* path, const char* name, const void* value, std::size_t size, int options) {
    return ::setxattr(path, name, value, size, 0, options);
}
inline ssize_t getxattr(const char* path, const char* name, void* value, std::size_t size) {
    return ::getxattr(path, name, value, size, 0, 0);
}
inline ssize_t listxattr(const char* path, char* names, std::size_t size) {
    return ::listxattr(path, names, size, 0);
}
inline int lsetxattr(const char* path, const char* name, const void* value, std::size_t size, int options) {
    return ::setxattr(path, name, value, size, 0, options | 1 /* follow no link */);
}
inline ssize_t lgetxattr(const char* path, const char* name, void* value, std::size_t size) {
    return ::getxattr(path, name, value, size, 0, 1);
}
inline ssize_t llistxattr(const char* path, char* names, std::size_t size) {
    return ::listxattr(path, names, size, 1);
}
inline int removexattr(const char* path, const char* name) { return ::removexattr(path, name, 0); }

// Calls by number, of which tests make three.
struct ExitGroup {};
struct GetTid {};
struct RenameAt2 {};
inline constexpr ExitGroup SYS_exit_group;
inline constexpr RenameAt2 SYS_renameat2;
inline constexpr GetTid SYS_gettid;

[[noreturn]] inline void syscall(ExitGroup, int status) { ::_exit(status); }
inline long syscall(GetTid) { return static_cast<long>(::pthread_mach_thread_np(::pthread_self())); }
inline long syscall(RenameAt2, int from, const char* one, int to, const char* other, int) {
    return ::renameatx_np(from, one, to, other, RENAME_SWAP);
}

// A thread's timer, by that of the process, whose signal may interrupt any thread.
#define sigev_notify_thread_id sigev_value.sival_int
inline constexpr int SIGEV_THREAD_ID = 4;
using timer_t = int;
struct itimerspec {
    timespec it_interval;
    timespec it_value;
};
inline int timer_create(clockid_t, sigevent*, timer_t*) { return 0; }
inline int timer_delete(timer_t) { return 0; }
inline int timer_settime(timer_t, int, const itimerspec* time, itimerspec*) {
    const itimerval value{{0, 0}, {0, static_cast<suseconds_t>(time->it_value.tv_nsec / 1000)}};
    return ::setitimer(ITIMER_PROF, &value, nullptr);
}

/// By the path, which the descriptor of an ordinary file has.
inline int fexecve(int program, char* const* arguments, char* const* environment) {
    char path[PATH_MAX];
    return ::fcntl(program, F_GETPATH, path) == 0 ? ::execve(path, arguments, environment) : -1;
}

/// For tests that open one terminal at a time.
inline int terminalName(int terminal, char* name, std::size_t size) {
    const char* const found = ::ptsname(terminal);
    return found != nullptr && ::strlcpy(name, found, size) < size ? 0 : -1;
}
#define ptsname_r terminalName

#endif
