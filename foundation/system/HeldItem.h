// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_SYSTEM_HELDITEM_H
#define ZQFOUNDATION_SYSTEM_HELDITEM_H

#include <sys/stat.h>

#include "foundation/system/Descriptor.h"
#include "foundation/system/FileSystem.h"

namespace ZQFoundation::detail::system {

/// A link, pipe, socket, device or file itself, held so that its owner, permissions and times can be changed
/// without opening it, and, if the system can, so that no item that takes its name later is changed instead.
/// Links are never followed. All operations return false with `errno` on failure.
class HeldItem {
public:
    HeldItem() noexcept = default;
    HeldItem(const HeldItem&) = delete;
    HeldItem& operator=(const HeldItem&) = delete;

    /// Called once for each object; folder and name must outlive it.
    bool hold(int folder, const char* name) noexcept;

    bool getInformation(struct stat& information) const noexcept;
    bool setOwner(uid_t owner, gid_t group) const noexcept;
    bool setPermissions(mode_t permissions) const noexcept;
    bool setTimes(const timespec (&accessAndModification)[2]) const noexcept;

    /// As for open files.
    bool takeExtendedAttributes(const HeldItem& source) const noexcept;
    bool removeInheritedAccessList() const noexcept;

    /// Gives its access list to an open file, which loses one that it has inherited.
    bool giveAccessList(int file) const noexcept;

private:
    int folder_ = -1;
    const char* name_ = nullptr;
    Descriptor descriptor_;
};

/// Gives an open file the access list of the item that it replaces. Returns the permissions that the file may
/// have: with a list, the group's bits are the most that the list allows anybody, so the group gets none if
/// the list cannot be given.
inline mode_t takeAccessList(int file, int folder, const char* name, mode_t permissions) noexcept {
    HeldItem replaced;
    if (!replaced.hold(folder, name) || !replaced.giveAccessList(file)) {
        permissions &= ~static_cast<mode_t>(S_IRWXG);
    }
    return permissions;
}

} // namespace ZQFoundation::detail::system

#endif
