// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PROCESS_LOCKEDFILE_H
#define ZQFOUNDATION_PROCESS_LOCKEDFILE_H

#include <string>

#include <sys/stat.h>

#include "foundation/files/GuardedOpening.h"
#include "foundation/objects/NSDictionary.h"

namespace ZQFoundation::detail {

/// What a writer does while another one has the lock. A writer needs milliseconds, so a process that keeps
/// the lock for long will not release it.
struct LockWaiting {
    int milliseconds;                                  ///< after this time it gives up
    void (*notice)(const std::string& path) = nullptr; ///< called once, after three seconds
};

/// A file of defaults that is to be changed, its folder locked against other writers from `open` on for as
/// long as this lives. A link at the path is followed, by the rules of `reachGuarded`.
///
/// On failure, the operations return false with a reason that names the file; `error` may be null. Threads of
/// one process must not have the same folder open at once, as some locks belong to the process.
class LockedFile {
public:
    enum class Folder { make, demand }; ///< what to do if the folder is missing

    LockedFile() noexcept = default;
    LockedFile(const LockedFile&) = delete;
    LockedFile& operator=(const LockedFile&) = delete;
    ~LockedFile();

    /// Called once, before all other operations.
    bool open(const std::string& path, Folder folder, const LockWaiting& waiting, NSString* error);

    /// `values` is nil when there is no file.
    bool read(NSDictionary& values, NSString* error) const;

    /// Replaces the file in one step by a new one with the owner and permissions of the old one, or, if there
    /// was none, accessible to the owner only. The old one stays if this fails.
    bool replace(const NSDictionary& dictionary, NSString* error) const;

    bool remove(NSString* error) const;

private:
    bool openFolder(Folder folder, NSString* error);
    bool isFolderInPlace() const;
    void closeFolder() noexcept;
    bool lockFolder(const LockWaiting& waiting, NSString* error);
    bool lockFileInFolder(const LockWaiting& waiting, NSString* error);
    bool look(NSString* error);
    void removeLeftovers() const;
    bool keepOwnerAndPermissions(int file) const noexcept;
    bool writeTemporary(const std::string& temporary, const std::string& bytes) const noexcept;

    std::string path_; ///< as given by the user
    GuardedPlace place_;
    Descriptor folder_;
    Descriptor lockFile_; ///< used if the folder cannot be locked
    bool isFolderLocked_ = false;
    bool exists_ = false;
    struct stat before_ {}; ///< of the file that exists
};

} // namespace ZQFoundation::detail

#endif
