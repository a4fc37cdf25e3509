// SPDX-License-Identifier: MIT
// Memory that ends at any allocation: the call fails or does without, keeps no lock and no descriptor, and
// the same call works when there is memory again.
#include "tests/kit/AllocationCount.h"
#include "tests/log/LogTestSupport.h"

#include "foundation/time/NSDateFormatter.h"
#include "foundation/time/NSTimeZone.h"
#include "tests/log/HostTesting.h"

#if !defined(ZQ_TEST_ADDRESS_SANITIZER) && !defined(ZQ_TEST_THREAD_SANITIZER)

using namespace ZQFoundation;
using namespace hosttest;
using kit::AllocationLimit;

namespace {

int openDescriptors() {
    int count = 0;
    for (int descriptor = 0; descriptor < 256; ++descriptor) {
        count += ::fcntl(descriptor, F_GETFD) >= 0 ? 1 : 0;
    }
    return count;
}

struct Operation {
    const char* name;
    bool (*perform)(const scene::Folder&); ///< whether all went well
};

const Operation operations[] = {
    {"a line",
     [](const scene::Folder&) {
         ZQLog::logWithFormat("%@ %5000d", NSArray{"a", 1}, 3);
         return true;
     }},
    {"a text",
     [](const scene::Folder&) {
         return ZQLog::logStringForAnyTraceKeyOf_usingFormat(NSArray{"TraceOn"}, "%5000d", 3).length() ==
                5009;
     }},
    {"the trace keys",
     [](const scene::Folder&) {
         const ZQLog::Synchronized monitor;
         ZQLog::initializeTraceDefaultsDict();
         return ZQLog::activatedTraceDefaultsKeys().containsObject("TraceOn");
     }},
    {"the time zone",
     [](const scene::Folder&) {
         NSTimeZone::resetSystemTimeZone();
         return bool(NSTimeZone::timeZoneWithName("Europe/Berlin")) &&
                ZQLog::dateFormatterShort().stringFromDate(NSDate::date()).length() == 13;
     }},
    {"names of log files",
     [](const scene::Folder&) {
         return ZQLog::standardLogFilePath().hasSuffix(".log");
     }},
    {"an old log file",
     [](const scene::Folder& folder) {
         return ZQLog::setLogFilePath_createFolder(folder / "old.log", false);
     }},
    {"a new log file in a new folder",
     [](const scene::Folder& folder) {
         return ZQLog::setLogFilePath_createFolder(folder / "new/a/x.log", true);
     }},
    {"no log file",
     [](const scene::Folder& folder) {
         return !ZQLog::setLogFilePath_createFolder(folder.path(), false);
     }},
};

/// Performs it with memory for no allocation, for one, and so on, until there was enough. Returns how often
/// there was not.
int performUnderAllLimits(const Operation& operation, const scene::Folder& folder, const Findings& findings) {
    const int descriptors = openDescriptors();
    for (int enough = 0;; ++enough) {
        bool isDone = false;
        bool wasReached = false;
        {
            const AllocationLimit limit(static_cast<std::size_t>(enough));
            try {
                isDone = operation.perform(folder);
            } catch (const std::bad_alloc&) {
            }
            wasReached = limit.wasReached();
        }
        scene::removeTree(folder / "new");
        const std::string where = std::string(operation.name) + " with " + std::to_string(enough);
        const bool isKept = findings.expect(openDescriptors() == descriptors, where + " changes descriptors");
        if (!wasReached || !isKept) {
            findings.expect(isDone, where + " fails");
            return enough;
        }
    }
}

TEST(AllocationFailures, keepNeitherLocksNorDescriptors) {
    const logtest::TraceKeys keys({{"TraceOn", "<true/>"}});
    const scene::Folder folder;
    folder.write("old.log", "");
    for (const Operation& operation : operations) {
        EXPECT_EQ(inChild(
                      [&](const Findings& findings) {
                          ZQLog::setOptionalLogFilePath(folder / "first.log"); // keeps a descriptor aside
                          findings.expect(operation.perform(folder), "not even with memory");
                          scene::removeTree(folder / "new");
                          const int failures = performUnderAllLimits(operation, folder, findings);
                          findings.expect(failures > 0, "allocates nothing");
                          ZQLog::logForTraceKey_usingFormat("TraceOn", "%@", "works");
                          findings.expect(operation.perform(folder), "not afterwards");
                      },
                      60),
                  "")
            << operation.name;
    }
}

} // namespace

#endif
