// SPDX-License-Identifier: MIT
// Log calls from before `main` to after it, at the end of threads, and from inside other log calls.
#include <atomic>
#include <thread>

#include "foundation/objects/NSException.h"
#include "log/ZQLog.h"
#include "tests/log/HostTesting.h"
#include "tests/process/Scene.h"

using namespace ZQFoundation;
using namespace hosttest;

namespace {

using Texts = std::vector<std::string>;

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
    const scene::Folder folder;
    const Descriptor file(openToAppend(folder / "log"));
    EXPECT_EQ(run({childProgram(program), "-TraceStage", "YES"}, file.number()), "");
    EXPECT_EQ(textsIn(scene::contentsOf(folder / "log")), linesOfAllStages());
}

TEST(ProcessLifetime, logsInEveryStageOfAProgramAndItsThreads) {
    expectLinesOfAllStages("logs-all-its-life");
}

TEST(ProcessLifetime, logsInEveryStageThroughTheSharedLibraryInThreadsToo) {
    expectLinesOfAllStages("logs-all-its-life-shared");
}

// Log calls inside log calls.

/// A host object whose description does something first.
template <class Action>
class Acting : public NSObjectProtocol {
public:
    explicit Acting(Action action) : action_(std::move(action)) {}

    NSString description() const override {
        action_();
        return "described";
    }
    NSString className() const override {
        action_();
        return "Acting";
    }

private:
    Action action_;
};

/// Standard error in a file, one trace key on; and afterwards nobody holds the monitor.
class ProcessLifetimeNested : public ::testing::Test {
protected:
    ~ProcessLifetimeNested() override {
        std::atomic<bool> answered = false;
        // Abandoned when it hangs, which is reported and better than hanging here.
        auto* const asking = new std::thread([&answered] {
            ZQLog::traceKeyIsEnabled("TraceSteady");
            answered = true;
        });
        const double deadline = secondsNow() + 30;
        while (!answered && secondsNow() < deadline) {
            ::usleep(200);
        }
        EXPECT_TRUE(answered) << "a lock was kept";
        if (!answered) {
            std::abort();
        }
        asking->join();
        delete asking;
    }

    Texts texts() const { return textsIn(scene::contentsOf(folder_ / "log")); }

    /// Each call that describes an object, with one whose description runs the action.
    template <class Action>
    static void describeInAllCalls(const Action& action) {
        const Acting<Action> object(action);
        const NSArray keys{"TraceSteady"};
        ZQLog::logWithFormat("%@", object);
        ZQLog::logForTraceKey_usingFormat("TraceSteady", "%@", object);
        ZQLog::logForAnyTraceKeyOf_usingFormat(keys, "%@", object);
        ZQLog::logForAllTraceKeysOf_usingFormat(keys, "%@", object);
        ZQLog::logForAnyTraceKeyUsingFormat("%@", object);
        ZQLog::logSelf_method_logAlways_logForTraceKey_usingFormat(&object, "run", true, "TraceSteady", "%@",
                                                                   object);
    }

private:
    scene::Folder folder_;
    std::string settings_ = folder_.write("NSGlobalDomain.plist", "{ TraceSteady = 1; }");
    scene::Path path_{detail::overrides::defaultsFolder, folder_.path()};
    scene::Arguments arguments_{detail::overrides::arguments, {"/bin/Nested"}};
    Descriptor file_{openToAppend(folder_ / "log")};
    StandardErrorAs standardError_{file_.number()};
    const bool isRead_ = [] {
        ZQLog::initializeTraceDefaultsDict();
        return true;
    }();
};

TEST_F(ProcessLifetimeNested, letsADescriptionLog) {
    describeInAllCalls([] { ZQLog::logForTraceKey_usingFormat("TraceSteady", "inside"); });
    const Texts lines = texts();
    ASSERT_EQ(lines.size(), 13U);
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "TraceSteady: inside"), 7);
    for (const std::size_t i : {3U, 5U, 7U}) {
        EXPECT_EQ(lines[i], "TraceSteady: described");
    }
    EXPECT_EQ(lines[1], "described");
    EXPECT_EQ(lines[9], "Trace: described");
    EXPECT_EQ(lines[12].rfind("TraceSteady: -[(Acting *)0x", 0), 0U) << lines[12];
}

TEST_F(ProcessLifetimeNested, letsADescriptionReReadTheTraceKeys) {
    describeInAllCalls([] {
        const ZQLog::Synchronized monitor;
        ZQLog::initializeTraceDefaultsDict();
    });
    EXPECT_EQ(texts().size(), 6U);
}

TEST_F(ProcessLifetimeNested, letsADescriptionRaise) {
    int raised = 0;
    const NSArray keys{"TraceSteady"};
    const auto raise = [] {
        NSException::raise_format("Refused", "no %s", "description");
    };
    const Acting<decltype(raise)> object(raise);
    const auto expectRaise = [&raised](const auto& call) {
        try {
            call();
        } catch (const NSException& exception) {
            raised += exception.reason() == NSString("no description") ? 1 : 0;
        }
    };
    expectRaise([&] { ZQLog::logWithFormat("%@", object); });
    expectRaise([&] { ZQLog::logForTraceKey_usingFormat("TraceSteady", "%@", object); });
    expectRaise([&] { ZQLog::logForAnyTraceKeyOf_usingFormat(keys, "%@", object); });
    expectRaise([&] { ZQLog::logForAllTraceKeysOf_usingFormat(keys, "%@", object); });
    expectRaise([&] { ZQLog::logSelf_method_logAlways_log(&object, "run", true, "text"); });
    EXPECT_EQ(raised, 5);
    EXPECT_EQ(texts(), Texts{});
    ZQLog::log("after");
    EXPECT_EQ(texts(), Texts{"after"});
}

TEST_F(ProcessLifetimeNested, letsTheMonitorGoWhenAnExceptionLeavesItsScope) {
    bool caught = false;
    try {
        const ZQLog::Synchronized monitor;
        const auto raise = [] {
            throw 3;
        };
        ZQLog::logWithFormat("%@", Acting<decltype(raise)>(raise));
    } catch (int) {
        caught = true;
    }
    EXPECT_TRUE(caught);
}

TEST_F(ProcessLifetimeNested, letsADescriptionWaitForAThreadThatLogs) {
    describeInAllCalls([] {
        std::thread([] {
            const ZQLog::Synchronized monitor;
            ZQLog::initializeTraceDefaultsDict();
            ZQLog::logForTraceKey_usingFormat("TraceSteady", "of another thread");
        }).join();
    });
    EXPECT_EQ(texts().size(), 13U);
}

TEST_F(ProcessLifetimeNested, letsDescriptionsNestDeeply) {
    int depth = 0;
    const auto descend = [&depth](const auto& self) -> void {
        if (depth < 50) {
            ++depth;
            const auto next = [&self] {
                self(self);
            };
            ZQLog::logForTraceKey_usingFormat("TraceSteady", "%@", Acting<decltype(next)>(next));
        }
    };
    descend(descend);
    EXPECT_EQ(texts(), Texts(50, "TraceSteady: described"));
}

TEST_F(ProcessLifetimeNested, logsUnderTheMonitorOfThisThread) {
    const ZQLog::Synchronized outer;
    const ZQLog::Synchronized inner;
    ZQLog::logForTraceKey_usingFormat("TraceSteady", "inside");
    std::thread([] { ZQLog::log("needs no monitor"); }).join();
    EXPECT_EQ(texts(), (Texts{"TraceSteady: inside", "needs no monitor"}));
}

} // namespace
