// SPDX-License-Identifier: MIT
// The brackets, separators and indentation of collections as text.
#include "foundation/objects/CollectionLayout.h"

namespace ZQFoundation::detail {

using Event = CollectionWalk::Event;
using Role = CollectionWalk::Role;

CollectionLayout::Lead CollectionLayout::leadOf(const CollectionWalk& walk) const noexcept {
    const std::string_view text = separatorOf(walk);
    return {text, text.ends_with('\n') ? walk.depth() * indentation : 0};
}

std::string_view CollectionLayout::bracketOf(const CollectionWalk& walk) const noexcept {
    const Brackets& brackets = bracketsOf(walk.value());
    return walk.event() == Event::open ? brackets.open : brackets.close;
}

const CollectionLayout::Brackets& CollectionLayout::bracketsOf(const NSObject& collection) const noexcept {
    const Kind kind = Access::kind(collection);
    return kind == Kind::array ? array : kind == Kind::dictionary ? dictionary : set;
}

/// What is written before the event: nothing at the top, " = " before a value of a dictionary, else the text
/// before the first part of a collection or before a further one.
std::string_view CollectionLayout::separatorOf(const CollectionWalk& walk) const noexcept {
    if (walk.event() == Event::close) {
        const Brackets& brackets = bracketsOf(walk.value());
        return walk.isEmpty() ? brackets.none : brackets.last;
    }
    if (walk.depth() == 0) {
        return "";
    }
    if (walk.role() == Role::value) {
        return assignment;
    }
    const Brackets& around = bracketsOf(walk.collectionAround());
    return walk.isFirst() ? around.first : around.next;
}

} // namespace ZQFoundation::detail
