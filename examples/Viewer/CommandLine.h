// SPDX-License-Identifier: MIT
#ifndef ZQFOUNDATION_VIEWER_COMMANDLINE_H
#define ZQFOUNDATION_VIEWER_COMMANDLINE_H

#include <string>
#include <vector>

/// What the user asked for. User defaults on the command line (`-TraceLevel 3`) are passed over here: the
/// library reads them itself.
struct CommandLine {
    enum class Action { open, showHelp, showVersion, complain };

    Action action = Action::open;
    std::vector<std::string> paths;
    std::string complaint; ///< only for `complain`
};

CommandLine parseCommandLine(int argc, char** argv);

#endif
