// SPDX-License-Identifier: MIT
// Declares standard output with a progress bar below it.
#ifndef ZQFOUNDATION_ZQMIGRATE_SCREEN_H
#define ZQFOUNDATION_ZQMIGRATE_SCREEN_H

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>

namespace ZQFoundation::tools::zqmigrate {

/// The progress of the work.
struct Progress {
    std::uint64_t items = 0;
    std::uint64_t totalItems = 0;
    std::uint64_t bytes = 0;
    std::uint64_t totalBytes = 0;
    std::uint64_t failed = 0;
    bool isTotalKnown = false; ///< else the totals are what has been counted so far
};

/// Writes lines, with a progress bar below them if standard error is a terminal. A separate thread draws the
/// bar ten times a second, so that the time advances even while nothing is reported.
class Screen {
public:
    explicit Screen(bool wantsBar);
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;
    ~Screen() { finish(); }

    /// Writes to standard output.
    void write(const std::string& text);

    void show(const Progress& progress) {
        const std::lock_guard guard(mutex_);
        progress_ = progress;
    }

    /// Removes the bar for good.
    void finish();

    /// Whether something could not be written.
    bool isBroken() const noexcept { return isBroken_; }

private:
    void keepDrawing();
    void draw();
    void erase();
    std::string bar(std::size_t columns) const;

    bool isBroken_ = false;
    bool sharesTerminal_ = false; ///< lines and bar
    std::int64_t start_ = 0;      ///< seconds
    std::mutex mutex_;            // of what follows
    Progress progress_;
    bool isShown_ = false;
    bool isOver_ = false;
    std::condition_variable over_;
    std::thread thread_;
};

/// Writes everything; false for an error. Also false if a signal has arrived and nobody reads: a stalled
/// reader must not keep the program from ending.
bool writeAll(int descriptor, const std::string& bytes);

} // namespace ZQFoundation::tools::zqmigrate

#endif
