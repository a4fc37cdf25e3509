// SPDX-License-Identifier: MIT
// The tool `zqmigrate` as its user meets it: the real program, in a folder of the test's own.
#include <algorithm>
#include <initializer_list>
#include <string>

#include <gtest/gtest.h>

#include "tests/tools/MigrateScene.h"

using scene::contentsOf;
using scene::holds;
using scene::MigrateTool;
using scene::Outcome;
using scene::Words;

namespace {

Words linesOf(const std::string& text) {
    Words lines;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = text.find('\n', start);
        lines.push_back(text.substr(start, end - start));
        start = end == std::string::npos ? text.size() : end + 1;
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}

// The command line

TEST(ZqmigrateTool, tellsTheUserOfAWrongCommandLine) {
    const MigrateTool tool;
    tool.file("a");
    const Words rows[] = {
        {},
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
        {"file", "--", "--rename", "a", "b"},
    };
    for (const Words& row : rows) {
        const Outcome outcome = tool.run(row);
        const std::string shown = ::testing::PrintToString(row);
        EXPECT_EQ(outcome.status, 2) << shown;
        EXPECT_EQ(outcome.output, "") << shown;
        EXPECT_EQ(outcome.errors.substr(0, 11), "zqmigrate: ") << shown;
        EXPECT_EQ(outcome.errors.find("(try --help)\n"), outcome.errors.size() - 13) << outcome.errors;
    }
    EXPECT_EQ(tool.folder().digest().size(), 2U) << "nothing was to be done";
}

TEST(ZqmigrateTool, helpsAndTellsItsVersion) {
    const MigrateTool tool;
    const std::string help = tool.done({"--help"});
    EXPECT_EQ(help.find("Usage: zqmigrate"), 0U);
    for (const char* const option : {"--keep-original", "--create-parents", "--overwrite", "--rename",
                                     "--extension", "--dot-files", "--dry-run", "--json", "--quiet"}) {
        EXPECT_TRUE(holds(help, option)) << option;
    }
    EXPECT_EQ(tool.done({"-h"}), help);
    EXPECT_EQ(tool.done({"file", "--help"}), help);
    EXPECT_EQ(tool.done({"--version"}).find("zqmigrate "), 0U);
}

TEST(ZqmigrateTool, takesWhatFollowsTwoHyphensForPaths) {
    const MigrateTool tool;
    tool.file("--json", "mine");
    EXPECT_EQ(tool.done({"--", "file", "--json", "-n"}), " 0  --json: success\n");
    EXPECT_EQ(contentsOf(tool / "-n"), "mine");
    EXPECT_EQ(tool.done({"file", "--", "-n", "--help"}), " 0  -n: success\n");
    EXPECT_EQ(contentsOf(tool / "--help"), "mine");
}

// What is done

TEST(ZqmigrateTool, movesAFileAndCopiesAnother) {
    const MigrateTool tool;
    tool.file("a.txt", "one");
    EXPECT_EQ(tool.done({"file", "a.txt", "b.txt"}), " 0  a.txt: success\n");
    EXPECT_EQ(tool.report("errors"), "zqmigrate: 1 file moved\n");
    EXPECT_EQ(::access((tool / "a.txt").c_str(), F_OK), -1);
    EXPECT_EQ(contentsOf(tool / "b.txt"), "one");
    EXPECT_EQ(tool.done({"file", "b.txt", "c.txt", "--keep-original"}), " 0  b.txt: success\n");
    EXPECT_EQ(tool.report("errors"), "zqmigrate: 1 file copied\n");
    EXPECT_EQ(contentsOf(tool / "b.txt") + contentsOf(tool / "c.txt"), "oneone");
}

TEST(ZqmigrateTool, movesAFolderWithAllThatItHolds) {
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
    for (const char* const name :
         {"a/1.log", "a/2.LOG", "a/3.txt", "a/.4.log", "a/sub/5.log", "a/sub/.6.log"}) {
        tool.file(name, name);
    }
    tool.folder().folder("b");
    const Outcome outcome = tool.run({"batch", "--extension", "log", "a", "b"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(linesOf(outcome.output),
              (Words{" 0  1.log: success",
                     "20  sub/.6.log: the parent folder of the destination path does not exist",
                     "20  sub/5.log: the parent folder of the destination path does not exist"}));
    EXPECT_TRUE(holds(outcome.errors, "zqmigrate: 1 of 3 files moved; left to do: 2\n"));
    EXPECT_TRUE(
        holds(outcome.errors, "  20  sub/5.log: the parent folder of the destination path does not exist\n"));
    EXPECT_TRUE(holds(outcome.errors, "zqmigrate: 20: --create-parents "));
    EXPECT_EQ(linesOf(tool.done({"batch", "--extension=log", "--create-parents", "--dot-files", "a", "b"})),
              (Words{" 0  .4.log: success", " 0  sub/.6.log: success", " 0  sub/5.log: success"}));
    EXPECT_EQ(linesOf(tool.done({"batch", "-v", "a", "b"})),
              (Words{" 0  2.LOG: success -> b/2.LOG", " 0  3.txt: success -> b/3.txt"}));
    for (const char* const name : {"1.log", "2.LOG", "3.txt", ".4.log", "sub/5.log", "sub/.6.log"}) {
        EXPECT_EQ(contentsOf(tool / ("b/" + std::string(name))), "a/" + std::string(name));
    }
}

TEST(ZqmigrateTool, overwritesOrRenamesWhenItMay) {
    const MigrateTool tool;
    for (const char* const name : {"a/sub/n.txt", "b/sub/n.txt", "b/sub/n 1.txt"}) {
        tool.file(name, name);
    }
    const Outcome refused = tool.run({"batch", "a", "b"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.output, "30  sub/n.txt: the destination file already exists\n");
    EXPECT_TRUE(holds(refused.errors, "--overwrite")) << refused.errors;
    EXPECT_EQ(tool.done({"batch", "--rename", "--keep-original", "a", "b"}),
              " 0  sub/n.txt: success -> sub/n 2.txt\n");
    EXPECT_EQ(contentsOf(tool / "b/sub/n 2.txt"), "a/sub/n.txt");
    EXPECT_EQ(contentsOf(tool / "b/sub/n.txt"), "b/sub/n.txt");
    EXPECT_EQ(tool.done({"batch", "--overwrite", "a", "b"}), " 0  sub/n.txt: success\n");
    EXPECT_EQ(contentsOf(tool / "b/sub/n.txt"), "a/sub/n.txt");
    EXPECT_EQ(tool.done({"folder", "--rename", "b", "b/../a"}), " 0  b: success -> b/../a 1.\n");
    EXPECT_EQ(contentsOf(tool / "a 1./sub/n.txt"), "a/sub/n.txt");
}

TEST(ZqmigrateTool, expandsTheHomeFolder) {
    const MigrateTool tool;
    const scene::Variable home("HOME", tool.folder().path().c_str());
    tool.file("a/f");
    EXPECT_EQ(tool.done({"-v", "--create-parents", "batch", "~/a", "~/b"}),
              " 0  f: success -> " + (tool / "b/f") + "\n");
    EXPECT_EQ(contentsOf(tool / "b/f"), "x");
}

TEST(ZqmigrateTool, goesOnAfterFailures) {
    const MigrateTool tool;
    for (int number = 0; number < 1000; ++number) {
        const std::string name = std::to_string(number);
        tool.file("a/" + name);
        if (number % 10 == 0) {
            tool.file("b/" + name, "mine");
        }
    }
    const Outcome outcome = tool.run({"batch", "a", "b"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(std::count(outcome.output.begin(), outcome.output.end(), '\n'), 1000);
    EXPECT_TRUE(holds(outcome.errors, "zqmigrate: 900 of 1000 files moved; left to do: 100\n"));
    // All are listed where no terminal would scroll.
    EXPECT_EQ(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 1 + 100 + 1);
    EXPECT_EQ(tool.folder().digest("a").size(), 1U + 100U);
    EXPECT_EQ(tool.folder().digest("b").size(), 1U + 1000U);
    EXPECT_EQ(contentsOf(tool / "b/990"), "mine");
}

TEST(ZqmigrateTool, saysNothingOfSuccessWhenQuiet) {
    const MigrateTool tool;
    tool.file("a/1");
    tool.file("a/2");
    tool.file("b/2");
    const Outcome partly = tool.run({"-q", "batch", "a", "b"});
    EXPECT_EQ(partly.status, 1);
    EXPECT_EQ(partly.output, "");
    EXPECT_TRUE(holds(partly.errors, "  30  2: the destination file already exists\n"));
    EXPECT_EQ(tool.done({"--quiet", "--overwrite", "batch", "a", "b"}), "");
    EXPECT_EQ(tool.report("errors"), "");
}

TEST(ZqmigrateTool, describesInTheUsersLanguage) {
    const MigrateTool tool;
    EXPECT_EQ(tool.run({"file", "a", "b"}, "de").output, "10  a: der Quellpfad existiert nicht\n");
    EXPECT_EQ(tool.run({"file", "a", "b"}, "en").output, "10  a: the source path does not exist\n");
}

// Batches without a file

TEST(ZqmigrateTool, tellsOfASourceFolderThatIsNone) {
    const MigrateTool tool;
    tool.file("file");
    tool.folder().folder("b");
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

TEST(ZqmigrateTool, saysThatThereIsNothingToDo) {
    const MigrateTool tool;
    tool.file("a/file");
    tool.folder().folder("empty");
    EXPECT_EQ(tool.done({"batch", "empty", "b"}), "");
    EXPECT_EQ(tool.report("errors"), "zqmigrate: nothing to do: there are no files in empty\n");
    EXPECT_EQ(tool.done({"batch", "--extension", "log", "a", "b"}), "");
    EXPECT_EQ(tool.report("errors"),
              "zqmigrate: nothing to do: there are no files with that extension in a\n");
}

TEST(ZqmigrateTool, tellsOfFoldersThatCannotBeRead) {
    scene::migrateProgram();
    EXPECT_TRUE(scene::checkedWithoutPrivileges([] {
        const MigrateTool tool;
        tool.file("a/open/file");
        tool.file("a/closed/file");
        tool.file("a/.closed/file");
        ::chmod((tool / "a/closed").c_str(), 0);
        ::chmod((tool / "a/.closed").c_str(), 0);
        const Outcome outcome = tool.run({"--create-parents", "batch", "a", "b"});
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.output, " 0  open/file: success\n");
        EXPECT_EQ(outcome.errors,
                  "zqmigrate: closed: this folder cannot be read, what it holds was passed over\n"
                  "zqmigrate: 1 file moved\n");
        const Outcome source = tool.run({"batch", "a/closed", "b"});
        EXPECT_EQ(source.status, 1);
        EXPECT_EQ(source.errors, "zqmigrate: a/closed: Permission denied\n");
    }));
}

TEST(ZqmigrateTool, tellsOfFoldersThatMayNotBeSearched) {
    scene::migrateProgram();
    EXPECT_TRUE(scene::checkedWithoutPrivileges([] {
        for (const mode_t mode : std::initializer_list<mode_t>{0600U, 0444U, 0300U}) {
            const MigrateTool tool;
            tool.file("a/open/file");
            tool.file("a/closed/file");
            tool.file("a/closed/folder/file");
            ::chmod((tool / "a/closed").c_str(), mode);
            const Outcome outcome = tool.run({"--create-parents", "batch", "a", "b"});
            EXPECT_EQ(outcome.status, 1);
            EXPECT_EQ(outcome.output, " 0  open/file: success\n") << mode;
            EXPECT_EQ(outcome.errors,
                      "zqmigrate: closed: this folder cannot be read, what it holds was passed over\n"
                      "zqmigrate: 1 file moved\n");
            ::chmod((tool / "a/closed").c_str(), 0700);
            EXPECT_EQ(tool.folder().digest("a").count("closed/folder/file"), 1U);
        }
    }));
}

// The library passes over such a link when what it looked at before was a folder, so each stands in a folder
// of its own.
TEST(ZqmigrateTool, tellsOfLinksThatLeadNowhere) {
    const MigrateTool tool;
    tool.folder().folder("a/1");
    tool.folder().folder("a/2");
    tool.folder().link("/nowhere", "a/1/l");
    tool.folder().link("l", "a/2/l");
    for (const char* const option : {"--keep-original", "--dry-run"}) {
        const Outcome outcome = tool.run({option, "--create-parents", "batch", "a", "b"});
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(linesOf(outcome.output), (Words{"10  1/l: the source path does not exist",
                                                  "10  2/l: the source path does not exist"}));
        EXPECT_TRUE(holds(outcome.errors, "left to do: 2\n")) << outcome.errors;
    }
    EXPECT_EQ(tool.folder().digest("a").size(), 5U);
}

// Outputs that fail

TEST(ZqmigrateTool, goesOnWithoutAReader) {
    const MigrateTool tool;
    for (int number = 0; number < 1000; ++number) {
        tool.file("a/" + std::to_string(number));
    }
    tool.folder().folder("b");
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    ::close(ends[0]);
    const int errors = tool.opened("errors");
    const pid_t child = tool.start({"batch", "a", "b"}, ends[1], errors);
    ::close(ends[1]);
    ::close(errors);
    EXPECT_EQ(scene::statusOf(child), 1);
    EXPECT_EQ(tool.report("errors"),
              "zqmigrate: 1000 files moved\n"
              "zqmigrate: standard output cannot be written; the work went on without it\n");
    EXPECT_EQ(tool.folder().digest("b").size(), 1U + 1000U);
    EXPECT_EQ(tool.folder().digest("a").size(), 1U);
}

TEST(ZqmigrateTool, tellsThatStandardOutputIsFull) {
    const MigrateTool tool;
    tool.file("a");
    const int full = ::open("/dev/full", O_WRONLY);
    ASSERT_GE(full, 0);
    const int errors = tool.opened("errors");
    EXPECT_EQ(scene::statusOf(tool.start({"file", "a", "b"}, full, errors)), 1);
    EXPECT_EQ(scene::statusOf(tool.start({"--help"}, full, errors)), 1);
    EXPECT_EQ(contentsOf(tool / "b"), "x");
    EXPECT_TRUE(holds(tool.report("errors"), "standard output cannot be written"));
    ::close(full);
    ::close(errors);
}

} // namespace
