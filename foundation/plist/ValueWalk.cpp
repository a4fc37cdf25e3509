// SPDX-License-Identifier: MIT
// Walks a value that is to be written, without recursion, and refuses what no property list holds.
// The walk checks what it walks over, so that writers see only values that they can write.
#include "foundation/plist/ValueWalk.h"

#include <algorithm>

#include "foundation/objects/NSData.h"
#include "foundation/objects/NSDate.h"
#include "foundation/objects/NSNumber.h"
#include "foundation/objects/NSString.h"
#include "foundation/plist/PropertyListError.h"

namespace ZQFoundation::detail {

bool ValueWalk::next() {
    if (!isStarted_) {
        isStarted_ = true;
        return enter(*value_);
    }
    if (event_ == Event::key) {
        return enter(*pending_);
    }
    if (levels_.empty()) {
        return false;
    }
    Level& level = levels_.back();
    if (level.next == level.count) {
        return leave();
    }
    // Counted before entering, which may add a level and move this one.
    const std::size_t index = level.next++;
    if (!level.isDictionary) {
        return enter(*(NSArray(*level.container).begin() + index));
    }
    const NSDictionaryEntry& entry = *level.entries[index];
    pending_ = &entry.value;
    value_ = &entry.key;
    event_ = Event::key;
    return true;
}

bool ValueWalk::enter(const NSObject& value) {
    // The checked conversions are nil for any other type.
    if (NSArray(value) || NSDictionary(value)) {
        return open(value);
    }
    if (!value) {
        return refuse("A property list cannot hold nil");
    }
    if (!NSString(value) && !NSNumber(value) && !NSDate(value) && !NSData(value)) {
        return refuse("A property list holds strings, numbers, dates, data, arrays and dictionaries only");
    }
    value_ = &value;
    event_ = Event::scalar;
    return true;
}

bool ValueWalk::open(const NSObject& container) {
    if (levels_.size() == maxPropertyListDepth) {
        return refuse("The value is nested too deeply for a property list");
    }
    const NSArray array(container);
    isArray_ = static_cast<bool>(array);
    if (isArray_) {
        levels_.push_back(Level{&container, false, array.count(), 0, {}});
    } else if (!openDictionary(container)) {
        return false;
    }
    isEmpty_ = levels_.back().count == 0;
    value_ = &container;
    event_ = Event::open;
    return true;
}

bool ValueWalk::openDictionary(const NSObject& container) {
    const NSDictionary dictionary(container);
    std::vector<const NSDictionaryEntry*> entries;
    entries.reserve(dictionary.count());
    for (const NSDictionaryEntry& entry : dictionary) {
        if (!NSString(entry.key)) {
            return refuse("A key of a property list's dictionary must be a string");
        }
        entries.push_back(&entry);
    }
    // Stable, because different keys may compare the same.
    // Sorted once for each dictionary, so that equal values are written alike.
    std::stable_sort(entries.begin(), entries.end(),
                     [](const NSDictionaryEntry* left, const NSDictionaryEntry* right) {
                         return NSString(left->key).compare(NSString(right->key)) == NSOrderedAscending;
                     });
    levels_.push_back(Level{&container, true, entries.size(), 0, std::move(entries)});
    return true;
}

bool ValueWalk::leave() {
    const Level& level = levels_.back();
    value_ = level.container;
    isArray_ = !level.isDictionary;
    isEmpty_ = level.count == 0;
    event_ = Event::close;
    levels_.pop_back();
    return true;
}

bool ValueWalk::refuse(const char* reason) noexcept {
    refusal_ = reason;
    return false;
}

} // namespace ZQFoundation::detail
