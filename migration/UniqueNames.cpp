// SPDX-License-Identifier: MIT
// One naming scheme for paths, dictionary keys and members of sets: name, intermediate string, counter.
#include "foundation/files/NSFileManager.h"
#include "foundation/objects/NSSet.h"
#include "migration/ZQFileMigrator.h"

namespace ZQFoundation {

namespace {

constexpr std::uint64_t defaultAttempts = 100000;

/// "Name 1", "Name1" without an intermediate string.
NSString numberedName(StringView name, StringView intermediateString, std::int64_t counter) {
    return NSString::stringWithFormat("%@%@%ld", name,
                                      intermediateString ? intermediateString : StringView(""), counter);
}

/// The first numbered candidate that is free, from 1 to `maxAttempts`; nil when there is none.
template <class Candidate, class IsFree>
NSString firstFree(std::uint64_t maxAttempts, const Candidate& candidate, const IsFree& isFree) {
    for (std::uint64_t counter = 1; counter <= maxAttempts; ++counter) {
        NSString name = candidate(static_cast<std::int64_t>(counter));
        if (isFree(name)) {
            return name;
        }
    }
    return nullptr;
}

} // namespace

NSString ZQFileMigrator::uniquePathForPath_usingIntermediateString(const NSString& path,
                                                                   StringView intermediateString) {
    return uniquePathForPath_usingIntermediateString_maxAttempts(path, intermediateString, defaultAttempts);
}

NSString ZQFileMigrator::uniquePathForPath_usingIntermediateString_maxAttempts(const NSString& path,
                                                                               StringView intermediateString,
                                                                               std::uint64_t maxAttempts) {
    const NSFileManager& files = NSFileManager::defaultManager();
    const auto isFree = [&](const NSString& candidate) {
        return !files.fileExistsAtPath(candidate);
    };
    if (isFree(path)) {
        return path;
    }
    const NSString stem = path.stringByDeletingPathExtension();
    const NSString extension = path.pathExtension();
    const auto candidate = [&](std::int64_t counter) {
        // The period stands there without an extension too.
        return NSString::stringWithFormat(
            "%@%@%ld.%@", stem, intermediateString ? intermediateString : StringView(""), counter, extension);
    };
    return firstFree(maxAttempts, candidate, isFree);
}

NSString NSDictionary::uniqueKeyForKey_usingIntermediateString(const NSString& key,
                                                               StringView intermediateString) const {
    return uniqueKeyForKey_usingIntermediateString_maxAttempts(key, intermediateString, defaultAttempts);
}

NSString NSDictionary::uniqueKeyForKey_usingIntermediateString_maxAttempts(const NSString& key, StringView,
                                                                           std::uint64_t) const {
    // Every attempt asks for the wanted key itself, not for its candidate, so a taken key stays taken
    // whatever is tried: no candidate has to be made.
    return objectForKey(key) ? NSString() : key;
}

NSString NSSet::uniqueStringForString_usingIntermediateString_maxAttempts(const NSString& string,
                                                                          StringView intermediateString,
                                                                          std::uint64_t maxAttempts) const {
    const auto isFree = [&](const NSString& candidate) {
        return !containsObject(candidate);
    };
    if (isFree(string)) {
        return string;
    }
    const auto candidate = [&](std::int64_t counter) {
        return numberedName(string, intermediateString, counter);
    };
    return firstFree(maxAttempts, candidate, isFree);
}

} // namespace ZQFoundation
