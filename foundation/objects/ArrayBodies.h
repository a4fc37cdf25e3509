// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_OBJECTS_ARRAYBODIES_H
#define ZQFOUNDATION_OBJECTS_ARRAYBODIES_H

#include "foundation/objects/Bodies.h"

namespace ZQFoundation::detail {

/// An array body without elements, to be filled in by the caller.
ArrayBody* allocateArray(std::size_t capacity);

/// The elements in a body of that capacity, the old one freed; null is an empty array.
ArrayBody* resizedArray(ArrayBody* old, std::size_t capacity);

/// A body with room for one more element: the old one, or a larger one that replaces it.
inline ArrayBody* withRoom(ArrayBody* body) {
    if (body == nullptr || body->count == body->capacity) [[unlikely]] {
        return resizedArray(body, body != nullptr ? body->capacity * 2 + 4 : 4);
    }
    return body;
}

/// The finished array, which takes the body over; null is an empty array.
NSArray arrayOf(ArrayBody* body);

/// Frees a body that did not become an array; null is ignored.
void freeArray(ArrayBody* body) noexcept;

} // namespace ZQFoundation::detail

#endif
