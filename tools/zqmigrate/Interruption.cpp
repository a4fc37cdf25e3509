// SPDX-License-Identifier: MIT
#include "tools/zqmigrate/Interruption.h"

namespace ZQFoundation::zqmigrate {

namespace {

constexpr int signals[] = {SIGINT, SIGTERM, SIGHUP};

} // namespace

Interruption::Interruption() {
    sigemptyset(&awaited_);
    for (const int number : signals) {
        struct sigaction present {};
        // Held back, even a signal that is ignored would be pending.
        if (::sigaction(number, nullptr, &present) == 0 && present.sa_handler != SIG_IGN) {
            sigaddset(&awaited_, number);
        }
    }
    ::pthread_sigmask(SIG_BLOCK, &awaited_, nullptr);
}

int Interruption::pending() const {
    sigset_t arrived;
    sigemptyset(&arrived);
    ::sigpending(&arrived);
    for (const int number : signals) {
        if (sigismember(&awaited_, number) == 1 && sigismember(&arrived, number) == 1) {
            return number;
        }
    }
    return 0;
}

int Interruption::take() {
    const int number = pending();
    if (number != 0) {
        sigset_t one;
        int taken = 0;
        sigemptyset(&one);
        sigaddset(&one, number);
        ::sigwait(&one, &taken);
        wasTaken_ = true;
    }
    return number;
}

} // namespace ZQFoundation::zqmigrate
