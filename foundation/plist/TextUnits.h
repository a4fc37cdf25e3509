// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PLIST_TEXTUNITS_H
#define ZQFOUNDATION_PLIST_TEXTUNITS_H

#include <cstring>
#include <string>

#include "foundation/objects/NSString.h"
#include "foundation/plist/PropertyListError.h"
#include "foundation/text/Utf.h"

/// What the text readers need for their two kinds of text: well-formed UTF-8 bytes, and UTF-16 units, which
/// may hold unpaired surrogates. Working on bytes avoids converting a file to units; working on units keeps
/// every string.
namespace ZQFoundation::detail {

/// The first `wanted`, an ASCII character, or `end`.
inline const char* findUnit(const char* start, const char* end, char wanted) noexcept {
    if (start == end) {
        return end;
    }
    const void* found = std::memchr(start, wanted, static_cast<std::size_t>(end - start));
    return found != nullptr ? static_cast<const char*>(found) : end;
}

inline const char16_t* findUnit(const char16_t* start, const char16_t* end, char wanted) noexcept {
    const auto unit = static_cast<char16_t>(wanted);
    while (start != end && *start != unit) {
        ++start;
    }
    return start;
}

/// The unit's number: 0 to 255 or 0 to 65535.
inline unsigned unitNumber(char unit) noexcept { return static_cast<unsigned char>(unit); }
inline unsigned unitNumber(char16_t unit) noexcept { return unit; }

/// Whether the text starts with the ASCII literal.
template <class Unit, std::size_t size>
bool startsWith(const Unit* start, const Unit* end, const char (&literal)[size]) noexcept {
    constexpr std::size_t length = size - 1;
    if (static_cast<std::size_t>(end - start) < length) {
        return false;
    }
    for (std::size_t index = 0; index < length; ++index) {
        if (start[index] != static_cast<Unit>(literal[index])) {
            return false;
        }
    }
    return true;
}

/// Length of a line or paragraph separator (U+2028, U+2029) at `start`, which is not the end; 0 for anything
/// else.
inline std::size_t separatorLength(const char* start, const char* end) noexcept {
    if (*start != '\xE2' || end - start < 3 || start[1] != '\x80') {
        return 0;
    }
    return start[2] == '\xA8' || start[2] == '\xA9' ? 3 : 0;
}

inline std::size_t separatorLength(const char16_t* start, const char16_t*) noexcept {
    return *start == 0x2028 || *start == 0x2029 ? 1 : 0;
}

inline std::size_t lengthInUnits(const char* text, std::size_t count) noexcept {
    return utf16Length(text, count, IllFormed::replace);
}

inline std::size_t lengthInUnits(const char16_t*, std::size_t count) noexcept { return count; }

/// Sets line and column of the place `at`. Lines end with LF, CR or both. Only a failure pays for counting.
template <class Unit>
void locate(const Unit* begin, const Unit* at, PropertyListError& error) noexcept {
    const Unit* lineStart = begin;
    error.line = 1;
    for (const Unit* unit = begin; unit != at; ++unit) {
        const bool isPairStart = *unit == '\r' && unit + 1 != at && unit[1] == '\n';
        if (*unit == '\n' || (*unit == '\r' && !isPairStart)) {
            ++error.line;
            lineStart = unit + 1;
        }
    }
    error.column = lengthInUnits(lineStart, static_cast<std::size_t>(at - lineStart)) + 1;
}

} // namespace ZQFoundation::detail

#endif
