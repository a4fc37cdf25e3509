// SPDX-License-Identifier: MIT
// Reading and writing whole files, and temporary folders.
#ifndef ZQFOUNDATION_VIEWER_FILES_H
#define ZQFOUNDATION_VIEWER_FILES_H

#include <string>
#include <string_view>

/// The whole file in `bytes`; false, with the reason in `errno`, when it cannot be read.
bool readFile(const std::string& path, std::string& bytes);

/// False, with the reason in `errno`, when not all bytes could be written.
bool writeFile(const std::string& path, std::string_view bytes);

/// A new folder for one file; both are removed with the object.
class TemporaryFolder {
public:
    TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder();

    /// Empty when the folder could not be made; the reason is in `errno`.
    const std::string& path() const { return path_; }

    /// Writes the file there and returns its path; empty when that fails.
    std::string addFile(const std::string& name, std::string_view bytes);

private:
    std::string path_;
    std::string file_;
};

#endif
