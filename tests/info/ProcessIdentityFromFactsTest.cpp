// SPDX-License-Identifier: MIT
// The names and folders of the application, from given facts.
#include <climits>

#include <pwd.h>

#include "foundation/process/NSProcessInfo.h"
#include "tests/info/FactsTesting.h"

using namespace ZQFoundation;
using factstest::entry;
using factstest::plistOf;
using factstest::utf8Of;

namespace {

std::string realPath(const std::string& path) {
    char resolved[PATH_MAX];
    return ::realpath(path.c_str(), resolved) != nullptr ? resolved : "(no such path)";
}

std::string company(const std::string& name) { return entry("ZQCompanyName", name); }
std::string shortName(const std::string& name) { return entry("NSHumanReadableShortName", name); }

/// The program runs from an application of these entries, under the name "viewerd", with a home of its own.
class Identity {
public:
    explicit Identity(const std::string& entries, const char* homeName = "home")
        : application_(plistOf(entries)), homeFolder_(folder.makeFolder("home")),
          home_("HOME", (folder / homeName).c_str()) {}

    std::string home() const { return realPath(homeFolder_); }

    const scene::Folder folder;

private:
    const logtest::ProcessName process_{"viewerd"};
    const infotest::ApplicationScene application_;
    const std::string homeFolder_;
    const scene::Variable home_;
};

std::string companyName() { return utf8Of(NSProcessInfo::shortCompanyName()); }
std::string applicationName() { return utf8Of(NSProcessInfo::shortApplicationName()); }
std::string subpath() { return utf8Of(NSProcessInfo::appSpecificLibrarySubpath()); }
std::string supportFolder() { return utf8Of(NSProcessInfo::pathOfLibraryApplicationSupportSubfolder()); }
std::string logFolder() { return utf8Of(NSProcessInfo::pathOfLibraryLogSubfolder()); }

struct Row {
    std::string entries;
    const char* company;
    const char* name;
    const char* subpath;
    const char* belowLogs; ///< of the log folder, after the home folder
};

} // namespace

TEST(ProcessIdentityFromFacts, composesFromCompanyAndShortName) {
    const Row rows[] = {
        {company("Acme") + shortName("Viewer"), "Acme", "Viewer", "Acme/Viewer", "/Library/Logs/Acme/Viewer"},
        {shortName("Viewer"), "(nil)", "Viewer", "Viewer", "/Library/Logs/Viewer"},
        {company("Acme"), "Acme", "viewerd", "Acme/viewerd", "/Library/Logs/Acme/viewerd"},
        {"", "(nil)", "viewerd", "viewerd", "/Library/Logs/viewerd"},
        // Only absence is asked for: an empty text counts as present.
        {company("") + shortName("Viewer"), "", "Viewer", "Viewer", "/Library/Logs/Viewer"},
        {company("Acme") + shortName(""), "Acme", "", "Acme", "/Library/Logs/Acme"},
        {shortName(""), "(nil)", "", "", "/Library/Logs"},
        // Nothing is trimmed.
        {company(" Acme ") + shortName(" V "), " Acme ", " V ", " Acme / V ", "/Library/Logs/ Acme / V "},
        {company("\xC3\x84gidius") + shortName("V"), "\xC3\x84gidius", "V", "\xC3\x84gidius/V",
         "/Library/Logs/\xC3\x84gidius/V"},
    };
    for (const Row& row : rows) {
        const Identity identity(row.entries);
        EXPECT_EQ(companyName(), row.company) << row.entries;
        EXPECT_EQ(applicationName(), row.name) << row.entries;
        EXPECT_EQ(subpath(), row.subpath) << row.entries;
        EXPECT_EQ(logFolder(), identity.home() + row.belowLogs) << row.entries;
    }
}

TEST(ProcessIdentityFromFacts, sanitisesNeitherSlashesNorDots) {
    const Row rows[] = {
        {company("A/B") + shortName("C/D"), "A/B", "C/D", "A/B/C/D", "/Library/Logs/A/B/C/D"},
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
}

TEST(ProcessIdentityFromFacts, differsOnlyInTheMiddleOfTheTwoFolders) {
    const Identity identity(company("Acme") + shortName("Viewer"));
    EXPECT_EQ(supportFolder(), identity.home() + "/Library/Application Support/Acme/Viewer");
    EXPECT_EQ(logFolder(), identity.home() + "/Library/Logs/Acme/Viewer");
}

TEST(ProcessIdentityFromFacts, foldsDotsOfTheSupportFolderToo) {
    const Identity identity(shortName("../Logs/V"));
    EXPECT_EQ(supportFolder(), identity.home() + "/Library/Logs/V");
}

TEST(ProcessIdentityFromFacts, showsTheTextOfACompanyThatIsNoString) {
    const Identity identity("<key>ZQCompanyName</key><integer>42</integer>"
                            "<key>NSHumanReadableShortName</key><integer>7</integer>");
    EXPECT_EQ(companyName(), "42");
    EXPECT_EQ(applicationName(), "7");
    EXPECT_EQ(subpath(), "42/7");
}

TEST(ProcessIdentityFromFacts, takesLocalizedNamesFirst) {
    const infotest::ApplicationScene application(plistOf(company("Acme") + shortName("Viewer")), {"en"});
    application.writeTable("en.lproj/InfoPlist.strings", "NSHumanReadableShortName = \"Beholder\";\n");
    EXPECT_EQ(subpath(), "Acme/Beholder");
}

TEST(ProcessIdentityFromFacts, worksWithoutAnInfoDictionary) {
    const logtest::ProcessName process("viewerd");
    const infotest::ApplicationScene none("");
    EXPECT_EQ(companyName(), "(nil)");
    EXPECT_EQ(applicationName(), "viewerd");
    EXPECT_EQ(subpath(), "viewerd");
}

TEST(ProcessIdentityFromFacts, readsTheProcessNameAfresh) {
    const Identity identity("");
    EXPECT_EQ(applicationName(), "viewerd");
    const logtest::ProcessName renamed("renamed");
    EXPECT_EQ(applicationName(), "renamed");
    EXPECT_EQ(logFolder(), identity.home() + "/Library/Logs/renamed");
}

TEST(ProcessIdentityFromFacts, readsTheHomeFolderAfresh) {
    const Identity identity(shortName("V"));
    EXPECT_EQ(logFolder(), identity.home() + "/Library/Logs/V");
    const std::string other = identity.folder.makeFolder("other");
    const scene::Variable moved("HOME", other.c_str());
    EXPECT_EQ(logFolder(), realPath(other) + "/Library/Logs/V");
    EXPECT_EQ(supportFolder(), realPath(other) + "/Library/Application Support/V");
}

TEST(ProcessIdentityFromFacts, asksTheUserDatabaseWithoutAHomeVariable) {
    const Identity identity(shortName("V"));
    const scene::Variable unset("HOME", nullptr);
    const passwd* const account = ::getpwuid(::getuid());
    ASSERT_NE(account, nullptr);
    const std::string home = account->pw_dir;
    const std::string resolved = ::access(home.c_str(), F_OK) == 0 ? realPath(home) : home;
    EXPECT_EQ(logFolder(), (resolved == "/" ? "" : resolved) + "/Library/Logs/V");
}

TEST(ProcessIdentityFromFacts, resolvesLinksOfTheHomeFolder) {
    const Identity identity(company("Acme") + shortName("Viewer"), "link/inner");
    ASSERT_EQ(::symlink("home", (identity.folder / "link").c_str()), 0);
    identity.folder.makeFolder("home/inner");
    EXPECT_EQ(logFolder(), identity.home() + "/inner/Library/Logs/Acme/Viewer");
    EXPECT_EQ(supportFolder(), identity.home() + "/inner/Library/Application Support/Acme/Viewer");
}

TEST(ProcessIdentityFromFacts, keepsLinksBelowTheHomeFolder) {
    // The links of the home folder's own path are resolved, those after it are not.
    const Identity identity(shortName("V"));
    identity.folder.makeFolder("elsewhere/Logs/V");
    ASSERT_EQ(::symlink("../elsewhere", (identity.folder / "home/Library").c_str()), 0);
    EXPECT_EQ(logFolder(), identity.home() + "/Library/Logs/V");
}

TEST(ProcessIdentityFromFacts, resolvesLinksForDoubleDotsWhenAllOfThePathExists) {
    const Identity identity(company("Acme") + shortName("../V"));
    identity.folder.makeFolder("elsewhere/Logs/V");
    identity.folder.makeFolder("elsewhere/Logs/Acme");
    ASSERT_EQ(::symlink("../elsewhere", (identity.folder / "home/Library").c_str()), 0);
    EXPECT_EQ(logFolder(), realPath(identity.folder / "elsewhere/Logs/V"));
}

TEST(ProcessIdentityFromFacts, takesAHomeFolderThatDoesNotExist) {
    const Identity identity(shortName("V"), "gone/for/good/");
    EXPECT_EQ(logFolder(), realPath(identity.folder.path()) + "/gone/for/good/Library/Logs/V");
}

TEST(ProcessIdentityFromFacts, makesNoFolder) {
    const Identity identity(company("Acme") + shortName("Viewer"));
    EXPECT_NE(logFolder(), supportFolder());
    EXPECT_EQ(::rmdir((identity.folder / "home").c_str()), 0) << "something was made in the home folder";
}
