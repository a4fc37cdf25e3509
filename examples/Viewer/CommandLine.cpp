// SPDX-License-Identifier: MIT
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
        } else if (argument[1] != '-' && i + 1 < argc && argv[i + 1][0] != '-') {
            ++i; // a default with its value
        } else {
            result.action = CommandLine::Action::complain;
            result.complaint = argument[1] == '-' ? "unknown option " : "no value follows the default ";
            result.complaint += argument;
            return result;
        }
    }
    return result;
}
