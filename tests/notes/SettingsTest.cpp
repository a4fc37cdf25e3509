// SPDX-License-Identifier: MIT
// Settings and trace keys take effect at once and are saved.
#include "examples/Notes/model/Settings.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "tests/kit/Child.h"
#include "tests/kit/Environment.h"
#include "tests/kit/ScratchFolder.h"

using namespace ZQFoundation;
namespace settings = notes::settings;

namespace {

/// Settings of its own, which each run, a child process, reads again.
struct SettingsHome : kit::ScratchFolder {
    template <class Body>
    std::string run(const Body& body) const {
        const kit::Variable configuration("XDG_CONFIG_HOME", path().c_str());
        // The application is that of the Info.plist beside its sources.
        const kit::Path program(detail::overrides::executablePath,
                                ZQ_TEST_SOURCE_DIR "/examples/Notes/Notes");
        return kit::textFromChild([&] {
            settings::registerDefaults();
            ZQLog::initializeTraceDefaultsDict(); // as a process does at the first question
            return NSString(body()).utf8();
        });
    }
};

NSString described(const settings::Values& values) {
    return NSString::stringWithFormat("%d %d %@", values.fontSize, values.wrapsLines, values.language);
}

} // namespace

TEST(Settings, stay) {
    const SettingsHome home;
    const auto look = [] {
        return described(settings::current());
    };
    EXPECT_EQ(home.run(look), "11 1 (null)");
    EXPECT_EQ(home.run([] {
        return NSString("saved").asDefaultOr(settings::save({20, false, "de"}));
    }),
              "saved");
    EXPECT_EQ(home.run(look), "20 0 de");
    EXPECT_EQ(home.run([] {
        return NSUserDefaults::standardUserDefaults().arrayForKey("AppleLanguages").condensedDescription();
    }),
              "( de )");
    EXPECT_EQ(home.run([] { return NSString("saved").asDefaultOr(settings::save({})); }), "saved");
    EXPECT_EQ(home.run(look), "11 1 (null)");
}

TEST(Settings, aSizeBeyondTheLimitsIsTheNearestOne) {
    const SettingsHome home;
    EXPECT_EQ(home.run([] {
        NSUserDefaults::standardUserDefaults().setObject_forKey(1000000, "FontSize");
        return described(settings::current());
    }),
              "72 1 (null)");
}

TEST(Settings, whatCannotBeSavedSaysWhyAndCountsForThisRun) {
    const SettingsHome home;
    home.write("ZQFoundation", "a file is where the folder should be");
    const std::string said = home.run([] {
        const NSString reason = settings::save({20, true, nullptr});
        return described(settings::current()) + " " + reason;
    });
    EXPECT_EQ(said.rfind("20 1 (null) ", 0), 0U) << said;
    EXPECT_NE(said.find(home.path()), std::string::npos) << said;
}

TEST(Settings, aTraceKeyActsAtOnceAndStays) {
    const SettingsHome home;
    const auto look = [] {
        return NSString::stringWithFormat("%d%d", ZQLog::traceKeyIsEnabled("TraceNotes"),
                                          ZQLog::traceKeyIsEnabled("TraceSearch"));
    };
    EXPECT_EQ(home.run([&] {
        const NSString before = look();
        EXPECT_FALSE(settings::setTraceKey("TraceNotes", true));
        return before + " " + look();
    }),
              "00 10");
    EXPECT_EQ(home.run(look), "10");
    EXPECT_EQ(home.run([&] {
        EXPECT_FALSE(settings::setTraceKey("TraceNotes", false));
        return look();
    }),
              "00");
    EXPECT_EQ(home.run(look), "00");
}

TEST(Settings, aReleaseHasOldNotesToMoveUntilThatIsDone) {
    const SettingsHome home;
    const auto look = [] {
        return NSString::stringWithFormat("%d", settings::needsMove());
    };
    EXPECT_EQ(home.run(look), "1");
    EXPECT_EQ(home.run([&] {
        EXPECT_FALSE(settings::rememberMove());
        return look();
    }),
              "0");
    EXPECT_EQ(home.run(look), "0");
    EXPECT_EQ(home.run([&] {
        NSUserDefaults::standardUserDefaults().setObject_forKey("1.10", "LastMove"); // of the release before
        return look();
    }),
              "1");
}
