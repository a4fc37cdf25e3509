// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_TIME_ZONEPERIOD_H
#define ZQFOUNDATION_TIME_ZONEPERIOD_H

#include <cstdint>

namespace ZQFoundation::detail {

/// A stretch of time in which a zone's clocks ran unchanged. Instants are whole seconds since 1970, without
/// leap seconds. The returned period may be shorter than the whole stretch, never longer.
struct ZonePeriod {
    std::int64_t from;   ///< INT64_MIN: without beginning
    std::int64_t until;  ///< excluded; INT64_MAX: without end
    std::int32_t offset; ///< seconds east of Greenwich, within +-`maxZoneOffset`
    bool isDaylightSaving;
    const char* abbreviation; ///< printable ASCII, ended by NUL; lives as long as the zone
};

/// The largest offset that zone data may contain: less than 26 hours.
inline constexpr std::int32_t maxZoneOffset = 93599;

} // namespace ZQFoundation::detail

#endif
