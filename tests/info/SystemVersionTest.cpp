// SPDX-License-Identifier: MIT
// The version of the system, from the files that describe it.
#include "info/SystemVersion.h"

#include "tests/info/InfoScene.h"
#include "tests/kit/Child.h"

using namespace ZQFoundation;
using namespace infotest;

namespace {

/// "name|version|user-visible version".
std::string factsOf(const NSDictionary& dictionary) {
    return valueOf(dictionary, "ProductName") + "|" + valueOf(dictionary, "ProductVersion") + "|" +
           valueOf(dictionary, "ProductUserVisibleVersion");
}

} // namespace

TEST(SystemVersion, readsTheReleaseDescriptionsOfDistributions) {
    for (const Distribution& row : distributions) {
        const SystemScene system;
        if (row.file != nullptr) {
            system.writeReleaseFile(row.file);
        }
        const NSDictionary found = detail::systemVersionDictionary();
        EXPECT_EQ(factsOf(found),
                  row.name + ("|" + filledIn(row.version)) + "|" + filledIn(row.userVisibleVersion))
            << row.label;
        EXPECT_EQ(valueOf(found, "ProductBuildVersion"), kernelRelease());
        EXPECT_EQ(found.count(), 4u);
        EXPECT_FALSE(detail::usesSystemVersionFile());
    }
}

TEST(SystemVersion, ignoresEmptyEntries) {
    const SystemScene system;
    system.writeReleaseFile("NAME=\"\"\nVERSION_ID=\nBUILD_ID=7\nVERSION=\"\"\n");
    EXPECT_EQ(factsOf(detail::releaseDescription()), "Linux|7|7");
}

TEST(SystemVersion, looksAtTheSecondReleaseFileOnlyWithoutTheFirst) {
    const SystemScene system;
    system.writeSecondReleaseFile("NAME=second\nVERSION_ID=2\n");
    EXPECT_EQ(factsOf(detail::releaseDescription()), "second|2|2");
    system.writeReleaseFile("NAME=first\n");
    EXPECT_EQ(factsOf(detail::releaseDescription()), "first|" + kernelRelease() + "|" + kernelRelease());
}

TEST(SystemVersion, neverWaitsForAPipeInAFilesPlace) {
    const SystemScene system;
    ASSERT_EQ(::mkfifo((system.folder / "etc-os-release").c_str(), 0644), 0);
    EXPECT_EQ(factsOf(detail::releaseDescription()), "Linux|" + kernelRelease() + "|" + kernelRelease());
    ASSERT_EQ(::mkfifo((system.folder / "SystemVersion.plist").c_str(), 0644), 0);
    EXPECT_TRUE(detail::usesSystemVersionFile());
    EXPECT_FALSE(detail::systemVersionDictionary());
    EXPECT_FALSE(detail::systemVersionFileText());
}

TEST(SystemVersion, prefersTheSystemVersionFile) {
    const SystemScene system;
    system.writeReleaseFile("NAME=Other\nVERSION_ID=12\n");
    system.writeVersionFile(versionFileOf("14.2"));
    EXPECT_TRUE(detail::usesSystemVersionFile());
    EXPECT_EQ(factsOf(detail::systemVersionDictionary()), "Sampler OS|14.2|14.2");
    EXPECT_EQ(detail::systemVersionDictionary(), detail::systemVersionFileText());
}

TEST(SystemVersion, takesABrokenSystemVersionFileForAnAbsentOne) {
    const SystemScene system;
    system.writeReleaseFile("NAME=Other\nVERSION_ID=12\n");
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
    system.writeVersionFile(versionFileOf("14.2"));
    system.makeVersionFileUnreadable();
    kit::expectAsUser([] {
        return detail::usesSystemVersionFile() && !detail::systemVersionDictionary() &&
               !detail::systemVersionFileText();
    });
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
    system.writeVersionFile(binaryVersionFile());
    EXPECT_EQ(valueOf(detail::systemVersionDictionary(), "ProductName"), "Sampler");
    EXPECT_FALSE(detail::systemVersionFileText());
}

TEST(SystemVersion, readsAfreshAtEveryCall) {
    const SystemScene system;
    system.writeReleaseFile("NAME=a\n");
    EXPECT_EQ(valueOf(detail::releaseDescription(), "ProductName"), "a");
    system.writeReleaseFile("NAME=b\n");
    EXPECT_EQ(valueOf(detail::releaseDescription(), "ProductName"), "b");
}
