// SPDX-License-Identifier: MIT
// Removal of old log files, by age and by count.
#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/objects/ClassesByName.h"
#include "foundation/objects/NSDate.h"
#include "foundation/objects/NSException.h"
#include "foundation/process/NSProcessInfo.h"
#include "foundation/system/TestOverrides.h"
#include "log/ZQLog.h"
#include "tests/log/HostTesting.h"
#include "tests/log/LogTestSupport.h"
#include "tests/process/ItemFacts.h"

using namespace ZQFoundation;

namespace {

using scene::realPath;
using scene::stands;

namespace overrides = ZQFoundation::detail::overrides;

using Texts = std::vector<std::string>;
using Names = std::set<std::string>;

constexpr time_t noon = 1'709'640'000; // some instant; files are dated in seconds from it

NSDate at(double seconds) {
    return NSDate::dateWithTimeIntervalSince1970(static_cast<double>(noon) + seconds);
}

/// A folder "logs" of a process "MyApp".
struct RetentionScene {
    explicit RetentionScene(const std::string& processName = "MyApp")
        : base(realPath(folder.path())), arguments(overrides::arguments, {"/somewhere/" + processName}),
          name_(NSString::stringWithFileSystemBytes(processName.data(), processName.size())) {
        folder.makeFolder("logs");
    }

    std::string logs() const { return base + "/logs"; }
    std::string operator/(const std::string& name) const { return logs() + "/" + name; }

    /// Dates an item, a link itself, this many seconds from noon.
    void date(const std::string& name, time_t seconds, long nanoseconds = 0) const {
        const timespec times[2] = {{noon, 0}, {noon + seconds, nanoseconds}};
        EXPECT_EQ(::utimensat(AT_FDCWD, (*this / name).c_str(), times, AT_SYMLINK_NOFOLLOW), 0) << name;
    }
    void file(const std::string& name, time_t seconds, long nanoseconds = 0) const {
        folder.write("logs/" + name, name);
        date(name, seconds, nanoseconds);
    }
    void link(const std::string& target, const std::string& name, time_t seconds) const {
        EXPECT_EQ(::symlink(target.c_str(), (*this / name).c_str()), 0) << name;
        date(name, seconds);
    }

    /// The names in the folder in the order in which the system returns them.
    Texts listing() const {
        Texts names;
        DIR* const open = ::opendir(logs().c_str());
        while (const dirent* entry = open != nullptr ? ::readdir(open) : nullptr) {
            const std::string name = entry->d_name;
            if (name != "." && name != "..") {
                names.push_back(name);
            }
        }
        if (open != nullptr) {
            ::closedir(open);
        }
        return names;
    }
    Names names() const {
        const Texts all = listing();
        return Names(all.begin(), all.end());
    }

    std::string ageMessage(const std::string& name) const {
        return "Removing log file " + (*this / name) + " due to log file age";
    }
    std::string countMessage(const std::string& name) const {
        return "Removing log file " + (*this / name) + " due to log file count";
    }
    std::string failure(const std::string& name) const {
        return "Cannot remove log file \"" + (*this / name) + "\"";
    }

    scene::Folder folder;
    std::string base;
    scene::Arguments arguments;
    logtest::ProcessName name_; // a name that an earlier test has set would win over the arguments
};

/// What the removal by age of files before noon writes.
Texts removeOld(const std::string& folder) {
    const logtest::CapturedOutput output;
    ZQLog::removeLogfilesOlderThan_fromFolder(at(0), NSString(folder));
    return output.texts();
}

/// What the removal by count writes.
Texts keepNewest(const std::string& folder, std::size_t count) {
    const logtest::CapturedOutput output;
    ZQLog::removeOldLogfilesFromFolder_keepingTheNewest(NSString(folder), count);
    return output.texts();
}

const char* const standardName = "MyApp.20240305-1407.1234.log";

struct NameRow {
    const char* name;
    bool byAge;
    bool byCount;
};

/// What counts as a log file of "MyApp".
constexpr NameRow nameRows[] = {
    {"MyApp.log", true, true},
    {"MyApp.1.log", true, true},
    {"MyApp..log", true, true},
    {"MyApp...log", true, true},
    {"MyApp1.log", true, true},
    {"MyApp.20240305.1234.log", true, true},
    {"MyApp0123456789.0123456789.log", true, true},
    {"MyApp.20240305-1407.1234.log", false, true},
    {"MyApp.20240305-1407.1234.17.log", false, true},
    {"MyApp-.log", false, true},
    {"MyApp-1.log", false, true},
    {"MyApp--..--.log", false, true},
    {"Other.log", false, false},
    {"MyAppBeta.log", false, false},
    {"MyApp.a.log", false, false},
    {"MyApp.1a.log", false, false},
    {"MyApp.1.log.log", false, false},
    {"MyApp.log.1.log", false, false},
    {"MyApp 1.log", false, false},
    {"MyApp.1 .log", false, false},
    {"MyApp_1.log", false, false},
    {"MyApp+1.log", false, false},
    {"MyApp,1.log", false, false},
    {"MyApp:1.log", false, false},
    {"MyApp\t.log", false, false},
    {"MyApp\n.log", false, false},
    {"MyApp.\u0661.log", false, false},
    {"MyApp.\uFF11.log", false, false},
    {"MyApp.1\u0301.log", false, false},
    {"MyApp.\u2010.log", false, false},
    {"MyApp.\xFF.log", false, false},
    {"XMyApp.1.log", false, false},
    {" MyApp.1.log", false, false},
    {".MyApp.1.log", false, false},
    {"myapp.1.log", false, false},
    {"MYAPP.1.log", false, false},
    {"MyAp.1.log", false, false},
    {"MyApp", false, false},
    {"MyApp.", false, false},
    {"MyApp.1", false, false},
    {"MyApp.lo", false, false},
    {"MyApp1log", false, false},
    {"MyApp.1.LOG", false, false},
    {"MyApp.1.Log", false, false},
    {"MyApp.1.logs", false, false},
    {"MyApp.1.log ", false, false},
    {"MyApp.1.log~", false, false},
    {"MyApp.1.log.gz", false, false},
    {"MyApp.1.txt", false, false},
    {".log", false, false},
    {"1.log", false, false},
    {"log", false, false},
};

// The announcement.

/// A class and its one object, which records what it is notified of.
class Workspace : public NSObjectProtocol {
public:
    NSString className() const override { return "NSWorkspace"; }
    bool respondsToSelector(const Selector& selector) const override {
        return selector == "sharedWorkspace" || selector == "noteFileSystemChanged:";
    }
    NSObject performSelector_withObject(const Selector& selector, const NSObject& argument) override {
        if (selector == "noteFileSystemChanged:") {
            told->push_back(NSString(argument).utf8());
            return nullptr;
        }
        return makeObject<Workspace>();
    }

    static inline std::vector<std::string>* told = nullptr;
};

TEST(LogRetention, tellsTheWorkspaceOfTheFolderWhenItHasBeenListed) {
    std::vector<std::string> told;
    Workspace::told = &told;
    const RetentionScene scene;
    scene.file("MyApp.1.log", -1);
    scene.file("MyApp.2.log", -2);
    {
        const ClassRegistration registration("NSWorkspace", makeObject<Workspace>());
        removeOld(scene / "missing");
        keepNewest(scene / "missing", 0);
        keepNewest(scene.logs(), 2);
        EXPECT_EQ(told, std::vector<std::string>{}) << "nothing listed, or nothing to remove";
        keepNewest(scene.logs(), 1);
        removeOld(scene.logs());
        removeOld(scene.logs());
        EXPECT_EQ(told, std::vector<std::string>(3, scene.logs())) << "by age also when nothing was old";
    }
    removeOld(scene.logs());
    EXPECT_EQ(told.size(), 3U) << "the class is gone";
}

} // namespace

// Which names count.

TEST(LogRetention, byAgeTakesDigitsAndPeriodsBetweenNameAndEnding) {
    for (const NameRow& row : nameRows) {
        const RetentionScene scene;
        scene.file(row.name, -100);
        const Texts texts = removeOld(scene.logs());
        EXPECT_EQ(stands(scene / row.name), !row.byAge) << row.name;
        EXPECT_EQ(texts, row.byAge ? Texts{scene.ageMessage(row.name)} : Texts{}) << row.name;
    }
}

TEST(LogRetention, byCountTakesHyphensToo) {
    for (const NameRow& row : nameRows) {
        const RetentionScene scene;
        scene.file(row.name, -100);
        const Texts texts = keepNewest(scene.logs(), 0);
        EXPECT_EQ(stands(scene / row.name), !row.byCount) << row.name;
        EXPECT_EQ(texts, row.byCount ? Texts{scene.countMessage(row.name)} : Texts{}) << row.name;
    }
}

TEST(LogRetention, picksTheRightOnesOutOfAll) {
    for (const bool byAge : {true, false}) {
        const RetentionScene scene;
        Names left;
        time_t seconds = -1000;
        for (const NameRow& row : nameRows) {
            scene.file(row.name, ++seconds);
            if (byAge ? !row.byAge : !row.byCount) {
                left.insert(row.name);
            }
        }
        byAge ? removeOld(scene.logs()) : keepNewest(scene.logs(), 0);
        EXPECT_EQ(scene.names(), left);
    }
}

TEST(LogRetention, byAgeNeverRemovesStandardNamesAndByCountDoes) {
    const RetentionScene scene;
    const scene::Variable zone("TZ", "UTC0");
    const std::string standard =
        ZQLog::standardNewLogFileNameForLoggingToFolder(NSString(scene.logs())).utf8();
    scene.file(standard, -1'000'000);
    scene.file("MyApp.log", -100);
    scene.file("MyApp.1.log", -200);
    scene.file(standardName, -300);
    scene.file("Other.log", -400);
    Texts expected;
    for (const std::string& name : scene.listing()) {
        if (name == "MyApp.log" || name == "MyApp.1.log") {
            expected.push_back(scene.ageMessage(name));
        }
    }
    EXPECT_EQ(removeOld(scene.logs()), expected);
    EXPECT_EQ(scene.names(), (Names{standard, standardName, "Other.log"}));
    EXPECT_EQ(keepNewest(scene.logs(), 0),
              (Texts{scene.countMessage(standard), scene.countMessage(standardName)}));
    EXPECT_EQ(scene.names(), Names{"Other.log"});
}

TEST(LogRetention, goesByTheBeginningOfTheName) {
    const RetentionScene scene("My");
    scene.file("My.1.log", -1);
    scene.file("My2.1.log", -2); // of the process "My2", perhaps
    scene.file("MyApp.1.log", -3);
    removeOld(scene.logs());
    EXPECT_EQ(scene.names(), Names{"MyApp.1.log"});
}

TEST(LogRetention, knowsProcessNamesOfEveryKind) {
    for (const char* const process : {"a b", "%@%d", "caf\u00E9", "x-1", "7", "My.App", "\xFF"}) {
        const RetentionScene scene(process);
        const std::string name = std::string(process) + ".1.log";
        scene.file(name, -1);
        scene.file("other.1.log", -1);
        const Texts texts = removeOld(scene.logs());
        EXPECT_EQ(scene.names(), Names{"other.1.log"}) << process;
        ASSERT_EQ(texts.size(), 1U) << process;
        if (process[0] != '\xFF') {
            EXPECT_EQ(texts[0], scene.ageMessage(name));
        }
    }
}

TEST(LogRetention, goesByTheNameThatTheHostGaveTheProcess) {
    const RetentionScene scene;
    scene.file("MyApp.1.log", -2);
    scene.file("Renamed.1.log", -1);
    EXPECT_TRUE(logtest::inChild([&scene] {
        NSProcessInfo::processInfo().setProcessName("Renamed");
        removeOld(scene.logs());
        return scene.names() == Names{"MyApp.1.log"};
    }));
}

// By age.

TEST(LogRetention, byAgeRemovesWhatIsStrictlyEarlier) {
    const struct {
        time_t seconds;
        long nanoseconds;
        bool isRemoved;
    } rows[] = {
        {-1'000'000, 0, true}, {-1, 0, true}, {-1, 999'999'000, true}, {0, 0, false},
        {0, 1'000, false},     {1, 0, false}, {1'000'000, 0, false},
    };
    for (const auto& row : rows) {
        const RetentionScene scene;
        scene.file("MyApp.1.log", row.seconds, row.nanoseconds);
        EXPECT_EQ(removeOld(scene.logs()), row.isRemoved ? Texts{scene.ageMessage("MyApp.1.log")} : Texts{});
        EXPECT_EQ(stands(scene / "MyApp.1.log"), !row.isRemoved) << row.seconds << " " << row.nanoseconds;
    }
    const RetentionScene scene;
    scene.file("MyApp.1.log", 0, 500'000'000);
    ZQLog::removeLogfilesOlderThan_fromFolder(at(0.5), NSString(scene.logs()));
    EXPECT_TRUE(stands(scene / "MyApp.1.log"));
    {
        const logtest::CapturedOutput output;
        ZQLog::removeLogfilesOlderThan_fromFolder(at(0.75), NSString(scene.logs()));
    }
    EXPECT_FALSE(stands(scene / "MyApp.1.log"));
}

TEST(LogRetention, byAgeGoesInTheOrderOfTheListing) {
    const RetentionScene scene;
    for (int i = 0; i < 60; ++i) {
        scene.file("MyApp." + std::to_string(i * 7919 % 1000) + ".log", -1 - i * 31 % 17);
    }
    Texts expected;
    for (const std::string& name : scene.listing()) {
        expected.push_back(scene.ageMessage(name));
    }
    EXPECT_EQ(removeOld(scene.logs()), expected);
    EXPECT_EQ(scene.names(), Names{});
}

// By count.

TEST(LogRetention, byCountKeepsTheNewest) {
    const Texts oldestFirst{"MyApp.7.log", standardName, "MyApp.log", "MyApp-2.log", "MyApp.1.log"};
    for (const std::size_t count : {std::size_t{0}, std::size_t{1}, std::size_t{2}, std::size_t{4},
                                    std::size_t{5}, std::size_t{6}, std::size_t{1'000'000}, SIZE_MAX}) {
        const RetentionScene scene;
        Texts expected;
        Names left{"Other.log"};
        time_t seconds = 10;
        scene.file("Other.log", -1'000);
        for (std::size_t i = 0; i < oldestFirst.size(); ++i) {
            scene.file(oldestFirst[i], ++seconds);
            if (oldestFirst.size() > count && i < oldestFirst.size() - count) {
                expected.push_back(scene.countMessage(oldestFirst[i]));
            } else {
                left.insert(oldestFirst[i]);
            }
        }
        EXPECT_EQ(keepNewest(scene.logs(), count), expected) << count;
        EXPECT_EQ(scene.names(), left) << count;
    }
}

TEST(LogRetention, byCountGoesFromTheOldestOnWhateverTheListing) {
    const RetentionScene scene;
    std::map<time_t, std::string> byDate;
    for (int i = 0; i < 60; ++i) {
        const std::string name = "MyApp.20240305-" + std::to_string(i) + ".log";
        const time_t seconds = i * 7919 % 1009 - 500;
        scene.file(name, seconds, i * 1'000'000);
        byDate[seconds] = name;
    }
    ASSERT_EQ(byDate.size(), 60U);
    Texts expected;
    for (const auto& [seconds, name] : byDate) {
        if (expected.size() < 50) {
            expected.push_back(scene.countMessage(name));
        }
    }
    EXPECT_EQ(keepNewest(scene.logs(), 10), expected);
    EXPECT_EQ(scene.names().size(), 10U);
}

TEST(LogRetention, byCountTellsDatesApartThatDifferByAFraction) {
    const RetentionScene scene;
    scene.file("MyApp.1.log", 0, 2'000);
    scene.file("MyApp.2.log", 0, 1'000);
    scene.file("MyApp.3.log", 0, 3'000);
    EXPECT_EQ(keepNewest(scene.logs(), 1),
              (Texts{scene.countMessage("MyApp.2.log"), scene.countMessage("MyApp.1.log")}));
    EXPECT_EQ(scene.names(), Names{"MyApp.3.log"});
}

TEST(LogRetention, byCountCountsFilesOfOneDateOnce) {
    // Four files, two dates, one entry for each: the last of its date in the listing.
    for (const std::size_t count : {0U, 1U, 2U}) {
        const RetentionScene scene;
        for (const char* const name : {"MyApp.1.log", "MyApp.2.log", "MyApp.3.log"}) {
            scene.file(name, -100);
        }
        scene.file("MyApp.9.log", -50);
        std::string last;
        Names left = scene.names();
        for (const std::string& name : scene.listing()) {
            last = name != "MyApp.9.log" ? name : last;
        }
        Texts expected;
        if (count < 2) {
            expected.push_back(scene.countMessage(last));
            left.erase(last);
        }
        if (count < 1) {
            expected.push_back(scene.countMessage("MyApp.9.log"));
            left.erase("MyApp.9.log");
        }
        EXPECT_EQ(keepNewest(scene.logs(), count), expected) << count;
        EXPECT_EQ(scene.names(), left) << count;
    }
}

TEST(LogRetention, byCountWithAllOfOneDateKeepsAllButOne) {
    const RetentionScene scene;
    for (int i = 0; i < 20; ++i) {
        scene.file("MyApp." + std::to_string(i) + ".log", -100);
    }
    EXPECT_EQ(keepNewest(scene.logs(), 1), Texts{});
    EXPECT_EQ(scene.names().size(), 20U);
    const std::string last = scene.listing().back();
    EXPECT_EQ(keepNewest(scene.logs(), 0), Texts{scene.countMessage(last)});
    EXPECT_EQ(scene.names().size(), 19U);
}

// Links, folders and whatever else has such a name.

TEST(LogRetention, datesALinkByWhatItLeadsToAndRemovesTheLinkOnly) {
    const RetentionScene scene;
    scene.folder.write("old target", "old");
    scene.folder.write("new target", "new");
    scene.folder.write("old folder/inside", "inside");
    scene.date("../old target", -100);
    scene.date("../new target", 100);
    scene.date("../old folder", -200);
    scene.link("../old target", "MyApp.1.log", 50);
    scene.link("../new target", "MyApp.2.log", -50);
    scene.link("../old folder", "MyApp.3.log", 50);
    scene.link(scene / "MyApp.1.log", "MyApp.4.log", 50);
    Texts expected;
    for (const std::string& name : scene.listing()) {
        if (name != "MyApp.2.log") {
            expected.push_back(scene.ageMessage(name));
        }
    }
    // A link to a link may come after the other one has gone, and is then dangling: its own date counts.
    const Texts texts = removeOld(scene.logs());
    const Texts names = scene.listing();
    if (names.size() == 2) {
        expected.erase(std::remove(expected.begin(), expected.end(), scene.ageMessage("MyApp.4.log")),
                       expected.end());
    }
    EXPECT_EQ(texts, expected);
    EXPECT_FALSE(stands(scene / "MyApp.1.log"));
    EXPECT_TRUE(stands(scene / "MyApp.2.log"));
    EXPECT_FALSE(stands(scene / "MyApp.3.log"));
    EXPECT_EQ(scene::contentsOf(scene.base + "/old target"), "old");
    EXPECT_EQ(scene::contentsOf(scene.base + "/new target"), "new");
    EXPECT_EQ(scene::contentsOf(scene.base + "/old folder/inside"), "inside");
}

TEST(LogRetention, countsALinkByTheDateOfWhatItLeadsTo) {
    const RetentionScene scene;
    scene.folder.write("target", "kept");
    scene.date("../target", -100);
    scene.link("../target", "MyApp.1.log", 500);
    scene.file("MyApp.2.log", -50);
    EXPECT_EQ(keepNewest(scene.logs(), 1), Texts{scene.countMessage("MyApp.1.log")});
    EXPECT_EQ(scene.names(), Names{"MyApp.2.log"});
    EXPECT_EQ(scene::contentsOf(scene.base + "/target"), "kept");
    // A log file and a link to it have one date, and so one entry.
    scene.link("MyApp.2.log", "MyApp.3.log", 700);
    EXPECT_EQ(keepNewest(scene.logs(), 1), Texts{});
    EXPECT_EQ(scene.names().size(), 2U);
}

TEST(LogRetention, datesALinkThatLeadsNowhereByItself) {
    // It stays as it is when links are resolved, and what is at the path then is the link.
    for (const char* const target : {"nosuch", "MyApp.1.log"}) {
        for (const bool isOld : {true, false}) {
            const RetentionScene scene;
            scene.link(target, "MyApp.1.log", isOld ? -100 : 100);
            EXPECT_EQ(removeOld(scene.logs()), isOld ? Texts{scene.ageMessage("MyApp.1.log")} : Texts{})
                << target;
            EXPECT_EQ(stands(scene / "MyApp.1.log"), !isOld) << target;
        }
        const RetentionScene scene;
        scene.link(target, "MyApp.1.log", -100);
        scene.file("MyApp.2.log", -200);
        EXPECT_EQ(keepNewest(scene.logs(), 1), Texts{scene.countMessage("MyApp.2.log")});
        EXPECT_EQ(scene.names(), Names{"MyApp.1.log"});
    }
}

TEST(LogRetention, removesAFolderThatIsCalledLikeALogFileWithAllItHolds) {
    for (const bool byAge : {true, false}) {
        const RetentionScene scene;
        scene.folder.write("kept", "kept");
        scene.file("MyApp.1.log/a/b", -1);
        scene.link("../../kept", "MyApp.1.log/toKept", -1);
        scene.date("MyApp.1.log", -100);
        ASSERT_EQ(::mkfifo((scene / "MyApp.2.log").c_str(), 0600), 0);
        scene.date("MyApp.2.log", 100);
        EXPECT_EQ(byAge ? removeOld(scene.logs()) : keepNewest(scene.logs(), 1),
                  Texts{byAge ? scene.ageMessage("MyApp.1.log") : scene.countMessage("MyApp.1.log")});
        EXPECT_EQ(scene.names(), Names{"MyApp.2.log"});
        EXPECT_EQ(scene::contentsOf(scene.base + "/kept"), "kept");
    }
}

TEST(LogRetention, looksIntoNoFolderBelow) {
    const RetentionScene scene;
    scene.file("sub/MyApp.1.log", -100);
    EXPECT_EQ(removeOld(scene.logs()), Texts{});
    EXPECT_EQ(keepNewest(scene.logs(), 0), Texts{});
    EXPECT_TRUE(stands(scene / "sub/MyApp.1.log"));
}

// How the folder is named.

TEST(LogRetention, namesFilesByTheFolderAsItWasGiven) {
    const RetentionScene scene;
    ASSERT_EQ(::symlink("logs", (scene.base + "/toLogs").c_str()), 0);
    const struct {
        std::string folder;
        std::string path; ///< of the file in the message
    } rows[] = {
        {scene.logs(), scene / "MyApp.1.log"},
        {scene.logs() + "/", scene / "MyApp.1.log"},
        {scene.logs() + "//", scene / "MyApp.1.log"},
        {scene.base + "/toLogs", scene.base + "/toLogs/MyApp.1.log"},
        {scene.base + "/logs/../logs", scene.base + "/logs/../logs/MyApp.1.log"},
        {scene.base + "/./logs", scene.base + "/./logs/MyApp.1.log"},
    };
    for (const auto& row : rows) {
        scene.file("MyApp.1.log", -100);
        EXPECT_EQ(removeOld(row.folder), Texts{"Removing log file " + row.path + " due to log file age"});
        EXPECT_EQ(scene.names(), Names{}) << row.folder;
        scene.file("MyApp.1.log", -100);
        EXPECT_EQ(keepNewest(row.folder, 0),
                  Texts{"Removing log file " + row.path + " due to log file count"});
        EXPECT_EQ(scene.names(), Names{}) << row.folder;
    }
}

TEST(LogRetention, takesARelativeFolderFromTheCurrentOneAndExpandsNoTilde) {
    const RetentionScene scene;
    const scene::Variable home("HOME", scene.logs().c_str());
    scene.file("MyApp.1.log", -100);
    EXPECT_TRUE(logtest::inChild([&scene] {
        return ::chdir(scene.base.c_str()) == 0 && removeOld("~") == Texts{} &&
               keepNewest("~", 0) == Texts{} && scene.names().size() == 1 &&
               removeOld("logs") == Texts{"Removing log file logs/MyApp.1.log due to log file age"} &&
               scene.names().empty();
    }));
}

TEST(LogRetention, namesFilesWithPercentSignsAndForeignBytes) {
    const RetentionScene scene;
    const std::string folder = scene.folder.makeFolder("100%d %@%n");
    scene.folder.write("100%d %@%n/MyApp.1.log", "");
    const timespec times[2] = {{noon, 0}, {noon - 100, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, (folder + "/MyApp.1.log").c_str(), times, 0), 0);
    EXPECT_EQ(removeOld(folder), Texts{"Removing log file " + folder + "/MyApp.1.log due to log file age"});
    const std::string foreign = scene.folder.makeFolder("\xFF logs");
    scene.folder.write("\xFF logs/MyApp.2.log", "");
    ASSERT_EQ(::utimensat(AT_FDCWD, (foreign + "/MyApp.2.log").c_str(), times, 0), 0);
    const logtest::CapturedOutput output;
    ZQLog::removeOldLogfilesFromFolder_keepingTheNewest(
        NSString::stringWithFileSystemBytes(foreign.data(), foreign.size()), 0);
    EXPECT_EQ(output.texts(), Texts{"Removing log file " + scene.folder.path() +
                                    "/\uFFFD logs/MyApp.2.log due to log file count"});
    EXPECT_FALSE(stands(foreign + "/MyApp.2.log"));
}

// What goes wrong.

TEST(LogRetention, saysNothingOfAFolderThatCannotBeListed) {
    const RetentionScene scene;
    scene.file("MyApp.1.log", -100);
    const logtest::CapturedOutput output;
    for (const NSString& folder : {NSString(), NSString(""), NSString(scene / "nosuch"),
                                   NSString(scene / "MyApp.1.log"), NSString("nosuch-zq")}) {
        ZQLog::removeLogfilesOlderThan_fromFolder(at(0), folder);
        ZQLog::removeOldLogfilesFromFolder_keepingTheNewest(folder, 0);
    }
    EXPECT_EQ(output.bytes(), "");
    EXPECT_EQ(scene.names(), Names{"MyApp.1.log"});
}

TEST(LogRetention, saysNothingWhereNothingIsToBeRemoved) {
    const RetentionScene scene;
    EXPECT_EQ(removeOld(scene.logs()), Texts{});
    EXPECT_EQ(keepNewest(scene.logs(), 0), Texts{});
    scene.file("MyApp.1.log", 100);
    EXPECT_EQ(removeOld(scene.logs()), Texts{});
    EXPECT_EQ(keepNewest(scene.logs(), 1), Texts{});
    EXPECT_EQ(scene.names(), Names{"MyApp.1.log"});
}

/// Runs the body as an ordinary user and returns the lines that it wrote.
template <class Body>
Texts linesOfUnprivileged(const Body& body) {
    const logtest::CapturedOutput output;
    EXPECT_EQ(scene::inUnprivilegedChild([&body] {
                  body();
                  return 0;
              }),
              0);
    return output.texts();
}

TEST(LogRetention, saysWhichFilesCannotBeRemovedAndGoesOn) {
    const RetentionScene scene;
    scene.file("MyApp.1.log", -300);
    scene.file("MyApp.2.log", -100);
    scene.file("MyApp.3.log", -200);
    ASSERT_EQ(::chmod(scene.logs().c_str(), 0555), 0);
    Texts inListingOrder;
    for (const std::string& name : scene.listing()) {
        inListingOrder.push_back(scene.ageMessage(name));
        inListingOrder.push_back(scene.failure(name));
    }
    EXPECT_EQ(linesOfUnprivileged(
                  [&scene] { ZQLog::removeLogfilesOlderThan_fromFolder(at(0), NSString(scene.logs())); }),
              inListingOrder);
    EXPECT_EQ(linesOfUnprivileged([&scene] {
                  ZQLog::removeOldLogfilesFromFolder_keepingTheNewest(NSString(scene.logs()), 1);
              }),
              (Texts{scene.countMessage("MyApp.1.log"), scene.failure("MyApp.1.log"),
                     scene.countMessage("MyApp.3.log"), scene.failure("MyApp.3.log")}));
    ::chmod(scene.logs().c_str(), 0755);
    EXPECT_EQ(scene.names().size(), 3U);
}

TEST(LogRetention, goesOnBehindAFileThatCannotBeRemoved) {
    // A folder with a closed folder inside stays; the files around it go.
    const RetentionScene scene;
    ASSERT_EQ(::chmod(scene.logs().c_str(), 0777), 0);
    for (int i = 0; i < 20; ++i) {
        scene.file("MyApp." + std::to_string(i) + ".log", -100 - i);
    }
    scene.file("MyApp.99.log/closed/file", -1);
    ASSERT_EQ(::chmod((scene / "MyApp.99.log/closed").c_str(), 0555), 0);
    ASSERT_EQ(::chmod((scene / "MyApp.99.log").c_str(), 0777), 0);
    scene.date("MyApp.99.log", -110, 500'000'000);
    Texts expected;
    for (const std::string& name : scene.listing()) {
        expected.push_back(scene.ageMessage(name));
        if (name == "MyApp.99.log") {
            expected.push_back(scene.failure(name));
        }
    }
    EXPECT_EQ(linesOfUnprivileged(
                  [&scene] { ZQLog::removeLogfilesOlderThan_fromFolder(at(0), NSString(scene.logs())); }),
              expected);
    EXPECT_EQ(scene.names(), Names{"MyApp.99.log"});
    ::chmod((scene / "MyApp.99.log/closed").c_str(), 0755);
}

TEST(LogRetention, leavesFilesWhoseDateCannotBeRead) {
    // The names in the folder may be read, the items that they name may not.
    const RetentionScene scene;
    scene.file("MyApp.1.log", -100);
    scene.file("MyApp.2.log", -200);
    ASSERT_EQ(::chmod(scene.logs().c_str(), 0444), 0);
    EXPECT_EQ(linesOfUnprivileged([&scene] {
                  ZQLog::removeLogfilesOlderThan_fromFolder(at(0), NSString(scene.logs()));
                  ZQLog::removeOldLogfilesFromFolder_keepingTheNewest(NSString(scene.logs()), 0);
              }),
              Texts{});
    ::chmod(scene.logs().c_str(), 0755);
    EXPECT_EQ(scene.names().size(), 2U);
}

// The message comes first.

TEST(LogRetention, saysWhatItRemovesBeforeItDoes) {
    for (const bool byAge : {true, false}) {
        const RetentionScene scene;
        scene.file("MyApp.1.log", -100);
        int ends[2];
        ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
        // A full pipe holds the line back until somebody reads.
        ASSERT_EQ(::fcntl(ends[1], F_SETFL, O_NONBLOCK), 0);
        const std::string filling(4096, 'x');
        while (::write(ends[1], filling.data(), filling.size()) > 0) {
        }
        while (::write(ends[1], "x", 1) > 0) {
        }
        ASSERT_EQ(::fcntl(ends[1], F_SETFL, 0), 0);
        const pid_t child = ::fork();
        if (child == 0) {
            ::alarm(60);
            ::dup2(ends[1], STDERR_FILENO);
            ::close(ends[0]);
            ::close(ends[1]);
            if (byAge) {
                ZQLog::removeLogfilesOlderThan_fromFolder(at(0), NSString(scene.logs()));
            } else {
                ZQLog::removeOldLogfilesFromFolder_keepingTheNewest(NSString(scene.logs()), 0);
            }
            scene::leave(0);
        }
        ::close(ends[1]);
        ::usleep(100'000);
        EXPECT_TRUE(stands(scene / "MyApp.1.log")) << "it went before its line";
        std::string all;
        char buffer[4096];
        ssize_t count = 0;
        while ((count = ::read(ends[0], buffer, sizeof buffer)) > 0) {
            all.append(buffer, static_cast<std::size_t>(count));
        }
        ::close(ends[0]);
        EXPECT_EQ(hosttest::endOf(child), "");
        EXPECT_FALSE(stands(scene / "MyApp.1.log"));
        EXPECT_EQ(hosttest::textsIn(all.substr(
                      all.find_last_of('x') == std::string::npos ? 0 : all.find_first_not_of('x'))),
                  Texts{byAge ? scene.ageMessage("MyApp.1.log") : scene.countMessage("MyApp.1.log")});
    }
}

// A process name that overlaps with the ending.

std::string raisedBy(const std::string& folder, bool byAge) {
    const logtest::CapturedOutput output;
    try {
        if (byAge) {
            ZQLog::removeLogfilesOlderThan_fromFolder(at(0), NSString(folder));
        } else {
            ZQLog::removeOldLogfilesFromFolder_keepingTheNewest(NSString(folder), 0);
        }
    } catch (const NSException& exception) {
        return exception.name().utf8();
    }
    return "";
}

TEST(LogRetention, ignoresFilesOfOtherUsersInAFolderLikeTmp) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can make files of other users";
    }
    constexpr uid_t nobody = 65534;
    const RetentionScene scene;
    for (const char* const name : {"MyApp.1.log", "MyApp.2.log", "MyApp.3.log", "MyApp.5.log"}) {
        scene.file(name, -100 * (name[6] - '0'));
    }
    scene.link("MyApp.3.log", "MyApp.4.log", 0); // dated by a file of the user's own
    for (const char* const name : {"MyApp.1.log", "MyApp.2.log", "MyApp.4.log"}) {
        ASSERT_EQ(::lchown((scene / name).c_str(), nobody, nobody), 0);
    }
    ASSERT_EQ(::chmod(scene.logs().c_str(), 01777), 0);
    EXPECT_EQ(keepNewest(scene.logs(), 2), Texts());
    EXPECT_EQ(keepNewest(scene.logs(), 1), Texts{scene.countMessage("MyApp.5.log")});
    EXPECT_EQ(removeOld(scene.logs()), Texts{scene.ageMessage("MyApp.3.log")});
    EXPECT_EQ(scene.names(), (Names{"MyApp.1.log", "MyApp.2.log", "MyApp.4.log"}));
    for (const mode_t notShared : {01755U, 0777U}) {
        ASSERT_EQ(::chmod(scene.logs().c_str(), notShared), 0);
        EXPECT_EQ(removeOld(scene.logs()).size(), notShared == 01755 ? 2U : 1U);
        scene.file("MyApp.1.log", -100);
        ASSERT_EQ(::lchown((scene / "MyApp.1.log").c_str(), nobody, nobody), 0);
    }
}

TEST(LogRetention, raisesARangeErrorWhereNameAndEndingOverlap) {
    const struct {
        const char* process;
        const char* name;
        bool raises;
    } rows[] = {
        {"My.log", "My.log", true},
        {"My.lo", "My.log", true},
        {"My.l", "My.log", true},
        {"My.", "My.log", true},
        {".", ".log", true},
        {".log", ".log", true},
        {"My.", "My..log", false},
        {"My.", "My.1.log", false},
        {"My.log", "My.log.log", false},
        {"My.log", "My.log1.log", false},
        {"My", "My.log", false},
        {"My.log", "My.1.log", false},
        {"My.log", "My.lo", false},
        {"My.log.log", "My.log", false},
    };
    for (const auto& row : rows) {
        for (const bool byAge : {true, false}) {
            const RetentionScene scene(row.process);
            scene.file(row.name, -100);
            EXPECT_EQ(raisedBy(scene.logs(), byAge), row.raises ? "NSRangeException" : "")
                << row.process << " " << row.name;
            EXPECT_FALSE(row.raises && !stands(scene / row.name)) << row.process << " " << row.name;
        }
    }
}

TEST(LogRetention, raisesThatRangeErrorForARenamedProcessToo) {
    const RetentionScene scene;
    scene.file("My.log", -100);
    EXPECT_TRUE(logtest::inChild([&scene] {
        NSProcessInfo::processInfo().setProcessName("My.l");
        return raisedBy(scene.logs(), true) == "NSRangeException" &&
               raisedBy(scene.logs(), false) == "NSRangeException";
    }));
}

TEST(LogRetention, raisesThatRangeErrorWhateverTheDate) {
    const RetentionScene scene("My.log");
    scene.file("My.log", 1'000);
    EXPECT_EQ(raisedBy(scene.logs(), true), "NSRangeException");
}

TEST(LogRetention, hasRemovedByAgeWhatIsListedBeforeTheRangeErrorAndByCountNothing) {
    for (const bool byAge : {true, false}) {
        const RetentionScene scene("My.log");
        for (int i = 0; i < 30; ++i) {
            scene.file("My.log." + std::to_string(i) + ".log", -100 - i);
        }
        scene.file("My.log", -50);
        Names left = scene.names();
        for (const std::string& name : scene.listing()) {
            if (name == "My.log") {
                break;
            }
            if (byAge) {
                left.erase(name);
            }
        }
        EXPECT_EQ(raisedBy(scene.logs(), byAge), "NSRangeException");
        EXPECT_EQ(scene.names(), left) << byAge;
    }
}

// Around it.

TEST(LogRetention, leavesErrnoAlone) {
    const RetentionScene scene;
    scene.file("MyApp.1.log", -100);
    scene.file("MyApp.2.log", -100);
    scene.link("nosuch", "MyApp.3.log", 100);
    const logtest::CapturedOutput output;
    errno = EDOM;
    ZQLog::removeLogfilesOlderThan_fromFolder(at(0), NSString(scene / "nosuch"));
    EXPECT_EQ(errno, EDOM);
    ZQLog::removeLogfilesOlderThan_fromFolder(at(0), NSString(scene.logs()));
    EXPECT_EQ(errno, EDOM);
    ZQLog::removeOldLogfilesFromFolder_keepingTheNewest(NSString(scene.logs()), 0);
    EXPECT_EQ(errno, EDOM);
    EXPECT_EQ(scene.names(), Names{});
}
