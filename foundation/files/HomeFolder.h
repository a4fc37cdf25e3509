// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_FILES_HOMEFOLDER_H
#define ZQFOUNDATION_FILES_HOMEFOLDER_H

#include <string>

#include "foundation/objects/NSString.h"

namespace ZQFoundation::detail {

/// The user's home folder: `$HOME` when that is an absolute path, else what the user database says of the
/// effective user, which alone counts in a set-user-ID process. Follows the environment at every call. Empty
/// when nothing tells.
std::string homeFolder();

/// The same as a path whose links are resolved; "/" when nothing tells. Always absolute.
NSString resolvedHomeFolder();

/// The home folder of the account with this name; empty when there is no such account, or no folder.
std::string homeFolderOfAccount(const std::string& name);

} // namespace ZQFoundation::detail

#endif
