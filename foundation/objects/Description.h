// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_OBJECTS_DESCRIPTION_H
#define ZQFOUNDATION_OBJECTS_DESCRIPTION_H

#include "foundation/objects/TextBuilder.h"

namespace ZQFoundation::detail {

/// Appends the value's `description`, without making a string of it. Nil appends nothing; a host object
/// without a description appends "(null)".
void appendDescription(TextBuilder& out, const NSObject& object);

} // namespace ZQFoundation::detail

#endif
