// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PROCESS_FOLDERLAYOUT_H
#define ZQFOUNDATION_PROCESS_FOLDERLAYOUT_H

#include "foundation/objects/NSString.h"

/// The location of its folders that an application requests by `ZQFolderLayout` in its Info dictionary.
namespace ZQFoundation::detail {

/// Whether the value is "XDG": logs and documents are then where other applications on a Linux desktop keep
/// theirs. A translation of the value does not count, as the folders would move with the language.
bool usesXdgFolders();

/// The folder below which all applications keep their logs, and the one for their data: `$XDG_STATE_HOME` and
/// `$XDG_DATA_HOME` where these are absolute paths, else `~/.local/state` and `~/.local/share`. Links on the
/// way are resolved. In a set-user-ID process the variables are ignored.
NSString xdgStateFolder();
NSString xdgDataFolder();

} // namespace ZQFoundation::detail

#endif
