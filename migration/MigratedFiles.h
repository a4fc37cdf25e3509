// SPDX-License-Identifier: MIT
// Internal: not installed.
// Declares the selection of a batch's files from a tree.
#ifndef ZQFOUNDATION_MIGRATION_MIGRATEDFILES_H
#define ZQFOUNDATION_MIGRATION_MIGRATEDFILES_H

#include "foundation/files/ItemPlace.h"
#include "foundation/files/TreeWalk.h"
#include "foundation/objects/NSString.h"

namespace ZQFoundation::detail {

/// Enumerates the items of a tree for a batch:
///
///     while (files.nextItem()) {
///         if (files.isFile()) ... // files.relativePath(), files.place()
///     }
///
/// The last item returned may be removed before the next step.
class MigratedFiles : private TreeWalk {
public:
    /// Nil and "" as extension mean every file. `recovers`: recovers in each folder what a killed process has
    /// left there, before it is read.
    MigratedFiles(Descriptor start, const NSString& extension, bool includeDotFiles, bool recovers)
        : TreeWalk(std::move(start)), extension_(extension), includeDotFiles_(includeDotFiles),
          recovers_(recovers) {}

    bool nextItem();

    /// The target of a link; false if the item is not a link, or a dangling one.
    bool getLinkTarget(struct stat& target) const noexcept;

    /// Call it once for each item, because the result may depend on the item before.
    bool isFile() noexcept;

    NSString relativePath() const {
        return NSString::stringWithFileSystemBytes(path().data(), path().size());
    }

    /// The path of the folder that contains the item, relative to the start; "" for the start itself.
    std::string folderPath() const { return path().substr(0, folderLength()); }

    /// False with `errno` if its folder cannot be opened.
    bool getPlace(ItemPlace& place);

    using TreeWalk::isIncomplete;

private:
    bool willRead(int folder) override;
    bool isWanted();

    NSString extension_;
    bool includeDotFiles_;
    bool recovers_;
    // Not reset between items: a dangling link is deliberately treated like the item before it.
    bool isDirectory_ = false;
    SharedFolder shared_; ///< the folder of the last item, for places that outlive the step
    struct stat sharedInformation_ {};
};

} // namespace ZQFoundation::detail

#endif
