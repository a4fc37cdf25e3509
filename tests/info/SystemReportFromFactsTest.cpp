// SPDX-License-Identifier: MIT
// The lines of the report about the system, and its warnings of missing facts.
#include "tests/info/FactsTesting.h"

using namespace ZQFoundation;
using factstest::entry;
using factstest::Facts;
using factstest::Lines;
using factstest::plistOf;
using factstest::raised;
using factstest::utf8Of;
using factstest::valueOf;
using factstest::warning;

namespace {

constexpr const char* invalidArgument = "NSInvalidArgumentException";

/// The entries in the order of gathering, as "key=value" lines; the count guards against others.
std::string applicationFacts() {
    const NSDictionary found = ZQLogInfo::getAppInformation();
    std::string text = std::to_string(found.count());
    for (const char* const key : {"appIdentifier", "shortApplicationName", "appLocalization",
                                  "shortVersionString", "versionString"}) {
        text += "|" + valueOf(found, key);
    }
    return text;
}

std::string systemFacts() {
    const NSDictionary found = ZQLogInfo::getSystemInformation();
    std::string text = std::to_string(found.count());
    for (const char* const key : {"osVersion", "osBuild", "osNameInternal", "osName"}) {
        text += "|" + valueOf(found, key);
    }
    return text;
}

std::string hardwareFacts() {
    const NSDictionary found = ZQLogInfo::getHardwareInformation();
    std::string text = std::to_string(found.count());
    for (const char* const key : {"model", "nCores", "ramMB"}) {
        text += "|" + valueOf(found, key);
    }
    return text;
}

const Lines nothing;
const std::string identifier = entry("CFBundleIdentifier", "org.example.viewer");
const std::string name = entry("NSHumanReadableShortName", "Viewer");
const std::string shortVersion = entry("CFBundleShortVersionString", "2.1");
const std::string version = entry("CFBundleVersion", "417");

const std::string noIdentifier = warning("This application does not have an appIdentifier!");
const std::string noShortVersion =
    warning("The info dictionary of Viewer does not contain a CFBundleShortVersionString!");
const std::string noVersion = warning("The info dictionary of Viewer does not contain a CFBundleVersion!");

} // namespace

TEST(ApplicationReportFromFacts, gathersTheWholeApplicationInSilence) {
    const Facts facts;
    EXPECT_EQ(applicationFacts(), "5|org.example.viewer|Viewer|en|2.1|417");
    EXPECT_EQ(factstest::written([] { ZQLogInfo::getAppInformation(); }), nothing);
}

TEST(ApplicationReportFromFacts, warnsOfEveryMissingFactInOrder) {
    struct Row {
        std::string entries;
        const char* facts;
        const char* text;
        Lines warnings;
    };
    const Row rows[] = {
        {name + shortVersion + version, "4|(nil)|Viewer|en|2.1|417", "Viewer 2.1 v417", {noIdentifier}},
        {identifier + name + shortVersion,
         "4|org.example.viewer|Viewer|en|2.1|(nil)",
         "Viewer 2.1",
         {noVersion}},
        {identifier + name + version,
         "4|org.example.viewer|Viewer|en|(nil)|417",
         "Viewer v417",
         {noShortVersion}},
        {identifier + name,
         "3|org.example.viewer|Viewer|en|(nil)|(nil)",
         "Viewer",
         {noShortVersion, noVersion}},
        {name, "2|(nil)|Viewer|en|(nil)|(nil)", "Viewer", {noIdentifier, noShortVersion, noVersion}},
        // Versions are present, empty or not; an empty identifier identifies nothing.
        {entry("CFBundleIdentifier", "") + name + entry("CFBundleShortVersionString", "") +
             entry("CFBundleVersion", ""),
         "4|(nil)|Viewer|en||",
         "Viewer  v",
         {noIdentifier}},
    };
    for (const Row& row : rows) {
        const Facts facts(factstest::withInfo(plistOf(row.entries)));
        EXPECT_EQ(factstest::written([&] { EXPECT_EQ(applicationFacts(), row.facts); }), row.warnings)
            << row.entries;
        EXPECT_EQ(factstest::written([&] { EXPECT_EQ(utf8Of(ZQLogInfo::appInfoString()), row.text); }),
                  row.warnings)
            << row.entries;
    }
}

TEST(ApplicationReportFromFacts, warnsAgainAtEveryGathering) {
    const Facts facts(factstest::withInfo(plistOf(identifier + name + shortVersion)));
    EXPECT_EQ(factstest::written([] {
                  ZQLogInfo::getAppInformation();
                  ZQLogInfo::getAppInformation();
                  ZQLogInfo::appInfoString();
              }),
              (Lines{noVersion, noVersion, noVersion}));
}

TEST(ApplicationReportFromFacts, looksAtNothingElseWithoutAnInfoDictionary) {
    const Facts facts(factstest::withInfo(""));
    const Lines warnings{warning("This application does not have an info dictionary")};
    EXPECT_EQ(factstest::written([] { EXPECT_EQ(applicationFacts(), "0|(nil)|(nil)|(nil)|(nil)|(nil)"); }),
              warnings);
    EXPECT_EQ(factstest::written([] { EXPECT_EQ(utf8Of(ZQLogInfo::appInfoString()), "(unknown app name)"); }),
              warnings);
}

TEST(ApplicationReportFromFacts, namesTheProcessInWarningsWithoutAShortName) {
    const logtest::ProcessName process("viewerd");
    const Facts facts(factstest::withInfo(plistOf(identifier + shortVersion)));
    EXPECT_EQ(factstest::written([] { EXPECT_EQ(utf8Of(ZQLogInfo::appInfoString()), "viewerd 2.1"); }),
              (Lines{warning("The info dictionary of viewerd does not contain a CFBundleVersion!")}));
}

TEST(ApplicationReportFromFacts, formatsNoFactAgain) {
    const Facts facts(
        factstest::withInfo(plistOf(identifier + entry("NSHumanReadableShortName", "50%@ %d%%") +
                                    entry("CFBundleShortVersionString", "%n"))));
    EXPECT_EQ(factstest::written([] { EXPECT_EQ(utf8Of(ZQLogInfo::appInfoString()), "50%@ %d%% %n"); }),
              (Lines{warning("The info dictionary of 50%@ %d%% does not contain a CFBundleVersion!")}));
}

TEST(ApplicationReportFromFacts, showsAVersionThatIsANumber) {
    const Facts facts(factstest::withInfo(
        plistOf(identifier + name + "<key>CFBundleVersion</key><integer>417</integer>" + shortVersion)));
    EXPECT_EQ(utf8Of(ZQLogInfo::appInfoString()), "Viewer 2.1 v417");
}

TEST(ApplicationReportFromFacts, joinsThePreferredLocalizations) {
    factstest::Given given;
    given.localizations = {"de", "de-AT", "en", "fr"};
    given.settings = {{"AppleLanguages", "<array><string>de-AT</string><string>fr</string></array>"}};
    const Facts facts(given);
    EXPECT_EQ(valueOf(ZQLogInfo::getAppInformation(), "appLocalization"), "de-AT, de");
}

TEST(SystemReportFromFacts, gathersTheFourFacts) {
    const Facts facts(factstest::withVersionFile(
        plistOf(entry("ProductName", "S\xC3\xA4mpler OS") + entry("ProductVersion", "14.2") +
                entry("ProductBuildVersion", "23C64") + entry("ProductUserVisibleVersion", "14.2.1") +
                entry("ProductCopyright", "none"))));
    EXPECT_EQ(systemFacts(), "4|14.2|23C64|S\xC3\xA4mpler OS|macOS");
    EXPECT_EQ(utf8Of(ZQLogInfo::osInfoString()), "macOS 14.2 (23C64)");
    EXPECT_EQ(utf8Of(ZQLogInfo::osNameAndVersionString()), "macOS 14.2");
    EXPECT_EQ(utf8Of(ZQLogInfo::osVersionString()), "14.2");
}

TEST(SystemReportFromFacts, namesReleasesByTheOrderOfVersions) {
    struct Row {
        const char* version;
        const char* name;
    };
    for (const Row& row :
         {Row{"10.7.5", "Mac OS X"}, Row{"10.7.99", "Mac OS X"}, Row{"9.2.2", "Mac OS X"},
          Row{"10", "Mac OS X"}, Row{"10.8b1", "Mac OS X"}, // a letter at the end counts
                                                            // before the plain release
          Row{"10.8", "OS X"}, Row{"10.8.0", "OS X"}, Row{"10.08", "OS X"}, Row{"10.11", "OS X"},
          Row{"10.11.6", "OS X"}, Row{"10.12b", "OS X"}, Row{"10.9", "OS X"}, Row{"10.12", "macOS"},
          Row{"10.12.0", "macOS"}, Row{"10.100", "macOS"}, Row{"11", "macOS"}, Row{"11.0.1", "macOS"},
          Row{"14.2", "macOS"}, Row{"beta", "Mac OS X"}, Row{"", "Mac OS X"}}) {
        const Facts facts(factstest::withVersionFile(infotest::versionFileOf(row.version)));
        EXPECT_EQ(systemFacts(), std::string("4|") + row.version + "|23C64|Sampler OS|" + row.name);
        EXPECT_EQ(utf8Of(ZQLogInfo::osInfoString()), std::string(row.name) + " " + row.version + " (23C64)");
    }
}

TEST(SystemReportFromFacts, readsTextForms) {
    for (const char* const bytes :
         {"{ ProductVersion = \"10.7.5\"; ProductName = Sampler; ProductBuildVersion = 11G63; }",
          "/* strings */\nProductVersion = \"10.7.5\";\nProductName = Sampler;\nProductBuildVersion = "
          "11G63;\n"}) {
        const Facts facts(factstest::withVersionFile(bytes));
        EXPECT_EQ(systemFacts(), "4|10.7.5|11G63|Sampler|Mac OS X") << bytes;
    }
}

TEST(SystemReportFromFacts, raisesForEveryMissingValue) {
    const std::string productName = entry("ProductName", "Sampler OS");
    const std::string productVersion = entry("ProductVersion", "14.2");
    const std::string build = entry("ProductBuildVersion", "23C64");
    for (const std::string& entries :
         {productName + build, productName + productVersion, productVersion + build, productVersion,
          productName, build, std::string()}) {
        const Facts facts(factstest::withVersionFile(plistOf(entries)));
        EXPECT_EQ(raised([] { ZQLogInfo::getSystemInformation(); }), invalidArgument) << entries;
        EXPECT_EQ(raised([] { ZQLogInfo::osInfoString(); }), invalidArgument) << entries;
        EXPECT_EQ(raised([] { ZQLogInfo::osNameAndVersionString(); }), invalidArgument) << entries;
        EXPECT_EQ(raised([] { ZQLogInfo::osVersionString(); }), invalidArgument) << entries;
        EXPECT_EQ(raised([] { ZQLogInfo::logAppAndSystemInformation(); }), invalidArgument) << entries;
    }
}

TEST(SystemReportFromFacts, raisesForAFileWithoutADictionary) {
    // The report reads text only, so the binary form and UTF-16 say nothing to it.
    for (const std::string& bytes :
         {std::string(), std::string("garbage @"), std::string("(14, 2)"), std::string("word"),
          plistOf(entry("ProductVersion", "14.2")).substr(0, 60), factstest::binaryVersionFile(),
          factstest::inUtf16(infotest::versionFileOf("14.2"))}) {
        const Facts facts;
        facts.system.writeReleaseFile("NAME=Other\nVERSION_ID=12\n");
        facts.system.writeVersionFile(bytes);
        EXPECT_EQ(raised([] { ZQLogInfo::getSystemInformation(); }), invalidArgument) << bytes;
    }
}

TEST(SystemReportFromFacts, readsByByteWhatIsNotUtf8) {
    // ASCII is the second attempt, and its reader turns bytes beyond 7 bits into the units of their number.
    const Facts facts(factstest::withVersionFile(plistOf(entry("ProductName", "S\xE4mpler") +
                                                         entry("ProductVersion", "14.2") +
                                                         entry("ProductBuildVersion", "23C64"))));
    EXPECT_EQ(systemFacts(), "4|14.2|23C64|S\xC3\xA4mpler|macOS");
}

TEST(SystemReportFromFacts, raisesForAFileThatMayNotBeRead) {
    const Facts facts;
    facts.system.writeReleaseFile("NAME=Other\nVERSION_ID=12\n");
    ASSERT_EQ(::chmod((facts.system.folder / "SystemVersion.plist").c_str(), 0), 0);
    EXPECT_EQ(scene::inUnprivilegedChild([] {
                  return raised([] { ZQLogInfo::getSystemInformation(); }) == invalidArgument ? 0 : 1;
              }),
              0);
}

TEST(SystemReportFromFacts, readsTheFileAtEveryCall) {
    const Facts facts;
    EXPECT_EQ(utf8Of(ZQLogInfo::osInfoString()), "macOS 14.2 (23C64)");
    facts.system.writeVersionFile(infotest::versionFileOf("10.8.5"));
    EXPECT_EQ(utf8Of(ZQLogInfo::osInfoString()), "OS X 10.8.5 (23C64)");
    facts.system.writeVersionFile("garbage @");
    EXPECT_EQ(raised([] { ZQLogInfo::osInfoString(); }), invalidArgument);
}

TEST(SystemReportFromFacts, comesOutWholeForEveryDistribution) {
    for (const factstest::Distribution& row : factstest::distributions) {
        const Facts facts(factstest::withVersionFile(""));
        if (row.file != nullptr) {
            facts.system.writeReleaseFile(row.file);
        }
        const std::string release = factstest::filledIn(row.version);
        const std::string kernel = factstest::kernelRelease();
        EXPECT_EQ(systemFacts(), "4|" + release + "|" + kernel + "|" + row.name + "|" + row.name)
            << row.label;
        EXPECT_EQ(utf8Of(ZQLogInfo::osInfoString()), row.name + (" " + release) + " (" + kernel + ")")
            << row.label;
        EXPECT_EQ(utf8Of(ZQLogInfo::osNameAndVersionString()), row.name + (" " + release)) << row.label;
        EXPECT_EQ(utf8Of(ZQLogInfo::osVersionString()), release) << row.label;
    }
}

TEST(SystemReportFromFacts, takesTheFirstDescriptionThatExists) {
    const Facts facts(factstest::withVersionFile(""));
    facts.system.writeSecondReleaseFile("NAME=Second\nVERSION_ID=2\n");
    EXPECT_EQ(utf8Of(ZQLogInfo::osNameAndVersionString()), "Second 2");
    facts.system.writeReleaseFile("NAME=First\nVERSION_ID=1\n");
    EXPECT_EQ(utf8Of(ZQLogInfo::osNameAndVersionString()), "First 1");
}

TEST(HardwareReportFromFacts, leavesOutWhatIsUnknown) {
    struct Row {
        const char* model;
        int processors;
        std::uint64_t memoryBytes;
        const char* facts;
        const char* text;
    };
    const std::uint64_t memory = 17179869184u;
    for (const Row& row : {
             Row{"Box14,2", 8, memory, "3|Box14,2|8|16384", "[Box14,2; 8 processor cores; 16384 MB RAM]"},
             Row{"Box14,2", 8, 0, "2|Box14,2|8|(nil)", "[Box14,2; 8 processor cores]"},
             Row{"Box14,2", 0, memory, "2|Box14,2|(nil)|16384", "[Box14,2; 16384 MB RAM]"},
             Row{"Box14,2", 0, 0, "1|Box14,2|(nil)|(nil)", "[Box14,2]"},
             Row{"", 8, memory, "2|(nil)|8|16384", "[8 processor cores; 16384 MB RAM]"},
             Row{"", 8, 0, "1|(nil)|8|(nil)", "[8 processor cores]"},
             Row{"", 0, memory, "1|(nil)|(nil)|16384", "[16384 MB RAM]"},
             Row{"", 0, 0, "0|(nil)|(nil)|(nil)", "(nil)"},
             Row{"B", 1, memory, "3|B|1|16384", "[B; 1 processor core; 16384 MB RAM]"},
             Row{"", 1, 0, "1|(nil)|1|(nil)", "[1 processor core]"},
             Row{"", 2, 0, "1|(nil)|2|(nil)", "[2 processor cores]"},
             Row{"", 11, 0, "1|(nil)|11|(nil)", "[11 processor cores]"},
             Row{"50%@ %d%%", 0, 0, "1|50%@ %d%%|(nil)|(nil)", "[50%@ %d%%]"},
         }) {
        factstest::Given given;
        given.hardware = infotest::hardware(row.model, row.processors, row.memoryBytes);
        const Facts facts(given);
        EXPECT_EQ(hardwareFacts(), row.facts);
        EXPECT_EQ(utf8Of(ZQLogInfo::hardwareInfoString()), row.text);
    }
}

TEST(HardwareReportFromFacts, dropsTheRemainderOfTheMemory) {
    struct Row {
        std::uint64_t bytes;
        const char* text;
    };
    for (const Row& row : {Row{17179869183u, "16383"}, Row{17179869184u, "16384"}, Row{1048576u, "1"},
                           Row{1048575u, "0"}, Row{2097151u, "1"}, Row{UINT64_MAX, "17592186044415"}}) {
        factstest::Given given;
        given.hardware = infotest::hardware("", 0, row.bytes);
        const Facts facts(given);
        EXPECT_EQ(valueOf(ZQLogInfo::getHardwareInformation(), "ramMB"), row.text);
        EXPECT_EQ(utf8Of(ZQLogInfo::hardwareInfoString()), "[" + std::string(row.text) + " MB RAM]");
    }
}

TEST(HardwareReportFromFacts, hasRoomForAModelOf99Bytes) {
    const std::string umlaut = "\xC3\x84";
    std::string wide;
    for (int i = 0; i < 49; ++i) {
        wide += umlaut;
    }
    struct Row {
        std::string model;
        bool fits;
    };
    for (const Row& row :
         {Row{std::string(99, 'm'), true}, Row{std::string(100, 'm'), false},
          Row{std::string(5000, 'm'), false}, Row{wide + "m", true}, Row{wide + umlaut, false}}) {
        factstest::Given given;
        given.hardware = infotest::hardware(row.model, 2, 0);
        const Facts facts(given);
        EXPECT_EQ(valueOf(ZQLogInfo::getHardwareInformation(), "model"), row.fits ? row.model : "(nil)");
        EXPECT_EQ(utf8Of(ZQLogInfo::hardwareInfoString()),
                  row.fits ? "[" + row.model + "; 2 processor cores]" : "[2 processor cores]");
    }
}
