// SPDX-License-Identifier: MIT
// Scratch folders, and the contents of files.
#ifndef ZQFOUNDATION_TESTS_KIT_SCRATCHFOLDER_H
#define ZQFOUNDATION_TESTS_KIT_SCRATCHFOLDER_H

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ZQFoundation::kit {

/// Removes the item at the path, which is relative to an open folder. Follows no link, not even one that is
/// put there meanwhile.
inline void removeTree(const std::string& path, int above = AT_FDCWD) {
    const int flags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
    int folder = ::openat(above, path.c_str(), flags);
    if (folder < 0 && errno == EACCES && ::fchmodat(above, path.c_str(), 0700, 0) == 0) {
        folder = ::openat(above, path.c_str(), flags);
    }
    if (folder < 0) {
        ::unlinkat(above, path.c_str(), 0);
        return;
    }
    ::fchmod(folder, 0700);
    DIR* const names = ::fdopendir(folder);
    while (const dirent* entry = names != nullptr ? ::readdir(names) : nullptr) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..") {
            removeTree(name, folder);
        }
    }
    ::closedir(names);
    ::unlinkat(above, path.c_str(), AT_REMOVEDIR);
}

/// A folder that anybody may look into, removed with its scope.
class ScratchFolder {
public:
    ScratchFolder() {
        const char* const base = std::getenv("TMPDIR");
        path_ = std::string(base != nullptr && *base == '/' ? base : "/tmp") + "/zq-test-XXXXXX";
        if (::mkdtemp(path_.data()) == nullptr) {
            ADD_FAILURE() << "no scratch folder: " << std::strerror(errno);
        }
        ::chmod(path_.c_str(), 0755);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    ~ScratchFolder() { removeTree(path_); }

    const std::string& path() const { return path_; }
    std::string operator/(const std::string& name) const { return path_ + "/" + name; }

    /// Makes the folders on the way as well.
    std::string makeFolder(const std::string& name) const {
        for (std::size_t slash = name.find('/'); slash != std::string::npos;
             slash = name.find('/', slash + 1)) {
            ::mkdir((*this / name.substr(0, slash)).c_str(), 0755);
        }
        ::mkdir((*this / name).c_str(), 0755);
        return *this / name;
    }

    /// Writes a file, makes the folders on the way, and returns its path.
    std::string write(const std::string& name, std::string_view bytes) const {
        const std::size_t slash = name.find_last_of('/');
        if (slash != std::string::npos) {
            makeFolder(name.substr(0, slash));
        }
        std::FILE* const file = std::fopen((*this / name).c_str(), "wb");
        EXPECT_NE(file, nullptr) << name;
        if (file != nullptr) {
            EXPECT_EQ(std::fwrite(bytes.data(), 1, bytes.size(), file), bytes.size());
            std::fclose(file);
        }
        return *this / name;
    }

    /// Writes files that contain their own names, each at the place followed by its name.
    void writeFiles(const std::vector<std::string>& names, const std::string& place = "") const {
        for (const std::string& name : names) {
            write(place + name, name);
        }
    }

    /// Makes a symbolic link with this text, or a pipe, and returns its path.
    std::string link(const std::string& target, const std::string& name) const {
        EXPECT_EQ(::symlink(target.c_str(), (*this / name).c_str()), 0) << name << std::strerror(errno);
        return *this / name;
    }
    std::string makePipe(const std::string& name) const {
        EXPECT_EQ(::mkfifo((*this / name).c_str(), 0644), 0) << name << std::strerror(errno);
        return *this / name;
    }
    /// The permissions of an item; "" is the folder itself.
    void setMode(const std::string& name, mode_t mode) const {
        EXPECT_EQ(::chmod((*this / name).c_str(), mode), 0) << name << std::strerror(errno);
    }
    /// Gives an item to another user and group of this number, which only root can do; links are not
    /// followed.
    void setOwner(const std::string& name, uid_t owner) const {
        EXPECT_EQ(::lchown((*this / name).c_str(), owner, owner), 0) << name << std::strerror(errno);
    }

private:
    std::string path_;
};

/// Empty for a file that cannot be read.
inline std::string contentsOf(const std::string& path) {
    std::string bytes;
    if (std::FILE* const file = std::fopen(path.c_str(), "rb")) {
        char buffer[4096];
        std::size_t count = 0;
        while ((count = std::fread(buffer, 1, sizeof buffer, file)) > 0) {
            bytes.append(buffer, count);
        }
        std::fclose(file);
    }
    return bytes;
}

} // namespace ZQFoundation::kit

#endif
