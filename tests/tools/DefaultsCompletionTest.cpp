// SPDX-License-Identifier: MIT
// What bash offers for the command line of `defaults`, from the real script and the real program.
#include <string>

#include <gtest/gtest.h>
#include <unistd.h>

#include "tests/tools/ToolScene.h"

using scene::Tool;
using scene::Words;

namespace {

/// Offers for the last of the words, each on a line of its own.
std::string offered(const Tool& tool, const Words& words) {
    const std::string program = ZQ_DEFAULTS_TOOL;
    const std::string script = ". " ZQ_DEFAULTS_COMPLETION "\n"
                               "COMP_WORDS=(defaults \"$@\") COMP_CWORD=$#\n"
                               "_defaults\n"
                               "printf '%s\\n' \"${COMPREPLY[@]}\"\n";
    const std::string output = tool.folder() / "offered";
    const pid_t child = ::fork();
    if (child == 0) {
        const std::string path = program.substr(0, program.rfind('/')) + ":/usr/local/bin:/usr/bin:/bin";
        ::setenv("PATH", path.c_str(), 1);
        ::setenv("LC_ALL", "C.UTF-8", 1);
        ::chdir(tool.folder().path().c_str());
        ::dup2(::open(output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDOUT_FILENO);
        Words arguments{"bash", "-c", script, "bash"};
        arguments.insert(arguments.end(), words.begin(), words.end());
        std::vector<char*> pointers;
        for (std::string& argument : arguments) {
            pointers.push_back(argument.data());
        }
        pointers.push_back(nullptr);
        ::execvp("bash", pointers.data());
        ::_exit(126);
    }
    int status = -1;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    return scene::contentsOf(output);
}

TEST(DefaultsCompletion, offersCommandsDomainsKeysAndTypes) {
    const Tool tool;
    tool.done({"write", "com.a", "{ TraceNetwork = 1; TraceDeep = { inner = 1; }; Other = 1; }"});
    tool.done({"write", "com.b", "k", "v"});
    EXPECT_EQ(offered(tool, {"read"}), "read\nread-type\n");
    EXPECT_EQ(offered(tool, {"read", ""}), "-g\ncom.a\ncom.b\n--json\n");
    EXPECT_EQ(offered(tool, {"write", "com.b"}), "com.b\n");
    EXPECT_EQ(offered(tool, {"remove", "com.a", "Tr"}), "TraceDeep\nTraceNetwork\n");
    EXPECT_EQ(offered(tool, {"write", "com.a", "k", "-array"}), "-array\n-array-add\n");
    EXPECT_EQ(offered(tool, {"find", ""}), "\n");
    EXPECT_EQ(offered(tool, {"li"}), "lint\n");
    EXPECT_EQ(offered(tool, {"lint", "a", "inp"}), "input\n");
}

TEST(DefaultsCompletion, quotesNamesAndCarriesOutNoneOfThem) {
    const Tool tool;
    tool.done({"write", "$(touch done1)", "k", "v"});
    tool.done({"write", "com.a", "$(touch done2)`touch done3`", "v"});
    tool.done({"write", "com.a", "a & <b>", "v"});
    EXPECT_EQ(offered(tool, {"read", ""}), "-g\n\\$\\(touch\\ done1\\)\ncom.a\n--json\n");
    EXPECT_EQ(offered(tool, {"read", "com.a", ""}),
              "\\$\\(touch\\ done2\\)\\`touch\\ done3\\`\na\\ \\&\\ \\<b\\>\n");
    for (const char* const name : {"done1", "done2", "done3"}) {
        EXPECT_EQ(::access((tool.folder() / name).c_str(), F_OK), -1) << name;
    }
}

} // namespace
