// SPDX-License-Identifier: MIT
#ifndef ZQFOUNDATION_ZQMIGRATE_INTERRUPTION_H
#define ZQFOUNDATION_ZQMIGRATE_INTERRUPTION_H

#include <atomic>
#include <csignal>

namespace ZQFoundation::zqmigrate {

/// Signals that ask the program to end: held back, so that none cuts an item short, and looked for between
/// items. Those that were ignored when the program was started stay ignored. Make one before any thread.
class Interruption {
public:
    Interruption();

    /// The number of one that has come, or 0. Any thread.
    int pending() const;

    /// The same, and forgets the signal.
    int take();

    /// Whether one has come, taken or not. Any thread.
    bool hasCome() const { return wasTaken_ || pending() != 0; }

private:
    sigset_t awaited_;
    std::atomic<bool> wasTaken_{false};
};

} // namespace ZQFoundation::zqmigrate

#endif
