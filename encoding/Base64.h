// SPDX-License-Identifier: MIT
#ifndef ZQFOUNDATION_ENCODING_BASE64_H
#define ZQFOUNDATION_ENCODING_BASE64_H

#include <cstdint>

#include "../foundation/text/Export.h"

namespace ZQFoundation {

/// The Base64 text of `length` bytes in the standard alphabet of RFC 4648, padded with "=", ended by a zero
/// byte. With `separateLines` not 0, lines of 64 characters are separated by CR LF, and none follows the
/// last.
///
/// The caller releases the text with `free`. Null, with `outputLength` unwritten, when there is no memory.
/// Otherwise `outputLength`, unless it is null, receives the number of bytes before the zero. Callable from
/// any thread.
extern "C" [[nodiscard]] ZQFOUNDATION_EXPORT char* NewBase64Encode(const void* buffer, std::uint64_t length,
                                                                   int separateLines,
                                                                   std::uint64_t* outputLength) noexcept;

/// The bytes that a Base64 text of `length` bytes spells; -1: the text ends at its zero byte. Bytes outside
/// the alphabet are skipped, "=" among them; two or three characters at the end give one or two bytes.
///
/// **The length is one less than the bytes decoded when something to skip follows the last whole
/// group of four characters**, a line break for instance; for a text of nothing but foreign bytes it is the
/// largest number.
///
/// The caller releases the bytes, which no zero ends, with `free`. Null when there is no memory; then
/// `outputLength` receives 0. Callable from any thread.
extern "C" [[nodiscard]] ZQFOUNDATION_EXPORT void*
NewBase64Decode(const char* inputBuffer, std::int64_t length, std::uint64_t* outputLength) noexcept;

} // namespace ZQFoundation

#endif
