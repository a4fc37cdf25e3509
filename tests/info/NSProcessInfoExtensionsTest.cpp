// SPDX-License-Identifier: MIT
#include "foundation/process/NSProcessInfo.h"

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
