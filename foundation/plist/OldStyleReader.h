// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PLIST_OLDSTYLEREADER_H
#define ZQFOUNDATION_PLIST_OLDSTYLEREADER_H

#include "foundation/objects/NSString.h"
#include "foundation/plist/PropertyListError.h"

/// The old-style text form:
///
///     value      = dictionary | array | data | string
///     dictionary = "{" { string [ "=" value ] ";" } "}"
///     array      = "(" [ value { "," value } [ "," ] ] ")"
///     data       = "<" { hex digit, hex digit | space } ">"
///     string     = one or more of A-Z a-z 0-9 _ $ / : . -  or any text in double or single quotes
///
/// A text that starts with a string and continues is a strings table: a dictionary's entries without the
/// braces, up to the first thing that is not a string; the rest is ignored. A text of only white space and
/// comments is an empty dictionary. At most `maxPropertyListDepth` levels; time and memory grow with the
/// length of the text.
namespace ZQFoundation::detail {

/// The value in the text, or nil and the reason. The bytes must be well-formed UTF-8.
NSObject readOldStyle(const char* utf8, std::size_t count, PropertyListError& error);
NSObject readOldStyle(const char16_t* units, std::size_t count, PropertyListError& error);

} // namespace ZQFoundation::detail

#endif
