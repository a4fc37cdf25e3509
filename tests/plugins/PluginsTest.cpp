// SPDX-License-Identifier: MIT
// Plugins that each bring the shared library along share one state.
#include "tests/log/HostTesting.h"
#include "tests/process/Scene.h"

using namespace hosttest;

namespace {

TEST(Plugins, shareOneSetOfTraceKeysAndOneMonitorAndCanBeUnloaded) {
    const scene::Folder folder;
    const scene::Variable settings("XDG_CONFIG_HOME", folder.path().c_str());
    const std::string built = ZQ_TEST_BINARY_DIR;
    const std::string programs = built + "/tests/plugins/";
    const Descriptor file(openToAppend(folder / "log"));
    EXPECT_EQ(run({programs + "plugin-loader", built + "/libZQFoundation.so.27", programs + "first-plugin.so",
                   programs + "second-plugin.so"},
                  file.number()),
              "");
    std::vector<std::string> expected;
    for (int round = 0; round < 3; ++round) {
        expected.insert(expected.end(), {"TraceShared: second", "TraceShared: first"});
    }
    EXPECT_EQ(textsIn(scene::contentsOf(folder / "log")), expected);
}

} // namespace
