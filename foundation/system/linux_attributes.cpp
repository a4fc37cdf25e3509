// SPDX-License-Identifier: MIT
// Copies extended attributes and access lists, and changes items that are not opened.
// Two kinds of items need the same work: open files and folders, by descriptor, and items that must not be
// opened (a pipe would wait, a link cannot be), by the path of a descriptor that only refers to them. One
// template does it for both.
#include <cerrno>
#include <charconv>
#include <cstring>
#include <new>
#include <string>

#include <fcntl.h>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "foundation/system/HeldItem.h"

namespace ZQFoundation::detail::system {

namespace {

constexpr char accessList[] = "system.posix_acl_access";
constexpr char listForNewItems[] = "system.posix_acl_default";

/// The attributes of an open file or folder.
class OpenItem {
public:
    explicit OpenItem(int descriptor) noexcept : descriptor_(descriptor) {}
    ssize_t list(char* names, std::size_t size) const noexcept {
        return ::flistxattr(descriptor_, names, size);
    }
    ssize_t get(const char* name, char* value, std::size_t size) const noexcept {
        return ::fgetxattr(descriptor_, name, value, size);
    }
    bool set(const char* name, const std::string& value) const noexcept {
        return ::fsetxattr(descriptor_, name, value.data(), value.size(), 0) == 0;
    }
    bool remove(const char* name) const noexcept { return ::fremovexattr(descriptor_, name) == 0; }

private:
    int descriptor_;
};

/// The path of a descriptor that refers to an item without having opened it. The system resolves it to that
/// item, even if it is a link.
class DescriptorPath {
public:
    explicit DescriptorPath(int descriptor) noexcept {
        // The buffer holds the constant part and the longest number, so this cannot fail.
        *std::to_chars(text_ + sizeof folder - 1, text_ + sizeof text_, descriptor).ptr = '\0';
    }
    const char* text() const noexcept { return text_; }

private:
    static constexpr char folder[] = "/proc/self/fd/";
    char text_[32] = "/proc/self/fd/";
};

/// The attributes of an item that is only held.
class UnopenedItem {
public:
    explicit UnopenedItem(int descriptor) noexcept : path_(descriptor) {}
    ssize_t list(char* names, std::size_t size) const noexcept {
        return ::listxattr(path_.text(), names, size);
    }
    ssize_t get(const char* name, char* value, std::size_t size) const noexcept {
        return ::getxattr(path_.text(), name, value, size);
    }
    bool set(const char* name, const std::string& value) const noexcept {
        return ::setxattr(path_.text(), name, value.data(), value.size(), 0) == 0;
    }
    bool remove(const char* name) const noexcept { return ::removexattr(path_.text(), name) == 0; }

private:
    DescriptorPath path_;
};

bool beginsWith(const char* text, const char* start) noexcept {
    return std::strncmp(text, start, std::strlen(start)) == 0;
}

/// Repeats a call that fills a buffer until the buffer is large enough. False with `errno`.
/// The size is not asked first: the attribute may grow between the question and the reading, which needs the
/// loop anyway.
template <class Call>
bool readWhole(std::string& bytes, const Call& call) {
    for (std::size_t size = 256;; size *= 2) {
        bytes.resize(size);
        const ssize_t count = call(bytes.data(), size);
        if (count >= 0) {
            bytes.resize(static_cast<std::size_t>(count));
            return true;
        }
        // The kernel's limit is 64 KiB, of a value and of a list; 1 MiB leaves room for it to grow.
        if (errno != ERANGE || size > (std::size_t{1} << 20)) {
            return false;
        }
    }
}

/// The list of names, each NUL-terminated. False with `errno`.
/// File systems without attributes are not an error: there is nothing to copy.
template <class Item>
bool readNames(const Item& source, std::string& names) {
    if (readWhole(names, [&](char* bytes, std::size_t size) { return source.list(bytes, size); })) {
        return true;
    }
    names.clear();
    return errno == ENOTSUP || errno == ENOSYS;
}

// Access lists are attributes here: one for the item, and one that a folder hands down to new items.
bool isAccessList(const char* name) noexcept { return beginsWith(name, "system.posix_acl_"); }

/// Whether an attribute that could not be set may be omitted: one that has just been removed, or one that
/// belongs to the system. Attributes that belong to the user, or define permissions, must be copied.
/// Without this rule a copy by an ordinary user would fail wherever the system labels its files.
bool mayBeLeftOut(const char* name, int error) noexcept {
    if (error == ENODATA) {
        return true;
    }
    return !beginsWith(name, "user.") && !isAccessList(name) &&
           (error == EPERM || error == EACCES || error == EINVAL || error == ENOTSUP);
}

// Copies one attribute at a time. A list may be stale when it is used: what vanished meanwhile is left out,
// what was added meanwhile is missed, as with any copy of a file in use.
template <class Item>
bool copyAll(const Item& source, const Item& destination) noexcept {
    try {
        std::string names;
        std::string value;
        if (!readNames(source, names)) {
            return false;
        }
        for (std::size_t at = 0; at < names.size(); at += std::strlen(names.c_str() + at) + 1) {
            const char* const name = names.c_str() + at;
            const auto get = [&](char* bytes, std::size_t size) {
                return source.get(name, bytes, size);
            };
            if (!(readWhole(value, get) && destination.set(name, value)) && !mayBeLeftOut(name, errno)) {
                return false;
            }
        }
        return true;
    } catch (const std::bad_alloc&) {
        errno = ENOMEM;
        return false;
    }
}

template <class Item>
bool removeLists(const Item& item) noexcept {
    for (const char* const name : {accessList, listForNewItems}) {
        // Only folders have a list for new items; for other items, different errors are reported.
        if (!item.remove(name) && errno != ENODATA && errno != ENOTSUP && errno != ENOSYS &&
            errno != EACCES && errno != EINVAL) {
            return false;
        }
    }
    return true;
}

} // namespace

bool copyExtendedAttributes(int source, int destination) noexcept {
    return copyAll(OpenItem(source), OpenItem(destination));
}

bool removeInheritedAccessList(int item) noexcept { return removeLists(OpenItem(item)); }

void copyCreationTime(int, int) noexcept {} // this kernel does not let it be set

bool HeldItem::hold(int folder, const char* name) noexcept {
    folder_ = folder;
    name_ = name;
    descriptor_ = Descriptor(openAt(folder, name, O_PATH | O_NOFOLLOW | O_CLOEXEC));
    return static_cast<bool>(descriptor_);
}

bool HeldItem::getInformation(struct stat& information) const noexcept {
    return ::fstat(descriptor_.number(), &information) == 0;
}

bool HeldItem::setOwner(uid_t owner, gid_t group) const noexcept {
    return ::fchownat(descriptor_.number(), "", owner, group, AT_EMPTY_PATH) == 0;
}

/// No single call does this on all kernels. The new one takes the empty name; before it, the path of the
/// descriptor leads to the item itself, since O_PATH descriptors refuse `fchmod`.
bool HeldItem::setPermissions(mode_t permissions) const noexcept {
#ifdef SYS_fchmodat2
    if (::syscall(SYS_fchmodat2, descriptor_.number(), "", permissions, AT_EMPTY_PATH) == 0) {
        return true;
    }
    // EPERM is ambiguous: sandboxes use it for calls that they do not know. The second attempt decides.
    if (errno != ENOSYS && errno != EINVAL && errno != EPERM) {
        return false;
    }
#endif
    return ::chmod(DescriptorPath(descriptor_.number()).text(), permissions) == 0;
}

bool HeldItem::setTimes(const timespec (&accessAndModification)[2]) const noexcept {
    if (::utimensat(descriptor_.number(), "", accessAndModification, AT_EMPTY_PATH) == 0) {
        return true;
    }
    // Kernels before 5.8 refuse the flag.
    return errno == EINVAL &&
           ::utimensat(AT_FDCWD, DescriptorPath(descriptor_.number()).text(), accessAndModification, 0) == 0;
}

bool HeldItem::takeExtendedAttributes(const HeldItem& source) const noexcept {
    // Without a process file system they are not accessible.
    return copyAll(UnopenedItem(source.descriptor_.number()), UnopenedItem(descriptor_.number())) ||
           errno == ENOENT;
}

bool HeldItem::giveAccessList(int file) const noexcept {
    try {
        const UnopenedItem source(descriptor_.number());
        std::string list;
        bool isRead = readWhole(
            list, [&](char* bytes, std::size_t size) { return source.get(accessList, bytes, size); });
        if (!isRead && errno == ENOENT) { // no process file system
            const Descriptor opened(openAt(folder_, name_, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
            const OpenItem item(opened.number());
            isRead = opened && readWhole(list, [&](char* bytes, std::size_t size) {
                         return item.get(accessList, bytes, size);
                     });
        }
        return isRead
                   ? OpenItem(file).set(accessList, list)
                   : (errno == ENODATA || errno == ENOTSUP || errno == ENOSYS) && removeLists(OpenItem(file));
    } catch (const std::bad_alloc&) {
        errno = ENOMEM;
        return false;
    }
}

bool HeldItem::removeInheritedAccessList() const noexcept {
    return removeLists(UnopenedItem(descriptor_.number())) || errno == ENOENT;
}

} // namespace ZQFoundation::detail::system
