// SPDX-License-Identifier: MIT
// The former name of tests/kit/AllocationCount.h.
#ifndef ZQFOUNDATION_TESTS_OBJECTS_COUNTINGALLOCATOR_H
#define ZQFOUNDATION_TESTS_OBJECTS_COUNTINGALLOCATOR_H

#include "tests/kit/AllocationCount.h"

using ZQFoundation::kit::AllocationCount;

#endif
