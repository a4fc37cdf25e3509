// SPDX-License-Identifier: MIT
// Redirects standard error to a file and back.
#include "log/StandardErrorRedirection.h"

#include <atomic>
#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

#include "foundation/files/GuardedOpening.h"
#include "foundation/process/StandardErrorWrite.h"
#include "foundation/system/CallerState.h"

namespace ZQFoundation::detail {

namespace {

constexpr int nothingSaved = -1;

/// The duplicate of the descriptor 2 that the process began with. It keeps its number after it was closed: a
/// second redirection saves nothing, a second restoration acts on whatever has that number then. Atomic only
/// so that careless hosts that redirect on two threads at once read no torn value.
constinit std::atomic<int> serr{nothingSaved};

/// What the host's own `stderr` has buffered belongs to the target at the time when it was printed. The
/// stream itself is not touched: a reopened one would be buffered from then on.
void flushStream() noexcept { std::fflush(stderr); }

void moveOntoStandardError(int descriptor) noexcept {
    int moved = 0;
    do {
        // Busy: another thread is currently opening a file with this number.
        moved = ::dup2(descriptor, STDERR_FILENO);
    } while (moved < 0 && (errno == EINTR || errno == EBUSY));
    standardErrorHasChanged();
}

int openNullDevice() noexcept {
    int descriptor = -1;
    do {
        descriptor = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    } while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

} // namespace

void saveStandardError() noexcept {
    const CallerState callerState;
    if (serr.load(std::memory_order_relaxed) != nothingSaved) {
        return;
    }
    // Above the numbers of the standard streams, which a host may have closed to use them itself.
    constexpr int lowest = STDERR_FILENO + 1;
    serr.store(::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, lowest), std::memory_order_relaxed);
}

void redirectStandardError(const std::string& path) noexcept {
    const CallerState callerState;
    flushStream();
    int target = openForAppendingGuarded(path);
    if (target < 0) {
        target = openNullDevice();
    }
    if (target < 0) {
        return;
    }
    if (target == STDERR_FILENO) { // the host had closed it
        ::fcntl(target, F_SETFD, 0);
        standardErrorHasChanged();
        return;
    }
    moveOntoStandardError(target);
    ::close(target);
}

void restoreStandardError() noexcept {
    const CallerState callerState;
    const int saved = serr.load(std::memory_order_relaxed);
    if (saved == nothingSaved) {
        return;
    }
    flushStream();
    moveOntoStandardError(saved);
    ::close(saved);
}

} // namespace ZQFoundation::detail
