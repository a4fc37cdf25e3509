// SPDX-License-Identifier: MIT
// The local time of the log prefix, formatted without allocation.
// The part of a date formatter that log lines need: for each line one query of the zone, one date, and no
// loop.
#include "foundation/time/LocalTimeText.h"

#include <cstring>

#include "foundation/objects/CivilTime.h"
#include "foundation/text/Digits.h"
#include "foundation/text/NumberText.h"
#include "foundation/time/ZoneTable.h"

namespace ZQFoundation::detail {

namespace {

constexpr std::size_t restOfText = sizeof("-MM-dd HH:mm:ss.SSS") - 1;
constexpr std::size_t maxYearDigits = 12; ///< 2^63 seconds are less than 10^12 years
static_assert(maxYearDigits + restOfText <= localTimeTextCapacity);

template <std::size_t count = 2>
char* put(char* out, int value) noexcept {
    return writeDigits<count>(static_cast<std::uint32_t>(value), out);
}

char* writeYear(std::int64_t year, char* out) noexcept {
    // Years before 1 count backwards, as those of an era.
    const std::int64_t ofEra = year > 0 ? year : 1 - year;
    if (ofEra > 9999) [[unlikely]] {
        return writeInt64(ofEra, out);
    }
    return put<4>(out, static_cast<int>(ofEra));
}

} // namespace

char* writeLocalTime(Instant instant, char* out) noexcept {
    const Instant rounded = roundedToMilliseconds(instant);
    const std::int64_t local = saturatingAdd(rounded.seconds, zoneOffsetAt(processZone(), rounded.seconds));
    const CivilDate date = civilFromDays(floorDivide(local, secondsPerDay));
    const int time = static_cast<int>(floorModulo(local, secondsPerDay));
    const int milliseconds = rounded.nanoseconds / 1000000;
    out = writeYear(date.year, out);
    // The separators first; digits are written over the letters.
    std::memcpy(out, "-MM-dd HH:mm:ss.SSS", restOfText);
    put(out + 1, date.month);
    put(out + 4, date.day);
    put(out + 7, time / 3600);
    put(out + 10, time / 60 % 60);
    put(out + 13, time % 60);
    put<3>(out + 16, milliseconds);
    return out + restOfText;
}

} // namespace ZQFoundation::detail
