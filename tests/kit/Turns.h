// SPDX-License-Identifier: MIT
// Working threads beside a thread that forks.
#ifndef ZQFOUNDATION_TESTS_KIT_TURNS_H
#define ZQFOUNDATION_TESTS_KIT_TURNS_H

#include <atomic>
#include <thread>

#include <unistd.h>

#include "tests/kit/Child.h"
#include "tests/kit/Sanitizers.h"

namespace ZQFoundation::kit {

/// Threads at work and a thread that forks. They overlap freely, except under the address and the thread
/// sanitizer: a child forked while another thread is inside the sanitizer's own allocator hangs there. In
/// such a build forks fall between the others' operations.
class Turns {
public:
    /// Brackets one operation of a working thread.
    template <class Operation>
    auto work(const Operation& operation) {
        enter();
        auto result = operation();
        --inside_;
        return result;
    }

    /// Forks this many children one after the other, and counts those in which the body returns false or
    /// which take longer than a minute.
    template <class Body>
    int failures(int children, const Body& body) {
        int failures = 0;
        for (int number = 0; number < children; ++number) {
            const pid_t child = fork();
            if (child == 0) {
                ::alarm(60);
                leave(body(number) ? 0 : 1);
            }
            failures += endOf(child) == 0 ? 0 : 1;
        }
        return failures;
    }

private:
    pid_t fork() {
        forking_ = isSanitized;
        while (isSanitized && inside_ != 0) {
            std::this_thread::yield();
        }
        const pid_t child = ::fork();
        if (child != 0) {
            forking_ = false;
        }
        return child;
    }

    void enter() {
        for (;;) {
            while (forking_) {
                std::this_thread::yield();
            }
            ++inside_;
            if (!forking_) {
                return;
            }
            --inside_;
        }
    }

    std::atomic<bool> forking_{false};
    std::atomic<int> inside_{0};
};

} // namespace ZQFoundation::kit

#endif
