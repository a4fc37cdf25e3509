// SPDX-License-Identifier: MIT
// Linux: writing without signals, waiting, threads, randomness.
// Lines are also written in signal handlers and forked children, so what they need here makes system calls
// only, and uses neither the heap nor streams.
#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/auxv.h>
#include <sys/random.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/vfs.h>
#include <unistd.h>

#include "foundation/system/FileSystem.h"
#include "foundation/system/MaskedWrite.h"
#include "foundation/system/System.h"

namespace ZQFoundation::detail::system {

namespace {

/// Since Linux 6.18: as for sockets, a lost reader is only an error. Older kernels refuse the flag.
/// Declared here, because headers of older kernels do not have it.
constexpr int writeWithoutPipeSignal = 0x100;

/// Kernels do not change under a process, so one refusal is remembered. Threads that race here write the
/// same value.
constinit bool kernelRefusesFlag = false;

/// A kernel that knows the flag takes it for pipes and regular files; some devices refuse every flag.
void noteRefusal(int descriptor) noexcept {
    struct stat status {};
    if (fstat(descriptor, &status) == 0 && (S_ISREG(status.st_mode) || S_ISFIFO(status.st_mode))) {
        __atomic_store_n(&kernelRefusesFlag, true, __ATOMIC_RELAXED);
    }
}

} // namespace

// Asked before each write that is not masked: beyond the limit the kernel raises a signal that ends the
// process, and no flag prevents that one.
bool fileSizeIsUnlimited() noexcept {
    rlimit limit{};
#ifdef SYS_getrlimit // half the cost of the call that the C library makes
    const bool known = syscall(SYS_getrlimit, RLIMIT_FSIZE, &limit) == 0;
#else
    const bool known = getrlimit(RLIMIT_FSIZE, &limit) == 0;
#endif
    return known && limit.rlim_cur == RLIM_INFINITY;
}

// The instruction itself, where known: the C library's function is a cancellation point, and a thread that
// is canceled in it would leave the log's lock held.
std::ptrdiff_t plainWrite(int descriptor, const char* bytes, std::size_t count) noexcept {
#if defined(__x86_64__)
    std::ptrdiff_t result = SYS_write;
    asm volatile("syscall"
                 : "+a"(result)
                 : "D"(static_cast<long>(descriptor)), "S"(bytes), "d"(count)
                 : "rcx", "r11", "memory");
    return result;
#elif defined(__aarch64__)
    register long result asm("x0") = descriptor;
    register const char* const start asm("x1") = bytes;
    register const std::size_t length asm("x2") = count;
    register const long number asm("x8") = SYS_write;
    asm volatile("svc 0" : "+r"(result) : "r"(start), "r"(length), "r"(number) : "memory");
    return result;
#else
    const int callersError = errno;
    const std::ptrdiff_t written = syscall(SYS_write, descriptor, bytes, count);
    const std::ptrdiff_t result = written >= 0 ? written : -errno;
    errno = callersError;
    return result;
#endif
}

/// Two system calls, where masking takes four. Devices that refuse the flag are written to by `maskedWrite`,
/// like everything on older kernels.
std::ptrdiff_t writeWithoutSignals(int descriptor, const char* bytes, std::size_t count) noexcept {
    if (!__atomic_load_n(&kernelRefusesFlag, __ATOMIC_RELAXED) && fileSizeIsUnlimited()) {
        const iovec piece{const_cast<char*>(bytes), count};
        // The position of -1 means the file's own, which the write also moves. On 64-bit systems the second
        // half is ignored; it is passed for those where an offset takes two arguments.
        constexpr long currentPosition = -1;
        const long written = syscall(SYS_pwritev2, descriptor, &piece, 1, currentPosition, currentPosition,
                                     writeWithoutPipeSignal);
        // Only errors that can mean "unknown flag" or "call forbidden by a sandbox" lead to another attempt:
        // any other error is the write's own.
        if (written >= 0 || (errno != EOPNOTSUPP && errno != ENOSYS && errno != EINVAL && errno != EPERM)) {
            return written;
        }
        noteRefusal(descriptor);
    }
    return maskedWrite(descriptor, bytes, count);
}

/// Returns at once when none is pending. The loop is for other signals that interrupt the call.
void discardPendingSignal(int signal) noexcept {
    sigset_t wanted;
    sigemptyset(&wanted);
    sigaddset(&wanted, signal);
    const timespec now{};
    while (sigtimedwait(&wanted, nullptr, &now) == -1 && errno == EINTR) {
    }
}

std::uint64_t randomNumber() noexcept {
    // Only for a kernel that passes no random bytes: constant, so that it is at least the same in each call.
    std::uint64_t number = 0x5851F42D4C957F2DU;
    if (const auto* const bytes = reinterpret_cast<const void*>(getauxval(AT_RANDOM))) {
        // The first half of these bytes guards stacks; nothing about it must be revealed here.
        std::memcpy(&number, static_cast<const char*>(bytes) + sizeof number, sizeof number);
    }
    return number;
}

const int openForSearch = O_PATH | O_DIRECTORY | O_CLOEXEC;

// The kernel applies the umask, so no permission is added here that the host did not want; 0600 keeps others
// out until the caller sets the final ones.
bool makeSpecialFile(int folder, const char* name, mode_t kind, dev_t device) noexcept {
    return ::mknodat(folder, name, kind | 0600, S_ISFIFO(kind) ? 0 : device) == 0;
}

// The links below /proc/self/fd and the like: "pipe:[123]" is the text of one, and opening it works
// nevertheless.
bool holdsObjectLinks(int folder) noexcept {
    struct statfs information {};
    return fstatfs(folder, &information) == 0 && information.f_type == PROC_SUPER_MAGIC;
}

std::uint64_t freshRandomNumber() noexcept {
    std::uint64_t number = 0;
    // Never waits: a host that starts early in the boot must not hang for a temporary file's name.
    if (getrandom(&number, sizeof number, GRND_NONBLOCK) == static_cast<ssize_t>(sizeof number)) {
        return number;
    }
    // Reached only while the machine starts, or where the call is forbidden.
    static constinit std::uint64_t calls = 0;
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    // The counter makes calls within one tick of the clock differ; its odd step spreads over all bits.
    const std::uint64_t call = __atomic_add_fetch(&calls, 0x9E3779B97F4A7C15U, __ATOMIC_RELAXED);
    return randomNumber() ^ call ^ static_cast<std::uint64_t>(now.tv_nsec) << 32;
}

namespace {

/// Fills from the front, and returns the number of bytes.
/// The kernel returns fewer bytes than asked when a signal arrives; up to 256 bytes come whole. The loop is
/// for more.
std::size_t fillByCall(char* out, std::size_t count) noexcept {
    std::size_t filled = 0;
    while (filled < count) {
        const ssize_t step = getrandom(out + filled, count - filled, GRND_NONBLOCK);
        if (step > 0) {
            filled += static_cast<std::size_t>(step);
        } else if (step == 0 || errno != EINTR) {
            break;
        }
    }
    return filled;
}

// For kernels or sandboxes that refuse the call but have the device. Opened for reading only, so that it
// takes no log line even if the host has closed a standard stream.
std::size_t fillFromDevice(char* out, std::size_t count) noexcept {
    const int device = open("/dev/urandom", O_RDONLY | O_CLOEXEC);
    std::size_t filled = 0;
    while (device >= 0 && filled < count) {
        const ssize_t step = read(device, out + filled, count - filled);
        if (step > 0) {
            filled += static_cast<std::size_t>(step);
        } else if (step == 0 || errno != EINTR) {
            break;
        }
    }
    if (device >= 0) {
        close(device);
    }
    return filled;
}

} // namespace

void fillWithRandomBytes(void* out, std::size_t count) noexcept {
    char* const bytes = static_cast<char*>(out);
    std::size_t filled = fillByCall(bytes, count);
    if (filled < count) { // the machine is starting, or the call is forbidden
        filled += fillFromDevice(bytes + filled, count - filled);
    }
    // Without either, in a sandbox, uses what the process has: its number distinguishes it from others.
    for (; filled < count; ++filled) {
        const std::uint64_t number = freshRandomNumber() + static_cast<std::uint64_t>(getpid());
        bytes[filled] = static_cast<char>(number * 0x9E3779B97F4A7C15U >> 56);
    }
}

} // namespace ZQFoundation::detail::system
