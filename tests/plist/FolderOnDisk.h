// SPDX-License-Identifier: MIT
#ifndef ZQFOUNDATION_TESTS_PLIST_FOLDERONDISK_H
#define ZQFOUNDATION_TESTS_PLIST_FOLDERONDISK_H

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

namespace ZQFoundation::testing {

/// A folder of its own for one test, removed at the end.
class FolderOnDisk {
public:
    FolderOnDisk() {
        std::string pattern = (std::filesystem::temp_directory_path() / "plist-test-XXXXXX").string();
        path_ = ::mkdtemp(pattern.data());
    }
    FolderOnDisk(const FolderOnDisk&) = delete;
    FolderOnDisk& operator=(const FolderOnDisk&) = delete;
    ~FolderOnDisk() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    std::string path(std::string_view name) const { return path_ + "/" + std::string(name); }

    /// Writes a file and answers its path.
    std::string write(std::string_view name, std::string_view bytes) const {
        std::ofstream(path(name), std::ios::binary)
            .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return path(name);
    }

private:
    std::string path_;
};

} // namespace ZQFoundation::testing

#endif
