// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PLIST_OLDSTYLEWRITER_H
#define ZQFOUNDATION_PLIST_OLDSTYLEWRITER_H

#include <string>

#include "foundation/objects/NSString.h"

namespace ZQFoundation::detail {

/// Appends the value in the old-style text form, in ASCII. Returns null, or the reason why it cannot be
/// written.
///
/// The form knows strings, data, arrays and dictionaries, and those read back equal. Numbers, booleans and
/// dates become strings, their descriptions: "1.5", "1", "2001-01-01 00:00:00 +0000". Strings are quoted
/// where they must be; every unit beyond ASCII is written as \U and four digits, unpaired surrogates too.
///
/// Refused: what no property list can hold, more than `maxPropertyListDepth` levels, and a text longer than
/// `maxPropertyListBytes`.
const char* writeOldStyle(const NSObject& value, std::string& out);

} // namespace ZQFoundation::detail

#endif
