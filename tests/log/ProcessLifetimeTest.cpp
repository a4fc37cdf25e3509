// SPDX-License-Identifier: MIT
// Log calls from before `main` to after it, and at the end of threads.
#include "tests/log/LogScene.h"

using namespace ZQFoundation;
using namespace logscene;

namespace {

// A process's stages, in their order.

const char* const stages[] = {"constructor function", "early static constructor",
                              "static constructor",   "main",
                              "thread start",         "thread end",
                              "thread key",           "main thread start",
                              "main thread end",      "exit handler",
                              "static destructor",    "late static destructor",
                              "destructor function"};

Texts linesOfAllStages() {
    Texts texts;
    for (const char* stage : stages) {
        texts.emplace_back(stage);
        texts.emplace_back("TraceStage: ").append(stage);
        texts.emplace_back("TraceNever>=0: described");
    }
    return texts;
}

void expectLinesOfAllStages(const std::string& program) {
    const kit::ScratchFolder folder;
    const kit::Descriptor file(kit::openToAppend(folder / "log"));
    EXPECT_EQ(kit::run({childProgram(program), "-TraceStage", "YES"}, file.number()), 0);
    EXPECT_EQ(textsOf(folder / "log"), linesOfAllStages());
}

TEST(ProcessLifetime, logsInEveryStageOfAProgramAndItsThreads) {
    expectLinesOfAllStages("logs-all-its-life");
}

TEST(ProcessLifetime, logsInEveryStageThroughTheSharedLibraryInThreadsToo) {
    expectLinesOfAllStages("logs-all-its-life-shared");
}

} // namespace
