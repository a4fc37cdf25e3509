// SPDX-License-Identifier: MIT
// NSNumber(ZQFoundation): parity, comparisons, steps, and durations as a clock shows them.
#include "foundation/objects/NSNumber.h"

#include "foundation/objects/NSString.h"
#include "foundation/objects/StringBodies.h"
#include "foundation/text/Digits.h"
#include "foundation/text/NumberText.h"

namespace ZQFoundation {

namespace {

/// Adds to the 32-bit value with wrap-around, which is defined only for unsigned numbers.
NSNumber stepped(const NSNumber& number, unsigned step) noexcept {
    return number ? NSNumber(static_cast<int>(number.unsignedIntValue() + step)) : NSNumber();
}

/// ":05". The value is below 60.
char* appendTwoDigits(unsigned value, char* out) noexcept {
    *out++ = ':';
    return detail::writeDigits<2>(value, out);
}

int shownFields(unsigned seconds, std::int64_t fieldCount, bool suppressZeroes) noexcept {
    if (fieldCount >= 3 && (!suppressZeroes || seconds >= 3600)) {
        return 3;
    }
    // The minutes within the hour decide, not the total minutes: an hour and five seconds in at most two
    // fields are "05".
    return fieldCount >= 2 && (!suppressZeroes || seconds % 3600 >= 60) ? 2 : 1;
}

} // namespace

// Of the integer form: the fraction is cut first, so 2.9 is even.
bool NSNumber::isEven() const noexcept { return *this && (unsignedIntValue() & 1) == 0; }
bool NSNumber::isOdd() const noexcept { return *this && (unsignedIntValue() & 1) != 0; }

bool NSNumber::isLargerThan(const NSNumber& other) const noexcept {
    return *this && other && compare(other) == NSOrderedDescending;
}

bool NSNumber::isLargerOrEqualThan(const NSNumber& other) const noexcept {
    return *this && other && compare(other) != NSOrderedAscending;
}

bool NSNumber::isSmallerOrEqualThan(const NSNumber& other) const noexcept {
    return *this && other && compare(other) != NSOrderedDescending;
}

bool NSNumber::isSmallerThan(const NSNumber& other) const noexcept {
    return *this && other && compare(other) == NSOrderedAscending;
}

NSNumber NSNumber::numberByIncrementing() const noexcept { return stepped(*this, 1); }
NSNumber NSNumber::numberByDecrementing() const noexcept { return stepped(*this, ~0U); }

NSString NSNumber::durationDescriptionWithFieldCount_suppressZeroes(std::int64_t fieldCount,
                                                                    detail::Flag suppressZeroes) const {
    if (!*this || intValue() < 0) {
        return *this ? NSString("") : NSString();
    }
    const unsigned all = unsignedIntValue();
    const unsigned minutes = all / 60 % 60;
    const unsigned seconds = all % 60;
    char text[detail::numberTextCapacity + 6];
    char* end = text;
    switch (shownFields(all, fieldCount, suppressZeroes)) {
    case 3:
        end = detail::writeUInt64(all / 3600, end);
        end = appendTwoDigits(minutes, end);
        break;
    case 2:
        end = detail::writeUInt64(minutes, end);
        break;
    default:
        break;
    }
    end = appendTwoDigits(seconds, end);
    // Seconds alone have no colon before them.
    const char* const start = *text == ':' ? text + 1 : text;
    return detail::makeAsciiString(start, static_cast<std::size_t>(end - start));
}

NSString NSNumber::durationDescriptionWithMinutes() const {
    return durationDescriptionWithFieldCount_suppressZeroes(2, true);
}

NSString NSNumber::durationDescriptionWithHours() const {
    return durationDescriptionWithFieldCount_suppressZeroes(3, true);
}

} // namespace ZQFoundation
