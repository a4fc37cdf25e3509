// SPDX-License-Identifier: MIT
// The facts about the application, the system and the hardware, and the start-up report made of them.
#include "info/ZQLogInfo.h"

#include <ctime>

#include "tests/info/InfoScene.h"
#include "tests/kit/Child.h"
#include "tests/kit/Environment.h"
#include "tests/kit/Settings.h"
#include "tests/kit/StandardError.h"
#include "tests/kit/Values.h"

using namespace ZQFoundation;
using namespace infotest;

namespace {

constexpr const char* invalidArgument = "NSInvalidArgumentException";
const std::string summary = "Viewer 2.1 v417 (en), running on macOS 14.2 (23C64)";
const std::string hardwareLine = "[Box14,2; 8 processor cores; 16384 MB RAM]";
const std::string traceLine =
    "TraceIO is active.  Deactivate using: defaults write org.example.viewer TraceIO NO";
const std::string noShortVersion =
    warning("The info dictionary of Viewer does not contain a CFBundleShortVersionString!");

/// The number of facts, which guards against others, and those of the keys.
std::string factsOf(const NSDictionary& found, std::initializer_list<const char*> keys) {
    std::string text = std::to_string(found.count());
    for (const char* const key : keys) {
        text += "|" + valueOf(found, key);
    }
    return text;
}

std::string applicationFacts() {
    return factsOf(
        ZQLogInfo::getAppInformation(),
        {"appIdentifier", "shortApplicationName", "appLocalization", "shortVersionString", "versionString"});
}

std::string systemFacts() {
    return factsOf(ZQLogInfo::getSystemInformation(), {"osVersion", "osBuild", "osNameInternal", "osName"});
}

std::string hardwareFacts() {
    return factsOf(ZQLogInfo::getHardwareInformation(), {"model", "nCores", "ramMB"});
}

Lines startupLog() {
    return written([] { ZQLogInfo::standardStartupLog(); });
}

Lines summaryLines() {
    return written([] { ZQLogInfo::logAppAndSystemInformation(); });
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

// The application

TEST(ZQLogInfo, gathersTheApplicationAndWarnsOfEachMissingFactInOrder) {
    struct Row {
        std::string entries;
        const char* facts;
        const char* text;
        Lines warnings;
    };
    const std::string withName = identifierEntry + nameEntry;
    const Row rows[] = {
        {withName + shortVersionEntry + versionEntry,
         "5|org.example.viewer|Viewer|en|2.1|417",
         "Viewer 2.1 v417",
         {}},
        {nameEntry + shortVersionEntry + versionEntry,
         "4|(nil)|Viewer|en|2.1|417",
         "Viewer 2.1 v417",
         {noIdentifier}},
        {withName + shortVersionEntry, "4|org.example.viewer|Viewer|en|2.1|(nil)", "Viewer 2.1", {noVersion}},
        {withName + versionEntry,
         "4|org.example.viewer|Viewer|en|(nil)|417",
         "Viewer v417",
         {noShortVersion}},
        {nameEntry, "2|(nil)|Viewer|en|(nil)|(nil)", "Viewer", {noIdentifier, noShortVersion, noVersion}},
        // Versions are present, empty or not; an empty identifier identifies nothing.
        {entry("CFBundleIdentifier", "") + nameEntry + entry("CFBundleShortVersionString", "") +
             entry("CFBundleVersion", ""),
         "4|(nil)|Viewer|en||",
         "Viewer  v",
         {noIdentifier}},
        {withName + "<key>CFBundleShortVersionString</key><real>2.5</real>"
                    "<key>CFBundleVersion</key><integer>417</integer>",
         "5|org.example.viewer|Viewer|en|2.5|417",
         "Viewer 2.5 v417",
         {}},
        {identifierEntry + entry("NSHumanReadableShortName", "50%@ %d%%") +
             entry("CFBundleShortVersionString", "%n"),
         "4|org.example.viewer|50%@ %d%%|en|%n|(nil)",
         "50%@ %d%% %n",
         {warning("The info dictionary of 50%@ %d%% does not contain a CFBundleVersion!")}},
    };
    for (const Row& row : rows) {
        const Facts facts(Given{.info = plistOf(row.entries)});
        EXPECT_EQ(written([&] { EXPECT_EQ(applicationFacts(), row.facts); }), row.warnings) << row.entries;
        EXPECT_EQ(written([&] { EXPECT_EQ(kit::utf8Of(ZQLogInfo::appInfoString()), row.text); }),
                  row.warnings)
            << "it warns again at each call";
    }
}

TEST(ZQLogInfo, looksNoFurtherWithoutAnInfoDictionary) {
    const Facts facts(Given{.info = ""});
    EXPECT_EQ(written([] { EXPECT_EQ(applicationFacts(), "0|(nil)|(nil)|(nil)|(nil)|(nil)"); }),
              Lines{noInfo});
    EXPECT_EQ(written([] { EXPECT_EQ(kit::utf8Of(ZQLogInfo::appInfoString()), "(unknown app name)"); }),
              Lines{noInfo});
}

TEST(ZQLogInfo, namesTheProcessInWarningsWithoutAShortName) {
    const kit::ProcessName process("viewerd");
    const Facts facts(Given{.info = plistOf(identifierEntry + shortVersionEntry)});
    EXPECT_EQ(written([] { EXPECT_EQ(kit::utf8Of(ZQLogInfo::appInfoString()), "viewerd 2.1"); }),
              (Lines{warning("The info dictionary of viewerd does not contain a CFBundleVersion!")}));
}

TEST(ZQLogInfo, joinsThePreferredLocalizations) {
    const std::vector<std::string> localizations = {"de", "de-AT", "en", "fr"};
    {
        const Facts facts(Given{.localizations = localizations});
        const kit::Variable language("LANGUAGE", "de_AT");
        EXPECT_EQ(valueOf(ZQLogInfo::getAppInformation(), "appLocalization"), "de-AT, de");
    }
    const std::string languages = "<array><string>de-AT</string><string>fr</string></array>";
    const Facts facts(Given{.localizations = localizations, .settings = {{"AppleLanguages", languages}}});
    EXPECT_EQ(valueOf(ZQLogInfo::getAppInformation(), "appLocalization"), "de-AT, de");
}

// The system

TEST(ZQLogInfo, gathersTheSystemFromTheSystemVersionFileAtEachCall) {
    const Facts facts(
        Given{.versionFile =
                  plistOf(entry("ProductName", "S\xC3\xA4mpler OS") + entry("ProductVersion", "14.2") +
                          entry("ProductBuildVersion", "23C64") +
                          entry("ProductUserVisibleVersion", "14.2.1") + entry("ProductCopyright", "none"))});
    EXPECT_EQ(systemFacts(), "4|14.2|23C64|S\xC3\xA4mpler OS|macOS");
    EXPECT_EQ(kit::utf8Of(ZQLogInfo::osInfoString()), "macOS 14.2 (23C64)");
    EXPECT_EQ(kit::utf8Of(ZQLogInfo::osNameAndVersionString()), "macOS 14.2");
    EXPECT_EQ(kit::utf8Of(ZQLogInfo::osVersionString()), "14.2");
    facts.system.writeVersionFile(versionFileOf("10.8.5"));
    EXPECT_EQ(kit::utf8Of(ZQLogInfo::osInfoString()), "OS X 10.8.5 (23C64)");
    facts.system.writeVersionFile("garbage @");
    EXPECT_EQ(kit::raised([] { ZQLogInfo::osInfoString(); }), invalidArgument);
}

TEST(ZQLogInfo, derivesTheNameFromTheOrderOfVersions) {
    struct Row {
        const char* name;
        std::vector<const char*> versions;
    };
    const Row rows[] = {
        // A letter at the end counts before the plain release.
        {"Mac OS X", {"10.7.5", "10.7", "10.7.99", "9.2.2", "10", "10.8b1", "beta", ""}},
        {"OS X", {"10.8", "10.8.0", "10.08", "10.9", "10.11", "10.11.6", "10.12b"}},
        {"macOS", {"10.12", "10.12.0", "10.16", "10.100", "11", "11.0.1", "14.2"}},
    };
    for (const Row& row : rows) {
        for (const std::string version : row.versions) {
            const Facts facts(Given{.versionFile = versionFileOf(version)});
            EXPECT_EQ(systemFacts(), "4|" + version + "|23C64|Sampler OS|" + row.name);
            EXPECT_EQ(kit::utf8Of(ZQLogInfo::osInfoString()), row.name + (" " + version) + " (23C64)");
        }
    }
}

TEST(ZQLogInfo, raisesForASystemVersionFileThatLacksAFact) {
    const std::string name = entry("ProductName", "Sampler OS");
    const std::string version = entry("ProductVersion", "14.2");
    const std::string build = entry("ProductBuildVersion", "23C64");
    // The report reads text only, so it cannot read the binary form and UTF-16.
    for (const std::string& bytes :
         {plistOf(name + build), plistOf(name + version), plistOf(version + build), plistOf(""),
          std::string("garbage @"), std::string("(14, 2)"), std::string("word"),
          plistOf(version).substr(0, 60), binaryVersionFile(), inUtf16(versionFileOf("14.2"))}) {
        const Facts facts(Given{.versionFile = bytes, .settings = {traced}});
        facts.system.writeReleaseFile("NAME=Other\nVERSION_ID=12\n");
        EXPECT_EQ(kit::raised([] { ZQLogInfo::getSystemInformation(); }), invalidArgument) << bytes;
        EXPECT_EQ(kit::raised([] { ZQLogInfo::osInfoString(); }), invalidArgument) << bytes;
        EXPECT_EQ(kit::raised([] { ZQLogInfo::osNameAndVersionString(); }), invalidArgument) << bytes;
        EXPECT_EQ(kit::raised([] { ZQLogInfo::osVersionString(); }), invalidArgument) << bytes;
        EXPECT_EQ(kit::raised([] { ZQLogInfo::logAppAndSystemInformation(); }), invalidArgument) << bytes;
        EXPECT_EQ(startupLog(), Lines{separator}) << bytes;
        EXPECT_EQ(
            written([] { EXPECT_EQ(kit::raised([] { ZQLogInfo::standardStartupLog(); }), invalidArgument); }),
            Lines{separator});
    }
    const Facts facts(Given{.versionFile = plistOf(name + version + build)});
    EXPECT_EQ(kit::raised([] { ZQLogInfo::getSystemInformation(); }), "nothing");
    facts.system.writeVersionFile("");
    EXPECT_EQ(kit::raised([] { ZQLogInfo::getSystemInformation(); }), invalidArgument);
}

TEST(ZQLogInfo, reportsEveryDistribution) {
    const std::string kernel = kernelRelease();
    for (const Distribution& row : distributions) {
        const Facts facts(Given{.versionFile = "", .settings = {traced}});
        if (row.file != nullptr) {
            facts.system.writeReleaseFile(row.file);
        }
        const std::string whole = row.name + (" " + filledIn(row.version)) + " (" + kernel + ")";
        EXPECT_EQ(kit::utf8Of(ZQLogInfo::osInfoString()), whole) << row.label;
        EXPECT_EQ(startupLog(), (Lines{separator, "Viewer 2.1 v417 (en), running on " + whole, hardwareLine,
                                       separator, "Debug logging:", traceLine, separator}))
            << row.label;
    }
}

// The hardware

TEST(ZQLogInfo, leavesOutUnknownHardware) {
    struct Row {
        Computer computer;
        std::string facts;
        std::string text;
    };
    const std::uint64_t memory = 17179869184u;
    const std::string longest(99, 'm');
    std::string umlauts; // of two bytes each
    for (int i = 0; i < 49; ++i) {
        umlauts += "\xC3\x84";
    }
    const Row rows[] = {
        {{"Box14,2", 8, memory}, "3|Box14,2|8|16384", "[Box14,2; 8 processor cores; 16384 MB RAM]"},
        {{"Box14,2", 8, 0}, "2|Box14,2|8|(nil)", "[Box14,2; 8 processor cores]"},
        {{"Box14,2", 0, memory}, "2|Box14,2|(nil)|16384", "[Box14,2; 16384 MB RAM]"},
        {{"", 8, memory}, "2|(nil)|8|16384", "[8 processor cores; 16384 MB RAM]"},
        {{"", 0, 0}, "0|(nil)|(nil)|(nil)", "(nil)"},
        {{"B", 1, memory}, "3|B|1|16384", "[B; 1 processor core; 16384 MB RAM]"},
        {{"50%@ %d%%", 0, 0}, "1|50%@ %d%%|(nil)|(nil)", "[50%@ %d%%]"},
        // The remainder of a megabyte is dropped.
        {{"", 0, memory - 1}, "1|(nil)|(nil)|16383", "[16383 MB RAM]"},
        {{"", 0, 1048575}, "1|(nil)|(nil)|0", "[0 MB RAM]"},
        {{"", 0, 1}, "1|(nil)|(nil)|0", "[0 MB RAM]"},
        {{"", 0, 2097151}, "1|(nil)|(nil)|1", "[1 MB RAM]"},
        {{"", 0, UINT64_MAX}, "1|(nil)|(nil)|17592186044415", "[17592186044415 MB RAM]"},
        // A model of more than 99 bytes is unknown.
        {{longest, 2, 0}, "2|" + longest + "|2|(nil)", "[" + longest + "; 2 processor cores]"},
        {{longest + "m", 2, 0}, "1|(nil)|2|(nil)", "[2 processor cores]"},
        {{umlauts + "m", 0, 0}, "1|" + umlauts + "m|(nil)|(nil)", "[" + umlauts + "m]"},
        {{umlauts + "\xC3\x84", 0, 0}, "0|(nil)|(nil)|(nil)", "(nil)"},
    };
    for (const Row& row : rows) {
        const Facts facts(Given{.computer = row.computer});
        EXPECT_EQ(hardwareFacts(), row.facts);
        EXPECT_EQ(kit::utf8Of(ZQLogInfo::hardwareInfoString()), row.text);
    }
}

TEST(ZQLogInfo, reportsThisMachine) {
    const auto hardware = detail::system::hardwareFacts();
    const NSDictionary information = ZQLogInfo::getHardwareInformation();
    EXPECT_EQ(valueOf(information, "nCores"), std::to_string(hardware.processors));
    EXPECT_EQ(valueOf(information, "ramMB"), std::to_string(hardware.memoryBytes >> 20));
}

// The start-up report

namespace {

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

Given wholeBlockFacts() {
    Given given;
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

} // namespace

TEST(ZQLogInfo, writesTheSameReportByteForByteForTheSameFacts) {
    constexpr double instant = 1709647629.042;
    const kit::Replaced<double> clock(detail::overrides::clock, instant);
    const kit::ProcessName process("viewerd");
    const Facts facts(wholeBlockFacts());
    const kit::CapturedOutput output;
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
    ZQLogInfo::standardStartupLog();
    EXPECT_EQ(output.bytes(), expected + expected);
}

TEST(ZQLogInfo, writesNothingAtTheStartWithoutAnActiveTraceKey) {
    for (const kit::Settings& settings :
         {kit::Settings{{"EnableX", "<true/>"}, {"DisableX", "<true/>"}, {"DebugX", "<true/>"}},
          kit::Settings{{"traceIO", "<true/>"}, {"xTrace", "<true/>"}},
          kit::Settings{{"TraceIO", "<false/>"}, {"EnableX", "<true/>"}}}) {
        // It does not look at the facts either.
        const Facts facts(Given{.info = "", .versionFile = "garbage @", .settings = settings});
        EXPECT_EQ(startupLog(), nothing);
        EXPECT_EQ(kit::raised([] { ZQLogInfo::standardStartupLog(); }), "nothing");
    }
}

TEST(ZQLogInfo, warnsTwiceBeforeTheSummaryAndOnceBeforeTheSwitches) {
    struct Row {
        Given given;
        Lines warnings;
        Lines summary;
        std::string lineOfKey;
    };
    const std::string onSystem = " (en), running on macOS 14.2 (23C64)";
    const Row rows[] = {
        {{.computer = {"", 0, 0}}, {}, {summary}, traceLine},
        {{.info = plistOf(identifierEntry + nameEntry + shortVersionEntry)},
         {noVersion},
         {"Viewer 2.1" + onSystem, hardwareLine},
         traceLine},
        {{.info = plistOf(nameEntry)},
         {noIdentifier, noShortVersion, noVersion},
         {"Viewer" + onSystem, hardwareLine},
         "TraceIO is active."},
        {{.info = ""},
         {noInfo},
         {"(unknown app name), running on macOS 14.2 (23C64)", hardwareLine},
         "TraceIO is active."},
    };
    for (const Row& row : rows) {
        Given given = row.given;
        given.settings = {traced};
        const Facts facts(given);
        const Lines expected = Lines{separator} + row.warnings + row.warnings + row.summary +
                               Lines{separator} + row.warnings +
                               Lines{"Debug logging:", row.lineOfKey, separator};
        EXPECT_EQ(startupLog(), expected);
    }
    const Facts broken(Given{.info = plistOf(identifierEntry + nameEntry + versionEntry),
                             .versionFile = "garbage @",
                             .settings = {traced}});
    EXPECT_EQ(startupLog(), (Lines{separator, noShortVersion, noShortVersion}));
}

TEST(ZQLogInfo, writesTheSummaryAloneWithoutTraceKeys) {
    {
        const Facts facts;
        EXPECT_EQ(summaryLines(), (Lines{summary, hardwareLine}));
    }
    {
        const Facts facts(Given{.computer = {"", 0, 0}});
        EXPECT_EQ(summaryLines(), Lines{summary});
    }
    const Facts formats(
        Given{.info = plistOf(identifierEntry + entry("NSHumanReadableShortName", "100%") +
                              entry("CFBundleShortVersionString", "%@") + entry("CFBundleVersion", "%d")),
              .computer = {"%s%n", 0, 0}});
    EXPECT_EQ(summaryLines(), (Lines{"100% %@ v%d (en), running on macOS 14.2 (23C64)", "[%s%n]"}));
}

TEST(ZQLogInfo, keepsErrno) {
    const Facts facts(Given{.info = "", .versionFile = "", .settings = {traced}});
    const kit::CapturedOutput output;
    errno = EXDEV;
    ZQLogInfo::standardStartupLog();
    EXPECT_EQ(errno, EXDEV);
    ZQLogInfo::getHardwareInformation();
    EXPECT_EQ(errno, EXDEV);
}
