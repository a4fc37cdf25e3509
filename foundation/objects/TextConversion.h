// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_OBJECTS_TEXTCONVERSION_H
#define ZQFOUNDATION_OBJECTS_TEXTCONVERSION_H

#include <cstddef>

#include "foundation/objects/NSData.h"
#include "foundation/objects/NSString.h"
#include "foundation/text/TextEncodings.h"

namespace ZQFoundation::detail {

/// The number of bytes of the text without a byte-order mark. False if the encoding lacks a character, and
/// for an encoding that the C library lacks.
bool getEncodedSize(const TextEncoding& encoding, const NSString& text, std::size_t& size);

/// The text with its byte-order mark, if the encoding has one; nil where `getEncodedSize` is false.
NSData encodedText(const TextEncoding& encoding, const NSString& text);

/// The text that the bytes encode; nil for bytes that are invalid in the encoding.
NSString decodedText(const TextEncoding& encoding, const NSData& data);

} // namespace ZQFoundation::detail

#endif
