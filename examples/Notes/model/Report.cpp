// SPDX-License-Identifier: MIT
// The start-up report as a text.
#include "Report.h"

#include "LogLines.h"

using namespace ZQFoundation;

namespace notes {

NSString startupReport() {
    const LogCapture capture;
    try {
        ZQLogInfo::logAppAndSystemInformation();
    } catch (const NSException& exception) {
        ZQLog::logWithFormat("no system information: %@", exception.reason());
    }
    ZQLogInfo::logTracelogAndFeatureRelatedUserDefaults();
    NSMutableString report;
    for (const std::string& message : capture.messages()) {
        report.appendString(message);
        report.appendString("\n");
    }
    return report.string();
}

} // namespace notes
