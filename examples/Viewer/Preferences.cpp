// SPDX-License-Identifier: MIT
#include "Preferences.h"

#include <ZQFoundation/ZQFoundation.h>

#include "TraceKeys.h"

using namespace ZQFoundation;

void register_defaults() {
    NSUserDefaults::standardUserDefaults().registerDefaults(NSDictionary{{"PageLength", 4}});
}

std::size_t page_length() {
    const std::int64_t length = NSUserDefaults::standardUserDefaults().integerForKey("PageLength");
    return length > 0 ? static_cast<std::size_t>(length) : 1;
}

void preferences_changed() {
    {
        // The trace keys are read once, at the first question. Who reads them again does it inside the
        // monitor, so that no other thread asks meanwhile.
        const ZQLog::Synchronized monitor;
        ZQLog::initializeTraceDefaultsDict();
    }
    // "Any trace key": the line appears as soon as one of them, whichever, is on. Its argument is made before
    // the call can find out, so where making it is work, ask first.
    if (ZQLog::aTraceDefaultValueHasBeenActivated()) {
        ZQLog::logFunctionName_logAlways_logForAnyTraceKeyUsingFormat(
            __func__, true, "keys that are on: %@",
            ZQLog::activatedTraceDefaultsKeys().componentsJoinedByString(", "));
    }
}
