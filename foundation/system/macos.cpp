// SPDX-License-Identifier: MIT
// macOS: writing without signals, waiting, threads, the program's own file.
#include <cerrno>
#include <cstring>

#include <crt_externs.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <limits.h>
#include <mach-o/dyld.h>
#include <pthread.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/sysctl.h>
#include <unistd.h>

#include "foundation/system/CallerState.h"
#include "foundation/system/FileSystem.h"
#include "foundation/system/MaskedWrite.h"
#include "foundation/system/System.h"

namespace ZQFoundation::detail::system {

namespace {

/// Sleepers are few, so one mutex and condition serve them all.
pthread_mutex_t sleepersMutex = PTHREAD_MUTEX_INITIALIZER;
pthread_cond_t sleepersCondition = PTHREAD_COND_INITIALIZER;

bool appendName(char (&path)[PATH_MAX], const char* name) noexcept {
    if (::strlcat(path, name, sizeof path) < sizeof path) {
        return true;
    }
    errno = ENAMETOOLONG;
    return false;
}

} // namespace

std::ptrdiff_t plainWrite(int descriptor, const char* bytes, std::size_t count) noexcept {
    // `write` is a cancellation point, and there is no supported way around the C library.
    const CallerState callerState;
    const std::ptrdiff_t written = write(descriptor, bytes, count);
    return written >= 0 ? written : -errno;
}

bool fileSizeIsUnlimited() noexcept {
    rlimit limit{};
    return getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur == RLIM_INFINITY;
}

// No flag for one write exists here, and descriptors that belong to the host must not be changed.
std::ptrdiff_t writeWithoutSignals(int descriptor, const char* bytes, std::size_t count) noexcept {
    return maskedWrite(descriptor, bytes, count);
}

void discardPendingSignal(int signal) noexcept {
    sigset_t wanted;
    // `sigwait` would wait if none were pending.
    sigset_t pending;
    sigemptyset(&wanted);
    sigaddset(&wanted, signal);
    int taken = 0;
    if (sigpending(&pending) == 0 && sigismember(&pending, signal) == 1) {
        sigwait(&wanted, &taken);
    }
}

void waitBriefly(const std::uint32_t* word, std::uint32_t expected) noexcept {
    pthread_mutex_lock(&sleepersMutex);
    // Compared under the mutex, but the unlocking thread changes the word without it: a wake in between is
    // missed, and the time limit covers that.
    if (__atomic_load_n(word, __ATOMIC_RELAXED) == expected) {
        // Bounded, so that a child forked while the mutex was taken elsewhere never sleeps forever.
        const timespec brief{0, 1000000};
        pthread_cond_timedwait_relative_np(&sleepersCondition, &sleepersMutex, &brief);
    }
    pthread_mutex_unlock(&sleepersMutex);
}

// Wakes all, because the sleepers may wait for different words.
void wakeOne(const std::uint32_t*) noexcept { pthread_cond_broadcast(&sleepersCondition); }

std::uint32_t* wordClearedByFork() noexcept { return nullptr; }

std::uint64_t threadIdentifier() noexcept {
    std::uint64_t number = 0;
    pthread_threadid_np(nullptr, &number);
    return number;
}

std::string executablePath() {
    // The first call fails and reports the size that the path needs.
    std::uint32_t size = 0;
    _NSGetExecutablePath(nullptr, &size);
    std::string path(size, '\0');
    if (_NSGetExecutablePath(path.data(), &size) != 0) {
        return {};
    }
    path.resize(path.find('\0'));
    return path;
}

std::string libraryPath() {
    static const char anchor = 0;
    Dl_info information;
    const bool isKnown = dladdr(&anchor, &information) != 0 && information.dli_fname != nullptr;
    return isKnown ? information.dli_fname : std::string();
}

const char* environmentVariable(const char* name) noexcept {
    return ::issetugid() == 0 ? ::getenv(name) : nullptr;
}

// The arguments as `main` got them, kept by the C library.
std::vector<std::string> handedArguments() {
    char** const arguments = *_NSGetArgv();
    return {arguments, arguments + *_NSGetArgc()};
}

std::vector<std::string> readArguments() { return {}; }

HardwareFacts hardwareFacts() {
    HardwareFacts facts;
    // Longer than any model's name; a longer one would be reported as an error and leave the model unknown.
    char model[100] = {};
    std::size_t size = sizeof model;
    if (sysctlbyname("hw.model", model, &size, nullptr, 0) == 0) {
        facts.model.assign(model, strnlen(model, sizeof model));
    }
    int processors = 0;
    size = sizeof processors;
    if (sysctlbyname("hw.ncpu", &processors, &size, nullptr, 0) == 0) {
        facts.processors = processors;
    }
    std::uint64_t bytes = 0;
    size = sizeof bytes;
    if (sysctlbyname("hw.memsize", &bytes, &size, nullptr, 0) == 0) {
        facts.memoryBytes = bytes;
    }
    return facts;
}

std::vector<std::string> releaseFiles() { return {}; }

std::uint64_t randomNumber() noexcept {
    // Made once, because the number must stay the same for the process.
    static const std::uint64_t number = static_cast<std::uint64_t>(arc4random()) << 32 | arc4random();
    return number;
}

#ifdef O_SEARCH
const int openForSearch = O_SEARCH | O_DIRECTORY | O_CLOEXEC;
#else
const int openForSearch = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
#endif

bool getCreationTime(int folder, const char* name, timespec& time) noexcept {
    struct stat information;
    if (fstatat(folder, name, &information, AT_SYMLINK_NOFOLLOW) != 0) {
        return false;
    }
    time = information.st_birthtimespec;
    return true;
}

// Only recent systems make such files by folder and name. So the folder's path is queried, and the new item
// is then looked up in the folder itself, which may have been moved meanwhile.
bool makeSpecialFile(int folder, const char* name, mode_t kind, dev_t device) noexcept {
    char path[PATH_MAX] = "";
    if (S_ISSOCK(kind)) {
        errno = ENOTSUP; // only a listener creates one
        return false;
    }
    if (folder != AT_FDCWD && (::fcntl(folder, F_GETPATH, path) != 0 || !appendName(path, "/"))) {
        return false;
    }
    if (!appendName(path, name)) {
        return false;
    }
    if ((S_ISFIFO(kind) ? ::mkfifo(path, 0600) : ::mknod(path, kind | 0600, device)) != 0) {
        return false;
    }
    struct stat information;
    // Something else has this name in the folder that was meant, or the folder has moved: what was made by
    // path is removed.
    if (::fstatat(folder, name, &information, AT_SYMLINK_NOFOLLOW) != 0 ||
        (information.st_mode & S_IFMT) != kind) {
        ::unlink(path);
        errno = ESTALE;
        return false;
    }
    return true;
}

bool holdsObjectLinks(int) noexcept { return false; }

void fillWithRandomBytes(void* out, std::size_t count) noexcept { arc4random_buf(out, count); }

std::uint64_t freshRandomNumber() noexcept {
    return static_cast<std::uint64_t>(arc4random()) << 32 | arc4random();
}

} // namespace ZQFoundation::detail::system
