// SPDX-License-Identifier: MIT
// The lines about the application, the system and the hardware in the log.
#include "info/ZQLogInfo.h"

#include "tests/info/InfoScene.h"
#include "tests/log/LogTestSupport.h"

using namespace ZQFoundation;
using infotest::ApplicationScene;
using infotest::Hardware;
using infotest::raised;
using infotest::SystemScene;
using infotest::utf8Of;

namespace {

using Lines = std::vector<std::string>;

const std::string separator(68, '-');
const std::string head = "+[ZQLogInfo getAppInformation] ";

constexpr const char* wholeInfo =
    "{ CFBundleIdentifier = com.example.viewer; NSHumanReadableShortName = Viewer;"
    " CFBundleShortVersionString = 2.1; CFBundleVersion = 417; }";

/// The lines that the action writes.
template <class Action>
Lines linesOf(const Action& action) {
    const logtest::CapturedOutput output;
    action();
    return output.texts();
}

std::string nameOf(const std::string& version) {
    const SystemScene system;
    system.writeVersionFile(infotest::versionFileOf(version));
    return utf8Of(NSString(ZQLogInfo::getSystemInformation().objectForKey("osName")));
}

std::string hardwareOf(const std::string& model, int processors, std::uint64_t memoryBytes) {
    const Hardware facts(detail::overrides::hardware, infotest::hardware(model, processors, memoryBytes));
    return utf8Of(ZQLogInfo::hardwareInfoString());
}

} // namespace

// The application

TEST(ZQLogInfo, gathersTheApplicationWithoutAWord) {
    const ApplicationScene application(wholeInfo, {"de", "en"});
    const logtest::CapturedOutput output;
    EXPECT_EQ(ZQLogInfo::getAppInformation(), (NSDictionary{{"appIdentifier", "com.example.viewer"},
                                                            {"shortApplicationName", "Viewer"},
                                                            {"appLocalization", "en"},
                                                            {"shortVersionString", "2.1"},
                                                            {"versionString", "417"}}));
    EXPECT_EQ(utf8Of(ZQLogInfo::appInfoString()), "Viewer 2.1 v417");
    EXPECT_EQ(output.texts(), Lines{});
}

TEST(ZQLogInfo, joinsThePreferredLocalizations) {
    const ApplicationScene application(wholeInfo, {"de", "de-AT", "en"});
    const scene::Variable language("LANGUAGE", "de_AT");
    EXPECT_EQ(ZQLogInfo::getAppInformation().objectForKey("appLocalization"), NSObject("de-AT, de"));
}

TEST(ZQLogInfo, looksNoFurtherWithoutAnInfoDictionary) {
    const ApplicationScene application("");
    EXPECT_EQ(linesOf([] { EXPECT_EQ(ZQLogInfo::getAppInformation(), NSDictionary::dictionary()); }),
              Lines{head + "This application does not have an info dictionary"});
    EXPECT_EQ(linesOf([] { EXPECT_EQ(utf8Of(ZQLogInfo::appInfoString()), "(unknown app name)"); }),
              Lines{head + "This application does not have an info dictionary"});
}

TEST(ZQLogInfo, writesALineForEachMissingFact) {
    const ApplicationScene application("{ NSHumanReadableShortName = \"50% Viewer %@\"; }");
    const Lines lines = linesOf([] {
        const NSDictionary information = ZQLogInfo::getAppInformation();
        EXPECT_EQ(information.objectForKey("shortApplicationName"), NSObject("50% Viewer %@"));
        EXPECT_EQ(information.count(), 2u); // the localization is there too
    });
    EXPECT_EQ(
        lines,
        (Lines{head + "This application does not have an appIdentifier!",
               head + "The info dictionary of 50% Viewer %@ does not contain a CFBundleShortVersionString!",
               head + "The info dictionary of 50% Viewer %@ does not contain a CFBundleVersion!"}));
}

TEST(ZQLogInfo, writesItsLinesAgainAtEveryCall) {
    const ApplicationScene application(
        "{ CFBundleIdentifier = com.example.viewer; CFBundleShortVersionString = "
        "2.1; NSHumanReadableShortName = Viewer; }");
    const std::string line = head + "The info dictionary of Viewer does not contain a CFBundleVersion!";
    EXPECT_EQ(linesOf([] { EXPECT_EQ(utf8Of(ZQLogInfo::appInfoString()), "Viewer 2.1"); }), Lines{line});
    EXPECT_EQ(linesOf([] { ZQLogInfo::getAppInformation(); }), Lines{line});
}

TEST(ZQLogInfo, takesTheTextOfVersionsThatAreNumbers) {
    const ApplicationScene application(
        "<plist><dict><key>CFBundleIdentifier</key><string>v</string><key>NSHumanReadableShortName</key>"
        "<string>Viewer</string><key>CFBundleShortVersionString</key><real>2.5</real>"
        "<key>CFBundleVersion</key><integer>417</integer></dict></plist>");
    EXPECT_EQ(utf8Of(ZQLogInfo::appInfoString()), "Viewer 2.5 v417");
    EXPECT_TRUE(NSString(ZQLogInfo::getAppInformation().objectForKey("versionString")));
}

// The system

TEST(ZQLogInfo, gathersTheSystemFromTheSystemVersionFile) {
    const SystemScene system;
    system.writeVersionFile(infotest::versionFileOf("14.2"));
    EXPECT_EQ(ZQLogInfo::getSystemInformation(), (NSDictionary{{"osVersion", "14.2"},
                                                               {"osBuild", "23C64"},
                                                               {"osNameInternal", "Sampler OS"},
                                                               {"osName", "macOS"}}));
    EXPECT_EQ(utf8Of(ZQLogInfo::osInfoString()), "macOS 14.2 (23C64)");
    EXPECT_EQ(utf8Of(ZQLogInfo::osNameAndVersionString()), "macOS 14.2");
    EXPECT_EQ(utf8Of(ZQLogInfo::osVersionString()), "14.2");
}

TEST(ZQLogInfo, derivesTheNameFromTheVersion) {
    struct Row {
        const char* version;
        const char* name;
    };
    for (const Row& row :
         {Row{"10.7.5", "Mac OS X"}, Row{"10.7", "Mac OS X"}, Row{"10.8", "OS X"}, Row{"10.8b", "Mac OS X"},
          Row{"10.11", "OS X"}, Row{"10.11.6", "OS X"}, Row{"10.12", "macOS"}, Row{"10.16", "macOS"},
          Row{"11", "macOS"}, Row{"11.0", "macOS"}, Row{"9.2", "Mac OS X"}, Row{"", "Mac OS X"},
          Row{"beta", "Mac OS X"}}) {
        EXPECT_EQ(nameOf(row.version), row.name) << row.version;
    }
}

TEST(ZQLogInfo, raisesForEachFactThatTheSystemVersionFileLacks) {
    const std::string name = infotest::entry("ProductName", "Sampler OS");
    const std::string version = infotest::entry("ProductVersion", "14.2");
    const std::string build = infotest::entry("ProductBuildVersion", "23C64");
    const SystemScene system;
    system.writeReleaseFile("NAME=Other\nVERSION_ID=1\n");
    for (const std::string& entries : {name + version, name + build, version + build, std::string()}) {
        system.writeVersionFile(infotest::versionFile(entries));
        EXPECT_EQ(raised([] { ZQLogInfo::getSystemInformation(); }), NSInvalidArgumentException) << entries;
        EXPECT_EQ(raised([] { ZQLogInfo::osInfoString(); }), NSInvalidArgumentException);
        EXPECT_EQ(raised([] { ZQLogInfo::osNameAndVersionString(); }), NSInvalidArgumentException);
        EXPECT_EQ(raised([] { ZQLogInfo::osVersionString(); }), NSInvalidArgumentException);
    }
    system.writeVersionFile(infotest::versionFile(name + version + build));
    EXPECT_EQ(raised([] { ZQLogInfo::getSystemInformation(); }), "nothing");
    system.writeVersionFile("broken {");
    EXPECT_EQ(raised([] { ZQLogInfo::getSystemInformation(); }), NSInvalidArgumentException);
}

TEST(ZQLogInfo, gathersTheSystemFromItsReleaseDescription) {
    const SystemScene system;
    system.writeReleaseFile("NAME=\"Debian GNU/Linux\"\nVERSION_ID=\"12\"\nVERSION=\"12 (bookworm)\"\n");
    const std::string kernel = detail::system::kernelRelease();
    EXPECT_EQ(ZQLogInfo::getSystemInformation(), (NSDictionary{{"osVersion", "12"},
                                                               {"osBuild", kernel},
                                                               {"osNameInternal", "Debian GNU/Linux"},
                                                               {"osName", "Debian GNU/Linux"}}));
    EXPECT_EQ(utf8Of(ZQLogInfo::osInfoString()), "Debian GNU/Linux 12 (" + kernel + ")");
    EXPECT_EQ(utf8Of(ZQLogInfo::osNameAndVersionString()), "Debian GNU/Linux 12");
}

TEST(ZQLogInfo, neverRaisesOnASystemThatDescribesNothing) {
    const SystemScene system;
    const std::string kernel = detail::system::kernelRelease();
    EXPECT_EQ(utf8Of(ZQLogInfo::osInfoString()), "Linux " + kernel + " (" + kernel + ")");
}

// The hardware

TEST(ZQLogInfo, gathersTheHardwareAsTexts) {
    const Hardware facts(detail::overrides::hardware, infotest::hardware("Mac14,2", 8, 17179869184));
    EXPECT_EQ(ZQLogInfo::getHardwareInformation(),
              (NSDictionary{{"model", "Mac14,2"}, {"nCores", "8"}, {"ramMB", "16384"}}));
    EXPECT_EQ(utf8Of(ZQLogInfo::hardwareInfoString()), "[Mac14,2; 8 processor cores; 16384 MB RAM]");
}

TEST(ZQLogInfo, leavesOutTheHardwareThatCannotBeTold) {
    EXPECT_EQ(hardwareOf("", 0, 17179869184), "[16384 MB RAM]");
    EXPECT_EQ(hardwareOf("Box", 1, 0), "[Box; 1 processor core]");
    EXPECT_EQ(hardwareOf("", 0, 0), "(nil)");
}

TEST(ZQLogInfo, dropsTheRemainderOfTheMemory) {
    EXPECT_EQ(hardwareOf("", 0, 17179869183), "[16383 MB RAM]");
    EXPECT_EQ(hardwareOf("", 0, 1), "[0 MB RAM]");
    EXPECT_EQ(hardwareOf("", 0, UINT64_MAX), "[17592186044415 MB RAM]");
}

TEST(ZQLogInfo, takesAModelThatNeedsMoreThan100BytesForNone) {
    EXPECT_EQ(hardwareOf(std::string(99, 'm'), 0, 0), "[" + std::string(99, 'm') + "]");
    EXPECT_EQ(hardwareOf(std::string(100, 'm'), 0, 0), "(nil)");
}

TEST(ZQLogInfo, tellsOfThisMachine) {
    const NSDictionary information = ZQLogInfo::getHardwareInformation();
    EXPECT_EQ(utf8Of(NSString(information.objectForKey("nCores"))),
              std::to_string(detail::system::hardwareFacts().processors));
    EXPECT_EQ(utf8Of(NSString(information.objectForKey("ramMB"))),
              std::to_string(detail::system::hardwareFacts().memoryBytes >> 20));
}

// The head of the log

TEST(ZQLogInfo, writesNothingAtTheStartWithoutAnActiveTraceKey) {
    const logtest::TraceKeys keys{
        {"TraceIO", "<false/>"}, {"EnableBeta", "<true/>"}, {"DebugLevel", "<integer>3</integer>"}};
    const ApplicationScene application("");
    const SystemScene system;
    system.writeVersionFile("broken {");
    EXPECT_EQ(linesOf([] { ZQLogInfo::standardStartupLog(); }), Lines{});
}

TEST(ZQLogInfo, writesTheWholeBlockWithAnActiveTraceKey) {
    const logtest::TraceKeys keys{{"TraceIO", "<true/>"}};
    const ApplicationScene application(wholeInfo, {"en"});
    const SystemScene system;
    system.writeVersionFile(infotest::versionFileOf("14.2"));
    const Hardware facts(detail::overrides::hardware, infotest::hardware("Mac14,2", 8, 17179869184));
    EXPECT_EQ(linesOf([] { ZQLogInfo::standardStartupLog(); }),
              (Lines{separator, "Viewer 2.1 v417 (en), running on macOS 14.2 (23C64)",
                     "[Mac14,2; 8 processor cores; 16384 MB RAM]", separator, "Debug logging:",
                     "TraceIO is active.  Deactivate using: defaults write com.example.viewer TraceIO NO",
                     separator}));
}

TEST(ZQLogInfo, writesNoHardwareLineWithoutHardware) {
    const ApplicationScene application(wholeInfo, {"en"});
    const SystemScene system;
    system.writeVersionFile(infotest::versionFileOf("14.2"));
    const Hardware facts(detail::overrides::hardware, infotest::hardware("", 0, 0));
    EXPECT_EQ(linesOf([] { ZQLogInfo::logAppAndSystemInformation(); }),
              Lines{"Viewer 2.1 v417 (en), running on macOS 14.2 (23C64)"});
}

TEST(ZQLogInfo, warnsTwiceBeforeTheSummaryAndOnceBeforeTheReport) {
    const logtest::TraceKeys keys{{"TraceIO", "<true/>"}};
    const ApplicationScene application("");
    const SystemScene system;
    system.writeVersionFile(infotest::versionFileOf("14.2"));
    const Hardware facts(detail::overrides::hardware, infotest::hardware("50% %@", 0, 0));
    const std::string warning = head + "This application does not have an info dictionary";
    EXPECT_EQ(linesOf([] { ZQLogInfo::standardStartupLog(); }),
              (Lines{separator, warning, warning, "(unknown app name), running on macOS 14.2 (23C64)",
                     "[50% %@]", separator, warning, "Debug logging:", "TraceIO is active.", separator}));
}

TEST(ZQLogInfo, endsAfterTheFirstSeparatorWhenTheSystemVersionFileIsBroken) {
    const logtest::TraceKeys keys{{"TraceIO", "<true/>"}};
    const ApplicationScene application(wholeInfo, {"en"});
    const SystemScene system;
    system.writeVersionFile("broken {");
    EXPECT_EQ(linesOf([] {
                  EXPECT_EQ(raised([] { ZQLogInfo::standardStartupLog(); }), NSInvalidArgumentException);
              }),
              Lines{separator});
}

TEST(ZQLogInfo, keepsErrno) {
    const logtest::TraceKeys keys{{"TraceIO", "<true/>"}};
    const ApplicationScene application("");
    const SystemScene system;
    const logtest::CapturedOutput output;
    errno = EXDEV;
    ZQLogInfo::standardStartupLog();
    EXPECT_EQ(errno, EXDEV);
    ZQLogInfo::getHardwareInformation();
    EXPECT_EQ(errno, EXDEV);
}
