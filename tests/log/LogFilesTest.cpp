// SPDX-License-Identifier: MIT
// Where a log file belongs and how it is named.
#include "tests/kit/Items.h"
#include "tests/kit/Values.h"
#include "tests/log/LogScene.h"

using namespace ZQFoundation;
using kit::exists;
using kit::insideFolder;

namespace {

namespace overrides = ZQFoundation::detail::overrides;

constexpr double instant = 1'709'647'620.75; // 2024-03-05 14:07:00.75 UTC

std::string number() { return std::to_string(::getpid()); }

/// A process "MyApp" without a bundle at 14:07 UTC, in a home folder of its own that holds a Library.
struct LogScene {
    explicit LogScene(const std::string& name = "MyApp")
        : base(kit::realPath(folder.path())), home(folder.makeFolder("home")),
          homeVariable("HOME", (base + "/home").c_str()),
          arguments(overrides::arguments, {"/somewhere/" + name}), processName(kit::fromBytes(name)),
          program(overrides::executablePath, folder.makeFolder("program") + "/viewer") {
        folder.makeFolder("home/Library");
    }

    std::string operator/(const std::string& name) const { return base + "/" + name; }

    kit::ScratchFolder folder;
    std::string base;
    std::string home;
    kit::Variable homeVariable;
    kit::Arguments arguments;
    kit::ProcessName processName; // a name that an earlier test has set would win over the arguments
    kit::Path program;
    kit::Variable zone{"TZ", "UTC0"};
    kit::Replaced<double> clock{overrides::clock, instant};
};

std::string newName(const NSString& folder) {
    return kit::utf8Of(ZQLog::standardNewLogFileNameForLoggingToFolder(folder));
}

std::string standardName() { return "MyApp.20240305-1407." + number() + ".log"; }

} // namespace

// The folder.

TEST(LogFiles, folderIsTheApplicationsFolderUnderTheLibrary) {
    const LogScene scene;
    EXPECT_EQ(kit::utf8Of(ZQLog::standardLogFolder()), scene / "home/Library/Logs/MyApp");
    EXPECT_EQ(ZQLog::standardLogFolder(), NSProcessInfo::pathOfLibraryLogSubfolder());
    EXPECT_FALSE(exists(scene / "home/Library/Logs")) << "nobody asked for it to be made";
}

TEST(LogFiles, folderHasALevelForTheCompany) {
    const LogScene scene;
    scene.folder.write("program/Info.plist",
                       "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict>"
                       "<key>ZQCompanyName</key><string>Acme</string>"
                       "<key>NSHumanReadableShortName</key><string>Viewer</string></dict></plist>");
    EXPECT_EQ(kit::utf8Of(ZQLog::standardLogFolder()), scene / "home/Library/Logs/Acme/Viewer");
    // The file keeps the name of the process.
    EXPECT_EQ(kit::utf8Of(ZQLog::standardLogFilePath()),
              scene / ("home/Library/Logs/Acme/Viewer/" + standardName()));
}

TEST(LogFiles, folderIsTheTemporaryOneWithoutALibraryInAHome) {
    const LogScene scene;
    scene.folder.write("file", "no folder");
    scene.folder.write("libraryIsAFile/Library", "");
    const std::pair<std::string, const char*> links[] = {
        {"dangling", "nosuch"},
        {"loop", "loop"},
        {"libraryDangles/Library", "nosuch"},
        {"libraryIsALoop/Library", "Library"},
        {"libraryIsToAFile/Library", "../file"},
        {"libraryIsToAFolder/Library", "../home"},
    };
    for (const auto& [path, target] : links) {
        if (const std::size_t slash = path.find('/'); slash != path.npos) {
            scene.folder.makeFolder(path.substr(0, slash));
        }
        ASSERT_EQ(::symlink(target, (scene / path).c_str()), 0);
    }
    for (const char* const name : {"file", "program", "libraryIsAFile", "libraryIsALoop", "libraryDangles",
                                   "libraryIsToAFile", "loop", "dangling", "missing"}) {
        const kit::Variable home("HOME", (scene / name).c_str());
        EXPECT_EQ(ZQLog::standardLogFolder(), "/tmp") << name;
        EXPECT_EQ(kit::utf8Of(ZQLog::standardLogFilePath()), "/tmp/" + standardName()) << name;
    }
    EXPECT_FALSE(exists(scene / "missing") || exists(scene / "program/Library"));
    const kit::Variable home("HOME", (scene / "libraryIsToAFolder").c_str());
    EXPECT_EQ(kit::utf8Of(ZQLog::standardLogFolder()), scene / "libraryIsToAFolder/Library/Logs/MyApp")
        << "the link stays in the path";
}

TEST(LogFiles, folderIsInTheHomeOfTheUserDatabaseWithoutAnAbsoluteHome) {
    const LogScene scene;
    const kit::Variable home("HOME", nullptr);
    const NSString expected = ZQLog::standardLogFolder();
    EXPECT_TRUE(expected.hasPrefix("/"));
    for (const char* const path : {"", "relative", "../x", "."}) {
        home.change(path);
        EXPECT_EQ(ZQLog::standardLogFolder(), expected) << path;
    }
}

TEST(LogFiles, folderHasTheLinksOfTheHomeResolved) {
    const LogScene scene;
    ASSERT_EQ(::symlink("home", (scene / "toHome").c_str()), 0);
    const kit::Variable home("HOME", (scene / "toHome").c_str());
    EXPECT_EQ(kit::utf8Of(ZQLog::standardLogFolder()), scene / "home/Library/Logs/MyApp");
    EXPECT_EQ(kit::utf8Of(ZQLog::standardLogFilePath()),
              scene / ("home/Library/Logs/MyApp/" + standardName()));
}

// The name.

TEST(LogFiles, nameHoldsProcessMinuteAndNumber) {
    const LogScene scene;
    EXPECT_EQ(newName("/somewhere"), standardName());
    const struct {
        const char* zone;
        double seconds;
        const char* minute;
    } rows[] = {
        {"UTC0", instant, "20240305-1407"},
        {"<+0530>-5:30", instant, "20240305-1937"},
        {"<-10>10", instant, "20240305-0407"},
        {"<+14>-14", instant, "20240306-0407"},
        {"UTC0", instant + 59, "20240305-1407"},
        {"UTC0", instant + 60, "20240305-1408"},
        {"UTC0", 0, "19700101-0000"},
        {"UTC0", 946'684'799, "19991231-2359"},
    };
    for (const auto& row : rows) {
        const kit::Variable zone("TZ", row.zone);
        const kit::Replaced<double> clock(overrides::clock, row.seconds);
        EXPECT_EQ(newName(nullptr), std::string("MyApp.") + row.minute + "." + number() + ".log") << row.zone;
    }
}

TEST(LogFiles, nameHoldsTheProcessNameAsItIs) {
    for (const char* const name : {"a b", "My.App", "%@ %d%n", "caf\u00E9", "-x", "My.log"}) {
        const LogScene scene(name);
        EXPECT_EQ(newName("/x"), std::string(name) + ".20240305-1407." + number() + ".log");
    }
    kit::inFreshProcess([] {
        const LogScene scene;
        NSProcessInfo::processInfo().setProcessName("Renamed");
        EXPECT_EQ(newName("/x"), "Renamed.20240305-1407." + number() + ".log");
        EXPECT_EQ(kit::utf8Of(ZQLog::standardLogFolder()), scene / "home/Library/Logs/Renamed");
    });
}

TEST(LogFiles, nameHoldsAForkedChildsOwnNumber) {
    const LogScene scene;
    const std::string parents = newName("/x");
    kit::expectInChild([&] { return newName("/x") == standardName() && newName("/x") != parents; });
}

// Numbers: a name made for a given folder never gets one.

TEST(LogFiles, nameIsNeverNumberedForAFolder) {
    const LogScene scene;
    scene.folder.write("logs/" + standardName(), "there");
    scene.folder.write("home/Library/Logs/MyApp/" + standardName(), "there");
    EXPECT_EQ(newName(NSString(scene / "logs")), standardName());
    EXPECT_EQ(newName(NSString(scene / "logs/")), standardName());
    EXPECT_EQ(newName("/nosuch"), standardName());
    EXPECT_EQ(kit::utf8Of(ZQLog::standardLogFilePath()),
              scene / ("home/Library/Logs/MyApp/" + standardName()));
    const std::string inside = scene / "logs";
    EXPECT_TRUE(insideFolder(inside, [&scene] {
        scene.folder.write("logs/" + standardName(), "the child's");
        return newName(".") == standardName() && newName(nullptr) == standardName();
    }));
}

TEST(LogFiles, nameIsNotNumberedInTheCurrentFolderWhileTheFileOfThatNameStays) {
    // What is looked for is the file without a number, each of the 999 times.
    const LogScene scene;
    scene.folder.makeFolder("logs");
    EXPECT_TRUE(insideFolder(scene / "logs", [&scene] {
        const bool isPlainAtFirst = newName("") == standardName();
        scene.folder.write("logs/" + standardName(), "there");
        return isPlainAtFirst && newName("") == standardName();
    }));
    EXPECT_TRUE(insideFolder(scene / "logs", [&scene] {
        scene.folder.makeFolder("logs/" + standardName());
        return newName("") == standardName();
    })) << "a folder of that name";
}

TEST(LogFiles, nameIsPlainWhenOnlyADanglingLinkHasIt) {
    const LogScene scene;
    scene.folder.makeFolder("logs");
    EXPECT_TRUE(insideFolder(scene / "logs", [] {
        return ::symlink("nosuch", standardName().c_str()) == 0 && newName("") == standardName();
    }));
}

TEST(LogFiles, nameIsNumberedOnlyWhenTheFileVanishesMeanwhile) {
    kit::inFreshProcess([] {
        const LogScene scene;
        scene.folder.makeFolder("logs");
        ASSERT_EQ(::chdir((scene / "logs").c_str()), 0);
        const std::string stem = "MyApp.20240305-1407." + number();
        const std::string plain = stem + ".log";
        // The numbered files are all there, which changes nothing: nobody looks for them.
        for (int i = 1; i <= 999; ++i) {
            scene.folder.write("logs/" + stem + "." + std::to_string(i) + ".log", "");
        }
        const kit::Meanwhile toggling([&] {
            const int file = ::open(plain.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
            ::unlink(plain.c_str()); // at once, so that it may vanish within any two looks
            ::close(file);
        });
        const NSString named(scene / "logs");
        // As often as the machine lets the file vanish between two checks: soon, or after some seconds.
        for (int numbered = 0; numbered < 20;) {
            // The same coming and going in a given folder, or without a folder, adds no number.
            EXPECT_EQ(newName(named), plain);
            EXPECT_EQ(newName(nullptr), plain);
            const std::string name = newName("");
            if (name == plain) {
                continue;
            }
            const std::size_t middleLength = name.size() - (stem.size() + 5);
            const std::string middle = name.substr(stem.size() + 1, middleLength);
            EXPECT_EQ(name, stem + "." + middle + ".log");
            const int value = static_cast<int>(NSString(middle).integerValue());
            EXPECT_EQ(std::to_string(value), middle);
            EXPECT_TRUE(value >= 1 && value <= 999) << name;
            ++numbered;
        }
    });
}

TEST(LogFiles, nothingIsWrittenAndErrnoIsKept) {
    const LogScene scene;
    const kit::CapturedOutput output;
    errno = EDOM;
    ZQLog::standardLogFolder();
    ZQLog::standardLogFilePath();
    newName(nullptr);
    newName("/nosuch");
    EXPECT_EQ(errno, EDOM);
    EXPECT_EQ(output.bytes(), "");
    EXPECT_FALSE(exists(scene / "home/Library/Logs"));
}
