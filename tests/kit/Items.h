// SPDX-License-Identifier: MIT
// The item at a path, chains of folders, and the umask, the current folder and the number of descriptors
// for a scope or a child.
#ifndef ZQFOUNDATION_TESTS_KIT_ITEMS_H
#define ZQFOUNDATION_TESTS_KIT_ITEMS_H

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <string>

#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "foundation/objects/NSString.h"
#include "tests/kit/Child.h"

namespace ZQFoundation::kit {

/// The path as a file name of any bytes.
inline NSString fromBytes(const std::string& bytes) {
    return NSString::stringWithFileSystemBytes(bytes.data(), bytes.size());
}

inline std::string bytesOf(const NSString& text) {
    std::string bytes;
    return text.getFileSystemBytes(bytes) ? bytes : "(no bytes)";
}

/// The number of the file system that holds the item.
inline dev_t deviceOf(const std::string& path) {
    struct stat information;
    return ::lstat(path.c_str(), &information) == 0 ? information.st_dev : 0;
}

inline std::string realPath(const std::string& path) {
    char buffer[PATH_MAX] = {};
    EXPECT_NE(::realpath(path.c_str(), buffer), nullptr) << path;
    return buffer;
}

/// Whether there is an item of this name; a dangling link counts.
inline bool exists(const std::string& path) {
    struct stat information;
    return ::lstat(path.c_str(), &information) == 0;
}

/// Whether there is an item of this type (`S_IFDIR`, ...); links are not followed.
inline bool isOfType(const std::string& path, mode_t type) {
    struct stat information;
    return ::lstat(path.c_str(), &information) == 0 && (information.st_mode & S_IFMT) == type;
}

inline bool isFolder(const std::string& path) { return isOfType(path, S_IFDIR); }
inline bool isFile(const std::string& path) { return isOfType(path, S_IFREG); }
inline bool isLink(const std::string& path) { return isOfType(path, S_IFLNK); }

/// The permissions of the item itself.
inline mode_t modeOf(const std::string& path) {
    struct stat information {};
    EXPECT_EQ(::lstat(path.c_str(), &information), 0) << path;
    return information.st_mode & 07777;
}

inline bool isRoot() { return ::geteuid() == 0; }

/// Makes a socket that nobody listens at.
inline void makeSocket(const std::string& path) {
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    ASSERT_LT(path.size(), sizeof address.sun_path);
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    EXPECT_EQ(::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ::close(socket);
}

/// Nested folders called `name` below `folder`; returns the path of the last one.
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

/// Removes a chain that `makeChain` made, which is too deep for paths, from the last folder on.
inline void removeChain(const std::string& folder, const std::string& name, int depth) {
    int at = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const auto go = [&at](const char* to) {
        const int next = ::openat(at, to, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        ::close(at);
        at = next;
    };
    for (int level = 0; level < depth; ++level) {
        go(name.c_str());
    }
    for (int level = 0; level < depth; ++level) {
        go("..");
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

/// Expects of the body that afterwards `errno` and the number of open descriptors are as before.
template <class Body>
void expectNoTrace(const Body& body) {
    const int before = openDescriptors();
    errno = 4711;
    body();
    EXPECT_EQ(errno, 4711);
    EXPECT_EQ(openDescriptors(), before);
}

/// What the body returns in a child that may open only this many more files.
template <class Body>
bool isTrueWithDescriptors(rlim_t count, const Body& body) {
    return inChild([&] {
               // The lowest free numbers are what the limit leaves.
               const int lowest = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
               ::close(lowest);
               const rlim_t most = static_cast<rlim_t>(lowest) + count;
               const rlimit limit{most, most};
               ::setrlimit(RLIMIT_NOFILE, &limit);
               return body() ? 0 : 1;
           }) == 0;
}

/// What the body returns in a forked child whose current folder is this one.
template <class Body>
bool insideFolder(const std::string& folder, const Body& body) {
    return inChild([&] { return ::chdir(folder.c_str()) == 0 && body() ? 0 : 1; }) == 0;
}

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

} // namespace ZQFoundation::kit

#endif
