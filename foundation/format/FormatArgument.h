// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_FORMAT_FORMATARGUMENT_H
#define ZQFOUNDATION_FORMAT_FORMATARGUMENT_H

#include "foundation/objects/NSString.h"
#include "foundation/text/ArgumentList.h"

/// Reads an argument of any type as the type that a conversion takes. Format.h has the rules. A null pointer
/// is a missing argument.
namespace ZQFoundation::detail {

/// With `asSigned`, for d and i, the limits are those of 64 signed bits, else of 64 unsigned ones.
std::uint64_t integerOf(const Argument* argument, bool asSigned) noexcept;

double realOf(const Argument* argument) noexcept;
long double longRealOf(const Argument* argument) noexcept;

/// As an int, for `*`: within the range of int.
int fieldOf(const Argument* argument) noexcept;

std::uintptr_t addressOf(const Argument* argument) noexcept;

/// A text argument, and its storage if it had to be made.
struct TextOfArgument {
    NSString owner;
    StringView text; ///< nil: "(null)"
};

/// For s and S; at most `limit` bytes (units) of the text will be used.
TextOfArgument textOf(const Argument* argument, std::size_t limit);

} // namespace ZQFoundation::detail

#endif
