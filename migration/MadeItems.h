// SPDX-License-Identifier: MIT
// Internal: not installed.
// Remembers which items a run has created.
#ifndef ZQFOUNDATION_MIGRATION_MADEITEMS_H
#define ZQFOUNDATION_MIGRATION_MADEITEMS_H

#include <cstdint>
#include <unordered_set>

#include <sys/stat.h>

namespace ZQFoundation::detail {

/// The items that one run has created, by device and inode. A batch that overwrites must not replace its own
/// copies: two sources may have one destination.
class MadeItems {
public:
    void add(const struct stat& item) { items_.insert({item.st_dev, item.st_ino}); }
    bool holds(const struct stat& item) const { return items_.count({item.st_dev, item.st_ino}) != 0; }

private:
    struct Key {
        dev_t device;
        ino_t inode;
        bool operator==(const Key&) const = default;
    };
    struct Hash {
        std::size_t operator()(const Key& key) const noexcept {
            return static_cast<std::size_t>((key.inode ^ static_cast<std::uint64_t>(key.device) << 7U) *
                                            0x9E3779B97F4A7C15U);
        }
    };
    std::unordered_set<Key, Hash> items_;
};

} // namespace ZQFoundation::detail

#endif
