// SPDX-License-Identifier: MIT
// Runs a tool and reports its failures.
#include "tools/common/Program.h"

#include <csignal>
#include <cstdio>
#include <exception>

namespace ZQFoundation::tools {

namespace {

int complain(const Tool& tool, const std::string& message, ExitStatus status) {
    std::fprintf(stderr, "%s: %s%s\n", tool.name, tool.onLine(message).c_str(),
                 status == misused ? " (try --help)" : "");
    return status;
}

} // namespace

const char* programName = "";

void ignoreSignals(std::initializer_list<int> signals) noexcept {
    struct sigaction action {};
    action.sa_handler = SIG_IGN;
    for (const int number : signals) {
        ::sigaction(number, &action, nullptr);
    }
}

int runTool(const Tool& tool, int count, char** arguments) {
    programName = tool.name;
    try {
        return tool.run(Words(arguments + (count > 0 ? 1 : 0), arguments + count));
    } catch (const Failure& failure) {
        return complain(tool, failure.message, failed);
    } catch (const Misuse& use) {
        return complain(tool, use.message, misused);
    } catch (const std::exception& exception) {
        return complain(tool, exception.what(), failed);
    }
}

} // namespace ZQFoundation::tools
