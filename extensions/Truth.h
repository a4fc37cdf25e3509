// SPDX-License-Identifier: MIT
// Internal: not installed.
// Declares the truth of texts and of values in general.
#ifndef ZQFOUNDATION_EXTENSIONS_TRUTH_H
#define ZQFOUNDATION_EXTENSIONS_TRUTH_H

#include "foundation/objects/NSString.h"

namespace ZQFoundation::detail {

/// The truth of a text: "YES" in any letter case, or a leading integer that is not zero. Allocates nothing
/// for ASCII.
bool truthOfText(StringView text);

/// The truth that the root object defines, for values of every type: strings by the rule for texts, else the
/// string form by that rule, else the low 8 bits of the integer form, else false. A number is evaluated by
/// its decimal text here, so 0.5 is false, unlike the number's own truth value. Allocates nothing for strings
/// and numbers.
bool rootTruth(const NSObject& object);

} // namespace ZQFoundation::detail

#endif
