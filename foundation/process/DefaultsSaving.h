// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PROCESS_DEFAULTSSAVING_H
#define ZQFOUNDATION_PROCESS_DEFAULTSSAVING_H

#include <string>

#include "foundation/objects/NSDictionary.h"

namespace ZQFoundation::detail {

/// Makes the changes (`withChanges`) to the file of a domain and leaves its other keys as they are. False
/// with the reason, and the file is as it was; `error` may be null. Threads take turns.
bool saveDefaults(const std::string& path, const NSDictionary& changes, NSString* error);

} // namespace ZQFoundation::detail

#endif
