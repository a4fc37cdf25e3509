// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_OBJECTS_DECIMALTEXT_H
#define ZQFOUNDATION_OBJECTS_DECIMALTEXT_H

#include "foundation/objects/TextBuilder.h"
#include "foundation/text/NumberText.h"

namespace ZQFoundation::detail {

/// Appends the number with at least `digits` digits, leading zeros after the sign.
inline void appendDecimal(TextBuilder& out, std::int64_t number, std::size_t digits = 1) {
    char text[numberTextCapacity];
    const char* const end = writeInt64(number, text);
    const char* const start = number < 0 ? text + 1 : text;
    const auto length = static_cast<std::size_t>(end - start);
    out.appendAscii(text, static_cast<std::size_t>(start - text));
    out.appendRepeated('0', length < digits ? digits - length : 0);
    out.appendAscii(start, length);
}

} // namespace ZQFoundation::detail

#endif
