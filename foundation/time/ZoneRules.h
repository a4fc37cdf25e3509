// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_TIME_ZONERULES_H
#define ZQFOUNDATION_TIME_ZONERULES_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "foundation/time/PosixZone.h"
#include "foundation/time/ZonePeriod.h"

namespace ZQFoundation::detail {

/// How a zone's clocks ran and run: recorded changes, then a rule for the time after the last of them.
/// Immutable once made, so it may be used from any thread.
class ZoneRules {
public:
    /// Reads zone data as RFC 8536 describes it, versions 1 to 4, with 64-bit times where there are some.
    /// Nothing for data that are not entirely well-formed: cut short, counts beyond the data, changes out of
    /// order, indexes or offsets out of range, a footer that is not a rule; nor for data of more than
    /// `maxFileBytes` bytes. Leap seconds, which the system's clock does not count, are ignored: in the rare
    /// files that have them (those below "right/") a change comes late by as many seconds as there were.
    static std::optional<ZoneRules> fromZoneData(const char* bytes, std::size_t count);

    /// A rule in the notation of the TZ variable (see PosixZone), or nothing.
    static std::optional<ZoneRules> fromNotation(const char* text, std::size_t count);

    /// The period around an instant. Before the first recorded change the zone's first period extends without
    /// end, and after the last one the rule, or the last period where there is no rule, does.
    ZonePeriod periodAt(std::int64_t seconds) const noexcept;

    friend bool operator==(const ZoneRules&, const ZoneRules&) = default;

    /// About fifty times the size of the longest real one.
    static constexpr std::size_t maxFileBytes = 256 * 1024;

private:
    friend class ZoneDataReader;

    struct Clock {
        std::int32_t offset;
        bool isDaylightSaving;
        std::uint8_t nameStart; ///< in `names_`

        friend bool operator==(const Clock&, const Clock&) = default;
    };

    ZoneRules() = default;
    ZonePeriod recordedPeriod(std::size_t clock, std::int64_t from, std::int64_t until) const noexcept;

    std::vector<std::int64_t> changes_;    ///< ascending
    std::vector<std::uint8_t> clockAfter_; ///< for each change, an index into `clocks_`
    std::vector<Clock> clocks_;            ///< the first one holds before the first change
    std::string names_;                    ///< each ended by NUL
    std::optional<PosixZone> rule_;        ///< after the last change
};

} // namespace ZQFoundation::detail

#endif
