// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_TIME_CLOCK_H
#define ZQFOUNDATION_TIME_CLOCK_H

#include <cstdint>

#include "foundation/objects/NSDate.h"

namespace ZQFoundation::detail {

/// An instant of the system's clock: whole seconds since 1970, rounded down, and the rest.
struct Instant {
    std::int64_t seconds;
    std::int32_t nanoseconds; ///< 0 to 999,999,999

    friend bool operator==(const Instant&, const Instant&) = default;
};

/// Now, or what tests have set instead. Preserves `errno`.
Instant currentInstant() noexcept;

/// The nearest millisecond, half up; also before 1970. Beyond 64 bits the nearest limit.
Instant roundedToMilliseconds(Instant instant) noexcept;

/// The same for a count of seconds with fraction, since 1970. Not-a-number counts as 0.
Instant roundedToMilliseconds(double seconds) noexcept;

/// A date's seconds since 1970, rounded down; the nearest limit beyond 64 bits, 0 for nil and not-a-number.
std::int64_t wholeSeconds(const NSDate& date) noexcept;

} // namespace ZQFoundation::detail

#endif
