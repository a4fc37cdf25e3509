// SPDX-License-Identifier: MIT
// Standard error that breaks, is full, is gone or is disturbed: the host is not harmed and later lines go
// out. Each scene runs in a child of its own, where every signal has its default disposition.
#include <atomic>
#include <thread>

#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/time.h>

#include "log/ZQLog.h"
#include "tests/log/HostTesting.h"
#include "tests/process/Scene.h"

using namespace ZQFoundation;
using namespace hosttest;

namespace {

using Texts = std::vector<std::string>;

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

void block(int signal) {
    sigset_t mask;
    sigemptyset(&mask);
    sigaddset(&mask, signal);
    ::pthread_sigmask(SIG_BLOCK, &mask, nullptr);
}

bool hasDefaultDisposition(int signal) {
    struct sigaction action {};
    return ::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_DFL;
}

/// What stays as it is in a call that cannot write.
void expectHostUnharmed(const Findings& findings, const std::string& text) {
    for (const int signal : {SIGPIPE, SIGXFSZ}) {
        setDisposition(signal, SIG_DFL);
    }
    errno = EDOM;
    ZQLog::log(text);
    findings.expect(errno == EDOM, "errno is " + std::to_string(errno));
    for (const int signal : {SIGPIPE, SIGXFSZ}) {
        const std::string name = "signal " + std::to_string(signal);
        findings.expect(!isPending(signal), name + " is pending");
        findings.expect(!isBlocked(signal), name + " is blocked");
        findings.expect(hasDefaultDisposition(signal), name + " is not as it was");
    }
}

/// A scene in a child, after which descriptor 2 is a good file: a line goes out whole, the first of that
/// file.
template <class Scene>
std::string brokenThenGood(const Scene& scene) {
    const scene::Folder folder;
    const std::string end = inChild([&](const Findings& findings) {
        scene(findings);
        const int good = openToAppend(folder / "good");
        ::dup2(good, STDERR_FILENO);
        ZQLog::log("later");
    });
    const Texts texts = textsIn(scene::contentsOf(folder / "good"));
    return texts == Texts{"later"} ? end : end + "; " + std::to_string(texts.size()) + " lines later";
}

enum class Channel { pipe, socket };

void openChannel(Channel channel, int (&ends)[2]) {
    const int result = channel == Channel::pipe ? ::pipe2(ends, O_CLOEXEC)
                                                : ::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends);
    if (result != 0) {
        ::_exit(98);
    }
    if (channel == Channel::socket) {
        std::swap(ends[0], ends[1]);
    }
}

void becomeStandardError(int (&ends)[2]) {
    ::dup2(ends[1], STDERR_FILENO);
    ::close(ends[1]);
}

// With a limit on file sizes, even one far away, lines are written in another way.
constexpr rlim_t farAway = rlim_t{1} << 40;

TEST(HostileDescriptors, surviveTheLossOfTheReader) {
    for (const Channel channel : {Channel::pipe, Channel::socket}) {
        for (const rlim_t limit : {RLIM_INFINITY, farAway}) {
            for (const std::size_t length : {std::size_t{40}, std::size_t{300'000}}) {
                EXPECT_EQ(brokenThenGood([&](const Findings& findings) {
                              setFileSizeLimit(limit);
                              int ends[2];
                              openChannel(channel, ends);
                              becomeStandardError(ends);
                              ::close(ends[0]);
                              expectHostUnharmed(findings, std::string(length, 'x'));
                              expectHostUnharmed(findings, std::string(length, 'y'));
                          }),
                          "")
                    << (channel == Channel::pipe ? "pipe" : "socket") << ", limit " << limit << ", length "
                    << length;
            }
        }
    }
}

TEST(HostileDescriptors, surviveAReaderThatLeavesInTheMiddleOfALine) {
    for (const Channel channel : {Channel::pipe, Channel::socket}) {
        for (const rlim_t limit : {RLIM_INFINITY, farAway}) {
            EXPECT_EQ(brokenThenGood([&](const Findings& findings) {
                          setFileSizeLimit(limit);
                          int ends[2];
                          openChannel(channel, ends);
                          becomeStandardError(ends);
                          std::thread reader([&ends] {
                              char buffer[1000];
                              for (int i = 0; i < 20 && ::read(ends[0], buffer, sizeof buffer) > 0; ++i) {
                              }
                              ::close(ends[0]);
                          });
                          expectHostUnharmed(findings, std::string(4'000'000, 'x'));
                          reader.join();
                      }),
                      "")
                << (channel == Channel::pipe ? "pipe" : "socket") << ", limit " << limit;
        }
    }
}

volatile sig_atomic_t handlerCalls = 0;

void countCall(int) { handlerCalls = handlerCalls + 1; }

TEST(HostileDescriptors, leaveASignalThatTheHostHasPendingToTheHost) {
    for (const rlim_t limit : {RLIM_INFINITY, farAway}) {
        EXPECT_EQ(brokenThenGood([&](const Findings& findings) {
                      setFileSizeLimit(limit);
                      setDisposition(SIGPIPE, countCall);
                      block(SIGPIPE);
                      ::raise(SIGPIPE);
                      int ends[2];
                      openChannel(Channel::pipe, ends);
                      becomeStandardError(ends);
                      ::close(ends[0]);
                      ZQLog::log("lost");
                      findings.expect(isPending(SIGPIPE), "the host's own signal was taken away");
                      findings.expect(isBlocked(SIGPIPE), "the host's mask was changed");
                      findings.expect(handlerCalls == 0, "the host's handler ran");
                  }),
                  "")
            << "limit " << limit;
    }
}

TEST(HostileDescriptors, callNoHandlerOfTheHost) {
    for (const rlim_t limit : {RLIM_INFINITY, farAway}) {
        EXPECT_EQ(brokenThenGood([&](const Findings& findings) {
                      setFileSizeLimit(limit);
                      setDisposition(SIGPIPE, countCall);
                      int ends[2];
                      openChannel(Channel::pipe, ends);
                      becomeStandardError(ends);
                      ::close(ends[0]);
                      ZQLog::log("lost");
                      findings.expect(handlerCalls == 0, "the host's handler ran");
                      struct sigaction action {};
                      ::sigaction(SIGPIPE, nullptr, &action);
                      findings.expect(action.sa_handler == countCall, "the host's handler was replaced");
                  }),
                  "")
            << "limit " << limit;
    }
}

TEST(HostileDescriptors, surviveADescriptorThatTakesNothing) {
    const scene::Folder folder;
    folder.write("file", "as it was");
    const struct {
        const char* path;
        int flags;
    } cases[] = {{"/dev/full", O_WRONLY}, {"/dev/null", O_RDONLY}, {"file", O_RDONLY}, {"", O_RDONLY}};
    for (const auto& row : cases) {
        const std::string path = row.path[0] == '/' ? row.path : folder / row.path;
        EXPECT_EQ(brokenThenGood([&](const Findings& findings) {
                      const int descriptor = ::open(path.c_str(), row.flags | O_CLOEXEC);
                      findings.expect(descriptor >= 0, "cannot be opened");
                      ::dup2(descriptor, STDERR_FILENO);
                      ::close(descriptor);
                      expectHostUnharmed(findings, "short");
                      expectHostUnharmed(findings, std::string(200'000, 'x'));
                  }),
                  "")
            << path;
    }
    EXPECT_EQ(scene::contentsOf(folder / "file"), "as it was");
}

TEST(HostileDescriptors, surviveDatagramsThatAreTooLong) {
    EXPECT_EQ(brokenThenGood([](const Findings& findings) {
                  int ends[2];
                  findings.expect(::socketpair(AF_UNIX, SOCK_DGRAM, 0, ends) == 0, "no socket");
                  becomeStandardError(ends);
                  expectHostUnharmed(findings, std::string(8'000'000, 'x'));
                  ZQLog::log("short");
                  char buffer[200];
                  const ssize_t count = ::recv(ends[0], buffer, sizeof buffer, MSG_DONTWAIT);
                  const std::string_view got(buffer, count > 0 ? static_cast<std::size_t>(count) : 0);
                  findings.expect(textsIn(got) == Texts{"short"}, "the next line is not whole");
              }),
              "");
}

TEST(HostileDescriptors, surviveAClosedStandardError) {
    EXPECT_EQ(brokenThenGood([](const Findings& findings) {
                  ::close(STDERR_FILENO);
                  expectHostUnharmed(findings, "short");
                  expectHostUnharmed(findings, std::string(200'000, 'x'));
                  ZQLog::initializeTraceDefaultsDict();
                  ZQLog::traceKeyIsEnabled("TraceNever");
                  ZQLog::logPrefix();
                  findings.expect(::fcntl(STDERR_FILENO, F_GETFD) == -1 && errno == EBADF, "it was opened");
              }),
              "");
}

TEST(HostileDescriptors, neverWriteIntoAFileThatTheHostOpensInTheirPlaceForReading) {
    const scene::Folder folder;
    folder.write("file", "as it was");
    EXPECT_EQ(inChild([&](const Findings& findings) {
                  ::close(STDERR_FILENO);
                  const int descriptor = ::open((folder / "file").c_str(), O_RDONLY);
                  findings.expect(descriptor == STDERR_FILENO, "another number");
                  ZQLog::log("lost");
              }),
              "");
    EXPECT_EQ(scene::contentsOf(folder / "file"), "as it was");
}

// A file-size limit.

constexpr rlim_t smallLimit = 4'096;

/// Logs into a file over its limit, lifts the limit, logs again; what the file holds in the end.
std::string overTheLimit(const std::string& path, bool linesBeforeTheLimit) {
    return inChild([&](const Findings& findings) {
        const int file = openToAppend(path);
        ::dup2(file, STDERR_FILENO);
        if (linesBeforeTheLimit) {
            for (int i = 0; i < 10; ++i) {
                ZQLog::log("before");
            }
        }
        const double nextSecond = secondsNow(CLOCK_REALTIME) + 1; // until then a limit may go unnoticed
        detail::overrides::clock = &nextSecond;
        setFileSizeLimit(smallLimit);
        for (int i = 0; i < 100; ++i) {
            expectHostUnharmed(findings, "line " + std::to_string(i) + ' ' + std::string(100, 'x'));
        }
        expectHostUnharmed(findings, std::string(100'000, 'x'));
        findings.expect(::lseek(file, 0, SEEK_END) <= static_cast<off_t>(smallLimit), "the limit was passed");
        setFileSizeLimit(RLIM_INFINITY);
        ZQLog::log("later");
        ZQLog::log("last");
    });
}

TEST(HostileDescriptors, surviveAFileSizeLimit) {
    for (const bool linesBeforeTheLimit : {false, true}) {
        const scene::Folder folder;
        EXPECT_EQ(overTheLimit(folder / "log", linesBeforeTheLimit), "") << linesBeforeTheLimit;
        const Texts texts = textsIn(scene::contentsOf(folder / "log"));
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

/// Lines into a channel whose reader dawdles, while a handler interrupts every millisecond.
void writeDisturbed(const Findings& findings, Channel channel) {
    int ends[2];
    openChannel(channel, ends);
    becomeStandardError(ends);
    LineChecker checker;
    block(SIGALRM); // for the reader; the writer lets it through
    std::thread reader([&checker, &ends] {
        std::string buffer(3'000, '\0');
        ssize_t count = 0;
        while ((count = ::read(ends[0], buffer.data(), buffer.size())) > 0) {
            checker.take(std::string_view(buffer).substr(0, static_cast<std::size_t>(count)));
            ::usleep(50);
        }
    });
    setDisposition(SIGALRM, countCall);
    sigset_t alarms;
    sigemptyset(&alarms);
    sigaddset(&alarms, SIGALRM);
    ::pthread_sigmask(SIG_UNBLOCK, &alarms, nullptr);
    setTimer(1'000);
    constexpr int lines = 300;
    for (int i = 0; i < lines; ++i) {
        errno = EDOM;
        ZQLog::log(numberedText(1, i, i % 10 == 9 ? 100'000 : 100));
        findings.expect(errno == EDOM, "errno was changed");
    }
    setTimer(0);
    ::close(STDERR_FILENO);
    reader.join();
    findings.expect(handlerCalls > 20, "only " + std::to_string(handlerCalls) + " interruptions");
    const std::string verdict = checker.verdict(1, lines);
    findings.expect(verdict.empty(), verdict);
}

/// What becomes of two lines in the same second with a change of the world in between, and of a third in the
/// next second. Signals end the child; nothing waits for a clock.
template <class Change>
std::string endAfter(const Change& change, bool isInTheNextSecond) {
    const scene::Folder folder;
    return inChild([&](const Findings& found) {
        setDisposition(SIGPIPE, SIG_DFL);
        setDisposition(SIGXFSZ, SIG_DFL);
        const Descriptor file(openToAppend(folder / "log"));
        ::dup2(file.number(), STDERR_FILENO);
        double now = 1709647629;
        detail::overrides::clock = &now;
        ZQLog::log("first");
        change();
        now += isInTheNextSecond ? 1 : 0.5;
        errno = EDOM;
        ZQLog::log("second");
        found.expect(errno == EDOM && !isPending(SIGPIPE) && !isPending(SIGXFSZ), "the host was touched");
        ::dup2(file.number(), STDERR_FILENO);
        setFileSizeLimit(RLIM_INFINITY);
        ZQLog::log("third");
        found.expect(textsIn(scene::contentsOf(folder / "log")) == Texts{"first", "third"}, "other lines");
    });
}

void putPipeWithoutReaderOnStandardError() {
    int ends[2];
    if (::pipe(ends) == 0) {
        ::close(ends[0]);
        ::dup2(ends[1], STDERR_FILENO);
        ::close(ends[1]);
    }
}

TEST(HostileDescriptors, areSeenInTheNextSecondWhenTheHostPutsAPipeInTheirPlace) {
    EXPECT_EQ(endAfter(putPipeWithoutReaderOnStandardError, true), "");
}

TEST(HostileDescriptors, areSeenInTheNextSecondWhenTheHostLowersTheLimit) {
    EXPECT_EQ(endAfter([] { setFileSizeLimit(10); }, true), "");
}

// The price of one system call a line, which the documentation names.
TEST(HostileDescriptors, areTakenForWhatTheyWereWithinTheSecond) {
    EXPECT_EQ(endAfter(putPipeWithoutReaderOnStandardError, false),
              "killed by signal " + std::to_string(SIGPIPE));
    EXPECT_EQ(endAfter([] { setFileSizeLimit(10); }, false), "killed by signal " + std::to_string(SIGXFSZ));
}

TEST(HostileDescriptors, keepLinesWholeWhenSignalsInterruptThem) {
    for (const Channel channel : {Channel::pipe, Channel::socket}) {
        EXPECT_EQ(inChild([&](const Findings& findings) { writeDisturbed(findings, channel); }), "");
        EXPECT_EQ(inChild([&](const Findings& findings) {
                      setFileSizeLimit(farAway);
                      writeDisturbed(findings, channel);
                  }),
                  "");
    }
}

void logFromHandler(int) {
    handlerCalls = handlerCalls + 1;
    ZQLog::logAlways_log(true, "handler");
}

TEST(HostileDescriptors, letASignalHandlerLogInsideALogCall) {
    const scene::Folder folder;
    EXPECT_EQ(inChild(
                  [&](const Findings& findings) {
                      const int file = openToAppend(folder / "log");
                      ::dup2(file, STDERR_FILENO);
                      ZQLog::log("first");
                      setDisposition(SIGALRM, logFromHandler);
                      setTimer(100);
                      const double end = secondsNow() + 3;
                      long lines = 1;
                      for (; secondsNow() < end; ++lines) {
                          ZQLog::logAlways_log(true, "loop");
                      }
                      setTimer(0);
                      findings.expect(handlerCalls > 100,
                                      "only " + std::to_string(handlerCalls) + " interruptions");
                      ZQLog::log(std::to_string(lines) + ' ' + std::to_string(handlerCalls));
                  },
                  20),
              "");
    Texts texts = textsIn(scene::contentsOf(folder / "log"));
    ASSERT_FALSE(texts.empty());
    const long fromHandler = std::count(texts.begin(), texts.end(), "handler");
    const long fromLoop = std::count(texts.begin(), texts.end(), "loop");
    EXPECT_EQ(texts.front(), "first");
    EXPECT_EQ(texts.back(), std::to_string(fromLoop + 1) + ' ' + std::to_string(fromHandler));
    EXPECT_EQ(texts.size(), static_cast<std::size_t>(fromLoop + fromHandler + 2));
}

// A thread that is being canceled.

void* logWhileCancelled(void*) {
    ::pthread_cancel(::pthread_self()); // pending from here on
    ZQLog::log("whole");
    ZQLog::initializeTraceDefaultsDict();
    ZQLog::logForTraceKey_threshold_usingFormat("TraceNever", 0, "%@",
                                                ZQLog::logPrefix() ? "whole" : "no prefix");
    ::pthread_testcancel();
    ZQLog::log("not reached");
    return nullptr;
}

TEST(HostileDescriptors, letAThreadThatIsBeingCancelledFinishItsLine) {
    for (const rlim_t limit : {RLIM_INFINITY, farAway}) {
        const scene::Folder folder;
        EXPECT_EQ(inChild([&](const Findings& findings) {
                      const int file = openToAppend(folder / "log");
                      ::dup2(file, STDERR_FILENO);
                      setFileSizeLimit(limit);
                      pthread_t thread{};
                      void* result = nullptr;
                      ::pthread_create(&thread, nullptr, logWhileCancelled, nullptr);
                      ::pthread_join(thread, &result);
                      findings.expect(result == PTHREAD_CANCELED, "the thread was not cancelled");
                      ZQLog::logForTraceKey_threshold_usingFormat("TraceNever", 0, "after");
                  }),
                  "")
            << "limit " << limit;
        EXPECT_EQ(textsIn(scene::contentsOf(folder / "log")),
                  (Texts{"whole", "TraceNever>=0: whole", "TraceNever>=0: after"}));
    }
}

// A descriptor that would block.

/// Writes to a full channel with a slow reader from four threads and measures what the waiting costs.
void writeToFullChannel(const Findings& findings, Channel channel) {
    int ends[2];
    openChannel(channel, ends);
    ::fcntl(ends[1], F_SETFL, ::fcntl(ends[1], F_GETFL) | O_NONBLOCK);
    becomeStandardError(ends);
    constexpr int writers = 4;
    constexpr int lines = 40;
    LineChecker checker;
    std::thread reader([&checker, &ends] {
        std::string buffer(8'192, '\0');
        ssize_t count = 0;
        while ((count = ::read(ends[0], buffer.data(), buffer.size())) > 0) {
            checker.take(std::string_view(buffer).substr(0, static_cast<std::size_t>(count)));
            ::usleep(3'000);
        }
    });
    std::atomic<long> microseconds = 0;
    const double start = secondsNow();
    std::vector<std::thread> threads;
    for (int writer = 0; writer < writers; ++writer) {
        threads.emplace_back([writer, &microseconds] {
            for (int i = 0; i < lines; ++i) {
                ZQLog::log(numberedText(writer, i, 10'000));
            }
            microseconds += static_cast<long>(secondsNow(CLOCK_THREAD_CPUTIME_ID) * 1e6);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    const double waited = secondsNow() - start;
    ::close(STDERR_FILENO);
    reader.join();
    // A thread that spun would use a whole processor for as long as the reader takes.
    const double used = static_cast<double>(microseconds) * 1e-6;
    findings.expect(used < waited / 2, std::to_string(used) + " s used in " + std::to_string(waited) + " s");
    const std::string verdict = checker.verdict(writers, lines);
    findings.expect(verdict.empty(), verdict);
}

TEST(HostileDescriptors, waitWithoutSpinningUntilAFullOneTakesMore) {
    for (const Channel channel : {Channel::pipe, Channel::socket}) {
        EXPECT_EQ(inChild([&](const Findings& findings) { writeToFullChannel(findings, channel); }), "");
    }
}

TEST(HostileDescriptors, waitNoLongerWhenTheReaderOfAFullOneLeaves) {
    for (const Channel channel : {Channel::pipe, Channel::socket}) {
        EXPECT_EQ(brokenThenGood([&](const Findings& findings) {
                      int ends[2];
                      openChannel(channel, ends);
                      ::fcntl(ends[1], F_SETFL, ::fcntl(ends[1], F_GETFL) | O_NONBLOCK);
                      becomeStandardError(ends);
                      std::thread reader([&ends] {
                          ::usleep(50'000);
                          ::close(ends[0]);
                      });
                      expectHostUnharmed(findings, std::string(1'000'000, 'x'));
                      reader.join();
                  }),
                  "");
    }
}

} // namespace
