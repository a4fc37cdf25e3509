// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_FILES_COPYRECORD_H
#define ZQFOUNDATION_FILES_COPYRECORD_H

#include <cstddef>
#include <cstdint>
#include <deque>

#include <sys/stat.h>

namespace ZQFoundation::detail {

/// Whether an item is what it was: the same one, of the same kind and size, last modified at the same time.
/// With `alsoChange` also its owner, permissions and the time of its last change of any kind.
bool isUnchanged(const struct stat& before, const struct stat& now, bool alsoChange) noexcept;

/// What a copy of a tree has read: a mark of 16 bytes for each item, made of the folder that it is in, its
/// name, and what `isUnchanged` compares. So it shows later whether the tree is still the same, item by item,
/// and what in it was never copied.
class CopyRecord {
public:
    CopyRecord() noexcept;

    /// `item` is what was found before it was read. The item's folder is known by its own information.
    void add(const struct stat& folder, const char* name, const struct stat& item);

    /// Once, when all items are there; only then it can be asked.
    void complete();

    std::size_t count() const noexcept { return marks_.size(); }

    bool holds(const struct stat& folder, const char* name, const struct stat& item) const;

    /// From here on items are removed: of one that had several names, the time of the last change and the
    /// owner and permissions that go with it are not compared any more.
    void beginRemoval() noexcept { mayHaveLostNames_ = true; }

private:
    struct Mark {
        std::uint64_t identity;
        std::uint64_t change;
    };
    Mark markOf(const struct stat& folder, const char* name, const struct stat& item) const noexcept;

    std::deque<Mark> marks_; // grows without being copied
    std::uint64_t key_;      // so that nobody outside can make items of equal marks
    bool mayHaveLostNames_ = false;
};

} // namespace ZQFoundation::detail

#endif
