// SPDX-License-Identifier: MIT
// A forked child can log at once, whatever the threads that it lost were doing.
#include <atomic>
#include <deque>
#include <thread>

#include "log/ZQLog.h"
#include "tests/log/HostTesting.h"
#include "tests/process/Scene.h"

using namespace ZQFoundation;
using namespace hosttest;

namespace {

struct SteadySettings {
    scene::Folder folder;
    std::string file = folder.write(
        "NSGlobalDomain.plist", "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>TraceSteady</key>"
                                "<true/></dict></plist>");
    scene::Path path{detail::overrides::defaultsFolder, folder.path()};
    scene::Arguments arguments{detail::overrides::arguments, {"/bin/Forker"}};
};

#if !defined(ZQ_TEST_ADDRESS_SANITIZER)
// The allocators of the sanitizers are not ready for a fork while another thread is inside them. For the
// thread sanitizer it is enough that the forking thread has blocks in store; the other cannot be helped.

constexpr int childCount = scaled(2'000, 0, 200);
constexpr std::size_t childrenAtOnce = 16;

#if defined(ZQ_TEST_THREAD_SANITIZER)
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
    BusyThreads() {
        for (int i = 0; i < 8; ++i) {
            threads_.emplace_back([this, i] { work(i); });
        }
    }
    BusyThreads(const BusyThreads&) = delete;
    BusyThreads& operator=(const BusyThreads&) = delete;
    ~BusyThreads() {
        stops_ = true;
        for (std::thread& thread : threads_) {
            thread.join();
        }
    }

    long turns() const { return turns_; }

private:
    void work(int number) {
        while (!stops_) {
            ZQLog::logForTraceKey_usingFormat("TraceSteady", "thread %d", number);
            ZQLog::log("of a thread");
            if (number % 2 == 0) {
                const ZQLog::Synchronized monitor;
                ZQLog::initializeTraceDefaultsDict();
            }
            ++turns_;
            // Enough to be inside the library at most moments, and the forking thread still gets its turn.
            ::usleep(20);
        }
    }

    std::atomic<bool> stops_ = false;
    std::atomic<long> turns_ = 0;
    std::vector<std::thread> threads_;
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
void expectLinesOf(const std::vector<pid_t>& children, const std::string& bytes) {
    std::map<std::string, int> found;
    std::string_view rest = bytes;
    while (!rest.empty()) {
        const std::size_t end = rest.find('\n');
        ASSERT_NE(end, rest.npos) << "a line without an end";
        const std::string_view line = rest.substr(0, end);
        const Prefix prefix = prefixOf(line);
        ASSERT_NE(prefix.length, 0U) << line;
        std::string text(line.substr(prefix.length));
        if (text.rfind("TraceSteady: ", 0) == 0) {
            text.erase(0, std::strlen("TraceSteady: "));
        }
        if (text.rfind("child ", 0) == 0) {
            ASSERT_EQ(text.substr(text.find(" of ") + 4), prefix.pid);
            ++found[text];
        } else {
            ASSERT_EQ(prefix.pid, std::to_string(::getpid()));
            ASSERT_TRUE(text == "of a thread" || text.rfind("thread ", 0) == 0) << line;
        }
        rest.remove_prefix(end + 1);
    }
    ASSERT_EQ(found.size(), children.size());
    for (std::size_t number = 0; number < children.size(); ++number) {
        const std::string text =
            "child " + std::to_string(number) + " of " + std::to_string(children[number]);
        ASSERT_EQ(found[text], 1) << text;
    }
}

TEST(ForkedLogging, worksInChildrenOfAProcessWhoseThreadsLog) {
    const scene::Folder folder;
    const SteadySettings settings;
    std::vector<pid_t> children;
    {
        const Descriptor file(openToAppend(folder / "log"));
        const StandardErrorAs standardError(file.number());
        ZQLog::initializeTraceDefaultsDict();
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
                ASSERT_EQ(endOf(running.front(), 60), "") << "child " << children.size() - running.size();
                running.pop_front();
            }
        }
        EXPECT_GT(threads.turns(), 0);
        sayScale(std::to_string(childCount) + " children during " + std::to_string(threads.turns()) +
                 " turns");
    }
    expectLinesOf(children, scene::contentsOf(folder / "log"));
}

#endif

TEST(ForkedLogging, worksInAChildOfAThreadThatHoldsTheMonitor) {
    const scene::Folder folder;
    const SteadySettings settings;
    const Descriptor file(openToAppend(folder / "log"));
    const StandardErrorAs standardError(file.number());
    ZQLog::initializeTraceDefaultsDict();
    std::string end;
    {
        const ZQLog::Synchronized outer;
        {
            const ZQLog::Synchronized inner;
            end = inChild([](const Findings& findings) {
                {
                    const ZQLog::Synchronized again; // the child still holds it, two levels deep
                    ZQLog::initializeTraceDefaultsDict();
                    findings.expect(ZQLog::traceKeyIsEnabled("TraceSteady"), "key not on");
                    ZQLog::log("inside");
                }
                findings.expect(ZQLog::traceKeyIsEnabled("TraceSteady"), "key not on");
            });
        }
    }
    EXPECT_EQ(end, "");
    EXPECT_EQ(textsIn(scene::contentsOf(folder / "log")), std::vector<std::string>{"inside"});
    std::thread([] { ZQLog::logForTraceKey_usingFormat("TraceSteady", "free again"); }).join();
    EXPECT_EQ(textsIn(scene::contentsOf(folder / "log")).back(), "TraceSteady: free again");
}

TEST(ForkedLogging, lettingTheMonitorGoInTheChildFreesItThereOnly) {
    const SteadySettings settings;
    const scene::Folder folder;
    const Descriptor file(openToAppend(folder / "log"));
    const StandardErrorAs standardError(file.number());
    ZQLog::initializeTraceDefaultsDict();
    auto* const held = new ZQLog::Synchronized;
    const std::string end = inChild(
        [&](const Findings& findings) {
            delete held;
            std::atomic<bool> isOn = false;
            std::thread([&isOn] { isOn = ZQLog::traceKeyIsEnabled("TraceSteady"); }).join();
            findings.expect(isOn, "another thread of the child was not answered");
            findings.expect(inChild([](const Findings&) { ZQLog::log("grandchild"); }, 30).empty(),
                            "grandchild");
        },
        60);
    EXPECT_EQ(end, "");
    // The parent holds it still: another thread waits.
    std::atomic<bool> answered = false;
    std::thread asking([&answered] {
        ZQLog::traceKeyIsEnabled("TraceSteady");
        answered = true;
    });
    ::usleep(20'000);
    EXPECT_FALSE(answered);
    delete held;
    asking.join();
    EXPECT_TRUE(answered);
    EXPECT_EQ(textsIn(scene::contentsOf(folder / "log")), std::vector<std::string>{"grandchild"});
}

TEST(ForkedLogging, freesTheMonitorThatALostThreadHeld) {
    const SteadySettings settings;
    ZQLog::initializeTraceDefaultsDict();
    std::atomic<int> stage = 0;
    std::thread holder([&stage] {
        const ZQLog::Synchronized monitor;
        stage = 1;
        while (stage == 1) {
            ::usleep(200);
        }
    });
    while (stage == 0) {
        ::usleep(200);
    }
    const std::string end = inChild(
        [](const Findings& findings) {
            findings.expect(ZQLog::traceKeyIsEnabled("TraceSteady"), "key not on");
            const ZQLog::Synchronized monitor;
            ZQLog::initializeTraceDefaultsDict();
            findings.expect(ZQLog::activatedTraceDefaultsKeys().containsObject("TraceSteady"),
                            "key not listed");
        },
        60);
    stage = 2;
    holder.join();
    EXPECT_EQ(end, "");
}

TEST(ForkedLogging, showsEachGenerationItsOwnNumber) {
    const scene::Folder folder;
    const Descriptor file(openToAppend(folder / "log"));
    const StandardErrorAs standardError(file.number());
    const std::string end = inChild([](const Findings& findings) {
        ZQLog::log("child " + std::to_string(::getpid()));
        findings.expect(
            inChild([](const Findings&) { ZQLog::log("grandchild " + std::to_string(::getpid())); }).empty(),
            "grandchild");
    });
    EXPECT_EQ(end, "");
    ZQLog::log("parent " + std::to_string(::getpid()));
    const std::string bytes = scene::contentsOf(folder / "log");
    int lines = 0;
    std::string_view rest = bytes;
    for (std::size_t lineEnd = rest.find('\n'); lineEnd != rest.npos; lineEnd = rest.find('\n')) {
        const Prefix prefix = prefixOf(rest.substr(0, lineEnd));
        const std::string_view text = rest.substr(prefix.length, lineEnd - prefix.length);
        EXPECT_EQ(text.substr(text.find(' ') + 1), prefix.pid);
        char thread[32]; // the thread that forks goes on under the child's number
        std::snprintf(thread, sizeof thread, "%lx",
                      std::strtoul(std::string(prefix.pid).c_str(), nullptr, 10));
        EXPECT_EQ(prefix.thread, thread);
        rest.remove_prefix(lineEnd + 1);
        ++lines;
    }
    EXPECT_EQ(lines, 3);
}

#if !defined(ZQ_TEST_ADDRESS_SANITIZER) && !defined(ZQ_TEST_THREAD_SANITIZER)

TEST(ForkedLogging, worksWhenTheForkMeetsTheVeryFirstCalls) {
    const scene::Folder folder;
    const Descriptor file(openToAppend(folder / "log"));
    constexpr int programs = 100;
    for (int i = 0; i < programs; ++i) {
        ASSERT_EQ(run({childProgram("forks-at-first-use")}, file.number(), 60), "") << "program " << i;
    }
    std::map<std::string, int> counts;
    for (const std::string& text : textsIn(scene::contentsOf(folder / "log"))) {
        ++counts[text];
    }
    sayScale(std::to_string(programs) + " programs");
    EXPECT_EQ(counts, (std::map<std::string, int>{{"child", programs * 8}, {"thread", programs * 4}}));
}

#endif

#ifdef ZQ_TEST_FORKS_IN_EVERY_WAY

TEST(ForkedLogging, worksHoweverTheForkIsMadeAndInHandlersThatComeBeforeTheLibrarysOwn) {
    const scene::Folder folder;
    const Descriptor nowhere(::open("/dev/null", O_WRONLY | O_CLOEXEC));
    EXPECT_EQ(run({childProgram("forks-in-every-way"), folder / "log"}, nowhere.number(), 60), "");
    std::vector<std::string> who;
    const std::string bytes = scene::contentsOf(folder / "log");
    for (std::string_view rest = bytes; !rest.empty(); rest.remove_prefix(rest.find('\n') + 1)) {
        const Prefix prefix = prefixOf(rest);
        const std::string_view text = rest.substr(prefix.length, rest.find('\n') - prefix.length);
        EXPECT_EQ(text.substr(text.find(' ') + 1), prefix.pid);
        who.emplace_back(text.substr(0, text.find(' ')));
    }
    EXPECT_EQ(who, (std::vector<std::string>{"handler", "fork", "_Fork", "clone"}));
}

#endif

} // namespace
