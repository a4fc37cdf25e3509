// SPDX-License-Identifier: MIT
// What every system of the family offers alike.
#include <csignal>
#include <ctime>
#include <pthread.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <cerrno>

#include "foundation/system/Lock.h"
#include "foundation/system/MaskedWrite.h"
#include "foundation/system/System.h"

namespace ZQFoundation::detail::system {

namespace {

constinit std::uint64_t forkingThread = 0;

void noteForkInChild() {
    __atomic_store_n(&forkingThread, Lock::currentThread(), __ATOMIC_RELAXED);
    __atomic_add_fetch(&forkGenerationCount, 1, __ATOMIC_RELAXED);
}

} // namespace

constinit std::uint32_t forkGenerationCount = 0;

std::uint32_t firstForkGeneration() noexcept {
    // Two threads may both get here; a handler registered twice only counts faster.
    pthread_atfork(nullptr, nullptr, noteForkInChild);
    std::uint32_t none = 0;
    __atomic_compare_exchange_n(&forkGenerationCount, &none, 1, false, __ATOMIC_RELAXED, __ATOMIC_RELAXED);
    return __atomic_load_n(&forkGenerationCount, __ATOMIC_RELAXED);
}

std::uint64_t threadNumber() noexcept {
    const pthread_t self = pthread_self();
    std::uint64_t number = 0;
    static_assert(sizeof self <= sizeof number);
    __builtin_memcpy(&number, &self, sizeof self);
    return number;
}

bool isForkingThread(std::uint64_t thread) noexcept {
    return __atomic_load_n(&forkingThread, __ATOMIC_RELAXED) == thread;
}

std::string kernelRelease() {
    utsname names{};
    return uname(&names) >= 0 ? names.release : std::string();
}

namespace {

void discardIfRaised(int signal, const sigset_t& pendingBefore) noexcept {
    sigset_t pending;
    sigemptyset(&pending);
    sigpending(&pending);
    if (sigismember(&pending, signal) == 1 && sigismember(&pendingBefore, signal) == 0) {
        discardPendingSignal(signal);
    }
}

} // namespace

std::ptrdiff_t maskedWrite(int descriptor, const char* bytes, std::size_t count) noexcept {
    sigset_t guarded;
    sigset_t before;
    sigset_t pendingBefore;
    sigemptyset(&guarded);
    sigaddset(&guarded, SIGPIPE);
    sigaddset(&guarded, SIGXFSZ);
    sigemptyset(&pendingBefore);
    pthread_sigmask(SIG_BLOCK, &guarded, &before);
    sigpending(&pendingBefore);
    const std::ptrdiff_t written = write(descriptor, bytes, count);
    const int error = errno;
    if (written != static_cast<std::ptrdiff_t>(count)) { // a short write may have raised one too
        for (const int signal : {SIGPIPE, SIGXFSZ}) {
            discardIfRaised(signal, pendingBefore);
        }
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    errno = error;
    return written;
}

} // namespace ZQFoundation::detail::system
