// SPDX-License-Identifier: MIT
#include "foundation/objects/Hashing.h"

#include "foundation/system/System.h"

namespace ZQFoundation::detail {

std::uint64_t tableSeed() noexcept {
    // Two threads may both store it: they store the same number.
    static constinit std::uint64_t seed = 0;
    std::uint64_t known = __atomic_load_n(&seed, __ATOMIC_RELAXED);
    if (known == 0) {
        known = system::randomNumber() | 1;
        __atomic_store_n(&seed, known, __ATOMIC_RELAXED);
    }
    return known;
}

} // namespace ZQFoundation::detail
