// SPDX-License-Identifier: MIT
// Facts about the running program and its computer, from the kernel and the C library.
// Except for the arguments, everything is read at each call: callers decide how long a fact is valid.
#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/auxv.h>
#include <unistd.h>

#include "foundation/system/System.h"

namespace ZQFoundation::detail::system {

namespace {

/// The contents of a file that the kernel generates while it is read, and that has no size. Empty if the file
/// cannot be opened.
std::string contentsOf(const char* path) {
    std::string text;
    const int file = open(path, O_RDONLY | O_CLOEXEC);
    if (file < 0) {
        return text;
    }
    // Such files report a size of 0, so the end is where a read returns nothing.
    char buffer[4096];
    for (;;) {
        const ssize_t count = read(file, buffer, sizeof buffer);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            break;
        }
        text.append(buffer, static_cast<std::size_t>(count));
    }
    close(file);
    return text;
}

} // namespace

// The program's file

namespace {

// A truncated target is not reported as an error, so a full buffer means that it must grow. When the
// program's file was removed or replaced, the kernel appends " (deleted)"; the text is returned as it is.
std::string targetOfProgramLink() {
    std::string path(256, '\0');
    for (;;) {
        const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
        if (length < 0) {
            return {};
        }
        if (static_cast<std::size_t>(length) < path.size()) {
            path.resize(static_cast<std::size_t>(length));
            return path;
        }
        path.resize(path.size() * 2);
    }
}

/// The file that the memory at the address was mapped from.
/// A line is "start-end permissions offset device inode path"; only the first two and the path are of
/// interest. Memory without a file has no "/".
std::string fileMappedAt(std::uintptr_t address) {
    const std::string maps = contentsOf("/proc/self/maps");
    std::string_view rest = maps;
    while (!rest.empty()) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(rest.size(), line.size() + 1));
        std::uintptr_t start = 0;
        std::uintptr_t end = 0;
        const char* const dash = std::from_chars(line.begin(), line.end(), start, 16).ptr;
        if (dash == line.end() || std::from_chars(dash + 1, line.end(), end, 16).ec != std::errc()) {
            break;
        }
        const std::size_t path = line.find('/');
        if (start <= address && address < end && path != std::string_view::npos) {
            return std::string(line.substr(path));
        }
    }
    return {};
}

/// Where the program was started from, if the absolute path is known.
/// The last resort, without a process file system. The path is resolved because a program is often started
/// through a link, and its bundle is next to the file that the link refers to.
std::string startedFile() {
    const auto* const path = reinterpret_cast<const char*>(getauxval(AT_EXECFN));
    if (path == nullptr || *path != '/') {
        return {};
    }
    char* const resolved = ::realpath(path, nullptr);
    const std::string file = resolved != nullptr ? resolved : path;
    std::free(resolved);
    return file;
}

} // namespace

std::string executablePath() {
    // When the dynamic loader was started with the program as its argument, the kernel regards the loader as
    // the program. Then, as for a static program, the kernel itself has loaded no loader.
    const bool mayBeLoader = getauxval(AT_BASE) == 0;
    const std::string path = mayBeLoader ? fileMappedAt(getauxval(AT_PHDR)) : targetOfProgramLink();
    return path.empty() ? startedFile() : path;
}

// Arguments

namespace {

/// What the C library passed when this library was loaded. Hosts overwrite their arguments later, to show
/// their state in the list of processes, so a command line of ordinary length is copied at once: that takes
/// half a microsecond, and no heap memory. The rest of a longer one is read when it is requested.
struct HandedArguments {
    int count;
    char** strings;
    int copied; ///< the number of them, one after another, each with its NUL
    char copies[4096];
};
constinit HandedArguments handed{};

// Called with what the C library passes to `main`. It must not allocate: the host may replace the allocator,
// and its initializers have not run yet.
[[maybe_unused]] void takeArguments(int count, char** strings, char**) noexcept {
    handed.count = count;
    handed.strings = strings;
    std::size_t used = 0;
    // Whole strings only; a pointer that is null ends the list early in programs that pass a wrong count.
    while (handed.copied < count && strings[handed.copied] != nullptr) {
        const std::size_t length = std::strlen(strings[handed.copied]) + 1;
        if (length > sizeof handed.copies - used) {
            break;
        }
        std::memcpy(handed.copies + used, strings[handed.copied], length);
        used += length;
        ++handed.copied;
    }
}

#ifdef __GLIBC__ // others pass nothing
/// The only function of the library that runs when it is loaded: before ordinary initializers, so that those
/// of a host that is linked with the library also find the arguments.
[[gnu::section(".init_array.00101"), gnu::used]] void (*takeArgumentsAtLoad)(int, char**,
                                                                             char**) noexcept = takeArguments;
#endif

} // namespace

// Copies first, then what did not fit, which the host may have overwritten by now.
std::vector<std::string> handedArguments() {
    std::vector<std::string> arguments;
    const char* copy = handed.copies;
    for (int i = 0; i < handed.copied; ++i) {
        arguments.emplace_back(copy);
        copy += arguments.back().size() + 1;
    }
    for (int i = handed.copied; i < handed.count && handed.strings[i] != nullptr; ++i) {
        arguments.emplace_back(handed.strings[i]);
    }
    return arguments;
}

// Any object of the library serves as the address to look up.
std::string libraryPath() {
    static const char anchor = 0;
    Dl_info information;
    if (dladdr(&anchor, &information) == 0 || information.dli_fname == nullptr) {
        return executablePath(); // a static program has no loader that could tell
    }
    // For the program itself, the loader's only name is argument 0, whatever that contains by now.
    // Compared as pointers, because the loader hands out that very string.
    const bool isPartOfProgram = handed.count > 0 && information.dli_fname == handed.strings[0];
    return isPartOfProgram ? executablePath() : information.dli_fname;
}

const char* environmentVariable(const char* name) noexcept { return ::secure_getenv(name); }

// Argument strings are separated by NUL, and may be empty. A process that has overwritten its arguments
// shows what it wrote.
std::vector<std::string> readArguments() {
    const std::string text = contentsOf("/proc/self/cmdline");
    std::vector<std::string> arguments;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = text.find('\0', start);
        arguments.push_back(text.substr(start, end - start));
        start = end == std::string::npos ? text.size() : end + 1;
    }
    return arguments;
}

// The computer

namespace {

/// Removes the white space and the NUL that such files put around a text.
std::string trimmed(const std::string& text) {
    constexpr std::string_view around(" \t\r\n\0", 5);
    const std::size_t start = text.find_first_not_of(around);
    return start == std::string::npos ? std::string()
                                      : text.substr(start, text.find_last_not_of(around) + 1 - start);
}

// The first exists on most computers with firmware tables, the second on boards that describe themselves by
// a tree.
std::string model() {
    const std::string product = trimmed(contentsOf("/sys/class/dmi/id/product_name"));
    return product.empty() ? trimmed(contentsOf("/proc/device-tree/model")) : product;
}

} // namespace

HardwareFacts hardwareFacts() {
    HardwareFacts facts;
    facts.model = model();
    // Those that are online: what a report about this machine at this moment shows.
    const long processors = sysconf(_SC_NPROCESSORS_ONLN);
    if (processors > 0 && processors <= INT32_MAX) {
        facts.processors = static_cast<std::int32_t>(processors);
    }
    const long pages = sysconf(_SC_PHYS_PAGES);
    const long pageBytes = sysconf(_SC_PAGESIZE);
    std::uint64_t bytes = 0;
    if (pages > 0 && pageBytes > 0 && !__builtin_mul_overflow(pages, pageBytes, &bytes)) {
        facts.memoryBytes = bytes;
    }
    return facts;
}

std::vector<std::string> releaseFiles() { return {"/etc/os-release", "/usr/lib/os-release"}; }

} // namespace ZQFoundation::detail::system
