// SPDX-License-Identifier: MIT
// The debug log, which neither writes nor formats.
#include "log/NSDebugLog.h"

#include <gtest/gtest.h>

#include "foundation/objects/NSObjectProtocol.h"
#include "tests/log/LogTestSupport.h"

using namespace ZQFoundation;

namespace {

class Described : public NSObjectProtocol {
public:
    NSString description() const override {
        ++count;
        return "text";
    }
    mutable int count = 0;
};

TEST(NSDebugLog, neitherWritesNorFormats) {
    const Described described;
    const NSString format = "a format %@ with %d and %n";
    const logtest::CapturedOutput output;
    NSDebugLog("text");
    NSDebugLog("%d %s", 7, "text");
    NSDebugLog("%s%n%s"); // nothing of it is read
    NSDebugLog(nullptr);
    NSDebugLog(format);
    NSDebugLog(format, described, 3, format);
    NSDebugLog("%@", described);
    NSDebugLogv(format, ArgumentList());
    NSDebugLogv(nullptr, ArgumentList());
    EXPECT_EQ(output.bytes(), "");
    EXPECT_EQ(described.count, 0);
}

} // namespace
