// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PROCESS_DEFAULTSSAVING_H
#define ZQFOUNDATION_PROCESS_DEFAULTSSAVING_H

#include <string>

#include "foundation/objects/NSDictionary.h"

namespace ZQFoundation::detail {

/// Applies the changes (`withChanges`) to the file of a domain and keeps its other keys. On failure, returns
/// false with the reason, and the file is unchanged; `error` may be null. Threads take turns.
bool saveDefaults(const std::string& path, const NSDictionary& changes, NSString* error);

} // namespace ZQFoundation::detail

#endif
