// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PLIST_XMLWRITER_H
#define ZQFOUNDATION_PLIST_XMLWRITER_H

#include <string>

#include "foundation/objects/NSString.h"

namespace ZQFoundation::detail {

/// Appends the value in the XML form, as UTF-8. Returns null, or the reason why it cannot be written.
///
/// What is written reads back equal, with one exception: dates lose the fraction of their second (rounded
/// down). Reals are written with as many digits as are needed to read the same number again, singles as the
/// equal double. Carriage returns, other control characters, U+FFFE, U+FFFF and unpaired surrogates are
/// written as numeric references; the library's own reader takes all of them, others may refuse those that
/// XML has no place for.
///
/// Refused: what no property list can hold, more than `maxPropertyListDepth` levels, dates outside the years
/// -9999 to 9999, and a text longer than `maxPropertyListBytes`, which shared values can add up to.
const char* writeXml(const NSObject& value, std::string& out);

} // namespace ZQFoundation::detail

#endif
