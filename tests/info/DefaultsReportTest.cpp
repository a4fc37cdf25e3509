// SPDX-License-Identifier: MIT
// The section of the start-up report about active switches.
#include "info/DefaultsReport.h"

#include "info/ZQLogInfo.h"
#include "tests/info/InfoScene.h"
#include "tests/log/LogTestSupport.h"

using namespace ZQFoundation;
using infotest::ApplicationScene;

namespace {

using Lines = std::vector<std::string>;

const std::string separator(68, '-');

constexpr const char* info = "{ CFBundleIdentifier = com.example.viewer; NSHumanReadableShortName = Viewer;"
                             " CFBundleShortVersionString = 2.1; CFBundleVersion = 417; }";
constexpr const char* infoWithoutIdentifier =
    "{ NSHumanReadableShortName = Viewer; CFBundleShortVersionString = 2.1; CFBundleVersion = 417; }";

Lines reportOf(const logtest::Settings& settings, const char* infoDictionary = info,
               const std::vector<std::string>& commandLine = {}) {
    const logtest::TraceKeys keys(settings, commandLine);
    const ApplicationScene application(infoDictionary);
    const logtest::CapturedOutput output;
    ZQLogInfo::logTracelogAndFeatureRelatedUserDefaults();
    return output.texts();
}

} // namespace

TEST(DefaultsReport, writesNothingWithoutSwitches) {
    EXPECT_EQ(reportOf({{"Other", "<true/>"}, {"TraceIO", "<false/>"}, {"EnableX", "<string>no</string>"}}),
              Lines{});
}

TEST(DefaultsReport, writesASectionForEachKindInAFixedOrder) {
    EXPECT_EQ(
        reportOf({{"DebugLevel", "<integer>3</integer>"},
                  {"DisableB", "<true/>"},
                  {"EnableC", "<true/>"},
                  {"TraceD", "<true/>"}}),
        (Lines{
            "Debug logging:",
            "TraceD is active.      Deactivate using: defaults write com.example.viewer TraceD NO", separator,
            "Feature enabling:",
            "EnableC is active.     Disable the feature using: defaults remove com.example.viewer EnableC",
            separator, "Feature disabling:",
            "DisableB is active.    Reenable the feature using: defaults remove com.example.viewer DisableB",
            separator, "Feature modifying:",
            "DebugLevel is set to 3.  Disable this debug setting using: defaults remove com.example.viewer "
            "DebugLevel",
            separator}));
}

TEST(DefaultsReport, listsSwitchesOfTheEnvironment) {
    const scene::Variable given("ZQ_DEFAULTS", "-TraceD YES -EnableC YES");
    EXPECT_EQ(
        reportOf({{"TraceD", "<false/>"}}),
        (Lines{"Debug logging:",
               "TraceD is active.   Deactivate using: defaults write com.example.viewer TraceD NO", separator,
               "Feature enabling:",
               "EnableC is active.  Disable the feature using: defaults remove com.example.viewer EnableC",
               separator}));
}

TEST(DefaultsReport, keepsOneColumnThroughAllSections) {
    const Lines lines =
        reportOf({{"TraceIO", "<true/>"}, {"TraceNetwork", "<true/>"}, {"EnableBeta", "<true/>"}});
    ASSERT_EQ(lines.size(), 7u);
    // The spacer and the blank of the line's own.
    EXPECT_EQ(lines[1].find("Deactivate"), std::string("TraceIO is active.").size() + 6 + 1);
    EXPECT_EQ(lines[2].find("Deactivate"), std::string("TraceNetwork is active.").size() + 1 + 1);
    EXPECT_EQ(lines[5].find("Disable the"), std::string("EnableBeta is active.").size() + 3 + 1);
}

TEST(DefaultsReport, writesShortLinesWithoutAnIdentifier) {
    const std::string warning =
        "+[ZQLogInfo getAppInformation] This application does not have an appIdentifier!";
    EXPECT_EQ(reportOf({{"TraceIO", "<true/>"},
                        {"EnableA", "<true/>"},
                        {"DisableA", "<true/>"},
                        {"DebugText", "<string>yes</string>"}},
                       infoWithoutIdentifier),
              (Lines{warning, "Debug logging:", "TraceIO is active.", separator, "Feature enabling:",
                     "EnableA is active.", separator, "Feature disabling:", "DisableA is active.", separator,
                     "Feature modifying:", "DebugText is set to yes.", separator}));
}

TEST(DefaultsReport, listsOnlyKeysWithTheExactPrefixAndATrueValue) {
    EXPECT_EQ(reportOf({{"EnableX", "<string>YES</string>"},
                        {"enablex", "<true/>"},
                        {"disablex", "<true/>"},
                        {"debugx", "<true/>"},
                        {"ENABLEX", "<true/>"},
                        {"MyEnable", "<true/>"},
                        {"Enable", "<true/>"},
                        {"DebugLevel", "<integer>0</integer>"},
                        {"DebugList", "<array/>"},
                        {"DisableA", "<string>NO</string>"}},
                       infoWithoutIdentifier),
              (Lines{"+[ZQLogInfo getAppInformation] This application does not have an appIdentifier!",
                     "Feature enabling:", "Enable is active.", "EnableX is active.", separator}));
}

TEST(DefaultsReport, sortsWithoutRegardToCase) {
    const Lines lines = reportOf({{"TraceB", "<true/>"},
                                  {"Tracea", "<true/>"},
                                  {"TraceC", "<true/>"},
                                  {"Enablez", "<true/>"},
                                  {"EnableY", "<true/>"},
                                  {"Enable_", "<true/>"}},
                                 infoWithoutIdentifier);
    EXPECT_EQ(Lines(lines.begin() + 1, lines.end()),
              (Lines{"Debug logging:", "Tracea is active.", "TraceB is active.", "TraceC is active.",
                     separator, "Feature enabling:", "Enable_ is active.", "EnableY is active.",
                     "Enablez is active.", separator}));
}

TEST(DefaultsReport, listsKeysOfAllDomains) {
    const Lines lines = reportOf({{"EnableA", "<true/>"}, {"EnableB", "<true/>"}}, infoWithoutIdentifier,
                                 {"-EnableB", "NO", "-EnableC", "YES"});
    EXPECT_EQ(Lines(lines.begin() + 1, lines.end()),
              (Lines{"Feature enabling:", "EnableA is active.", "EnableC is active.", separator}));
}

TEST(DefaultsReport, measuresKeysInLatin1Bytes) {
    // "EnableÄ" has 7 bytes in Latin-1; a key beyond it counts as 0 and gets the whole width.
    EXPECT_EQ(
        reportOf({{"Enable\xC3\x84", "<true/>"}, {"Enable\xCE\xB1\xCE\xB2\xCE\xB3", "<true/>"}}),
        (Lines{"Feature enabling:",
               "Enable\xC3\x84 is active.  Disable the feature using: defaults remove com.example.viewer "
               "Enable\xC3\x84",
               "Enable\xCE\xB1\xCE\xB2\xCE\xB3 is active.         Disable the feature using: defaults remove "
               "com.example.viewer Enable\xCE\xB1\xCE\xB2\xCE\xB3",
               separator}));
}

TEST(DefaultsReport, shiftsTheCommandByTheLengthOfTheValue) {
    EXPECT_EQ(reportOf({{"DebugA", "<integer>7</integer>"}, {"DebugLong", "<string>12 apples</string>"}}),
              (Lines{"Feature modifying:",
                     "DebugA is set to 7.     Disable this debug setting using: defaults remove "
                     "com.example.viewer DebugA",
                     "DebugLong is set to 12 apples.  Disable this debug setting using: defaults remove "
                     "com.example.viewer DebugLong",
                     separator}));
}

TEST(DefaultsReport, writesKeysAndValuesAsTheyStand) {
    const Lines lines = reportOf({{"Debug %@ $(x)", "<string>1%d</string>"}}, infoWithoutIdentifier);
    EXPECT_EQ(lines.at(2), "Debug %@ $(x) is set to 1%d.");
}
