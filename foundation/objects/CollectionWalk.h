// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_OBJECTS_COLLECTIONWALK_H
#define ZQFOUNDATION_OBJECTS_COLLECTIONWALK_H

#include <vector>

#include "foundation/objects/EntryOrder.h"

namespace ZQFoundation::detail {

/// Nested arrays, dictionaries and sets, part by part in the order in which they are written. Without
/// recursion, so no value can exhaust the thread's stack.
///
///     CollectionWalk walk(value, &NSString::compare);
///     while (walk.next()) { ... walk.event() ... walk.value() ... }
class CollectionWalk {
public:
    enum class Event : unsigned char {
        leaf,  ///< anything but a collection
        open,  ///< `value()` is the collection
        close, ///< the same again, after its members
    };
    enum class Role : unsigned char {
        element, ///< of an array or a set; also what the walk starts with
        key,     ///< followed by its value
        value,
    };
    enum class Sets : unsigned char { entered, leaves };
    using KeyOrder = NSComparisonResult (NSString::*)(StringView) const;

    /// Dictionaries are visited in the order of their keys if all of these are strings, else in order of
    /// insertion. `root` must outlive the walk.
    CollectionWalk(const NSObject& root, KeyOrder order, Sets sets = Sets::entered) noexcept
        : order_(order), sets_(sets), value_(&root) {}

    /// Moves to the next event; false at the end.
    bool next();

    Event event() const noexcept { return event_; }
    Role role() const noexcept { return role_; }
    const NSObject& value() const noexcept { return *value_; }

    /// Collections around the value.
    std::size_t depth() const noexcept { return levels_.size() - (event_ == Event::open ? 1 : 0); }
    /// The one directly around it. Only at a depth above 0.
    const NSObject& collectionAround() const noexcept { return *levels_[depth() - 1].collection; }
    /// Whether the value is the first part of the collection around it.
    bool isFirst() const noexcept { return isFirst_; }
    /// Whether the collection of the event is empty.
    bool isEmpty() const noexcept { return isEmpty_; }

    /// The way to the value: in which part of the collection with `level` collections around it the walk is.
    /// The key is null unless that is a dictionary.
    const NSObject* keyAt(std::size_t level) const noexcept;
    std::size_t indexAt(std::size_t level) const noexcept { return levels_[level].next - 1; }

private:
    struct Level {
        const NSObject* collection;
        bool isFirst; ///< as its role, that of the collection itself
        Role role;
        bool isDictionary;
        std::size_t next;
        std::size_t count; ///< parts; of a dictionary the keys and the values, alternately
        const NSObject* elements;
        std::vector<EntryPointer> entries;

        const NSObject& part(std::size_t index) const noexcept;
    };

    bool enter(const NSObject& value);
    void open(const NSObject& collection);
    bool leave();

    KeyOrder order_;
    Sets sets_;
    Event event_ = Event::leaf;
    Role role_ = Role::element;
    bool isStarted_ = false;
    bool isFirst_ = true;
    bool isEmpty_ = false;
    const NSObject* value_;
    std::vector<Level> levels_;
};

} // namespace ZQFoundation::detail

#endif
