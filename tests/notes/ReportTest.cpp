// SPDX-License-Identifier: MIT
// The start-up report as a text.
#include "examples/Notes/model/Report.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "examples/Notes/model/LogLines.h"
#include "examples/Notes/model/Settings.h"
#include "tests/kit/Child.h"
#include "tests/kit/Environment.h"
#include "tests/kit/ScratchFolder.h"

using namespace ZQFoundation;

TEST(Report, namesApplicationSystemAndEachSwitchWithItsCommand) {
    const kit::ScratchFolder home;
    const kit::NoLanguages none;
    const kit::Variable configuration("XDG_CONFIG_HOME", home.path().c_str());
    const kit::Path program(detail::overrides::executablePath, ZQ_TEST_SOURCE_DIR "/examples/Notes/Notes");
    const std::string report = kit::textFromChild([] {
        notes::LogLines::shared().observe();
        static_cast<void>(notes::settings::setTraceKey("TraceNotes", true));
        NSUserDefaults::standardUserDefaults().setObject_forKey(true, "EnableLargeNotes");
        return notes::startupReport().utf8();
    });
    EXPECT_EQ(report.rfind("Notes 2.0 v200 (en), running on ", 0), 0U) << report;
    for (const char* const line :
         {"TraceNotes is active.        Deactivate using: defaults write com.example.Notes TraceNotes NO\n",
          "EnableLargeNotes is active.  Disable the feature using: defaults remove com.example.Notes "
          "EnableLargeNotes\n"}) {
        EXPECT_NE(report.find(line), std::string::npos) << report;
    }
}
