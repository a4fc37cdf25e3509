// SPDX-License-Identifier: MIT
// Internal: not installed.
// Declares the folder that items are migrated to.
#ifndef ZQFOUNDATION_MIGRATION_DESTINATIONFOLDER_H
#define ZQFOUNDATION_MIGRATION_DESTINATIONFOLDER_H

#include <sys/stat.h>

#include "foundation/files/ItemPlace.h"
#include "foundation/objects/NSString.h"

namespace ZQFoundation::detail {

/// The folder that items are migrated to. It is looked up by its path once; from then on it is the same
/// folder, even if another one takes its place.
class DestinationFolder {
public:
    /// `recovers`: when the folder is found, recovers what a killed process has left in it.
    DestinationFolder(const NSString& path, bool recovers) : path_(path), recovers_(recovers) {}

    enum class State {
        missing,
        notFolder,
        found,
        failed, ///< it cannot be opened, or another folder has taken its place
    };
    /// Finds the folder, or says why it cannot be used. Found once, it is only checked again after `close`.
    State find();

    /// Creates it with all missing parent folders, and finds it.
    bool make();

    const NSString& path() const noexcept { return path_; }

    /// Only after it was found.
    const SharedFolder& folder() const noexcept { return folder_; }

    /// Closes the descriptor until the folder is needed again.
    void close() noexcept { folder_.reset(); }

private:
    NSString path_;
    bool recovers_;
    SharedFolder folder_;
    bool isKnown_ = false;
    struct stat known_ {};
};

} // namespace ZQFoundation::detail

#endif
