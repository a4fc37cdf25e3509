// SPDX-License-Identifier: MIT
#ifndef ZQFOUNDATION_ZQMIGRATE_TRIALFILES_H
#define ZQFOUNDATION_ZQMIGRATE_TRIALFILES_H

#include <cstdint>

#include "foundation/objects/ClassesByName.h"
#include "foundation/objects/NSString.h"
#include "tools/zqmigrate/TrialTree.h"

namespace ZQFoundation::zqmigrate {

/// What a migration would do to the files, found out without doing it. Answers as `detail::FilesOnDisk`
/// would, as far as kinds, names, permissions and what earlier steps of the trial have made or removed decide
/// it. What only the attempt shows is not foreseen: a full disk, a damaged one, a file system that does not
/// take what it is given, and what others change meanwhile.
class TrialFiles {
public:
    bool exists(const NSString& path, bool* isDirectory) const;
    bool isReadable(const NSString& path) const;
    bool makeFolders(const NSString& path);
    bool standsInside(const NSString& destination, const NSString& source) const;
    bool removalWouldHarm(const NSString& destination, const NSString& source) const;
    bool removeItem(const NSString& path);
    bool copyItem(const NSString& source, const NSString& destination);
    void announceChange(const Class&, const NSString&) const noexcept {}

    /// What all copies take on the disk if each is as large as its original.
    std::uint64_t bytesToCopy() const noexcept { return bytesToCopy_; }

private:
    bool makeFolder(const std::string& path);
    bool mayCopy(const TrialItem& item);
    bool mayCopyWhole(const TrialItem& item, const TrialPlace& target);

    TrialTree tree_;
    std::uint64_t bytesToCopy_ = 0;
};

} // namespace ZQFoundation::zqmigrate

#endif
