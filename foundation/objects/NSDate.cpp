// SPDX-License-Identifier: MIT
// Orders and compares dates.
#include "foundation/objects/NSDate.h"

namespace ZQFoundation {

NSComparisonResult NSDate::compare(const NSDate& other) const noexcept {
    // Nil compares as the same, as for any message to nil.
    if (kind_ != detail::Kind::date || other.kind_ != detail::Kind::date ||
        payload_.real == other.payload_.real) {
        return NSOrderedSame;
    }
    return payload_.real < other.payload_.real ? NSOrderedAscending : NSOrderedDescending;
}

bool NSDate::isEqualToDate(const NSDate& other) const noexcept {
    return kind_ == detail::Kind::date && other.kind_ == detail::Kind::date &&
           payload_.real == other.payload_.real;
}

} // namespace ZQFoundation
