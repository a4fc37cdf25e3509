// SPDX-License-Identifier: MIT
// Chooses the kind of write that descriptor 2 needs, and caches it for a second.
// The question is whether a write could raise a signal. The answer is kept for a second, since asking takes
// a system call or two of its own.
#include "foundation/process/StandardErrorWrite.h"

#include <cerrno>

#include <sys/stat.h>
#include <unistd.h>

#include "foundation/system/CallerState.h"
#include "foundation/system/System.h"

namespace ZQFoundation::detail {

namespace {

/// When descriptor 2 was last checked, and in the lowest bit whether plain writes are allowed. One word, so
/// that threads, handlers and children see a complete result or none.
constinit std::uint64_t lastLook = 0;
constexpr std::uint64_t takesPlainWrites = 1;

/// How often the library has redirected descriptor 2.
constinit std::uint32_t changes = 0;

/// The second, the process and the current number of changes, in the format of `lastLook`.
/// 15 bits of generation and changes each are enough: a wrong match needs 32,768 of them within one second.
std::uint64_t presentMoment(std::int64_t second) noexcept {
    constexpr std::uint64_t fifteenBits = 0x7FFF;
    const std::uint64_t change = __atomic_load_n(&changes, __ATOMIC_ACQUIRE) & fifteenBits;
    const std::uint64_t generation = system::forkGeneration() & fifteenBits;
    return static_cast<std::uint64_t>(second) << 31 | generation << 16 | change << 1;
}

/// Neither a regular file nor a terminal can lose its reader, and only a regular file has a size limit.
bool mayTakePlainWrites() noexcept {
    struct stat status {};
    // A device may be a terminal, which reports its end as an error.
    return ::fstat(STDERR_FILENO, &status) == 0 &&
           (S_ISCHR(status.st_mode) || (S_ISREG(status.st_mode) && system::fileSizeIsUnlimited()));
}

/// Not inlined: it is needed once a second, and the path around it is hot.
[[gnu::noinline]] std::uint64_t look(std::uint64_t moment) noexcept {
    const CallerState callerState;
    const std::uint64_t fresh = moment | (mayTakePlainWrites() ? takesPlainWrites : 0);
    __atomic_store_n(&lastLook, fresh, __ATOMIC_RELAXED);
    return fresh;
}

/// For pipes, sockets and limited files, on every line.
[[gnu::noinline]] std::ptrdiff_t writeGuarded(const char* bytes, std::size_t count) noexcept {
    const CallerState callerState;
    const std::ptrdiff_t written = system::writeWithoutSignals(STDERR_FILENO, bytes, count);
    return written >= 0 ? written : -errno;
}

} // namespace

std::ptrdiff_t writeToStandardError(const char* bytes, std::size_t count, std::int64_t second) noexcept {
    const std::uint64_t moment = presentMoment(second);
    std::uint64_t known = __atomic_load_n(&lastLook, __ATOMIC_RELAXED);
    if ((known & ~takesPlainWrites) != moment) [[unlikely]] {
        known = look(moment);
    }
    return (known & takesPlainWrites) != 0 ? system::plainWrite(STDERR_FILENO, bytes, count)
                                           : writeGuarded(bytes, count);
}

// Counted rather than stored, so that two redirections at once are both seen.
void standardErrorHasChanged() noexcept { __atomic_add_fetch(&changes, 1, __ATOMIC_RELEASE); }

} // namespace ZQFoundation::detail
