// SPDX-License-Identifier: MIT
// Forks, in each way that there is, while one thread is inside a line and another one holds the monitor, in a
// process whose own fork handler came before the library's and logs. The children's lines go to the file
// named by the first argument; each says who it is and has its process's number.
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

#include <fcntl.h>
#include <pthread.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "log/ZQLog.h"

using ZQFoundation::ZQLog;

namespace {

int good = -1;

/// Without an allocation: in some of the children nobody has put the allocator in order.
void logAs(const char* who) {
    char text[64];
    std::snprintf(text, sizeof text, "%s %d", who, static_cast<int>(::getpid()));
    ::dup2(good, STDERR_FILENO);
    ZQLog::log(static_cast<const char*>(text));
}

void logInHandler() {
    ::alarm(30);
    logAs("handler");
}

[[noreturn]] void beChild(const char* who) {
    ::alarm(30);
    logAs(who);
    const bool isOff = !ZQLog::traceKeyIsEnabled("TraceNever");
    ::_exit(isOff ? 0 : 1);
}

int resultOf(pid_t child) {
    int status = 0;
    return ::waitpid(child, &status, 0) == child && status == 0 ? 0 : 1;
}

int forkInEveryWay() {
    pid_t child = ::fork();
    if (child == 0) {
        beChild("fork");
    }
    int failures = resultOf(child);
    child = ::_Fork();
    if (child == 0) {
        beChild("_Fork");
    }
    failures += resultOf(child);
    child = static_cast<pid_t>(::syscall(SYS_clone, SIGCHLD, nullptr, nullptr, nullptr, nullptr));
    if (child == 0) {
        beChild("clone");
    }
    return failures + resultOf(child);
}

/// Returns when the pipe is full, so that whoever writes to it waits.
void waitUntilFull(int pipe) {
    int held = 0;
    while (::ioctl(pipe, FIONREAD, &held) == 0 && held < ::fcntl(pipe, F_GETPIPE_SZ)) {
        std::this_thread::yield();
    }
}

} // namespace

int main(int count, char** words) {
    int ends[2];
    if (count < 2 || ::pthread_atfork(nullptr, nullptr, logInHandler) != 0 || ::pipe(ends) != 0) {
        return 2;
    }
    good = ::open(words[1], O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
    ZQLog::traceKeyIsEnabled("TraceNever"); // reads the keys
    ::dup2(ends[1], STDERR_FILENO);
    ::close(ends[1]);
    std::thread writer([] { ZQLog::log(std::string(1'000'000, 'x')); });
    std::atomic<int> stage = 0;
    std::thread holder([&stage] {
        const ZQLog::Synchronized monitor;
        stage = 1;
        while (stage == 1) {
            std::this_thread::yield();
        }
    });
    waitUntilFull(ends[0]);
    while (stage == 0) {
        std::this_thread::yield();
    }
    const int failures = forkInEveryWay();
    stage = 2;
    holder.join();
    ::close(ends[0]); // and the line that waits is given up
    writer.join();
    return failures;
}
