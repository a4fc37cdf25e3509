// SPDX-License-Identifier: MIT
// Moves and copies files and folders as the library's migrations do, for the person who must do it by hand.
#include <csignal>
#include <cstdio>
#include <exception>

#include <fcntl.h>
#include <unistd.h>

#include "tools/zqmigrate/Report.h"
#include "tools/zqmigrate/Run.h"

namespace ZQFoundation::zqmigrate {

namespace {

enum ExitStatus { succeeded = 0, failed = 1, misused = 2, firstOfSignals = 128 };

/// More would scroll the rest off a screen.
constexpr std::size_t mostItemsOnTerminal = 20;

constexpr const char help[] =
    "Usage: zqmigrate [<option>]... file <from> <to>\n"
    "       zqmigrate [<option>]... folder <from> <to>\n"
    "       zqmigrate [<option>]... batch <from> <to>\n"
    "\n"
    "Moves a file, a folder with all that it holds, or file by file what is below a folder.\n"
    "A move is a copy and then the removal of the original: whatever fails, the original or\n"
    "a complete copy is there. One line a file tells the code of its result.\n"
    "\n"
    "  --keep-original        copy, do not remove the originals\n"
    "  --create-parents       make the missing folders above a destination\n"
    "  --overwrite            remove what stands at a destination before the copy\n"
    "  --rename               give a copy a free name when its destination is taken\n"
    "  --extension <ext>      batch: only files with that extension, such as \"log\"\n"
    "  --dot-files            batch: also what begins with \".\" in the source folder\n"
    "\n"
    "  -n, --dry-run          change nothing, tell what would become of each file\n"
    "      --json             tell it as JSON\n"
    "  -q, --quiet            tell failures only, and show no progress\n"
    "  -v, --verbose          tell where each file goes\n"
    "  -h, --help             print this text and do nothing else\n"
    "      --version          print the version and do nothing else\n"
    "      --                 what follows is no option\n"
    "\n"
    "Examples:\n"
    "  zqmigrate --dry-run batch --extension log ~/.viewer ~/logs\n"
    "  zqmigrate --create-parents folder ~/.viewer ~/.config/viewer/documents\n"
    "\n"
    "Ctrl-C stops after the file in hand. A failure does not stop the others; what is left to do\n"
    "is listed in the end.\n"
    "\n"
    "Exit status: 0 when every file was moved, 1 when one was not, 2 for a wrong command line,\n"
    "128 and the number of a signal that has stopped the work.\n";

int complain(const std::string& message, ExitStatus status) {
    writeAll(STDERR_FILENO, messageLine(message + (status == misused ? " (try --help)" : "")));
    return status;
}

/// Without a reader, or past a file-size limit, writing is to be an error like a full disk.
void takeWriteSignalsAsErrors() {
    struct sigaction ignore {};
    ignore.sa_handler = SIG_IGN;
    ::sigaction(SIGPIPE, &ignore, nullptr);
    ::sigaction(SIGXFSZ, &ignore, nullptr);
}

/// The next files to be opened would take the numbers of what the starter has closed, and the program's own
/// lines would go into them. Reading and writing stay errors.
bool fillStandardDescriptors() {
    for (int number = STDIN_FILENO; number <= STDERR_FILENO; ++number) {
        const int unusable = number == STDIN_FILENO ? O_WRONLY : O_RDONLY;
        if (::fcntl(number, F_GETFD) < 0 && ::open("/dev/null", unusable) != number) {
            return false;
        }
    }
    return true;
}

int print(const char* text) {
    return writeAll(STDOUT_FILENO, text) ? succeeded : complain("standard output cannot be written", failed);
}

int migrate(const Request& request) {
    Interruption interruption;
    Screen screen(!request.isQuiet, interruption);
    const Outcome outcome = carryOut(request, screen, interruption);
    screen.write(endOfReport(request, outcome));
    screen.finish();
    const bool isTerminal = ::isatty(STDERR_FILENO) == 1;
    std::string summary = summaryOf(request, outcome, isTerminal ? mostItemsOnTerminal : SIZE_MAX);
    if (screen.isBroken()) {
        summary.append(messageLine(outcome.signal != 0
                                       ? "standard output was not written to its end"
                                       : "standard output cannot be written; the work went on without it"));
    }
    writeAll(STDERR_FILENO, summary, &interruption);
    if (outcome.signal != 0) {
        return firstOfSignals + outcome.signal;
    }
    return outcome.isSuccess() && !screen.isBroken() ? succeeded : failed;
}

/// Whether the option stands among the words, before "--".
bool asksFor(const Words& words, const char* option) {
    for (const std::string& word : words) {
        if (word == option || word == "--") {
            return word == option;
        }
    }
    return false;
}

int run(const Words& words) {
    if (asksFor(words, "--help") || asksFor(words, "-h") || (words.size() == 1 && words[0] == "help")) {
        return print(help);
    }
    if (asksFor(words, "--version")) {
        return print("zqmigrate " ZQ_VERSION "\n");
    }
    return migrate(requestFromWords(words));
}

} // namespace

} // namespace ZQFoundation::zqmigrate

int main(int count, char** arguments) {
    using namespace ZQFoundation::zqmigrate;
    if (!fillStandardDescriptors()) {
        return failed;
    }
    takeWriteSignalsAsErrors();
    try {
        return run(Words(arguments + (count > 0 ? 1 : 0), arguments + count));
    } catch (const Misuse& use) {
        return complain(use.message, misused);
    } catch (const std::exception& exception) {
        return complain(exception.what(), failed);
    }
}
