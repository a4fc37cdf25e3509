// SPDX-License-Identifier: MIT
// Memory runs out at any allocation: the call fails or works without it, keeps no lock and no descriptor, and
// the same call works when there is memory again.
#include "foundation/time/NSDateFormatter.h"
#include "foundation/time/NSTimeZone.h"
#include "tests/kit/AllocationCount.h"
#include "tests/kit/Items.h"
#include "tests/log/LogScene.h"

#if !ZQ_TEST_ADDRESS_SANITIZER && !ZQ_TEST_THREAD_SANITIZER

using namespace ZQFoundation;
using kit::ScratchFolder;

namespace {

struct Operation {
    using Action = bool (*)(const ScratchFolder&);
    constexpr Operation(const char* itsName, Action action) : name(itsName), perform(action) {}

    const char* name;
    Action perform; ///< whether all went well
};

bool rereadTraceKeys() {
    const ZQLog::Synchronized monitor;
    ZQLog::initializeTraceDefaultsDict();
    return ZQLog::activatedTraceDefaultsKeys().containsObject("TraceOn");
}

bool rereadTimeZone() {
    NSTimeZone::resetSystemTimeZone();
    return NSTimeZone::timeZoneWithName("Europe/Berlin") &&
           ZQLog::dateFormatterShort().stringFromDate(NSDate::date()).length() == 13;
}

bool writeLongLine() {
    ZQLog::logWithFormat("%@ %5000d", NSArray{"a", 1}, 3);
    return true;
}

bool makeText() {
    return ZQLog::logStringForAnyTraceKeyOf_usingFormat(NSArray{"TraceOn"}, "%5000d", 3).length() == 5009;
}

const Operation operations[] = {
    Operation("a line", [](const ScratchFolder&) { return writeLongLine(); }),
    Operation("a text", [](const ScratchFolder&) { return makeText(); }),
    Operation("the trace keys", [](const ScratchFolder&) { return rereadTraceKeys(); }),
    Operation("the time zone", [](const ScratchFolder&) { return rereadTimeZone(); }),
    Operation("names", [](const ScratchFolder&) { return ZQLog::standardLogFilePath().hasSuffix(".log"); }),
    Operation(
        "an old file",
        [](const ScratchFolder& f) { return ZQLog::setLogFilePath_createFolder(f / "old.log", false); }),
    Operation(
        "a new file",
        [](const ScratchFolder& f) { return ZQLog::setLogFilePath_createFolder(f / "new/a/x.log", true); }),
    Operation("no log file",
              [](const ScratchFolder& f) { return !ZQLog::setLogFilePath_createFolder(f.path(), false); }),
};

/// Performs it with memory for no allocation, for one, and so on, until there was enough.
void expectToSurviveAllLimits(const Operation& operation, const ScratchFolder& folder) {
    const int descriptors = kit::openDescriptors();
    bool wasReached = true;
    for (std::size_t enough = 0; wasReached; ++enough) {
        bool isDone = false;
        {
            const kit::AllocationLimit limit(enough);
            try {
                isDone = operation.perform(folder);
            } catch (const std::bad_alloc&) {
            }
            wasReached = limit.wasReached();
        }
        kit::removeTree(folder / "new");
        ASSERT_EQ(kit::openDescriptors(), descriptors) << "with " << enough;
        EXPECT_TRUE(wasReached || (isDone && enough > 0)) << "with " << enough;
    }
}

TEST(AllocationFailures, keepNeitherLocksNorDescriptors) {
    const kit::TraceKeys keys({{"TraceOn", "<true/>"}});
    const ScratchFolder folder;
    folder.write("old.log", "");
    for (const Operation& operation : operations) {
        SCOPED_TRACE(operation.name);
        kit::expectInChild([&] {
            ZQLog::setOptionalLogFilePath(folder / "first.log"); // keeps a descriptor aside
            EXPECT_TRUE(operation.perform(folder)) << "not even with memory";
            kit::removeTree(folder / "new");
            expectToSurviveAllLimits(operation, folder);
            ZQLog::logForTraceKey_usingFormat("TraceOn", "%@", "works");
            EXPECT_TRUE(operation.perform(folder)) << "not afterwards";
        });
    }
}

} // namespace

#endif
