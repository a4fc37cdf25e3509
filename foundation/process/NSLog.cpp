// SPDX-License-Identifier: MIT
// The platform's log call.
// The line is composed in the buffer that is written, so formatting and writing share it.
#include "foundation/process/NSLog.h"

#include "foundation/format/Format.h"
#include "foundation/process/LineWriter.h"

namespace ZQFoundation {

void NSLogv(StringView format, ArgumentList arguments) {
    if (format) {
        detail::LogLine line;
        detail::appendFormat(line.text(), format, arguments);
        line.write();
    }
}

} // namespace ZQFoundation
