// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PROCESS_PROCESSIDENTITY_H
#define ZQFOUNDATION_PROCESS_PROCESSIDENTITY_H

#include <cstddef>
#include <string>
#include <vector>

namespace ZQFoundation::detail {

/// The process's name and number, ready for the prefix of a log line. Immutable and never destroyed.
struct ProcessIdentity {
    const char* name; ///< well-formed UTF-8, not NUL-ended
    std::size_t nameLength;
};

/// The current identity. One atomic load and no allocation, except at first use and after a change of the
/// name. Any thread, at any time.
const ProcessIdentity& processIdentity();

/// The process's arguments, the program's own name first. Empty when they are currently unknown; once known
/// they never change.
std::vector<std::string> processArguments();

} // namespace ZQFoundation::detail

#endif
