// SPDX-License-Identifier: MIT
// NSArray(ZQFoundation): the operations that the library adds to arrays.
#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSDictionary.h"

namespace ZQFoundation {

bool NSArray::isEmpty() const noexcept { return *this && count() == 0; }

NSObject NSArray::firstObject() const { return count() == 0 ? NSObject() : objectAtIndex(0); }

// Looks each element up in a table of those before it, so the time is linear. The first of equal elements
// stays.
NSMutableArray NSArray::arrayByRemovingDuplicateObjects() const {
    NSMutableArray distinct;
    NSMutableDictionary seen;
    for (const NSObject& object : *this) {
        if (!seen.objectForKey(object)) {
            distinct.addObject(object);
            seen.setObject_forKey(object, object);
        }
    }
    return distinct;
}

NSComparisonResult NSArray::compareCount(const NSArray& other) const noexcept {
    if (!*this || count() == other.count()) {
        return NSOrderedSame;
    }
    return count() > other.count() ? NSOrderedAscending : NSOrderedDescending;
}

} // namespace ZQFoundation
