// SPDX-License-Identifier: MIT
// Changing of a file among other writers.
#ifndef ZQFOUNDATION_DEFAULTS_LOCKEDFILE_H
#define ZQFOUNDATION_DEFAULTS_LOCKEDFILE_H

#include <sys/stat.h>

#include "foundation/files/GuardedOpening.h"
#include "foundation/objects/NSDictionary.h"
#include "tools/defaults/Domains.h"

namespace ZQFoundation::defaults {

/// The file of a domain with its folder locked against other writers, as long as it lives. A link at the
/// domain's path is followed, by the rule of `reachGuarded`. Everything fails with a message that names the
/// file, also the waiting for a lock that somebody else keeps.
class LockedFile {
public:
    explicit LockedFile(const Domain& domain);
    LockedFile(const LockedFile&) = delete;
    LockedFile& operator=(const LockedFile&) = delete;

    /// Nil when there is no file.
    NSDictionary read() const;

    /// Puts a new file into its place, with the owner and the permissions of the old one, and for the owner
    /// alone when there was none.
    void replace(const NSDictionary& dictionary) const;

    void remove() const;

private:
    void openFolder(bool isNamed);
    void lockFolder();
    void lockFileInFolder();
    void look();
    void removeLeftovers() const;
    void keepOwnerAndPermissions(int file) const;
    void writeTemporary(const std::string& temporary, const std::string& bytes) const;

    std::string path_; ///< as the user knows it
    detail::GuardedPlace place_;
    detail::Descriptor folder_;
    detail::Descriptor lockFile_; ///< where the folder cannot be locked
    bool exists_ = false;
    struct stat before_ {}; ///< of the file that exists
};

} // namespace ZQFoundation::defaults

#endif
