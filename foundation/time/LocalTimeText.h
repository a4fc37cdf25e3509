// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_TIME_LOCALTIMETEXT_H
#define ZQFOUNDATION_TIME_LOCALTIMETEXT_H

#include <cstddef>

#include "foundation/time/Clock.h"

namespace ZQFoundation::detail {

/// The longest text is that of an instant hundreds of thousands of millions of years away.
inline constexpr std::size_t localTimeTextCapacity = 40;

/// Writes an instant in the process's time zone as log lines show it: "2024-03-05 14:07:09.042", 23 bytes for
/// every year up to 9999. Nearest millisecond, half up; years before 1 count backwards from 1, as those of an
/// era do.
///
/// The same text as a date formatter's for "yyyy-MM-dd HH:mm:ss.SSS", only faster: no allocation, no lock
/// (the first call reads the zone's file). `out` has room for `localTimeTextCapacity` bytes; no NUL is
/// written; returns the end.
char* writeLocalTime(Instant instant, char* out) noexcept;

} // namespace ZQFoundation::detail

#endif
