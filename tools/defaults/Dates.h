// SPDX-License-Identifier: MIT
// Declares how a date is written on the command line.
#ifndef ZQFOUNDATION_DEFAULTS_DATES_H
#define ZQFOUNDATION_DEFAULTS_DATES_H

#include <string>

#include "foundation/objects/NSDate.h"

namespace ZQFoundation::tools::defaults {

/// "2024-03-05", "2024-03-05 14:07", "2024-03-05T14:07:09Z", "2024-03-05 14:07:09 +0100": in UTC without an
/// offset. Fails with a message for any other text.
NSDate dateFromText(const std::string& text);

} // namespace ZQFoundation::tools::defaults

#endif
