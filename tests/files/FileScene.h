// SPDX-License-Identifier: MIT
// What the tests of files share, beside scratch folders and children without privileges.
#ifndef ZQFOUNDATION_TESTS_FILES_FILESCENE_H
#define ZQFOUNDATION_TESTS_FILES_FILESCENE_H

#include <cstdio>
#include <string>

#include <sys/resource.h>
#include <sys/wait.h>

#include "foundation/files/NSFileManager.h"
#include "tests/process/ItemFacts.h"

namespace scene {

/// The text of any value as UTF-8, told apart from the empty text when it is nil.
inline std::string shownText(const ZQFoundation::NSString& text) { return text ? text.utf8() : "(nil)"; }

inline ZQFoundation::NSString fromBytes(const std::string& bytes) {
    return ZQFoundation::NSString::stringWithFileSystemBytes(bytes.data(), bytes.size());
}

inline std::string bytesOf(const ZQFoundation::NSString& text) {
    std::string bytes;
    return text.getFileSystemBytes(bytes) ? bytes : "(no bytes)";
}

/// The number of the file system that holds the item.
inline dev_t deviceOf(const std::string& path) {
    struct stat information;
    return ::lstat(path.c_str(), &information) == 0 ? information.st_dev : 0;
}

/// Folders called `name`, one in the other, below `folder`; the path of the last one.
inline std::string makeChain(const std::string& folder, const std::string& name, int depth) {
    std::string path = folder;
    int at = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    for (int level = 0; level < depth; ++level) {
        EXPECT_EQ(::mkdirat(at, name.c_str(), 0755), 0) << std::strerror(errno);
        const int next = ::openat(at, name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        ::close(at);
        at = next;
        path += "/" + name;
    }
    ::close(at);
    return path;
}

/// Removes a chain that `makeChain` made, from the first folder on, without help of the library.
inline void removeChain(const std::string& folder, const std::string& name, int depth) {
    int at = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    for (int level = 0; level < depth; ++level) {
        const int next = ::openat(at, name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        ::close(at);
        at = next;
    }
    for (int level = 0; level < depth; ++level) {
        const int above = ::openat(at, "..", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        ::close(at);
        at = above;
        ::unlinkat(at, name.c_str(), AT_REMOVEDIR);
    }
    ::close(at);
}

inline int openDescriptors() {
    int count = 0;
    DIR* const folder = ::opendir("/proc/self/fd");
    while (folder != nullptr && ::readdir(folder) != nullptr) {
        ++count;
    }
    if (folder != nullptr) {
        ::closedir(folder);
    }
    return count;
}

/// What the body answers in a child that may open so many files more.
template <class Body>
bool isTrueWithDescriptors(rlim_t count, const Body& body) {
    const pid_t child = ::fork();
    if (child == 0) {
        // The lowest free numbers are what the limit leaves.
        const int lowest = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
        ::close(lowest);
        const rlimit limit{static_cast<rlim_t>(lowest) + count, static_cast<rlim_t>(lowest) + count};
        ::setrlimit(RLIMIT_NOFILE, &limit);
        leave(body() ? 0 : 1);
    }
    int status = -1;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

inline bool isRoot() { return ::geteuid() == 0; }

/// The umask for a scope. It belongs to the process: only for tests that start no threads.
class Umask {
public:
    explicit Umask(mode_t mask) : before_(::umask(mask)) {}
    Umask(const Umask&) = delete;
    Umask& operator=(const Umask&) = delete;
    ~Umask() { ::umask(before_); }

private:
    mode_t before_;
};

/// Another current folder for a scope.
class CurrentFolder {
public:
    explicit CurrentFolder(const std::string& path)
        : before_(::open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
        EXPECT_EQ(::chdir(path.c_str()), 0);
    }
    CurrentFolder(const CurrentFolder&) = delete;
    CurrentFolder& operator=(const CurrentFolder&) = delete;
    ~CurrentFolder() {
        EXPECT_EQ(::fchdir(before_), 0);
        ::close(before_);
    }

private:
    int before_;
};

} // namespace scene

#endif
