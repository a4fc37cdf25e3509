// SPDX-License-Identifier: MIT
// What all POSIX systems offer in the same way.
// Counts forks, identifies threads, waits, and writes with signals masked. All of that may run in a signal
// handler.
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <ctime>

#include <pthread.h>
#include <sys/utsname.h>
#include <unistd.h>

#include "foundation/system/FileSystem.h"
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

constexpr std::int64_t second = 1'000'000'000;
constexpr std::int64_t millisecond = 1'000'000;

/// How long ago the time was, in nanoseconds. Times that are far away count as three seconds.
std::int64_t ageOf(const timespec& time, const timespec& now) noexcept {
    constexpr std::int64_t farSeconds = 3;
    if (time.tv_sec < now.tv_sec - farSeconds || time.tv_sec > now.tv_sec + farSeconds) {
        return time.tv_sec < now.tv_sec ? farSeconds * second : -farSeconds * second;
    }
    return (now.tv_sec - time.tv_sec) * second + now.tv_nsec - time.tv_nsec;
}

/// How long a file system may give all changes the same time, beyond the tick of the clock. It shows in what
/// the time lacks: some store whole seconds, even only even ones, and some hundredths.
std::int64_t stepOf(const timespec& time) noexcept {
    if (time.tv_nsec == 0) {
        return time.tv_sec % 2 == 0 ? 2 * second : second;
    }
    return time.tv_nsec % (10 * millisecond) == 0 ? 10 * millisecond : 0;
}

} // namespace

// After each signal the rest is slept: a host's timer, such as a profiler's, must not shorten the wait. The
// rest that the system reports may include its tolerance, so that it would never end.
void pauseFor(std::int64_t nanoseconds) noexcept {
    timespec start{};
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &start);
    std::int64_t left = nanoseconds;
    do {
        const timespec rest{0, static_cast<long>(left)};
        if (::nanosleep(&rest, nullptr) == 0 || errno != EINTR) {
            return;
        }
        ::clock_gettime(CLOCK_MONOTONIC, &now);
        left = nanoseconds - ageOf(start, now);
    } while (left > 0);
}

// Two changes with the same time: the second is invisible to a comparison. After the wait, any change shows.
bool mightHideChange(const timespec& changed) noexcept {
    constexpr std::int64_t maxTick = 20 * millisecond;
    const std::int64_t step = stepOf(changed);
    for (std::int64_t waited = 0; waited < step + 2 * maxTick;) {
        const std::int64_t age = ageOf(changed, currentFileTime());
        if (age > 0 && age >= step) {
            return false;
        }
        // Another machine's clock, or one that was reset: nothing to wait for.
        if (age < -maxTick) {
            return true;
        }
        const std::int64_t pause = std::clamp<std::int64_t>(step - age, millisecond, 2 * maxTick);
        pauseFor(pause);
        waited += pause;
    }
    return true;
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
