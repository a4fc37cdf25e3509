// SPDX-License-Identifier: MIT
// The kit's header under its former name.
#ifndef ZQFOUNDATION_TESTS_PROCESS_REFUSEDCALLS_H
#define ZQFOUNDATION_TESTS_PROCESS_REFUSEDCALLS_H

#include "tests/kit/RefusedCalls.h"

namespace scene {

using ZQFoundation::kit::CallArgument;
using ZQFoundation::kit::refuseCall;

} // namespace scene

#endif
