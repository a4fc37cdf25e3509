// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PLIST_XMLSCALARS_H
#define ZQFOUNDATION_PLIST_XMLSCALARS_H

#include "foundation/objects/NSString.h"

/// The values that have a short notation of their own in the XML form: numbers, dates, data.
///
///     <integer>  spaces, sign, spaces, then decimal digits or 0x and hexadecimal ones; -2^63 to 2^64-1
///     <real>     spaces, then a decimal number, or nan, inf, infinity in any case, with or without a sign
///     <date>     YYYY-MM-DDThh:mm:ssZ, a "-" may lead; a day and a time that exist
///     <data>     Base64; other ASCII characters are skipped, an incomplete last group is dropped
///
/// Each function takes the whole text between the tags and does not change `value` when it returns false.
namespace ZQFoundation::detail {

enum class IntegerReading { good, malformed, outOfRange };

template <class Unit>
IntegerReading readXmlInteger(const Unit* text, std::size_t count, NSObject& value);
template <class Unit>
bool readXmlReal(const Unit* text, std::size_t count, NSObject& value);
template <class Unit>
bool readXmlDate(const Unit* text, std::size_t count, NSObject& value);
template <class Unit>
bool readXmlData(const Unit* text, std::size_t count, NSObject& value);

} // namespace ZQFoundation::detail

#endif
