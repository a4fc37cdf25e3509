// SPDX-License-Identifier: MIT
// The current instant, and dates as whole numbers.
// Dates and the times of log lines come from here, so that tests can replace the clock for everything at
// once.
#include <cmath>

#include <time.h>

#include "foundation/objects/CivilTime.h"
#include "foundation/objects/NSDate.h"
#include "foundation/system/TestOverrides.h"
#include "foundation/time/Clock.h"

namespace ZQFoundation {

namespace {

constexpr std::int32_t nanosecondsPerMillisecond = 1000000;

/// The number must be whole.
/// Negated, so that not-a-number takes the first branch.
std::int64_t saturatingInteger(double number) noexcept {
    if (!(number >= -0x1p63)) {
        return std::isnan(number) ? 0 : INT64_MIN;
    }
    return number < 0x1p63 ? static_cast<std::int64_t>(number) : INT64_MAX;
}

/// `CLOCK_REALTIME` always exists, so there is no failure to report.
timespec readSystemClock() noexcept {
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    return now;
}

} // namespace

NSDate NSDate::date() {
    if (detail::overrides::clock != nullptr) {
        return dateWithTimeIntervalSince1970(*detail::overrides::clock);
    }
    const timespec now = readSystemClock();
    // The large numbers cancel out as integers, so the fraction keeps its precision.
    constexpr auto referenceSeconds = static_cast<std::int64_t>(timeIntervalBetween1970AndReferenceDate);
    const std::int64_t seconds = std::int64_t{now.tv_sec} - referenceSeconds;
    return dateWithTimeIntervalSinceReferenceDate(static_cast<double>(seconds) +
                                                  static_cast<double>(now.tv_nsec) * 1e-9);
}

} // namespace ZQFoundation

namespace ZQFoundation::detail {

Instant currentInstant() noexcept {
    if (overrides::clock != nullptr) {
        // Tests give seconds with a fraction, whose last bits mean nothing.
        return roundedToMilliseconds(*overrides::clock);
    }
    const timespec now = readSystemClock();
    return {std::int64_t{now.tv_sec}, static_cast<std::int32_t>(now.tv_nsec)};
}

Instant roundedToMilliseconds(Instant instant) noexcept {
    const std::int32_t milliseconds =
        (instant.nanoseconds + nanosecondsPerMillisecond / 2) / nanosecondsPerMillisecond;
    // The last half millisecond belongs to the next second.
    if (milliseconds == 1000) {
        return {saturatingAdd(instant.seconds, 1), 0};
    }
    return {instant.seconds, milliseconds * nanosecondsPerMillisecond};
}

Instant roundedToMilliseconds(double seconds) noexcept {
    // From 2^42 seconds on the product would have no room for single milliseconds. The fractions are
    // multiples of 2^-10 there, so nothing is lost on the way.
    if (!(std::fabs(seconds) < 0x1p42)) {
        const double whole = std::floor(seconds);
        const double rest = std::isfinite(seconds) ? std::floor((seconds - whole) * 1000.0 + 0.5) : 0;
        return {saturatingInteger(whole), static_cast<std::int32_t>(rest) * nanosecondsPerMillisecond};
    }
    // Rounding the product hides the error of a fraction such as .0425, which has no exact form: it counts as
    // .043.
    const std::int64_t milliseconds = saturatingInteger(std::floor(seconds * 1000.0 + 0.5));
    return {floorDivide(milliseconds, 1000),
            static_cast<std::int32_t>(floorModulo(milliseconds, 1000)) * nanosecondsPerMillisecond};
}

std::int64_t wholeSeconds(const NSDate& date) noexcept {
    return saturatingInteger(std::floor(date.timeIntervalSince1970()));
}

} // namespace ZQFoundation::detail
