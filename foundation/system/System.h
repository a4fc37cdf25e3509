// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_SYSTEM_SYSTEM_H
#define ZQFOUNDATION_SYSTEM_SYSTEM_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// What the library needs of an operating system beyond POSIX. One source per system implements it.
namespace ZQFoundation::detail::system {

/// The running program's file, or empty when it cannot be told.
std::string executablePath();

/// The file that this library was loaded from: the shared library, or the program for the static one.
std::string libraryPath();

/// The process's arguments, the program's own name first, as the C library handed them over. Empty where it
/// hands none over.
std::vector<std::string> handedArguments();

/// The same as they can be read from the system now. Empty when they cannot be read at the moment.
std::vector<std::string> readArguments();

/// The variable of the environment, which no other thread may change meanwhile. Null when it is not set, and
/// in a set-user-ID process: there the environment is that of a caller who is not to decide which files are
/// read and written with somebody else's rights. Everything that the library asks of it goes through here.
const char* environmentVariable(const char* name) noexcept;

/// What is known of the computer; empty or 0 for what cannot be told.
struct HardwareFacts {
    std::string model;
    std::int32_t processors = 0; ///< logical ones
    std::uint64_t memoryBytes = 0;
};
HardwareFacts hardwareFacts();

/// Where the system describes its release as `KEY=value` lines, the first file that exists counting. Empty
/// for a system that has a system version file instead.
std::vector<std::string> releaseFiles();

/// The kernel's release, such as "6.1.0-28-amd64"; empty when it cannot be told.
std::string kernelRelease();

/// The number by which the system knows the calling thread. Needs no memory, so a signal handler may ask.
std::uint64_t threadIdentifier() noexcept;

/// Writes like `write`, but a reader that is gone or a file-size limit shows as an error and raises no
/// signal. Returns -1 with `errno` on failure.
std::ptrdiff_t writeWithoutSignals(int descriptor, const char* bytes, std::size_t count) noexcept;

/// Writes like `write`, but is no cancellation point, and returns an error number below 0 in place of setting
/// `errno`.
std::ptrdiff_t plainWrite(int descriptor, const char* bytes, std::size_t count) noexcept;

/// Whether a regular file may become as large as its file system lets it.
bool fileSizeIsUnlimited() noexcept;

/// Sleeps while the word holds `expected`, at most about a millisecond; may return early. Keeps `errno`, as
/// `wakeOne` does.
void waitBriefly(const std::uint32_t* word, std::uint32_t expected) noexcept;
void wakeOne(const std::uint32_t* word) noexcept;

/// Where the number of this process image stands: 0 in one that has not asked yet, a new child among them.
extern std::uint32_t* forkGenerationWord;
std::uint32_t beginForkGeneration() noexcept;

/// How often this process image has been forked from another since the library was first asked: a child sees
/// a greater number than its parent. Costs two loads.
inline std::uint32_t forkGeneration() noexcept {
    const std::uint32_t* const word = __atomic_load_n(&forkGenerationWord, __ATOMIC_ACQUIRE);
    const std::uint32_t generation = __atomic_load_n(word, __ATOMIC_ACQUIRE);
    return generation != 0 ? generation : beginForkGeneration();
}

/// A word of 0 that is 0 again in each child process, by whatever call that is made, or null where the system
/// has nothing of the kind.
std::uint32_t* wordClearedByFork() noexcept;

/// This process's number; a system call only where `forkGeneration` is new.
int processIdentifier() noexcept;

/// A number that no other living thread has; cheaper than `threadIdentifier`, and nothing to show.
std::uint64_t threadNumber() noexcept;

/// The thread that lives on from the last fork, by `Lock`'s number: it still holds what it held.
std::uint64_t forkingThread() noexcept;

/// Unpredictable for others, the same all through the process.
std::uint64_t randomNumber() noexcept;

/// Bytes of the kernel's own randomness, other ones at every call, in a forked child too.
void fillWithRandomBytes(void* out, std::size_t count) noexcept;

} // namespace ZQFoundation::detail::system

#endif
