// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_TEXT_NEXTSTEPENCODING_H
#define ZQFOUNDATION_TEXT_NEXTSTEPENCODING_H

namespace ZQFoundation::detail {

/// Unit that nextStepToUnit() gives for the two bytes without a character; no character has this number.
inline constexpr char16_t nextStepUndefined = 0xFFFF;

/// The character of a byte in the NEXTSTEP encoding, in which old-style property lists write octal escapes.
/// ASCII below 0x80; 0xFFFF for the bytes FE and FF, which the encoding leaves open.
char16_t nextStepToUnit(unsigned char byte) noexcept;

} // namespace ZQFoundation::detail

#endif
