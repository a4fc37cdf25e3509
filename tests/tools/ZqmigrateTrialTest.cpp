// SPDX-License-Identifier: MIT
// `zqmigrate --dry-run` changes nothing, and tells what the real run then does.
#include <algorithm>
#include <string>

#include <gtest/gtest.h>

#include "tests/tools/MigrateScene.h"

using scene::holds;
using scene::MigrateTool;
using scene::Outcome;
using scene::Words;

namespace {

struct Row {
    const char* name;
    void (*prepare)(const MigrateTool& tool);
    Words words;
    /// The codes of an ordinary user, in the order of the items' paths; empty where the order in which a
    /// folder tells its files decides them.
    std::vector<int> codes;
};

void makeFiles(const MigrateTool& tool, const Words& names) {
    for (const std::string& name : names) {
        tool.file(name, name);
    }
}

void setMode(const MigrateTool& tool, const char* name, mode_t mode) {
    EXPECT_EQ(::chmod((tool / name).c_str(), mode), 0) << name;
}

void nothing(const MigrateTool&) {}
void oneFile(const MigrateTool& tool) { makeFiles(tool, {"a"}); }
void twoFiles(const MigrateTool& tool) { makeFiles(tool, {"a.txt", "b.txt"}); }
void fileAndFolder(const MigrateTool& tool) { makeFiles(tool, {"a", "d/f"}); }
void twoFolders(const MigrateTool& tool) { makeFiles(tool, {"a/f", "b/g/h"}); }

const Row singleRows[] = {
    {"a file", oneFile, {"file", "a", "b"}, {0}},
    {"a copy of a file", oneFile, {"--keep-original", "file", "a", "b"}, {0}},
    {"no source", nothing, {"file", "a", "b"}, {10}},
    {"no source folder", nothing, {"folder", "a", "b"}, {10}},
    {"a link to nothing", [](const MigrateTool& t) { t.folder().link("no", "a"); }, {"file", "a", "b"}, {10}},
    {"a folder for a file", fileAndFolder, {"file", "d", "b"}, {12}},
    {"a file for a folder", fileAndFolder, {"folder", "a", "b"}, {13}},
    {"a link to a folder",
     [](const MigrateTool& t) {
         makeFiles(t, {"d/f"});
         t.folder().link("d", "l");
     },
     {"folder", "l", "b"},
     {0}},
    {"a link to a file",
     [](const MigrateTool& t) {
         makeFiles(t, {"f"});
         t.folder().link("f", "l");
     },
     {"file", "l", "b"},
     {0}},
    {"a pipe", [](const MigrateTool& t) { t.folder().pipe("p"); }, {"file", "p", "b"}, {0}},
    {"an unreadable file",
     [](const MigrateTool& t) {
         makeFiles(t, {"a"});
         setMode(t, "a", 0);
     },
     {"file", "a", "b"},
     {14}},
    {"no parent", oneFile, {"file", "a", "x/b"}, {20}},
    {"made parents", oneFile, {"--create-parents", "file", "a", "x/y/b"}, {0}},
    {"a way back out of made parents", oneFile, {"--create-parents", "file", "a", "x/y/../../x/b"}, {0}},
    {"a file as parent", twoFiles, {"--create-parents", "file", "a.txt", "b.txt/c"}, {21}},
    {"a file above the parent", twoFiles, {"--create-parents", "file", "a.txt", "b.txt/c/d"}, {22}},
    {"a link to nothing above",
     [](const MigrateTool& t) {
         makeFiles(t, {"a"});
         t.folder().link("no", "l");
     },
     {"--create-parents", "file", "a", "l/x/b"},
     {22}},
    {"links in a circle",
     [](const MigrateTool& t) {
         makeFiles(t, {"a"});
         t.folder().link("l", "l");
     },
     {"--create-parents", "file", "a", "l/b"},
     {22}},
    {"a parent that may not be made",
     [](const MigrateTool& t) {
         makeFiles(t, {"a", "d/f"});
         setMode(t, "d", 0555);
     },
     {"--create-parents", "file", "a", "d/x/b"},
     {22}},
    {"a parent with too long a name",
     oneFile,
     {"--create-parents", "file", "a", "x/" + std::string(300, 'n') + "/b"},
     {22}},
    {"a copy with too long a name",
     oneFile,
     {"--create-parents", "file", "a", "x/" + std::string(300, 'n')},
     {35}},
    {"a taken name", twoFiles, {"file", "a.txt", "b.txt"}, {30}},
    {"a name to be replaced", twoFiles, {"--overwrite", "file", "a.txt", "b.txt"}, {0}},
    {"a name to be changed", twoFiles, {"--rename", "file", "a.txt", "b.txt"}, {0}},
    {"a folder in the way", fileAndFolder, {"file", "a", "d"}, {30}},
    {"a folder not to be replaced", fileAndFolder, {"--overwrite", "file", "a", "d"}, {32}},
    {"a folder not to be evaded", fileAndFolder, {"--rename", "file", "a", "d"}, {32}},
    {"a link to nothing in the way",
     [](const MigrateTool& t) {
         makeFiles(t, {"a"});
         t.folder().link("no", "b");
     },
     {"--overwrite", "file", "a", "b"},
     {35}},
    {"a link in the way",
     [](const MigrateTool& t) {
         makeFiles(t, {"a", "c"});
         t.folder().link("c", "b");
     },
     {"--overwrite", "file", "a", "b"},
     {0}},
    {"a file onto itself", oneFile, {"--overwrite", "file", "a", "./a"}, {34}},
    {"a file beside itself", twoFiles, {"--rename", "file", "a.txt", "a.txt"}, {0}},
    {"another name of the file",
     [](const MigrateTool& t) {
         makeFiles(t, {"a"});
         EXPECT_EQ(::link((t / "a").c_str(), (t / "b").c_str()), 0);
     },
     {"--overwrite", "file", "a", "b"},
     {0}},
    {"a file that may not be removed",
     [](const MigrateTool& t) {
         makeFiles(t, {"d/a"});
         setMode(t, "d", 0555);
     },
     {"file", "d/a", "b"},
     {15}},
    {"a file that may not be replaced",
     [](const MigrateTool& t) {
         makeFiles(t, {"a", "d/b"});
         setMode(t, "d", 0555);
     },
     {"--overwrite", "file", "a", "d/b"},
     {34}},
    {"a folder that takes no file",
     [](const MigrateTool& t) {
         makeFiles(t, {"a", "d/b"});
         setMode(t, "d", 0555);
     },
     {"file", "a", "d/c"},
     {35}},
    {"a folder that cannot be searched",
     [](const MigrateTool& t) {
         makeFiles(t, {"d/a"});
         setMode(t, "d", 0666);
     },
     {"file", "d/a", "b"},
     {10}},
    {"a way out of a folder that cannot be searched",
     [](const MigrateTool& t) {
         makeFiles(t, {"a", "d/f"});
         setMode(t, "d", 0666);
     },
     {"file", "d/../a", "b"},
     {10}},
    {"a way to a copy through a folder that cannot be searched",
     [](const MigrateTool& t) {
         makeFiles(t, {"a", "d/f"});
         setMode(t, "d", 0666);
     },
     {"file", "a", "d/../b"},
     {20}},
    {"a folder that cannot be searched, by its own name in it",
     [](const MigrateTool& t) {
         t.folder().folder("d");
         setMode(t, "d", 0666);
     },
     {"--keep-original", "folder", "d/.", "b"},
     {10}},
    {"an empty folder that cannot be searched, with a slash at its end",
     [](const MigrateTool& t) {
         t.folder().folder("d");
         setMode(t, "d", 0400);
     },
     {"folder", "d/", "b"},
     {0}},
    {"an empty folder that can be read only, in another",
     [](const MigrateTool& t) {
         t.folder().folder("a/s");
         setMode(t, "a/s", 0400);
     },
     {"folder", "a", "b"},
     {0}},
    {"a folder with a file that cannot be searched",
     [](const MigrateTool& t) {
         makeFiles(t, {"a/s/f"});
         setMode(t, "a/s", 0600);
     },
     {"folder", "a", "b"},
     {37}},
    {"an empty folder that can be read only, to be replaced",
     [](const MigrateTool& t) {
         makeFiles(t, {"a/f"});
         t.folder().folder("b/s");
         setMode(t, "b/s", 0400);
     },
     {"--overwrite", "folder", "a", "b"},
     {0}},
    {"a folder with a file that cannot be searched, to be replaced",
     [](const MigrateTool& t) {
         makeFiles(t, {"a/f", "b/s/f"});
         setMode(t, "b/s", 0600);
     },
     {"--overwrite", "folder", "a", "b"},
     {36}},
    {"a name with a slash at its end", oneFile, {"file", "a", "b/"}, {0}},
    {"a folder", twoFolders, {"folder", "a", "c"}, {0}},
    {"a folder with parents", twoFolders, {"--create-parents", "folder", "a", "x/y/c"}, {0}},
    {"a taken folder", twoFolders, {"folder", "a", "b"}, {31}},
    {"a folder to be replaced", twoFolders, {"--overwrite", "folder", "a", "b"}, {0}},
    {"a folder to be named anew", twoFolders, {"--rename", "folder", "a", "b"}, {0}},
    {"a file in the way of a folder", fileAndFolder, {"--overwrite", "folder", "d", "a"}, {33}},
    {"a folder into itself", twoFolders, {"folder", "b", "b/g/c"}, {37}},
    {"a folder into a new one in itself", twoFolders, {"--create-parents", "folder", "b", "b/x/c"}, {37}},
    {"a folder into itself by a detour", twoFolders, {"--create-parents", "folder", "b", "x/../b/y/c"}, {37}},
    {"a folder onto one around it", twoFolders, {"--overwrite", "folder", "b/g", "b"}, {36}},
    {"a folder onto itself", twoFolders, {"--overwrite", "folder", "b", "b"}, {36}},
    {"a folder with an unreadable file",
     [](const MigrateTool& t) {
         makeFiles(t, {"a/s/f"});
         setMode(t, "a/s/f", 0);
     },
     {"folder", "a", "b"},
     {37}},
    {"a folder with an unreadable folder",
     [](const MigrateTool& t) {
         makeFiles(t, {"a/s/f"});
         setMode(t, "a/s", 0);
     },
     {"folder", "a", "b"},
     {37}},
    {"a folder with a sealed folder",
     [](const MigrateTool& t) {
         makeFiles(t, {"a/s/f"});
         setMode(t, "a/s", 0555);
     },
     {"folder", "a", "b"},
     {15}},
    {"a folder with an empty sealed folder",
     [](const MigrateTool& t) {
         t.folder().folder("a/s");
         setMode(t, "a/s", 0555);
     },
     {"folder", "a", "b"},
     {0}},
    {"a sealed folder to be replaced",
     [](const MigrateTool& t) {
         makeFiles(t, {"a/f", "b/s/f"});
         setMode(t, "b/s", 0555);
     },
     {"--overwrite", "folder", "a", "b"},
     {36}},
    {"a folder with links and pipes",
     [](const MigrateTool& t) {
         t.folder().folder("a/s");
         t.folder().link("no", "a/l");
         t.folder().pipe("a/s/p");
     },
     {"folder", "a", "b"},
     {0}},
    {"the current folder", oneFile, {"--keep-original", "folder", ".", "../zq-trial-of-nothing/x"}, {20}},
    {"the current folder into itself", oneFile, {"folder", ".", "b"}, {37}},
};

// In batches, what earlier files made, took or left decides about later ones.
const Row batchRows[] = {
    {"taken, free and too deep",
     [](const MigrateTool& t) {
         makeFiles(t, {"a/1", "a/2", "a/s/3", "b/2"});
     },
     {"batch", "a", "b"},
     {0, 30, 20}},
    {"parents made by others",
     [](const MigrateTool& t) {
         makeFiles(t, {"a/s/1", "a/s/2", "a/s/t/3"});
     },
     {"--create-parents", "batch", "a", "b"},
     {0, 0, 0}},
    {"names that meet",
     [](const MigrateTool& t) {
         makeFiles(t, {"a/n.txt", "a/n 1.txt", "a/n 2.txt", "b/n.txt", "b/n 1.txt"});
     },
     {"--rename", "batch", "a", "b"},
     {0, 0, 0}},
    {"names that meet in place",
     [](const MigrateTool& t) {
         makeFiles(t, {"a/n.txt", "a/n 1.txt", "a/n 2.txt", "a/s/n.txt"});
     },
     {"--rename", "batch", "a", "a"},
     {0, 0, 0, 0}},
    {"in place and onto themselves",
     [](const MigrateTool& t) {
         makeFiles(t, {"a/1", "a/2"});
     },
     {"--overwrite", "batch", "a", "a"},
     {34, 34}},
    {"folders that are one",
     [](const MigrateTool& t) {
         makeFiles(t, {"a/s/1", "a/t/1", "b/t/0"});
         t.folder().link("t", "b/s");
     },
     {"--rename", "batch", "a", "b"},
     {0, 0}},
    {"folders that are one, and one file is taken",
     [](const MigrateTool& t) {
         makeFiles(t, {"a/s/1", "a/t/1", "b/t/0"});
         t.folder().link("t", "b/s");
     },
     {"batch", "a", "b"},
     {}},
    {"links to files of the same batch",
     [](const MigrateTool& t) {
         makeFiles(t, {"a/f"});
         t.folder().link("f", "a/l");
         t.folder().link("f", "a/k");
     },
     {"batch", "a", "a/../b", "--create-parents"},
     {}},
    {"links that lead to copies",
     [](const MigrateTool& t) {
         makeFiles(t, {"a/f", "b/g"});
         t.folder().link("../b/f", "a/l");
         t.folder().link("f", "b/l");
     },
     {"batch", "a", "b"},
     {}},
    {"a sealed folder below",
     [](const MigrateTool& t) {
         makeFiles(t, {"a/1", "a/s/2", "b/x"});
         setMode(t, "a/s", 0555);
     },
     {"--create-parents", "batch", "a", "b"},
     {0, 15}},
    {"files of one extension",
     [](const MigrateTool& t) {
         makeFiles(t, {"a/1.log", "a/2.txt", "a/.3.log"});
     },
     {"--create-parents", "--extension", "log", "--dot-files", "batch", "a", "b"},
     {0, 0}},
    {"a file where a folder must be",
     [](const MigrateTool& t) {
         makeFiles(t, {"a/s/1", "a/t", "b/s"});
     },
     {"--create-parents", "batch", "a", "b"},
     {21, 0}},
};

/// The codes that an output tells, in the order of the paths.
std::vector<int> codesIn(const std::string& output) {
    std::map<std::string, int> byPath;
    for (std::size_t start = 0; start < output.size(); start = output.find('\n', start) + 1) {
        const std::string line = output.substr(start, output.find('\n', start) - start);
        byPath[line.substr(4)] = std::stoi(line.substr(0, 2));
    }
    std::vector<int> codes;
    for (const auto& [path, code] : byPath) {
        codes.push_back(code);
    }
    return codes;
}

/// So that all that a digest tells can be seen, and all be removed in the end.
void open(const MigrateTool& tool) {
    for (const char* const name : {"a", "d", "a/s", "b", "b/s"}) {
        struct stat information;
        if (::lstat((tool / name).c_str(), &information) == 0 && S_ISDIR(information.st_mode)) {
            ::chmod((tool / name).c_str(), 0755);
        }
    }
}

void tryRow(const Row& row, bool areCodesKnown) {
    SCOPED_TRACE(row.name);
    const MigrateTool tool;
    row.prepare(tool);
    const scene::Digest before = tool.folder().digest("", scene::Detail::times);
    Words words = row.words;
    words.insert(words.begin(), "--dry-run");
    const Outcome trial = tool.run(words);
    EXPECT_EQ(tool.folder().digest("", scene::Detail::times), before) << "a trial changes nothing";
    EXPECT_TRUE(holds(trial.errors, "zqmigrate: this was a trial: nothing was changed\n")) << trial.errors;
    const Outcome real = tool.run(row.words);
    EXPECT_EQ(trial.output, real.output);
    EXPECT_EQ(trial.status, real.status);
    const std::vector<int> codes = codesIn(real.output);
    EXPECT_FALSE(codes.empty());
    EXPECT_EQ(real.status != 0, std::any_of(codes.begin(), codes.end(), [](int code) { return code != 0; }));
    if (areCodesKnown && !row.codes.empty()) {
        EXPECT_EQ(codes, row.codes) << real.output;
    }
    open(tool);
}

template <std::size_t Count>
void tryRows(const Row (&rows)[Count]) {
    scene::migrateProgram();
    EXPECT_TRUE(scene::checkedWithoutPrivileges([&] {
        for (const Row& row : rows) {
            tryRow(row, true);
        }
    }));
    // With privileges, where the test has them, other codes come out, and they are foreseen as well.
    for (const Row& row : rows) {
        tryRow(row, ::geteuid() != 0);
    }
}

/// Compares the runs, and expects what they print to begin with that code.
void expectForeseen(const MigrateTool& tool, Words words, const std::string& code) {
    SCOPED_TRACE(::testing::PrintToString(words));
    const Words real = words;
    words.insert(words.begin(), "-n");
    const Outcome trial = tool.run(words);
    EXPECT_EQ(trial.output.substr(0, 2), code);
    EXPECT_EQ(tool.run(real).output, trial.output);
}

TEST(ZqmigrateTrial, foreseesTheResultsOfFilesAndFolders) { tryRows(singleRows); }

TEST(ZqmigrateTrial, foreseesWhatTheFilesOfABatchDoToEachOther) { tryRows(batchRows); }

TEST(ZqmigrateTrial, looksAtForeignFilesInASharedFolder) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root makes files of others";
    }
    const MigrateTool tool;
    makeFiles(tool, {"shared/a", "mine/b"});
    setMode(tool, "shared", 01777);
    setMode(tool, "mine", 0777);
    EXPECT_EQ(::chown((tool / "mine/b").c_str(), 65534, 65534), 0);
    EXPECT_TRUE(scene::checkedWithoutPrivileges([&] {
        expectForeseen(tool, {"--overwrite", "file", "mine/b", "shared/a"}, "34");
        expectForeseen(tool, {"file", "shared/a", "mine/c"}, "15");
    }));
}

TEST(ZqmigrateTrial, foreseesThatEveryNameIsTaken) {
    const scene::ScenesInMemory memory;
    const MigrateTool tool;
    makeFiles(tool, {"a/f"});
    tool.folder().folder("b");
    for (int number = 1; number <= 100000; ++number) {
        ASSERT_EQ(::symlink(".", (tool / ("b " + std::to_string(number) + ".")).c_str()), 0);
    }
    const Words words{"--rename", "folder", "a", "b"};
    const Outcome trial = tool.run({"-n", "--rename", "folder", "a", "b"});
    EXPECT_EQ(trial.output, "37  a: writing the destination folder failed\n");
    EXPECT_EQ(tool.run(words).output, trial.output);
    EXPECT_EQ(tool.folder().digest("a").size(), 2U);
}

TEST(ZqmigrateTrial, foreseesWhatOtherFileSystemsRefuse) {
    const MigrateTool tool;
    makeFiles(tool, {"a", "f/x", "closed/b", "closed/g/x", "there/mine"});
    const int answer = scene::inOwnMounts([&] {
        const std::string closed = tool / "closed";
        if (::mount("none", (tool / "there").c_str(), "tmpfs", 0, "size=64k") != 0 ||
            ::mount(closed.c_str(), closed.c_str(), nullptr, MS_BIND, nullptr) != 0 ||
            ::mount(nullptr, closed.c_str(), nullptr, MS_BIND | MS_REMOUNT | MS_RDONLY, nullptr) != 0) {
            scene::leave(77);
        }
        expectForeseen(tool, {"file", "a", "closed/a"}, "35");
        expectForeseen(tool, {"--create-parents", "file", "a", "closed/x/a"}, "22");
        expectForeseen(tool, {"--overwrite", "file", "a", "closed/b"}, "34");
        expectForeseen(tool, {"--overwrite", "folder", "f", "closed/g"}, "36");
        expectForeseen(tool, {"--overwrite", "folder", "f", "there"}, "36");
        expectForeseen(tool, {"file", "closed/b", "b"}, "15");
        expectForeseen(tool, {"folder", "closed/g", "g"}, "15");
        expectForeseen(tool, {"folder", "f", "there/f"}, " 0");
    });
    EXPECT_TRUE(answer == 0 || answer == 77) << answer;
    if (answer == 77) {
        GTEST_SKIP() << "this machine allows no mounts of one's own";
    }
}

TEST(ZqmigrateTrial, warnsOfTooLittleRoom) {
    const MigrateTool tool;
    makeFiles(tool, {"small"});
    tool.file("large", std::string(200000, 'x'));
    EXPECT_EQ(::truncate((tool / "small").c_str(), 500000), 0); // a hole takes no room
    tool.folder().folder("there");
    const int answer = scene::inOwnMounts([&] {
        if (::mount("none", (tool / "there").c_str(), "tmpfs", 0, "size=128k") != 0) {
            scene::leave(77);
        }
        EXPECT_EQ(tool.done({"-n", "--create-parents", "file", "large", "there/x/y"}),
                  " 0  large: success\n");
        EXPECT_TRUE(holds(tool.report("errors"), "too little room at the destination"))
            << tool.report("errors");
        tool.done({"-n", "file", "small", "there/y"});
        EXPECT_FALSE(holds(tool.report("errors"), "room")) << tool.report("errors");
        // Where only the current folder tells what is free.
        ASSERT_EQ(::mount((tool / "there").c_str(), tool.folder().path().c_str(), nullptr, MS_BIND, nullptr),
                  0);
        const std::string large = tool.reports().write("large", std::string(200000, 'x'));
        for (const char* const to : {"y", "./y", "x/y"}) {
            tool.done({"-n", "--create-parents", "file", large, to});
            EXPECT_TRUE(holds(tool.report("errors"), "too little room at the destination")) << to;
        }
    });
    EXPECT_TRUE(answer == 0 || answer == 77) << answer;
    if (answer == 77) {
        GTEST_SKIP() << "this machine allows no mounts of one's own";
    }
}

TEST(ZqmigrateTrial, warnsOfADestinationInTheSource) {
    const MigrateTool tool;
    makeFiles(tool, {"a/f"});
    EXPECT_EQ(tool.done({"-n", "--create-parents", "batch", "a", "a/b"}), " 0  f: success\n");
    EXPECT_TRUE(holds(tool.report("errors"), "the destination is in the source folder"))
        << tool.report("errors");
    tool.done({"-n", "--create-parents", "batch", "a", "b"});
    EXPECT_FALSE(holds(tool.report("errors"), "the source folder")) << tool.report("errors");
}

} // namespace
