// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_TEXT_SYMBOLENCODING_H
#define ZQFOUNDATION_TEXT_SYMBOLENCODING_H

namespace ZQFoundation::detail {

/// Unit that symbolToUnit() gives for bytes without a character; no character has this number.
inline constexpr char16_t symbolUndefined = 0xFFFF;

/// The character of a byte in the encoding of the Symbol font: Greek letters and signs of mathematics. Bytes
/// whose glyphs are not Unicode characters (the extender of a root) or the same character once more (the
/// marks of trade and registration without serifs) have none, so that no two bytes share a character.
char16_t symbolToUnit(unsigned char byte) noexcept;

} // namespace ZQFoundation::detail

#endif
