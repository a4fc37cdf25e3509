// SPDX-License-Identifier: MIT
// What `defaults lint` finds in property lists and string tables.
#include <algorithm>
#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/tools/ToolScene.h"

using namespace ZQFoundation;
using scene::Outcome;
using scene::Tool;
using scene::Words;

namespace {

/// Files in the scratch folder, with what the tool says about them; the folder's path is left out of that.
class DefaultsLint : public testing::Test {
protected:
    std::string write(const std::string& name, const std::string& bytes) const {
        return tool.folder().write(name, bytes);
    }

    std::string path(const std::string& name) const { return tool.folder() / name; }

    /// The lines that the tool writes, with its exit status after them.
    std::string said(Words files) const {
        for (std::string& file : files) {
            file = path(file);
        }
        files.insert(files.begin(), "lint");
        const Outcome outcome = tool.run(files);
        EXPECT_EQ(outcome.output, "");
        std::string text = outcome.errors;
        const std::string folder = tool.folder().path() + "/";
        for (std::size_t at = 0; (at = text.find(folder)) != std::string::npos;) {
            text.erase(at, folder.size());
        }
        return text + std::to_string(outcome.status);
    }

    void writeTables(const char* english, const char* german) const {
        write("en.lproj/T.strings", english);
        write("de.lproj/T.strings", german);
    }

    std::string saidOfTables() const { return said({"en.lproj/T.strings", "de.lproj/T.strings"}); }

    const Tool tool;
};

} // namespace

TEST_F(DefaultsLint, saysNothingOfFilesThatAreRight) {
    write("Info.plist", "<plist version=\"1.0\"><dict><key>a</key><integer>1</integer></dict></plist>");
    write("List.plist", "( a, b )");
    write("Other.strings", "a = b;");
    writeTables("/* c */ \"%d of %@\" = \"%d of %@\"; k = v;", "k = w; \"%d of %@\" = \"%2$@: %1$i\";");
    EXPECT_EQ(said({"Info.plist", "List.plist", "Other.strings", "en.lproj/T.strings", "de.lproj/T.strings"}),
              "0");
}

TEST_F(DefaultsLint, reportsWhereAFileIsWrong) {
    write("Info.plist", "<plist version=\"1.0\">\n<dict>\n  <key>a</key>\n</dict></plist>");
    write("T.strings", "a = b;\nc = ;\n");
    const std::string text = said({"Info.plist", "T.strings"});
    EXPECT_EQ(text.find("Info.plist:4:"), 0U) << text;
    EXPECT_TRUE(scene::contains(text, "\nT.strings:2:5: ")) << text;
    EXPECT_TRUE(scene::contains(text, "\ndefaults: 2 faults found\n1")) << text;
}

TEST_F(DefaultsLint, reportsWhatTheLibraryCannotUse) {
    write("Word.plist", "word");
    write("T.strings", "a = ( b );");
    write("Array.strings", "( a )");
    write("Large.plist", "{ a = \"" + std::string(17 << 20, 'x') + "\"; }");
    EXPECT_EQ(said({"Word.plist"}), "Word.plist: this is a single value, not a dictionary or an array\n"
                                    "defaults: 1 fault found\n1");
    EXPECT_EQ(said({"T.strings"}), "T.strings: the value of \"a\" is not text\ndefaults: 1 fault found\n1");
    EXPECT_EQ(said({"Array.strings"}).find("Array.strings:1:1: "), 0U);
    EXPECT_TRUE(scene::contains(said({"Large.plist"}), "is larger than 16777216 bytes"));
    EXPECT_TRUE(scene::contains(said({"absent.plist"}), "absent.plist: "));
    ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(said({"pipe"}).back(), '1') << "and does not wait for a writer";
    EXPECT_EQ(said({"ZQFoundation"}).back(), '1');
}

TEST_F(DefaultsLint, comparesTheKeysOfAllLanguages) {
    writeTables("a = 1; b = 2;", "b = 2; c = 3;");
    EXPECT_EQ(saidOfTables(), "en.lproj/T.strings: there is no \"c\", which de.lproj/T.strings has\n"
                              "de.lproj/T.strings: there is no \"a\", which en.lproj/T.strings has\n"
                              "defaults: 2 faults found\n1");
    write("fr.lproj/Other.strings", "x = y;");
    write("elsewhere/de.lproj/T.strings", "x = y;");
    write("no-language/T.strings", "x = y;");
    EXPECT_EQ(said({"en.lproj/T.strings", "fr.lproj/Other.strings", "elsewhere/de.lproj/T.strings",
                    "no-language/T.strings"}),
              "0")
        << "other tables, and tables elsewhere, are nothing to compare with";
}

TEST_F(DefaultsLint, comparesTheConversionsOfAllLanguages) {
    const struct {
        const char* english;
        const char* german;
        const char* fault; ///< null for none
    } rows[] = {
        {"%@ %d", "%d %@", "takes %d %@, but %@ %d"},
        {"%@ %d", "%2$d %1$@", nullptr},
        {"%d", "%ld", "takes %ld, but %d"},
        {"%d %x", "%u %i", nullptr},
        {"%f", "%.2f", nullptr},
        {"%f", "%g", nullptr},
        {"%d", "none", "takes no arguments, but %d"},
        {"%*d", "%d", "takes %d, but %d %d"},
        {"100%", "100 %", nullptr},
        {"50 % of", "50 % von", nullptr},
        {"%d%%", "%d %%", nullptr},
        {"%1$@ %1$@", "%1$@", nullptr},
        {"%@", "%s", "takes %s, but %@"},
        {"%@", "%2$@", "takes %2$@, but %@"},
        {"%d %@ %@", "%4$@ %1$d %3$@", "takes %d %3$@ %@, but %d %@ %@"},
        {"%2$ld", "%2$ld", nullptr},
    };
    for (const auto& row : rows) {
        writeTables(std::string("k = \"").append(row.english).append("\";").c_str(),
                    std::string("k = \"").append(row.german).append("\";").c_str());
        const std::string expected = row.fault == nullptr
                                         ? "0"
                                         : std::string("de.lproj/T.strings: \"k\" ")
                                               .append(row.fault)
                                               .append(" in en.lproj/T.strings\ndefaults: 1 fault found\n1");
        EXPECT_EQ(saidOfTables(), expected) << row.english << " / " << row.german;
    }
}

TEST_F(DefaultsLint, cutsALongListAndCountsTheRest) {
    std::string english;
    for (int key = 0; key < 33; ++key) {
        english.append("k").append(std::to_string(key)).append(" = v; ");
    }
    writeTables(english.c_str(), "");
    write("de.lproj/T.strings", "{}");
    const std::string text = saidOfTables();
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 22);
    EXPECT_TRUE(scene::contains(text, "\n... and 13 more\ndefaults: 33 faults found\n1")) << text;
}

TEST_F(DefaultsLint, spellsControlCharactersOut) {
    writeTables("\"a\\U001b[31m\" = 1;", "b = 2;");
    const std::string text = saidOfTables();
    EXPECT_TRUE(scene::contains(text, "a\\x1b[31m")) << text;
    EXPECT_EQ(text.find('\x1B'), std::string::npos);
}

TEST_F(DefaultsLint, findsNoFaultWithTheLibrarysOwnTexts) {
    Words words{"lint"};
    for (const char* const language : {"de", "en", "es", "fr", "it", "ja", "zh-Hans"}) {
        words.push_back(std::string(ZQ_TEST_SOURCE_DIR "/resources/")
                            .append(language)
                            .append(".lproj/Localizable.strings"));
    }
    EXPECT_EQ(tool.done(words), "");
}
