// SPDX-License-Identifier: MIT
// The tool `defaults` as its user meets it: the real program, with a folder of domains of the test's own.
#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/objects/NSData.h"
#include "foundation/objects/NSDate.h"
#include "tests/kit/Child.h"
#include "tests/kit/Items.h"
#include "tests/kit/RefusedCalls.h"
#include "tests/kit/ScratchFolder.h"
#include "tests/tools/ToolScene.h"

using namespace ZQFoundation;
using kit::modeOf;
using scene::become;
using scene::contains;
using scene::Outcome;
using scene::Tool;
using scene::Words;

namespace {

// Values

struct ValueRow {
    Words words;
    const char* type;
    const char* printed;
};

TEST(DefaultsTool, writesValuesOfEveryType) {
    const ValueRow rows[] = {
        {{"text"}, "string", "text\n"},
        {{"NO"}, "string", "NO\n"},
        {{""}, "string", "\n"},
        {{"-3"}, "string", "-3\n"},
        {{"caf\u00E9 \U0001F600"}, "string", "caf\u00E9 \U0001F600\n"},
        {{"-string", "( a )"}, "string", "( a )\n"},
        {{"-string", "-int"}, "string", "-int\n"},
        {{"-int", "-3"}, "integer", "-3\n"},
        {{"-int", "+7"}, "integer", "7\n"},
        {{"-integer", "9223372036854775807"}, "integer", "9223372036854775807\n"},
        {{"-int", "-9223372036854775808"}, "integer", "-9223372036854775808\n"},
        {{"-float", "1.5"}, "float", "1.5\n"},
        {{"-float", "-1e3"}, "float", "-1000\n"},
        {{"-bool", "YES"}, "boolean", "1\n"},
        {{"-bool", "false"}, "boolean", "0\n"},
        {{"-boolean", "True"}, "boolean", "1\n"},
        {{"-bool", "0"}, "boolean", "0\n"},
        {{"-date", "2024-03-05"}, "date", "2024-03-05 00:00:00 +0000\n"},
        {{"-date", "2024-03-05 14:07:09 +0100"}, "date", "2024-03-05 13:07:09 +0000\n"},
        {{"-date", "2024-03-05T14:07:09Z"}, "date", "2024-03-05 14:07:09 +0000\n"},
        {{"-date", "2024-02-29 23:59-00:30"}, "date", "2024-03-01 00:29:00 +0000\n"},
        {{"-data", "00fF 10"}, "data", "{length = 3, bytes = 0x00ff10}\n"},
        {{"-data", ""}, "data", "{length = 0, bytes = 0x}\n"},
        {{"-array", "a", "-int", "2", "( b )"},
         "array",
         "(\n    a,\n    2,\n        (\n        b\n    )\n)\n"},
        {{"-array"}, "array", "(\n)\n"},
        {{"-dict", "k", "v", "n", "-bool", "yes"}, "dictionary", "{\n    k = v;\n    n = 1;\n}\n"},
        {{"{ a = (x, y); }"}, "dictionary", "{\n    a =     (\n        x,\n        y\n    );\n}\n"},
        {{"<0fbd>"}, "data", "{length = 2, bytes = 0x0fbd}\n"},
        {{"<true/>"}, "boolean", "1\n"},
        {{"\"a b\""}, "string", "a b\n"},
    };
    const Tool tool;
    for (const ValueRow& row : rows) {
        Words words{"write", "com.example.Test", "Key"};
        words.insert(words.end(), row.words.begin(), row.words.end());
        SCOPED_TRACE(::testing::PrintToString(words));
        EXPECT_EQ(tool.done(words), "");
        EXPECT_EQ(tool.done({"read", "com.example.Test", "Key"}), row.printed);
        EXPECT_EQ(tool.done({"read-type", "com.example.Test", "Key"}),
                  std::string("Type is ").append(row.type).append("\n"));
    }
}

TEST(DefaultsTool, refusesValuesThatDoNotFitTheirType) {
    const Tool tool;
    const Words rows[] = {{"-int", "x"},
                          {"-int", ""},
                          {"-int", "1.5"},
                          {"-int", "9223372036854775808"},
                          {"-int", "+-1"},
                          {"-float", "x"},
                          {"-float", "1,5"},
                          {"-bool", "maybe"},
                          {"-bool", ""},
                          {"-date", "yesterday"},
                          {"-date", "2024-02-30"},
                          {"-date", "2024-3-5"},
                          {"-date", "2024-03-05 25:00"},
                          {"-data", "0f1"},
                          {"-data", "xy"},
                          {"{ a = 1 }"},
                          {"( a"},
                          {"<0fb>"}};
    for (const Words& row : rows) {
        Words words{"write", "com.example.Test", "Key"};
        words.insert(words.end(), row.begin(), row.end());
        tool.refused(words);
    }
    EXPECT_FALSE(tool.exists("com.example.Test")) << "nothing was to be written";
}

TEST(DefaultsTool, keepsValuesOfEveryTypeThroughExportAndImport) {
    const Tool tool;
    const Words rows[] = {
        {"s", "-string", "a < b & c > \"d\"\n\u30C8"},
        {"i", "-int", "-9223372036854775808"},
        {"f", "-float", "0.1"},
        {"b", "-bool", "NO"},
        {"t", "-date", "1999-12-31T23:59:59Z"},
        {"d", "-data", "00ff7f"},
        {"a", "-array", "( x, { y = z; } )"},
        {"n", "-dict", "k", "-bool", "YES"},
    };
    for (Words words : rows) {
        words.insert(words.begin(), {"write", "-g"});
        tool.done(words);
    }
    const NSDictionary written = NSDictionary::dictionaryWithContentsOfFile(tool.file("NSGlobalDomain"));
    EXPECT_EQ(written.count(), std::size(rows));
    const std::string exported = tool.done({"export", "-g", "-"});
    tool.done({"import", "copy", "-"}, exported);
    EXPECT_EQ(NSDictionary::dictionaryWithContentsOfFile(tool.file("copy")), written);
    EXPECT_EQ(tool.done({"export", "copy", "-"}), exported);
    EXPECT_EQ(tool.global("s"), NSObject("a < b & c > \"d\"\n\u30C8"));
    EXPECT_EQ(tool.global("f"), NSObject(0.1));
    EXPECT_EQ(tool.global("n"), (NSDictionary{{"k", true}}));
}

TEST(DefaultsTool, reportsAWrongCommandLine) {
    const Tool tool;
    const Words rows[] = {{},
                          {"frob"},
                          {"write"},
                          {"write", "d"},
                          {"write", "d", "k"},
                          {"write", "d", "k", "a", "b"},
                          {"write", "d", "k", "-int"},
                          {"write", "d", "k", "-dict", "a"},
                          {"write", "d", "k", "-array", "-dict", "a"},
                          {"read", "a", "b", "c"},
                          {"read-type", "d"},
                          {"remove"},
                          {"rename", "d", "k"},
                          {"domains", "x"},
                          {"find"},
                          {"import", "d"},
                          {"export", "d"},
                          {"read", "-x"}};
    for (const Words& row : rows) {
        EXPECT_TRUE(contains(tool.refused(row, 2), "--help")) << ::testing::PrintToString(row);
    }
    EXPECT_TRUE(contains(tool.done({"--help"}), "Usage: defaults"));
    EXPECT_EQ(tool.done({"help"}), tool.done({"--help"}));
    EXPECT_EQ(tool.done({"-h"}), tool.done({"--help"}));
    EXPECT_EQ(tool.done({"--version"}).substr(0, 9), "defaults ");
    EXPECT_TRUE(contains(tool.refused({"write", "d", "k", "\xFF"}), "UTF-8"));
}

TEST(DefaultsTool, saysWhatACommandTakes) {
    const Tool tool;
    const std::string whole = tool.done({"--help"});
    for (const char* const command : {"read", "read-type", "write", "remove", "delete", "rename", "domains",
                                      "find", "import", "export", "lint"}) {
        const std::string help = tool.done({command, "--help"});
        EXPECT_EQ(help.find("Usage: defaults <command>"), 0U);
        const std::string line = std::string("\n  ").append(command).append(" ");
        ASSERT_TRUE(contains(help, line)) << command;
        EXPECT_TRUE(contains(whole, help.substr(help.find(line)))) << command;
        EXPECT_EQ(tool.done({command, "-h"}), help);
    }
    tool.refused({"frob", "--help"}, 2);
    tool.done({"write", "d", "k", "--help"});
    EXPECT_EQ(tool.done({"read", "d", "k"}), "--help\n") << "a value here";
}

TEST(DefaultsTool, answersUnderItsSecondName) {
    const Tool tool;
    const std::string link = tool.folder() / "zqdefaults";
    ASSERT_EQ(::symlink(ZQ_DEFAULTS_TOOL, link.c_str()), 0);
    const std::string output = kit::outputOf(link, {"zqdefaults", "--help"}, [] {});
    EXPECT_EQ(output.find("Usage: zqdefaults <command>"), 0U) << output;
    EXPECT_TRUE(contains(output, "\n  zqdefaults write com.example"));
    EXPECT_FALSE(contains(output, "\n  defaults "));
}

TEST(DefaultsTool, spellsControlCharactersOutInMessages) {
    const Tool tool;
    EXPECT_EQ(tool.refused({"read", "a\nb\x1B[31m\u009B\u00E9"}),
              "defaults: there is no domain a\\nb\\x1b[31m\\x9b\u00E9\n");
}

/// What the tool shows on a terminal, with line feeds alone at the ends of lines.
std::string shownOnTerminal(const Tool& tool, const Words& words) {
    scene::Terminal terminal;
    const pid_t child = tool.runs().start(words, terminal.end(), STDERR_FILENO);
    std::string shown = terminal.readToEnd();
    shown.erase(std::remove(shown.begin(), shown.end(), '\r'), shown.end());
    EXPECT_EQ(kit::endOf(child), 0);
    return shown;
}

TEST(DefaultsTool, spellsControlCharactersOutOnATerminal) {
    const Tool tool;
    tool.write("d", "{ k = \"a\\U001b[31m\\nb\\tc\\U0085\\U007f\\U00e9\"; }");
    const std::string plain = "a\x1B[31m\nb\tc\u0085\x7F\u00E9\n";
    EXPECT_EQ(shownOnTerminal(tool, {"read", "d", "k"}), "a\\x1b[31m\nb\tc\\x85\\x7f\u00E9\n");
    EXPECT_EQ(tool.done({"read", "d", "k"}), plain);
    for (const Words& words : {Words{"read", "d"}, Words{"read"}, Words{"find", "31m"}}) {
        const std::string shown = shownOnTerminal(tool, words);
        EXPECT_EQ(shown.find('\x1B'), std::string::npos) << shown;
        EXPECT_TRUE(contains(shown, "[31m")) << shown;
    }
    tool.write("d", "{ k = \"\\U0085\"; }");
    EXPECT_TRUE(contains(shownOnTerminal(tool, {"export", "d", "-"}), "<string>&#x85;<"));
    tool.write("o\x1B[0m", "{ k = v; }");
    EXPECT_EQ(shownOnTerminal(tool, {"domains"}), "d, o\\x1b[0m\n");
}

// Commands

TEST(DefaultsTool, addsToCollections) {
    const Tool tool;
    tool.done({"write", "d", "A", "-array-add", "1"});
    tool.done({"write", "d", "A", "-array-add", "2", "3"});
    EXPECT_EQ(tool.done({"read", "d", "A"}), "(\n    1,\n    2,\n    3\n)\n");
    tool.done({"write", "d", "D", "-dict-add", "a", "1"});
    tool.done({"write", "d", "D", "-dict-add", "a", "2", "b", "3"});
    EXPECT_EQ(tool.done({"read", "d", "D"}), "{\n    a = 2;\n    b = 3;\n}\n");
    tool.done({"write", "d", "S", "text"});
    tool.refused({"write", "d", "S", "-array-add", "1"});
    tool.refused({"write", "d", "S", "-dict-add", "a", "1"});
    EXPECT_EQ(tool.done({"read", "d", "S"}), "text\n");
}

TEST(DefaultsTool, removesKeysAndDomains) {
    const Tool tool;
    tool.done({"write", "d", "{ a = 1; b = 2; c = 3; }"});
    EXPECT_EQ(tool.done({"remove", "d", "a"}), "");
    EXPECT_EQ(tool.done({"delete", "d", "b"}), "");
    EXPECT_EQ(tool.done({"read", "d"}), "{\n    c = 3;\n}\n");
    tool.refused({"remove", "d", "a"});
    tool.refused({"read", "d", "a"});
    tool.done({"remove", "d"});
    EXPECT_FALSE(tool.exists("d"));
    tool.refused({"delete", "d"});
    tool.refused({"delete", "d", "c"});
    tool.refused({"read", "d"});
}

TEST(DefaultsTool, saysWhereARemovedKeyIsStillSet) {
    const Tool tool;
    tool.done({"write", "-g", "TraceBoth", "YES"});
    tool.done({"write", "-g", "TraceGlobal", "YES"});
    tool.done({"write", "com.example.v", "{ TraceBoth = NO; TraceOwn = YES; }"});
    EXPECT_EQ(
        tool.refused({"remove", "com.example.v", "TraceBoth"}),
        "defaults: TraceBoth was removed from com.example.v, but remains in effect: the global domain has "
        "it too "
        "(defaults remove -g TraceBoth)\n");
    EXPECT_EQ(tool.done({"read", "com.example.v"}), "{\n    TraceOwn = YES;\n}\n");
    tool.done({"remove", "com.example.v", "TraceOwn"});
    EXPECT_EQ(tool.refused({"remove", "com.example.v", "TraceGlobal"}),
              "defaults: the domain com.example.v has no key TraceGlobal, but the global domain has it "
              "(defaults remove -g TraceGlobal)\n");
    const std::string elsewhere =
        " has no key TraceOther; an application that sees one has it from its command line or from "
        "ZQ_DEFAULTS, or has registered it itself\n";
    EXPECT_EQ(tool.refused({"remove", "com.example.v", "TraceOther"}),
              "defaults: the domain com.example.v" + elsewhere);
    EXPECT_EQ(tool.refused({"remove", "com.none", "TraceOther"}),
              "defaults: the domain com.none" + elsewhere);
    EXPECT_EQ(tool.refused({"remove", "-g", "TraceOther"}),
              "defaults: the domain NSGlobalDomain" + elsewhere);
    tool.done({"remove", "-g", "TraceBoth"});
    tool.done({"remove", "NSGlobalDomain", "TraceGlobal"});
    const std::string path = tool.folder() / "own";
    tool.done({"write", path, "k", "v"});
    tool.done({"write", "-g", "k", "v"});
    tool.done({"remove", path, "k"}); // no application looks there
}

TEST(DefaultsTool, removesAlthoughTheGlobalDomainCannotBeRead) {
    const Tool tool;
    tool.write("NSGlobalDomain", "{ k"); // which no application reads either
    tool.done({"write", "d", "k", "v"});
    tool.done({"remove", "d", "k"});
}

TEST(DefaultsTool, renamesAKeyThatIsThereToOneThatIsFree) {
    const Tool tool;
    tool.done({"write", "d", "{ a = 1; b = 2; }"});
    tool.done({"rename", "d", "a", "c"});
    EXPECT_EQ(tool.done({"read", "d"}), "{\n    b = 2;\n    c = 1;\n}\n");
    tool.refused({"rename", "d", "a", "x"});
    tool.refused({"rename", "d", "b", "c"});
    tool.done({"rename", "d", "b", "b"});
    EXPECT_EQ(tool.done({"read", "d"}), "{\n    b = 2;\n    c = 1;\n}\n");
}

TEST(DefaultsTool, failsWhenTheDomainsCannotBeListed) {
    const Tool tool;
    tool.folder().write("ZQFoundation", "a file");
    for (const Words& words : {Words{"domains"}, Words{"read"}, Words{"find", "k"}}) {
        EXPECT_TRUE(contains(tool.refused(words), "ZQFoundation: Not a directory\n")) << words[0];
    }
    const kit::Variable configuration("XDG_CONFIG_HOME", (tool.folder() / "ZQFoundation").c_str());
    EXPECT_TRUE(contains(tool.refused({"domains"}), "ZQFoundation/ZQFoundation: Not a directory\n"));
}

TEST(DefaultsTool, listsAFolderWhoseNameIsNoText) {
    const Tool tool;
    const kit::Variable configuration("XDG_CONFIG_HOME", (tool.folder() / "\xff").c_str());
    ASSERT_EQ(::mkdir((tool.folder() / "\xff").c_str(), 0700), 0);
    tool.done({"write", "d", "k", "v"});
    EXPECT_EQ(tool.done({"domains"}), "d\n");
    EXPECT_EQ(tool.done({"read"}), "{\n    d =     {\n        k = v;\n    };\n}\n");
    EXPECT_EQ(tool.done({"find", "v"}), "1 key in the domain d: {\n    k = v;\n}\n");
}

TEST(DefaultsTool, listsAndFindsDomains) {
    const Tool tool;
    EXPECT_EQ(tool.done({"domains"}), "\n");
    tool.done({"write", "com.b", "Key", "Value"});
    tool.done({"write", "com.a", "Other", "x"});
    tool.done({"write", "-g", "Global", "Value"});
    EXPECT_EQ(tool.done({"domains"}), "com.a, com.b\n");
    EXPECT_EQ(tool.done({"find", "vAL"}), "1 key in the domain NSGlobalDomain: {\n    Global = Value;\n}\n"
                                          "1 key in the domain com.b: {\n    Key = Value;\n}\n");
    EXPECT_EQ(tool.done({"find", "com.A"}), "1 key in the domain com.a: {\n    Other = x;\n}\n");
    tool.refused({"find", "nothing like it"});
    const std::string all = tool.done({"read"});
    EXPECT_TRUE(contains(all, "\"com.a\" =")) << all;
    EXPECT_TRUE(contains(all, "NSGlobalDomain =")) << all;
}

TEST(DefaultsTool, findsTextsInsideCollections) {
    const Tool tool;
    tool.done({"write", "d", "Deep", "-array", "{ inner = ( \"gr\u00FCn\" ); }"});
    tool.done({"write", "d", "Other", "-array", "x"});
    for (const char* const word : {"GR\u00DCN", "Inner"}) {
        const std::string found = tool.done({"find", word});
        EXPECT_EQ(found.find("1 key in the domain d: "), 0U) << word << ": " << found;
        EXPECT_TRUE(contains(found, "Deep")) << found;
    }
    tool.refused({"find", "( )"});
}

TEST(DefaultsTool, goesOverAllDomainsAlthoughOneCannotBeRead) {
    const Tool tool;
    tool.write("broken", "{ a");
    tool.write("-odd", "{ a = needle; }");
    tool.done({"write", "good", "k", "needle"});
    for (const Words& words : {Words{"read"}, Words{"find", "needle"}}) {
        const Outcome outcome = tool.run(words);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_TRUE(contains(outcome.errors, tool.file("broken"))) << outcome.errors;
        EXPECT_TRUE(contains(outcome.output, "k = needle;")) << outcome.output;
        EXPECT_TRUE(contains(outcome.output, "a = needle;")) << outcome.output;
    }
}

TEST(DefaultsTool, importsAndExportsWholeDomains) {
    const Tool tool;
    const std::string file = tool.folder() / "exported.plist";
    tool.done({"write", "d", "{ a = (1, 2); b = { c = d; }; }"});
    tool.done({"export", "d", file});
    const std::string xml = kit::contentsOf(file);
    EXPECT_EQ(xml.substr(0, 5), "<?xml");
    EXPECT_EQ(tool.done({"export", "d", "-"}), xml);
    tool.done({"write", "e", "old", "gone"});
    tool.done({"import", "e", file});
    EXPECT_EQ(tool.done({"read", "e"}), tool.done({"read", "d"}));
    EXPECT_EQ(tool.done({"import", "f", "-"}, "{ from = input; }"), "");
    EXPECT_EQ(tool.done({"read", "f", "from"}), "input\n");
    EXPECT_EQ(tool.run({"import", "f", "-"}, "( no, dictionary )").status, 1);
    EXPECT_EQ(tool.run({"import", "f", "-"}, "").status, 1);
    tool.refused({"import", "f", tool.folder() / "missing"});
    tool.refused({"export", "missing", "-"});
    EXPECT_EQ(tool.done({"read", "f", "from"}), "input\n");
}

TEST(DefaultsTool, importsFromPipesAndExportsIntoThem) {
    const Tool tool;
    const std::string pipe = tool.folder() / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const pid_t writer = ::fork();
    if (writer == 0) {
        const int end = ::open(pipe.c_str(), O_WRONLY);
        ::_exit(::write(end, "{ a = b; }", 10) == 10 ? 0 : 1);
    }
    tool.done({"import", "d", pipe});
    EXPECT_EQ(kit::endOf(writer), 0);
    EXPECT_EQ(tool.done({"read", "d", "a"}), "b\n");

    const int end = ::open(pipe.c_str(), O_RDONLY | O_NONBLOCK);
    ASSERT_GE(end, 0);
    tool.done({"export", "d", pipe});
    EXPECT_TRUE(kit::isOfType(pipe, S_IFIFO)) << "no file has taken its place";
    std::string bytes(4096, '\0');
    const ssize_t count = ::read(end, bytes.data(), bytes.size());
    ::close(end);
    bytes.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    EXPECT_EQ(bytes, tool.done({"export", "d", "-"}));
    tool.refused({"export", "d", tool.folder().path()});
    tool.refused({"import", "d", tool.folder().path()});
}

TEST(DefaultsTool, takesPathsForDomains) {
    const Tool tool;
    const std::string path = tool.folder() / "own";
    tool.done({"write", path, "k", "v"});
    EXPECT_EQ(tool.done({"read", path + ".plist", "k"}), "v\n");
    tool.refused({"write", tool.folder() / "missing/own", "k", "v"});
    tool.refused({"write", "", "k", "v"});
}

TEST(DefaultsTool, isReadByTheLibrary) {
    const Tool tool;
    tool.done({"write", "-g", "Number", "-int", "-5"});
    tool.done({"write", "NSGlobalDomain", "Flag", "-bool", "YES"});
    tool.done({"write", "-globalDomain", "List", "-array", "a", "-float", "1.5"});
    tool.done({"write", "-g", "Date", "-date", "2001-01-01 00:00:10"});
    tool.done({"write", "-g", "\u30C8\u30EC\u30FC\u30B9", "-data", "ff"});
    EXPECT_EQ(tool.global("Number"), NSObject(-5));
    EXPECT_EQ(tool.global("Flag").description(), "1");
    EXPECT_EQ(tool.global("List"), (NSArray{"a", 1.5}));
    EXPECT_EQ(tool.global("Date"), NSDate::dateWithTimeIntervalSinceReferenceDate(10));
    EXPECT_EQ(NSData(tool.global("\u30C8\u30EC\u30FC\u30B9")).length(), 1U);
}

// Files

TEST(DefaultsTool, writesThroughLinksToWhatIsNotThereYet) {
    const Tool tool;
    tool.done({"write", "d", "k", "v"});
    ASSERT_EQ(::symlink("../new.plist", tool.file("dangling").c_str()), 0);
    tool.done({"write", "dangling", "k", "v"});
    EXPECT_EQ(tool.done({"read", tool.folder() / "new", "k"}), "v\n");
    tool.done({"remove", "dangling"});
    tool.done({"write", "dangling", "k", "w"});
    EXPECT_EQ(tool.done({"read", "dangling", "k"}), "w\n");

    ASSERT_EQ(::symlink((tool.folder() / "missing/new.plist").c_str(), tool.file("lost").c_str()), 0);
    tool.refused({"write", "lost", "k", "v"});
    EXPECT_EQ(::access((tool.folder() / "missing").c_str(), F_OK), -1) << "no folder is made at a link's end";
    ASSERT_EQ(::symlink("loop.plist", tool.file("loop").c_str()), 0);
    tool.refused({"write", "loop", "k", "v"});
}

TEST(DefaultsTool, permitsNothingToAGroupThatTheFileDidNotHave) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can make a file of a group that the writer is no member of";
    }
    const Tool tool;
    tool.done({"write", "d", "k", "v"});
    ASSERT_EQ(::chmod((tool.folder() / "ZQFoundation").c_str(), 0777), 0);
    ASSERT_EQ(::chmod(tool.file("d").c_str(), 0664), 0);
    kit::expectAsUser([]() -> int { become(scene::defaultsProgram(), {"write", "d", "k", "w"}); });
    EXPECT_EQ(tool.done({"read", "d", "k"}), "w\n");
    EXPECT_EQ(modeOf(tool.file("d")), 0604U);
}

TEST(DefaultsTool, neverReplacesWhatItCannotRead) {
    const Tool tool;
    const std::pair<const char*, const char*> files[] = {
        {"broken", "{ a = 1;\n  b = (1, 2; }"},
        {"list", "( a, b )"},
        {"empty", ""},
        {"xml", "<plist><dict><key>"},
    };
    for (const auto& [domain, bytes] : files) {
        tool.write(domain, bytes);
        for (const Words& words :
             {Words{"write", domain, "k", "v"}, Words{"write", domain, "{ a = b; }"},
              Words{"remove", domain, "a"}, Words{"remove", domain}, Words{"read", domain}}) {
            EXPECT_TRUE(contains(tool.refused(words), tool.file(domain)));
        }
        EXPECT_EQ(tool.contents(domain), bytes) << domain;
    }
    EXPECT_TRUE(contains(tool.refused({"write", "broken", "k", "v"}), "line 2, column"));
    ASSERT_EQ(::mkfifo(tool.file("pipe").c_str(), 0600), 0);
    tool.refused({"write", "pipe", "k", "v"});
    EXPECT_EQ(tool.entriesInFolder(), 5U) << "no temporary file is left";
}

TEST(DefaultsTool, readsEveryFormAndWritesXml) {
    const Tool tool;
    tool.write("old", "// a comment\n{ \"caf\\U00e9\" = (1, 2); }");
    EXPECT_EQ(tool.done({"read", "old", "caf\u00E9"}), "(\n    1,\n    2\n)\n");
    tool.done({"write", "old", "k", "v"});
    EXPECT_EQ(tool.contents("old").substr(0, 5), "<?xml");
    EXPECT_EQ(tool.done({"read", "old", "caf\u00E9"}), "(\n    1,\n    2\n)\n");
}

TEST(DefaultsTool, refusesWhatXmlCannotRepresentAndSaysWhereItIs) {
    const Tool tool;
    const std::pair<const char*, const char*> rows[] = {
        {"{ k = \"a\\U001b[31m\"; }", "k holds the character U+001B"},
        {"{ a = { \"k\\U000c\" = v; }; }", "a.k\\x0c holds the character U+000C"},
        {"{ a = \"\\t\\n\\r\\U007f\\U0085\\Ud83d\\Ude00\"; z = \"\\U0000\"; }",
         "z holds the character U+0000"},
    };
    tool.done({"write", "d", "k", "v"});
    const std::string before = tool.contents("d");
    for (const auto& [text, place] : rows) {
        for (const Words& words : {Words{"write", "d", text}, Words{"write", "new", text}}) {
            const std::string message = tool.refused(words);
            EXPECT_TRUE(contains(message, place)) << message;
        }
        tool.write("source", text);
        tool.refused({"export", "source", "-"});
        tool.refused({"export", "source", tool.folder() / "exported.plist"});
        tool.refused({"write", "source", "other", "v"});
        EXPECT_EQ(tool.contents("source"), text);
        EXPECT_EQ(tool.run({"import", "d", "-"}, text).status, 1);
    }
    EXPECT_EQ(tool.contents("d"), before);
    EXPECT_FALSE(tool.exists("new"));
    EXPECT_EQ(::access((tool.folder() / "exported.plist").c_str(), F_OK), -1);
    tool.refused({"write", "d", "k", "-string", "\x1B[31m"});
    tool.done({"remove", "source", "z"}); // and so the rest is to be had again
    EXPECT_EQ(tool.done({"read-type", "source", "a"}), "Type is string\n");
}

#if __has_include(<linux/seccomp.h>)
TEST(DefaultsTool, failsWhenItCannotLookAtTheFileBefore) {
    const Tool tool;
    tool.done({"write", "d", "k", "v"});
    ASSERT_EQ(::chmod(tool.file("d").c_str(), 0644), 0);
    const Outcome outcome = tool.runs().runPrepared({"write", "d", "k", "w"}, [] {
        const kit::CallArgument notFollowing{3, AT_SYMLINK_NOFOLLOW};
        return kit::refuseCall(SYS_newfstatat, EIO, &notFollowing);
    });
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(contains(outcome.errors, "nput/output error")) << outcome.errors;
    EXPECT_EQ(modeOf(tool.file("d")), 0644U);
    EXPECT_EQ(tool.done({"read", "d", "k"}), "v\n");
    EXPECT_EQ(tool.entriesInFolder(), 1U) << "no temporary file is left";
}
#endif

TEST(DefaultsTool, exportsThroughNamesOfOpenFiles) {
    const Tool tool;
    tool.done({"write", "d", "k", "v"});
    const std::string xml = tool.done({"export", "d", "-"});
    EXPECT_EQ(tool.done({"export", "d", "/dev/stdout"}), xml);
    EXPECT_EQ(tool.done({"export", "d", "/dev/fd/1"}), xml);
    EXPECT_EQ(tool.done({"import", "e", "/dev/stdin"}, xml), "");
    EXPECT_EQ(tool.done({"read", "e", "k"}), "v\n");
    const Outcome appended = tool.runs().runPrepared(
        {"export", "d", "/dev/stdout"}, [] { return ::write(STDOUT_FILENO, "before\n", 7) == 7; });
    EXPECT_EQ(appended.output, "before\n" + xml);
}

} // namespace
