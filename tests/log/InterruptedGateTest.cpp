// SPDX-License-Identifier: MIT
// A handler may check trace keys and log at every single instruction of a gate, of a line and of a
// re-reading, and whatever it has interrupted continues as if nothing had happened. The parent moves the
// child from instruction to instruction.
#include <csignal>

#include <gtest/gtest.h>

#if __has_include(<elf.h>) && __has_include(<sys/ptrace.h>)
#include <elf.h>
#include <sys/ptrace.h>
#include <sys/uio.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

#include "foundation/process/NSUserDefaults.h"
#include "foundation/system/TestOverrides.h"
#include "log/ZQLog.h"
#include "log/ZQTraceKey.h"
#include "tests/kit/OneProcessor.h"
#include "tests/log/LogScene.h"

using namespace ZQFoundation;
using logscene::scaled;

namespace {

constinit const ZQTraceKey traceOn("TraceOn");
constinit const ZQTraceKey traceOff("TraceOff");
constinit const ZQAnyTraceKeyOf traceAny("TraceOff", "TraceOn");

constinit volatile bool isWrong = false;
constinit long observedLines = 0;

void observe(const ZQLogLine&, void*) { ++observedLines; }

bool areAnswersRight() {
    return ZQLog::traceKeyIsEnabled("TraceOn") && !ZQLog::traceKeyIsEnabled("TraceOff") &&
           traceOn.isEnabled() && !traceOff.isEnabled() && traceAny.isEnabled() &&
           !ZQLog::logStringForTraceKey_usingFormat("TraceOff", "%d", 1) &&
           ZQLog::logStringForTraceKey_threshold_usingFormat("TraceOn", 3, "%d", 1).length() == 13;
}

// What the child stops by, to say where it is. `raise` would hold signals back for a while.
constexpr int handlerIsDone = SIGSTOP;
constexpr int workBegins = SIGTSTP;
constexpr int workIsDone = SIGTTIN;
void stopBy(int signal) { ::kill(::getpid(), signal); }

void handle(int) {
    ZQLog::logForTraceKey_usingFormat("TraceOn", "%s", "handler");
    traceOff.log("%s", "handler");
    isWrong = isWrong || !areAnswersRight();
    stopBy(handlerIsDone); // what is left is the way back
}

/// What is interrupted. Between two stops, so that only it is.
template <class Work>
[[noreturn]] void beInterrupted(const Work& work) {
    const int nowhere = ::open("/dev/null", O_WRONLY);
    ::dup2(nowhere, STDERR_FILENO);
    NSUserDefaults::standardUserDefaults().registerDefaults(NSDictionary{{"TraceOn", 3}});
    ZQLog::initializeTraceDefaultsDict();
    ZQLog::setLineObserver(observe, nullptr);
    // The kernel's own clock is read again and again until nothing has moved it meanwhile: forever, at this
    // pace.
    static constinit const double now = 1709647629;
    detail::overrides::clock = &now;
    ZQLog::log("first");
    bool isRight = areAnswersRight() && work();
    struct sigaction action {};
    action.sa_handler = handle;
    ::sigaction(SIGUSR1, &action, nullptr);
    if (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) {
        ::_exit(2);
    }
    stopBy(workBegins);
    isRight = work() && isRight;
    stopBy(workIsDone);
    isRight = isRight && areAnswersRight() && observedLines > 1;
    ::_exit(isRight && !isWrong ? 0 : 1);
}

struct Place {
    unsigned long instruction;
    unsigned long stack;
    bool operator==(const Place&) const = default;
};

Place placeOf(pid_t child) {
    user_regs_struct registers{};
    iovec buffer{&registers, sizeof registers};
    ::ptrace(PTRACE_GETREGSET, child, NT_PRSTATUS, &buffer);
#if defined(__x86_64__)
    return {registers.rip, registers.rsp};
#else
    return {registers.pc, registers.sp};
#endif
}

/// The signal that stops the child next; 0 when it has ended.
int nextStop(pid_t child) {
    int status = 0;
    return ::waitpid(child, &status, 0) == child && WIFSTOPPED(status) ? WSTOPSIG(status) : 0;
}

int step(pid_t child) {
    ::ptrace(PTRACE_SINGLESTEP, child, nullptr, nullptr);
    return nextStop(child);
}

/// Lets the handler run where the child is, and brings the child back there. Returns the signal of its last
/// stop.
int interrupt(pid_t child) {
    const Place place = placeOf(child);
    ::ptrace(PTRACE_CONT, child, nullptr, SIGUSR1);
    int stop = nextStop(child);
    if (stop != handlerIsDone) {
        return stop;
    }
    do {
        stop = step(child);
    } while (stop == SIGTRAP && !(placeOf(child) == place));
    return stop;
}

/// Lets the child run to its end; returns whether it says that all was right.
bool endsWell(pid_t child) {
    int status = 0;
    do {
        ::ptrace(PTRACE_CONT, child, nullptr, nullptr);
    } while (::waitpid(child, &status, 0) == child && WIFSTOPPED(status));
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

/// Interrupts the child at every instruction, or at every `stride`th of them. How many there were; -1 when
/// something went wrong.
template <class Work>
long interruptionsOf(const Work& work, long stride) {
    const kit::OneProcessor processor;
    const pid_t child = ::fork();
    if (child == 0) {
        ::alarm(100);
        beInterrupted(work);
    }
    long interruptions = 0;
    int stop = nextStop(child);
    EXPECT_EQ(stop, workBegins);
    for (long i = 0; stop == workBegins || stop == SIGTRAP; ++i) {
        if (i % stride == 0) {
            stop = interrupt(child);
            ++interruptions;
        }
        stop = stop == SIGTRAP ? step(child) : stop;
    }
    EXPECT_EQ(stop, workIsDone);
    return endsWell(child) ? interruptions : -1;
}

void expectUnharmed(const char* what, long interruptions, long fewest) {
    logscene::sayScale(std::string(what) + " interrupted " + std::to_string(interruptions) + " times");
    EXPECT_GT(interruptions, fewest) << what;
}

TEST(InterruptedGate, answersAtEveryInstructionOfAQuestion) {
    expectUnharmed("questions", interruptionsOf([] { return areAnswersRight(); }, scaled(1, 7, 7)), 300);
}

TEST(InterruptedGate, answersAtEveryInstructionOfAScope) {
    expectUnharmed("a scope",
                   interruptionsOf(
                       [] {
                           const ZQLog::Synchronized monitor;
                           return traceOn.isEnabled() && ZQLog::traceKeyIsEnabled("TraceOn");
                       },
                       1),
                   50);
}

TEST(InterruptedGate, answersAtEveryInstructionOfALine) {
    expectUnharmed("a line",
                   interruptionsOf(
                       [] {
                           traceOn.log("%d items", 3);
                           traceOff.log("%d items", 3);
                           return true;
                       },
                       scaled(1, 7, 7)),
                   300);
}

TEST(InterruptedGate, answersAtInstructionsOfAReReading) {
    expectUnharmed("a re-reading",
                   interruptionsOf(
                       [] {
                           ZQLog::initializeTraceDefaultsDict();
                           return true;
                       },
                       scaled(11, 97, 97)),
                   100);
}

} // namespace
#endif
