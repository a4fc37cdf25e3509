// SPDX-License-Identifier: MIT
// How a harness reports a failed check.
#ifndef ZQFOUNDATION_FUZZ_FUZZING_H
#define ZQFOUNDATION_FUZZ_FUZZING_H

#include <cstdio>
#include <cstdlib>
#include <string_view>

/// What every harness of this folder uses.
namespace ZQFoundation::fuzzing {

/// Ends the program, so that the input is kept, unless the library did what an independent check expects.
inline void require(bool holds, const char* what) {
    if (!holds) {
        std::fprintf(stderr, "fuzzing: %s\n", what);
        std::abort();
    }
}

/// The same for two texts that must be equal; shows both.
inline void requireEqual(std::string_view found, std::string_view expected, const char* what) {
    if (found != expected) {
        std::fprintf(stderr, "fuzzing: %s\n   found: %.*s\nexpected: %.*s\n", what,
                     static_cast<int>(found.size()), found.data(), static_cast<int>(expected.size()),
                     expected.data());
        std::abort();
    }
}

} // namespace ZQFoundation::fuzzing

#endif
