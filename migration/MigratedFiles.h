// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_MIGRATION_MIGRATEDFILES_H
#define ZQFOUNDATION_MIGRATION_MIGRATEDFILES_H

#include "foundation/files/ItemPlace.h"
#include "foundation/files/TreeWalk.h"
#include "foundation/objects/NSString.h"

namespace ZQFoundation::detail {

/// The items of a tree that a batch is concerned with, one after the other:
///
///     while (files.nextItem()) {
///         if (files.isFile()) ... // files.relativePath(), files.place()
///     }
///
/// What the last step gave may be removed before the next.
class MigratedFiles : private TreeWalk {
public:
    /// Nil and "" as extension stand for every file. `recovers`: finishes in each folder what an ended
    /// process has left there, before it is read.
    MigratedFiles(Descriptor start, const NSString& extension, bool includeDotFiles, bool recovers)
        : TreeWalk(std::move(start)), extension_(extension), includeDotFiles_(includeDotFiles),
          recovers_(recovers) {}

    bool nextItem();

    /// What a link leads to; false where the item is no link, or a dangling one.
    bool getLinkTarget(struct stat& target) const noexcept;

    /// Once for each item, as the answer may depend on the one before.
    bool isFile() noexcept;

    NSString relativePath() const {
        return NSString::stringWithFileSystemBytes(path().data(), path().size());
    }

    /// Of the folder that holds the item, relative to the start; "" for that.
    std::string folderPath() const { return path().substr(0, folderLength()); }

    /// False with `errno` when there is no descriptor for its folder.
    bool getPlace(ItemPlace& place);

    using TreeWalk::isIncomplete;

private:
    bool willRead(int folder) override;
    bool isWanted();

    NSString extension_;
    bool includeDotFiles_;
    bool recovers_;
    // Not reset between items: one at which nothing is found counts as what the item before it was.
    bool isDirectory_ = false;
    SharedFolder shared_; ///< the folder of the last item, for places that outlive the step
    struct stat sharedInformation_ {};
};

} // namespace ZQFoundation::detail

#endif
