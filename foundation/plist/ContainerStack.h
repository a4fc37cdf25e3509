// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PLIST_CONTAINERSTACK_H
#define ZQFOUNDATION_PLIST_CONTAINERSTACK_H

#include <utility>
#include <vector>

#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSDictionary.h"
#include "foundation/objects/NSString.h"
#include "foundation/plist/PropertyListError.h"

namespace ZQFoundation::detail {

/// The arrays and dictionaries that a reader is inside of. It is on the heap and is bounded, so no text can
/// exhaust the thread's stack.
class ContainerStack {
public:
    bool isEmpty() const noexcept { return open_.empty(); }
    std::size_t depth() const noexcept { return open_.size(); }
    bool isInDictionary() const noexcept { return open_.back().isDictionary; }

    /// Opens one more level; false at the max depth.
    [[nodiscard]] bool openArray() { return openLevel(false); }
    [[nodiscard]] bool openDictionary() { return openLevel(true); }

    /// The key of the next value. Only in a dictionary.
    void setKey(NSString key) noexcept { open_.back().key = std::move(key); }

    /// Adds to the innermost container; of equal keys, the last value is kept.
    void add(NSObject value) {
        Level& level = open_.back();
        if (level.isDictionary) {
            level.dictionary.setObject_forKey(std::move(value), std::move(level.key));
        } else {
            level.array.addObject(std::move(value));
        }
    }

    /// Removes the innermost container and returns it, finished.
    NSObject close() {
        Level& level = open_.back();
        NSObject finished;
        if (level.isDictionary) {
            finished = level.dictionary.dictionary();
        } else {
            finished = level.array.array();
        }
        open_.pop_back();
        return finished;
    }

private:
    struct Level {
        bool isDictionary;
        NSMutableArray array;
        NSMutableDictionary dictionary;
        NSString key;
    };

    bool openLevel(bool isDictionary) {
        if (open_.size() == maxPropertyListDepth) {
            return false;
        }
        open_.push_back(Level{isDictionary, {}, {}, {}});
        return true;
    }

    std::vector<Level> open_;
};

} // namespace ZQFoundation::detail

#endif
