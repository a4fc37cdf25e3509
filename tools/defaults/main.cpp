// SPDX-License-Identifier: MIT
// Reads and changes user defaults: the property lists that the library looks into for its settings.
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>

#include "foundation/text/Utf.h"
#include "tools/defaults/Commands.h"
#include "tools/defaults/Failure.h"
#include "tools/defaults/Text.h"

namespace ZQFoundation::defaults {

namespace {

/// As the manual says; scripts distinguish a failure from a mistake in the command line.
enum ExitStatus { succeeded = 0, failed = 1, misused = 2 };

/// The help is in two pieces: the list of commands, which is made from their table, is between them.
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

/// Whether the words are a command and the wish to know what it takes. For a command that does not exist
/// nothing is printed: `runCommand` says so.
bool printHelpOfCommand(const Words& words) {
    const std::string list = words.size() == 2 && asksForHelp(words[1]) ? listOfCommands(words[0]) : "";
    if (!list.empty()) {
        std::printf("Usage: %s <command> [<argument>]...\n\n%s", programName, list.c_str());
    }
    return !list.empty();
}

/// On one line, because a word of the user's or a file's name may contain line feeds.
int complain(const std::string& message, ExitStatus status) {
    std::fprintf(stderr, "%s: %s%s\n", programName, onOneLine(message).c_str(),
                 status == misused ? " (try --help)" : "");
    return status;
}

/// A file-size limit is to be an error like a full disk. The signal would end the program in the middle of a
/// write, without a message.
void takeFileSizeLimitAsError() {
    struct sigaction ignore {};
    ignore.sa_handler = SIG_IGN;
    ::sigaction(SIGXFSZ, &ignore, nullptr);
}

/// Arguments must be UTF-8: a key that was silently repaired would be another key. What was printed is
/// checked at the end, because a full disk shows only when the stream is flushed.
int run(const Words& words) {
    for (const std::string& word : words) {
        if (!detail::isWellFormedUtf8(word.data(), word.size())) {
            return complain("an argument is not UTF-8: " + NSString(word).utf8(), failed);
        }
    }
    if (words.empty()) {
        misuse("there is no command");
    }
    if (asksForHelp(words[0]) || words[0] == "help") {
        printHelp();
    } else if (words[0] == "--version") {
        std::printf("%s " ZQ_VERSION "\n", programName);
    } else if (!printHelpOfCommand(words)) {
        runCommand(words);
    }
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        return complain("standard output cannot be written", failed);
    }
    return succeeded;
}

} // namespace

} // namespace ZQFoundation::defaults

int main(int count, char** arguments) {
    using namespace ZQFoundation::defaults;
    takeFileSizeLimitAsError();
    setProgramName(count > 0 ? arguments[0] : "");
    try {
        return run(Words(arguments + (count > 0 ? 1 : 0), arguments + count));
    } catch (const Failure& failure) {
        return complain(failure.message, failed);
    } catch (const Misuse& use) {
        return complain(use.message, misused);
    } catch (const std::exception& exception) {
        return complain(exception.what(), failed);
    }
}
