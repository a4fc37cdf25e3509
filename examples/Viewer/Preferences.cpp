// SPDX-License-Identifier: MIT
// Reading the preferences.
#include "Preferences.h"

#include <ZQFoundation/ZQFoundation.h>

#include "TraceKeys.h"

using namespace ZQFoundation;

void registerDefaults() {
    NSUserDefaults::standardUserDefaults().registerDefaults(
        NSDictionary{{"PageLength", 4}, {"LogFile", true}});
}

std::size_t pageLength() {
    const NSUserDefaults& defaults = NSUserDefaults::standardUserDefaults();
    // Switches whose names begin with Enable, Disable or Debug are listed by the start-up report.
    const std::int64_t forced = defaults.integerForKey("DebugPageLength");
    if (forced > 0) {
        return static_cast<std::size_t>(forced);
    }
    const std::int64_t length = defaults.integerForKey("PageLength");
    const std::size_t lines = length > 0 ? static_cast<std::size_t>(length) : 1;
    return defaults.boolForKey("EnableLargePages") ? 2 * lines : lines;
}

void preferencesChanged() {
    {
        // The trace keys are read once, at the first check. Whoever reads them again does so inside the
        // monitor, so that no other thread checks them meanwhile.
        const ZQLog::Synchronized monitor;
        ZQLog::initializeTraceDefaultsDict();
    }
    // "Any trace key": the line appears as soon as any one of them is on. Its argument is made before the
    // call can check that, so where making it takes time, check first.
    if (ZQLog::aTraceDefaultValueHasBeenActivated()) {
        ZQLog::logFunctionName_logAlways_logForAnyTraceKeyUsingFormat(
            __func__, true, "keys that are on: %@",
            ZQLog::activatedTraceDefaultsKeys().componentsJoinedByString(", "));
    }
}
