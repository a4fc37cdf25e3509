// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_SYSTEM_FILESYSTEM_H
#define ZQFOUNDATION_SYSTEM_FILESYSTEM_H

#include <sys/types.h>

#include <cstdint>
#include <ctime>

/// What the library needs of a system's file calls beyond POSIX.
namespace ZQFoundation::detail::system {

/// The flags that open a folder only to start from it: the permission to search it is enough, where the
/// system has such a mode. Close-on-exec.
extern const int openForSearch;

/// When the item itself, a link not being followed, was made. False where nobody knows.
bool getCreationTime(int folder, const char* name, timespec& time) noexcept;

/// Whether the links of this folder stand for open objects rather than for paths (a pipe, a file that has no
/// name any more), so that their text need not lead anywhere.
bool holdsObjectLinks(int folder) noexcept;

/// Makes a pipe, a socket or a device that only its owner may use. False with `errno`.
bool makeSpecialFile(int folder, const char* name, mode_t kind, dev_t device) noexcept;

/// By what data can be moved, the fastest first. Where one is refused the next is tried.
enum class DataMeans {
    clone,     ///< both files share their data until one is written to
    rangeCopy, ///< the file system copies; over a network nothing travels
    transfer,  ///< the kernel copies
    buffer,    ///< through this process's memory
};

/// Copies the data of one open file, from its start to its end, to another that is empty, by the fastest
/// means that both offer, `first` and those behind it; holes stay holes. A file that grows meanwhile is
/// followed, but not for ever. False with `errno`, also when there is no room, and when a file-size limit is
/// met, which raises no signal here. Both descriptors' positions may move.
bool copyFileData(int source, int destination, DataMeans first = DataMeans::clone) noexcept;

/// What became of the attributes of an item that its permissions do not tell.
enum class AttributesCopied {
    all,
    withoutAccessList, ///< the other file system has none
    failed,            ///< `errno`
};

/// Gives an open file or folder the extended attributes and access lists of another. Passed over is what
/// belongs to the system and may not be given, and what the other file system has no place for.
AttributesCopied copyExtendedAttributes(int source, int destination) noexcept;

/// Takes from a new file or folder the access list that it was given by the folder in which it was made.
/// False with `errno`.
bool removeInheritedAccessList(int item) noexcept;

/// Gives an open file or folder the creation time of another where the system can; nothing depends on it.
void copyCreationTime(int source, int destination) noexcept;

/// Unpredictable for others, another number at every call.
std::uint64_t freshRandomNumber() noexcept;

} // namespace ZQFoundation::detail::system

#endif
