// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_FORMAT_FORMAT_H
#define ZQFOUNDATION_FORMAT_FORMAT_H

#include "foundation/objects/NSString.h"
#include "foundation/text/ArgumentList.h"

/// The format engine: printf conversions and `%@`, reading the format once, straight into the result.
///
///     d i          signed decimal            e E f F g G   as in C, correctly rounded
///     u o x X      unsigned                  a A           hexadecimal real
///     @            an object's description   c C           one character, one unit
///     s S          a text, as bytes, units   p             an address, 0x0 for null
///     %            the sign itself           n             takes an argument, writes and stores nothing
///
/// FormatSyntax.h has the grammar. A conversion that the end of the format cuts off yields nothing; an
/// unknown one yields its own letter and takes no argument. setlocale() has no effect, and nothing here
/// changes errno.
///
/// Arguments carry their types, so a format that does not match its arguments has a defined result too:
///
///     the conversion wants    and gets
///     an integer              a real: truncated toward zero, within 64 bits, NaN 0; then cut to the length
///     modifier
///                             a number object: its value by the same rules; anything else: 0
///     a real                  an integer or a number object: converted; anything else: 0
///     s or S                  an object: its description; an integer, a real, a pointer: "(null)"
///     @                       an integer or a real: what a number object of that value describes itself as
///                             a pointer: "(null)" when null, else as p
///     p                       a text or an object: its address, 0x0 for nil and for numbers, which have
///                             none; an integer: its value; a real: 0x0
///     n, *                    any argument; one that is not an integer counts as 0 for *
///     an argument             one that is not there: nil, 0 or null
///
/// A width, and a precision of a number, is at most `maxFormatField`; more counts as that. So the result is
/// never longer than the format's length times that limit, plus the texts inserted.
namespace ZQFoundation::detail {

inline constexpr int maxFormatField = 1000000;

/// How a locale affects formatted numbers: e f g (and E F G) use its decimal separator, d i u f g its
/// grouping, and number arguments of `%@` both. A null pointer in its place means no locale: '.' and no
/// grouping.
struct FormatLocale {
    StringView decimalSeparator;     ///< nil: "."
    StringView groupingSeparator;    ///< nil or empty: no grouping
    unsigned groupSize = 3;          ///< digits next to the decimal point, 0: no grouping
    unsigned secondaryGroupSize = 0; ///< of all other groups; 0: the same
    unsigned minimumDigits = 1;      ///< before the first group; a number with fewer is not grouped
};

/// Appends the formatted text. A nil format appends nothing.
void appendFormat(TextBuilder& out, StringView format, ArgumentList arguments,
                  const FormatLocale* locale = nullptr);

/// The formatted text as a string. A nil format raises NSInvalidArgumentException.
NSString formatted(StringView format, ArgumentList arguments, const FormatLocale* locale = nullptr);

} // namespace ZQFoundation::detail

#endif
