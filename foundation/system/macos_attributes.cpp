// SPDX-License-Identifier: MIT
// Copies extended attributes and access lists, and changes items that are not opened.
// Pipes, sockets and devices cannot be opened without effect here, so they are changed by folder and name.
// Copying code checks that the new item is the one that was made.
#include <cerrno>

#include <copyfile.h>
#include <fcntl.h>
#include <sys/acl.h>
#include <sys/attr.h>
#include <unistd.h>

#include "foundation/system/HeldItem.h"

namespace ZQFoundation::detail::system {

namespace {

// Two numbers here, where other systems have one.
bool meansNoPlace(int error) noexcept { return error == ENOTSUP || error == EOPNOTSUPP; }

} // namespace

bool copyExtendedAttributes(int source, int destination) noexcept {
    return ::fcopyfile(source, destination, nullptr, COPYFILE_XATTR | COPYFILE_ACL) == 0;
}

// An empty list replaces the inherited one. File systems without lists have nothing to remove.
bool removeInheritedAccessList(int item) noexcept {
    acl_t none = ::acl_init(0);
    if (none == nullptr) {
        return false;
    }
    const bool removed = ::acl_set_fd_np(item, none, ACL_TYPE_EXTENDED) == 0 || meansNoPlace(errno);
    const int error = errno;
    ::acl_free(none);
    errno = error;
    return removed;
}

void copyCreationTime(int source, int destination) noexcept {
    struct stat information;
    if (::fstat(source, &information) != 0) {
        return;
    }
    attrlist attributes{};
    attributes.bitmapcount = ATTR_BIT_MAP_COUNT;
    // The attribute list and the buffer must match: one time, no padding.
    attributes.commonattr = ATTR_CMN_CRTIME;
    timespec time = information.st_birthtimespec;
    ::fsetattrlist(destination, &attributes, &time, sizeof time, 0);
}

bool HeldItem::hold(int folder, const char* name) noexcept {
    folder_ = folder;
    name_ = name;
    struct stat information;
    if (!getInformation(information)) {
        return false;
    }
    // Links can be opened as such; pipes, sockets and devices are accessed by name.
    if (S_ISLNK(information.st_mode)) {
        descriptor_ = Descriptor(openAt(folder, name, O_RDONLY | O_SYMLINK | O_CLOEXEC));
        return static_cast<bool>(descriptor_);
    }
    return true;
}

bool HeldItem::getInformation(struct stat& information) const noexcept {
    return ::fstatat(folder_, name_, &information, AT_SYMLINK_NOFOLLOW) == 0;
}

bool HeldItem::setOwner(uid_t owner, gid_t group) const noexcept {
    return ::fchownat(folder_, name_, owner, group, AT_SYMLINK_NOFOLLOW) == 0;
}

bool HeldItem::setPermissions(mode_t permissions) const noexcept {
    return ::fchmodat(folder_, name_, permissions, AT_SYMLINK_NOFOLLOW) == 0;
}

bool HeldItem::setTimes(const timespec (&accessAndModification)[2]) const noexcept {
    return ::utimensat(folder_, name_, accessAndModification, AT_SYMLINK_NOFOLLOW) == 0;
}

bool HeldItem::takeExtendedAttributes(const HeldItem& source) const noexcept {
    return !descriptor_ || !source.descriptor_ ||
           copyExtendedAttributes(source.descriptor_.number(), descriptor_.number());
}

bool HeldItem::giveAccessList(int file) const noexcept {
    const Descriptor source(openAt(folder_, name_, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    return source && ::fcopyfile(source.number(), file, nullptr, COPYFILE_ACL) == 0;
}

bool HeldItem::removeInheritedAccessList() const noexcept {
    return !descriptor_ || system::removeInheritedAccessList(descriptor_.number());
}

} // namespace ZQFoundation::detail::system
