// SPDX-License-Identifier: MIT
// Counts the signals that stop the work.
#ifndef ZQFOUNDATION_ZQMIGRATE_INTERRUPTION_H
#define ZQFOUNDATION_ZQMIGRATE_INTERRUPTION_H

#include <atomic>
#include <csignal>
#include <initializer_list>

/// Counts SIGINT, SIGTERM and SIGHUP from `awaitSignals` on: the first one stops the work, a second one also
/// stops what is done after it. Any thread.
namespace ZQFoundation::tools::zqmigrate {

/// The number of the first signal, which is part of the exit status; 0 before it.
inline std::atomic<int> firstSignal{0};
inline std::atomic<int> signalCount{0};

/// The handler: it only counts, so it is safe wherever it interrupts.
extern "C" inline void countSignal(int number) {
    int none = 0;
    firstSignal.compare_exchange_strong(none, number);
    ++signalCount;
}

/// Signals that were ignored when the program was started stay ignored.
inline void awaitSignals() {
    struct sigaction action {};
    struct sigaction present {};
    action.sa_handler = countSignal;
    action.sa_flags = SA_RESTART;
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        sigaddset(&action.sa_mask, number); // so that the handler is not interrupted by itself
    }
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        if (::sigaction(number, nullptr, &present) == 0 && present.sa_handler != SIG_IGN) {
            ::sigaction(number, &action, nullptr);
        }
    }
    ::pthread_sigmask(SIG_UNBLOCK, &action.sa_mask, nullptr);
}

} // namespace ZQFoundation::tools::zqmigrate

#endif
