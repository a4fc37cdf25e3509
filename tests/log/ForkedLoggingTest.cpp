// SPDX-License-Identifier: MIT
// A forked child can log at once, whatever the threads that it lost were doing.
#include <deque>

#include "tests/log/LogScene.h"

using namespace ZQFoundation;
using namespace logscene;
using kit::expectInChild;
using kit::Prefix;
using kit::readPrefix;
using kit::StandardErrorIn;

namespace {

const kit::Settings steady{{"TraceSteady", "<true/>"}};

#if !ZQ_TEST_ADDRESS_SANITIZER
// The allocators of the sanitizers are not ready for a fork while another thread is inside them. For the
// thread sanitizer it is enough that the forking thread has blocks in store; the other cannot be helped.

constexpr int childCount = scaled(2'000, 0, 200);
constexpr std::size_t childrenAtOnce = 16;

#if ZQ_TEST_THREAD_SANITIZER
void storeBlocks() {
    std::vector<void*> blocks;
    for (std::size_t size = 16; size <= 16'384; size += size < 512 ? 16 : size / 4) {
        for (int i = 0; i < 16; ++i) {
            blocks.push_back(::operator new(size));
        }
    }
    for (void* const block : blocks) {
        ::operator delete(block);
    }
}
#else
void storeBlocks() {}
#endif

/// Eight threads that log and re-read the trace keys all the time.
class BusyThreads {
public:
    long turns() const { return turns_; }

private:
    void work(std::size_t number) {
        ZQLog::logForTraceKey_usingFormat("TraceSteady", "thread %zu", number);
        ZQLog::log("of a thread");
        if (number % 2 == 0) {
            const ZQLog::Synchronized monitor;
            ZQLog::initializeTraceDefaultsDict();
        }
        ++turns_;
        // Enough to be inside the library at most moments, and the forking thread still gets its turn.
        ::usleep(20);
    }

    std::atomic<long> turns_ = 0;
    kit::Meanwhile threads_{[this](std::size_t number) { work(number); }, 8};
};

/// What a child does at once, a different call first in each kind of child.
void logAsChild(int number) {
    const std::string text = "child " + std::to_string(number) + " of " + std::to_string(::getpid());
    switch (number % 4) {
    case 0:
        ZQLog::logAlways_log(true, text);
        break;
    case 1:
        ZQLog::logForTraceKey_usingFormat("TraceSteady", "%@", text);
        break;
    case 2: {
        const ZQLog::Synchronized monitor;
        ZQLog::initializeTraceDefaultsDict();
        ZQLog::logForTraceKey_usingFormat("TraceSteady", "%@", text);
        break;
    }
    default:
        ZQLog::logWithFormat("%@", ZQLog::traceKeyIsEnabled("TraceSteady") ? text : "key not on");
        break;
    }
}

/// Every child's line is in the output once, whole, after the child's own number.
void expectLinesOfChildren(const std::vector<pid_t>& children, const std::string& bytes) {
    std::map<std::string, int> found;
    ASSERT_TRUE(bytes.ends_with('\n'));
    for (const std::string_view line : kit::linesIn(bytes)) {
        const Prefix prefix = readPrefix(line);
        ASSERT_TRUE(prefix) << line;
        std::string text(line.substr(prefix.length));
        if (text.starts_with("TraceSteady: ")) {
            text.erase(0, std::strlen("TraceSteady: "));
        }
        if (text.starts_with("child ")) {
            ASSERT_EQ(text.substr(text.find(" of ") + 4), prefix.processNumber);
            ++found[text];
        } else {
            ASSERT_EQ(prefix.processNumber, std::to_string(::getpid()));
            ASSERT_TRUE(text == "of a thread" || text.starts_with("thread ")) << line;
        }
    }
    ASSERT_EQ(found.size(), children.size());
    for (std::size_t number = 0; number < children.size(); ++number) {
        const std::string text =
            "child " + std::to_string(number) + " of " + std::to_string(children[number]);
        ASSERT_EQ(found[text], 1) << text;
    }
}

TEST(ForkedLogging, worksInChildrenOfAProcessWhoseThreadsLog) {
    const kit::ScratchFolder folder;
    const kit::TraceKeys keys(steady);
    std::vector<pid_t> children;
    {
        const StandardErrorIn standardError(folder / "log");
        const BusyThreads threads;
        std::deque<pid_t> running;
        while (children.size() < childCount || !running.empty()) {
            if (children.size() < childCount) {
                const auto number = static_cast<int>(children.size());
                storeBlocks();
                const pid_t child = ::fork();
                if (child == 0) {
                    ::alarm(120); // should this test fail, nobody waits for the others
                    logAsChild(number);
                    ::_exit(0);
                }
                ASSERT_GT(child, 0) << std::strerror(errno);
                children.push_back(child);
                running.push_back(child);
            }
            if (running.size() >= childrenAtOnce || children.size() == childCount) {
                ASSERT_EQ(kit::endOf(running.front()), 0) << "child " << children.size() - running.size();
                running.pop_front();
            }
        }
        EXPECT_GT(threads.turns(), 0);
        sayScale(std::to_string(childCount) + " children during " + std::to_string(threads.turns()) +
                 " turns");
    }
    expectLinesOfChildren(children, kit::contentsOf(folder / "log"));
}

#endif

TEST(ForkedLogging, worksInAChildOfAThreadThatHoldsTheMonitor) {
    const kit::TraceKeys keys(steady);
    const kit::CapturedOutput output;
    {
        const ZQLog::Synchronized outer;
        const ZQLog::Synchronized inner;
        expectInChild([] {
            {
                const ZQLog::Synchronized again; // the child still holds it, two levels deep
                ZQLog::initializeTraceDefaultsDict();
                EXPECT_TRUE(ZQLog::traceKeyIsEnabled("TraceSteady"));
                ZQLog::log("inside");
            }
            EXPECT_TRUE(ZQLog::traceKeyIsEnabled("TraceSteady"));
        });
    }
    std::thread([] { ZQLog::logForTraceKey_usingFormat("TraceSteady", "free again"); }).join();
    EXPECT_EQ(output.texts(), (Texts{"inside", "TraceSteady: free again"}));
}

TEST(ForkedLogging, lettingTheMonitorGoInTheChildFreesItThereOnly) {
    const kit::TraceKeys keys(steady);
    const kit::CapturedOutput output;
    auto* const held = new ZQLog::Synchronized;
    expectInChild([held] {
        delete held;
        std::atomic<bool> isOn = false;
        std::thread([&isOn] { isOn = ZQLog::traceKeyIsEnabled("TraceSteady"); }).join();
        EXPECT_TRUE(isOn) << "another thread of the child was not answered";
        expectInChild([] { ZQLog::log("grandchild"); });
    });
    // The parent still holds it: another thread waits.
    const Background asking([] { ZQLog::traceKeyIsEnabled("TraceSteady"); });
    EXPECT_TRUE(asking.waitsSoon());
    delete held;
    EXPECT_TRUE(asking.isDoneSoon());
    EXPECT_EQ(output.texts(), Texts{"grandchild"});
}

TEST(ForkedLogging, freesTheMonitorThatALostThreadHeld) {
    const kit::TraceKeys keys(steady);
    std::atomic<int> stage = 0;
    const Background holder([&stage] {
        const ZQLog::Synchronized monitor;
        stage = 1;
        holdsSoon([&stage] { return stage == 2; });
    });
    EXPECT_TRUE(holdsSoon([&stage] { return stage == 1; }));
    expectInChild([] {
        EXPECT_TRUE(ZQLog::traceKeyIsEnabled("TraceSteady"));
        const ZQLog::Synchronized monitor;
        ZQLog::initializeTraceDefaultsDict();
        EXPECT_TRUE(ZQLog::activatedTraceDefaultsKeys().containsObject("TraceSteady"));
    });
    stage = 2;
}

TEST(ForkedLogging, showsEachGenerationItsOwnNumber) {
    const kit::CapturedOutput output;
    expectInChild([] {
        ZQLog::log(std::to_string(::getpid()));
        expectInChild([] { ZQLog::log(std::to_string(::getpid())); });
    });
    ZQLog::log(std::to_string(::getpid()));
    const std::string bytes = output.bytes();
    for (const std::string_view line : kit::linesIn(bytes)) {
        const Prefix prefix = readPrefix(line);
        EXPECT_EQ(line.substr(prefix.length), prefix.processNumber);
        // The thread that forks goes on under the child's number.
        EXPECT_EQ(prefix.threadNumber, hexText(std::stoul(std::string(prefix.processNumber))));
    }
    EXPECT_EQ(kit::linesIn(bytes).size(), 3U);
}

#if !ZQ_TEST_ADDRESS_SANITIZER && !ZQ_TEST_THREAD_SANITIZER

TEST(ForkedLogging, worksWhenTheForkMeetsTheVeryFirstCalls) {
    const kit::ScratchFolder folder;
    const kit::Descriptor file(kit::openToAppend(folder / "log"));
    constexpr int programs = 100;
    for (int i = 0; i < programs; ++i) {
        ASSERT_EQ(kit::run({childProgram("forks-at-first-use")}, file.number()), 0) << "program " << i;
    }
    const Texts texts = textsOf(folder / "log");
    EXPECT_EQ(std::count(texts.begin(), texts.end(), "child"), programs * 8);
    EXPECT_EQ(std::count(texts.begin(), texts.end(), "thread"), programs * 4);
    EXPECT_EQ(texts.size(), programs * 12U);
}

#endif

#ifdef ZQ_TEST_FORKS_IN_EVERY_WAY

TEST(ForkedLogging, worksHoweverTheForkIsMadeAndInHandlersThatComeBeforeTheLibrarysOwn) {
    const kit::ScratchFolder folder;
    const kit::Descriptor nowhere(::open("/dev/null", O_WRONLY | O_CLOEXEC));
    EXPECT_EQ(kit::run({childProgram("forks-in-every-way"), folder / "log"}, nowhere.number()), 0);
    Texts who;
    const std::string bytes = kit::contentsOf(folder / "log");
    for (const std::string_view line : kit::linesIn(bytes)) {
        const Prefix prefix = readPrefix(line);
        const std::string_view text = line.substr(prefix.length);
        EXPECT_EQ(text.substr(text.find(' ') + 1), prefix.processNumber);
        who.emplace_back(text.substr(0, text.find(' ')));
    }
    EXPECT_EQ(who, (Texts{"handler", "fork", "_Fork", "clone"}));
}

#endif

} // namespace
