// SPDX-License-Identifier: MIT
// The debug log that does nothing.
#include "log/NSDebugLog.h"

namespace ZQFoundation {

void NSDebugLog(const char*, ...) {}

void NSDebugLogv(StringView, ArgumentList) {}

} // namespace ZQFoundation
