// SPDX-License-Identifier: MIT
// `zqmigrate --json`, read back by a reader of JSON that is not ours.
#include <algorithm>
#include <string>

#include <gtest/gtest.h>

#include "tests/kit/ScratchFolder.h"
#include "tests/tools/ToolScene.h"

using namespace ZQFoundation;
using scene::MigrateTool;
using scene::Outcome;
using scene::Words;

namespace {

/// What the reader prints: the values of a Python expression over the report `r`, in which `path(object,
/// name)` is the exact bytes of a path.
std::string read(const MigrateTool& tool, const std::string& report, const std::string& expression) {
    const std::string file = tool.reports().write("report.json", report);
    const std::string script = "import json, os, sys\n"
                               "r = json.loads(open(sys.argv[1], 'rb').read().decode('utf-8', 'strict'))\n"
                               "def path(o, name='path'):\n"
                               "    exact = o.get(name + 'Bytes')\n"
                               "    text = o[name].encode('utf-8')\n"
                               "    assert exact is None or b'\\xef\\xbf\\xbd' in text\n"
                               "    return text if exact is None else bytes.fromhex(exact)\n"
                               "print(" +
                               expression + ")\n";
    return tool.outputOf({"python3", "-c", script, file});
}

TEST(ZqmigrateJson, reportsWhatWasAskedForAndWhatCameOfIt) {
    const MigrateTool tool;
    tool.file("a/1.log");
    tool.file("a/2.log");
    tool.file("b/1.log");
    const Outcome outcome = tool.run({"--json", "batch", "--extension", "log", "a", "b"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(read(tool, outcome.output,
                   "[r[k] for k in ('operation', 'from', 'to', 'extension', 'dotFiles', 'keepOriginal',"
                   " 'createParents', 'overwrite', 'rename', 'dryRun')]"),
              "['batch', 'a', 'b', 'log', False, False, False, False, False, False]\n");
    EXPECT_EQ(read(tool, outcome.output,
                   "sorted((i['path'], i['destination'], i['code'], i['description']) for i in r['items'])"),
              "[('1.log', 'b/1.log', 30, 'the destination file already exists'),"
              " ('2.log', 'b/2.log', 0, 'success')]\n");
    EXPECT_EQ(read(tool, outcome.output,
                   "r['migrated'], r['failed'], r['notReached'], r['left'], r['isLeftComplete'],"
                   " r['unreadableFolders'], r['error'], r['interrupted'], r['success']"),
              "1 1 0 [{'path': '1.log'}] True [] None False False\n");
}

TEST(ZqmigrateJson, reportsEveryFlagAndOperation) {
    const MigrateTool tool;
    tool.file("a.txt");
    tool.file("b.txt");
    tool.file("d/f");
    const std::string renamed = tool.done(
        {"--json", "--keep-original", "--create-parents", "--rename", "-n", "file", "a.txt", "b.txt"});
    EXPECT_EQ(read(tool, renamed,
                   "r['operation'], r['keepOriginal'], r['createParents'], r['overwrite'], r['rename'],"
                   " r['dryRun'], r['items'][0]['destination'], r['success'], 'extension' in r"),
              "file True True False True True b 1.txt True False\n");
    const std::string folder = tool.done({"--json", "-q", "--overwrite", "folder", "d", "e"});
    EXPECT_EQ(read(tool, folder, "r['operation'], r['overwrite'], r['items'][0]['code'], r['left']"),
              "folder True 0 []\n");
    EXPECT_EQ(tool.report("errors"), "");
}

TEST(ZqmigrateJson, isWholeWhenThereIsNothingToDo) {
    const MigrateTool tool;
    tool.folder().makeFolder("empty");
    const Outcome missing = tool.run({"--json", "batch", "no\nthing", "b"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(read(tool, missing.output, "repr(r['from']), r['items'], r['error'], r['success']"),
              "'no\\nthing' [] no\nthing: the folder with the source files does not exist False\n");
    EXPECT_EQ(missing.errors, "zqmigrate: no\\nthing: the folder with the source files does not exist\n");
    EXPECT_EQ(
        read(tool, tool.done({"--json", "batch", "empty", "b"}), "r['items'], r['error'], r['success']"),
        "[] None True\n");
}

/// One name for each byte that a name may hold, alone and in text, and some that mean harm.
Words hostileNames() {
    Words names{"new\nline",
                "quote\"",
                "back\\slash\\u0041",
                "\x1B[31mred\x1B[0m",
                "\xC2\x9B"
                "31m",
                "right\u202Eto\u202Cleft",
                "\u2028",
                "isolate\u2066\u2069",
                "mark\u200F\u061C",
                "unseen\u00AD\u200B\u2060\u2064\uFEFF",
                "caf\u00E9 \U0001F600",
                "\xEF\xBF\xBD",
                "cut \xF0\x9F\x98",
                "long form \xC0\xAF",
                "half \xED\xA0\x80",
                "too far \xF4\x90\x80\x80",
                " ",
                "-n",
                "--",
                "~",
                "{\"code\": 0}",
                std::string(255, '\xFF')};
    for (int byte = 1; byte < 256; ++byte) {
        if (byte != '/' && byte != '.') {
            names.push_back(std::string("byte ") + static_cast<char>(byte));
            names.emplace_back(1, static_cast<char>(byte));
        }
    }
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

TEST(ZqmigrateJson, isExactForAnyName) {
    const MigrateTool tool;
    const Words names = hostileNames();
    for (const std::string& name : names) {
        tool.file("a/" + name, name);
        tool.file("c/" + name, "mine");
    }
    const std::string report = tool.done({"--json", "--create-parents", "batch", "a", "b\xFF"});
    EXPECT_EQ(read(tool, report, "len(r['items']), {i['code'] for i in r['items']}"),
              std::to_string(names.size()) + " {0}\n");
    EXPECT_EQ(read(tool, report,
                   "sorted(path(i) for i in r['items']) == sorted(os.listdir(path(r, 'to'))),"
                   " all(path(i, 'destination') == b'b\\xff/' + path(i) for i in r['items'])"),
              "True True\n");
    const Outcome failing = tool.run({"--json", "batch", "c", "b\xFF"});
    EXPECT_EQ(failing.status, 1);
    EXPECT_EQ(read(tool, failing.output, "sorted(path(i) for i in r['left']) == sorted(os.listdir(b'c'))"),
              "True\n");
    for (const std::string& name : names) {
        EXPECT_EQ(kit::contentsOf(tool / ("b\xFF/" + name)), name);
    }
}

TEST(ZqmigrateJson, andLinesContainNothingThatATerminalObeys) {
    const MigrateTool tool;
    const Words names = hostileNames();
    for (const std::string& name : names) {
        tool.file("a/" + name);
        tool.file("b/" + name);
    }
    for (const char* const option : {"--json", "--verbose"}) {
        const Outcome outcome = tool.run({option, "-n", "batch", "a", "b"});
        for (const std::string& text : {outcome.output, outcome.errors}) {
            const std::u16string units = ZQFoundation::NSString(text).utf16();
            for (const char16_t unit : units) {
                const bool isHarmful =
                    (unit < 0x20 && unit != '\n') || (unit >= 0x7F && unit < 0xA0) || unit == 0xAD ||
                    unit == 0x061C || unit == 0xFEFF || (unit >= 0x200B && unit <= 0x200F) ||
                    (unit >= 0x2028 && unit <= 0x202E) || (unit >= 0x2060 && unit <= 0x2064) ||
                    (unit >= 0x2066 && unit <= 0x2069);
                ASSERT_FALSE(isHarmful) << static_cast<unsigned>(unit);
            }
            EXPECT_TRUE(!units.empty() || text.empty()) << "all is text";
        }
    }
    for (const std::string& name : names) {
        ::unlink((tool / ("b/" + name)).c_str());
    }
    const std::string plain = tool.done({"-n", "batch", "a", "b"});
    EXPECT_EQ(static_cast<std::size_t>(std::count(plain.begin(), plain.end(), '\n')), names.size());
    const Outcome seen = tool.run({"file", "no\n\x1B\xC2\x9B\xFF\u202E\u00E9", "x"});
    EXPECT_EQ(seen.errors.find("zqmigrate: 0 of 1 file moved; left to do: 1\n"
                               "  10  no\\n\\x1b\\u009b\\xff\\u202e\u00E9: the source path does not"),
              0U);
    const Outcome unseen = tool.run({"file", "\\n\\\u00AD\u200B\u2060\u2064\uFEFF\u2065", "x"});
    EXPECT_TRUE(
        scene::contains(unseen.errors, "\n  10  \\\\n\\\\\\u00ad\\u200b\\u2060\\u2064\\ufeff\u2065: the"));
}

TEST(ZqmigrateJson, listsAllThatLinesLeaveOut) {
    const MigrateTool tool;
    tool.folder().makeFolder("d");
    tool.files("a", 30);
    tool.files("b", 30);
    for (int number = 0; number < 30; ++number) {
        tool.folder().link("../c", "d/" + std::to_string(number));
    }
    tool.file("c");
    const Outcome failing = tool.run({"--json", "batch", "a", "b"});
    EXPECT_EQ(read(tool, failing.output, "len(r['left']), len(r['items']), r['brokenLinks'], r['notes']"),
              "30 30 [] []\n");
    EXPECT_TRUE(scene::contains(failing.errors, "  ... and 10 more\n"));
    const std::string links = tool.done({"--json", "--create-parents", "folder", "d", "x/y"});
    EXPECT_EQ(read(tool, links, "len(r['brokenLinks']), r['brokenLinks'][0]['path'][:4], r['success']"),
              "30 x/y/ True\n");
    const std::string trial = tool.done({"--json", "-n", "--create-parents", "batch", "b", "b/sub"});
    EXPECT_EQ(read(tool, trial, "len(r['items']), len(r['notes'])"), "30 1\n");
}

} // namespace
