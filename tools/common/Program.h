// SPDX-License-Identifier: MIT
// What the main functions of the tools have in common.
#ifndef ZQFOUNDATION_COMMON_PROGRAM_H
#define ZQFOUNDATION_COMMON_PROGRAM_H

#include <initializer_list>
#include <string>
#include <vector>

#include "foundation/objects/NSString.h"

namespace ZQFoundation::tools {

using Words = std::vector<std::string>;

enum ExitStatus { succeeded = 0, failed = 1, misused = 2, firstOfSignals = 128 };

/// Ends the program; the message is for the user.
struct Failure {
    std::string message;
};

/// The same for a wrong command line.
struct Misuse {
    std::string message;
};

/// Ends the program with a message formatted as `NSString::stringWithFormat` does.
template <class... Arguments>
[[noreturn]] void fail(FormatString<std::type_identity_t<Arguments>...> format,
                       const Arguments&... arguments) {
    throw Failure{NSString::stringWithFormat(format, arguments...).utf8()};
}

template <class... Arguments>
[[noreturn]] void misuse(FormatString<std::type_identity_t<Arguments>...> format,
                         const Arguments&... arguments) {
    throw Misuse{NSString::stringWithFormat(format, arguments...).utf8()};
}

/// Ignores these signals, so that the calls report errors instead. Writing raises SIGPIPE if there is no
/// reader and SIGXFSZ beyond a file-size limit.
void ignoreSignals(std::initializer_list<int> signals) noexcept;

/// The name of the tool that runs.
extern const char* programName;

struct Tool {
    const char* name;
    /// Converts a message to a part of a line.
    std::string (*onLine)(const std::string& message);
    /// Returns the exit status. May throw Failure, Misuse and any `std::exception`.
    int (*run)(const Words& words);
};

/// Runs the tool with the words after the program's name; reports on standard error what it throws. Returns
/// the exit status.
int runTool(const Tool& tool, int count, char** arguments);

} // namespace ZQFoundation::tools

#endif
