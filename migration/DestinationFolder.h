// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_MIGRATION_DESTINATIONFOLDER_H
#define ZQFOUNDATION_MIGRATION_DESTINATIONFOLDER_H

#include <sys/stat.h>

#include "foundation/files/ItemPlace.h"
#include "foundation/objects/NSString.h"

namespace ZQFoundation::detail {

/// The folder that migrated items are to be in: found by its path once, from then on the same one, whatever
/// takes its place.
class DestinationFolder {
public:
    /// `recovers`: finishes what an ended process has left there, when the folder is found.
    DestinationFolder(const NSString& path, bool recovers) : path_(path), recovers_(recovers) {}

    enum class State {
        missing,
        notFolder,
        found,
        failed, ///< no descriptor for it, or another folder has taken its place
    };
    State find();

    /// Makes it with all missing folders above it, and finds it.
    bool make();

    const NSString& path() const noexcept { return path_; }

    /// After it was found.
    const SharedFolder& folder() const noexcept { return folder_; }

    /// Gives the descriptor back until the folder is asked for again.
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
