// SPDX-License-Identifier: MIT
// Viewer, a small host application. Read this file first, then Document.cpp.
//
// At its start it redirects its log to a file of this run in ~/Library/Logs/Example/Viewer (LogFile.cpp).
// Every log call of Viewer has a trace key, so that file stays empty unless somebody asks. Try
//
//     Viewer -TraceDocuments YES
//     Viewer -TraceNetwork YES -TraceLevel 3 -LogFile NO
//
// TraceKeys.h lists the keys. The second one writes to standard error instead.

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <ZQFoundation/ZQFoundation.h>

#include "CommandLine.h"
#include "DocumentStore.h"
#include "Files.h"
#include "LogFile.h"
#include "NetworkSession.h"
#include "OldData.h"
#include "Preferences.h"
#include "ReadingReport.h"
#include "Renderer.h"
#include "Text.h"

using namespace ZQFoundation;

namespace {

enum ExitStatus { succeeded = 0, failed = 1, misused = 2 };

constexpr const char help[] =
    "Usage: Viewer [-<default> <value>]... [<document>]...\n"
    "\n"
    "Opens the documents, sends each through a simulated network session and lays it out\n"
    "on pages. Without a document it works on a sample, which it writes to a temporary\n"
    "folder. It logs into a new file in ~/Library/Logs/Example/Viewer, or in /tmp when the\n"
    "home folder has no Library, and only for the trace keys that are set:\n"
    "\n"
    "  -TraceDocuments YES   what is opened\n"
    "  -TraceNetwork YES     each transfer\n"
    "  -TraceRendering YES   how a document becomes pages\n"
    "  -TraceFiles YES       each file that is read, written or removed\n"
    "  -TraceMigration YES   what moves from the places of earlier releases\n"
    "  -TraceLevel <n>       1: pages, 2: pieces of transfers too, exactly 3: lines too\n"
    "  -LogFile NO           log to standard error\n"
    "  -DisableLogRemoval YES  keep log files; otherwise the newest 5 stay\n"
    "  -PageLength <n>       lines on a page, 4 if not set; -EnableLargePages YES: twice as many\n"
    "  -DebugPageLength <n>  lines on a page, whatever else is set\n"
    "\n"
    "Any default may also be set for all runs:\n"
    "  defaults write com.example.Viewer TraceNetwork YES\n"
    "\n"
    "  --help, --version     print this help, or the version, and do nothing else\n"
    "\n"
    "Exit status: 0 when every document was shown, 1 when one was not, 2 for a wrong command line.\n";

constexpr const char sample[] = "Title: Trace keys\n"
                                "Author: Example\n"
                                "\n"
                                "A line appears while its key is on.\n"
                                "Any key will do for some lines,\n"
                                "others want all of theirs.\n"
                                "\n"
                                "With none of them set, nothing appears.\n";

/// A value of the bundle's Info.plist as text; "?" when there is none.
std::string info(StringView key) {
    const NSString value(NSBundle::mainBundle().objectForInfoDictionaryKey(key));
    return value ? value.utf8() : "?";
}

int showVersion() {
    std::printf("Viewer %s (%s)\n", info("CFBundleShortVersionString").c_str(),
                info("CFBundleVersion").c_str());
    return succeeded;
}

/// For the user, and for whoever reads the log.
int showFailure(const std::string& what, const std::string& reason) {
    ZQLog::logWithFormat("%@: %@", what, reason);
    std::printf("Viewer: %s: %s\n", shown(what).c_str(), shown(reason).c_str());
    return failed;
}

/// Opens, transfers and renders one document.
int showDocument(const std::string& path, ReadingReport& report) {
    std::string reason;
    const Document* const document = DocumentStore::sharedStore().open(path, reason);
    if (document == nullptr) {
        return showFailure(path, reason);
    }
    std::string received;
    NetworkSession session;
    if (!session.transfer(*document, received) || received != document->text()) {
        return showFailure(path, "The transfer failed");
    }
    report.add(*document, path, Renderer(pageLength()).render(*document));
    return succeeded;
}

int showSample(ReadingReport& report) {
    TemporaryFolder folder;
    const std::string path = folder.addFile("Trace keys.txt", sample);
    return path.empty() ? showFailure("the temporary folder", std::strerror(errno))
                        : showDocument(path, report);
}

int showDocuments(const std::vector<std::string>& paths, ReadingReport& report) {
    int status = succeeded;
    for (const std::string& path : paths) {
        if (showDocument(path, report) != succeeded) {
            status = failed;
        }
    }
    return status;
}

int run(const CommandLine& commandLine) {
    registerDefaults();
    startLog();
    preferencesChanged();
    migrateOldData();
    ReadingReport report;
    const int status =
        commandLine.paths.empty() ? showSample(report) : showDocuments(commandLine.paths, report);
    report.show();
    return status;
}

} // namespace

int main(int argc, char** argv) {
    NSProcessInfo::removeDefaultsFromArguments(argc, argv);
    const CommandLine commandLine = parseCommandLine(argc, argv);
    switch (commandLine.action) {
    case CommandLine::Action::open:
        return run(commandLine);
    case CommandLine::Action::showHelp:
        std::fputs(help, stdout);
        return succeeded;
    case CommandLine::Action::showVersion:
        return showVersion();
    case CommandLine::Action::complain:
        std::fprintf(stderr, "Viewer: %s (try --help)\n", shown(commandLine.complaint).c_str());
        return misused;
    }
    return failed;
}
