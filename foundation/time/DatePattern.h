// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_TIME_DATEPATTERN_H
#define ZQFOUNDATION_TIME_DATEPATTERN_H

#include "foundation/objects/CivilTime.h"
#include "foundation/objects/TextBuilder.h"
#include "foundation/time/Clock.h"
#include "foundation/time/NSTimeZone.h"

namespace ZQFoundation::detail {

/// What the clocks and calendars of a zone show at an instant.
struct LocalDate {
    /// The instant is rounded to milliseconds first.
    LocalDate(Instant rounded, const NSTimeZone& zone) noexcept;

    std::int64_t days; ///< since 1970-01-01
    CivilDate date;
    int hour;
    int minute;
    int second;
    int millisecond;
    std::int32_t offset;
    std::int64_t instant; ///< whole seconds since 1970, for what only the zone knows
    NSTimeZone zone;
};

/// Appends the date as the pattern says; the letters are listed with NSDateFormatter.
void appendDate(TextBuilder& text, StringView pattern, const LocalDate& date);

} // namespace ZQFoundation::detail

#endif
