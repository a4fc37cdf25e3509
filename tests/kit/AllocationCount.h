// SPDX-License-Identifier: MIT
// Counts the blocks of memory that a piece of code allocates.
#ifndef ZQFOUNDATION_TESTS_KIT_ALLOCATIONCOUNT_H
#define ZQFOUNDATION_TESTS_KIT_ALLOCATIONCOUNT_H

#include <cstddef>

namespace ZQFoundation::kit {

/// Counts what the calling thread allocates, by `new` or from the C library. A test program that uses it has
/// AllocationCount.cpp among its sources (cmake/Tests.cmake sees to it).
struct AllocationCount {
    /// The number of allocations that this thread has made so far.
    static std::size_t now();
};

/// For its lifetime at most `limit` further allocations of the calling thread succeed. Not where a sanitizer
/// brings an allocator of its own.
class AllocationLimit {
public:
    explicit AllocationLimit(std::size_t limit);
    AllocationLimit(const AllocationLimit&) = delete;
    AllocationLimit& operator=(const AllocationLimit&) = delete;
    ~AllocationLimit();

    /// Whether an allocation has failed since.
    bool wasReached() const;
};

} // namespace ZQFoundation::kit

#endif
