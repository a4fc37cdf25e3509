// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PLIST_VALUEWALK_H
#define ZQFOUNDATION_PLIST_VALUEWALK_H

#include <vector>

#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSDictionary.h"

namespace ZQFoundation::detail {

/// A value's parts in the order in which they are written: arrays by index, dictionaries by key, the keys
/// ascending by `compare`. Without recursion, and only for values that a property list can hold: strings,
/// numbers, dates, data, and arrays and dictionaries of them, the keys strings, at most
/// `maxPropertyListDepth` levels.
///
///     ValueWalk walk(value);
///     while (walk.next()) { ... walk.event() ... walk.value() ... }
///     if (walk.refusal() != nullptr) { ... }
class ValueWalk {
public:
    enum class Event {
        scalar,
        key,   ///< `value()` is the key; the next event is its value's first
        open,  ///< `value()` is the array or dictionary
        close, ///< the same again, after its content
    };

    /// `root` must outlive the walk.
    explicit ValueWalk(const NSObject& root) noexcept : value_(&root) {}

    /// Moves to the next event; false at the end and when a part is refused.
    bool next();

    Event event() const noexcept { return event_; }
    const NSObject& value() const noexcept { return *value_; }

    /// Containers around the value.
    std::size_t depth() const noexcept { return levels_.size(); }
    bool isInDictionary() const noexcept { return !levels_.empty() && levels_.back().isDictionary; }

    /// Whether the container of the event is an array.
    bool isArray() const noexcept { return isArray_; }
    /// Whether it is empty.
    bool isEmpty() const noexcept { return isEmpty_; }

    /// Why the value is no property list: a sentence, or null.
    const char* refusal() const noexcept { return refusal_; }

private:
    struct Level {
        const NSObject* container;
        bool isDictionary;
        std::size_t count;
        std::size_t next;
        std::vector<const NSDictionaryEntry*> entries; ///< sorted; for a dictionary
    };

    bool enter(const NSObject& value);
    bool open(const NSObject& container);
    bool openDictionary(const NSObject& container);
    bool leave();
    bool refuse(const char* reason) noexcept;

    const NSObject* value_;
    Event event_ = Event::scalar;
    bool isStarted_ = false;
    bool isArray_ = false;
    bool isEmpty_ = false;
    const NSObject* pending_ = nullptr; ///< the value of the key just given
    const char* refusal_ = nullptr;
    std::vector<Level> levels_;
};

} // namespace ZQFoundation::detail

#endif
