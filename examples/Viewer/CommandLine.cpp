// SPDX-License-Identifier: MIT
// Reading the command line.
#include "CommandLine.h"

#include <cstring>

CommandLine parseCommandLine(int argc, char** argv) {
    CommandLine result;
    for (int i = 1; i < argc; ++i) {
        const char* const argument = argv[i];
        if (argument[0] != '-' || argument[1] == '\0') {
            result.paths.emplace_back(argument);
        } else if (std::strcmp(argument, "-h") == 0 || std::strcmp(argument, "--help") == 0) {
            result.action = CommandLine::Action::showHelp;
            return result;
        } else if (std::strcmp(argument, "--version") == 0) {
            result.action = CommandLine::Action::showVersion;
            return result;
        } else {
            const bool isDefault = argument[1] != '-' && argument[2] != '\0';
            result.action = CommandLine::Action::complain;
            result.complaint = isDefault ? "no value follows the default " : "unknown option ";
            result.complaint += argument;
            return result;
        }
    }
    return result;
}
