// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PLIST_TEXTDECODING_H
#define ZQFOUNDATION_PLIST_TEXTDECODING_H

#include <cstddef>
#include <memory>

#include "foundation/plist/PropertyListError.h"

namespace ZQFoundation::detail {

/// A text in one of the two forms that the readers take. Bytes that are UTF-8 already are used in place, so
/// they must outlive this.
struct DecodedText {
    const char* utf8 = nullptr; ///< null: see `units`
    std::unique_ptr<char16_t[]> units;
    std::size_t count = 0; ///< bytes or units
};

/// Reads the bytes of a property list's text. A byte-order mark of UTF-8, UTF-16 or UTF-32 decides, and is
/// removed; else the encoding that an XML declaration at the very start names: UTF-8, UTF-16, UTF-32 (with LE
/// or BE or big-endian), ISO-8859-1, US-ASCII (read leniently, as ISO-8859-1) or windows-1252; else UTF-8.
///
/// False for another declared encoding and for bytes that are ill-formed in theirs, unpaired surrogates
/// included.
bool decodeText(const unsigned char* bytes, std::size_t count, DecodedText& text, PropertyListError& error);

/// The same for a strings table, which by tradition may also be UTF-16 without a mark: bytes that contain a
/// zero or are not UTF-8 are read as UTF-16, low byte first if the second byte is the zero, else high byte
/// first.
bool decodeStringsText(const unsigned char* bytes, std::size_t count, DecodedText& text,
                       PropertyListError& error);

} // namespace ZQFoundation::detail

#endif
