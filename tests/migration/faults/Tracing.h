// SPDX-License-Identifier: MIT
// Runs an operation in a child of which every system call that touches files below a folder can be made to
// fail, to transfer less than it was asked to, or be the child's last, and lets others work in between. The
// library calls the system without the C library's functions in between, so the fault is made where the call
// enters the kernel: a filter in the child stops it there, and the parent decides what becomes of it.
#ifndef ZQFOUNDATION_TESTS_FAULTS_TRACING_H
#define ZQFOUNDATION_TESTS_FAULTS_TRACING_H

#include <cerrno>
#include <csignal>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/kit/Child.h"
#include "tests/kit/Environment.h"
#include "tests/kit/OneProcessor.h"
#include "tests/migration/MigrationScene.h"
#include "tests/migration/faults/StoppedCall.h"

namespace ZQFoundation::faults {

struct Fault {
    enum Kind { none, failing, killing, shorteningToOne, shorteningToHalf } kind = none;
    int error = 0;
    long call = 0;        ///< which call, from 1; of those that transfer bytes when they are shortened
    bool lasting = false; ///< every call from that one on
    int signal = SIGKILL; ///< that kills

    bool isShortening() const { return kind == shorteningToOne || kind == shorteningToHalf; }
};

/// A lasting EINTR ends after this many calls: an operation may rightly retry forever.
inline constexpr long longestInterruption = 200;

inline constexpr const char notTraced[] = "this machine does not permit one process to trace another";

/// What somebody else does while the operation is stopped before its call with this number, from 1; returns
/// whether there will be more to do.
using Deed = std::function<bool(long call)>;

/// How an operation is run: the folder whose files count, what goes wrong, and what happens meanwhile.
struct Trial {
    const std::string& base;
    Fault fault{};
    Deed deed{};
    bool records = false;  ///< the names of the calls are kept
    unsigned seconds = 60; ///< after which the operation counts as hung
};

struct Outcome {
    bool traced = false; ///< false: the machine does not permit it
    bool ended = false;  ///< the operation came to its end and reported
    bool hung = false;
    long calls = 0;
    long transfers = 0; ///< of the calls, those that read or write bytes
    std::string report;
    std::vector<std::string> names; ///< of the calls, when they are recorded

    /// Whether the call was reached at which the fault was planned.
    bool met(const Fault& fault) const { return (fault.isShortening() ? transfers : calls) >= fault.call; }
};

/// The child's filter: the calls of the table stop for the parent, all others pass.
inline bool installFilter() {
    std::vector<sock_filter> program;
    program.push_back(BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)));
    for (const FileCall& call : fileCalls) {
        program.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(call.number), 0, 1));
        program.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_TRACE));
    }
    program.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    const sock_fprog filter{static_cast<unsigned short>(program.size()), program.data()};
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) == 0;
}

/// What makes many small runs quick.
struct QuickRuns {
    kit::ScratchInMemory memory;
    kit::OneProcessor processor;
};

/// The parent's side of one run.
class Tracer {
public:
    Tracer(pid_t child, const Trial& trial) : child_(child), trial_(trial) {}

    Outcome run() {
        int status = 0;
        if (::waitpid(child_, &status, 0) != child_ || !WIFSTOPPED(status) || WSTOPSIG(status) != SIGSTOP ||
            !setOptions(PTRACE_O_TRACESECCOMP | PTRACE_O_EXITKILL)) {
            ::kill(child_, SIGKILL);
            ::waitpid(child_, &status, 0);
            return outcome_;
        }
        int signal = 0;
        for (;;) {
            ::ptrace(PTRACE_CONT, child_, nullptr, reinterpret_cast<void*>(static_cast<long>(signal)));
            if (::waitpid(child_, &status, 0) != child_ || !WIFSTOPPED(status)) {
                break;
            }
            signal = 0;
            if (status >> 8 == (SIGTRAP | PTRACE_EVENT_SECCOMP << 8)) {
                atCall();
            } else if (WSTOPSIG(status) != SIGTRAP && WSTOPSIG(status) != SIGSTOP) {
                signal = WSTOPSIG(status);
            }
        }
        outcome_.ended = WIFEXITED(status) && WEXITSTATUS(status) == 0;
        outcome_.traced = !(WIFEXITED(status) && WEXITSTATUS(status) == notPermitted);
        outcome_.hung = WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM;
        return outcome_;
    }

    static constexpr int notPermitted = 77; ///< what the child returns when it cannot be traced

private:
    void atCall() {
        if (isOver_) {
            return;
        }
        StoppedCall call(child_, trial_.base);
        if (!call.concernsBase()) {
            return;
        }
        ++outcome_.calls;
        outcome_.transfers += call.isTransfer() ? 1 : 0;
        if (trial_.records) {
            outcome_.names.push_back(std::string(call.name()) + " " + call.where());
        }
        const bool hasMoreToDo = trial_.deed && trial_.deed(outcome_.calls);
        const bool isDisturbed = disturb(call) && !trial_.fault.lasting;
        isOver_ = !hasMoreToDo && !trial_.records && (trial_.deed || isDisturbed);
        if (isOver_) { // root may spare the child the stops at all further calls
            setOptions(PTRACE_O_TRACESECCOMP | PTRACE_O_EXITKILL | PTRACE_O_SUSPEND_SECCOMP);
        }
    }

    bool setOptions(long options) const {
        return ::ptrace(PTRACE_SETOPTIONS, child_, nullptr, reinterpret_cast<void*>(options)) == 0;
    }

    /// Whether the fault was made.
    bool disturb(const StoppedCall& call) {
        const Fault& fault = trial_.fault;
        switch (fault.kind) {
        case Fault::none:
            break;
        case Fault::killing:
            return outcome_.calls == fault.call && ::kill(child_, trial_.fault.signal) == 0;
        case Fault::failing:
            if (isItsTurn(outcome_.calls, fault.error == EINTR)) {
                EXPECT_TRUE(call.replaceBy(fault.error)) << "the call could not be replaced";
                return true;
            }
            break;
        case Fault::shorteningToOne:
        case Fault::shorteningToHalf:
            if (call.isTransfer() && isItsTurn(outcome_.transfers, false)) {
                EXPECT_TRUE(call.shorten(fault.kind == Fault::shorteningToOne))
                    << "the call could not be shortened";
                return true;
            }
            break;
        }
        return false;
    }

    bool isItsTurn(long number, bool endsOnceMore) const {
        const long after = number - trial_.fault.call;
        return after == 0 ||
               (trial_.fault.lasting && after > 0 && (!endsOnceMore || after < longestInterruption));
    }

    pid_t child_;
    const Trial& trial_;
    Outcome outcome_;
    bool isOver_ = false; ///< nothing is done at later calls, whose numbers nobody needs
};

/// A child that runs `body`, which returns a text, and sends that text to the parent.
class ReportingChild {
public:
    /// `prepare` is run first; when it returns false, the child ends with `Tracer::notPermitted`.
    template <class Body>
    explicit ReportingChild(
        const Body& body, unsigned seconds = 60, bool (*prepare)() = [] { return true; }) {
        int ends[2];
        if (::pipe2(ends, O_CLOEXEC) != 0) {
            return;
        }
        process_ = ::fork();
        if (process_ == 0) {
            ::alarm(seconds);
            if (!prepare()) {
                kit::leave(Tracer::notPermitted);
            }
            const std::string report = body();
            const auto length = static_cast<ssize_t>(report.size());
            kit::leave(::write(ends[1], report.data(), report.size()) == length ? 0 : 1);
        }
        ::close(ends[1]);
        reports_ = ends[0];
    }
    ReportingChild(const ReportingChild&) = delete;
    ReportingChild& operator=(const ReportingChild&) = delete;
    ~ReportingChild() { ::close(reports_); }

    pid_t process() const { return process_; }

    /// Whether there is a report, or can be none any more.
    bool hasEnded() const {
        pollfd one{reports_, POLLIN, 0};
        return ::poll(&one, 1, 0) != 0;
    }

    /// What the child has sent; complete when it has ended.
    std::string report() const {
        std::string text;
        char piece[1024];
        ssize_t count = 0;
        while ((count = ::read(reports_, piece, sizeof piece)) > 0) {
            text.append(piece, static_cast<std::size_t>(count));
        }
        return text;
    }

    /// Waits for the end of a child that is not traced.
    Outcome outcome() const {
        Outcome result;
        result.report = report();
        int status = 0;
        ::waitpid(process_, &status, 0);
        result.ended = WIFEXITED(status) && WEXITSTATUS(status) == 0;
        result.hung = WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM;
        return result;
    }

private:
    pid_t process_ = -1;
    int reports_ = -1;
};

/// Runs `body`, which returns a text, in a traced child.
template <class Body>
Outcome runTraced(const Trial& trial, const Body& body) {
    const auto offerToBeTraced = [] {
        return ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) == 0 && ::raise(SIGSTOP) == 0 && installFilter();
    };
    const ReportingChild child(body, trial.seconds, offerToBeTraced);
    Outcome outcome = Tracer(child.process(), trial).run();
    outcome.report = child.report();
    return outcome;
}

/// Runs `body`, which returns a text, in a child that nobody disturbs.
template <class Body>
Outcome runUndisturbed(const Body& body) {
    return ReportingChild(body).outcome();
}

} // namespace ZQFoundation::faults

#endif
