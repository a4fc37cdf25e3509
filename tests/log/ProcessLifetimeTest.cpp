// SPDX-License-Identifier: MIT
// Log calls from before `main` to after it, and at the end of threads.
#include <utility>

#include "tests/log/LogScene.h"

using namespace ZQFoundation;
using namespace logscene;

namespace {

// A process's stages, in their order.

const std::vector<std::string> stages{"constructor function", "early static constructor",
                                      "static constructor",   "main",
                                      "thread start",         "thread end",
                                      "thread key",           "main thread start",
                                      "main thread end",      "exit handler",
                                      "static destructor",    "late static destructor",
                                      "destructor function"};

/// Some C++ libraries end the objects of a thread by a thread key of their own, which comes after the
/// program's.
std::vector<std::string> stagesWithKeysFirst() {
    std::vector<std::string> others = stages;
    std::swap(others[5], others[6]);
    return others;
}

Texts linesOf(const std::vector<std::string>& names) {
    Texts texts;
    for (const std::string& stage : names) {
        texts.push_back(stage);
        texts.push_back("TraceStage: " + stage);
        texts.emplace_back("TraceNever>=0: described");
    }
    return texts;
}

void expectLinesOfAllStages(const std::string& program) {
    const kit::ScratchFolder folder;
    const kit::Descriptor file(kit::openToAppend(folder / "log"));
    EXPECT_EQ(kit::run({childProgram(program), "-TraceStage", "YES"}, file.number()), 0);
    const Texts texts = textsOf(folder / "log");
    EXPECT_EQ(texts, linesOf(texts == linesOf(stagesWithKeysFirst()) ? stagesWithKeysFirst() : stages));
}

TEST(ProcessLifetime, logsInEveryStageOfAProgramAndItsThreads) {
    expectLinesOfAllStages("logs-all-its-life");
}

TEST(ProcessLifetime, logsInEveryStageThroughTheSharedLibraryInThreadsToo) {
    expectLinesOfAllStages("logs-all-its-life-shared");
}

} // namespace
