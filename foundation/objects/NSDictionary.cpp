// SPDX-License-Identifier: MIT
// Dictionaries and their builders.
#include "foundation/objects/NSDictionary.h"

#include "foundation/objects/KeyTable.h"
#include "foundation/objects/NSException.h"

namespace ZQFoundation {

using detail::Access;
using detail::TableBody;
using detail::tableOf;

namespace {

/// A builder keeps its body without a type, since hosts see the builder but not the layout of a table.
TableBody* tableBody(detail::Body* body) noexcept { return static_cast<TableBody*>(body); }

} // namespace

NSDictionary::NSDictionary(std::initializer_list<NSDictionaryEntry> entries) {
    NSMutableDictionary builder;
    for (const NSDictionaryEntry& entry : entries) {
        // Later entries win, as if set one after another.
        builder.setObject_forKey(entry.value, entry.key);
    }
    *this = builder.dictionary();
}

// The empty dictionary has a body, because a handle without one is nil.
NSDictionary NSDictionary::dictionary() { return Access::adoptDictionary(detail::makeTable(0)); }

std::size_t NSDictionary::count() const noexcept {
    return kind_ == detail::Kind::dictionary ? tableOf(*this)->count : 0;
}

const NSDictionaryEntry* NSDictionary::begin() const noexcept {
    return kind_ == detail::Kind::dictionary ? tableOf(*this)->entries() : nullptr;
}

NSObject NSDictionary::objectForKey(const NSObject& key) const {
    const NSDictionaryEntry* const entry =
        kind_ == detail::Kind::dictionary ? detail::findKey(*tableOf(*this), key) : nullptr;
    return entry != nullptr ? entry->value : NSObject();
}

// The text is hashed and compared as it is, whatever its form, so a literal key needs no string.
NSObject NSDictionary::objectForText(StringView key) const {
    const NSDictionaryEntry* const entry =
        kind_ == detail::Kind::dictionary ? detail::findText(*tableOf(*this), key) : nullptr;
    return entry != nullptr ? entry->value : NSObject();
}

NSArray NSDictionary::allKeys() const {
    NSMutableArray keys(count());
    for (const NSDictionaryEntry& entry : *this) {
        keys.addObject(entry.key);
    }
    // Nil gives nil rather than an empty array.
    return *this ? keys.array() : NSArray();
}

NSArray NSDictionary::allValues() const {
    NSMutableArray values(count());
    for (const NSDictionaryEntry& entry : *this) {
        values.addObject(entry.value);
    }
    return *this ? values.array() : NSArray();
}

bool NSDictionary::isEqualToDictionary(const NSDictionary& other) const { return isEqual(other); }

NSMutableDictionary::NSMutableDictionary(const NSDictionary& dictionary)
    : body_(dictionary ? detail::copyTable(*tableOf(dictionary), dictionary.count()) : nullptr) {}

// The other builder is emptied first, so that assigning a builder to itself keeps its entries.
NSMutableDictionary& NSMutableDictionary::operator=(NSMutableDictionary&& other) noexcept {
    detail::Body* const taken = other.body_;
    other.body_ = nullptr;
    detail::freeTable(tableBody(body_));
    body_ = taken;
    return *this;
}

NSMutableDictionary::~NSMutableDictionary() { detail::freeTable(tableBody(body_)); }

// Both arguments are handles of our own, which move into the table.
void NSMutableDictionary::setObject_forKey(NSObject object, NSObject key) {
    if (!object || !key) {
        NSException::raise_format(NSInvalidArgumentException, "a dictionary cannot hold a nil %s",
                                  object ? "key" : "object");
    }
    body_ = detail::setEntry(tableBody(body_), static_cast<NSObject&&>(key), static_cast<NSObject&&>(object));
}

void NSMutableDictionary::removeObjectForKey(const NSObject& key) {
    if (body_ != nullptr) {
        detail::removeKey(*tableBody(body_), key);
    }
}

NSObject NSMutableDictionary::objectForKey(const NSObject& key) const {
    const NSDictionaryEntry* const entry =
        body_ != nullptr ? detail::findKey(*tableBody(body_), key) : nullptr;
    return entry != nullptr ? entry->value : NSObject();
}

std::size_t NSMutableDictionary::count() const noexcept {
    return body_ != nullptr ? tableBody(body_)->count : 0;
}

// Sealing closes the gaps that removed keys have left, so that the entries of a dictionary are contiguous.
NSDictionary NSMutableDictionary::dictionary() {
    TableBody* const table = detail::sealTable(tableBody(body_));
    body_ = nullptr;
    return Access::adoptDictionary(table);
}

} // namespace ZQFoundation
