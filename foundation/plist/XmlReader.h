// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PLIST_XMLREADER_H
#define ZQFOUNDATION_PLIST_XMLREADER_H

#include "foundation/objects/NSString.h"
#include "foundation/plist/PropertyListError.h"

/// The XML form: dict, array, key, string, integer, real, date, data, true, false, with or without the plist
/// element around them. What follows the outermost element is ignored, and so are attributes.
///
/// There is nothing to expand and nothing to fetch: a document type with its own definitions is rejected, one
/// that names a file is ignored, and the only references are the five of XML itself and character numbers.
/// Those may be any up to 10FFFF, U+0000 and surrogates among them, so that every string can be written and
/// read back. At most `maxPropertyListDepth` levels; time and memory grow with the length of the text.
namespace ZQFoundation::detail {

/// The value in the text, or nil and the reason. The bytes must be well-formed UTF-8. An encoding that the
/// text declares is ignored.
NSObject readXml(const char* utf8, std::size_t count, PropertyListError& error);
NSObject readXml(const char16_t* units, std::size_t count, PropertyListError& error);

} // namespace ZQFoundation::detail

#endif
