// SPDX-License-Identifier: MIT
// Internal: not installed.
// Declares the sources of the system's version.
#ifndef ZQFOUNDATION_INFO_SYSTEMVERSION_H
#define ZQFOUNDATION_INFO_SYSTEMVERSION_H

#include "foundation/objects/NSDictionary.h"

/// What the system says about its release, under the keys of the system version file: `ProductName`,
/// `ProductVersion`, `ProductUserVisibleVersion` and `ProductBuildVersion`. Every call reads the file again.
/// At most 16 MiB of a file are read, without blocking.
namespace ZQFoundation::detail {

/// Whether the facts come from the system version file: if there is one, readable or not, and always on a
/// system that describes its release nowhere else. Only then do version numbers have marketing names.
bool usesSystemVersionFile();

/// The system version file as a property list in any form, nil when that gives no dictionary; the release
/// description on a system without such a file.
NSDictionary systemVersionDictionary();

/// The property list in the *text* of the system version file, read as UTF-8 or else ASCII: so the binary
/// form and UTF-16 give nil here.
NSDictionary systemVersionFileText();

/// The same keys from `/etc/os-release`, complete whatever that file says and even if it does not exist: the
/// name "Linux" and the kernel's release replace what is missing or empty.
NSDictionary releaseDescription();

} // namespace ZQFoundation::detail

#endif
