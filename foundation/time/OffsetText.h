// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_TIME_OFFSETTEXT_H
#define ZQFOUNDATION_TIME_OFFSETTEXT_H

#include <cstdint>

/// The notations of an offset from Greenwich. They write to `out`, which has room for `offsetTextCapacity`
/// bytes, without a NUL, and return the end. Seconds appear only where they are not 0.
///
///     offset      basic      extended     short with GMT
///     3600        +0100      +01:00       GMT+1
///     -12600      -0330      -03:30       GMT-3:30
///     3208        +005328    +00:53:28    GMT+0:53:28
///     0           +0000      +00:00       GMT
namespace ZQFoundation::detail {

inline constexpr int offsetTextCapacity = 16; ///< the longest is "GMT+25:59:59"

char* writeBasicOffset(std::int32_t offset, char* out) noexcept;
char* writeExtendedOffset(std::int32_t offset, char* out) noexcept;
char* writeShortOffsetWithGMT(std::int32_t offset, char* out) noexcept;

} // namespace ZQFoundation::detail

#endif
