// SPDX-License-Identifier: MIT
// Opening the log.
#include "LogFile.h"

#include <ZQFoundation/ZQFoundation.h>

using namespace ZQFoundation;

namespace {

constexpr std::size_t keptLogFiles = 5;

/// Standard error is the log file from here on, for what Viewer prints there itself too.
void openLogFile() {
    const NSString path = ZQLog::standardLogFilePath();
    if (!ZQLog::setLogFilePath_createFolder(path, true)) {
        return; // a line on standard error says why, and the log stays there
    }
    if (!NSUserDefaults::standardUserDefaults().boolForKey("DisableLogRemoval")) {
        ZQLog::removeOldLogfilesFromFolder_keepingTheNewest(path.stringByDeletingLastPathComponent(),
                                                            keptLogFiles);
    }
}

} // namespace

void startLog() {
    if (NSUserDefaults::standardUserDefaults().boolForKey("LogFile")) {
        openLogFile();
    }
    try {
        ZQLogInfo::standardStartupLog();
    } catch (const NSException& exception) {
        // The system does not describe itself; the program starts anyway.
        ZQLog::logWithFormat("no start-up report: %@", exception.reason());
    }
}
