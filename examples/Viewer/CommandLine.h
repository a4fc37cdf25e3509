// SPDX-License-Identifier: MIT
// The command line of Viewer.
#ifndef ZQFOUNDATION_VIEWER_COMMANDLINE_H
#define ZQFOUNDATION_VIEWER_COMMANDLINE_H

#include <string>
#include <vector>

/// What the user asked for. User defaults (`-TraceLevel 3`) are no longer among the arguments here.
struct CommandLine {
    enum class Action { open, showHelp, showVersion, complain };

    Action action = Action::open;
    std::vector<std::string> paths;
    std::string complaint; ///< only for `complain`
};

CommandLine parseCommandLine(int argc, char** argv);

#endif
