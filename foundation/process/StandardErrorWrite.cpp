// SPDX-License-Identifier: MIT
// Which kind of write descriptor 2 needs, remembered for a second.
#include "foundation/process/StandardErrorWrite.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/system/CallerState.h"
#include "foundation/system/System.h"

namespace ZQFoundation::detail {

namespace {

/// When descriptor 2 was last looked at, and in the lowest bits what was seen. One word, so that threads,
/// handlers and children find all of a look or nothing.
constinit std::uint64_t lastLook = 0;
constexpr std::uint64_t takesPlainWrites = 1;
constexpr std::uint64_t appendsWhole = 2;
constexpr std::uint64_t whatWasSeen = takesPlainWrites | appendsWhole;

/// How often the library has led descriptor 2 somewhere else.
constinit std::uint32_t changes = 0;

/// The second, the process and the number of changes by now, where `lastLook` has them.
std::uint64_t presentMoment(std::int64_t second) noexcept {
    const std::uint64_t change = __atomic_load_n(&changes, __ATOMIC_ACQUIRE) & 0x3FFF;
    const std::uint64_t generation = system::forkGeneration() & 0x7FFF;
    return static_cast<std::uint64_t>(second) << 31 | generation << 16 | change << 2;
}

/// Neither a regular file nor a terminal can lose its reader, and only a regular file meets a limit.
std::uint64_t whatIsThere() noexcept {
    struct stat status {};
    if (::fstat(STDERR_FILENO, &status) != 0) {
        return 0;
    }
    if (S_ISREG(status.st_mode) && system::fileSizeIsUnlimited()) {
        const int flags = ::fcntl(STDERR_FILENO, F_GETFL);
        return flags >= 0 && (flags & O_APPEND) != 0 ? takesPlainWrites | appendsWhole : takesPlainWrites;
    }
    return S_ISCHR(status.st_mode) ? takesPlainWrites : 0;
}

[[gnu::noinline]] std::uint64_t look(std::uint64_t moment) noexcept {
    const CallerState callerState;
    const std::uint64_t fresh = moment | whatIsThere();
    __atomic_store_n(&lastLook, fresh, __ATOMIC_RELAXED);
    return fresh;
}

std::uint64_t seenIn(std::int64_t second) noexcept {
    const std::uint64_t moment = presentMoment(second);
    const std::uint64_t known = __atomic_load_n(&lastLook, __ATOMIC_RELAXED);
    return (known & ~whatWasSeen) == moment ? known : look(moment);
}

[[gnu::noinline]] std::ptrdiff_t writeGuarded(const char* bytes, std::size_t count) noexcept {
    const CallerState callerState;
    const std::ptrdiff_t written = system::writeWithoutSignals(STDERR_FILENO, bytes, count);
    return written >= 0 ? written : -errno;
}

} // namespace

std::ptrdiff_t writeToStandardError(const char* bytes, std::size_t count, std::int64_t second) noexcept {
    return (seenIn(second) & takesPlainWrites) != 0 ? system::plainWrite(STDERR_FILENO, bytes, count)
                                                    : writeGuarded(bytes, count);
}

bool standardErrorAppendsWhole(std::int64_t second) noexcept { return (seenIn(second) & appendsWhole) != 0; }

void standardErrorHasChanged() noexcept { __atomic_add_fetch(&changes, 1, __ATOMIC_RELEASE); }

} // namespace ZQFoundation::detail
