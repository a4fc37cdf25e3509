// SPDX-License-Identifier: MIT
// Encodings of one byte per character, as tables.
// For each encoding two directions: an array of 256 units, and from units to bytes by pages, because a table
// of all 65,536 units would take 128 KiB for each encoding.
#include "foundation/text/ByteTable.h"

#include <type_traits>

namespace ZQFoundation::detail {

namespace {

// An ASCII byte and a UTF-16 unit alike as a number.
template <class Unit>
char16_t widened(Unit unit) noexcept {
    return static_cast<char16_t>(static_cast<std::make_unsigned_t<Unit>>(unit));
}

// The result is checked once at the end: -1 has all bits set, and a loop without a branch is vectorized.
template <class Unit>
bool writeBytes(const ByteTable& table, const Unit* units, std::size_t count, char* out) noexcept {
    int all = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const int byte = table.byteOf(widened(units[i]));
        out[i] = static_cast<char>(byte);
        all |= byte;
    }
    return all >= 0;
}

template <class Unit>
bool holdsAll(const ByteTable& table, const Unit* units, std::size_t count) noexcept {
    int all = 0;
    for (std::size_t i = 0; i < count; ++i) {
        all |= table.byteOf(widened(units[i]));
    }
    return all >= 0;
}

} // namespace

ByteTable::ByteTable(const Units& units) : units_(units) {
    // Page 0 is shared by all that have no byte, so a lookup needs no test.
    Page empty;
    empty.fill(-1);
    pages_.push_back(empty);
    for (std::size_t byte = 0; byte < units.size(); ++byte) {
        const char16_t unit = units[byte];
        isAsciiCompatible_ = isAsciiCompatible_ && (byte >= 0x80 || unit == byte);
        if (unit == none) {
            continue;
        }
        std::uint16_t& number = pageNumbers_[unit >> 8];
        if (number == 0) {
            number = static_cast<std::uint16_t>(pages_.size());
            pages_.push_back(empty);
        }
        // Later bytes of the same unit are read, but never written.
        std::int16_t& place = pages_[number][unit & 0xFF];
        place = place < 0 ? static_cast<std::int16_t>(byte) : place;
    }
}

bool ByteTable::write(const char16_t* units, std::size_t count, char* out) const noexcept {
    return writeBytes(*this, units, count, out);
}

bool ByteTable::write(const char* ascii, std::size_t count, char* out) const noexcept {
    return writeBytes(*this, ascii, count, out);
}

bool ByteTable::holds(const char16_t* units, std::size_t count) const noexcept {
    return holdsAll(*this, units, count);
}

bool ByteTable::holds(const char* ascii, std::size_t count) const noexcept {
    return isAsciiCompatible_ || holdsAll(*this, ascii, count);
}

bool ByteTable::read(const unsigned char* bytes, std::size_t count, char16_t* out) const noexcept {
    bool isKnown = true;
    for (std::size_t i = 0; i < count; ++i) {
        out[i] = units_[bytes[i]];
        isKnown = isKnown && out[i] != none;
    }
    return isKnown;
}

} // namespace ZQFoundation::detail
