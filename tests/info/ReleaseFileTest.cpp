// SPDX-License-Identifier: MIT
// Reading release descriptions, also hostile ones.
#include "info/ReleaseFile.h"

#include <gtest/gtest.h>

#include "tests/kit/Values.h"

using namespace ZQFoundation;
using kit::utf8Of;

namespace {

std::string releaseValue(const std::string& bytes, const char* key = "NAME") {
    return utf8Of(NSString(detail::releaseEntriesFromBytes(bytes).objectForKey(key)));
}

} // namespace

TEST(ReleaseFile, readsValuesQuotedAsForAShell) {
    struct Row {
        std::string line;
        const char* value;
    };
    for (const Row& row : {Row{"NAME=Fedora", "Fedora"}, Row{"NAME=\"Debian GNU/Linux\"", "Debian GNU/Linux"},
                           Row{"NAME='Arch Linux'", "Arch Linux"}, Row{"NAME=", ""},
                           Row{"NAME=\"a \\\"b\\\" \\$c \\`d\\` \\\\e\"", "a \"b\" $c `d` \\e"},
                           Row{"NAME=\"a\\b\"", "a\\b"}, Row{"NAME='a\\b \"c\" $d'", "a\\b \"c\" $d"},
                           Row{"NAME=a\\ b\\\"", "a b\""}, Row{"NAME=\"a\"'b'c", "abc"},
                           Row{"NAME=\" a \"", " a "}, Row{"NAME=a#b", "a#b"}, Row{"NAME=\"a # b\"", "a # b"},
                           Row{"NAME=a # b", "a"}, Row{"NAME=a\\ #b", "a #b"}, Row{"NAME=a \"\"#b", "a #b"},
                           Row{"NAME= # b", ""}, Row{"NAME=a\r", "a"}, Row{"NAME=\"a\"\r", "a"}}) {
        EXPECT_EQ(releaseValue(row.line + "\n"), row.value) << row.line;
        EXPECT_EQ(releaseValue(row.line), row.value) << row.line << " at the end";
        EXPECT_EQ(releaseValue("\n# NAME=no\n\t\n" + row.line + "\nVERSION=1\n"), row.value) << row.line;
    }
}

TEST(ReleaseFile, readsWhatAShellWouldRefuseAsItWasMeant) {
    EXPECT_EQ(releaseValue("NAME=My Linux  \nVERSION=1"), "My Linux");
    EXPECT_EQ(releaseValue("NAME=\"My Linux\nVERSION=1"), "My Linux");
    EXPECT_EQ(releaseValue("NAME='My Linux\nVERSION=1", "VERSION"), "1");
    EXPECT_EQ(releaseValue("NAME=a\\"), "a");
    EXPECT_EQ(releaseValue("NAME=\"a\\"), "a\\");
}

TEST(ReleaseFile, takesTheLastOfSeveralValues) {
    EXPECT_EQ(releaseValue("NAME=a\nVERSION=1\nNAME=b\n"), "b");
    EXPECT_EQ(releaseValue("NAME=a\nNAME=\n"), "");
}

TEST(ReleaseFile, ignoresOtherLines) {
    const NSDictionary entries =
        detail::releaseEntriesFromBytes("\n\r\n# comment\n;\nNAME\n=x\nNAME "
                                        "=a\nname=b\nXNAME=c\nNAMEX=d\nexport NAME=e\nPRETTY_NAME=\"f\"\n");
    EXPECT_EQ(entries.count(), 0u);
    EXPECT_EQ(detail::releaseEntriesFromBytes("").count(), 0u);
}

TEST(ReleaseFile, readsTheFourKeys) {
    const NSDictionary entries =
        detail::releaseEntriesFromBytes("ID=a\nNAME=b\nVERSION=c\nVERSION_ID=d\nBUILD_ID=e\n");
    EXPECT_EQ(entries,
              (NSDictionary{{"NAME", "b"}, {"VERSION", "c"}, {"VERSION_ID", "d"}, {"BUILD_ID", "e"}}));
}

TEST(ReleaseFile, readsUtf8AndReplacesWhatIsNone) {
    EXPECT_EQ(releaseValue("NAME=\"Caf\xC3\xA9\""), "Caf\xC3\xA9");
    EXPECT_EQ(releaseValue("NAME=\"a\xFF"
                           "b\""),
              "a\xEF\xBF\xBD"
              "b");
    EXPECT_EQ(releaseValue("\xEF\xBB\xBFNAME=a"), "a");
}

TEST(ReleaseFile, takesLargeHostileFilesInLinearTime) {
    const std::size_t size = std::size_t{1} << 22;
    EXPECT_EQ(releaseValue(std::string(size, '\n') + "NAME=a"), "a");
    EXPECT_EQ(releaseValue("NAME=" + std::string(size, ' ') + "#"), "");
    EXPECT_EQ(releaseValue("NAME=" + std::string(size, '\'')), "");
    EXPECT_EQ(releaseValue("NAME=" + std::string(size, '\\')), std::string(size / 2, '\\'));
}
