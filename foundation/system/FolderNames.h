// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_SYSTEM_FOLDERNAMES_H
#define ZQFOUNDATION_SYSTEM_FOLDERNAMES_H

#include <cstddef>
#include <vector>

namespace ZQFoundation::detail {

/// The entries of an open folder at one moment. Read all at once, so that items made or removed meanwhile
/// neither hide nor repeat an entry, and the list of a folder that is being filled ends.
class FolderNames {
public:
    struct Entry {
        const char* name;   ///< valid as long as the list, also after that is moved
        unsigned char kind; ///< DT_DIR and so on; DT_UNKNOWN if the file system does not report it
    };

    /// Reads the folder; once for each list. "." and ".." are omitted. False with `errno`.
    bool read(int folder);

    bool isAtStart() const noexcept { return position_ == 0; }
    bool isAtEnd() const noexcept { return position_ == bytes_.size(); }
    Entry next() noexcept;

private:
    std::vector<char> bytes_; ///< for each entry its kind, its name and NUL
    std::size_t position_ = 0;
};

} // namespace ZQFoundation::detail

#endif
