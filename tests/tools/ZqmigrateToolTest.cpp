// SPDX-License-Identifier: MIT
// The tool `zqmigrate` as its user meets it: the real program, in a folder of the test's own.
#include <algorithm>
#include <string>

#include <gtest/gtest.h>

#include "tests/kit/Child.h"
#include "tests/kit/Environment.h"
#include "tests/kit/Mounts.h"
#include "tests/tools/ToolScene.h"

using namespace ZQFoundation;
using scene::contains;
using scene::MigrateTool;
using scene::Outcome;
using scene::Words;

namespace {

Words linesInOrder(const std::string& text) {
    Words lines;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = text.find('\n', start);
        lines.push_back(text.substr(start, end - start));
        start = end == std::string::npos ? text.size() : end + 1;
    }
    return lines;
}

Words linesOf(const std::string& text) {
    Words lines = linesInOrder(text);
    std::sort(lines.begin(), lines.end());
    return lines;
}

/// "  30  b.log: ...", a line each.
Words failuresIn(const std::string& errors) {
    Words lines = linesOf(errors);
    lines.erase(std::remove_if(lines.begin(), lines.end(),
                               [](const std::string& line) { return line.rfind("  ", 0) != 0; }),
                lines.end());
    return lines;
}

// The command line

TEST(ZqmigrateTool, refusesAWrongCommandLine) {
    const MigrateTool tool;
    tool.file("a");
    const Words rows[] = {{},
                          {"frob", "a", "b"},
                          {"file"},
                          {"file", "a"},
                          {"file", "a", "b", "c"},
                          {"file", "", "b"},
                          {"batch", "a", ""},
                          {"--frob", "file", "a", "b"},
                          {"-x", "file", "a", "b"},
                          {"--dry-run=yes", "file", "a", "b"},
                          {"--extension", "log", "file", "a", "b"},
                          {"--dot-files", "folder", "a", "b"},
                          {"batch", "a", "b", "--extension"},
                          {"batch", "--extension", ".log", "a", "b"},
                          {"batch", "--extension=a/b", "a", "b"},
                          {"batch", "--extension", "", "a", "b"},
                          {"batch", "--extension=", "a", "b"},
                          {"batch", "--extension", "a", "--extension", "b", "a", "b"},
                          {"--overwrite", "--rename", "file", "a", "b"},
                          {"--quiet", "--verbose", "file", "a", "b"},
                          {"file", "--", "--rename", "a", "b"}};
    for (const Words& row : rows) {
        const Outcome outcome = tool.run(row);
        const std::string shown = ::testing::PrintToString(row);
        EXPECT_EQ(outcome.status, 2) << shown;
        EXPECT_EQ(outcome.output, "") << shown;
        EXPECT_EQ(outcome.errors.substr(0, 11), "zqmigrate: ") << shown;
        EXPECT_EQ(outcome.errors.find("(try --help)\n"), outcome.errors.size() - 13) << outcome.errors;
    }
    EXPECT_EQ(tool.run({"-nx", "file", "a", "b"}).errors, "zqmigrate: unknown option -x (try --help)\n");
    EXPECT_EQ(tool.folder().digest().size(), 2U) << "nothing was to be done";
}

TEST(ZqmigrateTool, printsHelpAndVersion) {
    const MigrateTool tool;
    const std::string help = tool.done({"--help"});
    EXPECT_EQ(help.find("Usage: zqmigrate"), 0U);
    for (const char* const option : {"--keep-original", "--create-parents", "--overwrite", "--rename",
                                     "--extension", "--dot-files", "--dry-run", "--json", "--quiet"}) {
        EXPECT_TRUE(contains(help, option)) << option;
    }
    for (const Words& words : {Words{"-h"}, Words{"help"}, Words{"file", "--help"}, Words{"batch", "-nh"}}) {
        EXPECT_EQ(tool.done(words), help);
    }
    EXPECT_EQ(tool.done({"--version"}).find("zqmigrate "), 0U);
}

TEST(ZqmigrateTool, takesWhatFollowsTwoHyphensForPaths) {
    const MigrateTool tool;
    tool.file("--json", "mine");
    EXPECT_EQ(tool.done({"--", "file", "--json", "-n"}), " 0  --json: success\n");
    EXPECT_EQ(tool.folder().contents("-n"), "mine");
    EXPECT_EQ(tool.done({"file", "--", "-n", "--help"}), " 0  -n: success\n");
    EXPECT_EQ(tool.folder().contents("--help"), "mine");
}

// What is done

TEST(ZqmigrateTool, movesAFileAndCopiesAnother) {
    const MigrateTool tool;
    tool.file("a.txt", "one");
    EXPECT_EQ(tool.done({"file", "a.txt", "b.txt"}), " 0  a.txt: success\n");
    EXPECT_EQ(tool.report("errors"), "zqmigrate: 1 file moved\n");
    EXPECT_FALSE(tool.folder().has("a.txt"));
    EXPECT_EQ(tool.folder().contents("b.txt"), "one");
    EXPECT_EQ(tool.done({"file", "b.txt", "c.txt", "--keep-original"}), " 0  b.txt: success\n");
    EXPECT_EQ(tool.report("errors"), "zqmigrate: 1 file copied\n");
    EXPECT_EQ(tool.folder().contents("b.txt") + tool.folder().contents("c.txt"), "oneone");
}

TEST(ZqmigrateTool, movesAFolderWithItsContents) {
    const MigrateTool tool;
    tool.file("a/sub/deep", "one");
    tool.file("a/.hidden", "two");
    const scene::Digest before = tool.folder().digest("a");
    EXPECT_EQ(tool.done({"--verbose", "--create-parents", "folder", "a", "x/y/b"}),
              " 0  a: success -> x/y/b\n");
    EXPECT_EQ(tool.folder().digest("x/y/b"), before);
    EXPECT_TRUE(tool.folder().digest("a").empty());
}

TEST(ZqmigrateTool, movesTheChosenFilesOfABatch) {
    const MigrateTool tool;
    tool.folder().writeFiles({"a/1.log", "a/2.LOG", "a/3.txt", "a/.4.log", "a/sub/5.log", "a/sub/.6.log"});
    tool.folder().makeFolder("b");
    const Outcome outcome = tool.run({"batch", "--extension", "log", "a", "b"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, " 0  1.log: success\n");
    const Words errors = linesOf(outcome.errors);
    EXPECT_EQ(errors, (Words{"  20  sub/.6.log: the parent folder of the destination path does not exist",
                             "  20  sub/5.log: the parent folder of the destination path does not exist",
                             "zqmigrate: 1 of 3 files moved; left to do: 2",
                             "zqmigrate: 20: --create-parents makes missing folders"}));
    EXPECT_EQ(linesOf(tool.done({"batch", "--extension=log", "--create-parents", "--dot-files", "a", "b"})),
              (Words{" 0  .4.log: success", " 0  sub/.6.log: success", " 0  sub/5.log: success"}));
    EXPECT_EQ(linesOf(tool.done({"batch", "-v", "a", "b"})),
              (Words{" 0  2.LOG: success -> b/2.LOG", " 0  3.txt: success -> b/3.txt"}));
    for (const char* const name : {"1.log", "2.LOG", "3.txt", ".4.log", "sub/5.log", "sub/.6.log"}) {
        EXPECT_EQ(tool.folder().contents("b/" + std::string(name)), "a/" + std::string(name));
    }
}

TEST(ZqmigrateTool, overwritesOrRenamesWhenItMay) {
    const MigrateTool tool;
    tool.folder().writeFiles({"a/sub/n.txt", "b/sub/n.txt", "b/sub/n 1.txt"});
    const Outcome refused = tool.run({"batch", "a", "b"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.output, "");
    EXPECT_TRUE(contains(refused.errors, "  30  sub/n.txt: the destination file already exists\n"));
    EXPECT_TRUE(contains(refused.errors, "zqmigrate: 30: --overwrite ")) << refused.errors;
    EXPECT_EQ(tool.done({"batch", "--rename", "--keep-original", "a", "b"}),
              " 0  sub/n.txt: success -> sub/n 2.txt\n");
    EXPECT_EQ(tool.folder().contents("b/sub/n 2.txt"), "a/sub/n.txt");
    EXPECT_EQ(tool.folder().contents("b/sub/n.txt"), "b/sub/n.txt");
    EXPECT_EQ(tool.done({"batch", "--overwrite", "a", "b"}), " 0  sub/n.txt: success\n");
    EXPECT_EQ(tool.folder().contents("b/sub/n.txt"), "a/sub/n.txt");
    EXPECT_EQ(tool.done({"folder", "--rename", "b", "b/../a"}), " 0  b: success -> b/../a 1.\n");
    EXPECT_EQ(tool.folder().contents("a 1./sub/n.txt"), "a/sub/n.txt");
}

TEST(ZqmigrateTool, expandsTheHomeFolder) {
    const MigrateTool tool;
    const kit::Variable home("HOME", tool.folder().path().c_str());
    tool.file("a/f");
    EXPECT_EQ(tool.done({"-v", "--create-parents", "batch", "~/a", "~/b"}),
              " 0  f: success -> " + (tool / "b/f") + "\n");
    EXPECT_EQ(tool.folder().contents("b/f"), "x");
}

TEST(ZqmigrateTool, continuesAfterFailuresAndListsTwenty) {
    const MigrateTool tool;
    for (int number = 0; number < 1200; ++number) {
        const std::string name = std::to_string(number);
        tool.file("a/" + name);
        if (number % 10 == 0) {
            tool.file("b/" + name, "mine");
        }
    }
    const Outcome outcome = tool.run({"batch", "a", "b"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(std::count(outcome.output.begin(), outcome.output.end(), '\n'), 1080);
    EXPECT_EQ(outcome.errors.find("zqmigrate: 1,080 of 1,200 files moved; left to do: 120\n  30  "), 0U);
    EXPECT_TRUE(contains(outcome.errors, "\n  ... and 100 more; --json lists all\nzqmigrate: 30: "));
    EXPECT_EQ(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 1 + 20 + 1 + 1);
    EXPECT_EQ(tool.folder().digest("a").size(), 1U + 120U);
    EXPECT_EQ(tool.folder().digest("b").size(), 1U + 1200U);
    EXPECT_EQ(tool.folder().contents("b/990"), "mine");
}

TEST(ZqmigrateTool, reportsNoSuccessWhenQuiet) {
    const MigrateTool tool;
    tool.file("a/1");
    tool.file("a/2");
    tool.file("b/2");
    const Outcome trial = tool.run({"-nq", "batch", "a", "b"}); // joined, like "-n -q"
    const Outcome partly = tool.run({"-q", "batch", "a", "b"});
    for (const Outcome& outcome : {trial, partly}) {
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.output, "");
        EXPECT_TRUE(contains(outcome.errors, "  30  2: the destination file already exists\n"));
    }
    EXPECT_EQ(tool.done({"--quiet", "--overwrite", "batch", "a", "b"}), "");
    EXPECT_EQ(tool.report("errors"), "");
}

TEST(ZqmigrateTool, describesInTheUsersLanguage) {
    const MigrateTool tool;
    const kit::Variable language("LANGUAGE", "de");
    const std::string german = "  10  a: der Quellpfad existiert nicht\n";
    EXPECT_TRUE(contains(tool.run({"file", "a", "b"}).errors, german));
}

// What no code can say

TEST(ZqmigrateTool, reportsRelativeLinksThatAreDanglingAfterwards) {
    const MigrateTool tool;
    tool.file("dotfiles/conf");
    tool.file("a/kept", "one");
    tool.folder().link("../dotfiles/conf", "a/broken");
    tool.folder().link("kept", "a/whole");
    tool.folder().link("../nowhere", "a/never");
    tool.folder().link(tool / "dotfiles/conf", "a/absolute");
    EXPECT_EQ(tool.done({"--keep-original", "--create-parents", "folder", "a", "x/b"}), " 0  a: success\n");
    EXPECT_EQ(tool.report("errors"),
              "zqmigrate: 1 folder copied\n"
              "zqmigrate: x/b/broken: this link is dangling now; at its old place it was valid\n");
    ::unlink((tool / "a/never").c_str());
    tool.done({"--create-parents", "batch", "a", "x/y"});
    EXPECT_TRUE(contains(tool.report("errors"), "zqmigrate: x/y/broken: this link is dangling now"));
    EXPECT_FALSE(contains(tool.report("errors"), "x/y/absolute"));
}

TEST(ZqmigrateTool, reportsFoldersThatCannotBeRead) {
    scene::migrateProgram(); // opened before privileges are given up
    kit::expectAsUser([] {
        for (const mode_t mode : {mode_t{0}, mode_t{0600}, mode_t{0444}, mode_t{0300}}) {
            const MigrateTool tool;
            for (const char* const name : {"a/open/file", "a/closed/file", "a/closed/folder/file"}) {
                tool.file(name);
            }
            tool.file("a/.closed/file"); // is not asked for
            ::chmod((tool / "a/.closed").c_str(), 0);
            ::chmod((tool / "a/closed").c_str(), mode);
            const Outcome outcome = tool.run({"--create-parents", "batch", "a", "b"});
            EXPECT_EQ(outcome.status, 1);
            EXPECT_EQ(outcome.output, " 0  open/file: success\n") << mode;
            EXPECT_EQ(outcome.errors,
                      "zqmigrate: closed: this folder cannot be read; its contents were ignored\n"
                      "zqmigrate: 1 file moved\n");
            const Outcome source = tool.run({"batch", "a/closed", "b"});
            EXPECT_EQ(source.status, 1);
            EXPECT_EQ(source.errors, "zqmigrate: a/closed: Permission denied\n");
            ::chmod((tool / "a/closed").c_str(), 0700);
            EXPECT_EQ(tool.folder().digest("a").count("closed/folder/file"), 1U);
        }
    });
}

// The library ignores such a link when what it looked at before was a folder, so each is in a folder of its
// own.
TEST(ZqmigrateTool, reportsDanglingLinks) {
    const MigrateTool tool;
    tool.folder().makeFolder("a/1");
    tool.folder().makeFolder("a/2");
    tool.folder().link("/nowhere", "a/1/l");
    tool.folder().link("l", "a/2/l");
    for (const char* const option : {"--keep-original", "--dry-run"}) {
        const Outcome outcome = tool.run({option, "--create-parents", "batch", "a", "b"});
        EXPECT_EQ(outcome.status, 1);
        EXPECT_TRUE(contains(outcome.errors, "left to do: 2\n")) << outcome.errors;
        for (const char* const line : {"  10  1/l: the source path", "  10  2/l: the source path"}) {
            EXPECT_TRUE(contains(outcome.errors, line)) << outcome.errors;
        }
    }
    EXPECT_EQ(tool.folder().digest("a").size(), 5U);
}

// Dry runs

TEST(ZqmigrateTool, reportsTheCodesOfTheRunAndChangesNothing) {
    const MigrateTool tool;
    const auto fill = [](const MigrateTool& filled) {
        filled.folder().writeFiles({"a/new.txt", "a/sub/taken.txt", "b/sub/taken.txt", "d/inside"});
        filled.folder().link("nosuch", "b/dangling");
    };
    fill(tool);
    struct {
        Words words;
        int status;
    } const rows[] = {
        {{"batch", "a", "b"}, 1},
        {{"--rename", "-v", "batch", "a", "b"}, 0},
        {{"--overwrite", "batch", "a", "b"}, 0},
        {{"--create-parents", "file", "a/new.txt", "c/d"}, 0},
        {{"file", "a/new.txt", "c/d"}, 1},
        {{"file", "a/new.txt", "b/sub/taken.txt"}, 1},
        {{"folder", "a", "b"}, 1},
        {{"folder", "a", "a/sub/b"}, 1},
        {{"folder", "d", "e"}, 0},
        {{"--overwrite", "file", "a/new.txt", "b/dangling"}, 1},
        {{"--rename", "folder", "a", "b/dangling"}, 1},
    };
    for (const auto& row : rows) {
        const MigrateTool real;
        fill(real);
        const scene::Digest before = tool.folder().digest("", scene::Detail::times);
        Words trial = row.words;
        trial.insert(trial.begin(), "-n");
        const Outcome planned = tool.run(trial);
        const Outcome done = real.run(row.words);
        EXPECT_EQ(planned.status, row.status) << planned.errors;
        EXPECT_EQ(done.status, row.status) << done.errors;
        EXPECT_EQ(linesOf(planned.output), linesOf(done.output));
        EXPECT_EQ(failuresIn(planned.errors), failuresIn(done.errors));
        EXPECT_TRUE(contains(planned.errors, "zqmigrate: this was a dry run: nothing was changed\n"));
        EXPECT_EQ(tool.folder().digest("", scene::Detail::times), before);
    }
}

TEST(ZqmigrateTool, notesWhatEarlierFilesChange) {
    const MigrateTool tool;
    const auto notesOf = [&](const char* file, const Words& words) {
        const Words lines = linesInOrder(tool.run(words).output);
        const auto line = std::find(lines.begin(), lines.end(), file);
        const bool hasNote = line != lines.end() && line + 1 != lines.end() && contains(line[1], "note: ");
        return hasNote ? line[1] : line == lines.end() ? "no such file" : "none";
    };
    tool.file("a/f");
    tool.file("a/f 1");
    tool.file("b/f");
    EXPECT_EQ(notesOf(" 0  f 1: success", {"-n", "--rename", "batch", "a", "b"}), "none");
    // Two folders of the source become one at the destination.
    tool.file("c/same");
    tool.file("c/sub/same");
    tool.folder().makeFolder("d");
    tool.folder().link(".", "d/sub");
    const Outcome same = tool.run({"-n", "batch", "c", "d"});
    EXPECT_TRUE(contains(same.output, "\n      note: an earlier file of this run takes its destination\n"));
    EXPECT_TRUE(contains(same.errors, "zqmigrate: files with a note: 1; "));
    EXPECT_EQ(same.status, 0);
    // The folder that one file needs is where another one goes.
    tool.file("e/1/x/f");
    tool.file("e/2/x");
    tool.folder().makeFolder("g/1");
    tool.folder().link("1", "g/2");
    EXPECT_TRUE(contains(tool.run({"-n", "--create-parents", "batch", "e", "g"}).output, "note: an earlier"));
    // "h/1/f" is to go where the original "h/f" is.
    tool.file("h/f");
    tool.file("h/1/f");
    tool.folder().makeFolder("i");
    tool.folder().link("../h", "i/1");
    const Outcome original = tool.run({"-n", "batch", "h", "i"});
    EXPECT_TRUE(contains(original.errors, "      note: its destination is an original of this run\n"));
    EXPECT_FALSE(contains(tool.run({"-n", "--keep-original", "batch", "h", "i"}).errors, "note: "));
    // A link is dangling when what it refers to has moved before.
    tool.file("j/f");
    tool.folder().link("f", "j/l");
    tool.folder().makeFolder("k");
    EXPECT_EQ(notesOf(" 0  l: success", {"-n", "batch", "j", "k"}),
              "      note: it is a link to an original of this run");
    EXPECT_TRUE(contains(tool.run({"-n", "--create-parents", "batch", "j", "j/k"}).errors,
                         "the destination is in the source folder"));
}

TEST(ZqmigrateTool, warnsOfTooLittleRoom) {
    const MigrateTool tool;
    tool.file("large", std::string(200000, 'x'));
    tool.file("small");
    EXPECT_EQ(::truncate((tool / "small").c_str(), 500000), 0); // a hole takes no room
    tool.folder().makeFolder("there");
    kit::withOwnMounts([&] {
        if (::mount("none", (tool / "there").c_str(), "tmpfs", 0, "size=128k") != 0) {
            return false;
        }
        tool.done({"-n", "--create-parents", "file", "large", "there/x/y"});
        EXPECT_TRUE(contains(tool.report("errors"), "too little space at the destination"));
        tool.done({"-n", "file", "small", "there/y"});
        EXPECT_FALSE(contains(tool.report("errors"), "too little space"));
        return true;
    });
}

// Batches without a file

TEST(ZqmigrateTool, reportsAMissingSourceFolder) {
    const MigrateTool tool;
    tool.file("file");
    tool.folder().makeFolder("b");
    struct {
        const char* from;
        const char* complaint;
    } const rows[] = {
        {"typo", "zqmigrate: typo: the folder with the source files does not exist\n"},
        {"file", "zqmigrate: file: the source path points to a file instead of a folder\n"},
        {"file/x", "zqmigrate: file/x: the folder with the source files does not exist\n"},
    };
    for (const auto& row : rows) {
        for (const char* const option : {"--verbose", "--quiet", "--dry-run"}) {
            const Outcome outcome = tool.run({option, "batch", row.from, "b"});
            EXPECT_EQ(outcome.status, 1) << row.from;
            EXPECT_EQ(outcome.output, "");
            EXPECT_EQ(outcome.errors.substr(0, std::strlen(row.complaint)), row.complaint);
        }
    }
}

TEST(ZqmigrateTool, reportsThatThereIsNothingToDo) {
    const MigrateTool tool;
    tool.file("a/file");
    tool.folder().makeFolder("empty");
    EXPECT_EQ(tool.done({"batch", "empty", "b"}), "");
    EXPECT_EQ(tool.report("errors"), "zqmigrate: nothing to do: there are no files in empty\n");
    EXPECT_EQ(tool.done({"batch", "--extension", "log", "a", "b"}), "");
    EXPECT_EQ(tool.report("errors"),
              "zqmigrate: nothing to do: there are no files with that extension in a\n");
}

// Outputs that fail

TEST(ZqmigrateTool, continuesWithoutAReader) {
    const MigrateTool tool;
    tool.files("a", 1000);
    tool.folder().makeFolder("b");
    int ends[2];
    ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    ::close(ends[0]);
    const int errors = tool.opened("errors");
    const pid_t child = tool.start({"batch", "a", "b"}, ends[1], errors);
    ::close(ends[1]);
    ::close(errors);
    EXPECT_EQ(kit::endOf(child), 1);
    EXPECT_EQ(tool.report("errors"),
              "zqmigrate: 1,000 files moved\n"
              "zqmigrate: standard output cannot be written; the work continued without it\n");
    EXPECT_EQ(tool.folder().digest("b").size(), 1U + 1000U);
    EXPECT_EQ(tool.folder().digest("a").size(), 1U);
}

TEST(ZqmigrateTool, reportsThatStandardOutputIsFull) {
    const MigrateTool tool;
    tool.file("a");
    const int full = ::open("/dev/full", O_WRONLY);
    ASSERT_GE(full, 0);
    const int errors = tool.opened("errors");
    EXPECT_EQ(kit::endOf(tool.start({"file", "a", "b"}, full, errors)), 1);
    EXPECT_EQ(kit::endOf(tool.start({"--help"}, full, errors)), 1);
    EXPECT_EQ(tool.folder().contents("b"), "x");
    EXPECT_TRUE(contains(tool.report("errors"), "standard output cannot be written"));
    ::close(full);
    ::close(errors);
}

} // namespace
