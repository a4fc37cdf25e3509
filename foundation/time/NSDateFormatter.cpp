// SPDX-License-Identifier: MIT
// Writes dates by a pattern.
#include "foundation/time/NSDateFormatter.h"

#include "foundation/time/DatePattern.h"

namespace ZQFoundation {

NSString NSDateFormatter::stringFromDate(const NSDate& date) const {
    const double seconds = date.timeIntervalSince1970();
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
