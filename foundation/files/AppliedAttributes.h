// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_FILES_APPLIEDATTRIBUTES_H
#define ZQFOUNDATION_FILES_APPLIEDATTRIBUTES_H

#include <sys/types.h>

#include "foundation/objects/NSDictionary.h"

namespace ZQFoundation::detail {

/// Reads the permissions among the attributes; returns false, and leaves `permissions` as it is, when there
/// are none.
bool getPermissions(const NSDictionary& attributes, mode_t& permissions);

/// Applies the owner and group ids, permissions and modification date among the attributes to an open file or
/// folder. Other keys, values of the wrong type and changes that the system refuses are ignored.
void applyAttributes(int descriptor, const NSDictionary& attributes);

} // namespace ZQFoundation::detail

#endif
