// SPDX-License-Identifier: MIT
// Internal: not installed.
// Tries numbered names until one is free.
#ifndef ZQFOUNDATION_MIGRATION_FREEPATH_H
#define ZQFOUNDATION_MIGRATION_FREEPATH_H

#include "foundation/objects/NSString.h"

namespace ZQFoundation::detail {

inline constexpr std::uint64_t defaultAttempts = 100000;

/// The first numbered candidate that is free, from 1 to `maxAttempts`; nil if there is none or a candidate is
/// nil.
template <class Candidate, class IsFree>
NSString firstFree(std::uint64_t maxAttempts, const Candidate& candidate, const IsFree& isFree) {
    for (std::uint64_t counter = 1; counter <= maxAttempts; ++counter) {
        NSString name = candidate(static_cast<std::int64_t>(counter));
        if (!name || isFree(name)) {
            return name;
        }
    }
    return nullptr;
}

/// "<stem><intermediate string><counter>.<extension>". The period is added even without an extension.
inline NSString numberedPath(const NSString& stem, StringView intermediateString, std::int64_t counter,
                             const NSString& extension) {
    return NSString::stringWithFormat(
        "%@%@%ld.%@", stem, intermediateString ? intermediateString : StringView(""), counter, extension);
}

/// The path itself if it is free, else the first numbered one that is; nil if none is.
template <class IsFree>
NSString freePath(const NSString& path, StringView intermediateString, std::uint64_t maxAttempts,
                  const IsFree& isFree) {
    if (isFree(path)) {
        return path;
    }
    const NSString stem = path.stringByDeletingPathExtension();
    const NSString extension = path.pathExtension();
    const auto candidate = [&](std::int64_t counter) {
        return numberedPath(stem, intermediateString, counter, extension);
    };
    return firstFree(maxAttempts, candidate, isFree);
}

} // namespace ZQFoundation::detail

#endif
