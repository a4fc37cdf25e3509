// SPDX-License-Identifier: MIT
// Offsets from UTC as text.
// Each notation is written by itself: they differ in more than their separators.
#include "foundation/time/OffsetText.h"

#include <cstring>

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

char* writeTwoDigits(int value, char* out) noexcept {
    *out++ = static_cast<char>('0' + value / 10);
    *out++ = static_cast<char>('0' + value % 10);
    return out;
}

char* writeAfterColon(int value, char* out) noexcept {
    *out++ = ':';
    return writeTwoDigits(value, out);
}

} // namespace

char* writeBasicOffset(std::int32_t offset, char* out) noexcept {
    const Parts parts = partsOf(offset);
    *out++ = parts.sign;
    out = writeTwoDigits(parts.minutes, writeTwoDigits(parts.hours, out));
    // Only old local times have seconds.
    return parts.seconds != 0 ? writeTwoDigits(parts.seconds, out) : out;
}

char* writeExtendedOffset(std::int32_t offset, char* out) noexcept {
    const Parts parts = partsOf(offset);
    *out++ = parts.sign;
    out = writeAfterColon(parts.minutes, writeTwoDigits(parts.hours, out));
    return parts.seconds != 0 ? writeAfterColon(parts.seconds, out) : out;
}

char* writeShortOffsetWithGMT(std::int32_t offset, char* out) noexcept {
    std::memcpy(out, "GMT", 3);
    out += 3;
    if (offset == 0) {
        return out;
    }
    const Parts parts = partsOf(offset);
    *out++ = parts.sign;
    if (parts.hours >= 10) {
        *out++ = static_cast<char>('0' + parts.hours / 10);
    }
    *out++ = static_cast<char>('0' + parts.hours % 10);
    if (parts.minutes != 0 || parts.seconds != 0) {
        out = writeAfterColon(parts.minutes, out);
    }
    return parts.seconds != 0 ? writeAfterColon(parts.seconds, out) : out;
}

} // namespace ZQFoundation::detail
