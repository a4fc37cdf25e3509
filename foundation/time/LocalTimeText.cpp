// SPDX-License-Identifier: MIT
// The local time of the log prefix, formatted without allocation.
// What log lines need of a date formatter, for each line: one look at the zone, one date, and no loop.
#include "foundation/time/LocalTimeText.h"

#include <cstring>

#include "foundation/objects/CivilTime.h"
#include "foundation/text/NumberText.h"
#include "foundation/time/ZoneTable.h"

namespace ZQFoundation::detail {

namespace {

constexpr std::size_t restOfText = sizeof("-MM-dd HH:mm:ss.SSS") - 1;
constexpr std::size_t maxYearDigits = 12; ///< 2^63 seconds are less than 10^12 years
static_assert(maxYearDigits + restOfText <= localTimeTextCapacity);

/// Two digits at a time need half the divisions.
constexpr char digitPairs[] =
    "0001020304050607080910111213141516171819202122232425262728293031323334353637383940414243444546474849"
    "5051525354555657585960616263646566676869707172737475767778798081828384858687888990919293949596979899";

void putPair(char* out, int value) noexcept { std::memcpy(out, digitPairs + 2 * value, 2); }

char* writeYear(std::int64_t year, char* out) noexcept {
    // Years before 1 count backwards, as those of an era.
    const std::int64_t ofEra = year > 0 ? year : 1 - year;
    if (ofEra > 9999) [[unlikely]] {
        return writeInt64(ofEra, out);
    }
    putPair(out, static_cast<int>(ofEra) / 100);
    putPair(out + 2, static_cast<int>(ofEra) % 100);
    return out + 4;
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
    putPair(out + 1, date.month);
    putPair(out + 4, date.day);
    putPair(out + 7, time / 3600);
    putPair(out + 10, time / 60 % 60);
    putPair(out + 13, time % 60);
    out[16] = static_cast<char>('0' + milliseconds / 100);
    putPair(out + 17, milliseconds % 100);
    return out + restOfText;
}

} // namespace ZQFoundation::detail
