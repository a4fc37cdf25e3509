// SPDX-License-Identifier: MIT
// Sets of values.
// A set is a table whose values are all the same.
#include "foundation/objects/NSSet.h"

#include "foundation/objects/KeyTable.h"
#include "foundation/objects/NSException.h"

namespace ZQFoundation {

using detail::Access;
using detail::TableBody;
using detail::tableOf;

namespace {

/// Frees an unfinished table when a member turns out to be nil.
struct TableOwner {
    TableBody* table = nullptr;
    ~TableOwner() { detail::freeTable(table); }
};

TableBody* tableWith(const NSObject* members, std::size_t count) {
    TableOwner owner;
    for (std::size_t i = 0; i < count; ++i) {
        if (!members[i]) {
            NSException::raise_format(NSInvalidArgumentException, "a set cannot hold nil");
        }
        // The first of equal members stays.
        if (owner.table == nullptr || detail::findKey(*owner.table, members[i]) == nullptr) {
            owner.table = detail::setEntry(owner.table, members[i], NSNull::null());
        }
    }
    TableBody* const sealed = detail::sealTable(owner.table);
    owner.table = nullptr;
    return sealed;
}

} // namespace

NSSet::NSSet(std::initializer_list<NSObject> members)
    : NSSet(Payload{.body = tableWith(members.begin(), members.size())}) {}

NSSet NSSet::set() { return Access::adoptSet(detail::makeTable(0)); }

NSSet NSSet::setWithArray(const NSArray& array) {
    return Access::adoptSet(tableWith(array.begin(), array.count()));
}

std::size_t NSSet::count() const noexcept { return kind_ == detail::Kind::set ? tableOf(*this)->count : 0; }

detail::SetIterator NSSet::begin() const noexcept {
    return detail::SetIterator(kind_ == detail::Kind::set ? tableOf(*this)->entries() : nullptr);
}

detail::SetIterator NSSet::end() const noexcept {
    return detail::SetIterator(kind_ == detail::Kind::set ? tableOf(*this)->entries() + count() : nullptr);
}

bool NSSet::containsObject(const NSObject& object) const {
    return kind_ == detail::Kind::set && detail::findKey(*tableOf(*this), object) != nullptr;
}

NSObject NSSet::member(const NSObject& object) const {
    const NSDictionaryEntry* const entry =
        kind_ == detail::Kind::set ? detail::findKey(*tableOf(*this), object) : nullptr;
    return entry != nullptr ? entry->key : NSObject();
}

NSArray NSSet::allObjects() const {
    NSMutableArray members(count());
    for (std::size_t i = 0; i < count(); ++i) {
        // A finished table has no holes, so its entries are the members.
        members.addObject(tableOf(*this)->entries()[i].key);
    }
    return *this ? members.array() : NSArray();
}

bool NSSet::isEqualToSet(const NSSet& other) const { return isEqual(other); }

} // namespace ZQFoundation
