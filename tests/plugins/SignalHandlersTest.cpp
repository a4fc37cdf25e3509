// SPDX-License-Identifier: MIT
// A signal handler may log, query trace keys and get texts returned, whatever the interrupted thread was
// doing, and however the library was loaded into the process.
#include "tests/kit/Child.h"
#include "tests/kit/Environment.h"
#include "tests/kit/Sanitizers.h"
#include "tests/kit/ScratchFolder.h"
#include "tests/kit/StandardError.h"

using namespace ZQFoundation;

namespace {

constexpr int threads = kit::isSanitized ? 4 : 8;
constexpr int interruptions = kit::isSanitized ? 800 : 1920;

/// Checks that each line is whole and one that the storm writes; returns the number of the handler's lines.
long handlerLinesIn(const std::string& bytes) {
    long count = 0;
    for (const std::string& text : kit::textsIn(bytes)) {
        const bool isPlain = text == "start" || text == "thread" || text.starts_with("TraceStorm: thread ");
        const bool isHandlers = text.starts_with("handler") || text.starts_with("TraceStorm: handler ") ||
                                text.starts_with("TraceStorm: -[(Caller *)0x");
        EXPECT_TRUE(isPlain || isHandlers) << text.substr(0, 200);
        count += isHandlers ? 1 : 0;
    }
    return count;
}

class SignalHandlers : public ::testing::TestWithParam<const char*> {};

TEST_P(SignalHandlers, mayCallWhateverTheyInterruptInAThread) {
    const kit::ScratchFolder folder;
    const kit::Variable settings("XDG_CONFIG_HOME", folder.path().c_str());
    const std::string programs = std::string(ZQ_TEST_BINARY_DIR) + "/tests/plugins/";
    const std::string kind = GetParam();
    std::vector<std::string> words{programs + "storm-" + kind, std::to_string(threads),
                                   std::to_string(interruptions)};
    if (kind.starts_with("plugin")) {
        words = {programs + "storm-loader", words[1], words[2], programs + "storm-" + kind + ".so"};
    }
    const kit::Descriptor file(kit::openToAppend(folder / "log"));
    ASSERT_EQ(kit::run(words, file.number()), 0);
    // Of eight calls in a row the first four write.
    EXPECT_EQ(handlerLinesIn(kit::contentsOf(folder / "log")), long{threads} * interruptions / 8 * 4);
}

INSTANTIATE_TEST_SUITE_P(OfALibraryThatIs, SignalHandlers,
                         ::testing::Values("static", "shared", "plugin-static", "plugin-shared"),
                         [](const auto& test) {
                             std::string name = test.param;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

} // namespace
