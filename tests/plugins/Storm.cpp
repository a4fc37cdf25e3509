// SPDX-License-Identifier: MIT
// Signal handlers that log while the threads that they interrupt do the same.
#include "tests/plugins/Storm.h"

#include <atomic>
#include <cstdlib>
#include <thread>

#include <ZQFoundation/ZQFoundation.h>

#include "tests/kit/Interruptions.h"

using namespace ZQFoundation;

namespace {

class Caller {
public:
    virtual ~Caller() = default;
};

const Caller caller;
constinit const ZQTraceKey traceStorm("TraceStorm");
constinit const ZQTraceKey traceOther("TraceOther");
std::atomic<long> calls = 0;
std::atomic<long> lines = 0;
std::atomic<bool> isWrong = false;

void check(bool holds) {
    if (!holds) {
        isWrong = true;
    }
}

/// One call of each kind, in turn. What the handler takes apart and keeps for a moment is the library's
/// alone.
void act(long number) {
    switch (number % 8) {
    case 0:
        ZQLog::log("handler");
        ++lines;
        break;
    case 1:
        ZQLog::logForTraceKey_usingFormat("TraceStorm", "handler %ld of %s: %@, %.3f", number, "many",
                                          NSObject(17), 2.5);
        ++lines;
        break;
    case 2:
        if (number % 16 < 8) {
            ZQLog::logSelf_method_logAlways_logForTraceKey_usingFormat(&caller, "act:", true, "TraceStorm",
                                                                       "handler %@", "Gr\u00fc\u00dfe");
        } else {
            traceStorm.log(&caller, "handler %@", "Gr\u00fc\u00dfe");
        }
        ++lines;
        break;
    case 3:
        ZQLog::logWithFormat("handler %5000d", 3);
        ++lines;
        break;
    case 4:
        check(ZQLog::logStringForTraceKey_usingFormat("TraceStorm", "%ld", number).hasPrefix("TraceStorm: "));
        break;
    case 5: {
        const NSString text = ZQLog::logFunctionName_logAlways_logStringWithFormat("act", true, "%6000d", 5);
        check(text.length() == 6006);
        break;
    }
    case 6:
        check(!ZQLog::logStringForTraceKey_usingFormat("TraceOther", "%ld", number));
        check(!ZQLog::traceKeyIsEnabled("TraceOther") && !traceOther.isEnabled());
        traceOther.log("off");
        break;
    default:
        check(ZQLog::traceKeyIsEnabled("TraceStorm") && traceStorm.isEnabled());
        check(ZQLog::aTraceDefaultValueHasBeenActivated());
        break;
    }
}

void handle() { act(calls++); }

/// What a thread is interrupted in: the C library's allocator, and the calls that the handler makes.
void beInterrupted(int times) {
    const kit::Interruptions interruptions(handle, times);
    void* blocks[16] = {};
    for (unsigned turn = 0; !interruptions.areOver(); ++turn) {
        void*& block = blocks[turn % 16];
        std::free(block);
        block = std::malloc(turn * 37 % 5000);
        ZQLog::logAlways_log(turn % 16 == 0, "thread");
        ZQLog::logAlways_logForTraceKey_usingFormat(turn % 16 == 8, "TraceStorm", "thread %u", turn);
        check(ZQLog::traceKeyIsEnabled("TraceStorm") && !ZQLog::traceKeyIsEnabled("TraceOther"));
        check(traceStorm.isEnabled() && !traceOther.isEnabled());
        check(ZQLog::logStringWithFormat("%u", turn).length() != 0);
    }
    for (void* const block : blocks) {
        std::free(block);
    }
}

} // namespace

__attribute__((visibility("default"))) long storm(int threads, int interruptions) {
    // What the first calls read, they read here; a handler has no memory to read it into.
    NSUserDefaults::standardUserDefaults().registerDefaults(NSDictionary{{"TraceStorm", true}});
    ZQLog::initializeTraceDefaultsDict();
    ZQLog::log("start");
    std::atomic<bool> ends = false;
    std::thread reader([&ends] {
        while (!ends) {
            ZQLog::initializeTraceDefaultsDict(); // not under the monitor, for which a handler would wait
        }
    });
    for (int i = 0; i < threads; ++i) {
        std::thread([interruptions] { beInterrupted(interruptions); }).join();
    }
    ends = true;
    reader.join();
    return isWrong ? -1 : lines.load();
}
