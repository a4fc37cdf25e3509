// SPDX-License-Identifier: MIT
// Declares the commands of `defaults`.
#ifndef ZQFOUNDATION_DEFAULTS_COMMANDS_H
#define ZQFOUNDATION_DEFAULTS_COMMANDS_H

#include "tools/defaults/Values.h"

namespace ZQFoundation::tools::defaults {

/// The help: a line or two for each command, or for the command of that name; empty if there is no such
/// command.
std::string listOfCommands(const std::string& name);

/// Carries out the command that the words form: "write", "com.example.Viewer", "TraceLevel", "-int", "3".
/// Throws Failure or Misuse.
void runCommand(const Words& words);

} // namespace ZQFoundation::tools::defaults

#endif
