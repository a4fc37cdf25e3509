// SPDX-License-Identifier: MIT
// The former place of tests/kit/AllocationCount.cpp.
#include "tests/kit/AllocationCount.cpp"
