// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_FILES_COPYRECORD_H
#define ZQFOUNDATION_FILES_COPYRECORD_H

#include <cstddef>
#include <cstdint>
#include <deque>

#include <sys/stat.h>

namespace ZQFoundation::detail {

/// Whether an item is unchanged: the same item, of the same kind and size, last modified at the same time.
/// With `alsoChange` also its owner, permissions and the time of its last change of any kind.
bool isUnchanged(const struct stat& before, const struct stat& now, bool alsoChange) noexcept;

/// What a copy of a tree has read: a 16-byte mark for each item, computed from its folder, its name, and what
/// `isUnchanged` compares. It shows later, item by item, whether the tree is still the same and what in it
/// was never copied.
class CopyRecord {
public:
    CopyRecord();

    /// `item` is the item's state before it was read. The item's folder is identified by its own information.
    void add(const struct stat& folder, const char* name, const struct stat& item);

    /// Called once, after all items are added; queries are valid only after it.
    void complete();

    std::size_t count() const noexcept { return marks_.size(); }

    bool holds(const struct stat& folder, const char* name, const struct stat& item) const;

    /// From here on items are removed: for an item that had several names, the time of the last change and
    /// the owner and permissions that go with it are no longer compared.
    void beginRemoval() noexcept { mayHaveLostNames_ = true; }

private:
    struct Mark {
        std::uint64_t identity;
        std::uint64_t change;
    };
    Mark markOf(const struct stat& folder, const char* name, const struct stat& item) const noexcept;

    std::deque<Mark> marks_; // grows without being copied
    std::uint64_t key_;      // so that nobody else can craft items with equal marks
    bool mayHaveLostNames_ = false;
};

} // namespace ZQFoundation::detail

#endif
