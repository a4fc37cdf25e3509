// SPDX-License-Identifier: MIT
#include "log/NSDebugLog.h"

namespace ZQFoundation {

void NSDebugLog(const char*, ...) {}

void NSDebugLogv(StringView, ArgumentList) {}

} // namespace ZQFoundation
