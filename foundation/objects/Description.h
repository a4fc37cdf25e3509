// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_OBJECTS_DESCRIPTION_H
#define ZQFOUNDATION_OBJECTS_DESCRIPTION_H

#include "foundation/objects/TextBuilder.h"

namespace ZQFoundation::detail {

/// Appends what `description` answers, without making a string of it. Nil appends nothing; a host object that
/// has no description, "(null)".
void appendDescription(TextBuilder& out, const NSObject& object);

} // namespace ZQFoundation::detail

#endif
