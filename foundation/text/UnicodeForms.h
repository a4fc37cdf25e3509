// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_TEXT_UNICODEFORMS_H
#define ZQFOUNDATION_TEXT_UNICODEFORMS_H

#include <cstddef>
#include <string>
#include <string_view>

/// UTF-16 and UTF-32 as bytes, and ASCII with escapes. `Unit` is `char` for text known to be ASCII, else
/// `char16_t`.
namespace ZQFoundation::detail {

enum class ByteOrder : unsigned char { big, little };

inline constexpr ByteOrder machineOrder =
    __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__ ? ByteOrder::little : ByteOrder::big;

/// Two bytes for each unit, unpaired surrogates among them. Returns the end of what was written.
template <class Unit>
char* writeUtf16(const Unit* units, std::size_t count, ByteOrder order, char* out) noexcept;

/// Four bytes for each character of well-formed units.
template <class Unit>
char* writeUtf32(const Unit* units, std::size_t count, ByteOrder order, char* out) noexcept;

/// Characters of well-formed units.
std::size_t countOfCharacters(const char16_t* units, std::size_t count) noexcept;

/// False when a unit, or character, is cut off.
bool readUtf16(std::string_view bytes, ByteOrder order, std::u16string& out);

/// False also for surrogates and numbers above U+10FFFF.
bool readUtf32(std::string_view bytes, ByteOrder order, std::u16string& out);

/// ASCII stays, a backslash is doubled; other units become "\351" (three octal digits up to U+00FF) or
/// "\u20ac" (four lower-case hexadecimal digits), so nothing is lost, not even an unpaired surrogate.
template <class Unit>
std::size_t escapedAsciiLength(const Unit* units, std::size_t count) noexcept;
template <class Unit>
char* writeEscapedAscii(const Unit* units, std::size_t count, char* out) noexcept;

/// False for bytes that are not ASCII and for a backslash that begins no escape.
bool readEscapedAscii(std::string_view bytes, std::u16string& out);

} // namespace ZQFoundation::detail

#endif
