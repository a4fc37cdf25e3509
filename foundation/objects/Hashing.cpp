// SPDX-License-Identifier: MIT
#include "foundation/objects/Hashing.h"

#include "foundation/system/System.h"

namespace ZQFoundation::detail {

constinit std::uint64_t drawnTableSeed = 0;

std::uint64_t drawTableSeed() noexcept {
    // Two threads may both store it: they store the same number.
    const std::uint64_t seed = system::randomNumber() | 1;
    __atomic_store_n(&drawnTableSeed, seed, __ATOMIC_RELAXED);
    return seed;
}

} // namespace ZQFoundation::detail
