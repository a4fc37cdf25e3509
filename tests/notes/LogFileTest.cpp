// SPDX-License-Identifier: MIT
// The log file of a run.
#include "examples/Notes/model/LogFile.h"

#include <gtest/gtest.h>

#include "examples/Notes/model/Settings.h"
#include "tests/kit/Child.h"
#include "tests/kit/Environment.h"
#include "tests/kit/ScratchFolder.h"

using namespace ZQFoundation;

namespace {

/// A home in which runs of the application, child processes, have their logs.
struct LogHome : kit::ScratchFolder {
    template <class Body>
    std::string run(const char* defaults, const Body& body) const {
        const kit::Variable variables[] = {{"HOME", path().c_str()},
                                           {"XDG_CONFIG_HOME", nullptr},
                                           {"XDG_STATE_HOME", nullptr},
                                           {"ZQ_DEFAULTS", defaults}};
        const kit::Path program(detail::overrides::executablePath,
                                ZQ_TEST_SOURCE_DIR "/examples/Notes/Notes");
        return kit::textFromChild([&] {
            notes::settings::registerDefaults();
            ZQLog::initializeTraceDefaultsDict(); // as a process does at the first question
            notes::startLog();
            return NSString(body()).utf8();
        });
    }
    std::string logs() const { return *this / ".local/state/Example/Notes"; }
    NSArray logNames() const {
        return NSFileManager::defaultManager().contentsOfDirectoryAtPath_error(logs());
    }
};

} // namespace

TEST(LogFile, holdsTheReportAndTheLinesOfItsRun) {
    const LogHome home;
    home.run("-TraceNotes YES", [] {
        ZQLog::log("of the run");
        return "";
    });
    ASSERT_EQ(home.logNames().count(), 1U);
    const std::string text = kit::contentsOf(home.logs() + "/" + NSString(home.logNames()[0]).utf8());
    EXPECT_NE(text.find("] Notes 2.0 v200 ("), std::string::npos) << text;
    EXPECT_NE(text.find("] TraceNotes is active."), std::string::npos) << text;
    EXPECT_NE(text.find("] of the run\n"), std::string::npos) << text;
}

TEST(LogFile, onlyTheNewestTenAreKept) {
    const LogHome home;
    const std::string name = NSProcessInfo::processInfo().processName().utf8();
    for (int day = 10; day < 30; ++day) {
        const std::string path = home.write(
            ".local/state/Example/Notes/" + name + ".202403" + std::to_string(day) + "-1407.1.log", "old\n");
        const timespec times[] = {{day * 86400, 0}, {day * 86400, 0}};
        ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
    }
    home.run(nullptr, [] { return ""; });
    EXPECT_EQ(home.logNames().count(), 10U);
    EXPECT_TRUE(home.logNames().containsObject(NSString(name + ".20240329-1407.1.log")));
}

TEST(LogFile, isLeftOutWhenAsked) {
    const LogHome home;
    home.run("-LogFile NO", [] { return ""; });
    EXPECT_EQ(home.logNames().count(), 0U);
}
