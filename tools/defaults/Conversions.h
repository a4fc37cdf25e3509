// SPDX-License-Identifier: MIT
// What arguments a format takes.
#ifndef ZQFOUNDATION_DEFAULTS_CONVERSIONS_H
#define ZQFOUNDATION_DEFAULTS_CONVERSIONS_H

#include <string>

#include "foundation/objects/NSString.h"

namespace ZQFoundation::tools::defaults {

/// The arguments of a format by their position, however it names them: "%2$@ of %1$d" and "%d in %@" both
/// give "%d %@". Letters that read an argument in the same way are one (%i, %x: %d), and so are %e, %g: %f.
/// A "%" followed by a space is text, as in "50 % of all": a space is hardly ever used as a flag for the
/// sign. Empty for a text without conversions.
std::string conversionsOf(const NSString& format);

} // namespace ZQFoundation::tools::defaults

#endif
