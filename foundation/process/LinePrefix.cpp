// SPDX-License-Identifier: MIT
// Writes the date, the process and the thread of a line, and keeps them for the next lines.
// Numbers are written from right to left, so that the prefix ends exactly where the message begins, and the
// line needs no move.
#include "foundation/process/LinePrefix.h"

#include <cstring>

#include "foundation/system/System.h"
#include "foundation/text/Digits.h"
#include "foundation/text/NumberText.h"
#include "foundation/time/LocalTimeText.h"

namespace ZQFoundation::detail {

namespace {

/// Hexadecimal digits of 64 bits.
constexpr std::size_t hexCapacity = 16;

/// The characters between date, name and numbers.
constexpr std::size_t charactersBetween = sizeof(" [:] ") - 1;

char* copyBefore(char* end, const char* text, std::size_t length) noexcept {
    return static_cast<char*>(std::memcpy(end - length, text, length));
}

char* writeNumberBefore(std::int64_t number, char* end) noexcept {
    char digits[numberTextCapacity];
    return copyBefore(end, digits, static_cast<std::size_t>(writeInt64(number, digits) - digits));
}

/// Writes "MyApp[1234:5d7f] " after a space.
/// The order is reversed, like the writing.
char* writeProcessBefore(char* end, const ProcessIdentity& process) noexcept {
    end = copyBefore(end, "] ", 2);
    end = writeHexBefore(system::threadIdentifier(), end);
    *--end = ':';
    end = writeNumberBefore(system::processIdentifier(), end);
    *--end = '[';
    end = copyBefore(end, process.name, process.nameLength);
    *--end = ' ';
    return end;
}

// A date's length is known only when it is written.
char* writeDateBefore(char* end, Instant time) noexcept {
    char date[localTimeTextCapacity];
    return copyBefore(end, date, static_cast<std::size_t>(writeLocalTime(time, date) - date));
}

constexpr std::size_t millisecondDigits = 3;

// Overwrites the digits at their place; everything else of the prefix stays.
void writeMilliseconds(std::int32_t nanoseconds, char* out) noexcept {
    writeDigits<millisecondDigits>(static_cast<std::uint32_t>(nanoseconds / 1000000), out);
}

} // namespace

// The copy of a whole kept text may reach further back than the prefix itself.
std::size_t LinePrefix::roomFor(const ProcessIdentity& process) noexcept {
    const std::size_t needed =
        localTimeTextCapacity + charactersBetween + process.nameLength + numberTextCapacity + hexCapacity;
    return needed > LinePrefixCache::textCapacity ? needed : LinePrefixCache::textCapacity;
}

char* LinePrefix::writeBefore(char* end) const noexcept {
    return writeDateBefore(writeProcessBefore(end, process), time);
}

/// Whether a line could use this prefix with only the milliseconds changed.
/// The thread is read first: it is 0 while the rest is being written.
bool LinePrefixCache::Key::matches(const Key& wanted) const noexcept {
    return __atomic_load_n(&thread, __ATOMIC_ACQUIRE) == wanted.thread && second == wanted.second &&
           generation == wanted.generation && zone == wanted.zone && process == wanted.process;
}

char* LinePrefixCache::writeBefore(char* end, const LinePrefix& prefix) noexcept {
    const Key wanted{system::threadIdentifier(), prefix.time.seconds, processZone(), &prefix.process,
                     system::forkGeneration()};
    // Several places, so that a few threads that log in turn do not replace each other's prefix.
    Prefix& place = prefixes_[wanted.thread % places];
    if (!place.key.matches(wanted)) [[unlikely]] {
        return rewriteBefore(end, prefix, place, wanted);
    }
    // A fixed number of bytes, whatever the length: the copy is a few instructions.
    std::memcpy(end - textCapacity, place.text, textCapacity);
    writeMilliseconds(prefix.time.nanoseconds, end - place.afterDate - millisecondDigits);
    return end - place.length;
}

char* LinePrefixCache::rewriteBefore(char* end, const LinePrefix& prefix, Prefix& place,
                                     const Key& wanted) noexcept {
    char* const afterDate = writeProcessBefore(end, prefix.process);
    char* const start = writeDateBefore(afterDate, prefix.time);
    const auto length = static_cast<std::size_t>(end - start);
    // A longer prefix, by a long process name, is simply made each time.
    if (length <= textCapacity) {
        // Ordered before everything that follows, for a child that is forked in between; the thread sanitizer
        // does not support fences.
        __atomic_exchange_n(&place.key.thread, 0, __ATOMIC_ACQ_REL);
        std::memcpy(place.text + textCapacity - length, start, length);
        place.length = length;
        place.afterDate = static_cast<std::size_t>(end - afterDate);
        place.key.second = wanted.second;
        place.key.zone = wanted.zone;
        place.key.process = wanted.process;
        place.key.generation = wanted.generation;
        __atomic_store_n(&place.key.thread, wanted.thread, __ATOMIC_RELEASE);
    }
    return start;
}

} // namespace ZQFoundation::detail
