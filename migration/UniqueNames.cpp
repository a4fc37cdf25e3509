// SPDX-License-Identifier: MIT
// Makes unique paths, dictionary keys and members of sets: name, intermediate string, counter.
#include "foundation/files/NSFileManager.h"
#include "foundation/objects/NSSet.h"
#include "migration/FreePath.h"
#include "migration/ZQFileMigrator.h"

namespace ZQFoundation {

namespace {

/// "Name 1", "Name1" without an intermediate string. No extension: keys and texts have none.
NSString numberedName(StringView name, StringView intermediateString, std::int64_t counter) {
    return NSString::stringWithFormat("%@%@%ld", name,
                                      intermediateString ? intermediateString : StringView(""), counter);
}

} // namespace

NSString ZQFileMigrator::uniquePathForPath_usingIntermediateString(const NSString& path,
                                                                   StringView intermediateString) {
    return uniquePathForPath_usingIntermediateString_maxAttempts(path, intermediateString,
                                                                 detail::defaultAttempts);
}

// Links are followed, so a dangling link counts as a free path here, unlike in a migration.
NSString ZQFileMigrator::uniquePathForPath_usingIntermediateString_maxAttempts(const NSString& path,
                                                                               StringView intermediateString,
                                                                               std::uint64_t maxAttempts) {
    const NSFileManager& files = NSFileManager::defaultManager();
    return detail::freePath(path, intermediateString, maxAttempts,
                            [&](const NSString& candidate) { return !files.fileExistsAtPath(candidate); });
}

NSString NSDictionary::uniqueKeyForKey_usingIntermediateString(const NSString& key,
                                                               StringView intermediateString) const {
    return uniqueKeyForKey_usingIntermediateString_maxAttempts(key, intermediateString,
                                                               detail::defaultAttempts);
}

NSString NSDictionary::uniqueKeyForKey_usingIntermediateString_maxAttempts(const NSString& key, StringView,
                                                                           std::uint64_t) const {
    // Every attempt checks the wanted key itself, not a candidate, so a key that is taken stays taken: no
    // candidate has to be made.
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
    return detail::firstFree(maxAttempts, candidate, isFree);
}

} // namespace ZQFoundation
