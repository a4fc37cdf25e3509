// SPDX-License-Identifier: MIT
// The debug log that does nothing: hosts link to it, and their own builds replace it.
#include "log/NSDebugLog.h"

namespace ZQFoundation {

void NSDebugLog(const char*, ...) {}

void NSDebugLogv(StringView, ArgumentList) {}

} // namespace ZQFoundation
