// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_TIME_ZONETABLE_H
#define ZQFOUNDATION_TIME_ZONETABLE_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "foundation/time/ZonePeriod.h"

/// The zones of the process. A zone is made once and never destroyed, so a pointer to one stays valid
/// forever.
///
/// Nothing here takes a lock: what threads share is replaced by one store, so a child that is forked while
/// other threads are at work finds everything consistent. Nothing needs to be initialized, and `errno` is
/// preserved. The memory grows with the number of different zones that the process has used, not with how
/// often it goes from one to another.
namespace ZQFoundation::detail {

struct Zone;

/// The zone of that name in the folder of zone files ($TZDIR, else /usr/share/zoneinfo), or null. Names are
/// relative paths of plain components: none of them empty, "." or "..". "UTC" and "GMT" are known without a
/// file.
const Zone* namedZone(const char* name, std::size_t length);

/// The process's zone, from the TZ variable as it was at the first call or the last `rereadProcessZone`. Null
/// means UTC, if there is no memory.
///
///     unset                        /etc/localtime
///     "Europe/Berlin", ":..."      the zone of that name
///     "/path", ":/path"            that zone file
///     "CET-1CEST,M3.5.0,M10.5.0/3" that rule
///     "", or none of these         UTC
///
/// Costs one load, and does not read the environment: another thread of the host may be changing it.
const Zone* processZone() noexcept;

/// Reads the variable and the zone's file again; keeps the zone when there is no memory.
void rereadProcessZone() noexcept;

const std::string& zoneName(const Zone& zone) noexcept;
bool sameZone(const Zone& left, const Zone& right) noexcept;

/// What holds at an instant. Null: UTC.
ZonePeriod zonePeriodAt(const Zone* zone, std::int64_t seconds) noexcept;

/// Only the offset: for an instant within about an hour of the previous query, one load.
std::int32_t zoneOffsetAt(const Zone* zone, std::int64_t seconds) noexcept;

} // namespace ZQFoundation::detail

#endif
