// SPDX-License-Identifier: MIT
// Declares Base64 for C buffers; for data and strings see NSData.
#ifndef ZQFOUNDATION_ENCODING_BASE64_H
#define ZQFOUNDATION_ENCODING_BASE64_H

#include <cstdint>

#include "../foundation/text/Export.h"

namespace ZQFoundation {

/// The Base64 text of `length` bytes in the standard alphabet of RFC 4648, padded with "=" and followed by a
/// zero byte. If `separateLines` is not 0, lines of 64 characters are separated by CR LF, and none follows
/// the last.
///
/// The caller releases the text with `free`. Null, without writing `outputLength`, if memory runs out.
/// Otherwise `outputLength`, unless it is null, receives the number of bytes before the zero. Callable from
/// any thread.
///
///     std::uint64_t length = 0;
///     char* text = NewBase64Encode("hello", 5, 0, &length);  // "aGVsbG8=", length is 8
///     std::free(text);
extern "C" [[nodiscard]] ZQFOUNDATION_EXPORT char* NewBase64Encode(const void* buffer, std::uint64_t length,
                                                                   int separateLines,
                                                                   std::uint64_t* outputLength) noexcept;

/// Decodes a Base64 text of `length` bytes; with -1, the text ends at its zero byte. A null pointer is an
/// empty text. Bytes outside the alphabet, including "=", are skipped; two or three characters at the end
/// give one or two bytes.
///
/// **The length is one less than the number of bytes decoded if something to skip follows the last complete
/// group of four characters**, such as a line break; for a text of nothing but foreign bytes it is the
/// largest number.
///
/// The caller releases the bytes, which have no terminating zero, with `free`. Null if memory runs out; then
/// `outputLength` receives 0. Callable from any thread.
extern "C" [[nodiscard]] ZQFOUNDATION_EXPORT void*
NewBase64Decode(const char* inputBuffer, std::int64_t length, std::uint64_t* outputLength) noexcept;

} // namespace ZQFoundation

#endif
