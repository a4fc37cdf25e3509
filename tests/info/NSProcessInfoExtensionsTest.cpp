// SPDX-License-Identifier: MIT
// The names and folders of the application.
#include "foundation/process/NSProcessInfo.h"

#include <climits>

#include <pwd.h>

#include "log/ZQLog.h"
#include "tests/info/InfoScene.h"
#include "tests/kit/Environment.h"
#include "tests/kit/Items.h"
#include "tests/kit/ScratchFolder.h"
#include "tests/kit/Settings.h"
#include "tests/kit/Values.h"

using namespace ZQFoundation;
using namespace infotest;

namespace {

std::string company(const std::string& name) { return entry("ZQCompanyName", name); }
std::string shortName(const std::string& name) { return entry("NSHumanReadableShortName", name); }
const std::string both = company("Acme") + shortName("Viewer");

/// The program runs from an application of these entries, under the name "viewerd", with a home of its own.
class Identity {
public:
    explicit Identity(const std::string& entries, const char* homeName = "home",
                      const std::vector<std::string>& localizations = {})
        : application(plistOf(entries), localizations), homeFolder_(folder.makeFolder("home")),
          home_("HOME", (folder / homeName).c_str()) {}

    std::string home() const { return kit::realPath(homeFolder_); }
    std::string operator/(const std::string& name) const { return homeFolder_ + "/" + name; }

    const kit::ScratchFolder folder;
    const ApplicationScene application;

private:
    const kit::ProcessName process_{"viewerd"};
    const std::string homeFolder_;
    const kit::Variable home_;
    const kit::Variable state_{"XDG_STATE_HOME", nullptr};
    const kit::Variable data_{"XDG_DATA_HOME", nullptr};
};

std::string companyName() { return kit::utf8Of(NSProcessInfo::shortCompanyName()); }
std::string applicationName() { return kit::utf8Of(NSProcessInfo::shortApplicationName()); }
std::string subpath() { return kit::utf8Of(NSProcessInfo::appSpecificLibrarySubpath()); }
std::string supportFolder() { return kit::utf8Of(NSProcessInfo::pathOfLibraryApplicationSupportSubfolder()); }
std::string logFolder() { return kit::utf8Of(NSProcessInfo::pathOfLibraryLogSubfolder()); }

} // namespace

TEST(NSProcessInfoExtensions, composeNamesAndFoldersFromCompanyAndShortName) {
    struct Row {
        std::string entries;
        const char* company;
        const char* name;
        const char* subpath;
        const char* belowLogs; ///< of the log folder, after the home folder
    };
    const Row rows[] = {
        {both, "Acme", "Viewer", "Acme/Viewer", "/Library/Logs/Acme/Viewer"},
        {shortName("Viewer"), "(nil)", "Viewer", "Viewer", "/Library/Logs/Viewer"},
        {company("Acme"), "Acme", "viewerd", "Acme/viewerd", "/Library/Logs/Acme/viewerd"},
        {"", "(nil)", "viewerd", "viewerd", "/Library/Logs/viewerd"},
        {"<key>ZQCompanyName</key><integer>42</integer>"
         "<key>NSHumanReadableShortName</key><integer>7</integer>",
         "42", "7", "42/7", "/Library/Logs/42/7"},
        // Only absence is asked for: an empty text counts as present.
        {company("") + shortName("Viewer"), "", "Viewer", "Viewer", "/Library/Logs/Viewer"},
        {company("Acme") + shortName(""), "Acme", "", "Acme", "/Library/Logs/Acme"},
        {shortName(""), "(nil)", "", "", "/Library/Logs"},
        // Nothing is trimmed.
        {company(" Acme ") + shortName(" V "), " Acme ", " V ", " Acme / V ", "/Library/Logs/ Acme / V "},
        {company("\xC3\x84gidius") + shortName("V"), "\xC3\x84gidius", "V", "\xC3\x84gidius/V",
         "/Library/Logs/\xC3\x84gidius/V"},
        // Slashes and dots are not replaced either.
        {company("A/B") + shortName("C//D"), "A/B", "C//D", "A/B/C/D", "/Library/Logs/A/B/C/D"},
        {company("Acme") + shortName("../Other"), "Acme", "../Other", "Acme/../Other", "/Library/Logs/Other"},
        {shortName(".."), "(nil)", "..", "..", "/Library"},
        {company("..") + shortName("../V"), "..", "../V", "../../V", "/V"},
        {company(".") + shortName("V"), ".", "V", "./V", "/Library/Logs/V"},
        {company("Acme") + shortName("V/"), "Acme", "V/", "Acme/V", "/Library/Logs/Acme/V"},
        {company("Acme/") + shortName("/V"), "Acme/", "/V", "Acme/V", "/Library/Logs/Acme/V"},
        {shortName("/V"), "(nil)", "/V", "/V", "/Library/Logs/V"},
        // Alone, the name is the subpath as it is.
        {shortName("a//b/"), "(nil)", "a//b/", "a//b/", "/Library/Logs/a/b"},
        {company("~") + shortName("V"), "~", "V", "~/V", "/Library/Logs/~/V"},
    };
    for (const Row& row : rows) {
        const Identity identity(row.entries);
        EXPECT_EQ(companyName(), row.company) << row.entries;
        EXPECT_EQ(applicationName(), row.name) << row.entries;
        EXPECT_EQ(subpath(), row.subpath) << row.entries;
        EXPECT_EQ(logFolder(), identity.home() + row.belowLogs) << row.entries;
    }
    const Identity folded(shortName("../Logs/V"));
    EXPECT_EQ(supportFolder(), folded.home() + "/Library/Logs/V");
}

TEST(NSProcessInfoExtensions, composeThePathsWithoutMakingFolders) {
    const Identity identity(both);
    EXPECT_EQ(supportFolder(), identity.home() + "/Library/Application Support/Acme/Viewer");
    EXPECT_EQ(logFolder(), identity.home() + "/Library/Logs/Acme/Viewer");
    EXPECT_EQ(::rmdir((identity / "").c_str()), 0) << "something was made in the home folder";
}

TEST(NSProcessInfoExtensions, preferTheLocalizedNames) {
    const Identity identity(both, "home", {"en"});
    identity.application.writeTable("en.lproj/InfoPlist.strings", "NSHumanReadableShortName = \"Looker\";\n");
    EXPECT_EQ(subpath(), "Acme/Looker");
}

TEST(NSProcessInfoExtensions, useTheProcessNameWithoutAnInfoDictionary) {
    const kit::ProcessName process("viewerd");
    const ApplicationScene none("");
    EXPECT_EQ(companyName(), "(nil)");
    EXPECT_EQ(applicationName(), "viewerd");
    EXPECT_EQ(subpath(), "viewerd");
    const kit::ProcessName renamed("renamed");
    EXPECT_EQ(applicationName(), "renamed") << "it is read afresh";
}

TEST(NSProcessInfoExtensions, readTheHomeFolderAfresh) {
    const Identity identity(shortName("V"));
    EXPECT_EQ(logFolder(), identity.home() + "/Library/Logs/V");
    const std::string other = identity.folder.makeFolder("other");
    const kit::Variable home("HOME", other.c_str());
    EXPECT_EQ(logFolder(), kit::realPath(other) + "/Library/Logs/V");
    EXPECT_EQ(supportFolder(), kit::realPath(other) + "/Library/Application Support/V");
    home.change(nullptr);
    const passwd* const account = ::getpwuid(::getuid());
    ASSERT_NE(account, nullptr);
    const std::string listed = account->pw_dir;
    const std::string resolved = ::access(listed.c_str(), F_OK) == 0 ? kit::realPath(listed) : listed;
    EXPECT_EQ(logFolder(), (resolved == "/" ? "" : resolved) + "/Library/Logs/V") << "of the user database";
}

TEST(NSProcessInfoExtensions, resolveLinksOnTheWayToTheHomeFolderOnly) {
    {
        const Identity identity(both, "link/inner");
        ASSERT_EQ(::symlink("home", (identity.folder / "link").c_str()), 0);
        identity.folder.makeFolder("home/inner");
        EXPECT_EQ(logFolder(), identity.home() + "/inner/Library/Logs/Acme/Viewer");
        EXPECT_EQ(supportFolder(), identity.home() + "/inner/Library/Application Support/Acme/Viewer");
    }
    {
        const Identity identity(shortName("V"));
        identity.folder.makeFolder("elsewhere/Logs/V");
        ASSERT_EQ(::symlink("../elsewhere", (identity / "Library").c_str()), 0);
        EXPECT_EQ(logFolder(), identity.home() + "/Library/Logs/V");
    }
    const Identity identity(shortName("V"), "gone/for/good/");
    EXPECT_EQ(logFolder(), kit::realPath(identity.folder.path()) + "/gone/for/good/Library/Logs/V");
}

TEST(NSProcessInfoExtensions, resolveLinksForDoubleDotsIfAllOfThePathExists) {
    const Identity identity(company("Acme") + shortName("../V"));
    identity.folder.makeFolder("elsewhere/Logs/V");
    identity.folder.makeFolder("elsewhere/Logs/Acme");
    ASSERT_EQ(::symlink("../elsewhere", (identity / "Library").c_str()), 0);
    EXPECT_EQ(logFolder(), kit::realPath(identity.folder / "elsewhere/Logs/V"));
}

// ZQFolderLayout

namespace {

const std::string xdg = both + entry("ZQFolderLayout", "XDG");

} // namespace

TEST(NSProcessInfoExtensions, placeAndMakeFoldersAsOtherDesktopApplicationsDoWhenAsked) {
    const Identity identity(xdg);
    EXPECT_EQ(logFolder(), identity.home() + "/.local/state/Acme/Viewer");
    EXPECT_EQ(supportFolder(), identity.home() + "/.local/share/Acme/Viewer");
    EXPECT_EQ(kit::utf8Of(ZQLog::standardLogFolder()), logFolder());
    for (const char* const folder :
         {".local", ".local/state", ".local/state/Acme/Viewer", ".local/share/Acme"}) {
        EXPECT_EQ(kit::modeOf(identity / folder), 0700U) << folder;
    }
    EXPECT_NE(::access((identity / "Library").c_str(), F_OK), 0);
    ASSERT_EQ(::chmod((identity / ".local/state/Acme/Viewer").c_str(), 0755), 0);
    logFolder();
    EXPECT_EQ(kit::modeOf(identity / ".local/state/Acme/Viewer"), 0755U)
        << "an existing folder stays as it is";
}

TEST(NSProcessInfoExtensions, followTheVariablesOfThatLayoutThatAreAbsolutePaths) {
    const Identity identity(xdg);
    const kit::Variable state("XDG_STATE_HOME", (identity / "s").c_str());
    const kit::Variable data("XDG_DATA_HOME", (identity / "d").c_str());
    EXPECT_EQ(logFolder(), identity.home() + "/s/Acme/Viewer");
    EXPECT_EQ(supportFolder(), identity.home() + "/d/Acme/Viewer");
    EXPECT_EQ(::access((identity / ".local").c_str(), F_OK), -1);
    state.change("s");
    EXPECT_EQ(logFolder(), identity.home() + "/.local/state/Acme/Viewer");
    // Folders that cannot be made are named nevertheless.
    state.change("/dev/null/state");
    EXPECT_EQ(logFolder(), "/dev/null/state/Acme/Viewer");
    EXPECT_EQ(kit::utf8Of(ZQLog::standardLogFolder()), "/tmp");
}

TEST(NSProcessInfoExtensions, ignoreOtherNamesOfLayouts) {
    for (const std::string value : {"<string>xdg</string>", "<string/>", "<string>Library</string>",
                                    "<array><string>XDG</string></array>"}) {
        const Identity identity(shortName("Viewer") + "<key>ZQFolderLayout</key>" + value);
        EXPECT_EQ(logFolder(), identity.home() + "/Library/Logs/Viewer") << value;
    }
    const Identity translated(shortName("Viewer"), "home", {"en"});
    translated.application.writeTable("en.lproj/InfoPlist.strings", "ZQFolderLayout = XDG;");
    EXPECT_EQ(logFolder(), translated.home() + "/Library/Logs/Viewer");
}
