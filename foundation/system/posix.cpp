// SPDX-License-Identifier: MIT
// What all POSIX systems offer in the same way.
// Counts forks, identifies threads, and writes with signals masked. All of that may run in a signal handler.
#include <cerrno>
#include <csignal>
#include <ctime>

#include <pthread.h>
#include <sys/utsname.h>
#include <unistd.h>

#include "foundation/system/Lock.h"
#include "foundation/system/MaskedWrite.h"
#include "foundation/system/System.h"

namespace ZQFoundation::detail::system {

namespace {

/// They change only when a generation begins, so they are read without a system call.
constinit std::uint64_t threadThatForked = 0;
constinit int ownIdentifier = 0;
constinit std::uint32_t lastGeneration = 0;

constinit std::uint32_t noGeneration = 0;      // stays 0
constinit std::uint32_t wordThatForksCopy = 0; // used if the system clears none

/// Clears the word if the system has not done so. Another handler may have used the library before this one;
/// the word and the number then show that.
/// Runs in the child before `fork` returns there, so that ordinary code never sees the old generation.
void noteForkInChild() {
    std::uint32_t* const word = __atomic_load_n(&forkGenerationWord, __ATOMIC_RELAXED);
    if (word == &noGeneration ||
        (word != &wordThatForksCopy && __atomic_load_n(word, __ATOMIC_RELAXED) != 0 &&
         ownIdentifier == ::getpid())) {
        return;
    }
    __atomic_store_n(word, 0, __ATOMIC_RELAXED);
    beginForkGeneration();
}

/// Two threads may both get here, and a fork may come in between: a handler that is registered twice finds
/// its work done, and a surplus word costs one page.
/// Registered even where the system clears the word: it makes the new generation begin on the thread that
/// forked, before the child starts any other. Where the system does not, the handler is all there is, and a
/// child made by a call that skips handlers goes unnoticed.
std::uint32_t* chooseWord() noexcept {
    pthread_atfork(nullptr, nullptr, noteForkInChild);
    std::uint32_t* fresh = wordClearedByFork();
    if (fresh == nullptr) {
        fresh = &wordThatForksCopy;
    }
    std::uint32_t* chosen = &noGeneration;
    return __atomic_compare_exchange_n(&forkGenerationWord, &chosen, fresh, false, __ATOMIC_RELEASE,
                                       __ATOMIC_ACQUIRE)
               ? fresh
               : chosen;
}

} // namespace

constinit std::uint32_t* forkGenerationWord = &noGeneration;

// The thread that finds the word cleared is the one that has forked: a new child has no other.
std::uint32_t beginForkGeneration() noexcept {
    const int callersError = errno;
    std::uint32_t* word = __atomic_load_n(&forkGenerationWord, __ATOMIC_ACQUIRE);
    if (word == &noGeneration) {
        word = chooseWord();
    }
    __atomic_store_n(&threadThatForked, Holder::currentThread(), __ATOMIC_RELAXED);
    __atomic_store_n(&ownIdentifier, ::getpid(), __ATOMIC_RELAXED);
    std::uint32_t generation = 0;
    // Never 0, except after 2^32 forks in a line of descent. The counter is inherited, so a child's number
    // is greater than its parent's.
    const std::uint32_t next = __atomic_add_fetch(&lastGeneration, 1, __ATOMIC_RELAXED);
    if (__atomic_compare_exchange_n(word, &generation, next, false, __ATOMIC_RELEASE, __ATOMIC_ACQUIRE)) {
        generation = next;
    }
    errno = callersError;
    return generation;
}

int processIdentifier() noexcept {
    forkGeneration();
    return __atomic_load_n(&ownIdentifier, __ATOMIC_RELAXED);
}

// Not the system's number: this one costs no system call, and is unique among live threads only.
std::uint64_t threadNumber() noexcept {
    const pthread_t self = pthread_self();
    std::uint64_t number = 0;
    static_assert(sizeof self <= sizeof number);
    __builtin_memcpy(&number, &self, sizeof self);
    return number;
}

std::uint64_t forkingThread() noexcept { return __atomic_load_n(&threadThatForked, __ATOMIC_RELAXED); }

std::string kernelRelease() {
    utsname names{};
    return uname(&names) >= 0 ? names.release : std::string();
}

namespace {

// A signal that was pending before belongs to somebody else and must reach them.
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
    // Blocked for this thread only; other threads of the host may raise and handle the same signals.
    pthread_sigmask(SIG_BLOCK, &guarded, &before);
    sigpending(&pendingBefore);
    const std::ptrdiff_t written = write(descriptor, bytes, count);
    // The calls below may fail with errors of their own.
    const int error = errno;
    if (written != static_cast<std::ptrdiff_t>(count)) { // a short write may also have raised one
        for (const int signal : {SIGPIPE, SIGXFSZ}) {
            discardIfRaised(signal, pendingBefore);
        }
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    errno = error;
    return written;
}

} // namespace ZQFoundation::detail::system
