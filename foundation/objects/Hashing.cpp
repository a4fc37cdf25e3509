// SPDX-License-Identifier: MIT
// The seed of hash tables, chosen once per process.
#include "foundation/objects/Hashing.h"

#include "foundation/system/System.h"

namespace ZQFoundation::detail {

constinit std::atomic<std::uint64_t> drawnTableSeed{0};

std::uint64_t drawTableSeed() noexcept {
    // Two threads may both store it: they store the same number.
    const std::uint64_t seed = system::randomNumber() | 1;
    drawnTableSeed.store(seed, std::memory_order_relaxed);
    return seed;
}

} // namespace ZQFoundation::detail
