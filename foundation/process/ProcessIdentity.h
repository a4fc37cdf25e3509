// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PROCESS_PROCESSIDENTITY_H
#define ZQFOUNDATION_PROCESS_PROCESSIDENTITY_H

#include <cstddef>
#include <string>
#include <vector>

namespace ZQFoundation::detail {

/// What this process is called, ready for the prefix of a log line. Immutable and never destroyed.
struct ProcessIdentity {
    const char* name; ///< well-formed UTF-8, not NUL-ended
    std::size_t nameLength;
};

/// The identity as it is now. One atomic load and no allocation, except at first use and after a change of
/// the name. Any thread, at any time.
const ProcessIdentity& processIdentity();

/// The process's arguments, the program's own name first. Empty when they cannot be told at the moment; once
/// told they stay.
std::vector<std::string> processArguments();

} // namespace ZQFoundation::detail

#endif
