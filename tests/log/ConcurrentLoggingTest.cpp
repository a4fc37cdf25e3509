// SPDX-License-Identifier: MIT
// Many threads log at once, into everything that standard error may be, while others re-read the trace keys.
#include <sys/resource.h>
#include <termios.h>

#include "foundation/time/NSDateFormatter.h"
#include "tests/log/LogScene.h"

#if ZQ_TEST_ADDRESS_SANITIZER || ZQ_TEST_THREAD_SANITIZER
// Standard error is a part of these tests, so reports go elsewhere. A signal stack of the sanitizer's own
// would be removed on the stack of a canceled thread, which it takes to be out of bounds.
extern "C" const char* __asan_default_options() { return "log_path=stdout:use_sigaltstack=0"; }
extern "C" const char* __tsan_default_options() { return "log_path=stdout"; }
#endif

using namespace ZQFoundation;
using namespace logscene;

namespace {

constexpr int writerCount = 16;
constexpr int linesPerWriter = scaled(6'000, 5'000, 2'000);

/// Most lines are short, every hundredth up to 100 kB.
std::size_t fillingLength(int writer, int sequence) {
    const unsigned mixed = static_cast<unsigned>(writer * 7919 + sequence) * 2654435761U >> 8;
    return sequence % 100 == 99 ? 200 + mixed % 99'500 : mixed % 100;
}

const Texts labels{"TraceSteady: ", "work() ", "TraceLevel>=2: "};

/// Two keys are always on and a third comes and goes.
kit::Settings settings(bool withThird) {
    return {{"TraceSteady", "<true/>"},
            {"TraceThird", withThird ? "<true/>" : "<false/>"},
            {"TraceLevel", "<integer>3</integer>"}};
}

void writeNumberedLine(int writer, int sequence) {
    const std::string text = numberedText(writer, sequence, fillingLength(writer, sequence));
    switch (sequence % 4) {
    case 0:
        ZQLog::logAlways_log(true, text);
        break;
    case 1:
        ZQLog::logAlways_logForTraceKey_usingFormat(true, "TraceSteady", "%@", text);
        break;
    case 2:
        ZQLog::logFunctionName_logAlways_logWithFormat("work", true, "%s", text.c_str());
        break;
    default:
        ZQLog::logAlways_logForTraceKey_threshold_usingFormat(true, "TraceLevel", 2, "%@", NSString(text));
        break;
    }
}

/// Threads that re-read the trace keys and ask about them until they are asked to stop.
class Unrest {
public:
    Unrest() = default;
    Unrest(const Unrest&) = delete;
    Unrest& operator=(const Unrest&) = delete;
    ~Unrest() { stop(); }

    void stop() {
        stops_ = true;
        threads_.join();
    }

    std::atomic<long> readings = 0;
    std::atomic<long> questions = 0;
    std::atomic<long> wrongAnswers = 0;

private:
    void reread(bool changes) {
        for (bool withThird = false; !stops_; withThird = !withThird) {
            if (changes) {
                keys_.replace(settings(withThird));
            }
            {
                const ZQLog::Synchronized monitor;
                ZQLog::initializeTraceDefaultsDict();
            }
            ++readings;
            ::usleep(500);
        }
    }

    void ask() {
        const NSArray both{"TraceThird", "TraceSteady"};
        while (!stops_) {
            const NSArray active = ZQLog::activatedTraceDefaultsKeys();
            const bool holdsSteady = active.containsObject("TraceSteady") && active.count() <= 3;
            const NSString any = ZQLog::logStringForAnyTraceKeyOf_usingFormat(both, "%d", 7);
            const NSString all = ZQLog::logStringForAllTraceKeysOf_usingFormat(both, "%d", 7);
            const bool isRight =
                any == NSString("TraceSteady: 7") || any == NSString("TraceThird/TraceSteady: 7");
            const bool isWhole = !all || all == NSString("TraceThird+TraceSteady: 7");
            if (!holdsSteady || !isRight || !isWhole || !ZQLog::traceKeyIsEnabled("TraceSteady") ||
                ZQLog::traceKeyIsEnabled("TraceNever") || !ZQLog::aTraceDefaultValueHasBeenActivated()) {
                ++wrongAnswers;
            }
            ++questions;
            ::usleep(100);
        }
    }

    const kit::TraceKeys keys_{settings(true)};
    std::atomic<bool> stops_ = false;
    kit::Threads threads_{4, [this](std::size_t number) {
                              number < 2 ? reread(number == 0) : ask();
                          }};
};

void writeFromAllThreads(int lines) {
    Unrest unrest;
    kit::inThreads(writerCount, [lines](std::size_t writer) {
        for (int sequence = 0; sequence < lines; ++sequence) {
            writeNumberedLine(static_cast<int>(writer), sequence);
        }
    });
    unrest.stop();
    sayScale(std::to_string(writerCount) + " threads of " + std::to_string(lines) + " lines, " +
             std::to_string(unrest.readings) + " readings, " + std::to_string(unrest.questions) +
             " questions");
    EXPECT_EQ(unrest.wrongAnswers, 0);
    EXPECT_GT(unrest.readings, 0);
    EXPECT_GT(unrest.questions, 0);
}

/// Writes into one end while another thread checks what arrives at the other.
std::string verdictOfWriting(int writeEnd, int readEnd, int lines) {
    LineChecker checker(labels);
    const kit::Descriptor reading(readEnd);
    std::thread reader([&checker, readEnd] { checker.takeAllOf(readEnd); });
    {
        const kit::Descriptor end(writeEnd);
        const kit::StandardErrorAs standardError(end.number());
        writeFromAllThreads(lines);
    }
    reader.join();
    return checker.verdict(writerCount, lines);
}

/// The two ends of a terminal that changes no byte; negative when there is none.
std::pair<int, int> openTerminal() {
    const int reading = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    char name[128];
    if (reading < 0 || ::grantpt(reading) != 0 || ::unlockpt(reading) != 0 ||
        ::ptsname_r(reading, name, sizeof name) != 0) {
        return {reading, -1};
    }
    const int writing = ::open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
    termios settings{};
    ::tcgetattr(writing, &settings);
    ::cfmakeraw(&settings);
    ::tcsetattr(writing, TCSANOW, &settings);
    return {reading, writing};
}

TEST(ConcurrentLogging, keepsEveryLineInAFile) {
    const kit::ScratchFolder folder;
    {
        const kit::StandardErrorIn standardError(folder / "log");
        writeFromAllThreads(linesPerWriter);
    }
    LineChecker checker(labels);
    const kit::Descriptor written(::open((folder / "log").c_str(), O_RDONLY | O_CLOEXEC));
    checker.takeAllOf(written.number());
    EXPECT_EQ(checker.verdict(writerCount, linesPerWriter), "");
}

void expectEveryLineInAPipe(int flags, int lines) {
    int ends[2];
    ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    ASSERT_EQ(::fcntl(ends[1], F_SETFL, flags), 0);
    EXPECT_EQ(verdictOfWriting(ends[1], ends[0], lines), "");
}

TEST(ConcurrentLogging, keepsEveryLineInAPipe) { expectEveryLineInAPipe(0, linesPerWriter); }

TEST(ConcurrentLogging, keepsEveryLineInAPipeThatDoesNotBlock) {
    expectEveryLineInAPipe(O_NONBLOCK, linesPerWriter / 4);
}

TEST(ConcurrentLogging, keepsEveryLineOnATerminal) {
    const auto [reading, writing] = openTerminal();
    ASSERT_GE(writing, 0) << "no terminal: " << std::strerror(errno);
    EXPECT_EQ(verdictOfWriting(writing, reading, linesPerWriter / 2), "");
}

TEST(ConcurrentLogging, keepsEveryLineUnderAFileSizeLimit) {
    // A limit, even one far away, is met with another way of writing.
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit limit{rlim_t{1} << 34, before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    expectEveryLineInAPipe(0, linesPerWriter / 4);
    EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &before), 0);
}

TEST(ConcurrentLogging, keepsLinesOfSeveralProcessesWholeInAFile) {
    constexpr int processes = 8;
    constexpr int lines = scaled(5'000, 1'000, 300);
    const kit::ScratchFolder folder;
    std::vector<pid_t> children;
    for (int process = 0; process < processes; ++process) {
        children.push_back(::fork());
        if (children.back() == 0) {
            kit::moveOntoStandardError(kit::openToAppend(folder / "log"));
            for (int sequence = 0; sequence < lines; ++sequence) {
                ZQLog::logAlways_log(true, numberedText(process, sequence, fillingLength(process, sequence)));
            }
            ::_exit(0);
        }
    }
    for (const pid_t child : children) {
        EXPECT_EQ(kit::endOf(child), 0);
    }
    std::vector<int> next(processes, 0);
    for (const std::string& text : textsOf(folder / "log")) {
        const int process = std::atoi(text.c_str());
        ASSERT_TRUE(process >= 0 && process < processes) << text.substr(0, 200);
        int& sequence = next[static_cast<std::size_t>(process)];
        ASSERT_EQ(text, numberedText(process, sequence, fillingLength(process, sequence)));
        ++sequence;
    }
    EXPECT_EQ(next, std::vector<int>(processes, lines));
    sayScale(std::to_string(processes) + " processes of " + std::to_string(lines) + " lines");
}

TEST(ConcurrentLogging, makesSharedThingsOnceWhenThreadsAskTogether) {
    std::vector<const NSDateFormatter*> formatters(writerCount, nullptr);
    std::atomic<int> ready = 0;
    std::atomic<int> wrong = 0;
    kit::inThreads(writerCount, [&](std::size_t i) {
        ++ready;
        while (ready < writerCount) {
            std::this_thread::yield();
        }
        formatters[i] = &ZQLog::dateFormatterLong();
        const NSString prefix = ZQLog::logPrefix();
        const std::string end = "[" + std::to_string(::getpid()) + "]: ";
        wrong += prefix.hasSuffix(end) && &ZQLog::dateFormatterLong() == formatters[i] ? 0 : 1;
    });
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(std::count(formatters.begin(), formatters.end(), formatters.front()), writerCount);
}

} // namespace
