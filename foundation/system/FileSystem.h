// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_SYSTEM_FILESYSTEM_H
#define ZQFOUNDATION_SYSTEM_FILESYSTEM_H

#include <cstdint>
#include <ctime>
#include <vector>

#include <sys/stat.h>
#include <sys/types.h>

/// File operations beyond POSIX that the library needs from a system.
namespace ZQFoundation::detail::system {

/// The flags that open a folder only to start from it: the permission to search it is enough, where the
/// system has such a mode. Close-on-exec.
extern const int openForSearch;

/// Reads when the item itself, a link not being followed, was created. False if that is unknown.
bool getCreationTime(int folder, const char* name, timespec& time) noexcept;

/// Whether the links in this folder represent open objects (a pipe, a file without a name) rather than paths,
/// so that their text need not be a path.
bool holdsObjectLinks(int folder) noexcept;

/// Makes a pipe, a socket or a device that only its owner may use. False with `errno`.
bool makeSpecialFile(int folder, const char* name, mode_t kind, dev_t device) noexcept;

/// The means of copying data, the fastest first. If one is refused, the next is tried.
enum class DataMeans {
    clone,     ///< both files share their data until one is written to
    rangeCopy, ///< the file system copies; no data cross a network
    transfer,  ///< the kernel copies
    buffer,    ///< through this process's memory
};

/// Is asked whether to continue while data are copied, every few megabytes.
class CopyWatch {
public:
    virtual bool mayGoOn(std::uint64_t newBytes) = 0;

protected:
    ~CopyWatch() = default;
};

/// Copies the data of one open file, from its start to its end, to another that is empty, by the fastest
/// means that both offer, `first` and those after it; holes stay holes. A short read is never treated as the
/// end. A file that grows meanwhile is followed, but not forever. False with `errno`, also for a full disk
/// and for a file-size limit, which raises no signal here, and with ECANCELED when the watch refuses. Both
/// descriptors' positions may move.
bool copyFileData(int source, int destination, DataMeans first = DataMeans::clone,
                  CopyWatch* watch = nullptr);

/// Copies the extended attributes and access lists of an open file or folder to another. False with `errno`,
/// also when the destination's file system cannot store those that belong to the user or define permissions.
/// Attributes that belong to the system and may not be set are omitted.
bool copyExtendedAttributes(int source, int destination) noexcept;

/// Removes from a new file or folder the access list that it inherited from its folder. False with `errno`.
bool removeInheritedAccessList(int item) noexcept;

/// Copies the creation time of an open file or folder to another if the system can; nothing depends on it.
void copyCreationTime(int source, int destination) noexcept;

/// Appends all entries of an open folder, read from its start, except "." and "..": for each its kind (DT_DIR
/// and so on; DT_UNKNOWN if the file system does not report it), its name and NUL. False with `errno`.
bool appendFolderEntries(int folder, std::vector<char>& entries);

/// Facts about an item itself, a link not being followed.
struct ItemFacts {
    struct stat information;
    bool isMountPoint; ///< the root of something that is mounted there
    bool isProtected;  ///< immutable or append-only: neither it nor its contents can be removed
};

/// Reads the facts of the item with a name in an open folder, or of the open item `folder` itself if the name
/// is "". False with `errno`.
bool getItemFacts(int folder, const char* name, ItemFacts& facts) noexcept;

/// Renames an item, in one step that fails with EEXIST if the new name is taken. If the file system has no
/// such step, by the nearest means, which replaces nothing but an empty folder or, where there are no hard
/// links either, an empty file. False with `errno`.
bool renameWithoutReplacing(int fromFolder, const char* from, int toFolder, const char* to) noexcept;

/// Opens a new file for writing that has no name yet, and is deleted if it never gets one. -1 with `errno`
/// where the file system has no such files.
int openUnnamedFile(int folder) noexcept;

/// Gives such a file its name, unless that is taken (EEXIST). False with `errno`.
bool nameFile(int file, int folder, const char* name) noexcept;

/// Returns when the data and attributes of an open file or folder are on disk. False with `errno`.
bool flushItem(int item) noexcept;

/// Returns when all that was written to the file system of an open item is on disk. False with `errno`.
bool flushFileSystem(int item) noexcept;

/// Keeps others from opening a file for writing for a scope: they wait until it ends. Has no effect if the
/// system does not support that for this file or user.
class WritersHeldOff {
public:
    /// The file must be open for reading only.
    explicit WritersHeldOff(int file) noexcept;
    WritersHeldOff(const WritersHeldOff&) = delete;
    WritersHeldOff& operator=(const WritersHeldOff&) = delete;
    ~WritersHeldOff();

    /// False if somebody had the file open for writing, or is waiting to open it for writing.
    bool areThereNone() const noexcept;

private:
    enum class State { held, unknown, failed };
    // Both are unused on a system that cannot hold writers off.
    [[maybe_unused]] int file_;
    [[maybe_unused]] State state_;
};

/// The time that a file gets that is changed now, if its file system stores it exactly.
timespec currentFileTime() noexcept;

/// Whether a change to a file might not show in the time of its last change, because a change now would get
/// the same time. Waits until it would not, and then returns false: some milliseconds, or up to two seconds
/// if the file system stores no fractions.
bool mightHideChange(const timespec& changed) noexcept;

/// A number that others cannot predict, a new one at each call.
std::uint64_t freshRandomNumber() noexcept;

} // namespace ZQFoundation::detail::system

#endif
