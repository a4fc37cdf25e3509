// SPDX-License-Identifier: MIT
// Identifies threads and forks on Linux.
// Called by locks, so nothing here may need a lock, memory or the loader.
#include <cerrno>
#include <ctime>

#include <linux/futex.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "foundation/system/System.h"

namespace ZQFoundation::detail::system {

void waitBriefly(const std::uint32_t* word, std::uint32_t expected) noexcept {
    const int callersError = errno;
    const timespec brief{0, 1000000};
    // Private: no other process shares the word, which makes the call cheaper. Any result is a reason to
    // look again.
    syscall(SYS_futex, word, FUTEX_WAIT_PRIVATE, expected, &brief, nullptr, 0);
    errno = callersError;
}

void wakeOne(const std::uint32_t* word) noexcept {
    const int callersError = errno;
    syscall(SYS_futex, word, FUTEX_WAKE_PRIVATE, 1, nullptr, nullptr, 0);
    errno = callersError;
}

// The number of a thread's clock holds the complement of the thread's own number, above three bits that state
// what is measured, as the kernel defines it. The C library computes it without a system call. A thread-local
// variable would not do, since the loader may have to allocate it first.
std::uint64_t threadIdentifier() noexcept {
    clockid_t clock = 0;
    // Negative, because the complement of a positive number is stored. 0 would mean that the C library uses
    // another scheme.
    if (pthread_getcpuclockid(pthread_self(), &clock) == 0 && clock < 0) [[likely]] {
        return static_cast<std::uint64_t>(~(clock >> 3));
    }
    return static_cast<std::uint64_t>(syscall(SYS_gettid));
}

// The kernel replaces the page by zeros in each child, whatever made it: `fork`, `clone`, or a call that
// skips the handlers of the C library. That is what no handler could promise.
std::uint32_t* wordClearedByFork() noexcept {
    const auto size = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    void* const page = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (page == MAP_FAILED) {
        return nullptr;
    }
    if (madvise(page, size, MADV_WIPEONFORK) != 0) { // before Linux 4.14
        munmap(page, size);
        return nullptr;
    }
    return static_cast<std::uint32_t*>(page);
}

} // namespace ZQFoundation::detail::system
