// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_FORMAT_FORMATTEXT_H
#define ZQFOUNDATION_FORMAT_FORMATTEXT_H

#include "foundation/format/FormatArgument.h"
#include "foundation/format/FormatNumber.h"

namespace ZQFoundation::detail {

/// @: the whole description, "(null)" for nil. Flags, width and precision do not count.
void appendObject(TextBuilder& out, const FormatSpec& spec, const Argument* argument,
                  const FormatLocale* locale);

/// s: width and precision count bytes of UTF-8. A character that the precision cuts through becomes U+FFFD.
void appendBytes(TextBuilder& out, const FormatSpec& spec, const Argument* argument);

/// S: width and precision count units.
void appendUnits(TextBuilder& out, const FormatSpec& spec, const Argument* argument);

/// c: the low 8 bits as one character of that number. C: the low 16 bits as one unit, whatever the width.
void appendCharacter(TextBuilder& out, const FormatSpec& spec, std::uint64_t value);

/// p: "0x" and hexadecimal digits; spaces up to the width.
void appendAddress(TextBuilder& out, const FormatSpec& spec, std::uintptr_t address);

} // namespace ZQFoundation::detail

#endif
