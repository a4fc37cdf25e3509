// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_FILES_FILEINFORMATION_H
#define ZQFOUNDATION_FILES_FILEINFORMATION_H

#include <sys/stat.h>

#include "foundation/objects/NSDate.h"
#include "foundation/objects/NSString.h"

namespace ZQFoundation::detail {

/// Reads what is at a path: the item itself, a link not being followed, or the item that it refers to. False
/// with `errno`.
bool getItemInformation(StringView path, struct stat& information);
bool getTargetInformation(StringView path, struct stat& information);

/// The modification date, equal to the one among the item's attributes.
NSDate modificationDateOf(const struct stat& information) noexcept;

} // namespace ZQFoundation::detail

#endif
