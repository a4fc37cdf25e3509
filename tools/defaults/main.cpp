// SPDX-License-Identifier: MIT
// Reads and changes user defaults: the property lists in which the library looks up settings.
#include <csignal>
#include <cstdio>
#include <string_view>

#include "foundation/text/Utf.h"
#include "tools/common/Text.h"
#include "tools/defaults/Commands.h"

namespace ZQFoundation::tools::defaults {

namespace {

constexpr const char helpStart[] = "Usage: %s <command> [<argument>]...\n"
                                   "\n"
                                   "Reads and changes the user defaults of applications.\n"
                                   "\n";

constexpr const char helpEnd[] =
    "\n"
    "A domain is an application's identifier (com.example.Viewer) or process name, -g for the\n"
    "one that all applications search, or the path of a property list.\n"
    "\n"
    "Types: -string <text>, -int <n>, -float <x>, -bool YES|NO, -date <date>, -data <hex digits>,\n"
    "-array <value>..., -array-add <value>..., -dict <key> <value>..., -dict-add <key> <value>...\n"
    "Without a type, a value is text, or a property list if it begins with one of { ( < \".\n"
    "Elements and entries may have their own types, except collections.\n"
    "\n"
    "Examples:\n"
    "  %s write com.example.Viewer TraceNetwork -bool YES\n"
    "  %s write com.example.Viewer Names -array one -int 2 '( a, b )'\n"
    "  %s remove com.example.Viewer TraceNetwork\n"
    "\n"
    "  -h, --help                         print this help, or that of a command\n"
    "  --version                          print the version\n"
    "\n"
    "Exit status: 0 on success, 1 for a failure, 2 for a wrong command line.\n";

/// Shows the name by which the user has called the program.
void printHelp() {
    std::printf(helpStart, programName);
    std::fputs(listOfCommands({}).c_str(), stdout);
    std::printf(helpEnd, programName, programName, programName);
}

bool asksForHelp(const std::string& word) { return word == "--help" || word == "-h"; }

/// Prints the help of a command if that is requested; false otherwise. Prints nothing for a command that does
/// not exist: `runCommand` reports it.
bool printHelpOfCommand(const Words& words) {
    const std::string list = words.size() == 2 && asksForHelp(words[1]) ? listOfCommands(words[0]) : "";
    if (!list.empty()) {
        std::printf("Usage: %s <command> [<argument>]...\n\n%s", programName, list.c_str());
    }
    return !list.empty();
}

/// Output is flushed here, so that a full disk or a closed pipe becomes a failure instead of a silent loss.
int run(const Words& words) {
    for (const std::string& word : words) {
        if (!detail::isWellFormedUtf8(word.data(), word.size())) {
            fail("an argument is not UTF-8: %@", word);
        }
    }
    if (words.empty()) {
        misuse("a command is missing");
    }
    if (asksForHelp(words[0]) || words[0] == "help") {
        printHelp();
    } else if (words[0] == "--version") {
        std::printf("%s " ZQ_VERSION "\n", programName);
    } else if (!printHelpOfCommand(words)) {
        runCommand(words);
    }
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        fail("standard output cannot be written");
    }
    return succeeded;
}

} // namespace

} // namespace ZQFoundation::tools::defaults

int main(int count, char** arguments) {
    using namespace ZQFoundation::tools;
    ignoreSignals({SIGXFSZ});
    const std::string_view path(count > 0 ? arguments[0] : "");
    const bool isLongName =
        path.substr(path.rfind('/') + 1) == "zqdefaults"; // under which it is always installed
    return runTool({isLongName ? "zqdefaults" : "defaults", onOneLine, defaults::run}, count, arguments);
}
