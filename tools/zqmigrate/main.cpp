// SPDX-License-Identifier: MIT
// Moves and copies files and folders by hand, in the same way as the library's migrations.
#include <fcntl.h>
#include <unistd.h>

#include "tools/zqmigrate/Interruption.h"
#include "tools/zqmigrate/Report.h"
#include "tools/zqmigrate/Text.h"

namespace ZQFoundation::tools::zqmigrate {

namespace {

constexpr const char help[] =
    "Usage: zqmigrate [<option>]... file <from> <to>\n"
    "       zqmigrate [<option>]... folder <from> <to>\n"
    "       zqmigrate [<option>]... batch <from> <to>\n"
    "\n"
    "Moves a file, a folder with all its contents, or, file by file, what is below a folder.\n"
    "A move is a copy and then the removal of the original: whatever fails, the original or\n"
    "a complete copy exists.\n"
    "\n"
    "  --keep-original        copy without removing the originals\n"
    "  --create-parents       create the missing parent folders of a destination\n"
    "  --overwrite            remove the item at a destination before the copy\n"
    "  --rename               give a copy a free name if its destination exists\n"
    "  --extension <ext>      batch: only files with that extension, such as \"log\"\n"
    "  --dot-files            batch: also items in the source folder that begin with \".\"\n"
    "\n"
    "  -n, --dry-run          change nothing, report what would happen to each file\n"
    "      --json             report as JSON\n"
    "  -q, --quiet            report only failures, and show no progress\n"
    "  -v, --verbose          report where each file goes\n"
    "  -h, --help             print this text and do nothing else\n"
    "      --version          print the version and do nothing else\n"
    "      --                 what follows is not an option\n"
    "\n"
    "Examples:\n"
    "  zqmigrate --dry-run batch --extension log ~/.viewer ~/logs\n"
    "  zqmigrate --create-parents folder ~/.viewer ~/.config/viewer/documents\n"
    "\n"
    "Standard output has a line for each file that was migrated. A failure does not stop the\n"
    "others; at the end standard error lists what is left to do, at most 20 files of it.\n"
    "Ctrl-C stops the work: what was moved stays moved, the rest is not touched.\n"
    "\n"
    "Exit status: 0 if every file was migrated, 1 if one was not, 2 for a wrong command\n"
    "line, 128 plus the number of the signal that stopped the work.\n";

std::string onLine(const std::string& message) { return shown(pathOf(message)); }

/// If the standard streams were closed when the program was started, the next files to be opened would get
/// their numbers, and the program's own lines would go there. Writing to such a stream remains an error.
bool fillStandardDescriptors() {
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
        // A new descriptor gets the lowest free number.
        if (::fcntl(stream, F_GETFD) < 0 && ::open("/dev/null", O_RDONLY) != stream) {
            return false;
        }
    }
    return true;
}

/// Help that cannot be written is a failure, since a script may redirect it.
int print(const char* text) {
    if (!writeAll(STDOUT_FILENO, text)) {
        fail("standard output cannot be written");
    }
    return succeeded;
}

/// The bar is removed before the summary is written. A run whose report could not be written has failed, even
/// if all files arrived: a program that reads the report would miss some.
int migrate(const Request& request) {
    awaitSignals();
    Screen screen(!request.isQuiet);
    const Outcome outcome = carryOut(request, screen);
    screen.write(endOfReport(request, outcome));
    screen.finish();
    std::string summary = summaryOf(request, outcome);
    if (screen.isBroken()) {
        summary.append(messageLine(outcome.signal != 0
                                       ? "standard output was not written completely"
                                       : "standard output cannot be written; the work continued without it"));
    }
    writeAll(STDERR_FILENO, summary);
    if (outcome.signal != 0) {
        return firstOfSignals + outcome.signal;
    }
    return outcome.isSuccess() && !screen.isBroken() ? succeeded : failed;
}

/// Help and version do nothing else, whatever the other words are.
int run(const Words& words) {
    const Request request = requestFromWords(words);
    if (request.wantsHelp) {
        return print(help);
    }
    return request.wantsVersion ? print("zqmigrate " ZQ_VERSION "\n") : migrate(request);
}

} // namespace

} // namespace ZQFoundation::tools::zqmigrate

int main(int count, char** arguments) {
    using namespace ZQFoundation::tools;
    if (!zqmigrate::fillStandardDescriptors()) {
        zqmigrate::writeAll(STDERR_FILENO,
                            "zqmigrate: a standard stream is closed, and /dev/null cannot take its place\n");
        return failed;
    }
    ignoreSignals({SIGPIPE, SIGXFSZ});
    return runTool({"zqmigrate", zqmigrate::onLine, zqmigrate::run}, count, arguments);
}
