// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PLIST_BINARYREADER_H
#define ZQFOUNDATION_PLIST_BINARYREADER_H

#include "foundation/objects/NSString.h"
#include "foundation/plist/PropertyListError.h"

/// The binary form: "bplist0" and a digit, objects, a table of their offsets, a trailer of 32 bytes; all
/// numbers big-endian.
///
/// Objects that several others refer to are read once and shared. Every offset, reference, count and size is
/// checked against the size of the file before anything is allocated for it. Objects that overlap, which
/// could make a short file into a large value, are refused once they add up to several times the file. So are
/// objects that share others so often that the value, written out without sharing, has more than a million
/// parts and more than 64 times as many as the file: values, keys, each 256 bytes of text or data, all of
/// them once more for each 16 levels. At most `maxPropertyListDepth` levels.
namespace ZQFoundation::detail {

/// Whether the bytes claim to be in the binary form.
bool isBinaryPropertyList(const unsigned char* bytes, std::size_t count) noexcept;

/// The value, or nil and the reason; the error's column is the offset of a byte.
NSObject readBinary(const unsigned char* bytes, std::size_t count, PropertyListError& error);

} // namespace ZQFoundation::detail

#endif
