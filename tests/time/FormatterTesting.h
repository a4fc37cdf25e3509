// SPDX-License-Identifier: MIT
// A moment in Berlin, and formatted dates.
#ifndef ZQFOUNDATION_TESTS_TIME_FORMATTERTESTING_H
#define ZQFOUNDATION_TESTS_TIME_FORMATTERTESTING_H

#include <string>

#include "foundation/time/NSDateFormatter.h"

namespace ZQFoundation {

inline constexpr char berlin[] = "CET-1CEST,M3.5.0,M10.5.0/3";

inline NSDate at(double seconds) { return NSDate::dateWithTimeIntervalSince1970(seconds); }

inline std::string formatted(NSString pattern, double seconds) {
    NSDateFormatter formatter;
    formatter.setDateFormat(pattern);
    const NSString text = formatter.stringFromDate(at(seconds));
    return text ? text.utf8() : "nil";
}

inline constexpr double teatime = 1709644029.042; // Tuesday 2024-03-05 14:07:09.042 in Berlin

} // namespace ZQFoundation

#endif
