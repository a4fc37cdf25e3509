// SPDX-License-Identifier: MIT
// What bash offers for the command line of `zqmigrate`, from the real script.
#include <string>

#include <gtest/gtest.h>

#include "tests/tools/MigrateScene.h"

using scene::MigrateTool;
using scene::Words;

namespace {

/// Offers for the last of the words, each on a line of its own.
std::string offered(const MigrateTool& tool, const Words& words) {
    Words command{"bash", "-c",
                  ". " ZQ_MIGRATE_COMPLETION "\n"
                  "COMP_WORDS=(zqmigrate \"$@\") COMP_CWORD=$#\n"
                  "_zqmigrate\n"
                  "printf '%s\\n' \"${COMPREPLY[@]}\" | LC_ALL=C sort\n",
                  "bash"};
    command.insert(command.end(), words.begin(), words.end());
    return scene::outputOf(tool, command);
}

TEST(ZqmigrateCompletion, offersCommandsOptionsAndPaths) {
    const MigrateTool tool;
    tool.file("folder1/inside");
    tool.file("file1");
    EXPECT_EQ(offered(tool, {""}), "batch\nfile\nfolder\n");
    EXPECT_EQ(offered(tool, {"--dry-run", "f"}), "file\nfolder\n");
    EXPECT_EQ(offered(tool, {"--o"}), "--overwrite\n");
    EXPECT_EQ(offered(tool, {"file", "f"}), "file1\nfolder1\n");
    EXPECT_EQ(offered(tool, {"folder", "f"}), "folder1\n");
    EXPECT_EQ(offered(tool, {"batch", "--rename", "f"}), "folder1\n");
    EXPECT_EQ(offered(tool, {"batch", "--extension", ""}), "\n");
    EXPECT_EQ(offered(tool, {"--extension", "file", "batch", "f"}), "folder1\n");
}

TEST(ZqmigrateCompletion, offersEveryOptionOfTheHelp) {
    const MigrateTool tool;
    const std::string help = tool.done({"--help"});
    const std::string offers = offered(tool, {"--"});
    std::size_t count = 0;
    for (std::size_t start = help.find("--"); start != std::string::npos;
         start = help.find("--", start + 2)) {
        const std::size_t end = help.find_first_not_of("abcdefghijklmnopqrstuvwxyz-", start);
        const std::string option = help.substr(start, end - start);
        EXPECT_TRUE(option == "--" || scene::holds("\n" + offers, "\n" + option + "\n")) << option;
        ++count;
    }
    EXPECT_GE(count, 12U);
}

TEST(ZqmigrateCompletion, carriesOutNoName) {
    const MigrateTool tool;
    tool.file("$(touch done)");
    tool.file("`touch done`");
    EXPECT_EQ(offered(tool, {"file", ""}), "$(touch done)\n`touch done`\n");
    EXPECT_EQ(::access((tool / "done").c_str(), F_OK), -1);
}

} // namespace
