// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_TIME_ZONEACCESS_H
#define ZQFOUNDATION_TIME_ZONEACCESS_H

#include "foundation/time/NSTimeZone.h"
#include "foundation/time/ZonePeriod.h"

namespace ZQFoundation::detail {

/// The library's internal access to time zones, by seconds since 1970. Nil counts as UTC.
struct ZoneAccess {
    static std::int32_t offsetAt(const NSTimeZone& zone, std::int64_t seconds) noexcept;

    /// The abbreviation is null for a zone of fixed offset.
    static ZonePeriod periodAt(const NSTimeZone& zone, std::int64_t seconds) noexcept;
};

} // namespace ZQFoundation::detail

#endif
