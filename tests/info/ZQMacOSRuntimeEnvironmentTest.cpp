// SPDX-License-Identifier: MIT
// The version numbers of the system, read once, and its texts, read at each call.
#include "info/ZQMacOSRuntimeEnvironment.h"

#include <array>

#include "tests/info/InfoScene.h"
#include "tests/kit/Child.h"
#include "tests/kit/Environment.h"
#include "tests/kit/ScratchFolder.h"
#include "tests/kit/Threads.h"
#include "tests/kit/Values.h"

using namespace ZQFoundation;
using namespace infotest;
using Environment = ZQMacOSRuntimeEnvironment;

namespace {

// The library's language is chosen once in a process, and these tests compare its untranslated texts.
const kit::NoLanguages untranslated;

/// Checks in a child, which is the first to use the class.
template <class Checks>
void inFirstUse(const Checks& checks, const std::string& about = "") {
    SCOPED_TRACE(about);
    kit::expectInChild(checks);
}

std::string numbers() {
    return std::to_string(Environment::osVersionMajor()) + " " +
           std::to_string(Environment::osVersionMinor()) + " " +
           std::to_string(Environment::osVersionPatch());
}

/// One letter for each release test, from the oldest on.
std::string releaseTests() {
    std::string letters;
    for (const bool holds :
         {Environment::isSierraOrLater(), Environment::isHighSierraOrLater(), Environment::isMojaveOrLater(),
          Environment::isCatalinaOrLater(), Environment::isBigSurOrLater()}) {
        letters += holds ? 'Y' : 'n';
    }
    return letters;
}

void expectTexts(const std::string& version, const std::string& name, const std::string& build,
                 const std::string& about) {
    EXPECT_EQ(kit::utf8Of(Environment::userVisibleMacOSVersion()), version) << about;
    EXPECT_EQ(kit::utf8Of(Environment::userVisibleMacOSName()), name) << about;
    EXPECT_EQ(kit::utf8Of(Environment::userVisibleMacOSBuild()), build) << about;
}

struct VersionRow {
    const char* value; ///< of ProductVersion, as a piece of XML
    const char* numbers;
    const char* tests;
};

void expectRows(std::initializer_list<VersionRow> rows) {
    kit::inFreshProcess([&] {
        for (const VersionRow& row : rows) {
            const SystemScene system;
            system.writeVersionFile(
                plistOf(entry("ProductName", "S") +
                        (row.value[0] != '\0' ? "<key>ProductVersion</key>" : std::string()) + row.value));
            inFirstUse(
                [&] {
                    EXPECT_EQ(numbers(), row.numbers);
                    EXPECT_EQ(releaseTests(), row.tests);
                },
                row.value);
        }
    });
}

/// Runs a copy of this program that has a string table beside it; true when the test ran and passed there.
bool runBesideTable(const std::string& table) {
    const kit::ScratchFolder folder;
    const std::string program = folder.write("program", kit::contentsOf("/proc/self/exe"));
    folder.write("Resources/Localizable.strings", table);
    ::chmod(program.c_str(), 0755);
    const std::string marker = folder / "ran";
    const kit::Variable markerPath("ZQ_TEST_BESIDE_TABLE", marker.c_str());
    const kit::Variable noOutput("GTEST_OUTPUT", nullptr);
    const kit::Variable noShards("GTEST_TOTAL_SHARDS", nullptr);
    const testing::TestInfo* const test = testing::UnitTest::GetInstance()->current_test_info();
    std::string filter = std::string("--gtest_filter=") + test->test_suite_name() + "." + test->name();
    std::string name = program;
    char* const arguments[] = {name.data(), filter.data(), nullptr};
    const int answer = kit::inChild([&] {
        ::execv(program.c_str(), arguments);
        return false;
    });
    return answer == 0 && ::access(marker.c_str(), F_OK) == 0;
}

} // namespace

TEST(ZQMacOSRuntimeEnvironment, readsTheComponentsOfTheVersion) {
    expectRows({
        {"<string>10.15.7</string>", "10 15 7", "YYYYn"},
        {"<string>11.2</string>", "11 2 0", "YYYYY"},
        {"<string>12.1.0.3</string>", "12 1 0", "YYYYY"},
        {"<string>1.2.3.4.5.6</string>", "1 2 3", "nnnnn"},
        {"<string>10..2</string>", "10 0 2", "nnnnn"},
        {"<string>14.</string>", "14 0 0", "YYYYY"},
        {"<string></string>", "0 0 0", "nnnnn"},
        {"", "0 0 0", "nnnnn"},
        // Each component is read leniently.
        {"<string>10.15b.3</string>", "10 15 3", "YYYYn"},
        {"<string>-3.16.2</string>", "0 16 2", "nnnnn"},
        {"<string> 10. +14.\t 5</string>", "10 14 5", "YYYnn"},
        {"<string>0x10.1e3.010</string>", "0 1 10", "nnnnn"},
        {"<string>10.\xD9\xA1\xD9\xA1.5</string>", "10 0 5", "nnnnn"},
        {"<string>4294967297.2147483648.5000000000</string>", "4294967297 2147483648 5000000000", "YYYYY"},
        {"<string>99999999999999999999.-99999999999999999999</string>", "9223372036854775807 0 0", "YYYYY"},
        // Anything but a string is an empty version.
        {"<integer>14</integer>", "0 0 0", "nnnnn"},
        {"<real>10.16</real>", "0 0 0", "nnnnn"},
        {"<array><string>14</string></array>", "0 0 0", "nnnnn"},
    });
}

TEST(ZQMacOSRuntimeEnvironment, testsReleasesByMajorAndMinorAlone) {
    expectRows({
        {"<string>10.11.6</string>", "10 11 6", "nnnnn"},
        {"<string>10.12</string>", "10 12 0", "Ynnnn"},
        {"<string>10.13</string>", "10 13 0", "YYnnn"},
        {"<string>10.14</string>", "10 14 0", "YYYnn"},
        {"<string>10.15</string>", "10 15 0", "YYYYn"},
        {"<string>10.16</string>", "10 16 0", "YYYYY"},
        {"<string>10</string>", "10 0 0", "nnnnn"},
        {"<string>9.99.99</string>", "9 99 99", "nnnnn"},
        {"<string>11</string>", "11 0 0", "YYYYY"},
        {"<string>11.2</string>", "11 2 0", "YYYYY"},
    });
}

TEST(ZQMacOSRuntimeEnvironment, knowsNothingWithoutADictionaryInTheFile) {
    kit::inFreshProcess([] {
        const auto check = [] {
            EXPECT_FALSE(Environment::systemVersionPlist());
            EXPECT_EQ(numbers(), "0 0 0");
            EXPECT_EQ(releaseTests(), "nnnnn");
            expectTexts("unknown version", "unknown OS", "unknown build", "");
        };
        const SystemScene system;
        system.writeReleaseFile("NAME=Other\nVERSION_ID=12\n");
        for (const std::string bytes : {"", "garbage @", "<plist><array/></plist>",
                                        "<plist><dict><key>ProductVersion</key>", "(14, 2)", "justatext"}) {
            system.writeVersionFile(bytes);
            inFirstUse(check, bytes);
        }
        system.writeVersionFile(versionFileOf("14.2"));
        system.makeVersionFileUnreadable();
        kit::expectAsUser(check);
    });
}

TEST(ZQMacOSRuntimeEnvironment, keepsTheNumbersAndTheWholeDictionaryButReadsTheTextsAfresh) {
    kit::inFreshProcess([] {
        const SystemScene system;
        system.writeVersionFile(plistOf(entry("ProductVersion", "10.15.7") +
                                        entry("ProductCopyright", "none") +
                                        "<key>Number</key><integer>5</integer>"));
        inFirstUse([&] {
            Environment::initialize();
            system.writeVersionFile(plistOf(entry("ProductVersion", "14.2") + entry("ProductName", "Later") +
                                            entry("ProductUserVisibleVersion", "14.2.1") +
                                            entry("ProductBuildVersion", "B2")));
            Environment::initialize();
            EXPECT_EQ(numbers(), "10 15 7");
            EXPECT_EQ(releaseTests(), "YYYYn");
            const NSDictionary plist = Environment::systemVersionPlist();
            EXPECT_EQ(plist.count(), 3u);
            EXPECT_EQ(valueOf(plist, "ProductVersion"), "10.15.7");
            EXPECT_EQ(valueOf(plist, "ProductCopyright"), "none");
            EXPECT_EQ(valueOf(plist, "Number"), "(no string)");
            expectTexts("14.2.1", "Later", "B2", "");
            EXPECT_EQ(kit::utf8Of(ZQLogInfo::osVersionString()), "14.2");
            system.writeVersionFile("garbage @");
            EXPECT_EQ(kit::utf8Of(Environment::userVisibleMacOSVersion()), "unknown version");
            EXPECT_EQ(numbers(), "10 15 7");
        });
        system.writeVersionFile("garbage @");
        inFirstUse([&] {
            EXPECT_EQ(numbers(), "0 0 0");
            system.writeVersionFile(versionFileOf("14.2"));
            EXPECT_EQ(numbers(), "0 0 0");
            EXPECT_FALSE(Environment::systemVersionPlist());
            EXPECT_EQ(kit::utf8Of(Environment::userVisibleMacOSVersion()), "14.2");
        });
    });
}

TEST(ZQMacOSRuntimeEnvironment, readsTheNumbersAtTheFirstUseOfAnyOperation) {
    kit::inFreshProcess([] {
        for (void (*const firstUse)() : {+[] { static_cast<void>(Environment::userVisibleMacOSName()); },
                                         +[] {
                                             static_cast<void>(Environment::isPowerPC());
                                         }}) {
            const SystemScene system;
            system.writeVersionFile(versionFileOf("10.15.7"));
            inFirstUse([&] {
                firstUse();
                system.writeVersionFile(versionFileOf("14.2"));
                EXPECT_EQ(numbers(), "10 15 7");
            });
        }
    });
}

TEST(ZQMacOSRuntimeEnvironment, givesTextsUnchangedAndFallbacksForMissingOnes) {
    struct TextRow {
        std::string entries;
        const char* version;
        const char* name;
        const char* build;
    };
    const TextRow rows[] = {
        {entry("ProductUserVisibleVersion", " 14.2 ") + entry("ProductName", "S\xC3\xA4mpler") +
             entry("ProductBuildVersion", "%@ 23C64"),
         " 14.2 ", "S\xC3\xA4mpler", "%@ 23C64"},
        // The actual version does not replace the one that is to be shown.
        {entry("ProductVersion", "14.2"), "unknown version", "unknown OS", "unknown build"},
        {entry("ProductUserVisibleVersion", "") + entry("ProductName", "") + entry("ProductBuildVersion", ""),
         "unknown version", "unknown OS", "unknown build"},
        {entry("ProductUserVisibleVersion", " "), " ", "unknown OS", "unknown build"},
        {"", "unknown version", "unknown OS", "unknown build"},
    };
    for (const TextRow& row : rows) {
        const SystemScene system;
        system.writeVersionFile(plistOf(row.entries));
        expectTexts(row.version, row.name, row.build, row.entries);
    }
}

TEST(ZQMacOSRuntimeEnvironment, translatesFallbacksByTheLibrarysOwnTable) {
    if (const char* const marker = std::getenv("ZQ_TEST_BESIDE_TABLE")) {
        const SystemScene system;
        system.writeVersionFile("garbage @");
        expectTexts("Version unbekannt", "System unbekannt", "unknown build", "");
#if defined(__x86_64__) || defined(__aarch64__)
        EXPECT_EQ(kit::utf8Of(Environment::localizedProcessorArchitecture()), "Prozessor");
#endif
        std::FILE* const ran = std::fopen(marker, "w");
        ASSERT_NE(ran, nullptr);
        std::fclose(ran);
        return;
    }
    EXPECT_TRUE(runBesideTable("\"unknown version\" = \"Version unbekannt\";\n"
                               "\"unknown OS\" = \"System unbekannt\";\n"
                               "\"Intel\" = \"Prozessor\";\n\"ARM\" = \"Prozessor\";\n"));
}

TEST(ZQMacOSRuntimeEnvironment, doesNotTranslateByTheTablesOfTheApplication) {
    const Facts facts(Given{.versionFile = "garbage @"});
    facts.application.writeTable("Localizable.strings", "\"unknown OS\" = \"mine\";\n");
    EXPECT_EQ(kit::utf8Of(Environment::userVisibleMacOSName()), "unknown OS");
}

TEST(ZQMacOSRuntimeEnvironment, namesTheProcessorThatItWasBuiltFor) {
#if defined(__x86_64__)
    EXPECT_TRUE(Environment::isIntel());
    EXPECT_FALSE(Environment::isARM());
    EXPECT_EQ(Environment::localizedProcessorArchitecture(), "Intel");
#elif defined(__aarch64__)
    EXPECT_FALSE(Environment::isIntel());
    EXPECT_TRUE(Environment::isARM());
    EXPECT_EQ(Environment::localizedProcessorArchitecture(), "ARM");
#else
    EXPECT_FALSE(Environment::isIntel());
    EXPECT_FALSE(Environment::isARM());
    EXPECT_FALSE(Environment::localizedProcessorArchitecture().isEmpty());
#endif
    EXPECT_FALSE(Environment::isPowerPC());
}

TEST(ZQMacOSRuntimeEnvironment, readsTheDescriptionsOfDistributions) {
    kit::inFreshProcess([] {
        for (const Distribution& row : distributions) {
            const SystemScene system;
            if (row.file != nullptr) {
                system.writeReleaseFile(row.file);
            }
            inFirstUse(
                [&] {
                    expectTexts(filledIn(row.userVisibleVersion), row.name, kernelRelease(), row.label);
                    EXPECT_EQ(valueOf(Environment::systemVersionPlist(), "ProductVersion"),
                              filledIn(row.version));
                    if (row.numbers != nullptr) {
                        EXPECT_EQ(numbers(), row.numbers);
                    }
                    EXPECT_EQ(releaseTests(), "nnnnn") << "they ask about another maker's releases";
                },
                row.label);
        }
    });
}

TEST(ZQMacOSRuntimeEnvironment, keepsErrno) {
    kit::inFreshProcess([] {
        const SystemScene system;
        errno = EXDEV;
        Environment::initialize();
        EXPECT_EQ(errno, EXDEV);
        Environment::userVisibleMacOSName();
        EXPECT_EQ(errno, EXDEV);
    });
}

TEST(ZQMacOSRuntimeEnvironment, isReadOnceByThreadsThatUseItFirstAtOnce) {
    kit::inFreshProcess([] {
        const SystemScene system;
        system.writeVersionFile(versionFileOf("10.15.7"));
        std::array<std::string, 8> seen;
        kit::inThreads(seen.size(), [&seen](std::size_t i) { seen[i] = numbers() + " " + releaseTests(); });
        for (const std::string& text : seen) {
            EXPECT_EQ(text, "10 15 7 YYYYn");
        }
    });
}
