// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_SYSTEM_SYSTEM_H
#define ZQFOUNDATION_SYSTEM_SYSTEM_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// What the library needs from an operating system beyond POSIX. One source per system implements it.
namespace ZQFoundation::detail::system {

/// The running program's file, or empty if unknown.
std::string executablePath();

/// The file that this library was loaded from: the shared library, or the program for the static one.
std::string libraryPath();

/// The process's arguments, the program's own name first, as the C library passed them. Empty if it passes
/// none.
std::vector<std::string> handedArguments();

/// The same as read from the system now. Empty if they currently cannot be read.
std::vector<std::string> readArguments();

/// The variable of the environment, which no other thread may change meanwhile. Null when it is not set, and
/// in a set-user-ID process: there the environment belongs to a caller who must not decide which files are
/// read and written with somebody else's rights. All access of the library to the environment goes through
/// this function.
const char* environmentVariable(const char* name) noexcept;

/// Facts about the computer; empty or 0 if unknown.
struct HardwareFacts {
    std::string model;
    std::int32_t processors = 0; ///< logical ones
    std::uint64_t memoryBytes = 0;
};
HardwareFacts hardwareFacts();

/// Where the system describes its release as `KEY=value` lines, the first file that exists counts. Empty for
/// a system that has a system version file instead.
std::vector<std::string> releaseFiles();

/// The kernel's release, such as "6.1.0-28-amd64"; empty if unknown.
std::string kernelRelease();

/// The system's number of the calling thread. Needs no memory, so a signal handler may call it.
std::uint64_t threadIdentifier() noexcept;

/// Writes like `write`, but a lost reader or a file-size limit is reported as an error and raises no signal.
/// Returns -1 with `errno` on failure.
std::ptrdiff_t writeWithoutSignals(int descriptor, const char* bytes, std::size_t count) noexcept;

/// Writes like `write`, but is not a cancellation point, and returns an error number below 0 instead of
/// setting `errno`.
std::ptrdiff_t plainWrite(int descriptor, const char* bytes, std::size_t count) noexcept;

/// Whether a regular file may become as large as its file system allows.
bool fileSizeIsUnlimited() noexcept;

/// Sleeps while the word is `expected`, at most about a millisecond; may return early. Keeps `errno`, as
/// `wakeOne` does.
void waitBriefly(const std::uint32_t* word, std::uint32_t expected) noexcept;
void wakeOne(const std::uint32_t* word) noexcept;

/// Sleeps for less than a second, however many signals arrive meanwhile.
void pauseFor(std::int64_t nanoseconds) noexcept;

/// Where the number of this process image is: 0 in one that has not asked yet, such as a new child.
extern std::uint32_t* forkGenerationWord;
std::uint32_t beginForkGeneration() noexcept;

/// How often this process image has been forked from another since the library was first asked: a child sees
/// a greater number than its parent. The cost is two loads.
inline std::uint32_t forkGeneration() noexcept {
    const std::uint32_t* const word = __atomic_load_n(&forkGenerationWord, __ATOMIC_ACQUIRE);
    const std::uint32_t generation = __atomic_load_n(word, __ATOMIC_ACQUIRE);
    return generation != 0 ? generation : beginForkGeneration();
}

/// A word of 0 that is 0 again in each child process, whatever call creates that, or null if the system
/// offers no such word.
std::uint32_t* wordClearedByFork() noexcept;

/// This process's number; a system call only when `forkGeneration` is new.
int processIdentifier() noexcept;

/// A number that no other live thread has; cheaper than `threadIdentifier`, but not for display.
std::uint64_t threadNumber() noexcept;

/// The thread that survived the last fork, by `Lock`'s number: it still holds its locks.
std::uint64_t forkingThread() noexcept;

/// A number that others cannot predict, constant within the process.
std::uint64_t randomNumber() noexcept;

/// Random bytes from the kernel, new ones at each call, also in a forked child.
void fillWithRandomBytes(void* out, std::size_t count) noexcept;

} // namespace ZQFoundation::detail::system

#endif
