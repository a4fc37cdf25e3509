// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_TIME_DATENAMES_H
#define ZQFOUNDATION_TIME_DATENAMES_H

#include <string_view>

#include "foundation/time/ZonePeriod.h"

/// The words in dates. They are the English ones, ASCII; a locale's own words would come in here, with the
/// locale as one more argument.
namespace ZQFoundation::detail {

/// 1 to 12: "March"; the short form is "Mar".
std::string_view monthName(int month) noexcept;
std::string_view shortMonthName(int month) noexcept;

/// 1 Monday to 7 Sunday: "Tuesday"; the short form is "Tue".
std::string_view weekdayName(int weekday) noexcept;
std::string_view shortWeekdayName(int weekday) noexcept;

/// "AM" before noon, "PM" from then on.
std::string_view dayHalfName(int hour) noexcept;

/// "Central European Standard Time" for the clocks that zone data call "CET" and run an hour ahead of UTC;
/// empty for those that have no common name. The offset tells "IST" in India from "IST" in Ireland.
std::string_view longZoneName(const ZonePeriod& period) noexcept;

} // namespace ZQFoundation::detail

#endif
