// SPDX-License-Identifier: MIT
// Offsets from UTC as text.
// Each notation is written by itself: they differ in more than their separators.
#include "foundation/time/OffsetText.h"

#include <cstring>

#include "foundation/text/Digits.h"
#include "foundation/text/NumberText.h"

namespace ZQFoundation::detail {

namespace {

struct Parts {
    char sign;
    int hours;
    int minutes;
    int seconds;
};

// The sign is that of the whole, since hours alone may be 0.
Parts partsOf(std::int32_t offset) noexcept {
    const int distance = offset < 0 ? -offset : offset;
    return {offset < 0 ? '-' : '+', distance / 3600, distance / 60 % 60, distance % 60};
}

char* writeTwo(int value, char* out) noexcept {
    return writeDigits<2>(static_cast<std::uint32_t>(value), out);
}

char* writeAfterColon(int value, char* out) noexcept {
    *out++ = ':';
    return writeTwo(value, out);
}

} // namespace

/// "+0100"; the seconds, which only old local times have, follow without a separator.
char* writeBasicOffset(std::int32_t offset, char* out) noexcept {
    const Parts parts = partsOf(offset);
    *out++ = parts.sign;
    out = writeTwo(parts.minutes, writeTwo(parts.hours, out));
    return parts.seconds != 0 ? writeTwo(parts.seconds, out) : out;
}

/// "+01:00", with the seconds after another colon if there are any.
char* writeExtendedOffset(std::int32_t offset, char* out) noexcept {
    const Parts parts = partsOf(offset);
    *out++ = parts.sign;
    out = writeAfterColon(parts.minutes, writeTwo(parts.hours, out));
    return parts.seconds != 0 ? writeAfterColon(parts.seconds, out) : out;
}

/// "GMT+1", "GMT+5:30": the hours have no leading zero, and what is zero at the end is omitted.
char* writeShortOffsetWithGMT(std::int32_t offset, char* out) noexcept {
    std::memcpy(out, "GMT", 3);
    out += 3;
    if (offset == 0) {
        return out;
    }
    const Parts parts = partsOf(offset);
    *out++ = parts.sign;
    out = writeInt64(parts.hours, out);
    if (parts.minutes != 0 || parts.seconds != 0) {
        out = writeAfterColon(parts.minutes, out);
    }
    return parts.seconds != 0 ? writeAfterColon(parts.seconds, out) : out;
}

} // namespace ZQFoundation::detail
