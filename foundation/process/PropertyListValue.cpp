// SPDX-License-Identifier: MIT
// Checks whether a property list can hold a value.
// With an explicit list, because values may be nested deeply, and shared parts are visited once.
#include "foundation/process/PropertyListValue.h"

#include <unordered_set>
#include <vector>

#include "foundation/objects/Bodies.h"

namespace ZQFoundation::detail {

namespace {

/// Collects the collections still to be examined, each once.
class Walk {
public:
    /// False if no property list can hold a value of this kind.
    bool admit(const NSObject& value) {
        switch (Access::kind(value)) {
        case Kind::boolean:
        case Kind::signedInteger:
        case Kind::unsignedInteger:
        case Kind::real:
        case Kind::singleReal:
        case Kind::date:
        case Kind::string:
        case Kind::data:
            return true;
        case Kind::array:
        case Kind::dictionary:
            if (seen_.insert(Access::body(value)).second) {
                waiting_.push_back(value);
            }
            return true;
        default:
            return false;
        }
    }

    bool next(NSObject& collection) {
        if (waiting_.empty()) {
            return false;
        }
        collection = waiting_.back();
        waiting_.pop_back();
        return true;
    }

private:
    std::vector<NSObject> waiting_;
    std::unordered_set<const Body*> seen_;
};

bool admitArray(Walk& walk, const NSArray& array) {
    for (const NSObject& element : array) {
        if (!walk.admit(element)) {
            return false;
        }
    }
    return true;
}

bool admitDictionary(Walk& walk, const NSDictionary& dictionary) {
    for (const NSDictionaryEntry& entry : dictionary) {
        // Keys of other types have no text to be written as.
        if (!entry.key.as<NSString>() || !walk.admit(entry.value)) {
            return false;
        }
    }
    return true;
}

} // namespace

bool isPropertyListValue(const NSObject& value) {
    Walk walk;
    if (!walk.admit(value)) {
        return false;
    }
    NSObject collection;
    while (walk.next(collection)) {
        const bool fits = Access::kind(collection) == Kind::array
                              ? admitArray(walk, NSArray(collection))
                              : admitDictionary(walk, NSDictionary(collection));
        if (!fits) {
            return false;
        }
    }
    return true;
}

} // namespace ZQFoundation::detail
