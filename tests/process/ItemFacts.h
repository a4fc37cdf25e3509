// SPDX-License-Identifier: MIT
// What stands at a path, told by the system, and bodies that run with another current folder.
#ifndef ZQFOUNDATION_TESTS_PROCESS_ITEMFACTS_H
#define ZQFOUNDATION_TESTS_PROCESS_ITEMFACTS_H

#include <climits>
#include <cstdlib>
#include <string>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/process/Scene.h"

namespace scene {

inline std::string realPath(const std::string& path) {
    char buffer[PATH_MAX] = {};
    EXPECT_NE(::realpath(path.c_str(), buffer), nullptr) << path;
    return buffer;
}

/// Whether a name stands there, a dangling link too.
inline bool stands(const std::string& path) {
    struct stat information;
    return ::lstat(path.c_str(), &information) == 0;
}

/// Whether an item of this type (`S_IFDIR`, ...) stands there; a link is none but a link.
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

/// What the body answers in a forked child whose current folder is this one.
template <class Body>
bool insideFolder(const std::string& folder, const Body& body) {
    const pid_t child = ::fork();
    if (child == 0) {
        ::alarm(60);
        leave(::chdir(folder.c_str()) == 0 && body() ? 0 : 1);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

} // namespace scene

#endif
