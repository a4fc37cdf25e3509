// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_TEXT_PERCENTESCAPES_H
#define ZQFOUNDATION_TEXT_PERCENTESCAPES_H

#include "foundation/objects/NSString.h"
#include "foundation/text/AsciiSet.h"

namespace ZQFoundation::detail {

/// The text's UTF-8 bytes, those that are members as they are, others as "%" and two upper-case hexadecimal
/// digits. Nil for nil and for an unpaired surrogate. A text that stays as it is shares its body.
NSString addPercentEscapes(const NSString& text, const AsciiSet& kept);

/// Every "%" and two hexadecimal digits of either case replaced by their byte, once. Nil for nil, when a "%"
/// has no two digits, and when the bytes are not well-formed UTF-8. What is not escaped stays, an unpaired
/// surrogate too.
NSString removePercentEscapes(const NSString& text);

} // namespace ZQFoundation::detail

#endif
