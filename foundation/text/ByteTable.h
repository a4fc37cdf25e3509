// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_TEXT_BYTETABLE_H
#define ZQFOUNDATION_TEXT_BYTETABLE_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace ZQFoundation::detail {

/// An encoding of one byte for each character, both ways. What has a byte is exactly what a byte stands for,
/// so every text that can be written reads as the same text again. Immutable once made.
class ByteTable {
public:
    /// Unit of the bytes without a character; no character has this number.
    static constexpr char16_t none = 0xFFFF;
    using Units = std::array<char16_t, 256>;

    /// The unit of each byte. Of several bytes for one unit the first is written.
    explicit ByteTable(const Units& units);

    char16_t unitOf(unsigned char byte) const noexcept { return units_[byte]; }

    /// -1 for none.
    int byteOf(char16_t unit) const noexcept { return pages_[pageNumbers_[unit >> 8]][unit & 0xFF]; }

    /// Whether the bytes below 0x80 are ASCII.
    bool isAsciiCompatible() const noexcept { return isAsciiCompatible_; }

    /// Writes a byte for each unit to `out`. False when one has none.
    bool write(const char16_t* units, std::size_t count, char* out) const noexcept;
    bool write(const char* ascii, std::size_t count, char* out) const noexcept;

    /// Whether each unit has a byte.
    bool holds(const char16_t* units, std::size_t count) const noexcept;
    bool holds(const char* ascii, std::size_t count) const noexcept;

    /// Writes a unit for each byte to `out`. False when one has none.
    bool read(const unsigned char* bytes, std::size_t count, char16_t* out) const noexcept;

private:
    using Page = std::array<std::int16_t, 256>;

    Units units_;
    std::array<std::uint16_t, 256> pageNumbers_{};
    std::vector<Page> pages_; ///< the first without any bytes
    bool isAsciiCompatible_ = true;
};

} // namespace ZQFoundation::detail

#endif
