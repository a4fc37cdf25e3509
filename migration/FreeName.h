// SPDX-License-Identifier: MIT
// Internal: not installed.
// Finds free names for items in a folder.
#ifndef ZQFOUNDATION_MIGRATION_FREENAME_H
#define ZQFOUNDATION_MIGRATION_FREENAME_H

#include <string>

#include "migration/FreePath.h"

namespace ZQFoundation::detail {

/// "<stem> <counter>.<extension>" for the name of an item. If that is too long for a name, the stem loses
/// whole characters at its end; nil if it does not have enough of them.
NSString numberedName(const NSString& stem, std::int64_t counter, const NSString& extension);

/// The first numbered variant of a name for which `isFree(bytes)` is true; nil if there is none.
template <class IsFree>
NSString freeName(const NSString& name, const IsFree& isFree) {
    const NSString stem = name.stringByDeletingPathExtension();
    const NSString extension = name.pathExtension();
    std::string bytes;
    return firstFree(
        defaultAttempts, [&](std::int64_t counter) { return numberedName(stem, counter, extension); },
        [&](const NSString& candidate) {
            return candidate.getFileSystemBytes(bytes) && isFree(static_cast<const std::string&>(bytes));
        });
}

} // namespace ZQFoundation::detail

#endif
