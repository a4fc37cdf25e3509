// SPDX-License-Identifier: MIT
#include "foundation/process/NSLog.h"

#include "foundation/process/LineWriter.h"

namespace ZQFoundation {

void NSLogv(StringView format, ArgumentList arguments) {
    if (format) {
        detail::writeLine(NSString::stringWithFormat_arguments(format, arguments));
    }
}

} // namespace ZQFoundation
