// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_SYSTEM_FOLDERNAMES_H
#define ZQFOUNDATION_SYSTEM_FOLDERNAMES_H

#include <cstddef>
#include <vector>

namespace ZQFoundation::detail {

/// What an open folder held at one moment. Read as a whole, so that what is made or removed meanwhile neither
/// hides nor repeats an entry, and a folder that is being filled comes to an end.
class FolderNames {
public:
    struct Entry {
        const char* name;   ///< lives as long as the list, also when that is moved
        unsigned char kind; ///< DT_DIR and so on; DT_UNKNOWN where the file system does not say
    };

    /// Once for each list. "." and ".." are left out. False with `errno`.
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
