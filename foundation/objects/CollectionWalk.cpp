// SPDX-License-Identifier: MIT
// Walks nested collections that are to be written.
#include "foundation/objects/CollectionWalk.h"

#include "foundation/objects/KeyTable.h"

namespace ZQFoundation::detail {

/// Parts are numbered as they are written. A dictionary has two for each entry, the key before its value; the
/// members of a set are the keys of its table.
const NSObject& CollectionWalk::Level::part(std::size_t index) const noexcept {
    if (elements != nullptr) {
        return elements[index];
    }
    if (!isDictionary) {
        return entries[index]->key;
    }
    return index % 2 == 0 ? entries[index / 2]->key : entries[index / 2]->value;
}

/// The levels are a stack in memory, one for each open collection, so that the depth of a value is limited by
/// memory alone and not by the stack of the thread.
bool CollectionWalk::next() {
    if (!isStarted_) {
        isStarted_ = true;
        return enter(*value_);
    }
    if (levels_.empty()) {
        return false;
    }
    Level& level = levels_.back();
    if (level.next == level.count) {
        return leave();
    }
    const std::size_t index = level.next++;
    isFirst_ = index == 0;
    role_ = !level.isDictionary ? Role::element : index % 2 == 0 ? Role::key : Role::value;
    return enter(level.part(index));
}

bool CollectionWalk::enter(const NSObject& value) {
    const Kind kind = Access::kind(value);
    value_ = &value;
    if (kind == Kind::array || kind == Kind::dictionary || (kind == Kind::set && sets_ == Sets::entered)) {
        event_ = Event::open;
        open(value);
    } else {
        event_ = Event::leaf;
    }
    return true;
}

/// Remembers role and place of the collection itself, which are needed again when it ends. Entries are sorted
/// here, once: the walk only goes forward.
void CollectionWalk::open(const NSObject& collection) {
    const Kind kind = Access::kind(collection);
    Level level{&collection, isFirst_, role_, kind == Kind::dictionary, 0, 0, nullptr, {}};
    if (kind == Kind::array) {
        ArrayBody& body = *Access::array(collection);
        level.elements = body.elements();
        level.count = body.count;
    } else if (kind == Kind::dictionary) {
        level.entries = entriesInOrder(collection, [this](const NSString& left, const NSString& right) {
            return (left.*order_)(right) == NSOrderedAscending;
        });
        level.count = level.entries.size() * 2;
    } else {
        TableBody& table = *tableOf(collection);
        level.count = table.count;
        for (std::size_t i = 0; i < table.count; ++i) {
            level.entries.push_back(table.entries() + i);
        }
    }
    isEmpty_ = level.count == 0;
    levels_.push_back(std::move(level));
}

bool CollectionWalk::leave() {
    const Level& level = levels_.back();
    event_ = Event::close;
    value_ = level.collection;
    role_ = level.role;
    isFirst_ = level.isFirst;
    isEmpty_ = level.count == 0;
    levels_.pop_back();
    return true;
}

const NSObject* CollectionWalk::keyAt(std::size_t level) const noexcept {
    const Level& place = levels_[level];
    return place.isDictionary ? &place.entries[indexAt(level) / 2]->key : nullptr;
}

} // namespace ZQFoundation::detail
