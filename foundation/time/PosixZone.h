// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_TIME_POSIXZONE_H
#define ZQFOUNDATION_TIME_POSIXZONE_H

#include <cstddef>
#include <cstdint>

#include "foundation/time/ZonePeriod.h"

namespace ZQFoundation::detail {

/// A zone given by a rule that holds in every year, in the notation of the TZ variable:
///
///     zone     = name offset [name [offset] ["," date ["/" time] "," date ["/" time]]]
///     name     = 3 letters or more, or "<" 3 letters, digits, "+", "-" or more ">"; at most 31
///     offset   = ["+" | "-"] hh [":" mm [":" ss]]       west of Greenwich is positive; hh 0 to 24
///     date     = "M" month "." week "." weekday         week 5 is the month's last; weekday 0 is Sunday
///              | "J" 1 to 365                           29 February is never counted
///              | 0 to 365                               29 February is counted
///     time     = as offset, wall clock, hh 0 to 167; 02:00:00 when missing
///
///     "CET-1CEST,M3.5.0,M10.5.0/3"    Berlin
///     "<-03>3"                        São Paulo
///     "EST5EDT"                       dates missing: M3.2.0 and M11.1.0
///
/// The time of a date may lie outside its day, even before it ("M3.4.4/50", "0/-1").
class PosixZone {
public:
    /// Reads a whole text. False, with `zone` unspecified, when it is not in the notation.
    [[nodiscard]] static bool read(const char* text, std::size_t count, PosixZone& zone) noexcept;

    /// The period around an instant; in constant time, whatever the year.
    ZonePeriod periodAt(std::int64_t seconds) const noexcept;

    friend bool operator==(const PosixZone&, const PosixZone&) = default;

    static constexpr std::size_t nameCapacity = 32; ///< with the NUL

    struct Clock {
        std::int32_t offset = 0; ///< seconds east of Greenwich
        char name[nameCapacity] = {};

        friend bool operator==(const Clock&, const Clock&) = default;
    };

    /// When in a year the clocks change.
    struct Change {
        enum Form : unsigned char { weekdayOfMonth, dayWithoutLeapDay, dayWithLeapDay };

        Form form = weekdayOfMonth;
        int month = 1;
        int week = 1;
        int day = 0; ///< weekday from Sunday, or day of the year as written
        std::int32_t time = 7200;

        friend bool operator==(const Change&, const Change&) = default;
    };

private:
    struct Span;

    Span daylightSpan(std::int64_t year) const noexcept;

    Clock standard_;
    Clock daylight_;
    bool hasDaylight_ = false;
    Change start_;
    Change end_;
};

} // namespace ZQFoundation::detail

#endif
