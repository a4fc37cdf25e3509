// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_INFO_SYSTEMVERSION_H
#define ZQFOUNDATION_INFO_SYSTEMVERSION_H

#include "foundation/objects/NSDictionary.h"

/// What the system says about its release, under the keys of the system version file: `ProductName`,
/// `ProductVersion`, `ProductUserVisibleVersion` and `ProductBuildVersion`. Every call reads afresh. Files
/// are read up to 16 MiB, and never waited for.
namespace ZQFoundation::detail {

/// Whether the facts stand in the system version file: when there is one, readable or not, and always on a
/// system that describes its release nowhere else. Only then do version numbers have marketing names.
bool usesSystemVersionFile();

/// The system version file as a property list in any form, nil when that gives no dictionary; the release
/// description on a system without such a file.
NSDictionary systemVersionDictionary();

/// What the *text* of the system version file spells, UTF-8 or else ASCII: so the binary form and UTF-16 give
/// nil here.
NSDictionary systemVersionFileText();

/// The same keys from `/etc/os-release`, whole whatever that file says and whether or not it exists: a name
/// "Linux" and the kernel's release stand in for what is missing or empty.
NSDictionary releaseDescription();

} // namespace ZQFoundation::detail

#endif
