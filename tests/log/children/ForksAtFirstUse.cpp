// SPDX-License-Identifier: MIT
// Forks while four threads make the process's first log calls. Writes "child" eight times and "thread" four
// times.
#include <atomic>
#include <thread>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

#include "log/ZQLog.h"

using ZQFoundation::ZQLog;

namespace {

constexpr int threadCount = 4;
constexpr int childCount = 8;

[[noreturn]] void beChild() {
    ::alarm(30);
    const ZQFoundation::NSString prefix = ZQLog::logPrefix();
    const bool noneIsOn = !ZQLog::aTraceDefaultValueHasBeenActivated();
    ZQLog::log(prefix && noneIsOn ? "child" : "child with a wrong answer");
    ::_exit(0);
}

} // namespace

int main() {
    std::atomic<int> ready = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < threadCount; ++i) {
        threads.emplace_back([&ready, i] {
            ++ready;
            while (ready <= threadCount) {
                std::this_thread::yield();
            }
            if (i % 2 == 0) {
                ZQLog::traceKeyIsEnabled("TraceNever");
                ZQLog::dateFormatterShort();
            }
            ZQLog::log("thread");
        });
    }
    while (ready < threadCount) {
        std::this_thread::yield();
    }
    ++ready;
    for (int i = 0; i < childCount; ++i) {
        if (::fork() == 0) {
            beChild();
        }
    }
    int failures = 0;
    for (int i = 0; i < childCount; ++i) {
        int status = 0;
        failures += ::wait(&status) > 0 && status == 0 ? 0 : 1;
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    return failures;
}
