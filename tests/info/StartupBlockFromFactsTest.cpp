// SPDX-License-Identifier: MIT
// The whole start-up report, from given facts.
#include <ctime>

#include "foundation/process/NSUserDefaults.h"
#include "tests/info/FactsTesting.h"

using namespace ZQFoundation;
using factstest::entry;
using factstest::Facts;
using factstest::hardwareLine;
using factstest::Lines;
using factstest::plistOf;
using factstest::raised;
using factstest::separator;
using factstest::summary;
using factstest::warning;
using factstest::withInfo;
using factstest::withSettings;
using factstest::written;
using factstest::operator+;

namespace {

const Lines nothing;
const Lines head{separator, summary, hardwareLine, separator};
const logtest::Setting traced{"TraceIO", "<true/>"};

Lines startupLog() {
    return written([] { ZQLogInfo::standardStartupLog(); });
}

Lines defaultsReport() {
    return written([] { ZQLogInfo::logTracelogAndFeatureRelatedUserDefaults(); });
}

/// The report of these settings.
Lines reportOf(const logtest::Settings& settings) {
    const Facts facts(withSettings(settings));
    return defaultsReport();
}

std::string blanks(std::size_t count) { return std::string(count, ' '); }

std::string traceLine(const std::string& key, std::size_t spacer) {
    return key + " is active." + blanks(spacer) + " Deactivate using: defaults write org.example.viewer " +
           key + " NO";
}

std::string enableLine(const std::string& key, std::size_t spacer) {
    return key + " is active." + blanks(spacer) +
           " Disable the feature using: defaults remove org.example.viewer " + key;
}

std::string disableLine(const std::string& key, std::size_t spacer) {
    return key + " is active." + blanks(spacer) +
           " Reenable the feature using: defaults remove org.example.viewer " + key;
}

std::string debugLine(const std::string& key, const std::string& value, std::size_t spacer) {
    return key + " is set to " + value + "." + blanks(spacer) +
           " Disable this debug setting using: defaults remove org.example.viewer " + key;
}

/// The first words of the lines, which are the keys.
Lines keysOf(const Lines& lines) {
    Lines keys;
    for (const std::string& line : lines) {
        keys.push_back(line.substr(0, line.find(" is ")));
    }
    return keys;
}

/// Settings of this value.
logtest::Settings allOf(const std::vector<std::string>& keys, const std::string& value = "<true/>") {
    logtest::Settings settings;
    for (const std::string& key : keys) {
        settings.push_back({key, value});
    }
    return settings;
}

constexpr const char* wholeBlock =
    "--------------------------------------------------------------------\n"
    "Viewer 2.1 v417 (de-AT, de), running on macOS 14.2 (23C64)\n"
    "[Box14,2; 8 processor cores; 16384 MB RAM]\n"
    "--------------------------------------------------------------------\n"
    "Debug logging:\n"
    "TraceArguments is active.  Deactivate using: defaults write org.example.viewer TraceArguments NO\n"
    "Tracefiles is active.      Deactivate using: defaults write org.example.viewer Tracefiles NO\n"
    "TraceIO is active.         Deactivate using: defaults write org.example.viewer TraceIO NO\n"
    "TraceNetwork is active.    Deactivate using: defaults write org.example.viewer TraceNetwork NO\n"
    "--------------------------------------------------------------------\n"
    "Feature enabling:\n"
    "Enablealpha is active.     Disable the feature using: defaults remove org.example.viewer Enablealpha\n"
    "EnableBeta is active.      Disable the feature using: defaults remove org.example.viewer EnableBeta\n"
    "--------------------------------------------------------------------\n"
    "Feature disabling:\n"
    "DisableCache is active.    Reenable the feature using: defaults remove org.example.viewer DisableCache\n"
    "--------------------------------------------------------------------\n"
    "Feature modifying:\n"
    "DebugLevel is set to 3.      Disable this debug setting using: defaults remove org.example.viewer "
    "DebugLevel\n"
    "DebugLimit is set to 300.      Disable this debug setting using: defaults remove org.example.viewer "
    "DebugLimit\n"
    "DebugOn is set to 1.         Disable this debug setting using: defaults remove org.example.viewer "
    "DebugOn\n"
    "--------------------------------------------------------------------\n";

factstest::Given wholeBlockFacts() {
    factstest::Given given;
    given.localizations = {"de", "de-AT", "en"};
    given.settings = {{"TraceNetwork", "<true/>"},
                      {"TraceOff", "<false/>"},
                      {"DebugOn", "<true/>"},
                      {"EnableBeta", "<string>YES</string>"},
                      {"TraceIO", "<string>2</string>"},
                      {"DebugLimit", "<string>300</string>"},
                      {"DisableCache", "<integer>1</integer>"},
                      {"EnableNot", "<string>NO</string>"},
                      {"Enablealpha", "<true/>"},
                      {"Tracefiles", "<true/>"},
                      {"DebugLevel", "<integer>3</integer>"},
                      {"Unrelated", "<true/>"},
                      {"AppleLanguages", "<array><string>de-AT</string></array>"}};
    given.commandLine = {"-TraceArguments", "yes"};
    return given;
}

/// "2024-03-05 14:07:09" of the instant, in local time.
std::string localTime(double instant) {
    const std::time_t seconds = static_cast<std::time_t>(instant);
    std::tm fields = {};
    ::localtime_r(&seconds, &fields);
    char text[32];
    return std::string(text, std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &fields));
}

} // namespace

TEST(StartupBlockFromFacts, isOneTextForFixedFacts) {
    constexpr double instant = 1709647629.042;
    const scene::Replaced<double> clock(detail::overrides::clock, instant);
    const logtest::ProcessName process("viewerd");
    const Facts facts(wholeBlockFacts());
    const logtest::CapturedOutput output;
    ZQLogInfo::standardStartupLog();
    const std::string seen = output.bytes();
    const std::string start = localTime(instant) + ".042 viewerd[";
    ASSERT_EQ(seen.substr(0, start.size()), start);
    const std::string prefix = seen.substr(0, seen.find("] ") + 2);
    std::string expected;
    std::string_view rest = wholeBlock;
    while (!rest.empty()) {
        const std::size_t length = rest.find('\n') + 1;
        expected += prefix;
        expected += rest.substr(0, length);
        rest.remove_prefix(length);
    }
    EXPECT_EQ(seen, expected);
}

TEST(StartupBlockFromFacts, isTheSameAtEveryCall) {
    const Facts facts(wholeBlockFacts());
    EXPECT_EQ(startupLog(), startupLog());
}

TEST(StartupBlockFromFacts, separatesBy68Hyphens) {
    const Facts facts(withSettings({traced}));
    EXPECT_EQ(startupLog().front(), std::string(68, '-'));
}

TEST(StartupBlockFromFacts, isSilentWithoutAnActiveTraceKey) {
    const Facts none(withSettings(allOf({"EnableX", "DisableX", "DebugX", "traceIO", "xTrace"})));
    EXPECT_EQ(startupLog(), nothing);
    const Facts inactive(withSettings({{"TraceIO", "<false/>"}, {"EnableX", "<true/>"}}));
    EXPECT_EQ(startupLog(), nothing);
}

TEST(StartupBlockFromFacts, looksAtNoFactWithoutAnActiveTraceKey) {
    factstest::Given given = withInfo("");
    given.versionFile = "garbage @";
    const Facts facts(given);
    EXPECT_EQ(raised([] { ZQLogInfo::standardStartupLog(); }), "nothing");
    EXPECT_EQ(startupLog(), nothing);
}

TEST(StartupBlockFromFacts, isShortestForOneTraceKey) {
    const Facts facts(withSettings({traced}));
    EXPECT_EQ(startupLog(), head + Lines({"Debug logging:", traceLine("TraceIO", 1), separator}));
}

TEST(StartupBlockFromFacts, leavesOutHardwareThatIsUnknown) {
    factstest::Given given = withSettings({traced});
    given.hardware = infotest::hardware("", 0, 0);
    const Facts facts(given);
    EXPECT_EQ(startupLog(),
              (Lines{separator, summary, separator, "Debug logging:", traceLine("TraceIO", 1), separator}));
}

TEST(StartupBlockFromFacts, repeatsEveryWarningThreeTimes) {
    factstest::Given given = withInfo(plistOf(entry("CFBundleIdentifier", "org.example.viewer") +
                                              entry("NSHumanReadableShortName", "Viewer") +
                                              entry("CFBundleShortVersionString", "2.1")));
    given.settings = {traced};
    const Facts facts(given);
    const std::string missing = warning("The info dictionary of Viewer does not contain a CFBundleVersion!");
    EXPECT_EQ(startupLog(), (Lines{separator, missing, missing,
                                   "Viewer 2.1 (en), running on macOS 14.2 (23C64)", hardwareLine, separator,
                                   missing, "Debug logging:", traceLine("TraceIO", 1), separator}));
}

TEST(StartupBlockFromFacts, repeatsAllWarningsInTheirOrder) {
    factstest::Given given = withInfo(plistOf(entry("NSHumanReadableShortName", "Viewer")));
    given.settings = {traced};
    const Facts facts(given);
    const Lines warnings{
        warning("This application does not have an appIdentifier!"),
        warning("The info dictionary of Viewer does not contain a CFBundleShortVersionString!"),
        warning("The info dictionary of Viewer does not contain a CFBundleVersion!")};
    const Lines lines{"Viewer (en), running on macOS 14.2 (23C64)", hardwareLine, separator};
    const Lines section{"Debug logging:", "TraceIO is active.", separator};
    EXPECT_EQ(startupLog(), Lines{separator} + warnings + warnings + lines + warnings + section);
}

TEST(StartupBlockFromFacts, comesOutWithoutAnInfoDictionary) {
    factstest::Given given = withInfo("");
    given.settings = {traced};
    const Facts facts(given);
    const std::string missing = warning("This application does not have an info dictionary");
    EXPECT_EQ(startupLog(),
              (Lines{separator, missing, missing, "(unknown app name), running on macOS 14.2 (23C64)",
                     hardwareLine, separator, missing, "Debug logging:", "TraceIO is active.", separator}));
}

TEST(StartupBlockFromFacts, endsAfterTheFirstSeparatorForABrokenVersionFile) {
    const std::string name = entry("ProductName", "Sampler OS");
    const std::string version = entry("ProductVersion", "14.2");
    const std::string build = entry("ProductBuildVersion", "23C64");
    for (const std::string& bytes : {plistOf(name + build), plistOf(version + build), plistOf(name + version),
                                     plistOf(""), std::string("garbage @"), std::string("(14, 2)")}) {
        const Facts facts(withSettings({traced, {"EnableX", "<true/>"}}));
        facts.system.writeVersionFile(bytes);
        EXPECT_EQ(startupLog(), Lines{separator}) << bytes;
        EXPECT_EQ(raised([] {
                      const logtest::CapturedOutput unseen;
                      ZQLogInfo::standardStartupLog();
                  }),
                  "NSInvalidArgumentException")
            << bytes;
    }
}

TEST(StartupBlockFromFacts, warnsTwiceBeforeABrokenVersionFileEndsIt) {
    factstest::Given given =
        withInfo(plistOf(entry("CFBundleIdentifier", "org.example.viewer") +
                         entry("NSHumanReadableShortName", "Viewer") + entry("CFBundleVersion", "417")));
    given.settings = {traced};
    given.versionFile = "garbage @";
    const Facts facts(given);
    const std::string missing =
        warning("The info dictionary of Viewer does not contain a CFBundleShortVersionString!");
    EXPECT_EQ(startupLog(), (Lines{separator, missing, missing}));
}

TEST(StartupBlockFromFacts, endsAfterTheFirstSeparatorForAFileThatMayNotBeRead) {
    const Facts facts(withSettings({traced}));
    ASSERT_EQ(::chmod((facts.system.folder / "SystemVersion.plist").c_str(), 0), 0);
    const logtest::CapturedOutput output;
    EXPECT_EQ(scene::inUnprivilegedChild([] {
                  return raised([] { ZQLogInfo::standardStartupLog(); }) == "NSInvalidArgumentException" ? 0
                                                                                                         : 1;
              }),
              0);
    EXPECT_EQ(output.texts(), Lines{separator});
}

TEST(StartupBlockFromFacts, comesOutWholeForEveryDistribution) {
    for (const factstest::Distribution& row : factstest::distributions) {
        factstest::Given given = withSettings({traced});
        given.versionFile = "";
        const Facts facts(given);
        if (row.file != nullptr) {
            facts.system.writeReleaseFile(row.file);
        }
        EXPECT_EQ(startupLog(),
                  (Lines{separator,
                         "Viewer 2.1 v417 (en), running on " + std::string(row.name) + " " +
                             factstest::filledIn(row.version) + " (" + factstest::kernelRelease() + ")",
                         hardwareLine, separator, "Debug logging:", traceLine("TraceIO", 1), separator}))
            << row.label;
    }
}

TEST(SystemLinesFromFacts, areWrittenWithoutTraceKeysAndSeparators) {
    const Facts facts;
    EXPECT_EQ(written([] { ZQLogInfo::logAppAndSystemInformation(); }), (Lines{summary, hardwareLine}));
}

TEST(SystemLinesFromFacts, formatNoFactAgain) {
    factstest::Given given =
        withInfo(plistOf(entry("CFBundleIdentifier", "i") + entry("NSHumanReadableShortName", "100%") +
                         entry("CFBundleShortVersionString", "%@") + entry("CFBundleVersion", "%d")));
    given.hardware = infotest::hardware("%s%n", 0, 0);
    const Facts facts(given);
    EXPECT_EQ(written([] { ZQLogInfo::logAppAndSystemInformation(); }),
              (Lines{"100% %@ v%d (en), running on macOS 14.2 (23C64)", "[%s%n]"}));
}

TEST(DefaultsReportFromFacts, isWrittenWithoutTraceKeys) {
    EXPECT_EQ(reportOf({{"EnableBeta", "<true/>"}}),
              (Lines{"Feature enabling:", enableLine("EnableBeta", 1), separator}));
}

TEST(DefaultsReportFromFacts, leavesOutEmptySections) {
    EXPECT_EQ(reportOf({}), nothing);
    EXPECT_EQ(reportOf({{"DisableX", "<true/>"}}),
              (Lines{"Feature disabling:", disableLine("DisableX", 1), separator}));
    EXPECT_EQ(reportOf({{"DebugX", "<true/>"}, {"TraceX", "<true/>"}}),
              (Lines{"Debug logging:", traceLine("TraceX", 1), separator,
                     "Feature modifying:", debugLine("DebugX", "1", 1), separator}));
}

TEST(DefaultsReportFromFacts, linesUpOneColumnThroughAllSections) {
    EXPECT_EQ(reportOf(allOf({"TraceIO", "TraceNetwork", "EnableBeta"})),
              (Lines{"Debug logging:", traceLine("TraceIO", 6), traceLine("TraceNetwork", 1), separator,
                     "Feature enabling:", enableLine("EnableBeta", 3), separator}));
    EXPECT_EQ(reportOf(allOf({"TraceIO", "EnableX", "DisableXY", "DebugTheLongest"})),
              (Lines{"Debug logging:", traceLine("TraceIO", 9), separator, "Feature enabling:",
                     enableLine("EnableX", 9), separator, "Feature disabling:", disableLine("DisableXY", 7),
                     separator, "Feature modifying:", debugLine("DebugTheLongest", "1", 1), separator}));
}

TEST(DefaultsReportFromFacts, shiftsTheColumnByTheLengthOfAValue) {
    EXPECT_EQ(
        reportOf({{"DebugA", "<integer>3</integer>"},
                  {"DebugB", "<string>3000000000 and more</string>"},
                  {"DebugLong", "<integer>-12</integer>"}}),
        (Lines{"Feature modifying:", debugLine("DebugA", "3", 4),
               debugLine("DebugB", "3000000000 and more", 4), debugLine("DebugLong", "-12", 1), separator}));
}

TEST(DefaultsReportFromFacts, countsKeysInLatin1Bytes) {
    // Two bytes each in UTF-8, one in Latin-1, up to U+00FF.
    EXPECT_EQ(
        reportOf(allOf({"Trace\xC3\x84\xC3\xBF", "TraceX"})),
        (Lines{"Debug logging:", traceLine("TraceX", 2), traceLine("Trace\xC3\x84\xC3\xBF", 1), separator}));
}

TEST(DefaultsReportFromFacts, countsKeysBeyondLatin1AsNothing) {
    const std::string beyond = "Trace\xC5\x81\xC5\x81\xC5\x81\xC5\x81\xC5\x81\xC5\x81\xC5\x81\xC5\x81";
    EXPECT_EQ(reportOf(allOf({beyond, "TraceIO"})),
              (Lines{"Debug logging:", traceLine("TraceIO", 1), traceLine(beyond, 8), separator}));
    EXPECT_EQ(reportOf(allOf({beyond})), (Lines{"Debug logging:", traceLine(beyond, 1), separator}));
    // One character beyond is enough: U+0100 is the first.
    EXPECT_EQ(reportOf(allOf({"EnableManyLettersAnd\xC4\x80", "DisableX"})),
              (Lines{"Feature enabling:", enableLine("EnableManyLettersAnd\xC4\x80", 9), separator,
                     "Feature disabling:", disableLine("DisableX", 1), separator}));
    EXPECT_EQ(reportOf(allOf({"Debug\xF0\x9F\x98\x80", "DebugX"})),
              (Lines{"Feature modifying:", debugLine("DebugX", "1", 1),
                     debugLine("Debug\xF0\x9F\x98\x80", "1", 7), separator}));
}

TEST(DefaultsReportFromFacts, takesPrefixesCaseSensitivelyFromTheStartOfKeys) {
    const Facts facts(withSettings(
        allOf({"EnableX", "enablex",   "ENABLEX",  "disableX", "DISABLEX", "debugX",  "DEBUGX",  "traceX",
               "TRACEX",  "MyEnableX", " EnableX", "EnabX",    "Disabl",   "Debu",    "Enabled", "Enable",
               "Disable", "Debug",     "Trace",    "Debugger", "Tracer",   "Disabled"})));
    EXPECT_EQ(keysOf(defaultsReport()),
              (Lines{"Debug logging:", "Trace", "Tracer", separator, "Feature enabling:", "Enable", "Enabled",
                     "EnableX", separator, "Feature disabling:", "Disable", "Disabled", separator,
                     "Feature modifying:", "Debug", "Debugger", separator}));
}

TEST(DefaultsReportFromFacts, letsTheFirstPrefixDecide) {
    const Facts facts(withSettings(
        allOf({"EnableDisableDebug", "DisableEnableX", "DebugEnableX", "TraceEnableX", "EnableTrace"})));
    EXPECT_EQ(keysOf(defaultsReport()),
              (Lines{"Debug logging:", "TraceEnableX", separator, "Feature enabling:", "EnableDisableDebug",
                     "EnableTrace", separator, "Feature disabling:", "DisableEnableX", separator,
                     "Feature modifying:", "DebugEnableX", separator}));
}

TEST(DefaultsReportFromFacts, sortsEverySectionByLowerCaseAndCodePoint) {
    // "_" and "[" come between the capital and the small letters; digits compare one by one.
    const std::vector<std::string> endings = {"B", "a",        "_x", "C",   "2",         "10", "b1",
                                              "[", "\xC3\xA4", "z",  "sst", "\xC3\x9Fs", "ssr"};
    const std::vector<std::string> sorted = {"10", "2",   "[",         "_x",  "a", "B",       "b1",
                                             "C",  "ssr", "\xC3\x9Fs", "sst", "z", "\xC3\xA4"};
    std::vector<std::string> keys;
    for (const char* const start : {"Trace", "Enable", "Disable", "Debug"}) {
        for (const std::string& ending : endings) {
            keys.push_back(start + ending);
        }
    }
    const Facts facts(withSettings(allOf(keys)));
    Lines expected;
    for (const auto& [heading, start] :
         {std::pair("Debug logging:", "Trace"), std::pair("Feature enabling:", "Enable"),
          std::pair("Feature disabling:", "Disable"), std::pair("Feature modifying:", "Debug")}) {
        expected.push_back(heading);
        for (const std::string& ending : sorted) {
            expected.push_back(start + ending);
        }
        expected.push_back(separator);
    }
    EXPECT_EQ(keysOf(defaultsReport()), expected);
}

TEST(DefaultsReportFromFacts, reportsTrueValuesWithTheirDescriptions) {
    struct Row {
        const char* value;
        const char* shown; ///< null: not true
    };
    for (const Row& row : {Row{"<integer>0</integer>", nullptr},
                           Row{"<integer>3</integer>", "3"},
                           Row{"<integer>256</integer>", "256"}, // of a number all bits count
                           Row{"<integer>-1</integer>", "-1"},
                           Row{"<integer>4294967296</integer>", "4294967296"},
                           Row{"<real>0.5</real>", "0.5"}, // and its fraction
                           Row{"<real>0.0</real>", nullptr},
                           Row{"<real>2.0</real>", "2"},
                           Row{"<true/>", "1"},
                           Row{"<false/>", nullptr},
                           Row{"<string>yes</string>", "yes"},
                           Row{"<string>yEs</string>", "yEs"},
                           Row{"<string>YES!</string>", nullptr},
                           Row{"<string>true</string>", nullptr},
                           Row{"<string>Y</string>", nullptr},
                           Row{"<string>NO</string>", nullptr},
                           Row{"<string>0.5</string>", nullptr},
                           Row{"<string> 7 up</string>", " 7 up"},
                           Row{"<string>-3</string>", "-3"},
                           Row{"<string>0x10</string>", nullptr},
                           Row{"<string></string>", nullptr},
                           Row{"<string>5%@%n%d</string>", "5%@%n%d"},
                           Row{"<array><true/></array>", nullptr},
                           Row{"<dict><key>a</key><true/></dict>", nullptr},
                           Row{"<date>2024-03-05T14:07:09Z</date>", nullptr},
                           Row{"<data>AQID</data>", nullptr}}) {
        const Lines report = reportOf({{"DebugX", row.value}, {"EnableX", row.value}, {"TraceX", row.value}});
        const Lines expected = row.shown == nullptr ? nothing
                                                    : Lines{"Debug logging:",
                                                            traceLine("TraceX", 2),
                                                            separator,
                                                            "Feature enabling:",
                                                            enableLine("EnableX", 1),
                                                            separator,
                                                            "Feature modifying:",
                                                            debugLine("DebugX", row.shown, 2),
                                                            separator};
        EXPECT_EQ(report, expected) << row.value;
    }
}

TEST(DefaultsReportFromFacts, formatsNoKeyAgain) {
    EXPECT_EQ(reportOf(allOf({"Trace%@", "Enable%n", "Disable%d", "Debug%%"})),
              (Lines{"Debug logging:", traceLine("Trace%@", 3), separator, "Feature enabling:",
                     enableLine("Enable%n", 2), separator, "Feature disabling:", disableLine("Disable%d", 1),
                     separator, "Feature modifying:", debugLine("Debug%%", "1", 3), separator}));
}

TEST(DefaultsReportFromFacts, hasShortFormsWithoutAnIdentifier) {
    factstest::Given given =
        withInfo(plistOf(entry("NSHumanReadableShortName", "Viewer") +
                         entry("CFBundleShortVersionString", "2.1") + entry("CFBundleVersion", "417")));
    given.settings = {{"TraceIO", "<true/>"},
                      {"TraceNetwork", "<true/>"},
                      {"EnableBeta", "<true/>"},
                      {"DisableCache", "<true/>"},
                      {"DebugLevel", "<integer>3</integer>"}};
    const Facts facts(given);
    EXPECT_EQ(defaultsReport(), (Lines{warning("This application does not have an appIdentifier!"),
                                       "Debug logging:", "TraceIO is active.", "TraceNetwork is active.",
                                       separator, "Feature enabling:", "EnableBeta is active.", separator,
                                       "Feature disabling:", "DisableCache is active.", separator,
                                       "Feature modifying:", "DebugLevel is set to 3.", separator}));
}

TEST(DefaultsReportFromFacts, gathersTheIdentifierEvenForNoSection) {
    const Facts facts(withInfo(""));
    EXPECT_EQ(defaultsReport(), (Lines{warning("This application does not have an info dictionary")}));
}

TEST(DefaultsReportFromFacts, namesNoCommandsForAnEmptyIdentifier) {
    const Facts facts([] {
        factstest::Given given =
            withInfo(plistOf(entry("CFBundleIdentifier", "") + entry("NSHumanReadableShortName", "Viewer") +
                             entry("CFBundleShortVersionString", "2.1") + entry("CFBundleVersion", "417")));
        given.settings = {traced};
        return given;
    }());
    EXPECT_EQ(defaultsReport(), (Lines{warning("This application does not have an appIdentifier!"),
                                       "Debug logging:", "TraceIO is active.", separator}));
}

TEST(DefaultsReportFromFacts, keepsTheTraceKeysButReadsTheOthersAfresh) {
    Facts facts(withSettings({traced, {"EnableX", "<true/>"}}));
    facts.keys.replace({{"TraceLater", "<true/>"}, {"EnableLater", "<true/>"}});
    EXPECT_EQ(defaultsReport(), (Lines{"Debug logging:", traceLine("TraceIO", 5), separator,
                                       "Feature enabling:", enableLine("EnableLater", 1), separator}));
    ZQLog::initializeTraceDefaultsDict();
    EXPECT_EQ(keysOf(defaultsReport()), (Lines{"Debug logging:", "TraceLater", separator,
                                               "Feature enabling:", "EnableLater", separator}));
}

TEST(DefaultsReportFromFacts, seesAllDomainsByTheirPrecedence) {
    // In a child, since what a process registers or sets stays with it.
    EXPECT_TRUE(logtest::inChild([] {
        factstest::Given given;
        given.settings = {{"TraceGlobal", "<true/>"},
                          {"EnableSet", "<true/>"},
                          {"EnableGlobal", "<true/>"},
                          {"DebugLevel", "<integer>3</integer>"},
                          {"DisableArg", "<true/>"}};
        given.commandLine = {"-DisableArg", "NO", "-EnableArg", "yes", "-DebugLevel", "17"};
        const Facts facts(given);
        NSUserDefaults& defaults = NSUserDefaults::standardUserDefaults();
        defaults.setObject_forKey(NSString("NO"), "EnableSet");
        defaults.setObject_forKey(NSString("2"), "DebugSet");
        defaults.registerDefaults(NSDictionary{{"DisableFirst", "YES"}, {"DebugLevel", "9"}});
        EXPECT_EQ(defaultsReport(),
                  (Lines{"Debug logging:", traceLine("TraceGlobal", 2), separator,
                         "Feature enabling:", enableLine("EnableArg", 4), enableLine("EnableGlobal", 1),
                         separator, "Feature disabling:", disableLine("DisableFirst", 1), separator,
                         "Feature modifying:", debugLine("DebugLevel", "17", 3),
                         debugLine("DebugSet", "2", 5), separator}));
        return !testing::Test::HasFailure();
    }));
}
