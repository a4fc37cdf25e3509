// SPDX-License-Identifier: MIT
#ifndef ZQFOUNDATION_TESTS_OBJECTS_COUNTINGALLOCATOR_H
#define ZQFOUNDATION_TESTS_OBJECTS_COUNTINGALLOCATOR_H

#include <cstddef>

/// Counts what the calling thread allocates, by `new` or from the C library. A test program that uses it has
/// CountingAllocator.cpp among its sources.
struct AllocationCount {
    /// The number of allocations that this thread has made so far.
    static std::size_t now();
};

#endif
