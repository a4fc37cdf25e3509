// SPDX-License-Identifier: MIT
// Arrays and their builders.
// A builder and an array have the same body: finishing a builder hands the body over.
#include "foundation/objects/NSArray.h"

#include <cstring>
#include <new>
#include <vector>

#include "foundation/objects/ArrayBodies.h"
#include "foundation/objects/MergeSort.h"
#include "foundation/objects/NSException.h"
#include "foundation/objects/TextBuilder.h"

namespace ZQFoundation {

using detail::Access;
using detail::allocateArray;
using detail::ArrayBody;
using detail::freeArray;

} // namespace ZQFoundation

namespace ZQFoundation::detail {

/// Room for the elements, none of which exists yet. The bound keeps the number of bytes from overflowing.
ArrayBody* allocateArray(std::size_t capacity) {
    if (capacity > (SIZE_MAX >> 6)) {
        throw std::bad_alloc();
    }
    auto* const body =
        static_cast<ArrayBody*>(::operator new(sizeof(ArrayBody) + capacity * sizeof(NSObject)));
    body->references = 1;
    body->count = 0;
    body->capacity = capacity;
    body->structuralHash = 0;
    return body;
}

/// Moves the elements over without touching their reference counts.
/// Handles may be moved as bytes: they do not refer to themselves.
ArrayBody* resizedArray(ArrayBody* old, std::size_t capacity) {
    ArrayBody* const body = allocateArray(capacity);
    if (old != nullptr) {
        std::memcpy(static_cast<void*>(body->elements()), old->elements(), old->count * sizeof(NSObject));
        body->count = old->count;
        ::operator delete(old);
    }
    return body;
}

/// Builders grow by doubling, so a large one may be half empty: then the array gets a body of its own size.
/// A builder that nothing was added to has no body, but its array is the empty one and not nil.
NSArray arrayOf(ArrayBody* body) {
    if (body == nullptr || (body->capacity > 64 && body->count * 2 < body->capacity)) {
        body = resizedArray(body, body != nullptr ? body->count : 0);
    }
    return Access::adoptArray(body);
}

/// For builders alone. Bodies of arrays are released by `destroy`, which needs no stack for nested ones; here
/// each element is released like any other handle.
void freeArray(ArrayBody* body) noexcept {
    if (body == nullptr) {
        return;
    }
    for (std::size_t i = 0; i < body->count; ++i) {
        body->elements()[i].~NSObject();
    }
    ::operator delete(body);
}

} // namespace ZQFoundation::detail

namespace ZQFoundation {

namespace {

ArrayBody* arrayBody(detail::Body* body) noexcept { return static_cast<ArrayBody*>(body); }

/// All elements are checked before anything is allocated, so a nil one leaks nothing.
ArrayBody* copied(const NSObject* objects, std::size_t count, std::size_t capacity) {
    for (std::size_t i = 0; i < count; ++i) {
        if (!objects[i]) {
            NSException::raise_format(NSInvalidArgumentException, "an array cannot hold nil (at index %lu)",
                                      i);
        }
    }
    ArrayBody* const body = allocateArray(capacity);
    for (std::size_t i = 0; i < count; ++i) {
        new (body->elements() + i) NSObject(objects[i]);
    }
    body->count = count;
    return body;
}

[[noreturn]] void raiseRange(std::size_t index, std::size_t count) {
    NSException::raise_format(NSRangeException, "index %lu beyond an array of %lu elements", index, count);
}

} // namespace

NSArray::NSArray(std::initializer_list<NSObject> elements)
    : NSArray(Payload{.body = copied(elements.begin(), elements.size(), elements.size())}) {}

// An empty array needs a body, because a handle without one is nil.
NSArray NSArray::array() { return Access::adoptArray(allocateArray(0)); }

NSArray NSArray::arrayWithObject(const NSObject& object) { return arrayWithObjects_count(&object, 1); }

NSArray NSArray::arrayWithObjects_count(const NSObject* objects, std::size_t count) {
    return Access::adoptArray(copied(objects, count, count));
}

// The kind is checked instead of nil: a plain NSObject reference to this handle may have been assigned
// another kind of value.
std::size_t NSArray::count() const noexcept {
    return kind_ == detail::Kind::array ? Access::array(*this)->count : 0;
}

const NSObject* NSArray::begin() const noexcept {
    return kind_ == detail::Kind::array ? Access::array(*this)->elements() : nullptr;
}

const NSObject& NSArray::objectAtIndex(std::size_t index) const {
    // A reference is returned, so nil needs an object that lives forever.
    static constinit const NSObject absent;
    if (kind_ != detail::Kind::array) {
        return absent;
    }
    if (index >= count()) {
        raiseRange(index, count());
    }
    return begin()[index];
}

bool NSArray::containsObject(const NSObject& object) const { return indexOfObject(object) != notFound; }

// One element after another: an array has no index of its contents. For many questions make a set.
std::size_t NSArray::indexOfObject(const NSObject& object) const {
    for (std::size_t i = 0; i < count(); ++i) {
        if (begin()[i].isEqual(object)) {
            return i;
        }
    }
    return notFound;
}

NSArray NSArray::arrayByAddingObject(const NSObject& object) const {
    if (!*this) {
        return {};
    }
    NSMutableArray builder(count() + 1);
    builder.addObjectsFromArray(*this);
    builder.addObject(object);
    return builder.array();
}

// A nil separator is an empty one. Elements that are collections are described over several lines.
NSString NSArray::componentsJoinedByString(StringView separator) const {
    if (!*this) {
        return {};
    }
    detail::TextBuilder builder;
    for (std::size_t i = 0; i < count(); ++i) {
        if (i != 0) {
            builder.append(separator);
        }
        builder.append(begin()[i].description());
    }
    return builder.string();
}

NSArray NSArray::sorted(ErasedOrder order, const void* context) const {
    if (!*this) {
        return {};
    }
    // Pointers are sorted, not handles: no reference counts change.
    std::vector<const NSObject*> inOrder(count());
    for (std::size_t i = 0; i < inOrder.size(); ++i) {
        inOrder[i] = begin() + i;
    }
    detail::mergeSort(inOrder, [&](const NSObject* left, const NSObject* right) {
        return order(context, *left, *right) < 0;
    });
    NSMutableArray builder(inOrder.size());
    for (const NSObject* object : inOrder) {
        builder.addObject(*object);
    }
    return builder.array();
}

bool NSArray::isEqualToArray(const NSArray& other) const { return isEqual(other); }

NSMutableArray::NSMutableArray(std::size_t capacity) : body_(allocateArray(capacity)) {}

NSMutableArray::NSMutableArray(const NSArray& array)
    : body_(copied(array.begin(), array.count(), array.count())) {}

NSMutableArray& NSMutableArray::operator=(NSMutableArray&& other) noexcept {
    detail::Body* const taken = other.body_;
    // First emptied, so that assigning a builder to itself keeps its elements.
    other.body_ = nullptr;
    freeArray(arrayBody(body_));
    body_ = taken;
    return *this;
}

NSMutableArray::~NSMutableArray() { freeArray(arrayBody(body_)); }

std::size_t NSMutableArray::count() const noexcept { return body_ != nullptr ? arrayBody(body_)->count : 0; }

const NSObject* NSMutableArray::begin() const noexcept {
    return body_ != nullptr ? arrayBody(body_)->elements() : nullptr;
}

void NSMutableArray::addObject(NSObject object) {
    if (!object) {
        NSException::raise_format(NSInvalidArgumentException, "an array cannot hold nil");
    }
    ArrayBody* const body = detail::withRoom(arrayBody(body_));
    body_ = body;
    new (body->elements() + body->count) NSObject(static_cast<NSObject&&>(object));
    ++body->count;
}

// Elements of an array are never nil, so only a lack of memory can stop this.
void NSMutableArray::addObjectsFromArray(const NSArray& array) {
    for (const NSObject& object : array) {
        addObject(object);
    }
}

void NSMutableArray::removeObjectAtIndex(std::size_t index) {
    if (index >= count()) {
        raiseRange(index, count());
    }
    ArrayBody* const body = arrayBody(body_);
    // Released after the array is consistent again, since releasing may run a host's code.
    const NSObject removed = static_cast<NSObject&&>(body->elements()[index]);
    std::memmove(static_cast<void*>(body->elements() + index), body->elements() + index + 1,
                 (body->count - index - 1) * sizeof(NSObject));
    --body->count;
}

void NSMutableArray::replaceObjectAtIndex_withObject(std::size_t index, NSObject object) {
    if (index >= count()) {
        raiseRange(index, count());
    }
    if (!object) {
        NSException::raise_format(NSInvalidArgumentException, "an array cannot hold nil");
    }
    // The old element is released when the argument goes out of scope, after the exchange.
    arrayBody(body_)->elements()[index].swap(object);
}

void NSMutableArray::removeLastObject() {
    if (count() == 0) {
        raiseRange(0, 0);
    }
    removeObjectAtIndex(count() - 1);
}

const NSObject& NSMutableArray::objectAtIndex(std::size_t index) const {
    if (index >= count()) {
        raiseRange(index, count());
    }
    return begin()[index];
}

// The builder lets go of the body first: whatever happens then, two owners never free it.
NSArray NSMutableArray::array() {
    ArrayBody* const body = arrayBody(body_);
    body_ = nullptr;
    return detail::arrayOf(body);
}

} // namespace ZQFoundation
