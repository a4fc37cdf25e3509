// SPDX-License-Identifier: MIT
// Runs an operation in a child of which every system call that touches files below a folder can be made to
// fail, or be the child's last. The library calls the system without the C library's functions in between, so
// the fault is made where the call enters the kernel: a filter in the child stops it there, the parent looks
// at the call and lets it pass, replaces it by an error, or kills the child.
#ifndef ZQFOUNDATION_TESTS_FAULTS_TRACING_H
#define ZQFOUNDATION_TESTS_FAULTS_TRACING_H

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

#include <elf.h>
#include <fcntl.h>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/uio.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/migration/faults/FileCalls.h"
#include "tests/process/Scene.h"

namespace faults {

struct Fault {
    enum Kind { none, failing, killing } kind = none;
    int error = 0;
    long call = 0;        ///< which call, from 1
    bool lasting = false; ///< every call from that one on fails
};

/// A lasting EINTR ends after so many calls: whoever tries again forever is right to do so.
inline constexpr long longestInterruption = 200;

struct Outcome {
    bool traced = false; ///< false: the machine does not permit it
    bool ended = false;  ///< the operation came to its end and reported
    bool hung = false;
    long calls = 0;
    std::string report;
    std::vector<std::string> names; ///< of the calls, when they are recorded
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

/// One stopped child and the call that it is about to make.
class StoppedCall {
public:
    StoppedCall(pid_t child, const std::string& base) : child_(child), base_(base) {
        // The system answers with as much as it knows, which must be the form of a filtered call.
        known_ = ::ptrace(PTRACE_GET_SYSCALL_INFO, child, reinterpret_cast<void*>(sizeof information_),
                          &information_) > 0 &&
                 information_.op == PTRACE_SYSCALL_INFO_SECCOMP;
        call_ = known_ ? fileCallNumbered(information_.seccomp.nr) : nullptr;
    }

    const char* name() const { return call_ != nullptr ? call_->name : "?"; }

    /// Whether it names or uses a file below the folder, or a folder on the way there.
    bool concernsBase() {
        if (call_ == nullptr) {
            return false;
        }
        std::string folder;
        for (int index = 0; index < 5; ++index) {
            const std::uint64_t value = information_.seccomp.args[index];
            switch (call_->arguments[index]) {
            case Argument::descriptor:
                if (isNear(linkOf("fd/" + std::to_string(static_cast<int>(value))))) {
                    return true;
                }
                break;
            case Argument::folder:
                folder = static_cast<int>(value) == AT_FDCWD
                             ? ""
                             : linkOf("fd/" + std::to_string(static_cast<int>(value)));
                break;
            case Argument::path:
                if (isNear(placeOf(folder, textAt(value)))) { // without a folder the current one counts
                    return true;
                }
                break;
            case Argument::other:
                break;
            }
        }
        return false;
    }

    const std::string& where() const { return where_; }

    /// The call is not made and its result is the error.
    bool replaceBy(int error) const {
#if defined(__x86_64__)
        user_regs_struct registers;
        if (::ptrace(PTRACE_GETREGS, child_, nullptr, &registers) != 0) {
            return false;
        }
        registers.orig_rax = static_cast<unsigned long long>(-1);
        registers.rax = static_cast<unsigned long long>(-static_cast<long long>(error));
        return ::ptrace(PTRACE_SETREGS, child_, nullptr, &registers) == 0;
#elif defined(__aarch64__)
        user_regs_struct registers;
        int number = -1;
        iovec all{&registers, sizeof registers};
        iovec one{&number, sizeof number};
        if (::ptrace(PTRACE_GETREGSET, child_, reinterpret_cast<void*>(NT_PRSTATUS), &all) != 0) {
            return false;
        }
        registers.regs[0] = static_cast<unsigned long long>(-static_cast<long long>(error));
        return ::ptrace(PTRACE_SETREGSET, child_, reinterpret_cast<void*>(NT_PRSTATUS), &all) == 0 &&
               ::ptrace(PTRACE_SETREGSET, child_, reinterpret_cast<void*>(NT_ARM_SYSTEM_CALL), &one) == 0;
#else
        static_cast<void>(error);
        return false;
#endif
    }

private:
    std::string linkOf(const std::string& name) const {
        char text[4096];
        const std::string path = "/proc/" + std::to_string(child_) + "/" + name;
        const ssize_t length = ::readlink(path.c_str(), text, sizeof text);
        return length < 0 ? "" : std::string(text, static_cast<std::size_t>(length));
    }

    std::string textAt(std::uint64_t address) const {
        std::string text;
        char piece[256];
        while (address != 0 && text.size() < 8192) {
            // Up to the end of a page at most: the next one may not be there.
            const std::size_t wanted = std::min<std::size_t>(sizeof piece, 4096 - address % 4096);
            iovec local{piece, wanted};
            iovec remote{reinterpret_cast<void*>(address), wanted};
            const ssize_t got = ::process_vm_readv(child_, &local, 1, &remote, 1, 0);
            if (got <= 0) {
                break;
            }
            const std::size_t length = ::strnlen(piece, static_cast<std::size_t>(got));
            text.append(piece, length);
            if (length < static_cast<std::size_t>(got)) {
                break;
            }
            address += static_cast<std::uint64_t>(got);
        }
        return text;
    }

    std::string placeOf(const std::string& folder, const std::string& path) const {
        for (const char* const own : {"/proc/self/fd/", "/proc/thread-self/fd/"}) {
            if (path.rfind(own, 0) == 0) {
                return linkOf("fd/" + path.substr(std::strlen(own)));
            }
        }
        if (!path.empty() && path[0] == '/') {
            return path;
        }
        const std::string start = folder.empty() ? linkOf("cwd") : folder;
        return path.empty() ? start : start + "/" + path;
    }

    bool isNear(const std::string& place) {
        const bool near =
            place.rfind(base_, 0) == 0 || (!place.empty() && place[0] == '/' && base_.rfind(place, 0) == 0);
        if (near) {
            where_ = place;
        }
        return near;
    }

    pid_t child_;
    const std::string& base_;
    __ptrace_syscall_info information_{};
    bool known_ = false;
    const FileCall* call_ = nullptr;
    std::string where_;
};

/// Keeps this process and its children on one processor for a scope: parent and child take turns at every
/// call, and waking each other up across processors takes several times as long.
class OneProcessor {
public:
    OneProcessor() {
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(static_cast<unsigned>(std::max(::sched_getcpu(), 0)), &one);
        restores_ = ::sched_getaffinity(0, sizeof before_, &before_) == 0 &&
                    ::sched_setaffinity(0, sizeof one, &one) == 0;
    }
    OneProcessor(const OneProcessor&) = delete;
    OneProcessor& operator=(const OneProcessor&) = delete;
    ~OneProcessor() {
        if (restores_) {
            ::sched_setaffinity(0, sizeof before_, &before_);
        }
    }

private:
    cpu_set_t before_{};
    bool restores_ = false;
};

/// The parent's side of one run.
class Tracer {
public:
    Tracer(pid_t child, const std::string& base, const Fault& fault, bool records)
        : child_(child), base_(base), fault_(fault), records_(records) {}

    Outcome run() {
        int status = 0;
        if (::waitpid(child_, &status, 0) != child_ || !WIFSTOPPED(status) || WSTOPSIG(status) != SIGSTOP ||
            ::ptrace(PTRACE_SETOPTIONS, child_, nullptr,
                     reinterpret_cast<void*>(PTRACE_O_TRACESECCOMP | PTRACE_O_EXITKILL)) != 0) {
            ::kill(child_, SIGKILL);
            ::waitpid(child_, &status, 0);
            return outcome_;
        }
        outcome_.traced = true;
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
        outcome_.traced = !(WIFEXITED(status) && WEXITSTATUS(status) == 77);
        outcome_.hung = WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM;
        return outcome_;
    }

private:
    void atCall() {
        StoppedCall call(child_, base_);
        if (!call.concernsBase()) {
            return;
        }
        ++outcome_.calls;
        if (records_) {
            outcome_.names.push_back(std::string(call.name()) + " " + call.where());
        }
        if (fault_.kind == Fault::killing && outcome_.calls == fault_.call) {
            ::kill(child_, SIGKILL);
        } else if (fault_.kind == Fault::failing && isToFail()) {
            EXPECT_TRUE(call.replaceBy(fault_.error)) << "the call could not be replaced";
        }
    }

    bool isToFail() const {
        const long behind = outcome_.calls - fault_.call;
        const bool interrupts = fault_.error == EINTR;
        return behind == 0 || (fault_.lasting && behind > 0 && (!interrupts || behind < longestInterruption));
    }

    pid_t child_;
    const std::string& base_;
    Fault fault_;
    bool records_;
    Outcome outcome_;
};

/// Runs `body`, which returns a text, in a child under the fault.
template <class Body>
Outcome runTraced(const std::string& base, const Fault& fault, bool records, const Body& body) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) {
        return {};
    }
    const pid_t child = ::fork();
    if (child == 0) {
        ::alarm(30);
        if (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) {
            scene::leave(77);
        }
        ::raise(SIGSTOP);
        if (!installFilter()) {
            scene::leave(77);
        }
        const std::string report = body();
        const bool written =
            ::write(ends[1], report.data(), report.size()) == static_cast<ssize_t>(report.size());
        scene::leave(written ? 0 : 1);
    }
    ::close(ends[1]);
    Outcome outcome = Tracer(child, base, fault, records).run();
    char piece[1024];
    ssize_t count = 0;
    while ((count = ::read(ends[0], piece, sizeof piece)) > 0) {
        outcome.report.append(piece, static_cast<std::size_t>(count));
    }
    ::close(ends[0]);
    return outcome;
}

} // namespace faults

#endif
