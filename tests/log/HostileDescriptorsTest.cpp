// SPDX-License-Identifier: MIT
// Standard error that breaks, is full, is gone or is disturbed: the host is not harmed and later lines go
// out. Each scene runs in a child of its own, where every signal has its default disposition.
#include <algorithm>
#include <csignal>

#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/time.h>

#include "tests/log/LogScene.h"

using namespace ZQFoundation;
using namespace logscene;
using kit::expectInChild;
using kit::inChild;
using kit::moveOntoStandardError;
using kit::openToAppend;

namespace {

void setDisposition(int signal, void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    ::sigaction(signal, &action, nullptr); // no SA_RESTART
}

void setFileSizeLimit(rlim_t bytes) {
    rlimit limit{};
    ::getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = bytes;
    ::setrlimit(RLIMIT_FSIZE, &limit);
}

bool isPending(int signal) {
    sigset_t pending;
    return ::sigpending(&pending) == 0 && sigismember(&pending, signal) == 1;
}

bool isBlocked(int signal) {
    sigset_t mask;
    return ::pthread_sigmask(SIG_BLOCK, nullptr, &mask) == 0 && sigismember(&mask, signal) == 1;
}

void setBlocked(int signal, bool isBlocked) {
    sigset_t mask;
    sigemptyset(&mask);
    sigaddset(&mask, signal);
    ::pthread_sigmask(isBlocked ? SIG_BLOCK : SIG_UNBLOCK, &mask, nullptr);
}

auto handlerOf(int signal) {
    struct sigaction action {};
    ::sigaction(signal, nullptr, &action);
    return action.sa_handler;
}

/// What stays as it is in a call that cannot write.
void expectHostUnharmed(const std::string& text) {
    for (const int signal : {SIGPIPE, SIGXFSZ}) {
        setDisposition(signal, SIG_DFL);
    }
    errno = EDOM;
    ZQLog::log(text);
    EXPECT_EQ(errno, EDOM);
    for (const int signal : {SIGPIPE, SIGXFSZ}) {
        EXPECT_FALSE(isPending(signal) || isBlocked(signal)) << signal;
        EXPECT_EQ(handlerOf(signal), SIG_DFL) << signal;
    }
}

/// A scene in a child, after which descriptor 2 is a good file: a line goes out whole, the first of that
/// file.
template <class Scene>
void expectGoodAfter(const Scene& scene) {
    const kit::ScratchFolder folder;
    expectInChild([&] {
        scene();
        moveOntoStandardError(openToAppend(folder / "good"));
        ZQLog::log("later");
    });
    EXPECT_EQ(textsOf(folder / "good"), Texts{"later"});
}

enum class Channel { pipe, socket };

/// Opens the channel; its writing end becomes standard error. Returns the reading end.
int standardErrorOn(Channel channel, int flags = 0) {
    int ends[2];
    const int result = channel == Channel::pipe ? ::pipe2(ends, O_CLOEXEC)
                                                : ::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(::fcntl(ends[1], F_SETFL, ::fcntl(ends[1], F_GETFL) | flags), 0);
    moveOntoStandardError(ends[1]);
    return ends[0];
}

// With a limit on file sizes, even one far away, lines are written in another way.
constexpr rlim_t farAway = rlim_t{1} << 40;

/// The body in a scene for each channel and limit, followed by a good file.
template <class Body>
void forEachChannelAndLimit(const Body& body) {
    for (const Channel channel : {Channel::pipe, Channel::socket}) {
        for (const rlim_t limit : {RLIM_INFINITY, farAway}) {
            SCOPED_TRACE((channel == Channel::pipe ? "pipe, limit " : "socket, limit ") +
                         std::to_string(limit));
            expectGoodAfter([&] {
                setFileSizeLimit(limit);
                body(channel);
            });
        }
    }
}

TEST(HostileDescriptors, surviveTheLossOfTheReader) {
    for (const std::size_t length : {std::size_t{40}, std::size_t{300'000}}) {
        forEachChannelAndLimit([length](Channel channel) {
            ::close(standardErrorOn(channel));
            expectHostUnharmed(std::string(length, 'x'));
            expectHostUnharmed(std::string(length, 'y'));
        });
    }
}

TEST(HostileDescriptors, surviveAReaderThatLeavesInTheMiddleOfALine) {
    forEachChannelAndLimit([](Channel channel) {
        const int end = standardErrorOn(channel);
        std::thread reader([end] {
            char buffer[1000];
            for (int i = 0; i < 20 && ::read(end, buffer, sizeof buffer) > 0; ++i) {
            }
            ::close(end);
        });
        expectHostUnharmed(std::string(4'000'000, 'x'));
        reader.join();
    });
}

volatile sig_atomic_t handlerCalls = 0;

void countCall(int) { handlerCalls = handlerCalls + 1; }

TEST(HostileDescriptors, leaveHandlersMaskAndPendingSignalsOfTheHostAlone) {
    for (const bool hasOnePending : {false, true}) {
        forEachChannelAndLimit([hasOnePending](Channel channel) {
            setDisposition(SIGPIPE, countCall);
            if (hasOnePending) {
                setBlocked(SIGPIPE, true);
                ::raise(SIGPIPE);
            }
            ::close(standardErrorOn(channel));
            ZQLog::log("lost");
            EXPECT_EQ(isPending(SIGPIPE), hasOnePending);
            EXPECT_EQ(isBlocked(SIGPIPE), hasOnePending);
            EXPECT_EQ(handlerCalls, 0);
            EXPECT_EQ(handlerOf(SIGPIPE), countCall);
        });
    }
}

TEST(HostileDescriptors, surviveADescriptorThatTakesNothing) {
    const kit::ScratchFolder folder;
    folder.write("file", "as it was");
    const struct {
        const char* path;
        int flags;
    } cases[] = {{"/dev/full", O_WRONLY}, {"/dev/null", O_RDONLY}, {"file", O_RDONLY}, {"", O_RDONLY}};
    for (const auto& row : cases) {
        const std::string path = row.path[0] == '/' ? row.path : folder / row.path;
        SCOPED_TRACE(path);
        expectGoodAfter([&] {
            moveOntoStandardError(::open(path.c_str(), row.flags | O_CLOEXEC));
            expectHostUnharmed("short");
            expectHostUnharmed(std::string(200'000, 'x'));
        });
    }
    EXPECT_EQ(kit::contentsOf(folder / "file"), "as it was");
}

TEST(HostileDescriptors, surviveDatagramsThatAreTooLong) {
    expectGoodAfter([] {
        int ends[2];
        EXPECT_EQ(::socketpair(AF_UNIX, SOCK_DGRAM, 0, ends), 0);
        moveOntoStandardError(ends[1]);
        expectHostUnharmed(std::string(8'000'000, 'x'));
        ZQLog::log("short");
        char buffer[200];
        const ssize_t count = ::recv(ends[0], buffer, sizeof buffer, MSG_DONTWAIT);
        EXPECT_EQ(kit::textsIn({buffer, static_cast<std::size_t>(std::max(count, ssize_t{0}))}),
                  Texts{"short"});
    });
}

TEST(HostileDescriptors, surviveAClosedStandardError) {
    expectGoodAfter([] {
        ::close(STDERR_FILENO);
        expectHostUnharmed("short");
        expectHostUnharmed(std::string(200'000, 'x'));
        ZQLog::initializeTraceDefaultsDict();
        ZQLog::traceKeyIsEnabled("TraceNever");
        ZQLog::logPrefix();
        EXPECT_EQ(::fcntl(STDERR_FILENO, F_GETFD), -1) << "it was opened";
    });
}

TEST(HostileDescriptors, neverWriteIntoAFileThatTheHostOpensInTheirPlaceForReading) {
    const kit::ScratchFolder folder;
    folder.write("file", "as it was");
    expectInChild([&] {
        ::close(STDERR_FILENO);
        EXPECT_EQ(::open((folder / "file").c_str(), O_RDONLY), STDERR_FILENO);
        ZQLog::log("lost");
    });
    EXPECT_EQ(kit::contentsOf(folder / "file"), "as it was");
}

// A file-size limit.

constexpr rlim_t smallLimit = 4'096;

/// Logs into a file over its limit, lifts the limit, logs again.
void logOverTheLimit(const std::string& path, bool linesBeforeTheLimit) {
    const int file = openToAppend(path);
    ::dup2(file, STDERR_FILENO);
    for (int i = 0; linesBeforeTheLimit && i < 10; ++i) {
        ZQLog::log("before");
    }
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    const double nextSecond = static_cast<double>(now.tv_sec + 1); // until then a limit may go unnoticed
    detail::overrides::clock = &nextSecond;
    setFileSizeLimit(smallLimit);
    for (int i = 0; i < 100; ++i) {
        expectHostUnharmed("line " + std::to_string(i) + ' ' + std::string(100, 'x'));
    }
    expectHostUnharmed(std::string(100'000, 'x'));
    EXPECT_LE(::lseek(file, 0, SEEK_END), static_cast<off_t>(smallLimit));
    setFileSizeLimit(RLIM_INFINITY);
    ZQLog::log("later");
    ZQLog::log("last");
    detail::overrides::clock = nullptr;
}

TEST(HostileDescriptors, surviveAFileSizeLimit) {
    for (const bool linesBeforeTheLimit : {false, true}) {
        const kit::ScratchFolder folder;
        expectInChild([&] { logOverTheLimit(folder / "log", linesBeforeTheLimit); });
        const Texts texts = textsOf(folder / "log");
        ASSERT_GE(texts.size(), 12U);
        // The lines that had room are whole; one may be cut off; what follows is on lines of its own.
        std::size_t line = linesBeforeTheLimit ? 10 : 0;
        EXPECT_EQ(std::count(texts.begin(), texts.end(), "before"), linesBeforeTheLimit ? 10 : 0);
        for (int i = 0; line + 3 < texts.size(); ++i, ++line) {
            EXPECT_EQ(texts[line], "line " + std::to_string(i) + ' ' + std::string(100, 'x'));
        }
        EXPECT_EQ(texts[texts.size() - 2], "later");
        EXPECT_EQ(texts.back(), "last");
    }
}

// Signals.

void setTimer(suseconds_t microseconds) {
    itimerval interval{};
    interval.it_interval.tv_usec = microseconds;
    interval.it_value.tv_usec = microseconds;
    ::setitimer(ITIMER_REAL, &interval, nullptr);
}

/// Lines into a channel with a slow reader, while a handler interrupts every millisecond.
void writeDisturbed(Channel channel) {
    const int end = standardErrorOn(channel);
    LineChecker checker;
    setBlocked(SIGALRM, true); // for the reader; the writer lets it through
    std::thread reader([&checker, end] { checker.takeAllOf(end, 3'000, [] { ::usleep(50); }); });
    setDisposition(SIGALRM, countCall);
    setBlocked(SIGALRM, false);
    setTimer(1'000);
    int lines = 0;
    for (; lines < 300 || handlerCalls <= 20; ++lines) {
        errno = EDOM;
        ZQLog::log(numberedText(1, lines, lines % 10 == 9 ? 100'000 : 100));
        EXPECT_EQ(errno, EDOM);
    }
    setTimer(0);
    ::close(STDERR_FILENO);
    reader.join();
    EXPECT_EQ(checker.verdict(1, lines), "");
}

TEST(HostileDescriptors, keepLinesWholeWhenSignalsInterruptThem) { forEachChannelAndLimit(writeDisturbed); }

// A thread that is being canceled.

void* logWhileCanceled(void*) {
    ::pthread_cancel(::pthread_self()); // pending from here on
    ZQLog::log("whole");
    ZQLog::initializeTraceDefaultsDict();
    ZQLog::logForTraceKey_threshold_usingFormat("TraceNever", 0, "%@",
                                                ZQLog::logPrefix() ? "whole" : "no prefix");
    ::pthread_testcancel();
    ZQLog::log("not reached");
    return nullptr;
}

TEST(HostileDescriptors, letAThreadThatIsBeingCanceledFinishItsLine) {
    for (const rlim_t limit : {RLIM_INFINITY, farAway}) {
        const kit::ScratchFolder folder;
        EXPECT_EQ(inChild([&] {
                      moveOntoStandardError(openToAppend(folder / "log"));
                      setFileSizeLimit(limit);
                      pthread_t thread{};
                      void* result = nullptr;
                      ::pthread_create(&thread, nullptr, logWhileCanceled, nullptr);
                      ::pthread_join(thread, &result);
                      EXPECT_EQ(result, PTHREAD_CANCELED);
                      ZQLog::logForTraceKey_threshold_usingFormat("TraceNever", 0, "after");
                  }),
                  0)
            << "limit " << limit;
        EXPECT_EQ(textsOf(folder / "log"), (Texts{"whole", "TraceNever>=0: whole", "TraceNever>=0: after"}));
    }
}

// A descriptor that would block.

double secondsOf(clockid_t clock) {
    timespec now{};
    ::clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

/// Writes to a full channel with a slow reader from four threads and measures what the waiting costs.
void writeToFullChannel(Channel channel) {
    const int end = standardErrorOn(channel, O_NONBLOCK);
    constexpr int writers = 4;
    constexpr int lines = 40;
    LineChecker checker;
    std::thread reader([&checker, end] { checker.takeAllOf(end, 8'192, [] { ::usleep(3'000); }); });
    std::atomic<long> usedMicroseconds = 0;
    const double start = secondsOf(CLOCK_MONOTONIC);
    kit::inThreads(writers, [&usedMicroseconds](std::size_t writer) {
        for (int i = 0; i < lines; ++i) {
            ZQLog::log(numberedText(static_cast<int>(writer), i, 10'000));
        }
        usedMicroseconds += static_cast<long>(secondsOf(CLOCK_THREAD_CPUTIME_ID) * 1e6);
    });
    const double waited = secondsOf(CLOCK_MONOTONIC) - start;
    ::close(STDERR_FILENO);
    reader.join();
    // A thread that spun would use a whole processor for as long as the reader takes.
    EXPECT_LT(static_cast<double>(usedMicroseconds), waited * 1e6 / 2);
    EXPECT_EQ(checker.verdict(writers, lines), "");
}

TEST(HostileDescriptors, waitWithoutSpinningUntilAFullOneTakesMore) {
    for (const Channel channel : {Channel::pipe, Channel::socket}) {
        expectInChild([channel] { writeToFullChannel(channel); });
    }
}

TEST(HostileDescriptors, waitNoLongerWhenTheReaderOfAFullOneLeaves) {
    forEachChannelAndLimit([](Channel channel) {
        const int end = standardErrorOn(channel, O_NONBLOCK);
        {
            const Background writing([] { expectHostUnharmed(std::string(1'000'000, 'x')); });
            EXPECT_TRUE(writing.waitsSoon());
            ::close(end);
        }
    });
}

} // namespace
