// SPDX-License-Identifier: MIT
// Sending lines elsewhere: the observer gets each line of the channel after it is written, outside every
// lock, and its context may be destroyed when it is replaced.
#include "foundation/process/LineObserver.h"

#include <exception>
#include <mutex>

#include <pthread.h>

#include "foundation/process/NSLog.h"
#include "info/ZQLogInfo.h"
#include "log/NSAssertionHandler.h"
#include "tests/kit/AllocationCount.h"
#include "tests/kit/Interruptions.h"
#include "tests/log/LogScene.h"

using namespace ZQFoundation;
using kit::CapturedOutput;
using kit::expectInChild;
using kit::inChild;
using logscene::Background;
using logscene::scaled;
using logscene::Texts;

namespace {

/// The observer for a scope.
class Observed {
public:
    Observed(ZQLogLineObserver observer, void* context) { ZQLog::setLineObserver(observer, context); }
    Observed(const Observed&) = delete;
    Observed& operator=(const Observed&) = delete;
    ~Observed() { ZQLog::setLineObserver(nullptr, nullptr); }
};

/// Keeps the texts and the messages of the lines.
struct LogWindow {
    std::mutex mutex;
    Texts texts;
    Texts messages;

    static void observe(const ZQLogLine& line, void* context) {
        LogWindow& window = *static_cast<LogWindow*>(context);
        const std::lock_guard guard(window.mutex);
        window.texts.emplace_back(line.text);
        window.messages.emplace_back(line.message);
    }
};

std::string joined(const Texts& lines) {
    std::string text;
    for (const std::string& line : lines) {
        text += line + "\n";
    }
    return text;
}

struct Stock {
    void reload() const { ZQAssertInMethod(false, this, "BadCount", "%d of %d", 7, 5); }
};

void logInEveryWay() {
    NSLog("%d by NSLog", 1);
    ZQLog::log("50% done %d");
    ZQLog::logWithFormat("%@", "Gr\u00fc\u00dfe");
    ZQLog::logAlways_logWithFormat(false, "silent");
    ZQLog::logFunctionName_logAlways_log(__func__, true, "ends with a line feed\n");
    ZQLog::log("");
    ZQLog::log("two\nlines\n\n");
    ZQLog::logForTraceKey_usingFormat("TraceSeen", "%d", 2);
    ZQLog::logForTraceKey_usingFormat("TraceUnseen", "%d", 2);
    ZQLog::logWithFormat("%5000d", 3);
    EXPECT_THROW(Stock().reload(), NSException);
}

TEST(LineObserver, getsTheLinesOfEveryOperationAsTheyAreWritten) {
    const kit::TraceKeys keys{{"TraceSeen", "<true/>"}};
    const CapturedOutput output;
    LogWindow window;
    const Observed observed(LogWindow::observe, &window);
    logInEveryWay();
    EXPECT_EQ(window.messages,
              (Texts{"1 by NSLog", "50% done %d", "Gr\u00fc\u00dfe", "logInEveryWay() ends with a line feed",
                     "", "two\nlines\n", "TraceSeen: 2", std::string(4999, ' ') + "3",
                     "*** Assertion failure in -[Stock reload], LineObserverTest.cpp:" +
                         window.messages.back().substr(window.messages.back().rfind(':') + 1)}));
    for (std::size_t i = 0; i < window.texts.size(); ++i) {
        const kit::Prefix prefix = kit::readPrefix(window.texts[i]);
        ASSERT_TRUE(prefix) << window.texts[i];
        EXPECT_EQ(window.texts[i].substr(prefix.length), window.messages[i]);
    }
    EXPECT_EQ(joined(window.texts), output.bytes());
}

TEST(LineObserver, getsTheStartUpReport) {
    const CapturedOutput output;
    LogWindow window;
    const Observed observed(LogWindow::observe, &window);
    ZQLogInfo::logAppAndSystemInformation();
    EXPECT_FALSE(window.texts.empty());
    EXPECT_EQ(joined(window.texts), output.bytes());
}

TEST(LineObserver, isCalledAfterTheWrite) {
    struct Look {
        CapturedOutput output;
        std::string seen;
    } look;
    const Observed observed(
        [](const ZQLogLine& line, void* context) {
            Look& now = *static_cast<Look*>(context);
            now.seen = now.output.bytes() == std::string(line.text) + "\n" ? "written" : now.output.bytes();
        },
        &look);
    ZQLog::log("first");
    EXPECT_EQ(look.seen, "written");
}

TEST(LineObserver, getsLinesThatCannotBeWritten) {
    expectInChild([] {
        LogWindow window;
        const Observed observed(LogWindow::observe, &window);
        ::close(STDERR_FILENO);
        ZQLog::log("closed");
        EXPECT_EQ(::open("/dev/full", O_WRONLY), STDERR_FILENO);
        ZQLog::log("full");
        EXPECT_EQ(window.messages, (Texts{"closed", "full"}));
    });
}

TEST(LineObserver, isReplacedAndTakenAway) {
    const CapturedOutput output;
    LogWindow first;
    LogWindow second;
    const Observed observed(LogWindow::observe, &first);
    ZQLog::log("a");
    ZQLog::setLineObserver(LogWindow::observe, &second);
    ZQLog::log("b");
    ZQLog::setLineObserver(nullptr, &first);
    ZQLog::log("c");
    EXPECT_EQ(first.messages, Texts{"a"});
    EXPECT_EQ(second.messages, Texts{"b"});
    EXPECT_EQ(output.texts(), (Texts{"a", "b", "c"}));
}

TEST(LineObserver, isNotCalledForWhatItLogsItself) {
    const CapturedOutput output;
    Texts messages;
    const Observed observed(
        [](const ZQLogLine& line, void* context) {
            static_cast<Texts*>(context)->emplace_back(line.message);
            ZQLog::logWithFormat("on %s", std::string(line.message).c_str());
        },
        &messages);
    ZQLog::log("a");
    ZQLog::log("b");
    EXPECT_EQ(messages, (Texts{"a", "b"}));
    EXPECT_EQ(output.texts(), (Texts{"a", "on a", "b", "on b"}));
}

TEST(LineObserver, maySetAnotherOneWithoutWaitingForItself) {
    const CapturedOutput output;
    LogWindow window;
    const Observed observed(
        [](const ZQLogLine&, void* context) {
            ZQLog::setLineObserver(nullptr, nullptr);
            ZQLog::setLineObserver(LogWindow::observe, context);
        },
        &window);
    ZQLog::log("a");
    ZQLog::log("b");
    EXPECT_EQ(window.messages, Texts{"b"});
}

TEST(LineObserver, findsTheHostsErrnoAndLeavesIt) {
    const CapturedOutput output;
    int seen = 0;
    const Observed observed(
        [](const ZQLogLine&, void* context) {
            *static_cast<int*>(context) = errno;
            errno = ENOTTY;
        },
        &seen);
    errno = EDOM;
    ZQLog::log("a");
    EXPECT_EQ(errno, EDOM);
    EXPECT_EQ(seen, EDOM);
}

TEST(LineObserver, allocatesNothingBesidesWhatTheObserverDoes) {
    const CapturedOutput output;
    long count = 0;
    const Observed observed([](const ZQLogLine&, void* context) { ++*static_cast<long*>(context); }, &count);
    ZQLog::log("first");
    const std::size_t before = kit::AllocationCount::now();
    ZQLog::log("second");
    EXPECT_EQ(kit::AllocationCount::now(), before);
    EXPECT_EQ(count, 2);
}

TEST(LineObserver, endsTheProcessByAnExceptionThatLeavesIt) {
    EXPECT_EQ(inChild([] {
                  std::set_terminate([] { ::_exit(42); });
                  ZQLog::setLineObserver([](const ZQLogLine&, void*) { throw 1; }, nullptr);
                  try {
                      ZQLog::log("a");
                  } catch (...) {
                      ::_exit(43);
                  }
              }),
              42);
}

/// A call of the observer that does not return until it is released.
struct Gate {
    std::atomic<int> inside = 0;
    std::atomic<bool> opens = false;

    static void observe(const ZQLogLine&, void* context) {
        Gate& gate = *static_cast<Gate*>(context);
        ++gate.inside;
        while (!gate.opens) {
            std::this_thread::yield();
        }
        --gate.inside;
    }

    bool holdsSoon(int threads) const {
        return logscene::holdsSoon([&] { return inside == threads; });
    }
};

// More threads than the calls that are there at first have room for.
TEST(LineObserverConcurrency, callsOnManyThreadsAtOnceWithoutALock) {
    constexpr int threads = 50;
    const CapturedOutput output;
    Gate gate;
    const Observed observed(Gate::observe, &gate);
    std::vector<std::unique_ptr<Background>> logging;
    for (int i = 0; i < threads; ++i) {
        logging.push_back(std::make_unique<Background>([] { ZQLog::log("a"); }));
    }
    EXPECT_TRUE(gate.holdsSoon(threads));
    // The monitor and the writer are free meanwhile.
    EXPECT_TRUE(logscene::anotherThreadCanTakeTheMonitor());
    gate.opens = true;
    logging.clear();
    EXPECT_EQ(gate.inside, 0);
    EXPECT_EQ(output.texts().size(), std::size_t{threads});
}

TEST(LineObserverConcurrency, isGoneWhenAnotherOneIsSet) {
    const CapturedOutput output;
    Gate gate;
    const Observed observed(Gate::observe, &gate);
    Background logging([] { ZQLog::log("a"); });
    ASSERT_TRUE(gate.holdsSoon(1));
    const std::uint64_t before = detail::lineObserverSetting;
    std::atomic<int> insideAfterwards = -1;
    Background setting([&] {
        ZQLog::setLineObserver(nullptr, nullptr);
        insideAfterwards = gate.inside.load();
    });
    while (__atomic_load_n(&detail::lineObserverSetting, __ATOMIC_RELAXED) == before) {
        std::this_thread::yield();
    }
    ZQLog::log("no longer observed, while the last call goes on");
    EXPECT_FALSE(setting.isDone());
    gate.opens = true;
    EXPECT_TRUE(setting.isDoneSoon());
    EXPECT_EQ(insideAfterwards, 0);
}

/// What an observer may only touch until it is replaced.
struct Context {
    std::atomic<bool> isAlive = true;
    std::atomic<long> lines = 0;
    ~Context() { isAlive = false; }
};

std::atomic<long> linesAfterTheEnd = 0;

void countLine(const ZQLogLine& line, void* context) {
    Context& own = *static_cast<Context*>(context);
    if (!own.isAlive || line.message != "storm") {
        ++linesAfterTheEnd;
    }
    ++own.lines;
}

// The address and thread sanitizers see what is touched after its end.
TEST(LineObserverConcurrency, mayBeReplacedAndItsContextFreedWhileThreadsLog) {
    constexpr int threads = 4;
    constexpr int replacements = scaled(4000, 1000, 500);
    const kit::Descriptor nowhere(::open("/dev/null", O_WRONLY | O_CLOEXEC));
    const kit::StandardErrorAs output(nowhere.number());
    std::atomic<long> written = 0;
    long observed = 0;
    const auto storm = [&written] {
        ZQLog::log("storm");
        ++written;
    };
    kit::Meanwhile logging(storm, threads);
    std::unique_ptr<Context> present;
    for (int i = 0; i < replacements; ++i) {
        auto next = i % 7 == 0 ? nullptr : std::make_unique<Context>();
        ZQLog::setLineObserver(next == nullptr ? nullptr : countLine, next.get());
        observed += present == nullptr ? 0 : present->lines.load();
        present = std::move(next);
        while (i % 14 == 1 && present->lines == 0) { // these are surely called
            std::this_thread::yield();
        }
    }
    ZQLog::setLineObserver(nullptr, nullptr);
    logging.end();
    EXPECT_EQ(linesAfterTheEnd, 0);
    EXPECT_GT(observed, 0);
    EXPECT_GE(written, observed);
}

TEST(LineObserverConcurrency, maySetAnotherOneOnTwoThreadsAtOnce) {
    const CapturedOutput output;
    struct Meeting {
        std::atomic<int> arrived = 0;
        static void observe(const ZQLogLine&, void* context) {
            Meeting& meeting = *static_cast<Meeting*>(context);
            ++meeting.arrived;
            while (meeting.arrived < 2) { // both are inside now
                std::this_thread::yield();
            }
            ZQLog::setLineObserver(nullptr, nullptr);
        }
    } meeting;
    const Observed observed(Meeting::observe, &meeting);
    {
        Background first([] { ZQLog::log("a"); });
        Background second([] { ZQLog::log("b"); });
        EXPECT_TRUE(first.isDoneSoon());
        EXPECT_TRUE(second.isDoneSoon());
    }
    EXPECT_EQ(meeting.arrived, 2);
}

TEST(LineObserverConcurrency, holdsACancellationOfTheThreadOff) {
    const CapturedOutput output;
    Gate gate;
    std::atomic<bool> isWhole = false;
    struct Held {
        Gate& gate;
        std::atomic<bool>& isWhole;
    } held{gate, isWhole};
    const Observed observed(
        [](const ZQLogLine& line, void* context) {
            Held& own = *static_cast<Held*>(context);
            Gate::observe(line, &own.gate);
            pthread_testcancel();
            own.isWhole = true;
        },
        &held);
    std::thread logging([] {
        ZQLog::log("a");
        for (;;) {
            ::usleep(1000); // a cancellation point
        }
    });
    ASSERT_TRUE(gate.holdsSoon(1));
    pthread_cancel(logging.native_handle());
    gate.opens = true;
    logging.join();
    EXPECT_TRUE(isWhole);
}

std::atomic<long> observedHandlerLines = 0;

TEST(LineObserverConcurrency, isCalledForTheLinesOfAHandlerButNotInsideItself) {
    constexpr long interruptions = scaled(4000, 1000, 500);
    const kit::Descriptor nowhere(::open("/dev/null", O_WRONLY | O_CLOEXEC));
    const kit::StandardErrorAs output(nowhere.number());
    ZQLog::log("first");
    struct State {
        std::atomic<int> depth = 0;
        std::atomic<int> greatestDepth = 0;
    } state;
    const Observed observed(
        [](const ZQLogLine& line, void* context) {
            State& own = *static_cast<State*>(context);
            const int depth = ++own.depth;
            if (depth > own.greatestDepth) {
                own.greatestDepth = depth;
            }
            if (line.message == "handler") {
                ++observedHandlerLines;
            }
            --own.depth;
        },
        &state);
    const kit::Interruptions handler([] { ZQLog::log("handler"); }, interruptions);
    while (!handler.areOver()) {
        ZQLog::log("plain");
    }
    EXPECT_EQ(state.greatestDepth, 1);
    EXPECT_GT(observedHandlerLines, interruptions / 10); // most of the time the thread is at its write
    EXPECT_LE(observedHandlerLines, interruptions);
}

TEST(LineObserverFork, servesAChildWhoseParentHadOtherThreadsInside) {
    const CapturedOutput output;
    Gate gate;
    const Observed observed(Gate::observe, &gate);
    Background logging([] { ZQLog::log("a"); });
    ASSERT_TRUE(gate.holdsSoon(1));
    expectInChild([] {
        LogWindow window;
        ZQLog::setLineObserver(LogWindow::observe, &window); // the other thread is not here
        ZQLog::log("in the child");
        EXPECT_EQ(window.messages, Texts{"in the child"});
    });
    gate.opens = true;
}

TEST(LineObserverFork, hasTheParentsObserverInAChildThatItHasForkedItself) {
    const CapturedOutput output;
    struct State {
        Texts messages;
        int child = -1;
    } state;
    const Observed observed(
        [](const ZQLogLine& line, void* context) {
            State& own = *static_cast<State*>(context);
            own.messages.emplace_back(line.message);
            if (own.messages.size() == 1) {
                own.child = inChild([&own] {
                    ZQLog::log("inside, so not observed");
                    ZQLog::setLineObserver(nullptr, nullptr); // waits for nobody
                    EXPECT_EQ(own.messages.size(), 1U);
                });
            }
        },
        &state);
    ZQLog::log("a");
    EXPECT_EQ(state.child, 0);
    expectInChild([&state] {
        ZQLog::log("b");
        EXPECT_EQ(state.messages, (Texts{"a", "b"}));
    });
}

} // namespace
