// SPDX-License-Identifier: MIT
// Opening the log.
#include "LogFile.h"

#include <ZQFoundation/ZQFoundation.h>

using namespace ZQFoundation;

namespace notes {

namespace {

constexpr std::size_t keptLogFiles = 10;

} // namespace

void startLog() {
    if (NSUserDefaults::standardUserDefaults().boolForKey("LogFile")) {
        const NSString path = ZQLog::standardLogFilePath();
        if (ZQLog::setLogFilePath_createFolder(path, true)) {
            ZQLog::removeOldLogfilesFromFolder_keepingTheNewest(path.stringByDeletingLastPathComponent(),
                                                                keptLogFiles);
        }
    }
    try {
        ZQLogInfo::standardStartupLog();
    } catch (const NSException& exception) { // the system does not describe itself; start anyway
        ZQLog::logWithFormat("no start-up report: %@", exception.reason());
    }
}

} // namespace notes
