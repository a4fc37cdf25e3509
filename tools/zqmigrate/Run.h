// SPDX-License-Identifier: MIT
#ifndef ZQFOUNDATION_ZQMIGRATE_RUN_H
#define ZQFOUNDATION_ZQMIGRATE_RUN_H

#include "tools/zqmigrate/Outcome.h"
#include "tools/zqmigrate/Request.h"
#include "tools/zqmigrate/Screen.h"

namespace ZQFoundation::zqmigrate {

/// Carries the request out, or tries it, and reports each item as it is done.
Outcome carryOut(const Request& request, Screen& screen, Interruption& interruption);

} // namespace ZQFoundation::zqmigrate

#endif
