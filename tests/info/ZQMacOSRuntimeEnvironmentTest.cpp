// SPDX-License-Identifier: MIT
// The runtime environment of this machine, read once, and its texts.
#include "info/ZQMacOSRuntimeEnvironment.h"

#include "tests/info/InfoScene.h"
#include "tests/log/LogTestSupport.h"

using namespace ZQFoundation;
using infotest::SystemScene;
using infotest::utf8Of;
using Environment = ZQMacOSRuntimeEnvironment;

namespace {

// The library's language is chosen once in a process, and these tests compare its English texts.
const scene::NoLanguages english;

/// "major.minor.patch" and how many of the five release tests hold, from the oldest on.
std::string seen() {
    const bool answers[] = {Environment::isSierraOrLater(), Environment::isHighSierraOrLater(),
                            Environment::isMojaveOrLater(), Environment::isCatalinaOrLater(),
                            Environment::isBigSurOrLater()};
    int holding = 0;
    while (holding < 5 && answers[holding]) {
        ++holding;
    }
    for (int i = holding; i < 5; ++i) {
        holding = answers[i] ? 99 : holding; // a later one must not hold without the earlier ones
    }
    return std::to_string(Environment::osVersionMajor()) + "." +
           std::to_string(Environment::osVersionMinor()) + "." +
           std::to_string(Environment::osVersionPatch()) + " " + std::to_string(holding);
}

/// What a process that has not used the class yet sees; says so when it differs.
bool sees(const std::string& expected) {
    return logtest::inChild([&] {
        if (seen() != expected) {
            std::fprintf(stderr, "sees %s instead of %s\n", seen().c_str(), expected.c_str());
            return false;
        }
        return true;
    });
}

} // namespace

TEST(ZQMacOSRuntimeEnvironment, readsTheComponentsOfTheVersion) {
    struct Row {
        const char* version;
        const char* seen;
    };
    logtest::inFreshProcess([] {
        for (const Row& row : {Row{"10.15.7", "10.15.7 4"},
                               Row{"11.2", "11.2.0 5"},
                               Row{"14", "14.0.0 5"},
                               Row{"10.16", "10.16.0 5"},
                               Row{"10.11.6", "10.11.6 0"},
                               Row{"10.12", "10.12.0 1"},
                               Row{"10.13.6", "10.13.6 2"},
                               Row{"10.14", "10.14.0 3"},
                               Row{"11.0", "11.0.0 5"},
                               Row{"12.1.0.3", "12.1.0 5"},
                               Row{"9.99", "9.99.0 0"},
                               Row{"", "0.0.0 0"},
                               Row{"10..2", "10.0.2 0"},
                               Row{"10.15b", "10.15.0 4"},
                               Row{"-3.16", "0.16.0 0"},
                               Row{"+10. 16.x", "10.16.0 5"},
                               Row{"beta", "0.0.0 0"},
                               Row{"...", "0.0.0 0"},
                               Row{"99999999999999999999", "9223372036854775807.0.0 5"},
                               Row{"10.\xD9\xA3", "10.0.0 0"}}) {
            const SystemScene system;
            system.writeVersionFile(infotest::versionFileOf(row.version));
            EXPECT_TRUE(sees(row.seen)) << row.version;
        }
    });
}

TEST(ZQMacOSRuntimeEnvironment, takesAVersionThatIsNoStringForNone) {
    logtest::inFreshProcess([] {
        const SystemScene system;
        system.writeVersionFile(infotest::versionFile("<key>ProductVersion</key><real>10.16</real>"));
        EXPECT_TRUE(sees("0.0.0 0"));
        system.writeVersionFile(infotest::versionFile("<key>ProductVersion</key><integer>14</integer>"));
        EXPECT_TRUE(sees("0.0.0 0"));
    });
}

TEST(ZQMacOSRuntimeEnvironment, knowsNothingFromABrokenFile) {
    logtest::inFreshProcess([] {
        const SystemScene system;
        system.writeReleaseFile("VERSION_ID=12\n");
        system.writeVersionFile("( 10, 16 )");
        EXPECT_TRUE(sees("0.0.0 0"));
        EXPECT_FALSE(Environment::systemVersionPlist());
        EXPECT_EQ(Environment::userVisibleMacOSVersion(), "unknown version");
        EXPECT_EQ(Environment::userVisibleMacOSName(), "unknown OS");
        EXPECT_EQ(Environment::userVisibleMacOSBuild(), "unknown build");
    });
}

TEST(ZQMacOSRuntimeEnvironment, readsTheReleaseDescriptionWhereThereIsNoFile) {
    logtest::inFreshProcess([] {
        const SystemScene system;
        system.writeReleaseFile("NAME=\"Debian GNU/Linux\"\nVERSION_ID=\"12\"\nVERSION=\"12 (bookworm)\"\n");
        EXPECT_TRUE(sees("12.0.0 0")); // whose release 12 it is, the release tests do not ask about
        EXPECT_EQ(Environment::userVisibleMacOSVersion(), "12 (bookworm)");
        EXPECT_EQ(Environment::userVisibleMacOSName(), "Debian GNU/Linux");
        EXPECT_EQ(Environment::userVisibleMacOSBuild(), detail::system::kernelRelease());
    });
}

TEST(ZQMacOSRuntimeEnvironment, neverChangesTheNumbersButReadsTheTextsAfresh) {
    logtest::inFreshProcess([] {
        const SystemScene system;
        system.writeVersionFile(infotest::versionFileOf("10.15.7"));
        Environment::initialize();
        system.writeVersionFile(infotest::versionFileOf("14.2"));
        Environment::initialize();
        EXPECT_EQ(seen(), "10.15.7 4");
        EXPECT_EQ(Environment::systemVersionPlist().objectForKey("ProductVersion"), NSObject("10.15.7"));
        EXPECT_EQ(Environment::systemVersionPlist().count(), 4u);
        EXPECT_EQ(Environment::userVisibleMacOSVersion(), "14.2");
    });
}

TEST(ZQMacOSRuntimeEnvironment, showsFallbacksForMissingAndEmptyTexts) {
    const SystemScene system;
    system.writeVersionFile(infotest::versionFile(infotest::entry("ProductUserVisibleVersion", "") +
                                                  infotest::entry("ProductName", "Sampler OS")));
    EXPECT_EQ(Environment::userVisibleMacOSVersion(), "unknown version");
    EXPECT_EQ(Environment::userVisibleMacOSName(), "Sampler OS");
    EXPECT_EQ(Environment::userVisibleMacOSBuild(), "unknown build");
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

TEST(ZQMacOSRuntimeEnvironment, keepsErrno) {
    logtest::inFreshProcess([] {
        const SystemScene system;
        errno = EXDEV;
        Environment::initialize();
        EXPECT_EQ(errno, EXDEV);
        Environment::userVisibleMacOSName();
        EXPECT_EQ(errno, EXDEV);
    });
}

TEST(ZQMacOSRuntimeEnvironment, isReadOnceByThreadsThatUseItFirstAtOnce) {
    logtest::inFreshProcess([] {
        const SystemScene system;
        system.writeVersionFile(infotest::versionFileOf("10.15.7"));
        std::vector<std::thread> threads;
        std::atomic<int> wrong = 0;
        for (int i = 0; i < 8; ++i) {
            threads.emplace_back([&wrong] { wrong += seen() == "10.15.7 4" ? 0 : 1; });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        EXPECT_EQ(wrong, 0);
    });
}
