// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_SYSTEM_FILESYSTEM_H
#define ZQFOUNDATION_SYSTEM_FILESYSTEM_H

#include <cstdint>
#include <ctime>
#include <vector>

#include <sys/stat.h>
#include <sys/types.h>

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

/// Is asked while data are copied, after each few megabytes, whether to go on.
class CopyWatch {
public:
    virtual bool mayGoOn(std::uint64_t newBytes) = 0;

protected:
    ~CopyWatch() = default;
};

/// Copies the data of one open file, from its start to its end, to another that is empty, by the fastest
/// means that both offer, `first` and those after it; holes stay holes. A short read is never taken for the
/// end. A file that grows meanwhile is followed, but not for ever. False with `errno`, also when there is no
/// room, when a file-size limit is met, which raises no signal here, and with ECANCELED when the watch says
/// no. Both descriptors' positions may move.
bool copyFileData(int source, int destination, DataMeans first = DataMeans::clone,
                  CopyWatch* watch = nullptr);

/// Gives an open file or folder the extended attributes and access lists of another. False with `errno`, also
/// when the other file system has no place for what belongs to the user or says who may do what. Attributes
/// that belong to the system and may not be given are left out.
bool copyExtendedAttributes(int source, int destination) noexcept;

/// Takes from a new file or folder the access list that it was given by the folder in which it was made.
/// False with `errno`.
bool removeInheritedAccessList(int item) noexcept;

/// Gives an open file or folder the creation time of another where the system can; nothing depends on it.
void copyCreationTime(int source, int destination) noexcept;

/// Adds all entries of an open folder, read from its start, but "." and "..": for each its kind (DT_DIR and
/// so on; DT_UNKNOWN where the file system does not say), its name and NUL. False with `errno`.
bool appendFolderEntries(int folder, std::vector<char>& entries);

/// An item itself, a link not being followed.
struct ItemFacts {
    struct stat information;
    bool isMountPoint; ///< the root of something that is mounted there
    bool isProtected;  ///< immutable or append-only: it cannot be removed, nor what it holds
};

/// What a name in an open folder stands for; the open item `folder` itself where the name is "". False with
/// `errno`.
bool getItemFacts(int folder, const char* name, ItemFacts& facts) noexcept;

/// Gives an item another name, in one step that fails with EEXIST when that name is taken. Where the file
/// system has no such step, the nearest that replaces nothing but an empty folder. False with `errno`.
bool renameWithoutReplacing(int fromFolder, const char* from, int toFolder, const char* to) noexcept;

/// Opens a new file for writing that has no name yet, and vanishes if it never gets one. -1 with `errno`
/// where the file system has no such files.
int openUnnamedFile(int folder) noexcept;

/// Gives such a file its name, unless that is taken (EEXIST). False with `errno`.
bool nameFile(int file, int folder, const char* name) noexcept;

/// Returns when the data and attributes of an open file or folder are on the disk. False with `errno`.
bool flushItem(int item) noexcept;

/// Returns when all that was written to the file system of an open item is on the disk. False with `errno`.
bool flushFileSystem(int item) noexcept;

/// Keeps others from opening a file for writing for a scope: they wait until it ends. Where the system has no
/// such means for this file or user, nothing is kept.
class WritersHeldOff {
public:
    /// The file must be open, and for reading only.
    explicit WritersHeldOff(int file) noexcept;
    WritersHeldOff(const WritersHeldOff&) = delete;
    WritersHeldOff& operator=(const WritersHeldOff&) = delete;
    ~WritersHeldOff();

    /// False when somebody had the file open for writing, or is waiting to open it so.
    bool areThereNone() const noexcept;

private:
    enum class State { held, unknown, failed };
    int file_;
    State state_;
};

/// Whether a change to a file might not show in the time of its last change, because that is as late as the
/// system's clock for files has got. Waits for the clock to go on, a few milliseconds, and is then false.
bool mightHideChange(const timespec& changed) noexcept;

/// Unpredictable for others, another number at every call.
std::uint64_t freshRandomNumber() noexcept;

} // namespace ZQFoundation::detail::system

#endif
