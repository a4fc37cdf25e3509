// SPDX-License-Identifier: MIT
// Plugins that each load the shared library share one state.
#include "tests/kit/Child.h"
#include "tests/kit/Environment.h"
#include "tests/kit/ScratchFolder.h"
#include "tests/kit/StandardError.h"

using namespace ZQFoundation;

namespace {

TEST(Plugins, shareOneSetOfTraceKeysAndOneMonitorAndCanBeUnloaded) {
    const kit::ScratchFolder folder;
    const kit::Variable settings("XDG_CONFIG_HOME", folder.path().c_str());
    const std::string built = ZQ_TEST_BINARY_DIR;
    const std::string programs = built + "/tests/plugins/";
    const kit::Descriptor file(kit::openToAppend(folder / "log"));
    EXPECT_EQ(kit::run({programs + "plugin-loader", built + "/libZQFoundation.so.27",
                        programs + "first-plugin.so", programs + "second-plugin.so"},
                       file.number()),
              0);
    std::vector<std::string> expected;
    for (int round = 0; round < 3; ++round) {
        expected.insert(expected.end(), {"TraceShared: second", "TraceShared: first"});
    }
    EXPECT_EQ(kit::textsIn(kit::contentsOf(folder / "log")), expected);
}

} // namespace
