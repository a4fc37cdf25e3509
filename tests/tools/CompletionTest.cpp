// SPDX-License-Identifier: MIT
// What bash offers for the command lines of the tools, from the real scripts and programs.
#include <string>

#include <gtest/gtest.h>

#include "tests/tools/ToolScene.h"

using namespace ZQFoundation;
using scene::MigrateTool;
using scene::Tool;
using scene::Words;

namespace {

std::string offered(const MigrateTool& tool, const Words& words) {
    return scene::offered(tool, ZQ_MIGRATE_COMPLETION, "zqmigrate", words);
}
std::string offered(const Tool& tool, const Words& words) {
    return scene::offered(tool.runs(), ZQ_DEFAULTS_COMPLETION, "defaults", words);
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
        EXPECT_TRUE(option == "--" || scene::contains("\n" + offers, "\n" + option + "\n")) << option;
        ++count;
    }
    EXPECT_GE(count, 12U);
}

TEST(ZqmigrateCompletion, runsNoName) {
    const MigrateTool tool;
    tool.file("$(touch done)");
    tool.file("`touch done`");
    EXPECT_EQ(offered(tool, {"file", ""}), "$(touch done)\n`touch done`\n");
    EXPECT_FALSE(tool.folder().has("done"));
}

TEST(DefaultsCompletion, offersCommandsDomainsKeysAndTypes) {
    const Tool tool;
    tool.folder().write("input", "");
    tool.done({"write", "com.a", "{ TraceNetwork = 1; TraceDeep = { inner = 1; }; Other = 1; }"});
    tool.done({"write", "com.b", "k", "v"});
    EXPECT_EQ(offered(tool, {"read"}), "read\nread-type\n");
    EXPECT_EQ(offered(tool, {"read", ""}), "--json\n-g\ncom.a\ncom.b\n");
    EXPECT_EQ(offered(tool, {"write", "com.b"}), "com.b\n");
    EXPECT_EQ(offered(tool, {"remove", "com.a", "Tr"}), "TraceDeep\nTraceNetwork\n");
    EXPECT_EQ(offered(tool, {"write", "com.a", "k", "-array"}), "-array\n-array-add\n");
    EXPECT_EQ(offered(tool, {"find", ""}), "\n");
    EXPECT_EQ(offered(tool, {"li"}), "lint\n");
    EXPECT_EQ(offered(tool, {"lint", "a", "inp"}), "input\n");
}

TEST(DefaultsCompletion, quotesNamesAndRunsNoneOfThem) {
    const Tool tool;
    tool.done({"write", "$(touch done1)", "k", "v"});
    tool.done({"write", "com.a", "$(touch done2)`touch done3`", "v"});
    tool.done({"write", "com.a", "a & <b>", "v"});
    EXPECT_EQ(offered(tool, {"read", ""}), "--json\n-g\n\\$\\(touch\\ done1\\)\ncom.a\n");
    EXPECT_EQ(offered(tool, {"read", "com.a", ""}),
              "\\$\\(touch\\ done2\\)\\`touch\\ done3\\`\na\\ \\&\\ \\<b\\>\n");
    for (const char* const name : {"done1", "done2", "done3"}) {
        EXPECT_EQ(::access((tool.folder() / name).c_str(), F_OK), -1) << name;
    }
}

} // namespace
