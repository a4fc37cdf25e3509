// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PLIST_VALUEWALK_H
#define ZQFOUNDATION_PLIST_VALUEWALK_H

#include "foundation/objects/CollectionWalk.h"

namespace ZQFoundation::detail {

/// A property list's parts in the order in which they are written, the keys ascending by `compare`. Only for
/// values that a property list can hold: strings, numbers, dates, data, and arrays and dictionaries of them,
/// the keys strings, at most `maxPropertyListDepth` levels.
///
///     ValueWalk walk(value);
///     while (walk.next()) { ... walk.event() ... walk.value() ... }
///     if (walk.refusal() != nullptr) { ... }
class ValueWalk : public CollectionWalk {
public:
    /// `root` must outlive the walk.
    explicit ValueWalk(const NSObject& root) noexcept
        : CollectionWalk(root, &NSString::compare, Sets::leaves) {}

    /// Moves to the next event; false at the end and when a part is refused.
    bool next();

    bool isKey() const noexcept { return role() == Role::key; }
    /// Whether the collection of the event is an array.
    bool isArray() const noexcept { return static_cast<bool>(NSArray(value())); }

    /// Why the value is not a property list: a sentence, or null.
    const char* refusal() const noexcept { return refusal_; }

private:
    const char* refusal_ = nullptr;
};

} // namespace ZQFoundation::detail

#endif
