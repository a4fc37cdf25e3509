// SPDX-License-Identifier: MIT
// Logs from every stage of a process's life, each time with a trace condition and with a description too.
#include <cstdlib>
#include <thread>

#include <pthread.h>

#include "log/ZQLog.h"
#include "log/ZQTraceKey.h"

using namespace ZQFoundation;

namespace {

struct Described : NSObjectProtocol {
    NSString description() const override { return "described"; }
};

constinit const ZQTraceKey traceStage("TraceStage");
constinit const ZQTraceKey traceNever("TraceNever");

void logStage(const char* stage) {
    const Described object;
    ZQLog::logAlways_log(true, stage);
    ZQLog::logForTraceKey_usingFormat("TraceStage", "%s", stage);
    if (traceStage.isEnabled() != ZQLog::traceKeyIsEnabled("TraceStage") || traceNever.isEnabled()) {
        ZQLog::log("wrong answer of a key that remembers");
    }
    traceNever.log("%s", stage);
    ZQLog::logForTraceKey_threshold_usingFormat("TraceNever", 0, "%@", object);
    if (ZQLog::traceKeyIsEnabled("TraceNever") || !ZQLog::logPrefix().hasSuffix("]: ")) {
        ZQLog::log("wrong answer");
    }
}

struct LogsAtBothEnds {
    const char* atStart;
    const char* atEnd;

    LogsAtBothEnds(const char* start, const char* end) : atStart(start), atEnd(end) { logStage(atStart); }
    ~LogsAtBothEnds() { logStage(atEnd); }
};

__attribute__((constructor(101))) void beforeConstructors() { logStage("constructor function"); }
__attribute__((destructor(101))) void afterDestructors() { logStage("destructor function"); }

__attribute__((init_priority(102)))
const LogsAtBothEnds early("early static constructor", "late static destructor");
const LogsAtBothEnds ordinary("static constructor", "static destructor");

pthread_key_t lastKey;

/// Runs after the thread's C++ objects are gone.
void atThreadKeyEnd(void*) { logStage("thread key"); }

void liveInThread() {
    ::pthread_setspecific(lastKey, &lastKey);
    thread_local const LogsAtBothEnds local("thread start", "thread end");
    static_cast<void>(local);
}

} // namespace

int main() {
    std::atexit([] { logStage("exit handler"); });
    ::pthread_key_create(&lastKey, atThreadKeyEnd);
    logStage("main");
    std::thread(liveInThread).join();
    thread_local const LogsAtBothEnds local("main thread start", "main thread end");
    static_cast<void>(local);
    return 0;
}
