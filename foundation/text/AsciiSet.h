// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_TEXT_ASCIISET_H
#define ZQFOUNDATION_TEXT_ASCIISET_H

#include <cstdint>

namespace ZQFoundation::detail {

/// A set of ASCII characters, one bit each. The bits of bytes from 0x80 on are there too and always clear, so
/// a test needs no comparison before it.
class AsciiSet {
public:
    constexpr AsciiSet() noexcept = default;

    constexpr explicit AsciiSet(const char* members) noexcept {
        for (; *members != '\0'; ++members) {
            words_[static_cast<unsigned char>(*members) >> 6] |= bitOf(static_cast<unsigned char>(*members));
        }
    }

    /// Members from two words with a bit for each of the codes 0 to 63 and 64 to 127.
    constexpr AsciiSet(std::uint64_t low, std::uint64_t high) noexcept : words_{low, high, 0, 0} {}

    constexpr bool contains(unsigned char byte) const noexcept {
        return (words_[byte >> 6] >> (byte & 63) & 1) != 0;
    }

    constexpr void remove(unsigned char byte) noexcept { words_[byte >> 6] &= ~bitOf(byte); }

private:
    static constexpr std::uint64_t bitOf(unsigned char byte) noexcept {
        return std::uint64_t{1} << (byte & 63);
    }

    std::uint64_t words_[4] = {};
};

/// The characters that stand in a URL's path, and in its query, as they are.
inline constexpr const char* urlPathCharacters =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789!$&'()*+,-./:=@_~";
inline constexpr const char* urlQueryCharacters =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789!$&'()*+,-./:;=?@_~";

} // namespace ZQFoundation::detail

#endif
