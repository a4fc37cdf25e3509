// SPDX-License-Identifier: MIT
#ifndef ZQFOUNDATION_ZQMIGRATE_SCREEN_H
#define ZQFOUNDATION_ZQMIGRATE_SCREEN_H

#include <cstdint>
#include <mutex>
#include <string>
#include <thread>

#include "tools/zqmigrate/Interruption.h"

namespace ZQFoundation::zqmigrate {

/// Where lines are written, with a bar below them that shows how far the work is when standard error is a
/// terminal. The bar is drawn ten times a second by a thread of its own, so that the time moves on while a
/// large item is being copied.
class Screen {
public:
    Screen(bool wantsBar, const Interruption& interruption);
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;
    ~Screen() { finish(); }

    /// Writes to standard output, at once unless a bar has to make room for it on a terminal.
    void write(const std::string& text);

    /// Until now so many items have been found.
    void setTotal(std::uint64_t total, bool isComplete);

    /// One more item is done.
    void advance(bool isFailure);

    /// Takes the bar away for good.
    void finish();

    /// Whether something could not be written.
    bool isBroken() const noexcept { return isBroken_; }

private:
    struct Progress {
        std::uint64_t total = 0;
        bool isTotalKnown = false;
        std::uint64_t done = 0;
        std::uint64_t failed = 0;
    };

    void keepDrawing();
    void draw();
    void erase();
    void writeWaiting();
    void writeLines(const std::string& text);
    std::string bar(std::size_t columns) const;

    const Interruption& interruption_;
    std::mutex mutex_; // of the next two
    Progress progress_;
    std::string waiting_;
    bool isShown_ = false;
    bool isBroken_ = false; // set by the thread when that writes the lines, else by the caller
    bool sharesTerminal_ = false;
    std::int64_t start_ = 0; // seconds
    int stop_[2] = {-1, -1};
    std::thread thread_;
};

/// Writes everything; false for an error. With signals held back, also false when one of them has come and
/// nobody takes the bytes: a reader that has stalled does not keep the program from ending.
bool writeAll(int descriptor, const std::string& bytes, const Interruption* interruption = nullptr);

} // namespace ZQFoundation::zqmigrate

#endif
