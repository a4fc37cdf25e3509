// SPDX-License-Identifier: MIT
// A thread that a signal interrupts wherever it happens to be.
#ifndef ZQFOUNDATION_TESTS_KIT_INTERRUPTIONS_H
#define ZQFOUNDATION_TESTS_KIT_INTERRUPTIONS_H

#include <atomic>
#include <csignal>
#include <ctime>

#include <sys/syscall.h>
#include <unistd.h>

#ifndef sigev_notify_thread_id // older headers of glibc lack the name
#define sigev_notify_thread_id _sigev_un._tid
#endif

namespace ZQFoundation::kit {

/// Interrupts the thread that makes the object, by a timer whose intervals vary: a second thread that sent
/// the signals would send most of them before the first one had left its handler. There is one object at a
/// time.
class Interruptions {
public:
    /// @param work What the handler does.
    /// @param times How often.
    Interruptions(void (*work)(), long times) {
        work_ = work;
        left_ = times;
        struct sigaction action {};
        action.sa_handler = handle;
        ::sigaction(SIGPROF, &action, &before_);
        makeTimer();
        setTimer();
    }
    ~Interruptions() {
        ::timer_delete(timer_);
        ::sigaction(SIGPROF, &before_, nullptr);
    }
    Interruptions(const Interruptions&) = delete;
    Interruptions& operator=(const Interruptions&) = delete;

    /// Whether the handler has run that often. Until then, the thread works.
    bool areOver() const { return left_ == 0; }

private:
    static void handle(int) {
        work_();
        if (--left_ > 0) {
            setTimer();
        }
    }

    static long nextInterval() {
        seed_ = seed_ * 1'664'525 + 1'013'904'223;
        return 2'000 + (seed_ >> 16) % 30'000; // nanoseconds
    }

    static void makeTimer() {
        sigevent event{};
        event.sigev_notify = SIGEV_THREAD_ID;
        event.sigev_signo = SIGPROF;
        event.sigev_notify_thread_id = static_cast<pid_t>(::syscall(SYS_gettid));
        ::timer_create(CLOCK_MONOTONIC, &event, &timer_);
    }
    static void setTimer() {
        const itimerspec time{{0, 0}, {0, nextInterval()}};
        ::timer_settime(timer_, 0, &time, nullptr);
    }

    static inline timer_t timer_{};
    static inline void (*work_)() = nullptr;
    static inline std::atomic<long> left_ = 0;
    static inline unsigned seed_ = 1;
    struct sigaction before_ {};
};

} // namespace ZQFoundation::kit

#endif
