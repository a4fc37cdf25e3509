// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PLIST_PROPERTYLIST_H
#define ZQFOUNDATION_PLIST_PROPERTYLIST_H

#include "foundation/objects/NSDictionary.h"
#include "foundation/plist/PropertyListError.h"

/// Reads property lists of any form. Nothing here raises. `error` may be null; on failure the result is nil
/// and `*error` has the reason and the place.
///
/// Time and memory grow with the length of the input, hostile or not.
namespace ZQFoundation::detail {

/// The XML form, and where that fails the old-style form. A text may hold unpaired surrogates; in a `const
/// char*` ill-formed bytes read as U+FFFD. An encoding that the text declares is ignored.
NSObject parsePropertyListText(StringView text, PropertyListError* error);

/// The binary form when the bytes claim it, and where that fails the text that they are.
NSObject parsePropertyListBytes(const unsigned char* bytes, std::size_t count, PropertyListError* error);

/// The same for the file of a strings table, which may also be UTF-16 without a mark, and must be a
/// dictionary.
NSDictionary parseStringsFileBytes(const unsigned char* bytes, std::size_t count, PropertyListError* error);

/// "An array is not closed (line 3, column 5)", or "(byte 40)"; nil without a failure.
NSString describePropertyListError(const PropertyListError& error);

} // namespace ZQFoundation::detail

#endif
