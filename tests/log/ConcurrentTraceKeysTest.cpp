// SPDX-License-Identifier: MIT
// Every check of a trace key uses one whole reading, during as many re-readings as there may ever be.
#include <atomic>

#include "foundation/process/NSUserDefaults.h"
#include "log/ZQTraceKey.h"
#include "tests/log/HostTesting.h"
#include "tests/log/LogTestSupport.h"

using namespace ZQFoundation;
using hosttest::scaled;

namespace {

constinit const ZQTraceKey traceEven("TraceEven");
constinit const ZQTraceKey traceOdd("TraceOdd");
constinit const ZQTraceKey traceAlways("TraceAlways");
constinit const ZQTraceKey traceNever("TraceNever");
constinit const ZQAllTraceKeysOf traceBoth("TraceEven", "TraceOdd");
constinit const ZQAnyTraceKeyOf traceEither("TraceEven", "TraceOdd");
constinit const ZQTraceKeyThreshold traceMuch("TraceLevel", 1000);

/// The keys of every other reading. More of them in the one than in the other, so that they change their
/// places.
NSDictionary keysOf(bool isOdd) {
    NSMutableDictionary keys;
    keys.setObject_forKey(true, "TraceAlways");
    keys.setObject_forKey(isOdd, "TraceOdd");
    keys.setObject_forKey(!isOdd, "TraceEven");
    keys.setObject_forKey(isOdd ? 7 : 2'000'000'000, "TraceLevel");
    for (int i = 0; i < (isOdd ? 0 : 20); ++i) {
        keys.setObject_forKey(i % 2 == 0, NSString::stringWithFormat("TraceFiller%d", i));
    }
    return keys.dictionary();
}

/// Whether all answers could be those of one reading, each.
bool areWhole() {
    const bool byName = ZQLog::traceKeyIsEnabled("TraceAlways") && !ZQLog::traceKeyIsEnabled("TraceNever") &&
                        ZQLog::aTraceDefaultValueHasBeenActivated();
    const bool byObject = traceAlways.isEnabled() && !traceNever.isEnabled() && traceEither.isEnabled() &&
                          !traceBoth.isEnabled();
    // Which one it is may change between questions, never within one.
    const NSString any = traceEither.logString("x");
    const NSString level = ZQLog::logStringForTraceKey_threshold_usingFormat("TraceLevel", 8, "x");
    const bool isLevel = ZQLog::logStringForTraceKey_threshold_usingFormat("TraceLevel", 7, "x") &&
                         !ZQLog::logStringForTraceKey_value_usingFormat("TraceLevel", 0, "x") &&
                         (!level || level == NSString("TraceLevel>=8: x"));
    return byName && byObject && isLevel &&
           (any == NSString("TraceEven: areWhole() x") || any == NSString("TraceOdd: areWhole() x")) &&
           !ZQLog::logStringForAllTraceKeysOf_usingFormat(NSArray{"TraceEven", "TraceOdd"}, "x");
}

void askBesideRereadings() {
    constexpr long rereadings = scaled(5000, 2000, 1000);
    const logtest::TraceKeys scene{};
    NSUserDefaults& defaults = NSUserDefaults::standardUserDefaults();
    const NSDictionary readings[] = {keysOf(false), keysOf(true)};
    defaults.registerDefaults(readings[0]);
    ZQLog::initializeTraceDefaultsDict();
    std::atomic<bool> ends = false;
    std::atomic<long> wrong = 0;
    std::atomic<long> asked = 0;
    const auto ask = [&] {
        while (!ends) {
            wrong += areWhole() ? 0 : 1;
            ++asked;
        }
    };
    {
        logtest::Background first(ask);
        logtest::Background second(ask);
        for (long i = 1; i <= rereadings; ++i) {
            if (i % 64 == 0) {
                defaults.registerDefaults(readings[i / 64 % 2]);
            }
            if (i % 1000 == 0) { // as a host does it
                const ZQLog::Synchronized monitor;
                ZQLog::initializeTraceDefaultsDict();
            } else {
                ZQLog::initializeTraceDefaultsDict();
            }
        }
        ends = true;
    }
    hosttest::sayScale(std::to_string(rereadings) + " re-readings, " + std::to_string(asked) +
                       " rounds of questions");
    EXPECT_EQ(wrong, 0);
    EXPECT_GT(asked, 0);
    defaults.registerDefaults(readings[1]);
    ZQLog::initializeTraceDefaultsDict();
    EXPECT_TRUE(traceOdd.isEnabled() && !traceEven.isEnabled() && !traceMuch.isEnabled());
}

// What is registered stays registered, so the process is one of its own.
TEST(TraceKeysConcurrency, areAskedBesideRereadingsWithoutEnd) {
    logtest::inFreshProcess(askBesideRereadings);
}

} // namespace
