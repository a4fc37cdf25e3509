// SPDX-License-Identifier: MIT
// What the tests of copies share.
#ifndef ZQFOUNDATION_TESTS_FILES_COPYSCENE_H
#define ZQFOUNDATION_TESTS_FILES_COPYSCENE_H

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>

#include "foundation/files/NSFileManager.h"
#include "tests/files/FileScene.h"
#include "tests/kit/Environment.h"
#include "tests/kit/Items.h"
#include "tests/kit/Values.h"

namespace ZQFoundation::scene {

inline bool copyItem(const std::string& from, const std::string& to, NSString* reason = nullptr) {
    return NSFileManager::defaultManager().copyItemAtPath_toPath_error(kit::fromBytes(from),
                                                                       kit::fromBytes(to), reason);
}

/// Why a copy failed, "(nil)" when it did not.
inline std::string reasonOfCopy(const std::string& from, const std::string& to) {
    NSString reason("before");
    const bool isCopied = copyItem(from, to, &reason);
    EXPECT_EQ(isCopied, !reason) << from << " " << to;
    return kit::utf8Of(reason);
}

inline struct stat lookAt(const std::string& path) {
    struct stat information {};
    EXPECT_EQ(::lstat(path.c_str(), &information), 0) << path << ": " << std::strerror(errno);
    return information;
}

inline void setTimes(const std::string& path, time_t accessed, time_t modified, long nanoseconds) {
    const timespec times[2] = {{accessed, nanoseconds}, {modified, nanoseconds}};
    EXPECT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW), 0) << path;
}

/// Permissions and modification time in one comparable text.
inline std::string stamp(const std::string& path) {
    const struct stat information = lookAt(path);
    return std::to_string(information.st_mode) + " " + std::to_string(information.st_mtim.tv_sec) + "." +
           std::to_string(information.st_mtim.tv_nsec);
}

inline std::string attribute(const std::string& path, const char* name) {
    char value[512];
    const ssize_t length = ::lgetxattr(path.c_str(), name, value, sizeof value);
    return length < 0 ? "(none)" : std::string(value, static_cast<std::size_t>(length));
}

/// An access list that lets one more user read, in the kernel's form: version 2, then kind, bits and id.
inline std::string listForUser(unsigned char mask) {
    const unsigned char none = 255;
    const unsigned char list[] = {2,    0,    0,    0,    1,  0, 6, 0, none, none, none, none, 2,  0, 4,    0,
                                  0xD2, 4,    0,    0,    4,  0, 0, 0, none, none, none, none, 16, 0, mask, 0,
                                  none, none, none, none, 32, 0, 0, 0, none, none, none, none};
    return {reinterpret_cast<const char*>(list), sizeof list};
}

inline bool setAttribute(const std::string& path, const char* name, const std::string& value) {
    return ::lsetxattr(path.c_str(), name, value.data(), value.size(), 0) == 0;
}

/// A test about trees below a folder in memory.
class TreeTest : public FolderTestInMemory {
protected:
    /// 200 folders with `filesInEach` empty files in each, named by their numbers.
    void makeWideTree(const std::string& name, int filesInEach) const {
        for (int number = 0; number < 200; ++number) {
            const std::string path = folder.makeFolder(name + "/" + std::to_string(number));
            for (int file = 0; file < filesInEach; ++file) {
                ASSERT_EQ(::mknod((path + "/" + std::to_string(file)).c_str(), S_IFREG | 0604, 0), 0);
            }
        }
    }
};

inline constexpr char accessList[] = "system.posix_acl_access";
inline constexpr char listForNewItems[] = "system.posix_acl_default";

} // namespace ZQFoundation::scene

#endif
