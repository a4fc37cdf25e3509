// SPDX-License-Identifier: MIT
// The version of the system, from the files that describe it.
#include "info/SystemVersion.h"

#include "tests/info/InfoScene.h"

using namespace ZQFoundation;
using infotest::SystemScene;
using infotest::utf8Of;

namespace {

std::string kernel() { return detail::system::kernelRelease(); }

std::string valueOf(const NSDictionary& dictionary, const char* key) {
    return utf8Of(NSString(dictionary.objectForKey(key)));
}

/// "name|version|user-visible version".
std::string factsOf(const NSDictionary& dictionary) {
    return valueOf(dictionary, "ProductName") + "|" + valueOf(dictionary, "ProductVersion") + "|" +
           valueOf(dictionary, "ProductUserVisibleVersion");
}

constexpr const char* debian12 = R"os(PRETTY_NAME="Debian GNU/Linux 12 (bookworm)"
NAME="Debian GNU/Linux"
VERSION_ID="12"
VERSION="12 (bookworm)"
VERSION_CODENAME=bookworm
ID=debian
HOME_URL="https://www.debian.org/"
SUPPORT_URL="https://www.debian.org/support"
BUG_REPORT_URL="https://bugs.debian.org/"
)os";

constexpr const char* ubuntu2404 = R"os(PRETTY_NAME="Ubuntu 24.04.1 LTS"
NAME="Ubuntu"
VERSION_ID="24.04"
VERSION="24.04.1 LTS (Noble Numbat)"
VERSION_CODENAME=noble
ID=ubuntu
ID_LIKE=debian
UBUNTU_CODENAME=noble
LOGO=ubuntu-logo
)os";

constexpr const char* fedora41 = R"os(NAME="Fedora Linux"
VERSION="41 (Workstation Edition)"
RELEASE_TYPE=stable
ID=fedora
VERSION_ID=41
VERSION_CODENAME=""
PLATFORM_ID="platform:f41"
PRETTY_NAME="Fedora Linux 41 (Workstation Edition)"
ANSI_COLOR="0;38;2;60;110;180"
VARIANT="Workstation Edition"
VARIANT_ID=workstation
)os";

constexpr const char* arch = R"os(NAME="Arch Linux"
PRETTY_NAME="Arch Linux"
ID=arch
BUILD_ID=rolling
ANSI_COLOR="38;2;23;147;209"
HOME_URL="https://archlinux.org/"
LOGO=archlinux-logo
)os";

constexpr const char* openSuseLeap = R"os(NAME="openSUSE Leap"
VERSION="15.6"
ID="opensuse-leap"
ID_LIKE="suse opensuse"
VERSION_ID="15.6"
PRETTY_NAME="openSUSE Leap 15.6"
CPE_NAME="cpe:/o:opensuse:leap:15.6"
)os";

constexpr const char* alpine = R"os(NAME="Alpine Linux"
ID=alpine
VERSION_ID=3.20.3
PRETTY_NAME="Alpine Linux v3.20"
HOME_URL="https://alpinelinux.org/"
)os";

} // namespace

TEST(SystemVersion, readsTheReleaseDescriptionsOfDistributions) {
    struct Row {
        const char* file;
        const char* facts;
    };
    for (const Row& row :
         {Row{debian12, "Debian GNU/Linux|12|12 (bookworm)"},
          Row{ubuntu2404, "Ubuntu|24.04|24.04.1 LTS (Noble Numbat)"},
          Row{fedora41, "Fedora Linux|41|41 (Workstation Edition)"}, Row{arch, "Arch Linux|rolling|rolling"},
          Row{openSuseLeap, "openSUSE Leap|15.6|15.6"}, Row{alpine, "Alpine Linux|3.20.3|3.20.3"}}) {
        const SystemScene system;
        system.writeReleaseFile(row.file);
        EXPECT_EQ(factsOf(detail::systemVersionDictionary()), row.facts);
        EXPECT_EQ(valueOf(detail::systemVersionDictionary(), "ProductBuildVersion"), kernel());
        EXPECT_FALSE(detail::usesSystemVersionFile());
    }
}

TEST(SystemVersion, isWholeOnAMachineThatDescribesNothing) {
    const SystemScene system;
    ASSERT_FALSE(kernel().empty());
    EXPECT_EQ(factsOf(detail::systemVersionDictionary()), "Linux|" + kernel() + "|" + kernel());
    EXPECT_EQ(valueOf(detail::systemVersionDictionary(), "ProductBuildVersion"), kernel());
    EXPECT_EQ(detail::systemVersionDictionary().count(), 4u);
}

TEST(SystemVersion, passesOverEmptyEntries) {
    const SystemScene system;
    system.writeReleaseFile("NAME=\"\"\nVERSION_ID=\nBUILD_ID=7\nVERSION=\"\"\n");
    EXPECT_EQ(factsOf(detail::releaseDescription()), "Linux|7|7");
}

TEST(SystemVersion, looksAtTheSecondReleaseFileOnlyWithoutTheFirst) {
    const SystemScene system;
    system.writeSecondReleaseFile("NAME=second\nVERSION_ID=2\n");
    EXPECT_EQ(factsOf(detail::releaseDescription()), "second|2|2");
    system.writeReleaseFile("NAME=first\n");
    EXPECT_EQ(factsOf(detail::releaseDescription()), "first|" + kernel() + "|" + kernel());
}

TEST(SystemVersion, neverWaitsForAPipeInAFilesPlace) {
    const SystemScene system;
    ASSERT_EQ(::mkfifo((system.folder / "etc-os-release").c_str(), 0644), 0);
    EXPECT_EQ(factsOf(detail::releaseDescription()), "Linux|" + kernel() + "|" + kernel());
    ASSERT_EQ(::mkfifo((system.folder / "SystemVersion.plist").c_str(), 0644), 0);
    EXPECT_TRUE(detail::usesSystemVersionFile());
    EXPECT_FALSE(detail::systemVersionDictionary());
    EXPECT_FALSE(detail::systemVersionFileText());
}

TEST(SystemVersion, prefersTheSystemVersionFile) {
    const SystemScene system;
    system.writeReleaseFile(debian12);
    system.writeVersionFile(infotest::versionFileOf("14.2"));
    EXPECT_TRUE(detail::usesSystemVersionFile());
    EXPECT_EQ(factsOf(detail::systemVersionDictionary()), "Sampler OS|14.2|14.2");
    EXPECT_EQ(detail::systemVersionDictionary(), detail::systemVersionFileText());
}

TEST(SystemVersion, takesABrokenSystemVersionFileForAnAbsentOne) {
    const SystemScene system;
    system.writeReleaseFile(debian12);
    for (const char* bytes : {"", "not a list {", "( a, b )"}) {
        system.writeVersionFile(bytes);
        EXPECT_TRUE(detail::usesSystemVersionFile()) << bytes;
        EXPECT_FALSE(detail::systemVersionFileText()) << bytes;
    }
    system.writeVersionFile("( a, b )");
    EXPECT_FALSE(detail::systemVersionDictionary());
}

TEST(SystemVersion, takesAnUnreadableSystemVersionFileForOneThatIsThere) {
    const SystemScene system;
    system.writeVersionFile(infotest::versionFileOf("14.2"));
    ASSERT_EQ(::chmod((system.folder / "SystemVersion.plist").c_str(), 0), 0);
    EXPECT_EQ(scene::inUnprivilegedChild([] {
                  return detail::usesSystemVersionFile() && !detail::systemVersionDictionary() &&
                                 !detail::systemVersionFileText()
                             ? 0
                             : 1;
              }),
              0);
}

TEST(SystemVersion, readsTheTextAsUtf8AndElseAsAscii) {
    const SystemScene system;
    system.writeVersionFile("{ ProductName = \"Caf\xC3\xA9\"; }");
    EXPECT_EQ(valueOf(detail::systemVersionFileText(), "ProductName"), "Caf\xC3\xA9");
    system.writeVersionFile("{ ProductName = \"Caf\xE9\"; }");
    EXPECT_EQ(valueOf(detail::systemVersionFileText(), "ProductName"), "Caf\xC3\xA9");
    system.writeVersionFile("\xEF\xBB\xBF{ ProductName = a; }");
    EXPECT_EQ(valueOf(detail::systemVersionFileText(), "ProductName"), "a");
}

TEST(SystemVersion, readsOnlyTheTextFormsAsText) {
    const SystemScene system;
    // A binary list of one entry, { "a" = "b" }.
    const std::string binary("bplist00\xD1\x01\x02\x51"
                             "a\x51"
                             "b\x08\x0B\x0D\0\0\0\0\0\0\x01\x01\0\0\0\0\0\0\0\x03"
                             "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x0F",
                             15 + 3 + 32);
    system.writeVersionFile(binary);
    EXPECT_EQ(valueOf(detail::systemVersionDictionary(), "a"), "b");
    EXPECT_FALSE(detail::systemVersionFileText());
}

TEST(SystemVersion, readsAfreshAtEveryCall) {
    const SystemScene system;
    system.writeReleaseFile("NAME=a\n");
    EXPECT_EQ(valueOf(detail::releaseDescription(), "ProductName"), "a");
    system.writeReleaseFile("NAME=b\n");
    EXPECT_EQ(valueOf(detail::releaseDescription(), "ProductName"), "b");
}
