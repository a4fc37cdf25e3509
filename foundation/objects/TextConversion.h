// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_OBJECTS_TEXTCONVERSION_H
#define ZQFOUNDATION_OBJECTS_TEXTCONVERSION_H

#include <cstddef>

#include "foundation/objects/NSData.h"
#include "foundation/objects/NSString.h"
#include "foundation/text/TextEncodings.h"

namespace ZQFoundation::detail {

/// Bytes of the text without a byte-order mark. False when a character has no place in the encoding, and for
/// one that the C library lacks.
bool getEncodedSize(const TextEncoding& encoding, const NSString& text, std::size_t& size);

/// The text with its byte-order mark, if the encoding has one; nil where `getEncodedSize` is false.
NSData encodedText(const TextEncoding& encoding, const NSString& text);

/// The text that the bytes spell; nil for bytes that the encoding does not know.
NSString decodedText(const TextEncoding& encoding, const NSData& data);

} // namespace ZQFoundation::detail

#endif
