// SPDX-License-Identifier: MIT
// Writes dates by a pattern.
// A formatter keeps its pattern; all that depends on the date is in DatePattern.
#include "foundation/time/NSDateFormatter.h"

#include "foundation/time/DatePattern.h"

namespace ZQFoundation {

NSString NSDateFormatter::stringFromDate(const NSDate& date) const {
    const double seconds = date.timeIntervalSince1970();
    // Beyond 64 bits of seconds there is no calendar date. Not-a-number fails both comparisons.
    if (!date || !(seconds >= -0x1p63 && seconds < 0x1p63)) {
        return nullptr;
    }
    if (!dateFormat_) {
        return NSString::string();
    }
    const detail::LocalDate local(detail::roundedToMilliseconds(seconds), timeZone());
    detail::TextBuilder text;
    detail::appendDate(text, StringView(dateFormat_), local);
    return text.string();
}

} // namespace ZQFoundation
