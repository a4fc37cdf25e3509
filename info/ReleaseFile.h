// SPDX-License-Identifier: MIT
// Internal: not installed.
// Declares the parser of release descriptions such as `/etc/os-release`.
#ifndef ZQFOUNDATION_INFO_RELEASEFILE_H
#define ZQFOUNDATION_INFO_RELEASEFILE_H

#include <string>

#include "foundation/objects/NSDictionary.h"

namespace ZQFoundation::detail {

/// The entries NAME, VERSION, VERSION_ID and BUILD_ID of a release description, if it has them: lines of
/// `KEY=value`, the value quoted as for a shell. If a key occurs twice, the last value counts.
///
/// What a shell would reject is read as intended: spaces in a value without quotes belong to it, those at its
/// end do not; a quote that is not closed ends with its line. Ill-formed UTF-8 becomes U+FFFD.
NSDictionary releaseEntriesFromBytes(const std::string& bytes);

} // namespace ZQFoundation::detail

#endif
