// SPDX-License-Identifier: MIT
// Intercepts the functions that read the environment, which another thread of a host may be changing, and
// counts who calls them. Exits with 0 if no log call and no trace-key query did so after the first ones.
#include <cstdlib>

#include <dlfcn.h>

#include "foundation/process/NSLog.h"
#include "foundation/time/NSDateFormatter.h"
#include "log/ZQLog.h"

using namespace ZQFoundation;

namespace {

int reads = 0;

template <class Function>
Function* next(const char* name) {
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C" {

char* getenv(const char* name) noexcept {
    ++reads;
    return next<char*(const char*)>("getenv")(name);
}

char* secure_getenv(const char* name) noexcept {
    ++reads;
    return next<char*(const char*)>("secure_getenv")(name);
}
}

namespace {

void useTheLibrary() {
    ZQLog::log("a line");
    ZQLog::logForTraceKey_usingFormat("TraceStage", "%@ %d %g", "text", 2, 3.5);
    ZQLog::logForTraceKey_threshold_usingFormat("TraceNever", 0, "%@", "text");
    ZQLog::logStringForAnyTraceKeyUsingFormat("%@", "text");
    ZQLog::logSelf_method_logAlways_logWithFormat(&reads, "method", true, "x");
    NSLog("%@", ZQLog::logPrefix());
    ZQLog::dateFormatterShort().stringFromDate(NSDate::date());
    ZQLog::activatedTraceDefaultsKeys();
}

} // namespace

int main() {
    useTheLibrary();
    const int atFirst = reads;
    useTheLibrary();
    useTheLibrary();
    const int later = reads - atFirst;
    NSTimeZone::resetSystemTimeZone();                // whether the counting counts
    const bool countsAtAll = reads > atFirst + later; // TZ, and where named zones are
    return atFirst > 0 && later == 0 && countsAtAll ? 0 : 1;
}
