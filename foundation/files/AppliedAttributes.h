// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_FILES_APPLIEDATTRIBUTES_H
#define ZQFOUNDATION_FILES_APPLIEDATTRIBUTES_H

#include <sys/types.h>

#include "foundation/objects/NSDictionary.h"

namespace ZQFoundation::detail {

/// The permissions among the attributes; false, and `permissions` untouched, when there are none.
bool getPermissions(const NSDictionary& attributes, mode_t& permissions);

/// Gives an open file or folder the owner and group ids, permissions and modification date among the
/// attributes. Other keys, values of a wrong kind and what the system refuses are passed over.
void applyAttributes(int descriptor, const NSDictionary& attributes);

} // namespace ZQFoundation::detail

#endif
