// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_FORMAT_FORMATARGUMENT_H
#define ZQFOUNDATION_FORMAT_FORMATARGUMENT_H

#include "foundation/objects/NSString.h"
#include "foundation/text/ArgumentList.h"

/// Reading an argument as what a conversion wants, whatever it is. Format.h has the rules. A null pointer is
/// an argument that is not there.
namespace ZQFoundation::detail {

/// For d and i `asSigned`: limits that of 64 signed bits, else of 64 unsigned ones.
std::uint64_t integerOf(const Argument* argument, bool asSigned) noexcept;

double realOf(const Argument* argument) noexcept;
long double longRealOf(const Argument* argument) noexcept;

/// As an int, for `*`: within the range of int.
int fieldOf(const Argument* argument) noexcept;

std::uintptr_t addressOf(const Argument* argument) noexcept;

/// A text argument, and what holds it when it had to be made.
struct TextOfArgument {
    NSString owner;
    StringView text; ///< nil: "(null)"
};

/// For s and S, of which no more than `limit` bytes (units) will be used.
TextOfArgument textOf(const Argument* argument, std::size_t limit);

} // namespace ZQFoundation::detail

#endif
