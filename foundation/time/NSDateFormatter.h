// SPDX-License-Identifier: MIT
// Declares NSDateFormatter, which writes dates as text.
#ifndef ZQFOUNDATION_TIME_NSDATEFORMATTER_H
#define ZQFOUNDATION_TIME_NSDATEFORMATTER_H

#include "../objects/NSString.h"
#include "NSTimeZone.h"

namespace ZQFoundation {

/// Writes dates by a pattern, with ASCII digits and English names, in the Gregorian calendar, whose rules
/// apply at all times, even before they were introduced.
///
/// A run of one letter is a field; its length sets the minimum of digits, padded with zeros and never cut:
///
///     letters               field                          Tue 2024-03-05 14:07:09.042 in Berlin
///     y yy yyyy yyyyy       year of the era                2024 24 2024 02024
///     Y YY YYYY             year to which the week belongs 2024 24 2024
///     M MM MMM MMMM MMMMM   month                          3 03 Mar March M
///     d dd, D               day of the month, of the year  5 05, 65
///     E..EEE EEEE EEEEE     weekday                        Tue Tuesday T
///     a                     half of the day                PM
///     H k h K               hour 0-23, 1-24, 1-12, 0-11    14 14 2 2
///     m s                   minute, second                 7 9
///     S SS SSS SSSS         fraction of the second, cut    0 04 042 0420
///     Z ZZZZ ZZZZZ          offset                         +0100 GMT+01:00 +01:00 (in UTC +0000 GMT Z)
///     z zzzz                zone                           CET, Central European Standard Time
///
/// Text between single quotes is copied, and so is everything that is not an ASCII letter; two single quotes
/// are one, inside quotes and outside. An unclosed quote extends to the end. Other ASCII letters are
/// reserved: today they are copied.
///
/// The instant is rounded to the nearest millisecond first, half up. Weeks begin on Monday, and the first one
/// of a year is that of its first Thursday. A zone without a name is written as its offset: GMT+5:30.
///
/// Only one thread may set it up; after that, any number of threads may use it at the same time.
class ZQFOUNDATION_EXPORT NSDateFormatter {
public:
    NSDateFormatter() noexcept = default;

    /// Sets the pattern. With nil, the initial value, texts are empty.
    void setDateFormat(NSString format) noexcept { dateFormat_ = static_cast<NSString&&>(format); }

    /// The pattern; nil before it is set.
    const NSString& dateFormat() const noexcept { return dateFormat_; }

    /// Sets the zone; nil, as at first, for the process's zone at the time of each call.
    void setTimeZone(NSTimeZone zone) noexcept { timeZone_ = zone; }
    /// The zone that applies now; never nil.
    NSTimeZone timeZone() const noexcept { return timeZone_ ? timeZone_ : NSTimeZone::systemTimeZone(); }

    /// The date by the pattern. Nil for a nil date, for one that is NaN, and for one that does not fit into
    /// 64 bits of seconds.
    ///
    ///     formatter.setDateFormat("yyyy-MM-dd 'at' HH:mm");
    ///     formatter.stringFromDate(date);  // "2024-03-05 at 14:07"
    NSString stringFromDate(const NSDate& date) const;

private:
    NSString dateFormat_;
    NSTimeZone timeZone_;
};

} // namespace ZQFoundation

#endif
