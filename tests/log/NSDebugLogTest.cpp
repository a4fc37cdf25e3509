// SPDX-License-Identifier: MIT
// The debug log, which writes nothing and reads none of its arguments.
#include "log/NSDebugLog.h"

#include <cerrno>

#include "tests/log/LogScene.h"

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

TEST(NSDebugLog, neitherWritesNorFormatsNorChangesErrno) {
    const kit::TraceKeys active({{"TraceIO", "<true/>"}});
    const Asked asked;
    const NSString format = "a format %@ with %d and %n";
    const detail::PackedArguments<1> packed(asked);
    const kit::CapturedOutput output;
    errno = ENOTTY;
    NSDebugLog("text");
    NSDebugLog("%d of %@", 7, NSString("text"));
    NSDebugLog(format);
    NSDebugLog(format, asked, 3, format);
    NSDebugLog("%@ %@", &asked, asked);
    NSDebugLogv("%@", packed.list());
    NSDebugLogv("%@", ArgumentList());
    exported("%d of %s", 7, "text");
    EXPECT_EQ(errno, ENOTTY);
    EXPECT_EQ(output.bytes(), "");
    EXPECT_EQ(asked.count, 0);
}

TEST(NSDebugLog, acceptsAbsentFormats) {
    const kit::CapturedOutput output;
    exported(nullptr);
    exported(nullptr, 1, 2);
    NSDebugLog(nullptr);
    NSDebugLog(NSString(nullptr), 7);
    NSDebugLogv(nullptr, ArgumentList());
    EXPECT_EQ(output.bytes(), "");
}

// Formatting any of these would read or write through what is not an address, or raise.
TEST(NSDebugLog, readsNoArgument) {
    const kit::CapturedOutput output;
    const auto nowhere = reinterpret_cast<char*>(1);
    exported("%s %n %s", nowhere, nowhere, nowhere);
    exported("%s %s %s %s %n");
    exported(nowhere);
    NSDebugLog("%s%n%s");
    NSDebugLog("%s", nowhere);
    NSDebugLog("%n", nowhere);
    EXPECT_EQ(output.bytes(), "");
}

} // namespace
