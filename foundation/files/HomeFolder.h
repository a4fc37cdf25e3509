// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_FILES_HOMEFOLDER_H
#define ZQFOUNDATION_FILES_HOMEFOLDER_H

#include <string>

#include "foundation/objects/NSString.h"

namespace ZQFoundation::detail {

/// The user's home folder: `$HOME` when that is an absolute path, else the one in the user database for the
/// effective user, which alone counts in a set-user-ID process. Reads the environment at each call. Empty
/// when neither has one.
std::string homeFolder();

/// The same as a path whose links are resolved; "/" when there is none. Always absolute.
NSString resolvedHomeFolder();

/// The home folder of the account with this name; empty when there is no such account, or no folder.
std::string homeFolderOfAccount(const std::string& name);

} // namespace ZQFoundation::detail

#endif
