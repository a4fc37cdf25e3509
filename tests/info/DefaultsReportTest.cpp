// SPDX-License-Identifier: MIT
// The section of the start-up report about active switches.
#include "info/DefaultsReport.h"

#include "foundation/process/NSUserDefaults.h"
#include "tests/info/InfoScene.h"
#include "tests/kit/Child.h"
#include "tests/kit/Environment.h"
#include "tests/kit/Settings.h"

using namespace ZQFoundation;
using namespace infotest;

namespace {

struct Switch {
    std::string key;
    std::size_t spaces;      ///< between the sentence and the command
    std::string value = "1"; ///< of a debug setting
};

/// The lines of one section.
Lines section(const std::string& heading, const std::vector<Switch>& switches, const std::string& command,
              const std::string& end = "") {
    Lines lines{heading};
    for (const Switch& each : switches) {
        const std::string state = heading == "Feature modifying:" ? "set to " + each.value : "active";
        lines.push_back(each.key + " is " + state + "." + std::string(each.spaces + 1, ' ') + command +
                        " org.example.viewer " + each.key + end);
    }
    lines.push_back(separator);
    return lines;
}

Lines tracing(const std::vector<Switch>& switches) {
    return section("Debug logging:", switches, "Deactivate using: defaults write", " NO");
}
Lines enabling(const std::vector<Switch>& switches) {
    return section("Feature enabling:", switches, "Disable the feature using: defaults remove");
}
Lines disabling(const std::vector<Switch>& switches) {
    return section("Feature disabling:", switches, "Reenable the feature using: defaults remove");
}
Lines modifying(const std::vector<Switch>& switches) {
    return section("Feature modifying:", switches, "Disable this debug setting using: defaults remove");
}

Lines report() {
    return written([] { ZQLogInfo::logTracelogAndFeatureRelatedUserDefaults(); });
}

/// The report of these settings.
Lines reportOf(const kit::Settings& settings) {
    const Facts facts(Given{.settings = settings});
    return report();
}

/// Settings of this value.
kit::Settings allOf(const std::vector<std::string>& keys, const std::string& value = "<true/>") {
    kit::Settings settings;
    for (const std::string& key : keys) {
        settings.push_back({key, value});
    }
    return settings;
}

/// The first words of the report's lines, which are the keys.
Lines keysOf(const kit::Settings& settings) {
    Lines keys;
    for (const std::string& line : reportOf(settings)) {
        keys.push_back(line.substr(0, line.find(" is ")));
    }
    return keys;
}

} // namespace

TEST(DefaultsReport, leavesOutEmptySectionsAndNeedsNoTraceKey) {
    EXPECT_EQ(reportOf({}), nothing);
    EXPECT_EQ(reportOf({{"EnableBeta", "<true/>"}}), enabling({{"EnableBeta", 1}}));
    EXPECT_EQ(reportOf({{"DisableX", "<true/>"}}), disabling({{"DisableX", 1}}));
    EXPECT_EQ(reportOf({{"DebugX", "<true/>"}, {"TraceX", "<true/>"}}),
              tracing({{"TraceX", 1}}) + modifying({{"DebugX", 1}}));
}

TEST(DefaultsReport, listsSwitchesOfTheEnvironment) {
    const kit::Variable given("ZQ_DEFAULTS", "-TraceD YES -EnableC YES");
    EXPECT_EQ(reportOf({{"TraceD", "<false/>"}}), tracing({{"TraceD", 2}}) + enabling({{"EnableC", 1}}));
}

TEST(DefaultsReport, keepsOneColumnThroughAllSections) {
    EXPECT_EQ(reportOf(allOf({"TraceIO", "TraceNetwork", "EnableBeta"})),
              tracing({{"TraceIO", 6}, {"TraceNetwork", 1}}) + enabling({{"EnableBeta", 3}}));
    EXPECT_EQ(reportOf(allOf({"TraceIO", "EnableX", "DisableXY", "DebugTheLongest"})),
              tracing({{"TraceIO", 9}}) + enabling({{"EnableX", 9}}) + disabling({{"DisableXY", 7}}) +
                  modifying({{"DebugTheLongest", 1}}));
}

TEST(DefaultsReport, shiftsTheColumnByTheLengthOfAValue) {
    EXPECT_EQ(reportOf({{"DebugA", "<integer>3</integer>"},
                        {"DebugB", "<string>3000000000 and more</string>"},
                        {"DebugLong", "<integer>-12</integer>"}}),
              modifying({{"DebugA", 4, "3"}, {"DebugB", 4, "3000000000 and more"}, {"DebugLong", 1, "-12"}}));
}

TEST(DefaultsReport, measuresKeysInLatin1Bytes) {
    // Two bytes each in UTF-8, one in Latin-1, up to U+00FF.
    EXPECT_EQ(reportOf(allOf({"Trace\xC3\x84\xC3\xBF", "TraceX"})),
              tracing({{"TraceX", 2}, {"Trace\xC3\x84\xC3\xBF", 1}}));
    // A key beyond Latin-1 counts as 0 and gets the whole width; one such character is enough.
    const std::string beyond = "Trace\xC5\x81\xC5\x81\xC5\x81\xC5\x81\xC5\x81\xC5\x81\xC5\x81\xC5\x81";
    EXPECT_EQ(reportOf(allOf({beyond, "TraceIO"})), tracing({{"TraceIO", 1}, {beyond, 8}}));
    EXPECT_EQ(reportOf(allOf({beyond})), tracing({{beyond, 1}}));
    EXPECT_EQ(reportOf(allOf({"EnableManyLettersAnd\xC4\x80", "DisableX"})),
              enabling({{"EnableManyLettersAnd\xC4\x80", 9}}) + disabling({{"DisableX", 1}}));
    EXPECT_EQ(reportOf(allOf({"Debug\xF0\x9F\x98\x80", "DebugX"})),
              modifying({{"DebugX", 1}, {"Debug\xF0\x9F\x98\x80", 7}}));
}

TEST(DefaultsReport, takesPrefixesCaseSensitivelyFromTheStartOfKeys) {
    EXPECT_EQ(keysOf(allOf({"EnableX", "enablex",  "ENABLEX", "disableX",  "DISABLEX", "debugX",
                            "DEBUGX",  "traceX",   "TRACEX",  "MyEnableX", " EnableX", "EnabX",
                            "Disabl",  "Debu",     "Enabled", "Enable",    "Disable",  "Debug",
                            "Trace",   "Debugger", "Tracer",  "Disabled"})),
              (Lines{"Debug logging:", "Trace", "Tracer", separator, "Feature enabling:", "Enable", "Enabled",
                     "EnableX", separator, "Feature disabling:", "Disable", "Disabled", separator,
                     "Feature modifying:", "Debug", "Debugger", separator}));
    // The first prefix decides.
    EXPECT_EQ(keysOf(allOf(
                  {"EnableDisableDebug", "DisableEnableX", "DebugEnableX", "TraceEnableX", "EnableTrace"})),
              (Lines{"Debug logging:", "TraceEnableX", separator, "Feature enabling:", "EnableDisableDebug",
                     "EnableTrace", separator, "Feature disabling:", "DisableEnableX", separator,
                     "Feature modifying:", "DebugEnableX", separator}));
}

TEST(DefaultsReport, sortsEverySectionByLowerCaseAndCodePoint) {
    // "_" and "[" come between the capital and the small letters; digits compare one by one.
    const std::vector<std::string> endings = {"B", "a",        "_x", "C",   "2",         "10", "b1",
                                              "[", "\xC3\xA4", "z",  "sst", "\xC3\x9Fs", "ssr"};
    const std::vector<std::string> sorted = {"10", "2",   "[",         "_x",  "a", "B",       "b1",
                                             "C",  "ssr", "\xC3\x9Fs", "sst", "z", "\xC3\xA4"};
    std::vector<std::string> keys;
    Lines expected;
    for (const auto& [heading, start] :
         {std::pair("Debug logging:", "Trace"), std::pair("Feature enabling:", "Enable"),
          std::pair("Feature disabling:", "Disable"), std::pair("Feature modifying:", "Debug")}) {
        expected.push_back(heading);
        for (std::size_t i = 0; i < endings.size(); ++i) {
            keys.push_back(start + endings[i]);
            expected.push_back(start + sorted[i]);
        }
        expected.push_back(separator);
    }
    EXPECT_EQ(keysOf(allOf(keys)), expected);
}

TEST(DefaultsReport, reportsTrueValuesWithTheirDescriptions) {
    struct Row {
        const char* value;
        const char* shown; ///< null: not true
    };
    for (const Row& row :
         {Row{"<integer>0</integer>", nullptr},
          Row{"<integer>256</integer>", "256"},                               // of a number all bits count
          Row{"<integer>-1</integer>", "-1"}, Row{"<real>0.5</real>", "0.5"}, // and its fraction
          Row{"<true/>", "1"}, Row{"<false/>", nullptr}, Row{"<string>yes</string>", "yes"},
          Row{"<string>true</string>", nullptr}, Row{"<string> 7 up</string>", " 7 up"},
          Row{"<string>5%@%n%d</string>", "5%@%n%d"}, Row{"<array><true/></array>", nullptr},
          Row{"<dict><key>a</key><true/></dict>", nullptr}, Row{"<data>AQID</data>", nullptr}}) {
        const Lines expected = row.shown == nullptr ? nothing
                                                    : tracing({{"TraceX", 2}}) + enabling({{"EnableX", 1}}) +
                                                          modifying({{"DebugX", 2, row.shown}});
        EXPECT_EQ(reportOf(allOf({"DebugX", "EnableX", "TraceX"}, row.value)), expected) << row.value;
    }
}

TEST(DefaultsReport, writesKeysAsTheyAre) {
    EXPECT_EQ(reportOf(allOf({"Trace%@", "Enable%n", "Disable%d", "Debug %@ $(x)"})),
              tracing({{"Trace%@", 7}}) + enabling({{"Enable%n", 6}}) + disabling({{"Disable%d", 5}}) +
                  modifying({{"Debug %@ $(x)", 1}}));
}

TEST(DefaultsReport, hasShortLinesWithoutAnIdentifier) {
    const std::string versions = shortVersionEntry + versionEntry;
    for (const std::string& entries :
         {nameEntry + versions, entry("CFBundleIdentifier", "") + nameEntry + versions}) {
        const Facts facts(Given{.info = plistOf(entries),
                                .settings = {{"TraceIO", "<true/>"},
                                             {"TraceNetwork", "<true/>"},
                                             {"EnableBeta", "<true/>"},
                                             {"DisableCache", "<true/>"},
                                             {"DebugLevel", "<integer>3</integer>"}}});
        EXPECT_EQ(report(),
                  (Lines{noIdentifier, "Debug logging:", "TraceIO is active.", "TraceNetwork is active.",
                         separator, "Feature enabling:", "EnableBeta is active.", separator,
                         "Feature disabling:", "DisableCache is active.", separator,
                         "Feature modifying:", "DebugLevel is set to 3.", separator}));
    }
    const Facts facts(Given{.info = ""});
    EXPECT_EQ(report(), Lines{noInfo}) << "it looks for the identifier even without a section";
}

TEST(DefaultsReport, keepsTheTraceKeysButReadsTheOthersAfresh) {
    Facts facts(Given{.settings = {traced, {"EnableX", "<true/>"}}});
    facts.keys.replace({{"TraceLater", "<true/>"}, {"EnableLater", "<true/>"}});
    EXPECT_EQ(report(), tracing({{"TraceIO", 5}}) + enabling({{"EnableLater", 1}}));
    ZQLog::initializeTraceDefaultsDict();
    EXPECT_EQ(report(), tracing({{"TraceLater", 2}}) + enabling({{"EnableLater", 1}}));
}

TEST(DefaultsReport, reportsAllDomainsByTheirPrecedence) {
    // In a child, since what a process registers or sets stays with it.
    kit::expectInChild([] {
        Given given{.settings = allOf({"TraceGlobal", "EnableSet", "EnableGlobal", "DisableArg"})};
        given.settings.push_back({"DebugLevel", "<integer>3</integer>"});
        given.commandLine = {"-DisableArg", "NO", "-EnableArg", "yes", "-DebugLevel", "17"};
        const Facts facts(given);
        NSUserDefaults& defaults = NSUserDefaults::standardUserDefaults();
        defaults.setObject_forKey(NSString("NO"), "EnableSet");
        defaults.setObject_forKey(NSString("2"), "DebugSet");
        defaults.registerDefaults(NSDictionary{{"DisableFirst", "YES"}, {"DebugLevel", "9"}});
        EXPECT_EQ(report(), tracing({{"TraceGlobal", 2}}) +
                                enabling({{"EnableArg", 4}, {"EnableGlobal", 1}}) +
                                disabling({{"DisableFirst", 1}}) +
                                modifying({{"DebugLevel", 3, "17"}, {"DebugSet", 5, "2"}}));
    });
}
