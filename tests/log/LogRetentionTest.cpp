// SPDX-License-Identifier: MIT
// Removal of old log files, by age and by count.
#include <map>
#include <set>

#include <dirent.h>
#include <sys/stat.h>

#include "foundation/objects/NSDate.h"
#include "tests/kit/Items.h"
#include "tests/kit/Values.h"
#include "tests/log/LogScene.h"
#include "tests/migration/MigrationScene.h"

using namespace ZQFoundation;
using kit::exists;
using logscene::Texts;

namespace {

namespace overrides = ZQFoundation::detail::overrides;

using NameSet = std::set<std::string>;

constexpr time_t noon = 1'709'640'000; // some instant; files are dated in seconds from it

NSDate at(double seconds) {
    return NSDate::dateWithTimeIntervalSince1970(static_cast<double>(noon) + seconds);
}

enum class By { age, count };
constexpr By bothWays[] = {By::age, By::count};

/// Removes the files from before noon, or all but the newest.
void removeFrom(const NSString& folder, By way, std::size_t count = 0) {
    if (way == By::age) {
        ZQLog::removeLogfilesOlderThan_fromFolder(at(0), folder);
    } else {
        ZQLog::removeOldLogfilesFromFolder_keepingTheNewest(folder, count);
    }
}

/// What that writes.
Texts removed(const std::string& folder, By way, std::size_t count = 0) {
    const kit::CapturedOutput output;
    removeFrom(kit::fromBytes(folder), way, count);
    return output.texts();
}

std::string message(const std::string& path, By way) {
    return "Removing log file " + path + " due to log file " + (way == By::age ? "age" : "count");
}

/// A folder "logs" of a process "MyApp".
struct RetentionScene {
    explicit RetentionScene(const std::string& processName = "MyApp")
        : base(kit::realPath(folder.path())), arguments(overrides::arguments, {"/somewhere/" + processName}),
          name_(kit::fromBytes(processName)) {
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
    void setMode(mode_t mode) const { EXPECT_EQ(::chmod(logs().c_str(), mode), 0); }

    /// The names in the folder in the order in which the system returns them.
    Texts listing() const {
        Texts names;
        DIR* const open = ::opendir(logs().c_str());
        while (const dirent* entry = open != nullptr ? ::readdir(open) : nullptr) {
            if (const std::string name = entry->d_name; name != "." && name != "..") {
                names.push_back(name);
            }
        }
        ::closedir(open);
        return names;
    }
    NameSet names() const {
        const Texts all = listing();
        return NameSet(all.begin(), all.end());
    }

    Texts removed(By way, std::size_t count = 0) const { return ::removed(logs(), way, count); }
    std::string message(const std::string& name, By way) const { return ::message(*this / name, way); }
    std::string failure(const std::string& name) const {
        return "Cannot remove log file \"" + (*this / name) + "\"";
    }
    Texts messages(const Texts& names, By way) const {
        Texts texts;
        for (const std::string& name : names) {
            texts.push_back(message(name, way));
        }
        return texts;
    }

    kit::ScratchFolder folder;
    std::string base;
    kit::Arguments arguments;
    kit::ProcessName name_; // a name that an earlier test has set would win over the arguments
};

const char* const logName = "MyApp.20240305-1407.1234.log";

// What counts as a log file of "MyApp".
const char* const namesForBoth[] = {"MyApp.log",
                                    "MyApp.1.log",
                                    "MyApp..log",
                                    "MyApp...log",
                                    "MyApp1.log",
                                    "MyApp.20240305.1234.log",
                                    "MyApp0123456789.0123456789.log"};
const char* const namesForCount[] = {"MyApp.20240305-1407.1234.log", "MyApp.20240305-1407.1234.17.log",
                                     "MyApp-.log", "MyApp-1.log", "MyApp--..--.log"};
const char* const otherNames[] = {
    "Other.log",        "MyAppBeta.log",     "MyApp.a.log",      "MyApp.1a.log",   "MyApp.1.log.log",
    "MyApp.log.1.log",  "MyApp 1.log",       "MyApp.1 .log",     "MyApp_1.log",    "MyApp+1.log",
    "MyApp,1.log",      "MyApp:1.log",       "MyApp\t.log",      "MyApp\n.log",    "MyApp.\u0661.log",
    "MyApp.\uFF11.log", "MyApp.1\u0301.log", "MyApp.\u2010.log", "MyApp.\xFF.log", "XMyApp.1.log",
    " MyApp.1.log",     ".MyApp.1.log",      "myapp.1.log",      "MYAPP.1.log",    "MyAp.1.log",
    "MyApp.1",          "MyApp.lo",          "MyApp1log",        "MyApp.1.LOG",    "MyApp.1.Log",
    "MyApp.1.logs",     "MyApp.1.log ",      "MyApp.1.log~",     "MyApp.1.log.gz", "MyApp.1.txt"};
const char* const pieces[] = {"MyApp", "MyApp.", ".log", "1.log", "log"};

TEST(LogRetention, notifiesTheWorkspaceOfAFolderThatItHasListed) {
    ZQFoundation::scene::Desktop desktop;
    const RetentionScene scene;
    scene.file("MyApp.1.log", -1);
    scene.file("MyApp.2.log", -2);
    removed(scene / "missing", By::age);
    removed(scene / "missing", By::count);
    scene.removed(By::count, 2);
    EXPECT_EQ(desktop.takeFolders(), Texts{}) << "nothing listed, or nothing to remove";
    scene.removed(By::count, 1);
    scene.removed(By::age);
    scene.removed(By::age);
    EXPECT_EQ(desktop.takeFolders(), Texts(3, scene.logs())) << "by age also when nothing was old";
}

// Which names count.

TEST(LogRetention, byAgeTakesDigitsAndPeriodsBetweenNameAndEndingAndByCountHyphensToo) {
    for (const By way : bothWays) {
        const RetentionScene all;
        NameSet left;
        const auto expectEach = [&](const auto& names, bool counts) {
            for (const char* const name : names) {
                const RetentionScene scene;
                scene.file(name, -100);
                EXPECT_EQ(scene.removed(way), counts ? scene.messages({name}, way) : Texts{}) << name;
                EXPECT_EQ(exists(scene / name), !counts) << name;
                all.file(name, -100 - static_cast<time_t>(all.listing().size()));
                if (!counts) {
                    left.insert(name);
                }
            }
        };
        expectEach(namesForBoth, true);
        expectEach(namesForCount, way == By::count);
        expectEach(otherNames, false);
        expectEach(pieces, false);
        all.removed(way);
        EXPECT_EQ(all.names(), left) << "the right ones out of all";
    }
}

TEST(LogRetention, byAgeNeverRemovesStandardNamesAndByCountDoes) {
    const RetentionScene scene;
    const std::string standard =
        ZQLog::standardNewLogFileNameForLoggingToFolder(NSString(scene.logs())).utf8();
    scene.file(standard, -1'000'000);
    scene.file("MyApp.log", -100);
    EXPECT_EQ(scene.removed(By::age), scene.messages({"MyApp.log"}, By::age));
    EXPECT_EQ(scene.removed(By::count), scene.messages({standard}, By::count));
    EXPECT_EQ(scene.names(), NameSet{});
}

TEST(LogRetention, goesByTheBeginningOfTheName) {
    const RetentionScene scene("My");
    scene.file("My.1.log", -1);
    scene.file("My2.1.log", -2); // of the process "My2", perhaps
    scene.file("MyApp.1.log", -3);
    scene.removed(By::age);
    EXPECT_EQ(scene.names(), NameSet{"MyApp.1.log"});
}

TEST(LogRetention, knowsProcessNamesOfAnyBytes) {
    for (const char* const process :
         {"a b", "%@%d", "caf\u00E9", "x-1", "7", "My.App", "\xFF", "V\xff\n\xc3\xa9"}) {
        const std::string name = process;
        const RetentionScene scene(name);
        const NameSet others{name + "\n.log", name + "\xfe.log", "other.1.log", name + ".log\n",
                             "\xef\xbf\xbd.log"};
        for (const std::string& other : others) {
            scene.file(other, -1);
        }
        for (const By way : bothWays) {
            scene.file(name + ".1.log", -1);
            scene.file(name + ".log", -2);
            const kit::CapturedOutput output;
            removeFrom(NSString(scene.logs()), way);
            EXPECT_EQ(scene.names(), others) << process;
            EXPECT_TRUE(name.find('\xFF') != name.npos ||
                        output.bytes().find(scene.message(name + ".1.log", way)) != name.npos);
        }
    }
}

TEST(LogRetention, goesByTheNameThatTheHostGaveTheProcess) {
    const RetentionScene scene;
    scene.file("MyApp.1.log", -2);
    scene.file("Renamed.1.log", -1);
    const kit::ProcessName renamed("Renamed");
    scene.removed(By::age);
    EXPECT_EQ(scene.names(), NameSet{"MyApp.1.log"});
}

// By age.

TEST(LogRetention, byAgeRemovesWhatIsStrictlyEarlier) {
    const struct {
        time_t seconds;
        long nanoseconds;
        double limit;
        bool isRemoved;
    } rows[] = {
        {-1'000'000, 0, 0, true},     {-1, 0, 0, true},
        {-1, 999'999'000, 0, true},   {0, 0, 0, false},
        {0, 1'000, 0, false},         {1, 0, 0, false},
        {1'000'000, 0, 0, false},     {0, 500'000'000, 0.5, false},
        {0, 500'000'000, 0.75, true},
    };
    for (const auto& row : rows) {
        const RetentionScene scene;
        scene.file("MyApp.1.log", row.seconds, row.nanoseconds);
        const kit::CapturedOutput output;
        ZQLog::removeLogfilesOlderThan_fromFolder(at(row.limit), NSString(scene.logs()));
        EXPECT_EQ(output.texts(), row.isRemoved ? scene.messages({"MyApp.1.log"}, By::age) : Texts{});
        EXPECT_EQ(exists(scene / "MyApp.1.log"), !row.isRemoved) << row.seconds << " " << row.nanoseconds;
    }
}

TEST(LogRetention, byAgeGoesInTheOrderOfTheListing) {
    const RetentionScene scene;
    for (int i = 0; i < 60; ++i) {
        scene.file("MyApp." + std::to_string(i * 7919 % 1000) + ".log", -1 - i * 31 % 17);
    }
    const Texts expected = scene.messages(scene.listing(), By::age);
    EXPECT_EQ(scene.removed(By::age), expected);
    EXPECT_EQ(scene.names(), NameSet{});
}

// By count.

TEST(LogRetention, byCountKeepsTheNewest) {
    const Texts oldestFirst{"MyApp.7.log", logName, "MyApp.log", "MyApp-2.log", "MyApp.1.log"};
    for (const std::size_t count : {std::size_t{0}, std::size_t{1}, std::size_t{2}, std::size_t{4},
                                    std::size_t{5}, std::size_t{6}, std::size_t{1'000'000}, SIZE_MAX}) {
        const RetentionScene scene;
        time_t seconds = 10;
        scene.file("Other.log", -1'000);
        for (const std::string& name : oldestFirst) {
            scene.file(name, ++seconds);
        }
        const auto firstKept =
            oldestFirst.end() - static_cast<std::ptrdiff_t>(std::min(count, oldestFirst.size()));
        NameSet left(firstKept, oldestFirst.end());
        left.insert("Other.log");
        EXPECT_EQ(scene.removed(By::count, count),
                  scene.messages(Texts(oldestFirst.begin(), firstKept), By::count))
            << count;
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
        expected.push_back(scene.message(name, By::count));
    }
    expected.resize(50);
    EXPECT_EQ(scene.removed(By::count, 10), expected);
    EXPECT_EQ(scene.names().size(), 10U);
}

TEST(LogRetention, byCountDistinguishesDatesThatDifferByAFraction) {
    const RetentionScene scene;
    scene.file("MyApp.1.log", 0, 2'000);
    scene.file("MyApp.2.log", 0, 1'000);
    scene.file("MyApp.3.log", 0, 3'000);
    EXPECT_EQ(scene.removed(By::count, 1), scene.messages({"MyApp.2.log", "MyApp.1.log"}, By::count));
    EXPECT_EQ(scene.names(), NameSet{"MyApp.3.log"});
}

TEST(LogRetention, byCountCountsFilesOfOneDateOnce) {
    // Twenty-one files, two dates, one entry for each: the last of its date in the listing.
    for (const std::size_t count : {0U, 1U, 2U}) {
        const RetentionScene scene;
        for (int i = 0; i < 20; ++i) {
            scene.file("MyApp." + std::to_string(i) + ".log", -100);
        }
        scene.file("MyApp.99.log", -50);
        Texts entries(2, "MyApp.99.log");
        for (const std::string& name : scene.listing()) {
            entries[0] = name != entries[1] ? name : entries[0];
        }
        entries.resize(2 - count);
        NameSet left = scene.names();
        for (const std::string& name : entries) {
            left.erase(name);
        }
        EXPECT_EQ(scene.removed(By::count, count), scene.messages(entries, By::count)) << count;
        EXPECT_EQ(scene.names(), left) << count;
    }
}

// Links, folders and whatever else has such a name.

TEST(LogRetention, datesALinkByItsTargetAndRemovesTheLinkOnly) {
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
    scene.removed(By::age);
    EXPECT_EQ(scene.names(), NameSet{"MyApp.2.log"});
    scene.removed(By::count);
    EXPECT_EQ(scene.names(), NameSet{});
    EXPECT_EQ(kit::contentsOf(scene.base + "/old target"), "old");
    EXPECT_EQ(kit::contentsOf(scene.base + "/new target"), "new");
    EXPECT_EQ(kit::contentsOf(scene.base + "/old folder/inside"), "inside");
    // A link to a link may come after the other one has gone, and is then dangling: its own date counts.
    scene.link("../old target", "MyApp.1.log", 50);
    scene.link("MyApp.1.log", "MyApp.4.log", 50);
    scene.removed(By::age);
    EXPECT_FALSE(exists(scene / "MyApp.1.log"));
}

TEST(LogRetention, countsALinkByTheDateOfItsTarget) {
    const RetentionScene scene;
    scene.folder.write("target", "kept");
    scene.date("../target", -100);
    scene.link("../target", "MyApp.1.log", 500);
    scene.file("MyApp.2.log", -50);
    EXPECT_EQ(scene.removed(By::count, 1), scene.messages({"MyApp.1.log"}, By::count));
    EXPECT_EQ(kit::contentsOf(scene.base + "/target"), "kept");
    // A log file and a link to it have one date, and so one entry.
    scene.link("MyApp.2.log", "MyApp.3.log", 700);
    EXPECT_EQ(scene.removed(By::count, 1), Texts{});
    EXPECT_EQ(scene.names(), (NameSet{"MyApp.2.log", "MyApp.3.log"}));
}

TEST(LogRetention, datesADanglingLinkByItself) {
    // It stays as it is when links are resolved, and what is at the path then is the link.
    for (const char* const target : {"nosuch", "MyApp.1.log"}) {
        for (const bool isOld : {true, false}) {
            const RetentionScene scene;
            scene.link(target, "MyApp.1.log", isOld ? -100 : 100);
            EXPECT_EQ(scene.removed(By::age), isOld ? scene.messages({"MyApp.1.log"}, By::age) : Texts{});
            EXPECT_EQ(exists(scene / "MyApp.1.log"), !isOld) << target;
        }
        const RetentionScene scene;
        scene.link(target, "MyApp.1.log", -100);
        scene.file("MyApp.2.log", -200);
        EXPECT_EQ(scene.removed(By::count, 1), scene.messages({"MyApp.2.log"}, By::count));
        EXPECT_EQ(scene.names(), NameSet{"MyApp.1.log"});
    }
}

TEST(LogRetention, removesAFolderThatIsCalledLikeALogFileWithItsContents) {
    for (const By way : bothWays) {
        const RetentionScene scene;
        scene.folder.write("kept", "kept");
        scene.file("MyApp.1.log/a/b", -1);
        scene.link("../../kept", "MyApp.1.log/toKept", -1);
        scene.date("MyApp.1.log", -100);
        ASSERT_EQ(::mkfifo((scene / "MyApp.2.log").c_str(), 0600), 0);
        scene.date("MyApp.2.log", 100);
        scene.file("sub/MyApp.3.log", -100); // nobody looks into other folders
        EXPECT_EQ(scene.removed(way, 1), scene.messages({"MyApp.1.log"}, way));
        EXPECT_EQ(scene.names(), (NameSet{"MyApp.2.log", "sub"}));
        EXPECT_TRUE(exists(scene / "sub/MyApp.3.log"));
        EXPECT_EQ(kit::contentsOf(scene.base + "/kept"), "kept");
    }
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
        for (const By way : bothWays) {
            scene.file("MyApp.1.log", -100);
            EXPECT_EQ(removed(row.folder, way), Texts{message(row.path, way)});
            EXPECT_EQ(scene.names(), NameSet{}) << row.folder;
        }
    }
}

TEST(LogRetention, takesARelativeFolderFromTheCurrentOneAndExpandsNoTilde) {
    const RetentionScene scene;
    const kit::Variable home("HOME", scene.logs().c_str());
    scene.file("MyApp.1.log", -100);
    const kit::CurrentFolder current(scene.base);
    EXPECT_EQ(removed("~", By::age), Texts{});
    EXPECT_EQ(removed("~", By::count), Texts{});
    EXPECT_EQ(removed("logs", By::age), Texts{message("logs/MyApp.1.log", By::age)});
    EXPECT_EQ(scene.names(), NameSet{});
}

TEST(LogRetention, namesFilesWithPercentSignsAndForeignBytes) {
    const RetentionScene scene;
    for (const char* const name : {"100%d %@%n", "\xFF logs"}) {
        const std::string folder = scene.folder.makeFolder(name);
        scene.folder.write(std::string(name) + "/MyApp.1.log", "");
        const std::string shown = name[0] == '\xFF' ? scene.folder.path() + "/\uFFFD logs" : folder;
        EXPECT_EQ(removed(folder, By::count), Texts{message(shown + "/MyApp.1.log", By::count)});
        EXPECT_FALSE(exists(folder + "/MyApp.1.log"));
    }
}

// What goes wrong.

TEST(LogRetention, saysNothingOfAFolderThatCannotBeListedOrHasNothingToRemove) {
    const RetentionScene scene;
    EXPECT_EQ(scene.removed(By::age), Texts{});
    EXPECT_EQ(scene.removed(By::count), Texts{});
    scene.file("MyApp.1.log", 100);
    EXPECT_EQ(scene.removed(By::age), Texts{});
    EXPECT_EQ(scene.removed(By::count, 1), Texts{});
    const kit::CapturedOutput output;
    for (const NSString& folder : {NSString(), NSString(""), NSString(scene / "nosuch"),
                                   NSString(scene / "MyApp.1.log"), NSString("nosuch-zq")}) {
        removeFrom(folder, By::age);
        removeFrom(folder, By::count);
    }
    EXPECT_EQ(output.bytes(), "");
    EXPECT_EQ(scene.names(), NameSet{"MyApp.1.log"});
}

/// The same as an ordinary user.
Texts removedUnprivileged(const RetentionScene& scene, By way, std::size_t count = 0) {
    const kit::CapturedOutput output;
    kit::expectAsUser([&] { removeFrom(NSString(scene.logs()), way, count); });
    return output.texts();
}

TEST(LogRetention, saysWhichFilesCannotBeRemovedAndGoesOn) {
    const RetentionScene scene;
    scene.file("MyApp.1.log", -300);
    scene.file("MyApp.2.log", -100);
    scene.file("MyApp.3.log", -200);
    scene.setMode(0555);
    Texts inListingOrder;
    for (const std::string& name : scene.listing()) {
        inListingOrder.push_back(scene.message(name, By::age));
        inListingOrder.push_back(scene.failure(name));
    }
    EXPECT_EQ(removedUnprivileged(scene, By::age), inListingOrder);
    EXPECT_EQ(removedUnprivileged(scene, By::count, 1),
              (Texts{scene.message("MyApp.1.log", By::count), scene.failure("MyApp.1.log"),
                     scene.message("MyApp.3.log", By::count), scene.failure("MyApp.3.log")}));
    scene.setMode(0755);
    EXPECT_EQ(scene.names().size(), 3U);
}

TEST(LogRetention, goesOnAfterAFileThatCannotBeRemoved) {
    // A folder with a closed folder inside stays; the files around it go.
    const RetentionScene scene;
    scene.setMode(0777);
    for (int i = 0; i < 20; ++i) {
        scene.file("MyApp." + std::to_string(i) + ".log", -100 - i);
    }
    scene.file("MyApp.99.log/closed/file", -1);
    ASSERT_EQ(::chmod((scene / "MyApp.99.log/closed").c_str(), 0555), 0);
    ASSERT_EQ(::chmod((scene / "MyApp.99.log").c_str(), 0777), 0);
    scene.date("MyApp.99.log", -110, 500'000'000);
    Texts expected = scene.messages(scene.listing(), By::age);
    const auto failing = std::find(expected.begin(), expected.end(), scene.message("MyApp.99.log", By::age));
    expected.insert(failing + 1, scene.failure("MyApp.99.log"));
    EXPECT_EQ(removedUnprivileged(scene, By::age), expected);
    EXPECT_EQ(scene.names(), NameSet{"MyApp.99.log"});
    ::chmod((scene / "MyApp.99.log/closed").c_str(), 0755);
}

TEST(LogRetention, leavesFilesWhoseDateCannotBeRead) {
    // The names in the folder may be read, the items that they name may not.
    const RetentionScene scene;
    scene.file("MyApp.1.log", -100);
    scene.file("MyApp.2.log", -200);
    scene.setMode(0444);
    EXPECT_EQ(removedUnprivileged(scene, By::age), Texts{});
    EXPECT_EQ(removedUnprivileged(scene, By::count), Texts{});
    scene.setMode(0755);
    EXPECT_EQ(scene.names().size(), 2U);
}

TEST(LogRetention, saysWhatItRemovesBeforeItDoes) {
    for (const By way : bothWays) {
        const RetentionScene scene;
        scene.file("MyApp.1.log", -100);
        int ends[2];
        ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
        // A full pipe holds the line back until somebody reads.
        ASSERT_EQ(::fcntl(ends[1], F_SETFL, O_NONBLOCK), 0);
        while (::write(ends[1], "x", 1) > 0) {
        }
        ASSERT_EQ(::fcntl(ends[1], F_SETFL, 0), 0);
        std::string all;
        {
            const kit::StandardErrorAs standardError(ends[1]);
            ::close(ends[1]);
            const logscene::Background removal([&] { removeFrom(NSString(scene.logs()), way); });
            EXPECT_TRUE(removal.waitsSoon());
            EXPECT_TRUE(exists(scene / "MyApp.1.log")) << "it went before its line";
            while (all.empty() || all.back() != '\n') {
                char byte = 0;
                ASSERT_EQ(::read(ends[0], &byte, 1), 1);
                all += byte;
            }
        }
        ::close(ends[0]);
        EXPECT_FALSE(exists(scene / "MyApp.1.log"));
        EXPECT_EQ(kit::textsIn(all.substr(all.find_first_not_of('x'))), scene.messages({"MyApp.1.log"}, way));
    }
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
    scene.setMode(01777);
    EXPECT_EQ(scene.removed(By::count, 2), Texts());
    EXPECT_EQ(scene.removed(By::count, 1), scene.messages({"MyApp.5.log"}, By::count));
    EXPECT_EQ(scene.removed(By::age), scene.messages({"MyApp.3.log"}, By::age));
    EXPECT_EQ(scene.names(), (NameSet{"MyApp.1.log", "MyApp.2.log", "MyApp.4.log"}));
    for (const mode_t notShared : {mode_t{01755}, mode_t{0777}}) {
        scene.setMode(notShared);
        EXPECT_EQ(scene.removed(By::age).size(), notShared == 01755 ? 2U : 1U);
        scene.file("MyApp.1.log", -100);
        ASSERT_EQ(::lchown((scene / "MyApp.1.log").c_str(), nobody, nobody), 0);
    }
}

TEST(LogRetention, findsItsFilesAmong200000OtherEntries) {
    const kit::ScratchInMemory memory;
    const RetentionScene scene;
    for (int number = 0; number < 200000; ++number) {
        const std::string ending = number % 20000 == 0 ? ".log" : ".txt";
        const std::string path = scene / ("MyApp." + std::to_string(number) + ending);
        const kit::Descriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
        ASSERT_TRUE(file) << path;
    }
    const kit::CapturedOutput output;
    ZQLog::removeLogfilesOlderThan_fromFolder(NSDate::dateWithTimeIntervalSinceReferenceDate(1e10),
                                              NSString(scene.logs()));
    EXPECT_EQ(output.texts().size(), 10U);
    const Texts left = scene.listing();
    EXPECT_EQ(left.size(), 200000U - 10U);
    EXPECT_TRUE(std::all_of(left.begin(), left.end(),
                            [](const std::string& name) { return name.ends_with(".txt"); }));
}

// A process name that overlaps with the ending.

std::string raisedBy(const std::string& folder, By way) {
    return kit::raised([&] { removed(folder, way); });
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
        for (const By way : bothWays) {
            for (const time_t seconds : {-100, 1'000}) { // whatever the date
                const RetentionScene scene(row.process);
                scene.file(row.name, seconds);
                EXPECT_EQ(raisedBy(scene.logs(), way), row.raises ? "NSRangeException" : "nothing")
                    << row.process << " " << row.name;
                EXPECT_FALSE(row.raises && !exists(scene / row.name)) << row.process << " " << row.name;
            }
        }
    }
}

TEST(LogRetention, hasRemovedByAgeWhatIsListedBeforeTheRangeErrorAndByCountNothing) {
    for (const By way : bothWays) {
        const RetentionScene scene("My.log");
        for (int i = 0; i < 30; ++i) {
            scene.file("My.log." + std::to_string(i) + ".log", -100 - i);
        }
        scene.file("My.log", -50);
        const Texts listing = scene.listing();
        const auto firstKept =
            way == By::age ? std::find(listing.begin(), listing.end(), "My.log") : listing.begin();
        EXPECT_EQ(raisedBy(scene.logs(), way), "NSRangeException");
        EXPECT_EQ(scene.names(), NameSet(firstKept, listing.end()));
    }
}

TEST(LogRetention, leavesErrnoAlone) {
    const RetentionScene scene;
    scene.file("MyApp.1.log", -100);
    scene.file("MyApp.2.log", -100);
    scene.link("nosuch", "MyApp.3.log", 100);
    const kit::CapturedOutput output;
    errno = EDOM;
    removeFrom(NSString(scene / "nosuch"), By::age);
    EXPECT_EQ(errno, EDOM);
    removeFrom(NSString(scene.logs()), By::age);
    EXPECT_EQ(errno, EDOM);
    removeFrom(NSString(scene.logs()), By::count);
    EXPECT_EQ(errno, EDOM);
    EXPECT_EQ(scene.names(), NameSet{});
}

} // namespace
