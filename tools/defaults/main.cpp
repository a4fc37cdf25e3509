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

enum ExitStatus { succeeded = 0, failed = 1, misused = 2 };

constexpr const char help[] =
    "Usage: defaults <command> [<argument>]...\n"
    "\n"
    "Reads and changes the user defaults of applications.\n"
    "\n"
    "  read [<domain> [<key>]]            print everything, a domain, or a value\n"
    "  read-type <domain> <key>           print of which type a value is\n"
    "  write <domain> <key> [<type>] <value>\n"
    "                                     set a value\n"
    "  write <domain> '{ <key> = <value>; }'\n"
    "                                     set all values of a domain, and remove any other\n"
    "  remove <domain> [<key>]            remove a value, or all of a domain\n"
    "  delete <domain> [<key>]            the same\n"
    "  rename <domain> <key> <new key>    give a value another key, which must be free\n"
    "  domains                            list the domains\n"
    "  find <word>                        print what mentions the word, in any case\n"
    "  import <domain> <file>|-           set all values of a domain to those in the file\n"
    "  export <domain> <file>|-           write a domain's values to a file, as XML\n"
    "\n"
    "A domain is an application's identifier (com.example.Viewer) or process name, -g for the\n"
    "one that all applications look into, or the path of a property list.\n"
    "\n"
    "Types: -string <text>, -int <n>, -float <x>, -bool YES|NO, -date <date>, -data <hex digits>,\n"
    "-array <value>..., -array-add <value>..., -dict <key> <value>..., -dict-add <key> <value>...\n"
    "Without a type a value is text, or a property list when it begins with one of { ( < \".\n"
    "Elements and entries may have types of their own, collections apart.\n"
    "\n"
    "Examples:\n"
    "  defaults write com.example.Viewer TraceNetwork -bool YES\n"
    "  defaults write com.example.Viewer Names -array one -int 2 '( a, b )'\n"
    "  defaults remove com.example.Viewer TraceNetwork\n"
    "\n"
    "  --help, --version                  print a text and do nothing else\n"
    "\n"
    "Exit status: 0 on success, 1 for a failure, 2 for a wrong command line.\n";

int complain(const std::string& message, ExitStatus status) {
    std::fprintf(stderr, "defaults: %s%s\n", onOneLine(message).c_str(),
                 status == misused ? " (try --help)" : "");
    return status;
}

/// A file-size limit is to be an error like a full disk.
void takeFileSizeLimitAsError() {
    struct sigaction ignore {};
    ignore.sa_handler = SIG_IGN;
    ::sigaction(SIGXFSZ, &ignore, nullptr);
}

int run(const Words& words) {
    for (const std::string& word : words) {
        if (!detail::isWellFormedUtf8(word.data(), word.size())) {
            return complain("an argument is not UTF-8: " + NSString(word).utf8(), failed);
        }
    }
    if (words.empty()) {
        misuse("there is no command");
    }
    if (words[0] == "--help" || words[0] == "-h" || words[0] == "help") {
        std::fputs(help, stdout);
    } else if (words[0] == "--version") {
        std::puts("defaults " ZQ_VERSION);
    } else {
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
