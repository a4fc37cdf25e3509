// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_TEXT_TEXTENCODINGS_H
#define ZQFOUNDATION_TEXT_TEXTENCODINGS_H

#include <cstdint>

/// The text encodings that the library knows, by the platform's numbers; docs/text-encodings.md lists them.
namespace ZQFoundation::detail {

class ByteTable;

/// How a text is written.
enum class EncodingForm : unsigned char {
    ascii,
    latin1,
    utf8,
    utf16,
    utf32,
    escapedAscii, ///< ASCII, others by their numbers
    nextStep,     ///< one byte for each character, by a table of the library
    symbol,
    bytes,     ///< one byte for each character, by a table made with the C library
    macRoman,  ///< the same, corrected in two places
    sequences, ///< several bytes for a character, by the C library
    shiftJis,  ///< the same with ASCII in its lower half
};

/// Of the Unicode forms.
enum class EncodingOrder : unsigned char {
    marked, ///< the machine's order after a byte-order mark
    big,
    little,
};

struct TextEncoding {
    std::uint32_t number;
    EncodingForm form;
    EncodingOrder order;
    const char* name; ///< the C library's; null where it is not asked
};

/// Null for a number without an encoding. An encoding that the system's C library lacks is still found, but
/// nothing converts.
const TextEncoding* findTextEncoding(std::uint32_t number) noexcept;

/// The table of an encoding that has one byte for each character, made on first use and kept; null for other
/// encodings, and when the C library lacks it.
const ByteTable* byteTableOf(const TextEncoding& encoding);

} // namespace ZQFoundation::detail

#endif
