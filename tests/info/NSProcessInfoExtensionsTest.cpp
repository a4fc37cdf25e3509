// SPDX-License-Identifier: MIT
// The names and folders of the application.
#include "foundation/process/NSProcessInfo.h"

#include "log/ZQLog.h"
#include "tests/info/InfoScene.h"
#include "tests/log/LogTestSupport.h"

using namespace ZQFoundation;
using infotest::ApplicationScene;
using infotest::utf8Of;

namespace {

constexpr const char* both = "{ ZQCompanyName = Acme; NSHumanReadableShortName = Viewer; }";

std::string logs() { return utf8Of(NSProcessInfo::pathOfLibraryLogSubfolder()); }

std::string applicationSupport() { return utf8Of(NSProcessInfo::pathOfLibraryApplicationSupportSubfolder()); }

std::string subpath() { return utf8Of(NSProcessInfo::appSpecificLibrarySubpath()); }

/// A home folder of the test's own, without links on the way to it.
class Home {
public:
    Home() : resolved_(::realpath(folder_.path().c_str(), nullptr)) {}
    Home(const Home&) = delete;
    Home& operator=(const Home&) = delete;
    ~Home() { std::free(resolved_); }
    std::string path() const { return resolved_; }
    std::string operator/(const std::string& name) const { return folder_ / name; }

private:
    const scene::Folder folder_;
    char* resolved_;
    const scene::Variable home_{"HOME", folder_.path().c_str()};
};

} // namespace

TEST(NSProcessInfoExtensions, takeTheNamesFromTheInfoDictionary) {
    const ApplicationScene application(both);
    EXPECT_EQ(utf8Of(NSProcessInfo::shortCompanyName()), "Acme");
    EXPECT_EQ(utf8Of(NSProcessInfo::shortApplicationName()), "Viewer");
    EXPECT_EQ(subpath(), "Acme/Viewer");
}

TEST(NSProcessInfoExtensions, preferTheLocalizedNames) {
    const ApplicationScene application(both, {"en"});
    application.writeTable("en.lproj/InfoPlist.strings", "NSHumanReadableShortName = Looker;");
    EXPECT_EQ(subpath(), "Acme/Looker");
}

TEST(NSProcessInfoExtensions, leaveOutACompanyThatIsNotGiven) {
    const ApplicationScene application("{ NSHumanReadableShortName = Viewer; }");
    const Home home;
    EXPECT_EQ(utf8Of(NSProcessInfo::shortCompanyName()), "(nil)");
    EXPECT_EQ(subpath(), "Viewer");
    EXPECT_EQ(logs(), home.path() + "/Library/Logs/Viewer");
    EXPECT_EQ(applicationSupport(), home.path() + "/Library/Application Support/Viewer");
}

TEST(NSProcessInfoExtensions, useAnEmptyCompanyAsItStands) {
    const ApplicationScene application("{ ZQCompanyName = \"\"; NSHumanReadableShortName = Viewer; }");
    EXPECT_EQ(utf8Of(NSProcessInfo::shortCompanyName()), "");
    EXPECT_EQ(subpath(), "Viewer");
}

TEST(NSProcessInfoExtensions, useTheTextOfACompanyThatIsNoString) {
    const ApplicationScene application(
        "<plist><dict><key>ZQCompanyName</key><integer>42</integer></dict></plist>");
    EXPECT_EQ(utf8Of(NSProcessInfo::shortCompanyName()), "42");
}

TEST(NSProcessInfoExtensions, fallBackToTheProcessName) {
    const logtest::ProcessName name("viewerd"); // an earlier test may have set another
    const ApplicationScene application("{ CFBundleIdentifier = com.example.v; }");
    const scene::Arguments arguments(detail::overrides::arguments, {"/usr/bin/viewerd"});
    const Home home;
    EXPECT_EQ(utf8Of(NSProcessInfo::shortApplicationName()), "viewerd");
    EXPECT_EQ(applicationSupport(), home.path() + "/Library/Application Support/viewerd");
}

TEST(NSProcessInfoExtensions, useAnEmptyApplicationNameAsItStands) {
    const ApplicationScene application("{ NSHumanReadableShortName = \"\"; }");
    EXPECT_EQ(utf8Of(NSProcessInfo::shortApplicationName()), "");
}

TEST(NSProcessInfoExtensions, composeThePathsWithoutMakingFolders) {
    const ApplicationScene application(both);
    const Home home;
    EXPECT_EQ(logs(), home.path() + "/Library/Logs/Acme/Viewer");
    EXPECT_EQ(applicationSupport(), home.path() + "/Library/Application Support/Acme/Viewer");
    EXPECT_NE(::access((home / "Library").c_str(), F_OK), 0);
}

TEST(NSProcessInfoExtensions, resolveLinksOnTheWayToTheHomeFolder) {
    const ApplicationScene application(both);
    const Home outer;
    const scene::Folder base;
    base.makeFolder("real");
    ASSERT_EQ(::symlink("real", (base / "link").c_str()), 0);
    const scene::Variable home("HOME", (base / "link").c_str());
    char* const resolved = ::realpath((base / "real").c_str(), nullptr);
    EXPECT_EQ(logs(), std::string(resolved) + "/Library/Logs/Acme/Viewer");
    std::free(resolved);
}

TEST(NSProcessInfoExtensions, takeSlashesAndDoubleDotsInNamesAsTheyStand) {
    const Home home;
    {
        const ApplicationScene application(
            "{ ZQCompanyName = \"a/b\"; NSHumanReadableShortName = \"c//d\"; }");
        EXPECT_EQ(logs(), home.path() + "/Library/Logs/a/b/c/d");
    }
    {
        const ApplicationScene application("{ ZQCompanyName = \"..\"; NSHumanReadableShortName = Viewer; }");
        EXPECT_EQ(logs(), home.path() + "/Library/Viewer");
    }
}

// ZQFolderLayout

namespace {

constexpr const char* xdg =
    "{ ZQCompanyName = Acme; NSHumanReadableShortName = Viewer; ZQFolderLayout = XDG; }";

mode_t modeOf(const std::string& path) {
    struct stat information {};
    EXPECT_EQ(::stat(path.c_str(), &information), 0) << path;
    return information.st_mode & 07777;
}

/// Neither variable is set, until a test sets one.
struct NoXdgFolders {
    scene::Variable state{"XDG_STATE_HOME", nullptr};
    scene::Variable data{"XDG_DATA_HOME", nullptr};
};

} // namespace

TEST(NSProcessInfoExtensions, placeAndMakeFoldersAsOtherDesktopApplicationsDoWhenAsked) {
    const ApplicationScene application(xdg);
    const Home home;
    const NoXdgFolders none{};
    EXPECT_EQ(logs(), home.path() + "/.local/state/Acme/Viewer");
    EXPECT_EQ(applicationSupport(), home.path() + "/.local/share/Acme/Viewer");
    EXPECT_EQ(utf8Of(ZQLog::standardLogFolder()), logs());
    for (const char* const folder :
         {".local", ".local/state", ".local/state/Acme/Viewer", ".local/share/Acme"}) {
        EXPECT_EQ(modeOf(home / folder), 0700U) << folder;
    }
    EXPECT_NE(::access((home / "Library").c_str(), F_OK), 0);
}

TEST(NSProcessInfoExtensions, followTheVariablesOfThatLayoutThatAreAbsolutePaths) {
    const ApplicationScene application(xdg);
    const Home home;
    const NoXdgFolders none{};
    {
        const scene::Variable state("XDG_STATE_HOME", (home / "s").c_str());
        const scene::Variable data("XDG_DATA_HOME", (home / "d").c_str());
        EXPECT_EQ(logs(), home.path() + "/s/Acme/Viewer");
        EXPECT_EQ(applicationSupport(), home.path() + "/d/Acme/Viewer");
        EXPECT_EQ(::access((home / ".local").c_str(), F_OK), -1);
    }
    const scene::Variable relative("XDG_STATE_HOME", "s");
    EXPECT_EQ(logs(), home.path() + "/.local/state/Acme/Viewer");
}

TEST(NSProcessInfoExtensions, nameFoldersOfThatLayoutThatCannotBeMade) {
    const ApplicationScene application(xdg);
    const Home home;
    const NoXdgFolders none{};
    const scene::Variable state("XDG_STATE_HOME", "/dev/null/state");
    EXPECT_EQ(logs(), "/dev/null/state/Acme/Viewer");
    EXPECT_EQ(utf8Of(ZQLog::standardLogFolder()), "/tmp");
}

TEST(NSProcessInfoExtensions, leaveFoldersOfThatLayoutAsTheyAreAndIgnoreOtherValues) {
    const Home home;
    const NoXdgFolders none{};
    {
        const ApplicationScene application(xdg);
        logs();
        ASSERT_EQ(::chmod((home / ".local/state/Acme/Viewer").c_str(), 0755), 0);
        logs();
        EXPECT_EQ(modeOf(home / ".local/state/Acme/Viewer"), 0755U);
    }
    for (const char* const value : {"xdg", "\"\"", "( XDG )", "Library"}) {
        const ApplicationScene other(std::string("{ NSHumanReadableShortName = Viewer; ZQFolderLayout = ") +
                                     value + "; }");
        EXPECT_EQ(logs(), home.path() + "/Library/Logs/Viewer") << value;
    }
    const ApplicationScene translated("{ NSHumanReadableShortName = Viewer; }", {"en"});
    translated.writeTable("en.lproj/InfoPlist.strings", "ZQFolderLayout = XDG;");
    EXPECT_EQ(logs(), home.path() + "/Library/Logs/Viewer");
}
