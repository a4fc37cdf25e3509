// SPDX-License-Identifier: MIT
// Which arguments a format takes.
#ifndef ZQFOUNDATION_DEFAULTS_CONVERSIONS_H
#define ZQFOUNDATION_DEFAULTS_CONVERSIONS_H

#include <string>

#include "foundation/objects/NSString.h"

namespace ZQFoundation::tools::defaults {

/// The arguments of a format in the order of their positions, numbered or not: "%2$@ of %1$d" and "%d in %@"
/// both give "%d %@"; after an unused position the number stays: "%2$@". Letters that read an argument in the
/// same way count as one: %i and %x as %d, %e and %g as %f. A "%" followed by a space is text, as in "50 % of
/// all", because a space is hardly ever used as a flag for the sign. Empty for a text without conversions.
std::string conversionsOf(const NSString& format);

} // namespace ZQFoundation::tools::defaults

#endif
