// SPDX-License-Identifier: MIT
// Walks a value that is to be written, and refuses what no property list holds.
#include "foundation/plist/ValueWalk.h"

#include <algorithm>

#include "foundation/plist/PropertyListError.h"

namespace ZQFoundation::detail {

namespace {

/// Sets are leaves in this walk, so they are refused here too.
const char* faultOfLeaf(const NSObject& value) noexcept {
    if (!value) {
        return "A property list cannot contain nil";
    }
    if (!NSString(value) && !NSNumber(value) && !NSDate(value) && !NSData(value)) {
        return "A property list contains only strings, numbers, dates, data, arrays and dictionaries";
    }
    return nullptr;
}

/// The depth is limited because other readers use the stack. An array converted to a dictionary is nil, which
/// has no keys.
const char* faultOfCollection(const NSObject& collection, std::size_t depth) {
    if (depth == maxPropertyListDepth) {
        return "The value is nested too deeply for a property list";
    }
    const NSDictionary dictionary(collection);
    const bool hasOtherKey = std::any_of(dictionary.begin(), dictionary.end(),
                                         [](const NSDictionaryEntry& entry) { return !NSString(entry.key); });
    return hasOtherKey ? "A key of a property list's dictionary must be a string" : nullptr;
}

} // namespace

bool ValueWalk::next() {
    if (!CollectionWalk::next()) {
        return false;
    }
    if (event() == Event::leaf) {
        refusal_ = faultOfLeaf(value());
    } else if (event() == Event::open) {
        refusal_ = faultOfCollection(value(), depth());
    }
    return refusal_ == nullptr;
}

} // namespace ZQFoundation::detail
