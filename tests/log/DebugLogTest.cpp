// SPDX-License-Identifier: MIT
// The debug log is silent and reads none of its arguments.
#include <cerrno>

#include <gtest/gtest.h>

#include "foundation/objects/NSException.h"
#include "log/NSDebugLog.h"
#include "tests/log/LogTestSupport.h"

using namespace ZQFoundation;

namespace {

class Asked : public NSObjectProtocol {
public:
    NSString description() const override {
        ++count;
        return "asked";
    }
    mutable int count = 0;
};

/// What a C caller would call: no template can be in between.
void (*const exported)(const char*, ...) = NSDebugLog;

} // namespace

TEST(DebugLog, writesNothing) {
    const logtest::TraceKeys active({{"TraceIO", "<true/>"}});
    const logtest::CapturedOutput output;
    NSDebugLog("plain");
    NSDebugLog("%d of %@", 7, NSString("text"));
    NSDebugLog(NSString("%@ as a value"), NSString("text"));
    NSDebugLog(NSString("alone"));
    exported("%d of %s", 7, "text");
    NSDebugLogv("%@", ArgumentList());
    EXPECT_EQ(output.bytes(), "");
}

TEST(DebugLog, acceptsAbsentFormats) {
    const logtest::CapturedOutput output;
    exported(nullptr);
    exported(nullptr, 1, 2);
    NSDebugLog(NSString(nullptr));
    NSDebugLog(NSString(nullptr), 7);
    NSDebugLogv(nullptr, ArgumentList());
    EXPECT_EQ(output.bytes(), "");
}

TEST(DebugLog, doesNotEvaluateFormats) {
    // Formatting any of these would read or write through what is no address, or raise.
    const logtest::CapturedOutput output;
    const auto nowhere = reinterpret_cast<char*>(1);
    exported("%s %n %s", nowhere, nowhere, nowhere);
    exported("%s %s %s %s %n");
    exported(nowhere);
    NSDebugLog("%s", nowhere);
    NSDebugLog("%n", nowhere);
    EXPECT_EQ(output.bytes(), "");
}

TEST(DebugLog, asksNoArgumentForItsDescription) {
    const Asked asked;
    const logtest::CapturedOutput output;
    NSDebugLog("%@", asked);
    NSDebugLog("%@ %@", &asked, asked);
    NSDebugLog(NSString("%@"), asked);
    const detail::PackedArguments<1> packed(asked);
    NSDebugLogv("%@", packed.list());
    EXPECT_EQ(asked.count, 0);
    EXPECT_EQ(output.bytes(), "");
}

TEST(DebugLog, keepsErrno) {
    errno = ENOTTY;
    exported("%d", 7);
    NSDebugLogv("%d", ArgumentList());
    EXPECT_EQ(errno, ENOTTY);
}
