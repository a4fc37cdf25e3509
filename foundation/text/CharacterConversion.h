// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_TEXT_CHARACTERCONVERSION_H
#define ZQFOUNDATION_TEXT_CHARACTERCONVERSION_H

#include <cstddef>
#include <string>
#include <string_view>

/// Conversions that the C library makes. Each call preserves `errno`, and may be made from any thread.
///
/// Opening a conversion takes locks of the C library's own and may load a module from disk. A child forked
/// while another thread holds them inherits the locks held and would wait in its first conversion forever, as
/// in any other call of `iconv_open`. The forms that matter there (Unicode, ASCII, Latin-1, NEXTSTEP, Symbol)
/// do not use these functions, and the other encodings of one byte for each character use them only once in a
/// process.
namespace ZQFoundation::detail {

/// Converts all the bytes to units. False, with `out` unspecified, for bytes that are invalid in the
/// encoding, and if the C library lacks the encoding.
bool bytesToUnits(const char* encoding, std::string_view bytes, std::u16string& out);

/// The unit that each of the 256 bytes spells alone; `none` for a byte that needs another one beside it, or
/// that the encoding does not know. False, with `units` unspecified, if the C library has no such encoding or
/// currently cannot open it.
bool unitsOfAllBytes(const char* encoding, char16_t none, char16_t* units);

/// The bytes of all the units, ending in the encoding's initial state. False, with `out` unspecified, if they
/// would not read as the same units again: the C library has conversions that work only one way (the yen sign
/// to a backslash) and ignores characters that it treats as tags.
bool unitsToBytes(const char* encoding, std::u16string_view units, std::string& out);

} // namespace ZQFoundation::detail

#endif
